// How a watch shows what one run of its command has said.
#pragma once

#include "client/command_table.h"

// What one run has said.
struct run_output {
    char *out;
    size_t out_length;
    char *errors;
    size_t errors_length;
    client_exit_status status;
};

// 2024-05-01T12:00:00.000Z
constexpr size_t TIME_SIZE = 32;

// The time of this moment, in UTC.
void format_time(char text[TIME_SIZE]);

// Prints what a run that began at `time` has said, below the words of `line` for people; `first` for no empty line
// before it.
void print_output(client_session *session, const command_line *line, const char *time, const run_output *output,
                  bool first);
