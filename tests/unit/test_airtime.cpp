// Airtime fairness: the switch of each radio.
#include "steering/airtime.h"

#include <gtest/gtest.h>
#include <limits.h>

#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct Airtime : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        write_store({});
    }
};

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

TEST_F(Airtime, NothingIsPrintedWhileDebuggingIsOff) {
    write_store({"AP_ENABLE_ATF=1"});
    printed_text printed = capture([] {
        number_of(wlan_getAirtimeEnable, 9);
        wlan_setAirtimeEnable(9, 1);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
