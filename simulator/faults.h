// The faults that can be switched on in the simulated gateway.
//
// Touches /run/gateway/faults, one small file a fault; a fault counts as soon as its file is there. Any thread may
// ask. A fault's name is that of a tool ("iwconfig"), "popen", "system", "ioctl:0x8be7", or "blacklist2g".
#pragma once

#include <stddef.h>

// The longest name and value with their NUL: "ioctl:0x" and eight digits, "slow 86400.000".
constexpr size_t FAULT_NAME_SIZE = 32;
constexpr size_t FAULT_VALUE_SIZE = 32;

// The fault that makes the driver lie about the number of stations on a black list; its value is what it says.
constexpr const char BLACKLIST_FAULT[] = "blacklist2g";

// True when the fault is on; value (size bytes) then holds its value, else it is empty.
bool fault_get(const char *name, char *value, size_t size);

// The errno number that a fault whose value is an errno name asks for; 0 when the fault is off.
int fault_errno(const char *name);

// The number of an errno name such as "ENODEV", 0 when there is none.
int errno_by_name(const char *name);

// Whether a fault's value is "slow SECONDS", with a day at most; then the seconds.
bool fault_slowness(const char *value, double *seconds);

// Name of the fault of an ioctl request.
void ioctl_fault_name(unsigned long request, char *name, size_t size);

// Switches a fault on or off. Both return 0, or -1 with errno; switching off what is not on is no error.
int fault_set(const char *name, const char *value);
int fault_clear(const char *name);
