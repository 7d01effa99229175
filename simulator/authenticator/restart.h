// Ending and starting the authenticator: what the driver's scripts do with it.
//
// Touches the processes of the gateway, the list of the authenticator's files, its pid file and its sockets. Used by
// apup and fast_down.sh, and by the launcher for a gateway whose driver is up from the beginning.
#pragma once

#include "simulator/driver/driver_state.h"

// Ends every process called hostapd and waits until it is gone, by force when it takes long.
void authenticator_end(void);

// Writes the list of the WPS files of those VAPs that are up and that the store protects by WPA, and starts the
// authenticator with them, its words in its log. Returns its exit status: 0 when it runs, or when there is nothing for
// it to do; -1 with errno when it could not be started.
int authenticator_start(const driver_state *state, const char *store_path);

// Removes what starting it, and an authenticator that was ended by force, left behind.
void authenticator_clear_up(void);
