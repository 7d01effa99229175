// vlk_simulated_gateway: a whole gateway on any Linux machine, in namespaces of its own.
//
// Two processes. The outer one reads options and scenario, enters the namespaces and waits. The inner one is the first
// process of the gateway: it builds the root, starts the daemons, runs the command, and takes the gateway with it when
// it ends. Nothing of the host is written, signalled or reached from inside. Where namespaces are refused proot carries
// the inner one (without_namespaces.h). See docs/simulated-gateway.md.
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/carrier.h"
#include "simulator/launcher/beginning.h"
#include "simulator/launcher/command.h"
#include "simulator/launcher/messages.h"
#include "simulator/launcher/namespaces.h"
#include "simulator/launcher/options.h"
#include "simulator/launcher/private_root.h"
#include "simulator/launcher/without_namespaces.h"
#include "simulator/paths.h"
#include "simulator/scenario.h"

// What the launcher was told, read and checked.
struct request {
    options given;
    kept_directories kept;
    char *text;  // of the scenario
    size_t length;
    scenario *scene;
};

static void find_kept(const options *given, kept_directories *kept) {
    // The build tree, or the prefix, which has the server's libraries too.
    char tree[PATH_MAX];
    set_beside(tree, given->home, "..");
    keep_visible(kept, tree);
    const char *const programs[] = {given->server, given->client, given->rpcbind, given->rpcinfo, given->tools};
    for (const char *program : programs) {
        char folder[PATH_MAX];
        snprintf(folder, sizeof folder, "%s", program);
        char *slash = strrchr(folder, '/');
        if (slash != nullptr && slash != folder) {
            *slash = '\0';
            keep_visible(kept, folder);
        }
    }
}

static gateway_programs programs_of(const options *given) {
    return {given->client, given->rpcbind, given->rpcinfo, given->tools};
}

// The inner process.

static int begin_and_run(const request *asked) {
    set_environment(&asked->given);
    if (!begin(&asked->given, asked->scene, asked->text, asked->length))
        return STATUS_NO_GATEWAY;
    return run_command(&asked->given);
}

static bool note_namespaces(void) {
    return (mkdir(GATEWAY_DIRECTORY, 0755) == 0 && carrier_write("", nullptr) == 0) ||
           complain(GATEWAY_DIRECTORY, strerror(errno));
}

static int run_in_namespaces(const request *asked) {
    gateway_programs programs = programs_of(&asked->given);
    umask(022);
    if (!enter_private_root(&asked->kept, &programs) || !set_up_network() || !note_namespaces())
        return STATUS_NO_GATEWAY;
    return begin_and_run(asked);
}

// Whoever loses its parent becomes a child of this process, as it would of the first one of a namespace.
static int run_inside_proot(const request *asked) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    int status = begin_and_run(asked);
    say_status(status);
    return status;
}

// The gateway must not outlive the launcher. `alive` reads as hung up once the launcher is gone, for the moment between
// the fork and the arming of the signal.
static void tie_to_launcher(int alive) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd launcher = {alive, POLLIN, 0};
    if (poll(&launcher, 1, 0) != 0)
        _exit(STATUS_NO_GATEWAY);
}

// The outer process.

// The inner process, or the keeper of one that proot carries; the latter ends when nobody holds the pipe any more.
static volatile pid_t inner_process;
static volatile int held_pipe = -1;

static void end_inner(int number) {
    if (held_pipe < 0) {
        kill(inner_process, SIGKILL);
    } else {
        close(held_pipe);
        waitpid(inner_process, nullptr, 0);
    }
    _exit(128 + number);
}

// Ctrl-C and Ctrl-\ are for the command, which has the terminal; an end of the launcher is the end of the gateway.
static void watch_signals(void) {
    struct sigaction action = {};
    action.sa_handler = SIG_IGN;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGQUIT, &action, nullptr);
    action.sa_handler = end_inner;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
}

static int wait_for_inner(void) {
    int status;
    while (waitpid(inner_process, &status, 0) < 0) {
        if (errno != EINTR)
            return STATUS_NO_GATEWAY;
    }
    return exit_status(status);
}

static char *read_scenario_text(const char *path, size_t *length) {
    FILE *file = fopen(path, "re");
    char *text = nullptr;
    if (file == nullptr) {
        complain(path, strerror(errno));
        return nullptr;
    }
    FILE *memory = open_memstream(&text, length);
    for (int byte = getc(file); memory != nullptr && byte != EOF; byte = getc(file))
        putc(byte, memory);
    fclose(file);
    if (memory != nullptr)
        fclose(memory);
    return text;
}

static pid_t start_in_namespaces(const request *asked, int alive[2]) {
    if (!enter_namespaces())
        return -1;
    pid_t inner = fork();
    if (inner < 0)
        refused("the first process of a pid namespace", "raise user.max_pid_namespaces with sysctl");
    if (inner == 0) {
        close(alive[1]);
        tie_to_launcher(alive[0]);
        exit(run_in_namespaces(asked));
    }
    return inner;
}

static int run_gateway(const request *asked) {
    char proot[PATH_MAX];
    int alive[2];
    gateway_programs programs = programs_of(&asked->given);
    if (pipe2(alive, O_CLOEXEC) != 0)
        return STATUS_NO_GATEWAY;
    if (find_proot(proot) && namespaces_are_refused()) {
        fputs("vlk_simulated_gateway: namespaces are refused here; proot carries this run\n", stderr);
        inner_process =
            start_without_namespaces(proot, &asked->given, &asked->kept, &programs, asked->text, asked->length, alive);
        held_pipe = alive[1];
    } else {
        inner_process = start_in_namespaces(asked, alive);
    }
    if (inner_process < 0)
        return STATUS_NO_GATEWAY;
    close(alive[0]);
    watch_signals();
    int status = wait_for_inner();
    if (strcmp(asked->given.command[0], "shell") == 0)
        take_terminal(getpgrp());
    return status;
}

// Reads scenario and options. False after saying what is wrong.
static bool read_request(request *asked, int argument_count, char **arguments) {
    char error[SCENARIO_ERROR_SIZE];
    if (!options_read(&asked->given, argument_count, arguments))
        return false;
    asked->text = read_scenario_text(asked->given.scenario, &asked->length);
    if (asked->text == nullptr)
        return false;
    asked->scene = scenario_parse(asked->given.scenario, asked->text, asked->length, error, sizeof error);
    if (asked->scene == nullptr)
        fprintf(stderr, "%s\n", error);
    return asked->scene != nullptr;
}

int main(int argument_count, char **arguments) {
    static request asked;
    bool inside = is_inside_without_namespaces();
    if (!read_request(&asked, argument_count, arguments))
        return STATUS_NO_GATEWAY;
    if (inside)
        return run_inside_proot(&asked);
    find_kept(&asked.given, &asked.kept);
    return run_gateway(&asked);
}
