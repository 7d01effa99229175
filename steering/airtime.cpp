// Airtime fairness: its settings, the stations that have an airtime weight, and the text of their MACs.
//
// Touches the store and runs `airtime`. Runs on the service thread.
#include "steering/airtime.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "params/settings.h"
#include "params/vap.h"

// The longest decimal number of 32 bits, without its NUL.
#define LONGEST_NUMBER "-2147483648"

// What is read of a stored MAC, with the NUL: its twelve digits and three characters more. Clients know longer texts
// as they are cut here.
constexpr size_t STORED_MAC_SIZE = 16;

// --- settings ---

// The suffix is part of the name here: VAP 1 stands for the key with it, VAP 9 for the bare one. It looks crossed, but
// do not mend it: the driver reads them so, as it does all settings of radio 0 and radio 1.
constexpr number_setting SWITCH_2G = {"AP_ENABLE_ATF_2", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, QUIET};
constexpr number_setting SWITCH_5G = {"AP_ENABLE_ATF", SCOPE_DEVICE, ANY_INDEX, ABSENT_FAILS, QUIET};

// The switch that a VAP stands for, null for one that stands for none.
static const number_setting *find_switch(int index) {
    if (index == FIRST_VAP_2G) {
        return &SWITCH_2G;
    }
    return index == FIRST_VAP_5G ? &SWITCH_5G : nullptr;
}

int wlan_getAirtimeEnable(int index, int *enabled) {
    const number_setting *setting = find_switch(index);
    return setting ? get_number(setting, __func__, index, enabled) : -1;
}

int wlan_setAirtimeEnable(int index, int enabled) {
    const number_setting *setting = find_switch(index);
    return setting ? set_number(setting, index, enabled) : -1;
}

// clang-format off
NUMBER_SETTING(wlan_getAdvAirtime_AlgorithmType,        wlan_setAdvAirtime_AlgorithmType,        int, "ATF_ALGO_TYPE",      SCOPE_RADIO, ANY_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getAdvAirtime_BSSWeightEnable,      wlan_setAdvAirtime_BSSWeightEnable,      int, "ATF_BSS_WEIGHT_EN",  SCOPE_RADIO, ANY_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getAdvAirtime_STAWeightEnable,      wlan_setAdvAirtime_STAWeightEnable,      int, "ATF_STA_WEIGHT_EN",  SCOPE_RADIO, ANY_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getAdvAirtime_TrafficDirection,     wlan_setAdvAirtime_TrafficDirection,     int, "ATF_TRAFFIC_DIR",    SCOPE_RADIO, ANY_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getAdvAirtime_ApplicationATMEnable, wlan_setAdvAirtime_ApplicationATMEnable, int, "ATF_APP_EN",         SCOPE_RADIO, ANY_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getAdvAirtime_DistributionType,     wlan_setAdvAirtime_DistributionType,     int, "ATF_DISTRIBUT_TYPE", SCOPE_VAP,   ANY_INDEX, ABSENT_ZERO, QUIET)
// clang-format on

// --- the tool ---

// Reads the number that a command of the tool prints. False, with *number as it was, when nothing was printed. caller
// is the operation's name.
static bool ask_tool(const char *caller, const char *command, int *number) {
    char *output;
    athcfg_executecmd(caller, command, &output);
    bool answered = output && *output != '\0';
    if (answered) {
        *number = atoi(output);
    }
    free(output);
    return answered;
}

static bool ask_period(const char *caller, int station, int *period) {
    char command[sizeof("airtime get_sta_time " LONGEST_NUMBER)];
    snprintf(command, sizeof(command), "airtime get_sta_time %d", station);
    return ask_tool(caller, command, period);
}

// A MAC without its colons, which the caller frees. Null for a null MAC and when memory runs out.
static char *copy_without_colons(const char *mac) {
    if (!mac) {
        return nullptr;
    }
    char *bare = strdup(mac);
    if (bare) {
        remove_colon(mac, bare, strlen(mac) + 1);
    }
    return bare;
}

// --- the stations that have a weight ---

// The setters run with captured output, unlike that of a period: nobody asks how they end, and what the tool says stays
// out of the server's own output. A MAC is not escaped: clients pass whatever the tool takes.

int wlan_setAdvAirtime_STAWeightDestroyAll(void) {
    athcfg_runcmdf(__func__, "airtime del_all_sta");
    return 0;
}

int wlan_setAdvAirtime_STAEntryAdd(const char *mac, int weight) {
    char *bare = copy_without_colons(mac);
    if (bare) {
        athcfg_runcmdf(__func__, "airtime add_sta %s %d", bare, weight);
    }
    free(bare);
    return 0;
}

int wlan_setAdvAirtime_STAEntryDel(const char *mac) {
    char *bare = copy_without_colons(mac);
    if (bare) {
        athcfg_runcmdf(__func__, "airtime del_sta %s", bare);
    }
    free(bare);
    return 0;
}

int wlan_getAdvAirtime_STAEntryCount(int *count) {
    *count = 0;
    ask_tool(__func__, "airtime sta_count", count);
    return 0;
}

// --- one of them, by its number ---

// The number is part of the key's name and not a store index: that of station 1 is written too, and one below it.
static int read_station_mac(const char *caller, int station, char *mac, size_t size) {
    char key[sizeof("ATF_STA_MAC_" LONGEST_NUMBER)];
    snprintf(key, sizeof(key), "ATF_STA_MAC_%d", station);
    char stored[STORED_MAC_SIZE];
    athcfg_getbyname(0, key, stored, sizeof(stored));
    log_debug("[VLK-API] %s %s: smac %s\n", caller, caller, stored);
    return add_colon(stored, mac, size);
}

static int read_station_weight(int station) {
    char key[sizeof("ATF_STA_WEIGHT_" LONGEST_NUMBER)];
    snprintf(key, sizeof(key), "ATF_STA_WEIGHT_%d", station);
    int weight;
    athcfg_getint(0, key, &weight);
    return weight;
}

int wlan_getAdvAirtime_STA_MAC(int station, char *mac, size_t size) {
    return read_station_mac(__func__, station, mac, size);
}

int wlan_getAdvAirtime_STA_Weight(int station, int *weight) {
    *weight = read_station_weight(station);
    return 0;
}

int wlan_setAdvAirtime_STA_Period(int station, int period) {
    char command[sizeof("airtime sta_time " LONGEST_NUMBER " " LONGEST_NUMBER)];
    snprintf(command, sizeof(command), "airtime sta_time %d %d", station, period);
    return run_shell(command) == 0 ? 0 : -1;
}

int wlan_getAdvAirtime_STA_Period(int station, int *period) {
    *period = 0;
    ask_period(__func__, station, period);
    return 0;
}

// --- all of them ---

// caller is the operation's name, for debug lines.
static void fill_record(const char *caller, int number, wlan_airtime_sta_t *record) {
    record->index = static_cast<uint32_t>(number);
    read_station_mac(caller, number, record->mac, sizeof(record->mac));
    int weight = read_station_weight(number);
    record->weight = static_cast<uint32_t>(weight);
    int period;
    if (ask_period(caller, number, &period)) {
        record->period = static_cast<uint32_t>(period);
    }
    log_debug("[VLK-API] %s %s: sta_index: %d mac %s weight:%d\n", caller, caller, number, record->mac, weight);
}

int wlan_getAdvAirtime_STAList(int count, wlan_airtime_sta_list_t *list) {
    constexpr int limit = AIRTIME_STAS_MAX;
    int stations = count < limit ? count : limit;
    log_debug("[VLK-API] %s %s: sta_count: %d \n", __func__, __func__, stations);
    for (int i = 0; i < stations; i++) {
        fill_record(__func__, i + 1, &list->stations[i]);
    }
    list->count = stations;
    return 0;
}

// --- the text of a MAC ---

int remove_colon(const char *in, char *out, size_t size) {
    if (!in || !out) {
        return -1;
    }
    size_t length = 0;
    for (; *in != '\0' && length + 1 < size; in++) {
        if (*in != ':') {
            out[length++] = *in;
        }
    }
    out[length] = '\0';
    return 0;
}

int add_colon(const char *in, char *out, size_t size) {
    if (!in || !out) {
        return -1;
    }
    size_t length = 0;
    while (*in != '\0') {
        // A colon goes with the character behind it, so that none is ever the last.
        size_t added = length % 3 == 2 ? 2 : 1;
        if (length + added >= size) {
            break;
        }
        if (added == 2) {
            out[length++] = ':';
        }
        out[length++] = *in++;
    }
    out[length] = '\0';
    return 0;
}
