// Channel switch and idle timeout over the wire: the reply, the commands, the lines and the store afterwards.
#include <gtest/gtest.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class ChannelSwitch : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({"AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_PRIMARY_CH=40", "AP_PRIMARY_CH_2=6",
                    "AP_CHMODE=11NAHT40PLUS", "AP_CHMODE_2=11NGHT20"});
    }

    // Everything the server printed but what its tools complain of.
    strings lines() const {
        return lines_with({" WLAN RPC server", "Command is", "[VLK-API]"});
    }
};

// Nine words behind the index; those that nobody uses hold values of their own here.
bytes switch_arguments(int index, uint32_t type, uint32_t channel, uint32_t count, uint32_t width) {
    bytes arguments = vap(index);
    for (uint32_t word : {type, 902u, channel, 904u, count, 906u, width, 908u, 909u})
        arguments += xdr_word(word);
    return arguments;
}

int announce(int index, uint32_t type, uint32_t channel, uint32_t count, uint32_t width) {
    return code_of(call(PROC_wlan_set_channel_switch, switch_arguments(index, type, channel, count, width)));
}

TEST_F(ChannelSwitch, IsAnnouncedThenConfigured) {
    EXPECT_EQ(announce(1, 1, 36, 5, 2), 0);
    EXPECT_EQ(commands(), (strings{"iwpriv ath0 doth_ch_chwidth 36 5 2", "cfg -a AP_PRIMARY_CH_2=\"36\"",
                                   "cfg -a AP_CHMODE_2=\"11NAHT20\""}));
    EXPECT_EQ(store_value("AP_PRIMARY_CH_2"), "36");
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 1), (number_result{0, 36}));
}

TEST_F(ChannelSwitch, IsReportedWithoutTheDebugSwitch) {
    set_debug(false);
    EXPECT_EQ(announce(1, 1, 36, 5, 2), 0);
    EXPECT_EQ(lines(), (strings{" WLAN RPC server : [Channel Switch Type =1]",
                                " WLAN RPC server : [Channel Switch Channel Number =36]",
                                " WLAN RPC server : [Channel Switch switchcount =5]",
                                " WLAN RPC server : [Channel Switch channelwidth =2]",
                                "Command is iwpriv ath0 doth_ch_chwidth 36 5 2"}));
}

// Radio 1 has no channel 11: the announcement went out, and its status is the answer.
TEST_F(ChannelSwitch, SucceedsAlsoWhereTheChannelCannotBeConfigured) {
    EXPECT_EQ(announce(9, 0, 11, 3, 0), 0);
    EXPECT_EQ(commands(), strings{"iwpriv ath8 doth_ch_chwidth 11 3 0"});
    EXPECT_EQ(store_value("AP_PRIMARY_CH"), "40");
}

// The words are unsigned, the text is "%d".
TEST_F(ChannelSwitch, LargeWordsAreShownAndSentAsNegativeNumbers) {
    EXPECT_EQ(announce(1, 0xffffffffu, 0x80000000u, 0xfffffffeu, 0xfffffffdu), 0);
    EXPECT_EQ(lines(), (strings{" WLAN RPC server : [Channel Switch Type =-1]",
                                " WLAN RPC server : [Channel Switch Channel Number =-2147483648]",
                                " WLAN RPC server : [Channel Switch switchcount =-2]",
                                " WLAN RPC server : [Channel Switch channelwidth =-3]",
                                "Command is iwpriv ath0 doth_ch_chwidth -2147483648 -2 -3"}));
    EXPECT_EQ(commands().at(1), "cfg -a AP_PRIMARY_CH_2=\"-2147483648\"");
}

TEST_F(ChannelSwitch, IsTakenForEveryIndex) {
    EXPECT_EQ(announce(-1, 0, 1, 5, 0), 0);
    EXPECT_EQ(announce(17, 0, 1, 5, 0), 0);
    EXPECT_EQ(commands().at(0), "iwpriv ath-2 doth_ch_chwidth 1 5 0");
    EXPECT_EQ(commands().at(3), "iwpriv ath16 doth_ch_chwidth 1 5 0");
}

TEST_F(ChannelSwitch, SucceedsWhenNoCommandCanBeStarted) {
    run_command("fault popen EMFILE");
    EXPECT_EQ(announce(1, 1, 36, 5, 2), 0);
    run_command("fault popen off");
    EXPECT_EQ(store_value("AP_PRIMARY_CH_2"), "6");
}

TEST_F(ChannelSwitch, DebugLinesNameEveryWordAndTheCode) {
    set_debug(true);
    EXPECT_EQ(announce(9, 1, 36, 4000000000u, 2), 0);
    set_debug(false);
    strings printed = lines();
    ASSERT_GE(printed.size(), 8u);
    EXPECT_EQ(printed[4],
              "[VLK-API] wlan_set_channel_switch_1_svc  WLAN RPC server : [index 9][type 1][reserved_2 902][channel 36]"
              "[reserved_4 904][count 4000000000][reserved_6 906][width 2][reserved_8 908][reserved_9 909]");
    EXPECT_EQ(printed[5], "[VLK-API] wlan_setChannelSwitch wlan_setChannelSwitch: wlan_setChannelSwitch entered");
    EXPECT_EQ(printed[6], "Command is iwpriv ath8 doth_ch_chwidth 36 -294967296 2");
    EXPECT_EQ(printed.back(), "[VLK-API] wlan_set_channel_switch_1_svc  WLAN RPC server : return code :0");
}

TEST_F(ChannelSwitch, IdleTimeoutIsStoredAndGivenToTheDriverAtOnce) {
    EXPECT_EQ(set_number(PROC_wlan_set_idle_timeout, 3, 300), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_INACT_3=\"300\"", "iwpriv ath2 inact 300"}));
    EXPECT_EQ(store_value("AP_INACT_3"), "300");
    EXPECT_EQ(get_number(PROC_wlan_get_idle_timeout, 3), (number_result{0, 300}));
}

TEST_F(ChannelSwitch, IdleTimeoutThatIsNotStoredIsAFailure) {
    EXPECT_EQ(get_number(PROC_wlan_get_idle_timeout, 3), (number_result{-1, 0}));
}

TEST_F(ChannelSwitch, IdleTimeoutOfANegativeIndexIsRefused) {
    set_store({"AP_INACT=60"});
    EXPECT_EQ(set_number(PROC_wlan_set_idle_timeout, -1, 300), -1);
    EXPECT_EQ(get_number(PROC_wlan_get_idle_timeout, -1), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(get_number(PROC_wlan_get_idle_timeout, 0), (number_result{0, 60}));
}

TEST_F(ChannelSwitch, IdleTimeoutMayBeNegative) {
    EXPECT_EQ(set_number(PROC_wlan_set_idle_timeout, 1, 0xffffffffu), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_INACT=\"-1\"", "iwpriv ath0 inact -1"}));
    EXPECT_EQ(get_number(PROC_wlan_get_idle_timeout, 1), (number_result{0, -1}));
}

TEST_F(ChannelSwitch, TheRadioIsOnTheAnnouncedChannelAfterwards) {
    EXPECT_EQ(announce(1, 1, 11, 0, 0), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 1), (number_result{0, 11}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel, 1), (number_result{0, 11}));
    restart_driver();
}

TEST_F(ChannelSwitch, IdleTimeoutIsWhatTheDriverHas) {
    EXPECT_EQ(set_number(PROC_wlan_set_idle_timeout, 9, 77), 0);
    EXPECT_EQ(run_command("iwpriv ath8 get_inact").text, "ath8      get_inact:77  \n");
}

TEST_F(ChannelSwitch, AToolThatFailsIsNotTheClientsConcern) {
    for (const char *fault : {"silent", "fail", "garbage", "missing"}) {
        ASSERT_EQ(run_command(std::string("fault iwpriv ") + fault).status, 0);
        EXPECT_EQ(announce(1, 1, 11, 0, 0), 0) << fault;
        EXPECT_EQ(set_number(PROC_wlan_set_idle_timeout, 1, 60), 0) << fault;
        EXPECT_EQ(store_value("AP_INACT"), "60") << fault;
    }
    run_command("fault off");
}

}  // namespace
