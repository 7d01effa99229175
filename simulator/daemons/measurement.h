// What the statistics collector measures of a radio: the record it answers with.
//
// Touches nothing: a measurement follows from the scenario, the driver's state and the moment.
#pragma once

#include <stdint.h>

#include "simulator/driver/driver_state.h"

// The RSSI table counts the radio's associated stations: entry i those with 2i or 2i+1 dB over the noise, the first
// also those below and the last also those above.
constexpr int RSSI_ENTRIES = 37;
constexpr int RSSI_ENTRY_WIDTH = 2;

// The answer to "result" as it travels: little-endian 32-bit numbers.
struct measurement {
    int32_t utilisation, activity, busy;  // percent
    int32_t noise_most, noise_least, noise_median, noise_average;
    int32_t retry;  // percent
    int32_t tx_packets, rx_packets;
    int32_t rssi[RSSI_ENTRIES];
    int32_t unused;
};
static_assert(sizeof(measurement) == 192 && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

// One collector, from its start on.
struct collector {
    int vap;           // 0 to 15, the interface it was started for
    double started;    // on the boot clock
    measurement last;  // all zeros until the first measurement is there
};

// Takes note of the time: measures, unless the first measurement is not there yet or the interface is not up. It is
// there the radio's `seconds` after the start of the collector or, when that was later, of the interface.
void collector_look(collector *self, const scenario *scene, const driver_state *state, double now);

// What there is to measure at a moment.
void measure(const scenario *scene, const driver_state *state, int radio, double now, measurement *result);
