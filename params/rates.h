// Rate sets and possible channels as the driver reports them; SSID advertisement, radio switch, transmit power and
// automatic rate.
//
// Touches the store and runs `iwconfig` and `iwlist`. Service thread; wlan_getRadioEnabled also on lifecycle workers.
//
// Every operation but powerToPerCent takes the VAP index as the client sent it (1 to 16; VAP i drives interface
// ath(i-1)) and returns 0 or -1. Index checks differ from operation to operation and are part of the contract. A text
// output has `size` bytes, is always terminated and is cut to fit; it stays as it was where nothing else is said.
#pragma once

#include <stddef.h>
#include <sys/types.h>

// Rates in Mbit/s, separated by commas. -1 and an empty text for a refused index (below 1; for the operational rates
// below 0), -1 when iwconfig cannot be run.
int wlan_getBasicDataTransmitRates(int index, char *rates, size_t size);        // 802.11a's for an unknown report
int wlan_getOperationalDataTransmitRates(int index, char *rates, size_t size);  // untouched for an unknown report
int wlan_setBasicDataTransmitRates(int index, const char *rates);               // accepted, no effect
int wlan_setOperationalDataTransmitRates(int index, const char *rates);         // accepted, no effect
int wlan_getPossibleDataTransmitRates(int index, char *rates, size_t size);     // always the same

int wlan_getSsidAdvertisementEnabled(int index, int *enabled);  // 1 when the store does not say
int wlan_setSsidAdvertisementEnabled(int index, int enabled);

int wlan_getRadioEnabled(int index, int *enabled);
int wlan_setRadioEnabled(int index, int enabled);

int wlan_getTransmitPowerSupported(int index, char *levels, size_t size);  // the levels in percent, always the same
int wlan_getTransmitPower(int index, u_int *power);                        // 0 for a negative index, which succeeds
int wlan_setTransmitPower(int index, u_int power);  // a negative index succeeds and writes nothing

// The supported level (12, 25, 50, 75 or 100 percent) for a power in dBm; 100 for not-a-number. context is ignored.
int powerToPerCent(void *context, double power);

int wlan_getAutoRateFallbackEnable(int index, int *enabled);
int wlan_setAutoRateFallbackEnable(int index, int enabled);

// The channels 1 to 200 that iwlist lists, ascending, runs of neighbours as "FIRST-LAST", separated by commas. A single
// run leaves the output untouched, and so does a report without any channel. Empty when iwlist prints nothing; -1 and
// four zero bytes for an index below 1; -1 when iwlist cannot be run.
int wlan_getPossibleChannels(int index, char *channels, size_t size);
