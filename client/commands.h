// The client's command line: options, then a command or an operation with its words.
//
// Not thread-safe: getopt_long keeps its place in globals.
#pragma once

#include <stdio.h>

#include "client/session.h"

// The whole program: what main does with its arguments and its two streams.
client_exit_status run_client(int argc, char **argv, const call_endpoint *endpoint, FILE *out, FILE *errors);

// One command or operation in a session that goes on: words[0] is its name. Options behind it hold for it alone. The
// words may be reordered.
client_exit_status run_words(client_session *session, int count, char **words);

// The same for the words of a line that may have been pasted from a shell: the program's name and options may stand
// before them. At most LINE_WORDS_MAX words.
client_exit_status run_line(client_session *session, size_t count, char **words);

// Whether a word is the program's name as a person types it, with or without its folder.
bool is_this_program(const char *word);
