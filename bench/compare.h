// Our server beside the bare one, round by round.
#pragma once

#include <vector>

#include "bench/load.h"
#include "bench/servers.h"

// One of the two in all rounds.
struct side {
    std::vector<double> rates;      // calls a second, a round each
    std::vector<double> latencies;  // microseconds, a call each
    double processor;               // seconds
    size_t calls;
};

struct comparison {
    side ours, floor;
    double ratio;  // of the rates, the median of the rounds
};

// Both answer calls for some time, so many at once, in rounds (a rehearsal has one).
comparison compare(const running_server &server, const load_call &ours, const running_server &floor,
                   const load_call &theirs, int outstanding, int rounds);

// The goal is the least ratio.
void print_comparison(const char *name, const comparison &result, double goal);
