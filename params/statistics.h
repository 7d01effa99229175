// Traffic counters of a VAP, as the driver's tools print them, and the stations associated with it, as the driver
// lists them.
//
// Touches the store (read only), runs `ifconfig`, `wlanconfig` and `apstats`, and asks the driver by ioctl. Service
// thread.
//
// Every operation takes the VAP index as the client sent it (1 to 16; VAP i drives interface ath(i-1)) and returns
// 0 or -1. Only a negative index is refused, and only where it is said; any other names an interface that the tools and
// the driver know or not. An output stays as it was where nothing else is said.
//
// A counter is the low 32 bits of the number that is printed, however long that is: the tools count in 64 bits, clients
// in 32, and a difference of two readings stays right when the number wraps. What is no number counts as 0.
#pragma once

#include <sys/types.h>

#include "config/wireless.h"
#include "server/records.h"

// The four counters of ifconfig and the number of stations that wlanconfig lists. -1 when a tool cannot be run or a
// counter is missing; those found before it are given out all the same. A negative index: -1, the first word cleared.
int wlan_getBasicStats(int index, wlan_basicStats_t *stats);

// Three counters of apstats. -1 and all words cleared for a negative index and unless both the VAP and its radio are
// enabled; -1 when the tool cannot be run or a counter is missing, with those found before it given out. On success all
// other words are cleared but the first, which is the caller's.
int wlan_getStats(int index, wlan_stats_t *stats);

// Number of associated stations, 0 to 127. The first returns -1 when the driver refuses. The second returns 0 even
// then: its clients take the count as it comes.
int wlan_getAssocDevicesNum(int index, u_int *count);
int wlan_getAssocDevicesTableNumOfEntries(int index, u_int *count);

// Reads the stations into the caller's buffer. block: value is the number of wlan_device_t that the buffer has room
// for, buffer its address (low_memory_address); the command word is set here, and the driver may write any of the
// three. -1 when it refuses.
int wlan_getAssocDevicesTable(int index, driver_command *block);

// The station at this position, counted from 0; its interface number is not filled in. -1 for a negative index, a
// position at which nobody is, and when the driver refuses or there is no memory.
int wlan_getAssocDevice(int index, int device, wlan_device_t *station);

// The first 32 stations, each with the VAP's interface number, into a table that the caller has zeroed. -1 for a
// negative index, and when the driver refuses or there is no memory.
int wlan_getAssocDevicesTable_2(int index, wlan_assoc_devices_table *table);

// For people at a debugger: prints all stations to standard error. -1 for a negative index, without any station, and
// when the driver refuses or there is no memory.
int wlan_listSTA(int index);

// Prints the stations of a buffer, as many as the block's value says.
void wlan_printSTAInfo(const driver_command *block);
