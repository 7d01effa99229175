// The file of stations known to be 5 GHz capable, which the driver shares with the server.
//
// Touches /nvram/5gcapabletable: 8 slots of 1536 bytes, one a VAP of the first radio. A slot is the number of its
// entries, a 32-bit word in the machine's order, and entries of 8 bytes: the six octets of an address and two zero
// bytes. Every access holds an exclusive flock. Used when the driver's VAPs were started; the server reads and clears
// slots.
#pragma once

#include <stdint.h>

#include "simulator/driver/driver_state.h"

constexpr int CAPABLE_SLOTS = VAPS_PER_RADIO;
constexpr int CAPABLE_ENTRIES = 191;  // as many as fit

struct capable_entry {
    uint8_t mac[6];
    uint8_t zero[2];
};

struct capable_slot {
    uint32_t count;
    capable_entry entries[CAPABLE_ENTRIES];
    uint8_t rest[4];
};
static_assert(sizeof(capable_slot) == 1536);

// Adds the scenario's stations of the VAPs that are up where their slots do not have them, and makes the file when
// there is something to add; waits for the lock. What is there stays, and so does a slot that makes no sense. Returns
// 0, or -1 with errno.
int capable_table_complete(const driver_state *state, const scenario *scene);
