// How costs grow. Each prints rows for the plot, which begin with "growth" and the table's name: the amount, our cost
// and the other one's, separated by tabs.
#pragma once

#include "bench/servers.h"

// A text getter, by lines of the store in front of its key: microseconds.
void grow_store(const running_server &server, const running_server &floor);

// Null calls, by calls under way: thousands a second.
void grow_waiting(const running_server &server, const running_server &floor);

// The scan table, by networks: microseconds. No server may run besides the bare one.
void grow_networks(const running_server &floor);

// Finding a VAP by its BSSID, by VAPs that are looked at, beside so many ifconfigs: milliseconds. No server may run.
void grow_vaps();
