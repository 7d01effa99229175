// wlanconfig: the stations of an interface as a table, and what one of them has had of the airtime.
#include <ctype.h>
#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "simulator/driver/airtime_list.h"
#include "simulator/driver/airtime_model.h"
#include "simulator/driver/stations.h"
#include "simulator/tools/interface.h"
#include "simulator/tools/tools.h"

static void print_station(const interface *wanted, const scenario_station *station, double now) {
    char mac[MAC_TEXT_SIZE];
    for (size_t i = 0; i < sizeof mac; i++)
        mac[i] = (char)tolower((unsigned char)station->mac[i]);
    double seconds = station_seconds(station, &wanted->state, now);
    printf("%s %3d %4u %5dM %5dM %4d %9" PRIu64 " %9.0f %s\n", mac, station_association(wanted->scene, station),
           interface_channel(wanted), station->tx_rate, station->rx_rate, station->rssi,
           scenario_count(&station->packets, seconds), seconds,
           *station->capabilities != '\0' ? station->capabilities : "-");
}

// Readers find HTCAPS and count the line ends that stand more than one character behind the word, one a station: it has
// to be the last word of its line, with nothing behind it. Without stations there is no header either.
static int list_stations(const interface *wanted) {
    double now = driver_clock();
    if (stations_of_vap(wanted->scene, &wanted->state, wanted->vap, now, nullptr, 0) > 0)
        puts("ADDR              AID CHAN TXRATE RXRATE RSSI   PACKETS ASSOCTIME HTCAPS");
    for (int i = 0; i < wanted->scene->station_count; i++) {
        const scenario_station *station = &wanted->scene->stations[i];
        if (station->vap - 1 == wanted->vap && station_is_there(station, &wanted->state, now))
            print_station(wanted, station, now);
    }
    return 0;
}

// Readers take the first number, want a comma right behind it, and take the next one; no other digit may stand before.
static int print_airtime(const interface *wanted, const uint8_t *mac) {
    double now = driver_clock();
    const scenario_station *station = station_of_vap(wanted->scene, &wanted->state, wanted->vap, now, mac);
    if (station == nullptr) {
        fputs("wlanconfig: no such station\n", stderr);
        return 1;
    }
    airtime_had had = airtime_of_station(station, &wanted->state, now);
    printf("short average %" PRIu32 ", total airtime %" PRIu64 "\n", had.short_average, had.total);
    return 0;
}

int tool_wlanconfig(int argument_count, char *const *arguments) {
    uint8_t mac[MAC_OCTETS];
    bool lists = (argument_count == 2 || (argument_count == 3 && strcmp(arguments[2], "sta") == 0)) &&
                 strcmp(arguments[1], "list") == 0;
    bool asks = argument_count == 3 && strcmp(arguments[1], "atfstat") == 0 && octets_from_text(arguments[2], mac);
    if (!lists && !asks)
        return tool_usage("wlanconfig");
    interface wanted;
    int status = 1;
    if (!interface_find(&wanted, arguments[0]))
        fprintf(stderr, "wlanconfig: %s: %s\n", arguments[0], strerror(ENODEV));
    else
        status = lists ? list_stations(&wanted) : print_airtime(&wanted, mac);
    interface_free(&wanted);
    return status;
}
