// Bars for people: a number as a line of blocks.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The widest bar, in columns.
constexpr int BAR_WIDTH = 40;

// Room for it: no block has more than three bytes.
constexpr size_t BAR_SIZE = 3 * BAR_WIDTH + 1;

// Whether blocks can be shown there: a terminal whose character set is UTF-8.
bool has_blocks(bool terminal);

// Draws `number` so that `most` (1 or more) has the whole width. With blocks in eighths of a column, else in '#'.
// Whatever is more than 0 can be seen.
void draw_bar(char bar[BAR_SIZE], int64_t number, int64_t most, bool blocks);
