// Airtime fairness for the device's system log: a line for each connected station.
//
// Touches the driver (see steering/airtime_table.h), the device's event library, and runs `wlanconfig`. Service thread.
#pragma once

// Writes a line for each station that the driver's tables list and that is connected: who it is, its configured share
// and, on the 2.4 GHz radio, the airtime that it uses. Always returns 0 with 1 in done, whatever could be read; index
// is not used.
int wlan_queryWlanInfo(int index, int *done);
