// "Did you mean": what a mistyped word may have stood for, out of any candidates.
//
// Capitalisation, _ and - make no difference. Pure functions but for the last one, which writes to the session's
// streams.
#pragma once

#include <stddef.h>

#include "client/exit_status.h"

struct client_session;

// As many as a person reads before asking for a list instead.
constexpr size_t SUGGESTIONS_MAX = 5;

// Room for a word and its NUL. Longer than the longest name of an operation; longer words are never suggested.
constexpr size_t SUGGESTION_SIZE = 64;

// The most likely first; of equally likely ones the one that was considered first.
struct suggestions {
    size_t count = 0;
    size_t distances[SUGGESTIONS_MAX] = {};
    char words[SUGGESTIONS_MAX][SUGGESTION_SIZE] = {};
};

constexpr size_t TOO_FAR = ~size_t{0};

// What all spellings of a word have in common: its characters in lower case, without _ and -. False when it is too
// long.
bool fold_word(const char *word, char folded[SUGGESTION_SIZE]);

// How far a folded word is from a folded candidate: the smaller, the likelier, TOO_FAR when nobody means the one who
// types the other. A candidate that only contains the word stands behind every slip of the fingers, and the more it has
// besides the word the further behind.
size_t slip_distance(const char *wanted, const char *candidate);

// Takes a word in that is so far away, unless it is TOO_FAR, already there, or behind the most likely ones.
void add_suggestion(suggestions *found, size_t distance, const char *word);

// The same for a candidate as it stands.
void consider(suggestions *found, const char *wanted, const char *candidate);

// complain() with what may have been meant: a line of its own for people, "suggestions":[...] in JSON. Without
// suggestions it is complain().
client_exit_status complain_with_suggestions(client_session *session, client_exit_status status, const char *problem,
                                             const suggestions *found);
