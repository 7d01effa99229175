// iwlist: which channels an interface's radio has, in the words of the tool of its time.
#include <stdio.h>
#include <string.h>
#include <strings.h>

#include <linux/wireless.h>

#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

static void print_channels(const interface *wanted) {
    const scenario_radio *radio = interface_radio(wanted);
    char frequency[16];
    printf("%-8.16s  %d channels in total; available frequencies :\n", wanted->name, radio->channel_count);
    // The record that a driver answers the tool with has no room for more, only for their number.
    for (int i = 0; i < radio->channel_count && i < IW_MAX_FREQUENCIES; i++) {
        frequency_text(radio->channels[i].frequency, frequency, sizeof frequency);
        printf("          Channel %.2u : %s GHz\n", radio->channels[i].number, frequency);
    }
    const scenario_channel *current = scenario_find_channel(radio, interface_channel(wanted));
    if (current != nullptr) {
        frequency_text(current->frequency, frequency, sizeof frequency);
        printf("          Current Frequency:%s GHz (Channel %u)\n", frequency, current->number);
    }
    fputs("\n", stdout);
}

// Status 0 also without such an interface, as the tool has it: it looked, and there was nothing to list.
static int list_channels(const char *name) {
    interface wanted;
    if (interface_find(&wanted, name))
        print_channels(&wanted);
    else
        fprintf(stderr, "%-8.16s  no frequency information.\n\n", name);
    interface_free(&wanted);
    return 0;
}

static int list_all(void) {
    driver_state state;
    driver_state_read(&state);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        char name[16];
        snprintf(name, sizeof name, "ath%d", i);
        if (state.vaps[i].up)
            list_channels(name);
    }
    return 0;
}

// The tool takes the beginning of a command's name for the whole.
static bool is_channel_list(const char *command) {
    size_t length = strlen(command);
    return length > 0 &&
           (strncasecmp("frequency", command, length) == 0 || strncasecmp("channel", command, length) == 0);
}

int tool_iwlist(int argument_count, char *const *arguments) {
    if (argument_count < 1)
        return tool_usage("iwlist");
    const char *command = arguments[argument_count > 1 ? 1 : 0];
    if (!is_channel_list(command)) {
        fprintf(stderr, "iwlist: unknown command `%s' (check 'iwlist --help').\n", command);
        return 1;
    }
    if (argument_count > 2) {
        fprintf(stderr, "iwlist: command `%s' needs fewer arguments (max 0)\n", command);
        return 1;
    }
    return argument_count > 1 ? list_channels(arguments[0]) : list_all();
}
