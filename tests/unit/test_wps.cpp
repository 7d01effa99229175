// WPS: what each operation reads, runs, writes and refuses.
#include "params/wps.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lifecycle/authenticator.h"
#include "server/records.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/wps_platform.h"

namespace {

const char RESTARTED[] = "[VLK-API] wps_hostapd_restart WPS hostapd restart\n";

// The debug line of a store read, with the key and what was found.
std::string read_line(int interface, const std::string &key, const std::string &value) {
    return "[VLK-API] athcfg_getbyname index " + std::to_string(interface) + ", Param: " + key + "= is " + value + "\n";
}

std::string run_line(const std::string &command) {
    return "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:" + command + "\n";
}

// VAPs 1, 2 and 9 have WPS files; nothing is in the store, and no authenticator has a configuration to start with.
struct Wps : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_wps_files();
        std::filesystem::remove(WPS_METHOD_FILE);
        std::filesystem::remove(CONFIGURATION_NAME_FILE);
        install_tool("cfg");
        install_tool("hostapd_cli", "OK\n");
        write_store({});
    }
};

// An operation that changes something returns this and runs these commands through the store's tool and others.
template <typename Operation>
void expect_calls(Operation operation, int status, const calls &expected) {
    size_t before = tool_calls().size();
    EXPECT_EQ(operation(), status);
    calls all = tool_calls();
    EXPECT_EQ(calls(all.begin() + static_cast<long>(before), all.end()), expected);
}

// A number getter that fails, and leaves this in its output.
template <typename Getter>
void expect_failing_number(Getter getter, int index, int left = UNTOUCHED) {
    int value = UNTOUCHED;
    EXPECT_EQ(getter(index, &value), -1) << "index " << index;
    EXPECT_EQ(value, left) << "index " << index;
}

// --- switch and mode ---

TEST_F(Wps, AnyValueOfOneOrMoreCountsAsOn) {
    write_store(
        {"WPS_ENABLE=0", "WPS_ENABLE_2=2", "WPS_ENABLE_3=1", "WPS_ENABLE_4=-1", "WPS_ENABLE_5=yes", "WPS_ENABLE_16=7"});
    EXPECT_EQ(number_of(wlan_getWpsEnable, 1), 0);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 2), 1);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 3), 1);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 4), 0);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 5), 0);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 16), 1);
    EXPECT_EQ(number_of(wlan_getWpsEnable, 6), 0) << "absent";
}

TEST_F(Wps, TheSwitchIsWrittenAsTwoOrZero) {
    expect_calls([] { return wlan_setWpsEnable(1, 1); }, 0, {"cfg -a WPS_ENABLE=2"});
    expect_calls([] { return wlan_setWpsEnable(9, 7); }, 0, {"cfg -a WPS_ENABLE_9=2"});
    expect_calls([] { return wlan_setWpsEnable(16, 0); }, 0, {"cfg -a WPS_ENABLE_16=0"});
}

TEST_F(Wps, TheSwitchTakesAnyIndex) {
    write_store({"WPS_ENABLE=2", "WPS_ENABLE_17=2"});
    for (int index : {INT_MIN, -1, 0, 17}) {
        EXPECT_EQ(number_of(wlan_getWpsEnable, index), 1) << index;
        std::string key = index == 17 ? "WPS_ENABLE_17" : "WPS_ENABLE";
        expect_calls([&] { return wlan_setWpsEnable(index, 1); }, 0, {"cfg -a " + key + "=2"});
    }
}

TEST_F(Wps, TheModeIsTheNumberInTheStore) {
    write_store({"WPS_ENABLE=2", "WPS_ENABLE_2=-5", "WPS_ENABLE_3=yes"});
    EXPECT_EQ(number_of(wlan_getWpsMode, 0), 2);
    EXPECT_EQ(number_of(wlan_getWpsMode, 1), 2);
    EXPECT_EQ(number_of(wlan_getWpsMode, 2), -5);
    EXPECT_EQ(number_of(wlan_getWpsMode, 3), 0);
    EXPECT_EQ(number_of(wlan_getWpsMode, 4), 0) << "absent";
}

TEST_F(Wps, TheModeIsWrittenAsTheSwitch) {
    expect_calls([] { return wlan_setWpsMode(2, 1); }, 0, {"cfg -a WPS_ENABLE_2=2"});
    expect_calls([] { return wlan_setWpsMode(0, 0); }, 0, {"cfg -a WPS_ENABLE=0"});
}

TEST_F(Wps, TheModeRefusesANegativeIndex) {
    for (int index : {-1, INT_MIN}) {
        EXPECT_EQ(debug_lines([&] { expect_failing_number(wlan_getWpsMode, index); }), "");
        EXPECT_EQ(debug_lines([&] { EXPECT_EQ(wlan_setWpsMode(index, 1), -1); }), "");
    }
}

TEST_F(Wps, TheModeIsLogged) {
    write_store({"WPS_ENABLE_3=2x"});
    EXPECT_EQ(debug_lines([] { number_of(wlan_getWpsMode, 3); }),
              read_line(2, "WPS_ENABLE_3", "2x") + "[VLK-API] wlan_getWpsMode wlan_getWpsMode: get  WpsMode 2x\n");
    EXPECT_TRUE(debug_lines([] { wlan_setWpsMode(3, 5); })
                    .starts_with("[VLK-API] wlan_setWpsMode wlan_setWpsMode: set  WpsMode 5\n"
                                 "[VLK-API] athcfg_setbyname athcfg_setbyname: index 2, execute cmd: "));
}

TEST_F(Wps, TheSwitchReadsAStoreValueOfTheGreatestLength) {
    write_store({"WPS_ENABLE=2" + std::string(1700, 'x')});
    EXPECT_EQ(number_of(wlan_getWpsEnable, 1), 1);
    EXPECT_EQ(number_of(wlan_getWpsMode, 1), 2);
}

// --- attributes of the WPS file ---

int registrar_uuid(int index, char *uuid, size_t size) {
    return wlan_getWpsRegistrarUuid(index, 77, uuid, size);
}

int registrar_name(int index, char *name, size_t size) {
    return wlan_getWpsRegistrarDeviceName(index, 77, name, size);
}

struct attribute_row {
    const char *attribute;
    int (*getter)(int, char *, size_t);
};

const attribute_row ATTRIBUTES[] = {
    {"friendly_name", wlan_getWpsDeviceName},
    {"uuid", wlan_getWpsUuid},
    {"uuid", registrar_uuid},
    {"device_name", registrar_name},
    {"model_name", wlan_getWpsModelName},
};

// Every VAP is enabled, as one of the attributes demands it.
void enable_vaps() {
    std::vector<std::string> lines = {"AP_ENABLE=1"};
    for (int index = 2; index <= 17; index++) {
        lines.push_back("AP_ENABLE_" + std::to_string(index) + "=1");
    }
    write_store(lines);
}

TEST_F(Wps, AnAttributeIsReadFromTheFileOfTheVap) {
    enable_vaps();
    for (const attribute_row &row : ATTRIBUTES) {
        for (int index : {1, 2, 9, 16, 17, 0, -1}) {
            write_file(wps_file(index - 1),
                       "other=1\n" + std::string(row.attribute) + "=of " + std::to_string(index) + "\nlast=2\n");
            EXPECT_EQ(text_of(row.getter, index), "of " + std::to_string(index)) << row.attribute;
        }
    }
}

// The whole command, since the search would find a part of the name as well.
TEST_F(Wps, AnAttributeIsSearchedForUnderItsWholeName) {
    enable_vaps();
    for (const attribute_row &row : ATTRIBUTES) {
        EXPECT_EQ(commands_of([&] {
                      text_buffer text;
                      row.getter(9, text.text, sizeof(text.text));
                  }),
                  (calls{std::string("cat /nvram/etc/wpa2/WSC_ath8.conf | grep ") + row.attribute}));
    }
    text_buffer text;
    EXPECT_EQ(commands_of([&] { wlan_getWpsDevicePassword(1, text.text, sizeof(text.text)); }),
              (calls{"cat /nvram/etc/wpa2/WSC_ath0.conf | grep ap_pin"}));
    EXPECT_EQ(commands_of([&] { wlan_getWpsSetupLockedState(1, text.text, sizeof(text.text)); }),
              (calls{"cat /nvram/etc/wpa2/WSC_ath0.conf | grep ap_setup_locked"}));
}

TEST_F(Wps, AnAttributeThatCannotBeReadIsFourZeroBytes) {
    enable_vaps();
    write_file(wps_file(1), "other=1\n");
    for (const attribute_row &row : ATTRIBUTES) {
        for (int index : {1, 2, 0, -1, INT_MIN}) {
            text_buffer text;
            EXPECT_EQ(row.getter(index, text.text, sizeof(text.text)), -1) << row.attribute << " " << index;
            EXPECT_TRUE(text.begins_with_zeros_only(4)) << row.attribute << " " << index;
        }
    }
}

TEST_F(Wps, AnAttributeThatIsEmptyIsNoFailure) {
    enable_vaps();
    for (const attribute_row &row : ATTRIBUTES) {
        write_file(wps_file(0), std::string(row.attribute) + "=\n");
        EXPECT_EQ(text_of(row.getter, 1), "") << row.attribute;
    }
}

TEST_F(Wps, AnAttributeIsCutToTheBuffer) {
    enable_vaps();
    for (const attribute_row &row : ATTRIBUTES) {
        write_file(wps_file(0), std::string(row.attribute) + "=" + std::string(20000, 'x') + "\n");
        EXPECT_EQ(text_of(row.getter, 1), std::string(TEXT_SIZE - 1, 'x')) << row.attribute;
        text_buffer text;
        EXPECT_EQ(row.getter(1, text.text, 3), 0);
        EXPECT_STREQ(text.text, "xx");
        EXPECT_EQ(text.text[3], '?');
    }
}

TEST_F(Wps, AnAttributeIsFourZeroBytesWhenTheShellCannotBeStarted) {
    write_file(wps_file(0), "uuid=1\nfriendly_name=2\ndevice_name=3\n");
    for (const attribute_row &row : ATTRIBUTES) {
        if (row.getter == wlan_getWpsModelName) {
            continue;  // the store cannot be read then either, and the VAP counts as off
        }
        text_buffer text;
        begin_descriptor_shortage();
        int status = row.getter(1, text.text, sizeof(text.text));
        end_descriptor_shortage();
        EXPECT_EQ(status, -1) << row.attribute;
        EXPECT_TRUE(text.begins_with_zeros_only(4)) << row.attribute;
    }
}

TEST_F(Wps, TheModelNameOfAVapThatIsOffIsRefusedUntouched) {
    write_file(wps_file(0), "model_name=x\n");
    for (const char *line : {"OTHER=1", "AP_ENABLE=0", "AP_ENABLE="}) {
        write_store({line});
        text_buffer text;
        EXPECT_EQ(commands_of([&] { EXPECT_EQ(wlan_getWpsModelName(1, text.text, sizeof(text.text)), -1); }), calls{});
        EXPECT_TRUE(text.is_untouched()) << line;
    }
}

// --- AP PIN ---

TEST_F(Wps, TheApPinIsThatOfTheFile) {
    write_file(wps_file(1), "ap_pin=12345670\n");
    write_store({"WSC_PIN_2=99999999"});
    EXPECT_EQ(text_of(wlan_getWpsDevicePassword, 2), "12345670");
}

TEST_F(Wps, AnEmptyApPinIsThatOfTheStore) {
    write_file(wps_file(1), "ap_pin=\n");
    write_store({"WSC_PIN_2=99999999"});
    EXPECT_EQ(text_of(wlan_getWpsDevicePassword, 2), "99999999");
}

TEST_F(Wps, AnApPinThatCannotBeReadIsThatOfTheStore) {
    write_store({"WSC_PIN=11111111", "WSC_PIN_16=99999999"});
    EXPECT_EQ(text_of(wlan_getWpsDevicePassword, 16), "99999999");
    for (int index : {1, 0, -1, INT_MIN}) {
        EXPECT_EQ(text_of(wlan_getWpsDevicePassword, index), "11111111") << index;
    }
}

TEST_F(Wps, AnApPinThatIsNowhereIsEmpty) {
    EXPECT_EQ(text_of(wlan_getWpsDevicePassword, 1), "");
    begin_descriptor_shortage();
    std::string pin = text_of(wlan_getWpsDevicePassword, 1);
    end_descriptor_shortage();
    EXPECT_EQ(pin, "");
}

TEST_F(Wps, TheApPinIsWrittenToTheStoreAlone) {
    write_file(wps_file(1), "ap_pin=1\n");
    expect_calls([] { return wlan_setWpsDevicePassword(2, "22222222"); }, 0, {"cfg -a WSC_PIN_2=22222222"});
    expect_calls([] { return wlan_setWpsDevicePassword(-1, "3"); }, 0, {"cfg -a WSC_PIN=3"});
    EXPECT_EQ(read_file(wps_file(1)), "ap_pin=1\n");
}

TEST_F(Wps, TheApPinIsNotEscaped) {
    EXPECT_EQ(commands_of([] { wlan_setWpsDevicePassword(1, "a$b\\\"`c"); }), (calls{"cfg -a WSC_PIN=\"a$b\\\"`c\""}));
}

// --- attributes that are written ---

struct attribute_setter {
    const char *attribute;
    int (*setter)(int, const char *);
};

const attribute_setter ATTRIBUTE_SETTERS[] = {
    {"uuid", wlan_setWpsUuid},
    {"model_name", wlan_setWpsModelName},
};

bool restarts(int (*setter)(int, const char *), int index, int status) {
    return contains(debug_lines([&] { EXPECT_EQ(setter(index, "new"), status); }), RESTARTED);
}

TEST_F(Wps, AnAttributeIsWrittenToTheFileOfTheVap) {
    write_store({"AP_ENABLE=1", "AP_ENABLE_9=1"});
    for (const attribute_setter &row : ATTRIBUTE_SETTERS) {
        for (int index : {1, 9, 0}) {
            write_file(wps_file(index - 1), "a=1\n" + std::string(row.attribute) + "=old\nb=2\n");
            EXPECT_EQ(row.setter(index, "new \"text\" %s"), 0) << row.attribute << " " << index;
            EXPECT_EQ(read_file(wps_file(index - 1)), "a=1\n" + std::string(row.attribute) + "=new \"text\" %s\nb=2\n");
        }
    }
}

TEST_F(Wps, AnAttributeRestartsTheAuthenticatorUnlessTheModeIsZero) {
    write_file(wps_file(0), "a=1\n");
    const struct {
        const char *line;
        bool restarted;
    } rows[] = {{"WPS_ENABLE=2", true},  {"WPS_ENABLE=1", true},   {"WPS_ENABLE=-1", true},
                {"WPS_ENABLE=0", false}, {"WPS_ENABLE=no", false}, {"WPS_ENABLE_2=2", false}};
    for (const attribute_setter &setter : ATTRIBUTE_SETTERS) {
        for (const auto &row : rows) {
            write_store({"AP_ENABLE=1", row.line});
            EXPECT_EQ(restarts(setter.setter, 1, 0), row.restarted) << setter.attribute << " " << row.line;
        }
    }
}

TEST_F(Wps, TheRestartComesBehindTheWriting) {
    write_file(wps_file(0), "a=1\n");
    write_store({"AP_ENABLE=1", "WPS_ENABLE=2"});
    for (const attribute_setter &row : ATTRIBUTE_SETTERS) {
        EXPECT_EQ(commands_of([&] { row.setter(1, "new"); }),
                  (calls{"ls /nvram/etc/wpa2 | grep ath0",
                         "rm /nvram/etc/wpa2/WSC_ath0.conf;mv /nvram/etc/wpa2/WSC_ath0.conf.tmp "
                         "/nvram/etc/wpa2/WSC_ath0.conf",
                         "/bin/ps | grep hostapd", "cat /tmp/conf_filename"}))
            << row.attribute;
    }
}

TEST_F(Wps, AFailedWritingIsReturnedAndTheAuthenticatorRestartedAllTheSame) {
    write_store({"AP_ENABLE=1", "WPS_ENABLE=2"});
    for (const attribute_setter &row : ATTRIBUTE_SETTERS) {
        EXPECT_TRUE(restarts(row.setter, 1, -1)) << row.attribute;
    }
}

TEST_F(Wps, AFailedWritingIsReturnedWithoutARestartToo) {
    write_store({"AP_ENABLE=1"});
    for (const attribute_setter &row : ATTRIBUTE_SETTERS) {
        EXPECT_FALSE(restarts(row.setter, 1, -1)) << row.attribute;
    }
}

TEST_F(Wps, TheUuidRefusesANegativeIndex) {
    write_store({"WPS_ENABLE=2"});
    for (int index : {-1, INT_MIN}) {
        EXPECT_EQ(debug_lines([&] { EXPECT_EQ(wlan_setWpsUuid(index, "new"), -1); }), "");
    }
}

TEST_F(Wps, TheModelNameIsWrittenForEnabledVapsOnly) {
    write_file(wps_file(1), "model_name=old\n");
    for (const char *line : {"OTHER=1", "AP_ENABLE_2=0"}) {
        write_store({line, "WPS_ENABLE_2=2"});
        EXPECT_FALSE(restarts(wlan_setWpsModelName, 2, -1)) << line;
        EXPECT_EQ(read_file(wps_file(1)), "model_name=old\n");
    }
    write_store({"AP_ENABLE_2=-1"});
    EXPECT_EQ(wlan_setWpsModelName(2, "new"), 0);
    EXPECT_EQ(read_file(wps_file(1)), "model_name=new\n");
}

TEST_F(Wps, TheModelNameTakesANegativeIndexOfAnEnabledVap) {
    write_store({"AP_ENABLE=1"});
    write_file(wps_file(-2), "model_name=old\n");
    EXPECT_EQ(wlan_setWpsModelName(-1, "new"), 0);
    EXPECT_EQ(read_file(wps_file(-2)), "model_name=new\n");
    EXPECT_EQ(wlan_setWpsModelName(INT_MIN, "new"), -1) << "no file";
}

// --- out of the box ---

TEST_F(Wps, OutOfTheBoxIsWrittenToTheFileAndRestarts) {
    for (int index : {1, 9, 0, -1}) {
        write_store({"WPS_ENABLE=2", "WPS_ENABLE_9=-1"});
        write_file(wps_file(index - 1), "wps_state=2\na=1\n");
        EXPECT_TRUE(contains(debug_lines([&] { EXPECT_EQ(wlan_setWpsOOB(index), 0); }), RESTARTED)) << index;
        EXPECT_EQ(read_file(wps_file(index - 1)), "wps_state=1\na=1\n") << index;
    }
}

TEST_F(Wps, OutOfTheBoxDoesNothingWhileWpsIsOff) {
    write_file(wps_file(0), "wps_state=2\n");
    for (const char *line : {"OTHER=1", "WPS_ENABLE=0", "WPS_ENABLE=off", "WPS_ENABLE_2=2"}) {
        write_store({line});
        EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setWpsOOB(1), 0); }), calls{}) << line;
    }
    EXPECT_EQ(read_file(wps_file(0)), "wps_state=2\n");
}

TEST_F(Wps, OutOfTheBoxSucceedsAndRestartsWithoutAFile) {
    write_store({"WPS_ENABLE=2"});
    for (int index : {1, INT_MIN}) {
        EXPECT_TRUE(contains(debug_lines([&] { EXPECT_EQ(wlan_setWpsOOB(index), 0); }), RESTARTED)) << index;
    }
}

TEST_F(Wps, OutOfTheBoxRestartsBehindTheWriting) {
    write_store({"WPS_ENABLE=2"});
    write_file(wps_file(0), "wps_state=2\n");
    EXPECT_EQ(commands_of([] { wlan_setWpsOOB(1); }).at(2), "/bin/ps | grep hostapd");
}

// --- what is always the same ---

TEST_F(Wps, SomeAnswersAreAlwaysTheSame) {
    for (int index : {1, 16, 17, 0, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(number_of(wlan_getWpsVersion, index), 2);
        EXPECT_EQ(text_of(wlan_getWpsConfigMethodsSupported, index), "Label,Display,PushButton,Keypad");
        EXPECT_EQ(text_of(wlan_getWpsLastConfigurationError, index), "NoError");
        EXPECT_EQ(number_of(wlan_getWpsRegistrarNumEntries, index), 1);
    }
}

TEST_F(Wps, FixedTextsAreCutToTheBuffer) {
    text_buffer text;
    EXPECT_EQ(wlan_getWpsConfigMethodsSupported(1, text.text, 4), 0);
    EXPECT_STREQ(text.text, "Lab");
    EXPECT_EQ(wlan_getWpsLastConfigurationError(1, text.text, 3), 0);
    EXPECT_STREQ(text.text, "No");
    EXPECT_EQ(text.text[4], '?');
}

TEST_F(Wps, RegistrarsCannotBeAddedRemovedOrSwitched) {
    for (int index : {1, 0, -1, INT_MIN}) {
        EXPECT_EQ(debug_lines([&] {
                      EXPECT_EQ(wlan_addWpsRegistrarEntry(index), 0);
                      EXPECT_EQ(wlan_delWpsRegistrarEntry(index), 0);
                      EXPECT_EQ(wlan_setWpsRegistrarEnabled(index, 1, 0), 0);
                  }),
                  "");
    }
}

TEST_F(Wps, TheRegistrarIsEstablished) {
    EXPECT_EQ(number_of(wlan_getWpsRegistrarEstablished, 0), 1);
    EXPECT_EQ(number_of(wlan_getWpsRegistrarEstablished, 17), 1);
}

TEST_F(Wps, TheRegistrarOfANegativeIndexIsSilentlyNotEstablished) {
    EXPECT_EQ(number_of(wlan_getWpsRegistrarEstablished, -1), UNTOUCHED);
    EXPECT_EQ(number_of(wlan_getWpsRegistrarEstablished, INT_MIN), UNTOUCHED);
}

int registrar_enabled(int index, int *enabled) {
    return wlan_getWpsRegistrarEnabled(index, 5, enabled);
}

TEST_F(Wps, TheRegistrarIsEnabledAndRefusesANegativeIndex) {
    EXPECT_EQ(number_of(registrar_enabled, 0), 1);
    EXPECT_EQ(number_of(registrar_enabled, 17), 1);
    expect_failing_number(registrar_enabled, -1);
    expect_failing_number(registrar_enabled, INT_MIN);
}

// --- configuration methods ---

TEST_F(Wps, TheMethodsEnabledAreNamedInAFixedOrder) {
    const struct {
        const char *stored;
        const char *words;
    } rows[] = {
        {"label", "Label"},
        {"display", "Display"},
        {"push_button virtual_push_button physical_push_button", "PushButton"},
        {"virtual_push_button", "PushButton"},
        {"keypad", "Keypad"},
        {"keypad push_button display label", "Label,Display,PushButton,Keypad"},
        {"label keypad", "Label,Keypad"},
        {"Label PUSH_BUTTON ethernet", ""},
        {"nodisplaylabels", "Label,Display"},
    };
    for (const auto &row : rows) {
        write_store({std::string("WPS_CONFIG_METHOD=") + row.stored});
        EXPECT_EQ(text_of(wlan_getWpsConfigMethodsEnabled, 1), row.words) << row.stored;
    }
}

TEST_F(Wps, TheMethodsAreReadUnderTheBareKeyWhateverTheIndex) {
    write_store({"WPS_CONFIG_METHOD_2=keypad", "WPS_CONFIG_METHOD=label", "WPS_CONFIG_METHOD_9=display"});
    for (int index : {1, 2, 9, 17, 0, -1, INT_MIN}) {
        EXPECT_EQ(text_of(wlan_getWpsConfigMethodsEnabled, index), "Label") << index;
    }
}

TEST_F(Wps, AbsentMethodsAreEmptyTextAndAFailure) {
    write_store({"WPS_CONFIG_METHOD_2=keypad"});
    text_buffer text;
    EXPECT_EQ(wlan_getWpsConfigMethodsEnabled(2, text.text, sizeof(text.text)), -1);
    EXPECT_TRUE(text.begins_with_zeros_only(1));
}

TEST_F(Wps, TheMethodsEnabledAreCutToTheBuffer) {
    write_store({"WPS_CONFIG_METHOD=label display push_button keypad" + std::string(1600, 'x')});
    text_buffer text;
    EXPECT_EQ(wlan_getWpsConfigMethodsEnabled(1, text.text, 8), 0);
    EXPECT_STREQ(text.text, "Label,D");
    EXPECT_EQ(text.text[8], '?');
}

struct methods_row {
    const char *words;
    const char *stored;
    const char *enable;
};

const char BUTTONS[] = "push_button virtual_push_button physical_push_button";

const methods_row METHODS_ROWS[] = {
    {"Label", "label", "0"},
    {"Display", "display", "2"},
    {"PushButton", BUTTONS, "2"},
    {"Keypad", "keypad", "0"},
    {"Label,Keypad", "label keypad", "0"},
    {"Keypad,Label", "label keypad", "0"},
    {"Label,Display", "label display", "2"},
    {"Keypad PushButton", "push_button virtual_push_button physical_push_button keypad", "2"},
    {"Keypad,PushButton,Display,Label", "label display push_button virtual_push_button physical_push_button keypad",
     "2"},
    {"xxLabelxx", "label", "0"},
    {"LabelLabelLabel", "label", "0"},
};

TEST_F(Wps, TheMethodsAreWrittenTogetherWithTheSwitchOfTheFirstVaps) {
    for (const methods_row &row : METHODS_ROWS) {
        for (int index : {1, 5, 9, -1, INT_MIN}) {
            expect_calls(
                [&] { return wlan_setWpsConfigMethodsEnabled(index, row.words); }, 0,
                {std::string("cfg -a WPS_CONFIG_METHOD=") + row.stored, std::string("cfg -a WPS_ENABLE=") + row.enable,
                 std::string("cfg -a WPS_ENABLE_9=") + row.enable});
            EXPECT_EQ(read_file(WPS_METHOD_FILE), std::string(row.stored) + "\n");
        }
    }
}

TEST_F(Wps, MethodsWithoutAKnownWordChangeNothing) {
    for (const std::string &words : {std::string(), std::string("None"), std::string("label,display,pushbutton"),
                                     std::string("Push Button"), std::string(8000, 'L')}) {
        expect_calls([&] { return wlan_setWpsConfigMethodsEnabled(1, words.c_str()); }, 0, {});
        EXPECT_FALSE(std::filesystem::exists(WPS_METHOD_FILE));
    }
}

TEST_F(Wps, NothingOfTheMethodsTextReachesTheShellButItsWords) {
    expect_calls([] { return wlan_setWpsConfigMethodsEnabled(1, "Label\"; touch /tmp/x `id` $HOME"); }, 0,
                 {"cfg -a WPS_CONFIG_METHOD=label", "cfg -a WPS_ENABLE=0", "cfg -a WPS_ENABLE_9=0"});
    EXPECT_EQ(read_file(WPS_METHOD_FILE), "label\n");
}

TEST_F(Wps, ManyMethodsOfAnyLengthAreTaken) {
    std::string words;
    for (int i = 0; i < 500; i++) {
        words += "Keypad PushButton Display Label ";
    }
    EXPECT_EQ(wlan_setWpsConfigMethodsEnabled(1, words.c_str()), 0);
    EXPECT_EQ(read_file(WPS_METHOD_FILE),
              "label display push_button virtual_push_button physical_push_button keypad\n");
}

// The tool writes down what the method file holds at the time of each call.
TEST_F(Wps, TheMethodFileIsWrittenBetweenTheMethodsAndTheSwitch) {
    write_file(std::string(FAKE_TOOLS) + "/cfg", std::string("#!/bin/sh\nprintf '%s: %s\\n' \"$2\" \"$(cat ") +
                                                     WPS_METHOD_FILE + " 2>/dev/null)\" >>/tmp/fake_tools.calls\n");
    wlan_setWpsConfigMethodsEnabled(1, "Label");
    EXPECT_EQ(tool_calls(), (calls{"WPS_CONFIG_METHOD=label: ", "WPS_ENABLE=0: label", "WPS_ENABLE_9=0: label"}));
}

// --- setup lock ---

TEST_F(Wps, TheLockedStateIsTheNumberInTheFile) {
    const struct {
        std::string stored;
        const char *state;
    } rows[] = {{"0", "Unlocked"},
                {"", "Unlocked"},
                {"-1", "Unlocked"},
                {"no", "Unlocked"},
                {"1", "LockedByLocalManagement"},
                {"2", "LockedByLocalManagement"},
                {"1" + std::string(5000, ' '), "LockedByLocalManagement"}};
    for (const auto &row : rows) {
        write_file(wps_file(8), "ap_setup_locked=" + row.stored + "\n");
        EXPECT_EQ(text_of(wlan_getWpsSetupLockedState, 9), row.state) << row.stored.substr(0, 9);
    }
}

TEST_F(Wps, ALockedStateThatCannotBeReadIsFourZeroBytes) {
    write_file(wps_file(0), "other=1\n");
    for (int index : {1, 2, 0, -1, INT_MIN}) {
        text_buffer text;
        EXPECT_EQ(wlan_getWpsSetupLockedState(index, text.text, sizeof(text.text)), -1);
        EXPECT_TRUE(text.begins_with_zeros_only(4));
    }
}

TEST_F(Wps, TheLockIsAFlagInTheStore) {
    write_store({"AP_SETUP_LOCKED=1", "AP_SETUP_LOCKED_2=7", "AP_SETUP_LOCKED_3=0", "AP_SETUP_LOCKED_4=-3",
                 "AP_SETUP_LOCKED_5=x"});
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, 1), 1);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, 2), 1);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, 3), 0);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, 4), 0);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, 5), 0);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, -1), 1);
    EXPECT_EQ(number_of(wlan_getWpsSetupLock, INT_MIN), 1);
}

TEST_F(Wps, AnAbsentLockIsZeroAndAFailure) {
    write_store({"AP_SETUP_LOCKED_2="});
    for (int index : {1, 2, 17, INT_MIN}) {
        expect_failing_number(wlan_getWpsSetupLock, index, 0);
    }
}

TEST_F(Wps, TheLockIsWrittenAsItCame) {
    expect_calls([] { return wlan_setWpsSetupLock(1, 1); }, 0, {"cfg -a AP_SETUP_LOCKED=1"});
    expect_calls([] { return wlan_setWpsSetupLock(9, 0); }, 0, {"cfg -a AP_SETUP_LOCKED_9=0"});
    expect_calls([] { return wlan_setWpsSetupLock(-1, -7); }, 0, {"cfg -a AP_SETUP_LOCKED=-7"});
}

// --- configuration state ---

struct state_row {
    const char *output;
    const char *state;  // null when the output stays untouched
};

const state_row STATES[] = {
    {"bssid=02:00:00:00:00:01\nwps_state=configured\n", "Configured"},
    {"wps_state=not configured\npassphrase=x\n", "Not configured"},
    {"ssid=configured\n", "Not configured"},
    {"", "Not configured"},
    {"not configured\nwps_state=configured\n", "Configured"},
    {"wps_state=configured\nnot configured\n", "Not configured"},
    {"wps_state=\nconfigured", "Configured"},
    {"wps_state=disabled\nssid=x\n", nullptr},
    {"configured wps_state=2", nullptr},
    {"wps_state=disabled\nwps_state=configured\n", "Configured"},
};

TEST_F(Wps, TheConfigurationStateIsWhatTheAuthenticatorSaysBehindItsName) {
    for (const state_row &row : STATES) {
        install_tool("hostapd_cli", row.output);
        text_buffer text;
        std::string lines =
            debug_lines([&] { EXPECT_EQ(wlan_getWpsConfigurationState(1, text.text, sizeof(text.text)), 0); });
        EXPECT_EQ(lines, run_line("hostapd_cli -i ath0 get_config") +
                             "[VLK-API] wlan_getWpsConfigurationState wlan_getWpsConfigurationState: " +
                             (row.state ? row.state : "") + "\n");
        if (row.state) {
            EXPECT_STREQ(text.text, row.state) << row.output;
        } else {
            EXPECT_TRUE(text.is_untouched()) << row.output;
        }
    }
}

// --- what the authenticator says of an exchange ---

struct query_row {
    const char *name;
    int (*getter)(int, char *, size_t);
    const char *action;
};

const query_row STATUS_QUERIES[] = {
    {"wlan_getWpsStatus", wlan_getWpsStatus, "wps_status"},
    {"wlan_getWpsResultStatus", wlan_getWpsResultStatus, "wps_status"},
};

const query_row QUERIES[] = {
    STATUS_QUERIES[0],
    STATUS_QUERIES[1],
    {"wlan_getWpsConfigurationState", wlan_getWpsConfigurationState, "get_config"},
};

TEST_F(Wps, AQueryHasABlankBeforeTheInterface) {
    for (const query_row &row : QUERIES) {
        for (int index : {0, 1, 9, 16, 17}) {
            text_buffer text;
            expect_calls([&] { return row.getter(index, text.text, sizeof(text.text)); }, 0,
                         {"hostapd_cli -i ath" + std::to_string(index - 1) + " " + row.action});
        }
    }
}

TEST_F(Wps, AQueryRefusesANegativeIndex) {
    for (const query_row &row : QUERIES) {
        for (int index : {-1, INT_MIN}) {
            text_buffer text;
            EXPECT_EQ(debug_lines([&] { EXPECT_EQ(row.getter(index, text.text, sizeof(text.text)), -1); }), "");
            EXPECT_TRUE(text.is_untouched()) << row.name;
        }
    }
}

TEST_F(Wps, AQueryFailsWhenTheShellCannotBeStarted) {
    for (const query_row &row : QUERIES) {
        text_buffer text;
        begin_descriptor_shortage();
        int status = row.getter(1, text.text, sizeof(text.text));
        end_descriptor_shortage();
        EXPECT_EQ(status, -1) << row.name;
        EXPECT_TRUE(text.is_untouched()) << row.name;
    }
}

TEST_F(Wps, TheStatusIsAllThatTheAuthenticatorSays) {
    const char said[] = "PBC Status: Active\nLast WPS result: None\n\n";
    install_tool("hostapd_cli", said);
    for (const query_row &row : STATUS_QUERIES) {
        EXPECT_EQ(text_of(row.getter, 1), said) << row.name;
    }
}

TEST_F(Wps, TheStatusOfASilentAuthenticatorIsEmpty) {
    install_tool("hostapd_cli");
    for (const query_row &row : STATUS_QUERIES) {
        EXPECT_EQ(text_of(row.getter, 1), "") << row.name;
    }
}

TEST_F(Wps, TheStatusIsCutToWhatAResultHolds) {
    install_tool("hostapd_cli", std::string(20000, 'x'));
    for (const query_row &row : STATUS_QUERIES) {
        char text[RESULT_DATA_SIZE];
        EXPECT_EQ(row.getter(1, text, sizeof(text)), 0);
        EXPECT_EQ(text, std::string(RESULT_DATA_SIZE - 1, 'x')) << row.name;
    }
}

TEST_F(Wps, TheStatusQueryIsLoggedBeforeItIsRun) {
    for (const query_row &row : STATUS_QUERIES) {
        text_buffer text;
        EXPECT_EQ(debug_lines([&] { row.getter(3, text.text, sizeof(text.text)); }),
                  std::string("[VLK-API] ") + row.name + " " + row.name + " : cmd = hostapd_cli -i ath2 wps_status \n" +
                      run_line("hostapd_cli -i ath2 wps_status"));
    }
}

// --- exchanges ---

int enrollee_pin(int index) {
    return wlan_setWpsEnrolleePin(index, "12345670");
}

int pin_start(int index) {
    return wlan_setWpsPinStart(index, "12345670");
}

enum index_check {
    INDEX_FIRST,
    INDEX_LAST,
};

struct action_row {
    const char *name;
    int (*action)(int);
    const char *words;
    index_check check;
    bool logs_command;
};

const action_row ACTIONS[] = {
    {"wlan_setWpsPbcTrigger", wlan_setWpsPbcTrigger, "wps_pbc", INDEX_LAST, true},
    {"wlan_setWpsPushButton", wlan_setWpsPushButton, "wps_pbc", INDEX_FIRST, true},
    {"wlan_setWpsEnrolleePin", enrollee_pin, "wps_pin any 12345670", INDEX_LAST, true},
    {"wlan_setWpsPinStart", pin_start, "wps_pin any 12345670", INDEX_FIRST, true},
    {"wlan_setWpsCancel", wlan_setWpsCancel, "wps_cancel", INDEX_FIRST, false},
};

// WPS is on and the VAP enabled, for VAPs 1 (and all that use its keys), 9, 16 and 17.
void switch_on() {
    write_store({"AP_ENABLE=1", "WPS_ENABLE=2", "AP_ENABLE_9=1", "WPS_ENABLE_9=1", "AP_ENABLE_16=1", "WPS_ENABLE_16=2",
                 "AP_ENABLE_17=1", "WPS_ENABLE_17=2"});
}

TEST_F(Wps, AnActionHasNoBlankBeforeTheInterface) {
    switch_on();
    for (const action_row &row : ACTIONS) {
        for (int index : {0, 1, 9, 16, 17}) {
            expect_calls([&] { return row.action(index); }, 0,
                         {"hostapd_cli -iath" + std::to_string(index - 1) + " " + row.words});
        }
    }
}

TEST_F(Wps, AnActionOfAVapThatIsOffRunsNothing) {
    for (const char *line : {"OTHER=1", "AP_ENABLE=0"}) {
        write_store({line, "WPS_ENABLE=2"});
        for (const action_row &row : ACTIONS) {
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.action(1), -1); }), calls{}) << row.name;
        }
    }
}

TEST_F(Wps, AnActionWithWpsOffRunsNothing) {
    for (const char *line : {"OTHER=1", "WPS_ENABLE=0", "WPS_ENABLE=-1"}) {
        write_store({line, "AP_ENABLE=1"});
        for (const action_row &row : ACTIONS) {
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.action(1), -1); }), calls{}) << row.name << " " << line;
        }
    }
}

TEST_F(Wps, AnActionReadsTheTwoFlagsInOrder) {
    switch_on();
    std::string enable = "[VLK-API] wlan_getEnable wlan_getEnable: wlan_getEnable entered\n";
    for (const action_row &row : ACTIONS) {
        EXPECT_TRUE(debug_lines([&] {
                        row.action(9);
                    }).starts_with(enable + read_line(8, "AP_ENABLE_9", "1") + read_line(8, "WPS_ENABLE_9", "1")))
            << row.name;
        write_store({});
        EXPECT_EQ(debug_lines([&] { row.action(9); }),
                  enable + "[VLK-API] getWifiParam AP_ENABLE_9= does not exist in /tmp/.apcfg\n" +
                      read_line(8, "AP_ENABLE_9", ""))
            << row.name;
        switch_on();
    }
}

// The two older forms read the flags before they refuse a negative index.
TEST_F(Wps, AnActionRefusesANegativeIndexBeforeOrBehindTheFlags) {
    switch_on();
    for (const action_row &row : ACTIONS) {
        for (int index : {-1, INT_MIN}) {
            std::string lines = debug_lines([&] { EXPECT_EQ(row.action(index), -1); });
            EXPECT_EQ(contains(lines, "AP_ENABLE= is 1"), row.check == INDEX_LAST) << row.name;
            EXPECT_EQ(contains(lines, "WPS_ENABLE= is 2"), row.check == INDEX_LAST) << row.name;
            EXPECT_FALSE(contains(lines, "cmd:")) << row.name;
        }
    }
}

TEST_F(Wps, AnActionSucceedsWhenTheAnswerContainsOk) {
    switch_on();
    const struct {
        const char *answer;
        int status;
    } rows[] = {
        {"OK\n", 0},   {"Selected interface\nOK", 0}, {"NOT OK AT ALL", 0}, {"FAIL\n", -1}, {"", -1}, {"ok\n", -1},
        {"O K\n", -1}, {"\x01\xff%s%n", -1}};
    for (const action_row &row : ACTIONS) {
        for (const auto &answer : rows) {
            install_tool("hostapd_cli", answer.answer, answer.status == 0 ? 1 : 0);
            EXPECT_EQ(row.action(1), answer.status) << row.name << " " << answer.answer;
        }
    }
}

TEST_F(Wps, AnActionFailsWithoutTheTool) {
    switch_on();
    std::filesystem::remove(std::string(FAKE_TOOLS) + "/hostapd_cli");
    for (const action_row &row : ACTIONS) {
        capture([&] { EXPECT_EQ(row.action(1), -1) << row.name; });
    }
}

// One descriptor can be opened in this process: enough for the store, whose lock is a directory here and is done
// without, and one too few for a pipe.
template <typename Block>
void with_one_descriptor(Block block) {
    std::filesystem::create_directory(STORE_LOCK_FILE);
    rlimit limit;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    int free_descriptor = dup(STDIN_FILENO);
    close(free_descriptor);
    rlimit one_more = {static_cast<rlim_t>(free_descriptor) + 1, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &one_more), 0);
    block();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

TEST_F(Wps, AnActionThatCannotBeRunFailsAndIsNotLoggedAsExecuted) {
    switch_on();
    for (const action_row &row : ACTIONS) {
        std::string lines = debug_lines([&] { with_one_descriptor([&] { EXPECT_EQ(row.action(1), -1); }); });
        std::string command = std::string("hostapd_cli -iath0 ") + row.words;
        EXPECT_TRUE(lines.ends_with(run_line(command) + "[VLK-API] athcfg_executecmd " + row.name + ": popen " +
                                    command + " error\n"))
            << lines;
    }
}

TEST_F(Wps, TheCommandOfAStartIsLoggedWhateverTheAnswer) {
    switch_on();
    for (const char *answer : {"OK\n", "FAIL\n"}) {
        install_tool("hostapd_cli", answer);
        for (const action_row &row : ACTIONS) {
            std::string command = std::string("hostapd_cli -iath0 ") + row.words;
            std::string lines = debug_lines([&] { row.action(1); });
            bool logged = lines.ends_with(run_line(command) + "[VLK-API] " + row.name + " " + row.name +
                                          ": executed WPS command " + command + "\n");
            EXPECT_EQ(logged, row.logs_command) << lines;
        }
    }
}

TEST_F(Wps, ACancelIsLoggedWithItsOutcome) {
    switch_on();
    std::string command = run_line("hostapd_cli -iath0 wps_cancel");
    EXPECT_TRUE(debug_lines([] {
                    wlan_setWpsCancel(1);
                }).ends_with(command + "[VLK-API] wlan_setWpsCancel wlan_setWpsCancel: wps cancel success\n"));
    install_tool("hostapd_cli", "FAIL\n");
    EXPECT_TRUE(debug_lines([] {
                    wlan_setWpsCancel(1);
                }).ends_with(command + "[VLK-API] wlan_setWpsCancel wlan_setWpsCancel: wps cancel fail\n"));
}

TEST_F(Wps, APinGoesToTheShellAsItStands) {
    switch_on();
    for (const auto &setter : {wlan_setWpsEnrolleePin, wlan_setWpsPinStart}) {
        EXPECT_EQ(commands_of([&] { setter(1, "1234 %s%n \"x\" 'y'"); }),
                  (calls{"hostapd_cli -iath0 wps_pin any 1234 %s%n \"x\" 'y'"}));
        EXPECT_EQ(commands_of([&] { setter(1, ""); }), (calls{"hostapd_cli -iath0 wps_pin any "}));
        std::string pin(20000, '1');
        EXPECT_EQ(commands_of([&] { setter(1, pin.c_str()); }), (calls{"hostapd_cli -iath0 wps_pin any " + pin}));
    }
}

// --- timeout ---

TEST_F(Wps, TheTimeoutIsReadUnderTheBareKeyWhateverTheIndex) {
    write_store({"AP_WPS_TIMEOUT_2=9", "AP_WPS_TIMEOUT=120", "AP_WPS_TIMEOUT_9=8"});
    for (int index : {0, 1, 2, 9, 17}) {
        EXPECT_EQ(number_of(wlan_getWpsConfigTimeout, index), 120) << index;
    }
}

TEST_F(Wps, TheTimeoutThatIsNoNumberIsZero) {
    write_store({"AP_WPS_TIMEOUT=soon"});
    EXPECT_EQ(number_of(wlan_getWpsConfigTimeout, 1), 0);
}

TEST_F(Wps, AnAbsentTimeoutIsAFailure) {
    write_store({"AP_WPS_TIMEOUT_2=9"});
    for (int index : {0, 1, 2}) {
        u_int timeout = UNTOUCHED;
        EXPECT_EQ(wlan_getWpsConfigTimeout(index, &timeout), -1);
        EXPECT_EQ(timeout, static_cast<u_int>(UNTOUCHED));
    }
}

TEST_F(Wps, TheTimeoutIsWrittenUnderTheBareKeyWhateverTheIndex) {
    for (int index : {0, 1, 2, 9, 17}) {
        expect_calls([&] { return wlan_setWpsConfigTimeout(index, 120); }, 0, {"cfg -a AP_WPS_TIMEOUT=120"});
    }
    expect_calls([] { return wlan_setWpsConfigTimeout(1, UINT_MAX); }, 0, {"cfg -a AP_WPS_TIMEOUT=-1"});
}

TEST_F(Wps, TheTimeoutRefusesANegativeIndex) {
    write_store({"AP_WPS_TIMEOUT=120"});
    for (int index : {-1, INT_MIN}) {
        u_int timeout = UNTOUCHED;
        EXPECT_EQ(debug_lines([&] {
                      EXPECT_EQ(wlan_getWpsConfigTimeout(index, &timeout), -1);
                      EXPECT_EQ(wlan_setWpsConfigTimeout(index, 5), -1);
                  }),
                  "");
        EXPECT_EQ(timeout, static_cast<u_int>(UNTOUCHED));
    }
}

// The line names another key, see the sources.
TEST_F(Wps, TheTimeoutIsLoggedUnderAnotherName) {
    write_store({"AP_WPS_TIMEOUT=120"});
    EXPECT_EQ(debug_lines([] { number_of(wlan_getWpsConfigTimeout, 5); }),
              read_line(-1, "AP_WPS_TIMEOUT", "120") +
                  "[VLK-API] wlan_getWpsConfigTimeout wlan_getWpsConfigTimeout: get AP_APBRI 120\n");
}

// --- a store and tools that fail ---

TEST_F(Wps, SettersOfTheStoreSucceedEvenWhenTheToolCannotBeStarted) {
    begin_descriptor_shortage();
    int statuses[] = {wlan_setWpsEnable(1, 1), wlan_setWpsMode(1, 1), wlan_setWpsDevicePassword(1, "1"),
                      wlan_setWpsSetupLock(1, 1), wlan_setWpsConfigTimeout(1, 1)};
    end_descriptor_shortage();
    for (int status : statuses) {
        EXPECT_EQ(status, 0);
    }
}

}  // namespace
