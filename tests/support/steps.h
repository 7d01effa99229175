// What the code under test does to the world outside, step by step: shell commands, pauses and threads. Stands in front
// of popen, system, clock_nanosleep and pthread_create of the C library, for the whole program; while nothing is being
// recorded, these are the library's own.
//
// Any thread may take a step; the functions here are for the test's thread.
#pragma once

#include <pthread.h>
#include <stddef.h>

#include <functional>
#include <string>
#include <vector>

using step_list = std::vector<std::string>;

// One line a step, in the order in which they began:
//
//   popen COMMAND        with captured output
//   system COMMAND       without
//   pause 3              seconds; 2.5 when it is not a whole number
//   thread               one is started
//
// and whatever record_step() is given.
step_list recorded_steps();
void record_step(const std::string &step);

// What becomes of the steps while they are recorded.
struct step_rules {
    bool run_commands = true;    // else there is no shell: a popen reads nothing, a system returns 0
    bool wait_pauses = false;    // else a pause is over at once
    bool start_threads = false;  // else no thread comes, and its creator is told that it did
    std::string refused;         // steps that contain this fail: EMFILE, -1, EINTR (once a pause), EAGAIN
    std::function<void(const std::string &step)> before;  // called before each step, on its thread
};

void begin_steps(const step_rules &rules = {});
void end_steps();

// The last thread that was started, or should have been.
struct started_thread {
    pthread_t *handle;
    void *(*routine)(void *);
    void *argument;
    size_t stack_size;
    bool is_detached;
};
started_thread last_thread();
