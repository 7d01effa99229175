// Wi-Fi Protected Setup of a VAP: its switch and mode, its identity, the configuration methods, the setup lock, and the
// exchanges by push button and PIN.
//
// Touches the store, the WPS files (config/wps_files) and /tmp/wps_method, runs `hostapd_cli` and restarts the
// authenticator (lifecycle/authenticator). Service thread.
//
// Every operation takes the VAP index as the client sent it (1 to 16; VAP i drives interface ath(i-1)) and returns 0 or
// -1. Index checks differ from operation to operation and are part of the contract: where none is named, every index is
// taken. A text output has `size` bytes, is always terminated and is cut to fit. Outputs are untouched on failure
// unless said otherwise; "zeros" is four zero bytes.
#pragma once

#include <stddef.h>
#include <sys/types.h>

constexpr const char WPS_METHOD_FILE[] = "/tmp/wps_method";

int wlan_getWpsEnable(int index, int *enabled);
int wlan_setWpsEnable(int index, int enabled);

// The same switch as a number: 0 off, 2 on, or whatever the store has. -1 for a negative index.
int wlan_getWpsMode(int index, int *mode);
int wlan_setWpsMode(int index, int enabled);

int wlan_getWpsDeviceName(int index, char *name, size_t size);  // from the WPS file; zeros and -1 without one
int wlan_getWpsDevicePassword(int index, char *pin,
                              size_t size);                 // from the WPS file, else from the store; never fails
int wlan_setWpsDevicePassword(int index, const char *pin);  // into the store only
int wlan_getWpsUuid(int index, char *uuid, size_t size);    // from the WPS file; zeros and -1 without one

// Writes the WPS file, and restarts the authenticator while WPS is on. Returns what the writing of the file returned,
// -1 for a negative index.
int wlan_setWpsUuid(int index, const char *uuid);

int wlan_getWpsVersion(int index, int *version);                               // always 2
int wlan_getWpsConfigMethodsSupported(int index, char *methods, size_t size);  // always all four

// Words out of Label, Display, PushButton, Keypad, joined by commas. They are the same for all VAPs. The getter gives
// empty text and -1 when none were ever set; the setter also switches WPS of VAPs 1 and 9, and does nothing for a text
// without any of the words.
int wlan_getWpsConfigMethodsEnabled(int index, char *methods, size_t size);
int wlan_setWpsConfigMethodsEnabled(int index, const char *methods);

// "Unlocked" or "LockedByLocalManagement" from the WPS file; zeros and -1 without one.
int wlan_getWpsSetupLockedState(int index, char *state, size_t size);

int wlan_getWpsSetupLock(int index, int *locked);  // from the store; absent: 0 and -1
int wlan_setWpsSetupLock(int index, int locked);

// "Configured" or "Not configured", as the authenticator says; untouched with status 0 when it says neither. -1 for a
// negative index or when it cannot be asked.
int wlan_getWpsConfigurationState(int index, char *state, size_t size);

int wlan_getWpsLastConfigurationError(int index, char *error, size_t size);  // always "NoError"

int wlan_getWpsRegistrarNumEntries(int index, int *count);                // always 1
int wlan_addWpsRegistrarEntry(int index);                                 // accepted, no effect
int wlan_delWpsRegistrarEntry(int index);                                 // accepted, no effect
int wlan_getWpsRegistrarEstablished(int index, int *established);         // 1; untouched and 0 for a negative index
int wlan_getWpsRegistrarEnabled(int index, int registrar, int *enabled);  // 1; -1 for a negative index
int wlan_setWpsRegistrarEnabled(int index, int registrar, int enabled);   // accepted, no effect
int wlan_getWpsRegistrarUuid(int index, int registrar, char *uuid, size_t size);  // zeros and -1 without a WPS file
int wlan_getWpsRegistrarDeviceName(int index, int registrar, char *name, size_t size);  // likewise

// Of the WPS file, -1 unless the VAP is enabled. Getter: zeros and -1 without a file. Setter: as wlan_setWpsUuid.
int wlan_getWpsModelName(int index, char *name, size_t size);
int wlan_setWpsModelName(int index, const char *name);

// Marks the AP as not configured and restarts the authenticator; nothing while WPS is off. Always 0.
int wlan_setWpsOOB(int index);

// Start or cancel an exchange. -1 for a negative index, while the VAP or WPS is off, and unless the authenticator
// answers "OK". A PIN goes to the shell as it stands. The two forms of either start differ in nothing but the order of
// their checks.
int wlan_setWpsPbcTrigger(int index);
int wlan_setWpsPushButton(int index);
int wlan_setWpsEnrolleePin(int index, const char *pin);
int wlan_setWpsPinStart(int index, const char *pin);
int wlan_setWpsCancel(int index);

// All that the authenticator says of its WPS status. -1 for a negative index or when it cannot be asked.
int wlan_getWpsStatus(int index, char *status, size_t size);
int wlan_getWpsResultStatus(int index, char *status, size_t size);

// One for the whole device. -1 for a negative index; the getter also when it was never set.
int wlan_getWpsConfigTimeout(int index, u_int *timeout);
int wlan_setWpsConfigTimeout(int index, u_int timeout);
