// airtime: the list of stations that have an airtime weight of their own, kept in the driver's store.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/driver/airtime_list.h"
#include "simulator/paths.h"
#include "simulator/tools/tools.h"

// The store and the entries that stand in it.
struct airtime_list {
    store_text store;
    weighted_station stations[WEIGHTED_STATIONS];
    int count;
};

static int complain(const char *what) {
    fprintf(stderr, "airtime: %s: %s\n", what, strerror(errno));
    return 1;
}

static int refuse(const char *text, const char *why) {
    fprintf(stderr, "airtime: \"%s\" %s\n", text, why);
    return 1;
}

static int save(airtime_list *list) {
    bool saved = weighted_stations_write(&list->store, list->stations, list->count) == 0 &&
                 store_save(APCFG_STORE, &list->store) == 0;
    return saved ? 0 : complain(APCFG_STORE);
}

// Reads a decimal number from least to most; nothing may stand before or behind its digits.
static bool take_number(const char *text, int least, int most, int *number) {
    if (*text == '\0' || text[strspn(text, "0123456789")] != '\0')
        return false;
    errno = 0;
    long value = strtol(text, nullptr, 10);
    *number = (int)value;
    return errno == 0 && value >= least && value <= most;
}

static int delete_all(airtime_list *list, char *const *) {
    list->count = 0;
    return save(list);
}

static int print_count(airtime_list *list, char *const *) {
    printf("%d\n", list->count);
    return 0;
}

// add_sta MAC WEIGHT
static int add_station(airtime_list *list, char *const *operands) {
    weighted_station added = {};
    if (!octets_from_text(operands[0], added.mac))
        return refuse(operands[0], "is no address of 12 hex digits");
    if (!take_number(operands[1], 0, MOST_WEIGHT, &added.weight))
        return refuse(operands[1], "is no weight from 0 to 100");
    weighted_station *known = weighted_station_find(list->stations, list->count, added.mac);
    if (known == nullptr && list->count == WEIGHTED_STATIONS)
        return refuse(operands[0], "has no room in the list");
    if (known != nullptr)
        known->weight = added.weight;
    else
        list->stations[list->count++] = added;
    return save(list);
}

// del_sta MAC. Those behind it move up.
static int delete_station(airtime_list *list, char *const *operands) {
    uint8_t mac[MAC_OCTETS];
    if (!octets_from_text(operands[0], mac))
        return refuse(operands[0], "is no address of 12 hex digits");
    weighted_station *gone = weighted_station_find(list->stations, list->count, mac);
    if (gone == nullptr)
        return refuse(operands[0], "is not in the list");
    const weighted_station *end = list->stations + list->count--;
    memmove(gone, gone + 1, (size_t)(end - gone - 1) * sizeof *gone);
    return save(list);
}

// The entry of a number, null after a complaint.
static weighted_station *entry_of(airtime_list *list, const char *text) {
    int number = 0;
    if (take_number(text, 1, list->count, &number))
        return &list->stations[number - 1];
    refuse(text, "is no number of the list");
    return nullptr;
}

// sta_time NUMBER PERIOD
static int set_period(airtime_list *list, char *const *operands) {
    weighted_station *station = entry_of(list, operands[0]);
    if (station == nullptr)
        return 1;
    if (!take_number(operands[1], 0, INT32_MAX, &station->period))
        return refuse(operands[1], "is no period");
    return save(list);
}

// get_sta_time NUMBER
static int print_period(airtime_list *list, char *const *operands) {
    const weighted_station *station = entry_of(list, operands[0]);
    if (station == nullptr)
        return 1;
    printf("%d\n", station->period);
    return 0;
}

struct airtime_command {
    const char *name;
    int operands;
    int (*run)(airtime_list *list, char *const *operands);
};

static const airtime_command commands[] = {
    {"del_all_sta", 0, delete_all}, {"sta_count", 0, print_count}, {"add_sta", 2, add_station},
    {"del_sta", 1, delete_station}, {"sta_time", 2, set_period},   {"get_sta_time", 1, print_period},
};

// Runs a command on the list, with the lock held.
static int run_locked(const airtime_command *called, char *const *operands) {
    airtime_list list;
    int status;
    if (store_load(APCFG_STORE, &list.store) == 0) {
        list.count = weighted_stations_read(&list.store, list.stations);
        status = called->run(&list, operands);
    } else {
        status = complain(APCFG_STORE);
    }
    store_free(&list.store);
    return status;
}

int tool_airtime(int argument_count, char *const *arguments) {
    const airtime_command *called = nullptr;
    for (const airtime_command &candidate : commands) {
        if (argument_count == candidate.operands + 1 && strcmp(candidate.name, arguments[0]) == 0)
            called = &candidate;
    }
    if (called == nullptr)
        return tool_usage("airtime");
    int lock = store_lock(APCFG_LOCK);
    if (lock < 0)
        return complain(APCFG_LOCK);
    int status = run_locked(called, arguments + 1);
    close(lock);
    return status;
}
