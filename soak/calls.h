// The calls of the soak: valid ones, wrong ones, and datagrams that are none.
//
// Pure functions: what they make follows from the random source alone.
#pragma once

#include "client/operations.h"
#include "soak/random.h"
#include "tests/support/calls.h"

// How the arguments of a call are chosen.
enum class arguments_kind {
    VALID,   // the example of the table, for any of the VAPs
    WRONG,   // at least one of them is far outside of what makes sense
    CUT_OFF  // the end is missing: the server cannot decode them
};
arguments_kind choose_kind(random_source *source);

bytes choose_arguments(const procedure_row &row, arguments_kind kind, random_source *source);

// A datagram that is no proper call of the program, or one of a procedure that is not there. xid is what an answer to
// it would have.
bytes choose_hostile_datagram(uint32_t xid, random_source *source);

// What is wrong with the result of a call that was carried out; empty when it is of its row's kind. A result whose
// payload is empty always is: so answers a server that has no memory for it.
std::string what_is_wrong(const procedure_row &row, const bytes &result);

// Code and text of a string getter's result.
struct text_answer {
    uint32_t code;
    std::string text;
};
text_answer text_answer_of(const bytes &result);

const procedure_row *row_named(const char *name);
