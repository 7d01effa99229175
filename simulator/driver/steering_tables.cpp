#include "simulator/driver/steering_tables.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/driver_parameters.h"

static void blacklist_key(const char *interface, char *key, size_t size) {
    snprintf(key, size, "%s.blacklist2g", interface);
}

static void capable_key(const char *interface, char *key, size_t size) {
    snprintf(key, size, "%s.capable5g", interface);
}

// The value of a line of the parameters, on the heap; empty when there is none, null when memory ran out.
static char *list_of(const char *key) {
    store_text lines;
    size_t length = 0;
    const char *found = driver_parameters_read(&lines) == 0 ? store_find(&lines, key, &length) : nullptr;
    char *list = strndup(found != nullptr ? found : "", length);
    store_free(&lines);
    return list;
}

static bool read_entry(const char *text, blacklist_entry *entry) {
    char mac[MAC_TEXT_SIZE];
    double until;
    *entry = {};
    if (sscanf(text, "%17[^/]/%d/%d/%lf", mac, &entry->reason, &entry->rssi, &until) != 4 || !copy_mac(mac, entry->mac))
        return false;
    entry->seconds_left = until - driver_clock();
    return entry->seconds_left > 0;
}

int blacklist2g_read(const char *interface, blacklist_entry *entries, int size) {
    char key[SETTING_KEY_SIZE];
    blacklist_entry entry;
    int count = 0;
    blacklist_key(interface, key, sizeof key);
    char *list = list_of(key);
    char *rest = nullptr;
    for (char *word = list != nullptr ? strtok_r(list, " ", &rest) : nullptr; word != nullptr;
         word = strtok_r(nullptr, " ", &rest)) {
        if (!read_entry(word, &entry))
            continue;
        if (count < size)
            entries[count] = entry;
        count++;
    }
    free(list);
    return count;
}

int capable5g_count(const char *interface) {
    char key[SETTING_KEY_SIZE];
    int count = 0;
    capable_key(interface, key, sizeof key);
    char *list = list_of(key);
    char *rest = nullptr;
    for (char *word = list != nullptr ? strtok_r(list, " ", &rest) : nullptr; word != nullptr;
         word = strtok_r(nullptr, " ", &rest))
        count++;
    free(list);
    return count;
}

static int remove_line(store_text *lines, const char *key, const char *) {
    store_remove(lines, key);
    return 0;
}

int blacklist2g_clear(const char *interface) {
    char key[SETTING_KEY_SIZE];
    blacklist_key(interface, key, sizeof key);
    return driver_parameters_change(remove_line, key, "");
}

int capable5g_clear(const char *interface) {
    char key[SETTING_KEY_SIZE];
    capable_key(interface, key, sizeof key);
    return driver_parameters_change(remove_line, key, "");
}

// A line's value while it grows.
struct growing_list {
    FILE *stream;
    char *text;
    size_t length;
};

static bool begin_list(growing_list *list) {
    *list = {};
    list->stream = open_memstream(&list->text, &list->length);
    return list->stream != nullptr;
}

// Makes the list a line, unless it is empty.
static int end_list(growing_list *list, const char *key, store_text *lines) {
    int failed = fclose(list->stream);
    if (failed == 0 && list->length > 0)
        failed = store_set(lines, key, list->text);
    free(list->text);
    return failed;
}

static int load_blacklist(const char *interface, const scenario *scene, int vap, store_text *lines) {
    char key[SETTING_KEY_SIZE];
    growing_list list;
    if (!begin_list(&list))
        return -1;
    const char *between = "";
    for (int i = 0; i < scene->blacklisted_count; i++) {
        const scenario_blacklisted *entry = &scene->blacklisted[i];
        if (entry->vap != vap)
            continue;
        fprintf(list.stream, "%s%s/%d/%d/%.6f", between, entry->mac, entry->reason, entry->rssi,
                driver_clock() + entry->seconds);
        between = " ";
    }
    blacklist_key(interface, key, sizeof key);
    return end_list(&list, key, lines);
}

static int load_capable(const char *interface, const scenario *scene, int vap, store_text *lines) {
    char key[SETTING_KEY_SIZE];
    growing_list list;
    if (!begin_list(&list))
        return -1;
    const char *between = "";
    for (int i = 0; i < scene->capable_count; i++) {
        if (scene->capable[i].vap != vap)
            continue;
        fprintf(list.stream, "%s%s", between, scene->capable[i].mac);
        between = " ";
    }
    capable_key(interface, key, sizeof key);
    return end_list(&list, key, lines);
}

int steering_tables_load(const char *interface, const scenario *scene, int vap, store_text *lines) {
    return load_blacklist(interface, scene, vap, lines) | load_capable(interface, scene, vap, lines);
}
