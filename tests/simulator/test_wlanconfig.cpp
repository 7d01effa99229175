// wlanconfig: the table of an interface's stations, and the airtime of one of them.
#include <algorithm>
#include <string>

#include "tests/simulator/platform.h"

namespace {

// ath0 has two stations and one that has not come yet, ath1 has none, ath2 is not up, ath8 has one.
class Wlanconfig : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        write_file(GATEWAY_SCENARIO,
                   SMALL_SCENARIO +
                       "radio 1 band=5 mac=00:03:7F:10:00:04\n"
                       "channel 1 36 frequency=5180 flags=0\n"
                       "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                       "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                       "vap 9 radio=1 bssid=00:03:7F:10:00:05 enable=1\n"
                       "station 1 mac=28:6A:ba:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117 packets=2100 "
                       "airtime=310000 capabilities=QoS/HT\n"
                       "station 1 mac=28:6A:BA:4C:10:02 ip=192.168.0.21 rssi=1 tx_rate=1 rx_rate=1 from=86000\n"
                       "station 1 mac=F0:D1:A9:27:33:02 ip=192.168.0.21 rssi=-7 tx_rate=65 rx_rate=52 "
                       "airtime=5+4200 packets=0+100000\n"
                       "station 9 mac=3C:15:C2:E0:44:03 ip=192.168.0.22 rssi=51 tx_rate=866 rx_rate=780 "
                       "airtime=18446744073709551615+1099511627776\n");
        set_store("AP_ENABLE_2=1");
        set_store("AP_PRIMARY_CH_2=6");
        set_store("AP_PRIMARY_CH=36");
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }
};

const std::string HEADER = "ADDR              AID CHAN TXRATE RXRATE RSSI   PACKETS ASSOCTIME HTCAPS\n";

std::string list_of(const std::string &interface) {
    outcome shown = run({"wlanconfig", interface, "list", "sta"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "");
    return shown.output;
}

// How the list's reader counts the stations: the line ends from the seventh character behind the word's beginning on.
long counted(const std::string &text) {
    size_t place = text.find("HTCAPS");
    if (place == std::string::npos)
        return 0;
    return std::count(text.begin() + static_cast<long>(place) + 7, text.end(), '\n');
}

// Columns that move replaced: nothing in this scenario's first station moves but the seconds of its association.
std::string without_seconds(std::string text) {
    std::string line_end = " QoS/HT\n";
    size_t end = text.find(line_end);
    if (end != std::string::npos)
        text.replace(end - 9, 9, "  SECONDS");
    return text;
}

TEST_F(Wlanconfig, ListsAHeaderAndALineAStationWithItsAddressInLowerCaseFirst) {
    std::string list = list_of("ath0");
    EXPECT_TRUE(without_seconds(list).starts_with(
        HEADER + "28:6a:ba:4c:10:01   1    6   130M   117M   42      2100   SECONDS QoS/HT\n" +
        "f0:d1:a9:27:33:02   3    6    65M    52M   -7 "))
        << list;
    EXPECT_TRUE(list.ends_with(" -\n"));
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 3);
}

TEST_F(Wlanconfig, ItsReaderCountsTheStations) {
    EXPECT_EQ(counted(list_of("ath0")), 2);
    EXPECT_EQ(counted(list_of("ath8")), 1);
    EXPECT_EQ(counted(list_of("ath1")), 0);
}

TEST_F(Wlanconfig, AnInterfaceWithoutStationsHasNoHeaderEither) {
    EXPECT_EQ(list_of("ath1"), "");
}

TEST_F(Wlanconfig, TheWordStaMayBeLeftOut) {
    outcome shown = run({"wlanconfig", "ath8", "list"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_TRUE(shown.output.starts_with(HEADER + "3c:15:c2:e0:44:03   1   36   866M   780M   51 ")) << shown.output;
    EXPECT_EQ(counted(shown.output), 1);
}

TEST_F(Wlanconfig, StationsComeAndGo) {
    add_to_scenario("station 2 mac=02:00:00:00:00:01 ip=192.168.0.9 rssi=1 tx_rate=1 rx_rate=1 from=0.2 until=0.6\n");
    run({"apup"});
    run({"fast_down.sh"});
    run({"apup"});
    EXPECT_EQ(counted(list_of("ath1")), 0);
    EXPECT_TRUE(eventually([] { return counted(list_of("ath1")) == 1; }));
    EXPECT_TRUE(eventually([] { return counted(list_of("ath1")) == 0; }));
}

TEST_F(Wlanconfig, PacketsAndTheSecondsOfTheAssociationMove) {
    std::string list = list_of("ath0");
    EXPECT_TRUE(eventually([&] { return list_of("ath0") != list; }));
    // Since the driver came up, which is some seconds ago at most.
    size_t end = list.find(" QoS/HT");
    EXPECT_LT(std::stoi(list.substr(end - 9, 9)), 60);
}

TEST_F(Wlanconfig, AsManyStationsAsTheDriverCountsAreListed) {
    std::string items;
    for (int i = 100; i < 227; i++)
        items += "station 2 mac=02:00:00:00:0" + std::to_string(i / 100) + ":" +
                 std::to_string(i % 100 + 100).substr(1) + " ip=192.168.0.9 rssi=1 tx_rate=1 rx_rate=1\n";
    add_to_scenario(items);
    std::string list = list_of("ath1");
    EXPECT_EQ(counted(list), 127);
    EXPECT_NE(list.find("\n02:00:00:00:02:26 127    6     1M     1M    1         0 "), std::string::npos) << list;
}

// Airtime

// What the reader of an answer takes from it: the first number, and the next one behind a comma.
std::pair<int, int> numbers_in(const std::string &text) {
    int short_average = -1, total = -1;
    // The reader's own pattern.
    // NOLINTNEXTLINE(cert-err34-c)
    sscanf(text.c_str(), "%*[^0123456789]%d, %*[^0123456789]%d", &short_average, &total);
    return {short_average, total};
}

TEST_F(Wlanconfig, SaysWhatAStationHasHadOfTheAirtime) {
    outcome said = run({"wlanconfig", "ath0", "atfstat", "286aba4c1001"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.output, "short average 0, total airtime 310000\n");
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(numbers_in(said.output), std::make_pair(0, 310000));
    // Letters of either case.
    EXPECT_EQ(run({"wlanconfig", "ath0", "atfstat", "286ABA4c1001"}).output, said.output);
}

TEST_F(Wlanconfig, TheShortAverageIsTheAirtimeOfASecondAndTheTotalMoves) {
    auto first = numbers_in(run({"wlanconfig", "ath0", "atfstat", "f0d1a9273302"}).output);
    EXPECT_EQ(first.first, 4200);
    EXPECT_GE(first.second, 5);
    EXPECT_LT(first.second, 60 * 4200);
    EXPECT_TRUE(eventually([&] {
        return numbers_in(run({"wlanconfig", "ath0", "atfstat", "f0d1a9273302"}).output).second > first.second;
    }));
}

TEST_F(Wlanconfig, AShortAverageHas32BitsAndATotal64) {
    std::string said = run({"wlanconfig", "ath8", "atfstat", "3c15c2e04403"}).output;
    // 2^40 a second, of which the low half is told.
    EXPECT_TRUE(said.starts_with("short average 0, total airtime ")) << said;
}

TEST_F(Wlanconfig, AStationThatIsNotThereIsRefusedWithoutADigit) {
    // One that has not come, one of another interface, one of nowhere.
    for (const std::string mac : {"286aba4c1002", "3c15c2e04403", "000000000000"}) {
        outcome refused = run({"wlanconfig", "ath0", "atfstat", mac});
        EXPECT_EQ(refused.status, 1) << mac;
        EXPECT_EQ(refused.output, "") << mac;
        EXPECT_EQ(refused.errors, "wlanconfig: no such station\n");
        EXPECT_EQ(numbers_in(refused.errors), std::make_pair(-1, -1));
    }
}

// What is refused

TEST_F(Wlanconfig, AnInterfaceThatIsNotUpIsRefused) {
    for (const std::string interface : {"ath2", "wifi0", "ath16", "eth0", ""}) {
        for (const lines &words : {lines{"list"}, lines{"list", "sta"}, lines{"atfstat", "286aba4c1001"}}) {
            lines whole = {"wlanconfig", interface};
            whole.insert(whole.end(), words.begin(), words.end());
            outcome refused = run(whole);
            EXPECT_EQ(refused.status, 1) << interface;
            EXPECT_EQ(refused.output, "") << interface;
            EXPECT_EQ(refused.errors, "wlanconfig: " + interface + ": No such device\n");
        }
    }
}

TEST_F(Wlanconfig, RefusesBadUsage) {
    for (const lines &words :
         {lines{"wlanconfig"}, lines{"wlanconfig", "ath0"}, lines{"wlanconfig", "ath0", "fly"},
          lines{"wlanconfig", "ath0", "list", "ap"}, lines{"wlanconfig", "ath0", "list", "sta", "now"},
          lines{"wlanconfig", "ath0", "atfstat"}, lines{"wlanconfig", "ath0", "atfstat", "28:6A:ba:4C:10:01"},
          lines{"wlanconfig", "ath0", "atfstat", "286aba4c100"}, lines{"wlanconfig", "ath0", "atfstat", "286aba4c100g"},
          lines{"wlanconfig", "ath0", "atfstat", "286aba4c10012"},
          lines{"wlanconfig", "ath0", "atfstat", "286aba4c1001", "now"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_EQ(refused.output, "") << words.back();
        EXPECT_TRUE(refused.errors.starts_with("usage: wlanconfig INTERFACE list [sta] | INTERFACE atfstat MAC\n"));
    }
}

// Faults

TEST_F(Wlanconfig, CanMisspellItsMarker) {
    for (const lines &value : {lines{"nomarkers"}, lines{"nomarkers", "1"}}) {
        lines words = {"fault", "wlanconfig"};
        words.insert(words.end(), value.begin(), value.end());
        EXPECT_EQ(run(words).status, 0);
        std::string list = list_of("ath8");
        EXPECT_TRUE(
            list.starts_with("ADDR              AID CHAN TXRATE RXRATE RSSI   PACKETS ASSOCTIME THCAPS\n3c:15:"))
            << list;
        EXPECT_EQ(counted(list), 0);
    }
    EXPECT_EQ(run({"wlanconfig", "ath2", "list"}).status, 1);
    EXPECT_EQ(run({"wlanconfig", "ath0", "atfstat", "286aba4c1001"}).output, "short average 0, total airtime 310000\n");
}

TEST_F(Wlanconfig, ObeysTheFaultsOfAllTools) {
    run({"fault", "wlanconfig", "silent"});
    EXPECT_EQ(list_of("ath0"), "");
    run({"fault", "wlanconfig", "garbage"});
    EXPECT_EQ(counted(list_of("ath0")), 0);
    EXPECT_GT(list_of("ath0").size(), 1000U);
    run({"fault", "wlanconfig", "missing"});
    EXPECT_EQ(run({"wlanconfig", "ath0", "list"}).status, 127);
}

}  // namespace
