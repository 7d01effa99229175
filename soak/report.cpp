#include "soak/report.h"

#include <inttypes.h>
#include <stdarg.h>
#include <stdio.h>
#include <time.h>

#include <map>
#include <mutex>
#include <string>

// Of an invariant that fails all the time the first lines tell everything.
constexpr int LINES_OF_AN_INVARIANT = 5;

soak_options options = {1, 120, 1};

static std::mutex output;
static std::map<std::string, int> broken;

static double clock_seconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double run_second() {
    static const double begin = clock_seconds();
    return clock_seconds() - begin;
}

static void say_text(const std::string &beginning, const char *format, va_list arguments)
    __attribute__((format(printf, 2, 0)));

static void say_text(const std::string &beginning, const char *format, va_list arguments) {
    char text[1024];
    vsnprintf(text, sizeof text, format, arguments);
    printf("%8.2f  %s%s\n", run_second(), beginning.c_str(), text);
    fflush(stdout);
}

void say(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::lock_guard lock(output);
    say_text("", format, arguments);
    va_end(arguments);
}

void violated(const char *invariant, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::lock_guard lock(output);
    char beginning[128];
    snprintf(beginning, sizeof beginning, "VIOLATED (seed %" PRIu64 ", second %.1f) %s: ", options.seed, run_second(),
             invariant);
    if (++broken[invariant] <= LINES_OF_AN_INVARIANT)
        say_text(beginning, format, arguments);
    va_end(arguments);
}

int violations() {
    std::lock_guard lock(output);
    int count = 0;
    for (const auto &[invariant, times] : broken)
        count += times;
    return count;
}
