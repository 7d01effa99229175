// apstats: the counters of an interface, a line each.
#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "simulator/driver/airtime_model.h"
#include "simulator/driver/stations.h"
#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

// Of the scenario's counters: an eighth of what is sent goes to many, a thousandth of what is received is broken.
constexpr uint64_t SENT_TO_MANY = 8;
constexpr uint64_t RECEIVED_BROKEN = 1000;

// What the stations that are there amount to.
struct station_totals {
    uint64_t stations, packets, airtime, tx_rate, rx_rate;
};

static station_totals totals_of(const interface *wanted, double now) {
    station_totals totals = {};
    for (int i = 0; i < wanted->scene->station_count; i++) {
        const scenario_station *station = &wanted->scene->stations[i];
        if (station->vap - 1 != wanted->vap || !station_is_there(station, &wanted->state, now))
            continue;
        totals.stations++;
        totals.packets += scenario_count(&station->packets, station_seconds(station, &wanted->state, now));
        totals.airtime += airtime_of_station(station, &wanted->state, now).total;
        totals.tx_rate += (uint64_t)station->tx_rate;
        totals.rx_rate += (uint64_t)station->rx_rate;
    }
    return totals;
}

// Readers look for the name, blanks up to its 32nd character, and the equals sign: all of it is one marker to them.
static void print_counter(const char *name, uint64_t value) {
    printf("%-31s = %" PRIu64 "\n", name, value);
}

static void print_counters(const interface *wanted) {
    double now = driver_clock();
    double seconds = now - wanted->state.vaps[wanted->vap].since;
    const scenario_vap *vap = interface_vap(wanted);
    uint64_t sent = scenario_count(&vap->tx_packets, seconds), received = scenario_count(&vap->rx_packets, seconds);
    station_totals totals = totals_of(wanted, now);
    uint64_t some = totals.stations > 0 ? totals.stations : 1;
    printf("Counters of %s:\n", wanted->name);
    print_counter("Tx Data Packets", sent);
    print_counter("Tx Data Bytes", scenario_count(&vap->tx_bytes, seconds));
    print_counter("Tx Unicast Data Packets", sent - sent / SENT_TO_MANY);
    print_counter("Tx Multi/Broadcast Data Packets", sent / SENT_TO_MANY);
    print_counter("Tx Data Packets to stations", totals.packets);
    print_counter("Rx Data Packets", received);
    print_counter("Rx Data Bytes", scenario_count(&vap->rx_bytes, seconds));
    print_counter("Rx errors", received / RECEIVED_BROKEN);
    print_counter("Stations", totals.stations);
    print_counter("Average Tx Rate (Mb/s)", totals.tx_rate / some);
    print_counter("Average Rx Rate (Mb/s)", totals.rx_rate / some);
    print_counter("Airtime of stations (us)", totals.airtime);
    print_counter("Seconds since it came up", (uint64_t)seconds);
}

int tool_apstats(int argument_count, char *const *arguments) {
    if (argument_count != 3 || strcmp(arguments[0], "-v") != 0 || strcmp(arguments[1], "-i") != 0)
        return tool_usage("apstats");
    interface wanted;
    bool up = interface_find(&wanted, arguments[2]);
    if (up)
        print_counters(&wanted);
    else
        fprintf(stderr, "apstats: %s: %s\n", arguments[2], strerror(ENODEV));
    interface_free(&wanted);
    return up ? 0 : 1;
}
