// The device's statistics library in the unit tests. See the header.
#include "tests/support/statistics_library.h"

#include "platform/platform.h"

fake_statistics_library statistics_library;

void reset_statistics_library() {
    statistics_library = {};
}

void wlan_clearWiFiStatisticsOnFactory(void) {
    statistics_library.clearings++;
    if (statistics_library.on_clearing) {
        statistics_library.on_clearing();
    }
}
