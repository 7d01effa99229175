// A small program for the tests of the driver library, which is preloaded into it as into the server: it makes the
// calls that the library watches and prints what came of them.
#include <errno.h>
#include <net/if.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>

#include <linux/wireless.h>

static iwreq request_for(const char *interface) {
    iwreq request = {};
    snprintf(request.ifr_name, sizeof request.ifr_name, "%s", interface);
    return request;
}

static int report(int result) {
    printf("%d %s\n", result, result < 0 ? strerrorname_np(errno) : "");
    return 0;
}

// The table's count, and its entries' frequency and flags.
static int print_channels(int file, const char *interface, size_t size) {
    // As large as a request's 16-bit length can say.
    static unsigned char table[65536];
    iwreq request = request_for(interface);
    request.u.data.pointer = table;
    request.u.data.length = static_cast<uint16_t>(size);
    int result = ioctl(file, SIOCIWFIRSTPRIV + 7, &request);
    if (result < 0)
        return report(result);
    uint32_t count;
    memcpy(&count, table, sizeof count);
    printf("%d %u %u\n", result, request.u.data.length, count);
    for (uint32_t i = 0; i < count; i++) {
        uint16_t frequency;
        uint32_t flags;
        memcpy(&frequency, table + 4 + 20 * i, sizeof frequency);
        memcpy(&flags, table + 8 + 20 * i, sizeof flags);
        printf("%u 0x%08x\n", frequency, flags);
    }
    return 0;
}

static int print_essid(int file, const char *interface, size_t size) {
    char essid[256] = "";
    iwreq request = request_for(interface);
    request.u.essid.pointer = essid;
    request.u.essid.length = static_cast<uint16_t>(size);
    int result = ioctl(file, SIOCGIWESSID, &request);
    if (result < 0)
        return report(result);
    printf("%d %u %u %s\n", result, request.u.essid.length, request.u.essid.flags, essid);
    return 0;
}

// Any other request on an interface.
static int print_request(int file, const char *interface, unsigned long number) {
    iwreq request = request_for(interface);
    return report(ioctl(file, number, &request));
}

// A debug request of the driver, as the library takes it, with a buffer below 4 GiB. What is not said is as the server
// would have it; the buffer is otherwise full of 0xEE. Below it nothing is mapped, and neither is behind its end.
struct debug_call {
    unsigned long command, size, count, fetches;
    unsigned long length;   // of the request
    unsigned long pointer;  // to the request
    unsigned long address;  // in the request
    unsigned long room;     // from the address to the end of the buffer
};

static void read_option(debug_call *call, const char *word) {
    struct {
        const char *name;
        unsigned long *value;
    } const options[] = {{"command=", &call->command}, {"size=", &call->size},     {"count=", &call->count},
                         {"fetches=", &call->fetches}, {"length=", &call->length}, {"pointer=", &call->pointer},
                         {"address=", &call->address}, {"room=", &call->room}};
    for (const auto &option : options) {
        if (strncmp(word, option.name, strlen(option.name)) == 0)
            *option.value = strtoul(word + strlen(option.name), nullptr, 0);
    }
}

constexpr size_t DEBUG_BUFFER_SIZE = 4096;

constexpr size_t PAGE_SIZE = 4096;

// Whole pages at 0x20001000, with a page on either side that is nobody's.
static unsigned char *low_memory(size_t size) {
    void *place = reinterpret_cast<void *>(0x20000000);
    auto *pages = static_cast<unsigned char *>(mmap(place, size + 2 * PAGE_SIZE, PROT_READ | PROT_WRITE,
                                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0));
    if (pages == MAP_FAILED)
        return nullptr;
    munmap(pages, PAGE_SIZE);
    munmap(pages + PAGE_SIZE + size, PAGE_SIZE);
    return pages + PAGE_SIZE;
}

static void put_word(unsigned char *to, unsigned long value) {
    auto word = static_cast<uint32_t>(value);
    memcpy(to, &word, sizeof word);
}

// The result, and in lines of 32 bytes what is not 0xEE any more.
static int print_buffer(int result, const unsigned char *buffer, size_t size) {
    report(result);
    while (size > 0 && buffer[size - 1] == 0xEE)
        size--;
    for (size_t i = 0; i < size; i++)
        printf("%02x%s", buffer[i], i % 32 == 31 || i + 1 == size ? "\n" : "");
    return 0;
}

static int print_debug_request(int file, const char *interface, int count, char **words) {
    unsigned char asked[211] = {};
    debug_call call = {87, 32, 0xEEEEEEEE, 0xEEEEEEEE, sizeof asked, 0, 0, DEBUG_BUFFER_SIZE};
    for (int i = 0; i < count; i++)
        read_option(&call, words[i]);
    unsigned char *page = low_memory(DEBUG_BUFFER_SIZE);
    if (page == nullptr)
        return 3;
    unsigned char *buffer = page + DEBUG_BUFFER_SIZE - call.room;
    memset(page, 0xEE, DEBUG_BUFFER_SIZE);
    unsigned char head[8];
    put_word(head, call.count);
    put_word(head + 4, call.fetches);
    memcpy(buffer, head, call.room < sizeof head ? call.room : sizeof head);
    asked[0] = static_cast<unsigned char>(call.command);
    put_word(asked + 11, call.size);
    put_word(asked + 15, call.address != 0 ? call.address : reinterpret_cast<uintptr_t>(buffer));
    iwreq request = request_for(interface);
    request.u.data.pointer = call.pointer != 0 ? reinterpret_cast<void *>(call.pointer) : asked;
    request.u.data.length = static_cast<uint16_t>(call.length);
    int result = ioctl(file, 0x8BF8, &request);
    return print_buffer(result, buffer, call.room);
}

// A command of the driver's own, as the library takes it, with a buffer below 4 GiB that is full of 0xEE and ends where
// its memory does. What is not said is as the server would have it.
struct driver_call {
    unsigned long command, value;
    unsigned long length;   // of the request
    unsigned long pointer;  // to the request
    unsigned long address;  // in the request
    unsigned long room;     // from the address to the end of the buffer
    unsigned long record;   // so many bytes stand on a line
};

static void read_option(driver_call *call, const char *word) {
    struct {
        const char *name;
        unsigned long *value;
    } const options[] = {{"command=", &call->command}, {"value=", &call->value},     {"length=", &call->length},
                         {"pointer=", &call->pointer}, {"address=", &call->address}, {"room=", &call->room},
                         {"record=", &call->record}};
    for (const auto &option : options) {
        if (strncmp(word, option.name, strlen(option.name)) == 0)
            *option.value = strtoul(word + strlen(option.name), nullptr, 0);
    }
}

// Room for a thousand networks.
constexpr size_t DRIVER_BUFFER_SIZE = 32 * PAGE_SIZE;

// The result; the command's three words; the buffer, a record a line, as far as it is not 0xEE any more.
static int print_driver_command(int file, const char *interface, int count, char **words) {
    driver_call call = {0, 0, 12, 0, 0, DRIVER_BUFFER_SIZE, 128};
    for (int i = 0; i < count; i++)
        read_option(&call, words[i]);
    unsigned char *memory = low_memory(DRIVER_BUFFER_SIZE);
    if (memory == nullptr || call.room > DRIVER_BUFFER_SIZE || call.record == 0)
        return 3;
    memset(memory, 0xEE, DRIVER_BUFFER_SIZE);
    unsigned char *buffer = memory + DRIVER_BUFFER_SIZE - call.room;
    uint32_t asked[3] = {static_cast<uint32_t>(call.command), static_cast<uint32_t>(call.value),
                         static_cast<uint32_t>(reinterpret_cast<uintptr_t>(buffer))};
    if (call.address != 0)
        asked[2] = static_cast<uint32_t>(call.address);
    uint32_t address = asked[2];
    iwreq request = request_for(interface);
    request.u.data.pointer = call.pointer != 0 ? reinterpret_cast<void *>(call.pointer) : asked;
    request.u.data.length = static_cast<uint16_t>(call.length);
    report(ioctl(file, 0x89FC, &request));
    printf("%u %u %s\n", asked[0], asked[1], asked[2] == address ? "kept" : "changed");
    size_t size = call.room;
    while (size > 0 && buffer[size - 1] == 0xEE)
        size--;
    for (size_t i = 0; i < size; i++)
        printf("%02x%s", buffer[i], (i + 1) % call.record == 0 || i + 1 == size ? "\n" : "");
    return 0;
}

// A record of the driver's own request 0x89FC. Nothing is mapped behind it; what it does not begin with is 0xEE.
struct record_call {
    const char *begins;     // in hexadecimal
    unsigned long length;   // of the record
    unsigned long room;     // what of it is the caller's memory, when that is not all of it
    unsigned long pointer;  // to it
};

static record_call read_record_call(int count, char **words) {
    record_call call = {"", 0, 0, 0};
    for (int i = 0; i < count; i++) {
        const char *value = words[i] + strcspn(words[i], "=") + 1;
        if (strncmp(words[i], "begins=", 7) == 0)
            call.begins = value;
        else if (strncmp(words[i], "length=", 7) == 0)
            call.length = call.room = strtoul(value, nullptr, 0);
        else if (strncmp(words[i], "room=", 5) == 0)
            call.room = strtoul(value, nullptr, 0);
        else if (strncmp(words[i], "pointer=", 8) == 0)
            call.pointer = strtoul(value, nullptr, 0);
    }
    return call;
}

static int print_record(int file, const char *interface, int count, char **words) {
    constexpr size_t MAPPED = 65536, PAGE = 4096;
    record_call call = read_record_call(count, words);
    auto *pages = static_cast<unsigned char *>(
        mmap(nullptr, MAPPED + PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (pages == MAP_FAILED || call.room > MAPPED)
        return 3;
    munmap(pages + MAPPED, PAGE);
    unsigned char *record = pages + MAPPED - call.room;
    memset(record, 0xEE, call.room);
    for (size_t i = 0; i < call.room && strlen(call.begins) >= 2 * i + 2; i++) {
        const char pair[] = {call.begins[2 * i], call.begins[2 * i + 1], '\0'};
        record[i] = static_cast<unsigned char>(strtoul(pair, nullptr, 16));
    }
    iwreq request = request_for(interface);
    request.u.data.pointer = call.pointer != 0 ? reinterpret_cast<void *>(call.pointer) : record;
    request.u.data.length = static_cast<uint16_t>(call.length);
    int result = ioctl(file, 0x89FC, &request);
    return print_buffer(result, record, call.room);
}

// What syslog() is called by in programs that were built with checks.
extern "C" void __syslog_chk(int priority, int flag, const char *format, ...) __attribute__((format(printf, 3, 4)));

// A line for the system log, and the error number afterwards.
static int log_line(const char *text, bool checked) {
    errno = ENOENT;
    if (checked)
        __syslog_chk(LOG_INFO, 1, "%s %d %m", text, 7);
    else
        syslog(LOG_INFO, "%s %d %m", text, 7);
    printf("%s\n", strerrorname_np(errno));
    return 0;
}

static void *log_long_line(void *length) {
    size_t size = strtoul(static_cast<const char *>(length), nullptr, 10);
    auto *text = static_cast<char *>(malloc(size + 1));
    if (text == nullptr)
        return nullptr;
    memset(text, 'x', size);
    text[size] = '\0';
    syslog(LOG_INFO, "%s", text);
    free(text);
    return nullptr;
}

static void *popen_and_wait(void *command) {
    FILE *pipe = popen(static_cast<const char *>(command), "r");
    if (pipe == nullptr) {
        report(-1);
        return nullptr;
    }
    for (int byte = getc(pipe); byte != EOF; byte = getc(pipe))
        putchar(byte);
    printf("closed %d\n", pclose(pipe));
    return nullptr;
}

// The time of day by the three functions that tell it, and the clock that nobody sets, in seconds.
static int print_clocks() {
    timespec day = {};
    timespec since_start = {};
    timeval same_day = {};
    clock_gettime(CLOCK_REALTIME, &day);
    clock_gettime(CLOCK_MONOTONIC, &since_start);
    gettimeofday(&same_day, nullptr);
    printf("%ld %ld %ld %ld\n", day.tv_sec, same_day.tv_sec, time(nullptr), since_start.tv_sec);
    return 0;
}

// Something in a thread with as little stack as the server's workers have.
static int in_worker(void *(*work)(void *), char *operand) {
    pthread_attr_t attributes;
    pthread_t worker;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 32768);
    if (pthread_create(&worker, &attributes, work, operand) != 0)
        return 1;
    return pthread_join(worker, nullptr);
}

int main(int argument_count, char **arguments) {
    if (argument_count < 3)
        return 2;
    const char *what = arguments[1];
    char *operand = arguments[2];
    unsigned long number = argument_count > 3 ? strtoul(arguments[3], nullptr, 0) : 0;
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (strcmp(what, "channels") == 0)
        return print_channels(file, operand, number);
    if (strcmp(what, "essid") == 0)
        return print_essid(file, operand, number);
    if (strcmp(what, "request") == 0)
        return print_request(file, operand, number);
    if (strcmp(what, "popen") == 0)
        return popen_and_wait(operand) == nullptr ? 0 : 1;
    if (strcmp(what, "worker") == 0)
        return in_worker(popen_and_wait, operand);
    if (strcmp(what, "debug") == 0)
        return print_debug_request(file, operand, argument_count - 3, arguments + 3);
    if (strcmp(what, "driver") == 0)
        return print_driver_command(file, operand, argument_count - 3, arguments + 3);
    if (strcmp(what, "record") == 0)
        return print_record(file, operand, argument_count - 3, arguments + 3);
    if (strcmp(what, "syslog") == 0 || strcmp(what, "syslog-checked") == 0)
        return log_line(operand, strcmp(what, "syslog-checked") == 0);
    if (strcmp(what, "syslog-worker") == 0)
        return in_worker(log_long_line, operand);
    if (strcmp(what, "clocks") == 0)
        return print_clocks();
    if (strcmp(what, "system") == 0)
        return report(system(operand));
    return 2;
}
