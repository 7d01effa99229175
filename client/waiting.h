// Waiting for what takes the gateway some time: a clock, a limit, pauses, and showing people that something goes on.
//
// Writes progress to standard error. A signal that ends the program ends it in a pause too; nothing has to be restored
// then, since progress has no escape sequences.
#pragma once

#include <stdint.h>

#include "client/session.h"

// Milliseconds of a clock that nobody sets.
int64_t clock_ms(void);

// Waits for the whole time, also when signals arrive that do not end the program.
void pause_ms(int64_t duration);

struct time_limit {
    int64_t begin;  // of the waiting, on that clock
    int64_t end;
};

time_limit begin_waiting(int seconds);
int64_t left_ms(const time_limit *limit);                      // 0 when it is over
int seconds_waited(const time_limit *limit);                   // whole ones since the beginning
void pause_within(const time_limit *limit, int64_t duration);  // not beyond the limit

// Seconds that a call may take: as many as each is allowed, but not beyond the limit (a call has one at least).
int call_seconds(int allowed, const time_limit *limit);

// Progress for people: on a terminal one line that is written over again and again, in a file or a pipe one dot a step.
// Nothing at all for programs, and where nobody looks, such as in memory.
struct progress_line {
    client_session *session;
    bool shown;
    bool terminal;
    bool dots;
};

progress_line begin_progress(client_session *session);
__attribute__((format(printf, 2, 3))) void step_progress(progress_line *progress, const char *format, ...);
// Wipes the line off the terminal, or ends the line of dots. Before anything else is printed.
void end_progress(progress_line *progress);
