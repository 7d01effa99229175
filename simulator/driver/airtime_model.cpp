#include "simulator/driver/airtime_model.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/stations.h"

// The name of what belongs to no VAP with a share. Readers look for it.
constexpr const char OTHERS[] = "Others";

// A weight is a percentage, a share is in tenths of one.
constexpr uint32_t TENTHS = 10;

// A table that is being made.
struct airtime_making {
    const airtime_sources *from;
    int radio;
    weighted_station weighted[WEIGHTED_STATIONS];
    int weighted_count;
    airtime_table *table;
};

static bool is_on(const airtime_making *making, int vap) {
    const scenario_vap *row = &making->from->scene->vaps[vap];
    return row->declared && row->radio == making->radio && making->from->state->vaps[vap].up;
}

static const scenario_airtime *share_of(const airtime_making *making, int vap) {
    const scenario_airtime *airtime = &making->from->scene->vaps[vap].airtime;
    return is_on(making, vap) && airtime->declared ? airtime : nullptr;
}

static void add_row(airtime_table *table, const airtime_row *row) {
    if (table->count < AIRTIME_ROWS)
        table->rows[table->count++] = *row;
}

// Copies a setting of a store index, cut to the buffer; empty when it is not there.
static void copy_setting(const airtime_sources *from, const char *name, int index, char *value, size_t size) {
    char key[SETTING_KEY_SIZE];
    size_t length = 0;
    store_key(name, index, key, sizeof key);
    const char *found = store_find(from->store, key, &length);
    snprintf(value, size, "%.*s", (int)length, found != nullptr ? found : "");
}

// A station's row: it is under its VAP's, and has its part of that unless it has a weight of its own.
static void add_station(airtime_making *making, const airtime_row *above, const uint8_t *mac, bool active,
                        uint32_t part) {
    airtime_row row = *above;
    row.is_station = true;
    row.active = active;
    memcpy(row.mac, mac, sizeof row.mac);
    const weighted_station *weighted = weighted_station_find(making->weighted, making->weighted_count, mac);
    row.configured = weighted != nullptr ? (uint32_t)weighted->weight * TENTHS : 0;
    row.value = weighted != nullptr ? row.configured : part;
    add_row(making->table, &row);
}

static int count_stations(const airtime_making *making, int vap) {
    return stations_of_vap(making->from->scene, making->from->state, vap, making->from->now, nullptr, 0);
}

// The stations of a VAP that are there, each with this part of the airtime.
static void add_stations(airtime_making *making, const airtime_row *above, int vap, uint32_t part) {
    const scenario *scene = making->from->scene;
    for (int i = 0; i < scene->station_count; i++) {
        const scenario_station *station = &scene->stations[i];
        uint8_t mac[MAC_OCTETS];
        if (station->vap - 1 != vap || !station_is_there(station, making->from->state, making->from->now))
            continue;
        mac_octets(station->mac, mac);
        add_station(making, above, mac, true, part);
    }
}

static bool is_on_radio(const airtime_making *making, const uint8_t *mac) {
    const scenario *scene = making->from->scene;
    for (int i = 0; i < scene->station_count; i++) {
        const scenario_station *station = &scene->stations[i];
        uint8_t octets[MAC_OCTETS];
        mac_octets(station->mac, octets);
        if (memcmp(octets, mac, sizeof octets) == 0 && scene->vaps[station->vap - 1].radio == making->radio &&
            station_is_there(station, making->from->state, making->from->now))
            return true;
    }
    return false;
}

// The stations that have a weight and are not there; nobody knows which SSID they would come to.
static void add_idle_stations(airtime_making *making, const airtime_row *above) {
    for (int i = 0; i < making->weighted_count; i++) {
        if (!is_on_radio(making, making->weighted[i].mac))
            add_station(making, above, making->weighted[i].mac, false, 0);
    }
}

// Whether two VAPs with a share stand under the same row.
static bool stand_together(const airtime_making *making, int one, int other) {
    const scenario_airtime *first = share_of(making, one), *second = share_of(making, other);
    return one == other ||
           (first != nullptr && second != nullptr && *first->group != '\0' && strcmp(first->group, second->group) == 0);
}

// The row of a VAP with a share, or of its group, which is named after the first VAP of the group too.
static airtime_row head_of(const airtime_making *making, int vap) {
    airtime_row head = {};
    copy_setting(making->from, "AP_SSID", vap + 1, head.ssid, sizeof head.ssid);
    const char *group = making->from->scene->vaps[vap].airtime.group;
    if (making->table->show_group)
        snprintf(head.group, sizeof head.group, "%s", *group != '\0' ? group : head.ssid);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (share_of(making, i) != nullptr && stand_together(making, vap, i))
            head.value += (uint32_t)share_of(making, i)->share;
    }
    head.configured = head.value;
    return head;
}

static void add_shared(airtime_making *making, int vap) {
    airtime_row head = head_of(making, vap);
    add_row(making->table, &head);
    for (int i = vap; i < SCENARIO_VAPS; i++) {
        int stations = count_stations(making, i);
        if (share_of(making, i) == nullptr || !stand_together(making, vap, i) || stations == 0)
            continue;
        airtime_row above = head;
        copy_setting(making->from, "AP_SSID", i + 1, above.ssid, sizeof above.ssid);
        add_stations(making, &above, i, (uint32_t)(share_of(making, i)->share / stations));
    }
}

static bool stands_under_earlier(const airtime_making *making, int vap) {
    bool earlier = false;
    for (int i = 0; i < vap && !earlier; i++)
        earlier = stand_together(making, i, vap);
    return earlier;
}

// What is left, and the stations of the VAPs without a share.
static void add_others(airtime_making *making, int left) {
    airtime_row head = {};
    snprintf(head.ssid, sizeof head.ssid, "%s", OTHERS);
    if (making->table->show_group)
        snprintf(head.group, sizeof head.group, "%s", OTHERS);
    head.value = head.configured = (uint32_t)left;
    bool is_first = making->table->count == 0;
    add_row(making->table, &head);
    int stations = 0;
    for (int i = 0; i < SCENARIO_VAPS; i++)
        stations += is_on(making, i) && share_of(making, i) == nullptr ? count_stations(making, i) : 0;
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (is_on(making, i) && share_of(making, i) == nullptr && stations > 0)
            add_stations(making, &head, i, (uint32_t)(left / stations));
    }
    if (is_first)
        add_idle_stations(making, &head);
}

void airtime_table_make(const airtime_sources *sources, int radio, airtime_table *table) {
    airtime_making making = {sources, radio, {}, 0, table};
    *table = {};
    making.weighted_count = weighted_stations_read(sources->store, making.weighted);
    char value[SETTING_VALUE_SIZE];
    // The bare key is radio 1's, suffix _2 is radio 0's.
    copy_setting(sources, "AP_ENABLE_ATF", radio == 1 ? 1 : 2, value, sizeof value);
    table->enabled = atoi(value) != 0;
    int left = WHOLE_AIRTIME;
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        const scenario_airtime *airtime = share_of(&making, i);
        table->show_group = table->show_group || (airtime != nullptr && *airtime->group != '\0');
        left -= airtime != nullptr ? airtime->share : 0;
    }
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (share_of(&making, i) == nullptr || stands_under_earlier(&making, i))
            continue;
        bool is_first = table->count == 0;
        add_shared(&making, i);
        if (is_first)
            add_idle_stations(&making, &table->rows[0]);
    }
    add_others(&making, left > 0 ? left : 0);
}

void airtime_table_fill(airtime_table *table, int first) {
    airtime_row station = table->rows[0];
    station.is_station = true;
    station.active = true;
    station.configured = 0;
    station.value /= AIRTIME_ROWS - 1;
    table->enabled = true;
    table->count = AIRTIME_ROWS;
    for (int i = first; i < AIRTIME_ROWS; i++) {
        // Locally administered addresses, which the scenario's stations hardly have.
        const uint8_t mac[MAC_OCTETS] = {0x02, 0xAF, 0, 0, 0, (uint8_t)i};
        memcpy(station.mac, mac, sizeof mac);
        table->rows[i] = station;
    }
}

airtime_had airtime_of_station(const scenario_station *station, const driver_state *state, double now) {
    return {(uint32_t)station->airtime.per_second,
            scenario_count(&station->airtime, station_seconds(station, state, now))};
}
