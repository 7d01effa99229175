// The gateway's processes by their names.
//
// Touches /proc and the processes of the gateway. Used by whoever ends daemons: the driver's scripts and the faults.
#pragma once

// Whether a process name is that of a program: its own, or, where one process an interface runs under a name of its
// own, with a number behind it ("radstat8").
bool is_name_of(const char *program, const char *name);

// Ends every process of a program and waits until it is gone, by force when it takes long. One that only waits for its
// parent to notice its end is gone.
void end_processes(const char *program);
