// Bars of blocks: their length, their rounding, and what can be seen of little.
#include <gtest/gtest.h>
#include <limits.h>
#include <locale.h>

#include <string>

#include "client/bars.h"

namespace {

std::string bar_of(int64_t number, int64_t most, bool blocks) {
    char bar[BAR_SIZE];
    draw_bar(bar, number, most, blocks);
    return bar;
}

std::string repeated(const std::string &text, int count) {
    std::string all;
    for (int i = 0; i < count; i++)
        all += text;
    return all;
}

TEST(ClientBars, TheMostHasTheWholeWidth) {
    EXPECT_EQ(bar_of(3, 3, false), std::string(40, '#'));
    EXPECT_EQ(bar_of(3, 3, true), repeated("█", 40));
    EXPECT_EQ(bar_of(INT64_MAX, INT64_MAX, true), repeated("█", 40));
}

TEST(ClientBars, NothingIsEmptyAndALittleCanBeSeen) {
    EXPECT_EQ(bar_of(0, 7, false), "");
    EXPECT_EQ(bar_of(0, 7, true), "");
    EXPECT_EQ(bar_of(1, 1000000, false), "#");
    EXPECT_EQ(bar_of(1, 1000000, true), "▏");
}

TEST(ClientBars, NegativeNumbersAreEmpty) {
    EXPECT_EQ(bar_of(-1, 1, true), "");
    EXPECT_EQ(bar_of(INT64_MIN, 1, false), "");
}

TEST(ClientBars, MoreThanTheMostIsNoLonger) {
    EXPECT_EQ(bar_of(INT64_MAX, 1, false), std::string(40, '#'));
    EXPECT_EQ(bar_of(2, 1, true), repeated("█", 40));
}

TEST(ClientBars, SignsAreRounded) {
    EXPECT_EQ(bar_of(1, 3, false), std::string(13, '#'));
    EXPECT_EQ(bar_of(2, 3, false), std::string(27, '#'));
}

TEST(ClientBars, BlocksEndInEighths) {
    const char *eighths[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    for (int i = 1; i < 8; i++)
        EXPECT_EQ(bar_of(80 + i, 320, true), repeated("█", 10) + eighths[i]);
    EXPECT_EQ(bar_of(88, 320, true), repeated("█", 11));
}

TEST(ClientBars, BlocksAreForTerminalsWithUtf8) {
    ASSERT_NE(setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_TRUE(has_blocks(true));
    EXPECT_FALSE(has_blocks(false));
    ASSERT_NE(setlocale(LC_CTYPE, "C"), nullptr);
    EXPECT_FALSE(has_blocks(true));
}

}  // namespace
