// Wi-Fi Protected Setup of a VAP. See the header.
//
// Touches the store, the WPS files and /tmp/wps_method, runs `hostapd_cli` and restarts the authenticator. Runs on the
// service thread.
#include "params/wps.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/text.h"
#include "config/wps_files.h"
#include "lifecycle/authenticator.h"
#include "params/vap.h"

// The configuration methods are kept once, under the bare key, whatever VAP the client names: the driver's scripts look
// for them there only.
constexpr int METHODS_STORE_INDEX = 1;

// The timeout likewise.
constexpr int TIMEOUT_STORE_INDEX = 0;

// What an attribute that is a number takes: more than any number needs.
constexpr size_t NUMBER_TEXT_SIZE = 64;

// The number under WPS_ENABLE: 0 also when it is absent.
static int wps_mode(int index) {
    int mode = 0;
    athcfg_getint(index, "WPS_ENABLE", &mode);
    return mode;
}

int wlan_getWpsEnable(int index, int *enabled) {
    *enabled = wps_mode(index) >= 1 ? 1 : 0;
    return 0;
}

int wlan_setWpsEnable(int index, int enabled) {
    athcfg_setbyname(index, "WPS_ENABLE", enabled ? "2" : "0");
    return 0;
}

int wlan_getWpsMode(int index, int *mode) {
    if (index < 0) {
        return -1;
    }
    char text[STORE_VALUE_SIZE];
    athcfg_getbyname(index, "WPS_ENABLE", text, sizeof(text));
    log_debug("[VLK-API] %s %s: get  WpsMode %s\n", __func__, __func__, text);
    *mode = atoi(text);
    return 0;
}

int wlan_setWpsMode(int index, int enabled) {
    if (index < 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: set  WpsMode %d\n", __func__, __func__, enabled);
    return wlan_setWpsEnable(index, enabled);
}

// An attribute of the VAP's WPS file; four zero bytes and -1 when it cannot be read.
static int get_attribute(int index, const char *attribute, char *value, size_t size) {
    if (athwps_getbyname(index, attribute, value, size) != 0) {
        put_zeros(value, size);
        return -1;
    }
    return 0;
}

// Makes the authenticator read its files again, if WPS is anything but 0. This is not the "on" of wlan_getWpsEnable: a
// negative number restarts it too.
static void restart_if_on(int index) {
    if (wps_mode(index) != 0) {
        wps_hostapd_restart();
    }
}

// The restart comes after a failed writing as well: clients use these setters to get a fresh authenticator.
static int set_attribute(int index, const char *attribute, const char *value) {
    int status = athwps_setbyname(index, attribute, value);
    restart_if_on(index);
    return status;
}

int wlan_getWpsDeviceName(int index, char *name, size_t size) {
    return get_attribute(index, "friendly_name", name, size);
}

int wlan_getWpsDevicePassword(int index, char *pin, size_t size) {
    if (athwps_getbyname(index, "ap_pin", pin, size) != 0 || *pin == '\0') {
        athcfg_getbyname(index, "WSC_PIN", pin, size);
    }
    return 0;
}

int wlan_setWpsDevicePassword(int index, const char *pin) {
    athcfg_setbyname(index, "WSC_PIN", pin);
    return 0;
}

int wlan_getWpsUuid(int index, char *uuid, size_t size) {
    return get_attribute(index, "uuid", uuid, size);
}

int wlan_setWpsUuid(int index, const char *uuid) {
    if (index < 0) {
        return -1;
    }
    return set_attribute(index, "uuid", uuid);
}

int wlan_getWpsVersion(int, int *version) {
    *version = 2;
    return 0;
}

int wlan_getWpsConfigMethodsSupported(int, char *methods, size_t size) {
    put_text(methods, size, "Label,Display,PushButton,Keypad");
    return 0;
}

// The client's word of a method, what the store has for it, and what of that tells it from the others. In the order in
// which both are written.
static const struct {
    const char *word;
    const char *stored;
    const char *mark;
} METHODS[] = {
    {"Label", "label", "label"},
    {"Display", "display", "display"},
    {"PushButton", "push_button virtual_push_button physical_push_button", "push_button"},
    {"Keypad", "keypad", "keypad"},
};

// All four in either form, with what joins them, and the NUL.
constexpr size_t METHODS_SIZE = sizeof("label display push_button virtual_push_button physical_push_button keypad ");

// Puts a text and a character behind it at the end of a list of METHODS_SIZE bytes.
static void append(char *list, const char *text, char end) {
    size_t length = strlen(list);
    snprintf(list + length, METHODS_SIZE - length, "%s%c", text, end);
}

static void remove_last_character(char *list) {
    size_t length = strlen(list);
    if (length > 0) {
        list[length - 1] = '\0';
    }
}

int wlan_getWpsConfigMethodsEnabled(int, char *methods, size_t size) {
    put_text(methods, size, "");
    char stored[STORE_VALUE_SIZE];
    if (athcfg_getbyname(METHODS_STORE_INDEX, "WPS_CONFIG_METHOD", stored, sizeof(stored)) != 0) {
        return -1;
    }
    char words[METHODS_SIZE] = "";
    for (const auto &method : METHODS) {
        if (strstr(stored, method.mark)) {
            append(words, method.word, ',');
        }
    }
    remove_last_character(words);
    put_text(methods, size, words);
    return 0;
}

int wlan_setWpsConfigMethodsEnabled(int, const char *methods) {
    char stored[METHODS_SIZE] = "";
    for (const auto &method : METHODS) {
        if (strstr(methods, method.word)) {
            append(stored, method.stored, ' ');
        }
    }
    if (*stored == '\0') {
        return 0;
    }
    remove_last_character(stored);
    athcfg_setbyname(METHODS_STORE_INDEX, "WPS_CONFIG_METHOD", stored);
    char command[METHODS_SIZE + sizeof("echo  > ") + sizeof(WPS_METHOD_FILE)];
    snprintf(command, sizeof(command), "echo %s > %s", stored, WPS_METHOD_FILE);
    run_shell(command);
    // With a label or a keypad alone nobody can start an exchange at the gateway. The first VAP of each radio follows,
    // whatever VAP the client named.
    int enabled = strstr(methods, "Display") || strstr(methods, "PushButton") ? 1 : 0;
    wlan_setWpsEnable(1, enabled);
    wlan_setWpsEnable(1 + VAPS_PER_RADIO, enabled);
    return 0;
}

int wlan_getWpsSetupLockedState(int index, char *state, size_t size) {
    char locked[NUMBER_TEXT_SIZE];
    if (athwps_getbyname(index, "ap_setup_locked", locked, sizeof(locked)) != 0) {
        put_zeros(state, size);
        return -1;
    }
    put_text(state, size, atoi(locked) >= 1 ? "LockedByLocalManagement" : "Unlocked");
    return 0;
}

int wlan_getWpsSetupLock(int index, int *locked) {
    int stored = 0;
    int status = athcfg_getint(index, "AP_SETUP_LOCKED", &stored);
    *locked = stored > 0 ? 1 : 0;
    return status;
}

int wlan_setWpsSetupLock(int index, int locked) {
    athcfg_setint(index, "AP_SETUP_LOCKED", locked);
    return 0;
}

// What the authenticator's configuration says of WPS; null when it says neither.
static const char *configuration_state(const char *output) {
    const char *state = strstr(output, "wps_state=");
    if (!state || strstr(state, "not configured")) {
        return "Not configured";
    }
    return strstr(state, "configured") ? "Configured" : nullptr;
}

int wlan_getWpsConfigurationState(int index, char *state, size_t size) {
    if (index < 0) {
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "hostapd_cli -i ath%d get_config", interface_number(index));
    if (!output) {
        return -1;
    }
    const char *found = configuration_state(output);
    if (found) {
        put_text(state, size, found);
    }
    log_debug("[VLK-API] %s %s: %s\n", __func__, __func__, found ? found : "");
    free(output);
    return 0;
}

int wlan_getWpsLastConfigurationError(int, char *error, size_t size) {
    put_text(error, size, "NoError");
    return 0;
}

// The authenticator is the only registrar there is; clients see it as one that is always there.

int wlan_getWpsRegistrarNumEntries(int, int *count) {
    *count = 1;
    return 0;
}

int wlan_addWpsRegistrarEntry(int) {
    return 0;
}

int wlan_delWpsRegistrarEntry(int) {
    return 0;
}

int wlan_setWpsRegistrarEnabled(int, int, int) {
    return 0;
}

// Succeeds for a negative index without an answer, while wlan_getWpsRegistrarEnabled fails. Clients that walk through
// all VAPs take the former's 0 as "none"; do not bring the two together.
int wlan_getWpsRegistrarEstablished(int index, int *established) {
    if (index < 0) {
        return 0;
    }
    *established = 1;
    return 0;
}

int wlan_getWpsRegistrarEnabled(int index, int, int *enabled) {
    if (index < 0) {
        return -1;
    }
    *enabled = 1;
    return 0;
}

int wlan_getWpsRegistrarUuid(int index, int, char *uuid, size_t size) {
    return get_attribute(index, "uuid", uuid, size);
}

int wlan_getWpsRegistrarDeviceName(int index, int, char *name, size_t size) {
    return get_attribute(index, "device_name", name, size);
}

static bool is_vap_enabled(int index) {
    int enabled = 0;
    wlan_getEnable(index, &enabled);
    return enabled != 0;
}

int wlan_getWpsModelName(int index, char *name, size_t size) {
    if (!is_vap_enabled(index)) {
        return -1;
    }
    return get_attribute(index, "model_name", name, size);
}

int wlan_setWpsModelName(int index, const char *name) {
    if (!is_vap_enabled(index)) {
        return -1;
    }
    return set_attribute(index, "model_name", name);
}

int wlan_setWpsOOB(int index) {
    if (wps_mode(index) == 0) {
        return 0;
    }
    athwps_setbyname(index, "wps_state", "1");
    wps_hostapd_restart();
    return 0;
}

// Exchanges. No blank stands between -i and the interface here, while the queries below have one: both are what the
// gateway's hostapd_cli is known to be called with.

// Whether an exchange can take place on the VAP: it is enabled, and WPS is on.
static bool is_wps_possible(int index) {
    if (!is_vap_enabled(index)) {
        return false;
    }
    int on = 0;
    wlan_getWpsEnable(index, &on);
    return on != 0;
}

// What the authenticator makes of a command.
enum answer {
    ANSWER_NONE,  // it could not be asked
    ANSWER_OK,
    ANSWER_OTHER,
};

static answer ask(const char *caller, const char *command) {
    char *output = nullptr;
    athcfg_executecmd(caller, command, &output);
    if (!output) {
        return ANSWER_NONE;
    }
    answer given = strstr(output, "OK") ? ANSWER_OK : ANSWER_OTHER;
    free(output);
    return given;
}

// Push button and PIN. Returns 0 for "OK", else -1.
static int start_exchange(const char *caller, const char *command) {
    answer given = ask(caller, command);
    if (given == ANSWER_NONE) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: executed WPS command %s\n", caller, caller, command);
    return given == ANSWER_OK ? 0 : -1;
}

// "hostapd_cli -iath%d wps_cancel" with the longest number.
constexpr size_t ACTION_SIZE = 64;

static int press_button(const char *caller, int index) {
    char command[ACTION_SIZE];
    snprintf(command, sizeof(command), "hostapd_cli -iath%d wps_pbc", interface_number(index));
    return start_exchange(caller, command);
}

static int start_pin(const char *caller, int index, const char *pin) {
    char *command = nullptr;
    if (asprintf(&command, "hostapd_cli -iath%d wps_pin any %s", interface_number(index), pin) < 0) {
        return -1;
    }
    int status = start_exchange(caller, command);
    free(command);
    return status;
}

// Push button and PIN exist twice. The older form looks at the index after the two flags, the other before them: which
// settings are read for a negative index, and so which debug lines are written, is as clients' logs have always shown
// it.

int wlan_setWpsPbcTrigger(int index) {
    if (!is_wps_possible(index) || index < 0) {
        return -1;
    }
    return press_button(__func__, index);
}

int wlan_setWpsPushButton(int index) {
    if (index < 0 || !is_wps_possible(index)) {
        return -1;
    }
    return press_button(__func__, index);
}

int wlan_setWpsEnrolleePin(int index, const char *pin) {
    if (!is_wps_possible(index) || index < 0) {
        return -1;
    }
    return start_pin(__func__, index, pin);
}

int wlan_setWpsPinStart(int index, const char *pin) {
    if (index < 0 || !is_wps_possible(index)) {
        return -1;
    }
    return start_pin(__func__, index, pin);
}

int wlan_setWpsCancel(int index) {
    if (index < 0 || !is_wps_possible(index)) {
        return -1;
    }
    char command[ACTION_SIZE];
    snprintf(command, sizeof(command), "hostapd_cli -iath%d wps_cancel", interface_number(index));
    answer given = ask(__func__, command);
    if (given == ANSWER_NONE) {
        return -1;
    }
    if (given == ANSWER_OTHER) {
        log_debug("[VLK-API] %s %s: wps cancel fail\n", __func__, __func__);
        return -1;
    }
    log_debug("[VLK-API] %s %s: wps cancel success\n", __func__, __func__);
    return 0;
}

// Everything the authenticator says of an exchange, under the name of either operation.
static int query_status(const char *caller, int index, char *status, size_t size) {
    if (index < 0) {
        return -1;
    }
    char command[ACTION_SIZE];
    snprintf(command, sizeof(command), "hostapd_cli -i ath%d wps_status", interface_number(index));
    log_debug("[VLK-API] %s %s : cmd = %s \n", caller, caller, command);
    char *output = nullptr;
    athcfg_executecmd(caller, command, &output);
    if (!output) {
        return -1;
    }
    put_text(status, size, output);
    free(output);
    return 0;
}

int wlan_getWpsStatus(int index, char *status, size_t size) {
    return query_status(__func__, index, status, size);
}

int wlan_getWpsResultStatus(int index, char *status, size_t size) {
    return query_status(__func__, index, status, size);
}

int wlan_getWpsConfigTimeout(int index, u_int *timeout) {
    if (index < 0) {
        return -1;
    }
    char text[STORE_VALUE_SIZE];
    if (athcfg_getbyname(TIMEOUT_STORE_INDEX, "AP_WPS_TIMEOUT", text, sizeof(text)) != 0) {
        return -1;
    }
    // The line names another key; scripts that search the log know it by that name.
    log_debug("[VLK-API] %s %s: get AP_APBRI %s\n", __func__, __func__, text);
    *timeout = static_cast<u_int>(atoi(text));
    return 0;
}

int wlan_setWpsConfigTimeout(int index, u_int timeout) {
    if (index < 0) {
        return -1;
    }
    athcfg_setint(TIMEOUT_STORE_INDEX, "AP_WPS_TIMEOUT", static_cast<int>(timeout));
    return 0;
}
