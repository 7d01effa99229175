#include "simulator/initial_store.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct setting {
    const char *name;
    const char *value;
};

// Settings of the whole device: the bare key.
static const setting device_settings[] = {
    {"AP_STARTMODE", "dual"},
    {"AP_IPADDR", "192.168.0.1"},
    {"AP_NETMASK", "255.255.255.0"},
    {"UDMA_ENABLE", "1"},
    {"RSG_Enable", "0"},
    {"RSG_Rate", "30"},
    {"RSG_Interval", "1800"},
    {"BS_ENABLE", "0"},
    {"BS_IS_RSSI_STEERPOINT_DG", "30"},
    {"BS_IS_RSSI_STEERING_POINT_UG", "50"},
    {"BS_IS_NORM_INACT_TIMEOUT", "10"},
    {"BS_IS_OVERLOAD_INACT_TIMEOUT", "10"},
    {"BS_BANDMON_MUCHECK_INTERVAL_W2", "10"},
    {"BS_OL_MU_AVG_PERIOD", "60"},
    {"BS_SE_STEERINGPROHIBITTIME", "300"},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W2", "20"},
    {"BS_SE_TARGETLOWRSSITHRESHOLD_W5", "20"},
    {"BS_SE_TSTEERING", "15"},
    {"BS_SE_AUTHREJMAX", "3"},
    {"SOFT_BLOCK_EN", "0"},
    {"SOFT_BLOCK_BLACK_LIST_SELECTOR", "0"},
    {"SOFT_BLOCK_SELECTOR", "0"},
    {"SOFT_BLOCK_WAITING_TIME", "60"},
    {"SOFT_BLOCK_ALLOW_TIMER", "60"},
    {"WPS_CONFIG_METHOD", "label push_button virtual_push_button physical_push_button"},
    {"AP_WPS_TIMEOUT", "120"},
    {"AP_PRIMARY_KEY_0", "1"},
    {"AP_PRIMARY_KEY_1", "1"},
};

// Settings of a radio with the values for the 2.4 GHz and for the 5 GHz band.
struct radio_setting {
    const char *name;
    const char *at_two;
    const char *at_five;
};

static const radio_setting radio_settings[] = {
    {"AP_RADIO_ENABLED", "1", "1"},
    {"AP_PRIMARY_CH", "6", "36"},
    {"AP_CHMODE", "11NGHT20", "11ACVHT80"},
    {"PUREN", "0", "0"},
    {"PUREG", "0", "0"},
    {"PUREAC", "0", "0"},
    {"AP_DISCOEXT", "0", "0"},
    {"ATH_countrycode", "843", "843"},
    {"RATECTL", "auto", "auto"},
    {"MANRATE", "0x8c8c8c8c", "0"},
    {"MANRETRIES", "0x04040404", "0x04040404"},
    {"TX_CHAINMASK", "7", "7"},
    {"RX_CHAINMASK", "7", "7"},
    {"AMPDUENABLE", "1", "1"},
    {"AP_AMSDU", "0", "1"},
    {"AP_BADECLINE", "0", "0"},
    {"AP_TXSTBC", "1", "1"},
    {"AP_RXSTBC", "1", "1"},
    {"AP_TXBURST", "1", "1"},
    {"AP_TXBF", "0", "1"},
    {"AP_BLK_DFS", "0", "1"},
    {"AP_ENABLE_ATF", "0", "0"},
    {"ATF_ALGO_TYPE", "0", "0"},
    {"ATF_BSS_WEIGHT_EN", "0", "0"},
    {"ATF_STA_WEIGHT_EN", "0", "0"},
    {"ATF_TRAFFIC_DIR", "0", "0"},
    {"ATF_APP_EN", "0", "0"},
};

// Settings that every VAP has, with the values that a VAP starts with.
static const setting vap_settings[] = {
    {"AP_MODE", "ap"},
    {"AP_HIDESSID", "0"},
    {"AP_SECMODE", "WPA"},
    {"AP_WPA", "2"},
    {"AP_SECFILE", "PSK"},
    {"AP_CYPHER", "CCMP"},
    {"PSK_KEY", "correct horse battery"},
    {"AP_WPA_GROUP_REKEY", "3600"},
    {"AP_RSN_ENA_PREAUTH", "0"},
    {"AP_MACADDRCTLEN", "0"},
    {"AP_PROTMODE", "1"},
    {"BEACON_INT", "100"},
    {"AP_DTIM", "1"},
    {"AP_TXPREAMBLE", "1"},
    {"AP_RTSTHRES", "2346"},
    {"AP_FRAGTHRES", "2346"},
    {"AP_SHORTGI", "1"},
    {"AP_WMMEN", "1"},
    {"AP_WMMAPSD", "1"},
    // One value an access category: best effort, background, video, voice.
    {"AP_WMMAIFS", "3;7;1;1"},
    {"AP_WMMCWMIN", "4;4;3;2"},
    {"AP_WMMCWMAX", "6;10;4;3"},
    {"AP_WMMTXOP", "0;0;94;47"},
    {"AP_WMMACKPOLICY", "0;0;0;0"},
    {"AP_WMMBSSAIFS", "3;7;2;2"},
    {"AP_WMMBSSCWMIN", "4;4;3;2"},
    {"AP_WMMBSSCWMAX", "10;10;4;3"},
    {"AP_WMMBSSTXOP", "0;0;94;47"},
    {"AP_WMMBSSACKPOLICY", "0;0;0;0"},
    {"AP_APBRI", "0"},
    {"AP_IGMP_SNOOP", "2"},
    {"AP_MAX_STA", "127"},
    {"AP_INACT", "300"},
    {"BS_BSS_ENABLE", "0"},
    {"AP_BSS_STA_RSSI_THR", "0"},
    {"WPS_ENABLE", "0"},
    {"AP_SETUP_LOCKED", "0"},
};

// Names of a VAP's settings whose values come from the scenario, or that it need not have.
static const char *const other_vap_settings[] = {"AP_ENABLE", "AP_RADIO_ID", "AP_BSSID",   "AP_SSID",
                                                 "AP_VLAN",   "AP_BRNAME",   "AP_MACLIST", "WSC_PIN"};

static int put(store_text *store, int index, const char *name, const char *format, ...)
    __attribute__((format(printf, 4, 5)));

static int put(store_text *store, int index, const char *name, const char *format, ...) {
    char key[SETTING_KEY_SIZE];
    char value[SETTING_VALUE_SIZE];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(value, sizeof value, format, arguments);
    va_end(arguments);
    store_key(name, index, key, sizeof key);
    return store_set(store, key, value);
}

static int put_radio(store_text *store, const scenario_radio *radio, int number) {
    // The convention of the store: the bare key is radio 1's, suffix _2 is radio 0's.
    int index = number == 1 ? 1 : 2;
    int failed = 0;
    for (const radio_setting &entry : radio_settings)
        failed |= put(store, index, entry.name, "%s", radio->five_ghz ? entry.at_five : entry.at_two);
    return failed | put(store, index, "AP_TXPWR", "%d", radio->txpower);
}

static int put_vap(store_text *store, const scenario_vap *vap, int number) {
    int failed = put(store, number, "AP_ENABLE", "%d", vap->enabled ? 1 : 0);
    failed |= put(store, number, "AP_RADIO_ID", "%d", vap->radio);
    failed |= put(store, number, "AP_BSSID", "%s", vap->bssid);
    // A VAP that was never set up has no SSID line: the server gives it one when it is enabled.
    if (vap->ssid[0] != '\0')
        failed |= put(store, number, "AP_SSID", "%s", vap->ssid);
    failed |= put(store, number, "AP_VLAN", "%d", number == 1 || number == 9 ? 2 : 9 + number);
    failed |= put(store, number, "AP_BRNAME", "br%d", number == 1 || number == 9 ? 0 : number - 1);
    for (const setting &entry : vap_settings)
        failed |= put(store, number, entry.name, "%s", entry.value);
    return failed;
}

int initial_store(const scenario *scene, store_text *store) {
    *store = {};
    int failed = put(store, 1, "AP_VAP_NUM", "%d", VAPS_PER_RADIO);
    for (const setting &entry : device_settings)
        failed |= put(store, 1, entry.name, "%s", entry.value);
    for (int i = 0; i < SCENARIO_RADIOS; i++) {
        if (scene->radios[i].declared)
            failed |= put_radio(store, &scene->radios[i], i);
    }
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        if (scene->vaps[i].declared)
            failed |= put_vap(store, &scene->vaps[i], i + 1);
    }
    for (int i = 0; i < scene->setting_count; i++)
        failed |= store_set(store, scene->settings[i].key, scene->settings[i].value);
    return failed == 0 ? 0 : -1;
}

// The store index that a key carries, 1 when it ends in no number from 2 on; `length` is that of the bare name.
static int index_of(const char *key, size_t *length) {
    const char *underscore = strrchr(key, '_');
    *length = strlen(key);
    if (underscore == nullptr)
        return 1;
    char spelling[16];
    int number = atoi(underscore + 1);
    // "_02" and "_2x" are parts of a name.
    snprintf(spelling, sizeof spelling, "%d", number);
    if (number < 2 || number > SCENARIO_VAPS || strcmp(spelling, underscore + 1) != 0)
        return 1;
    *length = (size_t)(underscore - key);
    return number;
}

static bool is_name(const char *name, const char *key, size_t length) {
    return strlen(name) == length && strncmp(name, key, length) == 0;
}

static bool is_radio_setting(const char *key, size_t length) {
    for (const radio_setting &entry : radio_settings) {
        if (is_name(entry.name, key, length))
            return true;
    }
    return is_name("AP_TXPWR", key, length);
}

static bool is_vap_setting(const char *key, size_t length) {
    for (const setting &entry : vap_settings) {
        if (is_name(entry.name, key, length))
            return true;
    }
    for (const char *name : other_vap_settings) {
        if (is_name(name, key, length))
            return true;
    }
    return false;
}

int initial_store_radio(const scenario *scene, const char *key) {
    size_t length;
    for (const setting &entry : device_settings) {
        if (strcmp(entry.name, key) == 0)
            return -1;
    }
    int index = index_of(key, &length);
    int radio = -1;
    if (is_radio_setting(key, length))
        radio = index <= 2 ? 2 - index : -1;
    else if ((index > 1 || is_vap_setting(key, length)) && scene->vaps[index - 1].declared)
        radio = scene->vaps[index - 1].radio;
    return radio >= 0 && scene->radios[radio].declared ? radio : -1;
}
