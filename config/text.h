// Texts that back ends give out: written into a caller's buffer of `size` bytes (at least 1), always terminated, cut to
// fit.
#pragma once

#include <stddef.h>

void put_text(char *output, size_t size, const char *text);

// Copies at most `length` characters.
void put_characters(char *output, size_t size, const char *text, size_t length);

// Four zero bytes, as far as the buffer has them: what an operation gives out for an index it refuses or a source that
// it cannot read.
void put_zeros(char *output, size_t size);
