#include "bench/goals.h"

#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>

static goal_count goals;
static bool rehearsal;

double median(std::vector<double> values) {
    return percentile(std::move(values), 0.5);
}

double percentile(std::vector<double> values, double part) {
    if (values.empty())
        return NAN;
    auto place = values.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * part);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

void report(goal kind, bool reached, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    bool counts = kind == goal::CERTAIN || !rehearsal;
    puts(!counts ? "" : reached ? ": reached" : ": MISSED");
    fflush(stdout);
    if (!counts)
        return;
    goals.all++;
    goals.missed += !reached;
}

goal_count goals_reported() {
    return goals;
}

void begin_rehearsal() {
    rehearsal = true;
}

bool rehearsing() {
    return rehearsal;
}

void ask_for(bool condition, const char *what) {
    if (condition)
        return;
    printf("bench: %s\n", what);
    exit(2);
}
