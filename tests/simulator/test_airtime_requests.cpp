// The driver's airtime requests: the table of a radio, and what a station has had.
#include <stdint.h>
#include <string.h>

#include <string>

#include "tests/simulator/platform.h"

namespace {

// Where things stand in the table, as its readers know it.
constexpr size_t TABLE_SIZE = 5824, ENTRIES = 4, ENTRY_SIZE = 88, ENTRY_COUNT = 66;

std::string bytes_of(const std::string &hexadecimal) {
    std::string bytes;
    std::string digits;
    for (char character : hexadecimal) {
        if (character != '\n')
            digits += character;
        if (digits.size() == 2) {
            bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
            digits.clear();
        }
    }
    return bytes;
}

// The driver's result in the first line, the record's bytes behind it.
struct answer {
    std::string result;
    std::string record;
};

answer ask(const std::string &arguments) {
    std::string output = probe("record " + arguments).output;
    size_t end = output.find('\n');
    return {output.substr(0, end), bytes_of(output.substr(end + 1))};
}

template <typename Number>
Number number_at(const std::string &record, size_t offset) {
    Number number = 0;
    EXPECT_LE(offset + sizeof number, record.size());
    memcpy(&number, record.data() + offset, sizeof number);
    return number;
}

std::string table_of(const std::string &interface) {
    answer got = ask(interface + " length=5824 begins=05ff");
    EXPECT_EQ(got.result, "0 ");
    // Every byte of it is written, none behind it.
    EXPECT_EQ(got.record.size(), TABLE_SIZE);
    got.record.resize(TABLE_SIZE);
    return got.record;
}

// The bytes of an entry as they must be.
std::string entry(const std::string &ssid, const std::string &mac, uint32_t value, bool station, bool active,
                  uint32_t configured, const std::string &group) {
    std::string bytes(ENTRY_SIZE, '\0');
    bytes.replace(0, ssid.size(), ssid);
    bytes.replace(33, 6, mac.empty() ? std::string(6, '\0') : bytes_of(mac));
    memcpy(&bytes[40], &value, sizeof value);
    bytes[44] = station ? 1 : 0;
    bytes[45] = active ? 1 : 0;
    memcpy(&bytes[48], &configured, sizeof configured);
    bytes.replace(52, group.size(), group);
    return bytes;
}

std::string head(const std::string &name, uint32_t share, const std::string &group = "") {
    return entry(name, "", share, false, false, share, group);
}

std::string station(const std::string &name, const std::string &mac, uint32_t value, const std::string &group = "") {
    return entry(name, mac, value, true, true, 0, group);
}

// A table as it must be, byte by byte.
void expect_table(const std::string &interface, const lines &entries, bool enabled = false, bool show_group = false) {
    std::string got = table_of(interface);
    std::string code("\x05\xff\0\0", 4);
    EXPECT_EQ(got.substr(0, 4), code);
    for (size_t i = 0; i < ENTRY_COUNT; i++) {
        std::string wanted = i < entries.size() ? entries[i] : std::string(ENTRY_SIZE, '\0');
        EXPECT_EQ(got.substr(ENTRIES + i * ENTRY_SIZE, ENTRY_SIZE), wanted) << interface << " entry " << i;
    }
    std::string end(12, '\0');
    end[0] = static_cast<char>(entries.size());
    end[2] = enabled ? 1 : 0;
    end[8] = show_group ? 1 : 0;
    EXPECT_EQ(got.substr(5812), end);
}

const std::string STATION_FIELDS = " ip=192.168.0.20 rssi=42 tx_rate=130 rx_rate=117 ";

// ath0, ath1 and ath2 are up on the first radio, ath8 on the second; ath3 is not up. ath0 and ath8 have a share.
class AirtimeRequests : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        scene = SMALL_SCENARIO +
                "radio 1 band=5 mac=00:03:7F:10:00:04\n"
                "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                "vap 3 radio=0 bssid=06:03:7F:10:00:01\n"
                "vap 4 radio=0 bssid=0A:03:7F:10:00:01\n"
                "vap 9 radio=1 bssid=00:03:7F:10:00:05 enable=1\n"
                "station 1 mac=28:6A:ba:4C:10:01" +
                STATION_FIELDS +
                "airtime=310000+4200 tokens=1000 act_tokens=640 unused=220\n"
                "station 1 mac=28:6A:BA:4C:10:02" +
                STATION_FIELDS +
                "\n"
                "station 1 mac=28:6A:BA:4C:10:03" +
                STATION_FIELDS +
                "from=86000\n"
                "station 2 mac=F0:D1:A9:27:33:02" +
                STATION_FIELDS +
                "\n"
                "station 9 mac=3C:15:C2:E0:44:03" +
                STATION_FIELDS +
                "airtime=18446744073709551600+4294967297 tokens=4294967295 act_tokens=4294967294 "
                "unused=4294967293\n";
        write_file(GATEWAY_SCENARIO, scene + "airtime 1 share=125\nairtime 9 share=1000\nairtime 4 share=90\n");
        for (const char *setting : {"AP_ENABLE_2=1", "AP_ENABLE_3=1", "AP_SSID=Home", "AP_SSID_2=Guests",
                                    "AP_SSID_3=Things", "AP_SSID_9=Fast"})
            set_store(setting);
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }

    // The shares of another test.
    void set_shares(const std::string &items) {
        write_file(GATEWAY_SCENARIO, scene + items);
    }

    std::string scene;
};

// The table

TEST_F(AirtimeRequests, ATableHasARowAnSsidAndAStationAndEndsWithTheOthers) {
    expect_table("ath0", {head("Home", 125), station("Home", "286aba4c1001", 62), station("Home", "286aba4c1002", 62),
                          head("Others", 875), station("Others", "f0d1a9273302", 875)});
    EXPECT_EQ(journal(), lines{"ioctl ath0 0x89fc 5824 = 0"});
}

TEST_F(AirtimeRequests, EveryInterfaceOfARadioHasTheSameTableAndTheOtherRadioAnother) {
    EXPECT_EQ(table_of("ath1"), table_of("ath0"));
    EXPECT_EQ(table_of("ath2"), table_of("ath0"));
    expect_table("ath8", {head("Fast", 1000), station("Fast", "3c15c2e04403", 1000), head("Others", 0)});
}

TEST_F(AirtimeRequests, ARadioWithoutSharesHasOthersOnly) {
    set_shares("");
    // 1000 tenths of a percent for three stations.
    expect_table("ath0", {head("Others", 1000), station("Others", "286aba4c1001", 333),
                          station("Others", "286aba4c1002", 333), station("Others", "f0d1a9273302", 333)});
}

TEST_F(AirtimeRequests, VapsStandInTheirOrderAndThoseThatAreDownHaveNoRow) {
    set_shares("airtime 3 share=1\nairtime 2 share=200\nairtime 4 share=300\n");
    expect_table("ath0",
                 {head("Guests", 200), station("Guests", "f0d1a9273302", 200), head("Things", 1), head("Others", 799),
                  station("Others", "286aba4c1001", 399), station("Others", "286aba4c1002", 399)});
}

TEST_F(AirtimeRequests, SharesOfMoreThanAllLeaveNothingForOthers) {
    set_shares("airtime 1 share=700\nairtime 2 share=700\n");
    expect_table("ath0", {head("Home", 700), station("Home", "286aba4c1001", 350), station("Home", "286aba4c1002", 350),
                          head("Guests", 700), station("Guests", "f0d1a9273302", 700), head("Others", 0)});
}

TEST_F(AirtimeRequests, AnSsidIsTheStoresAtTheMomentAndHas32Characters) {
    std::string longest(32, 'x');
    set_store("AP_SSID=" + longest + "y");
    expect_table("ath0",
                 {head(longest, 125), station(longest, "286aba4c1001", 62), station(longest, "286aba4c1002", 62),
                  head("Others", 875), station("Others", "f0d1a9273302", 875)});
    set_shares("airtime 3 share=5\n");
    run({"cfg", "-r", "AP_SSID_3"});
    EXPECT_EQ(table_of("ath0").substr(ENTRIES, ENTRY_SIZE), head("", 5));
}

TEST_F(AirtimeRequests, VapsOfAGroupStandUnderOneRow) {
    set_shares("airtime 1 share=100 group=Family\nairtime 2 share=50\nairtime 3 share=30 group=Family\n");
    add_to_scenario("station 3 mac=02:00:00:00:00:03" + STATION_FIELDS + "\n");
    expect_table(
        "ath0",
        {entry("Home", "", 130, false, false, 130, "Family"), station("Home", "286aba4c1001", 50, "Family"),
         station("Home", "286aba4c1002", 50, "Family"), station("Things", "020000000003", 30, "Family"),
         // One that is in no group is a group of its own.
         head("Guests", 50, "Guests"), station("Guests", "f0d1a9273302", 50, "Guests"), head("Others", 820, "Others")},
        false, true);
    // No group on the other radio, which has no shares now.
    expect_table("ath8", {head("Others", 1000), station("Others", "3c15c2e04403", 1000)});
}

TEST_F(AirtimeRequests, TwoGroupsAreTwoRowsAndTheLongestNameHas31Characters) {
    std::string longest(31, 'g');
    set_shares("airtime 1 share=100 group=" + longest + "\nairtime 2 share=50 group=B\n");
    expect_table("ath0",
                 {head("Home", 100, longest), station("Home", "286aba4c1001", 50, longest),
                  station("Home", "286aba4c1002", 50, longest), head("Guests", 50, "B"),
                  station("Guests", "f0d1a9273302", 50, "B"), head("Others", 850, "Others")},
                 false, true);
}

TEST_F(AirtimeRequests, AGroupOfAVapThatIsDownIsNotSeen) {
    set_shares("airtime 1 share=125\nairtime 4 share=90 group=Family\n");
    expect_table("ath0", {head("Home", 125), station("Home", "286aba4c1001", 62), station("Home", "286aba4c1002", 62),
                          head("Others", 875), station("Others", "f0d1a9273302", 875)});
}

TEST_F(AirtimeRequests, AStationWithAWeightHasThatShare) {
    run({"airtime", "add_sta", "286ABA4C1002", "30"});
    run({"airtime", "add_sta", "f0d1a9273302", "0"});
    expect_table("ath0", {head("Home", 125), station("Home", "286aba4c1001", 62),
                          entry("Home", "286aba4c1002", 300, true, true, 300, ""), head("Others", 875),
                          entry("Others", "f0d1a9273302", 0, true, true, 0, "")});
}

TEST_F(AirtimeRequests, StationsWithAWeightThatAreNotThereAreIdleUnderTheFirstRow) {
    set_shares("airtime 1 share=125\nairtime 2 share=10\n");
    run({"airtime", "add_sta", "020000000001", "7"});
    run({"airtime", "add_sta", "286aba4c1003", "8"});
    run({"airtime", "add_sta", "3c15c2e04403", "9"});
    lines idle = {entry("Home", "020000000001", 70, true, false, 70, ""),
                  entry("Home", "286aba4c1003", 80, true, false, 80, ""),
                  // One that is associated with the other radio only.
                  entry("Home", "3c15c2e04403", 90, true, false, 90, "")};
    expect_table("ath0",
                 {head("Home", 125), station("Home", "286aba4c1001", 62), station("Home", "286aba4c1002", 62), idle[0],
                  idle[1], idle[2], head("Guests", 10), station("Guests", "f0d1a9273302", 10), head("Others", 865)});
    set_shares("");
    expect_table("ath8", {head("Others", 1000), entry("Others", "3c15c2e04403", 90, true, true, 90, ""),
                          entry("Others", "020000000001", 70, true, false, 70, ""),
                          entry("Others", "286aba4c1003", 80, true, false, 80, "")});
}

TEST_F(AirtimeRequests, StationsComeAndGo) {
    add_to_scenario("station 3 mac=02:00:00:00:00:03" + STATION_FIELDS + "from=0.3 until=1.2\n");
    run({"fast_down.sh"});
    run({"apup"});
    auto count = [] { return number_at<uint16_t>(table_of("ath0"), 5812); };
    EXPECT_EQ(count(), 5);
    EXPECT_TRUE(eventually([&] { return count() == 6; }));
    EXPECT_TRUE(eventually([&] { return count() == 5; }));
}

TEST_F(AirtimeRequests, ATableHasNoMoreThan66Rows) {
    std::string items = "airtime 3 share=800\n";
    lines entries = {head("Things", 800)};
    for (int i = 10; i < 90; i++) {
        std::string digits = std::to_string(i);
        items += "station 3 mac=02:00:00:00:00:" + digits + STATION_FIELDS + "\n";
        entries.push_back(station("Things", "0200000000" + digits, 10));
    }
    set_shares(items);
    entries.resize(ENTRY_COUNT);
    expect_table("ath0", entries);
}

TEST_F(AirtimeRequests, TheTableSaysWhetherItsRadioIsSwitchedOn) {
    for (const auto &[key, interface, other] :
         {std::tuple{"AP_ENABLE_ATF_2", "ath0", "ath8"}, std::tuple{"AP_ENABLE_ATF", "ath8", "ath0"}}) {
        set_store(std::string(key) + "=1");
        EXPECT_EQ(table_of(interface)[5814], 1) << key;
        EXPECT_EQ(table_of(other)[5814], 0) << key;
        set_store(std::string(key) + "=0");
        EXPECT_EQ(table_of(interface)[5814], 0) << key;
    }
}

TEST_F(AirtimeRequests, ARequestForATableBeginsWithItsCode) {
    for (const char *begins : {"05fe", "06ff", "ff05", "0000"})
        EXPECT_EQ(ask(std::string("ath0 length=5824 begins=") + begins).result, "-1 EINVAL") << begins;
    // What stands behind it in the request makes no difference.
    EXPECT_EQ(ask("ath0 length=5824 begins=05ffffffff").record, table_of("ath0"));
    EXPECT_EQ(journal()[0], "ioctl ath0 0x89fc 5824 = -1 EINVAL");
}

TEST_F(AirtimeRequests, ATableThatIsNotTheCallersMemoryIsAFault) {
    EXPECT_EQ(ask("ath0 length=5824 pointer=0x10").result, "-1 EFAULT");
    EXPECT_EQ(ask("ath0 length=5824 begins=05ff room=5823").result, "-1 EFAULT");
    EXPECT_EQ(ask("ath0 length=5824 begins=05 room=1").result, "-1 EFAULT");
}

TEST_F(AirtimeRequests, AScenarioThatMakesNoSenseIsAnIoError) {
    write_file(GATEWAY_SCENARIO, "nonsense\n");
    EXPECT_EQ(ask("ath0 length=5824 begins=05ff").result, "-1 EIO");
    EXPECT_EQ(ask("ath0 length=36 begins=40000000286aba4c1001").result, "-1 EIO");
}

TEST_F(AirtimeRequests, OtherInterfacesAreRefused) {
    for (const std::string record : {"length=5824 begins=05ff", "length=36 begins=40000000286aba4c1001"}) {
        EXPECT_EQ(ask("wifi0 " + record).result, "-1 EOPNOTSUPP");
        EXPECT_EQ(ask("ath3 " + record).result, "-1 ENODEV");
    }
}

TEST_F(AirtimeRequests, RecordsOfAnotherLengthAreNotAnswered) {
    for (const char *length : {"35", "37", "5823", "5825"})
        EXPECT_TRUE(ask(std::string("ath0 length=") + length + " begins=05ff").result.starts_with("-1 E")) << length;
}

// A station's counters

const std::string STATION_RECORD = " length=36 begins=40000000286aba4c1001";

TEST_F(AirtimeRequests, AStationsRecordIsFilledAtItsPlaces) {
    answer got = ask("ath0" + STATION_RECORD);
    EXPECT_EQ(got.result, "0 ");
    ASSERT_EQ(got.record.size(), 36U);
    // The code, the address and what stands between it and the answers stay.
    EXPECT_EQ(got.record.substr(0, 12), bytes_of("40000000286aba4c1001eeee"));
    EXPECT_EQ(number_at<uint32_t>(got.record, 12), 4200U);
    EXPECT_GE(number_at<uint64_t>(got.record, 16), 310000U);
    EXPECT_LT(number_at<uint64_t>(got.record, 16), 310000U + 60 * 4200);
    EXPECT_EQ(number_at<uint32_t>(got.record, 24), 1000U);
    EXPECT_EQ(number_at<uint32_t>(got.record, 28), 640U);
    EXPECT_EQ(number_at<uint32_t>(got.record, 32), 220U);
    EXPECT_EQ(journal(), lines{"ioctl ath0 0x89fc 36 = 0"});
}

TEST_F(AirtimeRequests, AStationsNumbersMayBeTheLargest) {
    answer got = ask("ath8 length=36 begins=400000003c15c2e04403");
    EXPECT_EQ(got.result, "0 ");
    ASSERT_EQ(got.record.size(), 36U);
    // 2^32 + 1 a second, of which 32 bits are told; the total begins again beyond 64.
    EXPECT_EQ(number_at<uint32_t>(got.record, 12), 1U);
    EXPECT_LT(number_at<uint64_t>(got.record, 16), 60 * 4294967297U);
    EXPECT_EQ(number_at<uint32_t>(got.record, 24), 4294967295U);
    EXPECT_EQ(number_at<uint32_t>(got.record, 28), 4294967294U);
    EXPECT_EQ(number_at<uint32_t>(got.record, 32), 4294967293U);
}

TEST_F(AirtimeRequests, TheTotalMovesAndIsThatOfWlanconfig) {
    auto total = [] { return number_at<uint64_t>(ask("ath0" + STATION_RECORD).record, 16); };
    uint64_t first = total();
    std::string said = run({"wlanconfig", "ath0", "atfstat", "286aba4c1001"}).output;
    ASSERT_TRUE(said.starts_with("short average 4200, total airtime ")) << said;
    uint64_t between = std::stoull(said.substr(34));
    EXPECT_GE(between, first);
    EXPECT_LE(between, total());
    EXPECT_TRUE(eventually([&] { return total() > first; }));
}

TEST_F(AirtimeRequests, AStationThatIsNotOnTheInterfaceIsNoEntry) {
    // One that has not come, one of another interface, one of nowhere.
    for (const std::string mac : {"286aba4c1003", "f0d1a9273302", "000000000000"})
        EXPECT_EQ(ask("ath0 length=36 begins=40000000" + mac).result, "-1 ENOENT") << mac;
    EXPECT_EQ(ask("ath1" + STATION_RECORD).result, "-1 ENOENT");
    EXPECT_EQ(ask("ath1 length=36 begins=40000000f0d1a9273302").result, "0 ");
    // Nothing is written then.
    EXPECT_EQ(ask("ath0 length=36 begins=40000000000000000000").record, bytes_of("40000000000000000000"));
}

TEST_F(AirtimeRequests, AStationsRecordBeginsWithItsCode) {
    for (const char *code : {"41000000", "40010000", "40000001", "00000000"})
        EXPECT_EQ(ask(std::string("ath0 length=36 begins=") + code + "286aba4c1001").result, "-1 EINVAL") << code;
}

TEST_F(AirtimeRequests, AStationsRecordThatIsNotTheCallersMemoryIsAFault) {
    EXPECT_EQ(ask("ath0 length=36 pointer=0x10").result, "-1 EFAULT");
    EXPECT_EQ(ask("ath0 room=35" + STATION_RECORD + " room=35").result, "-1 EFAULT");
}

// Faults

TEST_F(AirtimeRequests, FailWithTheErrorThatTheirFaultNames) {
    run({"fault", "ioctl:0x89fc", "EPERM"});
    EXPECT_EQ(ask("ath0 length=5824 begins=05ff").result, "-1 EPERM");
    EXPECT_EQ(ask("ath0" + STATION_RECORD).result, "-1 EPERM");
}

TEST_F(AirtimeRequests, TheDriverCanLieAboutTheNumberOfEntries) {
    std::string honest = table_of("ath0");
    for (const auto &[said, told] : {std::pair{"0", 0},
                                     {"65", 65},
                                     {"67", 67},
                                     {"300", 300},
                                     {"65535", 65535},
                                     {"-1", 65535},
                                     {"-32768", 32768}}) {
        EXPECT_EQ(run({"fault", "airtime_count", said}).status, 0);
        std::string table = table_of("ath0");
        EXPECT_EQ(number_at<uint16_t>(table, 5812), told);
        // The entries are what they are.
        EXPECT_EQ(table.substr(0, 5812), honest.substr(0, 5812));
        EXPECT_EQ(table.substr(5814), honest.substr(5814));
    }
    run({"fault", "airtime_count"});
    EXPECT_EQ(number_at<uint16_t>(table_of("ath0"), 5812), 65535);
    run({"fault", "airtime_count", "off"});
    EXPECT_EQ(table_of("ath0"), honest);
}

TEST_F(AirtimeRequests, TheTableCanBeFullOfConnectedStations) {
    EXPECT_EQ(run({"fault", "airtime_full", "on"}).status, 0);
    lines entries = {head("Home", 125)};
    for (int i = 1; i <= 65; i++) {
        char mac[13];
        snprintf(mac, sizeof mac, "02af000000%02x", static_cast<unsigned>(i));
        entries.push_back(station("Home", mac, 1));
    }
    expect_table("ath0", entries, true);
    run({"fault", "airtime_count", "67"});
    EXPECT_EQ(number_at<uint16_t>(table_of("ath0"), 5812), 67);
    run({"fault", "airtime_full", "off"});
    EXPECT_EQ(table_of("ath0")[5814], 0);
}

TEST_F(AirtimeRequests, TheTableCanBeFullOfNothingButConnectedStations) {
    EXPECT_EQ(run({"fault", "airtime_full", "stations"}).status, 0);
    lines entries;
    for (int i = 0; i <= 65; i++) {
        char mac[13];
        snprintf(mac, sizeof mac, "02af000000%02x", static_cast<unsigned>(i));
        entries.push_back(station("Home", mac, 1));
    }
    expect_table("ath0", entries, true);
}

TEST_F(AirtimeRequests, AFullTableMayBeOneOfGroups) {
    set_shares("airtime 1 share=650 group=Family\n");
    run({"fault", "airtime_full"});
    std::string table = table_of("ath0");
    EXPECT_EQ(table.substr(ENTRIES, ENTRY_SIZE), head("Home", 650, "Family"));
    EXPECT_EQ(table.substr(ENTRIES + 65 * ENTRY_SIZE, ENTRY_SIZE), station("Home", "02af00000041", 10, "Family"));
    EXPECT_EQ(number_at<uint32_t>(table, 5820), 1U);
}

TEST_F(AirtimeRequests, ItsTextsCanLackTheirEnd) {
    std::string honest = table_of("ath0");
    write_file(std::string(GATEWAY_FAULTS) + "/texts", "unterminated");
    std::string table = table_of("ath0");
    for (size_t i = 0; i < 5; i++) {
        size_t place = ENTRIES + i * ENTRY_SIZE;
        std::string name = i < 3 ? "Home" : "Others";
        EXPECT_EQ(table.substr(place, 33), name + std::string(33 - name.size(), 'x')) << i;
        EXPECT_EQ(table.substr(place + 52, 36), std::string(36, 'x')) << i;
        EXPECT_EQ(table.substr(place + 33, 19), honest.substr(place + 33, 19)) << i;
    }
    EXPECT_EQ(table.substr(ENTRIES + 5 * ENTRY_SIZE), honest.substr(ENTRIES + 5 * ENTRY_SIZE));
}

TEST_F(AirtimeRequests, FaultsThatMakeNoSenseAreRefused) {
    for (const char *value : {"", "x", "1x", "65536", "-32769", "+1", " 1", "-", "99999999999999999999"})
        EXPECT_EQ(run({"fault", "airtime_count", value}).status, 1) << value;
    for (const char *value : {"", "1", "onn", "EIO"})
        EXPECT_EQ(run({"fault", "airtime_full", value}).status, 1) << value;
    EXPECT_EQ(run({"fault"}).output, "");
    EXPECT_EQ(run({"fault", "airtime_counts", "1"}).status, 1);
}

}  // namespace
