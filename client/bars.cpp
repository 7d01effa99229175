#include "client/bars.h"

#include <langinfo.h>
#include <stdio.h>
#include <string.h>

constexpr int EIGHTHS = 8;

bool has_blocks(bool terminal) {
    return terminal && strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

// In parts of which `most` has so many, rounded, and at least 1. In floating point, for the numbers may be of any size,
// and by hand, for the rounding functions are in a library of their own.
static int parts_of(int64_t number, int64_t most, int parts) {
    if (number <= 0)
        return 0;
    double share = number < most ? static_cast<double>(number) / static_cast<double>(most) : 1;
    int halves = static_cast<int>(share * 2 * parts);
    int rounded = (halves + 1) / 2;
    return rounded < 1 ? 1 : rounded;
}

void draw_bar(char bar[BAR_SIZE], int64_t number, int64_t most, bool blocks) {
    static const char *const eighths[EIGHTHS] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    int parts = parts_of(number, most, blocks ? BAR_WIDTH * EIGHTHS : BAR_WIDTH);
    int columns = blocks ? parts / EIGHTHS : parts;
    *bar = '\0';
    size_t length = 0;
    for (int i = 0; i < columns; i++)
        length += static_cast<size_t>(snprintf(bar + length, BAR_SIZE - length, "%s", blocks ? "█" : "#"));
    if (blocks)
        snprintf(bar + length, BAR_SIZE - length, "%s", eighths[parts % EIGHTHS]);
}
