// Airtime fairness: its settings, the stations that have a weight, and the text of their MACs.
#include "steering/airtime.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct Airtime : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("airtime");
        write_store({});
    }
};

const int ALL_KINDS_OF_NUMBERS[] = {INT_MIN, -1, 0, 1, 2, 8, 9, 16, 17, INT_MAX};

// --- the switches ---

TEST_F(Airtime, TheSwitchOfVapOneHasTheSuffixAndThatOfVapNineHasNone) {
    EXPECT_EQ(wlan_setAirtimeEnable(1, 1), 0);
    EXPECT_EQ(wlan_setAirtimeEnable(9, 0), 0);
    EXPECT_EQ(wlan_setAirtimeEnable(1, -7), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE_ATF_2=1", "cfg -a AP_ENABLE_ATF=0", "cfg -a AP_ENABLE_ATF_2=-7"}));
}

TEST_F(Airtime, TheSwitchesAreReadFromTheKeysTheyAreWrittenTo) {
    write_store({"AP_ENABLE_ATF=3", "AP_ENABLE_ATF_2=4", "AP_ENABLE_ATF_9=5", "AP_ENABLE_ATF_2_9=6"});
    EXPECT_EQ(number_of(wlan_getAirtimeEnable, 1), 4);
    EXPECT_EQ(number_of(wlan_getAirtimeEnable, 9), 3);
}

TEST_F(Airtime, TheSwitchFollowsTheIndexAndNotTheRadio) {
    write_store({"AP_RADIO_ID=1", "AP_RADIO_ID_9=0", "AP_ENABLE_ATF=3", "AP_ENABLE_ATF_2=4"});
    EXPECT_EQ(number_of(wlan_getAirtimeEnable, 1), 4);
    EXPECT_EQ(number_of(wlan_getAirtimeEnable, 9), 3);
}

TEST_F(Airtime, EveryOtherVapHasNoSwitch) {
    write_store({"AP_ENABLE_ATF=1", "AP_ENABLE_ATF_2=1"});
    for (int index : {INT_MIN, -1, 0, 2, 3, 8, 10, 15, 16, 17, INT_MAX}) {
        int enabled = UNTOUCHED;
        EXPECT_EQ(wlan_getAirtimeEnable(index, &enabled), -1) << index;
        EXPECT_EQ(enabled, UNTOUCHED) << index;
        EXPECT_EQ(wlan_setAirtimeEnable(index, 1), -1) << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Airtime, AnAbsentSwitchCannotBeRead) {
    for (const char *line : {"OTHER=1", "AP_ENABLE_ATF="}) {
        write_store({line, "AP_ENABLE_ATF_2="});
        for (int index : {1, 9}) {
            int enabled = UNTOUCHED;
            EXPECT_EQ(wlan_getAirtimeEnable(index, &enabled), -1);
            EXPECT_EQ(enabled, UNTOUCHED);
        }
    }
}

TEST_F(Airtime, ASwitchThatIsNoNumberReadsAsZero) {
    write_store({"AP_ENABLE_ATF=on"});
    EXPECT_EQ(number_of(wlan_getAirtimeEnable, 9), 0);
}

TEST_F(Airtime, TheSwitchIsSetWithSuccessWhateverTheToolDoes) {
    install_tool("cfg", "no room", 1);
    EXPECT_EQ(wlan_setAirtimeEnable(1, 1), 0);
    begin_descriptor_shortage();
    int status = wlan_setAirtimeEnable(9, 1);
    end_descriptor_shortage();
    EXPECT_EQ(status, 0);
}

// --- the other settings ---

struct setting_row {
    int (*getter)(int, int *);
    int (*setter)(int, int);
    std::string key;
};

// Those of a radio, and the one that each VAP has for itself.
const setting_row RADIO_SETTINGS[] = {
    {wlan_getAdvAirtime_AlgorithmType, wlan_setAdvAirtime_AlgorithmType, "ATF_ALGO_TYPE"},
    {wlan_getAdvAirtime_BSSWeightEnable, wlan_setAdvAirtime_BSSWeightEnable, "ATF_BSS_WEIGHT_EN"},
    {wlan_getAdvAirtime_STAWeightEnable, wlan_setAdvAirtime_STAWeightEnable, "ATF_STA_WEIGHT_EN"},
    {wlan_getAdvAirtime_TrafficDirection, wlan_setAdvAirtime_TrafficDirection, "ATF_TRAFFIC_DIR"},
    {wlan_getAdvAirtime_ApplicationATMEnable, wlan_setAdvAirtime_ApplicationATMEnable, "ATF_APP_EN"},
};
const setting_row VAP_SETTING = {wlan_getAdvAirtime_DistributionType, wlan_setAdvAirtime_DistributionType,
                                 "ATF_DISTRIBUT_TYPE"};

std::vector<setting_row> all_settings() {
    std::vector<setting_row> rows(std::begin(RADIO_SETTINGS), std::end(RADIO_SETTINGS));
    rows.push_back(VAP_SETTING);
    return rows;
}

// VAPs 1, 9 and 10 are on radio 1, all others on radio 0.
const calls RADIOS = {"AP_RADIO_ID=wifi1", "AP_RADIO_ID_9=10", "AP_RADIO_ID_10=1", "AP_RADIO_ID_2=0"};

calls with_radios(const calls &lines) {
    calls all = RADIOS;
    all.insert(all.end(), lines.begin(), lines.end());
    return all;
}

TEST_F(Airtime, ASettingOfARadioIsWrittenToTheBareKeyForRadioOneOnly) {
    for (const setting_row &row : RADIO_SETTINGS) {
        reset_platform();
        install_tool("cfg");
        write_store(RADIOS);
        EXPECT_EQ(row.setter(10, 3), 0);
        EXPECT_EQ(row.setter(2, -4), 0);
        EXPECT_EQ(row.setter(3, INT_MIN), 0);
        EXPECT_EQ(row.setter(1, INT_MAX), 0);
        EXPECT_EQ(tool_calls(), calls({"cfg -a " + row.key + "=3", "cfg -a " + row.key + "_2=-4",
                                       "cfg -a " + row.key + "_2=-2147483648", "cfg -a " + row.key + "=2147483647"}));
    }
}

TEST_F(Airtime, ASettingOfARadioIsReadFromTheKeyOfTheVapsRadio) {
    for (const setting_row &row : RADIO_SETTINGS) {
        write_store(with_radios({row.key + "_10=7", row.key + "_2=6", row.key + "=5"}));
        EXPECT_EQ(number_of(row.getter, 1), 5) << row.key;
        EXPECT_EQ(number_of(row.getter, 10), 5) << row.key;
        EXPECT_EQ(number_of(row.getter, 2), 6) << row.key;
        EXPECT_EQ(number_of(row.getter, 16), 6) << row.key;
    }
}

// Indices below 1 have the radio of VAP 1, those above 16 one of their own: none of them is refused.
TEST_F(Airtime, ASettingOfARadioTakesAnyIndex) {
    for (const setting_row &row : RADIO_SETTINGS) {
        write_store({"AP_RADIO_ID=1", row.key + "=5", row.key + "_2=6"});
        for (int index : ALL_KINDS_OF_NUMBERS) {
            EXPECT_EQ(number_of(row.getter, index), index < 2 ? 5 : 6) << row.key << " " << index;
        }
        for (int index : {INT_MIN, -1, 0}) {
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.setter(index, 1), 0); }),
                      calls({"cfg -a " + row.key + "=\"1\""}));
        }
        EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.setter(INT_MAX, 1), 0); }),
                  calls({"cfg -a " + row.key + "_2=\"1\""}));
    }
}

TEST_F(Airtime, TheDistributionTypeIsOfTheVapWhateverItsRadio) {
    write_store(with_radios({"ATF_DISTRIBUT_TYPE_2=2", "ATF_DISTRIBUT_TYPE_9=9", "ATF_DISTRIBUT_TYPE_16=16",
                             "ATF_DISTRIBUT_TYPE_17=17", "ATF_DISTRIBUT_TYPE=1"}));
    for (int index : {1, 2, 9, 16, 17}) {
        EXPECT_EQ(number_of(wlan_getAdvAirtime_DistributionType, index), index);
    }
    for (int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(number_of(wlan_getAdvAirtime_DistributionType, index), 1);
    }
    for (int index : {1, 2, 9, 17, 0, INT_MIN}) {
        EXPECT_EQ(wlan_setAdvAirtime_DistributionType(index, index), 0);
    }
    EXPECT_EQ(tool_calls(), calls({"cfg -a ATF_DISTRIBUT_TYPE=1", "cfg -a ATF_DISTRIBUT_TYPE_2=2",
                                   "cfg -a ATF_DISTRIBUT_TYPE_9=9", "cfg -a ATF_DISTRIBUT_TYPE_17=17",
                                   "cfg -a ATF_DISTRIBUT_TYPE=0", "cfg -a ATF_DISTRIBUT_TYPE=-2147483648"}));
}

TEST_F(Airtime, AnAbsentSettingReadsAsZero) {
    for (const setting_row &row : all_settings()) {
        write_store({"OTHER=1"});
        EXPECT_EQ(number_of(row.getter, 1), 0) << row.key;
        write_store({row.key + "=", row.key + "_2="});
        EXPECT_EQ(number_of(row.getter, 1), 0) << row.key;
    }
}

TEST_F(Airtime, ASettingReadsAsZeroWithoutAStore) {
    reset_platform();
    for (const setting_row &row : all_settings()) {
        EXPECT_EQ(number_of(row.getter, 9), 0) << row.key;
    }
}

TEST_F(Airtime, ASettingIsTheNumberThatItsTextBeginsWith) {
    const std::string longest = std::string(STORE_VALUE_SIZE - 2, '0') + "7";
    for (const setting_row &row : all_settings()) {
        write_store({"AP_RADIO_ID=1", row.key + "=" + longest});
        EXPECT_EQ(number_of(row.getter, 1), 7) << row.key;
        write_store({"AP_RADIO_ID=1", row.key + "=" + longest + "8"});
        EXPECT_EQ(number_of(row.getter, 1), 7) << row.key;
        write_store({"AP_RADIO_ID=1", row.key + "=-12 and more"});
        EXPECT_EQ(number_of(row.getter, 1), -12) << row.key;
        write_store({"AP_RADIO_ID=1", row.key + "=on"});
        EXPECT_EQ(number_of(row.getter, 1), 0) << row.key;
    }
}

TEST_F(Airtime, ASettingIsSetWithSuccessWhateverTheToolDoes) {
    install_tool("cfg", "no room", 1);
    for (const setting_row &row : all_settings()) {
        EXPECT_EQ(row.setter(1, 1), 0) << row.key;
        begin_descriptor_shortage();
        int status = row.setter(9, 1);
        end_descriptor_shortage();
        EXPECT_EQ(status, 0) << row.key;
    }
}

TEST_F(Airtime, TheRadioIsAskedForBeforeTheSetting) {
    write_store(with_radios({"ATF_ALGO_TYPE=3"}));
    EXPECT_EQ(debug_lines([] { number_of(wlan_getAdvAirtime_AlgorithmType, 9); }),
              "[VLK-API] athcfg_getbyname index 8, Param: AP_RADIO_ID_9= is 10\n"
              "[VLK-API] athcfg_get_radio athcfg_get_radio: index 9 => radio 1\n"
              "[VLK-API] athcfg_getbyname index 0, Param: ATF_ALGO_TYPE= is 3\n");
}

TEST_F(Airtime, TheDistributionTypeDoesNotAskForTheRadio) {
    write_store(with_radios({"ATF_DISTRIBUT_TYPE_9=3"}));
    EXPECT_EQ(debug_lines([] { number_of(wlan_getAdvAirtime_DistributionType, 9); }),
              "[VLK-API] athcfg_getbyname index 8, Param: ATF_DISTRIBUT_TYPE_9= is 3\n");
}

// --- the stations that have a weight ---

TEST_F(Airtime, AllWeightsAreRemovedByOneCommand) {
    EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setAdvAirtime_STAWeightDestroyAll(), 0); }),
              calls({"airtime del_all_sta"}));
    EXPECT_EQ(tool_calls(), calls({"airtime del_all_sta"}));
}

TEST_F(Airtime, AStationIsAddedWithItsMacWithoutColons) {
    EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd("aa:bb:cc:dd:ee:ff", 30), 0); }),
              calls({"airtime add_sta aabbccddeeff 30"}));
    EXPECT_EQ(tool_calls(), calls({"airtime add_sta aabbccddeeff 30"}));
}

TEST_F(Airtime, AStationIsAddedWithAnyWeight) {
    for (int weight : {0, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd("AABB", weight), 0);
    }
    EXPECT_EQ(tool_calls(), calls({"airtime add_sta AABB 0", "airtime add_sta AABB -1",
                                   "airtime add_sta AABB -2147483648", "airtime add_sta AABB 2147483647"}));
}

TEST_F(Airtime, AStationIsTakenAwayByItsMacWithoutColons) {
    EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel("aa:bb:cc:dd:ee:ff"), 0); }),
              calls({"airtime del_sta aabbccddeeff"}));
    EXPECT_EQ(tool_calls(), calls({"airtime del_sta aabbccddeeff"}));
}

TEST_F(Airtime, WithoutAMacNothingIsRun) {
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd(nullptr, 5), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel(nullptr), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Airtime, AnEmptyMacIsLeftToTheTool) {
    calls expected = {"airtime add_sta  5", "airtime del_sta "};
    EXPECT_EQ(commands_of([] {
                  EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd("", 5), 0);
                  EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel(":::"), 0);
              }),
              expected);
}

TEST_F(Airtime, AMacStandsInTheCommandAsItCame) {
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd("a 1; airtime b '%s %d'", 2), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel("\"c  d\" $((1 + 1))"), 0);
    EXPECT_EQ(tool_calls(), calls({"airtime add_sta a 1", "airtime b %s %d 2", "airtime del_sta c  d 2"}));
}

TEST_F(Airtime, ALongMacIsNotCut) {
    std::string mac;
    for (int i = 0; i < 2900; i++) {
        mac += "ab:";
    }
    std::string bare;
    for (int i = 0; i < 2900; i++) {
        bare += "ab";
    }
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd(mac.c_str(), 1), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel(mac.c_str()), 0);
    EXPECT_EQ(tool_calls(), calls({"airtime add_sta " + bare + " 1", "airtime del_sta " + bare}));
}

TEST_F(Airtime, TheListIsChangedWithSuccessWhateverTheToolDoes) {
    install_tool("airtime", "no room", 1);
    EXPECT_EQ(wlan_setAdvAirtime_STAWeightDestroyAll(), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryAdd("a", 1), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STAEntryDel("a"), 0);
    begin_descriptor_shortage();
    int removed = wlan_setAdvAirtime_STAWeightDestroyAll();
    int added = wlan_setAdvAirtime_STAEntryAdd("a", 1);
    int deleted = wlan_setAdvAirtime_STAEntryDel("a");
    end_descriptor_shortage();
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(added, 0);
    EXPECT_EQ(deleted, 0);
}

TEST_F(Airtime, WhatTheToolSaysToAChangeIsNotPrinted) {
    install_tool("airtime", "done\n");
    printed_text printed = capture([] {
        wlan_setAdvAirtime_STAWeightDestroyAll();
        wlan_setAdvAirtime_STAEntryAdd("a", 1);
        wlan_setAdvAirtime_STAEntryDel("a");
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

int entry_count() {
    int count = UNTOUCHED;
    EXPECT_EQ(wlan_getAdvAirtime_STAEntryCount(&count), 0);
    return count;
}

// What a tool may print where a number is expected, and the number that this is.
struct answer_row {
    std::string printed;
    int number;
};
const answer_row ANSWERS[] = {
    {"42\n", 42},   {"0", 0},     {" \t-5 ms\n", -5},        {"12abc\n34\n", 12},
    {"abc 5\n", 0}, {"\n7\n", 7}, {"2147483647\n", INT_MAX}, {std::string(100000, '0') + "9\n", 9},
};

TEST_F(Airtime, TheNumberOfStationsIsWhatTheToolPrints) {
    for (const answer_row &row : ANSWERS) {
        install_tool("airtime", row.printed);
        EXPECT_EQ(entry_count(), row.number) << row.printed;
    }
}

TEST_F(Airtime, TheToolIsAskedForTheNumberOfStations) {
    EXPECT_EQ(debug_lines([] { entry_count(); }),
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:airtime sta_count\n");
    EXPECT_EQ(tool_calls(), calls({"airtime sta_count"}));
}

TEST_F(Airtime, ThereIsNoStationWhenTheToolSaysNothing) {
    EXPECT_EQ(entry_count(), 0);
}

TEST_F(Airtime, ThereIsNoStationWithoutTheTool) {
    reset_platform();
    capture([] { EXPECT_EQ(entry_count(), 0); });
}

TEST_F(Airtime, ThereIsNoStationWhenTheToolCannotBeStarted) {
    install_tool("airtime", "42\n");
    begin_descriptor_shortage();
    int count = entry_count();
    end_descriptor_shortage();
    EXPECT_EQ(count, 0);
}

// --- one of them, by its number ---

std::string mac_of(int station) {
    text_buffer buffer;
    EXPECT_EQ(wlan_getAdvAirtime_STA_MAC(station, buffer.text, sizeof(buffer.text)), 0);
    return buffer.text;
}

TEST_F(Airtime, TheMacOfAStationIsGivenWithColons) {
    write_store({"ATF_STA_MAC_11=001122334455", "ATF_STA_MAC_1=aabbccddeeff", "ATF_STA_MAC_2=AABBCCDDEEFF"});
    EXPECT_EQ(mac_of(1), "aa:bb:cc:dd:ee:ff");
    EXPECT_EQ(mac_of(2), "AA:BB:CC:DD:EE:FF");
    EXPECT_EQ(mac_of(11), "00:11:22:33:44:55");
}

TEST_F(Airtime, TheNumberOfAStationIsPartOfItsKeys) {
    for (int station : ALL_KINDS_OF_NUMBERS) {
        std::string number = std::to_string(station);
        write_store({"ATF_STA_MAC=1111", "ATF_STA_WEIGHT=1", "ATF_STA_MAC_" + number + "_" + number + "=2222",
                     "ATF_STA_WEIGHT_" + number + "_" + number + "=2", "ATF_STA_MAC_" + number + "=abcd",
                     "ATF_STA_WEIGHT_" + number + "=30"});
        EXPECT_EQ(mac_of(station), "ab:cd") << number;
        EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, station), 30) << number;
    }
}

TEST_F(Airtime, AnUnknownStationHasAnEmptyMacAndNoWeight) {
    for (const calls &lines :
         {calls{"ATF_STA_MAC=1111", "ATF_STA_WEIGHT=1"}, calls{"ATF_STA_MAC_1=", "ATF_STA_WEIGHT_1="}}) {
        write_store(lines);
        EXPECT_EQ(mac_of(1), "");
        EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, 1), 0);
    }
    reset_platform();
    EXPECT_EQ(mac_of(1), "");
    EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, 1), 0);
}

TEST_F(Airtime, OfAStoredMacFifteenCharactersCount) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff112", "ATF_STA_MAC_2=aabbccddeeff1122",
                 "ATF_STA_MAC_3=" + std::string(STORE_VALUE_SIZE - 1, 'x'), "ATF_STA_MAC_4=aabbccddeeff11",
                 "ATF_STA_MAC_5=aa:bb:cc:dd:ee:ff"});
    EXPECT_EQ(mac_of(1), "aa:bb:cc:dd:ee:ff:11:2");
    EXPECT_EQ(mac_of(2), "aa:bb:cc:dd:ee:ff:11:2");
    EXPECT_EQ(mac_of(3), "xx:xx:xx:xx:xx:xx:xx:x");
    EXPECT_EQ(mac_of(4), "aa:bb:cc:dd:ee:ff:11");
    EXPECT_EQ(mac_of(5), "aa::b:b::cc::d:d::ee::");
}

TEST_F(Airtime, AMacIsCutToTheRoomThatThereIs) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff"});
    text_buffer buffer;
    EXPECT_EQ(wlan_getAdvAirtime_STA_MAC(1, buffer.text, 8), 0);
    EXPECT_STREQ(buffer.text, "aa:bb:c");
    EXPECT_EQ(buffer.text[8], '?');
}

TEST_F(Airtime, TheStoredMacIsLogged) {
    write_store({"ATF_STA_MAC_3=aabbccddeeff1122", "ATF_STA_WEIGHT_3=30"});
    EXPECT_EQ(debug_lines([] { mac_of(3); }),
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_MAC_3= is aabbccddeeff112\n"
              "[VLK-API] wlan_getAdvAirtime_STA_MAC wlan_getAdvAirtime_STA_MAC: smac aabbccddeeff112\n");
    EXPECT_EQ(debug_lines([] { number_of(wlan_getAdvAirtime_STA_Weight, 3); }),
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_WEIGHT_3= is 30\n");
}

TEST_F(Airtime, AWeightIsTheNumberThatItsTextBeginsWith) {
    write_store({"ATF_STA_WEIGHT_1=" + std::string(STORE_VALUE_SIZE - 2, '0') + "7", "ATF_STA_WEIGHT_2=-12 and more",
                 "ATF_STA_WEIGHT_3=much"});
    EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, 1), 7);
    EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, 2), -12);
    EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Weight, 3), 0);
}

TEST_F(Airtime, APeriodIsSetByTheTool) {
    EXPECT_EQ(wlan_setAdvAirtime_STA_Period(3, 100), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STA_Period(0, -1), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STA_Period(INT_MIN, INT_MIN), 0);
    EXPECT_EQ(wlan_setAdvAirtime_STA_Period(INT_MAX, INT_MAX), 0);
    EXPECT_EQ(tool_calls(),
              calls({"airtime sta_time 3 100", "airtime sta_time 0 -1", "airtime sta_time -2147483648 -2147483648",
                     "airtime sta_time 2147483647 2147483647"}));
}

TEST_F(Airtime, APeriodThatTheToolRefusesIsAFailure) {
    for (int status : {1, 2, 127, 255}) {
        install_tool("airtime", "", status);
        EXPECT_EQ(wlan_setAdvAirtime_STA_Period(3, 100), -1) << status;
    }
}

TEST_F(Airtime, APeriodCannotBeSetWithoutTheTool) {
    reset_platform();
    capture([] { EXPECT_EQ(wlan_setAdvAirtime_STA_Period(3, 100), -1); });
}

// Not through the capturing runner, which does not know how a command ended.
TEST_F(Airtime, APeriodIsSetWithTheServersOwnOutput) {
    install_tool("airtime", "done\n");
    EXPECT_EQ(debug_lines([] { wlan_setAdvAirtime_STA_Period(3, 100); }), "done\n");
}

TEST_F(Airtime, APeriodIsWhatTheToolPrints) {
    for (const answer_row &row : ANSWERS) {
        install_tool("airtime", row.printed);
        EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Period, 1), row.number) << row.printed;
    }
}

TEST_F(Airtime, TheToolIsAskedForThePeriodOfAnyNumber) {
    for (int station : {3, 0, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(debug_lines([&] { number_of(wlan_getAdvAirtime_STA_Period, station); }),
                  "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:airtime get_sta_time " + std::to_string(station) +
                      "\n");
    }
    EXPECT_EQ(tool_calls(), calls({"airtime get_sta_time 3", "airtime get_sta_time 0", "airtime get_sta_time -1",
                                   "airtime get_sta_time -2147483648", "airtime get_sta_time 2147483647"}));
}

TEST_F(Airtime, APeriodIsZeroWhenTheToolSaysNothing) {
    EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Period, 1), 0);
}

TEST_F(Airtime, APeriodIsZeroWithoutTheTool) {
    reset_platform();
    capture([] { EXPECT_EQ(number_of(wlan_getAdvAirtime_STA_Period, 1), 0); });
}

TEST_F(Airtime, APeriodIsZeroWhenTheToolCannotBeStarted) {
    install_tool("airtime", "42\n");
    begin_descriptor_shortage();
    int period = number_of(wlan_getAdvAirtime_STA_Period, 1);
    end_descriptor_shortage();
    EXPECT_EQ(period, 0);
}

// --- all of them ---

// What every byte of a list holds before the call.
constexpr unsigned char OLD_BYTE = 0xa5;
constexpr uint32_t OLD_WORD = 0xa5a5a5a5;

struct watched_list {
    wlan_airtime_sta_list_t list;
    unsigned char behind[64];

    watched_list() {
        memset(static_cast<void *>(this), OLD_BYTE, sizeof(*this));
    }

    // The byte and the word at an offset of the list, as a client finds them.
    unsigned char byte_at(size_t offset) const {
        return reinterpret_cast<const unsigned char *>(&list)[offset];
    }
    uint32_t word_at(size_t offset) const {
        uint32_t word;
        memcpy(&word, reinterpret_cast<const unsigned char *>(&list) + offset, sizeof(word));
        return word;
    }

    // Whether everything from an offset on, also what lies behind the list, is as it was.
    bool is_untouched_from(size_t offset) const {
        const auto *bytes = reinterpret_cast<const unsigned char *>(this);
        for (size_t i = offset; i < sizeof(*this); i++) {
            if (bytes[i] != OLD_BYTE) {
                return false;
            }
        }
        return true;
    }
};

constexpr size_t FIRST_RECORD = 4;
constexpr size_t RECORD_SIZE = 32;

TEST_F(Airtime, AListHasTheStationsFromOneToTheCount) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff", "ATF_STA_WEIGHT_1=30", "ATF_STA_MAC_2=001122334455",
                 "ATF_STA_WEIGHT_2=-1", "ATF_STA_MAC_3=66", "ATF_STA_WEIGHT_3=5"});
    install_tool("airtime", "70\n");
    watched_list out;
    EXPECT_EQ(wlan_getAdvAirtime_STAList(2, &out.list), 0);
    EXPECT_EQ(out.list.count, 2);
    EXPECT_EQ(out.list.stations[0].index, 1U);
    EXPECT_STREQ(out.list.stations[0].mac, "aa:bb:cc:dd:ee:ff");
    EXPECT_EQ(out.list.stations[0].weight, 30U);
    EXPECT_EQ(out.list.stations[0].period, 70U);
    EXPECT_EQ(out.list.stations[1].index, 2U);
    EXPECT_STREQ(out.list.stations[1].mac, "00:11:22:33:44:55");
    EXPECT_EQ(out.list.stations[1].weight, UINT32_MAX);
    EXPECT_EQ(out.list.stations[1].period, 70U);
    EXPECT_TRUE(out.is_untouched_from(FIRST_RECORD + 2 * RECORD_SIZE));
}

TEST_F(Airtime, ARecordOfAListHasItsFieldsWhereClientsReadThem) {
    write_store({"ATF_STA_MAC_1=112233445566", "ATF_STA_MAC_2=aabbccddeeff", "ATF_STA_WEIGHT_2=30"});
    install_tool("airtime", "70\n");
    watched_list out;
    EXPECT_EQ(wlan_getAdvAirtime_STAList(2, &out.list), 0);
    EXPECT_EQ(out.word_at(0), 2U);
    size_t record = FIRST_RECORD + RECORD_SIZE;
    EXPECT_EQ(out.word_at(record), 2U);
    EXPECT_EQ(memcmp(reinterpret_cast<const char *>(&out.list) + record + 4, "aa:bb:cc:dd:ee:ff", 18), 0);
    EXPECT_EQ(out.byte_at(record + 22), OLD_BYTE);
    EXPECT_EQ(out.byte_at(record + 23), OLD_BYTE);
    EXPECT_EQ(out.word_at(record + 24), 30U);
    EXPECT_EQ(out.word_at(record + 28), 70U);
}

TEST_F(Airtime, AListIsReadStationByStation) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff", "ATF_STA_WEIGHT_1=30", "ATF_STA_MAC_2=0011223344556677",
                 "ATF_STA_WEIGHT_2=-1 or so"});
    watched_list out;
    EXPECT_EQ(debug_lines([&] { wlan_getAdvAirtime_STAList(2, &out.list); }),
              "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: sta_count: 2 \n"
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_MAC_1= is aabbccddeeff\n"
              "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: smac aabbccddeeff\n"
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_WEIGHT_1= is 30\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:airtime get_sta_time 1\n"
              "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: sta_index: 1 mac aa:bb:cc:dd:ee:ff "
              "weight:30\n"
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_MAC_2= is 001122334455667\n"
              "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: smac 001122334455667\n"
              "[VLK-API] athcfg_getbyname index -1, Param: ATF_STA_WEIGHT_2= is -1 or so\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:airtime get_sta_time 2\n"
              "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: sta_index: 2 mac 00:11:22:33:44:55 "
              "weight:-1\n");
}

TEST_F(Airtime, AMacOfAListIsCutToItsField) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff112", "ATF_STA_MAC_2=" + std::string(STORE_VALUE_SIZE - 1, 'x')});
    watched_list out;
    EXPECT_EQ(wlan_getAdvAirtime_STAList(2, &out.list), 0);
    EXPECT_STREQ(out.list.stations[0].mac, "aa:bb:cc:dd:ee:ff");
    EXPECT_STREQ(out.list.stations[1].mac, "xx:xx:xx:xx:xx:xx");
    EXPECT_EQ(out.list.stations[0].padding[0], OLD_BYTE);
}

TEST_F(Airtime, AnUnknownStationOfAListHasItsNumberOnly) {
    watched_list out;
    EXPECT_EQ(wlan_getAdvAirtime_STAList(1, &out.list), 0);
    EXPECT_EQ(out.list.count, 1);
    EXPECT_EQ(out.list.stations[0].index, 1U);
    EXPECT_STREQ(out.list.stations[0].mac, "");
    EXPECT_EQ(out.list.stations[0].weight, 0U);
}

TEST_F(Airtime, APeriodOfAListStaysAsItWasWhenTheToolSaysNothing) {
    watched_list silent;
    EXPECT_EQ(wlan_getAdvAirtime_STAList(1, &silent.list), 0);
    EXPECT_EQ(silent.list.stations[0].period, OLD_WORD);

    watched_list not_started;
    begin_descriptor_shortage();
    wlan_getAdvAirtime_STAList(1, &not_started.list);
    end_descriptor_shortage();
    EXPECT_EQ(not_started.list.stations[0].period, OLD_WORD);

    reset_platform();
    watched_list absent;
    capture([&] { wlan_getAdvAirtime_STAList(1, &absent.list); });
    EXPECT_EQ(absent.list.stations[0].period, OLD_WORD);
}

TEST_F(Airtime, APeriodOfAListIsWhatTheToolPrints) {
    for (const answer_row &row : ANSWERS) {
        install_tool("airtime", row.printed);
        watched_list out;
        EXPECT_EQ(wlan_getAdvAirtime_STAList(1, &out.list), 0);
        EXPECT_EQ(out.list.stations[0].period, static_cast<uint32_t>(row.number)) << row.printed;
    }
}

TEST_F(Airtime, AListEndsWithStationSixtyFour) {
    for (int count : {64, 65, 100, INT_MAX}) {
        reset_platform();
        install_tool("airtime", "1\n");
        write_store({"ATF_STA_WEIGHT_64=9", "ATF_STA_WEIGHT_65=10"});
        watched_list out;
        calls lines = printed_behind("[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: sta_count: ",
                                     [&] { EXPECT_EQ(wlan_getAdvAirtime_STAList(count, &out.list), 0); });
        EXPECT_EQ(lines, calls({"64 "})) << count;
        EXPECT_EQ(out.list.count, 64) << count;
        for (uint32_t i = 0; i < 64; i++) {
            EXPECT_EQ(out.list.stations[i].index, i + 1);
            EXPECT_EQ(out.list.stations[i].weight, i == 63 ? 9U : 0U);
        }
        EXPECT_EQ(tool_calls().size(), 64U);
        EXPECT_EQ(tool_calls().back(), "airtime get_sta_time 64");
        EXPECT_TRUE(out.is_untouched_from(sizeof(out.list)));
    }
}

TEST_F(Airtime, AListWithoutStationsHasTheCountThatWasAskedFor) {
    write_store({"ATF_STA_MAC_1=aabbccddeeff"});
    for (int count : {0, -1, INT_MIN}) {
        watched_list out;
        EXPECT_EQ(debug_lines([&] { EXPECT_EQ(wlan_getAdvAirtime_STAList(count, &out.list), 0); }),
                  "[VLK-API] wlan_getAdvAirtime_STAList wlan_getAdvAirtime_STAList: sta_count: " +
                      std::to_string(count) + " \n");
        EXPECT_EQ(out.list.count, count);
        EXPECT_TRUE(out.is_untouched_from(FIRST_RECORD));
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Airtime, NothingIsPrintedWhileDebuggingIsOff) {
    write_store({"AP_ENABLE_ATF=1", "ATF_STA_MAC_1=aabbccddeeff"});
    printed_text printed = capture([] {
        number_of(wlan_getAirtimeEnable, 9);
        wlan_setAirtimeEnable(9, 1);
        number_of(wlan_getAdvAirtime_AlgorithmType, 9);
        mac_of(1);
        watched_list out;
        wlan_getAdvAirtime_STAList(2, &out.list);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// --- the text of a MAC ---

// What a conversion makes of a text in a buffer of this size, and the byte behind that buffer.
struct converted {
    int status;
    std::string text;
    char behind;
    bool operator==(const converted &) const = default;
};

std::ostream &operator<<(std::ostream &out, const converted &result) {
    return out << result.status << " \"" << result.text << "\" " << result.behind;
}

converted convert(int (*conversion)(const char *, char *, size_t), const char *in, size_t size) {
    text_buffer buffer;
    int status = conversion(in, buffer.text, size);
    return {status, buffer.text, buffer.text[size]};
}

constexpr size_t WIDE = 100;

TEST(MacText, ColonsAreRemovedWhereverTheyStand) {
    EXPECT_EQ(convert(remove_colon, "aa:bb:cc:dd:ee:ff", WIDE), (converted{0, "aabbccddeeff", '?'}));
    EXPECT_EQ(convert(remove_colon, "::a:::b::", WIDE), (converted{0, "ab", '?'}));
    EXPECT_EQ(convert(remove_colon, "aabb-cc dd;", WIDE), (converted{0, "aabb-cc dd;", '?'}));
    EXPECT_EQ(convert(remove_colon, ":", WIDE), (converted{0, "", '?'}));
    EXPECT_EQ(convert(remove_colon, "", WIDE), (converted{0, "", '?'}));
}

TEST(MacText, WithoutColonsATextIsCutToItsBuffer) {
    EXPECT_EQ(convert(remove_colon, "aa:bb:cc", 7), (converted{0, "aabbcc", '?'}));
    EXPECT_EQ(convert(remove_colon, "aa:bb:cc", 6), (converted{0, "aabbc", '?'}));
    EXPECT_EQ(convert(remove_colon, "aa:bb:cc", 2), (converted{0, "a", '?'}));
    EXPECT_EQ(convert(remove_colon, "aa:bb:cc", 1), (converted{0, "", '?'}));
}

TEST(MacText, ColonsCanBeRemovedInPlace) {
    char text[] = "aa:bb:cc:dd:ee:ff";
    EXPECT_EQ(remove_colon(text, text, sizeof(text)), 0);
    EXPECT_STREQ(text, "aabbccddeeff");
}

TEST(MacText, AColonStandsBehindEveryTwoCharacters) {
    EXPECT_EQ(convert(add_colon, "aabbccddeeff", WIDE), (converted{0, "aa:bb:cc:dd:ee:ff", '?'}));
    EXPECT_EQ(convert(add_colon, "aabbcc ddeeff11", WIDE), (converted{0, "aa:bb:cc: d:de:ef:f1:1", '?'}));
}

TEST(MacText, NoColonIsTheLastCharacter) {
    EXPECT_EQ(convert(add_colon, "", WIDE), (converted{0, "", '?'}));
    EXPECT_EQ(convert(add_colon, "a", WIDE), (converted{0, "a", '?'}));
    EXPECT_EQ(convert(add_colon, "aa", WIDE), (converted{0, "aa", '?'}));
    EXPECT_EQ(convert(add_colon, "aab", WIDE), (converted{0, "aa:b", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", WIDE), (converted{0, "aa:bb", '?'}));
    EXPECT_EQ(convert(add_colon, "aabbc", WIDE), (converted{0, "aa:bb:c", '?'}));
}

// Colons that are there already are characters like all others.
TEST(MacText, ColonsAreCountedByPositionNotByMeaning) {
    EXPECT_EQ(convert(add_colon, "aa:bb", WIDE), (converted{0, "aa::b:b", '?'}));
    EXPECT_EQ(convert(add_colon, ":::", WIDE), (converted{0, "::::", '?'}));
}

TEST(MacText, WithColonsATextIsCutToItsBuffer) {
    EXPECT_EQ(convert(add_colon, "aabbccddeeff", 18), (converted{0, "aa:bb:cc:dd:ee:ff", '?'}));
    EXPECT_EQ(convert(add_colon, "aabbccddeeff", 17), (converted{0, "aa:bb:cc:dd:ee:f", '?'}));
    EXPECT_EQ(convert(add_colon, "aabbccddeeff11", 18), (converted{0, "aa:bb:cc:dd:ee:ff", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", 5), (converted{0, "aa:b", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", 4), (converted{0, "aa", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", 3), (converted{0, "aa", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", 2), (converted{0, "a", '?'}));
    EXPECT_EQ(convert(add_colon, "aabb", 1), (converted{0, "", '?'}));
}

TEST(MacText, NullPointersAreRefused) {
    for (auto conversion : {remove_colon, add_colon}) {
        text_buffer buffer;
        EXPECT_EQ(conversion(nullptr, buffer.text, sizeof(buffer.text)), -1);
        EXPECT_TRUE(buffer.is_untouched());
        EXPECT_EQ(conversion("aa", nullptr, 10), -1);
        EXPECT_EQ(conversion(nullptr, nullptr, 0), -1);
    }
}

}  // namespace
