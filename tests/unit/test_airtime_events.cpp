// The airtime lines for the system log: which rows make one, what stands in it, what is asked and run for it.
#include "steering/airtime_events.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <string>
#include <vector>

#include "platform/platform.h"
#include "tests/support/airtime_driver.h"
#include "tests/support/driver.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"
#include "tests/support/store_lock.h"

static std::vector<std::string> logged;

// In front of the event library's, for the whole program.
extern "C" int send_zubra_syslog(const char *line) {
    logged.emplace_back(line);
    record_step("syslog");
    return 0;
}

namespace {

using lines = std::vector<std::string>;

struct AirtimeEvents : testing::Test {
    airtime_driver told;

    void SetUp() override {
        reset_platform();
        reset_driver();
        write_store({});
        install_wlanconfig();
        told.answer();
        logged.clear();
    }

    void TearDown() override {
        reset_driver();
        logged.clear();
    }

    void rows(const std::string &interface, const std::vector<table_row> &rows, const table_head &head = {}) {
        told.tables[interface] = table_bytes(rows, head);
    }
};

// A call that must do what every call does.
void query() {
    int done = 0;
    EXPECT_EQ(wlan_queryWlanInfo(0, &done), 0);
    EXPECT_EQ(done, 1);
}

// The lines that a call sends.
lines sent_lines() {
    logged.clear();
    capture([] { query(); });
    return logged;
}

// What a call prints to standard error.
std::string errors() {
    return capture([] { query(); }).err;
}

// What is printed for interfaces whose tables are empty.
std::string empty_tables(int first, int last) {
    std::string text;
    for (int number = first; number <= last; number++) {
        text += "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath" + std::to_string(number) +
                " info_cnt 0\n";
    }
    return text;
}

const char DISABLED[] =
    "[VLK-API] Error wlan_queryWlanInfo \n"
    "\t ATF IS DISABLED!!! The above ATF configuration will not have any effect.\n"
    "\n";

// A line of the 5 GHz radio, whose lines are the shorter ones.
std::string short_line(uint8_t station, const std::string &share, const std::string &ssid = "five") {
    return "<6>ATM E2: <" + mac_text(station) + "> connected to <" + ssid + "> has <" + share + "%> configured\n";
}

std::string long_line(uint8_t station, const std::string &share, const std::string &usage,
                      const std::string &ssid = "two") {
    return "<6>ATM E2: <" + mac_text(station) + "> connected to <" + ssid + "> has <" + share +
           "%> configured and is currently using " + usage + " of total Airtime\n";
}

// Both radios with an SSID, and a station that is connected to ath8.
struct AirtimeEventsOf5G : AirtimeEvents {
    void SetUp() override {
        AirtimeEvents::SetUp();
        told.ssids["ath8"] = "five";
        connect_stations("ath8", {1, 2, 3});
    }
};

struct AirtimeEventsOf2G : AirtimeEvents {
    void SetUp() override {
        AirtimeEvents::SetUp();
        told.ssids["ath0"] = "two";
        connect_stations("ath0", {1, 2, 3});
    }
};

// --- the course of a call ---

TEST_F(AirtimeEvents, EveryInterfaceIsAskedInItsOrderAndEmptyTablesMakeNoLine) {
    step_list expected;
    for (int number = 0; number < 16; number++) {
        expected.push_back("ssid ath" + std::to_string(number));
        expected.push_back("table ath" + std::to_string(number));
    }
    printed_text printed;
    EXPECT_EQ(steps_of([&] { printed = capture([] { query(); }); }), expected);
    EXPECT_EQ(printed.err, empty_tables(0, 15));
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(logged, lines());
}

TEST_F(AirtimeEvents, EveryIndexIsTheSame) {
    for (int index : {INT_MIN, -1, 0, 1, 9, 16, 17, INT_MAX}) {
        int done = UNTOUCHED;
        EXPECT_EQ(capture([&] { EXPECT_EQ(wlan_queryWlanInfo(index, &done), 0); }).err, empty_tables(0, 15));
        EXPECT_EQ(done, 1);
    }
}

TEST_F(AirtimeEvents, ACallIsADebugLine) {
    std::string printed = debug_lines([] { query(); });
    EXPECT_EQ(printed, "[VLK-API] wlan_queryWlanInfo wlan_queryWlanInfo: wlan_queryWlanInfo entered\n");
}

TEST_F(AirtimeEvents, AnInterfaceThatRefusesIsPassedOver) {
    told.ssids["ath8"] = "five";
    rows("ath7", {ssid_row("seven"), station_row(1)});
    rows("ath8", {ssid_row("five"), station_row(2)});
    connect_stations("ath8", {2});
    told.refused = {"ssid ath7", "table ath3"};
    std::string printed = errors();
    EXPECT_EQ(printed, empty_tables(0, 2) +
                           "ioctl: Operation not supported\n"
                           "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ioctl error\n" +
                           empty_tables(4, 6) +
                           "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ath7 ssid_length invaild \n"
                           "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath8 info_cnt 2\n" +
                           empty_tables(9, 15));
    EXPECT_EQ(logged, lines({short_line(2, "0.0")}));
}

TEST_F(AirtimeEvents, ACallIsDoneWhenEveryInterfaceRefuses) {
    answer_request = [](const seen_request &) { return REFUSED(ENODEV); };
    capture([] { query(); });
    EXPECT_EQ(requests.size(), 16U);
    EXPECT_EQ(logged, lines());
}

// --- which rows make a line ---

TEST_F(AirtimeEventsOf5G, TheFirstRowIsPassedOver) {
    rows("ath8", {station_row(1, 125)});
    EXPECT_EQ(sent_lines(), lines());
    rows("ath8", {station_row(1, 125), ssid_row("net")});
    EXPECT_EQ(sent_lines(), lines()) << "and its MAC is not remembered";
}

TEST_F(AirtimeEventsOf5G, EveryStationBehindTheFirstRowIsALine) {
    rows("ath8", {ssid_row("net"), station_row(1, 125), idle_row(2, 20), station_row(3, 3)});
    EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5"), short_line(2, "2.0"), short_line(3, "0.3")}));
}

TEST_F(AirtimeEventsOf5G, EveryRowIsALineWhileAMacIsRemembered) {
    table_row ssid = ssid_row("other");
    ssid.value = 777;
    rows("ath8", {ssid_row("net"), ssid, station_row(1, 125), ssid, station_row(2, 30, ""), station_row(3, 40)});
    EXPECT_EQ(sent_lines(),
              lines({short_line(1, "12.5"), short_line(1, "77.7"), short_line(1, "3.0"), short_line(3, "4.0")}));
}

TEST_F(AirtimeEventsOf5G, InATableOfGroupsEveryStationHasAName) {
    rows("ath8", {ssid_row("", 0, "group"), station_row(1, 125, "")}, {.show_group = 0x80000000});
    EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5")}));
    rows("ath8", {ssid_row("", 0, "group"), station_row(1, 125, "")});
    EXPECT_EQ(sent_lines(), lines());
}

TEST_F(AirtimeEventsOf5G, EveryMarkButZeroIsAStations) {
    rows("ath8", {ssid_row("net"), station_row(1, 125)});
    told.tables["ath8"][4 + INFO_SIZE + 44] = '\x80';
    EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5")}));
}

TEST_F(AirtimeEvents, AMacIsRememberedOnTheFollowingInterfaces) {
    told.ssids["ath8"] = "five";
    told.ssids["ath15"] = "last";
    rows("ath8", {ssid_row("net"), station_row(1, 125)});
    rows("ath15", {ssid_row("net"), ssid_row("net")});
    connect_stations("ath8", {1});
    connect_stations("ath15", {1});
    EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5"), short_line(1, "0.0", "last")}));
    EXPECT_EQ(sent_lines().size(), 2U) << "and forgotten by the next call";
    rows("ath8", {ssid_row("net"), ssid_row("net")});
    EXPECT_EQ(sent_lines(), lines());
}

TEST_F(AirtimeEvents, AMacIsRememberedWhereAirtimeFairnessIsNotAtWork) {
    told.ssids["ath15"] = "last";
    rows("ath8", {ssid_row("net"), station_row(1, 125)}, {.status = 0});
    rows("ath15", {ssid_row("net"), ssid_row("net")});
    connect_stations("ath15", {1});
    EXPECT_EQ(sent_lines(), lines({short_line(1, "0.0", "last")}));
}

// --- stations that have left ---

TEST_F(AirtimeEventsOf5G, AStationThatIsNotInTheListMakesNoLineAndIsRemembered) {
    rows("ath8", {ssid_row("net"), station_row(9, 125), station_row(1, 20), station_row(9, 30)});
    told.ssids["ath9"] = "nine";
    rows("ath9", {ssid_row("net"), ssid_row("net")});
    connect_stations("ath9", {9});
    EXPECT_EQ(sent_lines(), lines({short_line(1, "2.0"), short_line(9, "0.0", "nine")}));
}

TEST_F(AirtimeEventsOf5G, TheListIsAskedForAtEveryRowWhileAMacIsRemembered) {
    rows("ath8", {ssid_row("net"), ssid_row("net"), station_row(9), ssid_row("net"), station_row(1)});
    EXPECT_EQ(steps_of([] { sent_lines(); }).size(), 32U + 4U);
    EXPECT_EQ(commands_of([] { query(); }),
              calls({"wlanconfig ath8 list", "wlanconfig ath8 list", "wlanconfig ath8 list"}));
}

TEST_F(AirtimeEventsOf5G, TheMacIsSearchedForAsItStands) {
    rows("ath8", {ssid_row("net"), station_row(0xab, 125)});
    wlanconfig_prints("ath8", "list", "02:00:00:00:00:AB");
    EXPECT_EQ(sent_lines(), lines());
    wlanconfig_prints("ath8", "list", "x02:00:00:00:00:abc");
    EXPECT_EQ(sent_lines(), lines({short_line(0xab, "12.5")}));
}

TEST_F(AirtimeEventsOf5G, AListThatIsEmptyHoldsNoStation) {
    rows("ath8", {ssid_row("net"), station_row(1, 125)});
    wlanconfig_prints("ath8", "list", "");
    EXPECT_EQ(sent_lines(), lines());
    ASSERT_TRUE(std::filesystem::remove(std::string(FAKE_TOOLS) + "/wlanconfig"));
    EXPECT_EQ(sent_lines(), lines());
}

TEST_F(AirtimeEventsOf5G, AStationWhoseListCannotBeAskedForMakesALine) {
    rows("ath8", {ssid_row("net"), station_row(9, 125)});
    begin_steps(refusing("popen"));
    EXPECT_EQ(sent_lines(), lines({short_line(9, "12.5")}));
    end_steps();
}

// --- what stands in a line ---

TEST_F(AirtimeEventsOf5G, AShareHasWholesAndTenths) {
    const std::pair<uint32_t, std::string> cases[] = {{0, "0.0"},    {9, "0.9"},      {10, "1.0"},
                                                      {125, "12.5"}, {1000, "100.0"}, {0xFFFFFFFF, "429496729.5"}};
    for (const auto &[value, share] : cases) {
        rows("ath8", {ssid_row("net", 333), station_row(1, value)});
        EXPECT_EQ(sent_lines(), lines({short_line(1, share)}));
    }
}

TEST_F(AirtimeEvents, TheSsidIsTheInterfacesAndNotTheRows) {
    for (size_t length : {0, 1, 31, 32}) {
        told.ssids["ath9"] = std::string(length, 'x');
        rows("ath9", {ssid_row("net"), station_row(1, 125, "row")});
        connect_stations("ath9", {1});
        EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5", std::string(length, 'x'))}));
    }
}

TEST_F(AirtimeEvents, PercentSignsOfAnSsidStandForThemselves) {
    told.ssids["ath0"] = told.ssids["ath9"] = "%s%n100%";
    for (const char *interface : {"ath0", "ath9"}) {
        rows(interface, {ssid_row("net"), station_row(1, 125)});
        connect_stations(interface, {1});
    }
    EXPECT_EQ(sent_lines(),
              lines({long_line(1, "12.5", "<0> us which is <0%>", "%s%n100%"), short_line(1, "12.5", "%s%n100%")}));
}

TEST_F(AirtimeEvents, TheFirstEightInterfacesTellWhatAirtimeIsUsed) {
    for (int number = 0; number < 16; number++) {
        std::string interface = "ath" + std::to_string(number);
        told.ssids[interface] = "net" + std::to_string(number);
        told.stations[interface] = {.short_average = 1, .airtime = 2, .total = 1000, .act_tokens = 300, .unused = 20};
        rows(interface, {ssid_row("net"), station_row(1, 125)});
        connect_stations(interface, {1});
    }
    lines expected;
    for (int number = 0; number < 16; number++) {
        std::string ssid = "net" + std::to_string(number);
        expected.push_back(number < 8 ? long_line(1, "12.5", "<280> us which is <28%>", ssid)
                                      : short_line(1, "12.5", ssid));
    }
    EXPECT_EQ(sent_lines(), expected);
}

TEST_F(AirtimeEventsOf2G, TheCountersOfTheInterfaceAndTheStationAreAskedFor) {
    told.ssids["ath7"] = "seven";
    rows("ath0", {ssid_row("net"), station_row(2, 125)});
    rows("ath7", {ssid_row("net"), station_row(3, 125)});
    connect_stations("ath7", {3});
    sent_lines();
    std::vector<seen_request> questions;
    for (const seen_request &request : requests) {
        if (request.length == COUNTERS_SIZE) {
            questions.push_back(request);
        }
    }
    ASSERT_EQ(questions.size(), 2U);
    EXPECT_EQ(questions[0].interface, "ath0");
    EXPECT_EQ(questions[0].bytes.substr(0, 10), host_bytes(64U) + std::string("\x02\0\0\0\0\x02", 6));
    EXPECT_EQ(questions[1].interface, "ath7");
    EXPECT_EQ(questions[1].bytes.substr(0, 10), host_bytes(64U) + std::string("\x02\0\0\0\0\x03", 6));
}

TEST_F(AirtimeEventsOf2G, TheListComesFirstThenTheCountersThenTheLine) {
    rows("ath0", {ssid_row("net"), station_row(1), station_row(9), station_row(2)});
    step_list steps = steps_of([] { sent_lines(); });
    steps.resize(9);
    EXPECT_EQ(steps,
              step_list({"ssid ath0", "table ath0", "popen wlanconfig ath0 list", "counters ath0", "syslog",
                         "popen wlanconfig ath0 list", "popen wlanconfig ath0 list", "counters ath0", "syslog"}));
}

TEST_F(AirtimeEventsOf2G, UsageIsWhatIsLeftOfTheTokensInWholePercent) {
    struct {
        uint32_t total, act_tokens, unused;
        const char *usage;
    } const cases[] = {
        {0, 0, 0, "<0> us which is <0%>"},
        {0, 500, 100, "<400> us which is <0%>"},
        {1000, 0, 0, "<0> us which is <0%>"},
        {1000, 500, 100, "<400> us which is <40%>"},
        {1000, 10, 0, "<10> us which is <1%>"},
        {1000, 9, 0, "<9> us which is <0%>"},
        {1000, 999, 0, "<999> us which is <99%>"},
        {1000, 1000, 0, "<1000> us which is <100%>"},
        {3, 2, 0, "<2> us which is <66%>"},
        {1, 500, 0, "<500> us which is <50000%>"},
        {0x80000000, 0x40000000, 0, "<1073741824> us which is <50%>"},
        {0xFFFFFFFF, 0xFFFFFFFF, 0, "<-1> us which is <100%>"},
        // More left than there was wraps around.
        {0xFFFFFFFF, 0, 1, "<-1> us which is <100%>"},
        {0xFFFFFFFF, 100, 200, "<-100> us which is <99%>"},
        // The greatest percentage that an int holds, and what is beyond it.
        {1, 21474836, 0, "<21474836> us which is <2147483600%>"},
        {100, 0x7FFFFFFF, 0, "<2147483647> us which is <2147483647%>"},
        {100, 0x80000000, 0, "<-2147483648> us which is <2147483647%>"},
        {1, 21474837, 0, "<21474837> us which is <2147483647%>"},
        {1, 0xFFFFFFFF, 0, "<-1> us which is <2147483647%>"},
    };
    rows("ath0", {ssid_row("net"), station_row(1, 125)});
    for (const auto &row : cases) {
        told.stations["ath0"] = {1, 2, row.total, row.act_tokens, row.unused};
        EXPECT_EQ(sent_lines(), lines({long_line(1, "12.5", row.usage)}));
    }
}

TEST_F(AirtimeEventsOf2G, CountersThatAreRefusedAreALineWithoutUsage) {
    rows("ath0", {ssid_row("net"), station_row(1, 125)});
    told.stations["ath0"] = {1, 2, 1000, 500, 100};
    told.refused = {"counters ath0"};
    std::string printed = errors();
    EXPECT_EQ(logged, lines({long_line(1, "12.5", "<0> us which is <0%>")}));
    EXPECT_EQ(printed,
              "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath0 info_cnt 2\n"
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat !!!failed: IEEE80211_PARAM_STA_ATM_STATS from "
              "ath0\n" +
                  empty_tables(1, 15));
}

TEST_F(AirtimeEventsOf2G, TheTokensArePrintedAmongTheErrors) {
    rows("ath0", {ssid_row("net"), station_row(1, 125)});
    told.stations["ath0"] = {1, 2, 1000, 500, 100};
    EXPECT_EQ(errors(),
              "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath0 info_cnt 2\n"
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat act_tokens 500 unused 100 total 1000\n" +
                  empty_tables(1, 15));
}

TEST_F(AirtimeEventsOf2G, TheLongestLineIsWhole) {
    told.ssids["ath0"] = std::string(32, 'x');
    told.stations["ath0"] = {1, 2, 1, 0x80000000, 0};
    rows("ath0", {ssid_row("net"), station_row(1, 0xFFFFFFFF)});
    lines sent = sent_lines();
    EXPECT_EQ(sent,
              lines({long_line(1, "429496729.5", "<-2147483648> us which is <2147483647%>", std::string(32, 'x'))}));
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(sent[0].size(), 189U);
}

// --- airtime fairness switched off ---

TEST_F(AirtimeEvents, WithoutAirtimeFairnessThereIsAWarningForEachTableAndNoLine) {
    rows("ath0", {ssid_row("net"), station_row(1), station_row(2)}, {.status = 0});
    rows("ath9", {ssid_row("net")}, {.status = 0});
    for (const char *interface : {"ath0", "ath9"}) {
        connect_stations(interface, {1, 2});
    }
    printed_text printed;
    step_list steps = steps_of([&] { printed = capture([] { query(); }); });
    EXPECT_EQ(printed.err, "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath0 info_cnt 3\n" +
                               std::string(DISABLED) + empty_tables(1, 8) +
                               "[VLK-API] Error wlan_queryWlanInfo wlan_queryWlanInfo: ifname ath9 info_cnt 1\n" +
                               DISABLED + empty_tables(10, 15));
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(steps.size(), 32U) << "nothing is run and no counters are asked for";
    EXPECT_EQ(logged, lines());
}

TEST_F(AirtimeEvents, ATableWithoutRowsIsNoReasonForAWarning) {
    for (int number = 0; number < 16; number++) {
        rows("ath" + std::to_string(number), {}, {.status = 0});
    }
    EXPECT_EQ(errors(), empty_tables(0, 15));
}

TEST_F(AirtimeEventsOf5G, EveryStatusButZeroIsAirtimeFairnessAtWork) {
    for (int status : {1, 2, 128, 255}) {
        rows("ath8", {ssid_row("net"), station_row(1, 125)}, {.status = static_cast<uint8_t>(status)});
        EXPECT_EQ(sent_lines(), lines({short_line(1, "12.5")})) << status;
    }
}

// --- counts ---

TEST_F(AirtimeEvents, AsManyRowsAreReadAsTheDriverCountsButNoMoreThanTheTableHas) {
    told.ssids["ath8"] = "five";
    std::vector<table_row> full;
    for (uint8_t station = 0; station < 66; station++) {
        full.push_back({true, std::string(33, 's'), std::string(36, 'g'), station, 1, station * 10U, 0});
    }
    for (int count : {0, 1, 2, 65, 66, 67, 300, 32768, 65535}) {
        int row_count = count > 66 ? 66 : count;
        lines expected;
        for (int row = 1; row < row_count; row++) {
            expected.push_back(short_line(static_cast<uint8_t>(row), std::to_string(row) + ".0"));
        }
        rows("ath8", full, {.count = count});
        begin_steps(refusing("popen"));
        logged.clear();
        std::string printed = errors();
        end_steps();
        EXPECT_EQ(logged, expected) << count;
        EXPECT_TRUE(contains(printed, "ifname ath8 info_cnt " + std::to_string(row_count) + "\n")) << count;
    }
}

TEST_F(AirtimeEvents, TenThousandCallsLeaveNothingOpen) {
    wlan_ioctl_socket();
    int before = lowest_free_descriptor();
    capture([&] {
        for (int call = 0; call < 10000; call++) {
            requests.clear();
            told.refused = {call % 2 ? "ssid ath3" : "table ath3"};
            int done = 0;
            ASSERT_EQ(wlan_queryWlanInfo(1, &done), 0);
        }
    });
    EXPECT_EQ(lowest_free_descriptor(), before);
}

}  // namespace
