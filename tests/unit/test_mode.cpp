// The driver's mode strings: taken apart, settled and put together again.
#include "config/mode.h"

#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "tests/support/platform.h"

namespace {

struct Mode : testing::Test {
    void SetUp() override {
        reset_platform();
    }

    // The record of radio 1 with this mode string and these further settings in the store.
    wlan_mode_info parse(const std::string &text, std::vector<std::string> lines = {}) {
        lines.push_back("AP_CHMODE=" + text);
        write_store(lines);
        wlan_mode_info mode;
        memset(&mode, 'x', sizeof(mode));
        EXPECT_EQ(mode_parsing(1, &mode), 0);
        return mode;
    }
};

std::string compose(wlan_mode_info *mode) {
    char text[MODE_STRING_SIZE];
    EXPECT_EQ(mode_compose(mode, text, sizeof(text)), 0);
    return text;
}

wlan_mode_info make_mode(const char *base, int32_t width, int32_t offset) {
    wlan_mode_info mode = {};
    snprintf(mode.base, sizeof(mode.base), "%s", base);
    mode.width = width;
    mode.offset = offset;
    return mode;
}

// --- base and standard ---

struct standard_case {
    const char *text;
    std::vector<std::string> switches;
    const char *standard;
    const char *base;
};

const standard_case STANDARD_CASES[] = {
    {"11ACVHT80", {"PUREAC=1"}, "ac", "11AC"},
    {"11ACVHT80", {"PUREAC=1", "PUREN=1"}, "ac", "11AC"},
    {"11ACVHT80", {}, "anac", "11AC"},
    {"11ACVHT80", {"PUREN=0"}, "anac", "11AC"},
    {"11ACVHT80", {"PUREN=1"}, "nac", "11AC"},
    {"11A", {}, "a", "11A"},
    {"11A", {"PUREN=1", "PUREG=1", "PUREAC=1"}, "a", "11A"},
    {"11B", {}, "b", "11B"},
    {"11B", {"PUREN=1", "PUREG=1", "PUREAC=1"}, "b", "11B"},
    {"11G", {}, "bg", "11G"},
    {"11G", {"PUREG=1"}, "g", "11G"},
    {"11G", {"PUREN=1"}, "bg", "11G"},
    {"11NAHT20", {}, "an", "11NA"},
    {"11NAHT20", {"PUREN=1"}, "n", "11NA"},
    {"11NAHT20", {"PUREG=1"}, "an", "11NA"},
    {"11NGHT20", {}, "bgn", "11NG"},
    {"11NGHT20", {"PUREG=1"}, "gn", "11NG"},
    {"11NGHT20", {"PUREN=1"}, "n", "11NG"},
    {"11NGHT20", {"PUREN=1", "PUREG=1"}, "n", "11NG"},
    {"AUTO", {"PUREN=1", "PUREG=1", "PUREAC=1"}, "", ""},
};

TEST_F(Mode, BaseAndPureSwitchesGiveTheStandard) {
    for (const standard_case &row : STANDARD_CASES) {
        SCOPED_TRACE(testing::Message() << row.text << " " << testing::PrintToString(row.switches));
        wlan_mode_info mode = parse(row.text, row.switches);
        EXPECT_STREQ(mode.standard, row.standard);
        EXPECT_STREQ(mode.base, row.base);
    }
}

TEST_F(Mode, APureSwitchIsOnOnlyWhenItsNumberIsOne) {
    EXPECT_STREQ(parse("11G", {"PUREG=2"}).standard, "bg");
    EXPECT_STREQ(parse("11G", {"PUREG=-1"}).standard, "bg");
    EXPECT_STREQ(parse("11G", {"PUREG=on"}).standard, "bg");
    EXPECT_STREQ(parse("11G", {"PUREG=01"}).standard, "g");
}

TEST_F(Mode, TheBaseIsFoundAnywhereInTheString) {
    EXPECT_STREQ(parse("mode 11NGHT20").base, "11NG");
}

TEST_F(Mode, TheFirstBaseOfTheListWins) {
    EXPECT_STREQ(parse("11NG11AC").base, "11AC");
    EXPECT_STREQ(parse("11NG11G").base, "11G");
    EXPECT_STREQ(parse("11B11A").base, "11A");
}

// --- width and side ---

TEST_F(Mode, TheWidthIsReadFromTheString) {
    struct {
        const char *text;
        const char *discoext;
        int32_t width;
        const char *width_text;
    } rows[] = {
        {"11NGHT20", "", WIDTH_20, "HT20"},       {"11NGHT40PLUS", "", WIDTH_40, "HT40"},
        {"11NGHT40PLUS", "0", WIDTH_40, "HT40"},  {"11NGHT40PLUS", "1", WIDTH_40_DISCOEXT, "HT40"},
        {"11NGHT40PLUS", "11", WIDTH_40, "HT40"}, {"11NGHT40PLUS", "01", WIDTH_40, "HT40"},
        {"11NGHT20", "1", WIDTH_20, "HT20"},      {"11ACVHT80", "1", WIDTH_80, "HT80"},
        {"11ACVHT160", "1", WIDTH_NONE, ""},      {"11A", "1", WIDTH_NONE, ""},
        {"HT80HT20HT40", "0", WIDTH_40, "HT40"},  {"HT80HT20", "0", WIDTH_20, "HT20"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.text << " AP_DISCOEXT=" << row.discoext);
        wlan_mode_info mode = parse(row.text, {std::string("AP_DISCOEXT=") + row.discoext});
        EXPECT_EQ(mode.width, row.width);
        EXPECT_STREQ(mode.width_text, row.width_text);
    }
}

TEST_F(Mode, TheSideIsReadFromTheString) {
    struct {
        const char *text;
        int32_t offset;
        const char *offset_text;
    } rows[] = {
        {"11NAHT40MINUS", SIDE_BELOW, "MINUS"},
        {"11NAHT40PLUS", SIDE_ABOVE, "PLUS"},
        {"PLUSMINUS", SIDE_BELOW, "MINUS"},
        {"11NAHT20PLUS", SIDE_ABOVE, "PLUS"},
        {"11NAHT20", SIDE_NONE, ""},
        {"11ACVHT80", SIDE_NONE, ""},
        {"11A", SIDE_NONE, ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        wlan_mode_info mode = parse(row.text);
        EXPECT_EQ(mode.offset, row.offset);
        EXPECT_STREQ(mode.offset_text, row.offset_text);
    }
}

TEST_F(Mode, FortyMegahertzWithoutASideIsUnstated) {
    EXPECT_EQ(parse("11NAHT40").offset, SIDE_UNSTATED);
    EXPECT_EQ(parse("11NAHT40", {"AP_DISCOEXT=1"}).offset, SIDE_UNSTATED);
}

TEST_F(Mode, WithoutAModeTheRecordIsEmpty) {
    write_store({"PUREN=1", "AP_DISCOEXT=1"});
    wlan_mode_info mode;
    memset(&mode, 'x', sizeof(mode));
    mode_parsing(1, &mode);
    wlan_mode_info empty = {};
    EXPECT_EQ(memcmp(&mode, &empty, sizeof(mode)), 0);
}

TEST_F(Mode, AForeignModeStringOfAnyLengthIsTakenApart) {
    wlan_mode_info mode = parse(std::string(5000, '1') + "1NGHT20");
    EXPECT_STREQ(mode.base, "");
    mode = parse("11NG" + std::string(5000, 'H') + "T40");
    EXPECT_STREQ(mode.base, "11NG");
}

TEST_F(Mode, RadioOneUsesTheBareKeysAndRadioZeroTheSecondIndex) {
    write_store(
        {"AP_CHMODE=11NGHT40", "PUREN=1", "AP_DISCOEXT=0", "AP_CHMODE_2=11NAHT40", "PUREN_2=0", "AP_DISCOEXT_2=1"});
    wlan_mode_info mode;
    mode_parsing(1, &mode);
    EXPECT_STREQ(mode.base, "11NG");
    EXPECT_STREQ(mode.standard, "n");
    EXPECT_EQ(mode.width, WIDTH_40);
    mode_parsing(0, &mode);
    EXPECT_STREQ(mode.base, "11NA");
    EXPECT_STREQ(mode.standard, "an");
    EXPECT_EQ(mode.width, WIDTH_40_DISCOEXT);
}

TEST_F(Mode, TheModeStringIsLogged) {
    write_store({"AP_CHMODE=11A"});
    set_debug(true);
    printed_text printed = capture([] {
        wlan_mode_info mode;
        mode_parsing(1, &mode);
    });
    EXPECT_EQ(printed.out,
              "[VLK-API] athcfg_getbyname index 0, Param: AP_CHMODE= is 11A\n"
              "[VLK-API] mode_parsing mode = 11A \n");
}

TEST_F(Mode, NothingIsPrintedWhileDebuggingIsOff) {
    printed_text printed = capture([this] { parse("11NGHT40"); });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// --- composing ---

TEST_F(Mode, TheStringIsComposedFromBaseWidthAndSide) {
    struct {
        const char *base;
        int32_t width;
        int32_t offset;
        const char *text;
    } rows[] = {
        {"11AC", WIDTH_80, SIDE_NONE, "11ACVHT80"},
        {"11AC", WIDTH_40, SIDE_ABOVE, "11ACVHT40PLUS"},
        {"11AC", WIDTH_40_DISCOEXT, SIDE_BELOW, "11ACVHT40MINUS"},
        {"11AC", WIDTH_20, SIDE_NONE, "11ACVHT20"},
        {"11NA", WIDTH_40, SIDE_ABOVE, "11NAHT40PLUS"},
        {"11NA", WIDTH_40_DISCOEXT, SIDE_BELOW, "11NAHT40MINUS"},
        {"11NA", WIDTH_20, SIDE_NONE, "11NAHT20"},
        {"11NG", WIDTH_40, SIDE_UNSTATED, "11NGHT40"},
        {"11NG", WIDTH_40, SIDE_NONE, "11NGHT40"},
        {"11NG", WIDTH_20, SIDE_NONE, "11NGHT20"},
        {"11NG", 9, 9, "11NG"},
        {"11G", WIDTH_NONE, SIDE_NONE, "11G"},
        {"11A", WIDTH_NONE, SIDE_NONE, "11A"},
        {"11B", WIDTH_NONE, SIDE_NONE, "11B"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        wlan_mode_info mode = make_mode(row.base, row.width, row.offset);
        EXPECT_EQ(compose(&mode), row.text);
    }
}

TEST_F(Mode, LegacyModesLoseWidthAndSide) {
    for (const char *base : {"11G", "11A", "11B"}) {
        SCOPED_TRACE(base);
        wlan_mode_info mode = parse("11NAHT40PLUS");
        snprintf(mode.base, sizeof(mode.base), "%s", base);
        EXPECT_EQ(compose(&mode), base);
        EXPECT_EQ(mode.width, WIDTH_NONE);
        EXPECT_EQ(mode.offset, SIDE_NONE);
        EXPECT_STREQ(mode.width_text, "");
        EXPECT_STREQ(mode.offset_text, "");
    }
}

TEST_F(Mode, AModeWithoutWidthGetsTwentyMegahertz) {
    for (const char *base : {"11AC", "11NA", "11NG", ""}) {
        SCOPED_TRACE(base);
        wlan_mode_info mode = make_mode(base, WIDTH_NONE, SIDE_NONE);
        compose(&mode);
        EXPECT_EQ(mode.width, WIDTH_20);
        EXPECT_STREQ(mode.width_text, "HT20");
    }
}

TEST_F(Mode, EightyMegahertzOf80211nFallsBackToCodeThree) {
    for (const char *base : {"11NA", "11NG"}) {
        wlan_mode_info mode = make_mode(base, WIDTH_80, SIDE_NONE);
        EXPECT_EQ(compose(&mode), std::string(base) + "HT40");
        EXPECT_EQ(mode.width, WIDTH_40_DISCOEXT);
    }
}

TEST_F(Mode, TheTextsOfTheRecordFollowTheCodes) {
    wlan_mode_info mode = parse("11NAHT40PLUS");
    mode.width = WIDTH_20;
    mode.offset = SIDE_BELOW;
    EXPECT_EQ(compose(&mode), "11NAHT20MINUS");
    EXPECT_STREQ(mode.width_text, "HT20");
    EXPECT_STREQ(mode.offset_text, "MINUS");
}

TEST_F(Mode, TheStandardIsNotPartOfTheString) {
    wlan_mode_info mode = parse("11NGHT20");
    snprintf(mode.standard, sizeof(mode.standard), "anac");
    EXPECT_EQ(compose(&mode), "11NGHT20");
    EXPECT_STREQ(mode.standard, "anac");
}

TEST_F(Mode, AComposedStringIsCutToTheBuffer) {
    wlan_mode_info mode = make_mode("11AC", WIDTH_40, SIDE_BELOW);
    char text[8];
    mode_compose(&mode, text, sizeof(text));
    EXPECT_STREQ(text, "11ACVHT");
}

TEST_F(Mode, FortyMegahertzWithoutASideIsComposedUnchanged) {
    wlan_mode_info mode = parse("11NGHT40");
    EXPECT_EQ(mode.width, WIDTH_40);
    EXPECT_EQ(mode.offset, SIDE_UNSTATED);
    EXPECT_EQ(compose(&mode), "11NGHT40");
}

TEST_F(Mode, FortyMegahertzWithDiscoextIsComposedUnchanged) {
    wlan_mode_info mode = parse("11NAHT40MINUS", {"AP_DISCOEXT=1"});
    EXPECT_EQ(mode.width, WIDTH_40_DISCOEXT);
    EXPECT_EQ(mode.offset, SIDE_BELOW);
    EXPECT_EQ(compose(&mode), "11NAHT40MINUS");
}

TEST_F(Mode, WithoutAModeTwentyMegahertzAloneIsComposed) {
    write_store({});
    wlan_mode_info mode;
    mode_parsing(0, &mode);
    EXPECT_EQ(compose(&mode), "HT20");
}

}  // namespace
