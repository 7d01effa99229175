// What the statistics collector of a radio has measured: the command `radio`, and members for others.
//
// The server asks a collector by the VAP of its interface. Where none runs, or it has not measured anything yet, all
// numbers are -1; the members are null then.
#pragma once

#include "client/command_table.h"
#include "client/gather.h"

// Adds utilisation, for people as a percentage.
void add_utilisation(gathering *from, value *to, int index);

// Adds utilisation, activity, busy and retransmission (percent), tx_packets and rx_packets, noise_floor (dBm: minimum,
// maximum, median, average), and rssi_histogram, a list of {rssi, stations}. False, and all of them null, when no
// collector answers for this VAP.
bool add_readings(gathering *from, value *to, int index);

client_exit_status run_radio(client_session *session, const command_line *line);
