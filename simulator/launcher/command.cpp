#include "simulator/launcher/command.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "simulator/carrier.h"
#include "simulator/launcher/messages.h"

static const char GREETING[] =
    "A simulated gateway, carried by %s: its own processes, network and /tmp; your files are here%s.\n"
    "  vlk_rpc_wlan_config_client getSsid 1      ask the server        (list, help OPERATION)\n"
    "  tail -f /run/gateway/journal              watch what it does    (server.log beside it)\n"
    "  fault iwconfig slow 2                     make the platform fail (fault: list, fault off)\n"
    "  exit                                      end it all\n";

static const char SHELL_START[] = "PS1='gateway:\\w\\$ '\n";
static const char PLAIN_SHELL_START[] = "PS1='gateway$ '\n";

void take_terminal(pid_t group) {
    signal(SIGTTOU, SIG_IGN);
    tcsetpgrp(STDIN_FILENO, group);
    signal(SIGTTOU, SIG_DFL);
}

[[noreturn]] static void become_shell(void) {
    static const char start[] = "/run/gateway/shellrc";
    const char *shell = getenv("SHELL");
    if (shell == nullptr || access(shell, X_OK) != 0)
        shell = "/bin/sh";
    const char *slash = strrchr(shell, '/');
    bool bash = strcmp(slash != nullptr ? slash + 1 : shell, "bash") == 0;
    const char *text = bash ? SHELL_START : PLAIN_SHELL_START;
    FILE *file = fopen(start, "we");
    if (file != nullptr) {
        fputs(text, file);
        fclose(file);
    }
    // A shell hands the terminal back to the group it started in, which must be one that it can see in its namespace.
    setpgid(0, 0);
    take_terminal(getpid());
    carrier self;
    bool by_proot = carrier_read(&self);
    printf(GREETING, by_proot ? "proot" : "namespaces", by_proot ? " too, take care" : ", read-only");
    fflush(stdout);
    if (bash)
        execl(shell, "bash", "--rcfile", start, "-i", (char *)nullptr);
    setenv("ENV", start, 1);
    execl(shell, shell, "-i", (char *)nullptr);
    complain(shell, strerror(errno));
    _exit(127);
}

[[noreturn]] static void become_command(const options *given) {
    if (chdir(given->work) != 0 && chdir("/") != 0)
        complain("/", strerror(errno));
    if (strcmp(given->command[0], "shell") == 0)
        become_shell();
    if (strcmp(given->command[0], "tour") == 0) {
        char script[PATH_MAX];
        set_beside(script, given->parts, "tour.sh");
        execl("/bin/sh", "sh", script, (char *)nullptr);
        complain(script, strerror(errno));
    } else {
        execvp(given->command[1], given->command + 1);
        complain(given->command[1], strerror(errno));
    }
    _exit(127);
}

int exit_status(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

int run_command(const options *given) {
    pid_t command = fork();
    if (command == 0)
        become_command(given);
    int status = 0;
    while (command > 0) {
        pid_t ended = wait(&status);
        if (ended == command)
            return exit_status(status);
        if (ended < 0 && errno != EINTR)
            break;
    }
    complain("fork", strerror(errno));
    return STATUS_NO_GATEWAY;
}
