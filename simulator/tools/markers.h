// The words in the tools' output that readers look for, and the fault that has them misspelt.
//
// One thread, that of the tool.
#pragma once

#include "simulator/tools/tools.h"

// Reads the value of a fault of a tool: "nomarkers" for all of its markers, then *number is 0, or "nomarkers N" for the
// Nth of them. False when it is neither, or the tool has no such marker.
bool is_marker_fault(const char *tool, const char *value, int *number);

// Runs a tool and prints what it prints on standard output, but the marker of this number, or all for 0, with its first
// two characters exchanged. Returns the exit status.
int run_without_markers(const tool *called, int number, int argument_count, char *const *arguments);
