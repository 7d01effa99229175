#include "simulator/daemons/black_list.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/scenario.h"

static bool parse_mac(const char *text, uint8_t *mac) {
    char checked[MAC_TEXT_SIZE];
    if (!copy_mac(text, checked))
        return false;
    for (int i = 0; i < 6; i++)
        mac[i] = (uint8_t)strtoul(checked + i * sizeof "00", nullptr, 16);
    return true;
}

void black_list_mac(const black_list_station *station, char *mac) {
    const uint8_t *octets = station->mac;
    snprintf(mac, MAC_TEXT_SIZE, "%02X:%02X:%02X:%02X:%02X:%02X", octets[0], octets[1], octets[2], octets[3], octets[4],
             octets[5]);
}

// The entry of a station, -1 when it has none.
static int find(const black_list *list, const uint8_t *mac) {
    for (int i = 0; i < list->total; i++) {
        if (memcmp(list->entries[i].mac, mac, sizeof list->entries[i].mac) == 0)
            return i;
    }
    return -1;
}

// Takes an entry out of the list; the others keep their order, the oldest first.
static void take_out(black_list *list, int gone) {
    black_list rest = {};
    for (int i = 0; i < list->total; i++) {
        int entry = (list->oldest + i) % list->total;
        if (entry != gone)
            rest.entries[rest.total++] = list->entries[entry];
    }
    *list = rest;
}

static void append(black_list *list, const black_list_station *station) {
    if (list->total < BLACK_LIST_STATIONS) {
        list->entries[list->total++] = *station;
        return;
    }
    list->entries[list->oldest] = *station;
    list->oldest = (list->oldest + 1) % BLACK_LIST_STATIONS;
}

bool black_list_add(black_list *list, const char *mac, int32_t now) {
    black_list_station station = {};
    if (!parse_mac(mac, station.mac))
        return false;
    station.timestamp = now;
    int known = find(list, station.mac);
    if (known >= 0)
        take_out(list, known);
    append(list, &station);
    return true;
}

bool black_list_remove(black_list *list, const char *mac) {
    uint8_t octets[6];
    int known = parse_mac(mac, octets) ? find(list, octets) : -1;
    if (known >= 0)
        take_out(list, known);
    return known >= 0;
}

int black_list_save(const black_list *list, const char *path) {
    char beside[256];
    snprintf(beside, sizeof beside, "%s.new", path);
    FILE *file = fopen(beside, "we");
    if (file == nullptr)
        return -1;
    fprintf(file, "oldest %d\n", list->oldest);
    for (int i = 0; i < list->total; i++) {
        char mac[MAC_TEXT_SIZE];
        black_list_mac(&list->entries[i], mac);
        fprintf(file, "%s %d\n", mac, list->entries[i].timestamp);
    }
    return fclose(file) == 0 ? rename(beside, path) : -1;
}

static bool read_station(black_list *list, const char *line) {
    char mac[MAC_TEXT_SIZE];
    char end;
    black_list_station station = {};
    return list->total < BLACK_LIST_STATIONS && sscanf(line, "%17s %d%c", mac, &station.timestamp, &end) == 3 &&
           end == '\n' && parse_mac(mac, station.mac) && find(list, station.mac) < 0 && (append(list, &station), true);
}

static bool read_lines(black_list *list, FILE *file) {
    char line[64];
    char end;
    int oldest;
    if (fgets(line, sizeof line, file) == nullptr || sscanf(line, "oldest %d%c", &oldest, &end) != 2 || end != '\n')
        return false;
    while (fgets(line, sizeof line, file) != nullptr) {
        if (!read_station(list, line))
            return false;
    }
    list->oldest = oldest;
    // Only in a full list does the order begin elsewhere than at the first entry.
    return oldest >= 0 && oldest < (list->total == BLACK_LIST_STATIONS ? BLACK_LIST_STATIONS : 1);
}

void black_list_load(black_list *list, const char *path) {
    *list = {};
    FILE *file = fopen(path, "re");
    if (file == nullptr)
        return;
    if (!read_lines(list, file))
        *list = {};
    fclose(file);
}
