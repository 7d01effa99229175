// The driver's own requests: commands that ask for scans and stations.
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/faults.h"
#include "simulator/preload/caller_memory.h"
#include "simulator/preload/record_list.h"
#include "simulator/preload/requests.h"
#include "simulator/scenario.h"

// A command as it lies in the caller's memory.
struct command_block {
    uint32_t command;
    uint32_t value;
    uint32_t address;  // of the caller's buffer
};
static_assert(sizeof(command_block) == 12);

// What the driver puts above the number of stations, which has the lowest seven bits.
constexpr uint32_t STATION_COUNT_MARK = 0x80;

// A list that repeats itself ends where the two octets that tell its records apart have seen every value.
constexpr uint32_t LONGEST_REPETITION = 65536;

// A list with a command that counts and one that reads it.
struct list_commands {
    uint32_t count, read;
    const char *fault;  // makes the driver tell another number
    uint32_t mark;      // what stands above the number
    size_t size;        // of a record
    int (*collect)(int vap, record_list *list);
    void (*tell_apart)(uint8_t *record, uint32_t place);
};

static const list_commands lists[] = {
    {COMMAND_SCAN_COUNT, COMMAND_SCAN_RESULTS, SCAN_COUNT_FAULT, 0, 128, network_records, mark_network},
    {COMMAND_STATION_COUNT, COMMAND_STATION_TABLE, STATION_COUNT_FAULT, STATION_COUNT_MARK, 236, station_records,
     mark_station},
};

static const list_commands *list_of(uint32_t command) {
    for (const list_commands &candidate : lists) {
        if (candidate.count == command || candidate.read == command)
            return &candidate;
    }
    return nullptr;
}

// Puts the value word of the command back into the caller's memory.
static int give_value(const iwreq *request, uint32_t value) {
    uint8_t *block = (uint8_t *)request->u.data.pointer;
    return move_bytes(&value, block + offsetof(command_block, value), sizeof value);
}

static int give_count(const list_commands *commands, const record_list *list, const iwreq *request) {
    int64_t told = (uint32_t)list->count | commands->mark;
    fault_number(commands->fault, &told);
    return give_value(request, (uint32_t)told);
}

// How many records can be had: a driver that tells of more than there are repeats them.
static uint32_t records_at_hand(const list_commands *commands, const record_list *list) {
    int64_t told = 0;
    bool repeats = list->count > 0 && fault_number(commands->fault, &told) && told > list->count;
    return repeats ? LONGEST_REPETITION : (uint32_t)list->count;
}

static int give_records(const list_commands *commands, const record_list *list, const command_block *asked) {
    uint8_t record[LARGEST_RECORD];
    uint32_t count = (uint32_t)list->count;
    uint32_t at_hand = records_at_hand(commands, list);
    int reason = 0;
    for (uint32_t i = 0; i < at_hand && i < asked->value && reason == 0; i++) {
        memcpy(record, list->records + i % count * commands->size, commands->size);
        if (i >= count)
            commands->tell_apart(record, i);
        reason = move_bytes(record, caller_place(asked->address, i * (uint64_t)commands->size), commands->size);
    }
    return reason;
}

// The caller's word stays as it is, unless a fault says otherwise.
static int give_table_count(const command_block *asked, const iwreq *request) {
    int64_t told;
    bool lies = asked->command == COMMAND_STATION_TABLE && fault_number(TABLE_COUNT_FAULT, &told);
    return lies ? give_value(request, (uint32_t)told) : 0;
}

static int answer_list(const list_commands *commands, int vap, const command_block *asked, const iwreq *request) {
    record_list list;
    int reason = commands->collect(vap, &list);
    if (reason == 0 && asked->command == commands->count)
        reason = give_count(commands, &list, request);
    else if (reason == 0)
        reason = give_records(commands, &list, asked);
    free(list.records);
    if (reason == 0)
        reason = give_table_count(asked, request);
    return reason;
}

static int answer_status(int vap, int *result) {
    int64_t told;
    if (!fault_number(SCAN_STATUS_FAULT, &told))
        return answer_scan_status(vap, result);
    *result = (int)told;
    return 0;
}

uint32_t driver_command_number(const iwreq *request) {
    command_block asked;
    bool known =
        request->u.data.length == sizeof asked && move_bytes(request->u.data.pointer, &asked, sizeof asked) == 0;
    return known ? asked.command : 0;
}

int answer_driver_command(const char *interface, iwreq *request, int *result) {
    command_block asked;
    int vap = vap_of_interface(interface);
    if (request->u.data.length != sizeof asked)
        return EINVAL;
    if (vap < 0)
        return EOPNOTSUPP;
    int reason = move_bytes(request->u.data.pointer, &asked, sizeof asked);
    if (reason != 0)
        return reason;
    if (asked.command == COMMAND_SCAN_STATUS)
        return answer_status(vap, result);
    const list_commands *commands = list_of(asked.command);
    return commands != nullptr ? answer_list(commands, vap, &asked, request) : EOPNOTSUPP;
}
