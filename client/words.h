// Splits a line into words as a shell does: blanks, '...', "...", $'...' with \xHH, backslashes, and comments that
// begin with # at the beginning of a word. Nothing is expanded: every other $, and *, ; and | are characters like any
// other.
//
// Pure functions.
#pragma once

#include <stddef.h>

#include "client/arguments.h"

// More than any command takes: ten arguments, and room for options and for commands that carry out others.
constexpr size_t LINE_WORDS_MAX = 64;

// More than fits the largest call (8800 bytes), even with a backslash before every second character of it.
constexpr size_t LINE_LENGTH_MAX = 16384;

struct line_words {
    size_t count;
    char *words[LINE_WORDS_MAX + 1];  // nullptr behind the last one
    size_t last_begin;                // where the last word begins in the line, in bytes
    bool in_word;                     // whether the line ends within its last word
    bool in_comment;
    char open;                       // the ', " or backslash that misses what belongs behind it, else '\0'
    char text[LINE_LENGTH_MAX + 1];  // of the words
};

// False with a sentence in `problem` when the line is none. When that is because of what is `open`, the words up to the
// end of the line are there all the same.
bool split_line(const char *line, size_t length, line_words *split, char problem[PROBLEM_SIZE]);
