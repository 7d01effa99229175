// The authenticator (hostapd), which reads its configuration only when it starts.
//
// Touches the authenticator's process and /tmp/conf_filename. Service thread.
#pragma once

// Left by the driver's scripts: what to start the authenticator with.
constexpr const char CONFIGURATION_NAME_FILE[] = "/tmp/conf_filename";

// Ends the running authenticator, the first one listed, and starts one with the configuration named in
// CONFIGURATION_NAME_FILE. Without a running one it is only started; without that name it is only ended. The old one is
// not waited for. Nothing is reported to the caller. Waits until the new one is in the background.
void wps_hostapd_restart(void);
