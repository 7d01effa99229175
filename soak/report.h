// What a run says: its seed, its faults, and each invariant that is violated.
//
// Touches standard output. Any thread; each line is written in one piece.
#pragma once

#include <stdint.h>

// What a run was started with.
struct soak_options {
    uint64_t seed;
    double seconds;   // how long the run takes, but for its last quiet moment
    double patience;  // every bound of time is multiplied by this
};

extern soak_options options;

// Seconds since the run began.
double run_second();

// A line with the second in front of it.
void say(const char *format, ...) __attribute__((format(printf, 1, 2)));

// A violated invariant: one line with its name, the seed and the second. The first few of each invariant are said, all
// are counted.
void violated(const char *invariant, const char *format, ...) __attribute__((format(printf, 2, 3)));

int violations();
