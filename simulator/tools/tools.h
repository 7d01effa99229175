// The gateway's programs: one binary, a function a tool, chosen by the name it is called by.
//
// Each is a process of its own with a single thread. Before the function runs, main() has written the call to the
// journal and obeyed a fault that was switched on for it; a daemon's only if it is not to be there at all.
#pragma once

#include <stddef.h>

struct tool {
    const char *name;
    int (*run)(int argument_count, char *const *arguments);
    const char *path;
    const char *usage;
    size_t answer_size;  // of a daemon's full answer; 0 of all others
};

// The row of a tool, null when there is none of this name. Rows in order: tool_at(0), tool_at(1), ... until null.
const tool *find_tool(const char *name);
const tool *tool_at(size_t number);

// Writes "usage: NAME ..." to standard error and returns 1, so that a tool can end with it.
int tool_usage(const char *name);

#define TOOL(name, function, path, usage) int function(int argument_count, char *const *arguments);
#include "simulator/tools/list.def"
#undef TOOL
