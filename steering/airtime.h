// Airtime fairness: its settings, the stations that have an airtime weight, and the text of their MACs.
//
// Touches the store and runs `airtime`, the driver's tool that keeps the stations. Service thread only.
//
// Back ends return 0 unless said otherwise, also when a tool is missing or fails: that shows in the values alone.
#pragma once

#include <stddef.h>

#include "server/records.h"

// --- settings ---

// Only VAP 1 (for the 2.4 GHz radio) and VAP 9 (for the 5 GHz radio) are accepted; every other index: -1, nothing is
// read or written. An absent key: the output as it was, -1.
int wlan_getAirtimeEnable(int index, int *enabled);
int wlan_setAirtimeEnable(int index, int enabled);

// Settings of the VAP's radio, the last one of the VAP itself. Any index is accepted; an absent key reads as 0.
int wlan_getAdvAirtime_AlgorithmType(int index, int *algorithm);
int wlan_setAdvAirtime_AlgorithmType(int index, int algorithm);
int wlan_getAdvAirtime_BSSWeightEnable(int index, int *enabled);
int wlan_setAdvAirtime_BSSWeightEnable(int index, int enabled);
int wlan_getAdvAirtime_STAWeightEnable(int index, int *enabled);
int wlan_setAdvAirtime_STAWeightEnable(int index, int enabled);
int wlan_getAdvAirtime_TrafficDirection(int index, int *direction);
int wlan_setAdvAirtime_TrafficDirection(int index, int direction);
int wlan_getAdvAirtime_ApplicationATMEnable(int index, int *enabled);
int wlan_setAdvAirtime_ApplicationATMEnable(int index, int enabled);
int wlan_getAdvAirtime_DistributionType(int index, int *distribution);
int wlan_setAdvAirtime_DistributionType(int index, int distribution);

// --- the stations that have a weight, kept by the tool ---

int wlan_setAdvAirtime_STAWeightDestroyAll(void);

// 0 when the tool says nothing.
int wlan_getAdvAirtime_STAEntryCount(int *count);

// mac may be of any length. Without its colons it stands in the command as it came. Null: nothing is run.
int wlan_setAdvAirtime_STAEntryAdd(const char *mac, int weight);
int wlan_setAdvAirtime_STAEntryDel(const char *mac);

// --- one of them, by its number ---
//
// The tool counts from 1; any number is asked for, and one that it does not know reads as 0 or as empty text.

// The MAC with colons, cut to size - 1 characters. Of what is stored, 15 characters count.
int wlan_getAdvAirtime_STA_MAC(int station, char *mac, size_t size);

int wlan_getAdvAirtime_STA_Weight(int station, int *weight);

// -1 when the tool fails.
int wlan_setAdvAirtime_STA_Period(int station, int period);

// 0 when the tool says nothing.
int wlan_getAdvAirtime_STA_Period(int station, int *period);

// Fills the records of stations 1 to count, at most AIRTIME_STAS_MAX, and list->count with how many these are; records
// behind them stay as they were. A negative count is given back as it came, without a record. A period stays as it was
// when the tool says nothing.
int wlan_getAdvAirtime_STAList(int count, wlan_airtime_sta_list_t *list);

// --- the text of a MAC ---

// Both write at most size - 1 characters and the NUL (size is at least 1), and return -1 for a null pointer, with
// nothing written, else 0.

// "aa:bb:cc:dd:ee:ff" becomes "aabbccddeeff". out may be in.
int remove_colon(const char *in, char *out, size_t size);

// "aabbccddeeff" becomes "aa:bb:cc:dd:ee:ff": a colon behind every two characters that are followed by another one,
// whatever they are. out must not be in.
int add_colon(const char *in, char *out, size_t size);
