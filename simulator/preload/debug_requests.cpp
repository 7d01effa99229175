// The debug requests: reading the temporary black list of an interface, and forgetting its 5 GHz capable stations.
#include <errno.h>
#include <math.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/steering_tables.h"
#include "simulator/faults.h"
#include "simulator/preload/caller_memory.h"
#include "simulator/preload/requests.h"
#include "simulator/scenario.h"

// Commands.
constexpr uint8_t READ_BLACK_LIST = 87;
constexpr uint8_t FORGET_CAPABLE_STATIONS = 89;

// The request as it lies in the caller's memory.
struct [[gnu::packed]] debug_request {
    uint8_t command;
    uint8_t mac[6];
    uint32_t index;
    uint32_t size;     // of the caller's buffer
    uint32_t address;  // of the caller's buffer
    uint8_t rest[192];
};
static_assert(sizeof(debug_request) == 211);

// An entry of the black list as the caller gets it.
struct list_entry {
    uint8_t mac[6];
    uint8_t reason;
    int8_t rssi;            // dB over noise
    uint32_t seconds_left;  // rounded up
    uint8_t zero[20];
};
static_assert(sizeof(list_entry) == 32);

// What the caller has written into his buffer: to fetch entries he says how many, and 1.
struct buffer_head {
    uint32_t count;
    uint32_t fetches;
};

// The place in the buffer that an offset leads to.
static void *place(const debug_request *request, uint64_t offset) {
    return caller_place(request->address, offset);
}

static uint32_t entries_told(const char *interface) {
    char value[FAULT_VALUE_SIZE];
    if (fault_get(BLACKLIST_FAULT, value, sizeof value))
        return (uint32_t)strtoul(value, nullptr, 10);
    return (uint32_t)blacklist2g_read(interface, nullptr, 0);
}

static void fill_entry(const blacklist_entry *known, list_entry *entry) {
    mac_octets(known->mac, entry->mac);
    entry->reason = (uint8_t)known->reason;
    entry->rssi = (int8_t)known->rssi;
    entry->seconds_left = (uint32_t)ceil(known->seconds_left);
}

// Fills so many entries from the buffer's start, zeros where the list has no more.
static int write_entries(const debug_request *request, const blacklist_entry *known, int known_count, uint32_t count) {
    int reason = 0;
    for (uint32_t i = 0; i < count && reason == 0; i++) {
        list_entry entry = {};
        if (i < (uint32_t)known_count)
            fill_entry(&known[i], &entry);
        reason = move_bytes(&entry, place(request, (uint64_t)i * sizeof entry), sizeof entry);
    }
    return reason;
}

static int fetch_entries(const char *interface, const debug_request *request, uint32_t wanted) {
    uint32_t room = request->size / (uint32_t)sizeof(list_entry);
    blacklist_entry *known = (blacklist_entry *)calloc(SCENARIO_BLACKLISTED, sizeof *known);
    if (known == nullptr)
        return ENOMEM;
    int known_count = blacklist2g_read(interface, known, SCENARIO_BLACKLISTED);
    if (known_count > SCENARIO_BLACKLISTED)
        known_count = SCENARIO_BLACKLISTED;
    int reason = write_entries(request, known, known_count, wanted < room ? wanted : room);
    free(known);
    return reason;
}

// The first request asks for the number, the second, which repeats it, for the entries.
static int read_black_list(const char *interface, const debug_request *request) {
    buffer_head head = {};
    // Who was told that there is nothing fetches nothing.
    if (request->size == 0)
        return 0;
    if (request->size < sizeof head.count)
        return EINVAL;
    size_t length = request->size < sizeof head ? sizeof head.count : sizeof head;
    int reason = move_bytes(place(request, 0), &head, length);
    if (reason != 0)
        return reason;
    if (head.fetches == 1)
        return fetch_entries(interface, request, head.count);
    uint32_t told = entries_told(interface);
    return move_bytes(&told, place(request, 0), sizeof told);
}

int answer_debug_request(const char *interface, iwreq *request, int *) {
    debug_request asked;
    if (request->u.data.length != sizeof asked)
        return EINVAL;
    if (vap_of_interface(interface) < 0)
        return EOPNOTSUPP;
    int reason = move_bytes(request->u.data.pointer, &asked, sizeof asked);
    if (reason != 0)
        return reason;
    switch (asked.command) {
        case READ_BLACK_LIST:
            return read_black_list(interface, &asked);
        case FORGET_CAPABLE_STATIONS:
            return capable5g_clear(interface) == 0 ? 0 : errno;
        default:
            return EOPNOTSUPP;
    }
}
