// VAP identity and basic settings: name, BSSID, VLAN, enable, SSID, security family, channel, standard.
//
// Touches the store and runs `iwconfig` and `ifconfig`. Service thread; wlan_getEnable also on lifecycle workers.
//
// Every operation takes the VAP index as the client sent it (1 to 16; VAP i drives interface ath(i-1)) and returns
// 0 or -1. Index checks differ from operation to operation and are part of the contract. A text output has `size`
// bytes, is always terminated and is cut to fit.
#pragma once

#include <stddef.h>
#include <sys/types.h>

constexpr int VAP_COUNT = 16;

// VAPs 1 to 8 belong to one radio's group, 9 to 16 to the other's.
constexpr int VAPS_PER_RADIO = 8;

// What concerns a whole radio goes by its first VAP.
constexpr int FIRST_VAP_2G = 1;
constexpr int FIRST_VAP_5G = FIRST_VAP_2G + VAPS_PER_RADIO;

// An SSID has at most 32 characters; escaping can double them.
constexpr size_t SSID_MAX = 32;

// Six two-digit groups joined by colons, and the NUL.
constexpr size_t MAC_TEXT_SIZE = 18;

// Puts a backslash before each double quote, back quote, backslash and dollar sign, so that the text survives the
// double-quoted shell command of athcfg_setbyname. Cuts the text so that the escaped form fits size bytes with its
// NUL, never between a backslash and the character behind it.
void pre_process_ssid(const char *input, char *output, size_t size);

int wlan_getNumberOfEntries(int *count);  // always 16
int wlan_addEntry(void);                  // accepted, no effect
int wlan_delEntry(void);                  // accepted, no effect

// Finds the VAP with this BSSID. port is 0, or 5 and 6 for radio 0 and 1 when UDMA_ENABLE is set; index is the VAP's.
// No match: both 0, returns -1.
int wlan_getBssIdPort(const char *bssid, int *port, int *index);

// Writes the VLAN and the bridge name of the VAP with this BSSID. -1 when there is none. VAP 16 gets no bridge name.
int wlan_associateVlan(const char *bssid, u_short vlan);

int wlan_getEnable(int index, int *enabled);
int wlan_setEnable(int index, int enabled);  // an enabled VAP without an SSID gets a default one

int wlan_getStatus(int index, char *status, size_t size);  // "Up", "Disable", or "Error" for an index below 1
int wlan_getName(int index, char *name, size_t size);      // empty above 16, -1 below 1
int wlan_getBSSID(int index, char *bssid, size_t size);    // -1 below 1
int wlan_getMaxBitRate(int index, char *rate, size_t size);
int wlan_setMaxBitRate(int index, const char *rate);  // accepted, no effect

int wlan_getChannel(int index, u_int *channel);  // 0 for automatic
int wlan_setChannel(int index, u_int channel);   // -1 for 14 or below on radio 1
int wlan_getAutoChannelEnable(int index, int *enabled);
int wlan_setAutoChannelEnable(int index, int enabled);  // also overwrites the radio's mode

int wlan_getSSID(int index, char *ssid, size_t size);
int wlan_setSSID(int index, const char *ssid);  // cut to 32 characters, then escaped
int wlan_getCustomSSIDStr(int index, char *ssid, size_t size);
int wlan_setCustomSSIDStr(int index, const char *ssid);

int wlan_getBeaconType(int index, char *type, size_t size);  // output untouched for an unknown AP_SECMODE
int wlan_setBeaconType(int index, const char *type);

int wlan_getStandard(int index, char *standard, size_t size);
int wlan_setStandard(int index, const char *standard);

int wlan_getMacAddressControlEnabled(int index, int *enabled);
int wlan_setMacAddressControlEnabled(int index, int enabled);
