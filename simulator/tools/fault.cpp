// fault: switches the platform's faults on and off.
#include <ctype.h>
#include <dirent.h>
#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/daemons/processes.h"
#include "simulator/daemons/requests.h"
#include "simulator/faults.h"
#include "simulator/internal_address.h"
#include "simulator/paths.h"
#include "simulator/preload/requests.h"
#include "simulator/tools/held_lock.h"
#include "simulator/tools/markers.h"
#include "simulator/tools/tools.h"

// What a fault of this name may be set to.
enum fault_kind {
    FAULT_UNKNOWN,
    FAULT_TOOL,
    FAULT_DAEMON,
    FAULT_ERRNO,
    FAULT_NUMBER,
    FAULT_WORD,
    FAULT_ADDRESS,
    FAULT_LOCK
};

// A fault whose value is a word, and one such word; the first of a fault is the usual one.
struct word_fault {
    const char *name, *value;
};

static const word_fault word_faults[] = {
    {TEXTS_FAULT, "unterminated"},
    {AIRTIME_FULL_FAULT, "on"},
    {AIRTIME_FULL_FAULT, AIRTIME_FULL_OF_STATIONS},
    {STORE_LOCK_FAULT, STORE_LOCK_HELD},
};

static const word_fault *find_word_fault(const char *name) {
    for (const word_fault &candidate : word_faults) {
        if (strcmp(candidate.name, name) == 0)
            return &candidate;
    }
    return nullptr;
}

static bool is_word_of(const char *name, const char *value) {
    for (const word_fault &candidate : word_faults) {
        if (strcmp(candidate.name, name) == 0 && strcmp(candidate.value, value) == 0)
            return true;
    }
    return false;
}

// A fault that is a number: which ones it may be, and which one it is when nobody says it.
struct number_fault {
    const char *name;
    int64_t least, most;
    const char *usual;
};

// Nobody's clock is wrong by more than a century, in seconds.
constexpr int64_t CENTURY = 100LL * 366 * 86400;

// Counts are words of 32 bits, that of an airtime table of 16, which their reader may take for numbers with a sign. The
// usual ones are: more networks than a byte can say, as many stations as can be told, as many entries as a byte can
// say, a scan that does not end. A negative status would be a failure, which has a fault of its own.
static const number_fault number_faults[] = {
    {BLACKLIST_FAULT, 0, UINT32_MAX, "4294967295"},
    {SCAN_COUNT_FAULT, INT32_MIN, UINT32_MAX, "300"},
    {STATION_COUNT_FAULT, INT32_MIN, UINT32_MAX, "127"},
    {TABLE_COUNT_FAULT, INT32_MIN, UINT32_MAX, "255"},
    {SCAN_STATUS_FAULT, 0, INT32_MAX, "1"},
    {AIRTIME_COUNT_FAULT, INT16_MIN, UINT16_MAX, "65535"},
    {CLOCK_FAULT, -CENTURY, CENTURY, "86400"},
};

static const number_fault *find_number_fault(const char *name) {
    for (const number_fault &candidate : number_faults) {
        if (strcmp(candidate.name, name) == 0)
            return &candidate;
    }
    return nullptr;
}

// What tells the driver's own requests apart: their command, or the length of data that is no command.
static const unsigned driver_request_parts[] = {COMMAND_SCAN_STATUS,   COMMAND_SCAN_COUNT,    COMMAND_SCAN_RESULTS,
                                                COMMAND_STATION_COUNT, COMMAND_STATION_TABLE, STATION_AIRTIME_LENGTH,
                                                AIRTIME_TABLE_LENGTH};

static bool is_driver_request_part(unsigned long number) {
    for (unsigned part : driver_request_parts) {
        if (part == number)
            return true;
    }
    return false;
}

// "ioctl:0x8be7" and "ioctl:0x89fc.41", rewritten in their one spelling.
static fault_kind kind_of_ioctl(char *name, size_t size) {
    char *end;
    errno = 0;
    unsigned long request = strtoul(name + 6, &end, 0);
    if (errno != 0 || request > 0xFFFFFFFF)
        return FAULT_UNKNOWN;
    if (*end == '\0') {
        ioctl_fault_name(request, name, size);
        return FAULT_ERRNO;
    }
    if (request != REQUEST_DRIVER || *end != '.' || !isdigit((unsigned char)end[1]))
        return FAULT_UNKNOWN;
    unsigned long part = strtoul(end + 1, &end, 10);
    if (*end != '\0' || !is_driver_request_part(part))
        return FAULT_UNKNOWN;
    ioctl_part_fault_name(request, (unsigned)part, name, size);
    return FAULT_ERRNO;
}

// The kind of a fault; an ioctl's name is rewritten in its one spelling.
static fault_kind kind_of(char *name, size_t size) {
    if (strcmp(name, "popen") == 0 || strcmp(name, "system") == 0)
        return FAULT_ERRNO;
    if (strcmp(name, "address") == 0)
        return FAULT_ADDRESS;
    if (strcmp(name, STORE_LOCK_FAULT) == 0)
        return FAULT_LOCK;
    if (find_word_fault(name) != nullptr)
        return FAULT_WORD;
    if (find_number_fault(name) != nullptr)
        return FAULT_NUMBER;
    if (strncmp(name, "ioctl:", 6) == 0 && isdigit((unsigned char)name[6]))
        return kind_of_ioctl(name, size);
    // This tool itself always works, or a fault could not be taken back.
    const tool *named = strcmp(name, "fault") != 0 ? find_tool(name) : nullptr;
    if (named == nullptr)
        return FAULT_UNKNOWN;
    return named->answer_size > 0 ? FAULT_DAEMON : FAULT_TOOL;
}

static bool is_tool_fault(const char *name, const char *value) {
    double seconds;
    int marker;
    return is_marker_fault(name, value, &marker) || strcmp(value, "silent") == 0 || strcmp(value, "fail") == 0 ||
           strcmp(value, "garbage") == 0 || strcmp(value, "missing") == 0 || strcmp(value, "hang") == 0 ||
           fault_slowness(value, &seconds);
}

static bool is_number(const number_fault *fault, const char *value) {
    char *end;
    errno = 0;
    int64_t number = strtoll(value, &end, 10);
    const char *digits = value[0] == '-' ? value + 1 : value;
    return isdigit((unsigned char)digits[0]) && *end == '\0' && errno == 0 && number >= fault->least &&
           number <= fault->most;
}

static int complain(const char *what) {
    fprintf(stderr, "fault: %s: %s\n", what, strerror(errno));
    return 1;
}

// The internal address is a piece of the kernel's state, not a switch that somebody asks for: it goes at once, and
// comes back with "off" or with the next apup.
static int change_address(const char *value) {
    bool off = strcmp(value, "off") == 0;
    if (!off && strcmp(value, "missing") != 0) {
        fprintf(stderr, "fault: the address is \"missing\" or \"off\"\n");
        return 1;
    }
    return (off ? internal_address_add() : internal_address_remove()) == 0 ? 0 : complain("address");
}

static bool is_value(fault_kind kind, const char *name, const char *value) {
    daemon_fault fault;
    switch (kind) {
        case FAULT_TOOL:
            return is_tool_fault(name, value);
        case FAULT_DAEMON:
            return daemon_is_absent(value) || daemon_fault_parse(value, find_tool(name)->answer_size, &fault);
        case FAULT_NUMBER:
            return is_number(find_number_fault(name), value);
        case FAULT_WORD:
        case FAULT_LOCK:
            return is_word_of(name, value);
        case FAULT_ERRNO:
            return errno_by_name(value) != 0;
        case FAULT_ADDRESS:
        case FAULT_UNKNOWN:
            break;
    }
    return false;
}

// A lock that is held needs somebody who holds it.
static int switch_on(fault_kind kind, const char *name, const char *value) {
    return kind == FAULT_LOCK ? held_lock_begin() : fault_set(name, value);
}

static int switch_off(fault_kind kind, const char *name) {
    return kind == FAULT_LOCK ? held_lock_end() : fault_clear(name);
}

static int change(const char *given, const char *value) {
    char name[FAULT_NAME_SIZE];
    snprintf(name, sizeof name, "%s", given);
    fault_kind kind = strlen(given) < sizeof name ? kind_of(name, sizeof name) : FAULT_UNKNOWN;
    if (kind == FAULT_UNKNOWN) {
        fprintf(stderr, "fault: there is no fault \"%s\"\n", given);
        return 1;
    }
    if (kind == FAULT_ADDRESS)
        return change_address(value);
    if (strcmp(value, "off") == 0)
        return switch_off(kind, name) == 0 ? 0 : complain(name);
    if (strlen(value) >= FAULT_VALUE_SIZE || !is_value(kind, name, value)) {
        fprintf(stderr, "fault: \"%s\" is no value for %s\n", value, name);
        return 1;
    }
    if (switch_on(kind, name, value) != 0)
        return complain(name);
    // A daemon that cannot be started is one that is not there.
    if (kind == FAULT_DAEMON && daemon_is_absent(value))
        end_processes(name);
    return 0;
}

// Calls `visit` for each fault that is on.
static int each_fault(int (*visit)(const char *name)) {
    DIR *directory = opendir(GATEWAY_FAULTS);
    if (directory == nullptr)
        return complain(GATEWAY_FAULTS);
    int failed = 0;
    while (const dirent *entry = readdir(directory)) {
        if (entry->d_name[0] != '.')
            failed |= visit(entry->d_name);
    }
    closedir(directory);
    return failed == 0 ? 0 : 1;
}

static int print_fault(const char *name) {
    char value[FAULT_VALUE_SIZE];
    if (fault_get(name, value, sizeof value))
        printf("%s %s\n", name, value);
    return 0;
}

// "slow 2" may come as two words.
static const char *join(int argument_count, char *const *arguments, char *value, size_t size) {
    value[0] = '\0';
    for (int i = 0; i < argument_count; i++) {
        size_t have = strlen(value);
        snprintf(value + have, size - have, "%s%s", i > 0 ? " " : "", arguments[i]);
    }
    return value;
}

// What it means to name a fault only: "this one does not work".
static const char *shortest_value(const char *name) {
    if (find_tool(name) != nullptr)
        return "fail";
    if (strcmp(name, "address") == 0)
        return "missing";
    const word_fault *word = find_word_fault(name);
    if (word != nullptr)
        return word->value;
    const number_fault *number = find_number_fault(name);
    return number != nullptr ? number->usual : "EIO";
}

int tool_fault(int argument_count, char *const *arguments) {
    if (argument_count == 0)
        return each_fault(print_fault);
    if (argument_count == 1 && strcmp(arguments[0], "off") == 0)
        return each_fault(fault_clear);
    if (argument_count > 3)
        return tool_usage("fault");
    // Room for one character more than a value may have, so that a cut value is seen as too long.
    char value[FAULT_VALUE_SIZE + 1];
    if (argument_count > 1)
        return change(arguments[0], join(argument_count - 1, arguments + 1, value, sizeof value));
    return change(arguments[0], shortest_value(arguments[0]));
}
