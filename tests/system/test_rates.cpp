// Rates, power and radio switches over the wire: the reply, the commands that were run, the store afterwards.
#include <gtest/gtest.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Rates : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with(TWO_RADIOS);
    }
};

TEST_F(Rates, BasicRatesAreReadFromTheDriver) {
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, 1),
              (text_result{0, "1,2,5.5,11,6,9,12,18,24,36,48,54"}));
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, 9), (text_result{0, "6,9,12,18,24,36,48,54"}));
    EXPECT_EQ(commands(), (strings{"iwconfig ath0", "iwconfig ath8"}));
}

TEST_F(Rates, OperationalRatesAreReadFromTheDriver) {
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 1),
              (text_result{0, "1,2,5.5,11,6,9,12,18,24,36,48,54,MCS0-MSC23"}));
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 9),
              (text_result{0, "6,9,12,18,24,36,48,54, MCS0-MCS23"}));
    EXPECT_EQ(commands(), (strings{"iwconfig ath0", "iwconfig ath8"}));
}

TEST_F(Rates, OperationalRatesOfAnAcNetworkAreThoseOfTheOldestMode) {
    set_store({"AP_RADIO_ID_9=1", "AP_CHMODE=11ACVHT80"});
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 9), (text_result{0, "6,9,12,18,24,36,48,54"}));
}

TEST_F(Rates, IndexZeroHasOperationalButNoBasicRates) {
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 0), (text_result{0, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, 0), (text_result{-1, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, -1), (text_result{-1, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, -1), (text_result{-1, ""}));
    EXPECT_EQ(commands(), strings{"iwconfig ath-1"});
}

TEST_F(Rates, ASilentDriverHasBasicButNoOperationalRates) {
    run_command("fault iwconfig silent");
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, 1), (text_result{0, "6,9,12,18,24,36,48,54"}));
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 1), (text_result{0, ""}));
    run_command("fault iwconfig off");
}

TEST_F(Rates, RatesFailWhenTheToolCannotBeStarted) {
    run_command("fault popen EMFILE");
    EXPECT_EQ(get_text(PROC_wlan_get_basic_data_transmit_rates, 1), (text_result{-1, ""}));
    EXPECT_EQ(get_text(PROC_wlan_get_operational_data_transmit_rates, 1), (text_result{-1, ""}));
    run_command("fault popen off");
}

TEST_F(Rates, SettingRatesIsAcceptedAndHasNoEffect) {
    EXPECT_EQ(set_text(PROC_wlan_set_basic_data_transmit_rates, 1, "1,2"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_operational_data_transmit_rates, 1, "1,2"), 0);
    EXPECT_TRUE(commands().empty());
}

TEST_F(Rates, PossibleRatesAreAlwaysTheSame) {
    EXPECT_EQ(get_text(PROC_wlan_get_possible_data_transmit_rates, -1), (text_result{0, "1,2,11"}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Rates, HidingTheSsidIsKeptForTheVap) {
    EXPECT_EQ(get_number(PROC_wlan_get_ssid_advertisement_enabled, 3), (number_result{0, 1}));
    EXPECT_EQ(set_number(PROC_wlan_set_ssid_advertisement_enabled, 3, 0), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_HIDESSID_3=\"1\""});
    EXPECT_EQ(store_value("AP_HIDESSID_3"), "1");
    EXPECT_EQ(get_number(PROC_wlan_get_ssid_advertisement_enabled, 3), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_ssid_advertisement_enabled, 3, 1), 0);
    EXPECT_EQ(store_value("AP_HIDESSID_3"), "0");
}

TEST_F(Rates, TheRadioSwitchIsKeptForTheRadio) {
    EXPECT_EQ(set_number(PROC_wlan_set_radio_enabled, 2, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_radio_enabled, 10, 0), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_RADIO_ENABLED_2=\"1\"", "cfg -a AP_RADIO_ENABLED=\"0\""}));
    EXPECT_EQ(store_value("AP_RADIO_ENABLED_2"), "1");
    EXPECT_EQ(store_value("AP_RADIO_ENABLED"), "0");
    EXPECT_EQ(get_number(PROC_wlan_get_radio_enabled, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_radio_enabled, 9), (number_result{0, 0}));
}

TEST_F(Rates, TheSupportedPowerLevelsAreAlwaysTheSame) {
    EXPECT_EQ(get_text(PROC_wlan_get_transmit_power_supported, 1), (text_result{0, "12,25,50,75,100"}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Rates, TheTransmitPowerIsKeptForTheRadio) {
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, 1), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_transmit_power, 2, 17), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_transmit_power, 10, 23), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_TXPWR_2=\"17\"", "cfg -a AP_TXPWR=\"23\""}));
    EXPECT_EQ(store_value("AP_TXPWR_2"), "17");
    EXPECT_EQ(store_value("AP_TXPWR"), "23");
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, 1), (number_result{0, 17}));
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, 9), (number_result{0, 23}));
}

TEST_F(Rates, TheTransmitPowerOfANegativeIndexSucceedsWithoutEffect) {
    set_store({"AP_TXPWR=23", "AP_TXPWR_2=17"});
    EXPECT_EQ(set_number(PROC_wlan_set_transmit_power, -1, 50), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, -1), (number_result{0, 0}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Rates, TheAutomaticRateIsKeptForTheRadio) {
    EXPECT_EQ(get_number(PROC_wlan_get_auto_rate_fallback_enable, 1), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_auto_rate_fallback_enable, 2, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_auto_rate_fallback_enable, 10, 0), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a RATECTL_2=\"auto\"", "cfg -a RATECTL=\"fix\""}));
    EXPECT_EQ(store_value("RATECTL_2"), "auto");
    EXPECT_EQ(store_value("RATECTL"), "fix");
    EXPECT_EQ(get_number(PROC_wlan_get_auto_rate_fallback_enable, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_auto_rate_fallback_enable, 9), (number_result{0, 0}));
}

TEST_F(Rates, PossibleChannelsAreTheRadiosAsRuns) {
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 9),
              (text_result{0, "36,40,44,48,52,56,60,64,100,104,108,112,149,153,157,161,165"}));
    EXPECT_EQ(commands(), strings{"iwlist ath8 freq | grep Channel"});
}

// The tool is asked here too, so that a radio with one run is told from a gateway without the tool.
TEST_F(Rates, ChannelsThatAreASingleRunGiveNoText) {
    EXPECT_EQ(run_command("iwlist ath0 freq | grep -c '^          Channel [0-9][0-9] : '").text, "13\n");
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 1), (text_result{0, ""}));
    EXPECT_EQ(commands(), strings{"iwlist ath0 freq | grep Channel"});
}

TEST_F(Rates, AnInterfaceThatIsDownHasNoChannels) {
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 10), (text_result{0, ""}));
    EXPECT_EQ(commands(), strings{"iwlist ath9 freq | grep Channel"});
}

TEST_F(Rates, AVapBelowOneHasNoChannels) {
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 0), (text_result{-1, ""}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Rates, ChannelsFailWhenTheToolCannotBeStarted) {
    run_command("fault popen EMFILE");
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 9), (text_result{-1, ""}));
    run_command("fault popen off");
}

TEST_F(Rates, AToolThatPrintsNonsenseHasNoChannels) {
    EXPECT_EQ(run_command("fault iwlist garbage").status, 0);
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 9), (text_result{0, ""}));
    EXPECT_EQ(run_command("fault iwlist silent").status, 0);
    EXPECT_EQ(get_text(PROC_wlan_get_possible_channels, 9), (text_result{0, ""}));
    run_command("fault iwlist off");
}

}  // namespace
