// The command that the gateway is there for: a shell, the tour, or any program.
//
// Touches processes and the terminal. The gateway's first process; take_terminal() also the launcher's outer one.
#pragma once

#include <sys/types.h>

#include "simulator/launcher/options.h"

// Runs the command and collects it, and on the way everything that lost its parent. Returns the launcher's status.
int run_command(const options *given);

// The status of a launcher whose child ended like this (as waitpid() has it).
int exit_status(int status);

// Puts a process group in the foreground of the terminal, if there is one, from a process that may be in the
// background.
void take_terminal(pid_t group);
