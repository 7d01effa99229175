// The client's command line: options, commands, operations, exit status.
//
// Not thread-safe: getopt_long keeps its place in globals.
#pragma once

#include <stdio.h>

#include "client/call.h"

enum client_exit_status : int {
    EXIT_STATUS_SUCCESS = 0,
    EXIT_STATUS_FAILURE = 1,    // the server answered a failure or nonsense, or its answer could not be written
    EXIT_STATUS_USAGE = 2,      // nothing was sent
    EXIT_STATUS_NO_ANSWER = 3,  // whether the server acted is unknown
};

// The whole program: what main does with its arguments and its two streams.
client_exit_status run_client(int argc, char **argv, const call_endpoint *endpoint, FILE *out, FILE *errors);
