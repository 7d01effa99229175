#include "simulator/daemons/soft_block.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/store.h"

struct tunable {
    const char *message;  // in front of the number
    const char *key;      // of the store
};

static const tunable tunables[SOFT_BLOCK_TUNABLES] = {
    {"setBSE:", "SOFT_BLOCK_EN"},          {"setBLM:", "SOFT_BLOCK_BLACK_LIST_SELECTOR"},
    {"setSBM:", "SOFT_BLOCK_SELECTOR"},    {"setWTT:", "SOFT_BLOCK_WAITING_TIME"},
    {"setATR:", "SOFT_BLOCK_ALLOW_TIMER"}, {"setAUT:", "SOFT_BLOCK_AUTH_RESP_ST_C"},
    {"setRES:", "SOFT_BLOCK_IGNORE_PR_T"},
};

// The RSSI thresholds have a key a VAP.
static const char RSSI_KEY[] = "AP_BSS_STA_RSSI_THR";

// The store.

static int32_t setting(const store_text *store, const char *name, int index) {
    char key[SETTING_KEY_SIZE];
    char value[SETTING_VALUE_SIZE] = "";
    size_t length = 0;
    store_key(name, index, key, sizeof key);
    const char *found = store_find(store, key, &length);
    if (found != nullptr)
        snprintf(value, sizeof value, "%.*s", (int)length, found);
    return (int32_t)strtol(value, nullptr, 10);
}

void soft_block_configure(soft_block *self, const char *store_path) {
    store_text store;
    // A store that cannot be read is an empty one.
    [[maybe_unused]] int failed = store_load(store_path, &store);
    for (int i = 0; i < SOFT_BLOCK_TUNABLES; i++)
        self->tunables[i] = setting(&store, tunables[i].key, 1);
    for (int i = 0; i < SCENARIO_VAPS; i++)
        self->rssi_thresholds[i] = setting(&store, RSSI_KEY, i + 1);
    store_free(&store);
}

// Messages.

// What stands behind a message's name, null when it is another message.
static const char *argument_of(const char *message, const char *name) {
    size_t length = strlen(name);
    return strncmp(message, name, length) == 0 ? message + length : nullptr;
}

// A decimal number of 32 bits and the text behind it. False when there is none.
static bool take_number(const char *text, int32_t *number, const char **rest) {
    char *end;
    errno = 0;
    long value = strtol(text, &end, 10);
    *number = (int32_t)value;
    *rest = end;
    return strchr("-0123456789", text[0]) != nullptr && end != text && errno == 0 && value == *number;
}

static soft_block_effect tune(int32_t *tuned, const char *argument) {
    int32_t number;
    const char *rest;
    if (!take_number(argument, &number, &rest) || *rest != '\0')
        return SOFT_BLOCK_NOTHING;
    *tuned = number;
    return SOFT_BLOCK_TUNED;
}

// THRESHOLD@INTERFACE
static soft_block_effect tune_rssi(soft_block *self, const char *argument) {
    int32_t threshold, interface;
    const char *rest;
    if (!take_number(argument, &threshold, &rest) || *rest != '@' || !take_number(rest + 1, &interface, &rest) ||
        *rest != '\0' || interface < 0 || interface >= SCENARIO_VAPS)
        return SOFT_BLOCK_NOTHING;
    self->rssi_thresholds[interface] = threshold;
    return SOFT_BLOCK_TUNED;
}

// The number makes no difference, but there has to be one.
static soft_block_effect clear(black_list *list, const char *argument) {
    int32_t number;
    const char *rest;
    if (!take_number(argument, &number, &rest) || *rest != '\0')
        return SOFT_BLOCK_NOTHING;
    *list = {};
    return SOFT_BLOCK_LIST_CHANGED;
}

soft_block_effect soft_block_take(soft_block *self, const char *message, int32_t now) {
    const char *argument;
    for (int i = 0; i < SOFT_BLOCK_TUNABLES; i++) {
        if ((argument = argument_of(message, tunables[i].message)) != nullptr)
            return tune(&self->tunables[i], argument);
    }
    if ((argument = argument_of(message, "setRSSI:")) != nullptr)
        return tune_rssi(self, argument);
    if ((argument = argument_of(message, "addMac:")) != nullptr)
        return black_list_add(&self->list, argument, now) ? SOFT_BLOCK_LIST_CHANGED : SOFT_BLOCK_NOTHING;
    if ((argument = argument_of(message, "delMac:")) != nullptr)
        return black_list_remove(&self->list, argument) ? SOFT_BLOCK_LIST_CHANGED : SOFT_BLOCK_NOTHING;
    if ((argument = argument_of(message, "clearL:")) != nullptr)
        return clear(&self->list, argument);
    if (strcmp(message, "getList") == 0)
        return SOFT_BLOCK_ASKED;
    return strcmp(message, "restart") == 0 ? SOFT_BLOCK_RESTART : SOFT_BLOCK_NOTHING;
}

// The text.

int soft_block_describe(const soft_block *self, const char *path) {
    char beside[256];
    char text[SETTING_KEY_SIZE];
    snprintf(beside, sizeof beside, "%s.new", path);
    FILE *file = fopen(beside, "we");
    if (file == nullptr)
        return -1;
    for (int i = 0; i < SOFT_BLOCK_TUNABLES; i++)
        fprintf(file, "%s=%d\n", tunables[i].key, self->tunables[i]);
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        store_key(RSSI_KEY, i + 1, text, sizeof text);
        fprintf(file, "%s=%d\n", text, self->rssi_thresholds[i]);
    }
    fprintf(file, "total=%d\noldest=%d\n", self->list.total, self->list.oldest);
    for (int i = 0; i < self->list.total; i++) {
        black_list_mac(&self->list.entries[i], text);
        fprintf(file, "station.%d=%s %d\n", i, text, self->list.entries[i].timestamp);
    }
    return fclose(file) == 0 ? rename(beside, path) : -1;
}
