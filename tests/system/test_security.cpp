// Security over the wire: the reply, the commands that were run, the store afterwards.
#include <gtest/gtest.h>
#include <unistd.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

// VAPs 1 and 2 are on radio 0, 9 and 10 on radio 1.
class Security : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_2=0", "AP_RADIO_ID_9=1", "AP_RADIO_ID_10=1"});
    }
};

// The calls that name a key behind the VAP.
text_result get_key(uint32_t procedure, int index, int key_index) {
    return text_of(call(procedure, vap(index) + xdr_word(static_cast<uint32_t>(key_index))));
}

int set_key(uint32_t procedure, int index, int key_index, const std::string &key) {
    return code_of(call(procedure, vap(index) + xdr_word(static_cast<uint32_t>(key_index)) + xdr_string_bytes(key)));
}

// --- numbers ---

struct number_row {
    uint32_t getter;
    uint32_t setter;
    const char *key;
    bool checked;
};

const number_row NUMBERS[] = {
    {PROC_wlan_get_wpa_group_reauth_interval, PROC_wlan_set_wpa_group_reauth_interval, "AP_WPA_GROUP_REKEY", true},
    {PROC_wlan_get_wpa_reauth_interval, PROC_wlan_set_wpa_reauth_interval, "AP_WPA_GROUP_REKEY", true},
    {PROC_wlan_get_wpa_preauth, PROC_wlan_set_wpa_preauth, "AP_RSN_ENA_PREAUTH", true},
    {PROC_wlan_get_radius_server_port, PROC_wlan_set_radius_server_port, "AP_AUTH_PORT", false},
    {PROC_wlan_get_radius_server_ipv6enable, PROC_wlan_set_radius_server_ipv6enable, "RADIUS_SERVER_IPV6", false},
    {PROC_wlan_get_radius_reauth_interval, PROC_wlan_set_radius_reauth_interval, "AP_EAP_REAUTH_PER", false},
    {PROC_wlan_get_acct_server_port, PROC_wlan_set_acct_server_port, "AP_ACCT_PORT", false},
    {PROC_wlan_get_radius_server_pmkcaching, PROC_wlan_set_radius_server_pmkcaching, "AP_AUTH_PMK_CACHING", false},
    {PROC_wlan_get_radius_server_pmklifetime, PROC_wlan_set_radius_server_pmklifetime, "AP_AUTH_PMK_LIFETIME", false},
};

class SecurityNumbers : public Security, public testing::WithParamInterface<number_row> {};

TEST_P(SecurityNumbers, AreWrittenUnderTheirKeyAndReadBack) {
    std::string key = GetParam().key;
    EXPECT_EQ(get_number(GetParam().getter, 10), (number_result{0, 0}));
    EXPECT_EQ(set_number(GetParam().setter, 10, 1), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a " + key + "_10=\"1\""});
    EXPECT_EQ(store_value(key + "_10"), "1");
    EXPECT_EQ(get_number(GetParam().getter, 10), (number_result{0, 1}));
    EXPECT_EQ(get_number(GetParam().getter, 1), (number_result{0, 0}));
    EXPECT_TRUE(new_commands().empty());
}

TEST_P(SecurityNumbers, OfANegativeIndexAreRefusedOrTheBareKeys) {
    std::string key = GetParam().key;
    EXPECT_EQ(set_number(GetParam().setter, 1, 1), 0);
    new_commands();
    int code = GetParam().checked ? -1 : 0;
    EXPECT_EQ(get_number(GetParam().getter, -1), (number_result{code, code == 0 ? 1 : 0}));
    EXPECT_EQ(set_number(GetParam().setter, -1, 0), code);
    EXPECT_EQ(new_commands(), code == 0 ? strings{"cfg -a " + key + "=\"0\""} : strings{});
    EXPECT_EQ(store_value(key), code == 0 ? "0" : "1");
}

std::string number_name(const testing::TestParamInfo<number_row> &info) {
    return std::to_string(info.param.getter);
}

INSTANTIATE_TEST_SUITE_P(Table, SecurityNumbers, testing::ValuesIn(NUMBERS), number_name);

TEST_F(Security, IntervalsBeyondTheSignedRangeAreStoredAsNegativeNumbersAndReadBackWhole) {
    EXPECT_EQ(set_number(PROC_wlan_set_wpa_group_reauth_interval, 1, 0xffffffff), 0);
    EXPECT_EQ(store_value("AP_WPA_GROUP_REKEY"), "-1");
    EXPECT_EQ(get_number(PROC_wlan_get_wpa_reauth_interval, 1), (number_result{0, -1}));
}

// --- texts ---

struct text_row {
    uint32_t getter;
    uint32_t setter;
    const char *key;
    const char *absent;
    bool numbered;  // the call has the number of a key, which is ignored
    bool escaped;
};

const text_row TEXTS[] = {
    {PROC_wlan_get_pre_shared_key, PROC_wlan_set_pre_shared_key, "PSK_KEY", "null_key", true, false},
    {PROC_wlan_get_key_passphrase, PROC_wlan_set_key_passphrase, "PSK_KEY", "null_key", true, true},
    {PROC_wlan_get_radius_server_address, PROC_wlan_set_radius_server_address, "AP_AUTH_SERVER", "", false, false},
    {PROC_wlan_get_radius_server_key, PROC_wlan_set_radius_server_key, "AP_AUTH_SECRET", "", false, true},
    {PROC_wlan_get_acct_server_address, PROC_wlan_set_acct_server_address, "AP_ACCT_SERVER", "", false, false},
    {PROC_wlan_get_acct_server_key, PROC_wlan_set_acct_server_key, "AP_ACCT_SECRET", "", false, false},
    {PROC_wlan_get_radius_operator_name, PROC_wlan_set_radius_operator_name, "AP_RADIUS_OPER_NAME", "", false, false},
    {PROC_wlan_get_radius_location_data, PROC_wlan_set_radius_location_data, "AP_RADIUS_LOCAL_DATA", "", false, false},
};

class SecurityTexts : public Security, public testing::WithParamInterface<text_row> {
protected:
    text_result get(int index) {
        const text_row &row = GetParam();
        return row.numbered ? get_key(row.getter, index, 9) : get_text(row.getter, index);
    }

    int set(int index, const std::string &text) {
        const text_row &row = GetParam();
        return row.numbered ? set_key(row.setter, index, -9, text) : set_text(row.setter, index, text);
    }
};

TEST_P(SecurityTexts, AreWrittenUnderTheirKeyAndReadBack) {
    std::string key = GetParam().key;
    EXPECT_EQ(get(10), (text_result{0, GetParam().absent}));
    EXPECT_EQ(set(10, "a text"), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a " + key + "_10=\"a text\""});
    EXPECT_EQ(store_value(key + "_10"), "a text");
    EXPECT_EQ(get(10), (text_result{0, "a text"}));
    EXPECT_EQ(get(1), (text_result{0, GetParam().absent}));
    EXPECT_TRUE(new_commands().empty());
}

TEST_P(SecurityTexts, OfANegativeIndexAreTheBareKeys) {
    EXPECT_EQ(set(-1, "bare"), 0);
    EXPECT_EQ(store_value(GetParam().key), "bare");
    EXPECT_EQ(get(-2), (text_result{0, "bare"}));
}

// Passphrase and RADIUS secret survive the shell. Of the others the shell takes what is its own, as clients know.
TEST_P(SecurityTexts, AreEscapedOrVerbatimAsClientsExpect) {
    std::string begin = std::string("cfg -a ") + GetParam().key + "=\"";
    EXPECT_EQ(set(1, "a\"b`:`c\\\\d${no_such}e\""), 0);
    if (GetParam().escaped) {
        EXPECT_EQ(new_commands(), strings{begin + "a\\\"b\\`:\\`c\\\\\\\\d\\${no_such}e\\\"\""});
        EXPECT_EQ(get(1), (text_result{0, "a\"b`:`c\\\\d${no_such}e\""}));
    } else {
        EXPECT_EQ(new_commands(), strings{begin + "a\"b`:`c\\\\d${no_such}e\"\""});
        EXPECT_EQ(get(1), (text_result{0, "abc\\de"}));
    }
}

TEST_P(SecurityTexts, OfAnyLengthAreTakenAndCutOnlyWhereTheyAreEscaped) {
    EXPECT_EQ(set(1, std::string(1600, '#')), 0);
    std::string stored = std::string(GetParam().escaped ? 127 : 1600, '#');
    EXPECT_EQ(new_commands(), strings{std::string("cfg -a ") + GetParam().key + "=\"" + stored + "\""});
    EXPECT_EQ(get(1), (text_result{0, stored}));
}

std::string text_name(const testing::TestParamInfo<text_row> &info) {
    return std::to_string(info.param.getter);
}

INSTANTIATE_TEST_SUITE_P(Table, SecurityTexts, testing::ValuesIn(TEXTS), text_name);

TEST_F(Security, DollarSignsOfAPassphraseAreEscapedAndThoseOfAPreSharedKeyAreNot) {
    EXPECT_EQ(set_key(PROC_wlan_set_key_passphrase, 1, 1, "100$ more"), 0);
    EXPECT_EQ(set_key(PROC_wlan_set_pre_shared_key, 1, 1, "100$ more"), 0);
    EXPECT_EQ(new_commands(), (strings{"cfg -a PSK_KEY=\"100\\$ more\"", "cfg -a PSK_KEY=\"100$ more\""}));
}

TEST_F(Security, PassphraseAndPreSharedKeyAreOneSetting) {
    EXPECT_EQ(set_key(PROC_wlan_set_key_passphrase, 3, 1, "pass phrase"), 0);
    EXPECT_EQ(get_key(PROC_wlan_get_pre_shared_key, 3, 2), (text_result{0, "pass phrase"}));
}

// --- modes ---

TEST_F(Security, BasicEncryptionModesAreWepOrNone) {
    EXPECT_EQ(get_text(PROC_wlan_get_basic_encryption_modes, 2), (text_result{0, "NOTWEP"}));
    EXPECT_EQ(set_text(PROC_wlan_set_basic_encryption_modes, 2, "WEPEncryption"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_basic_encryption_modes, 2), (text_result{0, "WEPEncryption"}));
    EXPECT_EQ(set_text(PROC_wlan_set_basic_encryption_modes, 2, "whatever"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_basic_encryption_modes, 2), (text_result{0, "None"}));
    EXPECT_EQ(new_commands(), (strings{"cfg -a AP_SECMODE_2=\"WEP\"", "cfg -a AP_SECMODE_2=\"None\""}));
}

TEST_F(Security, SharedAuthenticationIsWrittenWhereItIsNotRead) {
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 9, "WepAutoAuthentication"), 0);
    EXPECT_EQ(new_commands(), (strings{"cfg -a AP_SECMODE_9=\"WEP\"", "cfg -a AP_WEP_MODE_1=\"4\""}));
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 9, "SharedAuthentication"), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a AP_WEP_MODE_1_2=\"2\""});
    EXPECT_EQ(get_text(PROC_wlan_get_basic_authentication_modes, 9), (text_result{0, "WepAutoAuthentication"}));
    EXPECT_EQ(store_value("AP_WEP_MODE_1"), "4");
    EXPECT_EQ(store_value("AP_WEP_MODE_1_2"), "2");
}

TEST_F(Security, SharedAuthenticationUnderTheBareKeyIsRead) {
    set_store({"AP_SECMODE=WEP", "AP_WEP_MODE_0=2"});
    EXPECT_EQ(get_text(PROC_wlan_get_basic_authentication_modes, 1), (text_result{0, "SharedAuthentication"}));
}

TEST_F(Security, OpenAuthenticationOfAWepNetworkLandsUnderTheSuffixedKey) {
    set_store({"AP_SECMODE=WEP", "AP_WEP_MODE_0=4"});
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 1, "None"), 0);
    EXPECT_EQ(new_commands(), (strings{"cfg -a AP_WEP_MODE_0_2=\"1\"", "cfg -a AP_SECMODE=\"None\""}));
    EXPECT_EQ(store_value("AP_WEP_MODE_0"), "4");
    EXPECT_EQ(store_value("AP_WEP_MODE_0_2"), "1");
    EXPECT_EQ(get_text(PROC_wlan_get_basic_authentication_modes, 1), (text_result{0, "None"}));
}

TEST_F(Security, NoneStoresTheClientsWholeText) {
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 2, "NoneOr$ SharedAuthentication"), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a AP_SECMODE_2=\"NoneOr$ SharedAuthentication\""});
    EXPECT_EQ(store_value("AP_SECMODE_2"), "NoneOr$ SharedAuthentication");
    EXPECT_EQ(get_text(PROC_wlan_get_basic_authentication_modes, 2), (text_result{0, "None"}));
}

TEST_F(Security, EapAuthenticationIsWrittenAndReadBack) {
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 2, "EAPAuthentication"), 0);
    EXPECT_EQ(new_commands(), strings{"cfg -a AP_SECFILE_2=\"EAP\""});
    EXPECT_EQ(get_text(PROC_wlan_get_basic_authentication_modes, 2), (text_result{0, "EAPAuthentication"}));
}

TEST_F(Security, UnknownAuthenticationWritesNothingAndSucceeds) {
    EXPECT_EQ(set_text(PROC_wlan_set_basic_authentication_modes, 2, "nonsense"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_wpa_authentication_modes, 2, "nonsense"), 0);
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Security, WpaEncryptionModesAreWrittenAndReadBack) {
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_encryption_modes, 2), (text_result{0, "enc_none"}));
    for (const char *modes : {"TKIPandAESEncryption", "TKIPEncryption", "AESEncryption"}) {
        EXPECT_EQ(set_text(PROC_wlan_set_wpa_encryption_modes, 2, modes), 0);
        EXPECT_EQ(get_text(PROC_wlan_get_wpa_encryption_modes, 2), (text_result{0, modes}));
    }
    EXPECT_EQ(new_commands(), (strings{"cfg -a AP_CYPHER_2=\"TKIP CCMP\"", "cfg -a AP_CYPHER_2=\"TKIP\"",
                                       "cfg -a AP_CYPHER_2=\"CCMP\""}));
}

TEST_F(Security, BothCiphersAreFoundInEitherOrder) {
    set_store({"AP_CYPHER=CCMP TKIP"});
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_encryption_modes, 1), (text_result{0, "TKIPandAESEncryption"}));
}

TEST_F(Security, UnknownWpaEncryptionIsRefusedAndWritesNothing) {
    EXPECT_EQ(set_text(PROC_wlan_set_wpa_encryption_modes, 2, "nonsense"), -1);
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Security, WpaAuthenticationModesAreWrittenAndReadBack) {
    struct {
        const char *modes;
        const char *wpa;
        const char *secfile;
    } rows[] = {
        {"WPA1WPA2", "3", "EAP"},      {"WPA2", "2", "EAP"},    {"WPA", "1", "EAP"},
        {"WPAPSKWPA2PSK", "3", "PSK"}, {"WPA2PSK", "2", "PSK"}, {"WPAPSK", "1", "PSK"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(set_text(PROC_wlan_set_wpa_authentication_modes, 4, row.modes), 0);
        EXPECT_EQ(new_commands(),
                  (strings{"cfg -a AP_SECMODE_4=\"WPA\"", std::string("cfg -a AP_WPA_4=\"") + row.wpa + '"',
                           std::string("cfg -a AP_SECFILE_4=\"") + row.secfile + '"'}));
        EXPECT_EQ(get_text(PROC_wlan_get_wpa_authentication_modes, 4), (text_result{0, row.modes}));
    }
}

TEST_F(Security, WpaAuthenticationOfOtherFamiliesIsTheirs) {
    set_store({"AP_SECMODE=WEP", "AP_SECMODE_2=None", "AP_SECMODE_3=WPA"});
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_authentication_modes, 1), (text_result{0, "WEPEncryption"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_authentication_modes, 2), (text_result{0, "None"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_authentication_modes, 3), (text_result{0, ""}));
}

// --- WEP ---

TEST_F(Security, DefaultWepKeyIsKeptForTheRadio) {
    EXPECT_EQ(set_number(PROC_wlan_set_wep_key_index, 10, 3), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_wep_key_index, 2, 77), 0);
    EXPECT_EQ(new_commands(), (strings{"cfg -a AP_PRIMARY_KEY_1=\"3\"", "cfg -a AP_PRIMARY_KEY_0=\"77\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_wep_key_index, 9), (number_result{0, 3}));
    EXPECT_EQ(get_number(PROC_wlan_get_wep_key_index, 1), (number_result{0, 77}));
}

TEST_F(Security, WepKeyIsKeptForTheRadioVerbatimAndMarkedHexadecimal) {
    EXPECT_EQ(set_key(PROC_wlan_set_wep_key, 10, 4, "0123$ 56789abc"), 0);
    EXPECT_EQ(new_commands(),
              (strings{"cfg -a WEP_RADIO_NUM1_KEY_4=\"0123$ 56789abc\"", "cfg -a WEP_RADIO_NUM1_IS_HEX_4=\"1\""}));
    EXPECT_EQ(store_value("WEP_RADIO_NUM1_IS_HEX_4"), "1");
    EXPECT_EQ(get_key(PROC_wlan_get_wep_key, 9, 4), (text_result{0, "0123$ 56789abc"}));
    EXPECT_EQ(get_key(PROC_wlan_get_wep_key, 1, 4), (text_result{0, "null_key"}));
}

TEST_F(Security, WepKeyWithoutANumberOfItsOwnIsTheDefaultOne) {
    EXPECT_EQ(set_number(PROC_wlan_set_wep_key_index, 1, 2), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_wep_key_passphrase, 1), (text_result{0, "null_key"}));
    EXPECT_EQ(set_key(PROC_wlan_set_wep_key, 1, 0, "abcde"), 0);
    EXPECT_EQ(store_value("WEP_RADIO_NUM0_KEY_2"), "abcde");
    EXPECT_EQ(get_key(PROC_wlan_get_wep_key, 1, 0), (text_result{0, "abcde"}));
    EXPECT_EQ(get_key(PROC_wlan_get_wep_key, 1, 5), (text_result{0, "abcde"}));
    EXPECT_EQ(get_text(PROC_wlan_get_wep_key_passphrase, 1), (text_result{0, "abcde"}));
}

TEST_F(Security, WepKeyOfAnyLengthIsWritten) {
    EXPECT_EQ(set_key(PROC_wlan_set_wep_key, 1, 1, std::string(1600, 'k')), 0);
    EXPECT_EQ(get_key(PROC_wlan_get_wep_key, 1, 1), (text_result{0, std::string(1600, 'k')}));
}

TEST_F(Security, WepPassphraseAndLevelAreAcceptedWithoutEffect) {
    EXPECT_EQ(set_text(PROC_wlan_set_wep_key_passphrase, -1, "passphrase"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_wep_encryption_level, 1, "104-bit"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_wep_encryption_level, -1, "104-bit"), -1);
    EXPECT_TRUE(new_commands().empty());
}

TEST_F(Security, WepLevelFollowsFromTheLengthOfKeyOne) {
    EXPECT_EQ(get_text(PROC_wlan_get_encryption_level, 1), (text_result{0, "40-bit"}));
    struct {
        size_t length;
        const char *level;
    } rows[] = {{5, "40-bit"}, {10, "40-bit"}, {13, "104-bit"}, {16, "40-bit"}, {26, "104-bit"}};
    for (const auto &row : rows) {
        EXPECT_EQ(set_key(PROC_wlan_set_wep_key, 1, 1, std::string(row.length, 'a')), 0);
        EXPECT_EQ(get_text(PROC_wlan_get_encryption_level, 1), (text_result{0, row.level})) << row.length;
    }
}

// --- the platform out of order ---

TEST_F(Security, SettersSucceedWhenTheToolCannotBeStarted) {
    run_command("fault popen EMFILE");
    EXPECT_EQ(set_text(PROC_wlan_set_wpa_authentication_modes, 1, "WPA2"), 0);
    EXPECT_EQ(set_key(PROC_wlan_set_wep_key, 1, 1, "key"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_radius_server_key, 1, "secret"), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_radius_server_port, 1, 1812), 0);
    run_command("fault popen off");
    EXPECT_EQ(store_value("AP_AUTH_PORT"), "(absent)") << "the fault was not there";
}

TEST_F(Security, StoreThatCannotBeReadAnswersAsIfNothingWereStored) {
    unlink("/tmp/.apcfg");
    EXPECT_EQ(get_text(PROC_wlan_get_wpa_authentication_modes, 1), (text_result{0, "None"}));
    EXPECT_EQ(get_key(PROC_wlan_get_pre_shared_key, 1, 1), (text_result{0, "null_key"}));
    EXPECT_EQ(get_text(PROC_wlan_get_radius_server_address, 1), (text_result{0, ""}));
    EXPECT_EQ(get_number(PROC_wlan_get_radius_server_port, 1), (number_result{0, 0}));
}

}  // namespace
