// Site survey: starting a scan for neighbouring networks, asking how far it is, and reading what it found.
//
// Touches the driver's network interfaces (ioctls). Service thread.
//
// A survey is started, runs in the driver for some seconds, and its list can be read at any time: reading does not
// wait. Every operation takes the VAP index as the client sent it, any int (VAP i drives interface ath(i-1)); an index
// of an interface that does not exist fails as the driver refuses it.
#pragma once

#include "config/wireless.h"
#include "server/records.h"

// The status of a survey that is complete. Every other one means that it is not.
constexpr int SURVEY_COMPLETE = 3;

// Starts a survey of all channels. -1 when the driver refuses it.
int wlan_ApSiteSurvey(int index);

// What the driver returns when it is asked, -1 when it refuses to say. Always 0.
int wlan_ApSiteSurveyStatus(int index, int *status);

// The number of networks found, as the driver tells it: any int. -1, and the output as it was, when it refuses.
int wlan_getApScanNumOfEntries(int index, int *count);

// Has the driver fill a list. The caller sets the block's value to the number of entries that the list has room for,
// and its buffer to the list, scan_entry after scan_entry, which lies below 4 GiB; the command word is set here. The
// driver may change the block. 0 or -1.
int wlan_getApScanResult(int index, driver_command *block);

// The networks found, strongest first; the table comes zeroed. It stays so, with 0, when there are none or more than
// there is memory for, and with -1 when the index is negative or the driver refuses the number or the list. An
// unfinished survey is reported on standard error and read all the same.
int wlan_getApScanResult_2(int index, scan_table *table);

// For whoever debugs a radio, no procedure leads here: starts a survey, waits for it, 20 seconds at most, and prints
// all that it found to standard error. -1 for a negative index, when the driver refuses anything but the status, when
// nothing was found and when there is no memory for what was.
int wlan_getScanResult(int index);

// Prints `count` networks to standard error. Their texts need no end.
void wlan_printScanInfo(const scan_entry *table, int count);
