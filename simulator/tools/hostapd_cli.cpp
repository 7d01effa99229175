// hostapd_cli: asks the authenticator of an interface.
//
// The interface may stand behind its option with or without a blank. As with the real tool the exit status says only
// whether the authenticator could be asked, not what it answered.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "simulator/authenticator/bss.h"
#include "simulator/authenticator/control.h"
#include "simulator/tools/tools.h"

// The tool ends with -1 when there is nobody to ask.
constexpr int STATUS_NOBODY = 255;

// A command of the tool, and what it asks the authenticator for.
struct control_command {
    const char *name;
    const char *request;
    int arguments;  // how many it needs
};

static const control_command commands[] = {
    {"ping", "PING", 0},
    {"status", "STATUS", 0},
    {"get_config", "GET_CONFIG", 0},
    {"wps_pbc", "WPS_PBC", 0},
    {"wps_pin", "WPS_PIN", 2},
    {"wps_cancel", "WPS_CANCEL", 0},
    {"wps_status", "WPS_GET_STATUS", 0},
};

static const control_command *find_command(const char *name) {
    for (const control_command &candidate : commands) {
        if (strcmp(candidate.name, name) == 0)
            return &candidate;
    }
    return nullptr;
}

// The request with its arguments, a blank between two. False when that is more than the authenticator takes.
static bool compose(const control_command *called, int count, char *const *arguments, char *request, size_t size) {
    size_t length = (size_t)snprintf(request, size, "%s", called->request);
    for (int i = 0; i < count && length < size; i++)
        length += (size_t)snprintf(request + length, size - length, " %s", arguments[i]);
    return length < size;
}

static int ask(const char *interface, const control_command *called, int count, char *const *arguments) {
    char request[CONTROL_COMMAND_SIZE];
    char answer[BSS_ANSWER_SIZE];
    if (!compose(called, called->arguments > 0 ? count : 0, arguments, request, sizeof request)) {
        printf("Too long command.\n");
        return 0;
    }
    int socket = control_connect(interface);
    if (socket < 0) {
        fprintf(stderr, "Failed to connect to hostapd - wpa_ctrl_open: %s\n", strerror(errno));
        return STATUS_NOBODY;
    }
    if (control_request(socket, request, answer, sizeof answer))
        fputs(answer, stdout);
    else
        printf("'%s' command timed out.\n", called->request);
    close(socket);
    return 0;
}

// Takes the option's interface, whichever way it is written. Null when there is none.
static const char *take_interface(int *argument_count, char *const **arguments) {
    const char *option = *argument_count > 0 ? (*arguments)[0] : "";
    bool alone = strcmp(option, "-i") == 0;
    if (strncmp(option, "-i", 2) != 0 || *argument_count < (alone ? 2 : 1))
        return nullptr;
    const char *interface = alone ? (*arguments)[1] : option + 2;
    *arguments += alone ? 2 : 1;
    *argument_count -= alone ? 2 : 1;
    return interface;
}

int tool_hostapd_cli(int argument_count, char *const *arguments) {
    const char *interface = take_interface(&argument_count, &arguments);
    if (interface == nullptr || strchr(interface, '/') != nullptr || argument_count < 1)
        return tool_usage("hostapd_cli");
    const control_command *called = find_command(arguments[0]);
    if (called == nullptr) {
        printf("Unknown command '%s'\n", arguments[0]);
        return 0;
    }
    if (argument_count - 1 < called->arguments) {
        printf("Invalid '%s' command - at least %d arguments are required.\n", called->name, called->arguments);
        return 0;
    }
    return ask(interface, called, argument_count - 1, arguments + 1);
}
