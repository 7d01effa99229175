// Channel switch and idle timeout: what each operation runs, writes, prints and refuses.
#include "steering/channel_switch.h"

#include <gtest/gtest.h>
#include <limits.h>

#include <string>

#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct ChannelSwitch : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("iwpriv");
        write_store({});
    }
};

// What a switch prints, which it must report as a success.
std::string announced(int index, u_int type, u_int channel, u_int count, u_int width) {
    printed_text printed =
        capture([=] { EXPECT_EQ(wlan_setChannelSwitch(index, type, channel, count, width), 0) << "index " << index; });
    EXPECT_EQ(printed.err, "");
    return printed.out;
}

TEST_F(ChannelSwitch, ASwitchIsPrintedAndGivenToTheDriver) {
    EXPECT_EQ(announced(1, 1, 36, 5, 2), "Command is iwpriv ath0 doth_ch_chwidth 36 5 2\n");
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 doth_ch_chwidth 36 5 2"}));
}

TEST_F(ChannelSwitch, TheTypeOfASwitchIsNotPassedOn) {
    announced(1, 7, 36, 5, 2);
    announced(1, UINT_MAX, 36, 5, 2);
    EXPECT_EQ(tool_calls(), (calls{"iwpriv ath0 doth_ch_chwidth 36 5 2", "iwpriv ath0 doth_ch_chwidth 36 5 2"}));
}

TEST_F(ChannelSwitch, ASwitchIsTakenForEveryIndex) {
    for (int index : {16, 17, 0, -1, INT_MIN, INT_MAX}) {
        announced(index, 0, 1, 2, 3);
    }
    EXPECT_EQ(tool_calls(),
              (calls{"iwpriv ath15 doth_ch_chwidth 1 2 3", "iwpriv ath16 doth_ch_chwidth 1 2 3",
                     "iwpriv ath-1 doth_ch_chwidth 1 2 3", "iwpriv ath-2 doth_ch_chwidth 1 2 3",
                     "iwpriv ath2147483647 doth_ch_chwidth 1 2 3", "iwpriv ath2147483646 doth_ch_chwidth 1 2 3"}));
}

// The words are unsigned, the text is "%d".
TEST_F(ChannelSwitch, LargeWordsAppearAsNegativeNumbers) {
    EXPECT_EQ(announced(INT_MIN + 2, 0, 0x80000000U, 0x80000000U, 0x80000000U),
              "Command is iwpriv ath-2147483647 doth_ch_chwidth -2147483648 -2147483648 -2147483648\n");
    EXPECT_EQ(announced(1, 0, 0xffffffffU, 0x7fffffffU, 0xfffffffeU),
              "Command is iwpriv ath0 doth_ch_chwidth -1 2147483647 -2\n");
}

TEST_F(ChannelSwitch, ASwitchWritesNoSetting) {
    announced(1, 1, 36, 5, 2);
    for (const std::string &call : tool_calls()) {
        EXPECT_TRUE(call.starts_with("iwpriv ")) << call;
    }
}

TEST_F(ChannelSwitch, WhatTheToolAnswersToASwitchIsDiscarded) {
    install_tool("iwpriv", "ath0      no private ioctls.\n", 1);
    EXPECT_EQ(announced(1, 1, 36, 5, 2), "Command is iwpriv ath0 doth_ch_chwidth 36 5 2\n");
}

TEST_F(ChannelSwitch, ASwitchSucceedsWhenTheToolCannotBeStarted) {
    begin_capture();
    begin_descriptor_shortage();
    int status = wlan_setChannelSwitch(1, 1, 36, 5, 2);
    end_descriptor_shortage();
    EXPECT_EQ(end_capture().out, "Command is iwpriv ath0 doth_ch_chwidth 36 5 2\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(ChannelSwitch, ASwitchIsLogged) {
    EXPECT_EQ(debug_lines([] { wlan_setChannelSwitch(2, 1, 36, 5, 2); }),
              "[VLK-API] wlan_setChannelSwitch wlan_setChannelSwitch: wlan_setChannelSwitch entered\n"
              "Command is iwpriv ath1 doth_ch_chwidth 36 5 2\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwpriv ath1 doth_ch_chwidth 36 5 2\n");
}

struct IdleTimeout : ChannelSwitch {};

TEST_F(IdleTimeout, IsStoredAndThenGivenToTheDriver) {
    EXPECT_EQ(wlan_setIdleTimeout(3, 300), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_INACT_3=300", "iwpriv ath2 inact 300"}));
}

TEST_F(IdleTimeout, IsSetForEveryIndexThatIsNotNegative) {
    for (int index : {1, 16, 17}) {
        EXPECT_EQ(wlan_setIdleTimeout(index, 60), 0) << "index " << index;
    }
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_INACT=60", "iwpriv ath0 inact 60", "cfg -a AP_INACT_16=60",
                                   "iwpriv ath15 inact 60", "cfg -a AP_INACT_17=60", "iwpriv ath16 inact 60"}));
}

TEST_F(IdleTimeout, OfIndexZeroIsTheBareKeyAndAnInterfaceThatIsNotThere) {
    write_store({"AP_INACT=77"});
    EXPECT_EQ(wlan_setIdleTimeout(0, 60), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_INACT=60", "iwpriv ath-1 inact 60"}));
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 0), 77);
}

TEST_F(IdleTimeout, MayBeAnyNumber) {
    EXPECT_EQ(wlan_setIdleTimeout(1, INT_MIN), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_INACT=-2147483648", "iwpriv ath0 inact -2147483648"}));
}

TEST_F(IdleTimeout, ANegativeIndexIsRefusedBeforeAnythingIsDone) {
    write_store({"AP_INACT=77"});
    for (int index : {-1, INT_MIN}) {
        u_int seconds = UNTOUCHED;
        EXPECT_EQ(wlan_setIdleTimeout(index, 60), -1) << "index " << index;
        EXPECT_EQ(wlan_getIdleTimeout(index, &seconds), -1) << "index " << index;
        EXPECT_EQ(seconds, static_cast<u_int>(UNTOUCHED));
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(IdleTimeout, IsReadFromTheVapsOwnKey) {
    write_store({"AP_INACT_3=300", "AP_INACT=150", "AP_INACT_16=5", "AP_INACT_17=6"});
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 1), 150);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 3), 300);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 16), 5);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 17), 6);
}

TEST_F(IdleTimeout, ReadingFailsWhenNoneIsStored) {
    write_store({"AP_INACT_2="});
    for (int index : {1, 2}) {
        u_int seconds = UNTOUCHED;
        EXPECT_EQ(wlan_getIdleTimeout(index, &seconds), -1) << "index " << index;
        EXPECT_EQ(seconds, static_cast<u_int>(UNTOUCHED)) << "index " << index;
    }
}

TEST_F(IdleTimeout, TextThatIsNoNumberReadsAsZero) {
    write_store({"AP_INACT=never", "AP_INACT_2=12 s", "AP_INACT_3=" + std::string(1700, 'x'), "AP_INACT_4=-1"});
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 1), 0);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 2), 12);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 3), 0);
    EXPECT_EQ(number_of(wlan_getIdleTimeout, 4), -1);
}

TEST_F(IdleTimeout, ReadingIsLoggedWithTheStoredText) {
    write_store({"AP_INACT_3=300 s"});
    EXPECT_EQ(debug_lines([] { number_of(wlan_getIdleTimeout, 3); }),
              "[VLK-API] athcfg_getbyname index 2, Param: AP_INACT_3= is 300 s\n"
              "[VLK-API] wlan_getIdleTimeout wlan_getIdleTimeout: get AP_INACT 300 s\n");
}

TEST_F(IdleTimeout, ReadingWhatIsNotThereIsLoggedByTheStoreAlone) {
    EXPECT_EQ(debug_lines([] {
                  u_int seconds;
                  EXPECT_EQ(wlan_getIdleTimeout(1, &seconds), -1);
              }),
              "[VLK-API] getWifiParam AP_INACT= does not exist in /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index 0, Param: AP_INACT= is \n");
}

TEST_F(IdleTimeout, SettingIsDoneByCapturedCommands) {
    install_tool("iwpriv", "garbage\n", 1);
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_setIdleTimeout(3, 300), 0); }),
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 2, execute cmd: cfg -a AP_INACT_3=\"300\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_INACT_3=\"300\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwpriv ath2 inact 300\n");
}

TEST_F(IdleTimeout, SettingSucceedsWhenNoToolCanBeStarted) {
    begin_descriptor_shortage();
    int status = wlan_setIdleTimeout(1, 300);
    end_descriptor_shortage();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tool_calls(), calls{});
}

}  // namespace
