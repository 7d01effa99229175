// The stations that have an airtime weight of their own: numbered entries among the lines of the driver's store.
//
// Entry n, from 1 on and without holes, stands under ATF_STA_MAC_n (12 hex digits, in lower case), ATF_STA_WEIGHT_n
// (percent) and ATF_STA_PERIOD_n. Touches nothing but the lines that it is given. Any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "simulator/store.h"

constexpr int WEIGHTED_STATIONS = 64;    // as many as fit the list that is told of them
constexpr int MOST_WEIGHT = 100;         // percent
constexpr size_t OCTETS_TEXT_SIZE = 13;  // "286aba4c1001"
constexpr size_t MAC_OCTETS = 6;

struct weighted_station {
    uint8_t mac[MAC_OCTETS];
    int weight;
    int period;  // 0 for none
};

// The six octets of an address that is written as 12 hex digits without colons, and back in lower case. False when the
// text is none.
bool octets_from_text(const char *text, uint8_t *octets);
void octets_to_text(const uint8_t *octets, char *text);

// Reads the entries, up to the first number that has no address. Returns how many there are.
int weighted_stations_read(const store_text *store, weighted_station (&stations)[WEIGHTED_STATIONS]);

// Puts so many entries into the lines; those with a larger number go. Returns 0, or -1 when memory ran out.
int weighted_stations_write(store_text *store, const weighted_station *stations, int count);

// The entry of an address, null when it has none.
weighted_station *weighted_station_find(weighted_station *stations, int count, const uint8_t *mac);
