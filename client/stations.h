// The command `stations`: who is associated with which VAP.
#pragma once

#include "client/command_table.h"

client_exit_status run_stations(client_session *session, const command_line *line);
