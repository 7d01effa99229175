// Answers to getters as members of a tree, for commands that ask for many things.
//
// Each function sends one call. What the server answers a failure to becomes a null, and the command goes on. Anything
// else (no answer, a damaged one) ends it: the gathering keeps that exit status, session->problem says what was wrong,
// and all further functions send nothing, so that whoever gathers looks at the status once, at the end.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "client/session.h"
#include "client/value.h"

struct gathering {
    client_session *session;
    client_exit_status status;  // EXIT_STATUS_SUCCESS, or what ended it
};

// Room for every text that a result can carry, with its NUL.
constexpr size_t GATHERED_TEXT_SIZE = 8256 + 1;

// Getters whose only argument is a VAP. True with the output set when the server answered a success.
bool gather_number(gathering *from, uint32_t procedure, int index, int64_t *number);
bool gather_text(gathering *from, uint32_t procedure, int index, char text[GATHERED_TEXT_SIZE]);
// The first `count` integers of the result.
bool gather_numbers(gathering *from, uint32_t procedure, int index, int64_t *numbers, size_t count);
// A record of the row's size.
bool gather_record(gathering *from, uint32_t procedure, int index, void *record);

// The same as members of `to`, null for a failure. A word is a text of which an empty one says nothing: it is null too.
value *add_gathered_number(gathering *from, value *to, const char *name, uint32_t procedure, int index);
value *add_gathered_boolean(gathering *from, value *to, const char *name, uint32_t procedure, int index);
value *add_gathered_text(gathering *from, value *to, const char *name, uint32_t procedure, int index);
value *add_gathered_word(gathering *from, value *to, const char *name, uint32_t procedure, int index);

// A number, with its unit for people: 35 and "35 %".
void add_measure(value *to, const char *name, int64_t number, const char *unit);
