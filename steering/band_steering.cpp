// Band steering: its settings, whether the driver really steers, and the driver's two tables.
//
// Touches the store, /nvram/5gcapabletable and the driver's debug requests (steering/steering_tables), and runs
// `wifitool`. Runs on the service thread.
#include "steering/band_steering.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/wireless.h"
#include "params/settings.h"
#include "params/vap.h"
#include "steering/steering_tables.h"

// A longest key and its suffix.
constexpr size_t KEY_SIZE = 64;

// "wifitool ath%d clr_tmpblacklist2g" with room for any number.
constexpr size_t TOOL_COMMAND_SIZE = 64;

// The driver's tool says within this many bytes whether steering still needs to be brought up; nobody looks further.
constexpr size_t STEERING_STATUS_SIZE = 128;

// The first request for the black list only asks how many entries there are: one is all it has room for.
constexpr uint32_t BLACKLIST_PROBE_SIZE = sizeof(wlan_2g_temp_blacklist_table_t::entries[0]);
constexpr uint32_t BLACKLIST_ENTRIES_MAX = sizeof(wlan_2g_temp_blacklist_table_t) / BLACKLIST_PROBE_SIZE;
static_assert(BLACKLIST_PROBE_SIZE == 32 && BLACKLIST_ENTRIES_MAX == 64);

// --- settings of the whole device ---

// What is added to a value before it is stored: clients speak of dBm, the driver of dB above -100 dBm.
constexpr int AS_GIVEN = 0;
constexpr int FROM_DBM = 100;

constexpr int RSSI_MIN = -255;
constexpr int RSSI_MAX = 0;

// One number under a bare key.
struct device_setting {
    const char *key;
    int lowest;
    int highest;
    int offset;
};

// The store may hold any number: unsigned arithmetic has no overflow.
static int add(int number, int offset) {
    return static_cast<int>(static_cast<u_int>(number) + static_cast<u_int>(offset));
}

static int get_device_number(const device_setting *setting, const char *caller, int *value) {
    number_setting stored = {setting->key, SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, LOGGED};
    int number = 0;
    if (get_number(&stored, caller, 0, &number) != 0) {
        return -1;
    }
    *value = add(number, -setting->offset);
    return 0;
}

static int set_device_number(const device_setting *setting, int value) {
    if (value < setting->lowest || value > setting->highest) {
        return -1;
    }
    athcfg_setint(0, setting->key, add(value, setting->offset));
    return 0;
}

// Defines both operations of a setting. type is int or u_int: a u_int beyond INT_MAX is a negative number here, which
// no range of an u_int has.
#define DEVICE_SETTING(getter, setter, type, key, lowest, highest, offset)           \
    int getter(type *value) {                                                        \
        static constexpr device_setting setting = {key, lowest, highest, offset};    \
        return get_device_number(&setting, #getter, reinterpret_cast<int *>(value)); \
    }                                                                                \
    int setter(type value) {                                                         \
        static constexpr device_setting setting = {key, lowest, highest, offset};    \
        return set_device_number(&setting, static_cast<int>(value));                 \
    }

// clang-format off
DEVICE_SETTING(wlan_getBandSteerEnable, wlan_setBandSteerEnable, int, "BS_ENABLE", 0, 3, AS_GIVEN)
DEVICE_SETTING(wlan_getBandSteer2gRssiLowLimitThreshold, wlan_setBandSteer2gRssiLowLimitThreshold, int,
               "BS_IS_RSSI_STEERPOINT_DG", RSSI_MIN, RSSI_MAX, FROM_DBM)
DEVICE_SETTING(wlan_getBandSteer5gRssiGoodLimitThreshold, wlan_setBandSteer5gRssiGoodLimitThreshold, int,
               "BS_IS_RSSI_STEERING_POINT_UG", RSSI_MIN, RSSI_MAX, FROM_DBM)

// Two settings that travel together.
constexpr const char NORMAL_INACTIVITY_KEY[] = "BS_IS_NORM_INACT_TIMEOUT";
constexpr const char OVERLOAD_INACTIVITY_KEY[] = "BS_IS_OVERLOAD_INACT_TIMEOUT";

// The index is ignored, and any number of seconds is taken.
NUMBER_SETTING(wlan_getBandSteerUtilSampleRate, wlan_setBandSteerUtilSampleRate, u_int,
               "BS_BANDMON_MUCHECK_INTERVAL_W2", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, LOGGED)
NUMBER_SETTING(wlan_getBandSteerUtilAvgPeriod, wlan_setBandSteerUtilAvgPeriod, u_int,
               "BS_OL_MU_AVG_PERIOD", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, LOGGED)
NUMBER_SETTING(wlan_getBandSteerDeferPeriod, wlan_setBandSteerDeferPeriod, u_int,
               "BS_SE_STEERINGPROHIBITTIME", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, LOGGED)

// Chosen by the index.
constexpr device_setting ASSOC_LOW_RSSI_2G = {"BS_SE_TARGETLOWRSSITHRESHOLD_W2", RSSI_MIN, RSSI_MAX, FROM_DBM};
constexpr device_setting ASSOC_LOW_RSSI_5G = {"BS_SE_TARGETLOWRSSITHRESHOLD_W5", RSSI_MIN, RSSI_MAX, FROM_DBM};

DEVICE_SETTING(wlan_getBandSteerTime, wlan_setBandSteerTime, u_int, "BS_SE_TSTEERING", 0, 20, AS_GIVEN)
DEVICE_SETTING(wlan_getBandSteerCount, wlan_setBandSteerCount, u_int, "BS_SE_AUTHREJMAX", 0, 3, AS_GIVEN)
// clang-format on

static bool is_vap(int index) {
    return index >= 1 && index <= VAP_COUNT;
}

int wlan_getBandSteerInactivitySteerTime(int index, u_int *normal, u_int *overload) {
    // One index more than can be set. Do not mend it: clients that count one too far have always been answered.
    if (!is_vap(index) && index != VAP_COUNT + 1) {
        return -1;
    }
    char normal_text[STORE_VALUE_SIZE];
    char overload_text[STORE_VALUE_SIZE];
    bool has_normal = athcfg_getbyname(0, NORMAL_INACTIVITY_KEY, normal_text, sizeof(normal_text)) == 0;
    bool has_overload = athcfg_getbyname(0, OVERLOAD_INACTIVITY_KEY, overload_text, sizeof(overload_text)) == 0;
    if (!has_normal || !has_overload) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: get BS_IS_NORM_INACT_TIMEOUT %s, BS_IS_OVERLOAD_INACT_TIMEOUT %s\n", __func__, __func__,
              normal_text, overload_text);
    *normal = static_cast<u_int>(atoi(normal_text));
    *overload = static_cast<u_int>(atoi(overload_text));
    return 0;
}

int wlan_setBandSteerInactivitySteerTime(int index, u_int normal, u_int overload) {
    // No failure: clients that set every index they know of stop at the first one.
    if (!is_vap(index)) {
        return 0;
    }
    athcfg_setint(0, NORMAL_INACTIVITY_KEY, static_cast<int>(normal));
    athcfg_setint(0, OVERLOAD_INACTIVITY_KEY, static_cast<int>(overload));
    return 0;
}

// The threshold of the VAP's radio, null where the index stands for none.
static const device_setting *find_assoc_low_rssi(int index) {
    if (!is_vap(index)) {
        return nullptr;
    }
    return index <= VAPS_PER_RADIO ? &ASSOC_LOW_RSSI_2G : &ASSOC_LOW_RSSI_5G;
}

int wlan_getBandSteerAssocLowRssiThreshold(int index, int *dbm) {
    const device_setting *setting = find_assoc_low_rssi(index);
    return setting ? get_device_number(setting, __func__, dbm) : -1;
}

int wlan_setBandSteerAssocLowRssiThreshold(int index, int dbm) {
    // The value is refused before the index is looked at; an index that stands for no radio is no failure, see the
    // inactivity times.
    if (dbm < RSSI_MIN || dbm > RSSI_MAX) {
        return -1;
    }
    const device_setting *setting = find_assoc_low_rssi(index);
    return setting ? set_device_number(setting, dbm) : 0;
}

// --- settings of a BSS ---

static int get_pair_number(const char *key, const char *caller, int index, int *value) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    number_setting setting = {key, SCOPE_VAP, ANY_INDEX, ABSENT_FAILS, LOGGED};
    return get_number(&setting, caller, index, value);
}

// Writes one member of the pair under the whole name of its key.
static void set_member(const char *key, int index, int value) {
    char name[KEY_SIZE];
    snprintf(name, sizeof(name), "%s_%d", key, index);
    athcfg_setint(0, name, value);
}

static int set_pair_number(const char *key, int lowest, int highest, int index, int value) {
    if (!is_steered_pair(index) || value < lowest || value > highest) {
        return -1;
    }
    if (index == 1) {
        athcfg_setint(0, key, value);
    } else {
        set_member(key, index, value);
    }
    set_member(key, index + VAPS_PER_RADIO, value);
    return 0;
}

#define PAIR_GETTER(getter, key)                            \
    int getter(int index, int *value) {                     \
        return get_pair_number(key, #getter, index, value); \
    }
#define PAIR_SETTER(setter, key, lowest, highest)                   \
    int setter(int index, int value) {                              \
        return set_pair_number(key, lowest, highest, index, value); \
    }
#define PAIR_SETTING(getter, setter, key, lowest, highest) \
    PAIR_GETTER(getter, key)                               \
    PAIR_SETTER(setter, key, lowest, highest)

constexpr const char BSS_ENABLE_KEY[] = "BS_BSS_ENABLE";

// clang-format off
PAIR_SETTER(wlan_setBssBandSteerEnable, BSS_ENABLE_KEY, 0, 2)  // its getter asks the driver too: see below
PAIR_SETTING(wlan_getBssBandSteer5gRssiThreshold, wlan_setBssBandSteer5gRssiThreshold,
             "BS_BSS_RSSI_THRESHOLD5", -100, -1)
PAIR_SETTING(wlan_getBssBandSteerDelta5gRssiThreshold, wlan_setBssBandSteerDelta5gRssiThreshold,
             "BS_BSS_RSSI_DELTA_THRESHOLD", 0, 100)
PAIR_SETTING(wlan_getBssBandSteer2gTempTimeout, wlan_setBssBandSteer2gTempTimeout,
             "BS_BSS_TEMP_TIMEOUT2", 0, 100000)
// clang-format on

// Whether the driver says that steering is configured but still has to be brought up.
static bool needs_bringing_up(int index) {
    char command[TOOL_COMMAND_SIZE];
    snprintf(command, sizeof(command), "wifitool ath%d bandsteering_status", interface_number(index));
    char status[STEERING_STATUS_SIZE + 1] = {};
    read_command(command, status, STEERING_STATUS_SIZE);
    return strstr(status, "need to") != nullptr;
}

int wlan_getBssBandSteerEnable(int index, int *enabled) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    char stored[STORE_VALUE_SIZE];
    if (athcfg_getbyname(index, BSS_ENABLE_KEY, stored, sizeof(stored)) == 0) {
        // It names the key of the whole device. People look for the line as it is.
        log_debug("[VLK-API] %s %s: get BS_ENABLE %s\n", __func__, __func__, stored);
        *enabled = atoi(stored);
    }
    if (needs_bringing_up(index)) {
        *enabled = 0;
        log_always("Debug info: involve the need to up");  // no line break: whoever watches the output knows it so
    }
    return 0;
}

// --- tables of a BSS ---

int wlan_getBssBandSteer5gCapableTable(int index, int *count, wlan_5g_capable_table_t *table) {
    *count = 0;
    if (!table) {
        return -1;
    }
    *table = {};
    int status = read5GHzCapableTable(index, table);
    if (status == 0) {
        *count = static_cast<int>(table->count);
    }
    return status;
}

int wlan_setBssBandSteer5gCapableClear(int index, int) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    int status = clear5GHzCapableTable(index);
    if (status != 0) {
        return status;
    }
    if (request_debug(index, IEEE80211_DBGREQ_CLRCAPABLETABLE_5G, nullptr, 0) < 0) {
        log_always("error in ioctl ");
    } else {
        log_always("IEEE80211_IOCTL_DBGREQ: IEEE80211_DBGREQ_CLRCAPABLETABLE_5G OK  ");
    }
    return status;
}

// Asks for the number of entries, then for the entries. The buffer is the driver's to read and to write, and has the
// size of the table.
static int fetch_blacklist(int index, int *count, void *buffer) {
    if (request_debug(index, DBGREQ_TEMP_BLACKLIST_2G, buffer, BLACKLIST_PROBE_SIZE) < 0) {
        log_debug("[VLK-API] %s error in ioctl \n", "wlan_getBssBandSteer2gTempBlacklistTable");
        return -1;
    }
    uint32_t entries;
    memcpy(&entries, buffer, sizeof(entries));
    if (entries > BLACKLIST_ENTRIES_MAX) {
        entries = BLACKLIST_ENTRIES_MAX;
    }
    *count = static_cast<int>(entries);
    // How the driver is told that it may write so many.
    const uint32_t order[] = {entries, 1};
    memset(buffer, 0, sizeof(wlan_2g_temp_blacklist_table_t));
    memcpy(buffer, order, sizeof(order));
    if (request_debug(index, DBGREQ_TEMP_BLACKLIST_2G, buffer, entries * BLACKLIST_PROBE_SIZE) < 0) {
        // It names another request. People search the logs for it as it is.
        perror("IEEE80211_IOCTL_DBGREQ: IEEE80211_DBGREQ_RRMSTATSREQ failed");
        log_always("error in ioctl ");
        return -1;
    }
    return 0;
}

int wlan_getBssBandSteer2gTempBlacklistTable(int index, int *count, wlan_2g_temp_blacklist_table_t *table) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    void *buffer = table ? low_memory_new(sizeof(*table)) : nullptr;
    if (!buffer) {
        log_debug("[VLK-API] %s memory error\n", __func__);
        return -1;
    }
    *count = 0;
    // As if the driver worked on the caller's table: a request that it refuses half-way has its effect too.
    memcpy(buffer, table, sizeof(*table));
    int status = fetch_blacklist(index, count, buffer);
    memcpy(table, buffer, sizeof(*table));
    low_memory_free(buffer, sizeof(*table));
    return status;
}

int wlan_setBssBandSteer2gTempBlacklistClear(int index, int) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    char command[TOOL_COMMAND_SIZE];
    snprintf(command, sizeof(command), "wifitool ath%d clr_tmpblacklist2g", interface_number(index));
    log_always("wlan_setBssBandSteer2gTempBlacklistClear cmd: %s\n", command);
    run_shell(command);
    return 0;
}
