// Chooses the tool by name, writes the call to the journal, and lets a fault take the tool's place.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "simulator/daemons/black_list.h"
#include "simulator/daemons/measurement.h"
#include "simulator/daemons/processes.h"
#include "simulator/daemons/requests.h"
#include "simulator/faults.h"
#include "simulator/journal.h"
#include "simulator/paths.h"
#include "simulator/tools/driver_time.h"
#include "simulator/tools/markers.h"
#include "simulator/tools/tools.h"

// What a shell says and returns for a command that it does not find.
constexpr int STATUS_NOT_FOUND = 127;

static const tool tools[] = {
#define TOOL(name, function, path, usage) {name, function, path, usage, 0},
#define DAEMON(name, function, path, answer, usage) {name, function, path, usage, sizeof(answer)},
#include "simulator/tools/list.def"
#undef TOOL
};

const tool *tool_at(size_t number) {
    return number < sizeof tools / sizeof tools[0] ? &tools[number] : nullptr;
}

const tool *find_tool(const char *name) {
    for (const tool &candidate : tools) {
        if (strcmp(candidate.name, name) == 0)
            return &candidate;
    }
    return nullptr;
}

// The row of what was called, under its own name or, a daemon, with a number behind it.
static const tool *find_called(const char *name) {
    const tool *called = find_tool(name);
    for (const tool &candidate : tools) {
        if (called == nullptr && candidate.answer_size > 0 && is_name_of(candidate.name, name))
            called = &candidate;
    }
    return called;
}

int tool_usage(const char *name) {
    fprintf(stderr, "usage: %s %s\n", name, find_tool(name)->usage);
    return 1;
}

// A line that no reader of a tool's output expects: odd bytes, no marker, no end of line.
static void print_garbage(void) {
    static const char pattern[] = "\x01\xff%s%n:::\t==\x7f HT\x80 -- 99999999999999999999 ";
    for (int i = 0; i < 40; i++)
        fwrite(pattern, 1, sizeof pattern - 1, stdout);
}

// Obeys the fault of a tool. True when it took the tool's place; *status is then the exit status.
static bool obey_fault(const tool *called, int argument_count, char *const *arguments, int *status) {
    char value[FAULT_VALUE_SIZE];
    if (!fault_get(called->name, value, sizeof value))
        return false;
    if (called->answer_size > 0 && !daemon_is_absent(value))
        return false;
    double seconds;
    if (fault_slowness(value, &seconds)) {
        sleep_seconds(seconds);
        return false;
    }
    int marker;
    if (is_marker_fault(called->name, value, &marker)) {
        *status = run_without_markers(called, marker, argument_count, arguments);
        return true;
    }
    // Until somebody kills the process.
    while (strcmp(value, "hang") == 0)
        pause();
    *status = 0;
    if (strcmp(value, "fail") == 0) {
        fprintf(stderr, "%s: failed\n", called->name);
        *status = 1;
    } else if (strcmp(value, "missing") == 0) {
        fprintf(stderr, "%s: not found\n", called->name);
        *status = STATUS_NOT_FOUND;
    } else if (strcmp(value, "garbage") == 0) {
        print_garbage();
    }
    return true;
}

int main(int argument_count, char **arguments) {
    const char *name = program_invocation_short_name;
    const tool *called = find_called(name);
    if (called == nullptr) {
        fprintf(stderr, "%s is no tool of the simulated gateway\n", name);
        return STATUS_NOT_FOUND;
    }
    if (access(GATEWAY_JOURNAL, F_OK) != 0) {
        // Outside, /tmp and the processes would be the host's own.
        fprintf(stderr, "%s runs only inside the simulated gateway\n", called->name);
        return 1;
    }
    journal_run(name, argument_count - 1, arguments + 1);
    int status;
    if (!obey_fault(called, argument_count - 1, arguments + 1, &status))
        status = called->run(argument_count - 1, arguments + 1);
    return status;
}
