// The command `metrics`: the gateway's numbers as OpenMetrics text, for monitoring.
#pragma once

#include "client/command_table.h"

extern const option_row metrics_options[];
extern const size_t metrics_option_count;

client_exit_status run_metrics(client_session *session, const command_line *line);
