// What each procedure touches on a gateway: the settings it looks up and writes, its shell commands, files, ioctls and
// messages.
//
// Everything comes from client/touches.def, which is a record of what the simulated gateway saw while each procedure
// was called once; tests/system/record_touches.cpp makes it. Constant data; any thread may read it.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "client/operations.h"

// Each list ends with a null pointer and has no text twice. A call with other arguments, or on a gateway in another
// state, may touch more or less than this one did.
struct touch_row {
    uint32_t number;
    const char *const *sample;     // the arguments of the call, as the client takes them
    const char *const *reads;      // keys of the store that were looked up, there or not, in ascending order
    const char *const *writes;     // keys that were written, in ascending order
    const char *const *commands;   // shell commands, in the order in which they were first run
    const char *const *files;      // opened by the server itself: "read" or "write" and the path
    const char *const *requests;   // ioctls: the interface, the request, "." and the driver's command where it has one
    const char *const *datagrams;  // to helper daemons: the process and the text
    const char *const *messages;   // to the device's event library
};

extern const touch_row touch_rows[];
extern const size_t touch_row_count;

// The row of a procedure, null when there is none: a procedure that is so new that nobody has recorded it.
const touch_row *find_touches(uint32_t number);

// Prints that call as it is typed behind the program's name: "setSsid 1 word".
void print_sample(FILE *out, const procedure_row *row, const touch_row *touches);

// Whether none of the lists but the sample has anything.
bool touches_nothing(const touch_row *touches);

// What the procedure touches, for people: a paragraph that says how it was called, then a list a kind; kinds without
// anything are left out. Nothing at all for a procedure without a row.
void print_touches(FILE *out, const procedure_row *row);
