// The command `status`: both radios and all VAPs at a glance.
#pragma once

#include "client/command_table.h"

extern const option_row status_options[];
extern const size_t status_option_count;

client_exit_status run_status(client_session *session, const command_line *line);
