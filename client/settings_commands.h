// export, diff, apply and confirm: all settings of the gateway as one document, and back.
#pragma once

#include "client/command_table.h"

extern const option_row export_options[2];
extern const option_row apply_options[3];

client_exit_status run_export(client_session *session, const command_line *line);
client_exit_status run_diff(client_session *session, const command_line *line);
client_exit_status run_apply(client_session *session, const command_line *line);
client_exit_status run_confirm(client_session *session, const command_line *line);
