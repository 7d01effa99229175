// What the soft-block daemon knows and how messages change it.
//
// Touches the driver's store, which it reads, and the file in which it can be looked at. What the numbers would do to
// stations is not simulated.
#pragma once

#include "simulator/daemons/black_list.h"
#include "simulator/scenario.h"

constexpr int SOFT_BLOCK_TUNABLES = 7;

struct soft_block {
    int32_t tunables[SOFT_BLOCK_TUNABLES];
    int32_t rssi_thresholds[SCENARIO_VAPS];
    black_list list;
};

// What a message asks for, besides what it has changed already.
enum soft_block_effect {
    SOFT_BLOCK_NOTHING,       // it is none, or changes nothing
    SOFT_BLOCK_TUNED,         // a number is another one
    SOFT_BLOCK_LIST_CHANGED,  // the black list is another one
    SOFT_BLOCK_ASKED,         // the list is asked for
    SOFT_BLOCK_RESTART        // the store is to be read again
};

// Takes the numbers from the store; one that is not there is 0. The black list stays as it is.
void soft_block_configure(soft_block *self, const char *store_path);

// Takes a message such as "setRSSI:-70@2" or "addMac:28:6A:BA:4C:10:01"; `now` is the time stamp of a new entry.
soft_block_effect soft_block_take(soft_block *self, const char *message, int32_t now);

// Writes numbers and list as lines KEY=VALUE, in one step: the numbers under the store's keys, "total", "oldest", and
// "station.I=MAC TIME" for each entry. Returns 0, or -1 with errno.
int soft_block_describe(const soft_block *self, const char *path);
