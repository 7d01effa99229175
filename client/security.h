// The security of a VAP in one word.
#pragma once

#include "client/gather.h"

// Adds the member security: open, WEP, WPA-PSK, WPA2-PSK, WPA/WPA2-PSK, WPA-Enterprise, WPA2-Enterprise or
// WPA/WPA2-Enterprise; WPA, WPA2 or WPA/WPA2 when the gateway does not know who checks the stations; null when it knows
// nothing. Sends one call, or up to three where the first does not tell.
void add_security(gathering *from, value *to, int index);
