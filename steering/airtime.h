// Airtime fairness: the switch of each radio.
//
// Touches the store. Service thread.
#pragma once

// Only VAP 1 (for the 2.4 GHz radio) and VAP 9 (for the 5 GHz radio) are accepted; every other index: -1, nothing is
// read or written. An absent key: the output as it was, -1.
int wlan_getAirtimeEnable(int index, int *enabled);
int wlan_setAirtimeEnable(int index, int enabled);
