// Settings that are one decimal number under one key. See the header.
#include "params/settings.h"

#include <stdlib.h>

#include "config/log.h"
#include "config/store.h"
#include "params/vap.h"

static bool is_refused(const number_setting *setting, int index) {
    return setting->check == CHECK_INDEX && index < 0;
}

// The store index that is read.
static int store_index(setting_scope scope, int index) {
    switch (scope) {
        case SCOPE_DEVICE:
            return 0;
        case SCOPE_RADIO:
            return radio_store_index(athcfg_get_radio(index));
        case SCOPE_VAP:
        case SCOPE_GROUP:
            return index;
    }
    return index;
}

int get_number(const number_setting *setting, const char *caller, int index, int *value) {
    if (is_refused(setting, index)) {
        return -1;
    }
    char text[STORE_VALUE_SIZE];
    bool absent = athcfg_getbyname(store_index(setting->scope, index), setting->key, text, sizeof(text)) != 0;
    if (absent && setting->absence != ABSENT_ZERO) {
        return setting->absence == ABSENT_FAILS ? -1 : 0;
    }
    if (!absent && setting->log == LOGGED) {
        log_debug("[VLK-API] %s %s: get %s %s\n", caller, caller, setting->key, text);
    }
    *value = atoi(text);
    return 0;
}

int set_number(const number_setting *setting, int index, int value) {
    if (is_refused(setting, index)) {
        return -1;
    }
    if (setting->scope != SCOPE_GROUP) {
        athcfg_setint(store_index(setting->scope, index), setting->key, value);
        return 0;
    }
    // The group follows the index alone; which radio the VAP's AP_RADIO_ID names does not matter here.
    int first = index <= VAPS_PER_RADIO ? 1 : 1 + VAPS_PER_RADIO;
    for (int vap = first; vap < first + VAPS_PER_RADIO; vap++) {
        athcfg_setint(vap, setting->key, value);
    }
    return 0;
}
