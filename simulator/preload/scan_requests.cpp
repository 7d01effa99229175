// Scans for networks: starting one, and the records of what was found.
#include <errno.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/scans.h"
#include "simulator/paths.h"
#include "simulator/preload/record_list.h"
#include "simulator/preload/record_text.h"
#include "simulator/preload/requests.h"

// A network as the caller gets it.
struct network_record {
    uint8_t bssid[6];
    char ssid[32];
    uint8_t rates[12];  // in 500 kb/s; the highest bit marks those that everybody has to know
    uint8_t rate_count;
    uint8_t streams[12];  // the rates of 802.11n, a byte a spatial stream
    uint8_t stream_count;
    uint8_t beacon_interval[2];  // the lower byte first, as in a beacon
    uint8_t capabilities[2];     // so are these
    uint8_t nothing[11];
    uint8_t protection;  // 0 for an open network
    uint8_t dtim_period;
    char band[6];
    int8_t rssi;  // dBm
    char authentication[15];
    char cipher[8];
    char mode[8];
    uint8_t padding;
    int32_t channel;
    uint8_t is_new;  // found by the last scan
    uint8_t end[3];
};
static_assert(sizeof(network_record) == 128 && sizeof(network_record) <= LARGEST_RECORD);
static_assert(offsetof(network_record, ssid) == 6);
static_assert(offsetof(network_record, rates) == 38);
static_assert(offsetof(network_record, rate_count) == 50);
static_assert(offsetof(network_record, streams) == 51);
static_assert(offsetof(network_record, stream_count) == 63);
static_assert(offsetof(network_record, beacon_interval) == 64);
static_assert(offsetof(network_record, capabilities) == 66);
static_assert(offsetof(network_record, protection) == 79);
static_assert(offsetof(network_record, dtim_period) == 80);
static_assert(offsetof(network_record, band) == 81);
static_assert(offsetof(network_record, rssi) == 87);
static_assert(offsetof(network_record, authentication) == 88);
static_assert(offsetof(network_record, cipher) == 103);
static_assert(offsetof(network_record, mode) == 111);
static_assert(offsetof(network_record, channel) == 120);
static_assert(offsetof(network_record, is_new) == 124);

// Another number than 1, so that it shows who takes the flag for a number.
constexpr uint8_t PROTECTED = 0x10;

// What beacons say here: the network of an access point, short preambles and slots; a network with keys.
constexpr uint8_t CAPABILITIES_LOW = 0x21;
constexpr uint8_t CAPABILITIES_HIGH = 0x04;
constexpr uint8_t CAPABILITY_PRIVACY = 0x10;
constexpr uint8_t BEACON_INTERVAL = 100;
constexpr uint8_t DTIM_PERIOD = 1;

// Every network has the rates of its band, and two streams when its mode is one of those that have streams: 11n, 11ac.
static void put_rates(network_record *record, bool five_ghz, const char *mode) {
    static const uint8_t at_two[] = {0x82, 0x84, 0x8B, 0x96, 0x0C, 0x12, 0x18, 0x24, 0x30, 0x48, 0x60, 0x6C};
    static const uint8_t at_five[] = {0x8C, 0x12, 0x98, 0x24, 0xB0, 0x48, 0x60, 0x6C};
    record->rate_count = five_ghz ? sizeof at_five : sizeof at_two;
    memcpy(record->rates, five_ghz ? at_five : at_two, record->rate_count);
    if (strncmp(mode, "11n", 3) == 0 || strncmp(mode, "11ac", 4) == 0) {
        record->stream_count = 2;
        memset(record->streams, 0xFF, record->stream_count);
    }
}

static const char *cipher_of(const char *authentication) {
    if (strcmp(authentication, "OPEN") == 0)
        return "NONE";
    if (strcmp(authentication, "WEP") == 0)
        return "WEP";
    return strcmp(authentication, "WPA") == 0 ? "TKIP" : "AES";
}

static void fill_record(const scan_network *network, bool five_ghz, network_record *record) {
    const scenario_neighbour *seen = &network->seen;
    bool open = strcmp(seen->auth, "OPEN") == 0;
    mac_octets(seen->bssid, record->bssid);
    put_text(record->ssid, sizeof record->ssid, seen->ssid);
    put_rates(record, five_ghz, seen->mode);
    record->beacon_interval[0] = BEACON_INTERVAL;
    record->capabilities[0] = CAPABILITIES_LOW | (open ? 0 : CAPABILITY_PRIVACY);
    record->capabilities[1] = CAPABILITIES_HIGH;
    record->protection = open ? 0 : PROTECTED;
    record->dtim_period = DTIM_PERIOD;
    put_text(record->band, sizeof record->band, five_ghz ? "5GHz" : "2GHz");
    record->rssi = (int8_t)seen->rssi;
    put_text(record->authentication, sizeof record->authentication, seen->auth);
    put_text(record->cipher, sizeof record->cipher, cipher_of(seen->auth));
    put_text(record->mode, sizeof record->mode, seen->mode);
    record->channel = (int32_t)seen->channel;
    record->is_new = network->is_new ? 1 : 0;
}

static int fill_records(const scenario *scene, int radio, const scan_network *networks, record_list *list) {
    network_record *records = (network_record *)calloc((size_t)list->count + 1, sizeof *records);
    if (records == nullptr)
        return ENOMEM;
    for (int i = 0; i < list->count; i++)
        fill_record(&networks[i], scene->radios[radio].five_ghz, &records[i]);
    list->records = (uint8_t *)records;
    return 0;
}

static int records_of_radio(const scenario *scene, int radio, record_list *list) {
    scan_network *networks = (scan_network *)calloc(SCAN_NETWORKS, sizeof *networks);
    if (networks == nullptr)
        return ENOMEM;
    list->count = scan_networks(radio, networks);
    int reason = list->count >= 0 ? fill_records(scene, radio, networks, list) : errno;
    free(networks);
    return reason;
}

int network_records(int vap, record_list *list) {
    char error[SCENARIO_ERROR_SIZE];
    *list = {};
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return EIO;
    int reason = records_of_radio(scene, scene->vaps[vap].radio, list);
    scenario_free(scene);
    return reason;
}

void mark_network(uint8_t *record, uint32_t place) {
    record[0] |= MADE_UP;
    record[4] = (uint8_t)(place >> 8);
    record[5] = (uint8_t)place;
}

int answer_scan(const char *interface, iwreq *, int *) {
    char error[SCENARIO_ERROR_SIZE];
    int vap = vap_of_interface(interface);
    if (vap < 0)
        return EOPNOTSUPP;
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return EIO;
    int reason = scan_begin(scene, scene->vaps[vap].radio) == 0 ? 0 : errno;
    scenario_free(scene);
    return reason;
}

int answer_scan_status(int vap, int *result) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return EIO;
    driver_state state;
    driver_state_read(&state);
    *result = scan_status_at(&state, scene->vaps[vap].radio, driver_clock());
    scenario_free(scene);
    return 0;
}
