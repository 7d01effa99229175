// What a scan and a watch are made of, as far as no server is needed.
#include <gtest/gtest.h>
#include <locale.h>

#include <string>
#include <vector>

#include "client/scan.h"
#include "client/watch.h"

namespace {

TEST(ClientScan, BarsFollowFromTheStrength) {
    for (auto [rssi, bars] : {std::pair{127, 4},
                              {0, 4},
                              {-55, 4},
                              {-56, 3},
                              {-65, 3},
                              {-66, 2},
                              {-75, 2},
                              {-76, 1},
                              {-85, 1},
                              {-86, 0},
                              {-128, 0}})
        EXPECT_EQ(signal_bars(rssi), bars) << rssi;
}

std::vector<std::string> drawings() {
    std::vector<std::string> drawn;
    for (int rssi : {-90, -80, -70, -60, -50})
        drawn.push_back(signal_drawing(rssi));
    return drawn;
}

TEST(ClientScan, BarsAreBlocksInUtf8AndStarsElsewhere) {
    std::string before = setlocale(LC_CTYPE, nullptr);
    ASSERT_NE(setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(drawings(), (std::vector<std::string>{"____", "▂___", "▂▄__", "▂▄▆_", "▂▄▆█"}));
    ASSERT_NE(setlocale(LC_CTYPE, "C"), nullptr);
    EXPECT_EQ(drawings(), (std::vector<std::string>{"____", "*___", "**__", "***_", "****"}));
    setlocale(LC_CTYPE, before.c_str());
}

TEST(ClientWatch, IntervalIsANumberOfSecondsWithUpToThreeDecimals) {
    for (auto [word, wanted] : {std::pair{"2", 2000},
                                {"0.1", 100},
                                {"0.10", 100},
                                {"0.125", 125},
                                {"1.5", 1500},
                                {"007", 7000},
                                {"86400", 86400000},
                                {"86400.000", 86400000}}) {
        int64_t milliseconds = 0;
        EXPECT_TRUE(parse_interval(word, &milliseconds)) << word;
        EXPECT_EQ(milliseconds, wanted) << word;
    }
}

TEST(ClientWatch, WhatIsNoIntervalIsRefusedAndLeavesTheOutputAlone) {
    for (const char *word : {"",       "0",   "0.0",  "0.09", "0.099", "86400.001", "86401", "99999999999999999999",
                             "-1",     "+1",  " 1",   "1 ",   "1.",    ".5",        "1.5.",  "1.2.3",
                             "1.1234", "1e3", "0x10", "nan",  "inf",   "one"}) {
        int64_t milliseconds = 4711;
        EXPECT_FALSE(parse_interval(word, &milliseconds)) << word;
        EXPECT_EQ(milliseconds, 4711) << word;
    }
}

}  // namespace
