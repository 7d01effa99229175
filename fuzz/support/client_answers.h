// What the server answers to the client of a target: taken from an input.
#pragma once

#include <rpc/rpc.h>

#include <string>

#include "fuzz/support/input.h"

// Where the answers are taken from. Behind its end every call succeeds with zeros and empty texts.
extern fuzz_input client_answers;

struct server_answer {
    clnt_stat status;   // what became of the call
    std::string bytes;  // of its result
};

// The answer to a call of a procedure; of 0, which is the portmapper's, the port. A byte from 0xF0 on is a call that
// fails, one from 0xE0 on a result of any bytes; others go on with a result that fits the procedure's row.
server_answer answer_call(uint32_t procedure);
