// A single value as characters, said once for all that print values: they differ in a few words only.
#pragma once

#include <stdio.h>

#include "client/value.h"

// What a renderer calls those that are no number.
struct scalar_words {
    const char *nothing;
    const char *no;
    const char *yes;
};

// Prints a scalar that is no text. Nothing for texts, which each renderer escapes in its own way, lists and objects.
void print_scalar(FILE *out, const value *shown, const scalar_words *words);
