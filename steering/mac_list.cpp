// MAC access control list of a VAP: its stations, each with the name of the list that it is on.
//
// Touches the store (AP_MACLIST) and runs `iwpriv`. Runs on the service thread.
#include "steering/mac_list.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/text.h"
#include "server/records.h"

// The list whose stations the driver is told of when they are added.
constexpr const char STEERING_LIST[] = "steerlist";

// Two double quotes: how some stores hold an empty list.
constexpr const char QUOTED_EMPTY_LIST[] = "\"\"";

// Of an entry that takes the place of the two quotes, this much is kept.
constexpr size_t FIRST_ENTRY_LENGTH_MAX = 64;

// What has to be free behind a stored list that is given out: the ";" that is appended, the NUL, and one byte more.
// Clients know the sum as the longest list that can be read, 3197 characters of 3200 bytes.
constexpr size_t LIST_TAIL_SIZE = 3;

// The list is searched as one text, not entry by entry: the end of a longer MAC is found too, and so is a MAC with a
// comma behind it inside a name. Do not mend this: clients get the list that such a request has always left. An empty
// MAC would be found at every comma and is therefore found nowhere.
static char *find_entry(char *list, const char *mac) {
    size_t length = strlen(mac);
    if (length == 0) {
        return nullptr;
    }
    for (char *found = strstr(list, mac); found; found = strstr(found + 1, mac)) {
        if (found[length] == ',') {
            return found;
        }
    }
    return nullptr;
}

bool mac_list_remove(char *list, const char *mac) {
    char *entry = find_entry(list, mac);
    if (!entry) {
        return false;
    }
    char *name = entry + strlen(mac) + 1;
    char *end = name + strcspn(name, ";");
    if (*end == ';') {
        const char *rest = end + 1;
        memmove(entry, rest, strlen(rest) + 1);
        return true;
    }
    // The last entry, without its ";": the one before it gives up its own, so that the list ends as it did.
    if (entry > list && entry[-1] == ';') {
        entry--;
    }
    *entry = '\0';
    return true;
}

bool mac_list_append(char *list, size_t size, const char *entry) {
    if (strcmp(list, QUOTED_EMPTY_LIST) == 0) {
        // A longer entry loses its end here and nowhere else. It is meant: a client reads back what it has always read.
        put_characters(list, size, entry, FIRST_ENTRY_LENGTH_MAX);
        return true;
    }
    size_t length = strlen(list);
    size_t entry_length = strlen(entry);
    if (length + entry_length >= size) {
        return false;
    }
    memcpy(list + length, entry, entry_length + 1);
    return true;
}

// Has the driver add or delete a station of the VAP's interface, if both exist. The MAC is not escaped: clients pass
// whatever the tool takes.
static void change_driver_filter(int index, const char *action, const char *mac) {
    if (*mac == '\0' || index < 1) {
        return;
    }
    char *command = nullptr;
    if (asprintf(&command, "iwpriv ath%d %s %s", interface_number(index), action, mac) < 0) {
        return;
    }
    run_shell(command);
    free(command);
}

// Reads the list of a VAP. Returns false when it is longer than a list may be: written back it would lose its end.
static bool read_list(int index, char (&list)[MAC_LIST_SIZE]) {
    // One byte more, so that a longer list shows.
    char stored[MAC_LIST_SIZE + 1];
    athcfg_getbyname(index, "AP_MACLIST", stored, sizeof(stored));
    put_text(list, sizeof(list), stored);
    return strlen(stored) < sizeof(list);
}

// The part of an addition that concerns the stored list. caller is the operation's name, for debug lines.
static int store_entry(const char *caller, int index, const char *mac, const char *list_name, const char *entry) {
    char list[MAC_LIST_SIZE];
    if (!read_list(index, list)) {
        return -1;
    }
    while (mac_list_remove(list, mac)) {
    }
    if (strstr(list, entry)) {
        log_debug("[VLK-API] %s exist %s\n", caller, entry);
        return 0;
    }
    if (!mac_list_append(list, MAC_LIST_SIZE, entry)) {
        return -1;
    }
    log_debug("[VLK-API] %s %s: set  AP_MACLIST %s name %s mac %s\n", caller, caller, list, list_name, mac);
    athcfg_setbyname(index, "AP_MACLIST", list);
    return 0;
}

int wlan_setMacAddressControlAdd(int index, const char *mac, const char *list_name) {
    if (index < 0) {
        return -1;
    }
    if (strcmp(list_name, STEERING_LIST) == 0) {
        change_driver_filter(index, "addmac", mac);
    }
    char *entry = nullptr;
    if (asprintf(&entry, "%s,%s;", mac, list_name) < 0) {
        return -1;
    }
    int status = store_entry(__func__, index, mac, list_name, entry);
    free(entry);
    return status;
}

int wlan_setMacAddressControlDelete(int index, const char *mac) {
    if (index < 0) {
        return -1;
    }
    change_driver_filter(index, "delmac", mac);
    char list[MAC_LIST_SIZE];
    if (!read_list(index, list)) {
        return -1;
    }
    if (!mac_list_remove(list, mac)) {
        log_always("not exist %s,\n", mac);
        return 0;
    }
    log_debug("[VLK-API] %s %s: set  AP_MACLIST %s mac %s\n", __func__, __func__, list, mac);
    athcfg_setbyname(index, "AP_MACLIST", list);
    return 0;
}

int wlan_setMacAddressControlClear(int index) {
    if (index < 0) {
        return -1;
    }
    athcfg_setbyname(index, "AP_MACLIST", "");
    // For index 0 this names an interface that does not exist, and the tool says so; only additions and deletions are
    // held back for it.
    athcfg_runcmdf(__func__, "iwpriv ath%d maccmd 3", interface_number(index));
    return 0;
}

// Stored form to client form: the last ";" stands for the end of the list and follows the one of the last entry.
static void put_client_form(char *list, size_t length) {
    memcpy(list + length, ";", sizeof(";"));
    for (char *comma = strchr(list, ','); comma; comma = strchr(comma, ',')) {
        *comma = '=';
    }
}

int wlan_getMacAddressControlList(int index, char *list, size_t size) {
    if (index < 0) {
        return -1;
    }
    athcfg_getbyname(index, "AP_MACLIST", list, size);
    size_t length = strlen(list);
    if (length + LIST_TAIL_SIZE > size) {
        log_error("[VLK-API] Error %s %s: list is too long [%d]\n", __func__, __func__, static_cast<int>(length));
        return -1;
    }
    put_client_form(list, length);
    log_debug("[VLK-API] %s %s: get  AP_MACLIST %s\n", __func__, __func__, list);
    return 0;
}

int wlan_getMacAddressControlCount(int index, u_int *count) {
    if (index < 0) {
        return -1;
    }
    char list[MAC_LIST_SIZE];
    athcfg_getbyname(index, "AP_MACLIST", list, sizeof(list));
    u_int entries = 0;
    for (const char *end = strchr(list, ';'); end; end = strchr(end + 1, ';')) {
        entries++;
    }
    *count = entries;
    return 0;
}
