// watch COMMAND...: any command or operation again and again.
//
// Has the signals SIGINT and SIGTERM to itself while it runs, unless whoever started the program ignores them: they end
// it with success.
#pragma once

#include "client/command_table.h"

client_exit_status run_watch(client_session *session, const command_line *line);

// "0.5" as 500: a number of seconds with up to three decimals, as milliseconds. False for anything else, less than 0.1
// and more than 86400.
bool parse_interval(const char *word, int64_t *milliseconds);
