// The clock that people set, as the server reads it.
//
// Interposes time(), gettimeofday() and clock_gettime(): the fault "clock" moves the time of day. No namespace has a
// time of day of its own. Clocks that nobody sets go on as they are.
#include <sys/time.h>
#include <time.h>

#include "simulator/faults.h"
#include "simulator/preload/doors.h"

using clock_function = int (*)(clockid_t, timespec *);

// By how many seconds the clock is wrong.
static time_t shift(void) {
    int64_t seconds = 0;
    fault_number(CLOCK_FAULT, &seconds);
    return (time_t)seconds;
}

static int read_clock(clockid_t clock, timespec *now) {
    int result = ((clock_function)next_function("clock_gettime"))(clock, now);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        now->tv_sec += shift();
    return result;
}

extern "C" {

__attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec *now) noexcept {
    return read_clock(clock, now);
}

// The time zone is a thing of the past.
__attribute__((visibility("default"))) int gettimeofday(timeval *now, void *) noexcept {
    timespec read = {};
    int result = read_clock(CLOCK_REALTIME, &read);
    *now = {read.tv_sec, (suseconds_t)(read.tv_nsec / 1000)};
    return result;
}

__attribute__((visibility("default"))) time_t time(time_t *now) noexcept {
    timespec read = {};
    read_clock(CLOCK_REALTIME_COARSE, &read);
    if (now != nullptr)
        *now = read.tv_sec;
    return read.tv_sec;
}
}
