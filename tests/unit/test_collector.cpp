// Radio statistics: which numbers of an answer are given out, how collectors are started and stopped, and when.
#include "survey/collector.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "survey/control_channel.h"
#include "tests/support/daemon.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

using numbers = std::vector<int64_t>;

const std::string ASKED("result\0", 7);

// What the outputs of a getter hold before the call.
constexpr int64_t LEFT = 0x1234567812345678;

// Forty-eight words, all different, of both signs and with the extremes among them.
std::vector<int32_t> different_words() {
    std::vector<int32_t> words;
    for (int i = 0; i < 48; i++) {
        words.push_back(i % 2 ? -100000 - i : 1000 + i);
    }
    words[5] = INT_MIN;
    words[9] = -1;
    words[8] = INT_MAX;
    words[46] = INT_MIN + 1;
    words[10] = 0;
    return words;
}

// As a collector sends them, low byte first.
std::string answer_of(const std::vector<int32_t> &words) {
    std::string answer;
    for (int32_t word : words) {
        for (int shift = 0; shift < 32; shift += 8) {
            answer += static_cast<char>(static_cast<uint32_t>(word) >> shift);
        }
    }
    return answer;
}

numbers read_statistics(int index) {
    int n[3] = {UNTOUCHED, UNTOUCHED, UNTOUCHED};
    EXPECT_EQ(wlan_getChannelStatistics(index, &n[0], &n[1], &n[2]), 0);
    return {n[0], n[1], n[2]};
}

numbers read_noise_floor(int index) {
    int n[4] = {UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED};
    EXPECT_EQ(wlan_getChannelNoiseFloor(index, &n[0], &n[1], &n[2], &n[3]), 0);
    return {n[0], n[1], n[2], n[3]};
}

numbers read_tx(int index) {
    int64_t n = LEFT;
    EXPECT_EQ(wlan_getRadioTxPackets(index, &n), 0);
    return {n};
}

numbers read_rx(int index) {
    int64_t n = LEFT;
    EXPECT_EQ(wlan_getRadioRxPackets(index, &n), 0);
    return {n};
}

numbers read_retries(int index) {
    int n = UNTOUCHED;
    EXPECT_EQ(wlan_getRetransmissionMetric(index, &n), 0);
    return {n};
}

numbers read_rssi(int index) {
    numbers n(38, LEFT);
    EXPECT_EQ(wlan_getRSSITable(index, n.data()), 0);
    EXPECT_EQ(n.back(), LEFT) << "written behind the table";
    n.pop_back();
    return n;
}

// A getter; the byte offsets of its numbers in an answer; what it gives without one; the debug line for
// different_words().
struct getter_row {
    const char *name;
    numbers (*read)(int index);
    std::vector<size_t> offsets;
    int64_t default_number;
    const char *line;
};

std::vector<size_t> rssi_offsets() {
    std::vector<size_t> offsets;
    for (size_t offset = 40; offset <= 184; offset += 4) {
        offsets.push_back(offset);
    }
    return offsets;
}

const getter_row GETTERS[] = {
    {"wlan_getChannelStatistics",
     read_statistics,
     {0, 4, 8},
     -1,
     "[VLK-API] wlan_getChannelStatistics Channel Statistics - CST: 1000% AP_act: -100001% BusyTime: 1002%\n"},
    {"wlan_getChannelNoiseFloor",
     read_noise_floor,
     {16, 12, 20, 24},
     -1,
     "[VLK-API] wlan_getChannelNoiseFloor Channel NF - Min: 1004 Max: -100003 Med: -2147483648 Avg: 1006\n"},
    {"wlan_getRadioTxPackets", read_tx, {32}, 0, "[VLK-API] wlan_getRadioTxPackets TxCount : 2147483647\n"},
    {"wlan_getRadioRxPackets", read_rx, {36}, 0, "[VLK-API] wlan_getRadioRxPackets Rx Count : -1\n"},
    {"wlan_getRetransmissionMetric",
     read_retries,
     {28},
     -1,
     "[VLK-API] wlan_getRetransmissionMetric Retry percent : -100007%\n"},
    {"wlan_getRSSITable", read_rssi, rssi_offsets(), -1,
     "[VLK-API] wlan_getRSSITable Completed copying 37 RSSI table entries\n"},
};

// The numbers of a getter in an answer of these words.
numbers expected(const getter_row &row, const std::vector<int32_t> &words) {
    numbers result;
    for (size_t offset : row.offsets) {
        result.push_back(words[offset / 4]);
    }
    return result;
}

numbers defaults(const getter_row &row) {
    return numbers(row.offsets.size(), row.default_number);
}

struct Collector : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("killall");
        install_tool("iwpriv");
        write_store({});
        std::filesystem::create_directories("/var/run");
        for (int number : {0, 1, 7, 8, 9, 15}) {
            unlink(link_of(number).c_str());
        }
        memset(buf_reply, 0xFF, sizeof(buf_reply));
    }

    static std::string link_of(int number) {
        return "/var/run/radstat" + std::to_string(number);
    }
};

// --- readings ---

TEST_F(Collector, EachGetterGivesOutItsOwnNumbers) {
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(answer_of(different_words()));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(row.read(1), expected(row, different_words())) << row.name;
    }
}

TEST_F(Collector, EachGetterAsksForTheResultWithItsNul) {
    for (const getter_row &row : GETTERS) {
        fake_daemon daemon("/var/run/radstat/ath0");
        daemon.answer(answer_of(different_words()));
        row.read(1);
        EXPECT_EQ(daemon.requests(), (std::vector<std::string>{ASKED})) << row.name;
    }
}

TEST_F(Collector, EachGetterAsksTheCollectorOfTheVapsInterface) {
    struct {
        int index;
        const char *path;
    } vaps[] = {{9, "/var/run/radstat/ath8"},
                {8, "/var/run/radstat/ath7"},
                {16, "/var/run/radstat/ath15"},
                {INT_MIN, "/var/run/radstat/ath2147483647"}};
    for (const auto &vap : vaps) {
        fake_daemon daemon(vap.path);
        daemon.answer(answer_of(different_words()));
        for (const getter_row &row : GETTERS) {
            EXPECT_EQ(row.read(vap.index), expected(row, different_words())) << row.name << " " << vap.path;
        }
    }
}

TEST_F(Collector, EachReadingIsLogged) {
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(answer_of(different_words()));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(debug_lines([&row] { row.read(1); }), row.line);
    }
}

TEST_F(Collector, WithoutDebuggingAReadingPrintsNothing) {
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(answer_of(different_words()));
    for (const getter_row &row : GETTERS) {
        printed_text printed = capture([&row] { row.read(1); });
        EXPECT_EQ(printed.out, "");
        EXPECT_EQ(printed.err, "");
    }
}

// What is remembered is for answers of zeros; a collector that is not there gives the defaults all the same.
TEST_F(Collector, WithoutACollectorEachGetterGivesItsDefaultsAndLogsNothing) {
    memset(buf_reply, 1, sizeof(buf_reply));
    for (int index : {1, 9, 8, 0, INT_MIN, INT_MAX}) {
        for (const getter_row &row : GETTERS) {
            set_debug(true);
            printed_text printed = capture([&row, index] { EXPECT_EQ(row.read(index), defaults(row)) << row.name; });
            EXPECT_EQ(printed.out, "");
            EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n");
        }
    }
}

TEST_F(Collector, WithoutADescriptorEachGetterGivesItsDefaults) {
    fake_daemon daemon("/var/run/radstat/ath0");
    for (const getter_row &row : GETTERS) {
        printed_text printed = capture([&row] {
            begin_descriptor_shortage();
            numbers read = row.read(1);
            end_descriptor_shortage();
            EXPECT_EQ(read, defaults(row)) << row.name;
        });
        EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n");
    }
}

// Runs each getter in a process of its own, all at the same time; each must give its defaults.
void expect_defaults_of_all_at_once() {
    std::vector<pid_t> children;
    for (const getter_row &row : GETTERS) {
        pid_t child = fork();
        if (child == 0) {
            _exit(row.read(1) == defaults(row) ? 0 : 1);
        }
        children.push_back(child);
    }
    for (size_t i = 0; i < children.size(); i++) {
        int status = -1;
        waitpid(children[i], &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << GETTERS[i].name;
    }
}

TEST_F(Collector, WithACollectorThatDoesNotAnswerEachGetterGivesItsDefaults) {
    memset(buf_reply, 1, sizeof(buf_reply));
    fake_daemon daemon("/var/run/radstat/ath0");
    expect_defaults_of_all_at_once();
    EXPECT_EQ(daemon.read_one(), ASKED);
}

TEST_F(Collector, WithACollectorThatDoesNotReadEachGetterGivesItsDefaults) {
    memset(buf_reply, 1, sizeof(buf_reply));
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.fill_queue();
    expect_defaults_of_all_at_once();
}

TEST_F(Collector, WhatAShortAnswerDoesNotReachReadsAsZero) {
    // 35 bytes end inside the number of sent packets, of whose bytes three are there.
    std::vector<int32_t> words = different_words();
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(answer_of(words).substr(0, 35));
    words.resize(9);
    words[8] = 0x00ffffff;
    words.resize(48, 0);
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(row.read(1), expected(row, words)) << row.name;
    }
}

TEST_F(Collector, OfAnAnswerThatIsTooLongTheBeginningCounts) {
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(answer_of(different_words()) + std::string(1000, 'x'));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(row.read(1), expected(row, different_words())) << row.name;
    }
}

TEST_F(Collector, AnAnswerOfZerosReadsAsTheLastRealOneOfTheRadio) {
    for (int index : {1, 9}) {
        std::string path = "/var/run/radstat/ath" + std::to_string(index - 1);
        std::vector<int32_t> words = different_words();
        words[0] += index;
        {
            fake_daemon daemon(path);
            daemon.answer(answer_of(words));
            read_statistics(index);
        }
        for (size_t length : {0, 1, 40, 192}) {
            fake_daemon daemon(path);
            daemon.answer(std::string(length, '\0'));
            for (const getter_row &row : GETTERS) {
                EXPECT_EQ(row.read(index), expected(row, words)) << row.name << " " << length;
            }
        }
    }
}

TEST_F(Collector, AnAnswerOfZerosReadsAsMinusOneBeforeTheFirstRealOne) {
    fake_daemon daemon("/var/run/radstat/ath0");
    daemon.answer(std::string(192, '\0'));
    for (const getter_row &row : GETTERS) {
        EXPECT_EQ(row.read(1), numbers(row.offsets.size(), -1)) << row.name;
    }
}

// --- starting and stopping ---

// The commands of a block in order, exactly as they are handed to the shell. The tools' own prints are not looked at.
template <typename Block>
calls executed(Block block) {
    return printed_behind("[VLK-API] wlan_setRadStatEnable_1 executing ", block);
}

// What is recorded once so many calls are: a collector is started in the background.
calls tool_calls_when(size_t count) {
    for (int i = 0; i < 500 && tool_calls().size() < count; i++) {
        usleep(10000);
    }
    return tool_calls();
}

// Makes the link of an interface lead to a collector that records its calls.
void install_collector(int number) {
    install_tool("radstat");
    ASSERT_EQ(symlink((std::string(FAKE_TOOLS) + "/radstat").c_str(), Collector::link_of(number).c_str()), 0);
}

TEST_F(Collector, ACollectorIsStartedUnderTheNameOfItsInterface) {
    install_collector(0);
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable(1, 1, 30, 1800), 0); }),
              (calls{"killall radstat0", "/var/run/radstat0 -i ath0 -r 30 -m 1800 -R 0&"}));
    EXPECT_EQ(tool_calls_when(2), (calls{"killall radstat0", "radstat -i ath0 -r 30 -m 1800 -R 0"}));
}

TEST_F(Collector, TheFullerFormPassesItsLastNumberOnToo) {
    install_collector(15);
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable_1(16, 1, -1, INT_MIN, INT_MAX), 0); }),
              (calls{"killall radstat15", "/var/run/radstat15 -i ath15 -r -1 -m -2147483648 -R 2147483647&"}));
    EXPECT_EQ(tool_calls_when(2), (calls{"killall radstat15", "radstat -i ath15 -r -1 -m -2147483648 -R 2147483647"}));
}

TEST_F(Collector, AnythingButZeroStarts) {
    install_collector(1);
    for (int on : {1, 2, -1, INT_MIN}) {
        EXPECT_EQ(executed([on] { wlan_setRadStatEnable(2, on, 5, 6); }),
                  (calls{"killall radstat1", "/var/run/radstat1 -i ath1 -r 5 -m 6 -R 0&"}));
    }
    tool_calls_when(8);
}

TEST_F(Collector, ACollectorIsStoppedByItsName) {
    install_collector(0);
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable(1, 0, 30, 1800), 0); }), (calls{"killall radstat0"}));
    EXPECT_EQ(tool_calls(), (calls{"killall radstat0"}));
}

TEST_F(Collector, ForTheSecondRadiosFirstVapTheDriverIsToldLast) {
    install_collector(8);
    EXPECT_EQ(
        executed([] { EXPECT_EQ(wlan_setRadStatEnable(9, 7, 30, 1800), 0); }),
        (calls{"killall radstat8", "/var/run/radstat8 -i ath8 -r 30 -m 1800 -R 0&", "iwpriv wifi1 enable_ol_stats 1"}));
    tool_calls_when(3);
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable(9, 0, 30, 1800), 0); }),
              (calls{"killall radstat8", "iwpriv wifi1 enable_ol_stats 0"}));
    calls called = tool_calls();
    called.erase(called.begin(), called.begin() + 3);
    EXPECT_EQ(called, (calls{"killall radstat8", "iwpriv wifi1 enable_ol_stats 0"}));
}

TEST_F(Collector, AnIndexBelowOneIsRefusedBeforeAnythingIsDone) {
    memset(buf_reply, 'a', sizeof(buf_reply));
    rad_stat_index = 5;
    install_tool("ln");
    for (int index : {0, -1, INT_MIN}) {
        for (int on : {0, 1}) {
            EXPECT_EQ(debug_lines([index, on] {
                          EXPECT_EQ(wlan_setRadStatEnable(index, on, 30, 1800), -1) << index;
                          EXPECT_EQ(wlan_setRadStatEnable_1(index, on, 30, 1800, 30), -1) << index;
                      }),
                      "");
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
    EXPECT_EQ(buf_reply[0], 'a');
    EXPECT_EQ(rad_stat_index, 5);
}

TEST_F(Collector, EveryIndexFromOneOnIsTaken) {
    install_tool("ln");
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable(17, 0, 0, 0), 0); }),
              (calls{"ln -s -T /usr/sbin/radstat /var/run/radstat16", "killall radstat16"}));
    EXPECT_EQ(executed([] { EXPECT_EQ(wlan_setRadStatEnable(INT_MAX, 0, 0, 0), 0); }),
              (calls{"ln -s -T /usr/sbin/radstat /var/run/radstat2147483646", "killall radstat2147483646"}));
}

TEST_F(Collector, AMissingLinkIsMadeFirst) {
    install_tool("ln");
    for (int on : {0, 1}) {
        calls commands = executed([on] { wlan_setRadStatEnable(9, on, 3, 4); });
        ASSERT_GE(commands.size(), 3U);
        EXPECT_EQ(commands[0], "ln -s -T /usr/sbin/radstat /var/run/radstat8");
        EXPECT_EQ(commands[1], "killall radstat8");
        EXPECT_EQ(commands.size(), on ? 4U : 3U);
    }
    EXPECT_EQ(tool_calls()[0], "ln -s -T /usr/sbin/radstat /var/run/radstat8");
}

TEST_F(Collector, AMissingLinkLeadsToTheCollectorAfterwards) {
    wlan_setRadStatEnable(1, 0, 3, 4);
    EXPECT_EQ(std::filesystem::read_symlink(link_of(0)), "/usr/sbin/radstat");
}

TEST_F(Collector, ALinkThatLeadsNowhereCountsAsMissingAndStays) {
    ASSERT_EQ(symlink("/nowhere", link_of(0).c_str()), 0);
    set_debug(true);
    printed_text printed = capture([] { EXPECT_EQ(wlan_setRadStatEnable(1, 0, 3, 4), 0); });
    EXPECT_EQ(printed.out,
              "[VLK-API] wlan_setRadStatEnable_1 executing ln -s -T /usr/sbin/radstat /var/run/radstat0\n"
              "[VLK-API] wlan_setRadStatEnable_1 executing killall radstat0\n");
    EXPECT_TRUE(contains(printed.err, "File exists"));
    EXPECT_EQ(std::filesystem::read_symlink(link_of(0)), "/nowhere");
}

TEST_F(Collector, StoppingForgetsTheAnswersOfTheRadio) {
    struct {
        int index;
        int slot;
    } rows[] = {{1, 0}, {7, 0}, {8, 1}, {9, 1}, {16, 1}};
    for (const auto &row : rows) {
        memset(buf_reply, 'a', sizeof(buf_reply));
        EXPECT_EQ(wlan_setRadStatEnable_1(row.index, 0, 0, 0, 0), 0);
        std::string remembered(reinterpret_cast<char *>(buf_reply), sizeof(buf_reply));
        EXPECT_EQ(remembered.substr(192 * row.slot, 192), std::string(192, '\xff')) << row.index;
        EXPECT_EQ(remembered.substr(192 * (1 - row.slot), 192), std::string(192, 'a')) << row.index;
    }
}

TEST_F(Collector, StartingForgetsNothing) {
    install_collector(0);
    memset(buf_reply, 'a', sizeof(buf_reply));
    wlan_setRadStatEnable(1, 1, 30, 1800);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buf_reply), sizeof(buf_reply)), std::string(384, 'a'));
    tool_calls_when(2);
}

TEST_F(Collector, StoppedStatisticsReadAsTheDefaults) {
    {
        fake_daemon daemon("/var/run/radstat/ath0");
        daemon.answer(answer_of(different_words()));
        EXPECT_EQ(read_tx(1), numbers{INT_MAX});
    }
    wlan_setRadStatEnable(1, 0, 0, 0);
    capture([] {
        for (const getter_row &row : GETTERS) {
            EXPECT_EQ(row.read(1), defaults(row)) << row.name;
        }
    });
}

TEST_F(Collector, TheLastIndexIsKept) {
    install_tool("ln");
    wlan_setRadStatEnable(16, 0, 0, 0);
    EXPECT_EQ(rad_stat_index, 16);
    wlan_setRadStatEnable_1(3, 0, 0, 0, 0);
    EXPECT_EQ(rad_stat_index, 3);
}

TEST_F(Collector, AStartedCollectorIsNotWaitedFor) {
    write_file(link_of(0), "#!/bin/sh\nexec sleep 4\n");
    ASSERT_EQ(chmod(link_of(0).c_str(), 0755), 0);
    timespec begin = {};
    timespec end = {};
    clock_gettime(CLOCK_MONOTONIC, &begin);
    capture([] { EXPECT_EQ(wlan_setRadStatEnable(1, 1, 30, 1800), 0); });
    clock_gettime(CLOCK_MONOTONIC, &end);
    EXPECT_LE(end.tv_sec - begin.tv_sec, 2);
}

TEST_F(Collector, WhateverBecomesOfTheCommandsIsASuccess) {
    for (const char *tool : {"ln", "killall", "iwpriv"}) {
        install_tool(tool, "garbage\n", 1);
    }
    for (int on : {0, 1}) {
        int status = -1;
        capture([&] { status = wlan_setRadStatEnable(9, on, 30, 1800); });  // there is no collector to run
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(tool_calls(), (calls{"ln -s -T /usr/sbin/radstat /var/run/radstat8", "killall radstat8",
                                   "iwpriv wifi1 enable_ol_stats 0", "ln -s -T /usr/sbin/radstat /var/run/radstat8",
                                   "killall radstat8", "iwpriv wifi1 enable_ol_stats 1"}));
}

TEST_F(Collector, NothingIsPrintedWhileDebuggingIsOff) {
    install_collector(8);
    printed_text printed = capture([] {
        wlan_setRadStatEnable(9, 1, 30, 1800);
        tool_calls_when(3);
        wlan_setRadStatEnable(9, 0, 30, 1800);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// --- what the store wishes ---

TEST_F(Collector, TheStoredWishIsReadFromItsThreeKeys) {
    write_store({"RSG_Enable_2=9", "RSG_Enable=3", "RSG_Rate=-4", "RSG_Interval=5 s"});
    int mode = UNTOUCHED;
    int rate = UNTOUCHED;
    int interval = UNTOUCHED;
    getRSGSettings(&mode, &rate, &interval);
    EXPECT_EQ(mode, 3);
    EXPECT_EQ(rate, -4);
    EXPECT_EQ(interval, 5);
}

TEST_F(Collector, EachNumberThatIsNotStoredStaysAsItWas) {
    struct {
        const char *lines[3];
        int mode;
        int rate;
        int interval;
    } rows[] = {
        {{"RSG_Rate=4", "RSG_Interval=5", "RSG_Enable_2=3"}, 10, 4, 5},
        {{"RSG_Enable=3", "RSG_Interval=5", "RSG_Rate_2=4"}, 3, 11, 5},
        {{"RSG_Enable=3", "RSG_Rate=4", "RSG_interval=5"}, 3, 4, 12},
        {{"RSG_Enable=", "RSG_Rate=", "RSG_Interval="}, 10, 11, 12},
        {{"RSG_Enable=on", "RSG_Rate=0", "RSG_Interval=x"}, 0, 0, 0},
    };
    for (const auto &row : rows) {
        write_store({row.lines[0], row.lines[1], row.lines[2]});
        int mode = 10;
        int rate = 11;
        int interval = 12;
        getRSGSettings(&mode, &rate, &interval);
        EXPECT_EQ(mode, row.mode) << row.lines[0];
        EXPECT_EQ(rate, row.rate) << row.lines[0];
        EXPECT_EQ(interval, row.interval) << row.lines[0];
    }
}

TEST_F(Collector, TheStoredWishIsLoggedAsFarAsItIsThere) {
    write_store({"RSG_Enable=3 of them", "RSG_Interval=" + std::string(1700, '9')});
    EXPECT_EQ(debug_lines([] {
                  int n[3];
                  getRSGSettings(&n[0], &n[1], &n[2]);
              }),
              "[VLK-API] athcfg_getbyname index -1, Param: RSG_Enable= is 3 of them\n"
              "[VLK-API] getRSGSettings getRSGSettings: get RSG_Enable 3 of them\n"
              "[VLK-API] getWifiParam RSG_Rate= does not exist in /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index -1, Param: RSG_Rate= is \n"
              "[VLK-API] athcfg_getbyname index -1, Param: RSG_Interval= is " +
                  std::string(1700, '9') +
                  "\n"
                  "[VLK-API] getRSGSettings getRSGSettings: get RSG_Interval " +
                  std::string(1700, '9') + "\n");
    write_store({"RSG_Rate=7"});
    EXPECT_TRUE(contains(debug_lines([] {
                             int n[3];
                             getRSGSettings(&n[0], &n[1], &n[2]);
                         }),
                         "[VLK-API] getRSGSettings getRSGSettings: get RSG_Rate 7\n"));
}

// A gateway whose VAP 1 is on radio 0 (settings with the suffix 2) and whose VAP 9 is on radio 1 (bare settings).
struct RsgRule : Collector {
    void SetUp() override {
        Collector::SetUp();
        for (int number : {0, 8}) {
            ASSERT_EQ(symlink("/bin/true", link_of(number).c_str()), 0);
        }
    }

    static void store(calls lines) {
        lines.insert(lines.end(), {"AP_RADIO_ID=0", "AP_RADIO_ID_9=1"});
        write_store(lines);
    }

    static calls applied(int index) {
        return executed([index] { wlan_applyRSGSettings(index); });
    }
};

const calls STOP_1 = {"killall radstat0"};
const calls START_1 = {"killall radstat0", "/var/run/radstat0 -i ath0 -r 30 -m 1800 -R 30&"};
const calls STOP_9 = {"killall radstat8", "iwpriv wifi1 enable_ol_stats 0"};
const calls START_9 = {"killall radstat8", "/var/run/radstat8 -i ath8 -r 30 -m 1800 -R 30&",
                       "iwpriv wifi1 enable_ol_stats 1"};

TEST_F(RsgRule, ACollectorRunsWhenTheModeNamesItsRadioAndTheRadioAndAVapOfItAreOn) {
    for (int mode : {-1, 0, 1, 2, 3, 4}) {
        for (bool radio_on : {false, true}) {
            // The VAP that is on: none, the first, one in the middle, the last, one beyond the group.
            for (int place : {-1, 0, 3, 7, 8}) {
                SCOPED_TRACE(testing::Message() << "mode " << mode << " radio " << radio_on << " place " << place);
                std::string on = radio_on ? "1" : "0";
                std::string other = radio_on ? "0" : "1";
                std::string rsg = "RSG_Enable=" + std::to_string(mode);
                bool startable = radio_on && place >= 0 && place < 8;
                store({rsg, "AP_RADIO_ENABLED_2=" + on, "AP_RADIO_ENABLED=" + other,
                       place == 0 ? "AP_ENABLE=1" : "AP_ENABLE_" + std::to_string(1 + place) + "=1"});
                EXPECT_EQ(applied(1), startable && (mode == 1 || mode == 3) ? START_1 : STOP_1);
                store({rsg, "AP_RADIO_ENABLED=" + on, "AP_RADIO_ENABLED_2=" + other,
                       "AP_ENABLE_" + std::to_string(9 + place) + "=1"});
                EXPECT_EQ(applied(9), startable && (mode == 2 || mode == 3) ? START_9 : STOP_9);
            }
        }
    }
}

TEST_F(RsgRule, AnythingButZeroIsOn) {
    store({"RSG_Enable=3", "AP_RADIO_ENABLED=-1", "AP_RADIO_ENABLED_2=7", "AP_ENABLE_8=-5", "AP_ENABLE_16=2"});
    EXPECT_EQ(applied(1), START_1);
    EXPECT_EQ(applied(9), START_9);
}

TEST_F(RsgRule, TheSearchForAnEnabledVapGoesUpAndEndsAtTheFirst) {
    store({"RSG_Enable=3", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_3=1", "AP_ENABLE_4=1"});
    std::string lines = debug_lines([] { wlan_applyRSGSettings(1); });
    size_t first = lines.find("Param: AP_ENABLE= is \n");
    size_t second = lines.find("Param: AP_ENABLE_2= is \n");
    size_t third = lines.find("Param: AP_ENABLE_3= is 1\n");
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_NE(third, std::string::npos);
    EXPECT_FALSE(contains(lines, "AP_ENABLE_4="));
}

TEST_F(RsgRule, EveryOtherIndexIsLeftAlone) {
    store({"RSG_Enable=3", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE_2=1", "AP_ENABLE_10=1"});
    rad_stat_index = 5;
    for (int index : {INT_MIN, -1, 0, 2, 3, 8, 10, 16, 17, INT_MAX}) {
        EXPECT_EQ(debug_lines([index] { wlan_applyRSGSettings(index); }), "") << index;
    }
    EXPECT_EQ(tool_calls(), calls{});
    EXPECT_EQ(rad_stat_index, 5);
}

TEST_F(RsgRule, TheStoredRateAndIntervalArePassedOn) {
    store({"RSG_Enable=3", "RSG_Rate=7", "RSG_Interval=-8", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE=1",
           "AP_ENABLE_9=1"});
    EXPECT_EQ(applied(1)[1], "/var/run/radstat0 -i ath0 -r 7 -m -8 -R 30&");
    EXPECT_EQ(applied(9)[1], "/var/run/radstat8 -i ath8 -r 7 -m -8 -R 30&");
}

TEST_F(RsgRule, WithoutAStoredWishTheCollectorsAreStopped) {
    store({"AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE=1", "AP_ENABLE_9=1"});
    EXPECT_EQ(applied(1), STOP_1);
    EXPECT_EQ(applied(9), STOP_9);
}

TEST_F(RsgRule, WithoutAStoreTheCollectorsAreStopped) {
    unlink(STORE_FILE);
    EXPECT_EQ(applied(1), STOP_1);
    EXPECT_EQ(applied(9), STOP_9);
}

TEST_F(RsgRule, ModeTwoStopsTheFirstRadiosCollectorAndStartsTheSecondOnes) {
    store({"RSG_Enable=2", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1", "AP_ENABLE=1", "AP_ENABLE_9=1"});
    memset(buf_reply, 'a', sizeof(buf_reply));
    EXPECT_EQ(applied(1), STOP_1);
    EXPECT_EQ(buf_reply[0], 0xFF);
    EXPECT_EQ(applied(9), START_9);
    EXPECT_EQ(buf_reply[192], 'a');
}

// --- neighbours ---

TEST_F(Collector, TheChannelIsLeftToTheDriver) {
    install_tool("iwconfig", "garbage", 1);
    EXPECT_EQ(commands_of([] {
                  for (int index : {1, 16, 0, INT_MIN}) {
                      EXPECT_EQ(wlan_apAutoChannelSelect(index), 0);
                  }
              }),
              (calls{"iwconfig ath0 channel auto", "iwconfig ath15 channel auto", "iwconfig ath-1 channel auto",
                     "iwconfig ath2147483647 channel auto"}));
    EXPECT_EQ(tool_calls()[0], "iwconfig ath0 channel auto");
}

TEST_F(Collector, LeavingTheChannelToTheDriverSucceedsWithoutAShell) {
    begin_descriptor_shortage();
    int status = wlan_apAutoChannelSelect(1);
    end_descriptor_shortage();
    EXPECT_EQ(status, 0);
}

TEST_F(Collector, TheDriversNoiseFloorIsTheNumberBehindTheFirstColon) {
    struct {
        const char *output;
        int noise_floor;
    } rows[] = {
        {"ath0      get_channf:-95  \n", -95},
        {"ath0 get_channf:-95 -12:7", -95},
        {"x: -4\n", -4},
        {"x:y:5", 0},
        {"ath0 get_channf -95", 0},
        {"x:", 0},
        {"", 0},
    };
    for (const auto &row : rows) {
        install_tool("iwpriv", row.output);
        EXPECT_EQ(number_of(ath_getApNoiseFloor, 1), row.noise_floor) << row.output;
    }
}

TEST_F(Collector, TheDriversNoiseFloorIsAskedOfTheVapsInterface) {
    install_tool("iwpriv", "x:1");
    EXPECT_EQ(debug_lines([] { number_of(ath_getApNoiseFloor, 9); }),
              "[VLK-API] ath_getApNoiseFloor ath_getApNoiseFloor: index 9, execute cmd: iwpriv ath8 get_channf\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwpriv ath8 get_channf\n");
    set_debug(false);
    number_of(ath_getApNoiseFloor, INT_MIN + 1);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath8 get_channf", "iwpriv ath-2147483648 get_channf"}));
}

TEST_F(Collector, TheDriversNoiseFloorFailsWithoutAShell) {
    int noise_floor = UNTOUCHED;
    begin_descriptor_shortage();
    int status = ath_getApNoiseFloor(1, &noise_floor);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(noise_floor, UNTOUCHED);
}

}  // namespace
