#include "simulator/wps_files.h"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "simulator/paths.h"
#include "simulator/store.h"

// A PIN that is as good as any: its last digit is the checksum of the others.
static const char DEFAULT_PIN[] = "12345670";

void wps_file_path(int vap, char *path, size_t size) {
    snprintf(path, size, "%s/WSC_ath%d.conf", WPS_DIRECTORY, vap);
}

// A file being made: its VAP, its lines, and the store that they are taken from.
struct wps_file {
    int vap;  // 0 to 15
    const scenario *scene;
    const store_text *store;
    store_text lines;
};

static int put(wps_file *file, const char *key, const char *format, ...) __attribute__((format(printf, 3, 4)));

static int put(wps_file *file, const char *key, const char *format, ...) {
    char value[SETTING_VALUE_SIZE];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(value, sizeof value, format, arguments);
    va_end(arguments);
    return store_set(&file->lines, key, value);
}

// A setting of the VAP, cut to the buffer, or what stands for it when the store has none.
static const char *setting(const wps_file *file, const char *name, const char *otherwise, char *value, size_t size) {
    char key[SETTING_KEY_SIZE];
    size_t length = 0;
    store_key(name, file->vap + 1, key, sizeof key);
    const char *found = store_find(file->store, key, &length);
    if (found == nullptr || length == 0)
        return otherwise;
    snprintf(value, size, "%.*s", (int)length, found);
    return value;
}

// What the driver's settings say about the VAP.
static int put_radio_side(wps_file *file) {
    char value[SETTING_VALUE_SIZE];
    int failed = put(file, "interface", "ath%d", file->vap);
    failed |= put(file, "bridge", "%s", setting(file, "AP_BRNAME", "br0", value, sizeof value));
    failed |= put(file, "ctrl_interface", "%s", HOSTAPD_SOCKETS);
    failed |= put(file, "ssid", "%s", setting(file, "AP_SSID", "", value, sizeof value));
    bool protects = strcmp(setting(file, "AP_SECMODE", "None", value, sizeof value), "WPA") == 0;
    failed |= put(file, "wpa", "%s", protects ? setting(file, "AP_WPA", "2", value, sizeof value) : "0");
    bool radius = strcmp(setting(file, "AP_SECFILE", "PSK", value, sizeof value), "EAP") == 0;
    return failed | put(file, "wpa_key_mgmt", "%s", radius ? "WPA-EAP" : "WPA-PSK");
}

// The VAP's identity: made of its address, so that it is another one for each.
static int put_uuid(wps_file *file) {
    unsigned octets[6] = {};
    sscanf(file->scene->vaps[file->vap].bssid, "%x:%x:%x:%x:%x:%x", &octets[0], &octets[1], &octets[2], &octets[3],
           &octets[4], &octets[5]);
    return put(file, "uuid", "6a9f1c20-7b3e-4d58-8f01-%02x%02x%02x%02x%02x%02x", octets[0], octets[1], octets[2],
               octets[3], octets[4], octets[5]);
}

// No value contains another line's key: readers look for the key anywhere in the file.
static int put_wps_side(wps_file *file) {
    char value[SETTING_VALUE_SIZE];
    // A VAP without an SSID was never set up: WPS calls that not configured (1), else it is configured (2).
    bool configured = *setting(file, "AP_SSID", "", value, sizeof value) != '\0';
    int failed = put(file, "wps_state", "%d", configured ? 2 : 1);
    failed |= put(file, "ap_setup_locked", "%s", setting(file, "AP_SETUP_LOCKED", "0", value, sizeof value));
    failed |= put(file, "ap_pin", "%s", setting(file, "WSC_PIN", DEFAULT_PIN, value, sizeof value));
    failed |= put_uuid(file);
    failed |= put(file, "friendly_name", "Access point ath%d", file->vap);
    failed |= put(file, "device_name", "Wireless gateway");
    return failed | put(file, "model_name", "Simulated");
}

static int put_scenario_lines(wps_file *file) {
    int failed = 0;
    for (int i = 0; i < file->scene->wps_line_count; i++) {
        const scenario_wps_line *line = &file->scene->wps_lines[i];
        if (line->vap == file->vap + 1)
            failed |= store_set(&file->lines, line->key, line->value);
    }
    return failed;
}

static int prepare_file(wps_file *file) {
    char path[WPS_PATH_SIZE];
    wps_file_path(file->vap, path, sizeof path);
    int failed = lines_load(path, &file->lines);
    bool missing = failed != 0 && errno == ENOENT;
    if (missing)
        failed = put_radio_side(file) | put_wps_side(file) | put_scenario_lines(file);
    else if (failed == 0)
        failed = put_radio_side(file);
    if (failed == 0)
        failed = lines_save(path, &file->lines);
    store_free(&file->lines);
    return failed;
}

int wps_files_prepare(const scenario *scene, const char *store_path) {
    store_text store;
    int failed = store_load(store_path, &store);
    int reason = errno;
    bool loaded = failed == 0;
    for (int i = 0; i < SCENARIO_VAPS && loaded; i++) {
        wps_file file = {i, scene, &store, {}};
        // One that cannot be written does not keep the others from being.
        if (scene->vaps[i].declared && prepare_file(&file) != 0) {
            failed = -1;
            reason = errno;
        }
    }
    store_free(&store);
    errno = reason;
    return failed;
}
