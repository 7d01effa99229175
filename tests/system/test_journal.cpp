// What the server does without a tool that would show it, as the journal has it: the keys that it looks up in the
// store, in their order, and the files that it opens.
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "config/store.h"
#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

class Journal : public WatchedGateway {
protected:
    void SetUp() override {
        begin_with({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_SSID=one", "AP_SSID_16=sixteen",
                    "AP_SECMODE=WPA", "AP_WPA=2", "AP_TXPWR=60", "AP_TXPWR_2=30"});
    }

    // Without those of the daemons, which may still be about what another test has told them.
    strings events() const {
        strings events = lines_since(JOURNAL_FILE, journal_mark);
        std::erase_if(events, [](const std::string &line) { return line.starts_with("datagram "); });
        return events;
    }
};

TEST_F(Journal, OneKeyIsOneLine) {
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "one"}));
    EXPECT_EQ(events(), strings{"read AP_SSID"});
}

TEST_F(Journal, SeveralKeysAreInTheOrderInWhichTheyWereLookedUp) {
    EXPECT_EQ(get_text(PROC_wlan_get_beacon_type, 1), (text_result{0, "11i"}));
    EXPECT_EQ(events(), (strings{"read AP_SECMODE", "read AP_WPA"}));
}

TEST_F(Journal, KeysOfARadioHaveItsStoreIndex) {
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, 1), (number_result{0, 30}));
    EXPECT_EQ(get_number(PROC_wlan_get_transmit_power, 9), (number_result{0, 60}));
    EXPECT_EQ(events(), (strings{"read AP_RADIO_ID", "read AP_TXPWR_2", "read AP_RADIO_ID_9", "read AP_TXPWR"}));
}

TEST_F(Journal, LastVapHasItsIndexInTheKey) {
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 16), (text_result{0, "sixteen"}));
    EXPECT_EQ(events(), strings{"read AP_SSID_16"});
}

TEST_F(Journal, KeyThatIsAbsentIsShownToo) {
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 5).text, "");
    EXPECT_EQ(events(), strings{"read AP_SSID_5"});
}

TEST_F(Journal, KeyIsShownWhenThereIsNoStoreAtAll) {
    unlink(STORE_FILE);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1).text, "");
    EXPECT_EQ(events(), strings{"read AP_SSID"});
}

TEST_F(Journal, KeyThatIsLookedUpAgainIsShownAgain) {
    get_text(PROC_wlan_get_ssid, 1);
    get_text(PROC_wlan_get_ssid, 1);
    EXPECT_EQ(events(), (strings{"read AP_SSID", "read AP_SSID"}));
}

TEST_F(Journal, LookUpsStandBetweenTheCommandsWhereTheyWereMade) {
    EXPECT_EQ(set_number(PROC_wlan_set_ht_tx_stream, 1, 1), 0);
    EXPECT_EQ(events(), (strings{"read AP_RADIO_ID", "popen cfg -a TX_CHAINMASK_2=\"1\"", "run cfg -a TX_CHAINMASK_2=1",
                                 "popen iwpriv wifi0 txchainmask 1", "run iwpriv wifi0 txchainmask 1"}));
}

TEST_F(Journal, WriteWithoutALookUpShowsNone) {
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 1, "two"), 0);
    EXPECT_EQ(events(), (strings{"popen cfg -a AP_SSID=\"two\"", "run cfg -a AP_SSID=two"}));
}

TEST_F(Journal, DebugLinesAreThoseOfAServerThatNobodyWatches) {
    set_debug(true);
    get_text(PROC_wlan_get_ssid, 5);
    set_debug(false);
    EXPECT_EQ(lines_with({"[VLK-API] getWifiParam", "[VLK-API] athcfg_getbyname"}),
              (strings{"[VLK-API] getWifiParam AP_SSID_5= does not exist in /tmp/.apcfg",
                       "[VLK-API] athcfg_getbyname index 4, Param: AP_SSID_5= is "}));
}

TEST_F(Journal, FileThatTheServerReadsItselfIsShown) {
    call(PROC_wlan_get_bs_bss_5g_capable_table, vap(1));
    EXPECT_EQ(events(), strings{"file read /nvram/5gcapabletable"});
}

TEST_F(Journal, FileThatIsNotThereIsShownToo) {
    std::string table = read_file("/nvram/5gcapabletable");
    unlink("/nvram/5gcapabletable");
    call(PROC_wlan_get_bs_bss_5g_capable_table, vap(1));
    EXPECT_EQ(events(), strings{"file read /nvram/5gcapabletable"});
    write_file("/nvram/5gcapabletable", table);
}

TEST_F(Journal, FileThatTheServerWritesItselfIsShownAsWritten) {
    call(PROC_wlan_set_bs_bss_5g_capable_clear, vap(1) + xdr_word(1));
    EXPECT_EQ(events(), (strings{"file write /nvram/5gcapabletable", "ioctl ath0 0x8bf8 211 = 0"}));
}

TEST_F(Journal, StoreThatIsWrittenInPlaceIsAFileLikeAnyOther) {
    kept_settings kept;
    write_file("/tmp/wifi_defaults.dat", "");
    EXPECT_EQ(code_of(call(PROC_wlan_set_restore_defaults, xdr_word(1))), 0);
    strings files = events();
    std::erase_if(files, [](const std::string &line) { return !line.starts_with("file "); });
    EXPECT_EQ(files, (strings{"file read /tmp/wifi_defaults.dat", "file write /tmp/.apcfg"}));
    kept.put_back();
}

}  // namespace
