// The faults that a run brings about: what begins and ends each, which call meets it, and what the server says then.
//
// Constant data, and the execution of a row: shell commands inside the gateway. One thread at a time.
#pragma once

#include <stddef.h>

#include <string>

// What else there is to a fault.
enum fault_trait : unsigned {
    HOLDS = 1,         // the server waits for as long as it is on: that time does not count
    EXCUSES = 2,       // it may end the child, or keep datagrams away from it
    STORE = 4,         // it puts something else in the store's place
    PLAIN_ONLY = 8,    // a sanitizer's own memory would be refused too
    RIGHT_BEFORE = 16  // others may mend it: begun again in front of each call that is to meet it
};

struct fault_row {
    const char *name;
    const char *group;  // what it breaks; two faults at the same time are of two groups
    const char *begin;  // shell commands, with the ids of the server's processes as $CHILD and $SUPERVISOR
    const char *end;
    const char *procedure;  // the call that meets it, "" for none
    const char *says;       // what the server's log has after it; "" for nothing
    const char *why;        // then why
    unsigned traits;
};

extern const fault_row fault_rows[];
extern const size_t fault_row_count;

// Prints the table of docs/soak.md.
void print_faults();

// Runs the commands of a fault.
void begin_fault(const fault_row &row);
void end_fault(const fault_row &row);

// Whatever is still broken works again, and nothing that hung is left.
void mend_everything();
