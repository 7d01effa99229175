// Radio tuning and regulatory settings: country, HT rate, channel width, extension channel, chain masks, protection,
// thresholds, aggregation, isolation, and settings that are only remembered.
//
// Touches the store, runs `iwpriv` and `iwconfig`, asks the driver for its channel table. Service thread.
//
// Every operation takes the VAP index as the client sent it (1 to 16; VAP i drives interface ath(i-1)) and returns
// 0 or -1: -1 for a negative index unless said otherwise. What fails leaves its output as it was, unless said
// otherwise. Setters that run a tool return 0 whatever the tool does. A text output has `size` bytes, is always
// terminated and is cut to fit.
#pragma once

#include <stddef.h>
#include <sys/types.h>

int wlan_getCountryCode(int index, char *country, size_t size);  // "US" and -1 without a country that the driver knows
int wlan_setCountryCode(int index, const char *country);         // -1 unless it is one of the driver's, in capitals

// A fixed MCS plus 2; 0 (to be set: 0 or 1) for automatic.
int wlan_getHTMcs(int index, u_int *mcs);  // 0 where the mode is neither 802.11n nor 802.11ac
int wlan_setHTMcs(int index, u_int mcs);   // -1 there, and above 11 for 802.11ac; no upper bound for 802.11n

// Channel width: 0 for 20 MHz, 1 for 40 MHz, 2 for 40 MHz with AP_DISCOEXT "1", 3 for 80 MHz.
int wlan_getChannelBW(int index, int *width);
int wlan_setChannelBW(int index, int width);  // the widest below it that the channel allows; any other: the widest

// Widest channel width: 1 for 20 MHz, 2 for 40 MHz, 4 for 80 MHz. Channel 0: what the radio can do at best.
int wlan_getMaxBandwidth(int index, int channel, int *width);

// Extension channel: 0 below, 1 above, 2 none stated. -1 for any other to be set.
int wlan_getExtensionChannel(int index, int unused, int *side);
int wlan_setExtensionChannel(int index, int unused, int side);

// Streams, 1 to 3. Anything else to be set or found is 1. -1 when the tool does not name the mask.
int wlan_getHTTxStream(int index, int *streams);
int wlan_setHTTxStream(int index, int streams);
int wlan_getHTRxStream(int index, int *streams);
int wlan_setHTRxStream(int index, int streams);

// Quality of service by SSID. The getters return -1 when the tool cannot be run; where it does not name the value, the
// output stays as it was with 0.
int wlan_getSsidQosEnabled(int index, int *enabled);
int wlan_setSsidQosEnabled(int index, int enabled);
int wlan_getSsidQosLevel(int index, char *level, size_t size);  // two characters
int wlan_setSsidQosLevel(int index, const char *level);         // goes to the shell as it stands

// The channel that the interface works on. 0 and -1 for a negative index, -1 when the tool names no frequency.
int wlan_getCurrentChannel(int index, int *channel);

// These say "Has not been implemented" on standard output and return -1.
int wlan_getDot11uEnable(int index, int *enabled);
int wlan_setDot11uEnable(int index, int enabled);
int wlan_getDot11uAttribute(int index, int *network_type, int *internet, int *asra, int *esr, int *uesa);
int wlan_setDot11uAttribute(int index, int network_type, int internet, int asra, int esr, int uesa);

// Numbers of the store. Absent keys: see the table in the source.
int wlan_getBGProtection(int index, int *enabled);
int wlan_setBGProtection(int index, int enabled);  // for all eight VAPs of the index's group
int wlan_getBeaconInterval(int index, u_int *interval);
int wlan_setBeaconInterval(int index, u_int interval);
int wlan_getDtimPeriod(int index, u_int *period);
int wlan_setDtimPeriod(int index, u_int period);
int wlan_getTxPreamble(int index, int *preamble);
int wlan_setTxPreamble(int index, int preamble);  // for all eight VAPs of the index's group
int wlan_getRTSThreshold(int index, u_int *threshold);
int wlan_setRTSThreshold(int index, u_int threshold);
int wlan_getFragThreshold(int index, u_int *threshold);
int wlan_setFragThreshold(int index, u_int threshold);
int wlan_getTxBurst(int index, int *enabled);
int wlan_setTxBurst(int index, int enabled);
int wlan_getGuardInterval(int index, int *guard_interval);  // 0 short, 1 long
int wlan_setGuardInterval(int index, int guard_interval);
int wlan_getAmsdu(int index, int *enabled);
int wlan_setAmsdu(int index, int enabled);
int wlan_getBADecline(int index, int *enabled);
int wlan_setBADecline(int index, int enabled);
int wlan_getBlockAck(int index, int *enabled);
int wlan_setBlockAck(int index, int enabled);
int wlan_getHTStbc(int index, int *enabled);
int wlan_setHTStbc(int index, int enabled);
int wlan_getIeee80211hEnable(int index, int *enabled);
int wlan_setIeee80211hEnable(int index, int enabled);
int wlan_getShortSlot(int index, int *enabled);
int wlan_setShortSlot(int index, int enabled);
int wlan_getShortRetryLimit(int index, u_int *limit);
int wlan_setShortRetryLimit(int index, u_int limit);
int wlan_getLongRetryLimit(int index, u_int *limit);
int wlan_setLongRetryLimit(int index, u_int limit);
int wlan_getHTMode(int index, int *enabled);
int wlan_setHTMode(int index, int enabled);
int wlan_getNProtection(int index, int *enabled);
int wlan_setNProtection(int index, int enabled);
int wlan_getSideBand(int index, int *side_band);
int wlan_setSideBand(int index, int side_band);
int wlan_getHTRDG(int index, int *enabled);
int wlan_setHTRDG(int index, int enabled);
int wlan_getBssIsolate(int index, int *enabled);
int wlan_setBssIsolate(int index, int enabled);
int wlan_getStationIsolate(int index, int *enabled);
int wlan_setStationIsolate(int index, int enabled);
int wlan_getIGMPSnooping(int index, int *enabled);  // 0 or 1
int wlan_setIGMPSnooping(int index, int enabled);
int wlan_getBlockDFSinACS(int index, int *enabled);
int wlan_setBlockDFSinACS(int index, int enabled);
int wlan_getMaxStationNum(int index, int *stations);
int wlan_setMaxStationNum(int index, int stations);
int wlan_getImplicitBeamformingEnable(int index, int *enabled);
int wlan_setImplicitBeamformingEnable(int index, int enabled);  // -1 for every index but 0
int wlan_getStaAssocRssiThresh(int index, int *rssi);           // any index
int wlan_setStaAssocRssiThresh(int index, int rssi);
int wlan_getBssWeight(int index, int *weight);  // any index
int wlan_setBssWeight(int index, int weight);
