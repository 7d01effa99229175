// A tree of values as lines for people, as JSON, or as one bare value.
//
// Writes to the given stream only. Texts come from the air (names of networks and stations) as well as from the store:
// a terminal must not obey the control characters in them; a program gets them as they are.
#pragma once

#include <stdio.h>

#include "client/value.h"

// One line. A text that is no UTF-8 has U+FFFD for each byte that is none, and beside it, under its name with _hex
// behind it, all its bytes in hexadecimal. Values for people are left out.
void render_json(FILE *out, const value *tree);

// The same over several lines, indented, for documents that people compare.
void render_json_document(FILE *out, const value *tree);

struct text_options {
    bool terminal;  // control characters are shown as \x1b
    bool colour;
};

// A single value bare; several as "name  value" lines; lists of objects as tables. Values for programs are left out.
void render_text(FILE *out, const value *object, const text_options *options);

// The bare values that stand under the name `field` anywhere in the tree, a line each, numbers of a list one by one;
// "vaps.channel" stands for what is called channel anywhere below what is called vaps. With nullptr the only value that
// there is. Returns how many were printed; with nullptr and several values none are,
// and their number is returned.
size_t render_values(FILE *out, const value *object, const char *field);
