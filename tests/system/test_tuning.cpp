// Radio tuning, regulatory settings and the airtime switch over the wire: the reply, the commands that were run, the
// store afterwards.
#include <gtest/gtest.h>
#include <limits.h>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Tuning : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({});
    }

    void TearDown() override {
        run_command("fault off");
    }

    // A store of two radios, with these lines besides.
    void begin_with(strings lines) {
        for (const char *line : {"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_2=0", "AP_RADIO_ID_9=1",
                                 "AP_RADIO_ID_10=1", "AP_CHMODE=11ACVHT80", "AP_CHMODE_2=11NGHT20"})
            lines.push_back(line);
        WatchedGateway::begin_with(lines);
    }
};

int set_numbers(uint32_t procedure, const std::vector<int> &numbers) {
    bytes arguments;
    for (int number : numbers)
        arguments += vap(number);
    return code_of(call(procedure, arguments));
}

number_result get_numbers(uint32_t procedure, int first, int second) {
    return number_of(call(procedure, vap(first) + vap(second)));
}

// --- country ---

TEST_F(Tuning, CountryIsWrittenAsItsNumberAndReadBack) {
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 1, "GB"), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 9, "DE"), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a ATH_countrycode_2=\"826\"", "cfg -a ATH_countrycode=\"276\""}));
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, 2), (text_result{0, "GB"}));
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, 10), (text_result{0, "DE"}));
}

TEST_F(Tuning, CountryThatIsNoneIsRefusedAndWritesNothing) {
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 1, "us"), -1);
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 1, ""), -1);
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 1, std::string(8000, 'U')), -1);
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, -1, "US"), -1);
    EXPECT_TRUE(commands().empty());
}

TEST_F(Tuning, UnknownCountryNumberReadsAsUsTogetherWithAFailure) {
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, 1), (text_result{-1, "US"}));
    begin_with({"ATH_countrycode=843", "ATH_countrycode_2=840"});
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, 1), (text_result{-1, "US"}));
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, 9), (text_result{0, "US"}));
    EXPECT_EQ(get_text(PROC_wlan_get_country_code, -1), (text_result{-1, ""}));
}

// --- HT rate ---

TEST_F(Tuning, RateOfAnElevenNModeIsWrittenAsFourCodesAndReadBack) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 1, 9), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a MANRATE_2=\"0x87878787\"", "cfg -a MANRETRIES_2=\"0x04040404\"",
                                   "cfg -a RATECTL_2=\"fix\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, 1), (number_result{0, 9}));
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 1, 0xffffffff), 0);
    EXPECT_EQ(store_value("MANRATE_2"), "0x7d7d7d7d");
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, 1), (number_result{0, -1}));
}

TEST_F(Tuning, RateOfAnElevenAcModeIsWrittenAsItsNumberAndReadBack) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 9, 11), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a RATECTL=\"fix\"", "cfg -a MANRATE=\"9\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, 9), (number_result{0, 11}));
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 9, 12), -1);
    EXPECT_EQ(store_value("MANRATE"), "9");
}

TEST_F(Tuning, AutomaticRateReadsAsZero) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 9, 1), 0);
    EXPECT_EQ(commands(), strings{"cfg -a RATECTL=\"auto\""});
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, 9), (number_result{0, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, -1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, -1, 1), -1);
}

TEST_F(Tuning, LegacyModeHasNoRate) {
    set_store({"AP_CHMODE_2=11G", "MANRATE_2=0x80808080"});
    EXPECT_EQ(get_number(PROC_wlan_get_ht_mcs, 1), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_ht_mcs, 1, 2), -1);
}

// --- channel width ---

TEST_F(Tuning, ChannelWidthIsWrittenAsModeAndReadBack) {
    begin_with({"AP_PRIMARY_CH_2=6"});
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 1, 2), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_DISCOEXT_2=\"1\"", "cfg -a AP_CHMODE_2=\"11NGHT40\""}));
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log), strings{"chan_flag 000704a0 maxband=2 bw=2"});
    EXPECT_EQ(get_number(PROC_wlan_get_channel_bw, 1), (number_result{0, 2}));
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 1, 0), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_channel_bw, 1), (number_result{0, 0}));
}

TEST_F(Tuning, ChannelThatIsTwentyMegahertzWideStaysSoWhateverIsWanted) {
    begin_with({"AP_PRIMARY_CH=165"});
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 9, 2), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_DISCOEXT=\"1\"", "cfg -a AP_CHMODE=\"11ACVHT20\""}));
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 9, 3), 0);
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log),
              (strings{"chan_flag 00110140 maxband=1 bw=2", "chan_flag 00110140 maxband=1 bw=3"}));
    EXPECT_EQ(get_number(PROC_wlan_get_channel_bw, 9), (number_result{0, 0}));
}

TEST_F(Tuning, EightyMegahertzAreSetWhereTheChannelAllows) {
    set_store({"AP_RADIO_ID_9=1", "AP_PRIMARY_CH=36", "AP_CHMODE=11ACVHT20"});
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 9, 3), 0);
    EXPECT_EQ(store_value("AP_CHMODE"), "11ACVHT80");
    EXPECT_EQ(get_number(PROC_wlan_get_channel_bw, 9), (number_result{0, 3}));
}

TEST_F(Tuning, ChannelWidthOfANegativeIndexIsRefusedWithoutALine) {
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, -1, 1), -1);
    EXPECT_EQ(get_number(PROC_wlan_get_channel_bw, INT_MIN), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
    EXPECT_TRUE(lines_since(SERVER_LOG_FILE, log).empty());
}

TEST_F(Tuning, WidestChannelIsWhatTheDriversTableSays) {
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 1, 6), (number_result{0, 2}));
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 9, 36), (number_result{0, 4}));
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 9, 165), (number_result{0, 1}));
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 9, 6), (number_result{0, 1}));
    EXPECT_EQ(requests(), (strings{"ioctl ath0 0x8be7 5104 = 0", "ioctl ath8 0x8be7 5104 = 0",
                                   "ioctl ath8 0x8be7 5104 = 0", "ioctl ath8 0x8be7 5104 = 0"}));
}

TEST_F(Tuning, WidestAutomaticChannelIsTheRadios) {
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 2, 0), (number_result{0, 2}));
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 10, 0), (number_result{0, 4}));
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, -1, 0), (number_result{-1, 0}));
    EXPECT_TRUE(requests().empty());
    EXPECT_TRUE(commands().empty());
}

TEST_F(Tuning, DriverThatDoesNotAnswerAllowsEveryWidth) {
    run_command("fault ioctl:0x8be7 EPERM");
    EXPECT_EQ(get_numbers(PROC_wlan_get_max_bandwidth, 1, 6), (number_result{0, 4}));
    begin_with({"AP_PRIMARY_CH=165"});
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(set_number(PROC_wlan_set_channel_bw, 9, 3), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_CHMODE=\"11ACVHT80\""});
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log), (strings{"unable to get channel information: Operation not permitted",
                                                          "chan_flag ffffffff maxband=4 bw=3"}));
}

// --- extension channel ---

TEST_F(Tuning, ExtensionChannelIsWrittenAsModeAndReadBack) {
    for (auto [side, mode] : {std::pair{0, "11NGHT20MINUS"}, {1, "11NGHT20PLUS"}, {2, "11NGHT20"}}) {
        begin_with({});
        EXPECT_EQ(set_numbers(PROC_wlan_set_extension_channel, {1, 7, side}), 0);
        EXPECT_EQ(commands(), strings{std::string("cfg -a AP_CHMODE_2=\"") + mode + "\""});
        EXPECT_EQ(get_numbers(PROC_wlan_get_extension_channel, 1, 7), (number_result{0, side}));
    }
}

TEST_F(Tuning, AnyOtherExtensionChannelIsRefusedAndWritesNothing) {
    EXPECT_EQ(set_numbers(PROC_wlan_set_extension_channel, {1, 0, 3}), -1);
    EXPECT_EQ(set_numbers(PROC_wlan_set_extension_channel, {1, 0, -1}), -1);
    EXPECT_EQ(set_numbers(PROC_wlan_set_extension_channel, {-1, 0, 0}), -1);
    EXPECT_EQ(get_numbers(PROC_wlan_get_extension_channel, -1, 0), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
}

// --- chain masks ---

TEST_F(Tuning, StreamsAreAskedOfTheRadiosTool) {
    EXPECT_EQ(call(PROC_wlan_get_ht_tx_stream, vap(1)).outcome, call_outcome::SUCCESS);
    EXPECT_EQ(call(PROC_wlan_get_ht_rx_stream, vap(9)).outcome, call_outcome::SUCCESS);
    EXPECT_EQ(commands(), (strings{"iwpriv wifi0 get_txchainmask", "iwpriv wifi1 get_rxchainmask"}));
}

TEST_F(Tuning, StreamsAreKeptAsMaskAndThenApplied) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_tx_stream, 1, 2), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_ht_rx_stream, 9, 3), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a TX_CHAINMASK_2=\"3\"", "iwpriv wifi0 txchainmask 3",
                                   "cfg -a RX_CHAINMASK=\"7\"", "iwpriv wifi1 rxchainmask 7"}));
    EXPECT_EQ(store_value("TX_CHAINMASK_2"), "3");
    EXPECT_EQ(store_value("RX_CHAINMASK"), "7");
}

struct stream_row {
    uint32_t getter;
    uint32_t setter;
};
const stream_row STREAMS[] = {
    {PROC_wlan_get_ht_tx_stream, PROC_wlan_set_ht_tx_stream},
    {PROC_wlan_get_ht_rx_stream, PROC_wlan_set_ht_rx_stream},
};

// Numbers that no mask stands for become one stream.
TEST_F(Tuning, StreamsThatWereSetAreWhatTheDriverHas) {
    const int set_and_read[][2] = {{1, 1}, {2, 2}, {3, 3}, {5, 1}, {0, 1}, {3, 3}};
    for (const stream_row &row : STREAMS)
        for (int index : {1, 9})
            for (const auto &pair : set_and_read) {
                EXPECT_EQ(set_number(row.setter, index, static_cast<uint32_t>(pair[0])), 0);
                EXPECT_EQ(get_number(row.getter, index), (number_result{0, pair[1]})) << pair[0] << " of " << index;
            }
}

TEST_F(Tuning, StreamsOfTheTwoRadiosAndDirectionsAreApart) {
    run_command(
        "iwpriv wifi0 txchainmask 1; iwpriv wifi0 rxchainmask 3; iwpriv wifi1 txchainmask 7;"
        "iwpriv wifi1 rxchainmask 1");
    EXPECT_EQ(get_number(PROC_wlan_get_ht_tx_stream, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_rx_stream, 1), (number_result{0, 2}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_tx_stream, 9), (number_result{0, 3}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_rx_stream, 9), (number_result{0, 1}));
}

TEST_F(Tuning, StreamsOfASilentOrNonsensicalToolCannotBeReadAndAreSetAllTheSame) {
    for (const char *fault : {"silent", "fail", "garbage", "missing"}) {
        ASSERT_EQ(run_command(std::string("fault iwpriv ") + fault).status, 0);
        for (const stream_row &row : STREAMS) {
            EXPECT_EQ(get_number(row.getter, 1), (number_result{-1, 0})) << fault;
            EXPECT_EQ(set_number(row.setter, 1, 2), 0) << fault;
        }
    }
}

TEST_F(Tuning, StreamsOfANegativeIndexAreRefused) {
    for (uint32_t procedure : {PROC_wlan_set_ht_tx_stream, PROC_wlan_set_ht_rx_stream})
        EXPECT_EQ(set_number(procedure, -1, 2), -1);
    for (uint32_t procedure : {PROC_wlan_get_ht_tx_stream, PROC_wlan_get_ht_rx_stream})
        EXPECT_EQ(get_number(procedure, -1), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
}

TEST_F(Tuning, StreamsCannotBeReadButSetWhenNoToolCanBeStarted) {
    run_command("fault popen EMFILE");
    for (uint32_t procedure : {PROC_wlan_get_ht_tx_stream, PROC_wlan_get_ht_rx_stream})
        EXPECT_EQ(get_number(procedure, 1), (number_result{-1, 0}));
    for (uint32_t procedure : {PROC_wlan_set_ht_tx_stream, PROC_wlan_set_ht_rx_stream})
        EXPECT_EQ(set_number(procedure, 1, 2), 0);
}

// --- current channel ---

TEST_F(Tuning, CurrentChannelIsWhatTheInterfaceWorksOn) {
    begin_with({"AP_PRIMARY_CH=36", "AP_PRIMARY_CH_2=6"});
    EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 1), (number_result{0, 6}));
    EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 9), (number_result{0, 36}));
    EXPECT_EQ(commands(), (strings{"iwconfig ath0", "iwconfig ath8"}));
    for (int channel : {1, 2, 5, 13}) {
        set_store({"AP_PRIMARY_CH_2=" + std::to_string(channel)});
        EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 1), (number_result{0, channel}));
    }
    for (int channel : {40, 60, 100, 104, 149, 165}) {
        set_store({"AP_PRIMARY_CH=" + std::to_string(channel)});
        EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 9), (number_result{0, channel}));
    }
}

TEST_F(Tuning, CurrentChannelFailsWithoutAFrequency) {
    EXPECT_EQ(get_number(PROC_wlan_get_current_channel, -1), (number_result{-1, 0}));
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 2), (number_result{-1, 0})) << "an interface that is down";
    for (const char *fault : {"iwconfig silent", "iwconfig garbage", "iwconfig missing", "popen EMFILE"}) {
        run_command("fault off");
        EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 1).code, 0);
        run_command(std::string("fault ") + fault);
        EXPECT_EQ(get_number(PROC_wlan_get_current_channel, 1), (number_result{-1, 0})) << fault;
    }
}

// --- 802.11u ---

TEST_F(Tuning, ElevenUIsAnsweredWithAFailureAndALine) {
    size_t log = mark_of(SERVER_LOG_FILE);
    EXPECT_EQ(get_number(PROC_wlan_get_dot11u_enable, 1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_dot11u_enable, 1, 1), -1);
    decoded_result result = result_of(call(PROC_wlan_get_dot11u_attribute, vap(1)));
    EXPECT_EQ(result.code, -1);
    EXPECT_EQ(result.values, std::vector<uint32_t>(20, 0));
    EXPECT_EQ(set_numbers(PROC_wlan_set_dot11u_attribute, {1, 2, 1, 1, 1, 1}), -1);
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log), strings(4, "Has not been implemented"));
    EXPECT_TRUE(commands().empty());
}

// --- numbers of the store ---

enum class answer_when_absent { ZERO, FAILURE };

// A pair whose setter writes one number under one key.
struct wire_pair {
    const char *name;
    uint32_t get;
    uint32_t set;
    std::string key_of_vap_2;
    answer_when_absent absent;
};

const wire_pair WIRE_PAIRS[] = {
    {"BeaconInterval", PROC_wlan_get_beacon_interval, PROC_wlan_set_beacon_interval, "BEACON_INT_2",
     answer_when_absent::ZERO},
    {"DtimPeriod", PROC_wlan_get_dtim_period, PROC_wlan_set_dtim_period, "AP_DTIM_2", answer_when_absent::ZERO},
    {"RtsThreshold", PROC_wlan_get_rts_threshold, PROC_wlan_set_rts_threshold, "AP_RTSTHRES_2",
     answer_when_absent::ZERO},
    {"FragThreshold", PROC_wlan_get_frag_threshold, PROC_wlan_set_frag_threshold, "AP_FRAGTHRES_2",
     answer_when_absent::ZERO},
    {"TxBurst", PROC_wlan_get_tx_burst, PROC_wlan_set_tx_burst, "AP_TXBURST_2", answer_when_absent::ZERO},
    {"Amsdu", PROC_wlan_get_ams_du, PROC_wlan_set_ams_du, "AP_AMSDU_2", answer_when_absent::ZERO},
    {"BaDecline", PROC_wlan_get_ba_decline, PROC_wlan_set_ba_decline, "AP_BADECLINE_2", answer_when_absent::ZERO},
    {"BlockAck", PROC_wlan_get_block_ack, PROC_wlan_set_block_ack, "AMPDUENABLE_2", answer_when_absent::ZERO},
    {"Ieee80211h", PROC_wlan_get_ieee80211h_enable, PROC_wlan_set_ieee80211h_enable, "AP_EN11H_2",
     answer_when_absent::ZERO},
    {"ShortSlot", PROC_wlan_get_short_slot, PROC_wlan_set_short_slot, "DUMMY_SHORTSLOT_2", answer_when_absent::ZERO},
    {"ShortRetryLimit", PROC_wlan_get_short_retry_limit, PROC_wlan_set_short_retry_limit, "DUMMY_SHORTRETRYLIMIT_2",
     answer_when_absent::ZERO},
    {"LongRetryLimit", PROC_wlan_get_long_retry_limit, PROC_wlan_set_long_retry_limit, "DUMMY_LONGRETRYLIMIT_2",
     answer_when_absent::ZERO},
    {"HtMode", PROC_wlan_get_ht_mode, PROC_wlan_set_ht_mode, "PUREN_2", answer_when_absent::ZERO},
    {"NProtection", PROC_wlan_get_n_protection, PROC_wlan_set_n_protection, "DUMMY_NPROT_2", answer_when_absent::ZERO},
    {"SideBand", PROC_wlan_get_side_band, PROC_wlan_set_side_band, "DUMMY_SIDEBAND_2", answer_when_absent::ZERO},
    {"HtRdg", PROC_wlan_get_ht_rdg, PROC_wlan_set_ht_rdg, "DUMMY_HTRDG_2", answer_when_absent::ZERO},
    {"BssIsolate", PROC_wlan_get_bss_isolate, PROC_wlan_set_bss_isolate, "AP_APBRI_2", answer_when_absent::FAILURE},
    {"MaxStationNum", PROC_wlan_get_max_station_num, PROC_wlan_set_max_station_num, "AP_MAX_STA_2",
     answer_when_absent::FAILURE},
    {"StaAssocRssiThresh", PROC_wlan_get_sta_assoc_rssi_thresh, PROC_wlan_set_sta_assoc_rssi_thresh,
     "AP_STA_RSSI_THRESH_2", answer_when_absent::ZERO},
    {"BssWeight", PROC_wlan_get_bss_weight, PROC_wlan_set_bss_weight, "AP_BSSWEIGHT_2", answer_when_absent::ZERO},
};

TEST_F(Tuning, NumberIsWrittenUnderItsKeyAndReadBack) {
    for (const wire_pair &pair : WIRE_PAIRS) {
        SCOPED_TRACE(pair.name);
        begin_with({});
        EXPECT_EQ(set_number(pair.set, 2, 1), 0);
        EXPECT_EQ(commands(), strings{"cfg -a " + pair.key_of_vap_2 + "=\"1\""});
        EXPECT_EQ(store_value(pair.key_of_vap_2), "1");
        EXPECT_EQ(get_number(pair.get, 2), (number_result{0, 1}));
    }
}

TEST_F(Tuning, AbsentNumberIsZeroOrAFailure) {
    for (const wire_pair &pair : WIRE_PAIRS) {
        int code = pair.absent == answer_when_absent::ZERO ? 0 : -1;
        EXPECT_EQ(get_number(pair.get, 2), (number_result{code, 0})) << pair.name;
    }
}

TEST_F(Tuning, NumberOfANegativeIndexIsRefused) {
    for (const wire_pair &pair : WIRE_PAIRS) {
        if (pair.set == PROC_wlan_set_sta_assoc_rssi_thresh || pair.set == PROC_wlan_set_bss_weight)
            continue;  // they take every index
        EXPECT_EQ(set_number(pair.set, -1, 1), -1) << pair.name;
        EXPECT_EQ(get_number(pair.get, -1), (number_result{-1, 0})) << pair.name;
    }
    EXPECT_TRUE(commands().empty());
}

TEST_F(Tuning, RssiThresholdAndWeightTakeEveryIndex) {
    EXPECT_EQ(set_number(PROC_wlan_set_sta_assoc_rssi_thresh, -1, static_cast<uint32_t>(-70)), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_bss_weight, INT_MIN, 30), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_STA_RSSI_THRESH=\"-70\"", "cfg -a AP_BSSWEIGHT=\"30\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_sta_assoc_rssi_thresh, -5), (number_result{0, -70}));
    EXPECT_EQ(get_number(PROC_wlan_get_bss_weight, 1), (number_result{0, 30}));
}

TEST_F(Tuning, ProtectionAndPreambleAreWrittenForEightVapsAndReadFromTheVap) {
    struct {
        uint32_t get;
        uint32_t set;
        std::string key;
    } pairs[] = {{PROC_wlan_get_bg_protection, PROC_wlan_set_bg_protection, "AP_PROTMODE"},
                 {PROC_wlan_get_tx_preamble, PROC_wlan_set_tx_preamble, "AP_TXPREAMBLE"}};
    for (const auto &pair : pairs) {
        begin_with({});
        EXPECT_EQ(set_number(pair.set, 10, 1), 0);
        strings expected;
        for (int index = 9; index <= 16; index++)
            expected.push_back("cfg -a " + pair.key + "_" + std::to_string(index) + "=\"1\"");
        EXPECT_EQ(commands(), expected);
        EXPECT_EQ(get_number(pair.get, 16), (number_result{0, 1}));
        EXPECT_EQ(get_number(pair.get, 8), (number_result{0, 0}));
        EXPECT_EQ(set_number(pair.set, 8, 1), 0);
        EXPECT_EQ(store_value(pair.key), "1");
        EXPECT_EQ(set_number(pair.set, -1, 0), -1);
        EXPECT_EQ(get_number(pair.get, -1), (number_result{-1, 0}));
    }
}

TEST_F(Tuning, GuardIntervalIsStoredTheOtherWayRound) {
    EXPECT_EQ(get_number(PROC_wlan_get_guard_interval, 2), (number_result{0, 1})) << "while it is absent";
    EXPECT_EQ(set_number(PROC_wlan_set_guard_interval, 2, 0), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_SHORTGI_2=\"1\""});
    EXPECT_EQ(get_number(PROC_wlan_get_guard_interval, 2), (number_result{0, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_guard_interval, -1, 0), -1);
}

TEST_F(Tuning, StbcIsWrittenForBothDirections) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_stbc, 1, 1), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_TXSTBC_2=\"1\"", "cfg -a AP_RXSTBC_2=\"1\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_stbc, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_ht_stbc, 9), (number_result{0, 0}));
}

TEST_F(Tuning, StationIsolationIsStoredAndThenApplied) {
    EXPECT_EQ(set_number(PROC_wlan_set_station_isolate, 2, 1), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_STATIONISOLATE_2=\"1\"", "iwpriv ath1 l2tif 1"}));
    EXPECT_EQ(get_number(PROC_wlan_get_station_isolate, 2), (number_result{0, 1}));
    EXPECT_EQ(set_number(PROC_wlan_set_station_isolate, -1, 1), -1);
}

TEST_F(Tuning, StationIsolationIsWhatTheDriverHas) {
    for (int isolated : {1, 0}) {
        EXPECT_EQ(set_number(PROC_wlan_set_station_isolate, 1, static_cast<uint32_t>(isolated)), 0);
        EXPECT_EQ(run_command("iwpriv ath0 get_l2tif").text,
                  "ath0      get_l2tif:" + std::to_string(isolated) + "  \n");
    }
}

TEST_F(Tuning, IgmpSnoopingIsStoredAsTwo) {
    EXPECT_EQ(get_number(PROC_wlan_get_igmp_snooping, 2), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_igmp_snooping, 2, 1), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_IGMP_SNOOP_2=\"2\""});
    EXPECT_EQ(get_number(PROC_wlan_get_igmp_snooping, 2), (number_result{0, 1}));
    set_store({"AP_IGMP_SNOOP_2=1"});
    EXPECT_EQ(get_number(PROC_wlan_get_igmp_snooping, 2), (number_result{0, 0}));
}

TEST_F(Tuning, BeamformingIsSetThroughIndexZeroOnly) {
    for (int index : {-1, 1, 2, 9})
        EXPECT_EQ(set_number(PROC_wlan_set_implicit_beamforming_enable, index, 1), -1);
    EXPECT_TRUE(commands().empty());
    EXPECT_EQ(get_number(PROC_wlan_get_implicit_beamforming_enable, 1), (number_result{-1, 0}));
    EXPECT_EQ(set_number(PROC_wlan_set_implicit_beamforming_enable, 0, 1), 0);
    EXPECT_EQ(commands(), strings{"cfg -a AP_TXBF_2=\"1\""});
    EXPECT_EQ(get_number(PROC_wlan_get_implicit_beamforming_enable, 1), (number_result{0, 1}));
}

TEST_F(Tuning, SettersSucceedWhenNoToolCanBeStarted) {
    run_command("fault popen EMFILE");
    for (const wire_pair &pair : WIRE_PAIRS)
        EXPECT_EQ(set_number(pair.set, 2, 1), 0) << pair.name;
    EXPECT_EQ(set_number(PROC_wlan_set_station_isolate, 2, 1), 0);
    EXPECT_EQ(set_text(PROC_wlan_set_country_code, 1, "GB"), 0);
}

// --- airtime ---

TEST_F(Tuning, AirtimeSwitchesOfVapsOneAndNineAreCrossed) {
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 1), (number_result{-1, 0})) << "while it is absent";
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 1, 1), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, 9, 0), 0);
    EXPECT_EQ(commands(), (strings{"cfg -a AP_ENABLE_ATF_2=\"1\"", "cfg -a AP_ENABLE_ATF=\"0\""}));
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 1), (number_result{0, 1}));
    EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, 9), (number_result{0, 0}));
}

TEST_F(Tuning, AirtimeSwitchOfEveryOtherVapIsRefused) {
    begin_with({"AP_ENABLE_ATF=1", "AP_ENABLE_ATF_2=1"});
    for (int index : {-1, 0, 2, 8, 10, 16, 17}) {
        EXPECT_EQ(set_number(PROC_wlan_set_airtime_enable, index, 1), -1) << index;
        EXPECT_EQ(get_number(PROC_wlan_get_airtime_enable, index), (number_result{-1, 0})) << index;
    }
    EXPECT_TRUE(commands().empty());
}

}  // namespace
