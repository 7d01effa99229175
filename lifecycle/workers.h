// The workers that do the slow part of the driver's lifecycle, one for each kind of request.
//
// Each runs the driver's scripts on a detached thread of its own, records its result, marks itself idle, and then has
// the command-line client ask the server to look at the queue: only the service thread may touch that. Scripts' exit
// statuses are not looked at; a script that was killed counts as a success.
#pragma once

#include <stddef.h>

// Stack of a worker, in bytes: the gateway has little memory to spare for threads. Everything that workers call keeps
// its large buffers on the heap.
#ifdef WLAN_SANITIZED
// The sanitizers keep their own data on it, more than all of the real size.
constexpr size_t WORKER_STACK_SIZE = 1 << 20;
#else
constexpr size_t WORKER_STACK_SIZE = 32768;
#endif

// Thread routines. The argument is not used. Each returns the address of its result word (lifecycle/state.h).
void *load_thread_function(void *argument);
void *init_thread_function(void *argument);
void *reset_thread_function(void *argument);
void *reconnect_thread_function(void *argument);
