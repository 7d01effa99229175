// iwpriv: the driver's private commands, in the words of the tool of its time.
//
// The tool itself knows no command: it asks the driver which ones an interface has, with which arguments, and prints
// what comes back. So the table here is the driver's. What a command sets is in force at once and lost when the driver
// is taken down; driver_parameters keeps it.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/driver_parameters.h"
#include "simulator/driver/mac_filter.h"
#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

// The tool ends with -1, whatever is wrong.
constexpr int STATUS_REFUSED = 255;

// A beacon's interval is counted in units of 1024 microseconds; without a setting it is 100 of them.
constexpr double BEACON_UNIT_SECONDS = 0.001024;
constexpr int BEACON_INTERVAL = 100;

// One byte of an announcement counts the beacons that are left; 0 to 3 stand for 20, 40, 80 and 160 MHz.
constexpr long MOST_BEACONS = 255;
constexpr long WIDEST_CHANNEL = 3;

enum value_kind { NOTHING, NUMBERS, TEXT, ADDRESSES };

// A private command of the driver.
struct private_command {
    const char *name;
    bool of_radio;  // wifiN has it, else athN
    int arguments;  // how many it takes, and what they are
    value_kind takes;
    value_kind answers;
    unsigned request;  // the ioctl behind it, which the tool names when it fails
    // Returns 0, or the error number with which the driver refuses; then nothing was printed.
    int (*run)(const private_command *called, const char *interface, char *const *arguments);
};

// What the tool writes in front of an answer.
static void print_name(const private_command *called, const char *interface) {
    printf("%-8.16s  %s:", interface, called->name);
}

static int set_parameter(const private_command *called, const char *interface, char *const *arguments) {
    const driver_parameter *parameter = driver_parameter_find(called->name);
    char value[PARAMETER_VALUE_SIZE];
    if (!driver_parameter_take(parameter, arguments[0], value))
        return EINVAL;
    return driver_parameter_set(parameter, interface, value) == 0 ? 0 : errno;
}

static int get_parameter(const private_command *called, const char *interface, char *const *) {
    char value[PARAMETER_VALUE_SIZE];
    driver_parameter_get(driver_parameter_find(called->name), interface, value);
    print_name(called, interface);
    // Two blanks behind every number, none behind a text.
    printf("%s%s\n", value, called->answers == NUMBERS ? "  " : "");
    return 0;
}

// A policy is kept; to flush and to detach are things to do, and detaching ends the policy.
static int set_maccmd(const private_command *called, const char *interface, char *const *arguments) {
    const driver_parameter *parameter = driver_parameter_find(called->name);
    char value[PARAMETER_VALUE_SIZE];
    if (!driver_parameter_take(parameter, arguments[0], value))
        return EINVAL;
    int number = atoi(value);
    if (number >= MACCMD_FLUSH && mac_filter_flush(interface) != 0)
        return errno;
    if (number == MACCMD_FLUSH)
        return 0;
    return driver_parameter_set(parameter, interface, number == MACCMD_DETACH ? "0" : value) == 0 ? 0 : errno;
}

static int add_mac(const private_command *, const char *interface, char *const *arguments) {
    return mac_filter_add(interface, arguments[0]) == 0 ? 0 : errno;
}

static int delete_mac(const private_command *, const char *interface, char *const *arguments) {
    return mac_filter_remove(interface, arguments[0]) == 0 ? 0 : errno;
}

// One address a line, each below the one before.
static int get_macs(const private_command *called, const char *interface, char *const *) {
    char *list = mac_filter_list(interface);
    if (list == nullptr)
        return ENOMEM;
    print_name(called, interface);
    char *rest = nullptr;
    char *mac = strtok_r(list, " ", &rest);
    printf("%s\n", mac != nullptr ? mac : "");
    while (mac != nullptr && (mac = strtok_r(nullptr, " ", &rest)) != nullptr)
        printf("           %*s%s\n", (int)strlen(called->name), "", mac);
    free(list);
    return 0;
}

static bool take_number(const char *text, long most, long *number) {
    char *end;
    errno = 0;
    *number = strtol(text, &end, 0);
    return end != text && errno == 0 && *number >= 0 && *number <= most;
}

// The time between two beacons of an interface.
static double beacon_seconds(const interface *wanted) {
    char value[SETTING_VALUE_SIZE];
    interface_setting(wanted, "BEACON_INT", value, sizeof value);
    int interval = atoi(value);
    return (interval > 0 ? interval : BEACON_INTERVAL) * BEACON_UNIT_SECONDS;
}

// CHANNEL COUNT WIDTH: so many beacons announce the switch, then the radio moves. The width is what the stations are
// told; the radio's own follows from the store.
static int switch_channel(const private_command *, const char *name, char *const *arguments) {
    long channel, count, width;
    interface wanted;
    int refused = EINVAL;
    if (interface_find(&wanted, name) && take_number(arguments[0], SCENARIO_CHANNELS, &channel) &&
        take_number(arguments[1], MOST_BEACONS, &count) && take_number(arguments[2], WIDEST_CHANNEL, &width) &&
        scenario_find_channel(interface_radio(&wanted), (unsigned)channel) != nullptr) {
        double seconds = (double)count * beacon_seconds(&wanted);
        refused = interface_move(&wanted, (unsigned)channel, seconds) == 0 ? 0 : errno;
    }
    interface_free(&wanted);
    return refused;
}

// clang-format off
static const private_command commands[] = {
    {"txchainmask",     true,  1, NUMBERS,   NOTHING,   0x8BE0, set_parameter},
    {"get_txchainmask", true,  0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"rxchainmask",     true,  1, NUMBERS,   NOTHING,   0x8BE0, set_parameter},
    {"get_rxchainmask", true,  0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"ssidqos_ena",     true,  1, NUMBERS,   NOTHING,   0x8BE0, set_parameter},
    {"get_ssidqos_ena", true,  0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"ssidqos_lvl",     false, 1, TEXT,      NOTHING,   0x8BE2, set_parameter},
    {"get_ssidqos_lvl", false, 0, NOTHING,   TEXT,      0x8BE3, get_parameter},
    {"l2tif",           false, 1, NUMBERS,   NOTHING,   0x8BE0, set_parameter},
    {"get_l2tif",       false, 0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"inact",           false, 1, NUMBERS,   NOTHING,   0x8BE0, set_parameter},
    {"get_inact",       false, 0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"maccmd",          false, 1, NUMBERS,   NOTHING,   0x8BE0, set_maccmd},
    {"get_maccmd",      false, 0, NOTHING,   NUMBERS,   0x8BE1, get_parameter},
    {"addmac",          false, 1, ADDRESSES, NOTHING,   0x8BEA, add_mac},
    {"delmac",          false, 1, ADDRESSES, NOTHING,   0x8BEC, delete_mac},
    {"getmac",          false, 0, NOTHING,   ADDRESSES, 0x8BEB, get_macs},
    {"doth_ch_chwidth", false, 3, NUMBERS,   NOTHING,   0x8BE8, switch_channel},
};
// clang-format on

static const private_command *find_command(const char *name, bool of_radio) {
    for (const private_command &candidate : commands) {
        if (candidate.of_radio == of_radio && strcmp(candidate.name, name) == 0)
            return &candidate;
    }
    return nullptr;
}

// Arguments beyond those that a command takes are passed over, as the tool does. It complains on standard output about
// what it refuses itself; here everything that is no answer goes to standard error.
static bool check_arguments(const private_command *called, int count, char *const *arguments) {
    char mac[MAC_TEXT_SIZE];
    if (called->takes == ADDRESSES && count > 0 && !copy_mac(arguments[0], mac)) {
        fprintf(stderr, "Invalid address [%s]...\n", arguments[0]);
        return false;
    }
    if (count < called->arguments) {
        fprintf(stderr, "The command %s needs exactly %d argument(s)...\n", called->name, called->arguments);
        return false;
    }
    return true;
}

static int run_command(const char *interface, const char *name, int count, char *const *arguments) {
    const private_command *called = find_command(name, radio_of_device(interface) >= 0);
    if (called == nullptr) {
        fprintf(stderr, "Invalid command : %s\n", name);
        return STATUS_REFUSED;
    }
    if (!check_arguments(called, count, arguments))
        return STATUS_REFUSED;
    int refused = called->run(called, interface, arguments);
    if (refused != 0) {
        fprintf(stderr, "Interface doesn't accept private ioctl...\n%s (%X): %s\n", name, called->request,
                strerror(refused));
        return STATUS_REFUSED;
    }
    return 0;
}

static bool has_commands(const char *interface) {
    driver_state state;
    driver_state_read(&state);
    if (driver_has_interface(&state, interface))
        return true;
    fprintf(stderr, "%-8.16s  no private ioctls.\n\n", interface);
    return false;
}

static void list_commands(const char *interface) {
    static const char *const kinds[] = {"     ", "int  ", "char ", "addr "};
    printf("%-8.16s  Available private ioctls :\n", interface);
    for (const private_command &row : commands) {
        if (row.of_radio == (radio_of_device(interface) >= 0))
            printf("          %-16.16s (%04X) : set %3d %s & get %3d %s\n", row.name, row.request, row.arguments,
                   kinds[row.takes], row.answers != NOTHING ? 1 : 0, kinds[row.answers]);
    }
    printf("\n");
}

int tool_iwpriv(int argument_count, char *const *arguments) {
    if (argument_count < 1)
        return tool_usage("iwpriv");
    bool there = has_commands(arguments[0]);
    if (there && argument_count > 1)
        return run_command(arguments[0], arguments[1], argument_count - 2, arguments + 2);
    if (there)
        list_commands(arguments[0]);
    // To list what is not there is no failure to the tool.
    return there || argument_count == 1 ? 0 : STATUS_REFUSED;
}
