// Settings that are one number: scope, index check and absence each do what their names say.
#include "params/settings.h"

#include <gtest/gtest.h>
#include <limits.h>

#include <string>
#include <vector>

#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

struct Settings : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        write_store({"AP_RADIO_ID=1", "AP_RADIO_ID_2=0", "AP_RADIO_ID_10=1"});
    }
};

number_setting setting(setting_scope scope, setting_check check = ANY_INDEX, setting_absence absence = ABSENT_ZERO) {
    return {"KEY", scope, check, absence, QUIET};
}

int read_number(const number_setting &row, int index) {
    int value = UNTOUCHED;
    EXPECT_EQ(get_number(&row, "operation", index, &value), 0);
    return value;
}

calls written(const number_setting &row, int index, int value) {
    EXPECT_EQ(set_number(&row, index, value), 0);
    return tool_calls();
}

TEST_F(Settings, ADeviceWideKeyIsBareWhateverTheIndex) {
    write_store({"KEY=5", "KEY_2=6", "KEY_3=7"});
    EXPECT_EQ(read_number(setting(SCOPE_DEVICE), 3), 5);
    EXPECT_EQ(written(setting(SCOPE_DEVICE), 3, 8), (calls{"cfg -a KEY=8"}));
}

TEST_F(Settings, AVapHasAKeyOfItsOwn) {
    write_store({"KEY=5", "KEY_2=6", "KEY_3=7"});
    EXPECT_EQ(read_number(setting(SCOPE_VAP), 1), 5);
    EXPECT_EQ(read_number(setting(SCOPE_VAP), 3), 7);
    EXPECT_EQ(written(setting(SCOPE_VAP), 3, -8), (calls{"cfg -a KEY_3=-8"}));
}

TEST_F(Settings, ARadiosKeyFollowsTheVapsOwnRadio) {
    write_store({"AP_RADIO_ID=1", "AP_RADIO_ID_2=0", "AP_RADIO_ID_10=1", "KEY=11", "KEY_2=10"});
    EXPECT_EQ(read_number(setting(SCOPE_RADIO), 1), 11);
    EXPECT_EQ(read_number(setting(SCOPE_RADIO), 2), 10);
    EXPECT_EQ(read_number(setting(SCOPE_RADIO), 10), 11);
    EXPECT_EQ(read_number(setting(SCOPE_RADIO), 9), 10);
}

TEST_F(Settings, WritingForARadioUsesTheBareKeyForRadioOneOnly) {
    number_setting row = setting(SCOPE_RADIO);
    set_number(&row, 10, 1);
    set_number(&row, 2, 2);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a KEY=1", "cfg -a KEY_2=2"}));
}

calls group_calls(int first) {
    calls expected;
    for (int vap = first; vap < first + 8; vap++) {
        expected.push_back("cfg -a KEY" + (vap > 1 ? "_" + std::to_string(vap) : "") + "=1");
    }
    return expected;
}

TEST_F(Settings, AGroupIsWrittenToItsEightVapsInOrder) {
    EXPECT_EQ(written(setting(SCOPE_GROUP), 8, 1), group_calls(1));
}

TEST_F(Settings, TheGroupsMeetBetweenVapEightAndNine) {
    EXPECT_EQ(written(setting(SCOPE_GROUP), 9, 1), group_calls(9));
}

// VAP 1 is on radio 1 here.
TEST_F(Settings, TheGroupFollowsTheIndexAndNotTheRadio) {
    EXPECT_EQ(written(setting(SCOPE_GROUP), 1, 1), group_calls(1));
}

TEST_F(Settings, AGroupIsReadFromTheVapsOwnKey) {
    write_store({"KEY=5", "KEY_9=6", "KEY_10=7"});
    EXPECT_EQ(read_number(setting(SCOPE_GROUP), 10), 7);
}

TEST_F(Settings, ANegativeIndexIsRefusedWhereItIsChecked) {
    write_store({"KEY=5"});
    number_setting checked = setting(SCOPE_VAP, CHECK_INDEX);
    int value = UNTOUCHED;
    EXPECT_EQ(get_number(&checked, "operation", -1, &value), -1);
    EXPECT_EQ(get_number(&checked, "operation", INT_MIN, &value), -1);
    EXPECT_EQ(value, UNTOUCHED);
    EXPECT_EQ(set_number(&checked, -1, 1), -1);
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(Settings, IndexZeroPassesTheCheck) {
    write_store({"KEY=5"});
    EXPECT_EQ(read_number(setting(SCOPE_VAP, CHECK_INDEX), 0), 5);
    EXPECT_EQ(written(setting(SCOPE_VAP, CHECK_INDEX), 0, 6), (calls{"cfg -a KEY=6"}));
}

TEST_F(Settings, WithoutACheckANegativeIndexSelectsTheBareKey) {
    write_store({"KEY=5"});
    EXPECT_EQ(read_number(setting(SCOPE_VAP), INT_MIN), 5);
    EXPECT_EQ(written(setting(SCOPE_VAP), -1, 6), (calls{"cfg -a KEY=6"}));
}

TEST_F(Settings, AnAbsentNumberCanBeZero) {
    EXPECT_EQ(read_number(setting(SCOPE_VAP, ANY_INDEX, ABSENT_ZERO), 1), 0);
}

TEST_F(Settings, AnAbsentNumberCanLeaveTheOutputUntouched) {
    EXPECT_EQ(read_number(setting(SCOPE_VAP, ANY_INDEX, ABSENT_UNTOUCHED), 1), UNTOUCHED);
}

TEST_F(Settings, AnAbsentNumberCanBeAFailure) {
    number_setting row = setting(SCOPE_VAP, ANY_INDEX, ABSENT_FAILS);
    int value = UNTOUCHED;
    EXPECT_EQ(get_number(&row, "operation", 1, &value), -1);
    EXPECT_EQ(value, UNTOUCHED);
}

TEST_F(Settings, AnEmptyValueIsAbsent) {
    write_store({"KEY="});
    EXPECT_EQ(read_number(setting(SCOPE_VAP, ANY_INDEX, ABSENT_UNTOUCHED), 1), UNTOUCHED);
}

TEST_F(Settings, TextThatIsNoNumberReadsAsZero) {
    write_store({"KEY=on"});
    EXPECT_EQ(read_number(setting(SCOPE_VAP, ANY_INDEX, ABSENT_FAILS), 1), 0);
}

TEST_F(Settings, ALoggedGetterWritesKeyAndStoredTextWhileDebugging) {
    write_store({"KEY=5 apples"});
    number_setting row = {"KEY", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO, LOGGED};
    std::string out = debug_lines([&row] { read_number(row, 1); });
    EXPECT_NE(out.find("[VLK-API] operation operation: get KEY 5 apples\n"), std::string::npos) << out;
}

TEST_F(Settings, NothingIsLoggedAboutAnAbsentNumber) {
    number_setting row = {"KEY", SCOPE_VAP, CHECK_INDEX, ABSENT_ZERO, LOGGED};
    std::string out = debug_lines([&row] { read_number(row, 1); });
    EXPECT_EQ(out.find("operation"), std::string::npos) << out;
}

}  // namespace
