// The driver's answers to requests on its interfaces, one file a family.
//
// Any thread of the server may ask, so texts and scenarios live on the heap. The interface is there, and no fault is on
// for the request; the answers are 0 or an error number. What a request that succeeds returns is 0, unless its answer
// puts something else into `result`, which is not negative.
#pragma once

#include <stdint.h>

#include <linux/sockios.h>
#include <linux/wireless.h>

// The driver's private requests: its channel table, and debugging.
constexpr unsigned long REQUEST_CHANNEL_TABLE = SIOCIWFIRSTPRIV + 7;
constexpr unsigned long REQUEST_DEBUG = SIOCIWFIRSTPRIV + 24;
static_assert(REQUEST_DEBUG == 0x8BF8);

// The driver's own request. What it is about shows in the length of its data, and when that is a command's in the
// command.
constexpr unsigned long REQUEST_DRIVER = SIOCDEVPRIVATE + 12;
static_assert(REQUEST_DRIVER == 0x89FC);

// The lengths that are no command's.
constexpr unsigned AIRTIME_TABLE_LENGTH = 5824;
constexpr unsigned STATION_AIRTIME_LENGTH = 36;

enum driver_command : uint32_t {
    COMMAND_SCAN_STATUS = 38,    // what the request returns
    COMMAND_SCAN_COUNT = 39,     // how many networks there are
    COMMAND_SCAN_RESULTS = 40,   // their records
    COMMAND_STATION_COUNT = 41,  // how many stations there are
    COMMAND_STATION_TABLE = 42,  // their records
};

// The channel table of the interface's radio: a count and 255 entries of 20 bytes.
int answer_channel_table(const char *interface, iwreq *request, int *result);

// The SSID as the store has it.
int answer_essid(const char *interface, iwreq *request, int *result);

// A debug request: band steering's tables of an interface.
int answer_debug_request(const char *interface, iwreq *request, int *result);

// Starts a scan of the interface's radio.
int answer_scan(const char *interface, iwreq *request, int *result);

// A command of the driver's own: scans and stations. Data of a length that no such request has comes here, too.
int answer_driver_command(const char *interface, iwreq *request, int *result);

// Which command a request of the driver's own is, 0 for one of another kind or none of the caller's memory.
uint32_t driver_command_number(const iwreq *request);

// The state of the last scan of a VAP's radio as the result; 0 or an error number.
int answer_scan_status(int vap, int *result);

// How the airtime of the interface's radio is shared out, and what a station of the interface has had of it.
int answer_airtime_table(const char *interface, iwreq *request, int *result);
int answer_station_airtime(const char *interface, iwreq *request, int *result);
