#include "simulator/tools/markers.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct marker {
    const char *tool;
    const char *text;
};

// Those of a tool in the order in which they are numbered.
static const marker markers[] = {
    {"ifconfig", "RX packets:"},
    {"ifconfig", "TX packets:"},
    {"ifconfig", "RX bytes:"},
    {"ifconfig", "TX bytes:"},
    {"wlanconfig", "HTCAPS"},
    {"apstats", "Rx errors  "},
    {"apstats", "Tx Unicast Data Packets "},
    {"apstats", "Tx Multi/Broadcast Data Packets "},
};

constexpr const char FAULT_WORD[] = "nomarkers";

static int marker_count(const char *tool) {
    int count = 0;
    for (const marker &candidate : markers)
        count += strcmp(candidate.tool, tool) == 0 ? 1 : 0;
    return count;
}

bool is_marker_fault(const char *tool, const char *value, int *number) {
    size_t length = strlen(FAULT_WORD);
    int count = marker_count(tool);
    if (count == 0 || strncmp(value, FAULT_WORD, length) != 0)
        return false;
    *number = 0;
    if (value[length] == '\0')
        return true;
    // One digit is enough for the longest list.
    if (value[length] != ' ' || strlen(value) != length + 2)
        return false;
    *number = value[length + 1] - '0';
    return *number >= 1 && *number <= count;
}

static void misspell(char *text, const char *wanted) {
    for (char *place = strstr(text, wanted); place != nullptr; place = strstr(place + 2, wanted)) {
        char first = place[0];
        place[0] = place[1];
        place[1] = first;
    }
}

static void misspell_markers(const char *tool, int wanted, char *text) {
    int number = 0;
    for (const marker &candidate : markers) {
        if (strcmp(candidate.tool, tool) == 0 && (++number == wanted || wanted == 0))
            misspell(text, candidate.text);
    }
}

int run_without_markers(const tool *called, int number, int argument_count, char *const *arguments) {
    char *text = nullptr;
    size_t length = 0;
    FILE *output = stdout;
    FILE *kept = open_memstream(&text, &length);
    if (kept == nullptr) {
        fprintf(stderr, "%s: %s\n", called->name, strerror(errno));
        return 1;
    }
    stdout = kept;
    int status = called->run(argument_count, arguments);
    stdout = output;
    fclose(kept);
    misspell_markers(called->name, number, text);
    fputs(text, stdout);
    free(text);
    return status;
}
