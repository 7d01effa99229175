// hostapd: the authenticator, as far as others see it.
//
// It reads its configuration files when it starts and only then, stays as a process of that name, answers control
// commands on one socket an interface, and takes sockets and pid away when it is told to end. There is no radio behind
// it: a WPS exchange goes as the scenario has it.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "simulator/authenticator/bss.h"
#include "simulator/authenticator/control.h"
#include "simulator/daemons/daemon.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

struct authenticator {
    bool background;
    int count;  // of its interfaces
    const char *files[SCENARIO_VAPS];
    bss interfaces[SCENARIO_VAPS];
    int sockets[SCENARIO_VAPS];
};

static bool read_arguments(authenticator *self, int argument_count, char *const *arguments) {
    for (int i = 0; i < argument_count; i++) {
        if (strcmp(arguments[i], "-B") == 0)
            self->background = true;
        else if (strcmp(arguments[i], "-e") == 0 && i + 1 < argument_count)
            i++;  // the file that keeps entropy is not needed here
        else if (arguments[i][0] == '-' || self->count == SCENARIO_VAPS)
            return false;
        else
            self->files[self->count++] = arguments[i];
    }
    return self->count > 0;
}

// All or nothing: one file that is no good, and none of its interfaces is served.
static bool configure(authenticator *self) {
    char error[SCENARIO_ERROR_SIZE];
    driver_state state;
    driver_state_read(&state);
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        fprintf(stderr, "%s\n", error);
    bool good = scene != nullptr;
    for (int i = 0; i < self->count && good; i++) {
        good = bss_configure(&self->interfaces[i], self->files[i], &state, scene);
        if (!good)
            printf("Failed to set up interface with %s\n", self->files[i]);
    }
    scenario_free(scene);
    return good;
}

static void take_sockets_away(const authenticator *self, int count) {
    for (int i = 0; i < count; i++)
        control_remove(self->interfaces[i].interface);
}

static bool open_sockets(authenticator *self) {
    for (int i = 0; i < self->count; i++) {
        self->sockets[i] = control_listen(self->interfaces[i].interface);
        if (self->sockets[i] < 0) {
            printf("Failed to set up interface with %s\n", self->files[i]);
            take_sockets_away(self, i);
            return false;
        }
    }
    return true;
}

static void write_pid(pid_t pid) {
    FILE *file = fopen(HOSTAPD_PID_FILE, "we");
    if (file == nullptr)
        return;
    fprintf(file, "%d\n", pid);
    fclose(file);
}

// Unless a later one has written its own.
static void remove_pid(void) {
    int pid = 0;
    FILE *file = fopen(HOSTAPD_PID_FILE, "re");
    if (file == nullptr)
        return;
    bool own = fscanf(file, "%d", &pid) == 1 && pid == getpid();
    fclose(file);
    if (own)
        unlink(HOSTAPD_PID_FILE);
}

// Becomes a daemon: a session of its own, no directory, no terminal, no pipe of the starter's. Returns in the daemon
// with 0, and in the process that was started, once the daemon stands, with the daemon's pid; -1 with errno.
static pid_t detach(void) {
    int standing[2];
    char nothing;
    if (pipe2(standing, O_CLOEXEC) != 0)
        return -1;
    pid_t child = fork();
    if (child != 0) {
        close(standing[1]);
        // It ends when the daemon has closed its end.
        while (child > 0 && read(standing[0], &nothing, 1) < 0 && errno == EINTR) {
        }
        close(standing[0]);
        return child;
    }
    setsid();
    if (chdir("/") != 0)
        _exit(1);
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int i = STDIN_FILENO; i <= STDERR_FILENO; i++)
        dup2(null, i);
    close(null);
    close(standing[0]);
    close(standing[1]);
    return 0;
}

// Answers one command. Whoever asks without a name of his own gets no answer.
static void serve(void *authenticator_self, int number) {
    authenticator *self = (authenticator *)authenticator_self;
    int file = self->sockets[number];
    char command[CONTROL_COMMAND_SIZE];
    char answer[BSS_ANSWER_SIZE] = "";
    sockaddr_un from = {};
    socklen_t from_length = sizeof from;
    ssize_t length = recvfrom(file, command, sizeof command - 1, MSG_DONTWAIT, (sockaddr *)&from, &from_length);
    if (length < 0)
        return;
    command[length] = '\0';
    bss_answer(&self->interfaces[number], command, answer, sizeof answer);
    if (from_length > sizeof from.sun_family)
        sendto(file, answer, strlen(answer), MSG_DONTWAIT | MSG_NOSIGNAL, (const sockaddr *)&from, from_length);
}

static int run(authenticator *self) {
    if (!configure(self) || !open_sockets(self))
        return 1;
    fflush(stdout);
    pid_t daemon = self->background ? detach() : 0;
    if (daemon < 0) {
        printf("daemon: %s\n", strerror(errno));
        take_sockets_away(self, self->count);
        return 1;
    }
    if (daemon > 0) {
        write_pid(daemon);
        return 0;
    }
    if (!self->background)
        write_pid(getpid());
    daemon_serve(self->sockets, self->count, serve, self);
    remove_pid();
    take_sockets_away(self, self->count);
    return 0;
}

int tool_hostapd(int argument_count, char *const *arguments) {
    authenticator *self = (authenticator *)calloc(1, sizeof *self);
    if (self == nullptr || !read_arguments(self, argument_count, arguments)) {
        free(self);
        return tool_usage("hostapd");
    }
    daemon_cut_ties();
    int status = run(self);
    free(self);
    return status;
}
