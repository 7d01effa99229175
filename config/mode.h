// The driver's wireless mode strings: taken apart into a record, changed by the caller, put together again.
//
// Touches the store (AP_CHMODE and the pure switches of a radio). The record belongs to the caller.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Room for the longest composed mode with a margin: base, "V", width and side.
constexpr size_t MODE_STRING_SIZE = 32;

enum channel_width_code : int32_t {
    WIDTH_NONE = 0,
    WIDTH_20 = 1,
    WIDTH_40 = 2,
    WIDTH_40_DISCOEXT = 3,  // 40 MHz with AP_DISCOEXT "1"
    WIDTH_80 = 4,
};

enum extension_side : int32_t {
    SIDE_BELOW = -1,
    SIDE_NONE = 0,
    SIDE_ABOVE = 1,
    SIDE_UNSTATED = 2,  // 40 MHz without a stated side
};

struct wlan_mode_info {
    char standard[8];  // "a", "b", "g", "bg", "n", "an", "gn", "bgn", "ac", "nac", "anac"
    char base[8];      // "11A", "11B", "11G", "11NA", "11NG", "11AC"
    int32_t width;     // channel_width_code
    char width_text[8];
    int32_t offset;  // extension_side
    char offset_text[8];
};
static_assert(sizeof(wlan_mode_info) == 40);

// Fills the record from the store; what the store does not say stays empty. Always returns 0.
int mode_parsing(int radio, wlan_mode_info *mode);

// Settles the record (legacy modes carry no width, 802.11n no 80 MHz) and writes its mode string into text, which
// should have MODE_STRING_SIZE bytes. Always returns 0.
int mode_compose(wlan_mode_info *mode, char *text, size_t size);

// Composes the record and writes the mode string to the radio's AP_CHMODE.
void mode_write(int radio, wlan_mode_info *mode);
