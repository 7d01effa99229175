// What has to be reached, and what a row of measurements says.
#pragma once

#include <vector>

double median(std::vector<double> values);

// The value below which so great a part (0 to 1) of them lies.
double percentile(std::vector<double> values, double part);

// Whether the time that something takes decides.
enum class goal { TIMED, CERTAIN };

// Prints a line that ends with "reached" or "MISSED", and counts it.
void report(goal kind, bool reached, const char *format, ...) __attribute__((format(printf, 3, 4)));

// How many were reported, and how many of them were missed.
struct goal_count {
    int all;
    int missed;
};
goal_count goals_reported();

// A rehearsal measures everything once and shortly, to see that it can be: a goal that depends on time does
// not count.
void begin_rehearsal();
bool rehearsing();

// Ends the benchmark with status 2 when it cannot go on.
void ask_for(bool condition, const char *what);
