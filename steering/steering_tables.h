// Where the driver keeps what it knows of the stations of a BSS: the file of those that can use 5 GHz, and the debug
// requests by which it is asked.
//
// Touches /nvram/5gcapabletable, which the driver's side writes too and which is locked meanwhile, and the driver's
// private request 0x8BF8. Service thread only.
#pragma once

#include <stdint.h>

#include "server/records.h"

// Eight slots of one table each. It is not there until the driver has something to keep.
constexpr const char CAPABLE_TABLE_FILE[] = "/nvram/5gcapabletable";

// Whether the index is a 2.4 GHz VAP, 1 to 8: each of them and its 5 GHz twin steer together, and have a slot.
bool is_steered_pair(int index);

// Reads the slot of a VAP. 0 without a file: the table stays as it was. -1 when there is no such slot, no table to
// write to, or the slot cannot be read whole; what could be read is in the table then.
// Waits as long as another process holds the file's lock.
int read5GHzCapableTable(int index, wlan_5g_capable_table_t *table);

// Fills the slot of a VAP with zeros. 0 also without a file; -1 when there is no such slot or it cannot be written.
// Waits as long as another process holds the file's lock.
int clear5GHzCapableTable(int index);

// Commands of a debug request.
constexpr uint8_t DBGREQ_TEMP_BLACKLIST_2G = 87;             // give the 2.4 GHz temporary black list
constexpr uint8_t IEEE80211_DBGREQ_CLRCAPABLETABLE_5G = 89;  // forget which stations can use 5 GHz

// Sends a debug request on the interface of a VAP. buffer is null or comes from low_memory_new (config/wireless.h); the
// driver reads and writes at most size bytes of it, and is told where it is in 32 bits.
// Returns what the driver returned; -1 with errno, and nothing reported, when it failed.
int request_debug(int index, uint8_t command, void *buffer, uint32_t size);
