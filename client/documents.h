// The documents that the client prints from its tables, for other programs and for the tree: each is committed, or
// installed, as it is printed.
#pragma once

#include "client/command_table.h"

client_exit_status run_reference(client_session *session, const command_line *line);
client_exit_status run_interface(client_session *session, const command_line *line);
client_exit_status run_dissector(client_session *session, const command_line *line);
client_exit_status run_records(client_session *session, const command_line *line);
client_exit_status run_manual(client_session *session, const command_line *line);
