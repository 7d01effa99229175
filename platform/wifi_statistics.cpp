// Stand-in for the Wi-Fi statistics library: it has no statistics to forget and says so in the system log.
#include "platform/platform.h"

#include <syslog.h>

void wlan_clearWiFiStatisticsOnFactory(void) {
    syslog(LOG_INFO, "Wi-Fi statistics cleared");
}
