// Radio statistics: what the collector of each radio has measured, and starting and stopping the collectors. Also the
// driver's own choice of a channel, and its noise floor.
//
// Touches the collectors' sockets (through the channel), the links /var/run/radstatN, the store, and runs `ln`,
// `killall`, `iwpriv`, `iwconfig` and the collectors. Service thread; starting and stopping also on the init worker.
#pragma once

#include <stdint.h>

#include <atomic>

// Entries of the RSSI histogram.
constexpr int RSSI_TABLE_ENTRIES = 37;

// Readings. VAP 1 asks the collector of the 2.4 GHz radio, VAP 9 that of the 5 GHz radio, any other index a collector
// that usually does not run. All return 0; without an answer within two seconds the outputs are -1, packet counts 0.
// What a short answer does not reach is 0.
int wlan_getChannelStatistics(int index, int *utilisation, int *activity, int *busy);             // percent
int wlan_getChannelNoiseFloor(int index, int *minimum, int *maximum, int *median, int *average);  // dBm
int wlan_getRadioTxPackets(int index, int64_t *packets);
int wlan_getRadioRxPackets(int index, int64_t *packets);
int wlan_getRetransmissionMetric(int index, int *percent);
int wlan_getRSSITable(int index, int64_t *entries);  // RSSI_TABLE_ENTRIES of them

// Ends the collector of a VAP's interface and, with on, starts it anew. rate and interval (seconds) and r are passed on
// to it as they come. -1 for an index below 1, else 0, whatever became of the commands. Without r it is 0.
int wlan_setRadStatEnable(int index, int on, int rate, int interval);
int wlan_setRadStatEnable_1(int index, int on, int rate, int interval, int r);

// The index that the last of these two calls was for, 0 before the first. Nothing depends on it; a debugger does.
extern std::atomic<int> rad_stat_index;

// The stored wish for radio statistics: mode (0 none, 1 the 2.4 GHz radio, 2 the 5 GHz radio, 3 both), rate and
// interval. What the store does not have stays as it was.
void getRSGSettings(int *mode, int *rate, int *interval);

// Starts or stops the collector of the radio whose first VAP is index (1 or 9; others: nothing), as the store wishes:
// it runs when its mode says so, the radio is enabled and at least one of its VAPs is.
void wlan_applyRSGSettings(int index);

// Has the driver choose the channel. Always 0.
int wlan_apAutoChannelSelect(int index);

// The driver's noise floor, dBm; 0 when the tool says nothing of it. -1, and the output as it was, when the tool could
// not be run. For whoever debugs a radio: no procedure leads here.
int ath_getApNoiseFloor(int index, int *noise_floor);
