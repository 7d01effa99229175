// Many commands, a line each, in one session over one connection.
//
// Reads a file or standard input. Blocks until the input ends: lines are carried out as they arrive.
#pragma once

#include <stdio.h>

#include "client/command_table.h"
#include "client/words.h"

client_exit_status run_batch(client_session *session, const command_line *line);

// exit or quit, alone on its line.
bool says_end(const line_words *split);

struct batch_options {
    bool keep_going;
    bool echo;        // each line before its output; as "input" in JSON
    bool ends_early;  // exit and quit end it
};

// Carries out the lines of a stream that errors call `name`. The status of the first failure.
client_exit_status run_lines(client_session *session, FILE *in, const char *name, const batch_options *options);
