// Traffic counters and associated stations: what the tools and the driver are asked, what is made of their answers,
// however wrong, and what becomes of the outputs.
#include "params/statistics.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "config/store.h"
#include "handlers/handlers.h"
#include "tests/support/driver.h"
#include "tests/support/low_memory.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"
#include "tests/support/store_lock.h"

namespace {

constexpr uint32_t KEPT = 4711;

std::string padded(std::string text, size_t size) {
    text.resize(size, '\0');
    return text;
}

std::string bytes_of_record(const void *record, size_t size) {
    return {static_cast<const char *>(record), size};
}

void put_word(std::string *bytes, size_t offset, uint32_t word) {
    memcpy(bytes->data() + offset, &word, sizeof(word));
}

// --- what the tools print ---

const char IFCONFIG[] =
    "ath0      Link encap:Ethernet  HWaddr 02:00:00:00:00:01  \n"
    "          UP BROADCAST RUNNING MULTICAST  MTU:1500  Metric:1\n"
    "          RX packets:1234 errors:5 dropped:6 overruns:7 frame:8\n"
    "          TX packets:2345 errors:9 dropped:10 overruns:11 carrier:12\n"
    "          collisions:0 txqueuelen:0 \n"
    "          RX bytes:345678 (337.5 KiB)  TX bytes:456789 (446.0 KiB)\n";

const char STATION_HEAD[] = "ADDR               AID CHAN TXRATE RXRATE RSSI IDLE  TXSEQ  RXSEQ  CAPS ACAPS HTCAPS\n";

const char STATION_LINE[] = "00:03:7f:00:00:01    1    6  130M    104M   41    0      0   65535   EPSs         WPS\n";

const char APSTATS[] =
    "VAP Level Stats: ath0 (under radio wifi0)\n"
    "Tx Data Packets                 = 1000\n"
    "Tx Unicast Data Packets         = 777\n"
    "Tx Multi/Broadcast Data Packets = 88\n"
    "Rx errors                       = 9\n"
    "Rx Rate                         = 130\n";

struct Statistics : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_driver();
        for (const char *tool : {"cfg", "ifconfig", "wlanconfig", "apstats"}) {
            install_tool(tool);
        }
    }

    void TearDown() override {
        end_steps();
        reset_driver();
    }

    // ifconfig prints this for every interface, wlanconfig this list.
    void print_counters(const std::string &counters, const std::string &list = STATION_HEAD) {
        install_tool("ifconfig", counters);
        install_tool("wlanconfig", list);
    }

    // VAPs 1 and 2 on their radios are enabled, and apstats prints this.
    void print_details(const std::string &details) {
        write_store({"AP_ENABLE=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_2=1"});
        install_tool("apstats", details);
    }

    // The number that is made of what stands behind a marker.
    uint32_t basic_number(const std::string &behind) {
        print_counters("RX packets:" + behind + " TX packets: RX bytes: TX bytes: ");
        wlan_basicStats_t stats = {KEPT, KEPT, KEPT, KEPT, KEPT};
        EXPECT_EQ(wlan_getBasicStats(1, &stats), 0);
        return stats.rx_packets;
    }

    uint32_t detailed_number(const std::string &behind) {
        print_details(
            "Tx Unicast Data Packets         = 1\nTx Multi/Broadcast Data Packets = 1\n"
            "Rx errors                       =" +
            behind);
        wlan_stats_t stats = {};
        EXPECT_EQ(wlan_getStats(1, &stats), 0);
        return stats.rx_errors;
    }

    // The number of stations in a list.
    uint32_t listed(const std::string &list) {
        print_counters(IFCONFIG, list);
        wlan_basicStats_t stats = {KEPT, KEPT, KEPT, KEPT, KEPT};
        EXPECT_EQ(wlan_getBasicStats(1, &stats), 0);
        return stats.assoc_count;
    }
};

using words = std::vector<uint32_t>;

words words_of(const wlan_basicStats_t &stats) {
    words all(sizeof(stats) / sizeof(uint32_t));
    memcpy(all.data(), &stats, sizeof(stats));
    return all;
}

words words_of(const wlan_stats_t &stats) {
    words all(sizeof(stats) / sizeof(uint32_t));
    memcpy(all.data(), &stats, sizeof(stats));
    return all;
}

// All words of the record before the call.
const wlan_basicStats_t KEPT_BASIC = {KEPT, KEPT, KEPT, KEPT, KEPT};
const wlan_stats_t KEPT_DETAILS = {KEPT, KEPT, KEPT, {KEPT, KEPT, KEPT}, KEPT, {KEPT, KEPT, KEPT, KEPT}};

// --- basic statistics ---

TEST_F(Statistics, BasicStatisticsHaveTheirWordsInOrder) {
    print_counters(IFCONFIG, std::string(STATION_HEAD) + STATION_LINE + STATION_LINE + STATION_LINE);
    wlan_basicStats_t stats = KEPT_BASIC;
    EXPECT_EQ(wlan_getBasicStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({456789, 345678, 2345, 1234, 3}));
}

TEST_F(Statistics, BasicStatisticsAskBothToolsForTheInterfaceOfTheVap) {
    print_counters(IFCONFIG);
    wlan_basicStats_t stats = {};
    EXPECT_EQ(commands_of([&] { wlan_getBasicStats(9, &stats); }),
              calls({"ifconfig ath8", "wlanconfig ath8 list sta"}));
}

TEST_F(Statistics, BasicStatisticsOfAnyOtherIndexAreAskedFor) {
    print_counters(IFCONFIG);
    wlan_basicStats_t stats = {};
    for (int index : {0, 16, 17, INT_MAX}) {
        EXPECT_EQ(wlan_getBasicStats(index, &stats), 0) << index;
    }
    EXPECT_EQ(tool_calls(), calls({"ifconfig ath-1", "wlanconfig ath-1 list sta", "ifconfig ath15",
                                   "wlanconfig ath15 list sta", "ifconfig ath16", "wlanconfig ath16 list sta",
                                   "ifconfig ath2147483646", "wlanconfig ath2147483646 list sta"}));
}

TEST_F(Statistics, ANegativeIndexClearsOnlyTheFirstWordOfTheBasicStatistics) {
    print_counters(IFCONFIG);
    for (int index : {-1, INT_MIN}) {
        wlan_basicStats_t stats = KEPT_BASIC;
        EXPECT_EQ(wlan_getBasicStats(index, &stats), -1) << index;
        EXPECT_EQ(words_of(stats), words({0, KEPT, KEPT, KEPT, KEPT})) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// What is read before a marker that is missing stays; what comes behind it is not looked for.
TEST_F(Statistics, AMissingBasicCounterFailsAndKeepsThoseBeforeIt) {
    const struct {
        std::string marker;
        const char *line;
        words left;
    } rows[] = {
        {"RX packets:", "get rx packets statistics failed", {KEPT, KEPT, KEPT, KEPT, KEPT}},
        {"TX packets:", "get tx packets statistics failed", {KEPT, KEPT, KEPT, 1234, KEPT}},
        {"RX bytes:", "get rx bytes statistics failed", {KEPT, KEPT, 2345, 1234, KEPT}},
        {"TX bytes:", "get tx bytes statistics failed", {KEPT, 345678, 2345, 1234, KEPT}},
    };
    for (const auto &row : rows) {
        std::string printed = IFCONFIG;
        printed.replace(printed.find(row.marker), row.marker.size() - 1, row.marker.size() - 1, '_');
        reset_platform();
        print_counters(printed);
        wlan_basicStats_t stats = KEPT_BASIC;
        int status = 0;
        std::string lines = debug_lines([&] { status = wlan_getBasicStats(1, &stats); });
        EXPECT_EQ(status, -1) << row.marker;
        EXPECT_EQ(words_of(stats), row.left) << row.marker;
        EXPECT_EQ(lines, std::string("[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:ifconfig ath0\n"
                                     "[VLK-API] wlan_getBasicStats wlan_getBasicStats: ") +
                             row.line + "\n");
        EXPECT_EQ(tool_calls(), calls({"ifconfig ath0"})) << row.marker;
    }
}

TEST_F(Statistics, ABasicCounterInFrontOfTheOneBeforeItIsNotFound) {
    const struct {
        const char *printed;
        words left;
    } rows[] = {
        {"TX packets:2 RX packets:1 RX bytes:3 TX bytes:4 ", {KEPT, KEPT, KEPT, 1, KEPT}},
        {"RX packets:1 RX bytes:3 TX packets:2 TX bytes:4 ", {KEPT, KEPT, 2, 1, KEPT}},
        {"RX packets:1 TX packets:2 TX bytes:4 RX bytes:3 ", {KEPT, 3, 2, 1, KEPT}},
    };
    for (const auto &row : rows) {
        print_counters(row.printed);
        wlan_basicStats_t stats = KEPT_BASIC;
        EXPECT_EQ(wlan_getBasicStats(1, &stats), -1) << row.printed;
        EXPECT_EQ(words_of(stats), row.left) << row.printed;
    }
}

TEST_F(Statistics, TheFirstOfTwoEqualMarkersBehindThePreviousOneCounts) {
    print_counters("TX packets:9 RX packets:1 RX packets:8 TX packets:2 TX packets:7 RX bytes:3 TX bytes:4 ");
    wlan_basicStats_t stats = KEPT_BASIC;
    EXPECT_EQ(wlan_getBasicStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({4, 3, 2, 1, 0}));
}

TEST_F(Statistics, ABasicCounterEndsAtTheNextBlank) {
    EXPECT_EQ(basic_number("12 34"), 12U);
    EXPECT_EQ(basic_number(" 34"), 0U);
}

TEST_F(Statistics, ABasicCounterEndsWithItsLine) {
    EXPECT_EQ(basic_number("12\n34"), 12U);
    EXPECT_EQ(basic_number("\n34"), 0U);
    EXPECT_EQ(basic_number("\r\n34"), 0U);
}

TEST_F(Statistics, ABasicCounterEndsAtTheFirstCharacterThatIsNoDigit) {
    EXPECT_EQ(basic_number("12a34"), 12U);
    EXPECT_EQ(basic_number("12.9"), 12U);
    EXPECT_EQ(basic_number("0x1f"), 0U);
    EXPECT_EQ(basic_number("12:34"), 12U);
    EXPECT_EQ(basic_number("12/34"), 12U);
}

TEST_F(Statistics, ABasicCounterWithoutDigitsIsZero) {
    for (const char *text : {"", "none", "-", "+", "--5", "-+5"}) {
        EXPECT_EQ(basic_number(text), 0U) << text;
    }
}

TEST_F(Statistics, ABasicCounterMayHaveASignAndATabulatorInFront) {
    EXPECT_EQ(basic_number("+12"), 12U);
    EXPECT_EQ(basic_number("-12"), 0xffff'fff4U);
    EXPECT_EQ(basic_number("\t12"), 12U);
}

TEST_F(Statistics, ABasicCounterIsTheLowWordOfALargerNumber) {
    EXPECT_EQ(basic_number("2147483648"), 0x8000'0000U);
    EXPECT_EQ(basic_number("4294967295"), 0xffff'ffffU);
    EXPECT_EQ(basic_number("4294967296"), 0U);
    EXPECT_EQ(basic_number("18446744073709551617"), 1U);
    EXPECT_EQ(basic_number("1" + std::string(100, '0') + "7"), 7U);
}

TEST_F(Statistics, AnOutputMayEndAnywhereInItsLastBasicCounter) {
    const struct {
        const char *end;
        uint32_t number;
    } rows[] = {{"TX bytes:", 0}, {"TX bytes:-", 0}, {"TX bytes:7", 7}};
    for (const auto &row : rows) {
        print_counters(std::string("RX packets:1 TX packets:2 RX bytes:3 ") + row.end);
        wlan_basicStats_t stats = KEPT_BASIC;
        EXPECT_EQ(wlan_getBasicStats(1, &stats), 0) << row.end;
        EXPECT_EQ(words_of(stats), words({row.number, 3, 2, 1, 0})) << row.end;
    }
}

TEST_F(Statistics, ABasicCounterWithoutABlankIsTheRestOfTheOutput) {
    print_counters("RX packets:1TX packets:2RX bytes:3TX bytes:4");
    wlan_basicStats_t stats = KEPT_BASIC;
    EXPECT_EQ(wlan_getBasicStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({4, 3, 2, 1, 0}));
}

TEST_F(Statistics, ASilentIfconfigIsATextWithoutCounters) {
    wlan_basicStats_t stats = KEPT_BASIC;
    int status = 0;
    std::string lines = debug_lines([&] { status = wlan_getBasicStats(1, &stats); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(words_of(stats), words_of(KEPT_BASIC));
    EXPECT_TRUE(contains(lines, "[VLK-API] wlan_getBasicStats wlan_getBasicStats: get rx packets statistics failed\n"));
}

TEST_F(Statistics, WithoutIfconfigsOutputTheBasicStatisticsFailUntouched) {
    wlan_basicStats_t stats = KEPT_BASIC;
    begin_descriptor_shortage();
    int status = wlan_getBasicStats(1, &stats);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(words_of(stats), words_of(KEPT_BASIC));
}

TEST_F(Statistics, WithoutIfconfigsOutputNoCounterIsCalledMissing) {
    step_rules rules;
    rules.refused = "ifconfig";
    begin_steps(rules);
    wlan_basicStats_t stats = {};
    std::string lines = debug_lines([&] { wlan_getBasicStats(1, &stats); });
    EXPECT_FALSE(contains(lines, "statistics failed")) << lines;
    EXPECT_EQ(recorded_steps(), step_list({"popen ifconfig ath0"}));
}

TEST_F(Statistics, WithoutWlanconfigsOutputTheFourCountersStay) {
    print_counters(IFCONFIG);
    step_rules rules;
    rules.refused = "wlanconfig";
    begin_steps(rules);
    wlan_basicStats_t stats = KEPT_BASIC;
    EXPECT_EQ(wlan_getBasicStats(1, &stats), -1);
    EXPECT_EQ(words_of(stats), words({456789, 345678, 2345, 1234, KEPT}));
}

TEST_F(Statistics, ASilentWlanconfigListsNobody) {
    EXPECT_EQ(listed(""), 0U);
}

TEST_F(Statistics, AListWithoutItsHeadListsNobody) {
    EXPECT_EQ(listed(std::string(STATION_LINE) + STATION_LINE), 0U);
    EXPECT_EQ(listed("ADDR AID CHAN HTCAP\nHTCAP S\nhtcaps\n"), 0U);
}

TEST_F(Statistics, EachLineBehindTheHeadIsAStation) {
    std::string list = STATION_HEAD;
    for (uint32_t count = 0; count <= 3; count++, list += STATION_LINE) {
        EXPECT_EQ(listed(list), count);
    }
}

TEST_F(Statistics, ALongListIsCountedToItsEnd) {
    std::string list = STATION_HEAD;
    for (int i = 0; i < 300; i++) {
        list += STATION_LINE;
    }
    EXPECT_EQ(listed(list), 300U);
}

TEST_F(Statistics, AListMayEndAnywhereInItsHead) {
    EXPECT_EQ(listed("ADDR HTCAPS"), 0U);
    EXPECT_EQ(listed("ADDR HTCAPS\n"), 0U);
    EXPECT_EQ(listed("ADDR HTCAPS\n\n"), 1U);
}

// Whatever the one character behind the title is, counting begins behind it.
TEST_F(Statistics, AHeadThatGoesOnBehindItsLastTitleCountsAsALine) {
    EXPECT_EQ(listed("ADDR HTCAPS ASSOCTIME\nsta\n"), 2U);
}

TEST_F(Statistics, AListIsCountedFromItsFirstHead) {
    EXPECT_EQ(listed("HTCAPS\nsta\nHTCAPS\nsta\n"), 3U);
}

TEST_F(Statistics, AStationWhoseLineIsNotEndedDoesNotCount) {
    EXPECT_EQ(listed("HTCAPS\nsta\nsta"), 1U);
}

TEST_F(Statistics, BasicStatisticsPrintNothingWhileDebuggingIsOff) {
    wlan_basicStats_t stats = {};
    printed_text printed = capture([&] { wlan_getBasicStats(1, &stats); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- detailed statistics ---

TEST_F(Statistics, DetailedStatisticsHaveTheirCountersInWordsOneTwoAndSix) {
    print_details(APSTATS);
    wlan_stats_t stats = {};
    EXPECT_EQ(wlan_getStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({0, 9, 777, 0, 0, 0, 88, 0, 0, 0, 0}));
}

TEST_F(Statistics, ASuccessClearsTheOtherWordsOfTheDetailedStatisticsButTheFirst) {
    print_details(APSTATS);
    wlan_stats_t stats = KEPT_DETAILS;
    EXPECT_EQ(wlan_getStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({KEPT, 9, 777, 0, 0, 0, 88, 0, 0, 0, 0}));
}

TEST_F(Statistics, DetailedStatisticsAskTheToolForTheInterfaceOfTheVap) {
    print_details(APSTATS);
    wlan_stats_t stats = {};
    EXPECT_EQ(commands_of([&] { wlan_getStats(2, &stats); }), calls({"apstats -v -i ath1"}));
}

TEST_F(Statistics, DetailedCountersAreFoundInAnyOrder) {
    print_details(
        "Tx Multi/Broadcast Data Packets = 3\nRx errors                       = 1\n"
        "Tx Unicast Data Packets         = 2\n");
    wlan_stats_t stats = {};
    EXPECT_EQ(wlan_getStats(1, &stats), 0);
    EXPECT_EQ(words_of(stats), words({0, 1, 2, 0, 0, 0, 3, 0, 0, 0, 0}));
}

// They are looked for in this order; what is read before the missing one stays, and nothing is cleared.
TEST_F(Statistics, AMissingDetailedCounterFailsAndKeepsThoseBeforeIt) {
    const struct {
        std::string marker;
        const char *line;
        uint32_t errors;
        uint32_t unicast;
    } rows[] = {
        {"Rx errors                       =", "get Wlan_ErrorsReceived failed", KEPT, KEPT},
        {"Tx Unicast Data Packets         =", "get wlan_UnicastPacketsSent failed", 9, KEPT},
        {"Tx Multi/Broadcast Data Packets =", "get Wlan_MulticastPacketsSent failed", 9, 777},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(row.marker.size(), 33U);
        std::string printed = APSTATS;
        printed.replace(printed.find(row.marker), row.marker.size(), row.marker.size(), '_');
        print_details(printed);
        wlan_stats_t stats = KEPT_DETAILS;
        int status = 0;
        calls lines =
            printed_behind("[VLK-API] wlan_getStats wlan_getStats: ", [&] { status = wlan_getStats(1, &stats); });
        EXPECT_EQ(status, -1) << row.marker;
        EXPECT_EQ(words_of(stats),
                  words({KEPT, row.errors, row.unicast, KEPT, KEPT, KEPT, KEPT, KEPT, KEPT, KEPT, KEPT}))
            << row.marker;
        EXPECT_EQ(lines, calls({row.line}));
    }
}

TEST_F(Statistics, ADetailedMarkerWithAnotherNumberOfBlanksIsAnother) {
    for (const char *name : {"Rx errors", "Tx Unicast Data Packets", "Tx Multi/Broadcast Data Packets"}) {
        for (bool longer : {false, true}) {
            std::string printed = APSTATS;
            size_t end = printed.find(name) + strlen(name);
            if (longer) {
                printed.insert(end, " ");
            } else {
                printed.erase(end, 1);
            }
            print_details(printed);
            wlan_stats_t stats = {};
            EXPECT_EQ(wlan_getStats(1, &stats), -1) << printed;
        }
    }
}

TEST_F(Statistics, ADetailedCounterIsTheFirstNumberInTheRestOfItsLine) {
    EXPECT_EQ(detailed_number("12\n"), 12U);
    EXPECT_EQ(detailed_number(" \t 12 34\n"), 12U);
    EXPECT_EQ(detailed_number(" -1\n"), 0xffff'ffffU);
    EXPECT_EQ(detailed_number(" 12abc\n"), 12U);
    EXPECT_EQ(detailed_number(" abc12\n"), 0U);
    EXPECT_EQ(detailed_number(" 12\r\n"), 12U);
}

TEST_F(Statistics, ADetailedCounterNeverRunsOnIntoTheNextLine) {
    EXPECT_EQ(detailed_number("\n34\n"), 0U);
    EXPECT_EQ(detailed_number("  \n34\n"), 0U);
    EXPECT_EQ(detailed_number("\r\n34\n"), 0U);
    EXPECT_EQ(detailed_number(" -\n34\n"), 0U);
    EXPECT_EQ(detailed_number(" 12\n34\n"), 12U);
}

TEST_F(Statistics, AnOutputMayEndAnywhereInADetailedCounter) {
    EXPECT_EQ(detailed_number(""), 0U);
    EXPECT_EQ(detailed_number(" "), 0U);
    EXPECT_EQ(detailed_number(" -"), 0U);
    EXPECT_EQ(detailed_number(" 5"), 5U);
}

TEST_F(Statistics, ADetailedCounterIsTheLowWordOfALargerNumber) {
    EXPECT_EQ(detailed_number(" 4294967295"), 0xffff'ffffU);
    EXPECT_EQ(detailed_number(" 4294967301"), 5U);
}

// VAP 3 is on radio 1, whose settings have the bare key, VAP 4 on radio 0.
TEST_F(Statistics, DetailedStatisticsNeedTheVapAndItsRadioEnabled) {
    const struct {
        int index;
        std::vector<std::string> store;
        int status;
    } rows[] = {
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=1", "AP_ENABLE_3=1"}, 0},
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=2", "AP_ENABLE_3=-1"}, 0},
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=0", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_3=1"}, -1},
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=1", "AP_ENABLE=1", "AP_ENABLE_3=0"}, -1},
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=1"}, -1},
        {3, {"AP_RADIO_ID_3=1", "AP_ENABLE_3=1"}, -1},
        {3, {"AP_RADIO_ID_3=1", "AP_RADIO_ENABLED=yes", "AP_ENABLE_3=1"}, -1},
        {4, {"AP_RADIO_ID_4=0", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_4=1"}, 0},
        {4, {"AP_RADIO_ID_4=0", "AP_RADIO_ENABLED=1", "AP_ENABLE_4=1"}, -1},
        {4, {}, -1},
    };
    for (const auto &row : rows) {
        reset_platform();
        install_tool("apstats", APSTATS);
        write_store(row.store);
        wlan_stats_t stats = KEPT_DETAILS;
        EXPECT_EQ(wlan_getStats(row.index, &stats), row.status) << testing::PrintToString(row.store);
        bool asked = row.status == 0;
        EXPECT_EQ(tool_calls().size(), asked ? 1U : 0U) << testing::PrintToString(row.store);
        EXPECT_EQ(words_of(stats), asked ? words({KEPT, 9, 777, 0, 0, 0, 88, 0, 0, 0, 0}) : words(11, 0))
            << testing::PrintToString(row.store);
    }
}

TEST_F(Statistics, WithoutAStoreTheDetailedStatisticsAreClearedAndFail) {
    wlan_stats_t stats = KEPT_DETAILS;
    EXPECT_EQ(wlan_getStats(1, &stats), -1);
    EXPECT_EQ(words_of(stats), words(11, 0));
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Statistics, ANegativeIndexClearsAllDetailedStatistics) {
    // These names are those of VAP 1 to the store.
    print_details(APSTATS);
    for (int index : {-1, INT_MIN}) {
        wlan_stats_t stats = KEPT_DETAILS;
        EXPECT_EQ(wlan_getStats(index, &stats), -1) << index;
        EXPECT_EQ(words_of(stats), words(11, 0)) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Statistics, DetailedStatisticsOfIndexZeroAreAskedFor) {
    print_details(APSTATS);
    wlan_stats_t stats = {};
    EXPECT_EQ(wlan_getStats(0, &stats), 0);
    EXPECT_EQ(tool_calls(), calls({"apstats -v -i ath-1"}));
}

TEST_F(Statistics, ASilentApstatsIsATextWithoutCounters) {
    print_details("");
    wlan_stats_t stats = KEPT_DETAILS;
    int status = 0;
    calls lines = printed_behind("[VLK-API] wlan_getStats wlan_getStats: ", [&] { status = wlan_getStats(1, &stats); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(lines, calls({"get Wlan_ErrorsReceived failed"}));
    EXPECT_EQ(words_of(stats), words_of(KEPT_DETAILS));
}

TEST_F(Statistics, WithoutApstatsOutputTheDetailedStatisticsFailUntouched) {
    print_details(APSTATS);
    step_rules rules;
    rules.refused = "apstats";
    begin_steps(rules);
    wlan_stats_t stats = KEPT_DETAILS;
    int status = 0;
    calls lines = printed_behind("[VLK-API] wlan_getStats wlan_getStats: ", [&] { status = wlan_getStats(1, &stats); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(lines, calls({}));
    EXPECT_EQ(words_of(stats), words_of(KEPT_DETAILS));
}

TEST_F(Statistics, DetailedStatisticsPrintNothingWhileDebuggingIsOff) {
    print_details("");
    wlan_stats_t stats = {};
    printed_text printed = capture([&] { wlan_getStats(1, &stats); });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Statistics, TheToolsLeaveNoDescriptorOpenWhateverTheyPrint) {
    print_details(APSTATS);
    print_counters(IFCONFIG);
    wlan_basicStats_t basic = {};
    wlan_stats_t details = {};
    int before = lowest_free_descriptor();
    for (int i = 0; i < 20; i++) {
        ASSERT_EQ(wlan_getBasicStats(1, &basic), 0);
        ASSERT_EQ(wlan_getStats(1, &details), 0);
    }
    print_details("");
    print_counters("");
    for (int i = 0; i < 20; i++) {
        ASSERT_EQ(wlan_getBasicStats(1, &basic), -1);
        ASSERT_EQ(wlan_getStats(1, &details), -1);
    }
    EXPECT_EQ(lowest_free_descriptor(), before);
}

// --- the driver's stations ---

constexpr size_t ENTRY_SIZE = 236;

// The most that the driver can count.
constexpr uint32_t COUNT_MAX = 127;

// A station whose every byte tells its place.
std::string entry_of(uint32_t number) {
    std::string bytes;
    for (size_t i = 0; i < ENTRY_SIZE; i++) {
        bytes += static_cast<char>(number * 31 + i);
    }
    return bytes;
}

// The same with the words at 152 and 156 exchanged.
std::string exchanged(const std::string &bytes) {
    return bytes.substr(0, 152) + bytes.substr(156, 4) + bytes.substr(152, 4) + bytes.substr(160);
}

// The same as VAP `interface` + 1 has it in its table.
std::string on_interface(std::string bytes, unsigned char interface) {
    bytes[192] = static_cast<char>(interface);
    return bytes;
}

std::string entries_of(uint32_t count) {
    std::string bytes;
    for (uint32_t i = 0; i < count; i++) {
        bytes += entry_of(i);
    }
    return bytes;
}

// A driver that says it has so many stations, fills as much of the buffer as it has room for, and gives the block of
// the table request back like that.
struct lying_driver {
    uint32_t count = 0;
    std::string entries = entries_of(COUNT_MAX);
    bool changes_value = false;
    uint32_t value = 0;  // the word when it changes
    bool changes_buffer = false;
    uint32_t refused = 0;  // the command that fails
};

void connect(const lying_driver &lies) {
    answer_request = [lies](const seen_request &request) {
        driver_command block = block_of(request);
        if (block.command == lies.refused) {
            return REFUSED(EIO);
        }
        if (block.command == 41) {
            block.value = lies.count;
        }
        if (block.command == 42) {
            write_buffer(block.buffer, lies.entries.substr(0, block.value * ENTRY_SIZE));
            block.value = lies.changes_value ? lies.value : block.value;
            block.buffer = lies.changes_buffer ? 16 : block.buffer;
        }
        return ANSWERED(bytes_of(block));
    };
}

void connect_stations(uint32_t count) {
    lying_driver honest;
    honest.count = count;
    connect(honest);
}

words commands_sent() {
    words commands;
    for (const seen_request &request : requests) {
        commands.push_back(block_of(request).command);
    }
    return commands;
}

// Where memory for the driver is found next: the same before and after whatever gives back all of it.
uint32_t next_low_memory() {
    void *memory = low_memory_new(1);
    uint32_t address = low_memory_address(memory);
    low_memory_free(memory, 1);
    return address;
}

// A table with what lies behind it.
struct guarded_table {
    wlan_assoc_devices_table table;
    char behind[ENTRY_SIZE];

    explicit guarded_table(char fill) {
        memset(&table, fill, sizeof(table));
        memset(behind, '?', sizeof(behind));
    }

    std::string entry(size_t number) const {
        return bytes_of_record(&table.Devices[number], sizeof(table.Devices[number]));
    }

    bool is_overrun() const {
        return std::string(behind, sizeof(behind)) != std::string(sizeof(behind), '?');
    }
};

bool is_untouched(const guarded_table &record) {
    return bytes_of_record(&record.table, sizeof(record.table)) == std::string(sizeof(record.table), '!');
}

// The back ends that read the stations, as one signature; what they give out is thrown away.
int get_device(int index) {
    wlan_device_t station = {};
    return wlan_getAssocDevice(index, 0, &station);
}

int get_table(int index) {
    wlan_assoc_devices_table table = {};
    return wlan_getAssocDevicesTable_2(index, &table);
}

int list_quietly(int index) {
    int status = 0;
    capture([&] { status = wlan_listSTA(index); });
    return status;
}

const struct {
    const char *name;
    int (*read)(int index);
} READERS[] = {
    {"wlan_getAssocDevice", get_device}, {"wlan_getAssocDevicesTable_2", get_table}, {"wlan_listSTA", list_quietly}};

// --- how many there are ---

TEST_F(Statistics, TheNumberOfStationsIsAskedForWithCommand41) {
    u_int count = 0;
    connect_stations(5);
    EXPECT_EQ(wlan_getAssocDevicesNum(9, &count), 0);
    EXPECT_EQ(count, 5U);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath8");
    EXPECT_EQ(requests[0].request, 0x89FCUL);
    EXPECT_EQ(requests[0].bytes, std::string("\x29\0\0\0\0\0\0\0\0\0\0\0", 12));
}

TEST_F(Statistics, OnlyTheLowSevenBitsAreTheNumberOfStations) {
    const struct {
        uint32_t said;
        u_int count;
    } rows[] = {{0, 0},     {1, 1},   {40, 40},  {127, 127},         {128, 0},         {129, 1},
                {255, 127}, {256, 0}, {300, 44}, {0x7fff'ffff, 127}, {0x8000'0003, 3}, {0xffff'ffff, 127}};
    for (const auto &row : rows) {
        connect_stations(row.said);
        u_int count = KEPT;
        EXPECT_EQ(wlan_getAssocDevicesNum(1, &count), 0) << row.said;
        EXPECT_EQ(count, row.count) << row.said;
        count = KEPT;
        EXPECT_EQ(wlan_getAssocDevicesTableNumOfEntries(1, &count), 0) << row.said;
        EXPECT_EQ(count, row.count) << row.said;
    }
}

TEST_F(Statistics, ADriverThatSaysNothingHasNoStations) {
    u_int count = KEPT;
    EXPECT_EQ(wlan_getAssocDevicesNum(1, &count), 0);
    EXPECT_EQ(count, 0U);
}

TEST_F(Statistics, ARefusedNumberOfStationsFailsAndIsUntouched) {
    answer_request = [](const seen_request &) { return request_answer{EIO, 0, bytes_of({41, 5, 0}), NO_LENGTH}; };
    u_int count = KEPT;
    EXPECT_EQ(wlan_getAssocDevicesNum(1, &count), -1);
    EXPECT_EQ(count, KEPT);
}

TEST_F(Statistics, ARefusedNumberOfTableEntriesSucceedsAndIsUntouched) {
    answer_request = [](const seen_request &) { return request_answer{EIO, 0, bytes_of({41, 5, 0}), NO_LENGTH}; };
    u_int count = KEPT;
    EXPECT_EQ(wlan_getAssocDevicesTableNumOfEntries(1, &count), 0);
    EXPECT_EQ(count, KEPT);
    EXPECT_EQ(commands_sent(), words({41}));
}

TEST_F(Statistics, TheNumberOfStationsMayBeAskedForWithAnyIndex) {
    u_int count = 0;
    for (int index : {INT_MIN, -1, 0, 1, 16, 17, INT_MAX}) {
        EXPECT_EQ(wlan_getAssocDevicesNum(index, &count), 0) << index;
    }
    calls interfaces;
    for (const seen_request &request : requests) {
        interfaces.push_back(request.interface);
    }
    EXPECT_EQ(interfaces, calls({"ath2147483647", "ath-2", "ath-1", "ath0", "ath15", "ath16", "ath2147483646"}));
}

// --- the table request ---

// A caller's buffer with two more entries behind its end.
struct station_buffer {
    static constexpr uint32_t BEHIND = 2;
    uint32_t room;
    std::string before;
    char *memory;

    explicit station_buffer(uint32_t entries) : room(entries), before(entries_of(entries + BEHIND)) {
        memory = static_cast<char *>(low_memory_new(before.size()));
        if (!memory) {
            abort();
        }
        memcpy(memory, before.data(), before.size());
    }
    ~station_buffer() {
        low_memory_free(memory, before.size());
    }
    station_buffer(const station_buffer &) = delete;
    station_buffer &operator=(const station_buffer &) = delete;

    driver_command block() const {
        return {0, room, low_memory_address(memory)};
    }
    // What is there when so many entries are exchanged.
    std::string with_exchanged(uint32_t count) const {
        std::string bytes;
        for (uint32_t i = 0; i < room + BEHIND; i++) {
            std::string entry = before.substr(i * ENTRY_SIZE, ENTRY_SIZE);
            bytes += i < count ? exchanged(entry) : entry;
        }
        return bytes;
    }
    std::string bytes() const {
        return {memory, before.size()};
    }
};

TEST_F(Statistics, TheTableIsAskedForWithCommand42AndTheCallersBuffer) {
    station_buffer buffer(3);
    driver_command block = buffer.block();
    EXPECT_EQ(wlan_getAssocDevicesTable(16, &block), 0);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].interface, "ath15");
    EXPECT_EQ(requests[0].request, 0x89FCUL);
    driver_command sent = block_of(requests[0]);
    EXPECT_EQ(sent.command, 42U);
    EXPECT_EQ(sent.value, 3U);
    EXPECT_EQ(low_memory_at(sent.buffer), buffer.memory);
}

TEST_F(Statistics, TheTwoWordsThatTheDriverExchangesAreExchangedBack) {
    station_buffer buffer(3);
    driver_command block = buffer.block();
    EXPECT_EQ(wlan_getAssocDevicesTable(1, &block), 0);
    EXPECT_EQ(buffer.bytes(), buffer.with_exchanged(3));
    EXPECT_NE(buffer.bytes(), buffer.before);
}

TEST_F(Statistics, AsManyEntriesAreExchangedAsTheReturnedValueSaysAndTheBufferHolds) {
    const struct {
        uint32_t room;
        uint32_t returned;
        uint32_t count;
    } rows[] = {{3, 3, 3},           {3, 0, 0},       {3, 2, 2},     {3, 4, 3},      {3, 255, 3},
                {3, 256, 0},         {3, 300, 3},     {3, 258, 2},   {0, 0, 0},      {0, 255, 0},
                {3, 0xffff'ffff, 3}, {127, 255, 127}, {256, 256, 0}, {300, 300, 44}, {300, 255, 255}};
    for (const auto &row : rows) {
        station_buffer buffer(row.room);
        driver_command block = buffer.block();
        answer_request = [&](const seen_request &request) {
            driver_command answer = block_of(request);
            answer.value = row.returned;
            return ANSWERED(bytes_of(answer));
        };
        EXPECT_EQ(wlan_getAssocDevicesTable(1, &block), 0);
        EXPECT_EQ(buffer.bytes(), buffer.with_exchanged(row.count)) << row.room << " " << row.returned;
    }
}

TEST_F(Statistics, ABufferAddressThatTheDriverChangesIsNotFollowed) {
    station_buffer buffer(3);
    station_buffer other(3);
    driver_command block = buffer.block();
    answer_request = [&](const seen_request &) {
        return ANSWERED(bytes_of({42, 3, low_memory_address(other.memory)}));
    };
    EXPECT_EQ(wlan_getAssocDevicesTable(1, &block), 0);
    EXPECT_EQ(buffer.bytes(), buffer.with_exchanged(3));
    EXPECT_EQ(other.bytes(), other.before);
}

TEST_F(Statistics, ARefusedTableFailsAndNothingIsExchanged) {
    station_buffer buffer(3);
    driver_command block = buffer.block();
    answer_request = [](const seen_request &) { return REFUSED(EIO); };
    EXPECT_EQ(wlan_getAssocDevicesTable(1, &block), -1);
    EXPECT_EQ(buffer.bytes(), buffer.before);
}

TEST_F(Statistics, AnAnswerAboveZeroIsASuccessOfTheTable) {
    station_buffer buffer(1);
    driver_command block = buffer.block();
    answer_request = [](const seen_request &) { return request_answer{0, 7, "", NO_LENGTH}; };
    EXPECT_EQ(wlan_getAssocDevicesTable(1, &block), 0);
}

// --- one station ---

TEST_F(Statistics, AStationIsItsRecordToTheByteWithTheTwoWordsExchanged) {
    connect_stations(3);
    for (int device : {0, 1, 2}) {
        wlan_device_t station = {};
        EXPECT_EQ(wlan_getAssocDevice(2, device, &station), 0) << device;
        EXPECT_EQ(bytes_of_record(&station, sizeof(station)), exchanged(entry_of(device))) << device;
    }
    EXPECT_EQ(requests[0].interface, "ath1");
    EXPECT_EQ(requests[1].interface, "ath1");
}

TEST_F(Statistics, AStationIsReadIntoABufferForAllOfThem) {
    connect_stations(40);
    EXPECT_EQ(get_device(1), 0);
    EXPECT_EQ(commands_sent(), words({41, 42}));
    EXPECT_EQ(block_of(requests[1]).value, 40U);
}

TEST_F(Statistics, TheLastOf127StationsIsFound) {
    connect_stations(127);
    wlan_device_t station = {};
    EXPECT_EQ(wlan_getAssocDevice(1, 126, &station), 0);
    EXPECT_EQ(bytes_of_record(&station, sizeof(station)), exchanged(entry_of(126)));
}

TEST_F(Statistics, AStationAtAPlaceWhereNobodyIsFailsUntouched) {
    connect_stations(3);
    wlan_device_t station;
    for (int device : {3, 4, 127, INT_MAX, -1, -2, INT_MIN}) {
        memset(&station, '!', sizeof(station));
        EXPECT_EQ(wlan_getAssocDevice(1, device, &station), -1) << device;
        EXPECT_EQ(bytes_of_record(&station, sizeof(station)), std::string(ENTRY_SIZE, '!')) << device;
    }
    EXPECT_EQ(commands_sent(), words(7, 41)) << "the table is not read in vain";
}

TEST_F(Statistics, WithoutStationsThereIsNoneAtAnyPlace) {
    wlan_device_t station = {};
    for (uint32_t count : {0U, 128U, 256U}) {
        connect_stations(count);
        for (int device : {INT_MIN, -1, 0, 1, INT_MAX}) {
            EXPECT_EQ(wlan_getAssocDevice(1, device, &station), -1) << count << " " << device;
        }
    }
}

TEST_F(Statistics, AStationOfARefusedTableFailsUntouched) {
    lying_driver lies;
    lies.count = 3;
    for (uint32_t refused : {41U, 42U}) {
        lies.refused = refused;
        connect(lies);
        wlan_device_t station;
        memset(&station, '!', sizeof(station));
        EXPECT_EQ(wlan_getAssocDevice(1, 0, &station), -1) << refused;
        EXPECT_EQ(bytes_of_record(&station, sizeof(station)), std::string(ENTRY_SIZE, '!')) << refused;
    }
}

// --- the whole table ---

TEST_F(Statistics, TheTableHasEachRecordToTheByteWithTheInterfaceOfTheVap) {
    connect_stations(3);
    guarded_table record('\0');
    EXPECT_EQ(wlan_getAssocDevicesTable_2(12, &record.table), 0);
    std::string expected = std::string("\3\0\0\0", 4);
    for (uint32_t i = 0; i < 3; i++) {
        expected += on_interface(exchanged(entry_of(i)), 11);
    }
    EXPECT_EQ(bytes_of_record(&record.table, sizeof(record.table)), padded(expected, 7556));
    EXPECT_EQ(requests[0].interface, "ath11");
    EXPECT_EQ(requests[1].interface, "ath11");
    EXPECT_EQ(block_of(requests[1]).value, 3U);
}

TEST_F(Statistics, TheTableHoldsTheFirst32StationsInTheDriversOrder) {
    for (uint32_t count : {32U, 33U, 40U, 127U}) {
        connect_stations(count);
        requests.clear();
        guarded_table record('\0');
        EXPECT_EQ(wlan_getAssocDevicesTable_2(1, &record.table), 0);
        EXPECT_EQ(record.table.NumOfEntries, 32U) << count;
        for (uint32_t i = 0; i < 32; i++) {
            EXPECT_EQ(record.entry(i), on_interface(exchanged(entry_of(i)), 0)) << count << " " << i;
        }
        EXPECT_FALSE(record.is_overrun()) << count;
        EXPECT_EQ(block_of(requests[1]).value, count);
    }
}

TEST_F(Statistics, TheTableHas31StationsWhenThereAreNoMore) {
    connect_stations(31);
    guarded_table record('\0');
    EXPECT_EQ(wlan_getAssocDevicesTable_2(1, &record.table), 0);
    EXPECT_EQ(record.table.NumOfEntries, 31U);
    EXPECT_EQ(record.entry(31), std::string(ENTRY_SIZE, '\0'));
}

TEST_F(Statistics, WithoutStationsTheTableIsEmptyAndNotAskedFor) {
    for (uint32_t count : {0U, 128U, 0xffff'ff80U}) {
        connect_stations(count);
        requests.clear();
        guarded_table record('!');
        EXPECT_EQ(wlan_getAssocDevicesTable_2(1, &record.table), 0) << count;
        EXPECT_EQ(record.table.NumOfEntries, 0U) << count;
        EXPECT_EQ(commands_sent(), words({41})) << count;
    }
}

TEST_F(Statistics, TheInterfaceOfATableIsTheLowByteOfTheIndexLessOne) {
    const struct {
        int index;
        unsigned char interface;
    } rows[] = {{0, 255}, {1, 0}, {16, 15}, {17, 16}, {256, 255}, {257, 0}, {INT_MAX, 254}};
    connect_stations(1);
    for (const auto &row : rows) {
        guarded_table record('\0');
        EXPECT_EQ(wlan_getAssocDevicesTable_2(row.index, &record.table), 0) << row.index;
        EXPECT_EQ(record.entry(0), on_interface(exchanged(entry_of(0)), row.interface)) << row.index;
    }
}

TEST_F(Statistics, ATableThatCannotBeReadIsUntouched) {
    lying_driver lies;
    lies.count = 3;
    for (uint32_t refused : {41U, 42U}) {
        lies.refused = refused;
        connect(lies);
        guarded_table record('!');
        EXPECT_EQ(wlan_getAssocDevicesTable_2(1, &record.table), -1) << refused;
        EXPECT_TRUE(is_untouched(record)) << refused;
    }
}

TEST_F(Statistics, TheTableIsLoggedWithItsNumberAndTheLowWordOfItsAddress) {
    connect_stations(40);
    wlan_assoc_devices_table table = {};
    std::string lines = debug_lines([&] { wlan_getAssocDevicesTable_2(1, &table); });
    char address[16];
    snprintf(address, sizeof(address), "0x%08x", block_of(requests[1]).buffer);
    EXPECT_EQ(lines,
              std::string("[VLK-API] wlan_getAssocDevicesTable_2 wlan_getAssocDevicesTable_2:4881 entry_num 40 \n"
                          "[VLK-API] wlan_getAssocDevicesTable_2 scan buffer is at ") +
                  address + "\n");
}

TEST_F(Statistics, AnEmptyTableIsLoggedWithItsNumberAlone) {
    wlan_assoc_devices_table table = {};
    EXPECT_EQ(debug_lines([&] { wlan_getAssocDevicesTable_2(1, &table); }),
              "[VLK-API] wlan_getAssocDevicesTable_2 wlan_getAssocDevicesTable_2:4881 entry_num 0 \n");
}

TEST_F(Statistics, StationsAreReadInSilenceWhileDebuggingIsOff) {
    connect_stations(3);
    printed_text printed = capture([] {
        get_device(1);
        get_table(1);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- whoever reads the stations ---

// Even for an index that is then refused.
TEST_F(Statistics, AskingForOneStationAndListingThemSetTheSearchPath) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the path is set once a process
    for (int (*ask)(int) : {get_device, wlan_listSTA}) {
        EXPECT_EXIT(
            {
                std::string before = getenv("PATH");
                ask(-1);
                exit(getenv("PATH") == before + ":/etc/ath" ? 0 : 1);
            },
            testing::ExitedWithCode(0), "");
    }
}

TEST_F(Statistics, ANegativeIndexReadsNoStations) {
    connect_stations(3);
    for (const auto &reader : READERS) {
        for (int index : {-1, INT_MIN}) {
            EXPECT_EQ(reader.read(index), -1) << reader.name << " " << index;
        }
    }
    guarded_table record('!');
    EXPECT_EQ(wlan_getAssocDevicesTable_2(-1, &record.table), -1);
    EXPECT_TRUE(is_untouched(record));
    EXPECT_EQ(requests.size(), 0U);
}

TEST_F(Statistics, WhateverTheDriverSaysEachStationIsReadFromTheBuffer) {
    for (uint32_t count : {0U, 1U, 127U, 128U, 255U, 300U, 0xffff'ffffU}) {
        for (uint32_t value : {0U, 1U, 255U, 256U, 300U, 0xffff'ffffU}) {
            lying_driver lies;
            lies.count = count;
            lies.changes_value = true;
            lies.value = value;
            lies.changes_buffer = true;
            connect(lies);
            uint32_t stations = count & 127;
            uint32_t turned = value & 255;
            auto expected = [&](uint32_t i) { return i < turned ? exchanged(entry_of(i)) : entry_of(i); };
            guarded_table record('\0');
            EXPECT_EQ(wlan_getAssocDevicesTable_2(1, &record.table), 0) << count << " " << value;
            EXPECT_EQ(record.table.NumOfEntries, std::min(stations, 32U)) << count << " " << value;
            for (uint32_t i = 0; i < record.table.NumOfEntries; i++) {
                EXPECT_EQ(record.entry(i), on_interface(expected(i), 0)) << count << " " << value << " " << i;
            }
            EXPECT_FALSE(record.is_overrun());
            for (uint32_t i = 0; i < stations; i++) {
                wlan_device_t station = {};
                EXPECT_EQ(wlan_getAssocDevice(1, static_cast<int>(i), &station), 0);
                EXPECT_EQ(bytes_of_record(&station, sizeof(station)), expected(i)) << count << " " << value << " " << i;
            }
        }
    }
}

// A station may leave between the two requests.
TEST_F(Statistics, StationsThatTheDriverDoesNotFillInAreZero) {
    lying_driver lies;
    lies.count = 2;
    lies.entries = entry_of(0);
    // What an earlier call left behind must not show.
    connect_stations(2);
    get_table(1);
    connect(lies);
    guarded_table record('\0');
    EXPECT_EQ(wlan_getAssocDevicesTable_2(8, &record.table), 0);
    EXPECT_EQ(record.table.NumOfEntries, 2U);
    EXPECT_EQ(record.entry(0), on_interface(exchanged(entry_of(0)), 7));
    EXPECT_EQ(record.entry(1), on_interface(std::string(ENTRY_SIZE, '\0'), 7));
    wlan_device_t station = {};
    EXPECT_EQ(wlan_getAssocDevice(1, 1, &station), 0);
    EXPECT_EQ(bytes_of_record(&station, sizeof(station)), std::string(ENTRY_SIZE, '\0'));
}

// Takes the memory away when the driver has counted, so that only the buffer is not to be had.
TEST_F(Statistics, WithoutMemoryNoStationsAreRead) {
    held_low_memory held;
    rlimit whole = {};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &whole), 0);
    answer_request = [&](const seen_request &) {
        rlimit none = whole;
        none.rlim_cur = 1;
        request_answer answer = ANSWERED(bytes_of({41, 3, 0}));
        setrlimit(RLIMIT_AS, &none);
        return answer;
    };
    guarded_table record('!');
    wlan_device_t station;
    memset(&station, '!', sizeof(station));
    int status = wlan_getAssocDevicesTable_2(1, &record.table);
    setrlimit(RLIMIT_AS, &whole);
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(is_untouched(record));
    status = wlan_getAssocDevice(1, 0, &station);
    setrlimit(RLIMIT_AS, &whole);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(bytes_of_record(&station, sizeof(station)), std::string(ENTRY_SIZE, '!'));
    begin_capture();
    status = wlan_listSTA(1);
    setrlimit(RLIMIT_AS, &whole);
    printed_text printed = end_capture();
    EXPECT_EQ(status, -1);
    EXPECT_TRUE(contains(printed.err, "scan buffer is at 0x00000000\n")) << printed.err;
    EXPECT_EQ(commands_sent(), words(3, 41));
}

TEST_F(Statistics, TheBufferIsGivenBackWhetherItIsFilledOrNot) {
    uint32_t before = next_low_memory();
    ASSERT_NE(before, 0U);
    lying_driver lies;
    lies.count = 127;
    for (uint32_t refused : {0U, 42U}) {
        lies.refused = refused;
        connect(lies);
        for (const auto &reader : READERS) {
            reader.read(1);
            EXPECT_EQ(next_low_memory(), before) << reader.name << " " << refused;
        }
    }
}

TEST_F(Statistics, TenThousandRequestsLeaveNoDescriptorOpen) {
    u_int count = 0;
    const struct {
        const char *name;
        std::function<void()> ask;
    } rows[] = {
        {"wlan_getAssocDevicesNum", [&] { wlan_getAssocDevicesNum(1, &count); }},
        {"wlan_getAssocDevicesTableNumOfEntries", [&] { wlan_getAssocDevicesTableNumOfEntries(1, &count); }},
        {"wlan_getAssocDevice", [] { get_device(1); }},
        {"wlan_getAssocDevicesTable_2", [] { get_table(1); }},
        {"wlan_listSTA", [] { wlan_listSTA(1); }},
    };
    connect_stations(1);
    wlan_ioctl_socket();
    int before = lowest_free_descriptor();
    for (const auto &row : rows) {
        begin_capture();
        for (int i = 0; i < 10000; i++) {
            row.ask();
            requests.clear();
        }
        end_capture();
        EXPECT_EQ(lowest_free_descriptor(), before) << row.name;
    }
}

// --- the listing ---

// A station with texts and numbers as the listing shows them.
std::string told_entry() {
    std::string bytes(ENTRY_SIZE, '\0');
    bytes.replace(0, 17, "00:03:7f:00:00:01");
    bytes.replace(18, 12, "192.168.0.17");
    bytes.replace(82, 4, "EPSs");
    bytes.replace(127, 5, "other");
    const struct {
        size_t offset;
        uint32_t word;
    } numbers[] = {{144, 11}, {148, 12}, {152, 13}, {156, 14}, {160, 15}, {164, 16}, {168, 17},
                   {172, 18}, {176, 19}, {180, 20}, {184, 21}, {188, 22}, {196, 23}, {200, 24}};
    for (const auto &number : numbers) {
        put_word(&bytes, number.offset, number.word);
    }
    bytes[192] = 7;
    bytes.replace(204, 4, "Home");
    return bytes;
}

printed_text printed_of(const std::string &entries) {
    char *memory = static_cast<char *>(low_memory_new(entries.size()));
    EXPECT_NE(memory, nullptr);
    if (!memory) {
        return {};
    }
    memcpy(memory, entries.data(), entries.size());
    driver_command block = {42, static_cast<uint32_t>(entries.size() / ENTRY_SIZE), low_memory_address(memory)};
    printed_text printed = capture([&] { wlan_printSTAInfo(&block); });
    low_memory_free(memory, entries.size());
    return printed;
}

TEST_F(Statistics, AStationIsPrintedOnElevenLinesToStandardError) {
    printed_text printed = printed_of(told_entry());
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err,
              "STA[0] --> Ssid Home\n"
              "STA[0] --> wlan_devMacAddress 00:03:7f:00:00:01\n"
              "STA[0] --> wlan_CapabilityInfo EPSs\n"
              "STA[0] --> wlan_connectedTime 11\n"
              "STA[0] --> wlan_devState 12\n"
              "STA[0] --> wlan_txPackets 13\n"
              "STA[0] --> wlan_txRate 14\n"
              "STA[0] --> wlan_MaxSupportedRate 15\n"
              "STA[0] --> wlan_mcTxPackets 17\n"
              "STA[0] --> wlan_ucTxPackets 18\n"
              "STA[0] --> wlan_apidx 7\n");
}

TEST_F(Statistics, TextsWithoutAnEndAreNotPrintedBeyondTheirFields) {
    std::string err = printed_of(std::string(2 * ENTRY_SIZE, 'x')).err;
    EXPECT_TRUE(contains(err, "STA[0] --> Ssid " + std::string(32, 'x') + "\n")) << err;
    EXPECT_TRUE(contains(err, "STA[0] --> wlan_devMacAddress " + std::string(18, 'x') + "\n")) << err;
    EXPECT_TRUE(contains(err, "STA[0] --> wlan_CapabilityInfo " + std::string(45, 'x') + "\n")) << err;
}

TEST_F(Statistics, LargeNumbersOfAStationArePrintedSignedButItsInterface) {
    std::string err = printed_of(std::string(ENTRY_SIZE, '\xff')).err;
    EXPECT_TRUE(contains(err, "wlan_txPackets -1\n")) << err;
    EXPECT_TRUE(contains(err, "wlan_apidx 255\n")) << err;
}

TEST_F(Statistics, EveryStationOfABlockIsPrintedWithItsPlace) {
    std::string entries = told_entry() + told_entry() + told_entry();
    entries.replace(ENTRY_SIZE + 204, 4, "Away");
    entries[2 * ENTRY_SIZE + 192] = 9;
    std::string err = printed_of(entries).err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 33);
    EXPECT_TRUE(contains(err, "STA[1] --> Ssid Away\n")) << err;
    EXPECT_TRUE(contains(err, "STA[2] --> Ssid Home\n")) << err;
    EXPECT_TRUE(contains(err, "STA[2] --> wlan_apidx 9\n")) << err;
}

TEST_F(Statistics, AnEmptyBlockPrintsNothing) {
    driver_command block = {};
    printed_text printed = capture([&] { wlan_printSTAInfo(&block); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// The line of the source that its first line names is left out.
std::string listing_of(int index, int *status) {
    printed_text printed = capture([&] { *status = wlan_listSTA(index); });
    EXPECT_EQ(printed.out, "");
    std::string err = printed.err;
    std::string beginning = "wlan_listSTA:";
    if (err.compare(0, beginning.size(), beginning) == 0) {
        size_t digits = strspn(err.c_str() + beginning.size(), "0123456789");
        EXPECT_GT(digits, 0U) << err;
        err.erase(beginning.size(), digits);
    }
    return err;
}

std::string buffer_line() {
    char line[48];
    snprintf(line, sizeof(line), "scan buffer is at 0x%08x\n", requests.size() > 1 ? block_of(requests[1]).buffer : 0);
    return line;
}

TEST_F(Statistics, TheListingTellsNumberAndBufferAndThenEachStation) {
    lying_driver lies;
    lies.count = 2;
    lies.entries = told_entry() + told_entry();
    connect(lies);
    int status = -1;
    std::string err = listing_of(9, &status);
    EXPECT_EQ(status, 0);
    std::string both = printed_of(exchanged(told_entry()) + exchanged(told_entry())).err;
    EXPECT_EQ(err, "wlan_listSTA: entry_num 2 \n" + buffer_line() + both);
    EXPECT_EQ(requests[0].interface, "ath8");
    EXPECT_EQ(commands_sent(), words({41, 42}));
    EXPECT_EQ(block_of(requests[1]).value, 2U);
}

TEST_F(Statistics, TheListingIsOfTheStationsThatWereCountedWhateverTheBlockSaysThen) {
    lying_driver lies;
    lies.count = 2;
    lies.changes_value = true;
    lies.changes_buffer = true;
    for (uint32_t value : {0U, 255U, 0xffff'ffffU}) {
        lies.value = value;
        connect(lies);
        requests.clear();
        int status = -1;
        std::string err = listing_of(1, &status);
        EXPECT_EQ(status, 0) << value;
        EXPECT_TRUE(contains(err, "STA[1] --> wlan_apidx")) << value << err;
        EXPECT_FALSE(contains(err, "STA[2]")) << value << err;
    }
}

TEST_F(Statistics, WithoutStationsTheListingFailsInSilence) {
    int status = 0;
    EXPECT_EQ(listing_of(1, &status), "");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(commands_sent(), words({41}));
}

TEST_F(Statistics, TheListingFailsInSilenceWhenTheNumberIsRefused) {
    lying_driver lies;
    lies.count = 2;
    lies.refused = 41;
    connect(lies);
    int status = 0;
    EXPECT_EQ(listing_of(1, &status), "");
    EXPECT_EQ(status, -1);
}

TEST_F(Statistics, TheListingOfARefusedTableFailsWithoutAnyStation) {
    lying_driver lies;
    lies.count = 2;
    lies.refused = 42;
    connect(lies);
    int status = 0;
    std::string err = listing_of(1, &status);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(err, "wlan_listSTA: entry_num 2 \n" + buffer_line());
}

// --- the handler of one station ---

struct handler_answer {
    int return_code;
    u_int values_len;
    std::string data;
    std::string lines;
};

handler_answer ask_handler(int index, int device) {
    wlan_config_result_data_t result;
    memset(&result, '!', sizeof(result));
    handler_answer answer = {};
    set_debug(true);
    printed_text printed = capture([&] { wlan_get_assoc_device_1_svc(index, device, &result, nullptr); });
    set_debug(false);
    answer.lines = printed.out;
    answer.return_code = result.return_code;
    answer.values_len = result.return_values.return_values_len;
    answer.data.assign(result.return_data.return_data_val, result.return_data.return_data_len);
    free(result.return_data.return_data_val);
    return answer;
}

TEST_F(Statistics, TheHandlerOfAStationTellsItsAddressesBeforeItPacksTheRecord) {
    lying_driver lies;
    lies.count = 1;
    lies.entries = told_entry();
    connect(lies);
    handler_answer answer = ask_handler(5, 0);
    EXPECT_EQ(answer.return_code, 0);
    EXPECT_EQ(answer.values_len, 0U);
    EXPECT_EQ(answer.data, exchanged(told_entry()));
    EXPECT_EQ(answer.lines,
              "[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : [index 5][device 0]\n"
              "[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : device MAC=00:03:7f:00:00:01 "
              "IP=192.168.0.17 \n"
              "[VLK-API] wlan_get_assoc_device_1_svc  WLAN RPC server : result->return_data.return_data_len = 236\n");
}

TEST_F(Statistics, TheHandlerOfAStationTellsNoMoreThanTheFieldsHold) {
    lying_driver lies;
    lies.count = 1;
    lies.entries = std::string(ENTRY_SIZE, 'x');
    connect(lies);
    handler_answer answer = ask_handler(1, 0);
    EXPECT_TRUE(contains(answer.lines, "device MAC=" + std::string(18, 'x') + " IP=" + std::string(64, 'x') + " \n"))
        << answer.lines;
}

TEST_F(Statistics, TheHandlerOfAStationPacksAnEmptyRecordWhenThereIsNone) {
    handler_answer answer = ask_handler(1, 0);
    EXPECT_EQ(answer.return_code, -1);
    EXPECT_EQ(answer.data, std::string(ENTRY_SIZE, '\0'));
    EXPECT_TRUE(contains(answer.lines, "device MAC= IP= \n")) << answer.lines;
}

TEST_F(Statistics, TheHandlerOfAStationPrintsNothingWhileDebuggingIsOff) {
    connect_stations(1);
    wlan_config_result_data_t result = {};
    printed_text printed = capture([&] { wlan_get_assoc_device_1_svc(1, 0, &result, nullptr); });
    free(result.return_data.return_data_val);
    EXPECT_EQ(printed.out + printed.err, "");
}

}  // namespace
