// The driver's commands that ask for the stations of a VAP: their number and their table.
#include <set>
#include <string>
#include <utility>

#include "simulator/driver/driver_state.h"
#include "tests/simulator/driver_answers.h"

namespace {

const std::string PHONE =
    "station 1 mac=28:6a:BA:4C:10:01 ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117 packets=2105 airtime=3 "
    "tokens=4000000000 act_tokens=640 unused=220 capabilities=QoS/HT\n";
const std::string OTHER_VAP =
    "station 9 mac=3C:15:C2:E0:44:03 ip=192.168.0.22 rssi=-7 tx_rate=780 rx_rate=866 packets=7\n";
const std::string GUEST =
    "station 1 mac=F0:D1:A9:27:33:02 ip=192.168.0.121 rssi=27 tx_rate=65 rx_rate=52 packets=100+10 from=1000 "
    "until=3000\n";

// As if the VAP (0 to 15) had come up so many seconds ago.
void put_start_before(int vap, double seconds) {
    driver_state state;
    driver_state_read(&state);
    state.vaps[vap].since = driver_clock() - seconds;
    ASSERT_EQ(driver_state_write(&state), 0);
}

class DriverStations : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        set_store("AP_ENABLE_2=1");
        set_store("AP_CHMODE_2=11NGHT20");
        set_store("AP_CHMODE=11ACVHT80PLUSMINUS");
        set_stations(PHONE + OTHER_VAP + GUEST);
        ASSERT_EQ(run({"apup"}).status, 0);
        // It may have been up before this test.
        put_start_before(0, 0);
        mark = journal_mark();
    }

    void set_stations(const std::string &items) {
        write_file(GATEWAY_SCENARIO,
                   "radio 0 band=2.4 mac=00:03:7F:10:00:00\n"
                   "air 0 noise=-91\n"
                   "radio 1 band=5 mac=00:03:7F:10:00:04\n"
                   "vap 1 radio=0 bssid=00:03:7F:10:00:01\n"
                   "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                   "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                   "vap 9 radio=1 bssid=00:03:7F:10:00:05\n" +
                       items);
    }
};

// The number as the request gives it, with what stands above it.
std::string count(const std::string &interface) {
    return driver_command(interface + " command=41 value=4711").words;
}

std::string macs(const std::string &interface) {
    std::string all;
    for (const record &station : stations(interface).records)
        all += text_at(station, 0, 18) + " ";
    return all;
}

std::string many_stations(int number) {
    std::string items;
    for (int i = 0; i < number; i++) {
        char item[128];
        snprintf(item, sizeof item, "station 1 mac=00:11:22:33:%02X:%02X ip=10.0.0.1 rssi=1 tx_rate=1 rx_rate=1\n",
                 i / 256, i % 256);
        items += item;
    }
    return items;
}

// The number

TEST_F(DriverStations, TheNumberHasTheLowestSevenBitsBelowOneThatIsAlwaysSet) {
    EXPECT_EQ(count("ath0"), "41 " + std::to_string(0x80 | 1) + " kept");
    EXPECT_EQ(count("ath1"), "41 " + std::to_string(0x80 | 0) + " kept");
    EXPECT_EQ(journal(), (lines{"ioctl ath0 0x89fc.41 12 = 0", "ioctl ath1 0x89fc.41 12 = 0"}));
}

TEST_F(DriverStations, OneHundredAndTwentySevenAreToldAndNoMore) {
    set_stations(many_stations(127));
    EXPECT_EQ(count("ath0"), "41 255 kept");
    EXPECT_EQ(stations("ath0").records.size(), 127u);
    set_stations(many_stations(130));
    EXPECT_EQ(count("ath0"), "41 255 kept");
    driver_answer table = stations("ath0");
    ASSERT_EQ(table.records.size(), 127u);
    EXPECT_EQ(text_at(table.records[126], 0, 18), "00:11:22:33:00:7E");
}

TEST_F(DriverStations, StationsComeAndGo) {
    EXPECT_EQ(macs("ath0"), "28:6a:BA:4C:10:01 ");
    put_start_before(0, 900);
    EXPECT_EQ(macs("ath0"), "28:6a:BA:4C:10:01 ");
    put_start_before(0, 1000);
    EXPECT_EQ(macs("ath0"), "28:6a:BA:4C:10:01 F0:D1:A9:27:33:02 ");
    EXPECT_EQ(count("ath0"), "41 130 kept");
    put_start_before(0, 3000);
    EXPECT_EQ(macs("ath0"), "28:6a:BA:4C:10:01 ");
    EXPECT_EQ(count("ath0"), "41 129 kept");
}

// The record

TEST_F(DriverStations, AStationIsARecordOf236Bytes) {
    put_start_before(0, 500);
    record expected(STATION_SIZE);
    put(&expected, 0, "28:6a:BA:4C:10:01");
    put(&expected, 18, "192.168.0.20");
    put(&expected, 82, "QoS/HT");
    put(&expected, 127, "11NGHT20");
    put_word(&expected, 148, 1);
    put_word(&expected, 152, 130);
    put_word(&expected, 156, 2105);
    put_word(&expected, 160, 130);
    put_word(&expected, 164, 42);
    put_word(&expected, 168, 210);
    put_word(&expected, 172, 1895);
    expected[176] = 1;
    put_word(&expected, 180, 117);
    put_word(&expected, 184, 4000000000);
    put_word(&expected, 188, 640);
    expected[192] = 0xFF;
    put_word(&expected, 196, static_cast<uint32_t>(-91));
    put(&expected, 204, "Home network");
    driver_answer table = stations("ath0");
    EXPECT_EQ(table.result, "0");
    EXPECT_EQ(table.words, "42 555 kept");
    ASSERT_EQ(table.records.size(), 1u);
    uint32_t seconds = word_at(table.records[0], 144);
    EXPECT_GE(seconds, 500u);
    EXPECT_LT(seconds, 600u);
    put_word(&expected, 144, seconds);
    EXPECT_EQ(table.records[0], expected);
}

TEST_F(DriverStations, AStationOfTheOtherRadioHasItsModeItsNoiseAndItsSsid) {
    set_store("AP_SSID_9=0123456789abcdef0123456789abcdef");
    record station = stations("ath8").records.at(0);
    // Texts are cut so that they end with a NUL.
    EXPECT_EQ(text_at(station, 127, 17), "11ACVHT80PLUSMIN");
    EXPECT_EQ(text_at(station, 204, 32), "0123456789abcdef0123456789abcde");
    EXPECT_EQ(static_cast<int32_t>(word_at(station, 196)), -95);
    EXPECT_EQ(static_cast<int32_t>(word_at(station, 164)), -7);
    EXPECT_EQ(word_at(station, 160), 866u);
    EXPECT_EQ(word_at(station, 152), 780u);
    EXPECT_EQ(text_at(station, 82, 45), "");
    EXPECT_EQ(text_at(station, 0, 18), "3C:15:C2:E0:44:03");
    EXPECT_EQ(station[176], 1);
    EXPECT_EQ(word_at(station, 200), 0u);
}

TEST_F(DriverStations, ItsCountersRunFromItsComing) {
    put_start_before(0, 1500);
    record guest = stations("ath0").records.at(1);
    uint32_t seconds = word_at(guest, 144), packets = word_at(guest, 156);
    EXPECT_GE(seconds, 500u);
    EXPECT_LT(seconds, 600u);
    EXPECT_GE(packets, 100 + 10 * seconds);
    EXPECT_LT(packets, 100 + 10 * (seconds + 1));
    EXPECT_EQ(word_at(guest, 168), packets / 10);
    EXPECT_EQ(word_at(guest, 172), packets - packets / 10);
    EXPECT_EQ(guest[176], 2);
}

TEST_F(DriverStations, AStationKeepsItsNumberWhenAnotherHasGone) {
    set_stations("station 1 mac=00:00:00:00:00:01 ip=10.0.0.1 rssi=1 tx_rate=1 rx_rate=1 until=1000\n" + PHONE);
    EXPECT_EQ(stations("ath0").records.at(1)[176], 2);
    put_start_before(0, 1001);
    EXPECT_EQ(stations("ath0").records.at(0)[176], 2);
}

// The caller's buffer

TEST_F(DriverStations, ATableGoesAsFarAsTheCallersNumberSays) {
    put_start_before(0, 1000);
    EXPECT_EQ(stations("ath0", 0).records.size(), 0u);
    driver_answer one = stations("ath0", 1);
    ASSERT_EQ(one.records.size(), 1u);
    EXPECT_EQ(one.words, "42 1 kept");
    driver_answer all = stations("ath0", 4294967295);
    EXPECT_EQ(all.result, "0");
    ASSERT_EQ(all.records.size(), 2u);
}

TEST_F(DriverStations, AnAddressThatIsNoneOfTheCallersIsAFault) {
    for (const char *where : {"address=0x20000000", "address=0x20021000", "address=0x20000ff0", "room=235"})
        EXPECT_EQ(driver_command(std::string("ath0 command=42 value=1 ") + where).result, "-1 EFAULT") << where;
    EXPECT_EQ(driver_command("ath0 command=42 value=9 room=236 record=236").records.at(0).size(), STATION_SIZE);
    for (const char *command : {"41", "42"})
        EXPECT_EQ(driver_command(std::string("ath0 pointer=0x10 command=") + command).result, "-1 EFAULT") << command;
}

// What is refused

TEST_F(DriverStations, ARequestOfAnotherLengthIsRefused) {
    for (const char *length : {"0", "11", "13"})
        EXPECT_EQ(driver_command(std::string("ath0 command=41 length=") + length).result, "-1 EINVAL") << length;
}

TEST_F(DriverStations, OnlyVapsThatAreUpHaveStations) {
    for (const char *command : {"41", "42"}) {
        EXPECT_EQ(driver_command(std::string("wifi0 command=") + command).result, "-1 EOPNOTSUPP") << command;
        EXPECT_EQ(driver_command(std::string("ath2 command=") + command).result, "-1 ENODEV") << command;
    }
    run({"fast_down.sh"});
    EXPECT_EQ(driver_command("ath0 command=41").result, "-1 ENODEV");
    EXPECT_EQ(driver_command("wifi0 command=41").result, "-1 ENODEV");
}

TEST_F(DriverStations, AScenarioThatMakesNoSenseIsAnError) {
    write_file(GATEWAY_SCENARIO, "nonsense\n");
    EXPECT_EQ(driver_command("ath0 command=41").result, "-1 EIO");
    EXPECT_EQ(driver_command("ath0 command=42 value=1").result, "-1 EIO");
}

// Faults

TEST_F(DriverStations, TheDriverCanLieAboutTheNumberOfStations) {
    for (const auto &[told, word] :
         {std::pair{"0", "0"}, {"127", "127"}, {"300", "300"}, {"-1", "4294967295"}, {"-2147483648", "2147483648"}}) {
        ASSERT_EQ(run({"fault", "station_count", told}).status, 0) << told;
        EXPECT_EQ(count("ath0"), "41 " + std::string(word) + " kept");
    }
    run({"fault", "station_count"});
    EXPECT_EQ(count("ath0"), "41 127 kept");
    run({"fault", "station_count", "off"});
    EXPECT_EQ(count("ath0"), "41 129 kept");
}

TEST_F(DriverStations, ADriverThatTellsOfFewerStationsStillHasThemAll) {
    put_start_before(0, 1000);
    for (const char *told : {"0", "1", "-1"}) {
        run({"fault", "station_count", told});
        EXPECT_EQ(stations("ath0").records.size(), 2u) << told;
    }
}

TEST_F(DriverStations, ADriverThatTellsOfMoreStationsRepeatsThemWithOtherAddresses) {
    put_start_before(0, 1000);
    run({"fault", "station_count", "127"});
    driver_answer many = stations("ath0", 127);
    ASSERT_EQ(many.records.size(), 127u);
    EXPECT_EQ(text_at(many.records[0], 0, 18), "28:6a:BA:4C:10:01");
    EXPECT_EQ(text_at(many.records[1], 0, 18), "F0:D1:A9:27:33:02");
    EXPECT_EQ(text_at(many.records[2], 0, 18), "2A:6a:BA:4C:00:02");
    EXPECT_EQ(text_at(many.records[125], 0, 18), "F2:D1:A9:27:00:7D");
    EXPECT_EQ(text_at(many.records[125], 18, 64), "192.168.0.121");
    std::set<std::string> different;
    for (const record &station : many.records)
        different.insert(text_at(station, 0, 18));
    EXPECT_EQ(different.size(), 127u);
    // Place 299 does not fit into one octet.
    EXPECT_EQ(text_at(stations("ath0", 300).records.at(299), 0, 18), "F2:D1:A9:27:01:2B");
    EXPECT_EQ(stations("ath0", 1).records.size(), 1u);
    EXPECT_EQ(stations("ath1", 127).records.size(), 0u);
}

TEST_F(DriverStations, TheDriverCanChangeTheNumberOfTheTable) {
    run({"fault", "table_count"});
    EXPECT_EQ(stations("ath0", 1).words, "42 255 kept");
    run({"fault", "table_count", "-3"});
    driver_answer table = stations("ath0", 1);
    EXPECT_EQ(table.words, "42 4294967293 kept");
    EXPECT_EQ(table.records.size(), 1u);
    // No other command's.
    EXPECT_EQ(count("ath0"), "41 129 kept");
    EXPECT_EQ(networks("ath0", 7).words, "40 7 kept");
    // What failed is left as it was.
    EXPECT_EQ(driver_command("ath0 command=42 value=1 room=1").words, "42 1 kept");
    run({"fault", "table_count", "off"});
    EXPECT_EQ(stations("ath0", 1).words, "42 1 kept");
}

TEST_F(DriverStations, TextsCanComeWithoutTheirNul) {
    run({"fault", "texts", "unterminated"});
    record station = stations("ath0").records.at(0);
    EXPECT_EQ(text_at(station, 0, 18), "28:6a:BA:4C:10:01x");
    EXPECT_EQ(text_at(station, 18, 64), "192.168.0.20" + std::string(52, 'x'));
    EXPECT_EQ(text_at(station, 82, 45), "QoS/HT" + std::string(39, 'x'));
    EXPECT_EQ(text_at(station, 127, 17), "11NGHT20xxxxxxxxx");
    EXPECT_EQ(text_at(station, 204, 32), "Home network" + std::string(20, 'x'));
    EXPECT_EQ(word_at(station, 148), 1u);
    EXPECT_EQ(word_at(station, 200), 0u);
    run({"fault", "station_count", "2"});
    EXPECT_EQ(text_at(stations("ath0", 2).records.at(1), 0, 18), "2A:6a:BA:4C:00:01x");
}

}  // namespace
