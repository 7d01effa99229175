// wifitool: what the driver says about band steering on an interface, and the emptying of its temporary black list.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/driver_parameters.h"
#include "simulator/driver/steering_tables.h"
#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

// The tool ends with -1 when the driver refuses.
constexpr int STATUS_REFUSED = 255;

static int clear_black_list(const interface *wanted) {
    if (blacklist2g_clear(wanted->name) == 0)
        return 0;
    fprintf(stderr, "wifitool: %s: %s\n", wanted->name, strerror(errno));
    return STATUS_REFUSED;
}

// What the driver was started with counts until its next start. When the settings want something else by now, the words
// "need to" say so; readers look for them in the first 128 bytes, and they stand in no other answer.
static int print_status(const interface *wanted) {
    char setting[SETTING_VALUE_SIZE];
    char started[PARAMETER_VALUE_SIZE];
    interface_setting(wanted, "BS_BSS_ENABLE", setting, sizeof setting);
    driver_parameter_get(driver_parameter_find("bandsteering"), wanted->name, started);
    int wants = atoi(setting);
    if (wants != 0 && wants != atoi(started))
        printf("%s: band steering %d is set, the driver has %s: need to up the interface\n", wanted->name, wants,
               started);
    else
        printf("%s: band steering is %s\n", wanted->name, atoi(started) != 0 ? "enabled" : "disabled");
    printf("5 GHz capable stations: %d\n", capable5g_count(wanted->name));
    printf("2.4 GHz temporary black list: %d\n", blacklist2g_read(wanted->name, nullptr, 0));
    return 0;
}

struct command {
    const char *name;
    int (*run)(const interface *wanted);
};

static const command commands[] = {
    {"clr_tmpblacklist2g", clear_black_list},
    {"bandsteering_status", print_status},
};

int tool_wifitool(int argument_count, char *const *arguments) {
    const command *called = nullptr;
    for (const command &candidate : commands) {
        if (argument_count == 2 && strcmp(candidate.name, arguments[1]) == 0)
            called = &candidate;
    }
    if (called == nullptr)
        return tool_usage("wifitool");
    interface wanted;
    int status = STATUS_REFUSED;
    if (interface_find(&wanted, arguments[0]))
        status = called->run(&wanted);
    else
        fprintf(stderr, "wifitool: %s: %s\n", arguments[0], strerror(ENODEV));
    interface_free(&wanted);
    return status;
}
