// Wi-Fi multimedia (WMM) settings of a VAP: its two switches and the parameters of the access categories.
//
// Touches the store. Runs on the service thread.
#include "params/wmm.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/log.h"
#include "config/store.h"
#include "config/text.h"
#include "params/settings.h"

constexpr char CATEGORY_SEPARATOR = ';';

// The longest decimal number of 32 bits, with its NUL.
constexpr size_t NUMBER_TEXT_SIZE = sizeof("-2147483648");

NUMBER_SETTING(wlan_getWmmEnable, wlan_setWmmEnable, int, "AP_WMMEN", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO, QUIET)
NUMBER_SETTING(wlan_getWmmUaspdEnable, wlan_setWmmUaspdEnable, int, "AP_WMMAPSD", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO,
               QUIET)

int wlan_getWmmSupported(int index, int *supported) {
    return wlan_getWmmEnable(index, supported);
}

int wlan_getWmmUaspdSupported(int index, int *supported) {
    return wlan_getWmmUaspdEnable(index, supported);
}

int wlan_getWMMAPSD(int index, int *enabled) {
    if (index < 0) {
        return -1;
    }
    char text[STORE_VALUE_SIZE];
    if (athcfg_getbyname(index, "AP_WMMAPSD", text, sizeof(text)) != 0) {
        return 0;
    }
    log_debug("[VLK-API] %s %s: get  AP_WMMAPSD %s\n", __func__, __func__, text);
    *enabled = atoi(text);
    return 0;
}

int wlan_setWMMAPSD(int index, int enabled) {
    // A success on purpose, unlike wlan_setWmmUaspdEnable: clients of this operation do not expect a failure.
    if (index < 0) {
        return 0;
    }
    char text[NUMBER_TEXT_SIZE];
    snprintf(text, sizeof(text), "%d", enabled);
    log_debug("[VLK-API] %s %s: set  AP_WMMAPSD %s\n", __func__, __func__, text);
    athcfg_setbyname(index, "AP_WMMAPSD", text);
    return 0;
}

static const char *behind_element(const char *element, char separator) {
    const char *end = strchrnul(element, separator);
    return *end ? end + 1 : end;
}

// Where the element of a category begins or, behind the last one, would begin. Null when elements before it are
// missing. Categories below 1 lead to the first element.
static const char *find_place(const char *list, char separator, int category) {
    const char *place = list;
    for (int i = 1; i < category; i++) {
        if (*place == '\0') {
            return nullptr;
        }
        place = behind_element(place, separator);
    }
    return place;
}

int list_get_item(const char *list, char separator, int category, char *item, size_t size) {
    const char *element = find_place(list, separator, category);
    if (category < 1 || !element || *element == '\0') {
        return -1;
    }
    put_characters(item, size, element, static_cast<size_t>(strchrnul(element, separator) - element));
    return 0;
}

int list_set_item(const char *list, char separator, int category, const char *value, char *changed, size_t size) {
    const char *place = find_place(list, separator, category);
    if (!place) {
        return -1;
    }
    const char *rest = behind_element(place, separator);
    const char between[] = {separator, '\0'};
    // The list may end without a separator; behind such an element the new one needs it.
    const char *before = place == list || place[-1] == separator ? "" : between;
    const char *behind = *rest ? between : "";
    int length =
        snprintf(changed, size, "%.*s%s%s%s%s", static_cast<int>(place - list), list, before, value, behind, rest);
    return length >= 0 && static_cast<size_t>(length) < size ? 0 : -1;
}

static int get_category(const char *key, int index, int category, int *value) {
    if (index < 0) {
        return -1;
    }
    char list[STORE_VALUE_SIZE];
    char element[STORE_VALUE_SIZE];
    athcfg_getbyname(index, key, list, sizeof(list));
    if (list_get_item(list, CATEGORY_SEPARATOR, category, element, sizeof(element)) == 0) {
        *value = atoi(element);
    }
    return 0;
}

static int set_category(const char *key, int index, int category, int value) {
    if (index < 0) {
        return -1;
    }
    // One more than a value of the store has, so that a longer one shows: its end was not read and would be lost.
    char list[STORE_VALUE_SIZE + 1];
    athcfg_getbyname(index, key, list, sizeof(list));
    if (strlen(list) >= STORE_VALUE_SIZE) {
        return 0;
    }
    char number[NUMBER_TEXT_SIZE];
    snprintf(number, sizeof(number), "%d", value);
    char changed[STORE_VALUE_SIZE];
    if (list_set_item(list, CATEGORY_SEPARATOR, category, number, changed, sizeof(changed)) == 0) {
        athcfg_setbyname(index, key, changed);
    }
    return 0;
}

// Defines both operations of a list. type is int or u_int: both travel as one word and are stored as "%d".
//
//   LIST_SETTING(wlan_getWmmOgAifsn, wlan_setWmmOgAifsn, u_int, "AP_WMMAIFS")
//
// becomes  int wlan_getWmmOgAifsn(int index, int category, u_int *value);
//          int wlan_setWmmOgAifsn(int index, int category, u_int value);
#define LIST_SETTING(getter, setter, type, key)                                    \
    int getter(int index, int category, type *value) {                             \
        return get_category(key, index, category, reinterpret_cast<int *>(value)); \
    }                                                                              \
    int setter(int index, int category, type value) {                              \
        return set_category(key, index, category, static_cast<int>(value));        \
    }

// What the access point uses itself.
LIST_SETTING(wlan_getWmmOgAifsn, wlan_setWmmOgAifsn, u_int, "AP_WMMAIFS")
LIST_SETTING(wlan_getWmmOgEcwMin, wlan_setWmmOgEcwMin, u_int, "AP_WMMCWMIN")
LIST_SETTING(wlan_getWmmOgEcwMax, wlan_setWmmOgEcwMax, u_int, "AP_WMMCWMAX")
LIST_SETTING(wlan_getWmmOgTxOp, wlan_setWmmOgTxOp, u_int, "AP_WMMTXOP")
LIST_SETTING(wlan_getWmmOgAckPolicy, wlan_setWmmOgAckPolicy, int, "AP_WMMACKPOLICY")

// What it advertises to the stations of the BSS.
LIST_SETTING(wlan_getWmmIcAifsn, wlan_setWmmIcAifsn, u_int, "AP_WMMBSSAIFS")
LIST_SETTING(wlan_getWmmIcEcwMin, wlan_setWmmIcEcwMin, u_int, "AP_WMMBSSCWMIN")
LIST_SETTING(wlan_getWmmIcEcwMax, wlan_setWmmIcEcwMax, u_int, "AP_WMMBSSCWMAX")
LIST_SETTING(wlan_getWmmIcTxOp, wlan_setWmmIcTxOp, u_int, "AP_WMMBSSTXOP")
LIST_SETTING(wlan_getWmmIcAckPolicy, wlan_setWmmIcAckPolicy, int, "AP_WMMBSSACKPOLICY")
