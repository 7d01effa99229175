// Scans of a radio for the networks around it: when one runs, and what the driver then has.
//
// Touches the driver's state and, beside it, /run/gateway/scan.wifiN: the networks that the last scan finds, in the
// words of the scenario as it was when the scan began; and scan.wifiN.before, the same of the scan before it. So a list
// stays until there is another scan, whatever becomes of the scenario. Any thread.
#pragma once

#include "simulator/driver/driver_state.h"

// What the driver answers. Its numbers; 2 is none of them.
enum scan_status { SCAN_NEVER = 0, SCAN_RUNNING = 1, SCAN_COMPLETE = 3 };

// While a scan runs there may be networks of two lists.
constexpr int SCAN_NETWORKS = 2 * SCENARIO_NEIGHBOURS;

struct scan_network {
    scenario_neighbour seen;
    bool is_new;  // found by the last scan, not only by the one before
};

// The state of a radio's last scan at this time (driver_clock).
scan_status scan_status_at(const driver_state *state, int radio, double now);

// How many of so many networks a scan has found by now: they come in evenly over its time, the last one at its end.
int scan_found(const driver_scan *scan, int count, double now);

// Starts a scan for the scenario's neighbours on channels that the radio has. Returns 0, or -1 with errno: EBUSY while
// one runs, ENODEV without a driver.
int scan_begin(const scenario *scene, int radio);

// What the driver has at this moment, at most SCAN_NETWORKS: what the last scan has found, in the scenario's order, and
// while it runs behind that what only the scan before had found. Returns how many there are, or -1 with errno.
int scan_networks(int radio, scan_network *networks);

// Forgets all lists, as a driver that is taken down does.
void scans_forget(void);
