// What must hold all the time, and at every quiet moment.
#pragma once

// Starts the threads that watch the store and the server's child all the time, and ends them.
void start_watching();
void end_watching();

// Nobody calls and nothing is broken: waits until the lifecycle's workers are done, has every getter called once, and
// compares what must not grow with what it was the first time.
void look_at_quiet_moment();

// The growth since the first quiet moment, for the last line of a run.
void say_growth();
