// How the client ends: the numbers that scripts rely on.
//
// The table in exit_status.cpp is printed by the help and the manual, and its words stand in the JSON of errors.
#pragma once

#include <stddef.h>

// Never depends on whether there is a terminal.
enum client_exit_status : int {
    EXIT_STATUS_SUCCESS = 0,
    EXIT_STATUS_FAILURE = 1,
    EXIT_STATUS_USAGE = 2,
    EXIT_STATUS_NO_ANSWER = 3,
    EXIT_STATUS_TIMED_OUT = 4,
    EXIT_STATUS_REFUSED = 5,
    EXIT_STATUS_NOT_FOUND = 6,
    EXIT_STATUS_LOCAL = 7,
};

struct exit_status_row {
    client_exit_status status;
    const char *word;     // "timed-out", for programs
    const char *meaning;  // for people
};

extern const exit_status_row exit_status_rows[];
extern const size_t exit_status_row_count;

const char *exit_status_word(client_exit_status status);
