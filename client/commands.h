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
