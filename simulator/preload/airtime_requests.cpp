// The airtime requests: how a radio's airtime is shared out, and what a station has had of it.
#include <errno.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/airtime_model.h"
#include "simulator/driver/stations.h"
#include "simulator/faults.h"
#include "simulator/paths.h"
#include "simulator/preload/caller_memory.h"
#include "simulator/preload/record_text.h"
#include "simulator/preload/requests.h"

// What the caller writes at the beginning of his record.
constexpr uint16_t TABLE_CODE = 0xFF05;
constexpr uint32_t STATION_CODE = 64;

// An entry of the table as the caller gets it.
struct airtime_entry {
    char ssid[33];
    uint8_t mac[6];
    uint8_t padding;
    uint32_t value;
    uint8_t is_station;
    uint8_t active;
    uint8_t padding_2[2];
    uint32_t configured;
    char group[36];
};
static_assert(sizeof(airtime_entry) == 88);
static_assert(offsetof(airtime_entry, mac) == 33);
static_assert(offsetof(airtime_entry, value) == 40);
static_assert(offsetof(airtime_entry, is_station) == 44);
static_assert(offsetof(airtime_entry, active) == 45);
static_assert(offsetof(airtime_entry, configured) == 48);
static_assert(offsetof(airtime_entry, group) == 52);

struct airtime_record {
    uint16_t code;
    uint8_t padding[2];
    airtime_entry entries[AIRTIME_ROWS];
    uint16_t count;
    uint8_t enabled;
    uint8_t padding_2[5];
    uint32_t show_group;
};
static_assert(sizeof(airtime_record) == AIRTIME_TABLE_LENGTH);
static_assert(offsetof(airtime_record, entries) == 4);
static_assert(offsetof(airtime_record, count) == 5812);
static_assert(offsetof(airtime_record, enabled) == 5814);
static_assert(offsetof(airtime_record, show_group) == 5820);

struct [[gnu::packed]] airtime_of_one {
    uint32_t code;
    uint8_t mac[6];
    uint8_t padding[2];
    uint32_t short_average;
    uint64_t total;
    uint32_t tokens;
    uint32_t act_tokens;
    uint32_t unused;
};
static_assert(sizeof(airtime_of_one) == STATION_AIRTIME_LENGTH);
static_assert(offsetof(airtime_of_one, mac) == 4);
static_assert(offsetof(airtime_of_one, short_average) == 12);
static_assert(offsetof(airtime_of_one, total) == 16);
static_assert(offsetof(airtime_of_one, tokens) == 24);
static_assert(offsetof(airtime_of_one, act_tokens) == 28);
static_assert(offsetof(airtime_of_one, unused) == 32);

// What an answer is made from; too much for a small stack.
struct airtime_workplace {
    scenario *scene;
    driver_state state;
    store_text store;
    airtime_table table;
    airtime_record record;
};

static void close_workplace(airtime_workplace *work) {
    if (work != nullptr) {
        scenario_free(work->scene);
        store_free(&work->store);
    }
    free(work);
}

// Reads the model. Null when memory ran out, or without a scene when the scenario makes no sense; close it in both
// cases.
static airtime_workplace *open_workplace(void) {
    char error[SCENARIO_ERROR_SIZE];
    airtime_workplace *work = (airtime_workplace *)calloc(1, sizeof *work);
    if (work == nullptr)
        return nullptr;
    driver_state_read(&work->state);
    work->scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    return work;
}

static void fill_entry(const airtime_row *row, airtime_entry *entry) {
    put_text(entry->ssid, sizeof entry->ssid, row->ssid);
    put_text(entry->group, sizeof entry->group, row->group);
    memcpy(entry->mac, row->mac, sizeof entry->mac);
    entry->value = row->value;
    entry->configured = row->configured;
    entry->is_station = row->is_station ? 1 : 0;
    entry->active = row->active ? 1 : 0;
}

// The number of entries that the driver tells.
static uint16_t entries_told(const airtime_table *table) {
    int64_t told = table->count;
    fault_number(AIRTIME_COUNT_FAULT, &told);
    return (uint16_t)told;
}

static void fill_record(const airtime_table *table, airtime_record *record) {
    record->code = TABLE_CODE;
    for (int i = 0; i < table->count; i++)
        fill_entry(&table->rows[i], &record->entries[i]);
    record->count = entries_told(table);
    record->enabled = table->enabled ? 1 : 0;
    record->show_group = table->show_group ? 1 : 0;
}

static void make_table(airtime_workplace *work, int vap) {
    char value[FAULT_VALUE_SIZE];
    airtime_sources sources = {work->scene, &work->state, &work->store, driver_clock()};
    airtime_table_make(&sources, work->scene->vaps[vap].radio, &work->table);
    if (fault_get(AIRTIME_FULL_FAULT, value, sizeof value))
        airtime_table_fill(&work->table, strcmp(value, AIRTIME_FULL_OF_STATIONS) == 0 ? 0 : 1);
    fill_record(&work->table, &work->record);
}

int answer_airtime_table(const char *interface, iwreq *request, int *) {
    uint16_t code;
    int vap = vap_of_interface(interface);
    if (vap < 0)
        return EOPNOTSUPP;
    int reason = move_bytes(request->u.data.pointer, &code, sizeof code);
    if (reason != 0)
        return reason;
    if (code != TABLE_CODE)
        return EINVAL;
    airtime_workplace *work = open_workplace();
    reason = work == nullptr ? ENOMEM : EIO;
    if (work != nullptr && work->scene != nullptr && store_load(APCFG_STORE, &work->store) == 0) {
        make_table(work, vap);
        reason = move_bytes(&work->record, request->u.data.pointer, sizeof work->record);
    }
    close_workplace(work);
    return reason;
}

// Fills the answers of a record whose address is that of a station. 0 or an error number.
static int fill_station(const airtime_workplace *work, int vap, airtime_of_one *record) {
    double now = driver_clock();
    const scenario_station *station = station_of_vap(work->scene, &work->state, vap, now, record->mac);
    if (station == nullptr)
        return ENOENT;
    airtime_had had = airtime_of_station(station, &work->state, now);
    record->short_average = had.short_average;
    record->total = had.total;
    record->tokens = station->tokens;
    record->act_tokens = station->act_tokens;
    record->unused = station->unused;
    return 0;
}

int answer_station_airtime(const char *interface, iwreq *request, int *) {
    airtime_of_one record;
    int vap = vap_of_interface(interface);
    if (vap < 0)
        return EOPNOTSUPP;
    int reason = move_bytes(request->u.data.pointer, &record, sizeof record);
    if (reason != 0)
        return reason;
    if (record.code != STATION_CODE)
        return EINVAL;
    airtime_workplace *work = open_workplace();
    reason = work == nullptr ? ENOMEM : EIO;
    if (work != nullptr && work->scene != nullptr)
        reason = fill_station(work, vap, &record);
    close_workplace(work);
    return reason == 0 ? move_bytes(&record, request->u.data.pointer, sizeof record) : reason;
}
