#include "simulator/launcher/services.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <linux/filter.h>
#include <linux/seccomp.h>

#include "simulator/driver/driver_state.h"
#include "simulator/launcher/messages.h"
#include "simulator/launcher/root_contents.h"
#include "simulator/paths.h"

// How long a daemon may take until it answers: far more than it needs, also under a sanitizer on a busy machine.
constexpr double START_SECONDS = 30;

// Pause between two looks at a daemon that is starting.
constexpr long LOOK_NANOSECONDS = 5'000'000;

// The program that the server registers, and the port it has to register.
constexpr uint32_t SERVER_PROGRAM = 0x20131337;
constexpr uint32_t SERVER_VERSION = 1;
constexpr uint32_t SERVER_PORT = 60001;

// The program search path of a gateway's daemons.
static const char DAEMON_PATH[] = "/usr/sbin:/usr/bin:/sbin:/bin:/etc/ath";

// In the child: input from nowhere, output into a log, then the program.
[[noreturn]] static void become(const char *program, char *const *arguments, const char *log_path) {
    int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    int log = open(log_path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    dup2(null, STDIN_FILENO);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    // A session of its own: Ctrl-C in the gateway's shell is not for the daemons.
    setsid();
    setenv("PATH", DAEMON_PATH, 1);
    execv(program, arguments);
    fprintf(stderr, "%s: %s\n", program, strerror(errno));
    _exit(127);
}

static void print_tail(const char *log_path) {
    // The last lines of a log fit in here; the whole of it may be long.
    char tail[2048];
    int log = open(log_path, O_RDONLY | O_CLOEXEC);
    if (log < 0)
        return;
    off_t size = lseek(log, 0, SEEK_END);
    ssize_t length = pread(log, tail, sizeof tail, size > (off_t)sizeof tail ? size - (off_t)sizeof tail : 0);
    close(log);
    if (length > 0)
        fprintf(stderr, "%.*s%s", (int)length, tail, tail[length - 1] == '\n' ? "" : "\n");
}

// Looks until `ready` is true. False, after saying why, when the daemon ended or the time is over.
static bool wait_for(bool (*ready)(void), pid_t daemon, const char *name, const char *log_path) {
    double end = driver_clock() + START_SECONDS;
    while (!ready()) {
        int status;
        bool ended = waitpid(daemon, &status, WNOHANG) == daemon;
        if (ended || driver_clock() > end) {
            complain(name, ended ? "ended before it answered" : "does not answer");
            print_tail(log_path);
            return false;
        }
        timespec pause = {0, LOOK_NANOSECONDS};
        nanosleep(&pause, nullptr);
    }
    return true;
}

static bool may_set_groups(void) {
    char answer[8] = "";
    FILE *file = fopen("/proc/self/setgroups", "re");
    if (file == nullptr)
        return true;
    bool denied = fgets(answer, sizeof answer, file) != nullptr && strncmp(answer, "deny", 4) == 0;
    fclose(file);
    return !denied;
}

// There are no groups to give up in such a namespace, so nothing is lost by doing nothing.
void allow_giving_up_groups(void) {
    if (may_set_groups())
        return;
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_setgroups, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program = {sizeof steps / sizeof steps[0], steps};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

// Sends the portmapper's "which port has this program" and reads the answer; false when there is none in time.
static bool ask_for_port(int file, uint32_t *port) {
    constexpr int answer_milliseconds = 500;
    // Transaction, call, RPC 2, portmapper 2, procedure 3, no credentials (4 words); then the question: program,
    // version, UDP, and a port that does not matter.
    const uint32_t call[] = {1, 0, 2, 100000, 2, 3, 0, 0, 0, 0, SERVER_PROGRAM, SERVER_VERSION, IPPROTO_UDP, 0};
    uint32_t words[sizeof call / sizeof call[0]];
    for (size_t i = 0; i < sizeof call / sizeof call[0]; i++)
        words[i] = htonl(call[i]);
    // Transaction, reply, accepted, no verifier (2 words), success, port.
    uint32_t answer[7];
    if (send(file, words, sizeof words, 0) != (ssize_t)sizeof words)
        return false;
    pollfd waiting = {file, POLLIN, 0};
    if (poll(&waiting, 1, answer_milliseconds) != 1 || recv(file, answer, sizeof answer, 0) != (ssize_t)sizeof answer)
        return false;
    *port = ntohl(answer[6]);
    return answer[2] == 0 && answer[5] == 0;
}

// Asks the portmapper over UDP, as clients do. False when it does not answer.
static bool server_port(uint32_t *port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(111);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool asked =
        file >= 0 && connect(file, (const sockaddr *)&address, sizeof address) == 0 && ask_for_port(file, port);
    if (file >= 0)
        close(file);
    return asked;
}

static bool server_is_registered(void) {
    uint32_t port = 0;
    return server_port(&port) && port == SERVER_PORT;
}

// The server registers through the portmapper's local socket.
static bool local_socket_accepts(void) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof address.sun_path, "/run/rpcbind.sock");
    int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (file < 0)
        return false;
    bool accepted = connect(file, (const sockaddr *)&address, sizeof address) == 0;
    close(file);
    return accepted;
}

static bool portmapper_answers(void) {
    uint32_t no_port_yet = 0;
    return local_socket_accepts() && server_port(&no_port_yet);
}

bool start_portmapper(void) {
    pid_t child = fork();
    if (child == 0) {
        char name[] = "portmap", foreground[] = "-f";
        char *arguments[] = {name, foreground, nullptr};
        become(PORTMAPPER, arguments, GATEWAY_PORTMAPPER_LOG);
    }
    return wait_for(portmapper_answers, child, "the portmapper", GATEWAY_PORTMAPPER_LOG);
}

// What can be read of it is there once its socket is and it has read the store.
static bool soft_block_is_ready(void) {
    return access(GATEWAY_SOFTBLOCK, F_OK) == 0;
}

bool start_soft_block(void) {
    pid_t child = fork();
    if (child == 0) {
        char name[] = "softblock";
        char *arguments[] = {name, nullptr};
        become(SOFTBLOCK_PROGRAM, arguments, GATEWAY_SOFTBLOCK_LOG);
    }
    return wait_for(soft_block_is_ready, child, "softblock", GATEWAY_SOFTBLOCK_LOG);
}

// Appends an option to a sanitizer's option list, keeping what the caller set.
static void add_option(const char *variable, const char *option) {
    char value[1024];
    const char *old = getenv(variable);
    snprintf(value, sizeof value, "%s%s%s", old != nullptr ? old : "", old != nullptr ? ":" : "", option);
    setenv(variable, value, 1);
}

bool start_server(const char *server, const char *driver) {
    pid_t child = fork();
    if (child == 0) {
        // A server built with the address sanitizer would refuse to have anything loaded in front of it.
        add_option("ASAN_OPTIONS", "verify_asan_link_order=0");
        setenv("LD_PRELOAD", driver, 1);
        char name[] = "vlk_rpc_wlan_config_server";
        char *arguments[] = {name, nullptr};
        become(server, arguments, GATEWAY_SERVER_LOG);
    }
    return wait_for(server_is_registered, child, "the server", GATEWAY_SERVER_LOG);
}
