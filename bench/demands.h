// What a gateway asks of the server besides speed: each prints its line, and takes what runs as its caller left it.
#pragma once

#include "bench/servers.h"

// A setter, beside a popen of the command that it runs.
void measure_setter(const running_server &server);

// Thousands of calls that arrive while a setter blocks.
void measure_waiting_calls(const running_server &server);

// From start to the first answer. No server may run.
void measure_start();

// Resident memory beside the bare server's, and after a million calls. No server may run besides the bare one.
void measure_memory(const running_server &floor);

// The program without symbols.
void measure_size();
