// load, init, reset, reconnect: the driver's lifecycle, and following the driver until it is where it was sent.
//
// The requests return at once and their work goes on in the gateway, which tells nobody how far it is. What can be seen
// from outside is what the interfaces are like, so that is what is followed:
//
//   loaded  a radio answers the driver's tool (getHtTxStream of VAP 1 or VAP 9 succeeds)
//   up      every VAP that is switched on, on a radio that is, has the status "Up"; where none is, the driver is loaded
//   down    no radio answers, and no VAP has the status "Up"
//
// Each has to be seen twice, a second apart: scripts begin late, and are not done with the last interface.
#pragma once

#include "client/command_table.h"

client_exit_status run_load(client_session *session, const command_line *line);
client_exit_status run_init(client_session *session, const command_line *line);
client_exit_status run_reset(client_session *session, const command_line *line);
client_exit_status run_reconnect(client_session *session, const command_line *line);
