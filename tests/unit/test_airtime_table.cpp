// The driver's airtime table, a station's counters, and the list of connected stations: what is asked, byte for byte,
// what becomes of every answer, and what is run and printed on the way.
#include "steering/airtime_table.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "steering/airtime.h"
#include "tests/support/airtime_driver.h"
#include "tests/support/driver.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"
#include "tests/support/store_lock.h"

namespace {

struct AirtimeDriver : testing::Test {
    airtime_driver told;

    void SetUp() override {
        reset_platform();
        reset_driver();
        write_store({});
        install_wlanconfig();
        told.answer();
    }

    void TearDown() override {
        reset_driver();
    }
};

// --- the table of an interface ---

// An answer with what it was written over.
struct answered_table {
    int status;
    atf_table table;
    char ssid[ESSID_SIZE];
    std::string printed;  // to standard error

    explicit answered_table(const char *interface) {
        memset(&table, '?', sizeof(table));
        memset(ssid, '?', sizeof(ssid));
        printed_text text = capture([&] { status = getWlanStftableInfo(interface, &table, ssid); });
        EXPECT_EQ(text.out, "");
        printed = text.err;
    }

    std::string bytes() const {
        return bytes_at(&table, 0, sizeof(table));
    }
};

struct AirtimeTable : AirtimeDriver {};

TEST_F(AirtimeTable, TheSsidIsAskedForFirstOnASocketOfItsOwn) {
    answered_table answer("ath3");
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].interface, "ath3");
    EXPECT_EQ(requests[0].request, 0x8B1BUL);
    EXPECT_EQ(requests[0].length, 32);
    EXPECT_EQ(requests[0].flags, 0);
    EXPECT_NE(requests[0].descriptor, wlan_ioctl_socket());
    EXPECT_TRUE(requests[0].is_closed_on_exec);
}

TEST_F(AirtimeTable, TheTableGoesToTheDriverZeroedBehindItsRequest) {
    answered_table answer("ath3");
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[1].interface, "ath3");
    EXPECT_EQ(requests[1].request, 0x89FCUL);
    EXPECT_EQ(requests[1].length, 5824);
    EXPECT_EQ(requests[1].flags, 0);
    EXPECT_EQ(requests[1].data, &answer.table);
    EXPECT_EQ(requests[1].descriptor, wlan_ioctl_socket());
    EXPECT_EQ(requests[1].bytes, host_bytes<uint16_t>(0xFF05) + std::string(TABLE_SIZE - 2, '\0'));
}

TEST_F(AirtimeTable, EveryFieldIsWhereTheDriverPutsIt) {
    std::string bytes(TABLE_SIZE, '\0');
    put_bytes(&bytes, 4 + 65 * INFO_SIZE, "network");
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 33, "\x02\x03\x04\x05\x06\x07");
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 40, host_bytes(0x81020304U));
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 44, "\x05");
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 45, "\x06");
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 48, host_bytes(0x8708090aU));
    put_bytes(&bytes, 4 + 65 * INFO_SIZE + 52, "group");
    put_bytes(&bytes, 5812, host_bytes<uint16_t>(65));
    put_bytes(&bytes, 5814, "\x07");
    put_bytes(&bytes, 5820, host_bytes(0x89000000U));
    told.tables["ath3"] = bytes;
    answered_table answer("ath3");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.printed, "");
    const atf_info &last = answer.table.infos[65];
    EXPECT_STREQ(last.ssid, "network");
    EXPECT_EQ(bytes_at(last.sta_mac, 0, 6), "\x02\x03\x04\x05\x06\x07");
    EXPECT_EQ(last.value, 0x81020304U);
    EXPECT_EQ(last.info_mark, 5);
    EXPECT_EQ(last.active, 6);
    EXPECT_EQ(last.cfg_value, 0x8708090aU);
    EXPECT_STREQ(last.grpname, "group");
    EXPECT_EQ(answer.table.info_cnt, 65);
    EXPECT_EQ(answer.table.atf_status, 7);
    EXPECT_EQ(answer.table.show_group, 0x89000000U);
    EXPECT_EQ(answer.bytes(), bytes);
}

TEST_F(AirtimeTable, TheSsidEndsWhereTheDriverSays) {
    told.ssids["ath3"] = "a network and more than that....";
    for (int length : {0, 1, 9, 31, 32}) {
        told.ssid_lengths["ath3"] = length;
        answered_table answer("ath3");
        EXPECT_EQ(answer.status, 0) << length;
        EXPECT_EQ(bytes_at(answer.ssid, 0, ESSID_SIZE),
                  told.ssids["ath3"].substr(0, static_cast<size_t>(length)) +
                      std::string(ESSID_SIZE - static_cast<size_t>(length), '\0'));
    }
}

TEST_F(AirtimeTable, AnSsidThatTheDriverWritesShorterThanItSaysIsFilledUpWithZeros) {
    told.ssids["ath3"] = "net";
    told.ssid_lengths["ath3"] = 32;
    answered_table answer("ath3");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(bytes_at(answer.ssid, 0, ESSID_SIZE), "net" + std::string(ESSID_SIZE - 3, '\0'));
}

TEST_F(AirtimeTable, AnSsidThatIsTooLongIsAFailureAndTheTableIsNotAskedFor) {
    for (int length : {33, 34, 256, 32768, 65535}) {
        requests.clear();
        told.ssid_lengths["ath3"] = length;
        answered_table answer("ath3");
        EXPECT_EQ(answer.status, -1) << length;
        EXPECT_EQ(answer.printed,
                  "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ath3 ssid_length invaild \n");
        EXPECT_EQ(requests.size(), 1U);
    }
}

TEST_F(AirtimeTable, AnSsidThatIsRefusedIsAFailureAndTheTableIsNotAskedFor) {
    told.refused = {"ssid ath15"};
    answered_table answer("ath15");
    EXPECT_EQ(answer.status, -1);
    EXPECT_EQ(answer.printed, "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ath15 ssid_length invaild \n");
    EXPECT_EQ(requests.size(), 1U);
}

TEST_F(AirtimeTable, WithoutASocketThereIsNoSsid) {
    wlan_ioctl_socket();
    atf_table table;
    char ssid[ESSID_SIZE];
    int status = 0;
    printed_text printed = capture([&] {
        begin_descriptor_shortage();
        status = getWlanStftableInfo("ath0", &table, ssid);
        end_descriptor_shortage();
    });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.err, "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ath0 ssid_length invaild \n");
}

TEST_F(AirtimeTable, ATableThatIsRefusedIsAFailureOfTwoLines) {
    told.refused = {"table ath3"};
    answered_table answer("ath3");
    EXPECT_EQ(answer.status, -1);
    EXPECT_EQ(answer.printed,
              "ioctl: Operation not supported\n"
              "[VLK-API] Error getWlanStftableInfo getWlanStftableInfo: ioctl error\n");
}

TEST_F(AirtimeTable, ACountBeyondTheTableIsTheTables) {
    for (int count : {0, 1, 2, 65, 66, 67, 300, 32767, 32768, 65535}) {
        told.tables["ath3"] = table_bytes({}, {.count = count});
        answered_table answer("ath3");
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.table.info_cnt, count > 66 ? 66 : count);
    }
}

TEST_F(AirtimeTable, NamesWithoutEndAreTerminatedInTheirFields) {
    std::vector<table_row> rows(66, {true, std::string(33, 's'), std::string(36, 'g'), 1, 1, 0, 0});
    told.tables["ath3"] = table_bytes(rows);
    answered_table answer("ath3");
    for (const atf_info &info : answer.table.infos) {
        EXPECT_EQ(std::string(info.ssid), std::string(32, 's'));
        EXPECT_EQ(std::string(info.grpname), std::string(35, 'g'));
        EXPECT_EQ(bytes_at(info.sta_mac, 0, 6), std::string("\x02\0\0\0\0\x01", 6));
    }
}

TEST_F(AirtimeTable, ARowIsNamedByItsSsidOrByTheTableOfGroups) {
    atf_table table = {};
    atf_info info = {};
    EXPECT_FALSE(is_named_row(&table, &info));
    info.ssid[0] = 's';
    EXPECT_TRUE(is_named_row(&table, &info));
    info.ssid[0] = '\0';
    table.show_group = 0x80000000;
    EXPECT_TRUE(is_named_row(&table, &info));
}

TEST_F(AirtimeTable, EveryMarkButZeroMakesARowAStations) {
    atf_info info = {};
    EXPECT_FALSE(is_station_row(&info));
    for (int mark : {1, 2, 128, 255}) {
        info.info_mark = static_cast<uint8_t>(mark);
        EXPECT_TRUE(is_station_row(&info)) << mark;
    }
}

TEST_F(AirtimeTable, AMacIsWrittenInLowerCaseWithColons) {
    atf_info info = {};
    const uint8_t mac[] = {0x00, 0x0a, 0xBC, 0xff, 0x80, 0x7F};
    memcpy(info.sta_mac, mac, sizeof(mac));
    char text[MAC_TEXT_SIZE];
    put_station_mac(&info, text);
    EXPECT_STREQ(text, "00:0a:bc:ff:80:7f");
}

// --- the counters of a station, from the driver ---

struct AirtimeCounters : AirtimeDriver {
    void SetUp() override {
        AirtimeDriver::SetUp();
        told.stations["ath2"] = {0x81020304, 0x8506070809101112, 0x83141516, 0x84181920, 0x85222324};
    }
};

std::string counters_request(const std::string &mac) {
    return host_bytes(64U) + mac + std::string(COUNTERS_SIZE - 10, '\0');
}

TEST_F(AirtimeCounters, EachOperationAsksOnceOnTheSharedSocket) {
    uint32_t short_average;
    uint64_t total;
    sta_atm_stats stats;
    capture([&] {
        wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(3, "0a:1b:2C:3d:4e:ff", &short_average);
        wlan_getAdvAirtimeStatsCl_AirtimeTotal(3, "0a:1b:2C:3d:4e:ff", &total);
        wlan_getAdvAirtimeStatsCl_AirtimeStat(3, "0a:1b:2C:3d:4e:ff", &stats);
    });
    ASSERT_EQ(requests.size(), 3U);
    for (const seen_request &request : requests) {
        EXPECT_EQ(request.interface, "ath2");
        EXPECT_EQ(request.request, 0x89FCUL);
        EXPECT_EQ(request.length, 36);
        EXPECT_EQ(request.flags, 0);
        EXPECT_EQ(request.bytes, counters_request("\x0a\x1b\x2c\x3d\x4e\xff"));
        EXPECT_EQ(request.descriptor, wlan_ioctl_socket());
    }
}

TEST_F(AirtimeCounters, AnyIndexNamesAnInterface) {
    const std::pair<int, const char *> cases[] = {
        {INT_MIN, "ath2147483647"}, {-1, "ath-2"}, {0, "ath-1"}, {1, "ath0"}, {16, "ath15"},
        {INT_MAX, "ath2147483646"}};
    for (const auto &[index, interface] : cases) {
        requests.clear();
        uint32_t short_average;
        EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(index, "", &short_average), 0);
        ASSERT_EQ(requests.size(), 1U);
        EXPECT_EQ(requests[0].interface, std::string(interface));
    }
}

TEST_F(AirtimeCounters, AMacIsReadPairByPairAsFarAsItGoes) {
    const std::pair<std::string, std::string> cases[] = {
        {"", std::string(6, '\0')},
        {"0", std::string(6, '\0')},
        {"a1", std::string("\xa1\0\0\0\0\0", 6)},
        {"a1:", std::string("\xa1\0\0\0\0\0", 6)},
        {"a1:b2", std::string("\xa1\xb2\0\0\0\0", 6)},
        {"a1:b2:c3:d4:e5:f", "\xa1\xb2\xc3\xd4\xe5\x0f"},
        {"a1-b2.c3 d4/e5_f6", "\xa1\xb2\xc3\xd4\xe5\xf6"},
        {"a1:b2:c3:d4:e5:f6:a7:b8", "\xa1\xb2\xc3\xd4\xe5\xf6"},
        {"zz:b2:zz:d4:zz:f6", std::string("\0\xb2\0\xd4\0\xf6", 6)},
    };
    for (const auto &[text, mac] : cases) {
        requests.clear();
        // A copy without room behind it, so that the sanitizers see every step beyond it.
        std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
        uint32_t short_average;
        wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(1, exact.data(), &short_average);
        ASSERT_EQ(requests.size(), 1U);
        EXPECT_EQ(requests[0].bytes, counters_request(mac)) << text;
    }
}

TEST_F(AirtimeCounters, WhatLiesBehindTheEndOfAMacIsNotRead) {
    const char text[] = "a1:b2\0c3:d4:e5:f6:a7:b8";
    uint32_t short_average;
    wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(1, text, &short_average);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].bytes, counters_request(std::string("\xa1\xb2\0\0\0\0", 6)));
}

TEST_F(AirtimeCounters, TheShortAverageIsTheWordAtTwelve) {
    uint32_t short_average = 0;
    set_debug(true);
    printed_text printed =
        capture([&] { EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(3, "", &short_average), 0); });
    EXPECT_EQ(short_average, 0x81020304U);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(AirtimeCounters, TheTotalHasSixtyFourBits) {
    uint64_t total = 0;
    set_debug(true);
    printed_text printed = capture([&] { EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeTotal(3, "", &total), 0); });
    EXPECT_EQ(total, 0x8506070809101112U);
    EXPECT_EQ(printed.out,
              "[VLK-API] wlan_getAdvAirtimeStatsCl_AirtimeTotal wlan_getAdvAirtimeStatsCl_AirtimeTotal: "
              "got airtimeTotal 9585356587997860114\n");
    EXPECT_EQ(printed.err, "");
}

TEST_F(AirtimeCounters, TheWholeBlockIsGivenOutAndItsTokensArePrintedAmongTheErrors) {
    told.stations["ath2"] = {0x81020304, 0x8506070809101112, 900, 0xFFFFFFFF, 300};
    sta_atm_stats stats;
    memset(&stats, '?', sizeof(stats));
    printed_text printed =
        capture([&] { EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeStat(3, "02:03:04:05:06:07", &stats), 0); });
    EXPECT_EQ(bytes_at(&stats, 0, sizeof(stats)),
              counters_bytes(told.stations["ath2"], counters_request("\x02\x03\x04\x05\x06\x07")));
    EXPECT_EQ(printed.err,
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat act_tokens -1 unused 300 total 900\n");
    EXPECT_EQ(printed.out, "");
}

TEST_F(AirtimeCounters, EveryFieldOfTheBlockIsWhereTheDriverPutsIt) {
    sta_atm_stats stats = {};
    capture([&] { wlan_getAdvAirtimeStatsCl_AirtimeStat(3, "02:03:04:05:06:07", &stats); });
    EXPECT_EQ(uint32_t{stats.code}, 64U);
    EXPECT_EQ(bytes_at(&stats, 4, 6), "\x02\x03\x04\x05\x06\x07");
    EXPECT_EQ(uint32_t{stats.short_average}, 0x81020304U);
    EXPECT_EQ(uint64_t{stats.total_airtime}, 0x8506070809101112U);
    EXPECT_EQ(uint32_t{stats.total}, 0x83141516U);
    EXPECT_EQ(uint32_t{stats.act_tokens}, 0x84181920U);
    EXPECT_EQ(uint32_t{stats.unused}, 0x85222324U);
}

TEST_F(AirtimeCounters, ARefusalIsALineOfTheOperationsAndLeavesTheOutputAlone) {
    told.refused = {"counters ath2"};
    uint32_t short_average = 4711;
    uint64_t total = 4712;
    sta_atm_stats stats;
    memset(&stats, '?', sizeof(stats));
    printed_text printed = capture([&] {
        EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(3, "", &short_average), -1);
        EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeTotal(3, "", &total), -1);
        EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeStat(3, "", &stats), -1);
    });
    EXPECT_EQ(printed.err,
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeShortAvg !!!failed: IEEE80211_PARAM_STA_ATM_STATS from "
              "ath2\n"
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeTotal !!!failed: IEEE80211_PARAM_STA_ATM_STATS from "
              "ath2\n"
              "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AirtimeStat !!!failed: IEEE80211_PARAM_STA_ATM_STATS from "
              "ath2\n");
    EXPECT_EQ(short_average, 4711U);
    EXPECT_EQ(total, 4712U);
    EXPECT_EQ(bytes_at(&stats, 0, sizeof(stats)), std::string(sizeof(stats), '?'));
}

TEST_F(AirtimeCounters, ADriverThatReturnsMoreThanZeroHasAnswered) {
    answer_request = [](const seen_request &request) {
        return request_answer{0, 36, counters_bytes({5, 6, 7, 8, 9}, request.bytes), NO_LENGTH};
    };
    uint32_t short_average = 0;
    EXPECT_EQ(wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(3, "", &short_average), 0);
    EXPECT_EQ(short_average, 5U);
}

// --- the counters of a station, from the command line ---

struct printed_counters {
    int status;
    uint32_t short_average;
    uint64_t total;
    bool operator==(const printed_counters &) const = default;
};

std::ostream &operator<<(std::ostream &out, const printed_counters &counters) {
    return out << counters.status << ": " << counters.short_average << ", " << counters.total;
}

printed_counters counters_of(const std::string &mac) {
    printed_counters counters = {-2, 4711, 0x4711471147114711};
    counters.status = wlan_get_sta_atm_stats("ath3", mac.c_str(), &counters.short_average, &counters.total);
    return counters;
}

struct AirtimeCommand : AirtimeDriver {
    printed_counters printing(const std::string &text) {
        wlanconfig_prints("ath3", "atfstat", text);
        return counters_of("02:00:00:00:00:0a");
    }
};

TEST_F(AirtimeCommand, TheMacGoesWithoutItsColons) {
    EXPECT_EQ(commands_of([] { counters_of("02:00:00:00:00:0a"); }),
              calls({"wlanconfig ath3 atfstat 02000000000a 2>&1"}));
}

TEST_F(AirtimeCommand, AMacThatIsTooLongIsCut) {
    EXPECT_EQ(commands_of([] { counters_of("02:00:00:00:00:0a:0b:0c:0d:0e:0f"); }),
              calls({"wlanconfig ath3 atfstat 02000000000a0b0c0 2>&1"}));
}

TEST_F(AirtimeCommand, TheFirstNumberIsTheShortAverageAndTheSecondTheTotal) {
    EXPECT_EQ(printing("shortavg: 12, airtimetotal: 345\n"), (printed_counters{0, 12, 345}));
    EXPECT_EQ(printing("\n\nshort\navg=12,\n\ttotal\n=345 678"), (printed_counters{0, 12, 345}));
}

TEST_F(AirtimeCommand, NumbersOfOtherTextsAreNotRead) {
    EXPECT_EQ(printing(""), (printed_counters{0, 0, 0}));
    EXPECT_EQ(printing("no such station\n"), (printed_counters{0, 0, 0}));
    EXPECT_EQ(printing("12, total 345"), (printed_counters{0, 0, 0})) << "nothing stands before the first number";
    EXPECT_EQ(printing("avg 12"), (printed_counters{0, 12, 0}));
    EXPECT_EQ(printing("avg 12 , total 345"), (printed_counters{0, 12, 0})) << "the comma is not behind the number";
    EXPECT_EQ(printing("avg 12 total 345"), (printed_counters{0, 12, 0}));
    EXPECT_EQ(printing("avg 12, 345"), (printed_counters{0, 12, 0})) << "only blanks stand between comma and number";
    EXPECT_EQ(printing("avg 12, total"), (printed_counters{0, 12, 0}));
    EXPECT_EQ(printing("avg 12,"), (printed_counters{0, 12, 0}));
    EXPECT_EQ(printing(std::string("avg 12, \0 345", 13)), (printed_counters{0, 12, 0}));
}

TEST_F(AirtimeCommand, SignsAndFractionsAreNoNumbers) {
    EXPECT_EQ(printing("avg -12, total -345"), (printed_counters{0, 12, 345}));
    EXPECT_EQ(printing("avg 1.2, total 345"), (printed_counters{0, 1, 0}));
    EXPECT_EQ(printing("avg 0x12, total 345"), (printed_counters{0, 0, 0}));
}

TEST_F(AirtimeCommand, TheTotalIsTheLowHalfOfSixtyFourBitsWithoutSign) {
    EXPECT_EQ(printing("avg 2147483647, total 2147483647"), (printed_counters{0, 0x7FFFFFFF, 0x7FFFFFFF}));
    EXPECT_EQ(printing("avg 4294967295, total 4294967295"), (printed_counters{0, 0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(printing("avg 4294967301, total 4294967302"), (printed_counters{0, 5, 6}));
}

TEST_F(AirtimeCommand, AbsurdlyLongNumbersAreReadToTheirEnd) {
    std::string digits(5000, '9');
    EXPECT_EQ(printing("avg " + digits + ", total " + digits), (printed_counters{0, 0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(printing("avg " + std::string(5000, '0') + "7, total 8"), (printed_counters{0, 7, 8}));
}

// The C library's scanning, for numbers that fit.
printed_counters scanned(const std::string &text) {
    int first = 0;
    int second = 0;
    sscanf(text.c_str(), "%*[^0123456789]%d, %*[^0123456789]%d", &first, &second);
    return {0, static_cast<uint32_t>(first), static_cast<uint32_t>(second)};
}

TEST_F(AirtimeCommand, EveryShortTextIsReadAsTheScanningWouldReadIt) {
    const std::string letters = "7a, -";
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < 3; i++) {
        for (char letter : letters) {
            texts.push_back(texts[i] + letter);
        }
    }
    size_t with_two_numbers = 0;
    for (const std::string &tail : texts) {
        std::string text = "a7" + tail + "7";
        printed_counters expected = scanned(text);
        with_two_numbers += expected.total != 0;
        ASSERT_EQ(printing(text), expected) << '"' << text << '"';
        ASSERT_EQ(printing(tail), scanned(tail)) << '"' << tail << '"';
    }
    EXPECT_GT(with_two_numbers, 20U);
}

TEST_F(AirtimeCommand, ACommandThatCannotBeStartedIsAFailureWithZeros) {
    std::string lines = debug_lines([] {
        begin_descriptor_shortage();
        EXPECT_EQ(counters_of("02:00:00:00:00:0a"), (printed_counters{-1, 0, 0}));
        end_descriptor_shortage();
    });
    EXPECT_EQ(lines,
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:wlanconfig ath3 atfstat 02000000000a 2>&1\n"
              "[VLK-API] athcfg_executecmd wlan_get_sta_atm_stats: popen wlanconfig ath3 atfstat 02000000000a 2>&1 "
              "error\n");
}

TEST_F(AirtimeCommand, WhatWasReadIsInTheDebugLine) {
    wlanconfig_prints("ath3", "atfstat", "avg 4294967295, total 4294967295");
    EXPECT_EQ(printed_behind("[VLK-API] wlan_get_sta_atm_stats ", [] { counters_of("02:00:00:00:00:0a"); }),
              calls({"wlan_get_sta_atm_stats:interface:ath3 client:02:00:00:00:00:0a got shortavg: -1 "
                     "airtimeTotal 4294967295"}));
}

TEST_F(AirtimeCommand, AToolThatIsNotThereSaysSoOnTheSameRoadAndThatHoldsNoNumbers) {
    ASSERT_TRUE(std::filesystem::remove(std::string(FAKE_TOOLS) + "/wlanconfig"));
    printed_counters counters = {};
    // "sh: 1: wlanconfig: not found": a number, but none with a comma behind it.
    printed_text printed = capture([&] { counters = counters_of("02:00:00:00:00:0a"); });
    EXPECT_EQ(counters.status, 0);
    EXPECT_EQ(counters.total, 0U);
    EXPECT_EQ(printed.err, "") << "the tool's errors are part of what is read";
}

// --- the connected stations of a radio ---

struct station_table {
    int status;
    wlan_atf_station_table_t reply;

    explicit station_table(int index) {
        memset(&reply, '?', sizeof(reply));
        status = wlan_getAdvAirtimeStatsCl_AtfTable(index, &reply);
    }

    // The bytes of a record, found by their offset.
    const char *record(size_t number) const {
        return reinterpret_cast<const char *>(&reply) + 4 + 74 * number;
    }
};

// What a record holds.
struct expected_record {
    uint32_t index;
    std::string mac;
    std::string name;
    uint32_t share;
    uint32_t configured;
    uint32_t short_average;
    uint64_t total;
};

std::string filled_up(const std::string &text, size_t size) {
    return text + std::string(size - text.size(), '\0');
}

std::string record_bytes(const expected_record &record) {
    return host_bytes(record.index) + filled_up(record.mac, 18) + filled_up(record.name, 32) +
           host_bytes(record.share) + host_bytes(record.configured) + host_bytes(record.short_average) +
           host_bytes(record.total);
}

// Exactly these records, and zeros behind them.
void expect_records(const station_table &table, const std::vector<expected_record> &records) {
    EXPECT_EQ(table.status, 0);
    std::string expected = host_bytes(static_cast<uint32_t>(records.size()));
    for (const expected_record &record : records) {
        EXPECT_EQ(record_bytes(record).size(), 74U);
        expected += record_bytes(record);
    }
    expected.resize(4740);
    for (size_t number = 0; number < records.size(); number++) {
        EXPECT_EQ(bytes_at(table.record(number), 0, 74), record_bytes(records[number])) << "record " << number;
    }
    EXPECT_TRUE(bytes_at(&table.reply, 0, sizeof(table.reply)) == expected);
}

struct AirtimeStations : AirtimeDriver {
    void rows(const std::vector<table_row> &rows, const table_head &head = {}) {
        told.tables["ath0"] = table_bytes(rows, head);
    }
};

TEST_F(AirtimeStations, AnIndexBelowOneIsRefusedAndNobodyIsAsked) {
    for (int index : {INT_MIN, -9, -1, 0}) {
        std::string lines = debug_lines([&] {
            station_table table(index);
            EXPECT_EQ(table.status, -1);
            EXPECT_EQ(bytes_at(&table.reply, 0, sizeof(table.reply)), std::string(sizeof(table.reply), '?'));
        });
        EXPECT_EQ(lines, "[VLK-API] wlan_getAdvAirtimeStatsCl_AtfTable wlan_getAdvAirtimeStatsCl_AtfTable: " +
                             std::to_string(index) + "\n");
    }
    EXPECT_EQ(requests.size(), 0U);
}

TEST_F(AirtimeStations, TheIndexChoosesTheRadiosFirstInterface) {
    told.tables["ath0"] = table_bytes({ssid_row("net")});
    told.tables["ath8"] = table_bytes({ssid_row("net")});
    const std::pair<int, std::string> cases[] = {{1, "ath0"},  {2, "ath0"},  {8, "ath0"},  {9, "ath8"},
                                                 {10, "ath8"}, {16, "ath8"}, {17, "ath8"}, {INT_MAX, "ath8"}};
    for (const auto &[index, interface] : cases) {
        EXPECT_EQ(steps_of([&, index = index] { expect_records(station_table(index), {}); }),
                  step_list({"ssid " + interface, "table " + interface}))
            << index;
    }
}

TEST_F(AirtimeStations, AnSsidOrATableThatIsRefusedIsAFailureAndLeavesTheReplyAlone) {
    for (const char *question : {"ssid ath0", "table ath0"}) {
        told.refused = {question};
        capture([] {
            station_table table(1);
            EXPECT_EQ(table.status, -1);
            EXPECT_EQ(bytes_at(&table.reply, 0, sizeof(table.reply)), std::string(sizeof(table.reply), '?'));
        });
    }
}

TEST_F(AirtimeStations, ARecordHoldsTheStationItsSsidAndTheirShares) {
    rows({ssid_row("home", 309), station_row(0xab, 125)});
    connect_stations("ath0", {0xab});
    print_airtime("ath0", "1234", "567890");
    expect_records(station_table(1), {{1, "02:00:00:00:00:ab", "home", 12, 30, 1234, 567890}});
}

TEST_F(AirtimeStations, AShareOfAThousandTenthsAndMoreIsCutToWholePercent) {
    rows({ssid_row("home", 0xFFFFFFFF), station_row(1, 0xFFFFFFFF)});
    expect_records(station_table(1), {{1, mac_text(1), "home", 429496729, 429496729, 0, 0}});
}

TEST_F(AirtimeStations, StationsBelongToTheSsidBeforeThem) {
    rows({ssid_row("home", 100), station_row(1, 10), station_row(2, 20), ssid_row("guests", 200), station_row(3, 30)});
    expect_records(station_table(1), {{1, mac_text(1), "home", 1, 10, 0, 0},
                                      {2, mac_text(2), "home", 2, 10, 0, 0},
                                      {3, mac_text(3), "guests", 3, 20, 0, 0}});
}

TEST_F(AirtimeStations, OnlyStationsThatAreConnectedMakeRecords) {
    std::vector<table_row> all = {ssid_row("home")};
    for (int active : {0, 1, 2, 128, 255}) {
        table_row row = station_row(static_cast<uint8_t>(active + 1));
        row.active = static_cast<uint8_t>(active);
        all.push_back(row);
    }
    table_row active_ssid = ssid_row("active");
    active_ssid.active = 1;
    all.push_back(active_ssid);
    rows(all);
    expect_records(station_table(1), {{1, mac_text(2), "home", 0, 0, 0, 0}});
}

TEST_F(AirtimeStations, EveryMarkButZeroIsAStations) {
    std::string bytes = table_bytes({ssid_row("home"), station_row(1), station_row(2)});
    bytes[4 + INFO_SIZE + 44] = '\x80';
    bytes[4 + 2 * INFO_SIZE + 44] = '\xff';
    told.tables["ath0"] = bytes;
    expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0, 0}, {2, mac_text(2), "home", 0, 0, 0, 0}});
}

TEST_F(AirtimeStations, ATableOfGroupsNamesItsStationsByGroup) {
    rows({ssid_row("home", 100, "family"), station_row(1), ssid_row("", 200, "visitors"), station_row(2, 0, "")},
         {.show_group = 0x80000000});
    expect_records(station_table(1),
                   {{1, mac_text(1), "family", 0, 10, 0, 0}, {2, mac_text(2), "visitors", 0, 20, 0, 0}});
}

TEST_F(AirtimeStations, AGroupWithoutNameIsWithoutName) {
    rows({ssid_row("home", 100), station_row(1)}, {.show_group = 1});
    expect_records(station_table(1), {{1, mac_text(1), "", 0, 10, 0, 0}});
}

TEST_F(AirtimeStations, RowsWithoutNameChangeNothing) {
    rows({ssid_row("home", 100), station_row(1, 10), ssid_row("", 200, "group"), station_row(2, 20)});
    expect_records(station_table(1), {{1, mac_text(1), "home", 1, 10, 0, 0}, {2, mac_text(2), "home", 2, 10, 0, 0}});
}

// The record copies the text of the MAC: what the rows behind it make of the remembered one does not reach it.
TEST_F(AirtimeStations, AConnectedStationWithoutNameRepeatsTheOneBefore) {
    rows({ssid_row("home", 100), idle_row(1, 10), station_row(2, 20, ""), station_row(3, 30)});
    expect_records(station_table(1), {{1, mac_text(1), "home", 1, 10, 0, 0}, {2, mac_text(3), "home", 3, 10, 0, 0}});
}

TEST_F(AirtimeStations, AStationBeforeAnySsidHasNoName) {
    rows({station_row(1, 10)});
    connect_stations("ath0", {1});
    print_airtime("ath0", "5", "6");
    expect_records(station_table(1), {{1, mac_text(1), "", 1, 0, 5, 6}});
}

TEST_F(AirtimeStations, ARecordBeforeAnyMacIsEmptyAndNoInterfaceIsAskedForIt) {
    rows({station_row(1, 10, "")});
    connect_stations("ath0", {1});
    print_airtime("ath0", "5", "6");
    EXPECT_EQ(steps_of([] {
                  expect_records(station_table(1), {{1, "", "", 0, 0, 0, 0}});
              }),
              step_list({"ssid ath0", "table ath0"}));
}

TEST_F(AirtimeStations, ANameIsCutToSeventeenCharacters) {
    rows({ssid_row("0123456789abcdefg", 0, "ABCDEFGHIJKLMNOPQR"), station_row(1), ssid_row("0123456789abcdefgh"),
          station_row(2), ssid_row(std::string(33, 'x')), station_row(3)});
    expect_records(station_table(1), {{1, mac_text(1), "0123456789abcdefg", 0, 0, 0, 0},
                                      {2, mac_text(2), "0123456789abcdefg", 0, 0, 0, 0},
                                      {3, mac_text(3), std::string(17, 'x'), 0, 0, 0, 0}});
    rows({ssid_row("net", 0, "ABCDEFGHIJKLMNOPQR"), station_row(1), ssid_row("net", 0, std::string(36, 'g')),
          station_row(2)},
         {.show_group = 1});
    expect_records(station_table(1), {{1, mac_text(1), "ABCDEFGHIJKLMNOPQ", 0, 0, 0, 0},
                                      {2, mac_text(2), std::string(17, 'g'), 0, 0, 0, 0}});
}

// --- where a station is connected ---

std::string list_command(int interface) {
    return "wlanconfig ath" + std::to_string(interface) + " list";
}

TEST_F(AirtimeStations, TheInterfacesOfTheRadioAreAskedInTheirOrderUntilTheStationIsFound) {
    rows({ssid_row("home"), station_row(1), station_row(2)});
    connect_stations("ath0", {9});
    connect_stations("ath2", {9, 1});
    connect_stations("ath3", {1});
    print_airtime("ath2", "12", "34");
    connect_stations("ath0", {2});
    print_airtime("ath0", "56", "78");
    calls commands = commands_of([] {
        expect_records(station_table(8),
                       {{1, mac_text(1), "home", 0, 0, 12, 34}, {2, mac_text(2), "home", 0, 0, 56, 78}});
    });
    EXPECT_EQ(commands,
              calls({list_command(0), list_command(1), list_command(2), "wlanconfig ath2 atfstat 020000000001 2>&1",
                     list_command(0), "wlanconfig ath0 atfstat 020000000002 2>&1"}));
}

TEST_F(AirtimeStations, TheOtherRadioHasInterfacesEightToFifteen) {
    told.tables["ath8"] = table_bytes({ssid_row("home"), station_row(1)});
    connect_stations("ath0", {1});
    connect_stations("ath15", {1});
    print_airtime("ath15", "12", "34");
    calls expected;
    for (int interface = 8; interface < 16; interface++) {
        expected.push_back(list_command(interface));
    }
    expected.push_back("wlanconfig ath15 atfstat 020000000001 2>&1");
    EXPECT_EQ(commands_of([] {
                  expect_records(station_table(9), {{1, mac_text(1), "home", 0, 0, 12, 34}});
              }),
              expected);
}

TEST_F(AirtimeStations, AStationThatNoInterfaceServesKeepsZeroAirtime) {
    rows({ssid_row("Others"), station_row(1)});
    connect_stations("ath7", {2});
    connect_stations("ath8", {1});
    print_airtime("ath7", "12", "34");
    calls expected;
    for (int interface = 0; interface < 8; interface++) {
        expected.push_back(list_command(interface));
    }
    EXPECT_EQ(commands_of([] {
                  expect_records(station_table(1), {{1, mac_text(1), "Others", 0, 0, 0, 0}});
              }),
              expected);
}

TEST_F(AirtimeStations, AMacIsSearchedForAsItStands) {
    rows({ssid_row("home"), station_row(0xab)});
    wlanconfig_prints("ath0", "list", "02:00:00:00:00:AB\n");
    wlanconfig_prints("ath1", "list", "x02:00:00:00:00:abcd");
    print_airtime("ath1", "12", "34");
    expect_records(station_table(1), {{1, mac_text(0xab), "home", 0, 0, 12, 34}});
}

TEST_F(AirtimeStations, AToolThatIsSilentOrAbsentLeavesZeroAirtime) {
    rows({ssid_row("home"), station_row(1)});
    expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0, 0}});
    ASSERT_TRUE(std::filesystem::remove(std::string(FAKE_TOOLS) + "/wlanconfig"));
    capture([] { expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0, 0}}); });
}

TEST_F(AirtimeStations, CommandsThatCannotBeStartedLeaveZeroAirtime) {
    rows({ssid_row("home"), station_row(1)});
    connect_stations("ath0", {1});
    begin_steps(refusing("popen"));
    expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0, 0}});
    end_steps();
    EXPECT_EQ(recorded_steps().size(), 2U + 8U);
}

TEST_F(AirtimeStations, AirtimeThatCannotBeAskedForIsZeroAndTheSearchIsOver) {
    rows({ssid_row("home"), station_row(1)});
    connect_stations("ath0", {1});
    connect_stations("ath1", {1});
    print_airtime("ath1", "12", "34");
    begin_steps(refusing("atfstat"));
    expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0, 0}});
    end_steps();
    EXPECT_EQ(recorded_steps(), step_list({"ssid ath0", "table ath0", "popen wlanconfig ath0 list",
                                           "popen wlanconfig ath0 atfstat 020000000001 2>&1"}));
}

TEST_F(AirtimeStations, TheTotalOfARecordHasNoSign) {
    rows({ssid_row("home"), station_row(1)});
    connect_stations("ath0", {1});
    print_airtime("ath0", "4294967295", "4294967295");
    expect_records(station_table(1), {{1, mac_text(1), "home", 0, 0, 0xFFFFFFFF, 0xFFFFFFFF}});
}

// --- stations among the others ---

TEST_F(AirtimeStations, AStationAmongTheOthersGetsTheSsidOfItsInterface) {
    rows({ssid_row("Others", 100), station_row(1, 10)});
    connect_stations("ath1", {1});
    print_airtime("ath1", "12", "34");
    told.ssids["ath0"] = "first";
    told.ssids["ath1"] = "second";
    step_list steps = steps_of([] { expect_records(station_table(1), {{1, mac_text(1), "second", 1, 10, 12, 34}}); });
    EXPECT_EQ(steps, step_list({"ssid ath0", "table ath0", "popen wlanconfig ath0 list", "popen wlanconfig ath1 list",
                                "ssid ath1", "popen wlanconfig ath1 atfstat 020000000001 2>&1"}));
}

TEST_F(AirtimeStations, OthersIsFoundAnywhereInWhatTheRecordHoldsOfTheName) {
    told.ssids["ath0"] = "SSID";
    connect_stations("ath0", {1});
    const std::pair<std::string, std::string> cases[] = {
        {"Others", "SSID"},
        {"the Others here", "SSID"},
        {"0123456789aOthers", "SSID"},
        {"others", "others"},
        {"Other", "Other"},
        {"OTHERS", "OTHERS"},
        {"0123456789abOthers", "0123456789abOther"},
    };
    for (const auto &[name, expected] : cases) {
        rows({ssid_row(name), station_row(1)});
        expect_records(station_table(1), {{1, mac_text(1), expected, 0, 0, 0, 0}});
        rows({ssid_row("net", 0, name), station_row(1)}, {.show_group = 1});
        expect_records(station_table(1), {{1, mac_text(1), expected, 0, 0, 0, 0}});
    }
}

TEST_F(AirtimeStations, EveryStationAmongTheOthersHasItsOwnSsidAndTheNameStaysForTheNext) {
    rows({ssid_row("Others"), station_row(1), station_row(2), station_row(3)});
    connect_stations("ath0", {1});
    connect_stations("ath1", {2});
    told.ssids["ath0"] = "first";
    told.ssids["ath1"] = "second";
    expect_records(station_table(1), {{1, mac_text(1), "first", 0, 0, 0, 0},
                                      {2, mac_text(2), "second", 0, 0, 0, 0},
                                      {3, mac_text(3), "Others", 0, 0, 0, 0}});
}

TEST_F(AirtimeStations, AnSsidThatReplacesTheNameMayFillItsField) {
    rows({ssid_row("Others"), station_row(1), station_row(2)});
    connect_stations("ath1", {1, 2});
    print_airtime("ath1", "12", "34");
    for (size_t length : {0, 1, 17, 18, 31, 32}) {
        told.ssids["ath1"] = std::string(length, 's');
        expect_records(station_table(1), {{1, mac_text(1), std::string(length, 's'), 0, 0, 12, 34},
                                          {2, mac_text(2), std::string(length, 's'), 0, 0, 12, 34}});
    }
}

TEST_F(AirtimeStations, OfAnSsidThatReplacesTheNameOnlyItsLengthIsTaken) {
    rows({ssid_row("Others"), station_row(1)});
    connect_stations("ath1", {1});
    told.ssids["ath1"] = std::string(32, 's');
    told.ssid_lengths["ath1"] = 5;
    expect_records(station_table(1), {{1, mac_text(1), "sssss", 0, 0, 0, 0}});
}

TEST_F(AirtimeStations, AnSsidThatCannotBeReadLeavesNoNameAndTheAirtimeIsReadAllTheSame) {
    rows({ssid_row("Others"), station_row(1)});
    connect_stations("ath1", {1});
    print_airtime("ath1", "12", "34");
    const std::string line =
        "[VLK-API] Error wlan_getAdvAirtimeStatsCl_AtfTable getWlanStftableInfo: ath1 ssid_length invaild \n";
    auto expect_no_name = [&] {
        printed_text printed = capture([] { expect_records(station_table(1), {{1, mac_text(1), "", 0, 0, 12, 34}}); });
        EXPECT_EQ(printed.err, line);
    };
    told.ssids["ath1"] = std::string(32, 's');
    for (int length : {33, 65535}) {
        told.ssid_lengths["ath1"] = length;
        expect_no_name();
    }
    told.refused = {"ssid ath1"};
    expect_no_name();
}

// --- what is printed ---

TEST_F(AirtimeStations, EveryRowIsADebugLineWithWhatIsRememberedThen) {
    rows({ssid_row("home", 309), station_row(0xab, 125), idle_row(1, 7), ssid_row("", 11), ssid_row("guests", 20)});
    calls lines = printed_behind("[VLK-API] wlan_getAdvAirtimeStatsCl_AtfTable ", [] { station_table table(1); });
    EXPECT_EQ(lines, calls({"wlan_getAdvAirtimeStatsCl_AtfTable: 1",
                            "info_mark:0 SSID: home  MAC:  quotient_val:0 remainder_val:0 quotient_cfg:30 "
                            "remainder_cfg:9 active:idle",
                            "info_mark:1 SSID: home  MAC:02:00:00:00:00:ab  quotient_val:12 remainder_val:5 "
                            "quotient_cfg:0 remainder_cfg:0 active:connected",
                            "info_mark:1 SSID: home  MAC:02:00:00:00:00:01  quotient_val:0 remainder_val:7 "
                            "quotient_cfg:0 remainder_cfg:0 active:idle",
                            "info_mark:0 SSID: home  MAC:02:00:00:00:00:01  quotient_val:0 remainder_val:0 "
                            "quotient_cfg:1 remainder_cfg:1 active:idle",
                            "info_mark:0 SSID: guests  MAC:02:00:00:00:00:01  quotient_val:0 remainder_val:0 "
                            "quotient_cfg:2 remainder_cfg:0 active:idle"}));
}

TEST_F(AirtimeStations, DebugLinesBoundNamesAndTakeEveryNumber) {
    table_row row = {true, std::string(33, 's'), std::string(36, 'g'), 1, 1, 0xFFFFFFFF, 0xFFFFFFFF};
    table_row name = {false, std::string(33, 's'), std::string(36, 'g'), 0, 255, 0, 0};
    rows({name, row});
    std::string lines = debug_lines([] { station_table table(1); });
    EXPECT_TRUE(contains(lines, "info_mark:0 SSID: " + std::string(32, 's') + "  MAC:  ")) << lines;
    EXPECT_TRUE(
        contains(lines, "quotient_val:429496729 remainder_val:5 quotient_cfg:429496729 remainder_cfg:5 active:"))
        << lines;
    rows({name, row}, {.show_group = 1});
    lines = debug_lines([] { station_table table(1); });
    EXPECT_TRUE(contains(lines, "info_mark:0 SSID: " + std::string(35, 'g') + "  MAC:  ")) << lines;
}

TEST_F(AirtimeStations, AStationThatIsFoundIsADebugLineWithItsAirtime) {
    rows({ssid_row("home"), station_row(1)});
    connect_stations("ath0", {1});
    print_airtime("ath0", "4294967295", "4294967295");
    std::string lines = debug_lines([] { station_table table(1); });
    EXPECT_TRUE(
        lines.ends_with("[VLK-API] wlan_get_sta_atm_stats wlan_get_sta_atm_stats:interface:ath0 "
                        "client:02:00:00:00:00:01 got shortavg: -1 airtimeTotal 4294967295\n"
                        "[VLK-API] wlan_getAdvAirtimeStatsCl_AtfTable shortavg:-1 aritime_total: "
                        "4294967295\n"))
        << lines;
}

TEST_F(AirtimeStations, NothingIsPrintedWhileDebuggingIsOff) {
    rows({ssid_row("Others"), station_row(1)});
    connect_stations("ath0", {1});
    printed_text printed = capture([] { station_table table(1); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- counts ---

// A table that is full, of one name and stations that are all connected.
std::vector<table_row> full_table() {
    std::vector<table_row> rows = {ssid_row(std::string(33, 'n'), 500, std::string(36, 'g'))};
    for (uint8_t station = 1; station < 66; station++) {
        rows.push_back({true, std::string(33, 's'), std::string(36, 'g'), station, 1, station * 10U, 0});
    }
    return rows;
}

TEST_F(AirtimeStations, AsManyRowsAreReadAsTheDriverCountsButNoMoreThanTheTableHas) {
    for (uint32_t show_group : {0, 1}) {
        for (int count : {0, 1, 2, 65, 66, 67, 300, 32768, 65535}) {
            rows(full_table(), {.count = count, .show_group = show_group});
            size_t row_count = static_cast<size_t>(count > 66 ? 66 : count);
            std::vector<expected_record> expected;
            for (size_t row = 1; row < row_count && row <= 64; row++) {
                uint8_t station = static_cast<uint8_t>(row);
                expected.push_back(
                    {station, mac_text(station), std::string(17, show_group ? 'g' : 'n'), station, 50, 0, 0});
            }
            set_debug(true);
            begin_steps(refusing("popen"));
            printed_text printed = capture([&] { expect_records(station_table(1), expected); });
            end_steps();
            size_t lines = 0;
            for (size_t at = 0; (at = printed.out.find("info_mark:", at)) != std::string::npos; at++) {
                lines++;
            }
            EXPECT_EQ(lines, row_count) << count;
        }
    }
}

TEST_F(AirtimeStations, SixtySixConnectedStationsMakeSixtyFourRecords) {
    std::vector<table_row> all;
    std::vector<expected_record> expected;
    std::vector<uint8_t> stations;
    for (uint8_t station = 0; station < 66; station++) {
        all.push_back(station_row(station, station * 10U));
        stations.push_back(station);
    }
    for (uint8_t station = 0; station < 64; station++) {
        expected.push_back({station + 1U, mac_text(station), "", station, 0, 12, 34});
    }
    rows(all);
    connect_stations("ath0", stations);
    print_airtime("ath0", "12", "34");
    step_list steps = steps_of([&] { expect_records(station_table(1), expected); });
    EXPECT_EQ(steps.size(), 2U + 2U * 64U) << "nobody is asked for a station that makes no record";
    EXPECT_EQ(steps.back(), "popen wlanconfig ath0 atfstat " + bare_mac_text(63) + " 2>&1");
}

TEST_F(AirtimeStations, TenThousandCallsLeaveNothingOpen) {
    told.tables["ath0"] = table_bytes({});
    wlan_ioctl_socket();
    int before = lowest_free_descriptor();
    for (int call = 0; call < 10000; call++) {
        requests.clear();
        station_table table(1);
        ASSERT_EQ(table.status, 0);
    }
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(AirtimeStations, TenThousandRefusedCallsLeaveNothingOpen) {
    wlan_ioctl_socket();
    int before = lowest_free_descriptor();
    capture([&] {
        for (int call = 0; call < 10000; call++) {
            requests.clear();
            told.refused = {call % 2 ? "ssid ath0" : "table ath0"};
            station_table table(1);
            ASSERT_EQ(table.status, -1);
        }
    });
    EXPECT_EQ(lowest_free_descriptor(), before);
}

}  // namespace
