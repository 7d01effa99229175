// Soft block: the daemon that keeps a black list of stations and refuses or delays their association. See the header.
#include "steering/soft_block.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "survey/control_channel.h"

// The black list that the daemon keeps over its restarts.
constexpr const char BLACK_LIST_FILE[] = "/nvram/blackList.dat";

// The room for a message about the list, NUL included. A MAC is cut to what fits, 24 characters: more than a real one
// has.
constexpr size_t LIST_MESSAGE_SIZE = 32;

// The room for a message about a tunable. The longest, with two numbers, has 30 characters.
constexpr size_t TUNABLE_MESSAGE_SIZE = 64;

// --- messages ---

int sendDataToSBCtrl(const char *data) {
    if (!data) {
        log_error("[VLK-API] Error %s NULL data\n", __func__);
        return -1;
    }
    rad_ctrl_conn *connection = rad_ctrl_open(STEERING_SOCKET, RAD_CTRL_STEERING);
    if (!connection) {
        log_error("[VLK-API] Error %s Could not connect\n", __func__);
        return -1;
    }
    int status = rad_ctrl_send(connection, data, strlen(data) + 1);
    rad_ctrl_close(connection);
    return status;
}

// Tells the daemon of a setting. One that cannot be told does not make the setter fail: the value is in the store.
// caller is the setter's name, failure what it writes behind it then.
static void tell(const char *caller, const char *message, const char *failure) {
    if (sendDataToSBCtrl(message) != 0) {
        log_error("[VLK-API] Error %s %s\n", caller, failure);
    }
}

// --- tunables ---

// What the setter of a tunable does. Its texts are searched for in logs as they stand, also where they name another
// function: do not mend them.
struct tunable {
    const char *key;
    const char *message;  // what the daemon calls it
    const char *entry;    // what the setter writes on entry
    const char *failure;  // and what when the daemon cannot be told
};

// The bare key and the daemon. caller is the setter's name.
static void store_and_tell(const tunable *setting, const char *caller, int value) {
    athcfg_setint(0, setting->key, value);
    char message[TUNABLE_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "%s:%d", setting->message, value);
    tell(caller, message, setting->failure);
}

static int get_for_device(const char *caller, const char *key, u_int *value) {
    log_debug("[VLK-API] %s %s: %s entered\n", caller, caller, caller);
    int number;
    athcfg_getint(0, key, &number);
    *value = static_cast<u_int>(number);
    return 0;
}

static int set_for_device(const tunable *setting, const char *caller, int value) {
    log_debug("[VLK-API] %s %s: %s\n", caller, caller, setting->entry);
    store_and_tell(setting, caller, value);
    return 0;
}

// logged_key is what the debug line calls the key.
static int get_for_vap(const char *caller, int index, const char *key, const char *logged_key, int *value) {
    log_debug("[VLK-API] %s %s: %s entered\n", caller, caller, caller);
    if (index < 0) {
        return -1;
    }
    char text[STORE_VALUE_SIZE];
    if (athcfg_getbyname(index, key, text, sizeof(text)) != 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: get %s %s\n", caller, caller, logged_key, text);
    *value = atoi(text);
    return 0;
}

// The bare key for every index: the driver's scripts read no other. A value set for VAP 3 is therefore not what reading
// VAP 3 gives. Do not mend it on either side.
static int set_bare_for_vap(const tunable *setting, const char *caller, int index, int value) {
    log_debug("[VLK-API] %s %s: %s\n", caller, caller, setting->entry);
    if (index < 0) {
        return -1;
    }
    store_and_tell(setting, caller, value);
    return 0;
}

// Both operations of a tunable of the whole device: one key, whatever the index. type is what the setter takes; masks
// travel unsigned, and are stored and sent as "%d" all the same.
#define DEVICE_TUNABLE(getter, setter, type, key, message, entry, failure)  \
    int getter(int, u_int *value) {                                         \
        return get_for_device(__func__, key, value);                        \
    }                                                                       \
    int setter(int, type value) {                                           \
        static constexpr tunable setting = {key, message, entry, failure};  \
        return set_for_device(&setting, __func__, static_cast<int>(value)); \
    }

// Both operations of a tunable that is read from the VAP's own key and written to the bare one. logged_key is what the
// getter's debug line calls the key.
#define BARE_TUNABLE(getter, setter, key, logged_key, message, entry, failure)                \
    int getter(int index, u_int *value) {                                                     \
        return get_for_vap(__func__, index, key, logged_key, reinterpret_cast<int *>(value)); \
    }                                                                                         \
    int setter(int index, int value) {                                                        \
        static constexpr tunable setting = {key, message, entry, failure};                    \
        return set_bare_for_vap(&setting, __func__, index, value);                            \
    }

// clang-format off
DEVICE_TUNABLE(wlan_getSBEnable,           wlan_setSBEnable,           int,   "SOFT_BLOCK_EN",                  "setBSE", "wlan_setSBEnable entered",           "send data to SBCtrl failed")
DEVICE_TUNABLE(wlan_getSBBLSelMask,        wlan_setSBBLSelMask,        u_int, "SOFT_BLOCK_BLACK_LIST_SELECTOR", "setBLM", "wlan_setSBEnable entered",           "wlan_setSBBLSelMask: send data to SBCtrl failed")
DEVICE_TUNABLE(wlan_getSBSelMask,          wlan_setSBSelMask,          u_int, "SOFT_BLOCK_SELECTOR",            "setSBM", "wlan_setSBSelMask entered",          "wlan_setSBMask: send data to SBCtrl failed")
DEVICE_TUNABLE(wlan_getSBWaitingTime,      wlan_setSBWaitingTime,      int,   "SOFT_BLOCK_WAITING_TIME",        "setWTT", "wlan_setSBWaitingTime entered",      "wlan_setSBWaitingTime: send data to SBCtrl failed")
DEVICE_TUNABLE(wlan_getSBAllowTimer,       wlan_setSBAllowTimer,       int,   "SOFT_BLOCK_ALLOW_TIMER",         "setATR", "wlan_setSBAllowTimer: entered",      "wlan_setSBAllowTimer: send data to SBCtrl failed")

BARE_TUNABLE(wlan_getSBAuthRespStCode,     wlan_setSBAuthRespStCode,     "SOFT_BLOCK_AUTH_RESP_ST_C", "AP_SB_AUTH_RESP_ST_CODE", "setAUT", "wlan_setSBAuthRespStCode entered",     "wlan_setSBAuthRespStCode: send data to SBCtrl failed")
BARE_TUNABLE(wlan_getSBIgnoreProbeReqType, wlan_setSBIgnoreProbeReqType, "SOFT_BLOCK_IGNORE_PR_T",    "SOFT_BLOCK_IGNORE_PR_T",  "setRES", "wlan_setSBIgnoreProbeReqType entered", "wlan_setSBIgnoreProbeReqType: send data to SBCtrl failed")
// clang-format on

// --- the RSSI floor of a BSS ---

int wlan_getBSSClientRSSIThreshold(int index, int *rssi) {
    return get_for_vap(__func__, index, "AP_BSS_STA_RSSI_THR", "AP_BSS_STA_RSSI_THR", rssi);
}

int wlan_setBSSClientRSSIThreshold(int index, int rssi) {
    log_debug("[VLK-API] %s %s: wlan_setBSSClientRSSIThreshold entered\n", __func__, __func__);
    if (index < 0) {
        return -1;
    }
    athcfg_setint(index, "AP_BSS_STA_RSSI_THR", rssi);
    char message[TUNABLE_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "setRSSI:%d@%d", rssi, interface_number(index));
    tell(__func__, message, "wlan_setBSSClientRSSIThreshold: send data to SBCtrl failed");
    return 0;
}

int wlan_getBSSClientRSSIThresholdDelta(int index, int *delta) {
    return get_for_vap(__func__, index, "AP_BSS_STA_RSSI_THR_D", "AP_BSS_STA_RSSI_THR_D", delta);
}

int wlan_setBSSClientRSSIThresholdDelta(int index, int delta) {
    log_debug("[VLK-API] %s %s: wlan_setBSSClientRSSIThresholdDelta entered\n", __func__, __func__);
    if (index < 0) {
        return -1;
    }
    athcfg_setint(index, "AP_BSS_STA_RSSI_THR_D", delta);
    return 0;
}

// --- the black list ---

int wlan_setSBBlackListAdd(int, const char *mac) {
    log_debug("[VLK-API] %s %s: wlan_setSBBlackListAdd entered\n", __func__, __func__);
    char message[LIST_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "addMac:%s", mac);
    return sendDataToSBCtrl(message);
}

int wlan_setSBBlackListDel(int, const char *mac) {
    log_debug("[VLK-API] %s %s: wlan_setSBBlackListDel entered\n", __func__, __func__);
    char message[LIST_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "delMac:%s", mac);
    return sendDataToSBCtrl(message);
}

int wlan_setSBBlackListClear(int, int which) {
    // Without the "SB" of its name: such are the logs that people search.
    log_debug("[VLK-API] %s %s: wlan_setBlackListClear entered\n", __func__, __func__);
    char message[LIST_MESSAGE_SIZE];
    snprintf(message, sizeof(message), "clearL:%d", which);
    if (sendDataToSBCtrl(message) != 0) {
        // A daemon that comes back would otherwise read the list again.
        unlink(BLACK_LIST_FILE);
        log_error("[VLK-API] Error %s send data to SBCtrl failed\n", __func__);
    }
    return 0;
}

// These lines go without the usual beginning, the last one without its line end, and octets from 0x80 on have eight
// digits (FFFFFF80): scripts read the list back from the log like that. Do not mend it.
static void log_station_list(const wlan_sb_station_list_t *list) {
    if (!wlan_debug_enabled()) {
        return;
    }
    log_debug("station list(total:%d oldest Index:%d):\n", list->total, list->oldest);
    // The daemon's count is only believed as far as there are entries.
    int last = list->total < static_cast<int>(SB_STATIONS_MAX) ? list->total : static_cast<int>(SB_STATIONS_MAX);
    for (int i = 0; i < last; i++) {
        const wlan_sb_station_t *station = &list->entries[i];
        const signed char *mac = station->mac;
        log_debug("%02X:%02X:%02X:%02X:%02X:%02X\n", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
        log_debug("timestampe:%ld\n", static_cast<long>(station->timestamp));
    }
    log_debug("-----station list end-----");
}

int wlan_getSBBlackList(int index, wlan_sb_station_list_t *list) {
    static constexpr char request[] = "getList";
    log_debug("[VLK-API] %s %s: wlan_getSBBlackList entered\n", __func__, __func__);
    // What a short answer does not cover is sent as zeros.
    wlan_sb_station_list_t answer = {};
    size_t length = sizeof(answer);
    if (rad_ctrl_request_buffered(index, request, sizeof(request), &answer, &length, RAD_CTRL_STEERING) != 0) {
        log_error("[VLK-API] Error %s get station list failed\n", __func__);
        return 0;
    }
    *list = answer;
    log_station_list(list);
    return 0;
}

// --- the daemon itself ---

int loadSB(int on) {
    log_debug("[VLK-API] %s loadSB: onOff:%d\n", __func__, on);
    if (on) {
        run_shell("killall softblock");
        log_debug("[VLK-API] %s enable SB\n", __func__);
        // Not through the capturing runner: the daemon would hold its pipe open for ever.
        run_shell("softblock &");
    } else {
        log_debug("[VLK-API] %s disable SB\n", __func__);
        run_shell("killall softblock");
    }
    return 0;
}

int notifyWiFiRestartToSBCtrl(void) {
    if (sendDataToSBCtrl("restart") != 0) {
        log_error("[VLK-API] Error %s something is wrong, need to restart soft block\n", __func__);
        return loadSB(1);
    }
    return 0;
}
