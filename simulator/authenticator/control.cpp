#include "simulator/authenticator/control.h"

#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include "simulator/driver_state.h"
#include "simulator/paths.h"

// How long an authenticator that was told to end may still hold its sockets: whoever restarts it does not wait for its
// end. Far more than it needs, also on a busy machine.
constexpr double HANDOVER_SECONDS = 1;
constexpr long LOOK_NANOSECONDS = 5'000'000;

// How long the client waits for an answer.
constexpr int ANSWER_MILLISECONDS = 2'000;

// The address of an interface's socket; false when the name is too long for one.
static bool socket_address(const char *interface, sockaddr_un *address) {
    *address = {};
    address->sun_family = AF_UNIX;
    int length = snprintf(address->sun_path, sizeof address->sun_path, "%s/%s", HOSTAPD_SOCKETS, interface);
    if (length < (int)sizeof address->sun_path)
        return true;
    errno = ENAMETOOLONG;
    return false;
}

static int open_socket(void) {
    return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
}

// Whether somebody holds the socket of this name open.
static bool is_in_use(const sockaddr_un *address) {
    int probe = open_socket();
    bool answered = probe >= 0 && connect(probe, (const sockaddr *)address, sizeof *address) == 0;
    if (probe >= 0)
        close(probe);
    return answered;
}

static bool bind_socket(int file, const sockaddr_un *address) {
    double end = driver_clock() + HANDOVER_SECONDS;
    while (bind(file, (const sockaddr *)address, sizeof *address) != 0) {
        if (errno != EADDRINUSE) {
            printf("%s: %s\n", address->sun_path, strerror(errno));
            return false;
        }
        // A name whose owner is gone, or is going at this very moment, is free as soon as it is taken away.
        if (!is_in_use(address) && (unlink(address->sun_path) == 0 || errno == ENOENT))
            continue;
        if (driver_clock() > end) {
            printf("ctrl_iface exists and seems to be in use - cannot override it\n");
            return false;
        }
        timespec pause = {0, LOOK_NANOSECONDS};
        nanosleep(&pause, nullptr);
    }
    return true;
}

int control_listen(const char *interface) {
    sockaddr_un address;
    mkdir(HOSTAPD_SOCKETS, 0755);
    int file = socket_address(interface, &address) ? open_socket() : -1;
    if (file >= 0 && bind_socket(file, &address))
        return file;
    if (file >= 0)
        close(file);
    return -1;
}

void control_remove(const char *interface) {
    sockaddr_un address;
    if (socket_address(interface, &address))
        unlink(address.sun_path);
}

int control_connect(const char *interface) {
    sockaddr_un address;
    sockaddr_un own = {};
    own.sun_family = AF_UNIX;
    int file = socket_address(interface, &address) ? open_socket() : -1;
    // The answer comes to the client's own name; with the family alone the kernel chooses one that is no file.
    if (file >= 0 && bind(file, (const sockaddr *)&own, sizeof own.sun_family) == 0 &&
        connect(file, (const sockaddr *)&address, sizeof address) == 0)
        return file;
    int reason = errno;
    if (file >= 0)
        close(file);
    errno = reason;
    return -1;
}

bool control_request(int socket, const char *command, char *answer, size_t size) {
    pollfd waiting = {socket, POLLIN, 0};
    if (send(socket, command, strlen(command), 0) < 0 || poll(&waiting, 1, ANSWER_MILLISECONDS) != 1)
        return false;
    ssize_t length = recv(socket, answer, size - 1, 0);
    if (length < 0)
        return false;
    answer[length] = '\0';
    return true;
}
