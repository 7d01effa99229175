#include "simulator/authenticator/control.h"

#include <errno.h>
#include <poll.h>
#include <stdio.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "simulator/daemons/daemon.h"
#include "simulator/paths.h"

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

int control_listen(const char *interface) {
    sockaddr_un address;
    mkdir(HOSTAPD_SOCKETS, 0755);
    int file = socket_address(interface, &address) ? daemon_listen(address.sun_path) : -1;
    if (file < 0 && errno == EADDRINUSE)
        printf("ctrl_iface exists and seems to be in use - cannot override it\n");
    else if (file < 0)
        printf("%s/%s: %s\n", HOSTAPD_SOCKETS, interface, strerror(errno));
    return file;
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
    int file = socket_address(interface, &address) ? socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0) : -1;
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
