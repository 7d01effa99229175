// The commands that help to find an operation: list, describe, help.
#pragma once

#include "client/command_table.h"

client_exit_status run_list(client_session *session, const command_line *line);
client_exit_status run_describe(client_session *session, const command_line *line);
client_exit_status run_help(client_session *session, const command_line *line);

// Everything about one operation, in the session's format.
client_exit_status describe_operation(client_session *session, const procedure_row *row);

// How to use the program, or a command, in the session's format.
client_exit_status help_program(client_session *session);
client_exit_status help_command(client_session *session, const command_row *row);

// Says that there is no such command or operation, and what may have been meant.
client_exit_status complain_of_word(client_session *session, client_exit_status status, const char *word);
