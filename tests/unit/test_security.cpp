// Security: what each operation reads, writes and refuses, in the clients' words and the driver's.
#include "params/security.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "config/store.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

using lines = std::vector<std::string>;

// A gateway whose VAPs 1 and 3 are on radio 1 and whose other VAPs are on radio 0.
struct Security : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        store({});
    }

    static void store(lines settings) {
        for (const char *line : {"AP_RADIO_ID=1", "AP_RADIO_ID_2=0", "AP_RADIO_ID_3=1"}) {
            settings.emplace_back(line);
        }
        write_store(settings);
    }
};

// The key of a setting as the store has it for this index.
std::string stored_key(const std::string &key, int index) {
    return index < 2 ? key : key + "_" + std::to_string(index);
}

const int INDEXES[] = {INT_MIN, -1, 0, 1, 2, 8, 9, 16, 17, INT_MAX};

// As long as a value of this key can be in a line of the store.
std::string longest_value(const std::string &key, const std::string &end) {
    return std::string(STORE_VALUE_SIZE - 1 - key.size() - 1 - end.size(), 'x') + end;
}

// --- basic encryption modes ---

TEST_F(Security, BasicEncryptionModesFollowFromTheSecurityMode) {
    struct {
        const char *secmode;
        const char *modes;
    } rows[] = {
        {"WEP", "WEPEncryption"},
        {"None", "None"},
        {"WPA", "NOTWEP"},
        {"", "NOTWEP"},
        {"None and WEP", "WEPEncryption"},
        {"wep", "NOTWEP"},
        {"none", "NOTWEP"},
        {"xWEPx", "WEPEncryption"},
        {"xNonex", "None"},
    };
    for (const auto &row : rows) {
        store({std::string("AP_SECMODE_2=") + row.secmode});
        EXPECT_EQ(text_of(wlan_getBasicEncryptionModes, 2), row.modes) << row.secmode;
    }
}

TEST_F(Security, SettingBasicEncryptionModesWritesWepOrNone) {
    struct {
        const char *modes;
        const char *secmode;
    } rows[] = {
        {"WEPEncryption", "WEP"}, {"xWEPEncryptionx", "WEP"}, {"None", "None"}, {"WEP", "None"},
        {"NOTWEP", "None"},       {"wepencryption", "None"},  {"", "None"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(commands_of([&row] { EXPECT_EQ(wlan_setBasicEncryptionModes(2, row.modes), 0); }),
                  (calls{std::string("cfg -a AP_SECMODE_2=\"") + row.secmode + "\""}))
            << row.modes;
    }
}

// --- basic authentication modes ---

TEST_F(Security, BasicAuthenticationModesFollowFromTheSecurityMode) {
    struct {
        const char *secmode;
        const char *secfile;
        const char *modes;
    } rows[] = {
        {"None", "EAP", "None"},
        {"WPA", "EAP", "EAPAuthentication"},
        {"WPA", "PSK", "None"},
        {"WPA", "", "None"},
        {"", "EAP", "EAPAuthentication"},
        {"WPA", "xEAPx", "EAPAuthentication"},
        {"WPA None", "EAP", "None"},
        {"WEP", "EAP", "None"},
        {"wep", "EAP", "EAPAuthentication"},
    };
    for (const auto &row : rows) {
        store({std::string("AP_SECMODE_2=") + row.secmode, std::string("AP_SECFILE_2=") + row.secfile});
        EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), row.modes) << row.secmode << " " << row.secfile;
    }
}

TEST_F(Security, AuthenticationOfAWepNetworkFollowsFromItsMode) {
    struct {
        const char *mode;
        const char *modes;
    } rows[] = {
        {"1", "None"},
        {"2", "SharedAuthentication"},
        {"4", "WepAutoAuthentication"},
        {"3", "None"},
        {"", "None"},
        {"24", "None"},
        {"42", "None"},
        {"None", "None"},
    };
    for (const auto &row : rows) {
        store({"AP_SECMODE_2=xWEPx", std::string("AP_WEP_MODE_0=") + row.mode});
        EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), row.modes) << row.mode;
    }
}

TEST_F(Security, NoneIsTestedBeforeWepWhenAuthenticationIsRead) {
    store({"AP_SECMODE_2=WEP None", "AP_WEP_MODE_0=2"});
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), "None");
}

TEST_F(Security, AuthenticationOfAWepNetworkWithoutAModeIsNone) {
    store({"AP_SECMODE_2=WEP"});
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), "None");
}

TEST_F(Security, AuthenticationOfAWepNetworkIsItsRadios) {
    store({"AP_SECMODE=WEP", "AP_SECMODE_2=WEP", "AP_SECMODE_3=WEP", "AP_WEP_MODE_0=2", "AP_WEP_MODE_1=4"});
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 1), "WepAutoAuthentication");
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), "SharedAuthentication");
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 3), "WepAutoAuthentication");
}

TEST_F(Security, AuthenticationIsReadFromTheBareKeyOnly) {
    store({"AP_SECMODE_2=WEP", "AP_WEP_MODE_0_2=2", "AP_WEP_MODE_0=4"});
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), "WepAutoAuthentication");
    store({"AP_SECMODE_2=WEP", "AP_WEP_MODE_0_2=2"});
    EXPECT_EQ(text_of(wlan_getBasicAuthenticationModes, 2), "None");
}

TEST_F(Security, AuthenticationWordsAreTriedInOrder) {
    struct {
        const char *modes;
        calls written;
    } rows[] = {
        {"None", {"cfg -a AP_SECMODE_2=\"None\""}},
        {"SharedAuthentication", {"cfg -a AP_WEP_MODE_0_2=\"2\""}},
        {"EAPAuthentication", {"cfg -a AP_SECFILE_2=\"EAP\""}},
        {"WepAutoAuthentication", {"cfg -a AP_SECMODE_2=\"WEP\"", "cfg -a AP_WEP_MODE_0=\"4\""}},
        {"WepAutoAuthentication EAPAuthentication SharedAuthentication None",
         {"cfg -a AP_SECMODE_2=\"WepAutoAuthentication EAPAuthentication SharedAuthentication None\""}},
        {"WepAutoAuthentication EAPAuthentication SharedAuthentication", {"cfg -a AP_WEP_MODE_0_2=\"2\""}},
        {"WepAutoAuthentication EAPAuthentication", {"cfg -a AP_SECFILE_2=\"EAP\""}},
        {"xWepAutoAuthenticationx", {"cfg -a AP_SECMODE_2=\"WEP\"", "cfg -a AP_WEP_MODE_0=\"4\""}},
        {"sharedauthentication", {}},
        {"none", {}},
        {"", {}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(commands_of([&row] { EXPECT_EQ(wlan_setBasicAuthenticationModes(2, row.modes), 0); }), row.written)
            << row.modes;
    }
}

// The driver's scripts take open and shared from the suffixed name, automatic from the bare one, on either radio.
TEST_F(Security, SharedAuthenticationLandsUnderTheSuffixedKeyAndAutomaticUnderTheBareOne) {
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(1, "SharedAuthentication"); }),
              (calls{"cfg -a AP_WEP_MODE_1_2=\"2\""}));
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(3, "WepAutoAuthentication"); }),
              (calls{"cfg -a AP_SECMODE_3=\"WEP\"", "cfg -a AP_WEP_MODE_1=\"4\""}));
}

TEST_F(Security, NoAuthenticationOnAWepNetworkOpensItUnderTheSuffixedKeyFirst) {
    store({"AP_SECMODE=WEP", "AP_SECMODE_2=xWEPx"});
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(1, "None"); }),
              (calls{"cfg -a AP_WEP_MODE_1_2=\"1\"", "cfg -a AP_SECMODE=\"None\""}));
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(2, "None"); }),
              (calls{"cfg -a AP_WEP_MODE_0_2=\"1\"", "cfg -a AP_SECMODE_2=\"None\""}));
}

TEST_F(Security, NoAuthenticationLooksAtTheVapsOwnSecurityMode) {
    store({"AP_SECMODE=WEP", "AP_SECMODE_2=WPA"});
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(2, "None"); }),
              (calls{"cfg -a AP_SECMODE_2=\"None\""}));
}

TEST_F(Security, NoAuthenticationStoresTheWholeTextAndDoesNotEscapeIt) {
    EXPECT_EQ(commands_of([] { wlan_setBasicAuthenticationModes(2, "x None$HOME\\y"); }),
              (calls{"cfg -a AP_SECMODE_2=\"x None$HOME\\y\""}));
    std::string text = "None" + std::string(5000, 'x');
    EXPECT_EQ(commands_of([&text] { wlan_setBasicAuthenticationModes(2, text.c_str()); }),
              (calls{"cfg -a AP_SECMODE_2=\"" + text + "\""}));
}

// --- WPA encryption modes ---

TEST_F(Security, WpaEncryptionModesFollowFromTheCipher) {
    struct {
        const char *cypher;
        const char *modes;
    } rows[] = {
        {"TKIP CCMP", "TKIPandAESEncryption"},
        {"CCMP TKIP", "TKIPandAESEncryption"},
        {"TKIP", "TKIPEncryption"},
        {"CCMP", "AESEncryption"},
        {"", "enc_none"},
        {"AES", "enc_none"},
        {"xCCMP TKIPx", "TKIPandAESEncryption"},
        {"CCMP  TKIP", "TKIPEncryption"},
        {"xTKIPx", "TKIPEncryption"},
        {"xTKIP CCMPx", "TKIPandAESEncryption"},
        {"xCCMPx", "AESEncryption"},
        {"tkip", "enc_none"},
    };
    for (const auto &row : rows) {
        store({std::string("AP_CYPHER_2=") + row.cypher});
        EXPECT_EQ(text_of(wlan_getWpaEncryptionModes, 2), row.modes) << row.cypher;
    }
}

TEST_F(Security, WpaEncryptionWordsAreTriedInOrder) {
    struct {
        const char *modes;
        const char *cypher;
    } rows[] = {
        {"TKIPandAESEncryption", "TKIP CCMP"},
        {"TKIPEncryption", "TKIP"},
        {"AESEncryption", "CCMP"},
        {"AESEncryption TKIPEncryption TKIPandAESEncryption", "TKIP CCMP"},
        {"AESEncryption TKIPEncryption", "TKIP"},
        {"xAESEncryptionx", "CCMP"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(commands_of([&row] { EXPECT_EQ(wlan_setWpaEncryptionModes(2, row.modes), 0); }),
                  (calls{std::string("cfg -a AP_CYPHER_2=\"") + row.cypher + "\""}))
            << row.modes;
    }
}

TEST_F(Security, AnUnknownWpaEncryptionIsRefusedAndWritesNothing) {
    for (const char *modes : {"", "TKIP", "CCMP", "enc_none", "aesencryption"}) {
        EXPECT_EQ(wlan_setWpaEncryptionModes(2, modes), -1) << modes;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(Security, AnUnknownWpaEncryptionIsLogged) {
    EXPECT_EQ(debug_lines([] { wlan_setWpaEncryptionModes(2, "100%s"); }),
              "[VLK-API] wlan_setWpaEncryptionModes wlan_setWpaEncryptionModes: unknown wpa encryption 100%s\n");
}

TEST_F(Security, AnUnknownWpaEncryptionPrintsNothingWithoutTheDebugSwitch) {
    printed_text printed = capture([] { wlan_setWpaEncryptionModes(2, "unknown"); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- WPA authentication modes ---

struct wpa_row {
    const char *word;
    const char *wpa;
    const char *secfile;
};

const wpa_row WPA_ROWS[] = {
    {"WPA1WPA2", "3", "EAP"},      {"WPA2", "2", "EAP"},    {"WPA", "1", "EAP"},
    {"WPAPSKWPA2PSK", "3", "PSK"}, {"WPA2PSK", "2", "PSK"}, {"WPAPSK", "1", "PSK"},
};

TEST_F(Security, WpaAuthenticationModesFollowFromGenerationAndKeyManagement) {
    for (const wpa_row &row : WPA_ROWS) {
        store({"AP_SECMODE_2=WPA", std::string("AP_WPA_2=") + row.wpa, std::string("AP_SECFILE_2=") + row.secfile});
        EXPECT_EQ(text_of(wlan_getWpaAuthenticationModes, 2), row.word);
    }
}

TEST_F(Security, OtherCombinationsLeaveTheWpaAuthenticationModesUntouched) {
    for (const lines &rest : {lines{"AP_WPA=0", "AP_SECFILE=EAP"}, lines{"AP_WPA=3", "AP_SECFILE=None"},
                              lines{"AP_WPA=3", "AP_SECFILE=EAP "}, lines{"AP_WPA=13", "AP_SECFILE=PSK"},
                              lines{"AP_WPA=3"}, lines{"AP_SECFILE=PSK"}, lines{}}) {
        lines settings = rest;
        settings.emplace_back("AP_SECMODE=WPA");
        store(settings);
        text_buffer modes;
        EXPECT_EQ(wlan_getWpaAuthenticationModes(1, modes.text, sizeof(modes.text)), 0);
        EXPECT_TRUE(modes.is_untouched()) << modes.text;
    }
}

TEST_F(Security, WithoutWpaTheAuthenticationModesAreWepOrNone) {
    struct {
        const char *secmode;
        const char *modes;
    } rows[] = {
        {"WEP", "WEPEncryption"}, {"None", "None"}, {"", "None"},     {"WPA2", "None"},
        {"xWEP", "None"},         {"WEPx", "None"}, {"xWPA", "None"}, {"wpa", "None"},
    };
    for (const auto &row : rows) {
        store({std::string("AP_SECMODE_2=") + row.secmode, "AP_WPA_2=3", "AP_SECFILE_2=EAP"});
        EXPECT_EQ(text_of(wlan_getWpaAuthenticationModes, 2), row.modes) << row.secmode;
    }
}

TEST_F(Security, SettingWpaAuthenticationModesWritesThreeKeysInOrder) {
    for (const wpa_row &row : WPA_ROWS) {
        EXPECT_EQ(commands_of([&row] { EXPECT_EQ(wlan_setWpaBasicAuthenticationModes(2, row.word), 0); }),
                  (calls{"cfg -a AP_SECMODE_2=\"WPA\"", std::string("cfg -a AP_WPA_2=\"") + row.wpa + "\"",
                         std::string("cfg -a AP_SECFILE_2=\"") + row.secfile + "\""}))
            << row.word;
    }
}

TEST_F(Security, WpaAuthenticationWordsAreComparedExactly) {
    for (const char *modes : {"", "wpa", "xWPA", "WPA2 ", "WPAPSKWPA2", "None", "WEPEncryption"}) {
        EXPECT_EQ(wlan_setWpaBasicAuthenticationModes(2, modes), 0) << modes;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

// --- WEP keys ---

TEST_F(Security, TheDefaultWepKeyIsTheRadios) {
    store({"AP_PRIMARY_KEY_0=2", "AP_PRIMARY_KEY_1=3", "AP_PRIMARY_KEY_0_2=4", "AP_PRIMARY_KEY_1_3=4"});
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 1), 3);
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 2), 2);
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 3), 3);
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 16), 2);
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, -1), 3);
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, INT_MIN), 3);
}

TEST_F(Security, ADefaultWepKeyThatIsAbsentOrNoNumberReadsAsZero) {
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 1), 0);
    store({"AP_PRIMARY_KEY_1=first"});
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 1), 0);
}

TEST_F(Security, TheDefaultWepKeyIsWrittenWithoutARangeCheck) {
    struct {
        int index;
        u_int key_index;
        const char *command;
    } rows[] = {
        {1, 1, "cfg -a AP_PRIMARY_KEY_1=\"1\""},          {2, 4, "cfg -a AP_PRIMARY_KEY_0=\"4\""},
        {3, 0, "cfg -a AP_PRIMARY_KEY_1=\"0\""},          {16, 5, "cfg -a AP_PRIMARY_KEY_0=\"5\""},
        {-1, UINT_MAX, "cfg -a AP_PRIMARY_KEY_1=\"-1\""}, {INT_MIN, 2, "cfg -a AP_PRIMARY_KEY_1=\"2\""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(commands_of([&row] { EXPECT_EQ(wlan_setWepKeyIndex(row.index, row.key_index), 0); }),
                  calls{row.command});
    }
}

std::string wep_key_of(int index, int key_index) {
    return text_of([key_index](int vap, char *key, size_t size) { return wlan_getWepKey(vap, key_index, key, size); },
                   index);
}

// Different keys on both radios; decoys under names that nothing may read.
const lines WEP_KEYS = {
    "WEP_RADIO_NUM0_KEY_1=zero-one",
    "WEP_RADIO_NUM0_KEY_2=zero-two",
    "WEP_RADIO_NUM0_KEY_3=zero-three",
    "WEP_RADIO_NUM0_KEY_4=zero-four",
    "WEP_RADIO_NUM1_KEY_1=one-one",
    "WEP_RADIO_NUM1_KEY_2=one-two",
    "WEP_RADIO_NUM1_KEY_3=one-three",
    "WEP_RADIO_NUM1_KEY_4=one-four",
    "AP_PRIMARY_KEY_0=4",
    "AP_PRIMARY_KEY_1=2",
    "WEP_RADIO_NUM0_KEY_0=decoy",
    "WEP_RADIO_NUM0_KEY_5=decoy",
    "WEP_RADIO_NUM0_KEY_1_2=decoy",
    "AP_PRIMARY_KEY_0_2=3",
};

TEST_F(Security, WepKeysOneToFourAreReadDirectly) {
    store(WEP_KEYS);
    EXPECT_EQ(wep_key_of(2, 1), "zero-one");
    EXPECT_EQ(wep_key_of(2, 2), "zero-two");
    EXPECT_EQ(wep_key_of(2, 3), "zero-three");
    EXPECT_EQ(wep_key_of(2, 4), "zero-four");
    EXPECT_EQ(wep_key_of(3, 1), "one-one");
    EXPECT_EQ(wep_key_of(-1, 4), "one-four");
}

TEST_F(Security, AnyOtherWepKeyIsTheDefaultOne) {
    store(WEP_KEYS);
    for (int key_index : {0, 5, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(wep_key_of(2, key_index), "zero-four") << key_index;
        EXPECT_EQ(wep_key_of(1, key_index), "one-two") << key_index;
    }
}

TEST_F(Security, ADefaultWepKeyOutOfRangeIsTakenAsItIs) {
    store({"WEP_RADIO_NUM1_KEY_0=zero", "WEP_RADIO_NUM0_KEY_-2147483648=lowest", "AP_PRIMARY_KEY_0=-2147483648"});
    EXPECT_EQ(wep_key_of(1, 5), "zero");
    EXPECT_EQ(wep_key_of(2, 5), "lowest");
}

TEST_F(Security, AWepKeyThatIsNotStoredIsTheNullKey) {
    EXPECT_EQ(wep_key_of(1, 1), "null_key");
    store({"WEP_RADIO_NUM1_KEY_1="});
    EXPECT_EQ(wep_key_of(1, 1), "null_key");
    EXPECT_EQ(text_of(wlan_getWepKeyPassphrase, 1), "null_key");
}

TEST_F(Security, AWepKeyIsWrittenVerbatimAndMarkedHexadecimal) {
    EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setWepKey(2, 3, "ke$y\\"), 0); }),
              (calls{"cfg -a WEP_RADIO_NUM0_KEY_3=\"ke$y\\\"", "cfg -a WEP_RADIO_NUM0_IS_HEX_3=\"1\""}));
    EXPECT_EQ(commands_of([] { EXPECT_EQ(wlan_setWepKey(3, 1, "abcde"), 0); }),
              (calls{"cfg -a WEP_RADIO_NUM1_KEY_1=\"abcde\"", "cfg -a WEP_RADIO_NUM1_IS_HEX_1=\"1\""}));
}

TEST_F(Security, AWepKeyOutsideOneToFourIsWrittenAsTheDefaultOne) {
    store({"AP_PRIMARY_KEY_0=4", "AP_PRIMARY_KEY_1=2"});
    for (int key_index : {0, 5, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(commands_of([key_index] { EXPECT_EQ(wlan_setWepKey(2, key_index, "k"), 0); }),
                  (calls{"cfg -a WEP_RADIO_NUM0_KEY_4=\"k\"", "cfg -a WEP_RADIO_NUM0_IS_HEX_4=\"1\""}))
            << key_index;
    }
}

TEST_F(Security, WepKeysOneAndFourAreWrittenDirectly) {
    store({"AP_PRIMARY_KEY_0=2"});
    EXPECT_EQ(commands_of([] { wlan_setWepKey(2, 1, "k"); }).front(), "cfg -a WEP_RADIO_NUM0_KEY_1=\"k\"");
    EXPECT_EQ(commands_of([] { wlan_setWepKey(2, 4, "k"); }).front(), "cfg -a WEP_RADIO_NUM0_KEY_4=\"k\"");
}

TEST_F(Security, AWepKeyOfAnyLengthIsWritten) {
    std::string key(5000, 'k');
    EXPECT_EQ(commands_of([&key] { wlan_setWepKey(1, 1, key.c_str()); }).front(),
              "cfg -a WEP_RADIO_NUM1_KEY_1=\"" + key + "\"");
}

TEST_F(Security, TheWepKeyThatIsReadIsLogged) {
    store(WEP_KEYS);
    EXPECT_EQ(debug_lines([] { wep_key_of(2, 7); }),
              "[VLK-API] athcfg_getbyname index 1, Param: AP_RADIO_ID_2= is 0\n"
              "[VLK-API] athcfg_get_radio athcfg_get_radio: index 2 => radio 0\n"
              "[VLK-API] athcfg_getbyname index 0, Param: AP_PRIMARY_KEY_0= is 4\n"
              "[VLK-API] wlan_getWepKey wlan_getWepKey: key_idx = 4\n"
              "[VLK-API] athcfg_getbyname index 0, Param: WEP_RADIO_NUM0_KEY_4= is zero-four\n");
}

TEST_F(Security, TheWepKeyThatIsWrittenIsLogged) {
    std::string printed = debug_lines([] { wlan_setWepKey(2, 3, "k"); });
    EXPECT_TRUE(contains(printed,
                         "[VLK-API] wlan_setWepKey wlan_setWepKey: key_idx = 3\n"
                         "[VLK-API] athcfg_setbyname athcfg_setbyname: index 0, execute cmd: "))
        << printed;
}

TEST_F(Security, TheWepPassphraseIsTheDefaultKey) {
    store(WEP_KEYS);
    EXPECT_EQ(text_of(wlan_getWepKeyPassphrase, 1), "one-two");
    EXPECT_EQ(text_of(wlan_getWepKeyPassphrase, 2), "zero-four");
    EXPECT_EQ(text_of(wlan_getWepKeyPassphrase, INT_MIN), "one-two");
}

TEST_F(Security, ReadingTheWepPassphraseLogsNoKeyIndex) {
    store(WEP_KEYS);
    EXPECT_FALSE(contains(debug_lines([] { text_of(wlan_getWepKeyPassphrase, 1); }), "key_idx"));
}

TEST_F(Security, SettingTheWepPassphraseIsAcceptedAndHasNoEffect) {
    for (int index : INDEXES) {
        EXPECT_EQ(wlan_setWepKeyPassphrase(index, "passphrase"), 0) << index;
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(Security, TheWepLevelFollowsFromTheLengthOfKeyOne) {
    for (size_t length = 0; length <= 40; length++) {
        store({"WEP_RADIO_NUM0_KEY_1=" + std::string(length, 'k'), "AP_PRIMARY_KEY_0=2",
               "WEP_RADIO_NUM0_KEY_2=0123456789abc", "WEP_RADIO_NUM1_KEY_1=0123456789abc"});
        bool strong = length == 26 || length == 13;
        EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, 2), strong ? "104-bit" : "40-bit") << length;
    }
}

TEST_F(Security, WithoutAKeyTheWepLevelIsFortyBits) {
    EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, 1), "40-bit");
}

TEST_F(Security, TheWepLevelIsTheRadios) {
    store({"WEP_RADIO_NUM1_KEY_1=0123456789abc"});
    EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, 3), "104-bit");
    EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, -1), "104-bit");
    EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, 2), "40-bit");
}

TEST_F(Security, SettingTheWepLevelHasNoEffectAndRefusesANegativeIndex) {
    EXPECT_EQ(wlan_setWepEncryptionLevel(INT_MIN, "104-bit"), -1);
    EXPECT_EQ(wlan_setWepEncryptionLevel(-1, "104-bit"), -1);
    EXPECT_EQ(wlan_setWepEncryptionLevel(0, "104-bit"), 0);
    EXPECT_EQ(wlan_setWepEncryptionLevel(1, "104-bit"), 0);
    EXPECT_EQ(wlan_setWepEncryptionLevel(17, "nonsense"), 0);
    EXPECT_EQ(tool_calls(), calls{});
}

// --- one number under one key ---

struct number_row {
    const char *name;
    int (*get)(int, int *);
    int (*set)(int, int);
    const char *key;
    bool checked;
};

int get_group_rekey(int index, int *value) {
    return wlan_getWPAGroupReAuthInterval(index, reinterpret_cast<u_int *>(value));
}

int set_group_rekey(int index, int value) {
    return wlan_setWPAGroupReAuthInterval(index, static_cast<u_int>(value));
}

int get_rekey(int index, int *value) {
    return wlan_getWPAReAuthInterval(index, reinterpret_cast<u_int *>(value));
}

int set_rekey(int index, int value) {
    return wlan_setWPAReAuthInterval(index, static_cast<u_int>(value));
}

const number_row NUMBERS[] = {
    {"group rekey", get_group_rekey, set_group_rekey, "AP_WPA_GROUP_REKEY", true},
    {"rekey", get_rekey, set_rekey, "AP_WPA_GROUP_REKEY", true},
    {"preauth", wlan_getWPAPreAuth, wlan_setWPAPreAuth, "AP_RSN_ENA_PREAUTH", true},
    {"radius port", wlan_getRadiusServerPort, wlan_setRadiusServerPort, "AP_AUTH_PORT", false},
    {"radius ipv6", wlan_getRadiusServerIPV6Enable, wlan_setRadiusServerIPV6Enable, "RADIUS_SERVER_IPV6", false},
    {"radius reauth", wlan_getRadiusReAuthInterval, wlan_setRadiusReAuthInterval, "AP_EAP_REAUTH_PER", false},
    {"acct port", wlan_getAcctServerPort, wlan_setAcctServerPort, "AP_ACCT_PORT", false},
    {"pmk caching", wlan_getRadiusServerPMKCaching, wlan_setRadiusServerPMKCaching, "AP_AUTH_PMK_CACHING", false},
    {"pmk lifetime", wlan_getRadiusServerPMKLifetime, wlan_setRadiusServerPMKLifetime, "AP_AUTH_PMK_LIFETIME", false},
};

TEST_F(Security, NumbersAreReadFromTheVapsOwnKey) {
    for (const number_row &row : NUMBERS) {
        std::string key = row.key;
        store({key + "=11", key + "_2=-12", key + "_16=16 tons", key + "_17=2147483647"});
        EXPECT_EQ(number_of(row.get, 0), 11) << row.name;
        EXPECT_EQ(number_of(row.get, 1), 11) << row.name;
        EXPECT_EQ(number_of(row.get, 2), -12) << row.name;
        EXPECT_EQ(number_of(row.get, 16), 16) << row.name;
        EXPECT_EQ(number_of(row.get, 17), 2147483647) << row.name;
    }
}

TEST_F(Security, NumbersThatAreNotStoredReadAsZero) {
    for (const number_row &row : NUMBERS) {
        store({std::string(row.key) + "_2=", std::string(row.key) + "_3=many"});
        EXPECT_EQ(number_of(row.get, 1), 0) << row.name;
        EXPECT_EQ(number_of(row.get, 2), 0) << row.name;
        EXPECT_EQ(number_of(row.get, 3), 0) << row.name;
    }
}

TEST_F(Security, NumbersAreWrittenUnderTheVapsOwnKey) {
    for (const number_row &row : NUMBERS) {
        for (int index : {0, 1, 2, 16, 17}) {
            for (int value : {0, 1, 3600, -1, INT_MIN, INT_MAX}) {
                EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.set(index, value), 0); }),
                          (calls{"cfg -a " + stored_key(row.key, index) + "=\"" + std::to_string(value) + "\""}))
                    << row.name;
            }
        }
    }
}

TEST_F(Security, CheckedNumbersRefuseANegativeIndexAndTouchNothing) {
    for (const number_row &row : NUMBERS) {
        if (!row.checked) {
            continue;
        }
        store({std::string(row.key) + "=11"});
        for (int index : {-1, INT_MIN}) {
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(index, &value), -1) << row.name;
            EXPECT_EQ(value, UNTOUCHED) << row.name;
            EXPECT_EQ(row.set(index, 5), -1) << row.name;
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(Security, OtherNumbersOfANegativeIndexAreTheBareKeys) {
    for (const number_row &row : NUMBERS) {
        if (row.checked) {
            continue;
        }
        store({std::string(row.key) + "=11"});
        for (int index : {-1, INT_MIN}) {
            EXPECT_EQ(number_of(row.get, index), 11) << row.name;
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.set(index, 5), 0); }),
                      (calls{std::string("cfg -a ") + row.key + "=\"5\""}))
                << row.name;
        }
    }
}

TEST_F(Security, ReadingANumberLogsNothingOfItsOwn) {
    for (const number_row &row : NUMBERS) {
        store({std::string(row.key) + "=5"});
        EXPECT_EQ(debug_lines([&row] { number_of(row.get, 1); }),
                  std::string("[VLK-API] athcfg_getbyname index 0, Param: ") + row.key + "= is 5\n");
    }
}

// --- one text under one key ---

struct text_row {
    const char *name;
    int (*get)(int, char *, size_t);
    int (*set)(int, const char *);
    const char *key;
    const char *absent;
    bool escaped;
};

// The number of a pre-shared key is ignored: here it is always one that names nothing.
int get_pre_shared_key(int index, char *text, size_t size) {
    return wlan_getPreSharedKey(index, INT_MIN, text, size);
}

int set_pre_shared_key(int index, const char *text) {
    return wlan_setPreSharedKey(index, INT_MAX, text);
}

int get_passphrase(int index, char *text, size_t size) {
    return wlan_getKeyPassphrase(index, 7, text, size);
}

int set_passphrase(int index, const char *text) {
    return wlan_setKeyPassphrase(index, -1, text);
}

const text_row TEXTS[] = {
    {"pre-shared key", get_pre_shared_key, set_pre_shared_key, "PSK_KEY", "null_key", false},
    {"passphrase", get_passphrase, set_passphrase, "PSK_KEY", "null_key", true},
    {"radius address", wlan_getRadiusServerAddress, wlan_setRadiusServerAddress, "AP_AUTH_SERVER", "", false},
    {"radius secret", wlan_getRadiusServerKey, wlan_setRadiusServerKey, "AP_AUTH_SECRET", "", true},
    {"acct address", wlan_getAcctServerAddress, wlan_setAcctServerAddress, "AP_ACCT_SERVER", "", false},
    {"acct secret", wlan_getAcctServerKey, wlan_setAcctServerKey, "AP_ACCT_SECRET", "", false},
    {"operator", wlan_getRadiusOperatorName, wlan_setRadiusOperatorName, "AP_RADIUS_OPER_NAME", "", false},
    {"location", wlan_getRadiusLocationData, wlan_setRadiusLocationData, "AP_RADIUS_LOCAL_DATA", "", false},
};

TEST_F(Security, TextsAreReadFromTheVapsOwnKey) {
    for (const text_row &row : TEXTS) {
        for (int index : INDEXES) {
            std::string key = stored_key(row.key, index);
            store({key + "=a \"text\" = $x"});
            EXPECT_EQ(text_of(row.get, index), "a \"text\" = $x") << row.name << " " << index;
        }
    }
}

TEST_F(Security, TextsOfOtherVapsAreNotRead) {
    for (const text_row &row : TEXTS) {
        store({std::string(row.key) + "=one", std::string(row.key) + "_3=three"});
        EXPECT_EQ(text_of(row.get, 2), row.absent) << row.name;
    }
}

TEST_F(Security, TextsThatAreNotStoredAreEmptyOrTheNullKey) {
    for (const text_row &row : TEXTS) {
        store({std::string(row.key) + "_2="});
        EXPECT_EQ(text_of(row.get, 1), row.absent) << row.name;
        EXPECT_EQ(text_of(row.get, 2), row.absent) << row.name;
    }
}

TEST_F(Security, TextsAreReadAsLongAsTheStoreHasThem) {
    for (const text_row &row : TEXTS) {
        std::string value = longest_value(row.key, "end");
        store({std::string(row.key) + "=" + value});
        EXPECT_EQ(text_of(row.get, 1), value) << row.name;
    }
}

TEST_F(Security, TextsAreCutToTheBuffer) {
    for (const text_row &row : TEXTS) {
        store({std::string(row.key) + "=0123456789"});
        text_buffer text;
        EXPECT_EQ(row.get(1, text.text, 5), 0);
        EXPECT_STREQ(text.text, "0123") << row.name;
        EXPECT_EQ(text.text[5], '?') << row.name;
    }
}

TEST_F(Security, TheNullKeyIsCutToTheBuffer) {
    text_buffer text;
    EXPECT_EQ(wlan_getPreSharedKey(1, 1, text.text, 5), 0);
    EXPECT_STREQ(text.text, "null");
    EXPECT_EQ(text.text[5], '?');
}

TEST_F(Security, TextsAreWrittenUnderTheVapsOwnKey) {
    for (const text_row &row : TEXTS) {
        for (int index : INDEXES) {
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.set(index, "a text"), 0); }),
                      (calls{"cfg -a " + stored_key(row.key, index) + "=\"a text\""}))
                << row.name;
        }
    }
}

TEST_F(Security, AnEmptyTextIsWritten) {
    for (const text_row &row : TEXTS) {
        EXPECT_EQ(commands_of([&row] { row.set(1, ""); }), (calls{std::string("cfg -a ") + row.key + "=\"\""}))
            << row.name;
    }
}

// Passphrase and RADIUS secret reach the tool whole; the other texts are the client's to escape.
TEST_F(Security, TextsAreEscapedOrVerbatimAsClientsExpect) {
    for (const text_row &row : TEXTS) {
        std::string begin = std::string("cfg -a ") + row.key + "_2=\"";
        EXPECT_EQ(commands_of([&row] { row.set(2, "a\"b\" `:` c\\d$e"); }),
                  (calls{begin + (row.escaped ? "a\\\"b\\\" \\`:\\` c\\\\d\\$e" : "a\"b\" `:` c\\d$e") + "\""}))
            << row.name;
    }
}

TEST_F(Security, AnEscapedTextReachesTheToolWhole) {
    EXPECT_EQ(wlan_setKeyPassphrase(2, 1, "a\"b`c\\d$e"), 0);
    EXPECT_EQ(wlan_setRadiusServerKey(2, "a\"b`c\\d$e"), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a PSK_KEY_2=a\"b`c\\d$e", "cfg -a AP_AUTH_SECRET_2=a\"b`c\\d$e"}));
}

TEST_F(Security, AVerbatimTextOfAnyLengthIsWritten) {
    for (const text_row &row : TEXTS) {
        if (row.escaped) {
            continue;
        }
        std::string text(5000, 'x');
        EXPECT_EQ(commands_of([&] { row.set(1, text.c_str()); }),
                  (calls{std::string("cfg -a ") + row.key + "=\"" + text + "\""}))
            << row.name;
    }
}

TEST_F(Security, AnEscapedTextIsCutSoThatItsEscapedFormFits) {
    const std::string x127(127, 'x');
    const std::string x125(125, 'x');
    std::string dollars;
    for (int i = 0; i < 63; i++) {
        dollars += "\\$";
    }
    struct {
        std::string text;
        std::string written;
    } cuts[] = {
        {x127, x127},
        {x127 + "y", x127},
        {std::string(8000, 'x'), x127},
        {x125 + "$", x125 + "\\$"},
        {x125 + "y$z", x125 + "y"},  // never between a backslash and its character
        {std::string(64, '$'), dollars},
        {std::string(8000, '$'), dollars},
    };
    for (const text_row &row : TEXTS) {
        if (!row.escaped) {
            continue;
        }
        for (const auto &cut : cuts) {
            EXPECT_EQ(commands_of([&] { row.set(1, cut.text.c_str()); }),
                      (calls{std::string("cfg -a ") + row.key + "=\"" + cut.written + "\""}))
                << row.name;
        }
    }
}

TEST_F(Security, ReadingATextLogsNothingOfItsOwn) {
    for (const text_row &row : TEXTS) {
        store({std::string(row.key) + "=5"});
        EXPECT_EQ(debug_lines([&row] { text_of(row.get, 1); }),
                  std::string("[VLK-API] athcfg_getbyname index 0, Param: ") + row.key + "= is 5\n");
    }
}

// --- all of them ---

struct mode_row {
    const char *name;
    int (*get)(int, char *, size_t);
    int (*set)(int, const char *);
    const char *word;
    const char *key;    // of the VAP, read and written
    const char *value;  // what the word is there
    const char *when_absent;
};

// The translators that read and write one key of the VAP itself.
const mode_row MODES[] = {
    {"basic encryption", wlan_getBasicEncryptionModes, wlan_setBasicEncryptionModes, "WEPEncryption", "AP_SECMODE",
     "WEP", "NOTWEP"},
    {"basic authentication", wlan_getBasicAuthenticationModes, wlan_setBasicAuthenticationModes, "EAPAuthentication",
     "AP_SECFILE", "EAP", "None"},
    {"wpa encryption", wlan_getWpaEncryptionModes, wlan_setWpaEncryptionModes, "AESEncryption", "AP_CYPHER", "CCMP",
     "enc_none"},
};

TEST_F(Security, ModesOfEveryIndexAreKeptUnderItsKey) {
    for (const mode_row &row : MODES) {
        for (int index : INDEXES) {
            std::string key = stored_key(row.key, index);
            store({key + "=" + row.value});
            EXPECT_EQ(text_of(row.get, index), row.word) << row.name << " " << index;
            EXPECT_EQ(commands_of([&] { EXPECT_EQ(row.set(index, row.word), 0); }),
                      (calls{"cfg -a " + key + "=\"" + row.value + "\""}))
                << row.name;
        }
    }
}

TEST_F(Security, WpaAuthenticationOfEveryIndexIsKeptUnderItsKeys) {
    for (int index : INDEXES) {
        std::string secmode = stored_key("AP_SECMODE", index);
        std::string wpa = stored_key("AP_WPA", index);
        std::string secfile = stored_key("AP_SECFILE", index);
        store({secmode + "=WPA", wpa + "=2", secfile + "=PSK"});
        EXPECT_EQ(text_of(wlan_getWpaAuthenticationModes, index), "WPA2PSK") << index;
        EXPECT_EQ(
            commands_of([index] { wlan_setWpaBasicAuthenticationModes(index, "WPA2PSK"); }),
            (calls{"cfg -a " + secmode + "=\"WPA\"", "cfg -a " + wpa + "=\"2\"", "cfg -a " + secfile + "=\"PSK\""}));
    }
}

TEST_F(Security, ModesAreFoundAtTheEndOfTheLongestValues) {
    for (const mode_row &row : MODES) {
        store({std::string(row.key) + "=" + longest_value(row.key, row.value)});
        EXPECT_EQ(text_of(row.get, 1), row.word) << row.name;
    }
}

TEST_F(Security, ModesAreCutToTheBuffer) {
    for (const mode_row &row : MODES) {
        store({std::string(row.key) + "=" + row.value});
        text_buffer modes;
        EXPECT_EQ(row.get(1, modes.text, 4), 0);
        EXPECT_EQ(std::string(modes.text), std::string(row.word).substr(0, 3)) << row.name;
        EXPECT_EQ(modes.text[4], '?') << row.name;
    }
}

TEST_F(Security, OtherTextOutputsAreCutToTheBuffer) {
    store({"AP_SECMODE=WPA", "AP_WPA=2", "AP_SECFILE=PSK", "WEP_RADIO_NUM1_KEY_1=0123456789"});
    text_buffer modes;
    EXPECT_EQ(wlan_getWpaAuthenticationModes(1, modes.text, 4), 0);
    EXPECT_STREQ(modes.text, "WPA");
    EXPECT_EQ(modes.text[4], '?');
    text_buffer level;
    EXPECT_EQ(wlan_getWepEncryptionLevel(1, level.text, 3), 0);
    EXPECT_STREQ(level.text, "40");
    EXPECT_EQ(level.text[3], '?');
    text_buffer key;
    EXPECT_EQ(wlan_getWepKey(1, 1, key.text, 5), 0);
    EXPECT_STREQ(key.text, "0123");
    EXPECT_EQ(key.text[5], '?');
}

TEST_F(Security, EverythingReadsAsAbsentWhenTheStoreCannotBeRead) {
    unlink(STORE_FILE);
    for (const mode_row &row : MODES) {
        EXPECT_EQ(text_of(row.get, 2), row.when_absent) << row.name;
    }
    EXPECT_EQ(text_of(wlan_getWpaAuthenticationModes, 2), "None");
    EXPECT_EQ(number_of(wlan_getWepKeyIndex, 2), 0);
    EXPECT_EQ(wep_key_of(2, 1), "null_key");
    EXPECT_EQ(text_of(wlan_getWepKeyPassphrase, 2), "null_key");
    EXPECT_EQ(text_of(wlan_getWepEncryptionLevel, 2), "40-bit");
    for (const number_row &row : NUMBERS) {
        EXPECT_EQ(number_of(row.get, 2), 0) << row.name;
    }
    for (const text_row &row : TEXTS) {
        EXPECT_EQ(text_of(row.get, 2), row.absent) << row.name;
    }
}

// Sets everything; every setter must succeed.
void set_everything() {
    for (const mode_row &row : MODES) {
        EXPECT_EQ(row.set(2, row.word), 0) << row.name;
    }
    for (const char *modes : {"None", "SharedAuthentication", "WepAutoAuthentication"}) {
        EXPECT_EQ(wlan_setBasicAuthenticationModes(2, modes), 0) << modes;
    }
    EXPECT_EQ(wlan_setWpaBasicAuthenticationModes(2, "WPA2"), 0);
    EXPECT_EQ(wlan_setWepKeyIndex(2, 1), 0);
    EXPECT_EQ(wlan_setWepKey(2, 1, "key"), 0);
    for (const number_row &row : NUMBERS) {
        EXPECT_EQ(row.set(2, 1), 0) << row.name;
    }
    for (const text_row &row : TEXTS) {
        EXPECT_EQ(row.set(2, "text"), 0) << row.name;
    }
}

TEST_F(Security, SettersSucceedWhateverTheToolSays) {
    install_tool("cfg", "cfg: no space\n", 1);
    printed_text printed = capture(set_everything);
    EXPECT_EQ(printed.out, "");
}

TEST_F(Security, SettersSucceedWithoutTheTool) {
    unlink((std::string(FAKE_TOOLS) + "/cfg").c_str());
    EXPECT_EQ(capture(set_everything).out, "");
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(Security, SettersSucceedWhenTheToolCannotBeStarted) {
    begin_descriptor_shortage();
    set_everything();
    end_descriptor_shortage();
    EXPECT_EQ(tool_calls(), calls{});
}

}  // namespace
