// Airtime fairness as the driver tells it, over the wire: the table of a radio's stations to the byte, the lines for
// the system log, and which commands and requests reached the driver in which order.
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

#include "config/store.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

const char SCENARIO_FILE[] = "/run/gateway/scenario";
const char DRIVER_FILE[] = "/run/gateway/driver";

constexpr size_t TABLE_SIZE = 4740;
constexpr size_t TABLE_ROOM = 64;
constexpr size_t RECORD_SIZE = 74;

// --- what the table must be ---

template <typename Number>
bytes host_bytes(Number number) {
    return bytes(reinterpret_cast<const char *>(&number), sizeof number);
}

struct station_row {
    std::string mac;
    std::string name;
    uint32_t share;
    uint32_t configured;
    uint32_t short_average;
    uint64_t total;
};

using station_rows = std::vector<station_row>;

bytes padded(bytes text, size_t size) {
    text.resize(size, '\0');
    return text;
}

// The bytes of a record: numbers in the machine's order, nothing between the fields.
bytes record_bytes(uint32_t number, const station_row &row) {
    return host_bytes(number) + padded(row.mac, 18) + padded(row.name, 32) + host_bytes(row.share) +
           host_bytes(row.configured) + host_bytes(row.short_average) + host_bytes(row.total);
}

// The whole result: its code, no numbers, the table.
bytes table_result(int code, const station_rows &rows) {
    bytes table = host_bytes(static_cast<uint32_t>(rows.size()));
    for (size_t i = 0; i < rows.size(); i++)
        table += record_bytes(static_cast<uint32_t>(i + 1), rows[i]);
    return vap(code) + xdr_word(0) + xdr_word(TABLE_SIZE) + padded(table, TABLE_SIZE);
}

bytes table_of(int index) {
    return call(PROC_wlan_get_advairtime_statscl_atftable, vap(index)).result;
}

void expect_table(int index, const station_rows &rows) {
    EXPECT_TRUE(same_bytes(table_of(index), table_result(0, rows))) << "VAP " << index;
}

void expect_refused(int index) {
    EXPECT_TRUE(same_bytes(table_of(index), table_result(-1, {}))) << "VAP " << index;
}

// A number of a table's record.
template <typename Number>
Number number_in(const bytes &result, size_t record, size_t offset) {
    Number number = 0;
    size_t at = 16 + record * RECORD_SIZE + offset;
    if (at + sizeof number <= result.size())
        memcpy(&number, result.data() + at, sizeof number);
    return number;
}

// The flag of a query is 1 and its code 0, whatever there was to tell.
void query(int index = 1) {
    EXPECT_EQ(call(PROC_wlan_query_wlan_info, vap(index)).result,
              xdr_word(0) + xdr_word(4) + xdr_word(1) + bytes(12, '\0') + xdr_word(0));
}

// --- the gateway around it ---

// The scenario without a station, without shares, and with an `apup` that takes no time; what a test says comes behind.
std::string scenario_of(const std::string &home, const strings &items) {
    std::string text;
    for (size_t begin = 0, end; (end = home.find('\n', begin)) != std::string::npos; begin = end + 1) {
        std::string line = home.substr(begin, end - begin + 1);
        if (!line.starts_with("station ") && !line.starts_with("airtime ") && !line.starts_with("script apup "))
            text += line;
    }
    text += "script apup seconds=0\n";
    for (const std::string &item : items)
        text += item + "\n";
    return text;
}

// The scenario with airtime that stands still.
std::string without_growth(std::string scenario) {
    const std::string field = " airtime=";
    for (size_t at = 0; (at = scenario.find(field, at)) != std::string::npos; at++) {
        size_t plus = scenario.find_first_not_of("0123456789", at + field.size());
        if (plus != std::string::npos && scenario[plus] == '+')
            scenario.replace(plus, scenario.find_first_of(" \n", plus) - plus, "+0");
    }
    return scenario;
}

// A gateway with these VAPs up and no authenticator. Tests may replace the scenario and the store; what both were at
// first, and which VAPs are up otherwise, is put back at the end.
class AirtimeGateway : public BrokenGateway {
protected:
    static void bring_up(const std::vector<int> &vaps) {
        settings.emplace();
        home = read_file(SCENARIO_FILE);
        write_file(SCENARIO_FILE, scenario_of(home, {}));
        strings lines = TWO_RADIOS;
        for (int index : vaps)
            lines.push_back(index == 1 ? "AP_ENABLE=1" : "AP_ENABLE_" + std::to_string(index) + "=1");
        lines.insert(lines.end(), {"AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1"});
        set_store(lines);
        command_output apup = run_command("apup");
        ASSERT_EQ(apup.status, 0) << apup.errors;
    }

    static void put_back() {
        write_file(SCENARIO_FILE, home);
        restart_driver();
        settings->put_back();
        settings.reset();
    }

    void SetUp() override {
        BrokenGateway::SetUp();
        driver = read_file(DRIVER_FILE);
    }
    void TearDown() override {
        write_file(DRIVER_FILE, driver);
        BrokenGateway::TearDown();
    }

    // Takes an interface down until the end of the test.
    static void take_down(const std::string &interface) {
        std::string state = read_file(DRIVER_FILE);
        size_t at = state.find("up " + interface + " ");
        ASSERT_NE(at, std::string::npos);
        write_file(DRIVER_FILE, state.erase(at, state.find('\n', at) + 1 - at));
    }

    void set_scenario(const strings &items) {
        write_file(SCENARIO_FILE, scenario_of(home, items));
    }

    // A store with these lines behind those of the radios; nothing counts as watched before.
    void begin(const strings &lines) {
        strings all = TWO_RADIOS;
        all.insert(all.end(), lines.begin(), lines.end());
        begin_with(all);
    }

    // The lines for the system log, without their line ends.
    strings events() const {
        strings found = commands_since(journal_mark, "syslog ");
        for (std::string &line : found) {
            EXPECT_TRUE(line.ends_with("\\n")) << line;
            line.resize(line.size() - std::min<size_t>(2, line.size()));
        }
        return found;
    }

    // What the server says about airtime whether somebody debugs or not.
    strings errors() const {
        return lines_with({"[VLK-API] Error ", "\t ATF IS DISABLED"});
    }

    // Everything that reached the platform, but for the tools' own lines.
    strings journal() const {
        strings found;
        for (const std::string &line : lines_since(JOURNAL_FILE, journal_mark))
            if (!line.starts_with("run "))
                found.push_back(line);
        return found;
    }

    static inline std::string home;

private:
    static inline std::optional<kept_settings> settings;
    std::string driver;
};

// --- the home scenario ---

const strings HOME_STORE = {"AP_SSID=Home network", "AP_SSID_9=Home network 5G"};
const strings HOME_STORE_ON = {"AP_SSID=Home network", "AP_SSID_9=Home network 5G", "AP_ENABLE_ATF=1",
                               "AP_ENABLE_ATF_2=1"};

const station_rows HOME_2G = {{"28:6a:ba:4c:10:01", "Home network", 35, 70, 0, 310000},
                              {"f0:d1:a9:27:33:02", "Home network", 35, 70, 0, 180000}};
const station_rows HOME_5G = {{"3c:15:c2:e0:44:03", "Home network 5G", 21, 65, 0, 720000},
                              {"98:01:a7:9b:55:04", "Home network 5G", 21, 65, 0, 410000},
                              {"b8:27:eb:12:66:05", "Home network 5G", 21, 65, 0, 250000}};

class AirtimeAtHome : public AirtimeGateway {
protected:
    static void SetUpTestSuite() {
        bring_up({1, 9});
    }
    static void TearDownTestSuite() {
        put_back();
    }
    void SetUp() override {
        AirtimeGateway::SetUp();
        write_file(SCENARIO_FILE, without_growth(home));
        begin(HOME_STORE);
    }
};

TEST_F(AirtimeAtHome, TableOfTheFirstRadioHasItsStationsToTheByte) {
    for (int index : {1, 8}) {
        new_commands();
        expect_table(index, HOME_2G);
        EXPECT_EQ(new_commands(), (strings{"wlanconfig ath0 list", "wlanconfig ath0 atfstat 286aba4c1001 2>&1",
                                           "wlanconfig ath0 list", "wlanconfig ath0 atfstat f0d1a9273302 2>&1"}));
    }
}

TEST_F(AirtimeAtHome, TableOfTheSecondRadioHasItsStationsToTheByte) {
    for (int index : {9, 16, 17, INT32_MAX}) {
        new_commands();
        expect_table(index, HOME_5G);
        EXPECT_EQ(new_commands(), (strings{"wlanconfig ath8 list", "wlanconfig ath8 atfstat 3c15c2e04403 2>&1",
                                           "wlanconfig ath8 list", "wlanconfig ath8 atfstat 9801a79b5504 2>&1",
                                           "wlanconfig ath8 list", "wlanconfig ath8 atfstat b827eb126605 2>&1"}));
    }
}

TEST_F(AirtimeAtHome, TableOfAnIndexBelowOneIsRefusedAndNobodyIsAsked) {
    for (int index : {0, -1, INT32_MIN})
        expect_refused(index);
    EXPECT_EQ(journal(), strings{});
    EXPECT_EQ(errors(), strings{});
}

TEST_F(AirtimeAtHome, SsidIsAskedForBeforeTheTable) {
    table_of(9);
    strings lines = journal();
    ASSERT_GE(lines.size(), 3u);
    lines.resize(3);
    EXPECT_EQ(lines, (strings{"ioctl ath8 0x8b1b 32 = 0", "ioctl ath8 0x89fc 5824 = 0", "popen wlanconfig ath8 list"}));
}

TEST_F(AirtimeAtHome, AirtimeGrowsAsTheDriverCountsIt) {
    write_file(SCENARIO_FILE, home);
    bytes before = table_of(1);
    usleep(30000);
    bytes after = table_of(1);
    for (size_t record : {0u, 1u}) {
        EXPECT_EQ(number_in<uint32_t>(before, record, 62), record == 0 ? 4200u : 2600u);
        EXPECT_EQ(number_in<uint32_t>(after, record, 62), record == 0 ? 4200u : 2600u);
        EXPECT_GE(number_in<uint64_t>(before, record, 66), HOME_2G[record].total);
        EXPECT_GT(number_in<uint64_t>(after, record, 66), number_in<uint64_t>(before, record, 66) + 50);
        EXPECT_LT(number_in<uint64_t>(after, record, 66), HOME_2G[record].total + 4000000);
    }
}

const strings EVENTS_2G = {
    "<6>ATM E2: <28:6a:ba:4c:10:01> connected to <Home network> has <35.0%> configured and is currently using <420> us "
    "which is <42%> of total Airtime",
    "<6>ATM E2: <f0:d1:a9:27:33:02> connected to <Home network> has <35.0%> configured and is currently using <220> us "
    "which is <22%> of total Airtime",
    // The row of all others, while the last station is remembered.
    "<6>ATM E2: <f0:d1:a9:27:33:02> connected to <Home network> has <30.0%> configured and is currently using <220> us "
    "which is <22%> of total Airtime"};

const strings EVENTS_5G = {"<6>ATM E2: <3c:15:c2:e0:44:03> connected to <Home network 5G> has <21.6%> configured",
                           "<6>ATM E2: <98:01:a7:9b:55:04> connected to <Home network 5G> has <21.6%> configured",
                           "<6>ATM E2: <b8:27:eb:12:66:05> connected to <Home network 5G> has <21.6%> configured",
                           "<6>ATM E2: <b8:27:eb:12:66:05> connected to <Home network 5G> has <35.0%> configured"};

strings joined(strings first, const strings &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(AirtimeAtHome, EveryStationIsALineOfTheSystemLog) {
    begin(HOME_STORE_ON);
    query();
    EXPECT_EQ(events(), joined(EVENTS_2G, EVENTS_5G));
}

TEST_F(AirtimeAtHome, EveryIndexOfAQueryIsTheSame) {
    begin(HOME_STORE_ON);
    for (int index : {0, 9, -1, INT32_MIN, INT32_MAX}) {
        begin_watching();
        query(index);
        EXPECT_EQ(events(), joined(EVENTS_2G, EVENTS_5G));
    }
}

// An interface that is down answers for its SSID already.
strings down(int first, int last) {
    strings lines;
    for (int number = first; number <= last; number++)
        lines.push_back("ioctl ath" + std::to_string(number) + " 0x8b1b 32 = -1 ENODEV");
    return lines;
}

TEST_F(AirtimeAtHome, InterfacesAreAskedInTheirOrderAndTheListBeforeTheCounters) {
    begin(HOME_STORE_ON);
    query();
    strings expected = {"ioctl ath0 0x8b1b 32 = 0", "ioctl ath0 0x89fc 5824 = 0"};
    for (const std::string &event : EVENTS_2G)
        expected =
            joined(expected, {"popen wlanconfig ath0 list", "ioctl ath0 0x89fc 36 = 0", "syslog " + event + "\\n"});
    expected = joined(expected, down(1, 7));
    expected = joined(expected, {"ioctl ath8 0x8b1b 32 = 0", "ioctl ath8 0x89fc 5824 = 0"});
    for (const std::string &event : EVENTS_5G)
        expected = joined(expected, {"popen wlanconfig ath8 list", "syslog " + event + "\\n"});
    EXPECT_EQ(journal(), joined(expected, down(9, 15)));
}

strings down_errors(int first, int last) {
    strings lines;
    for (int number = first; number <= last; number++)
        lines.push_back("[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ath" + std::to_string(number) +
                        " ssid_length invaild ");
    return lines;
}

const char TABLE_READ[] = "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ";
const strings DISABLED = {"[VLK-API] Error wlan_queryWlanInfo ",
                          "\t ATF IS DISABLED!!! The above ATF configuration will not have any effect."};

TEST_F(AirtimeAtHome, WhatAQueryReadsIsPrintedAmongTheErrors) {
    begin(HOME_STORE_ON);
    query();
    const std::string tokens = "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat act_tokens ";
    strings expected = {std::string(TABLE_READ) + "ath0 info_cnt 4", tokens + "640 unused 220 total 1000",
                        tokens + "250 unused 30 total 1000", tokens + "250 unused 30 total 1000"};
    expected = joined(expected, down_errors(1, 7));
    expected.push_back(std::string(TABLE_READ) + "ath8 info_cnt 5");
    EXPECT_EQ(errors(), joined(expected, down_errors(9, 15)));
}

TEST_F(AirtimeAtHome, WithoutAirtimeFairnessThereIsAWarningForEachTableAndNoLine) {
    query();
    EXPECT_EQ(events(), strings{});
    EXPECT_EQ(commands(), strings{});
    strings expected = joined({std::string(TABLE_READ) + "ath0 info_cnt 4"}, joined(DISABLED, down_errors(1, 7)));
    expected = joined(expected, joined({std::string(TABLE_READ) + "ath8 info_cnt 5"}, DISABLED));
    EXPECT_EQ(errors(), joined(expected, down_errors(9, 15)));
}

// The suffix belongs to the first radio.
TEST_F(AirtimeAtHome, AirtimeFairnessIsSwitchedOnARadioOfItsOwn) {
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 1, 1), 0);
    begin_watching();
    query();
    EXPECT_EQ(events(), EVENTS_2G);
    EXPECT_EQ(lines_with({DISABLED[1]}).size(), 1u);
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 9, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 1, 0), 0);
    begin_watching();
    query();
    // Stations of the first radio are remembered, but there is one of its own behind each first row.
    EXPECT_EQ(events(), EVENTS_5G);
    EXPECT_EQ(lines_with({DISABLED[1]}).size(), 1u);
}

TEST_F(AirtimeAtHome, TableWithoutRowsIsNoReasonForAWarning) {
    fault("airtime_count 0");
    query();
    EXPECT_EQ(lines_with({DISABLED[1], TABLE_READ}),
              (strings{std::string(TABLE_READ) + "ath0 info_cnt 0", std::string(TABLE_READ) + "ath8 info_cnt 0"}));
}

TEST_F(AirtimeAtHome, CountersThatAreRefusedAreALineWithoutUsage) {
    begin(HOME_STORE_ON);
    fault("ioctl:0x89fc.36 EPERM");
    query();
    strings expected = EVENTS_2G;
    for (std::string &line : expected)
        line = line.substr(0, line.find("using <")) + "using <0> us which is <0%> of total Airtime";
    EXPECT_EQ(events(), joined(expected, EVENTS_5G));
    EXPECT_EQ(lines_with({"[VLK-API] Error wlan_getAdvAirtimeStatsCl_"}),
              strings(3,
                      "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat !!!failed: "
                      "IEEE80211_PARAM_STA_ATM_STATS from ath0"));
}

TEST_F(AirtimeAtHome, SsidThatIsRefusedIsAFailureAndTheTableIsNotAskedFor) {
    begin(HOME_STORE_ON);
    fault("ioctl:0x8b1b EPERM");
    expect_refused(1);
    expect_refused(9);
    EXPECT_EQ(journal(), (strings{"ioctl ath0 0x8b1b 32 = -1 EPERM", "ioctl ath8 0x8b1b 32 = -1 EPERM"}));
    EXPECT_EQ(errors(), joined(down_errors(0, 0), down_errors(8, 8)));
    begin_watching();
    query();
    EXPECT_EQ(journal().size(), 16u);
    EXPECT_EQ(errors(), down_errors(0, 15));
}

TEST_F(AirtimeAtHome, TableThatIsRefusedIsAFailure) {
    begin(HOME_STORE_ON);
    fault("ioctl:0x89fc.5824 EPERM");
    expect_refused(1);
    expect_refused(9);
    const std::string refused = "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ioctl error";
    EXPECT_EQ(errors(), strings(2, refused));
    EXPECT_EQ(commands(), strings{});
    begin_watching();
    query();
    EXPECT_EQ(events(), strings{});
    EXPECT_EQ(errors(), joined({refused}, joined(down_errors(1, 7), joined({refused}, down_errors(9, 15)))));
}

station_rows without_airtime(station_rows rows) {
    for (station_row &row : rows) {
        row.short_average = 0;
        row.total = 0;
    }
    return rows;
}

// What looks for the station asks all interfaces of the radio.
strings lists_of(int first, int last) {
    strings lines;
    for (int number = first; number <= last; number++)
        lines.push_back("wlanconfig ath" + std::to_string(number) + " list");
    return lines;
}

TEST_F(AirtimeAtHome, WithoutAWorkingToolNoInterfaceServesAStation) {
    begin(HOME_STORE_ON);
    for (const char *value : {"silent", "fail", "missing", "garbage"}) {
        SCOPED_TRACE(value);
        fault(std::string("wlanconfig ") + value);
        begin_watching();
        expect_table(9, without_airtime(HOME_5G));
        EXPECT_EQ(commands(), joined(lists_of(8, 15), joined(lists_of(8, 15), lists_of(8, 15))));
        begin_watching();
        query();
        // The tool was run, and in what it printed there is no station.
        EXPECT_EQ(events(), strings{});
        EXPECT_EQ(commands().size(), 7u);
    }
}

TEST_F(AirtimeAtHome, StationsAreFoundInAListWithoutItsMarkers) {
    begin(HOME_STORE_ON);
    fault("wlanconfig nomarkers");
    expect_table(1, HOME_2G);
    begin_watching();
    query();
    EXPECT_EQ(events(), joined(EVENTS_2G, EVENTS_5G));
}

TEST_F(AirtimeAtHome, SlowToolIsWaitedFor) {
    fault("wlanconfig slow 0.02");
    expect_table(1, HOME_2G);
}

// Nobody can tell whether the station is still there.
TEST_F(AirtimeAtHome, CommandsThatCannotBeStartedLeaveZeroAirtimeAndEveryLine) {
    begin(HOME_STORE_ON);
    fault("popen ENOMEM");
    expect_table(1, without_airtime(HOME_2G));
    EXPECT_EQ(commands(), joined(lists_of(0, 7), lists_of(0, 7)));
    begin_watching();
    query();
    EXPECT_EQ(events(), joined(EVENTS_2G, EVENTS_5G));
}

TEST_F(AirtimeAtHome, ReadingIsLoggedByHandlersAndBackEnds) {
    set_debug(true);
    table_of(1);
    const std::string name = "[VLK-API] wlan_getAdvAirtimeStatsCl_AtfTable ";
    const std::string first = name + "info_mark:1 SSID: Home network  MAC:28:6a:ba:4c:10:01  quotient_val:35 ";
    strings lines = lines_with({name});
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[0], name + "wlan_getAdvAirtimeStatsCl_AtfTable: 1");
    EXPECT_EQ(lines[1], name +
                            "info_mark:0 SSID: Home network  MAC:  quotient_val:70 remainder_val:0 quotient_cfg:70 "
                            "remainder_cfg:0 active:idle");
    EXPECT_EQ(lines[2], first + "remainder_val:0 quotient_cfg:0 remainder_cfg:0 active:connected");
    EXPECT_EQ(lines[3], name + "shortavg:0 aritime_total: 310000");
    EXPECT_EQ(lines[6], name +
                            "info_mark:0 SSID: Others  MAC:f0:d1:a9:27:33:02  quotient_val:30 remainder_val:0 "
                            "quotient_cfg:30 remainder_cfg:0 active:idle");
    EXPECT_EQ(lines_with({"[VLK-API] wlan_get_sta_atm_stats"}).front(),
              "[VLK-API] wlan_get_sta_atm_stats wlan_get_sta_atm_stats:interface:ath0 client:28:6a:ba:4c:10:01 got "
              "shortavg: 0 airtimeTotal 310000");
    query();
    EXPECT_EQ(lines_with({"[VLK-API] wlan_queryWlanInfo"}),
              strings{"[VLK-API] wlan_queryWlanInfo wlan_queryWlanInfo: wlan_queryWlanInfo entered"});
}

TEST_F(AirtimeAtHome, ThousandsOfCallsLeaveNoDescriptorBehind) {
    fault("airtime_count 0");
    expect_table(1, {});
    query();
    size_t before = open_files_of_child();
    ASSERT_GT(before, 0u);
    EXPECT_TRUE(call_often(PROC_wlan_get_advairtime_statscl_atftable, vap(1), 2000));
    // Each asks sixteen interfaces, with a socket of its own for each, and leaves as many lines in journal and log.
    for (int i = 0; i < 200; i++)
        query();
    EXPECT_EQ(open_files_of_child(), before);
}

// --- more interfaces ---

class AirtimeTable : public AirtimeGateway {
protected:
    static void SetUpTestSuite() {
        bring_up({1, 2, 8, 9, 16});
    }
    static void TearDownTestSuite() {
        put_back();
    }
    void SetUp() override {
        AirtimeGateway::SetUp();
        begin({"AP_SSID=Home", "AP_SSID_2=Guests", "AP_SSID_8=Things", "AP_SSID_9=Home 5G", "AP_SSID_16=Things 5G"});
    }
};

// A station with airtime that stands still.
std::string station_item(int index, const std::string &mac, const std::string &fields = "airtime=500+0") {
    return "station " + std::to_string(index) + " mac=" + mac + " ip=192.168.0.99 rssi=30 tx_rate=100 rx_rate=50 " +
           fields;
}

TEST_F(AirtimeTable, InterfacesAreAskedInTheirOrderUntilTheStationIsFound) {
    set_scenario({"airtime 1 share=400", "airtime 8 share=200", station_item(8, "02:00:00:00:00:08"),
                  station_item(1, "02:00:00:00:00:01")});
    expect_table(3, {{"02:00:00:00:00:01", "Home", 40, 40, 0, 500}, {"02:00:00:00:00:08", "Things", 20, 20, 0, 500}});
    strings expected = {"wlanconfig ath0 list", "wlanconfig ath0 atfstat 020000000001 2>&1"};
    expected = joined(joined(expected, lists_of(0, 7)), {"wlanconfig ath7 atfstat 020000000008 2>&1"});
    EXPECT_EQ(commands(), expected);
}

TEST_F(AirtimeTable, StationOfTheSecondRadioIsLookedForOnItsInterfaces) {
    set_scenario({"airtime 16 share=200", station_item(16, "02:00:00:00:00:16")});
    expect_table(9, {{"02:00:00:00:00:16", "Things 5G", 20, 20, 0, 500}});
    EXPECT_EQ(commands(), joined(lists_of(8, 15), {"wlanconfig ath15 atfstat 020000000016 2>&1"}));
}

TEST_F(AirtimeTable, OthersAreNamedByTheInterfaceThatServesThem) {
    set_scenario({"airtime 1 share=400", station_item(1, "02:00:00:00:00:01"), station_item(2, "02:00:00:00:00:02"),
                  station_item(8, "02:00:00:00:00:08")});
    expect_table(1, {{"02:00:00:00:00:01", "Home", 40, 40, 0, 500},
                     {"02:00:00:00:00:02", "Guests", 30, 60, 0, 500},
                     {"02:00:00:00:00:08", "Things", 30, 60, 0, 500}});
}

// Unlike a name of the table, which is cut, it may fill the field to its last byte.
TEST_F(AirtimeTable, SsidThatReplacesOthersMayHaveThirtyTwoCharacters) {
    const std::string longest = "An SSID has thirty-two letters..";
    ASSERT_EQ(longest.size(), 32u);
    begin({"AP_SSID=" + longest, "AP_SSID_2=" + longest});
    set_scenario({"airtime 1 share=400", station_item(1, "02:00:00:00:00:01"), station_item(2, "02:00:00:00:00:02")});
    expect_table(1, {{"02:00:00:00:00:01", "An SSID has thirt", 40, 40, 0, 500},
                     {"02:00:00:00:00:02", longest, 60, 60, 0, 500}});
}

TEST_F(AirtimeTable, OthersThatNoInterfaceServesKeepTheirName) {
    set_scenario({station_item(2, "02:00:00:00:00:02")});
    fault("wlanconfig silent");
    expect_table(1, {{"02:00:00:00:00:02", "Others", 100, 100, 0, 0}});
}

TEST_F(AirtimeTable, NameIsCutToSeventeenCharacters) {
    begin({"AP_SSID=A network with a long name", "AP_SSID_9=Exactly seventeen"});
    set_scenario({"airtime 1 share=400", "airtime 9 share=10", station_item(1, "02:00:00:00:00:01"),
                  station_item(9, "02:00:00:00:00:09")});
    expect_table(1, {{"02:00:00:00:00:01", "A network with a ", 40, 40, 0, 500}});
    expect_table(9, {{"02:00:00:00:00:09", "Exactly seventeen", 1, 1, 0, 500}});
}

TEST_F(AirtimeTable, TenthsOfAShareAreInTheLineAndNotInTheTable) {
    begin({"AP_SSID=Home", "AP_ENABLE_ATF_2=1"});
    set_scenario(
        {"airtime 1 share=125", station_item(1, "02:00:00:00:00:01", "airtime=500+7 tokens=3 act_tokens=2 unused=0")});
    bytes table = table_of(1);
    EXPECT_EQ(number_in<uint32_t>(table, 0, 54), 12u);
    EXPECT_EQ(number_in<uint32_t>(table, 0, 58), 12u);
    EXPECT_EQ(number_in<uint32_t>(table, 0, 62), 7u);
    query();
    // Every interface tells its radio's table; on the others the station is not in the list.
    EXPECT_EQ(events(), (strings{"<6>ATM E2: <02:00:00:00:00:01> connected to <Home> has <12.5%> configured and is "
                                 "currently using <2> us which is <66%> of total Airtime",
                                 "<6>ATM E2: <02:00:00:00:00:01> connected to <Home> has <87.5%> configured and is "
                                 "currently using <2> us which is <66%> of total Airtime"}));
}

// Usage is what is left of unsigned numbers, and a part of nothing is nothing.
TEST_F(AirtimeTable, UsageOfOddTokensIsALineAllTheSame) {
    begin({"AP_SSID=Home", "AP_ENABLE_ATF_2=1"});
    const std::string begin_of_line =
        "<6>ATM E2: <02:00:00:00:00:01> connected to <Home> has <100.0%> configured and "
        "is currently using ";
    const std::pair<const char *, const char *> tokens[] = {
        {"tokens=0 act_tokens=5 unused=0", "<5> us which is <0%> of total Airtime"},
        {"tokens=1000 act_tokens=5 unused=6", "<-1> us which is <429496729%> of total Airtime"},
        {"tokens=1 act_tokens=0 unused=1", "<-1> us which is <2147483647%> of total Airtime"},
    };
    for (const auto &[fields, end_of_line] : tokens) {
        set_scenario({station_item(1, "02:00:00:00:00:01", fields)});
        begin_watching();
        query();
        EXPECT_EQ(events(), strings{begin_of_line + end_of_line}) << fields;
    }
}

TEST_F(AirtimeTable, OfATotalTheLowHalfIsTold) {
    set_scenario({"airtime 1 share=1000", station_item(1, "02:00:00:00:00:01", "airtime=4294967295+0"),
                  station_item(1, "02:00:00:00:00:02", "airtime=8589934597+0")});
    expect_table(1,
                 {{"02:00:00:00:00:01", "Home", 50, 100, 0, 4294967295}, {"02:00:00:00:00:02", "Home", 50, 100, 0, 5}});
}

TEST_F(AirtimeTable, GroupsGiveTheirStationsTheirNames) {
    set_scenario({"airtime 1 share=300 group=Family", "airtime 8 share=100 group=Family", "airtime 2 share=250",
                  station_item(1, "02:00:00:00:00:01"), station_item(2, "02:00:00:00:00:02"),
                  station_item(8, "02:00:00:00:00:08")});
    expect_table(1, {{"02:00:00:00:00:01", "Family", 30, 40, 0, 500},
                     {"02:00:00:00:00:08", "Family", 10, 40, 0, 500},
                     {"02:00:00:00:00:02", "Guests", 25, 25, 0, 500}});
}

TEST_F(AirtimeTable, NameOfAGroupIsCutToSeventeenCharacters) {
    set_scenario({"airtime 1 share=300 group=AGroupWithALongName", station_item(1, "02:00:00:00:00:01")});
    expect_table(1, {{"02:00:00:00:00:01", "AGroupWithALongNa", 30, 30, 0, 500}});
}

// Row by row: the SSID of the group's first VAP, its station; that of the other VAP; the rest.
TEST_F(AirtimeTable, StationsOfAGroupAreLinesOfTheirOwnInterfaces) {
    begin({"AP_SSID=Home", "AP_SSID_16=Things 5G", "AP_SSID_9=Home 5G", "AP_ENABLE_ATF=1"});
    set_scenario({"airtime 9 share=300 group=Family", "airtime 16 share=105 group=Family",
                  station_item(9, "02:00:00:00:00:09"), station_item(16, "02:00:00:00:00:16")});
    query();
    EXPECT_EQ(events(), (strings{"<6>ATM E2: <02:00:00:00:00:09> connected to <Home 5G> has <30.0%> configured",
                                 "<6>ATM E2: <02:00:00:00:00:16> connected to <Things 5G> has <10.5%> configured",
                                 "<6>ATM E2: <02:00:00:00:00:16> connected to <Things 5G> has <59.5%> configured"}));
}

// Stations of the first radio are remembered on the second: a row there that is no station's makes a line.
TEST_F(AirtimeTable, MacIsRememberedOnTheFollowingInterfaces) {
    begin({"AP_SSID=Home", "AP_SSID_9=Home 5G", "AP_SSID_16=Things 5G", "AP_ENABLE_ATF=1"});
    set_scenario({"airtime 1 share=300", "airtime 9 share=300", station_item(1, "02:00:00:00:00:01")});
    fault("popen ENOMEM");
    query();
    EXPECT_EQ(events(), (strings{"<6>ATM E2: <02:00:00:00:00:01> connected to <Home 5G> has <70.0%> configured",
                                 "<6>ATM E2: <02:00:00:00:00:01> connected to <Things 5G> has <70.0%> configured"}));
}

TEST_F(AirtimeTable, WeightOfAStationIsItsShareAndOneThatIsNotThereMakesNoRecord) {
    set_scenario({"airtime 1 share=300", station_item(1, "02:00:00:00:00:01"), station_item(1, "02:00:00:00:00:02")});
    for (const auto &[mac, weight] : {std::pair("02:00:00:00:00:02", 45), std::pair("02:00:00:00:00:77", 20)})
        EXPECT_EQ(code_of(call(PROC_wlan_set_advairtime_sta_entry_add, vap(1) + xdr_string_bytes(mac) + vap(weight))),
                  0);
    begin_watching();
    const station_rows expected = {{"02:00:00:00:00:01", "Home", 15, 30, 0, 500},
                                   {"02:00:00:00:00:02", "Home", 45, 30, 0, 500}};
    expect_table(1, expected);
    EXPECT_EQ(commands().size(), 4u);
    // The one that is not there is a row all the same, behind the SSID, two stations and before the others.
    query();
    EXPECT_EQ(lines_with({TABLE_READ}).front(), std::string(TABLE_READ) + "ath0 info_cnt 5");
}

TEST_F(AirtimeTable, RadioWithoutStationsHasAnEmptyTable) {
    set_scenario({"airtime 1 share=300"});
    expect_table(1, {});
    EXPECT_EQ(commands(), strings{});
}

// The texts have letters to the end of their fields, and no NUL.
TEST_F(AirtimeTable, NamesWithoutEndAreCut) {
    fault("texts unterminated");
    set_scenario({"airtime 1 share=300", station_item(1, "02:00:00:00:00:01"), station_item(2, "02:00:00:00:00:02")});
    expect_table(1, {{"02:00:00:00:00:01", "Homexxxxxxxxxxxxx", 30, 30, 0, 500},
                     {"02:00:00:00:00:02", "Guests", 70, 70, 0, 500}});
    set_scenario({"airtime 1 share=300 group=Family", station_item(1, "02:00:00:00:00:01")});
    expect_table(1, {{"02:00:00:00:00:01", "Familyxxxxxxxxxxx", 30, 30, 0, 500}});
    set_debug(true);
    begin_watching();
    table_of(1);
    strings lines = lines_with({"[VLK-API] wlan_getAdvAirtimeStatsCl_AtfTable info_mark:0 "});
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(" SSID: Family" + std::string(29, 'x') + "  MAC:"), std::string::npos) << lines[0];
}

TEST_F(AirtimeTable, FirstInterfaceOfTheRadioTellsTheTable) {
    set_scenario({"airtime 2 share=300", station_item(2, "02:00:00:00:00:02")});
    expect_table(2, {{"02:00:00:00:00:02", "Guests", 30, 30, 0, 500}});
    take_down("ath0");
    begin_watching();
    expect_refused(2);
    EXPECT_EQ(journal(), strings{"ioctl ath0 0x8b1b 32 = -1 ENODEV"});
    EXPECT_EQ(errors(), down_errors(0, 0));
}

TEST_F(AirtimeTable, WithoutInterfacesThereIsNothingToTell) {
    for (const char *interface : {"ath0", "ath1", "ath7", "ath8", "ath15"})
        take_down(interface);
    expect_refused(1);
    expect_refused(9);
    begin_watching();
    query();
    EXPECT_EQ(journal(), down(0, 15));
    EXPECT_EQ(errors(), down_errors(0, 15));
}

// --- tables that are full, and numbers that lie ---

// As many stations of VAP 1 as its table has rows behind the first.
constexpr int STATIONS = 65;

std::string numbered_mac(int number) {
    constexpr const char digits[] = "0123456789abcdef";
    return std::string("02:00:00:00:00:") + digits[number / 16] + digits[number % 16];
}

class AirtimeFullTable : public AirtimeTable {
protected:
    void SetUp() override {
        AirtimeTable::SetUp();
        strings items = {"airtime 1 share=650"};
        for (int i = 1; i <= STATIONS; i++) {
            items.push_back(station_item(1, numbered_mac(i), "airtime=" + std::to_string(1000 + i) + "+0"));
            expected.push_back({numbered_mac(i), "Home", 1, 65, 0, static_cast<uint64_t>(1000 + i)});
        }
        set_scenario(items);
    }

    // The first records of the table, no more than it has room for.
    station_rows first(size_t count) const {
        size_t room = std::min(count, TABLE_ROOM);
        return {expected.begin(), expected.begin() + static_cast<ptrdiff_t>(room)};
    }

    station_rows expected;
};

TEST_F(AirtimeFullTable, SixtyFiveConnectedStationsMakeSixtyFourRecords) {
    expect_table(1, first(STATIONS));
    EXPECT_EQ(commands().size(), 2 * TABLE_ROOM);
    EXPECT_EQ(commands().back(), "wlanconfig ath0 atfstat 020000000040 2>&1");
}

// Without commands, which are not what is asked here.
TEST_F(AirtimeFullTable, CountThatLiesIsBounded) {
    fault("popen ENOMEM");
    const std::pair<const char *, size_t> lies[] = {{"0", 0},      {"1", 0},   {"2", 1},      {"64", 63},
                                                    {"65", 64},    {"66", 65}, {"67", 65},    {"300", 65},
                                                    {"65535", 65}, {"-1", 65}, {"-32768", 65}};
    for (const auto &[lie, stations] : lies) {
        SCOPED_TRACE(lie);
        fault(std::string("airtime_count ") + lie);
        expect_table(1, without_airtime(first(stations)));
    }
}

// Of what the driver did not fill no row makes a record.
TEST_F(AirtimeTable, CountBeyondTheRowsAddsNoStation) {
    set_scenario({"airtime 1 share=300", station_item(1, "02:00:00:00:00:01")});
    for (const char *lie : {"66", "67", "65535"}) {
        fault(std::string("airtime_count ") + lie);
        expect_table(1, {{"02:00:00:00:00:01", "Home", 30, 30, 0, 500}});
    }
}

TEST_F(AirtimeFullTable, EveryRowButTheFirstIsALineOfAFullTable) {
    fault("popen ENOMEM; fault airtime_full on");
    strings lines;
    for (const char *lie : {"66", "67", "300", "-1"}) {
        fault(std::string("airtime_count ") + lie);
        begin_watching();
        query();
        EXPECT_EQ(lines_with({TABLE_READ}).front(), std::string(TABLE_READ) + "ath0 info_cnt 66") << lie;
        // Three interfaces of the first radio and two of the second are up.
        lines = events();
        ASSERT_EQ(lines.size(), 5u * STATIONS) << lie;
    }
    const std::string begin_of_line = "<6>ATM E2: <02:af:00:00:00:";
    EXPECT_EQ(lines.front(), begin_of_line +
                                 "01> connected to <Home> has <1.0%> configured and is currently using <0> "
                                 "us which is <0%> of total Airtime");
    EXPECT_EQ(lines.back(), begin_of_line + "41> connected to <Things 5G> has <1.5%> configured");
    fault("airtime_count 1");
    begin_watching();
    query();
    EXPECT_EQ(events(), strings{});
}

// Without a row of an SSID before them the stations have neither name nor configured share.
TEST_F(AirtimeFullTable, SixtySixConnectedStationsMakeSixtyFourRecords) {
    fault("popen ENOMEM; fault airtime_full stations");
    station_rows rows;
    for (int i = 0; i < static_cast<int>(TABLE_ROOM); i++)
        rows.push_back({numbered_mac(i).replace(3, 2, "af"), "", 1, 0, 0, 0});
    expect_table(1, rows);
}

TEST_F(AirtimeFullTable, StationsThatNoInterfaceServesHaveNoAirtime) {
    fault("popen ENOMEM; fault airtime_full on");
    station_rows rows;
    for (int i = 1; i <= static_cast<int>(TABLE_ROOM); i++)
        rows.push_back({numbered_mac(i).replace(3, 2, "af"), "Home", 1, 65, 0, 0});
    expect_table(1, rows);
    EXPECT_EQ(commands().size(), 8 * TABLE_ROOM);
}

}  // namespace
