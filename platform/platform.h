// What the device's own shared libraries offer. On a gateway the real ones are linked; elsewhere the stand-ins of
// this folder, which write to the system log.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Sends a lifecycle notice to the device's event system. length is the text's length without its NUL.
int send_zubra_event(int type, int level, int flags, const char *text, int length);

// Writes one line to the device's system log.
int send_zubra_syslog(const char *line);

// Forgets the collected Wi-Fi statistics, as part of a return to factory settings.
void wlan_clearWiFiStatisticsOnFactory(void);

#ifdef __cplusplus
}
#endif
