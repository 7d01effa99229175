// The driver's key=value store: reads go straight to the file, writes through the `cfg` tool.
//
// Touches /tmp/.apcfg (read only) and /tmp/.apcfg_lock, and runs `cfg -a`. Service thread and lifecycle workers
// both call it; nothing is cached, so a read sees the latest write.
//
// Key naming: index 1 and every index below use the bare key (AP_SSID), index i of 2 or more uses key_i
// (AP_SSID_2). Settings of the whole device are kept under index 0, settings of a radio under its radio store index.
#pragma once

#include <stddef.h>

constexpr const char STORE_FILE[] = "/tmp/.apcfg";
constexpr const char STORE_LOCK_FILE[] = "/tmp/.apcfg_lock";

// A value buffer that takes every ordinary setting: the driver's tool writes lines of at most 1727 characters.
constexpr size_t STORE_VALUE_SIZE = 1728;

// Takes the lock that keeps other processes from reading or changing the store meanwhile, waiting as long as necessary.
// Returns what unlock_store wants back: -1 when the lock file cannot be made and the caller goes on unlocked, since a
// setting read without the lock is better than none. Threads of this process do not exclude each other, and a store
// read on one thread gives back a lock that another holds: that is how record locks are.
int lock_store(void);
void unlock_store(int lock);

// Looks one line up. search_key is the indexed key with its '='. value (size bytes, at least 1) receives the text
// behind that '=' up to the first CR, LF or NUL, cut to size - 1 characters, and is left alone when nothing is found.
// Returns 0, or -1 when the key is not there or the store cannot be read. The first line of a key wins.
int getWifiParam(const char *search_key, char *value, size_t size);

// Reads the setting `name` of `index`. value becomes empty when there is none.
// Returns 0 when a non-empty value was found, -1 otherwise: a key with an empty value reads as missing.
int athcfg_getbyname(int index, const char *name, char *value, size_t size);

// Writes the setting with `cfg -a`. The value goes between double quotes as it stands: whatever the shell would
// interpret there is the caller's to escape. Returns 0 when the tool could be started, else -1; what the tool itself
// says is not examined.
int athcfg_setbyname(int index, const char *name, const char *value);

// The same for numbers: decimal text, an absent key or text without a number reads as 0.
// athcfg_getint returns 0 when a non-empty value was found, else -1; *value is set in both cases.
int athcfg_getint(int index, const char *name, int *value);
int athcfg_setint(int index, const char *name, int value);

// Radio of a VAP, 0 or 1: 1 when its AP_RADIO_ID contains the character '1', else 0. Never fails.
int athcfg_get_radio(int index);

// Number of the driver's interface of a VAP: VAP i drives ath(i-1). Defined for every index, since any may come from a
// client.
int interface_number(int index);

// The name of that interface.
constexpr size_t INTERFACE_NAME_SIZE = 16;  // "ath" and any number
void interface_name(int index, char name[INTERFACE_NAME_SIZE]);

// Store index of a radio's settings: the bare key for radio 1, suffix _2 for radio 0.
int radio_store_index(int radio);
