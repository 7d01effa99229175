// VAP identity and basic settings over the wire: the reply, the commands that were run, the store afterwards.
#include <gtest/gtest.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Vap : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with(TWO_RADIOS);
    }
};

TEST_F(Vap, SsidIsSetThroughTheToolAndReadBackFromTheStore) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 3, "Guest network"), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_SSID_3=\"Guest network\""});
    EXPECT_EQ(store_value("AP_SSID_3"), "Guest network");
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 3), (text_result{0, "Guest network"}));
}

TEST_F(Vap, SsidWithShellCharactersIsEscapedInTheCommandAndWholeInTheStore) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 1, "a\"b`c\\d$e"), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_SSID=\"a\\\"b\\`c\\\\d\\$e\""});
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "a\"b`c\\d$e"}));
}

TEST_F(Vap, SsidIsCutToThirtyTwoCharacters) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 2, std::string(32, '$') + "tail"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 2), (text_result{0, std::string(32, '$')}));
}

TEST_F(Vap, SsidOfAnyLengthOnTheWireIsTaken) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 2, std::string(8000, 'x')), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 2), (text_result{0, std::string(32, 'x')}));
}

TEST_F(Vap, IndexZeroAndBelowUseTheBareKey) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, -3, "bare"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 0), (text_result{0, "bare"}));
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "bare"}));
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 16, "last"), 0);
    EXPECT_EQ(store_value("AP_SSID_16"), "last");
}

TEST_F(Vap, CustomSsidIsTheSsid) {
    EXPECT_EQ(set_text(PROC_wlan_set_custom_ssid_str, 4, "custom"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 4), (text_result{0, "custom"}));
    EXPECT_EQ(get_text(PROC_wlan_get_custom_ssid_str, 4), (text_result{0, "custom"}));
}

TEST_F(Vap, AbsentSsidReadsAsEmptyWithSuccess) {
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 7), (text_result{0, ""}));
}

TEST_F(Vap, EnablingAVapWithoutSsidGivesItOne) {
    EXPECT_EQ(set_number(PROC_wlan_set_enable, 3, 1), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_ENABLE_3=\"1\"", "cfg -a AP_SSID_3=\"Atheros_XSpan_3\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_enable, 3), (number_result{0, 1}));
}

TEST_F(Vap, DisablingNeverTouchesTheSsid) {
    EXPECT_EQ(set_number(PROC_wlan_set_enable, 3, 0), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_ENABLE_3=\"0\""});
}

TEST_F(Vap, BooleanOnTheWireIsAnyNonZeroWord) {
    EXPECT_EQ(set_number(PROC_wlan_set_enable, 3, 7), 0);
    EXPECT_EQ(store_value("AP_ENABLE_3"), "1");
}

TEST_F(Vap, NumberOfEntriesIsSixteen) {
    decoded_result result = result_of(call(PROC_wlan_get_number_of_entries, ""));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.values.at(0), 16u);
}

TEST_F(Vap, EntriesAreAddedAndRemovedWithoutEffect) {
    EXPECT_EQ(result_of(call(PROC_wlan_add_entry, "")).values, (std::vector<uint32_t>{0, 0, 0, 0}));
    EXPECT_EQ(result_of(call(PROC_wlan_del_entry, vap(3))).values, (std::vector<uint32_t>{0, 0, 0, 0}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Vap, NameIsTheInterfaceAndFailsBelowOne) {
    EXPECT_EQ(get_text(PROC_wlan_get_name, 1), (text_result{0, "ath0"}));
    EXPECT_EQ(get_text(PROC_wlan_get_name, 16), (text_result{0, "ath15"}));
    EXPECT_EQ(get_text(PROC_wlan_get_name, 17), (text_result{0, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_name, 0), (text_result{-1, ""}));
}

// The status query of the wire never fails, whatever becomes of its back end.
TEST_F(Vap, StatusCarriesCodeZeroEvenWhenTheBackEndFails) {
    EXPECT_EQ(get_text(PROC_wlan_get_status, 1), (text_result{0, "Up"}));
    EXPECT_EQ(get_text(PROC_wlan_get_status, 2), (text_result{0, "Disable"}));
    EXPECT_EQ(get_text(PROC_wlan_get_status, 0), (text_result{0, "Error"}));
    run_command("fault popen EMFILE");
    EXPECT_EQ(get_text(PROC_wlan_get_status, 1), (text_result{0, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_max_bitrate, 1), (text_result{-1, ""})) << "the fault was not there";
    run_command("fault popen off");
}

TEST_F(Vap, SilentToolMeansDisabled) {
    run_command("fault iwconfig silent");
    EXPECT_EQ(get_text(PROC_wlan_get_status, 1), (text_result{0, "Disable"}));
    EXPECT_EQ(get_text(PROC_wlan_get_max_bitrate, 1), (text_result{0, ""}));
    run_command("fault iwconfig off");
}

TEST_F(Vap, BssidComesFromTheInterfaceElseFromTheStoreElseIsNull) {
    text_result live = get_text(PROC_wlan_get_bssid, 1);
    EXPECT_EQ(live.code, 0);
    EXPECT_EQ(live.text, run_command("ifconfig ath0 | sed -n 's/.*HWaddr \\([^ ]*\\).*/\\1/p' | tr -d '\\n'").text);
    EXPECT_EQ(live.text.size(), 17u);
    set_store({"AP_VAP_NUM=8", "AP_BSSID_2=02:11:22:33:44:55"});
    EXPECT_EQ(get_text(PROC_wlan_get_bssid, 2), (text_result{0, "02:11:22:33:44:55"}));
    EXPECT_EQ(get_text(PROC_wlan_get_bssid, 3), (text_result{0, "00:00:00:00:00:00"}));
    EXPECT_EQ(get_text(PROC_wlan_get_bssid, 0), (text_result{-1, ""}));
}

TEST_F(Vap, BssidLeadsToItsPortAndVap) {
    set_store({"AP_VAP_NUM=8", "UDMA_ENABLE=1", "AP_RADIO_ID_12=1", "AP_BSSID_12=00:00:00:00:00:a5"});
    decoded_result found = result_of(call(PROC_wlan_get_bssid_port, xdr_string_bytes("00:00:00:00:00:a5")));
    EXPECT_EQ(found.code, 0);
    EXPECT_EQ(found.values, (std::vector<uint32_t>{6, 12, 0, 0, 0, 0, 0, 0}));
    decoded_result none = result_of(call(PROC_wlan_get_bssid_port, xdr_string_bytes("11:11:11:11:11:11")));
    EXPECT_EQ(none.code, -1);
    EXPECT_EQ(none.values, (std::vector<uint32_t>{0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Vap, VlanIsBoundToTheVapWithTheBssid) {
    set_store({"AP_VAP_NUM=8", "AP_BSSID_10=02:00:00:00:00:0a", "AP_BSSID_16=02:00:00:00:00:10"});
    EXPECT_EQ(code_of(call(PROC_wlan_associate_vlan, xdr_string_bytes("02:00:00:00:00:0a") + xdr_word(4))), 0);
    EXPECT_EQ(store_value("AP_VLAN_10"), "4");
    EXPECT_EQ(store_value("AP_BRNAME_10"), "br1_4");
    EXPECT_EQ(code_of(call(PROC_wlan_associate_vlan, xdr_string_bytes("02:00:00:00:00:10") + xdr_word(4))), 0);
    EXPECT_EQ(store_value("AP_VLAN_16"), "4");
    EXPECT_EQ(store_value("AP_BRNAME_16"), "(absent)");
}

TEST_F(Vap, VlanOfAnUnknownBssidIsRefusedWithAnErrorLine) {
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(code_of(call(PROC_wlan_associate_vlan, xdr_string_bytes("11:11:11:11:11:11") + xdr_word(4))), -1);
    strings lines = lines_since(SERVER_LOG_FILE, log);  // the tool complains of interfaces that are down
    std::erase_if(lines, [](const std::string &line) { return !line.starts_with("[VLK-API]"); });
    EXPECT_EQ(lines, strings{"[VLK-API] Error wlan_associateVlan Error: there is no VAP match for 11:11:11:11:11:11"});
}

TEST_F(Vap, ChannelIsKeptForTheRadioTogetherWithItsMode) {
    EXPECT_EQ(set_number(PROC_wlan_set_channel, 1, 11), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_PRIMARY_CH_2=\"11\"", "cfg -a AP_CHMODE_2=\"11NGHT20\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 2), (number_result{0, 11}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 9), (number_result{0, 36}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, -1), (number_result{-1, 0}));
}

TEST_F(Vap, ChannelSixOnRadioOneIsRefusedAndWritesNothing) {
    EXPECT_EQ(set_number(PROC_wlan_set_channel, 9, 6), -1);
    EXPECT_TRUE(commands().empty());
}

TEST_F(Vap, ChannelThirtySixOnRadioZeroTurnsItsBaseToFiveGigahertz) {
    EXPECT_EQ(set_number(PROC_wlan_set_channel, 1, 36), 0);
    EXPECT_EQ(store_value("AP_CHMODE_2"), "11NAHT20");
}

TEST_F(Vap, AutomaticChannelOverwritesTheMode) {
    EXPECT_EQ(get_number(PROC_wlan_get_auto_channel_enable, 9), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_auto_channel_enable, 9, 1), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_PRIMARY_CH=\"0\"", "cfg -a AP_CHMODE=\"11NAHT40MINUS\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_auto_channel_enable, 10), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 9), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_auto_channel_enable, 1, 0), 0);
    EXPECT_EQ(store_value("AP_PRIMARY_CH_2"), "6");
}

TEST_F(Vap, BeaconTypesAreWrittenAndReadBack) {
    for (const char *type : {"None", "Basic", "WPAand11i", "11i", "WPA"}) {
        EXPECT_EQ(set_text(PROC_wlan_set_beacon_type, 5, type), 0);
        EXPECT_EQ(get_text(PROC_wlan_get_beacon_type, 5), (text_result{0, type}));
    }
    size_t before = mark_of(JOURNAL_FILE);
    EXPECT_EQ(set_text(PROC_wlan_set_beacon_type, 5, "nonsense"), 0);
    EXPECT_TRUE(commands_since(before).empty());
}

TEST_F(Vap, StandardIsWrittenAsModeAndPureSwitches) {
    EXPECT_EQ(set_text(PROC_wlan_set_standard, 9, "ac"), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a PUREN=\"0\"", "cfg -a PUREG=\"0\"", "cfg -a PUREAC=\"0\"",
                                   "cfg -a PUREAC=\"1\"", "cfg -a AP_CHMODE=\"11ACVHT40PLUS\""}));
    EXPECT_EQ(get_text(PROC_wlan_get_standard, 10), (text_result{0, "ac"}));
    EXPECT_EQ(set_text(PROC_wlan_set_standard, -1, "ac"), -1);
}

TEST_F(Vap, StandardNOnRadioZeroIsTheFiveGigahertzBase) {
    EXPECT_EQ(set_text(PROC_wlan_set_standard, 1, "n"), 0);
    EXPECT_EQ(store_value("AP_CHMODE_2"), "11NAHT20");
    EXPECT_EQ(store_value("PUREN_2"), "1");
}

TEST_F(Vap, StandardOfAnyLengthClearsTheSwitchesAndKeepsTheBase) {
    EXPECT_EQ(set_text(PROC_wlan_set_standard, 1, std::string(5000, 'a')), 0);
    EXPECT_EQ(store_value("AP_CHMODE_2"), "11NGHT20");
    EXPECT_EQ(store_value("PUREN_2"), "0");
}

TEST_F(Vap, MacAddressControlIsANumberOfTheVap) {
    EXPECT_EQ(set_number(PROC_wlan_set_mac_address_control_enabled, 2, 2), 0);
    EXPECT_EQ(store_value("AP_MACADDRCTLEN_2"), "2");
    EXPECT_EQ(get_number(PROC_wlan_get_mac_address_control_enabled, 2), (number_result{0, 2}));
    EXPECT_EQ(get_number(PROC_wlan_get_mac_address_control_enabled, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_mac_address_control_enabled, -1, 2), -1);
}

TEST_F(Vap, MaximumBitRateIsReadFromTheDriverAndCannotBeSet) {
    text_result rate = get_text(PROC_wlan_get_max_bitrate, 1);
    EXPECT_EQ(rate.code, 0);
    EXPECT_GT(atoi(rate.text.c_str()), 0) << rate.text;
    EXPECT_EQ(get_text(PROC_wlan_get_max_bitrate, 0), (text_result{-1, ""}));
    size_t before = mark_of(JOURNAL_FILE);
    EXPECT_EQ(set_text(PROC_wlan_set_max_bitrate, 1, "54"), 0);
    EXPECT_TRUE(commands_since(before).empty());
}

TEST_F(Vap, WaitThresholdIsAcceptedAndReadsAsNothing) {
    EXPECT_EQ(set_number(PROC_wlan_set_advairtime_wait_threshold, 1, 5), 0);
    call_reply reply = call(PROC_wlan_get_advairtime_wait_threshold, vap(1));
    EXPECT_EQ(reply.result, xdr_word(0) + xdr_word(0) + xdr_word(0));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Vap, StoreThatCannotBeReadAnswersEmptyAndTheSetterStillRuns) {
    unlink("/tmp/.apcfg");
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, ""}));
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 1, "again"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "again"}));
}

TEST(DebugLines, AreWrittenFromTheMomentTheSwitchFileExists) {
    set_store({"AP_SSID=home"});
    set_debug(false);
    size_t log = mark_of(SERVER_LOG_FILE);
    get_text(PROC_wlan_get_ssid, 1);
    set_text(PROC_wlan_set_ssid, 1, "home");
    EXPECT_TRUE(lines_since(SERVER_LOG_FILE, log).empty());
    set_debug(true);
    get_text(PROC_wlan_get_ssid, 1);
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log),
              (strings{"[VLK-API] wlan_get_ssid_1_svc  WLAN RPC server : [index 1]",
                       "[VLK-API] athcfg_getbyname index 0, Param: AP_SSID= is home",
                       "[VLK-API] wlan_get_ssid_1_svc  WLAN RPC server : result->return_data.return_data_len = 5"}));
    set_debug(false);
    log = mark_of(SERVER_LOG_FILE);
    get_text(PROC_wlan_get_ssid, 1);
    EXPECT_TRUE(lines_since(SERVER_LOG_FILE, log).empty());
}

TEST(DebugLines, NameTheInputsOfASetterAndItsCommand) {
    set_store({"AP_RADIO_ID=0"});
    set_debug(true);
    size_t log = mark_of(SERVER_LOG_FILE);
    set_text(PROC_wlan_set_ssid, 2, "net");
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log),
              (strings{"[VLK-API] wlan_set_ssid_1_svc  WLAN RPC server : [index 2][ssid net]",
                       "[VLK-API] athcfg_setbyname athcfg_setbyname: index 1, execute cmd: cfg -a AP_SSID_2=\"net\"",
                       "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a AP_SSID_2=\"net\"",
                       "[VLK-API] wlan_set_ssid_1_svc  WLAN RPC server : return code :0"}));
    set_debug(false);
}

}  // namespace
