// The device's statistics library in the unit tests: a wlan_clearWiFiStatisticsOnFactory in front of the library's, for
// the whole program, that counts its calls.
#pragma once

struct fake_statistics_library {
    int clearings;
    void (*on_clearing)();  // looks around at that moment, when not null
};
extern fake_statistics_library statistics_library;

// Nothing cleared, nobody looks.
void reset_statistics_library();
