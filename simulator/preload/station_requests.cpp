// The records of a VAP's associated stations.
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/stations.h"
#include "simulator/paths.h"
#include "simulator/preload/record_list.h"
#include "simulator/preload/record_text.h"
#include "simulator/scenario.h"
#include "simulator/store.h"

// A station as the caller gets it.
struct station_record {
    char mac[18];
    char ip[64];
    char capabilities[45];
    char mode[17];
    uint32_t connected_seconds;
    uint32_t state;
    uint32_t tx_rate;  // Mb/s, as the other rates
    uint32_t tx_packets;
    uint32_t most_rate;
    int32_t rssi;  // dB over noise
    uint32_t multicast_packets;
    uint32_t unicast_packets;
    uint16_t association;  // 1 for the VAP's first one in the scenario
    uint8_t padding[2];
    uint32_t rx_rate;
    uint32_t tokens;
    uint32_t act_tokens;
    uint8_t interface;  // left to the caller, who knows it
    uint8_t more_padding[3];
    int32_t noise;  // dBm
    uint32_t reserved;
    char ssid[32];
};
static_assert(sizeof(station_record) == 236 && sizeof(station_record) <= LARGEST_RECORD);
static_assert(offsetof(station_record, ip) == 18);
static_assert(offsetof(station_record, capabilities) == 82);
static_assert(offsetof(station_record, mode) == 127);
static_assert(offsetof(station_record, connected_seconds) == 144);
static_assert(offsetof(station_record, state) == 148);
static_assert(offsetof(station_record, tx_rate) == 152);
static_assert(offsetof(station_record, tx_packets) == 156);
static_assert(offsetof(station_record, most_rate) == 160);
static_assert(offsetof(station_record, rssi) == 164);
static_assert(offsetof(station_record, multicast_packets) == 168);
static_assert(offsetof(station_record, unicast_packets) == 172);
static_assert(offsetof(station_record, association) == 176);
static_assert(offsetof(station_record, rx_rate) == 180);
static_assert(offsetof(station_record, tokens) == 184);
static_assert(offsetof(station_record, act_tokens) == 188);
static_assert(offsetof(station_record, interface) == 192);
static_assert(offsetof(station_record, noise) == 196);
static_assert(offsetof(station_record, reserved) == 200);
static_assert(offsetof(station_record, ssid) == 204);

constexpr uint32_t ASSOCIATED = 1;

// No interface's number.
constexpr uint8_t NO_INTERFACE = 0xFF;

// One packet in so many is counted as one to many stations.
constexpr uint32_t PACKETS_PER_MULTICAST = 10;

// What the records of a VAP have in common.
struct record_source {
    const scenario *scene;
    driver_state state;
    double now;
    const scenario_radio *radio;
    char ssid[SETTING_VALUE_SIZE];
    char mode[SETTING_VALUE_SIZE];
};

static void read_source(const scenario *scene, int vap, record_source *source) {
    char key[SETTING_KEY_SIZE];
    int radio = scene->vaps[vap].radio;
    source->scene = scene;
    driver_state_read(&source->state);
    source->now = driver_clock();
    source->radio = &scene->radios[radio];
    store_key("AP_SSID", vap + 1, key, sizeof key);
    store_value(APCFG_STORE, key, source->ssid, sizeof source->ssid);
    // The bare key is radio 1's, suffix _2 is radio 0's.
    store_key("AP_CHMODE", radio == 1 ? 1 : 2, key, sizeof key);
    store_value(APCFG_STORE, key, source->mode, sizeof source->mode);
}

static void fill_record(const record_source *source, const scenario_station *station, station_record *record) {
    double seconds = station_seconds(station, &source->state, source->now);
    put_text(record->mac, sizeof record->mac, station->mac);
    put_text(record->ip, sizeof record->ip, station->ip);
    put_text(record->capabilities, sizeof record->capabilities, station->capabilities);
    put_text(record->mode, sizeof record->mode, source->mode);
    record->connected_seconds = (uint32_t)seconds;
    record->state = ASSOCIATED;
    record->tx_rate = (uint32_t)station->tx_rate;
    record->tx_packets = (uint32_t)scenario_count(&station->packets, seconds);
    record->most_rate = (uint32_t)(station->tx_rate > station->rx_rate ? station->tx_rate : station->rx_rate);
    record->rssi = station->rssi;
    record->multicast_packets = record->tx_packets / PACKETS_PER_MULTICAST;
    record->unicast_packets = record->tx_packets - record->multicast_packets;
    record->association = (uint16_t)station_association(source->scene, station);
    record->rx_rate = (uint32_t)station->rx_rate;
    record->tokens = station->tokens;
    record->act_tokens = station->act_tokens;
    record->interface = NO_INTERFACE;
    record->noise = source->radio->air.noise;
    put_text(record->ssid, sizeof record->ssid, source->ssid);
}

static int fill_records(const record_source *source, int vap, record_list *list) {
    const scenario_station *stations[STATIONS_TOLD];
    int count = stations_of_vap(source->scene, &source->state, vap, source->now, stations, STATIONS_TOLD);
    list->count = count < STATIONS_TOLD ? count : STATIONS_TOLD;
    station_record *records = (station_record *)calloc((size_t)list->count + 1, sizeof *records);
    if (records == nullptr)
        return ENOMEM;
    for (int i = 0; i < list->count; i++)
        fill_record(source, stations[i], &records[i]);
    list->records = (uint8_t *)records;
    return 0;
}

int station_records(int vap, record_list *list) {
    char error[SCENARIO_ERROR_SIZE];
    *list = {};
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    record_source *source = (record_source *)malloc(sizeof *source);
    int reason = scene != nullptr && source != nullptr ? 0 : EIO;
    if (reason == 0) {
        read_source(scene, vap, source);
        reason = fill_records(source, vap, list);
    }
    free(source);
    scenario_free(scene);
    return reason;
}

// Writes an octet as two digits of a text, in place.
static void put_octet(uint8_t *text, unsigned octet) {
    static const char digits[] = "0123456789ABCDEF";
    text[0] = (uint8_t)digits[octet >> 4 & 15];
    text[1] = (uint8_t)digits[octet & 15];
}

void mark_station(uint8_t *record, uint32_t place) {
    uint8_t octets[6];
    mac_octets((const char *)record, octets);
    put_octet(record, octets[0] | MADE_UP);
    put_octet(record + 12, place >> 8);
    put_octet(record + 15, place);
}
