// Rates, power and radio switches: what each operation reads, runs, writes and refuses.
#include "params/rates.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <math.h>
#include <string.h>

#include <string>
#include <vector>

#include "config/store.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct Rates : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("iwconfig");
        install_tool("iwlist");
        write_store({});
    }
};

using text_getter = int (*)(int, char *, size_t);

// The status and the text of a getter, with "(untouched)" for a buffer that it left alone.
struct text_answer {
    int status;
    std::string text;
    bool operator==(const text_answer &) const = default;
};

std::ostream &operator<<(std::ostream &out, const text_answer &answer) {
    return out << answer.status << " \"" << answer.text << '"';
}

text_answer answer_of(text_getter getter, int index) {
    text_buffer buffer;
    int status = getter(index, buffer.text, sizeof(buffer.text));
    return {status, buffer.is_untouched() ? "(untouched)" : buffer.text};
}

// The same while no tool can be started.
text_answer answer_without_tools(text_getter getter, int index) {
    text_buffer buffer;
    begin_descriptor_shortage();
    int status = getter(index, buffer.text, sizeof(buffer.text));
    end_descriptor_shortage();
    return {status, buffer.is_untouched() ? "(untouched)" : buffer.text};
}

// --- rate sets ---

const char B[] = "1,2,5.5,11";
const char BG[] = "1,2,5.5,11,6,9,12,18,24,36,48,54";
const char A[] = "6,9,12,18,24,36,48,54";
const char NG[] = "1,2,5.5,11,6,9,12,18,24,36,48,54,MCS0-MSC23";
const char NA[] = "6,9,12,18,24,36,48,54, MCS0-MCS23";

struct rates_case {
    const char *report;
    const char *basic;
    const char *operational;
};

const rates_case RATES_CASES[] = {
    {"ath0      IEEE 802.11b  ESSID:\"net\"  \n", B, B},
    {"ath0      IEEE 802.11g  ESSID:\"net\"  \n", BG, BG},
    {"ath0      IEEE 802.11ng  ESSID:\"net\"  \n", BG, NG},
    {"ath0      IEEE 802.11a  ESSID:\"net\"  \n", A, A},
    {"ath0      IEEE 802.11na  ESSID:\"net\"  \n", A, NA},
    // The first mode wins, wherever it stands.
    {"IEEE 802.11g IEEE 802.11b", B, B},
    {"IEEE 802.11ng IEEE 802.11g", BG, BG},
    {"IEEE 802.11a IEEE 802.11ng", BG, NG},
    {"IEEE 802.11na IEEE 802.11a", A, A},
    {"IEEE 802.11na IEEE 802.11g", BG, BG},
    {"ath0      IEEE 802.11na  ESSID:\"IEEE 802.11b\"  \n", B, B},
    // Further letters behind a mode do not matter.
    {"IEEE 802.11bgn", B, B},
    {"IEEE 802.11gn", BG, BG},
    {"IEEE 802.11nga", BG, NG},
    {"IEEE 802.11ac", A, A},
    {"IEEE 802.11an", A, A},
    // Reports without a mode.
    {"", A, "(untouched)"},
    {"ath0      no wireless extensions.\n\n", A, "(untouched)"},
    {"IEEE 802.11n", A, "(untouched)"},
    {"IEEE 802.11", A, "(untouched)"},
    {"IEEE 802.11B IEEE802.11b ieee 802.11b IEEE  802.11b", A, "(untouched)"},
};

TEST_F(Rates, BasicRatesFollowFromTheReportedMode) {
    for (const rates_case &row : RATES_CASES) {
        install_tool("iwconfig", row.report);
        EXPECT_EQ(answer_of(wlan_getBasicDataTransmitRates, 1), (text_answer{0, row.basic})) << row.report;
    }
}

TEST_F(Rates, OperationalRatesFollowFromTheReportedMode) {
    for (const rates_case &row : RATES_CASES) {
        install_tool("iwconfig", row.report);
        EXPECT_EQ(answer_of(wlan_getOperationalDataTransmitRates, 1), (text_answer{0, row.operational})) << row.report;
    }
}

TEST_F(Rates, TheVapsOwnInterfaceIsAskedForItsRates) {
    set_tool_answer("iwconfig", "ath0", "IEEE 802.11b");
    set_tool_answer("iwconfig", "ath16", "IEEE 802.11g");
    for (text_getter getter : {wlan_getBasicDataTransmitRates, wlan_getOperationalDataTransmitRates}) {
        EXPECT_EQ(answer_of(getter, 1), (text_answer{0, B}));
        EXPECT_EQ(answer_of(getter, 17), (text_answer{0, BG}));
    }
    EXPECT_EQ(tool_calls(), calls({"iwconfig ath0", "iwconfig ath16", "iwconfig ath0", "iwconfig ath16"}));
}

TEST_F(Rates, BasicRatesRefuseAnIndexBelowOne) {
    for (int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(answer_of(wlan_getBasicDataTransmitRates, index), (text_answer{-1, ""})) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, OperationalRatesRefuseANegativeIndex) {
    for (int index : {-1, INT_MIN}) {
        EXPECT_EQ(answer_of(wlan_getOperationalDataTransmitRates, index), (text_answer{-1, ""})) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, OperationalRatesOfIndexZeroAskForAnInterfaceMinusOne) {
    set_tool_answer("iwconfig", "ath-1", "IEEE 802.11a");
    EXPECT_EQ(answer_of(wlan_getOperationalDataTransmitRates, 0), (text_answer{0, A}));
    EXPECT_EQ(tool_calls(), calls({"iwconfig ath-1"}));
}

TEST_F(Rates, RatesFailWhenTheToolCannotBeStarted) {
    EXPECT_EQ(answer_without_tools(wlan_getBasicDataTransmitRates, 1), (text_answer{-1, "(untouched)"}));
    EXPECT_EQ(answer_without_tools(wlan_getOperationalDataTransmitRates, 1), (text_answer{-1, "(untouched)"}));
}

TEST_F(Rates, AMissingToolIsASilentOne) {
    reset_platform();
    capture([] {  // the shell says that it is missing
        EXPECT_EQ(answer_of(wlan_getBasicDataTransmitRates, 1), (text_answer{0, A}));
        EXPECT_EQ(answer_of(wlan_getOperationalDataTransmitRates, 1), (text_answer{0, "(untouched)"}));
        EXPECT_EQ(answer_of(wlan_getPossibleChannels, 1), (text_answer{0, ""}));
    });
}

TEST_F(Rates, TheModeIsFoundInAReportOfAnyLength) {
    install_tool("iwconfig", std::string(10000, 'x') + "\n" + std::string(5000, '\n') + "IEEE 802.11g");
    EXPECT_EQ(answer_of(wlan_getBasicDataTransmitRates, 1), (text_answer{0, BG}));
    EXPECT_EQ(answer_of(wlan_getOperationalDataTransmitRates, 1), (text_answer{0, BG}));
}

TEST_F(Rates, RatesAreCutToTheBuffer) {
    install_tool("iwconfig", "IEEE 802.11a");
    for (text_getter getter : {wlan_getBasicDataTransmitRates, wlan_getOperationalDataTransmitRates,
                               wlan_getPossibleDataTransmitRates, wlan_getTransmitPowerSupported}) {
        text_buffer rates;
        EXPECT_EQ(getter(1, rates.text, 4), 0);
        EXPECT_EQ(strlen(rates.text), 3U);
        EXPECT_EQ(rates.text[4], '?');
    }
}

TEST_F(Rates, RateRequestsLogTheirCommand) {
    for (text_getter getter : {wlan_getBasicDataTransmitRates, wlan_getOperationalDataTransmitRates}) {
        EXPECT_EQ(debug_lines([getter] { answer_of(getter, 3); }),
                  "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwconfig ath2\n");
    }
}

TEST_F(Rates, SettingRatesIsAcceptedAndHasNoEffect) {
    for (int index : {1, -1}) {
        EXPECT_EQ(wlan_setBasicDataTransmitRates(index, "1,2"), 0);
        EXPECT_EQ(wlan_setOperationalDataTransmitRates(index, "1,2"), 0);
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, PossibleRatesAreAlwaysTheSame) {
    for (int index : {1, 17, 0, -1, INT_MIN}) {
        EXPECT_EQ(answer_of(wlan_getPossibleDataTransmitRates, index), (text_answer{0, "1,2,11"})) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, ARequestForPossibleRatesIsLoggedWithTheIndexAsItCame) {
    EXPECT_EQ(debug_lines([] { answer_of(wlan_getPossibleDataTransmitRates, -5); }),
              "[VLK-API] wlan_getPossibleDataTransmitRates wlan_getPossibleDataTransmitRates int index=-5\n");
}

// --- SSID advertisement ---

TEST_F(Rates, TheSsidIsAdvertisedUnlessTheStoreHidesIt) {
    struct {
        const char *line;
        int advertised;
    } rows[] = {{"AP_HIDESSID_2=1", 0}, {"AP_HIDESSID_2=0", 1},  {"AP_HIDESSID_2=", 1},  {"AP_HIDESSID=1", 1},
                {"AP_HIDESSID_2=7", 0}, {"AP_HIDESSID_2=-1", 0}, {"AP_HIDESSID_2=on", 1}};
    for (const auto &row : rows) {
        write_store({row.line});
        EXPECT_EQ(number_of(wlan_getSsidAdvertisementEnabled, 2), row.advertised) << row.line;
    }
}

TEST_F(Rates, AdvertisingTheSsidIsWrittenAsNotHidingIt) {
    EXPECT_EQ(wlan_setSsidAdvertisementEnabled(2, 1), 0);
    EXPECT_EQ(wlan_setSsidAdvertisementEnabled(2, 0), 0);
    EXPECT_EQ(wlan_setSsidAdvertisementEnabled(2, -7), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_HIDESSID_2=0", "cfg -a AP_HIDESSID_2=1", "cfg -a AP_HIDESSID_2=0"}));
}

TEST_F(Rates, SsidAdvertisementChecksNoIndex) {
    write_store({"AP_HIDESSID=1", "AP_HIDESSID_17=0"});
    for (int index : {1, 0, -1, INT_MIN}) {
        EXPECT_EQ(number_of(wlan_getSsidAdvertisementEnabled, index), 0) << index;
        EXPECT_EQ(wlan_setSsidAdvertisementEnabled(index, 1), 0) << index;
    }
    EXPECT_EQ(number_of(wlan_getSsidAdvertisementEnabled, 17), 1);
    std::string written = "cfg -a AP_HIDESSID=0";
    EXPECT_EQ(tool_calls(), calls({written, written, written, written}));
}

// --- settings of a radio ---

// VAPs 1 and 9 on radio 1, VAP 3 on radio 0, and the settings of both radios.
void store_of_two_radios(const std::string &key, const std::string &of_radio_0, const std::string &of_radio_1) {
    write_store(
        {"AP_RADIO_ID=1", "AP_RADIO_ID_3=0", "AP_RADIO_ID_9=1", key + "=" + of_radio_1, key + "_2=" + of_radio_0});
}

TEST_F(Rates, TheRadioSwitchIsTheRadios) {
    store_of_two_radios("AP_RADIO_ENABLED", "0", "7");
    EXPECT_EQ(number_of(wlan_getRadioEnabled, 9), 7);
    EXPECT_EQ(number_of(wlan_getRadioEnabled, 3), 0);
    EXPECT_EQ(wlan_setRadioEnabled(9, 1), 0);
    EXPECT_EQ(wlan_setRadioEnabled(3, -3), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_RADIO_ENABLED=1", "cfg -a AP_RADIO_ENABLED_2=-3"}));
}

TEST_F(Rates, AnAbsentRadioSwitchReadsAsZero) {
    EXPECT_EQ(number_of(wlan_getRadioEnabled, 1), 0);
    write_store({"AP_RADIO_ENABLED_2="});
    EXPECT_EQ(number_of(wlan_getRadioEnabled, 1), 0);
}

TEST_F(Rates, TheRadioSwitchChecksNoIndex) {
    store_of_two_radios("AP_RADIO_ENABLED", "5", "7");
    for (int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(number_of(wlan_getRadioEnabled, index), 7) << index;
        EXPECT_EQ(wlan_setRadioEnabled(index, 1), 0) << index;
    }
    EXPECT_EQ(number_of(wlan_getRadioEnabled, 17), 5);
    std::string written = "cfg -a AP_RADIO_ENABLED=1";
    EXPECT_EQ(tool_calls(), calls({written, written, written}));
}

TEST_F(Rates, TheRateIsAutomaticWhenTheStoreSaysAuto) {
    struct {
        const char *value;
        int automatic;
    } rows[] = {{"auto", 1}, {"semi-automatic", 1}, {"fix", 0}, {"Auto", 0}, {"1", 0}, {"", 0}};
    for (const auto &row : rows) {
        store_of_two_radios("RATECTL", row.value, "");
        EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, 3), row.automatic) << row.value;
    }
    write_store({});
    EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, 3), 0) << "absent";
}

TEST_F(Rates, TheAutomaticRateIsTheRadios) {
    store_of_two_radios("RATECTL", "fix", "auto");
    EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, 9), 1);
    EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, 3), 0);
    EXPECT_EQ(wlan_setAutoRateFallbackEnable(9, 0), 0);
    EXPECT_EQ(wlan_setAutoRateFallbackEnable(3, 1), 0);
    EXPECT_EQ(wlan_setAutoRateFallbackEnable(3, -1), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a RATECTL=fix", "cfg -a RATECTL_2=auto", "cfg -a RATECTL_2=auto"}));
}

TEST_F(Rates, TheAutomaticRateChecksNoIndex) {
    store_of_two_radios("RATECTL", "fix", "auto");
    for (int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, index), 1) << index;
        EXPECT_EQ(wlan_setAutoRateFallbackEnable(index, 1), 0) << index;
    }
    EXPECT_EQ(number_of(wlan_getAutoRateFallbackEnable, 17), 0);
    std::string written = "cfg -a RATECTL=auto";
    EXPECT_EQ(tool_calls(), calls({written, written, written}));
}

// --- transmit power ---

TEST_F(Rates, TheSupportedPowerLevelsAreAlwaysTheSame) {
    for (int index : {1, 17, 0, -1, INT_MIN}) {
        EXPECT_EQ(answer_of(wlan_getTransmitPowerSupported, index), (text_answer{0, "12,25,50,75,100"})) << index;
    }
}

TEST_F(Rates, TheTransmitPowerIsTheRadios) {
    store_of_two_radios("AP_TXPWR", "17", "23");
    EXPECT_EQ(number_of(wlan_getTransmitPower, 0), 23);
    EXPECT_EQ(number_of(wlan_getTransmitPower, 9), 23);
    EXPECT_EQ(number_of(wlan_getTransmitPower, 3), 17);
    EXPECT_EQ(number_of(wlan_getTransmitPower, 17), 17);
    EXPECT_EQ(wlan_setTransmitPower(0, 75), 0);
    EXPECT_EQ(wlan_setTransmitPower(9, 50), 0);
    EXPECT_EQ(wlan_setTransmitPower(3, 0xffffffff), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_TXPWR=75", "cfg -a AP_TXPWR=50", "cfg -a AP_TXPWR_2=-1"}));
}

TEST_F(Rates, AnAbsentTransmitPowerIsZeroAndLogged) {
    EXPECT_EQ(number_of(wlan_getTransmitPower, 1), 0);
    write_store({"AP_TXPWR_2="});
    EXPECT_EQ(number_of(wlan_getTransmitPower, 1), 0);
    std::string printed = debug_lines([] { number_of(wlan_getTransmitPower, 1); });
    EXPECT_TRUE(printed.ends_with("[VLK-API] wlan_getTransmitPower wlan_getTransmitPower: no power found\n"))
        << printed;
}

TEST_F(Rates, AStoredTransmitPowerIsLoggedAsItStands) {
    write_store({"AP_TXPWR_2=20 dBm"});
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(number_of(wlan_getTransmitPower, 3), 20); }),
              "[VLK-API] getWifiParam AP_RADIO_ID_3= does not exist in /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index 2, Param: AP_RADIO_ID_3= is \n"
              "[VLK-API] athcfg_get_radio athcfg_get_radio: index 3 => radio 0\n"
              "[VLK-API] athcfg_getbyname index 1, Param: AP_TXPWR_2= is 20 dBm\n"
              "[VLK-API] wlan_getTransmitPower wlan_getTransmitPower: tmp 20 dBm\n");
}

TEST_F(Rates, ANegativeIndexHasZeroTransmitPowerAndSucceeds) {
    store_of_two_radios("AP_TXPWR", "17", "23");
    EXPECT_EQ(debug_lines([] {
                  EXPECT_EQ(number_of(wlan_getTransmitPower, -1), 0);
                  EXPECT_EQ(number_of(wlan_getTransmitPower, INT_MIN), 0);
              }),
              "");
}

TEST_F(Rates, SettingTheTransmitPowerOfANegativeIndexSucceedsAndWritesNothing) {
    EXPECT_EQ(wlan_setTransmitPower(-1, 50), 0);
    EXPECT_EQ(wlan_setTransmitPower(INT_MIN, 50), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, APowerInDbmIsOneOfTheSupportedLevels) {
    struct {
        double power;
        int level;
    } rows[] = {{-INFINITY, 12}, {-5, 12},    {0, 12},    {2, 12},     {2.76, 12},  {2.77, 25},
                {3, 25},         {5.75, 25},  {5.76, 50}, {11.5, 50},  {11.6, 75},  {17, 75},
                {22, 75},        {22.99, 75}, {23, 100},  {23.1, 100}, {1000, 100}, {INFINITY, 100}};
    for (const auto &row : rows) {
        EXPECT_EQ(powerToPerCent(nullptr, row.power), row.level) << row.power;
    }
}

TEST_F(Rates, APowerThatIsNoNumberIsFullPower) {
    EXPECT_EQ(powerToPerCent(nullptr, NAN), 100);
}

// In double precision these lie on the other side of their levels.
TEST_F(Rates, ThePercentageIsRoundedToSinglePrecision) {
    EXPECT_EQ(powerToPerCent(nullptr, 2.76 * (1 + 1e-9)), 12);
    EXPECT_EQ(powerToPerCent(nullptr, 5.75 * (1 + 1e-9)), 25);
    EXPECT_EQ(powerToPerCent(nullptr, 11.5 * (1 + 1e-9)), 50);
    EXPECT_EQ(powerToPerCent(nullptr, 23 * (1 - 1e-9)), 100);
}

TEST_F(Rates, TheContextOfAPowerIsIgnored) {
    int context = 4711;
    EXPECT_EQ(powerToPerCent(&context, 17), 75);
    EXPECT_EQ(context, 4711);
}

// --- possible channels ---

std::string two_digits(int number) {
    return (number >= 0 && number < 10 ? "0" : "") + std::to_string(number);
}

// What iwlist prints of these channels, the current one at the end.
std::string iwlist_output(const std::vector<int> &channels) {
    std::string report =
        "ath0      " + std::to_string(channels.size()) + " channels in total; available frequencies :\n";
    for (int channel : channels) {
        report += "          Channel " + two_digits(channel) + " : 2.412 GHz\n";
    }
    return report + "          Current Frequency:2.437 GHz (Channel 6)\n\n";
}

std::vector<int> channels_from_to(int first, int last) {
    std::vector<int> channels;
    for (int channel = first; channel <= last; channel++) {
        channels.push_back(channel);
    }
    return channels;
}

text_answer answer_to(const std::string &report) {
    install_tool("iwlist", report);
    return answer_of(wlan_getPossibleChannels, 1);
}

text_answer channels_of(const std::vector<int> &channels) {
    return answer_to(iwlist_output(channels));
}

TEST_F(Rates, ChannelsAreGroupedIntoRuns) {
    EXPECT_EQ(channels_of({1, 2, 3, 6, 36, 40}), (text_answer{0, "1-3,6,36,40"}));
    EXPECT_EQ(channels_of({1, 3, 4, 6, 7, 8}), (text_answer{0, "1,3-4,6-8"}));
    EXPECT_EQ(channels_of({1, 3}), (text_answer{0, "1,3"}));
    EXPECT_EQ(channels_of({36, 40, 44, 48, 52, 56, 60, 64, 100, 104, 108, 112, 149, 153, 157, 161, 165}),
              (text_answer{0, "36,40,44,48,52,56,60,64,100,104,108,112,149,153,157,161,165"}));
}

TEST_F(Rates, ASingleRunOfChannelsLeavesTheOutputUntouched) {
    EXPECT_EQ(channels_of(channels_from_to(1, 11)), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(channels_of(channels_from_to(1, 13)), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(channels_of({6}), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(channels_of(channels_from_to(1, 256)), (text_answer{0, "(untouched)"}));
}

TEST_F(Rates, AChannelApartFromARunBringsBothOut) {
    std::vector<int> channels = channels_from_to(1, 11);
    channels.push_back(36);
    EXPECT_EQ(channels_of(channels), (text_answer{0, "1-11,36"}));
}

TEST_F(Rates, ChannelsAreAscendingAndNamedOnceHoweverTheyAreReported) {
    EXPECT_EQ(channels_of({40, 6, 36, 3, 1, 2, 6, 40}), (text_answer{0, "1-3,6,36,40"}));
}

TEST_F(Rates, ChannelsUpToTwoHundredAreGivenOut) {
    EXPECT_EQ(channels_of({1, 199, 200, 201}), (text_answer{0, "1,199-200"}));
    EXPECT_EQ(channels_of({1, 201}), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(channels_of({201, 256}), (text_answer{0, "(untouched)"}));
}

TEST_F(Rates, NumbersThatAreNoChannelsAreLeftOut) {
    EXPECT_EQ(channels_of({1, 3, 0, -1, -7, 257, 261, 512, INT_MAX, INT_MIN}), (text_answer{0, "1,3"}));
}

// 4294967301 is 5 in its low 32 bits.
TEST_F(Rates, NumbersBeyondAnIntAreNoChannels) {
    for (const char *number : {"4294967301", "-4294967291", "999999999999", "18446744073709551621",
                               "99999999999999999999999999999999", "-99999999999999999999999999999999"}) {
        EXPECT_EQ(answer_to("Channel 1 : \nChannel 3 : \nChannel " + std::string(number) + " : 2.412 GHz\n"),
                  (text_answer{0, "1,3"}))
            << number;
    }
}

TEST_F(Rates, EveryOtherChannelGivesTheLongestText) {
    std::vector<int> channels;
    std::string text;
    for (int channel = 2; channel <= 200; channel += 2) {
        channels.push_back(channel);
        text += (text.empty() ? "" : ",") + std::to_string(channel);
    }
    EXPECT_EQ(channels_of(channels), (text_answer{0, text}));
}

TEST_F(Rates, TextThatIsNoNumberIsNoChannel) {
    EXPECT_EQ(answer_to("Channel 1 : \nChannel  : \nChannel x5 : \nChannel 3x : \n"), (text_answer{0, "1,3"}));
}

// The label of the current channel has no " : " behind it when it stands last, as it does in every real report.
TEST_F(Rates, TheCurrentChannelIsNotCounted) {
    EXPECT_EQ(channels_of({1, 3}).text, "1,3");
    EXPECT_EQ(answer_to("          Current Frequency:2.437 GHz (Channel 6)\n"), (text_answer{0, "(untouched)"}));
}

// What stands between a label and the next " : " is the number, whatever else is there.
TEST_F(Rates, ALabelTakesTheNextColonForItsOwn) {
    EXPECT_EQ(answer_to("Channel 7) \nChannel 1 : \nChannel 3 : \n"), (text_answer{0, "3,7"}));
}

TEST_F(Rates, ReadingStopsAtALabelWithoutAColon) {
    EXPECT_EQ(answer_to("Channel 1 : \nChannel 3 : \nChannel 5\nChannel 7: \nChannel 9 :\n"), (text_answer{0, "1,3"}));
}

TEST_F(Rates, ASilentToolGivesAnEmptyText) {
    EXPECT_EQ(answer_to(std::string()), (text_answer{0, ""}));
}

TEST_F(Rates, AReportWithoutTheWordChannelGivesAnEmptyText) {
    EXPECT_EQ(answer_to("ath0      no frequency information.\n\n"), (text_answer{0, ""}));
}

TEST_F(Rates, AReportWithoutAnyChannelLeavesTheOutputUntouched) {
    EXPECT_EQ(answer_to("Channel\nChannels\nno Channel here : \n"), (text_answer{0, "(untouched)"}));
}

TEST_F(Rates, AReportOfAnyLengthIsSurvived) {
    std::string labels;
    std::string lines;
    for (int i = 0; i < 1250; i++) {
        labels += "Channel ";
        lines += "Channel 5 : \n";
    }
    EXPECT_EQ(labels.size(), 10000U);
    EXPECT_EQ(answer_to(labels), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(answer_to(labels + " : "), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(answer_to(lines + "Channel 7 : \n"), (text_answer{0, "5,7"}));
    EXPECT_EQ(answer_to("Channel " + std::string(10000, '9') + " : \n"), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(answer_to("Channel " + std::string(10000, ' ') + "5 : Channel 7 : "), (text_answer{0, "5,7"}));
}

TEST_F(Rates, AReportThatEndsAtALabelOrColonIsSurvived) {
    EXPECT_EQ(answer_to("Channel "), (text_answer{0, "(untouched)"}));
    EXPECT_EQ(answer_to("Channel 1 : Channel 3 : "), (text_answer{0, "1,3"}));
    EXPECT_EQ(answer_to("Channel  : "), (text_answer{0, "(untouched)"}));
}

TEST_F(Rates, TheVapsOwnInterfaceIsAskedForItsChannels) {
    answer_of(wlan_getPossibleChannels, 1);
    answer_of(wlan_getPossibleChannels, 16);
    answer_of(wlan_getPossibleChannels, 17);
    EXPECT_EQ(tool_calls(), calls({"iwlist ath0 freq", "iwlist ath15 freq", "iwlist ath16 freq"}));
}

TEST_F(Rates, ARequestForChannelsLogsItsCommand) {
    EXPECT_EQ(debug_lines([] { answer_of(wlan_getPossibleChannels, 9); }),
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwlist ath8 freq | grep Channel\n");
}

TEST_F(Rates, AVapBelowOneHasNoChannelsButFourZeroBytes) {
    for (int index : {0, -1, INT_MIN}) {
        text_buffer channels;
        EXPECT_EQ(wlan_getPossibleChannels(index, channels.text, sizeof(channels.text)), -1) << index;
        EXPECT_TRUE(channels.begins_with_zeros_only(4)) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, ChannelsFailWhenTheToolCannotBeStarted) {
    EXPECT_EQ(answer_without_tools(wlan_getPossibleChannels, 1), (text_answer{-1, "(untouched)"}));
}

TEST_F(Rates, ChannelsAreCutToTheBuffer) {
    install_tool("iwlist", iwlist_output({1, 3, 5}));
    text_buffer channels;
    EXPECT_EQ(wlan_getPossibleChannels(1, channels.text, 4), 0);
    EXPECT_STREQ(channels.text, "1,3");
    EXPECT_EQ(channels.text[4], '?');
}

// --- all of them ---

TEST_F(Rates, SettersSucceedWhateverTheToolSays) {
    install_tool("cfg", "no room", 1);
    EXPECT_EQ(wlan_setSsidAdvertisementEnabled(1, 1), 0);
    EXPECT_EQ(wlan_setRadioEnabled(1, 1), 0);
    EXPECT_EQ(wlan_setTransmitPower(1, 1), 0);
    EXPECT_EQ(wlan_setAutoRateFallbackEnable(1, 1), 0);
    EXPECT_EQ(tool_calls().size(), 4U);
}

TEST_F(Rates, SettersSucceedWhenTheToolCannotBeStarted) {
    begin_descriptor_shortage();
    int statuses = wlan_setSsidAdvertisementEnabled(1, 1) | wlan_setRadioEnabled(1, 1) | wlan_setTransmitPower(1, 1) |
                   wlan_setAutoRateFallbackEnable(1, 1);
    end_descriptor_shortage();
    EXPECT_EQ(statuses, 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Rates, NothingIsPrintedWhileDebuggingIsOff) {
    write_store({"AP_TXPWR_2=20"});
    printed_text printed = capture([] {
        for (text_getter getter :
             {wlan_getBasicDataTransmitRates, wlan_getOperationalDataTransmitRates, wlan_getPossibleDataTransmitRates,
              wlan_getTransmitPowerSupported, wlan_getPossibleChannels}) {
            answer_of(getter, 1);
        }
        int value;
        u_int power;
        wlan_setBasicDataTransmitRates(1, "1");
        wlan_setOperationalDataTransmitRates(1, "1");
        wlan_getSsidAdvertisementEnabled(1, &value);
        wlan_setSsidAdvertisementEnabled(1, 1);
        wlan_getRadioEnabled(1, &value);
        wlan_setRadioEnabled(1, 1);
        wlan_getTransmitPower(1, &power);
        wlan_getTransmitPower(9, &power);
        wlan_setTransmitPower(1, 20);
        wlan_getAutoRateFallbackEnable(1, &value);
        wlan_setAutoRateFallbackEnable(1, 1);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
