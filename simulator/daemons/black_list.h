// The soft-block daemon's black list: stations with the time at which each was put on it, the newest in the place of
// the oldest when it is full.
//
// Touches the file it is saved in. That is text: "oldest N" and, in the order of the entries, a line "MAC TIME" each.
#pragma once

#include <stdint.h>

constexpr int BLACK_LIST_STATIONS = 64;  // as many as the record has room for

struct black_list_station {
    uint8_t mac[6];
    uint8_t padding[2];
    int32_t timestamp;  // seconds since 1970
};

// The list as it travels. The first `total` entries hold the stations in the order in which they came, until the list
// is full; from then on the order begins at `oldest` and goes on at the first entry.
struct black_list {
    int32_t total;
    int32_t oldest;
    black_list_station entries[BLACK_LIST_STATIONS];
};
static_assert(sizeof(black_list_station) == 12 && sizeof(black_list) == 776);

// Puts a station on the list, given as text in its full form ("28:6A:BA:4C:10:01"). One that is on it already becomes
// the newest. False, and nothing changed, when the text is no address.
bool black_list_add(black_list *list, const char *mac, int32_t now);

// Takes a station from the list. False, and nothing changed, when it is not on it or the text is no address.
bool black_list_remove(black_list *list, const char *mac);

// Writes the file in one step. Returns 0, or -1 with errno.
int black_list_save(const black_list *list, const char *path);

// Reads the file. One that is missing or damaged is an empty list.
void black_list_load(black_list *list, const char *path);

// Text form of a station's address, MAC_TEXT_SIZE bytes.
void black_list_mac(const black_list_station *station, char *mac);
