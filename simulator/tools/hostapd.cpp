// hostapd: the authenticator, as far as others see it: a process of that name that stays until it is killed.
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "simulator/tools/tools.h"

// Cuts every tie to the process that called, so that neither its pipes nor its terminal wait for the daemon.
static int detach(void) {
    pid_t child = fork();
    if (child != 0)
        return child;
    setsid();
    if (chdir("/") != 0)
        return -1;
    int null = open("/dev/null", O_RDWR);
    for (int i = 0; i < 3; i++)
        dup2(null, i);
    close_range(3, ~0U, 0);
    return 0;
}

static void serve_until_killed(void) {
    while (true)
        pause();
}

int tool_hostapd(int argument_count, char *const *arguments) {
    bool background = false;
    int configurations = 0;
    for (int i = 0; i < argument_count; i++) {
        if (strcmp(arguments[i], "-B") == 0)
            background = true;
        else if (strcmp(arguments[i], "-e") == 0 && i + 1 < argument_count)
            i++;  // the file that keeps entropy is not needed here
        else if (arguments[i][0] == '-')
            return tool_usage("hostapd");
        else
            configurations++;
    }
    if (configurations == 0)
        return tool_usage("hostapd");
    if (background) {
        int child = detach();
        if (child != 0) {
            if (child < 0)
                fprintf(stderr, "hostapd: %s\n", strerror(errno));
            return child > 0 ? 0 : 1;
        }
    }
    serve_until_killed();
    return 0;
}
