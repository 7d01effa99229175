// What the simulated driver remembers: whether it is loaded, which VAPs are up, which channel was chosen or announced
// for a radio, when a radio was scanned. What its private commands set is kept elsewhere, in driver_parameters.
//
// Touches /run/gateway/driver (text, readable in a shell) and the lock beside it. Written by the tools and scripts,
// read by them and by the preloaded library in any thread of the server.
#pragma once

#include "simulator/scenario.h"

struct driver_vap {
    bool up;
    double since;  // seconds on the boot clock when it came up; its counters run from there
};

// A channel switch that is being announced to the stations, or was.
struct driver_switch {
    unsigned channel;  // 0 when there is none
    double at;         // on the boot clock, when the radio moves
};

// The last scan of a radio for its neighbours. What it finds is kept elsewhere (scans).
struct driver_scan {
    bool begun;           // there was one
    double since, until;  // on the boot clock
};

struct driver_state {
    bool loaded;
    bool absent[SCENARIO_RADIOS];  // not found on the bus when the driver looked
    driver_vap vaps[SCENARIO_VAPS];
    unsigned channel[SCENARIO_RADIOS];  // chosen by hand, 0 when the store says it
    driver_switch announced[SCENARIO_RADIOS];
    driver_scan scans[SCENARIO_RADIOS];
};

// Seconds on the clock that `since`, `until` and `at` use.
double driver_clock(void);

// Reads the state; without a file nothing is loaded.
void driver_state_read(driver_state *state);

// Replaces the state file in one step. Returns 0, or -1 with errno. Between a read and the write that follows from it
// hold the lock.
int driver_state_write(const driver_state *state);

// Takes the lock around a change; closing the descriptor gives it back. -1 with errno when there is none.
int driver_state_lock(void);

// Whether a wireless interface is there: athN when its VAP is up, wifiN when the driver is loaded and has found the
// radio. Names that are neither are not there.
bool driver_has_interface(const driver_state *state, const char *name);

// The channel that was last given to a radio and that it has taken up; 0 when the store says it.
unsigned driver_channel(const driver_state *state, int radio);

// Gives a radio a channel: at once, which ends an announcement, or at a time on the boot clock.
void driver_choose_channel(driver_state *state, int radio, unsigned channel);
void driver_announce_channel(driver_state *state, int radio, unsigned channel, double at);
