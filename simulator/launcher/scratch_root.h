// The folder that is the root of a gateway without namespaces, and what of the host is bound into it.
//
// Touches that folder and nothing else. The keeper (without_namespaces.h), single-threaded.
#pragma once

#include <limits.h>
#include <stddef.h>

#include "simulator/carrier.h"
#include "simulator/launcher/options.h"
#include "simulator/launcher/root_contents.h"

// How many bindings there can be: the directories at the top of the host's root, and a dozen.
constexpr int BINDINGS = 128;

struct scratch_root {
    char folder[128];          // of the run, with everything in it
    char root[160];            // what is / inside
    char *bindings[BINDINGS];  // "FROM:TO", as proot wants them
    int count;
};

// Makes the folder. False after saying why not.
bool scratch_root_make(scratch_root *scratch);

// Fills it and lists the bindings. `self` must be complete. False after saying why not.
bool scratch_root_fill(scratch_root *scratch, const options *given, const kept_directories *kept,
                       const gateway_programs *programs, const carrier *self, const char *text, size_t length);

// Removes the folder and all that is in it; links in it are removed and not followed.
void scratch_root_remove(const scratch_root *scratch);
