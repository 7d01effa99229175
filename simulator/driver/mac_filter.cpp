#include "simulator/driver/mac_filter.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/driver/driver_parameters.h"

constexpr size_t MAC_LENGTH = MAC_TEXT_SIZE - 1;

static void line_key(const char *interface, char *key, size_t size) {
    snprintf(key, size, "%s.maclist", interface);
}

static char *list_in(const store_text *lines, const char *interface) {
    char key[SETTING_KEY_SIZE];
    size_t length = 0;
    line_key(interface, key, sizeof key);
    const char *found = store_find(lines, key, &length);
    return strndup(found != nullptr ? found : "", length);
}

char *mac_filter_list(const char *interface) {
    store_text lines;
    char *list = driver_parameters_read(&lines) == 0 ? list_in(&lines, interface) : strdup("");
    store_free(&lines);
    return list;
}

// Letters as the driver prints them, so that an address has one spelling.
static void to_upper(const char *mac, char *upper) {
    for (size_t i = 0; i < MAC_TEXT_SIZE; i++)
        upper[i] = (char)toupper((unsigned char)mac[i]);
}

static int put_list(store_text *lines, const char *interface, const char *list) {
    char key[SETTING_KEY_SIZE];
    line_key(interface, key, sizeof key);
    if (*list != '\0')
        return store_set(lines, key, list);
    store_remove(lines, key);
    return 0;
}

// Adds an address at the end of the list that the lines hold for an interface.
static int add_to(store_text *lines, const char *interface, const char *mac) {
    char upper[MAC_TEXT_SIZE];
    char *list = list_in(lines, interface);
    char *longer = nullptr;
    to_upper(mac, upper);
    int failed = list != nullptr ? 0 : -1;
    if (failed == 0 && strstr(list, upper) == nullptr) {
        failed = asprintf(&longer, "%s%s%s", list, *list != '\0' ? " " : "", upper) < 0 ? -1 : 0;
        if (failed == 0)
            failed = put_list(lines, interface, longer);
        free(longer);
    }
    free(list);
    return failed;
}

static int remove_from(store_text *lines, const char *interface, const char *mac) {
    char upper[MAC_TEXT_SIZE];
    char *list = list_in(lines, interface);
    if (list == nullptr)
        return -1;
    to_upper(mac, upper);
    char *found = strstr(list, upper);
    int failed = 0;
    if (found != nullptr) {
        // With the blank behind it, or in front of it when it is the last one.
        char *rest = found + MAC_LENGTH;
        if (*rest == ' ')
            rest++;
        else if (found > list)
            found--;
        memmove(found, rest, strlen(rest) + 1);
        failed = put_list(lines, interface, list);
    }
    free(list);
    return failed;
}

static int remove_all(store_text *lines, const char *interface, const char *) {
    return put_list(lines, interface, "");
}

int mac_filter_add(const char *interface, const char *mac) {
    return driver_parameters_change(add_to, interface, mac);
}

int mac_filter_remove(const char *interface, const char *mac) {
    return driver_parameters_change(remove_from, interface, mac);
}

int mac_filter_flush(const char *interface) {
    return driver_parameters_change(remove_all, interface, "");
}

// One entry "MAC,NAME" of the store; what is none, or is on another list, is passed over.
static int load_entry(const char *entry, size_t length, const char *interface, store_text *lines) {
    static const char name[] = ",steerlist";
    char text[MAC_TEXT_SIZE];
    char mac[MAC_TEXT_SIZE];
    if (length != MAC_LENGTH + strlen(name) || strncmp(entry + MAC_LENGTH, name, strlen(name)) != 0)
        return 0;
    snprintf(text, sizeof text, "%.*s", (int)MAC_LENGTH, entry);
    return copy_mac(text, mac) ? add_to(lines, interface, mac) : 0;
}

int mac_filter_load(const char *interface, const store_text *store, int index, store_text *lines) {
    char key[SETTING_KEY_SIZE];
    size_t length = 0;
    store_key("AP_MACLIST", index, key, sizeof key);
    const char *entry = store_find(store, key, &length);
    int failed = 0;
    while (length > 0 && failed == 0) {
        const char *end = (const char *)memchr(entry, ';', length);
        size_t entry_length = end != nullptr ? (size_t)(end - entry) : length;
        failed = load_entry(entry, entry_length, interface, lines);
        size_t used = entry_length + (end != nullptr ? 1 : 0);
        entry += used;
        length -= used;
    }
    return failed;
}
