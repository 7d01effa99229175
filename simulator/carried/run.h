// What the parts of the library share: the run that the process belongs to, and how a call goes on.
//
// The library is loaded into every process of a gateway that proot carries (/etc/ld.so.preload) and keeps its addresses
// and processes apart from the host's. Any thread.
#pragma once

#include "simulator/carrier.h"

// The run's line, read once. Null outside a run.
const carrier *own_run(void);

// What the next library calls `name`.
void *next_of(const char *name);

#define EXPORTED extern "C" __attribute__((visibility("default")))
