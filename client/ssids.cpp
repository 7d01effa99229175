#include "client/ssids.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "client/ask.h"

// A person who presses TAB waits no longer.
constexpr int VAP_SECONDS = 1;

// One VAP as the process that asks for it tells it. Smaller than what a pipe takes as one piece.
struct vap_message {
    int index;
    char ssid[SSID_TEXT_SIZE];
};

static void tell_ssids(const client_session *session, const char *server, int to) {
    call_endpoint endpoint = session->connection->endpoint;
    if (server)
        endpoint.address = server;
    server_connection connection = new_connection(&endpoint);
    client_session own = *session;
    own.connection = &connection;
    own.settings.timeout_seconds = VAP_SECONDS;
    for (int index = 1; index <= VAP_COUNT_MAX; index++) {
        vap_message message = {index, ""};
        client_exit_status status = ask_text(&own, PROC_wlan_get_ssid, index, message.ssid, sizeof message.ssid);
        bool answered = status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_FAILURE;
        if (!answered || write(to, &message, sizeof message) != sizeof message)
            break;
    }
}

static int milliseconds_until(const timespec *end) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    time_t seconds = end->tv_sec - now.tv_sec;
    long nanoseconds = end->tv_nsec - now.tv_nsec;
    long milliseconds = static_cast<long>(seconds) * 1000 + nanoseconds / 1000000;
    return milliseconds > 0 ? static_cast<int>(milliseconds) : 0;
}

static void hear_ssids(int from, char (*ssids)[SSID_TEXT_SIZE]) {
    timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += VAP_SECONDS;
    pollfd waiting = {from, POLLIN, 0};
    for (;;) {
        int ready = poll(&waiting, 1, milliseconds_until(&end));
        if (ready < 0 && errno == EINTR)
            continue;
        vap_message message;
        if (ready <= 0 || read(from, &message, sizeof message) != sizeof message)
            return;
        snprintf(ssids[message.index - 1], SSID_TEXT_SIZE, "%s", message.ssid);
    }
}

// Looking up a name and calling have limits of their own, which add up to more than a second: so a process does both
// that can be ended at any time.
void find_ssids(const client_session *session, const char *server, char (*ssids)[SSID_TEXT_SIZE]) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        tell_ssids(session, server, ends[1]);
        _exit(0);
    }
    close(ends[1]);
    if (child > 0) {
        hear_ssids(ends[0], ssids);
        kill(child, SIGKILL);
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    close(ends[0]);
}
