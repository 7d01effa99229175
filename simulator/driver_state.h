// What the simulated driver remembers: whether it is loaded, which VAPs are up, which channel was chosen for a radio.
//
// Touches /run/gateway/driver (text, readable in a shell) and the lock beside it. Written by the tools and scripts,
// read by them and by the preloaded library in any thread of the server.
#pragma once

#include "simulator/scenario.h"

struct driver_vap {
    bool up;
    double since;  // seconds on the boot clock when it came up; its counters run from there
};

struct driver_state {
    bool loaded;
    driver_vap vaps[SCENARIO_VAPS];
    unsigned channel[SCENARIO_RADIOS];  // chosen with "channel auto", 0 when the store says it
};

// Seconds on the clock that `since` uses.
double driver_clock(void);

// Reads the state; without a file nothing is loaded.
void driver_state_read(driver_state *state);

// Replaces the state file in one step. Returns 0, or -1 with errno. Between a read and the write that follows from it
// hold the lock.
int driver_state_write(const driver_state *state);

// Takes the lock around a change; closing the descriptor gives it back. -1 with errno when there is none.
int driver_state_lock(void);

// Whether a wireless interface is there: athN when its VAP is up, wifiN when the driver is loaded. Names that are
// neither are not there.
bool driver_has_interface(const driver_state *state, const char *name);

// Brings up every VAP that the store enables (AP_ENABLE) on a radio that the store enables (AP_RADIO_ENABLED), takes
// the others down and forgets chosen channels: what the driver does when it is started.
void driver_bring_up(driver_state *state, const scenario *scene, const char *store_path);
