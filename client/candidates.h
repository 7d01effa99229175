// What a word of the command line can become, by the kind of the word. client/completion.cpp finds out which kind the
// last word is of; here are the candidates.
//
// Offline but for VAPs, which have their SSIDs beside them (client/ssids.h).
#pragma once

#include "client/command_table.h"
#include "client/operations.h"

struct completion {
    client_session *session;
    const char *typed;         // the last word
    const char *server;        // that the words name, else nullptr
    const procedure_row *row;  // the operation in the words, nullptr before it
    value *answer;             // with the hint or the beginning of file names
    value *candidates;         // a list in it
};

// The word when it goes on as the last word has begun. `before` stands before it in the candidate: --output=json has
// "--output=" there.
void add_candidate(completion *state, const char *before, const char *word, const char *description);

// Names of options in both forms.
void add_options(completion *state, const option_row *rows, size_t count);

// An operation's argument.
void add_argument(completion *state, const argument_row *argument);

// Words of a kind; where they cannot be listed a hint, `name` being what the word is called: an option's value, say.
void add_kind(completion *state, word_kind kind, const char *before, const char *name, const char *accepted);
