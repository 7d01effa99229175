// Radio tuning and regulatory settings: country, HT rate, channel width, extension channel, chain masks, protection,
// thresholds, aggregation, isolation, and settings that are only remembered.
//
// Touches the store, runs `iwpriv` and `iwconfig`, asks the driver for its channel table. Runs on the service thread.
#include "params/tuning.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>

#include "config/command.h"
#include "config/log.h"
#include "config/mode.h"
#include "config/store.h"
#include "config/text.h"
#include "config/wireless.h"
#include "params/countries.h"
#include "params/settings.h"
#include "params/vap.h"

// Store index of the settings that the VAP's radio has once.
static int radio_settings_index(int index) {
    return radio_store_index(athcfg_get_radio(index));
}

// What stands behind the label in a tool's output; null where it is missing, and where there is no output.
static const char *find_behind(const char *output, const char *label) {
    const char *found = output ? strstr(output, label) : nullptr;
    return found ? found + strlen(label) : nullptr;
}

// --- country ---

// What clients show for a gateway without a country. The status still says that there is none.
constexpr const char DEFAULT_COUNTRY[] = "US";

int wlan_getCountryCode(int index, char *country, size_t size) {
    if (index < 0) {
        return -1;
    }
    put_text(country, size, DEFAULT_COUNTRY);
    char stored[STORE_VALUE_SIZE];
    if (athcfg_getbyname(radio_settings_index(index), "ATH_countrycode", stored, sizeof(stored)) != 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: get ATH_countrycode %s\n", __func__, __func__, stored);
    const char *text = country_text(atoi(stored));
    if (!text) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: get country name %s\n", __func__, __func__, text);
    put_text(country, size, text);
    return 0;
}

int wlan_setCountryCode(int index, const char *country) {
    if (index < 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: set ATH_countrycode %s\n", __func__, __func__, country);
    int number = country_number(country);
    if (number < 0) {
        return -1;
    }
    athcfg_setint(radio_settings_index(index), "ATH_countrycode", number);
    return 0;
}

// --- HT rate ---

// Clients count from here: 0 and 1 are automatic, 2 is MCS 0.
constexpr u_int FIRST_FIXED_MCS = 2;

// The driver's code of an 802.11n rate is 0x80 and the MCS.
constexpr u_int RATE_CODE_OFFSET = 0x80 - FIRST_FIXED_MCS;

// 802.11ac ends with MCS 9.
constexpr u_int LAST_MCS_11AC = 9 + FIRST_FIXED_MCS;

// "0x" and four codes of at most eight digits, and the NUL.
constexpr size_t RATE_CODES_SIZE = sizeof("0x") + size_t{4} * 8;

// How the radio's mode names a fixed rate.
enum rate_family {
    RATES_11N,
    RATES_11AC,
    RATES_NONE,
};

static rate_family read_rate_family(int store_index) {
    char mode[STORE_VALUE_SIZE];
    athcfg_getbyname(store_index, "AP_CHMODE", mode, sizeof(mode));
    if (strstr(mode, "11N")) {
        return RATES_11N;
    }
    return strstr(mode, "11AC") ? RATES_11AC : RATES_NONE;
}

static bool is_rate_automatic(int store_index) {
    char control[STORE_VALUE_SIZE];
    athcfg_getbyname(store_index, "RATECTL", control, sizeof(control));
    return strcasecmp(control, "auto") == 0;
}

// The MCS of four rate codes ("0x87878787"), as clients count it: from the first code, whatever it is. One below 0x7e,
// as an absent key has, wraps. The text is a number in any base; what does not fit 32 bits counts as all of them set
// and what is negative wraps, on every machine as strtoul does it where words have 32 bits.
static u_int mcs_of_rate_codes(const char *text) {
    constexpr long long largest = UINT32_MAX;
    long long number = strtoll(text, nullptr, 0);
    bool fits = number >= -largest && number <= largest;
    uint32_t codes = fits ? static_cast<uint32_t>(number) : UINT32_MAX;
    return (codes >> 24) - RATE_CODE_OFFSET;
}

int wlan_getHTMcs(int index, u_int *mcs) {
    if (index < 0) {
        return -1;
    }
    *mcs = 0;
    int store_index = radio_settings_index(index);
    rate_family family = read_rate_family(store_index);
    if (family == RATES_NONE || is_rate_automatic(store_index)) {
        return 0;
    }
    char rate[STORE_VALUE_SIZE];
    athcfg_getbyname(store_index, "MANRATE", rate, sizeof(rate));
    *mcs = family == RATES_11N ? mcs_of_rate_codes(rate) : static_cast<u_int>(atoi(rate)) + FIRST_FIXED_MCS;
    return 0;
}

// No value is refused: the code of one beyond the driver's rates has more digits or wraps, and is written like that.
// Clients rely on the driver to sort them out; do not add a bound.
static void fix_rate_11n(int store_index, u_int mcs) {
    u_int code = mcs + RATE_CODE_OFFSET;
    char codes[RATE_CODES_SIZE];
    snprintf(codes, sizeof(codes), "0x%x%x%x%x", code, code, code, code);
    athcfg_setbyname(store_index, "MANRATE", codes);
    athcfg_setbyname(store_index, "MANRETRIES", "0x04040404");
    athcfg_setbyname(store_index, "RATECTL", "fix");
}

static void fix_rate_11ac(int store_index, u_int mcs) {
    athcfg_setbyname(store_index, "RATECTL", "fix");
    athcfg_setint(store_index, "MANRATE", static_cast<int>(mcs - FIRST_FIXED_MCS));
}

int wlan_setHTMcs(int index, u_int mcs) {
    if (index < 0) {
        return -1;
    }
    int store_index = radio_settings_index(index);
    rate_family family = read_rate_family(store_index);
    if (family == RATES_NONE || (family == RATES_11AC && mcs > LAST_MCS_11AC)) {
        return -1;
    }
    if (mcs < FIRST_FIXED_MCS) {
        athcfg_setbyname(store_index, "RATECTL", "auto");
    } else if (family == RATES_11N) {
        fix_rate_11n(store_index, mcs);
    } else {
        fix_rate_11ac(store_index, mcs);
    }
    return 0;
}

// --- channel width ---

// The bits of a channel's flags by which it can be 80 MHz wide, and those of which any lets it be 40 MHz wide.
constexpr uint32_t CHANNEL_FLAGS_80 = 0x800000;
constexpr uint32_t CHANNEL_FLAGS_40 = 0x660000;

// What an automatic channel is taken for: radio 0 has no 80 MHz.
constexpr uint32_t AUTOMATIC_FLAGS_RADIO_1 = 0xff0000;
constexpr uint32_t AUTOMATIC_FLAGS_RADIO_0 = 0x7f0000;

// The flags of a channel. Where the driver does not answer, all of them: the -1 of get_channels is taken as it comes,
// so that nothing is refused for want of an answer.
static uint32_t channel_flags(int index, int radio, u_int channel) {
    if (channel == 0) {
        return radio == 1 ? AUTOMATIC_FLAGS_RADIO_1 : AUTOMATIC_FLAGS_RADIO_0;
    }
    char interface[INTERFACE_NAME_SIZE];
    interface_name(index, interface);
    return static_cast<uint32_t>(get_channels(interface, channel));
}

static channel_width_code widest_of(uint32_t flags) {
    if (flags & CHANNEL_FLAGS_80) {
        return WIDTH_80;
    }
    return flags & CHANNEL_FLAGS_40 ? WIDTH_40 : WIDTH_20;
}

int wlan_getMaxBandwidth(int index, int channel, int *width) {
    if (index < 0) {
        return -1;
    }
    athcfg_set_path();
    *width = widest_of(channel_flags(index, athcfg_get_radio(index), static_cast<u_int>(channel)));
    return 0;
}

int wlan_getChannelBW(int index, int *width) {
    if (index < 0) {
        return -1;
    }
    wlan_mode_info mode;
    mode_parsing(athcfg_get_radio(index), &mode);
    *width = mode.width == WIDTH_NONE ? 0 : mode.width - 1;
    return 0;
}

// The width that a client's number stands for; the widest where the channel cannot have it.
static channel_width_code choose_width(int width, channel_width_code widest) {
    switch (width) {
        case 0:
            return WIDTH_20;
        case 1:
            return widest < WIDTH_40 ? widest : WIDTH_40;
        case 2:
            return widest < WIDTH_40 ? widest : WIDTH_40_DISCOEXT;
        default:
            return widest;
    }
}

int wlan_setChannelBW(int index, int width) {
    if (index < 0) {
        return -1;
    }
    int radio = athcfg_get_radio(index);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    u_int channel = 0;
    wlan_getChannel(index, &channel);
    uint32_t flags = channel_flags(index, radio, channel);
    channel_width_code widest = widest_of(flags);
    log_error("chan_flag %08x maxband=%d bw=%d\n", flags, widest, width);
    mode.width = choose_width(width, widest);
    // Also where the channel cannot be 40 MHz wide: the setting is there for the next one that can.
    if (width == 1 || width == 2) {
        athcfg_setbyname(radio_store_index(radio), "AP_DISCOEXT", width == 1 ? "0" : "1");
    }
    mode_write(radio, &mode);
    return 0;
}

// --- extension channel ---

int wlan_getExtensionChannel(int index, int, int *side) {
    if (index < 0) {
        return -1;
    }
    char mode[STORE_VALUE_SIZE];
    athcfg_getbyname(radio_settings_index(index), "AP_CHMODE", mode, sizeof(mode));
    if (strstr(mode, "MINUS")) {
        *side = 0;
    } else {
        *side = strstr(mode, "PLUS") ? 1 : 2;
    }
    return 0;
}

int wlan_setExtensionChannel(int index, int, int side) {
    static const extension_side sides[] = {SIDE_BELOW, SIDE_ABOVE, SIDE_UNSTATED};
    if (index < 0) {
        return -1;
    }
    int radio = athcfg_get_radio(index);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    if (side < 0 || side > 2) {
        return -1;
    }
    mode.offset = sides[side];
    mode_write(radio, &mode);
    return 0;
}

// --- chain masks ---

// A mask has one bit a chain, from the lowest.
static int streams_of_mask(int mask) {
    if (mask == 7) {
        return 3;
    }
    return mask == 3 ? 2 : 1;
}

static int mask_of_streams(int streams) {
    if (streams == 3) {
        return 7;
    }
    return streams == 2 ? 3 : 1;
}

// Asks the tool for a mask. It answers with the parameter's name, a colon and the number.
static int get_streams(const char *caller, int index, const char *parameter, int *streams) {
    if (index < 0) {
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(caller, &output, "iwpriv wifi%d %s", athcfg_get_radio(index), parameter);
    char label[sizeof("get_txchainmask:")];
    snprintf(label, sizeof(label), "%s:", parameter);
    const char *value = find_behind(output, label);
    if (value) {
        *streams = streams_of_mask(atoi(value));
    }
    free(output);
    return value ? 0 : -1;
}

// Keeps the mask for the radio under the key, and has the driver take it up.
static int set_streams(const char *caller, int index, const char *key, const char *parameter, int streams) {
    if (index < 0) {
        return -1;
    }
    int radio = athcfg_get_radio(index);
    int mask = mask_of_streams(streams);
    athcfg_setint(radio_store_index(radio), key, mask);
    athcfg_runcmdf(caller, "iwpriv wifi%d %s %d", radio, parameter, mask);
    return 0;
}

int wlan_getHTTxStream(int index, int *streams) {
    return get_streams(__func__, index, "get_txchainmask", streams);
}

int wlan_setHTTxStream(int index, int streams) {
    return set_streams(__func__, index, "TX_CHAINMASK", "txchainmask", streams);
}

int wlan_getHTRxStream(int index, int *streams) {
    return get_streams(__func__, index, "get_rxchainmask", streams);
}

int wlan_setHTRxStream(int index, int streams) {
    return set_streams(__func__, index, "RX_CHAINMASK", "rxchainmask", streams);
}

// --- quality of service by SSID ---

// A level is given out as text of at most so many characters.
constexpr size_t SSIDQOS_LEVEL_LENGTH = 2;

// Here and in the setter the VAP index itself is the radio's number. Do not mend this: clients send it as such.
int wlan_getSsidQosEnabled(int index, int *enabled) {
    if (index < 0) {
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "iwpriv wifi%d get_ssidqos_ena", index);
    if (!output) {
        return -1;
    }
    const char *value = find_behind(output, "get_ssidqos_ena:");
    if (value) {
        const char digit[] = {*value, '\0'};
        *enabled = atoi(digit);
    }
    free(output);
    return 0;
}

int wlan_setSsidQosEnabled(int index, int enabled) {
    if (index < 0) {
        return -1;
    }
    athcfg_runcmdf(__func__, "iwpriv wifi%d ssidqos_ena %d", index, enabled);
    return 0;
}

int wlan_getSsidQosLevel(int index, char *level, size_t size) {
    if (index < 0) {
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "iwpriv ath%d get_ssidqos_lvl", interface_number(index));
    if (!output) {
        return -1;
    }
    const char *value = find_behind(output, "get_ssidqos_lvl:");
    if (value) {
        put_characters(level, size, value, SSIDQOS_LEVEL_LENGTH);
    }
    free(output);
    return 0;
}

int wlan_setSsidQosLevel(int index, const char *level) {
    if (index < 0) {
        return -1;
    }
    athcfg_runcmdf(__func__, "iwpriv ath%d ssidqos_lvl %s", interface_number(index), level);
    return 0;
}

// --- current channel ---

// Of a frequency in GHz, so many characters are looked at: "2.437", "5.18 ", "5.2 G".
constexpr size_t FREQUENCY_LENGTH = 5;

// Frequencies in MHz where the channels of the bands are counted from, and what lies between two.
constexpr int BAND_2G_BASE = 2407;
constexpr int BAND_5G_BASE = 5000;
constexpr int CHANNEL_SPACING = 5;

// The channel of a frequency of FREQUENCY_LENGTH characters, filled up with NULs. Returns -1 for anything that does not
// begin with one digit and a point.
//
// Channel 14 (2.484 GHz) comes out as 15, as the rule of its band has it. Do not mend this: clients know it by that.
static int channel_of_frequency(const char *frequency, int *channel) {
    if (frequency[0] < '0' || frequency[0] > '9' || frequency[1] != '.') {
        return -1;
    }
    int base = (frequency[0] - '0') * 1000;
    char digits[FREQUENCY_LENGTH - 1] = {frequency[2], frequency[3], frequency[4], '\0'};
    if (base != BAND_5G_BASE) {
        *channel = (base + atoi(digits) - BAND_2G_BASE) / CHANNEL_SPACING;
        return 0;
    }
    // The tool leaves the zeros at the end away.
    if (digits[2] == ' ' || digits[2] == 'G') {
        digits[2] = '0';
    }
    if (digits[1] == ' ') {
        digits[1] = '0';
    }
    *channel = atoi(digits) / CHANNEL_SPACING;
    return 0;
}

int wlan_getCurrentChannel(int index, int *channel) {
    if (index < 0) {
        *channel = 0;
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "iwconfig ath%d", interface_number(index));
    const char *value = find_behind(output, "Frequency:");
    int status = -1;
    if (value) {
        char frequency[FREQUENCY_LENGTH + 1] = {};
        put_characters(frequency, sizeof(frequency), value, FREQUENCY_LENGTH);
        log_debug("[VLK-API] %s %s: freq %s\n", __func__, __func__, frequency);
        status = channel_of_frequency(frequency, channel);
    }
    free(output);
    return status;
}

// --- 802.11u ---

static int refuse_as_not_implemented(void) {
    log_always("Has not been implemented\n");
    return -1;
}

int wlan_getDot11uEnable(int, int *) {
    return refuse_as_not_implemented();
}

int wlan_setDot11uEnable(int, int) {
    return refuse_as_not_implemented();
}

int wlan_getDot11uAttribute(int, int *, int *, int *, int *, int *) {
    return refuse_as_not_implemented();
}

int wlan_setDot11uAttribute(int, int, int, int, int, int) {
    return refuse_as_not_implemented();
}

// --- numbers of the store ---
//
// One row a pair; the pairs that do more stand written out at their places. Keys that begin with DUMMY_ are only
// remembered: the driver does not know them.

// clang-format off

NUMBER_SETTING(wlan_getBGProtection,       wlan_setBGProtection,       int,   "AP_PROTMODE",           SCOPE_GROUP, CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getBeaconInterval,     wlan_setBeaconInterval,     u_int, "BEACON_INT",            SCOPE_VAP,   CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getDtimPeriod,         wlan_setDtimPeriod,         u_int, "AP_DTIM",               SCOPE_VAP,   CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getTxPreamble,         wlan_setTxPreamble,         int,   "AP_TXPREAMBLE",         SCOPE_GROUP, CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getRTSThreshold,       wlan_setRTSThreshold,       u_int, "AP_RTSTHRES",           SCOPE_VAP,   CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getFragThreshold,      wlan_setFragThreshold,      u_int, "AP_FRAGTHRES",          SCOPE_VAP,   CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)
NUMBER_SETTING(wlan_getTxBurst,            wlan_setTxBurst,            int,   "AP_TXBURST",            SCOPE_RADIO, CHECK_INDEX, ABSENT_UNTOUCHED, LOGGED)

// The driver stores whether the interval is short, clients say whether it is long. Other values pass as they are.
static int swap_guard_interval(int value) {
    return value == 0 || value == 1 ? 1 - value : value;
}

constexpr number_setting GUARD_INTERVAL = {"AP_SHORTGI", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO, QUIET};

int wlan_getGuardInterval(int index, int *guard_interval) {
    // An absent key is a 0 of the driver's, a 1 for the client.
    if (get_number(&GUARD_INTERVAL, __func__, index, guard_interval) != 0) {
        return -1;
    }
    *guard_interval = swap_guard_interval(*guard_interval);
    return 0;
}

int wlan_setGuardInterval(int index, int guard_interval) {
    return set_number(&GUARD_INTERVAL, index, swap_guard_interval(guard_interval));
}

NUMBER_SETTING(wlan_getAmsdu,              wlan_setAmsdu,              int,   "AP_AMSDU",              SCOPE_RADIO, CHECK_INDEX, ABSENT_UNTOUCHED, QUIET)
NUMBER_SETTING(wlan_getBADecline,          wlan_setBADecline,          int,   "AP_BADECLINE",          SCOPE_RADIO, CHECK_INDEX, ABSENT_UNTOUCHED, QUIET)
NUMBER_SETTING(wlan_getBlockAck,           wlan_setBlockAck,           int,   "AMPDUENABLE",           SCOPE_RADIO, CHECK_INDEX, ABSENT_UNTOUCHED, QUIET)

constexpr number_setting TX_STBC = {"AP_TXSTBC", SCOPE_RADIO, CHECK_INDEX, ABSENT_ZERO, QUIET};
constexpr number_setting RX_STBC = {"AP_RXSTBC", SCOPE_RADIO, CHECK_INDEX, ABSENT_ZERO, QUIET};

int wlan_getHTStbc(int index, int *enabled) {
    return get_number(&TX_STBC, __func__, index, enabled);
}

int wlan_setHTStbc(int index, int enabled) {
    if (set_number(&TX_STBC, index, enabled) != 0) {
        return -1;
    }
    return set_number(&RX_STBC, index, enabled);
}

NUMBER_SETTING(wlan_getIeee80211hEnable,   wlan_setIeee80211hEnable,   int,   "AP_EN11H",              SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getShortSlot,          wlan_setShortSlot,          int,   "DUMMY_SHORTSLOT",       SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getShortRetryLimit,    wlan_setShortRetryLimit,    u_int, "DUMMY_SHORTRETRYLIMIT", SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getLongRetryLimit,     wlan_setLongRetryLimit,     u_int, "DUMMY_LONGRETRYLIMIT",  SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getHTMode,             wlan_setHTMode,             int,   "PUREN",                 SCOPE_RADIO, CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getNProtection,        wlan_setNProtection,        int,   "DUMMY_NPROT",           SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getSideBand,           wlan_setSideBand,           int,   "DUMMY_SIDEBAND",        SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getHTRDG,              wlan_setHTRDG,              int,   "DUMMY_HTRDG",           SCOPE_VAP,   CHECK_INDEX, ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getBssIsolate,         wlan_setBssIsolate,         int,   "AP_APBRI",              SCOPE_VAP,   CHECK_INDEX, ABSENT_FAILS,     QUIET)

constexpr number_setting STATION_ISOLATE = {"AP_STATIONISOLATE", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO, QUIET};

int wlan_getStationIsolate(int index, int *enabled) {
    return get_number(&STATION_ISOLATE, __func__, index, enabled);
}

int wlan_setStationIsolate(int index, int enabled) {
    if (set_number(&STATION_ISOLATE, index, enabled) != 0) {
        return -1;
    }
    athcfg_runcmdf(__func__, "iwpriv ath%d l2tif %d", interface_number(index), enabled);
    return 0;
}

constexpr number_setting IGMP_SNOOPING = {"AP_IGMP_SNOOP", SCOPE_VAP, CHECK_INDEX, ABSENT_FAILS, LOGGED};

// What the driver calls snooping that is on. Any other stored number, 1 too, is off.
constexpr int IGMP_SNOOPING_ON = 2;

int wlan_getIGMPSnooping(int index, int *enabled) {
    int stored = 0;
    if (get_number(&IGMP_SNOOPING, __func__, index, &stored) != 0) {
        return -1;
    }
    *enabled = stored == IGMP_SNOOPING_ON ? 1 : 0;
    return 0;
}

int wlan_setIGMPSnooping(int index, int enabled) {
    return set_number(&IGMP_SNOOPING, index, enabled ? IGMP_SNOOPING_ON : 0);
}

NUMBER_SETTING(wlan_getBlockDFSinACS,      wlan_setBlockDFSinACS,      int,   "AP_BLK_DFS",            SCOPE_RADIO, CHECK_INDEX, ABSENT_FAILS,     QUIET)
NUMBER_SETTING(wlan_getMaxStationNum,      wlan_setMaxStationNum,      int,   "AP_MAX_STA",            SCOPE_VAP,   CHECK_INDEX, ABSENT_FAILS,     QUIET)

constexpr number_setting BEAMFORMING = {"AP_TXBF", SCOPE_RADIO, CHECK_INDEX, ABSENT_FAILS, QUIET};

int wlan_getImplicitBeamformingEnable(int index, int *enabled) {
    return get_number(&BEAMFORMING, __func__, index, enabled);
}

// Only index 0, and with it only the first VAP's radio, can be set. Do not mend this: clients know that they cannot
// switch beamforming for a VAP, and take the -1 for the answer.
int wlan_setImplicitBeamformingEnable(int index, int enabled) {
    if (index != 0) {
        return -1;
    }
    return set_number(&BEAMFORMING, index, enabled);
}

NUMBER_SETTING(wlan_getStaAssocRssiThresh, wlan_setStaAssocRssiThresh, int,   "AP_STA_RSSI_THRESH",    SCOPE_VAP,   ANY_INDEX,   ABSENT_ZERO,      QUIET)
NUMBER_SETTING(wlan_getBssWeight,          wlan_setBssWeight,          int,   "AP_BSSWEIGHT",          SCOPE_VAP,   ANY_INDEX,   ABSENT_ZERO,      QUIET)

// clang-format on
