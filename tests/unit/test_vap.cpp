// VAP identity and basic settings: what each operation reads, runs, writes and refuses.
#include "params/vap.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "config/store.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

// What iwconfig and ifconfig print about an interface, shortened.
std::string ifconfig_output(const std::string &address) {
    return "ath0      Link encap:Ethernet  HWaddr " + address + "  \n          UP BROADCAST RUNNING MULTICAST\n";
}

const char IWCONFIG_UP[] =
    "ath0      IEEE 802.11ng  ESSID:\"net\"\n"
    "          Mode:Master  Frequency:2.437 GHz  Access Point: 02:00:00:00:00:01\n"
    "          Bit Rate:130 Mb/s   Tx-Power=20 dBm\n";

// A gateway whose radios have eight VAPs each. The number of VAPs is kept for the life of a process, so tests that
// need another one run in a process of their own.
struct Vap : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        install_tool("ifconfig");
        install_tool("iwconfig");
        store({});
    }

    void store(std::vector<std::string> lines) {
        lines.push_back("AP_VAP_NUM=8");
        write_store(lines);
    }

    // Gives the interface of a VAP this address.
    void set_address(int index, const std::string &address) {
        set_tool_answer("ifconfig", "ath" + std::to_string(index - 1), ifconfig_output(address));
    }
};

// --- entries ---

TEST_F(Vap, ThereAreAlwaysSixteenEntries) {
    int count = 0;
    EXPECT_EQ(wlan_getNumberOfEntries(&count), 0);
    EXPECT_EQ(count, 16);
}

TEST_F(Vap, AddingAnEntryIsAcceptedAndHasNoEffect) {
    EXPECT_EQ(wlan_addEntry(), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, DeletingAnEntryIsAcceptedAndHasNoEffect) {
    EXPECT_EQ(wlan_delEntry(), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- names ---

TEST_F(Vap, TheNameOfAVapIsItsInterface) {
    EXPECT_EQ(text_of(wlan_getName, 1), "ath0");
    EXPECT_EQ(text_of(wlan_getName, 16), "ath15");
}

TEST_F(Vap, AVapAboveSixteenHasAnEmptyName) {
    EXPECT_EQ(text_of(wlan_getName, 17), "");
    EXPECT_EQ(text_of(wlan_getName, INT_MAX), "");
}

TEST_F(Vap, AVapBelowOneHasNoNameButFourZeroBytes) {
    for (int index : {0, -1, INT_MIN}) {
        text_buffer name;
        EXPECT_EQ(wlan_getName(index, name.text, sizeof(name.text)), -1) << "index " << index;
        EXPECT_TRUE(name.begins_with_zeros_only(4)) << "index " << index;
    }
}

TEST_F(Vap, FourZeroBytesAreCutToTheBuffer) {
    text_buffer name;
    EXPECT_EQ(wlan_getName(0, name.text, 2), -1);
    EXPECT_TRUE(name.begins_with_zeros_only(2));
}

TEST_F(Vap, ANameIsCutToTheBuffer) {
    text_buffer name;
    EXPECT_EQ(wlan_getName(16, name.text, 4), 0);
    EXPECT_STREQ(name.text, "ath");
    EXPECT_EQ(name.text[4], '?');
}

// --- BSSIDs ---

TEST_F(Vap, TheBssidIsTheHardwareAddressOfTheInterface) {
    set_address(9, "02:00:00:00:00:99");
    EXPECT_EQ(text_of(wlan_getBSSID, 9), "02:00:00:00:00:99");
    EXPECT_EQ(tool_calls(), calls({"ifconfig ath8"}));
}

TEST_F(Vap, TheBssidIsSeventeenCharactersOfWhatTheToolPrints) {
    set_tool_answer("ifconfig", "ath0", "HWaddr_0123456789abcdefghi");
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "0123456789abcdefg");
}

TEST_F(Vap, AHardwareAddressThatIsTooShortIsTakenAsFarAsItGoes) {
    set_tool_answer("ifconfig", "ath0", "ath0 HWaddr 02:00");
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "02:00");
}

TEST_F(Vap, AnOutputThatEndsBehindTheLabelGivesAnEmptyBssid) {
    set_tool_answer("ifconfig", "ath0", "ath0 HWaddr");
    set_tool_answer("ifconfig", "ath1", "ath1 HWaddr ");
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "");
    EXPECT_EQ(text_of(wlan_getBSSID, 2), "");
}

TEST_F(Vap, WithoutAHardwareAddressTheBssidIsTheStoredOne) {
    store({"AP_BSSID_3=02:aa:bb:cc:dd:ee"});
    set_tool_answer("ifconfig", "ath2", "ath2: error fetching interface information\n");
    EXPECT_EQ(text_of(wlan_getBSSID, 3), "02:aa:bb:cc:dd:ee");
}

TEST_F(Vap, WithASilentToolTheBssidIsTheStoredOne) {
    store({"AP_BSSID=02:aa:bb:cc:dd:ee"});
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "02:aa:bb:cc:dd:ee");
}

TEST_F(Vap, AStoredBssidIsCutToSeventeenCharacters) {
    store({"AP_BSSID=02:aa:bb:cc:dd:ee and more"});
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "02:aa:bb:cc:dd:ee");
}

TEST_F(Vap, WithoutAnyAddressTheBssidIsTheNullAddress) {
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "00:00:00:00:00:00");
    store({"AP_BSSID="});
    EXPECT_EQ(text_of(wlan_getBSSID, 1), "00:00:00:00:00:00");
}

TEST_F(Vap, ABssidIsCutToTheBuffer) {
    set_address(1, "02:00:00:00:00:01");
    text_buffer bssid;
    EXPECT_EQ(wlan_getBSSID(1, bssid.text, 6), 0);
    EXPECT_STREQ(bssid.text, "02:00");
    EXPECT_EQ(bssid.text[6], '?');
}

TEST_F(Vap, AVapBelowOneHasNoBssidButFourZeroBytes) {
    for (int index : {0, -1, INT_MIN}) {
        text_buffer bssid;
        EXPECT_EQ(wlan_getBSSID(index, bssid.text, sizeof(bssid.text)), -1) << "index " << index;
        EXPECT_TRUE(bssid.begins_with_zeros_only(4)) << "index " << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, ABssidFailsWhenTheToolCannotBeStarted) {
    char bssid[MAC_TEXT_SIZE];
    wlan_getBSSID(1, bssid, sizeof(bssid));  // the number of VAPs is known from here on
    begin_descriptor_shortage();
    int status = wlan_getBSSID(1, bssid, sizeof(bssid));
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
}

TEST_F(Vap, ABssidRequestIsLogged) {
    text_of(wlan_getBSSID, 1);  // the number of VAPs is known from here on
    set_address(10, "02:00:00:00:00:10");
    EXPECT_EQ(debug_lines([] { text_of(wlan_getBSSID, 10); }),
              "[VLK-API] wlan_getBSSID comparing index 9 to ap_vap_num= 8\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:ifconfig ath9\n"
              "[VLK-API] wlan_getBSSID executed ifconfig ath9\n");
}

TEST_F(Vap, AnInterfaceThatTheDriverHasNotMadeIsNotAskedFor) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // With three VAPs a radio, only VAPs 1 to 3 and 9 to 11 have interfaces.
    EXPECT_EXIT(
        {
            write_store({"AP_VAP_NUM=3"});
            for (int index : {1, 3, 4, 8, 9, 11, 12, 16, 17}) {
                text_of(wlan_getBSSID, index);
            }
            exit(tool_calls() == calls({"ifconfig ath0", "ifconfig ath2", "ifconfig ath8", "ifconfig ath10"}) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Vap, AnInterfaceThatIsNotAskedForHasTheStoredBssid) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            write_store({"AP_VAP_NUM=3", "AP_BSSID_4=02:00:00:00:00:04"});
            fprintf(stderr, "%s %s", text_of(wlan_getBSSID, 4).c_str(), text_of(wlan_getBSSID, 5).c_str());
            exit(0);
        },
        testing::ExitedWithCode(0), "^02:00:00:00:00:04 00:00:00:00:00:00");
}

TEST_F(Vap, TheNumberOfVapsIsKeptOnceItIsKnown) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            write_store({"AP_VAP_NUM=2"});
            text_of(wlan_getBSSID, 1);
            write_store({"AP_VAP_NUM=8"});
            text_of(wlan_getBSSID, 8);
            exit(tool_calls() == calls({"ifconfig ath0"}) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Vap, TheNumberOfVapsIsReadAgainWhileItIsUnknown) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            write_store({});
            text_of(wlan_getBSSID, 1);
            write_store({"AP_VAP_NUM=0"});
            text_of(wlan_getBSSID, 1);
            write_store({"AP_VAP_NUM=1"});
            text_of(wlan_getBSSID, 1);
            exit(tool_calls() == calls({"ifconfig ath0"}) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// --- finding a VAP by its BSSID ---

// The VAPs that a search for the BSSID looks at, in order; no VAP has it.
std::vector<std::string> search_order(const char *bssid) {
    int port;
    int index;
    EXPECT_EQ(wlan_getBssIdPort(bssid, &port, &index), -1);
    return tool_calls();
}

TEST_F(Vap, ASearchStartsAtTheFirstVap) {
    EXPECT_EQ(search_order("00:00:00:00:00:01")[0], "ifconfig ath0");
}

TEST_F(Vap, ASearchForALastDigitFiveStartsAtTheNinthVap) {
    EXPECT_EQ(search_order("00:00:00:00:00:05")[0], "ifconfig ath8");
}

TEST_F(Vap, ASearchStartsOneVapLaterWhenTheSecondCharactersCodeHasTheBitOfValueTwo) {
    for (const char *digit : {"2", "3", "6", "7", "b", "c", "f", "B", "C", "F"}) {
        reset_platform();
        install_tool("ifconfig");
        store({});
        EXPECT_EQ(search_order((std::string("0") + digit + ":00:00:00:00:01").c_str())[0], "ifconfig ath1") << digit;
    }
}

TEST_F(Vap, ASearchStartsAtTheFirstVapWhenTheSecondCharactersCodeHasNotThatBit) {
    for (const char *digit : {"0", "1", "4", "5", "8", "9", "a", "d", "e", "A", "D", "E"}) {
        reset_platform();
        install_tool("ifconfig");
        store({});
        EXPECT_EQ(search_order((std::string("0") + digit + ":00:00:00:00:01").c_str())[0], "ifconfig ath0") << digit;
    }
}

TEST_F(Vap, BothStartRulesAddUp) {
    EXPECT_EQ(search_order("02:00:00:00:00:05")[0], "ifconfig ath9");
}

TEST_F(Vap, AShortBssidIsSearchedFromTheFirstVap) {
    EXPECT_EQ(search_order("02:00:00:00:00:0")[0], "ifconfig ath0");
    EXPECT_EQ(search_order("").size(), 32U);
}

TEST_F(Vap, ASearchWrapsToTheFirstVapAndGivesUpAfterSixteen) {
    calls expected;
    for (int number : {9, 10, 11, 12, 13, 14, 15, 0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        expected.push_back("ifconfig ath" + std::to_string(number));
    }
    EXPECT_EQ(search_order("02:00:00:00:00:05"), expected);
}

TEST_F(Vap, ASearchStopsAtTheFirstMatch) {
    set_address(2, "00:00:00:00:00:01");
    set_address(3, "00:00:00:00:00:01");
    int port;
    int index;
    EXPECT_EQ(wlan_getBssIdPort("00:00:00:00:00:01", &port, &index), 0);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(tool_calls(), calls({"ifconfig ath0", "ifconfig ath1"}));
}

TEST_F(Vap, AMatchIsFoundBehindTheWrap) {
    set_address(4, "00:00:00:00:00:05");
    int port;
    int index;
    EXPECT_EQ(wlan_getBssIdPort("00:00:00:00:00:05", &port, &index), 0);
    EXPECT_EQ(index, 4);
}

TEST_F(Vap, BssidsAreComparedWithRegardToCase) {
    set_address(1, "00:00:00:00:00:0a");
    int port;
    int index;
    EXPECT_EQ(wlan_getBssIdPort("00:00:00:00:00:0A", &port, &index), -1);
}

TEST_F(Vap, OnlySeventeenCharactersOfABssidAreCompared) {
    set_address(1, "00:00:00:00:00:01");
    int port;
    int index;
    EXPECT_EQ(wlan_getBssIdPort("00:00:00:00:00:01 and more", &port, &index), 0);
    EXPECT_EQ(index, 1);
}

TEST_F(Vap, AnInterfaceThatCannotBeAskedMatchesNoBssid) {
    char bssid[MAC_TEXT_SIZE];
    wlan_getBSSID(1, bssid, sizeof(bssid));  // the number of VAPs is known from here on
    int port;
    int index;
    begin_descriptor_shortage();
    int status = wlan_getBssIdPort("", &port, &index);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
}

// --- ports ---

TEST_F(Vap, ThePortOfAVapIsZeroWithoutUdma) {
    set_address(1, "00:00:00:00:00:01");
    for (const char *line : {"UDMA_ENABLE=0", "UDMA_ENABLE=", "UDMA_ENABLE=yes", "UDMA_ENABLE_2=1"}) {
        store({"AP_RADIO_ID=1", line});
        int port = 99;
        int index = 99;
        EXPECT_EQ(wlan_getBssIdPort("00:00:00:00:00:01", &port, &index), 0) << line;
        EXPECT_EQ(port, 0) << line;
        EXPECT_EQ(index, 1) << line;
    }
}

TEST_F(Vap, ThePortOfAVapIsFiveOnRadioZeroAndSixOnRadioOneWithUdma) {
    set_address(1, "00:00:00:00:00:01");
    set_address(2, "00:00:00:00:00:02");
    for (const char *line : {"UDMA_ENABLE=1", "UDMA_ENABLE=7", "UDMA_ENABLE=-1"}) {
        store({"AP_RADIO_ID=0", "AP_RADIO_ID_2=1", line});
        int port = 99;
        int index = 99;
        wlan_getBssIdPort("00:00:00:00:00:01", &port, &index);
        EXPECT_EQ(port, 5) << line;
        wlan_getBssIdPort("00:00:00:00:00:02", &port, &index);
        EXPECT_EQ(port, 6) << line;
    }
}

TEST_F(Vap, WithoutAMatchPortAndIndexAreZero) {
    store({"UDMA_ENABLE=1"});
    int port = 99;
    int index = 99;
    EXPECT_EQ(wlan_getBssIdPort("02:00:00:00:00:01", &port, &index), -1);
    EXPECT_EQ(port, 0);
    EXPECT_EQ(index, 0);
}

TEST_F(Vap, EachAddressOfAPortSearchIsLogged) {
    set_address(2, "00:00:00:00:00:02");
    std::string printed = debug_lines([] {
        int port;
        int index;
        wlan_getBssIdPort("00:00:00:00:00:02", &port, &index);
    });
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_getBssIdPort wlan_getBssIdPort: v_bssid = 00:00:00:00:00:00\n"));
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_getBssIdPort wlan_getBssIdPort: v_bssid = 00:00:00:00:00:02\n"));
    EXPECT_FALSE(contains(printed, "there is no VAP match"));
}

TEST_F(Vap, APortSearchWithoutAMatchIsLogged) {
    set_debug(true);
    printed_text printed = capture([] { search_order("02:00:00:00:00:01"); });
    EXPECT_TRUE(contains(printed.out, "[VLK-API] wlan_getBssIdPort Error: there is no VAP match\n"));
    EXPECT_EQ(printed.err, "");
}

// --- VLANs ---

struct vlan_case {
    int index;
    u_short vlan;
    const char *bridge;
};

TEST_F(Vap, TheBridgeNameFollowsFromVapAndVlan) {
    const vlan_case rows[] = {
        {1, 2, "br0"},         {1, 1001, "br0"},          {9, 2, "br0"},         {9, 1001, "br0"},   {1, 1, "br0_1"},
        {1, 3, "br0_3"},       {1, 9, "br0_9"},           {1, 1000, "br0_1000"}, {8, 5, "br7_5"},    {8, 2, "br7_2"},
        {8, 1001, "br7_1001"}, {9, 5, "br0_5"},           {9, 3, "br0_3"},       {9, 9, "br0_9"},    {9, 10, "br8_10"},
        {9, 1, "br8_1"},       {10, 2, "br9_2"},          {10, 4, "br1_4"},      {10, 20, "br9_20"}, {15, 9, "br6_9"},
        {15, 0, "br14_0"},     {15, 65535, "br14_65535"},
    };
    for (const vlan_case &row : rows) {
        SCOPED_TRACE(testing::Message() << "VAP " << row.index << " VLAN " << row.vlan);
        SetUp();
        set_address(row.index, "00:00:00:00:00:01");
        EXPECT_EQ(wlan_associateVlan("00:00:00:00:00:01", row.vlan), 0);
        std::string suffix = row.index == 1 ? "" : "_" + std::to_string(row.index);
        calls written = tool_calls();
        ASSERT_GE(written.size(), 2U);
        written.erase(written.begin(), written.end() - 2);
        EXPECT_EQ(written, calls({"cfg -a AP_VLAN" + suffix + "=" + std::to_string(row.vlan),
                                  "cfg -a AP_BRNAME" + suffix + "=" + row.bridge}));
    }
}

TEST_F(Vap, TheSixteenthVapGetsNoBridgeName) {
    set_address(16, "00:00:00:00:00:01");
    EXPECT_EQ(wlan_associateVlan("00:00:00:00:00:01", 4), 0);
    EXPECT_EQ(tool_calls().back(), "cfg -a AP_VLAN_16=4");
}

TEST_F(Vap, AVlanForAnUnknownBssidIsReportedAndWritesNothing) {
    int status = 0;
    printed_text printed = capture([&] { status = wlan_associateVlan("00:00:00:00:00:01", 4); });
    EXPECT_EQ(status, -1);
    EXPECT_EQ(printed.err, "[VLK-API] Error wlan_associateVlan Error: there is no VAP match for 00:00:00:00:00:01\n");
    EXPECT_EQ(printed.out, "");
    for (const std::string &call : tool_calls()) {
        EXPECT_FALSE(contains(call, "cfg"));
    }
}

TEST_F(Vap, AVlanSearchStartsAndWrapsLikeAPortSearch) {
    capture([] { wlan_associateVlan("02:00:00:00:00:05", 4); });
    calls asked = tool_calls();
    ASSERT_EQ(asked.size(), 16U);
    EXPECT_EQ(asked.front(), "ifconfig ath9");
    EXPECT_EQ(asked.back(), "ifconfig ath8");
}

TEST_F(Vap, AVlanSearchAndItsMatchAreLogged) {
    set_address(3, "00:00:00:00:00:01");
    std::string printed = debug_lines([] { wlan_associateVlan("00:00:00:00:00:01", 4); });
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_associateVlan v_bssid = 00:00:00:00:00:00\n"));
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_associateVlan v_bssid = 00:00:00:00:00:01\n"));
    EXPECT_TRUE(contains(printed, "[VLK-API] wlan_associateVlan wlan_associateVlan: vap index 3 found\n"));
}

// --- enable ---

TEST_F(Vap, EnableIsReadAsANumber) {
    store({"AP_ENABLE=1", "AP_ENABLE_2=0", "AP_ENABLE_3=5"});
    EXPECT_EQ(number_of(wlan_getEnable, 1), 1);
    EXPECT_EQ(number_of(wlan_getEnable, 2), 0);
    EXPECT_EQ(number_of(wlan_getEnable, 3), 5);
    EXPECT_EQ(number_of(wlan_getEnable, 4), 0);
}

TEST_F(Vap, EnableReadsAndWritesTheBareKeyForEveryIndexBelowOne) {
    store({"AP_ENABLE=1"});
    EXPECT_EQ(number_of(wlan_getEnable, -5), 1);
    EXPECT_EQ(wlan_setEnable(INT_MIN, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE=0"}));
}

TEST_F(Vap, EnablingAVapThatHasAnSsidKeepsIt) {
    store({"AP_SSID_3=mine"});
    EXPECT_EQ(wlan_setEnable(3, 1), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE_3=1"}));
}

TEST_F(Vap, EnablingAVapWithoutAnSsidGivesItTheDefaultOne) {
    EXPECT_EQ(wlan_setEnable(3, 1), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE_3=1", "cfg -a AP_SSID_3=Atheros_XSpan_3"}));
}

TEST_F(Vap, EnablingAVapWithAnEmptySsidGivesItTheDefaultOne) {
    store({"AP_SSID="});
    wlan_setEnable(1, 1);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE=1", "cfg -a AP_SSID=Atheros_XSpan_1"}));
}

TEST_F(Vap, EveryFlagButZeroEnables) {
    wlan_setEnable(2, -1);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE_2=-1", "cfg -a AP_SSID_2=Atheros_XSpan_2"}));
}

TEST_F(Vap, DisablingNeverTouchesTheSsid) {
    EXPECT_EQ(wlan_setEnable(3, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_ENABLE_3=0"}));
}

TEST_F(Vap, EnableLogsItsEntry) {
    EXPECT_TRUE(contains(debug_lines([] { number_of(wlan_getEnable, 1); }),
                         "[VLK-API] wlan_getEnable wlan_getEnable: wlan_getEnable entered\n"));
    EXPECT_TRUE(contains(debug_lines([] { wlan_setEnable(1, 0); }),
                         "[VLK-API] wlan_setEnable wlan_setEnable: wlan_setEnable entered\n"));
}

// --- status ---

TEST_F(Vap, AVapWithAnAccessPointIsUp) {
    set_tool_answer("iwconfig", "ath15", IWCONFIG_UP);
    EXPECT_EQ(text_of(wlan_getStatus, 16), "Up");
}

TEST_F(Vap, AVapWithoutAnAccessPointIsDisabled) {
    set_tool_answer("iwconfig", "ath0", "ath0      No such device\n");
    EXPECT_EQ(text_of(wlan_getStatus, 1), "Disable");
}

TEST_F(Vap, AVapIsDisabledWhenTheToolIsSilent) {
    EXPECT_EQ(text_of(wlan_getStatus, 1), "Disable");
}

TEST_F(Vap, TheStatusOfAVapBelowOneIsErrorAndTheCallSucceeds) {
    for (int index : {0, -1, INT_MIN}) {
        EXPECT_EQ(text_of(wlan_getStatus, index), "Error");
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, AStatusFailsWhenTheToolCannotBeStarted) {
    text_buffer status;
    begin_descriptor_shortage();
    int result = wlan_getStatus(1, status.text, sizeof(status.text));
    end_descriptor_shortage();
    EXPECT_EQ(result, -1);
}

TEST_F(Vap, AStatusRequestIsLogged) {
    EXPECT_EQ(debug_lines([] { text_of(wlan_getStatus, 3); }),
              "[VLK-API] wlan_getStatus wlan_getStatus: index = 2\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:iwconfig ath2\n");
}

// --- bit rate ---

TEST_F(Vap, TheBitRateIsTheTextBehindItsLabel) {
    set_tool_answer("iwconfig", "ath1", IWCONFIG_UP);
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 2), "130");
}

TEST_F(Vap, TheLabelOfTheBitRateMayEndInAnEqualsSign) {
    set_tool_answer("iwconfig", "ath0", "  Bit Rate=54 Mb/s\n");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "54");
}

TEST_F(Vap, TheLabelWithAColonIsPreferred) {
    set_tool_answer("iwconfig", "ath0", "  Bit Rate=54 Mb/s Bit Rate:300 Mb/s\n");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "300");
}

TEST_F(Vap, TheBitRateHasAtMostNineCharacters) {
    set_tool_answer("iwconfig", "ath0", "  Bit Rate:12345678901 Mb/s\n");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "123456789");
    set_tool_answer("iwconfig", "ath0", "  Bit Rate:123456789 Mb/s\n");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "123456789");
}

TEST_F(Vap, ABitRateAtTheEndOfTheOutputIsTakenAsFarAsItGoes) {
    set_tool_answer("iwconfig", "ath0", "  Bit Rate:54");
    set_tool_answer("iwconfig", "ath1", "  Bit Rate:");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "54");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 2), "");
}

TEST_F(Vap, WithoutALabelTheBitRateIsEmptyAndTheCallSucceeds) {
    set_tool_answer("iwconfig", "ath0", "ath0  no wireless extensions.\n");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 1), "");
    EXPECT_EQ(text_of(wlan_getMaxBitRate, 2), "");
}

TEST_F(Vap, ABitRateIsCutToTheBuffer) {
    set_tool_answer("iwconfig", "ath0", IWCONFIG_UP);
    text_buffer rate;
    EXPECT_EQ(wlan_getMaxBitRate(1, rate.text, 3), 0);
    EXPECT_STREQ(rate.text, "13");
    EXPECT_EQ(rate.text[3], '?');
}

TEST_F(Vap, AVapBelowOneHasNoBitRateButFourZeroBytes) {
    for (int index : {0, -1, INT_MIN}) {
        text_buffer rate;
        EXPECT_EQ(wlan_getMaxBitRate(index, rate.text, sizeof(rate.text)), -1) << "index " << index;
        EXPECT_TRUE(rate.begins_with_zeros_only(4)) << "index " << index;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, ABitRateFailsWhenTheToolCannotBeStarted) {
    text_buffer rate;
    begin_descriptor_shortage();
    int status = wlan_getMaxBitRate(1, rate.text, sizeof(rate.text));
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
}

TEST_F(Vap, SettingTheBitRateIsAcceptedAndHasNoEffect) {
    EXPECT_EQ(wlan_setMaxBitRate(1, "54"), 0);
    EXPECT_EQ(wlan_setMaxBitRate(-1, ""), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- channel ---

u_int channel_of(int index) {
    u_int channel = 99;
    EXPECT_EQ(wlan_getChannel(index, &channel), 0);
    return channel;
}

TEST_F(Vap, TheChannelOfAVapIsItsRadios) {
    store({"AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_PRIMARY_CH_2=6", "AP_PRIMARY_CH=44"});
    EXPECT_EQ(channel_of(1), 6U);
    EXPECT_EQ(channel_of(9), 44U);
}

TEST_F(Vap, AnAutomaticChannelReadsAsZero) {
    for (const char *value : {"auto", "0", ""}) {
        store({std::string("AP_PRIMARY_CH_2=") + value});
        EXPECT_EQ(channel_of(1), 0U) << value;
    }
}

TEST_F(Vap, TheChannelOfIndexZeroIsRead) {
    store({"AP_RADIO_ID=1", "AP_PRIMARY_CH=44"});
    EXPECT_EQ(channel_of(0), 44U);
}

TEST_F(Vap, ANegativeIndexHasNoChannelButZero) {
    store({"AP_PRIMARY_CH_2=6"});
    u_int channel = 99;
    EXPECT_EQ(wlan_getChannel(-1, &channel), -1);
    EXPECT_EQ(channel, 0U);
}

// A VAP on this radio, whose mode is this.
std::vector<std::string> radio_lines(int radio, const std::string &mode) {
    return {"AP_RADIO_ID=" + std::to_string(radio), std::string(radio == 1 ? "AP_CHMODE=" : "AP_CHMODE_2=") + mode};
}

TEST_F(Vap, ALowChannelMovesTheModesOfRadioZeroToTheLowBand) {
    struct {
        const char *before;
        const char *after;
    } rows[] = {{"11A", "11G"}, {"11NAHT40PLUS", "11NGHT40PLUS"}, {"11G", "11G"}, {"11NGHT20", "11NGHT20"},
                {"11B", "11B"}, {"11ACVHT80", "11ACVHT80"}};
    for (const auto &row : rows) {
        for (u_int channel : {1U, 14U}) {
            SCOPED_TRACE(testing::Message() << row.before << " channel " << channel);
            SetUp();
            store(radio_lines(0, row.before));
            EXPECT_EQ(wlan_setChannel(1, channel), 0);
            EXPECT_EQ(tool_calls(), calls({"cfg -a AP_PRIMARY_CH_2=" + std::to_string(channel),
                                           std::string("cfg -a AP_CHMODE_2=") + row.after}));
        }
    }
}

TEST_F(Vap, RadioOneRefusesALowChannelAndWritesNothing) {
    for (u_int channel : {1U, 6U, 14U}) {
        store(radio_lines(1, "11NAHT20"));
        EXPECT_EQ(wlan_setChannel(1, channel), -1) << "channel " << channel;
    }
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, AHighChannelMovesTheModesOfEitherRadioToTheHighBand) {
    struct {
        const char *before;
        const char *after;
    } rows[] = {{"11G", "11A"}, {"11NGHT40MINUS", "11NAHT40MINUS"}, {"11A", "11A"}, {"11NAHT20", "11NAHT20"},
                {"11B", "11B"}, {"11ACVHT80", "11ACVHT80"}};
    for (const auto &row : rows) {
        for (int radio : {0, 1}) {
            for (u_int channel : {15U, 36U}) {
                SCOPED_TRACE(testing::Message() << row.before << " radio " << radio << " channel " << channel);
                SetUp();
                store(radio_lines(radio, row.before));
                EXPECT_EQ(wlan_setChannel(1, channel), 0);
                std::string suffix = radio == 1 ? "" : "_2";
                EXPECT_EQ(tool_calls(), calls({"cfg -a AP_PRIMARY_CH" + suffix + "=" + std::to_string(channel),
                                               "cfg -a AP_CHMODE" + suffix + "=" + row.after}));
            }
        }
    }
}

TEST_F(Vap, ChannelZeroLeavesTheModeOnEitherRadio) {
    store(radio_lines(0, "11NAHT20"));
    EXPECT_EQ(wlan_setChannel(1, 0), 0);
    store(radio_lines(1, "11NGHT20"));
    EXPECT_EQ(wlan_setChannel(1, 0), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_PRIMARY_CH_2=0", "cfg -a AP_CHMODE_2=11NAHT20", "cfg -a AP_PRIMARY_CH=0",
                                   "cfg -a AP_CHMODE=11NGHT20"}));
}

TEST_F(Vap, SettingTheChannelOfARadioWithoutAModeGivesItTwentyMegahertz) {
    store({"AP_RADIO_ID=0"});
    wlan_setChannel(1, 6);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_PRIMARY_CH_2=6", "cfg -a AP_CHMODE_2=HT20"}));
}

TEST_F(Vap, SettingTheChannelChecksNoIndex) {
    store(radio_lines(0, "11NGHT20"));
    EXPECT_EQ(wlan_setChannel(INT_MIN, 6), 0);
    EXPECT_EQ(tool_calls().front(), "cfg -a AP_PRIMARY_CH_2=6");
}

TEST_F(Vap, AChannelIsWrittenAsASignedNumber) {
    store(radio_lines(0, "11NAHT20"));
    wlan_setChannel(1, 0xffffffff);
    EXPECT_EQ(tool_calls().front(), "cfg -a AP_PRIMARY_CH_2=-1");
}

// --- automatic channel ---

TEST_F(Vap, TheChannelIsAutomaticWhenTheStoreSaysAutoOrBeginsWithZero) {
    for (const char *value : {"auto", "11na-auto", "0", "06"}) {
        store({std::string("AP_PRIMARY_CH_2=") + value});
        EXPECT_EQ(number_of(wlan_getAutoChannelEnable, 1), 1) << value;
    }
}

TEST_F(Vap, TheChannelIsNotAutomaticOtherwise) {
    for (const char *value : {"6", "40", "10", "AUTO", ""}) {
        store({std::string("AP_PRIMARY_CH_2=") + value});
        EXPECT_EQ(number_of(wlan_getAutoChannelEnable, 1), 0) << value;
    }
    store({});
    EXPECT_EQ(number_of(wlan_getAutoChannelEnable, 1), 0) << "without a channel";
}

TEST_F(Vap, TheAutomaticChannelOfAVapIsItsRadios) {
    store({"AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_PRIMARY_CH_2=0", "AP_PRIMARY_CH=44"});
    EXPECT_EQ(number_of(wlan_getAutoChannelEnable, 1), 1);
    EXPECT_EQ(number_of(wlan_getAutoChannelEnable, 9), 0);
}

TEST_F(Vap, SwitchingTheAutomaticChannelOverwritesChannelAndMode) {
    struct {
        int radio;
        int enabled;
        calls written;
    } rows[] = {
        {0, 1, {"cfg -a AP_PRIMARY_CH_2=0", "cfg -a AP_CHMODE_2=11NGHT20"}},
        {0, 0, {"cfg -a AP_PRIMARY_CH_2=6", "cfg -a AP_CHMODE_2=11NGHT20"}},
        {1, 1, {"cfg -a AP_PRIMARY_CH=0", "cfg -a AP_CHMODE=11NAHT40MINUS"}},
        {1, 0, {"cfg -a AP_PRIMARY_CH=40", "cfg -a AP_CHMODE=11NAHT40MINUS"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << "radio " << row.radio << " enabled " << row.enabled);
        SetUp();
        store(radio_lines(row.radio, "11ACVHT80"));
        EXPECT_EQ(wlan_setAutoChannelEnable(1, row.enabled), 0);
        EXPECT_EQ(tool_calls(), row.written);
    }
}

// --- SSID ---

std::string escape(const std::string &input, size_t size = 1000) {
    std::string output(size + 1, '?');
    pre_process_ssid(input.c_str(), output.data(), size);
    EXPECT_EQ(output[size], '?');
    return output.c_str();
}

TEST_F(Vap, TheFourCharactersThatTheShellInterpretsAreEscaped) {
    EXPECT_EQ(escape("\""), "\\\"");
    EXPECT_EQ(escape("`"), "\\`");
    EXPECT_EQ(escape("\\"), "\\\\");
    EXPECT_EQ(escape("$"), "\\$");
    EXPECT_EQ(escape("a\"b$c"), "a\\\"b\\$c");
}

TEST_F(Vap, NoOtherCharacterIsEscaped) {
    std::string others;
    for (int code = 1; code < 256; code++) {
        if (!strchr("\"`\\$", code)) {
            others += static_cast<char>(code);
        }
    }
    EXPECT_EQ(escape(others), others);
    EXPECT_EQ(escape(""), "");
}

TEST_F(Vap, AnEscapedTextIsCutToTheBuffer) {
    EXPECT_EQ(escape("abcdef", 5), "abcd");
    EXPECT_EQ(escape("abcd", 5), "abcd");
    EXPECT_EQ(escape("abcd", 1), "");
}

TEST_F(Vap, AnEscapedTextIsNeverCutBehindABackslash) {
    EXPECT_EQ(escape("ab$", 5), "ab\\$");
    EXPECT_EQ(escape("abc$", 5), "abc");
    EXPECT_EQ(escape("abc$d", 5), "abc");
    EXPECT_EQ(escape("$$$", 6), "\\$\\$");
}

TEST_F(Vap, TheSsidIsReadAsItIsStored) {
    store({"AP_SSID_3= my \"net\" "});
    EXPECT_EQ(text_of(wlan_getSSID, 3), " my \"net\" ");
    EXPECT_EQ(text_of(wlan_getCustomSSIDStr, 3), " my \"net\" ");
}

TEST_F(Vap, AnAbsentSsidReadsAsEmpty) {
    store({"AP_SSID="});
    EXPECT_EQ(text_of(wlan_getSSID, 1), "");
    EXPECT_EQ(text_of(wlan_getSSID, 2), "");
    EXPECT_EQ(text_of(wlan_getCustomSSIDStr, 2), "");
}

TEST_F(Vap, AnSsidIsCutToTheBuffer) {
    store({"AP_SSID=network"});
    text_buffer ssid;
    EXPECT_EQ(wlan_getSSID(1, ssid.text, 4), 0);
    EXPECT_STREQ(ssid.text, "net");
    EXPECT_EQ(ssid.text[4], '?');
}

TEST_F(Vap, AnSsidWithoutShellCharactersIsWrittenUnchanged) {
    std::string printed = debug_lines([] { EXPECT_EQ(wlan_setSSID(2, "My net; it's *here*"), 0); });
    EXPECT_TRUE(contains(printed, "execute cmd: cfg -a AP_SSID_2=\"My net; it's *here*\"\n"));
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID_2=My net; it's *here*"}));
}

TEST_F(Vap, AnSsidIsWrittenWithABackslashBeforeQuoteAndDollarSign) {
    std::string printed = debug_lines([] { EXPECT_EQ(wlan_setSSID(2, "a\"b$c"), 0); });
    EXPECT_TRUE(contains(printed, "execute cmd: cfg -a AP_SSID_2=\"a\\\"b\\$c\"\n"));
}

TEST_F(Vap, TheToolReceivesTheSsidAsTheClientSentIt) {
    EXPECT_EQ(wlan_setSSID(2, "\"`date`\\n$HOME"), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID_2=\"`date`\\n$HOME"}));
}

TEST_F(Vap, AnSsidIsCutToThirtyTwoCharactersBeforeEscaping) {
    std::string dollars(40, '$');
    EXPECT_EQ(wlan_setSSID(2, dollars.c_str()), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID_2=" + std::string(32, '$')}));
}

TEST_F(Vap, AnSsidOfThirtyTwoCharactersIsWrittenWhole) {
    wlan_setSSID(2, "0123456789abcdef0123456789abcdef");
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID_2=0123456789abcdef0123456789abcdef"}));
}

TEST_F(Vap, AnEmptySsidIsWritten) {
    EXPECT_EQ(wlan_setSSID(1, ""), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID="}));
}

TEST_F(Vap, TheCustomSsidIsTheSsid) {
    std::string printed = debug_lines([] { EXPECT_EQ(wlan_setCustomSSIDStr(2, "a$b"), 0); });
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_SSID_2=a$b"}));
    EXPECT_EQ(printed.find("[VLK-API] wlan_setCustomSSIDStr wlan_setCustomSSIDStr: set  CustomSSIDStr a$b\n"), 0U);
}

// --- beacon type ---

TEST_F(Vap, TheBeaconTypeFollowsFromTheStore) {
    struct {
        const char *secmode;
        const char *wpa;
        const char *type;
    } rows[] = {
        {"None", "2", "None"},      {"WEP", "2", "Basic"},     {"WPA", "1", "WPA"},       {"WPA", "2", "11i"},
        {"WPA", "3", "WPAand11i"},  {"WPA", "", "WPA"},        {"WPA", "32", "11i"},      {"WPA", "23", "11i"},
        {"WPA", "13", "WPAand11i"}, {"WPA None", "2", "None"}, {"WPA WEP", "2", "Basic"}, {"xWPAx", "2", "11i"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << row.secmode << " " << row.wpa);
        store({std::string("AP_SECMODE_2=") + row.secmode, std::string("AP_WPA_2=") + row.wpa});
        EXPECT_EQ(text_of(wlan_getBeaconType, 2), row.type);
    }
}

TEST_F(Vap, AnUnknownSecurityModeLeavesTheBeaconTypeUntouched) {
    for (const char *line : {"AP_SECMODE=wpa", "AP_SECMODE=", "OTHER=None"}) {
        store({line});
        char type[16] = "kept";
        EXPECT_EQ(wlan_getBeaconType(1, type, sizeof(type)), 0) << line;
        EXPECT_STREQ(type, "kept") << line;
    }
}

TEST_F(Vap, ABeaconTypeIsCutToTheBuffer) {
    store({"AP_SECMODE=WPA", "AP_WPA=3"});
    text_buffer type;
    EXPECT_EQ(wlan_getBeaconType(1, type.text, 4), 0);
    EXPECT_STREQ(type.text, "WPA");
    EXPECT_EQ(type.text[4], '?');
}

TEST_F(Vap, ABeaconTypeSetsSecurityModeAndWpa) {
    struct {
        const char *type;
        calls written;
    } rows[] = {
        {"None", {"cfg -a AP_SECMODE_2=None"}},
        {"Basic", {"cfg -a AP_SECMODE_2=WEP"}},
        {"WPAand11i", {"cfg -a AP_SECMODE_2=WPA", "cfg -a AP_WPA_2=3"}},
        {"11i", {"cfg -a AP_SECMODE_2=WPA", "cfg -a AP_WPA_2=2"}},
        {"WPA", {"cfg -a AP_SECMODE_2=WPA", "cfg -a AP_WPA_2=1"}},
        {"WPA or None", {"cfg -a AP_SECMODE_2=None"}},
        {"WPA Basic", {"cfg -a AP_SECMODE_2=WEP"}},
        {"WPA 11i", {"cfg -a AP_SECMODE_2=WPA", "cfg -a AP_WPA_2=2"}},
        {"xWPAand11ix", {"cfg -a AP_SECMODE_2=WPA", "cfg -a AP_WPA_2=3"}},
        {"wpa", {}},
        {"", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        SetUp();
        EXPECT_EQ(wlan_setBeaconType(2, row.type), 0);
        EXPECT_EQ(tool_calls(), row.written);
    }
}

// --- standard ---

TEST_F(Vap, TheStandardIsTheRadios) {
    store({"AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_CHMODE_2=11NGHT20", "AP_CHMODE=11ACVHT80", "PUREAC=1"});
    EXPECT_EQ(text_of(wlan_getStandard, 1), "bgn");
    EXPECT_EQ(text_of(wlan_getStandard, 9), "ac");
}

TEST_F(Vap, WithoutAModeTheStandardIsEmpty) {
    EXPECT_EQ(text_of(wlan_getStandard, 1), "");
    EXPECT_EQ(text_of(wlan_getStandard, INT_MIN), "");
}

TEST_F(Vap, AStandardIsCutToTheBuffer) {
    store({"AP_CHMODE_2=11ACVHT80"});
    text_buffer standard;
    EXPECT_EQ(wlan_getStandard(1, standard.text, 3), 0);
    EXPECT_STREQ(standard.text, "an");
    EXPECT_EQ(standard.text[3], '?');
}

TEST_F(Vap, AStandardRequestLogsTheRadio) {
    store({"AP_RADIO_ID=1"});
    EXPECT_TRUE(
        contains(debug_lines([] { text_of(wlan_getStandard, 1); }), "[VLK-API] wlan_getStandard radio_idx = 1 \n"));
}

// What wlan_setStandard writes for these letters on this radio, whose mode was 11NGHT40PLUS.
calls standard_calls(int radio, const char *pure_switch, const char *mode) {
    std::string suffix = radio == 1 ? "=" : "_2=";
    calls expected = {"cfg -a PUREN" + suffix + "0", "cfg -a PUREG" + suffix + "0", "cfg -a PUREAC" + suffix + "0"};
    if (*pure_switch) {
        expected.push_back(std::string("cfg -a ") + pure_switch + suffix + "1");
    }
    expected.push_back("cfg -a AP_CHMODE" + suffix + mode);
    return expected;
}

TEST_F(Vap, AStandardSetsThePureSwitchesAndTheMode) {
    struct {
        const char *letters;
        const char *pure_switch;
        const char *mode[2];
    } rows[] = {
        {"ac", "PUREAC", {"11ACVHT40PLUS", "11ACVHT40PLUS"}},
        {"nac", "PUREN", {"11ACVHT40PLUS", "11ACVHT40PLUS"}},
        {"anac", "", {"11ACVHT40PLUS", "11ACVHT40PLUS"}},
        {"a", "", {"11A", "11A"}},
        {"b", "", {"11B", "11B"}},
        {"bg", "", {"11G", "11G"}},
        {"g", "PUREG", {"11G", "11G"}},
        {"an", "", {"11NAHT40PLUS", "11NAHT40PLUS"}},
        {"gn", "PUREG", {"11NGHT40PLUS", "11NGHT40PLUS"}},
        {"bgn", "", {"11NGHT40PLUS", "11NGHT40PLUS"}},
        {"n", "PUREN", {"11NAHT40PLUS", "11NGHT40PLUS"}},
    };
    for (const auto &row : rows) {
        for (int radio : {0, 1}) {
            SCOPED_TRACE(testing::Message() << row.letters << " on radio " << radio);
            SetUp();
            store(radio_lines(radio, "11NGHT40PLUS"));
            EXPECT_EQ(wlan_setStandard(1, row.letters), 0);
            EXPECT_EQ(tool_calls(), standard_calls(radio, row.pure_switch, row.mode[radio]));
        }
    }
}

TEST_F(Vap, StandardNIsTheHighBandOnRadioZeroAndTheLowBandOnRadioOne) {
    store(radio_lines(0, "11NGHT20"));
    wlan_setStandard(1, "n");
    EXPECT_EQ(tool_calls(), standard_calls(0, "PUREN", "11NAHT20"));
    SetUp();
    store(radio_lines(1, "11NAHT20"));
    wlan_setStandard(1, "n");
    EXPECT_EQ(tool_calls(), standard_calls(1, "PUREN", "11NGHT20"));
}

TEST_F(Vap, UnknownLettersClearTheSwitchesAndKeepTheBase) {
    for (const char *letters : {"", "x", "N", "AC", "n ", "acn"}) {
        SCOPED_TRACE(letters);
        SetUp();
        store(radio_lines(0, "11NAHT40MINUS"));
        EXPECT_EQ(wlan_setStandard(1, letters), 0);
        EXPECT_EQ(tool_calls(), standard_calls(0, "", "11NAHT40MINUS"));
    }
}

TEST_F(Vap, LettersOfAnyLengthNeverRunOverIntoTheBase) {
    store(radio_lines(0, "11NAHT20"));
    EXPECT_EQ(wlan_setStandard(1, (std::string(8, 'x') + "11AC" + std::string(5000, 'y')).c_str()), 0);
    EXPECT_EQ(tool_calls(), standard_calls(0, "", "11NAHT20"));
}

TEST_F(Vap, LettersThatOnlyBeginLikeAStandardAreUnknown) {
    store(radio_lines(0, "11NAHT20"));
    wlan_setStandard(1, "ac\nand more");
    EXPECT_EQ(tool_calls(), standard_calls(0, "", "11NAHT20"));
}

TEST_F(Vap, ANegativeIndexHasNoStandardToSet) {
    EXPECT_EQ(wlan_setStandard(-1, "n"), -1);
    EXPECT_EQ(wlan_setStandard(INT_MIN, "n"), -1);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(Vap, TheStandardOfIndexZeroIsSet) {
    store(radio_lines(0, "11NGHT20"));
    EXPECT_EQ(wlan_setStandard(0, "an"), 0);
    EXPECT_EQ(tool_calls(), standard_calls(0, "", "11NAHT20"));
}

// --- MAC address control ---

TEST_F(Vap, MacAddressControlIsReadAsANumber) {
    store({"AP_MACADDRCTLEN=1", "AP_MACADDRCTLEN_2=2"});
    EXPECT_EQ(number_of(wlan_getMacAddressControlEnabled, 0), 1);
    EXPECT_EQ(number_of(wlan_getMacAddressControlEnabled, 1), 1);
    EXPECT_EQ(number_of(wlan_getMacAddressControlEnabled, 2), 2);
    EXPECT_EQ(number_of(wlan_getMacAddressControlEnabled, 3), 0);
}

TEST_F(Vap, MacAddressControlIsWrittenAsANumber) {
    EXPECT_EQ(wlan_setMacAddressControlEnabled(0, 1), 0);
    EXPECT_EQ(wlan_setMacAddressControlEnabled(2, -3), 0);
    EXPECT_EQ(tool_calls(), calls({"cfg -a AP_MACADDRCTLEN=1", "cfg -a AP_MACADDRCTLEN_2=-3"}));
}

TEST_F(Vap, ANegativeIndexHasNoMacAddressControl) {
    store({"AP_MACADDRCTLEN=1"});
    int enabled = 99;
    EXPECT_EQ(wlan_getMacAddressControlEnabled(-1, &enabled), -1);
    EXPECT_EQ(wlan_setMacAddressControlEnabled(-1, 1), -1);
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- all of them ---

TEST_F(Vap, NothingIsPrintedWhileDebuggingIsOff) {
    set_address(1, "00:00:00:00:00:01");
    printed_text printed = capture([] {
        int number;
        int port;
        u_int channel;
        char text[TEXT_SIZE];
        wlan_getBssIdPort("00:00:00:00:00:01", &port, &number);
        wlan_getBssIdPort("02:00:00:00:00:05", &port, &number);
        wlan_associateVlan("00:00:00:00:00:01", 4);
        wlan_getEnable(1, &number);
        wlan_setEnable(1, 1);
        wlan_getStatus(1, text, sizeof(text));
        wlan_getMaxBitRate(1, text, sizeof(text));
        wlan_getChannel(1, &channel);
        wlan_setChannel(1, 6);
        wlan_getAutoChannelEnable(1, &number);
        wlan_setAutoChannelEnable(1, 1);
        wlan_getCustomSSIDStr(1, text, sizeof(text));
        wlan_setCustomSSIDStr(1, "net");
        wlan_getBeaconType(1, text, sizeof(text));
        wlan_setBeaconType(1, "WPA");
        wlan_getStandard(1, text, sizeof(text));
        wlan_setStandard(1, "n");
        wlan_getMacAddressControlEnabled(1, &number);
        wlan_setMacAddressControlEnabled(1, 1);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

TEST_F(Vap, SettingsSucceedWhateverTheToolSays) {
    install_tool("cfg", "no room", 1);
    EXPECT_EQ(wlan_setEnable(1, 1), 0);
    EXPECT_EQ(wlan_setSSID(1, "net"), 0);
    EXPECT_EQ(wlan_setChannel(1, 6), 0);
    EXPECT_EQ(wlan_setAutoChannelEnable(1, 1), 0);
    EXPECT_EQ(wlan_setBeaconType(1, "WPA"), 0);
    EXPECT_EQ(wlan_setStandard(1, "n"), 0);
    EXPECT_EQ(wlan_setMacAddressControlEnabled(1, 1), 0);
}

}  // namespace
