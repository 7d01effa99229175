#include "simulator/driver/airtime_list.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// Room for a key with the largest number, and for a number as its value.
constexpr size_t KEY_SIZE = 32;
constexpr size_t NUMBER_SIZE = 16;

bool octets_from_text(const char *text, uint8_t *octets) {
    if (strlen(text) != OCTETS_TEXT_SIZE - 1)
        return false;
    for (const char *digit = text; *digit != '\0'; digit++) {
        if (!isxdigit((unsigned char)*digit))
            return false;
    }
    for (size_t i = 0; i < MAC_OCTETS; i++) {
        const char pair[] = {text[2 * i], text[2 * i + 1], '\0'};
        octets[i] = (uint8_t)strtoul(pair, nullptr, 16);
    }
    return true;
}

void octets_to_text(const uint8_t *octets, char *text) {
    for (size_t i = 0; i < MAC_OCTETS; i++)
        snprintf(text + 2 * i, 3, "%02x", octets[i]);
}

static const char *entry_key(const char *what, int number, char (&key)[KEY_SIZE]) {
    snprintf(key, sizeof key, "ATF_STA_%s_%d", what, number);
    return key;
}

// Copies the value of an entry's key; empty when it is not there.
static void entry_value(const store_text *store, const char *what, int number, char (&value)[NUMBER_SIZE]) {
    char key[KEY_SIZE];
    size_t length = 0;
    const char *found = store_find(store, entry_key(what, number, key), &length);
    snprintf(value, sizeof value, "%.*s", (int)length, found != nullptr ? found : "");
}

int weighted_stations_read(const store_text *store, weighted_station (&stations)[WEIGHTED_STATIONS]) {
    char value[NUMBER_SIZE];
    int count = 0;
    for (; count < WEIGHTED_STATIONS; count++) {
        entry_value(store, "MAC", count + 1, value);
        if (!octets_from_text(value, stations[count].mac))
            break;
        entry_value(store, "WEIGHT", count + 1, value);
        stations[count].weight = atoi(value);
        entry_value(store, "PERIOD", count + 1, value);
        stations[count].period = atoi(value);
    }
    return count;
}

static int set_number(store_text *store, const char *what, int number, int value) {
    char key[KEY_SIZE];
    char text[NUMBER_SIZE];
    snprintf(text, sizeof text, "%d", value);
    return store_set(store, entry_key(what, number, key), text);
}

static int set_entry(store_text *store, int number, const weighted_station *station) {
    char key[KEY_SIZE];
    char mac[OCTETS_TEXT_SIZE];
    octets_to_text(station->mac, mac);
    if (store_set(store, entry_key("MAC", number, key), mac) != 0 ||
        set_number(store, "WEIGHT", number, station->weight) != 0)
        return -1;
    if (station->period != 0)
        return set_number(store, "PERIOD", number, station->period);
    store_remove(store, entry_key("PERIOD", number, key));
    return 0;
}

// What an entry is made of.
static const char *const parts[] = {"MAC", "WEIGHT", "PERIOD"};

int weighted_stations_write(store_text *store, const weighted_station *stations, int count) {
    for (int i = 0; i < count; i++) {
        if (set_entry(store, i + 1, &stations[i]) != 0)
            return -1;
    }
    for (int number = count + 1; number <= WEIGHTED_STATIONS; number++) {
        char key[KEY_SIZE];
        for (const char *what : parts)
            store_remove(store, entry_key(what, number, key));
    }
    return 0;
}

weighted_station *weighted_station_find(weighted_station *stations, int count, const uint8_t *mac) {
    for (int i = 0; i < count; i++) {
        if (memcmp(stations[i].mac, mac, MAC_OCTETS) == 0)
            return &stations[i];
    }
    return nullptr;
}
