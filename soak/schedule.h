// When which faults begin and end, and that the server's log tells of each.
//
// One thread, which also makes the calls that meet the faults.
#pragma once

#include <vector>

#include "soak/faults.h"
#include "soak/random.h"

// One fault, or two of different groups at the same time, as planned; in seconds since the storm began.
struct fault_step {
    double begin;
    double end;
    const fault_row *first;
    const fault_row *second;  // null for none
};

// The steps of a storm of so many seconds. `rows` is what has not had its turn; it is filled again when all have.
std::vector<fault_step> plan_steps(double seconds, bool sanitized, std::vector<const fault_row *> *rows,
                                   random_source *source);

// Carries them out, from now on. A step begins late when the one before took longer: a call that was to meet a fault
// may have had to wait for its turn.
void carry_out(const std::vector<fault_step> &steps);

// Says how often each fault was there, and how often the log was to tell of it.
void say_faults();
