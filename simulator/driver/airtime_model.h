// Airtime: how the driver shares out a radio's, a row an SSID (or group) and a row a station, and what a station has
// had of it.
//
// Touches nothing but what it is given. Any thread; a table takes some kilobytes, so it lives on the heap.
#pragma once

#include "simulator/driver/airtime_list.h"
#include "simulator/driver/driver_state.h"

constexpr int AIRTIME_ROWS = 66;     // of the driver's table
constexpr int WHOLE_AIRTIME = 1000;  // in the unit of shares, tenths of a percent

struct airtime_row {
    bool is_station;
    char ssid[SSID_SIZE];
    char group[SSID_SIZE];    // a group's name, or the SSID of a VAP that is a group of its own
    uint8_t mac[MAC_OCTETS];  // of a station, like `active`
    bool active;
    uint32_t value;
    uint32_t configured;
};

struct airtime_table {
    bool enabled;     // the radio's switch
    bool show_group;  // some VAP of the radio belongs to a group
    int count;
    airtime_row rows[AIRTIME_ROWS];
};

// What a table is made from: the scenario, the driver's state and the lines of the store at a moment (driver_clock).
struct airtime_sources {
    const scenario *scene;
    const driver_state *state;
    const store_text *store;
    double now;
};

// Makes the table of a radio (0 or 1): first the VAPs that are up and have a share, in their order, each with its
// stations; VAPs of one group under one row. Behind those of the first row come the stations that have a weight and are
// not there. Last the row "Others" with what is left, and the stations of the other VAPs. What has no room is left out.
void airtime_table_make(const airtime_sources *sources, int radio, airtime_table *table);

// Makes a table as full as it can be: it is enabled, and from this row (0 or 1) on stand stations that are all there
// and all invented.
void airtime_table_fill(airtime_table *table, int first);

// What a station has had: in microseconds, in a second and since it came.
struct airtime_had {
    uint32_t short_average;
    uint64_t total;
};

airtime_had airtime_of_station(const scenario_station *station, const driver_state *state, double now);
