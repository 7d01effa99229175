#include "simulator/daemons/daemon.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include "simulator/driver/driver_state.h"

// How long a daemon that was told to end may still hold its sockets: whoever restarts it does not wait for its end.
// Far more than it needs, also on a busy machine.
constexpr double HANDOVER_SECONDS = 1;
constexpr long LOOK_NANOSECONDS = 5'000'000;

// Readable once the process was told to end; nobody reads it, so it stays so.
static int told_to_end = -1;

void daemon_cut_ties(void) {
    sigset_t ends;
    close_range(STDERR_FILENO + 1, ~0U, 0);
    signal(SIGHUP, SIG_IGN);
    signal(SIGTERM, SIG_DFL);
    signal(SIGINT, SIG_DFL);
    // From here on an end is an event among others; until it serves, it waits.
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    sigprocmask(SIG_SETMASK, &ends, nullptr);
    told_to_end = signalfd(-1, &ends, SFD_CLOEXEC);
}

// Whether somebody holds the socket of this name open.
static bool is_in_use(const sockaddr_un *address) {
    int probe = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool answered = probe >= 0 && connect(probe, (const sockaddr *)address, sizeof *address) == 0;
    if (probe >= 0)
        close(probe);
    return answered;
}

// The lock of the folder that a name stands in. Two that find the same dead name would otherwise take each other's new
// one away.
static int lock_folder(const char *path) {
    char folder[sizeof(sockaddr_un::sun_path)];
    const char *slash = strrchr(path, '/');
    int length = slash != nullptr ? (int)(slash - path) : 0;
    snprintf(folder, sizeof folder, "%.*s", length, path);
    int file = open(length > 0 ? folder : ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0)
        flock(file, LOCK_EX);
    return file;
}

// Binds a name that is free, or whose owner is gone. False with errno.
static bool bind_once(int file, const sockaddr_un *address) {
    int lock = lock_folder(address->sun_path);
    bool bound = bind(file, (const sockaddr *)address, sizeof *address) == 0;
    if (!bound && errno == EADDRINUSE) {
        bool dead = !is_in_use(address);
        if (dead && unlink(address->sun_path) == 0)
            bound = bind(file, (const sockaddr *)address, sizeof *address) == 0;
        else
            errno = EADDRINUSE;
    }
    int reason = errno;
    if (lock >= 0)
        close(lock);
    errno = reason;
    return bound;
}

static bool bind_socket(int file, const sockaddr_un *address) {
    double end = driver_clock() + HANDOVER_SECONDS;
    while (!bind_once(file, address)) {
        if (errno != EADDRINUSE || driver_clock() > end)
            return false;
        timespec pause = {0, LOOK_NANOSECONDS};
        nanosleep(&pause, nullptr);
        errno = EADDRINUSE;
    }
    return true;
}

int daemon_listen(const char *path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (snprintf(address.sun_path, sizeof address.sun_path, "%s", path) >= (int)sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (file >= 0 && bind_socket(file, &address))
        return file;
    int reason = errno;
    if (file >= 0)
        close(file);
    errno = reason;
    return -1;
}

void daemon_serve(const int *sockets, int count, void (*serve)(void *self, int number), void *self) {
    pollfd events[DAEMON_SOCKETS + 1];
    events[0] = {told_to_end, POLLIN, 0};
    for (int i = 0; i < count; i++)
        events[i + 1] = {sockets[i], POLLIN, 0};
    while (true) {
        if (poll(events, (nfds_t)count + 1, -1) < 0)
            continue;
        if (events[0].revents != 0)
            return;
        for (int i = 0; i < count; i++) {
            if (events[i + 1].revents != 0)
                serve(self, i);
        }
    }
}

bool daemon_pause(double seconds) {
    pollfd end = {told_to_end, POLLIN, 0};
    timespec left = {};
    left.tv_sec = (time_t)seconds;
    left.tv_nsec = (long)((seconds - (double)left.tv_sec) * 1e9);
    return ppoll(&end, 1, &left, nullptr) <= 0;
}
