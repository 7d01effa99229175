// Moving stations without a daemon: an announced channel switch, and the time after which an idle station is dropped.
//
// Touches the store (AP_INACT) and runs `iwpriv`. Service thread only.
//
// Every operation takes the VAP index as the client sent it and returns 0 or -1.
#pragma once

#include <sys/types.h>

// Has the driver announce the switch to the stations and make it. Channel, count and width go to the driver as they
// are, type goes nowhere. The configured channel is the caller's to set. Any index is taken; always 0.
int wlan_setChannelSwitch(int index, u_int type, u_int channel, u_int count, u_int width);

// Seconds without traffic after which a station is dropped. -1 for a negative index and, reading, when none is stored;
// seconds then stays as it was. A set takes effect at once.
int wlan_getIdleTimeout(int index, u_int *seconds);
int wlan_setIdleTimeout(int index, int seconds);
