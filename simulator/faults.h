// The faults that can be switched on in the simulated gateway.
//
// Touches /run/gateway/faults, one small file a fault; a fault counts as soon as its file is there. Any thread may
// ask. A fault's name is that of a tool ("iwconfig"), "popen", "system", "ioctl:0x8be7", "ioctl:0x89fc.41", or that of
// one of the lies below.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The longest name and value with their NUL: "ioctl:0x89fc." and ten digits, "slow 86400.000".
constexpr size_t FAULT_NAME_SIZE = 32;
constexpr size_t FAULT_VALUE_SIZE = 32;

// The fault that makes the driver lie about the number of stations on a black list; its value is what it says.
constexpr const char BLACKLIST_FAULT[] = "blacklist2g";

// The same for the networks that a scan has found, and for the stations of a VAP.
constexpr const char SCAN_COUNT_FAULT[] = "scan_count";
constexpr const char STATION_COUNT_FAULT[] = "station_count";

// The fault that makes the driver change the number with which the station table was asked for.
constexpr const char TABLE_COUNT_FAULT[] = "table_count";

// The fault that makes the driver give its value for the state of a scan.
constexpr const char SCAN_STATUS_FAULT[] = "scan_status";

// The faults of the airtime table: the number of entries that the driver tells, whatever there are, and a table that is
// as full as it can be.
constexpr const char AIRTIME_COUNT_FAULT[] = "airtime_count";
constexpr const char AIRTIME_FULL_FAULT[] = "airtime_full";
constexpr const char AIRTIME_FULL_OF_STATIONS[] = "stations";  // without a row of another kind

// The fault with which no text in the driver's records has its NUL; its only value is "unterminated".
constexpr const char TEXTS_FAULT[] = "texts";

// The fault that moves the time of day, as the server reads it, by so many seconds.
constexpr const char CLOCK_FAULT[] = "clock";

// The fault with which a process has the store's lock; its only value.
constexpr const char STORE_LOCK_FAULT[] = "store_lock";
constexpr const char STORE_LOCK_HELD[] = "held";

// True when the fault is on; value (size bytes) then holds its value, else it is empty.
bool fault_get(const char *name, char *value, size_t size);

// The errno number that a fault whose value is an errno name asks for; 0 when the fault is off.
int fault_errno(const char *name);

// The number of an errno name such as "ENODEV", 0 when there is none.
int errno_by_name(const char *name);

// Whether a fault's value is "slow SECONDS", with a day at most; then the seconds.
bool fault_slowness(const char *value, double *seconds);

// The value of a fault that is a number; false, and the number stays, when the fault is off.
bool fault_number(const char *name, int64_t *number);

// Name of the fault of an ioctl request, and of a part of the driver's own request: of those with one command, or with
// data of one length.
void ioctl_fault_name(unsigned long request, char *name, size_t size);
void ioctl_part_fault_name(unsigned long request, unsigned part, char *name, size_t size);

// Switches a fault on or off. Both return 0, or -1 with errno; switching off what is not on is no error.
int fault_set(const char *name, const char *value);
int fault_clear(const char *name);
