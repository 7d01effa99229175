// apstats: an interface's counters; and the fault that misspells the markers of a tool's output.
#include <string>

#include "tests/simulator/platform.h"

namespace {

// ath0 has counters that stand still and two stations, ath1 counters that move, ath2 is not up, ath8 has no counters.
class Apstats : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        write_file(GATEWAY_SCENARIO,
                   SMALL_SCENARIO +
                       "radio 1 band=5 mac=00:03:7F:10:00:04\n"
                       "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                       "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                       "vap 9 radio=1 bssid=00:03:7F:10:00:05 enable=1\n"
                       "counters 1 rx_packets=7654321 tx_packets=8000005 rx_bytes=9000000000 tx_bytes=12345\n"
                       "counters 2 rx_packets=0+1000000 tx_packets=0+1000 rx_bytes=0+1 tx_bytes=0+1\n"
                       "station 1 mac=28:6A:ba:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117 packets=2100 "
                       "airtime=310000\n"
                       "station 1 mac=F0:D1:A9:27:33:02 ip=192.168.0.21 rssi=-7 tx_rate=65 rx_rate=52 packets=11 "
                       "airtime=7\n"
                       "station 1 mac=F0:D1:A9:27:33:03 ip=192.168.0.21 rssi=-7 tx_rate=65 rx_rate=52 from=86000\n");
        set_store("AP_ENABLE_2=1");
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }
};

// What the counters' readers look for, 33 characters each.
const std::string RX_ERRORS = "Rx errors                       =";
const std::string TX_UNICAST = "Tx Unicast Data Packets         =";
const std::string TX_MULTICAST = "Tx Multi/Broadcast Data Packets =";

std::string stats_of(const std::string &interface) {
    outcome shown = run({"apstats", "-v", "-i", interface});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "");
    return shown.output;
}

// The number behind a marker, up to the end of its line; -1 without the marker.
long behind(const std::string &text, const std::string &marker) {
    EXPECT_EQ(marker.size(), 33U);
    size_t place = text.find(marker);
    return place != std::string::npos ? atol(text.substr(place + 33, text.find('\n', place) - place - 33).c_str()) : -1;
}

TEST_F(Apstats, PrintsTheCountersInOneColumn) {
    std::string shown = stats_of("ath0");
    EXPECT_TRUE(
        shown.starts_with("Counters of ath0:\n"
                          "Tx Data Packets                 = 8000005\n"
                          "Tx Data Bytes                   = 12345\n"
                          "Tx Unicast Data Packets         = 7000005\n"
                          "Tx Multi/Broadcast Data Packets = 1000000\n"
                          "Tx Data Packets to stations     = 2111\n"
                          "Rx Data Packets                 = 7654321\n"
                          "Rx Data Bytes                   = 9000000000\n"
                          "Rx errors                       = 7654\n"
                          "Stations                        = 2\n"
                          "Average Tx Rate (Mb/s)          = 97\n"
                          "Average Rx Rate (Mb/s)          = 84\n"
                          "Airtime of stations (us)        = 310007\n"
                          "Seconds since it came up        = "))
        << shown;
    EXPECT_TRUE(shown.ends_with("\n"));
}

TEST_F(Apstats, ItsReadersFindTheMarkersAndWhatStandsBehindThem) {
    std::string shown = stats_of("ath0");
    EXPECT_EQ(behind(shown, RX_ERRORS), 7654);
    EXPECT_EQ(behind(shown, TX_UNICAST), 7000005);
    EXPECT_EQ(behind(shown, TX_MULTICAST), 1000000);
}

TEST_F(Apstats, TheCountersMove) {
    std::string first = stats_of("ath1");
    EXPECT_TRUE(eventually([&] {
        std::string now = stats_of("ath1");
        return behind(now, RX_ERRORS) > behind(first, RX_ERRORS) &&
               behind(now, TX_UNICAST) > behind(first, TX_UNICAST) &&
               behind(now, TX_MULTICAST) > behind(first, TX_MULTICAST);
    }));
}

TEST_F(Apstats, AnInterfaceWithoutCountersAndStationsHasZeros) {
    std::string shown = stats_of("ath8");
    EXPECT_EQ(behind(shown, RX_ERRORS), 0);
    EXPECT_EQ(behind(shown, TX_UNICAST), 0);
    EXPECT_EQ(behind(shown, TX_MULTICAST), 0);
    EXPECT_NE(shown.find("\nAverage Tx Rate (Mb/s)          = 0\n"), std::string::npos);
}

TEST_F(Apstats, AnInterfaceThatIsNotUpIsRefused) {
    for (const std::string interface : {"ath2", "wifi0", "ath16", "eth0", ""}) {
        outcome refused = run({"apstats", "-v", "-i", interface});
        EXPECT_EQ(refused.status, 1) << interface;
        EXPECT_EQ(refused.output, "") << interface;
        EXPECT_EQ(refused.errors, "apstats: " + interface + ": No such device\n");
    }
}

TEST_F(Apstats, RefusesBadUsage) {
    for (const lines &words : {lines{"apstats"}, lines{"apstats", "-v"}, lines{"apstats", "-i", "ath0"},
                               lines{"apstats", "-v", "-i"}, lines{"apstats", "-i", "-v", "ath0"},
                               lines{"apstats", "-v", "-a", "ath0"}, lines{"apstats", "-v", "-i", "ath0", "-x"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_EQ(refused.output, "") << words.back();
        EXPECT_EQ(refused.errors, "usage: apstats -v -i INTERFACE\n") << words.back();
    }
}

TEST_F(Apstats, ObeysTheFaultsOfAllTools) {
    run({"fault", "apstats", "silent"});
    EXPECT_EQ(stats_of("ath0"), "");
    run({"fault", "apstats", "missing"});
    EXPECT_EQ(run({"apstats", "-v", "-i", "ath0"}).status, 127);
}

// The fault of markers

TEST_F(Apstats, CanMisspellAllOfItsMarkers) {
    run({"fault", "apstats", "nomarkers"});
    std::string shown = stats_of("ath0");
    EXPECT_EQ(behind(shown, RX_ERRORS), -1);
    EXPECT_EQ(behind(shown, TX_UNICAST), -1);
    EXPECT_EQ(behind(shown, TX_MULTICAST), -1);
    EXPECT_NE(shown.find("\nxR errors                       = 7654\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find("\nxT Unicast Data Packets         = 7000005\nxT Multi/Broadcast Data Packets = 1000000\n"),
              std::string::npos);
    EXPECT_NE(shown.find("\nTx Data Packets                 = 8000005\n"), std::string::npos);
}

TEST_F(Apstats, CanMisspellOneOfItsMarkers) {
    const std::string *markers[] = {&RX_ERRORS, &TX_UNICAST, &TX_MULTICAST};
    for (int wrong = 1; wrong <= 3; wrong++) {
        run({"fault", "apstats", "nomarkers", std::to_string(wrong)});
        std::string shown = stats_of("ath0");
        for (int i = 1; i <= 3; i++)
            EXPECT_EQ(behind(shown, *markers[i - 1]) < 0, i == wrong) << i << " " << wrong;
    }
}

// How the counters of ifconfig are found: each from where the one before was.
int found_in_order(const std::string &text) {
    int found = 0;
    size_t place = 0;
    for (const char *marker : {"RX packets:", "TX packets:", "RX bytes:", "TX bytes:"}) {
        place = text.find(marker, place);
        if (place == std::string::npos)
            return found;
        found++;
    }
    return found;
}

TEST_F(Apstats, IfconfigCanMisspellItsMarkersToo) {
    std::string usual = run({"ifconfig", "ath0"}).output;
    EXPECT_EQ(found_in_order(usual), 4);
    run({"fault", "ifconfig", "nomarkers"});
    std::string shown = run({"ifconfig", "ath0"}).output;
    EXPECT_EQ(found_in_order(shown), 0);
    EXPECT_EQ(shown.size(), usual.size());
    EXPECT_NE(shown.find("\n          XR packets:7654321 errors:0"), std::string::npos) << shown;
    EXPECT_NE(shown.find("          XR bytes:9000000000 (8.4 GiB)  XT bytes:12345 (12.1 KiB)\n"), std::string::npos);
    for (int wrong = 1; wrong <= 4; wrong++) {
        run({"fault", "ifconfig", "nomarkers", std::to_string(wrong)});
        EXPECT_EQ(found_in_order(run({"ifconfig", "ath0"}).output), wrong - 1) << wrong;
    }
    EXPECT_EQ(run({"ifconfig", "ath2"}).status, 1);
    EXPECT_NE(run({"ifconfig", "ath2"}).errors, "");
}

TEST_F(Apstats, AMarkerThatAToolDoesNotHaveIsNoFault) {
    for (const lines &words : {lines{"fault", "apstats", "nomarkers", "0"}, lines{"fault", "apstats", "nomarkers", "4"},
                               lines{"fault", "apstats", "nomarkers", "11"},
                               lines{"fault", "apstats", "nomarkers", "-1"}, lines{"fault", "apstats", "nomarkers1"},
                               lines{"fault", "apstats", "nomarker"}, lines{"fault", "ifconfig", "nomarkers", "5"},
                               lines{"fault", "wlanconfig", "nomarkers", "2"}, lines{"fault", "iwconfig", "nomarkers"},
                               lines{"fault", "radstat", "nomarkers"}, lines{"fault", "airtime", "nomarkers"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_TRUE(refused.errors.ends_with(" is no value for " + words[1] + "\n")) << refused.errors;
    }
    EXPECT_EQ(run({"fault"}).output, "");
}

}  // namespace
