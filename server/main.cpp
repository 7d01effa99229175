// The process: checks its preconditions, then supervises a child that serves.
//
// Touches the lock file, the portmapper, the service socket, and on a failed bind the driver's start-up script. The
// process that is started never serves itself and never ends: every end of the child leads to a new child. The two
// share nothing after the fork.
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <rpc/pmap_clnt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "config/command.h"
#include "server/dispatch.h"
#include "server/transport.h"
#include "server/wire.h"
#include "survey/control_channel.h"

constexpr const char INSTANCE_LOCK_FILE[] = "/tmp/.wlanrpc_lock";

// Pause before a child that ended cleanly is replaced: it gave up on something that needs time, such as the address.
constexpr unsigned CLEAN_EXIT_PAUSE_SECONDS = 2;

// How much of a process count is read.
constexpr size_t PORTMAP_COUNT_SIZE = 32;
constexpr size_t HOSTAPD_COUNT_SIZE = 16;

// The number that a counting command prints, or `unknown` when it cannot be run or prints nothing. At most
// size - 1 bytes of its output are looked at.
static int count_from(const char *command, size_t size, int unknown) {
    char text[PORTMAP_COUNT_SIZE] = "";
    ssize_t length = read_command(command, text, (size < sizeof text ? size : sizeof text) - 1);
    return length > 0 ? atoi(text) : unknown;
}

// Whether no other process holds the instance lock at this very moment. The lock is released at once, on purpose: it
// finds a second instance that starts at the same time, nothing more.
static bool check_instance(void) {
    FILE *lock_file = fopen(INSTANCE_LOCK_FILE, "w+e");
    if (!lock_file)
        return false;
    flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    int locked = fcntl(fileno(lock_file), F_SETLK, &lock);
    fclose(lock_file);
    return locked >= 0;
}

// Binds to the service address. A first failure most likely means that the address is missing because the driver is
// down; if the authenticator still runs, the driver is brought up again and the bind is tried once more.
static void bind_service(int socket, const sockaddr_in *address) {
    auto *generic = reinterpret_cast<const sockaddr *>(address);
    if (bind(socket, generic, sizeof *address) == 0)
        return;
    if (count_from("pgrep -l hostapd | grep -c hostapd", HOSTAPD_COUNT_SIZE, 0) > 0) {
        puts("socket bind failed restarting driver");
        run_shell("/etc/ath/apup");
    }
    if (bind(socket, generic, sizeof *address) == 0)
        return;
    perror("bind");
    exit(0);  // a clean exit, so that the supervisor waits before the next child
}

static int build_rpc_sockt(const char *address_text) {
    int service_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    if (service_socket < 0) {
        perror("socket");
        exit(1);
    }
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(SERVICE_PORT);
    if (!inet_aton(address_text, &address.sin_addr)) {
        printf("inet_aton failed with IPv4 %s\n", address_text);
        exit(1);
    }
    bind_service(service_socket, &address);
    printf("VLK WLAN RPC server bind successfully to %s:%d\n", address_text, SERVICE_PORT);
    return service_socket;
}

[[noreturn]] static void serve(void) {
    printf("VLK WLAN RPC Server pid=%d forked child pid=%d\n", getppid(), getpid());
    memset(buf_reply, 0xFF, sizeof buf_reply);
    pmap_unset(WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION);
    SVCXPRT *transport = transport_create(build_rpc_sockt(SERVICE_ADDRESS));
    if (!transport) {
        fputs("cannot create udp service.\n", stderr);
        exit(1);
    }
    if (!svc_register(transport, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, wlan_config_rpc_prog_1, IPPROTO_UDP)) {
        fputs("unable to register (WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, udp).\n", stderr);
        exit(0);
    }
    svc_run();
    fputs("svc_run returned\n", stderr);
    exit(0);
}

// Waits for the child's end and for the time when its successor is due.
static void await_child_end(void) {
    int status;
    if (wait(&status) < 0) {
        perror("wait child error");
        exit(1);
    }
    if (WIFSIGNALED(status))
        return;
    printf("The child exited with status = %d\n", WEXITSTATUS(status));
    if (WEXITSTATUS(status) == 0)
        sleep(CLEAN_EXIT_PAUSE_SECONDS);
}

int main(int, char **argv) {
    // Every line is out at once, also in a file, and nothing is left in a buffer to be written twice after a fork.
    setvbuf(stdout, nullptr, _IOLBF, 0);
    if (count_from("pgrep -l portmap | grep -c portmap", PORTMAP_COUNT_SIZE, 1) < 1) {
        printf("%s - Network and/or portmapper has not been setup\n", argv[0]);
        return 0;
    }
    if (!check_instance()) {
        puts("Process already running");
        return 0;
    }
    for (;;) {
        if (fork() == 0)
            serve();
        await_child_end();
    }
}
