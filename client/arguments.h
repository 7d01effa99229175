// Arguments of a call: from the words of the command line to their bytes on the wire, by the kinds of a row.
//
// Pure functions; any thread may call them. Texts are not copied: they have to outlive the call.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "client/operations.h"
#include "server/wire.h"

struct argument_value {
    argument_kind kind;
    int64_t number;  // of every kind but TEXT; wide enough for signed and unsigned 32 bits
    char *text;      // of TEXT
};

struct call_arguments {
    size_t count;
    argument_value values[ARGUMENTS_MAX];
};

// Room for a sentence about what is wrong; longer ones are cut.
constexpr size_t PROBLEM_SIZE = 512;

// What a kind accepts, for people: "a number from 0 to 65535".
const char *accepted_text(argument_kind kind);

// The words of BOOL besides 0 and 1: what means false, and beside it what means true.
extern const char *const boolean_words[][2];
extern const size_t boolean_word_count;

// One word as a value; false when it is none of its kind. Numbers are decimal or begin with 0x.
bool parse_argument(argument_kind kind, char *word, argument_value *value);

// All words of a call. False with a sentence in `problem` when their number or one of them is wrong.
bool parse_arguments(const procedure_row *row, size_t count, char *const *words, call_arguments *arguments,
                     char problem[PROBLEM_SIZE]);

// Encodes the values one after the other, which is what both a bare value and a record look like on the wire.
bool_t xdr_call_arguments(XDR *xdrs, call_arguments *arguments);
