// Radio tuning and regulatory settings: what each operation reads, runs, writes and refuses.
#include "params/tuning.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>

#include <fstream>
#include <string>
#include <type_traits>
#include <vector>

#include "config/store.h"
#include "params/countries.h"
#include "tests/support/driver.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

// VAPs 1 to 8 are on radio 0, whose settings have the suffix _2, but for VAP 3: it is on radio 1 like VAPs 9 and 10.
const std::vector<std::string> RADIOS = {"AP_RADIO_ID=0", "AP_RADIO_ID_2=0", "AP_RADIO_ID_3=1", "AP_RADIO_ID_9=1",
                                         "AP_RADIO_ID_10=1"};

struct Tuning : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_driver();
        install_tool("cfg");
        install_tool("iwpriv");
        install_tool("iwconfig");
        store({});
    }

    void store(std::vector<std::string> lines) {
        lines.insert(lines.end(), RADIOS.begin(), RADIOS.end());
        write_store(lines);
    }
};

std::string first_call() {
    calls recorded = tool_calls();
    return recorded.empty() ? "nothing" : recorded.front();
}

std::string last_call() {
    calls recorded = tool_calls();
    return recorded.empty() ? "nothing" : recorded.back();
}

// Runs the block while no command can be started and no file be opened.
template <typename Block>
int status_in_shortage(Block block) {
    begin_descriptor_shortage();
    int status = block();
    end_descriptor_shortage();
    return status;
}

// --- country ---

struct country_line {
    std::string text;
    int number;
};

std::vector<country_line> all_countries() {
    std::ifstream file(WLAN_SOURCE_DIR "/tests/golden/countries.txt");
    std::vector<country_line> countries;
    std::string comment;
    std::getline(file, comment);
    for (country_line country; file >> country.text >> country.number;) {
        countries.push_back(country);
    }
    return countries;
}

TEST_F(Tuning, ThereAreAHundredAndFortyThreeCountries) {
    EXPECT_EQ(all_countries().size(), 143U);
}

TEST_F(Tuning, EveryCountryIsReadByItsNumber) {
    for (const country_line &country : all_countries()) {
        store({"ATH_countrycode_2=" + std::to_string(country.number)});
        EXPECT_EQ(text_of(wlan_getCountryCode, 1), country.text) << country.number;
    }
}

TEST_F(Tuning, EveryCountryIsWrittenAsItsNumber) {
    calls expected;
    for (const country_line &country : all_countries()) {
        EXPECT_EQ(wlan_setCountryCode(1, country.text.c_str()), 0) << country.text;
        expected.push_back("cfg -a ATH_countrycode_2=" + std::to_string(country.number));
    }
    EXPECT_EQ(tool_calls(), expected);
}

TEST_F(Tuning, NoOtherNumberUpToTenThousandIsACountry) {
    int known = 0;
    for (int number = -2; number <= 10000; number++) {
        known += country_text(number) != nullptr;
    }
    EXPECT_EQ(known, 143);
}

TEST_F(Tuning, NoOtherPairOfCapitalsIsACountry) {
    int known = 0;
    for (char first = 'A'; first <= 'Z'; first++) {
        for (char second = 'A'; second <= 'Z'; second++) {
            known += country_number((std::string() + first + second).c_str()) >= 0;
        }
    }
    EXPECT_EQ(known, 143);
}

// A default value together with a failure.
TEST_F(Tuning, TheCountryIsUsAndTheCallFailsWithoutAKnownNumber) {
    for (const char *value : {"", "840", "0", "-1", "4294967295", "germany", "6002"}) {
        store({std::string("ATH_countrycode_2=") + value});
        text_buffer country;
        EXPECT_EQ(wlan_getCountryCode(1, country.text, sizeof(country.text)), -1) << value;
        EXPECT_STREQ(country.text, "US") << value;
    }
    store({});
    text_buffer country;
    EXPECT_EQ(wlan_getCountryCode(1, country.text, sizeof(country.text)), -1);
    EXPECT_STREQ(country.text, "US");
}

TEST_F(Tuning, TheNumberOfTheUnitedStatesIsTheDriversOwn) {
    store({"ATH_countrycode_2=843"});
    EXPECT_EQ(text_of(wlan_getCountryCode, 1), "US");
}

TEST_F(Tuning, TheCountryIsTheRadios) {
    store({"ATH_countrycode=276", "ATH_countrycode_2=826"});
    EXPECT_EQ(text_of(wlan_getCountryCode, 0), "GB");
    EXPECT_EQ(text_of(wlan_getCountryCode, 1), "GB");
    EXPECT_EQ(text_of(wlan_getCountryCode, 3), "DE");
    EXPECT_EQ(text_of(wlan_getCountryCode, 9), "DE");
    EXPECT_EQ(wlan_setCountryCode(2, "FR"), 0);
    EXPECT_EQ(wlan_setCountryCode(3, "FR"), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a ATH_countrycode_2=250", "cfg -a ATH_countrycode=250"}));
}

TEST_F(Tuning, ATextThatIsNoCountryIsRefusedAndWritesNothing) {
    for (const char *text : {"us", "Us", "", "U", "USA", "GB ", " GB", "XX", "843", "\xff\xff\xff\xff"}) {
        EXPECT_EQ(wlan_setCountryCode(1, text), -1) << text;
    }
    EXPECT_EQ(wlan_setCountryCode(1, std::string(5000, 'U').c_str()), -1);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, ANegativeIndexHasNoCountry) {
    store({"ATH_countrycode=276", "ATH_countrycode_2=276"});
    for (int index : {-1, INT_MIN}) {
        text_buffer country;
        EXPECT_EQ(wlan_getCountryCode(index, country.text, sizeof(country.text)), -1);
        EXPECT_TRUE(country.is_untouched());
        EXPECT_EQ(wlan_setCountryCode(index, "DE"), -1);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, ACountryIsCutToTheBuffer) {
    store({"ATH_countrycode_2=276"});
    text_buffer country;
    EXPECT_EQ(wlan_getCountryCode(1, country.text, 2), 0);
    EXPECT_STREQ(country.text, "D");
    EXPECT_EQ(country.text[2], '?');
}

TEST_F(Tuning, AStoredCountryOfTheGreatestLengthIsSurvived) {
    store({"ATH_countrycode_2=" + std::string(1700, '8')});
    text_buffer country;
    EXPECT_EQ(wlan_getCountryCode(1, country.text, sizeof(country.text)), -1);
    EXPECT_STREQ(country.text, "US");
}

TEST_F(Tuning, TheCountryIsLogged) {
    store({"ATH_countrycode_2=276"});
    EXPECT_EQ(debug_lines([] { text_of(wlan_getCountryCode, 1); }),
              "[VLK-API] athcfg_getbyname index 0, Param: AP_RADIO_ID= is 0\n"
              "[VLK-API] athcfg_get_radio athcfg_get_radio: index 1 => radio 0\n"
              "[VLK-API] athcfg_getbyname index 1, Param: ATH_countrycode_2= is 276\n"
              "[VLK-API] wlan_getCountryCode wlan_getCountryCode: get ATH_countrycode 276\n"
              "[VLK-API] wlan_getCountryCode wlan_getCountryCode: get country name DE\n");
}

TEST_F(Tuning, AnUnknownCountryNumberIsLoggedWithoutAName) {
    store({"ATH_countrycode_2=840"});
    std::string printed = debug_lines([] {
        char country[4];
        wlan_getCountryCode(1, country, sizeof(country));
    });
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_getCountryCode wlan_getCountryCode: get ATH_countrycode 840\n"));
    EXPECT_FALSE(contains(printed, "get country name"));
}

TEST_F(Tuning, AnAbsentCountryIsNotLogged) {
    std::string printed = debug_lines([] {
        char country[4];
        wlan_getCountryCode(1, country, sizeof(country));
    });
    EXPECT_FALSE(contains(printed, "[VLK-API] wlan_"));
}

TEST_F(Tuning, ACountryToBeSetIsLoggedBeforeItIsLookedUp) {
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_setCountryCode(1, "us"), -1); }),
              "[VLK-API] wlan_setCountryCode wlan_setCountryCode: set ATH_countrycode us\n");
}

// --- HT rate ---

// VAP 1 is on radio 0, VAP 9 on radio 1.
TEST_F(Tuning, TheRateOfAnElevenNModeIsTheFirstRateCode) {
    struct {
        const char *stored;
        u_int mcs;
    } rows[] = {
        {"0x80808080", 2},
        {"0x87878787", 9},
        {"0x8f000000", 17},
        {"0xff123456", 129},
        {"2155905152", 2},            // decimal
        {"020040100200", 2},          // octal
        {" 0x80808080 and more", 2},  // as far as it is a number
        {"4294967295", 129},          // the last of 32 bits
        {"4294967296", 129},          // beyond: all bits set
        {"0x10080808080", 129},       // beyond, whatever its lower bits
        {"0xffffffffffffffff", 129},  // the last of 64 bits
        {"99999999999999999999999", 129},
        {"-1", 129},                  // wraps in 32 bits
        {"-2147483648", 2},           // 0x80000000
        {"-4294967295", 0xffffff82},  // 1
        {"-4294967296", 129},         // beyond
        {"-99999999999999999999999", 129},
        {"0x7f000000", 1},
        {"0x7e000000", 0},
        {"0x7d000000", 0xffffffff},  // below 0 the unsigned result wraps
        {"0x00ffffff", 0xffffff82},
        {"rate", 0xffffff82},
        {"0x", 0xffffff82},
    };
    for (const auto &row : rows) {
        store({"AP_CHMODE_2=11NGHT20", "RATECTL_2=fix", std::string("MANRATE_2=") + row.stored});
        EXPECT_EQ(static_cast<u_int>(number_of(wlan_getHTMcs, 1)), row.mcs) << row.stored;
    }
}

TEST_F(Tuning, AnAbsentRateOfAnElevenNModeIsBelowZero) {
    store({"AP_CHMODE_2=11NGHT20"});
    EXPECT_EQ(number_of(wlan_getHTMcs, 1), -126);
}

TEST_F(Tuning, TheRateOfAnElevenAcModeIsTheStoredNumberPlusTwo) {
    struct {
        const char *stored;
        int mcs;
    } rows[] = {{"0", 2}, {"9", 11}, {"-2", 0}, {"-5", -3}, {"0x10", 2}, {"", 2}, {"2147483647", INT_MIN + 1}};
    for (const auto &row : rows) {
        store({"AP_CHMODE_2=11ACVHT80", "RATECTL_2=fix", std::string("MANRATE_2=") + row.stored});
        EXPECT_EQ(number_of(wlan_getHTMcs, 1), row.mcs) << row.stored;
    }
}

TEST_F(Tuning, AnAutomaticRateReadsAsZero) {
    for (const char *mode : {"11NGHT20", "11ACVHT80"}) {
        for (const char *control : {"auto", "AUTO", "Auto"}) {
            store({std::string("AP_CHMODE_2=") + mode, std::string("RATECTL_2=") + control, "MANRATE_2=0x80808080"});
            EXPECT_EQ(number_of(wlan_getHTMcs, 1), 0) << mode << " " << control;
        }
    }
}

TEST_F(Tuning, OnlyAutoAloneIsAutomatic) {
    for (const char *control : {"", "fix", "automatic", "aut", " auto", "auto "}) {
        store({"AP_CHMODE_2=11NGHT20", std::string("RATECTL_2=") + control, "MANRATE_2=0x80808080"});
        EXPECT_EQ(number_of(wlan_getHTMcs, 1), 2) << control;
    }
}

TEST_F(Tuning, AnyOtherModeHasRateZero) {
    for (const char *mode : {"", "11G", "11A", "11B", "HT20", "11a", "auto"}) {
        store({std::string("AP_CHMODE_2=") + mode, "RATECTL_2=fix", "MANRATE_2=0x80808080"});
        EXPECT_EQ(number_of(wlan_getHTMcs, 1), 0) << mode;
    }
}

TEST_F(Tuning, ElevenNComesBeforeElevenAc) {
    store({"AP_CHMODE_2=11AC11N", "MANRATE_2=0x80808080"});
    EXPECT_EQ(number_of(wlan_getHTMcs, 1), 2);
    EXPECT_EQ(wlan_setHTMcs(1, 12), 0);
    EXPECT_EQ(first_call(), "cfg -a MANRATE_2=0x8a8a8a8a");
}

TEST_F(Tuning, ModeAndRateAreTheRadios) {
    store({"AP_CHMODE=11ACVHT80", "MANRATE=5", "RATECTL=fix", "AP_CHMODE_2=11NGHT20", "RATECTL_2=fix",
           "MANRATE_2=0x83838383"});
    EXPECT_EQ(number_of(wlan_getHTMcs, 0), 5);
    EXPECT_EQ(number_of(wlan_getHTMcs, 1), 5);
    EXPECT_EQ(number_of(wlan_getHTMcs, 3), 7);
    EXPECT_EQ(number_of(wlan_getHTMcs, 9), 7);
}

calls rate_11n_calls(const std::string &suffix, const std::string &codes) {
    return {"cfg -a MANRATE" + suffix + "=" + codes, "cfg -a MANRETRIES" + suffix + "=0x04040404",
            "cfg -a RATECTL" + suffix + "=fix"};
}

TEST_F(Tuning, ARateOfAnElevenNModeIsWrittenAsFourCodes) {
    struct {
        u_int mcs;
        const char *codes;
    } rows[] = {
        {2, "0x80808080"},
        {9, "0x87878787"},
        {17, "0x8f8f8f8f"},
        {129, "0xffffffff"},
        {130, "0x100100100100"},  // there is no upper bound
        {1000, "0x466466466466"},
        {0x7fffffff, "0x8000007d8000007d8000007d8000007d"},
        {0xffffff81, "0xffffffffffffffffffffffffffffffff"},
        {0xffffff82, "0x0000"},  // and the code wraps
        {0xffffffff, "0x7d7d7d7d"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.mcs);
        SetUp();
        store({"AP_CHMODE_2=11NGHT20"});
        EXPECT_EQ(wlan_setHTMcs(1, row.mcs), 0);
        EXPECT_EQ(tool_calls(), rate_11n_calls("_2", row.codes));
    }
}

TEST_F(Tuning, ARateOfAnElevenNModeReadsBackAsItWasSet) {
    store({"AP_CHMODE=11NAHT40PLUS"});
    EXPECT_EQ(wlan_setHTMcs(9, 9), 0);
    EXPECT_EQ(tool_calls(), rate_11n_calls("", "0x87878787"));
    store({"AP_CHMODE=11NAHT40PLUS", "MANRATE=0x87878787", "RATECTL=fix"});
    EXPECT_EQ(number_of(wlan_getHTMcs, 9), 9);
}

TEST_F(Tuning, ARateOfAnElevenAcModeIsWrittenAsItsNumber) {
    struct {
        u_int mcs;
        const char *number;
    } rows[] = {{2, "0"}, {3, "1"}, {11, "9"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.mcs);
        SetUp();
        store({"AP_CHMODE=11ACVHT80"});
        EXPECT_EQ(wlan_setHTMcs(9, row.mcs), 0);
        EXPECT_EQ(tool_calls(), calls({"cfg -a RATECTL=fix", std::string("cfg -a MANRATE=") + row.number}));
    }
}

TEST_F(Tuning, ARateAboveElevenIsRefusedForAnElevenAcMode) {
    store({"AP_CHMODE=11ACVHT80"});
    for (u_int mcs : {12U, 13U, 0x7fffffffU, 0xffffffffU}) {
        EXPECT_EQ(wlan_setHTMcs(9, mcs), -1) << mcs;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, RatesZeroAndOneAreAutomatic) {
    store({"AP_CHMODE=11ACVHT80", "AP_CHMODE_2=11NGHT20"});
    for (u_int mcs : {0U, 1U}) {
        EXPECT_EQ(wlan_setHTMcs(9, mcs), 0);
        EXPECT_EQ(wlan_setHTMcs(1, mcs), 0);
    }
    EXPECT_EQ(tool_calls(),
              calls({"cfg -a RATECTL=auto", "cfg -a RATECTL_2=auto", "cfg -a RATECTL=auto", "cfg -a RATECTL_2=auto"}));
}

TEST_F(Tuning, AnyOtherModeRefusesEveryRate) {
    for (const char *mode : {"", "11G", "11A", "11B", "HT20"}) {
        store({std::string("AP_CHMODE_2=") + mode});
        for (u_int mcs : {0U, 1U, 2U, 9U}) {
            EXPECT_EQ(wlan_setHTMcs(1, mcs), -1) << mode << " " << mcs;
        }
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, ANegativeIndexHasNoRate) {
    store({"AP_CHMODE=11NAHT20", "AP_CHMODE_2=11NAHT20"});
    for (int index : {-1, INT_MIN}) {
        u_int mcs = UNTOUCHED;
        EXPECT_EQ(wlan_getHTMcs(index, &mcs), -1);
        EXPECT_EQ(mcs, static_cast<u_int>(UNTOUCHED));
        EXPECT_EQ(wlan_setHTMcs(index, 2), -1);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, StoredRatesOfTheGreatestLengthAreSurvived) {
    std::string digits(1700, '9');
    store({"AP_CHMODE_2=11N" + digits, "RATECTL_2=" + digits, "MANRATE_2=" + digits});
    EXPECT_EQ(number_of(wlan_getHTMcs, 1), 129);
}

// --- channel width ---

TEST_F(Tuning, TheChannelWidthFollowsFromTheMode) {
    struct {
        const char *mode;
        const char *discoext;
        int width;
    } rows[] = {
        {"11NGHT20", "0", 0},  {"11NGHT40", "0", 1},  {"11NGHT40PLUS", "", 1}, {"11NGHT40MINUS", "1", 2},
        {"11ACVHT80", "1", 3}, {"11ACVHT80", "0", 3}, {"11G", "1", 0},         {"", "1", 0},
    };
    for (const auto &row : rows) {
        store({std::string("AP_CHMODE_2=") + row.mode, std::string("AP_DISCOEXT_2=") + row.discoext});
        EXPECT_EQ(number_of(wlan_getChannelBW, 1), row.width) << row.mode << " " << row.discoext;
    }
}

TEST_F(Tuning, TheChannelWidthIsTheRadios) {
    store({"AP_CHMODE=11ACVHT80", "AP_CHMODE_2=11NGHT40PLUS", "AP_DISCOEXT=0", "AP_DISCOEXT_2=1"});
    EXPECT_EQ(number_of(wlan_getChannelBW, 0), 2);
    EXPECT_EQ(number_of(wlan_getChannelBW, 1), 2);
    EXPECT_EQ(number_of(wlan_getChannelBW, 3), 3);
}

TEST_F(Tuning, ANegativeIndexHasNoChannelWidth) {
    store({"AP_CHMODE=11ACVHT80", "AP_CHMODE_2=11ACVHT80"});
    for (int index : {-1, INT_MIN}) {
        int width = UNTOUCHED;
        EXPECT_EQ(wlan_getChannelBW(index, &width), -1);
        EXPECT_EQ(wlan_getMaxBandwidth(index, 36, &width), -1);
        EXPECT_EQ(width, UNTOUCHED);
        printed_text printed = capture([index] { EXPECT_EQ(wlan_setChannelBW(index, 1), -1); });
        EXPECT_EQ(printed.err, "");
    }
    EXPECT_EQ(tool_calls(), calls({}));
    EXPECT_EQ(driver.calls, 0);
}

int widest(int index, int channel) {
    int width = UNTOUCHED;
    EXPECT_EQ(wlan_getMaxBandwidth(index, channel, &width), 0);
    return width;
}

TEST_F(Tuning, TheWidestChannelFollowsFromItsFlags) {
    struct {
        uint32_t flags;
        int width;
    } rows[] = {
        {0x800000, 4},
        {0xffffffff, 4},
        {0x20000, 2},
        {0x40000, 2},
        {0x200000, 2},
        {0x400000, 2},
        {0x7fffffff & ~0x800000U, 2},
        {0x10000, 1},
        {0x80000, 1},
        {0x100000, 1},
        {0x1000000, 1},
        {0x8000, 1},
        {0, 1},
        {0xff19ffff, 1},
    };
    for (const auto &row : rows) {
        reset_driver();
        list_channel(5180, row.flags);
        EXPECT_EQ(widest(9, 36), row.width) << std::hex << row.flags;
    }
}

TEST_F(Tuning, TheChannelTableOfTheVapsInterfaceIsAsked) {
    list_channel(5180, 0x800000);
    widest(9, 36);
    EXPECT_STREQ(driver.record.ifr_name, "ath8");
    widest(16, 36);
    EXPECT_STREQ(driver.record.ifr_name, "ath15");
    widest(0, 36);
    EXPECT_STREQ(driver.record.ifr_name, "ath-1");
    widest(INT_MAX, 36);
    EXPECT_STREQ(driver.record.ifr_name, "ath2147483646");
    EXPECT_EQ(driver.request, 0x8BE7UL);
    EXPECT_EQ(driver.calls, 4);
}

TEST_F(Tuning, AChannelThatTheInterfaceDoesNotListIsTwentyMegahertzWide) {
    list_channel(5180, 0x800000);
    for (int channel : {40, 1, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(widest(9, channel), 1) << channel;
    }
}

TEST_F(Tuning, TheAutomaticChannelIsAsWideAsItsRadioCanBe) {
    EXPECT_EQ(widest(1, 0), 2);
    EXPECT_EQ(widest(2, 0), 2);
    EXPECT_EQ(widest(3, 0), 4);
    EXPECT_EQ(widest(9, 0), 4);
    EXPECT_EQ(driver.calls, 0);
}

// The failure is a number with all bits set.
TEST_F(Tuning, AChannelTableThatCannotBeReadAllowsEverything) {
    driver.error = ENODEV;
    int width = UNTOUCHED;
    printed_text printed = capture([&] { width = widest(9, 36); });
    EXPECT_EQ(width, 4);
    EXPECT_EQ(printed.err, "unable to get channel information: No such device\n");
}

TEST_F(Tuning, AskingForTheWidestChannelSetsTheSearchPath) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the path is set once a process
    EXPECT_EXIT(
        {
            std::string before = getenv("PATH");
            widest(1, 0);
            exit(getenv("PATH") == before + ":/etc/ath" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// What a VAP of radio 1 is told to be as wide as, on a channel with these flags.
calls width_calls(uint32_t flags, int width, const std::string &mode = "11ACVHT20", const std::string &discoext = "") {
    reset_platform();
    install_tool("cfg");
    reset_driver();
    list_channel(5180, flags);
    write_store({"AP_RADIO_ID_9=1", "AP_PRIMARY_CH=36", "AP_CHMODE=" + mode, "AP_DISCOEXT=" + discoext});
    capture([width] { EXPECT_EQ(wlan_setChannelBW(9, width), 0); });
    return tool_calls();
}

constexpr uint32_t UP_TO_20 = 0x100;
constexpr uint32_t UP_TO_40 = 0x20100;
constexpr uint32_t UP_TO_80 = 0x820100;

TEST_F(Tuning, AChannelWidthIsWrittenAsModeAsFarAsTheChannelAllows) {
    struct {
        int width;
        uint32_t flags;
        calls written;
    } rows[] = {
        {0, UP_TO_20, {"cfg -a AP_CHMODE=11ACVHT20"}},
        {0, UP_TO_40, {"cfg -a AP_CHMODE=11ACVHT20"}},
        {0, UP_TO_80, {"cfg -a AP_CHMODE=11ACVHT20"}},
        {1, UP_TO_20, {"cfg -a AP_DISCOEXT=0", "cfg -a AP_CHMODE=11ACVHT20"}},
        {1, UP_TO_40, {"cfg -a AP_DISCOEXT=0", "cfg -a AP_CHMODE=11ACVHT40"}},
        {1, UP_TO_80, {"cfg -a AP_DISCOEXT=0", "cfg -a AP_CHMODE=11ACVHT40"}},
        {2, UP_TO_20, {"cfg -a AP_DISCOEXT=1", "cfg -a AP_CHMODE=11ACVHT20"}},
        {2, UP_TO_40, {"cfg -a AP_DISCOEXT=1", "cfg -a AP_CHMODE=11ACVHT40"}},
        {2, UP_TO_80, {"cfg -a AP_DISCOEXT=1", "cfg -a AP_CHMODE=11ACVHT40"}},
        {3, UP_TO_20, {"cfg -a AP_CHMODE=11ACVHT20"}},
        {3, UP_TO_40, {"cfg -a AP_CHMODE=11ACVHT40"}},
        {3, UP_TO_80, {"cfg -a AP_CHMODE=11ACVHT80"}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(width_calls(row.flags, row.width), row.written) << row.width << " " << std::hex << row.flags;
    }
}

TEST_F(Tuning, AnyOtherChannelWidthIsTheWidestPossible) {
    for (int width : {4, 100, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(width_calls(UP_TO_20, width), calls({"cfg -a AP_CHMODE=11ACVHT20"})) << width;
        EXPECT_EQ(width_calls(UP_TO_40, width), calls({"cfg -a AP_CHMODE=11ACVHT40"})) << width;
        EXPECT_EQ(width_calls(UP_TO_80, width), calls({"cfg -a AP_CHMODE=11ACVHT80"})) << width;
    }
}

TEST_F(Tuning, AChannelWidthReplacesTheOneBeforeAndKeepsTheSide) {
    EXPECT_EQ(width_calls(UP_TO_80, 0, "11NAHT40PLUS", "1"), calls({"cfg -a AP_CHMODE=11NAHT20PLUS"}));
    EXPECT_EQ(width_calls(UP_TO_80, 1, "11NAHT20", "1"), calls({"cfg -a AP_DISCOEXT=0", "cfg -a AP_CHMODE=11NAHT40"}));
    EXPECT_EQ(width_calls(UP_TO_80, 2, "11ACVHT40MINUS"),
              calls({"cfg -a AP_DISCOEXT=1", "cfg -a AP_CHMODE=11ACVHT40MINUS"}));
}

TEST_F(Tuning, EightyMegahertzOfAnElevenNModeAreForty) {
    EXPECT_EQ(width_calls(UP_TO_80, 3, "11NAHT20"), calls({"cfg -a AP_CHMODE=11NAHT40"}));
}

TEST_F(Tuning, AModeWithoutWidthsStaysAsItIs) {
    EXPECT_EQ(width_calls(UP_TO_80, 1, "11A"), calls({"cfg -a AP_DISCOEXT=0", "cfg -a AP_CHMODE=11A"}));
    EXPECT_EQ(width_calls(UP_TO_80, 3, ""), calls({"cfg -a AP_CHMODE=HT80"}));
}

TEST_F(Tuning, TheChannelWidthOfRadioZeroHasTheSuffix) {
    list_channel(2437, UP_TO_40);
    store({"AP_PRIMARY_CH_2=6", "AP_CHMODE_2=11NGHT20"});
    capture([] {
        EXPECT_EQ(wlan_setChannelBW(1, 1), 0);
        EXPECT_EQ(wlan_setChannelBW(0, 2), 0);
    });
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_DISCOEXT_2=0", "cfg -a AP_CHMODE_2=11NGHT40", "cfg -a AP_DISCOEXT_2=1",
                                   "cfg -a AP_CHMODE_2=11NGHT40"}));
}

TEST_F(Tuning, SettingTheChannelWidthAsksForTheStoredChannelOfTheVapsInterface) {
    list_channel(5180, UP_TO_80);
    list_channel(5200, UP_TO_40);
    store({"AP_PRIMARY_CH=40", "AP_CHMODE=11ACVHT20"});
    capture([] { wlan_setChannelBW(10, 3); });
    EXPECT_STREQ(driver.record.ifr_name, "ath9");
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_CHMODE=11ACVHT40"}));
}

TEST_F(Tuning, AnAutomaticChannelCanBeEightyMegahertzWideOnRadioOneOnly) {
    store({"AP_PRIMARY_CH=0", "AP_CHMODE=11ACVHT20", "AP_CHMODE_2=11ACVHT20"});
    capture([] {
        wlan_setChannelBW(1, 3);
        wlan_setChannelBW(9, 3);
    });
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_CHMODE_2=11ACVHT40", "cfg -a AP_CHMODE=11ACVHT80"}));
    EXPECT_EQ(driver.calls, 0);
}

TEST_F(Tuning, SettingTheChannelWidthAlwaysReportsFlagsBandAndWidth) {
    list_channel(5180, 0xb30140);
    list_channel(5200, 0x20100);
    store({"AP_PRIMARY_CH=36", "AP_CHMODE=11ACVHT20"});
    printed_text printed = capture([] { wlan_setChannelBW(9, 3); });
    EXPECT_EQ(printed.err, "chan_flag 00b30140 maxband=4 bw=3\n");
    EXPECT_EQ(printed.out, "");
    store({"AP_PRIMARY_CH=40", "AP_CHMODE=11ACVHT20"});
    EXPECT_EQ(capture([] { wlan_setChannelBW(9, -1); }).err, "chan_flag 00020100 maxband=2 bw=-1\n");
    store({"AP_PRIMARY_CH=44", "AP_CHMODE=11ACVHT20"});
    EXPECT_EQ(capture([] { wlan_setChannelBW(9, 0); }).err, "chan_flag 00000000 maxband=1 bw=0\n");
    store({});
    EXPECT_EQ(capture([] { wlan_setChannelBW(9, 1); }).err, "chan_flag 00ff0000 maxband=4 bw=1\n");
    EXPECT_EQ(capture([] { wlan_setChannelBW(1, 1); }).err, "chan_flag 007f0000 maxband=2 bw=1\n");
}

TEST_F(Tuning, AChannelTableThatCannotBeReadAllowsEveryWidth) {
    driver.error = ENODEV;
    store({"AP_PRIMARY_CH=36", "AP_CHMODE=11ACVHT20"});
    printed_text printed = capture([] { EXPECT_EQ(wlan_setChannelBW(9, 3), 0); });
    EXPECT_EQ(printed.err,
              "unable to get channel information: No such device\n"
              "chan_flag ffffffff maxband=4 bw=3\n");
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_CHMODE=11ACVHT80"}));
}

// --- extension channel ---

int extension(int index, int unused = 0) {
    int side = UNTOUCHED;
    EXPECT_EQ(wlan_getExtensionChannel(index, unused, &side), 0);
    return side;
}

TEST_F(Tuning, TheExtensionChannelFollowsFromTheMode) {
    struct {
        const char *mode;
        int side;
    } rows[] = {{"11NGHT40MINUS", 0}, {"11NGHT40PLUS", 1}, {"11NGHT40", 2},      {"11ACVHT80", 2}, {"", 2},
                {"PLUSMINUS", 0},     {"minus", 2},        {"11NGHT20MINUS", 0}, {"11GPLUS", 1}};
    for (const auto &row : rows) {
        store({std::string("AP_CHMODE_2=") + row.mode});
        EXPECT_EQ(extension(1), row.side) << row.mode;
    }
    store({});
    EXPECT_EQ(extension(1), 2) << "without a mode";
}

TEST_F(Tuning, TheExtensionChannelIsTheRadiosWhateverTheOtherNumberIs) {
    store({"AP_CHMODE=11NAHT40PLUS", "AP_CHMODE_2=11NGHT40MINUS"});
    for (int unused : {0, 1, -1, INT_MIN}) {
        EXPECT_EQ(extension(0, unused), 0);
        EXPECT_EQ(extension(1, unused), 0);
        EXPECT_EQ(extension(3, unused), 1);
    }
}

TEST_F(Tuning, AnExtensionChannelIsWrittenAsMode) {
    struct {
        const char *before;
        int side;
        const char *after;
    } rows[] = {
        {"11NGHT40PLUS", 0, "11NGHT40MINUS"},
        {"11NGHT40MINUS", 1, "11NGHT40PLUS"},
        {"11NGHT40PLUS", 2, "11NGHT40"},
        {"11NGHT40", 0, "11NGHT40MINUS"},
        {"11NGHT20", 1, "11NGHT20PLUS"},
        {"11ACVHT80", 0, "11ACVHT80MINUS"},
        {"11G", 1, "11G"},
        {"", 0, "HT20MINUS"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.before << " " << row.side);
        SetUp();
        store({std::string("AP_CHMODE_2=") + row.before});
        EXPECT_EQ(wlan_setExtensionChannel(1, row.side == 0 ? 2 : 0, row.side), 0);
        EXPECT_EQ(tool_calls(), calls({std::string("cfg -a AP_CHMODE_2=") + row.after}));
    }
}

TEST_F(Tuning, AnExtensionChannelIsWrittenForTheRadio) {
    store({"AP_CHMODE=11NAHT40PLUS", "AP_CHMODE_2=11NGHT40PLUS"});
    EXPECT_EQ(wlan_setExtensionChannel(0, 0, 0), 0);
    EXPECT_EQ(wlan_setExtensionChannel(9, 0, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_CHMODE_2=11NGHT40MINUS", "cfg -a AP_CHMODE=11NAHT40MINUS"}));
}

TEST_F(Tuning, AnyOtherExtensionChannelIsRefusedAndWritesNothing) {
    store({"AP_CHMODE_2=11NGHT40PLUS"});
    for (int side : {3, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(wlan_setExtensionChannel(1, 0, side), -1) << side;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, ANegativeIndexHasNoExtensionChannel) {
    store({"AP_CHMODE=11NGHT40PLUS", "AP_CHMODE_2=11NGHT40PLUS"});
    for (int index : {-1, INT_MIN}) {
        int side = UNTOUCHED;
        EXPECT_EQ(wlan_getExtensionChannel(index, 0, &side), -1);
        EXPECT_EQ(side, UNTOUCHED);
        EXPECT_EQ(wlan_setExtensionChannel(index, 0, 0), -1);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- chain masks ---

struct stream_pair {
    int (*get)(int, int *);
    int (*set)(int, int);
    std::string key;
    std::string parameter;
};

const stream_pair STREAMS[] = {
    {wlan_getHTTxStream, wlan_setHTTxStream, "TX_CHAINMASK", "txchainmask"},
    {wlan_getHTRxStream, wlan_setHTRxStream, "RX_CHAINMASK", "rxchainmask"},
};

TEST_F(Tuning, StreamsFollowFromTheMaskOfTheRadio) {
    for (const stream_pair &pair : STREAMS) {
        SetUp();
        set_tool_answer("iwpriv", "wifi0", "wifi0     get_" + pair.parameter + ":7  \n");
        set_tool_answer("iwpriv", "wifi1", "wifi1     get_" + pair.parameter + ":3  \n");
        EXPECT_EQ(number_of(pair.get, 0), 3);
        EXPECT_EQ(number_of(pair.get, 1), 3);
        EXPECT_EQ(number_of(pair.get, 3), 2);
        EXPECT_EQ(number_of(pair.get, 9), 2);
        EXPECT_EQ(tool_calls(), calls({"iwpriv wifi0 get_" + pair.parameter, "iwpriv wifi0 get_" + pair.parameter,
                                       "iwpriv wifi1 get_" + pair.parameter, "iwpriv wifi1 get_" + pair.parameter}));
    }
}

TEST_F(Tuning, AMaskThatIsNeitherSevenNorThreeIsOneStream) {
    for (const stream_pair &pair : STREAMS) {
        for (const char *mask : {"1", "0", "2", "5", "6", "15", "73", "-7", "x7", "", "99999999999999999999", "\n"}) {
            set_tool_answer("iwpriv", "wifi0", "get_" + pair.parameter + ":" + mask);
            EXPECT_EQ(number_of(pair.get, 1), 1) << pair.parameter << " " << mask;
        }
    }
}

TEST_F(Tuning, AMaskIsReadDirectlyBehindTheLabel) {
    for (const stream_pair &pair : STREAMS) {
        set_tool_answer("iwpriv", "wifi0",
                        "nonsense\n\nget_get_" + pair.parameter + ": 7 get_" + pair.parameter + ":3");
        EXPECT_EQ(number_of(pair.get, 1), 3) << pair.parameter;
    }
}

TEST_F(Tuning, WithoutTheLabelThereAreNoStreams) {
    for (const stream_pair &pair : STREAMS) {
        const std::string other = pair.parameter == "txchainmask" ? "rxchainmask" : "txchainmask";
        for (const std::string &answer : {std::string(""), std::string("7"), "get_" + other + ":7",
                                          "get_" + pair.parameter + " :7", "GET_" + pair.parameter + ":7"}) {
            set_tool_answer("iwpriv", "wifi0", answer);
            int streams = UNTOUCHED;
            EXPECT_EQ(pair.get(1, &streams), -1) << answer;
            EXPECT_EQ(streams, UNTOUCHED) << answer;
        }
    }
}

TEST_F(Tuning, StreamsCannotBeReadWhenTheToolCannotBeStarted) {
    for (const stream_pair &pair : STREAMS) {
        int streams = UNTOUCHED;
        EXPECT_EQ(status_in_shortage([&] { return pair.get(1, &streams); }), -1);
        EXPECT_EQ(streams, UNTOUCHED);
        EXPECT_EQ(status_in_shortage([&] { return pair.set(1, 2); }), 0);
    }
}

TEST_F(Tuning, StreamsAreKeptAsMaskForTheRadioAndThenAppliedToIt) {
    struct {
        int streams;
        const char *mask;
    } rows[] = {{3, "7"}, {2, "3"}, {1, "1"}, {0, "1"}, {4, "1"}, {-1, "1"}, {INT_MIN, "1"}, {INT_MAX, "1"}, {7, "1"}};
    for (const stream_pair &pair : STREAMS) {
        for (const auto &row : rows) {
            SCOPED_TRACE(testing::Message() << pair.parameter << " " << row.streams);
            SetUp();
            EXPECT_EQ(pair.set(1, row.streams), 0);
            EXPECT_EQ(pair.set(9, row.streams), 0);
            EXPECT_EQ(
                tool_calls(),
                calls({"cfg -a " + pair.key + "_2=" + row.mask, "iwpriv wifi0 " + pair.parameter + " " + row.mask,
                       "cfg -a " + pair.key + "=" + row.mask, "iwpriv wifi1 " + pair.parameter + " " + row.mask}));
        }
    }
}

TEST_F(Tuning, ANegativeIndexHasNoStreams) {
    install_tool("iwpriv", "get_txchainmask:7 get_rxchainmask:7");
    for (const stream_pair &pair : STREAMS) {
        for (int index : {-1, INT_MIN}) {
            int streams = UNTOUCHED;
            EXPECT_EQ(pair.get(index, &streams), -1);
            EXPECT_EQ(streams, UNTOUCHED);
            EXPECT_EQ(pair.set(index, 2), -1);
        }
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- quality of service by SSID ---

TEST_F(Tuning, TheVapIndexItselfIsTheRadioWhoseSsidQosIsAsked) {
    set_tool_answer("iwpriv", "wifi2", "wifi2     get_ssidqos_ena:1  \n");
    EXPECT_EQ(number_of(wlan_getSsidQosEnabled, 2), 1);
    set_tool_answer("iwpriv", "wifi0", "wifi0     get_ssidqos_ena:0  \n");
    EXPECT_EQ(number_of(wlan_getSsidQosEnabled, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"iwpriv wifi2 get_ssidqos_ena", "iwpriv wifi0 get_ssidqos_ena"}));
}

TEST_F(Tuning, OneCharacterSaysWhetherSsidQosIsOn) {
    struct {
        const char *behind;
        int enabled;
    } rows[] = {{"1", 1}, {"0", 0}, {"9", 9}, {"12", 1}, {"", 0}, {" 1", 0}, {"-1", 0}, {"x", 0}, {"\n1", 0}};
    for (const auto &row : rows) {
        set_tool_answer("iwpriv", "wifi1", std::string("get_ssidqos_ena:") + row.behind);
        EXPECT_EQ(number_of(wlan_getSsidQosEnabled, 1), row.enabled) << row.behind;
    }
}

TEST_F(Tuning, WithoutItsLabelSsidQosIsUntouched) {
    for (const char *answer : {"", "1", "get_ssidqos_lvl:1"}) {
        set_tool_answer("iwpriv", "wifi1", answer);
        EXPECT_EQ(number_of(wlan_getSsidQosEnabled, 1), UNTOUCHED) << answer;
    }
}

TEST_F(Tuning, SsidQosIsSwitchedForTheRadioWithTheVapsIndex) {
    EXPECT_EQ(wlan_setSsidQosEnabled(0, 1), 0);
    EXPECT_EQ(wlan_setSsidQosEnabled(2, 0), 0);
    EXPECT_EQ(wlan_setSsidQosEnabled(16, -5), 0);
    EXPECT_EQ(tool_calls(),
              calls({"iwpriv wifi0 ssidqos_ena 1", "iwpriv wifi2 ssidqos_ena 0", "iwpriv wifi16 ssidqos_ena -5"}));
}

TEST_F(Tuning, TheSsidQosLevelIsTwoCharacters) {
    struct {
        const char *behind;
        const char *level;
    } rows[] = {{"3  \n", "3 "}, {"12 \n", "12"}, {"123", "12"}, {"3", "3"}, {"", ""}, {"\n\n", "\n\n"}};
    for (const auto &row : rows) {
        set_tool_answer("iwpriv", "ath1", std::string("ath1      get_ssidqos_lvl:") + row.behind);
        EXPECT_EQ(text_of(wlan_getSsidQosLevel, 2), row.level) << row.behind;
    }
    EXPECT_EQ(first_call(), "iwpriv ath1 get_ssidqos_lvl");
}

TEST_F(Tuning, WithoutItsLabelTheSsidQosLevelIsUntouched) {
    for (const char *answer : {"", "3", "get_ssidqos_ena:1"}) {
        set_tool_answer("iwpriv", "ath1", answer);
        text_buffer level;
        EXPECT_EQ(wlan_getSsidQosLevel(2, level.text, sizeof(level.text)), 0) << answer;
        EXPECT_TRUE(level.is_untouched()) << answer;
    }
}

TEST_F(Tuning, AnSsidQosLevelIsCutToTheBuffer) {
    set_tool_answer("iwpriv", "ath1", "get_ssidqos_lvl:12");
    text_buffer level;
    EXPECT_EQ(wlan_getSsidQosLevel(2, level.text, 2), 0);
    EXPECT_STREQ(level.text, "1");
    EXPECT_EQ(level.text[2], '?');
}

TEST_F(Tuning, AnSsidQosLevelGoesToTheToolAsTheClientSentIt) {
    EXPECT_EQ(wlan_setSsidQosLevel(2, "3"), 0);
    EXPECT_EQ(wlan_setSsidQosLevel(1, "high  5"), 0);
    std::string printed = debug_lines([] { wlan_setSsidQosLevel(16, "a  \"b\" "); });
    EXPECT_EQ(tool_calls(),
              calls({"iwpriv ath1 ssidqos_lvl 3", "iwpriv ath0 ssidqos_lvl high 5", "iwpriv ath15 ssidqos_lvl a b"}));
    EXPECT_EQ(printed, "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwpriv ath15 ssidqos_lvl a  \"b\" \n");
}

TEST_F(Tuning, SsidQosFailsToBeReadWhenTheToolCannotBeStarted) {
    int enabled = UNTOUCHED;
    text_buffer level;
    EXPECT_EQ(status_in_shortage([&] { return wlan_getSsidQosEnabled(1, &enabled); }), -1);
    EXPECT_EQ(status_in_shortage([&] { return wlan_getSsidQosLevel(1, level.text, sizeof(level.text)); }), -1);
    EXPECT_EQ(enabled, UNTOUCHED);
    EXPECT_TRUE(level.is_untouched());
    EXPECT_EQ(status_in_shortage([] { return wlan_setSsidQosEnabled(1, 1); }), 0);
    EXPECT_EQ(status_in_shortage([] { return wlan_setSsidQosLevel(1, "3"); }), 0);
}

TEST_F(Tuning, ANegativeIndexHasNoSsidQos) {
    install_tool("iwpriv", "get_ssidqos_ena:1 get_ssidqos_lvl:12");
    for (int index : {-1, INT_MIN}) {
        int enabled = UNTOUCHED;
        text_buffer level;
        EXPECT_EQ(wlan_getSsidQosEnabled(index, &enabled), -1);
        EXPECT_EQ(wlan_setSsidQosEnabled(index, 1), -1);
        EXPECT_EQ(wlan_getSsidQosLevel(index, level.text, sizeof(level.text)), -1);
        EXPECT_EQ(wlan_setSsidQosLevel(index, "3"), -1);
        EXPECT_EQ(enabled, UNTOUCHED);
        EXPECT_TRUE(level.is_untouched());
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- current channel ---

std::string iwconfig_output(const std::string &frequency) {
    return "ath0      IEEE 802.11ng  ESSID:\"net\"  \n          Mode:Master  Frequency:" + frequency;
}

struct channel_case {
    const char *frequency;
    int channel;
};

void expect_current_channels(const std::vector<channel_case> &rows) {
    for (const channel_case &row : rows) {
        set_tool_answer("iwconfig", "ath0", iwconfig_output(row.frequency));
        EXPECT_EQ(number_of(wlan_getCurrentChannel, 1), row.channel) << row.frequency;
    }
}

TEST_F(Tuning, ChannelsOfTheLowBandAreReadFromTheFrequency) {
    expect_current_channels({{"2.412 GHz", 1}, {"2.417 GHz", 2}, {"2.437 GHz", 6}, {"2.472 GHz", 13}});
}

TEST_F(Tuning, ChannelFourteenReadsAsFifteen) {
    expect_current_channels({{"2.484 GHz", 15}});
}

TEST_F(Tuning, ChannelsOfTheHighBandAreReadFromTheFrequency) {
    expect_current_channels({{"5.18 GHz", 36},
                             {"5.2 GHz", 40},
                             {"5.22 GHz", 44},
                             {"5.3 GHz", 60},
                             {"5.5 GHz", 100},
                             {"5.745 GHz", 149},
                             {"5.825 GHz", 165},
                             {"5.18GHz", 36}});
}

TEST_F(Tuning, EveryFrequencyHasItsChannelWithAndWithoutZerosAtItsEnd) {
    for (int channel = 1; channel <= 199; channel++) {
        char digits[8];
        snprintf(digits, sizeof(digits), "5.%03d", 5 * channel);
        std::string text = digits;
        while (text.back() == '0') {
            text.pop_back();
        }
        expect_current_channels({{(text + " GHz").c_str(), channel}});
    }
}

TEST_F(Tuning, AFrequencyBelowTheLowBandHasANegativeChannel) {
    expect_current_channels({{"2.402 GHz", -1}, {"2.403 GHz", 0}, {"2.4 GHz", -80}, {"0.0", -481}});
}

TEST_F(Tuning, AFrequencyOfAnotherBandIsTakenForOneOfTheLowBand) {
    expect_current_channels({{"4.942 GHz", 507}, {"6.115 GHz", 741}, {"9.999", 1518}});
}

// Only blanks and the unit stand for zeros.
TEST_F(Tuning, AFrequencyThatEndsEarlyIsTakenAsFarAsItGoes) {
    expect_current_channels({{"5.18", 3}, {"5.1", 0}, {"5.", 0}, {"2.", -81}, {"2.43", -72}, {"5.\n", 0}});
}

TEST_F(Tuning, OddCharactersInAFrequencyAreSurvived) {
    expect_current_channels({{"5.xyz", 0}, {"5.-12", -2}, {"5.G  ", 0}, {"5.   ", 0}, {"5. 1 ", 2}, {"2.%s%n", -81}});
}

TEST_F(Tuning, OnlyFiveCharactersOfAFrequencyAreLookedAt) {
    expect_current_channels({{"2.4371234567", 6}, {"5.7459 GHz", 149}});
}

TEST_F(Tuning, TheFirstFrequencyCounts) {
    expect_current_channels({{"2.437 GHz Frequency:2.412 GHz", 6}});
}

TEST_F(Tuning, WhatDoesNotBeginWithADigitAndAPointIsNoFrequency) {
    for (const char *text : {"", "5", "5 GHz", "2437 MHz", " 2.437", ".437", "x.437", "25.18", "-2.43", "2,437"}) {
        set_tool_answer("iwconfig", "ath0", iwconfig_output(text));
        int channel = UNTOUCHED;
        EXPECT_EQ(wlan_getCurrentChannel(1, &channel), -1) << text;
        EXPECT_EQ(channel, UNTOUCHED) << text;
    }
}

TEST_F(Tuning, WithoutAFrequencyThereIsNoChannel) {
    for (const char *answer : {"", "ath0      No such device\n", "Frequency=2.437 GHz", "frequency:2.437 GHz"}) {
        set_tool_answer("iwconfig", "ath0", answer);
        int channel = UNTOUCHED;
        EXPECT_EQ(wlan_getCurrentChannel(1, &channel), -1) << answer;
        EXPECT_EQ(channel, UNTOUCHED) << answer;
    }
}

TEST_F(Tuning, TheCurrentChannelIsAskedOfTheVapsInterface) {
    int channel;
    for (int index : {0, 1, 16, 17}) {
        wlan_getCurrentChannel(index, &channel);
    }
    EXPECT_EQ(tool_calls(), calls({"iwconfig ath-1", "iwconfig ath0", "iwconfig ath15", "iwconfig ath16"}));
}

TEST_F(Tuning, ANegativeIndexIsOnNoChannelButZero) {
    for (int index : {-1, INT_MIN}) {
        int channel = UNTOUCHED;
        EXPECT_EQ(wlan_getCurrentChannel(index, &channel), -1);
        EXPECT_EQ(channel, 0);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Tuning, TheCurrentChannelFailsWhenTheToolCannotBeStarted) {
    int channel = UNTOUCHED;
    EXPECT_EQ(status_in_shortage([&] { return wlan_getCurrentChannel(1, &channel); }), -1);
    EXPECT_EQ(channel, UNTOUCHED);
}

TEST_F(Tuning, TheFrequencyIsLoggedAsItWasFound) {
    set_tool_answer("iwconfig", "ath0", iwconfig_output("5.2 GHz  Access Point"));
    EXPECT_EQ(debug_lines([] { number_of(wlan_getCurrentChannel, 1); }),
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwconfig ath0\n"
              "[VLK-API] wlan_getCurrentChannel wlan_getCurrentChannel: freq 5.2 G\n");
}

// --- 802.11u ---

TEST_F(Tuning, ElevenUIsNotImplementedAndSaysSoWithoutTheDebugSwitch) {
    int outputs[] = {UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED, UNTOUCHED};
    int *o = outputs;
    int statuses[4];
    for (int index : {1, -1, INT_MIN}) {
        printed_text printed = capture([&] {
            statuses[0] = wlan_getDot11uEnable(index, o);
            statuses[1] = wlan_setDot11uEnable(index, 1);
            statuses[2] = wlan_getDot11uAttribute(index, o, o + 1, o + 2, o + 3, o + 4);
            statuses[3] = wlan_setDot11uAttribute(index, 1, 1, 1, 1, 1);
        });
        EXPECT_EQ(printed.out,
                  "Has not been implemented\nHas not been implemented\nHas not been implemented\n"
                  "Has not been implemented\n");
        EXPECT_EQ(printed.err, "");
        for (int status : statuses) {
            EXPECT_EQ(status, -1);
        }
        for (int output : outputs) {
            EXPECT_EQ(output, UNTOUCHED);
        }
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- numbers of the store ---

enum class scope { VAP, RADIO, GROUP };
enum class check { YES, NO };
enum class absent { UNTOUCHED, ZERO, ONE, FAIL };
enum class log_line { YES, NO };

// How the setter differs from writing the number under the key.
enum class setter { PLAIN, DIFFERENT };

struct pair_row {
    const char *getter_name;
    int (*get)(int, int *);
    int (*set)(int, int);
    std::string key;
    scope where;
    check checked;
    absent when_absent;
    log_line logged;
    const char *stored;  // a value of the store that reads as `read`; 5 reads as something else
    int read;
    setter kind;
};

// Numbers of either sign seen alike.
template <auto getter>
int get_int(int index, int *value) {
    if constexpr (std::is_same_v<decltype(getter), int (*)(int, u_int *)>) {
        u_int number = static_cast<u_int>(*value);
        int status = getter(index, &number);
        *value = static_cast<int>(number);
        return status;
    } else {
        return getter(index, value);
    }
}

template <auto setter_function>
int set_int(int index, int value) {
    return setter_function(index, value);
}

#define PAIR(getter, setter, ...) \
    { #getter, get_int < getter>, set_int < setter>, __VA_ARGS__ }

// clang-format off
const pair_row PAIRS[] = {
    PAIR(wlan_getBGProtection, wlan_setBGProtection, "AP_PROTMODE", scope::GROUP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getBeaconInterval, wlan_setBeaconInterval, "BEACON_INT", scope::VAP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getDtimPeriod, wlan_setDtimPeriod, "AP_DTIM", scope::VAP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getTxPreamble, wlan_setTxPreamble, "AP_TXPREAMBLE", scope::GROUP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getRTSThreshold, wlan_setRTSThreshold, "AP_RTSTHRES", scope::VAP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getFragThreshold, wlan_setFragThreshold, "AP_FRAGTHRES", scope::VAP, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getTxBurst, wlan_setTxBurst, "AP_TXBURST", scope::RADIO, check::YES, absent::UNTOUCHED, log_line::YES, "7", 7, setter::PLAIN),
    PAIR(wlan_getGuardInterval, wlan_setGuardInterval, "AP_SHORTGI", scope::VAP, check::YES, absent::ONE, log_line::NO, "7", 7, setter::DIFFERENT),
    PAIR(wlan_getAmsdu, wlan_setAmsdu, "AP_AMSDU", scope::RADIO, check::YES, absent::UNTOUCHED, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getBADecline, wlan_setBADecline, "AP_BADECLINE", scope::RADIO, check::YES, absent::UNTOUCHED, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getBlockAck, wlan_setBlockAck, "AMPDUENABLE", scope::RADIO, check::YES, absent::UNTOUCHED, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getHTStbc, wlan_setHTStbc, "AP_TXSTBC", scope::RADIO, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::DIFFERENT),
    PAIR(wlan_getIeee80211hEnable, wlan_setIeee80211hEnable, "AP_EN11H", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getShortSlot, wlan_setShortSlot, "DUMMY_SHORTSLOT", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getShortRetryLimit, wlan_setShortRetryLimit, "DUMMY_SHORTRETRYLIMIT", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getLongRetryLimit, wlan_setLongRetryLimit, "DUMMY_LONGRETRYLIMIT", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getHTMode, wlan_setHTMode, "PUREN", scope::RADIO, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getNProtection, wlan_setNProtection, "DUMMY_NPROT", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getSideBand, wlan_setSideBand, "DUMMY_SIDEBAND", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getHTRDG, wlan_setHTRDG, "DUMMY_HTRDG", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getBssIsolate, wlan_setBssIsolate, "AP_APBRI", scope::VAP, check::YES, absent::FAIL, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getStationIsolate, wlan_setStationIsolate, "AP_STATIONISOLATE", scope::VAP, check::YES, absent::ZERO, log_line::NO, "7", 7, setter::DIFFERENT),
    PAIR(wlan_getIGMPSnooping, wlan_setIGMPSnooping, "AP_IGMP_SNOOP", scope::VAP, check::YES, absent::FAIL, log_line::YES, "2", 1, setter::DIFFERENT),
    PAIR(wlan_getBlockDFSinACS, wlan_setBlockDFSinACS, "AP_BLK_DFS", scope::RADIO, check::YES, absent::FAIL, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getMaxStationNum, wlan_setMaxStationNum, "AP_MAX_STA", scope::VAP, check::YES, absent::FAIL, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getImplicitBeamformingEnable, wlan_setImplicitBeamformingEnable, "AP_TXBF", scope::RADIO, check::YES, absent::FAIL, log_line::NO, "7", 7, setter::DIFFERENT),
    PAIR(wlan_getStaAssocRssiThresh, wlan_setStaAssocRssiThresh, "AP_STA_RSSI_THRESH", scope::VAP, check::NO, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
    PAIR(wlan_getBssWeight, wlan_setBssWeight, "AP_BSSWEIGHT", scope::VAP, check::NO, absent::ZERO, log_line::NO, "7", 7, setter::PLAIN),
};
// clang-format on

std::string suffix_of(int store_index) {
    return store_index < 2 ? "" : "_" + std::to_string(store_index);
}

// The suffix under which a VAP of RADIOS has a pair's value: its own, or its radio's.
std::string read_suffix(const pair_row &pair, int index) {
    bool on_radio_one = index == 3 || index == 9 || index == 10;
    return pair.where == scope::RADIO ? suffix_of(on_radio_one ? 1 : 2) : suffix_of(index);
}

class TuningPair : public testing::TestWithParam<pair_row> {
protected:
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("iwpriv");
        store({});
    }

    void store(std::vector<std::string> lines) {
        lines.insert(lines.end(), RADIOS.begin(), RADIOS.end());
        write_store(lines);
    }
};

// The pairs whose setter does nothing but write the number.
class TuningPlainPair : public TuningPair {};

TEST_P(TuningPair, IsReadFromItsOwnKeyOnly) {
    const pair_row &pair = GetParam();
    for (int index : {0, 1, 2, 3, 8, 9, 16}) {
        std::vector<std::string> lines;
        for (int store_index = 1; store_index <= 16; store_index++) {
            std::string suffix = suffix_of(store_index);
            bool its_own = suffix == read_suffix(pair, index);
            lines.push_back(pair.key + suffix + "=" + (its_own ? pair.stored : "5"));
        }
        store(lines);
        EXPECT_EQ(number_of(pair.get, index), pair.read) << "VAP " << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_P(TuningPair, IsReadAsFarAsItIsANumber) {
    const pair_row &pair = GetParam();
    store({pair.key + "=" + pair.stored + " and more", pair.key + "_2=" + pair.stored + "x"});
    EXPECT_EQ(number_of(pair.get, 2), pair.read);
}

TEST_P(TuningPair, OfTheGreatestLengthIsSurvived) {
    const pair_row &pair = GetParam();
    store({pair.key + "_2=" + pair.stored + std::string(1650, ' ')});
    EXPECT_EQ(number_of(pair.get, 2), pair.read);
}

TEST_P(TuningPair, ReadsAsItsRowSaysWhenItsKeyIsAbsentOrEmpty) {
    const pair_row &pair = GetParam();
    for (const std::vector<std::string> &lines : {std::vector<std::string>{}, {pair.key + "_2="}}) {
        store(lines);
        int value = UNTOUCHED;
        EXPECT_EQ(pair.get(2, &value), pair.when_absent == absent::FAIL ? -1 : 0);
        switch (pair.when_absent) {
            case absent::UNTOUCHED:
            case absent::FAIL:
                EXPECT_EQ(value, UNTOUCHED);
                break;
            case absent::ZERO:
                EXPECT_EQ(value, 0);
                break;
            case absent::ONE:
                EXPECT_EQ(value, 1);
                break;
        }
    }
}

TEST_P(TuningPair, RefusesANegativeIndexWhereItIsChecked) {
    const pair_row &pair = GetParam();
    store({pair.key + "=" + pair.stored, pair.key + "_2=" + pair.stored});
    calls expected;
    for (int index : {-1, INT_MIN}) {
        int value = UNTOUCHED;
        bool refused = pair.checked == check::YES;
        EXPECT_EQ(pair.get(index, &value), refused ? -1 : 0);
        EXPECT_EQ(value, refused ? UNTOUCHED : pair.read);
        EXPECT_EQ(pair.set(index, 6), refused ? -1 : 0);
        if (!refused) {
            expected.push_back("cfg -a " + pair.key + "=6");
        }
    }
    EXPECT_EQ(tool_calls(), expected);
}

TEST_P(TuningPair, IsLoggedWhenReadWhereItsRowSaysSo) {
    const pair_row &pair = GetParam();
    store({pair.key + "_2=" + pair.stored + " x"});
    std::string printed = debug_lines([&] { number_of(pair.get, 2); });
    std::string name = pair.getter_name;
    std::string line = "[VLK-API] " + name + " " + name + ": get " + pair.key + " " + pair.stored + " x\n";
    if (pair.logged == log_line::YES) {
        EXPECT_TRUE(printed.ends_with(line)) << printed;
    } else {
        EXPECT_FALSE(contains(printed, "[VLK-API] wlan_")) << printed;
    }
}

TEST_P(TuningPlainPair, IsWrittenUnderItsKeysInOrder) {
    const pair_row &pair = GetParam();
    for (int index : {0, 1, 2, 3, 8, 9, 16}) {
        SCOPED_TRACE(testing::Message() << "VAP " << index);
        SetUp();
        EXPECT_EQ(pair.set(index, 6), 0);
        calls expected;
        if (pair.where == scope::GROUP) {
            int first = index <= 8 ? 1 : 9;
            for (int vap = first; vap < first + 8; vap++) {
                expected.push_back("cfg -a " + pair.key + suffix_of(vap) + "=6");
            }
        } else {
            expected.push_back("cfg -a " + pair.key + read_suffix(pair, index) + "=6");
        }
        EXPECT_EQ(tool_calls(), expected);
    }
}

TEST_P(TuningPlainPair, IsWrittenAsASignedNumber) {
    const pair_row &pair = GetParam();
    pair.set(2, 0);
    EXPECT_TRUE(last_call().ends_with("=0"));
    pair.set(2, -1);
    EXPECT_TRUE(last_call().ends_with("=-1"));
    pair.set(2, INT_MIN);
    EXPECT_TRUE(last_call().ends_with("=-2147483648"));
}

TEST_P(TuningPair, IsSetWithSuccessWhateverTheToolsDo) {
    const pair_row &pair = GetParam();
    install_tool("cfg", "no room", 1);
    install_tool("iwpriv", "no such device", 1);
    EXPECT_EQ(pair.set(0, 1), 0);
    EXPECT_EQ(status_in_shortage([&] { return pair.set(0, 1); }), 0);
}

std::string pair_name(const testing::TestParamInfo<pair_row> &info) {
    return info.param.getter_name + sizeof("wlan_get") - 1;
}

std::vector<pair_row> plain_pairs() {
    std::vector<pair_row> pairs(std::begin(PAIRS), std::end(PAIRS));
    std::erase_if(pairs, [](const pair_row &pair) { return pair.kind != setter::PLAIN; });
    return pairs;
}

INSTANTIATE_TEST_SUITE_P(Table, TuningPair, testing::ValuesIn(PAIRS), pair_name);
INSTANTIATE_TEST_SUITE_P(Table, TuningPlainPair, testing::ValuesIn(plain_pairs()), pair_name);

// --- the pairs that differ ---

TEST_F(Tuning, TheGuardIntervalIsReadWithZeroAndOneSwapped) {
    struct {
        const char *stored;
        int client;
    } rows[] = {{"0", 1}, {"1", 0}, {"2", 2}, {"-1", -1}, {"-2147483648", INT_MIN}, {"short", 1}};
    for (const auto &row : rows) {
        store({std::string("AP_SHORTGI_2=") + row.stored});
        EXPECT_EQ(number_of(wlan_getGuardInterval, 2), row.client) << row.stored;
    }
}

TEST_F(Tuning, TheGuardIntervalIsWrittenWithZeroAndOneSwapped) {
    for (int value : {0, 1, 2, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(wlan_setGuardInterval(2, value), 0);
    }
    EXPECT_EQ(wlan_setGuardInterval(0, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SHORTGI_2=1", "cfg -a AP_SHORTGI_2=0", "cfg -a AP_SHORTGI_2=2",
                                   "cfg -a AP_SHORTGI_2=-1", "cfg -a AP_SHORTGI_2=2147483647",
                                   "cfg -a AP_SHORTGI_2=-2147483648", "cfg -a AP_SHORTGI=1"}));
}

TEST_F(Tuning, StbcIsWrittenForBothDirections) {
    EXPECT_EQ(wlan_setHTStbc(1, 1), 0);
    EXPECT_EQ(wlan_setHTStbc(3, -4), 0);
    EXPECT_EQ(wlan_setHTStbc(0, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_TXSTBC_2=1", "cfg -a AP_RXSTBC_2=1", "cfg -a AP_TXSTBC=-4",
                                   "cfg -a AP_RXSTBC=-4", "cfg -a AP_TXSTBC_2=0", "cfg -a AP_RXSTBC_2=0"}));
}

TEST_F(Tuning, StbcIsReadFromTheTransmittingDirection) {
    store({"AP_TXSTBC_2=1", "AP_RXSTBC_2=5"});
    EXPECT_EQ(number_of(wlan_getHTStbc, 1), 1);
    store({"AP_RXSTBC_2=5"});
    EXPECT_EQ(number_of(wlan_getHTStbc, 1), 0);
}

TEST_F(Tuning, StationIsolationIsWrittenAndThenAppliedToTheInterface) {
    EXPECT_EQ(wlan_setStationIsolate(1, 1), 0);
    EXPECT_EQ(wlan_setStationIsolate(16, -3), 0);
    EXPECT_EQ(wlan_setStationIsolate(0, 0), 0);
    EXPECT_EQ(tool_calls(),
              calls({"cfg -a AP_STATIONISOLATE=1", "iwpriv ath0 l2tif 1", "cfg -a AP_STATIONISOLATE_16=-3",
                     "iwpriv ath15 l2tif -3", "cfg -a AP_STATIONISOLATE=0", "iwpriv ath-1 l2tif 0"}));
}

TEST_F(Tuning, IgmpSnoopingIsOnForTwoOnly) {
    struct {
        const char *stored;
        int enabled;
    } rows[] = {{"2", 1}, {"1", 0}, {"0", 0}, {"3", 0}, {"-2", 0}, {"22", 0}, {"on", 0}, {"2 ", 1}};
    for (const auto &row : rows) {
        store({std::string("AP_IGMP_SNOOP_2=") + row.stored});
        EXPECT_EQ(number_of(wlan_getIGMPSnooping, 2), row.enabled) << row.stored;
    }
}

TEST_F(Tuning, IgmpSnoopingIsWrittenAsTwoOrZero) {
    for (int value : {1, 0, 2, -1, INT_MIN}) {
        EXPECT_EQ(wlan_setIGMPSnooping(2, value), 0);
    }
    EXPECT_EQ(wlan_setIGMPSnooping(1, 7), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_IGMP_SNOOP_2=2", "cfg -a AP_IGMP_SNOOP_2=0", "cfg -a AP_IGMP_SNOOP_2=2",
                                   "cfg -a AP_IGMP_SNOOP_2=2", "cfg -a AP_IGMP_SNOOP_2=2", "cfg -a AP_IGMP_SNOOP=2"}));
}

TEST_F(Tuning, BeamformingIsSetThroughIndexZeroOnly) {
    for (int index : {1, 2, 3, 9, 16, 17, INT_MAX, -1, INT_MIN}) {
        EXPECT_EQ(wlan_setImplicitBeamformingEnable(index, 1), -1) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
    EXPECT_EQ(wlan_setImplicitBeamformingEnable(0, 1), 0);
    EXPECT_EQ(wlan_setImplicitBeamformingEnable(0, -2), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_TXBF_2=1", "cfg -a AP_TXBF_2=-2"}));
}

TEST_F(Tuning, BeamformingIsSetForTheRadioOfTheFirstVap) {
    write_store({"AP_RADIO_ID=1"});
    EXPECT_EQ(wlan_setImplicitBeamformingEnable(0, 1), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_TXBF=1"}));
}

TEST_F(Tuning, BgProtectionSetThroughVapTenIsWrittenForVapsNineToSixteen) {
    EXPECT_EQ(wlan_setBGProtection(10, 1), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_PROTMODE_9=1", "cfg -a AP_PROTMODE_10=1", "cfg -a AP_PROTMODE_11=1",
                                   "cfg -a AP_PROTMODE_12=1", "cfg -a AP_PROTMODE_13=1", "cfg -a AP_PROTMODE_14=1",
                                   "cfg -a AP_PROTMODE_15=1", "cfg -a AP_PROTMODE_16=1"}));
}

// VAP 3 is on the other radio: the group follows the index, the settings of a radio follow AP_RADIO_ID.
TEST_F(Tuning, TheGroupOfEightFollowsTheIndexWhereARadiosSettingFollowsItsVap) {
    wlan_setTxPreamble(3, 1);
    EXPECT_EQ(first_call(), "cfg -a AP_TXPREAMBLE=1");
    EXPECT_EQ(last_call(), "cfg -a AP_TXPREAMBLE_8=1");
    wlan_setTxBurst(3, 1);
    EXPECT_EQ(last_call(), "cfg -a AP_TXBURST=1");
}

// --- all of them ---

TEST_F(Tuning, NothingElseIsPrintedWhileDebuggingIsOff) {
    store({"ATH_countrycode_2=276", "AP_CHMODE_2=11NGHT20"});
    install_tool("iwconfig", iwconfig_output("2.437 GHz"));
    install_tool("iwpriv", "get_txchainmask:7 get_rxchainmask:7 get_ssidqos_ena:1 get_ssidqos_lvl:12");
    list_channel(2437, 0x20000);
    printed_text printed = capture([] {
        int number;
        u_int mcs;
        char text[TEXT_SIZE];
        wlan_getCountryCode(1, text, sizeof(text));
        wlan_setCountryCode(1, "DE");
        wlan_getHTMcs(1, &mcs);
        wlan_setHTMcs(1, 5);
        wlan_getMaxBandwidth(1, 6, &number);
        wlan_getChannelBW(1, &number);
        wlan_getExtensionChannel(1, 0, &number);
        wlan_setExtensionChannel(1, 0, 1);
        wlan_getHTTxStream(1, &number);
        wlan_setHTTxStream(1, 2);
        wlan_getHTRxStream(1, &number);
        wlan_setHTRxStream(1, 2);
        wlan_getSsidQosEnabled(1, &number);
        wlan_setSsidQosEnabled(1, 1);
        wlan_getSsidQosLevel(1, text, sizeof(text));
        wlan_setSsidQosLevel(1, "3");
        wlan_getCurrentChannel(1, &number);
        for (const pair_row &pair : PAIRS) {
            pair.get(1, &number);
            pair.set(1, 1);
        }
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

TEST_F(Tuning, WithoutTheToolsGettersFailAndSettersSucceed) {
    reset_platform();
    store({});
    capture([] {
        int number = UNTOUCHED;
        EXPECT_EQ(wlan_getHTTxStream(1, &number), -1);
        EXPECT_EQ(wlan_setHTTxStream(1, 2), 0);
        EXPECT_EQ(wlan_getCurrentChannel(1, &number), -1);
        EXPECT_EQ(wlan_getSsidQosEnabled(1, &number), 0);
        EXPECT_EQ(wlan_setStationIsolate(1, 1), 0);
        EXPECT_EQ(wlan_setChannelBW(1, 1), 0);
        EXPECT_EQ(wlan_setCountryCode(1, "DE"), 0);
        EXPECT_EQ(number, UNTOUCHED);
    });
}

}  // namespace
