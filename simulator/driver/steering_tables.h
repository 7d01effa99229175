// What the driver remembers of stations for band steering, for each VAP of the 2.4 GHz band: those on its temporary
// black list, and those known to be able to use the 5 GHz band.
//
// Touches /run/gateway/parameters, lines like "ath0.blacklist2g=28:6A:BA:4C:10:01/1/42/5301.250000" (address, reason,
// rssi, and the end of its time on the boot clock; a blank between two) and "ath0.capable5g=28:6A:BA:4C:10:01". The
// file that the driver shares with the server is capable_table's.
#pragma once

#include "simulator/scenario.h"
#include "simulator/store.h"

struct blacklist_entry {
    char mac[MAC_TEXT_SIZE];
    int reason;
    int rssi;
    double seconds_left;  // more than 0
};

// The stations on the black list of an interface, at most `size` of them. Returns how many there are.
int blacklist2g_read(const char *interface, blacklist_entry *entries, int size);

// How many stations the driver knows to be 5 GHz capable.
int capable5g_count(const char *interface);

// Forgets the stations of an interface's list. Return 0, or -1 with errno.
int blacklist2g_clear(const char *interface);
int capable5g_clear(const char *interface);

// What the start of the driver does: puts the scenario's stations of a VAP (1 to 16) into the lines of its parameters.
// Returns 0, or -1 when memory ran out.
int steering_tables_load(const char *interface, const scenario *scene, int vap, store_text *lines);
