// Factory defaults: the Wi-Fi settings of a radio, or of the whole device, back to what the board's other processor
// keeps for them.
//
// Touches /tmp/wifi_defaults.dat (read), the store file (the one place where the server writes it itself) under its
// lock, the WPS files, /nvram/5gcapabletable and /nvram/wlanlog (deleted only), the soft-block daemon and the device's
// statistics library, and runs `wps_gpio`, `cfg -c` and `rm`. Service thread.
//
// The defaults file has lines of at most 511 characters: settings as the store has them, in sections between markers.
// A line with "SETTING_DELIMETER=50_RADIO" (or 24_RADIO) and "_START" begins the section of that radio, one with the
// same text and "_STOP" ends it; the end of the file does so, too.
#pragma once

// Restores one radio's settings or, with the whole file, all of them: 0 for 5 GHz, 1 for 2.4 GHz, 2 for all. One
// radio's are appended, and come into force when the driver's tool settles the store; all of them overwrite the store
// from its first line on. In each case the soft-block lists, the Wi-Fi statistics and the WPS files of all VAPs go.
//
// Returns 0, or -1: another scope, nothing was done; no defaults file (lists and statistics are cleared by then) or no
// store, which keeps what it has. 0 also when the store takes no more or the defaults cannot be read to their end;
// either is said on standard error.
int wlan_setRestoreDefaults(int scope);
