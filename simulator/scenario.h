// The scenario: which radios, VAPs, stations and neighbours the simulated gateway has, and how its driver behaves.
//
// Touches the scenario file only. Launcher, tools and the simulated driver read it afresh whenever they need it, so
// editing /run/gateway/scenario in a running gateway takes effect at once. The format is in docs/simulated-gateway.md.
// A scenario takes some hundred kilobytes, so it lives on the heap (scenario_new).
#pragma once

#include <stddef.h>
#include <stdint.h>

constexpr int SCENARIO_RADIOS = 2;                      // wifi0 and wifi1
constexpr int SCENARIO_VAPS = 16;                       // ath0 to ath15
constexpr int VAPS_PER_RADIO = 8;                       // VAP 1 to 8 belong to the first radio, 9 to 16 to the second
constexpr int SCENARIO_CHANNELS = 255;                  // as many as the driver's channel table holds
constexpr int SCENARIO_STATIONS = 127 * SCENARIO_VAPS;  // the driver counts stations of a VAP in seven bits
constexpr int SCENARIO_NEIGHBOURS = 512;                // twice what the one-byte count of a scan table can say
constexpr int SCENARIO_SETTINGS = 1024;                 // several times a real store
constexpr int SCENARIO_SCRIPTS = 3;                     // apup, apup_simple, fast_down.sh
constexpr int SCENARIO_WPS_LINES = 14 * SCENARIO_VAPS;  // an item a VAP, with as many words as an item has behind two
constexpr int SCENARIO_DEFAULTS = 256;                  // a real store has fewer lines that anybody changes
constexpr int SCENARIO_BLACKLISTED = 127 * VAPS_PER_RADIO;  // the tables are of the first radio's VAPs
constexpr int SCENARIO_CAPABLE = 127 * VAPS_PER_RADIO;

constexpr size_t MAC_TEXT_SIZE = 18;  // "00:03:7F:10:00:01"
constexpr size_t SSID_SIZE = 33;      // 32 characters, as 802.11 has it
constexpr size_t SETTING_KEY_SIZE = 64;
constexpr size_t SETTING_VALUE_SIZE = 256;
constexpr size_t SCENARIO_WORD_SIZE = 32;  // names of modes, authentications, scripts

struct scenario_channel {
    unsigned number;
    unsigned frequency;  // MHz
    uint32_t flags;      // what the driver's channel table says
};

// The air around a radio as its collector measures it: percentages, but for the noise floor (dBm) and the time until
// the first measurement is there. Every value moves slowly, up to `swing` to either side.
struct scenario_air {
    bool declared;
    int utilisation, activity, busy, retry;
    int noise;
    int swing;
    double seconds;
};

struct scenario_radio {
    bool declared;
    bool five_ghz;
    char mac[MAC_TEXT_SIZE];
    int txpower;  // dBm
    scenario_air air;
    double scan_seconds;  // what a scan for neighbours takes
    int channel_count;
    scenario_channel channels[SCENARIO_CHANNELS];
};

// A counter's value when its VAP came up, and what a second adds.
struct scenario_counter {
    uint64_t start;
    uint64_t per_second;
};

// Its value so many seconds after the VAP came up.
uint64_t scenario_count(const scenario_counter *counter, double seconds);

// What becomes of a WPS exchange: no peer comes until it times out, or one comes and it succeeds or fails.
enum scenario_wps_result { WPS_RUNS_OUT, WPS_SUCCEEDS, WPS_FAILS };

struct scenario_wps {
    bool declared;
    scenario_wps_result result;
    double seconds;           // until the peer's result; of no meaning when the exchange times out
    char mac[MAC_TEXT_SIZE];  // the peer, empty when it is not given
};

// A line of a VAP's WPS file, in the place of the one that the file has anyway, or beyond those.
struct scenario_wps_line {
    int vap;  // 1 to 16
    char key[SETTING_KEY_SIZE];
    char value[SETTING_VALUE_SIZE];
};

// A VAP's part of its radio's airtime, of its own or within a group of VAPs.
struct scenario_airtime {
    bool declared;
    int share;  // in tenths of a percent
    char group[SCENARIO_WORD_SIZE];
};

struct scenario_vap {
    bool declared;
    int radio;
    bool enabled;
    char bssid[MAC_TEXT_SIZE];
    char ssid[SSID_SIZE];
    scenario_counter rx_packets, tx_packets, rx_bytes, tx_bytes;
    scenario_wps wps;
    scenario_airtime airtime;
};

// A station, and when it is there. Its counters run from the moment in which it came.
struct scenario_station {
    int vap;  // 1 to 16
    char mac[MAC_TEXT_SIZE];
    char ip[16];
    int rssi;              // dB over noise, as the driver lists it
    int tx_rate, rx_rate;  // Mb/s
    double from, until;    // seconds after its VAP came up; until is 0 for one that stays
    char capabilities[SCENARIO_WORD_SIZE];
    scenario_counter packets;             // sent to it
    scenario_counter airtime;             // microseconds
    unsigned tokens, act_tokens, unused;  // of the airtime in the driver's last round
};

struct scenario_neighbour {
    char bssid[MAC_TEXT_SIZE];
    char ssid[SSID_SIZE];
    unsigned channel;
    int rssi;
    char auth[SCENARIO_WORD_SIZE];
    char mode[SCENARIO_WORD_SIZE];
};

// A line of the store beyond what radios and VAPs imply, or in its place.
struct scenario_setting {
    char key[SETTING_KEY_SIZE];
    char value[SETTING_VALUE_SIZE];
};

// A station on the 2.4 GHz temporary black list of a VAP.
struct scenario_blacklisted {
    int vap;  // 1 to 8
    char mac[MAC_TEXT_SIZE];
    int reason;      // one byte of the driver's
    int rssi;        // dB over noise
    double seconds;  // how long it stays on the list
};

// A station that a VAP's driver knows to be able to use the 5 GHz band.
struct scenario_capable {
    int vap;  // 1 to 8
    char mac[MAC_TEXT_SIZE];
};

// What a script of the driver takes.
struct scenario_script {
    char name[SCENARIO_WORD_SIZE];
    double seconds;
};

// What the driver is when the gateway starts.
enum scenario_driver { DRIVER_UNLOADED, DRIVER_LOADED, DRIVER_UP };

struct scenario {
    scenario_driver driver;
    scenario_radio radios[SCENARIO_RADIOS];
    scenario_vap vaps[SCENARIO_VAPS];  // VAP 1 first
    scenario_station stations[SCENARIO_STATIONS];
    int station_count;
    scenario_neighbour neighbours[SCENARIO_NEIGHBOURS];
    int neighbour_count;
    scenario_setting settings[SCENARIO_SETTINGS];
    int setting_count;
    scenario_setting defaults[SCENARIO_DEFAULTS];  // factory values that are not those of the first store
    int default_count;
    bool no_defaults;  // the board cannot hand out the factory defaults
    scenario_blacklisted blacklisted[SCENARIO_BLACKLISTED];
    int blacklisted_count;
    scenario_capable capable[SCENARIO_CAPABLE];
    int capable_count;
    scenario_wps_line wps_lines[SCENARIO_WPS_LINES];
    int wps_line_count;
    scenario_script scripts[SCENARIO_SCRIPTS];
    int script_count;
};

// What the parser says about the first thing it does not like: "file:line: message".
constexpr size_t SCENARIO_ERROR_SIZE = 512;

// Reads a scenario file. Null when it cannot be read or says something wrong, with the reason in error. The result
// is the caller's to free with scenario_free.
scenario *scenario_new(const char *path, char *error, size_t error_size);

// The same from text that is already in memory; name stands for the file in messages.
scenario *scenario_parse(const char *name, const char *text, size_t length, char *error, size_t error_size);

void scenario_free(scenario *scene);

// Number of a VAP's interface name: 0 to 15 for "ath0" to "ath15", else -1.
int vap_of_interface(const char *name);

// Number of a radio's device name: 0 or 1 for "wifi0" or "wifi1", else -1.
int radio_of_device(const char *name);

// Copies a MAC address, MAC_TEXT_SIZE bytes with its NUL, when the text is one ("28:6A:BA:4C:10:01"). Else false.
bool copy_mac(const char *text, char *mac);

// The six octets of a MAC address in its text form.
void mac_octets(const char *mac, uint8_t *octets);

// The channel with this number of a radio, null when it has none.
const scenario_channel *scenario_find_channel(const scenario_radio *radio, unsigned number);

// The radio's channel with the fewest neighbours, the first of equals; 0 when the radio has no channels.
unsigned scenario_quietest_channel(const scenario *scene, int radio);
