// What the server's ways out lead to instead (support/server_doors.txt): the platform of support/platform.h. Each
// function is the system's of the same name, as far as the server uses it.
#include <errno.h>
#include <fcntl.h>
#include <linux/wireless.h>
#include <netinet/in.h>
#include <poll.h>
#include <pthread.h>
#include <rpc/rpc.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>

#include <map>
#include <type_traits>

#include "config/wireless.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"
#include "platform/platform.h"
#include "server/records.h"

extern "C" {

// --- lines ---

// Lines are made, so that what is printed is looked at, and thrown away.
__attribute__((format(printf, 1, 0))) static int print(const char *format, va_list arguments) {
    static char line[1 << 16];
    return vsnprintf(line, sizeof(line), format, arguments);
}

__attribute__((format(printf, 2, 0))) int door_vfprintf(FILE *stream, const char *format, va_list arguments) {
    return stream == stdout || stream == stderr ? print(format, arguments) : vfprintf(stream, format, arguments);
}

__attribute__((format(printf, 1, 0))) int door_vprintf(const char *format, va_list arguments) {
    return print(format, arguments);
}

__attribute__((format(printf, 2, 3))) int door_fprintf(FILE *stream, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int length = door_vfprintf(stream, format, arguments);
    va_end(arguments);
    return length;
}

__attribute__((format(printf, 1, 2))) int door_printf(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int length = print(format, arguments);
    va_end(arguments);
    return length;
}

int door_fputs(const char *text, FILE *stream) {
    return stream == stdout || stream == stderr ? static_cast<int>(strlen(text)) : fputs(text, stream);
}

int door_puts(const char *text) {
    return static_cast<int>(strlen(text));
}

size_t door_fwrite(const void *bytes, size_t size, size_t count, FILE *stream) {
    return stream == stdout || stream == stderr ? count : fwrite(bytes, size, count, stream);
}

int door_fflush(FILE *stream) {
    return stream == stdout || stream == stderr ? 0 : fflush(stream);
}

void door_perror(const char *) {}

int send_zubra_event(int, int, int, const char *text, int length) {
    must(static_cast<int>(strlen(text)) == length, "a notice's length is that of its text");
    return 0;
}

int send_zubra_syslog(const char *line) {
    must(strlen(line) > 0, "a line of the system log says something");
    return 0;
}

void wlan_clearWiFiStatisticsOnFactory(void) {}

// --- the process ---

void door_exit(int) {
    fail("the server does not end itself");
}

pid_t door_getpid(void) {
    return 4711;
}

char *door_getenv(const char *) {
    return nullptr;
}

int door_setenv(const char *, const char *, int) {
    return 0;
}

int door_pthread_create(pthread_t *thread, const pthread_attr_t *, void *(*routine)(void *), void *) {
    constexpr uint8_t NO_THREAD = 0xFF;
    if (take_byte(&platform.answers) == NO_THREAD) {
        return EAGAIN;
    }
    *thread = {};
    platform.workers.push_back(routine);
    return 0;
}

int door_clock_gettime(clockid_t, timespec *now) {
    now->tv_sec = platform.clock_ms / 1000;
    now->tv_nsec = platform.clock_ms % 1000 * 1000000;
    return 0;
}

int door_clock_nanosleep(clockid_t, int, const timespec *wanted, timespec *) {
    platform.clock_ms += wanted->tv_sec * 1000 + wanted->tv_nsec / 1000000;
    return 0;
}

// Memory is the machine's own: it is what the driver writes to that has to be there. More than any gateway has is
// refused.
void *door_mmap(void *address, size_t size, int protection, int flags, int file, off_t offset) {
    constexpr size_t LARGEST = 64 << 20;
    if (size > LARGEST) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    void *memory = mmap(address, size, protection, flags, file, offset);
    if (memory != MAP_FAILED) {
        platform.bytes_mapped += size;
    }
    return memory;
}

int door_munmap(void *memory, size_t size) {
    platform.bytes_mapped -= size;
    return munmap(memory, size);
}

// --- tools ---

struct tool_output {
    std::string text;
    size_t place;
    bool breaks;
};

static ssize_t read_tool(void *cookie, char *bytes, size_t size) {
    tool_output *output = static_cast<tool_output *>(cookie);
    if (output->place == output->text.size() && output->breaks) {
        errno = EIO;
        return -1;
    }
    size_t length = output->text.copy(bytes, size, output->place);
    output->place += length;
    return static_cast<ssize_t>(length);
}

static int close_tool(void *cookie) {
    delete static_cast<tool_output *>(cookie);
    return 0;
}

FILE *door_popen(const char *command, const char *mode) {
    must(strcmp(mode, "re") == 0, "commands are read, and no other child inherits their pipe");
    tool_answer answer = answer_command(command);
    if (!answer.starts) {
        errno = ENOMEM;
        return nullptr;
    }
    platform.open_pipes++;
    tool_output *output = new tool_output{answer.text, 0, answer.breaks};
    return fopencookie(output, "r", {read_tool, nullptr, nullptr, close_tool});
}

int door_pclose(FILE *pipe) {
    platform.open_pipes--;
    return fclose(pipe);
}

int door_system(const char *command) {
    must(*command != '\0', "a command is not empty");
    platform.commands.push_back(command);
    return 0;
}

// --- files ---

int door_access(const char *path, int) {
    must(is_known_path(path), "the server looks only for files that it is known to touch");
    if (platform.files.count(path) != 0) {
        return 0;
    }
    errno = ENOENT;
    return -1;
}

int door_open(const char *path, int flags, ...) {
    return file_open(path, flags);
}

ssize_t door_read(int descriptor, void *bytes, size_t size) {
    return file_read(descriptor, bytes, size);
}

ssize_t door_pread(int descriptor, void *bytes, size_t size, off_t offset) {
    return file_read_at(descriptor, bytes, size, offset);
}

ssize_t door_pwrite(int descriptor, const void *bytes, size_t size, off_t offset) {
    return file_write_at(descriptor, bytes, size, offset);
}

int door_fcntl(int, int command, ...) {
    must(command == F_SETLKW, "files are only locked");
    return 0;
}

int door_flock(int, int) {
    return 0;
}

int door_fileno(FILE *) {
    return 0;
}

int door_fstat(int, struct stat *status) {
    *status = {};
    status->st_mode = S_IFREG;
    return 0;
}

int door_posix_fallocate(int, off_t, off_t length) {
    return static_cast<size_t>(length) > platform.storage_left ? ENOSPC : 0;
}

int door_fsync(int) {
    return platform.storage_left > 0 ? 0 : -1;
}

int door_unlink(const char *path) {
    must(is_known_path(path), "the server removes only files that it is known to touch");
    platform.files.erase(path);
    return 0;
}

// --- sockets ---

// How the peer of a channel behaves. Everything above is an ordinary answer.
enum daemon_behaviour : uint8_t {
    ANSWERS = 0,
    NO_SOCKET = 0xF0,
    ADDRESS_IN_USE,  // left behind, goes away
    ADDRESS_STAYS,
    NO_BINDING,
    NOBODY_LISTENS,
    QUEUE_FULL,  // is read in time
    QUEUE_STAYS_FULL,
    ENDS_EARLY,  // the datagram is refused
    SILENT,
    INTERRUPTED,  // by signals, then answers
    POLL_FAILS,
    ANSWER_FAILS,
};

struct fuzz_socket {
    int family;
    uint8_t behaviour;
    int tries;
};

constexpr int FIRST_SOCKET = 200000;
// The driver's shared socket is opened once a process.
constexpr int SHARED_SOCKET = 300000;
static std::map<int, fuzz_socket> sockets;

}  // extern "C"

bool is_socket_open() {
    return !sockets.empty();
}

extern "C" {

static fuzz_socket *socket_of(int descriptor) {
    auto found = sockets.find(descriptor);
    must(found != sockets.end(), "a socket is open when it is used");
    return &found->second;
}

static int fail_with(int error) {
    errno = error;
    return -1;
}

int door_socket(int family, int type, int) {
    must((type & SOCK_CLOEXEC) != 0, "no child process inherits a socket");
    static bool shared_is_open;
    if (family == AF_INET && !shared_is_open) {
        shared_is_open = true;
        return SHARED_SOCKET;
    }
    uint8_t behaviour = take_byte(&platform.answers);
    if (behaviour == NO_SOCKET) {
        return fail_with(EMFILE);
    }
    int descriptor = FIRST_SOCKET;
    while (sockets.count(descriptor) != 0) {
        descriptor++;
    }
    sockets[descriptor] = {family, behaviour, 0};
    return descriptor;
}

int door_setsockopt(int, int, int, const void *, socklen_t) {
    return 0;
}

int door_bind(int descriptor, const sockaddr *, socklen_t) {
    fuzz_socket *found = socket_of(descriptor);
    if (found->behaviour == NO_BINDING) {
        return fail_with(EACCES);
    }
    if (found->behaviour == ADDRESS_STAYS || (found->behaviour == ADDRESS_IN_USE && found->tries++ == 0)) {
        return fail_with(EADDRINUSE);
    }
    return 0;
}

int door_connect(int descriptor, const sockaddr *, socklen_t) {
    return socket_of(descriptor)->behaviour == NOBODY_LISTENS ? fail_with(ECONNREFUSED) : 0;
}

ssize_t door_send(int descriptor, const void *bytes, size_t size, int) {
    fuzz_socket *found = socket_of(descriptor);
    if (found->behaviour == ENDS_EARLY) {
        return fail_with(ECONNREFUSED);
    }
    if (found->behaviour == QUEUE_STAYS_FULL || (found->behaviour == QUEUE_FULL && found->tries++ == 0)) {
        return fail_with(EAGAIN);
    }
    must(size > 0 && static_cast<const char *>(bytes)[size - 1] == '\0', "a message to a daemon has its NUL");
    platform.messages_heard++;
    return static_cast<ssize_t>(size);
}

int door_poll(pollfd *ready, nfds_t count, int timeout_ms) {
    must(count == 1 && timeout_ms > 0, "one socket is waited for, and not for ever");
    fuzz_socket *found = socket_of(ready->fd);
    if (found->behaviour == POLL_FAILS) {
        return fail_with(ENOMEM);
    }
    if (found->behaviour == INTERRUPTED && found->tries++ < 3) {
        platform.clock_ms++;
        return fail_with(EINTR);
    }
    if (found->behaviour == SILENT || (found->behaviour == QUEUE_STAYS_FULL && ready->events == POLLOUT)) {
        platform.clock_ms += timeout_ms;
        return 0;
    }
    ready->revents = ready->events;
    return 1;
}

ssize_t door_recv(int descriptor, void *bytes, size_t size, int) {
    if (socket_of(descriptor)->behaviour == ANSWER_FAILS) {
        return fail_with(ECONNREFUSED);
    }
    return static_cast<ssize_t>(take_text(&platform.answers).copy(static_cast<char *>(bytes), size));
}

int door_close(int descriptor) {
    must(sockets.erase(descriptor) == 1 || file_close(descriptor), "only what is open is closed");
    return 0;
}

// --- the driver ---

static void overwrite(void *memory, size_t size, const std::string &bytes) {
    bytes.copy(static_cast<char *>(memory), size);
}

// What the driver writes to a command's buffer, as far as its caller has made room.
static void fill_command_buffer(const driver_command *asked) {
    size_t entry_size = 0;
    if (asked->command == COMMAND_SCAN_RESULTS) {
        entry_size = sizeof(scan_entry);
    } else if (asked->command == COMMAND_STATION_TABLE) {
        entry_size = sizeof(wlan_device_t);
    }
    if (entry_size > 0 && asked->buffer != 0) {
        overwrite(low_memory_at(asked->buffer), asked->value * entry_size, take_text(&platform.answers));
    }
}

// A debug request: 11 bytes of what is wanted, the size and the address of the buffer.
static void fill_debug_buffer(const char *request) {
    uint32_t size;
    uint32_t address;
    memcpy(&size, request + 11, sizeof(size));
    memcpy(&address, request + 15, sizeof(address));
    must(size <= sizeof(wlan_2g_temp_blacklist_table_t), "the driver is not told of more room than there is");
    if (address != 0) {
        overwrite(low_memory_at(address), size, take_text(&platform.answers));
    }
}

static void answer_request(unsigned long request, iwreq *record) {
    constexpr unsigned long DEBUG_REQUEST = 0x8BF8;
    void *data = record->u.data.pointer;
    size_t size = record->u.data.length;
    switch (request) {
        case SIOCSIWSCAN:
            break;
        case SIOCGIWESSID:
            overwrite(data, size, take_text(&platform.answers));
            record->u.data.length = take_u16(&platform.answers);
            break;
        case IOCTL_CHANNEL_TABLE:
            overwrite(data, size, take_text(&platform.answers));
            break;
        case DEBUG_REQUEST:
            fill_debug_buffer(static_cast<const char *>(data));
            break;
        case IOCTL_DRIVER: {
            driver_command asked = {};
            if (size == sizeof(asked)) {
                memcpy(&asked, data, sizeof(asked));
            }
            overwrite(data, size, take_text(&platform.answers));
            fill_command_buffer(&asked);
            break;
        }
        default:
            fail("the server makes only requests that it is known to make");
    }
}

// A byte below 0xE0 is what the request returns; others refuse it, the higher half of them after it was answered.
int door_ioctl(int descriptor, unsigned long request, ...) {
    constexpr uint8_t REFUSED = 0xE0;
    constexpr uint8_t ANSWERED_AND_REFUSED = 0xF0;
    must(descriptor == SHARED_SOCKET || sockets.count(descriptor) != 0, "requests are made on an open socket");
    va_list arguments;
    va_start(arguments, request);
    iwreq *record = va_arg(arguments, iwreq *);
    va_end(arguments);
    uint8_t result = take_byte(&platform.answers);
    if (result < REFUSED || result >= ANSWERED_AND_REFUSED) {
        answer_request(request, record);
    }
    return result < REFUSED ? result : fail_with(EOPNOTSUPP);
}

// --- the service socket ---

ssize_t door_recvfrom(int, void *bytes, size_t size, int, sockaddr *caller, socklen_t *length) {
    if (!platform.has_call) {
        return fail_with(EAGAIN);
    }
    platform.has_call = false;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    memcpy(caller, &address, sizeof(address));
    *length = sizeof(address);
    return static_cast<ssize_t>(platform.call.copy(static_cast<char *>(bytes), size));
}

ssize_t door_sendto(int, const void *bytes, size_t size, int, const sockaddr *, socklen_t) {
    must(size <= UDPMSGSIZE, "a reply fits a datagram");
    platform.replies.emplace_back(static_cast<const char *>(bytes), size);
    return static_cast<ssize_t>(size);
}

static xprt_stat is_idle(SVCXPRT *) {
    return XPRT_IDLE;
}

static bool_t free_arguments(SVCXPRT *, xdrproc_t decode, void *arguments) {
    xdr_free(decode, arguments);
    return TRUE;
}

// The library's transport without its socket.
SVCXPRT *door_svcudp_create(int descriptor) {
    static std::remove_cv_t<std::remove_pointer_t<decltype(SVCXPRT::xp_ops)>> operations = {};
    operations.xp_stat = is_idle;
    operations.xp_freeargs = free_arguments;
    // The library keeps what it knows of a caller's credential behind this pointer, in a record of its own.
    alignas(max_align_t) static char library_record[256];
    static SVCXPRT transport = {};
    transport.xp_p3 = library_record;
    transport.xp_fd = descriptor;
    transport.xp_ops = &operations;
    return &transport;
}
}
