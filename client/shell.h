// The interactive shell: prompt, line editing, history, completion.
//
// client/shell.cpp is built with libedit; a client built without it has client/shell_absent.cpp, which says so. Reads
// the terminal that standard input is. Every line is carried out in a process of its own, so that Ctrl-C ends whatever
// the line does at any time and leaves the shell as it was.
#pragma once

#include "client/command_table.h"

client_exit_status run_shell(client_session *session, const command_line *line);
