// VAP identity and basic settings: name, BSSID, VLAN, enable, SSID, security family, channel, standard.
//
// Touches the store and runs `iwconfig` and `ifconfig`. Runs on the service thread; wlan_getEnable also on lifecycle
// workers.
#include "params/vap.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/mode.h"
#include "config/store.h"
#include "config/text.h"
#include "params/settings.h"

constexpr size_t MAC_TEXT_LENGTH = MAC_TEXT_SIZE - 1;

constexpr const char NULL_MAC[] = "00:00:00:00:00:00";

// Every character of the longest SSID behind a backslash, and the NUL.
constexpr size_t ESCAPED_SSID_SIZE = 2 * SSID_MAX + 1;

// "Bit Rate:" and "Bit Rate=" are equally long; of the value behind them at most as many characters are given out.
constexpr size_t RATE_LABEL_LENGTH = 9;
constexpr size_t RATE_LENGTH_MAX = 9;

// "br%d_%d" with the longest numbers.
constexpr size_t BRIDGE_NAME_SIZE = 32;

// Port numbers of the two radios while UDMA_ENABLE is set.
constexpr int UDMA_PORT_RADIO_0 = 5;
constexpr int UDMA_PORT_RADIO_1 = 6;

// The highest channel of the 2.4 GHz band.
constexpr u_int CHANNEL_MAX_2G = 14;

int wlan_getNumberOfEntries(int *count) {
    *count = VAP_COUNT;
    return 0;
}

int wlan_addEntry(void) {
    return 0;
}

int wlan_delEntry(void) {
    return 0;
}

int wlan_getName(int index, char *name, size_t size) {
    if (index < 1) {
        put_zeros(name, size);
        return -1;
    }
    if (index > VAP_COUNT) {
        put_text(name, size, "");
        return 0;
    }
    snprintf(name, size, "ath%d", interface_number(index));
    return 0;
}

// Number of VAPs that each radio has. Asked for until the store knows it, and then kept for the life of the process.
static int vap_count(void) {
    static int count = 0;
    if (count < 1) {
        athcfg_getint(1, "AP_VAP_NUM", &count);
    }
    return count;
}

// Whether the driver has made the interface of this VAP.
static bool is_interface_made(int index) {
    int count = vap_count();
    int number = interface_number(index);
    log_debug("[VLK-API] %s comparing index %d to ap_vap_num= %d\n", "wlan_getBSSID", number, count);
    int slot = number < VAPS_PER_RADIO ? number : number - VAPS_PER_RADIO;
    return slot < count;
}

static void get_stored_bssid(int index, char *bssid, size_t size) {
    char stored[STORE_VALUE_SIZE];
    int status = athcfg_getbyname(index, "AP_BSSID", stored, sizeof(stored));
    put_characters(bssid, size, status == 0 ? stored : NULL_MAC, MAC_TEXT_LENGTH);
}

// Writes the hardware address out of what ifconfig printed. Returns false when there is none.
static bool find_hardware_address(const char *output, char *bssid, size_t size) {
    const char *label = strstr(output, "HWaddr");
    if (!label) {
        return false;
    }
    // Behind the label comes one blank. The output may end before or within the address.
    const char *address = label + strnlen(label, sizeof("HWaddr"));
    put_characters(bssid, size, address, MAC_TEXT_LENGTH);
    return true;
}

int wlan_getBSSID(int index, char *bssid, size_t size) {
    if (index < 1) {
        put_zeros(bssid, size);
        return -1;
    }
    if (!is_interface_made(index)) {
        get_stored_bssid(index, bssid, size);
        return 0;
    }
    char command[32];
    snprintf(command, sizeof(command), "ifconfig ath%d", interface_number(index));
    char *output = nullptr;
    athcfg_executecmd(__func__, command, &output);
    log_debug("[VLK-API] %s executed %s\n", __func__, command);
    if (!output) {
        return -1;
    }
    if (!find_hardware_address(output, bssid, size)) {
        get_stored_bssid(index, bssid, size);
    }
    free(output);
    return 0;
}

// The VAP at which the search for a BSSID starts: the addresses are made so that this is mostly the right one.
static int guess_vap(const char *bssid) {
    int index = 1;
    if (strlen(bssid) < MAC_TEXT_LENGTH) {
        return index;
    }
    if (bssid[MAC_TEXT_LENGTH - 1] == '5') {
        index += VAPS_PER_RADIO;
    }
    // The character's code is tested, not the value of the hexadecimal digit: "2", "3", "6" and "7" have the bit, and
    // so have "b", "c" and "f" of either case. Do not mend this: where the search starts decides which VAP wins when
    // several carry one address.
    if (bssid[1] & 2) {
        index += 1;
    }
    return index;
}

// The first VAP, from the guessed one on and around, whose BSSID is this one; 0 when there is none. log_try writes
// the caller's debug line on every address looked at.
static int find_vap(const char *bssid, void (*log_try)(const char *)) {
    int index = guess_vap(bssid);
    for (int i = 0; i < VAP_COUNT; i++, index++) {
        if (index > VAP_COUNT) {
            index -= VAP_COUNT;
        }
        char vap_bssid[MAC_TEXT_SIZE] = {};
        int status = wlan_getBSSID(index, vap_bssid, sizeof(vap_bssid));
        log_try(vap_bssid);
        if (status == 0 && strncmp(vap_bssid, bssid, MAC_TEXT_LENGTH) == 0) {
            return index;
        }
    }
    return 0;
}

static void log_port_try(const char *vap_bssid) {
    log_debug("[VLK-API] %s %s: v_bssid = %s\n", "wlan_getBssIdPort", "wlan_getBssIdPort", vap_bssid);
}

static void log_vlan_try(const char *vap_bssid) {
    log_debug("[VLK-API] %s v_bssid = %s\n", "wlan_associateVlan", vap_bssid);
}

int wlan_getBssIdPort(const char *bssid, int *port, int *index) {
    *port = 0;
    *index = find_vap(bssid, log_port_try);
    if (*index == 0) {
        log_debug("[VLK-API] %s Error: there is no VAP match\n", __func__);
        return -1;
    }
    int radio = athcfg_get_radio(*index);
    int udma = 0;
    athcfg_getint(0, "UDMA_ENABLE", &udma);
    if (udma) {
        *port = radio == 0 ? UDMA_PORT_RADIO_0 : UDMA_PORT_RADIO_1;
    }
    return 0;
}

static void put_bridge_name(int index, u_short vlan, char *name, size_t size) {
    bool first_of_radio = index == 1 || index == 1 + VAPS_PER_RADIO;
    if (first_of_radio && (vlan == 2 || vlan == 1001)) {
        put_text(name, size, "br0");
        return;
    }
    // VLANs 3 to 9 are shared by the VAPs of equal place on both radios; every other has a bridge a VAP.
    bool shared = vlan >= 3 && vlan <= 9 && index > VAPS_PER_RADIO;
    int place = shared ? index - VAPS_PER_RADIO : index;
    snprintf(name, size, "br%d_%d", place - 1, vlan);
}

int wlan_associateVlan(const char *bssid, u_short vlan) {
    int index = find_vap(bssid, log_vlan_try);
    if (index == 0) {
        log_error("[VLK-API] Error %s Error: there is no VAP match for %s\n", __func__, bssid);
        return -1;
    }
    log_debug("[VLK-API] %s %s: vap index %d found\n", __func__, __func__, index);
    athcfg_setint(index, "AP_VLAN", vlan);
    // VAP 16 never gets a bridge name. The limit is meant: clients count on its AP_BRNAME staying as they left it.
    if (index >= VAP_COUNT) {
        return 0;
    }
    char name[BRIDGE_NAME_SIZE];
    put_bridge_name(index, vlan, name, sizeof(name));
    athcfg_setbyname(index, "AP_BRNAME", name);
    return 0;
}

int wlan_getEnable(int index, int *enabled) {
    log_debug("[VLK-API] %s %s: wlan_getEnable entered\n", __func__, __func__);
    athcfg_getint(index, "AP_ENABLE", enabled);
    return 0;
}

static void give_default_ssid(int index) {
    char ssid[STORE_VALUE_SIZE];
    if (athcfg_getbyname(index, "AP_SSID", ssid, sizeof(ssid)) == 0) {
        return;
    }
    snprintf(ssid, sizeof(ssid), "Atheros_XSpan_%d", index);
    athcfg_setbyname(index, "AP_SSID", ssid);
}

int wlan_setEnable(int index, int enabled) {
    log_debug("[VLK-API] %s %s: wlan_setEnable entered\n", __func__, __func__);
    athcfg_setint(index, "AP_ENABLE", enabled);
    if (enabled) {
        give_default_ssid(index);
    }
    return 0;
}

int wlan_getStatus(int index, char *status, size_t size) {
    log_debug("[VLK-API] %s %s: index = %d\n", __func__, __func__, interface_number(index));
    if (index < 1) {
        put_text(status, size, "Error");
        return 0;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "iwconfig ath%d", interface_number(index));
    if (!output) {
        return -1;
    }
    put_text(status, size, strstr(output, "Access Point:") ? "Up" : "Disable");
    free(output);
    return 0;
}

static const char *find_rate_label(const char *output) {
    const char *label = strstr(output, "Bit Rate:");
    return label ? label : strstr(output, "Bit Rate=");
}

int wlan_getMaxBitRate(int index, char *rate, size_t size) {
    if (index < 1) {
        put_zeros(rate, size);
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "iwconfig ath%d", interface_number(index));
    if (!output) {
        return -1;
    }
    put_text(rate, size, "");
    const char *label = find_rate_label(output);
    if (label) {
        const char *value = label + RATE_LABEL_LENGTH;
        size_t length = strcspn(value, " ");
        put_characters(rate, size, value, length < RATE_LENGTH_MAX ? length : RATE_LENGTH_MAX);
    }
    free(output);
    return 0;
}

int wlan_setMaxBitRate(int, const char *) {
    return 0;
}

int wlan_getChannel(int index, u_int *channel) {
    *channel = 0;
    if (index < 0) {
        return -1;
    }
    int stored = 0;
    athcfg_getint(radio_store_index(athcfg_get_radio(index)), "AP_PRIMARY_CH", &stored);
    *channel = static_cast<u_int>(stored);
    return 0;
}

// The base modes that exist in both bands.
static const struct {
    const char *base_2g;
    const char *base_5g;
} BAND_PAIRS[] = {
    {"11G", "11A"},
    {"11NG", "11NA"},
};

// Changes the base to its counterpart in the other band; a base without one stays.
static void move_to_band(bool band_2g, wlan_mode_info *mode) {
    for (const auto &pair : BAND_PAIRS) {
        const char *from = band_2g ? pair.base_5g : pair.base_2g;
        const char *to = band_2g ? pair.base_2g : pair.base_5g;
        if (strcmp(mode->base, from) == 0) {
            put_text(mode->base, sizeof(mode->base), to);
            return;
        }
    }
}

int wlan_setChannel(int index, u_int channel) {
    int radio = athcfg_get_radio(index);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    bool band_2g = channel <= CHANNEL_MAX_2G;
    // Radio 1 refuses channels of the lower band, radio 0 refuses none of the upper. The asymmetry is meant: clients
    // move radio 0 to 5 GHz this way.
    if (channel != 0 && band_2g && radio == 1) {
        return -1;
    }
    if (channel != 0) {
        move_to_band(band_2g, &mode);
    }
    athcfg_setint(radio_store_index(radio), "AP_PRIMARY_CH", static_cast<int>(channel));
    mode_write(radio, &mode);
    return 0;
}

int wlan_getAutoChannelEnable(int index, int *enabled) {
    char channel[STORE_VALUE_SIZE];
    int store_index = radio_store_index(athcfg_get_radio(index));
    athcfg_getbyname(store_index, "AP_PRIMARY_CH", channel, sizeof(channel));
    *enabled = strstr(channel, "auto") || channel[0] == '0' ? 1 : 0;
    return 0;
}

int wlan_setAutoChannelEnable(int index, int enabled) {
    int radio = athcfg_get_radio(index);
    int store_index = radio_store_index(radio);
    const char *fixed = radio == 1 ? "40" : "6";
    athcfg_setbyname(store_index, "AP_PRIMARY_CH", enabled ? "0" : fixed);
    // Whatever the mode was, and in both directions: clients expect this mode after either.
    athcfg_setbyname(store_index, "AP_CHMODE", radio == 1 ? "11NAHT40MINUS" : "11NGHT20");
    return 0;
}

void pre_process_ssid(const char *input, char *output, size_t size) {
    size_t length = 0;
    for (; *input; input++) {
        bool escape = strchr("\"`\\$", *input) != nullptr;
        if (length + (escape ? 2 : 1) >= size) {
            break;
        }
        if (escape) {
            output[length++] = '\\';
        }
        output[length++] = *input;
    }
    output[length] = '\0';
}

int wlan_getSSID(int index, char *ssid, size_t size) {
    athcfg_getbyname(index, "AP_SSID", ssid, size);
    return 0;
}

int wlan_setSSID(int index, const char *ssid) {
    char cut[SSID_MAX + 1];
    put_characters(cut, sizeof(cut), ssid, SSID_MAX);
    char escaped[ESCAPED_SSID_SIZE] = {};
    pre_process_ssid(cut, escaped, sizeof(escaped));
    athcfg_setbyname(index, "AP_SSID", escaped);
    return 0;
}

int wlan_getCustomSSIDStr(int index, char *ssid, size_t size) {
    return wlan_getSSID(index, ssid, size);
}

int wlan_setCustomSSIDStr(int index, const char *ssid) {
    log_debug("[VLK-API] %s %s: set  CustomSSIDStr %s\n", __func__, __func__, ssid);
    return wlan_setSSID(index, ssid);
}

static const char *get_wpa_family(int index) {
    char wpa[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_WPA", wpa, sizeof(wpa));
    if (strchr(wpa, '2')) {
        return "11i";
    }
    return strchr(wpa, '3') ? "WPAand11i" : "WPA";
}

int wlan_getBeaconType(int index, char *type, size_t size) {
    char mode[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "AP_SECMODE", mode, sizeof(mode));
    if (strstr(mode, "None")) {
        put_text(type, size, "None");
    } else if (strstr(mode, "WEP")) {
        put_text(type, size, "Basic");
    } else if (strstr(mode, "WPA")) {
        put_text(type, size, get_wpa_family(index));
    }
    return 0;
}

// In this order, the first row whose text the client's contains is the one. A null is left as it was in the store.
static const struct {
    const char *type;
    const char *secmode;
    const char *wpa;
} BEACON_TYPES[] = {
    {"None", "None", nullptr}, {"Basic", "WEP", nullptr}, {"WPAand11i", "WPA", "3"},
    {"11i", "WPA", "2"},       {"WPA", "WPA", "1"},
};

int wlan_setBeaconType(int index, const char *type) {
    for (const auto &row : BEACON_TYPES) {
        if (!strstr(type, row.type)) {
            continue;
        }
        athcfg_setbyname(index, "AP_SECMODE", row.secmode);
        if (row.wpa) {
            athcfg_setbyname(index, "AP_WPA", row.wpa);
        }
        return 0;
    }
    return 0;
}

int wlan_getStandard(int index, char *standard, size_t size) {
    int radio = athcfg_get_radio(index);
    log_debug("[VLK-API] %s radio_idx = %d \n", __func__, radio);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    put_text(standard, size, mode.standard);
    return 0;
}

// The letters by which clients name a standard, compared exactly; the pure switch they set, if any; the base mode on
// radio 0 and on radio 1.
struct standard_row {
    const char *letters;
    const char *pure_switch;
    const char *base[2];
};

static const standard_row STANDARDS[] = {
    {"ac", "PUREAC", {"11AC", "11AC"}},
    {"nac", "PUREN", {"11AC", "11AC"}},
    {"anac", nullptr, {"11AC", "11AC"}},
    {"a", nullptr, {"11A", "11A"}},
    {"b", nullptr, {"11B", "11B"}},
    {"bg", nullptr, {"11G", "11G"}},
    {"g", "PUREG", {"11G", "11G"}},
    {"an", nullptr, {"11NA", "11NA"}},
    {"gn", "PUREG", {"11NG", "11NG"}},
    {"bgn", nullptr, {"11NG", "11NG"}},
    // Radio 1 is the 5 GHz radio everywhere else; here it is the other way round. Do not mend this: clients that set
    // "n" expect the base they have always got.
    {"n", "PUREN", {"11NA", "11NG"}},
};

static const standard_row *find_standard(const char *letters) {
    for (const standard_row &row : STANDARDS) {
        if (strcmp(letters, row.letters) == 0) {
            return &row;
        }
    }
    return nullptr;
}

int wlan_setStandard(int index, const char *standard) {
    if (index < 0) {
        return -1;
    }
    int radio = athcfg_get_radio(index);
    int store_index = radio_store_index(radio);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    // Letters longer than any standard are cut here and match no row below.
    put_text(mode.standard, sizeof(mode.standard), standard);
    athcfg_setbyname(store_index, "PUREN", "0");
    athcfg_setbyname(store_index, "PUREG", "0");
    athcfg_setbyname(store_index, "PUREAC", "0");
    const standard_row *row = find_standard(standard);
    if (row && row->pure_switch) {
        athcfg_setbyname(store_index, row->pure_switch, "1");
    }
    if (row) {
        put_text(mode.base, sizeof(mode.base), row->base[radio]);
    }
    mode_write(radio, &mode);
    return 0;
}

NUMBER_SETTING(wlan_getMacAddressControlEnabled, wlan_setMacAddressControlEnabled, int, "AP_MACADDRCTLEN", SCOPE_VAP,
               CHECK_INDEX, ABSENT_ZERO, QUIET)
