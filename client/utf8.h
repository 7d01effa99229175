// Names of networks are 32 bytes of anything. What of it is UTF-8, and what a terminal may see.
//
// Pure functions, but for the one that prints.
#pragma once

#include <stddef.h>
#include <stdio.h>

// Length in bytes of the well-formed UTF-8 character that the text begins with; 0 when it begins with anything else
// (overlong forms, surrogates and numbers beyond Unicode included) or is empty.
size_t utf8_length(const char *text, size_t length);

// Whether all of it is UTF-8.
bool is_utf8(const char *text, size_t length);

// Whether a terminal would obey the character that begins here instead of showing it: C0 and C1 controls and DEL.
bool is_control_character(const char *text, size_t length);

// Prints a text of anybody's on one line: bytes that a terminal would obey or that are no character as \xe9.
void print_visible(FILE *out, const char *text);
