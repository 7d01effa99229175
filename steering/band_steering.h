// Band steering: moving dual-band stations from the 2.4 GHz radio to the 5 GHz radio. The driver does it; here are its
// settings, whether it really does it, and its two tables.
//
// Touches the store, /nvram/5gcapabletable and the driver's debug requests (steering/steering_tables), and runs
// `wifitool`. Service thread only.
//
// Every operation returns 0 or -1. A getter that returns -1 leaves its outputs as they were, unless it says otherwise.
// Whether the store could be written is not looked at. A stored text that is no number reads as 0.
#pragma once

#include <sys/types.h>

#include "server/records.h"

// --- settings of the whole device: a getter gives -1 when nothing is stored ---

// The method, 0 to 3. A setter gives -1 for a value out of range, and writes nothing.
int wlan_getBandSteerEnable(int *method);
int wlan_setBandSteerEnable(int method);

// In dBm, -255 to 0.
int wlan_getBandSteer2gRssiLowLimitThreshold(int *dbm);
int wlan_setBandSteer2gRssiLowLimitThreshold(int dbm);
int wlan_getBandSteer5gRssiGoodLimitThreshold(int *dbm);
int wlan_setBandSteer5gRssiGoodLimitThreshold(int dbm);

// In seconds. The times are the same for either radio; reading needs both. Index 1 to 16: any other writes nothing,
// which is a success, and reads nothing, which is a failure. But 17 is read.
int wlan_getBandSteerInactivitySteerTime(int index, u_int *normal, u_int *overload);
int wlan_setBandSteerInactivitySteerTime(int index, u_int normal, u_int overload);

// In seconds, any value; any index.
int wlan_getBandSteerUtilSampleRate(int index, u_int *seconds);
int wlan_setBandSteerUtilSampleRate(int index, u_int seconds);
int wlan_getBandSteerUtilAvgPeriod(int index, u_int *seconds);
int wlan_setBandSteerUtilAvgPeriod(int index, u_int seconds);
int wlan_getBandSteerDeferPeriod(int index, u_int *seconds);
int wlan_setBandSteerDeferPeriod(int index, u_int seconds);

// In dBm, -255 to 0. Index 1 to 8 is the threshold of the 2.4 GHz radio, 9 to 16 that of the 5 GHz radio. Any other
// index: nothing is written, which is a success; reading fails.
int wlan_getBandSteerAssocLowRssiThreshold(int index, int *dbm);
int wlan_setBandSteerAssocLowRssiThreshold(int index, int dbm);

// In seconds, 0 to 20.
int wlan_getBandSteerTime(u_int *seconds);
int wlan_setBandSteerTime(u_int seconds);

// 0 to 3.
int wlan_getBandSteerCount(u_int *count);
int wlan_setBandSteerCount(u_int count);

// --- settings of a BSS: VAP 1 to 8 stands for itself and its 5 GHz twin, VAP 9 to 16 ---
//
// Any other index: -1, nothing is done. A setter gives -1 for a value out of range and writes the keys of both VAPs;
// a getter reads the key of the first and gives -1 when nothing is stored.

// 0 to 2. Reading asks the driver as well, and gives 0 where it says that steering still needs to be brought up, in
// addition to a line on standard output. Always 0; without a stored value and without such a word from the driver the
// output stays as it was.
int wlan_getBssBandSteerEnable(int index, int *enabled);
int wlan_setBssBandSteerEnable(int index, int enabled);

// In dBm, -100 to -1.
int wlan_getBssBandSteer5gRssiThreshold(int index, int *dbm);
int wlan_setBssBandSteer5gRssiThreshold(int index, int dbm);

// 0 to 100.
int wlan_getBssBandSteerDelta5gRssiThreshold(int index, int *delta);
int wlan_setBssBandSteerDelta5gRssiThreshold(int index, int delta);

// In milliseconds, 0 to 100000.
int wlan_getBssBandSteer2gTempTimeout(int index, int *milliseconds);
int wlan_setBssBandSteer2gTempTimeout(int index, int milliseconds);

// --- tables of a BSS, VAP 1 to 8; any other index: -1, nothing is done. method is ignored ---

// The stations that can use 5 GHz: the slot of the table file and its first word, which is passed on whatever it says.
// All zeros when there is no file. -1 when there is no table to write to or the slot cannot be read; count is 0 then.
int wlan_getBssBandSteer5gCapableTable(int index, int *count, wlan_5g_capable_table_t *table);

// Clears the slot, then has the driver forget the stations. Returns what became of the slot; without a file it is
// cleared. The driver is not told when that failed, and what it answers is only printed.
int wlan_setBssBandSteer5gCapableClear(int index, int method);

// The driver's own table: count entries, at most as many as the record has. -1 when there is no table to write to, no
// memory that the driver could write to (count and table stay as they were), or when the driver refuses: count is 0
// when it refuses to tell how many there are; when it refuses to give them, count is their number and the table begins
// with it.
int wlan_getBssBandSteer2gTempBlacklistTable(int index, int *count, wlan_2g_temp_blacklist_table_t *table);

// Has the driver's tool clear it. What becomes of that is not looked at.
int wlan_setBssBandSteer2gTempBlacklistClear(int index, int method);
