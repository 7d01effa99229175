// scan VAP: a site survey from its start to the table of what was found.
//
// Calls the server and follows the survey by asking for its state; prints.
#pragma once

#include "client/command_table.h"

client_exit_status run_scan(client_session *session, const command_line *line);

// Of the four bars that stand for a strength in dBm.
int signal_bars(int rssi);

// Four characters: the bars as blocks where the terminal's characters are UTF-8, else as stars; "_" for those missing.
const char *signal_drawing(int rssi);
