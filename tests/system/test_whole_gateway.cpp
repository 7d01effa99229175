// The driver's life as a client sees it: loaded, initialised, reset, reconnected and restored to factory settings by
// calls that return at once, with the daemons and the board's tools of the gateway taking part.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <optional>

#include "tests/system/lifecycle.h"

namespace {

bool runs(const char *process) {
    return run_command(std::string("pgrep -x ") + process).status == 0;
}

bool is_loaded() {
    return read_file("/run/gateway/driver").starts_with("loaded\n");
}

// Calls that return at once, whatever they set in motion.
void call_at_once(uint32_t procedure, const bytes &arguments = "") {
    auto begin = steady_clock::now();
    EXPECT_EQ(code_of(call_patiently(procedure, arguments)), 0);
    EXPECT_LT(seconds_since(begin), 1.0);
}

void load() {
    call_at_once(PROC_wlan_load, xdr_word(0));
}
void init() {
    call_at_once(PROC_wlan_init);
}
void reset() {
    call_at_once(PROC_wlan_reset);
}

// Utilisation, activity and busy time of a VAP's radio.
std::vector<int> channel_statistics(int index) {
    std::vector<uint32_t> words = result_of(call(PROC_wlan_get_channel_statistics, vap(index))).values;
    EXPECT_EQ(words.size(), 12u);
    return {words.begin(), words.begin() + 3};
}

// A gateway that is up, with its soft-block daemon, and whose server knows of no load.
class WholeGateway : public WatchedGateway {
protected:
    void SetUp() override {
        settle();
        restart_driver();
        if (!runs("softblock"))
            run_command("softblock > /dev/null 2>&1 &");
        ASSERT_TRUE(eventually([] { return access("/var/run/ssidsteering", F_OK) == 0; }));
        kept.emplace();
        begin_watching();
    }

    void TearDown() override {
        kept->put_back();
        settle();
    }

    long journalled(const std::string &line) const {
        strings lines = lines_since(JOURNAL_FILE, journal_mark);
        return std::count(lines.begin(), lines.end(), line);
    }
    // Whether a worker has come to its end, where it has the queue looked at.
    bool ended() const {
        return journalled("popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue") > 0;
    }

    std::optional<kept_settings> kept;
};

TEST_F(WholeGateway, IsTakenDownLoadedAndBroughtUpByCalls) {
    ASSERT_TRUE(is_up("ath0") && is_up("ath8") && runs("hostapd") && runs("softblock"));
    reset();
    EXPECT_TRUE(eventually([] { return !is_loaded() && !runs("hostapd") && !runs("softblock"); }));
    EXPECT_EQ(get_text(PROC_wlan_get_status, 1), (text_result{0, "Disable"}));
    load();
    EXPECT_TRUE(eventually([] { return is_loaded() && runs("softblock"); }));
    EXPECT_FALSE(is_up("ath0"));
    init();
    EXPECT_TRUE(eventually([] { return is_up("ath0") && is_up("ath8") && runs("hostapd"); }));
    EXPECT_EQ(get_text(PROC_wlan_get_status, 1), (text_result{0, "Up"}));
    EXPECT_EQ(get_text(PROC_wlan_get_status, 9), (text_result{0, "Up"}));
}

TEST_F(WholeGateway, RequestsThatComeTogetherAreDoneOneAfterAnother) {
    reset();
    init();
    EXPECT_TRUE(eventually([] { return !is_up("ath0"); }));
    EXPECT_TRUE(eventually([] { return is_up("ath0") && is_up("ath8"); }));
    EXPECT_EQ(journalled("syslog event 1 3 0: ********** wlan_reset - thread started. **********\\n"), 1);
    EXPECT_EQ(journalled("syslog event 1 3 0: ********** wlan_init - thread started. **********\\n"), 1);
}

TEST_F(WholeGateway, InitAppliesTheStoredStatisticsSettingsAgain) {
    run_command("cfg -a RSG_Enable=3");
    init();
    ASSERT_TRUE(eventually([] { return runs("radstat0") && runs("radstat8"); }));
    for (int index : {1, 9})
        EXPECT_TRUE(eventually([&] { return channel_statistics(index)[0] > 0; })) << index;
    ASSERT_TRUE(eventually([&] { return ended(); }));
    EXPECT_EQ(journalled("datagram softblock restart"), 1);
    EXPECT_EQ(run_command("cfg -a RSG_Enable=2").status, 0);
    begin_watching();
    init();
    ASSERT_TRUE(eventually([&] { return ended(); }));
    EXPECT_TRUE(eventually([] { return !runs("radstat0"); }));
    EXPECT_EQ(get_number(PROC_wlan_get_retransmission_metric, 1), (number_result{0, -1}));
    EXPECT_TRUE(eventually([] { return get_number(PROC_wlan_get_retransmission_metric, 9).number >= 0; }));
}

TEST_F(WholeGateway, FaultsOfTheCollectorReachTheClientAsTheyShould) {
    const std::vector<int> nothing = {-1, -1, -1};
    EXPECT_EQ(channel_statistics(1), nothing) << "no collector";
    EXPECT_EQ(code_of(call(PROC_wlan_set_rad_stat_enable, vap(1) + xdr_word(1) + xdr_word(30) + xdr_word(1800))), 0);
    ASSERT_TRUE(eventually([&] { return channel_statistics(1)[0] > 0; }));
    run_command("fault radstat zeros");
    EXPECT_GT(channel_statistics(1)[0], 0) << "the last real numbers";
    run_command("fault radstat short 4");
    std::vector<int> cut = channel_statistics(1);
    EXPECT_GT(cut[0], 0);
    EXPECT_EQ(cut[1], 0);
    EXPECT_EQ(cut[2], 0);
    run_command("fault radstat silent");
    auto begin = steady_clock::now();
    EXPECT_EQ(channel_statistics(1), nothing);
    EXPECT_GE(seconds_since(begin), 1.9);
    run_command("fault radstat missing");
    EXPECT_EQ(channel_statistics(1), nothing);
}

TEST_F(WholeGateway, ReconnectPowersTheChipsAndBringsTheVapsUpAgain) {
    run_command("echo 0 > /sys/bus/pci/slots/0000:02:00.0/power");
    run_command("apup");
    ASSERT_FALSE(is_up("ath0")) << "a radio without power";
    call_at_once(PROC_wlan_pci_reconnect);
    EXPECT_TRUE(eventually([] { return is_up("ath0") && is_up("ath8"); }));
    EXPECT_EQ(run_command("wps_gpio read 10").text, "1\n");
    EXPECT_EQ(run_command("wps_gpio read 100").text, "0\n");
    EXPECT_EQ(read_file("/sys/bus/pci/slots/0000:02:00.0/power"), "1\n");
}

TEST_F(WholeGateway, BlackListOutlivesAResetAndALoad) {
    bytes list;
    auto has_one_station = [&] {
        list = result_of(call(PROC_wlan_get_softblock_black_list, vap(1))).data;
        return list.starts_with(bytes("\1\0\0\0", 4));
    };
    EXPECT_EQ(set_text(PROC_wlan_set_softblock_black_list_add, 1, "28:6A:BA:4C:10:01"), 0);
    // The daemon is only told: one that is ended before it has looked never knew of the station.
    ASSERT_TRUE(eventually(has_one_station));
    reset();
    ASSERT_TRUE(eventually([&] { return !runs("softblock") && ended(); }));
    load();
    ASSERT_TRUE(eventually([] { return access("/var/run/ssidsteering", F_OK) == 0; }));
    EXPECT_TRUE(eventually(has_one_station));
    EXPECT_EQ(list.substr(8, 6), "\x28\x6A\xBA\x4C\x10\x01");
}

TEST_F(WholeGateway, FactorySettingsAreFetchedFromTheBoardAndInForceAfterAnInit) {
    unlink("/tmp/wifi_defaults.dat");
    write_file("/run/gateway/defaults",
               "SETTING_DELIMETER=24_RADIO_START\nAP_SSID=Factory\nAP_ENABLE_2=1\nAP_RADIO_ID_2=0\n"
               "SETTING_DELIMETER=24_RADIO_STOP\n");
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 1, "Mine"), 0);
    EXPECT_EQ(code_of(call(PROC_wlan_set_restore_defaults, xdr_word(1))), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Factory"}));
    EXPECT_EQ(journalled("run wps_gpio wifi_conf"), 1);
    EXPECT_FALSE(is_up("ath1"));
    init();
    EXPECT_TRUE(eventually([] { return is_up("ath1"); }));
}

}  // namespace
