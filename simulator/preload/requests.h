// The driver's answers to requests on its interfaces, one file a family.
//
// Any thread of the server may ask, so texts and scenarios live on the heap. The interface is there, and no fault is on
// for the request; the answers are 0 or an error number.
#pragma once

#include <linux/wireless.h>

// The driver's private requests: its channel table, and debugging.
constexpr unsigned long REQUEST_CHANNEL_TABLE = SIOCIWFIRSTPRIV + 7;
constexpr unsigned long REQUEST_DEBUG = SIOCIWFIRSTPRIV + 24;
static_assert(REQUEST_DEBUG == 0x8BF8);

// The channel table of the interface's radio: a count and 255 entries of 20 bytes.
int answer_channel_table(const char *interface, iwreq *request);

// The SSID as the store has it.
int answer_essid(const char *interface, iwreq *request);

// A debug request: band steering's tables of an interface.
int answer_debug_request(const char *interface, iwreq *request);
