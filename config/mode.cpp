// The driver's wireless mode strings: taken apart into a record, changed by the caller, put together again.
//
// Touches the store (AP_CHMODE and the pure switches of a radio). Runs on the service thread.
#include "config/mode.h"

#include <stdio.h>
#include <string.h>

#include "config/log.h"
#include "config/store.h"

// A base mode and the letters of its standard. The pure switches (at most two) say which of its older members the
// mode excludes; the letters are found under 1 for the first switch being on plus 2 for the second.
struct base_mode {
    const char *base;
    const char *switches[2];
    const char *standards[4];
};

// In this order, the first base that the mode string contains is the one.
static const base_mode BASE_MODES[] = {
    {"11AC", {"PUREN", "PUREAC"}, {"anac", "nac", "ac", "ac"}},
    {"11A", {}, {"a"}},
    {"11B", {}, {"b"}},
    {"11G", {"PUREG"}, {"bg", "g"}},
    {"11NA", {"PUREN"}, {"an", "n"}},
    {"11NG", {"PUREN", "PUREG"}, {"bgn", "n", "gn", "n"}},
};

static const base_mode *find_base(const char *text) {
    for (const base_mode &row : BASE_MODES) {
        if (strstr(text, row.base)) {
            return &row;
        }
    }
    return nullptr;
}

static const char *read_standard(const base_mode *row, int store_index) {
    unsigned on = 0;
    for (unsigned i = 0; i < 2; i++) {
        int value = 0;
        if (row->switches[i] && athcfg_getint(store_index, row->switches[i], &value) == 0 && value == 1) {
            on |= 1U << i;
        }
    }
    return row->standards[on];
}

static void read_width(const char *text, int store_index, wlan_mode_info *mode) {
    const char *name = "";
    if (strstr(text, "HT40")) {
        char discoext[STORE_VALUE_SIZE];
        athcfg_getbyname(store_index, "AP_DISCOEXT", discoext, sizeof(discoext));
        mode->width = strcmp(discoext, "1") == 0 ? WIDTH_40_DISCOEXT : WIDTH_40;
        name = "HT40";
    } else if (strstr(text, "HT20")) {
        mode->width = WIDTH_20;
        name = "HT20";
    } else if (strstr(text, "HT80")) {
        mode->width = WIDTH_80;
        name = "HT80";
    }
    snprintf(mode->width_text, sizeof(mode->width_text), "%s", name);
}

static void read_side(const char *text, wlan_mode_info *mode) {
    if (strstr(text, "MINUS")) {
        mode->offset = SIDE_BELOW;
        snprintf(mode->offset_text, sizeof(mode->offset_text), "MINUS");
    } else if (strstr(text, "PLUS")) {
        mode->offset = SIDE_ABOVE;
        snprintf(mode->offset_text, sizeof(mode->offset_text), "PLUS");
    } else if (mode->width == WIDTH_40 || mode->width == WIDTH_40_DISCOEXT) {
        mode->offset = SIDE_UNSTATED;
    }
}

int mode_parsing(int radio, wlan_mode_info *mode) {
    memset(mode, 0, sizeof(*mode));
    int store_index = radio_store_index(radio);
    char text[STORE_VALUE_SIZE];
    athcfg_getbyname(store_index, "AP_CHMODE", text, sizeof(text));
    log_debug("[VLK-API] %s mode = %s \n", __func__, text);
    const base_mode *row = find_base(text);
    if (row) {
        snprintf(mode->base, sizeof(mode->base), "%s", row->base);
        snprintf(mode->standard, sizeof(mode->standard), "%s", read_standard(row, store_index));
    }
    read_width(text, store_index, mode);
    read_side(text, mode);
    return 0;
}

static bool is_base(const wlan_mode_info *mode, const char *base) {
    return strcmp(mode->base, base) == 0;
}

static bool is_legacy(const wlan_mode_info *mode) {
    return is_base(mode, "11G") || is_base(mode, "11A") || is_base(mode, "11B");
}

static const char *width_name(int32_t width) {
    switch (static_cast<channel_width_code>(width)) {
        case WIDTH_80:
            return "HT80";
        case WIDTH_40_DISCOEXT:
        case WIDTH_40:
            return "HT40";
        case WIDTH_20:
            return "HT20";
        case WIDTH_NONE:
            return "";
    }
    return "";
}

static const char *side_name(int32_t offset) {
    switch (static_cast<extension_side>(offset)) {
        case SIDE_ABOVE:
            return "PLUS";
        case SIDE_BELOW:
            return "MINUS";
        case SIDE_NONE:
        case SIDE_UNSTATED:
            return "";
    }
    return "";
}

static void settle_width(wlan_mode_info *mode) {
    if (is_legacy(mode)) {
        mode->width = WIDTH_NONE;
        mode->offset = SIDE_NONE;
    } else if (mode->width == WIDTH_NONE) {
        mode->width = WIDTH_20;
    }
    // 802.11n has no 80 MHz. It falls back to code 3, not to plain 40 MHz (2): callers see the code in the record.
    if (mode->width == WIDTH_80 && (is_base(mode, "11NA") || is_base(mode, "11NG"))) {
        mode->width = WIDTH_40_DISCOEXT;
    }
}

int mode_compose(wlan_mode_info *mode, char *text, size_t size) {
    settle_width(mode);
    snprintf(mode->offset_text, sizeof(mode->offset_text), "%s", side_name(mode->offset));
    snprintf(mode->width_text, sizeof(mode->width_text), "%s", width_name(mode->width));
    // Without a base this is the width alone ("HT20"): a radio without a mode gets that written back as it is.
    snprintf(text, size, "%s%s%s%s", mode->base, is_base(mode, "11AC") ? "V" : "", mode->width_text, mode->offset_text);
    return 0;
}

void mode_write(int radio, wlan_mode_info *mode) {
    char text[MODE_STRING_SIZE];
    mode_compose(mode, text, sizeof(text));
    athcfg_setbyname(radio_store_index(radio), "AP_CHMODE", text);
}
