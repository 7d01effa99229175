// What the code under test does to the world outside, step by step. See the header.
#include "tests/support/steps.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <time.h>

#include <atomic>
#include <mutex>

// The C library's own. Looked up before anything is recorded, so that a small stack is not used for that.
template <typename Function>
static Function *library(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

using popen_function = FILE *(const char *, const char *);
using system_function = int(const char *);
using pause_function = int(clockid_t, int, const timespec *, timespec *);
using create_function = int(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);

static std::atomic<bool> recording;
static std::mutex record;  // of what follows
static step_rules rules;
static step_list taken;
static started_thread last;

void begin_steps(const step_rules &wanted) {
    std::lock_guard<std::mutex> lock(record);
    rules = wanted;
    taken.clear();
    last = {};
    recording = true;
}

void end_steps() {
    recording = false;
    std::lock_guard<std::mutex> lock(record);
    rules = {};
}

step_list recorded_steps() {
    std::lock_guard<std::mutex> lock(record);
    return taken;
}

started_thread last_thread() {
    std::lock_guard<std::mutex> lock(record);
    return last;
}

// Records a step and returns the rules for it.
static step_rules take_step(const std::string &step) {
    step_rules now;
    {
        std::lock_guard<std::mutex> lock(record);
        taken.push_back(step);
        now = rules;
    }
    if (now.before) {
        now.before(step);
    }
    return now;
}

void record_step(const std::string &step) {
    if (recording) {
        take_step(step);
    }
}

static bool is_refused(const step_rules &now, const std::string &step) {
    return !now.refused.empty() && step.find(now.refused) != std::string::npos;
}

extern "C" FILE *popen(const char *command, const char *mode) {
    static popen_function *const next = library<popen_function>("popen");
    if (!recording) {
        return next(command, mode);
    }
    std::string step = std::string("popen ") + command;
    step_rules now = take_step(step);
    if (is_refused(now, step)) {
        errno = EMFILE;
        return nullptr;
    }
    // The library's pclose takes any stream.
    return now.run_commands ? next(command, mode) : fopen("/dev/null", "re");
}

extern "C" int system(const char *command) {
    static system_function *const next = library<system_function>("system");
    if (!recording) {
        return next(command);
    }
    std::string step = std::string("system ") + command;
    step_rules now = take_step(step);
    if (is_refused(now, step)) {
        return -1;
    }
    return now.run_commands ? next(command) : 0;
}

static std::string seconds_of(const timespec *time) {
    char text[64];
    snprintf(text, sizeof(text), "%g", static_cast<double>(time->tv_sec) + static_cast<double>(time->tv_nsec) / 1e9);
    return text;
}

extern "C" int clock_nanosleep(clockid_t clock, int flags, const timespec *time, timespec *left) {
    static pause_function *const next = library<pause_function>("clock_nanosleep");
    if (!recording) {
        return next(clock, flags, time, left);
    }
    std::string step = "pause " + seconds_of(time);
    step_rules now = take_step(step);
    if (is_refused(now, step)) {
        // As if a signal had come half a second before the end.
        *left = {0, 500'000'000};
        return EINTR;
    }
    return now.wait_pauses ? next(clock, flags, time, left) : 0;
}

static started_thread describe(pthread_t *handle, const pthread_attr_t *attributes, void *(*routine)(void *),
                               void *argument) {
    started_thread thread = {handle, routine, argument, 0, false};
    int detached = PTHREAD_CREATE_JOINABLE;
    if (attributes) {
        pthread_attr_getstacksize(attributes, &thread.stack_size);
        pthread_attr_getdetachstate(attributes, &detached);
    }
    thread.is_detached = detached == PTHREAD_CREATE_DETACHED;
    return thread;
}

extern "C" int pthread_create(pthread_t *handle, const pthread_attr_t *attributes, void *(*routine)(void *),
                              void *argument) noexcept {
    static create_function *const next = library<create_function>("pthread_create");
    if (!recording) {
        return next(handle, attributes, routine, argument);
    }
    step_rules now = take_step("thread");
    {
        std::lock_guard<std::mutex> lock(record);
        last = describe(handle, attributes, routine, argument);
    }
    if (is_refused(now, "thread")) {
        return EAGAIN;
    }
    return now.start_threads ? next(handle, attributes, routine, argument) : 0;
}
