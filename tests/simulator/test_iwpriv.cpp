// The driver's private commands: what is set is kept and read back, in the tool's words, until the driver goes down.
#include <string>

#include "tests/simulator/platform.h"

namespace {

class Iwpriv : public Platform {};

outcome iwpriv(const lines &arguments) {
    lines words = {"iwpriv"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words);
}

// What a command that answers prints.
std::string answer(const lines &arguments) {
    outcome answered = iwpriv(arguments);
    EXPECT_EQ(answered.status, 0) << answered.errors;
    EXPECT_EQ(answered.errors, "");
    return answered.output;
}

// A command that only sets something says nothing.
void set(const lines &arguments) {
    EXPECT_EQ(answer(arguments), "") << arguments[1];
}

// What the tool says about a command that is refused; nothing of it on standard output.
std::string refusal(const lines &arguments) {
    outcome refused = iwpriv(arguments);
    EXPECT_EQ(refused.status, 255) << arguments.back();
    EXPECT_EQ(refused.output, "") << arguments.back();
    return refused.errors;
}

std::string frequency_of(const std::string &interface) {
    std::string shown = run({"iwconfig", interface}).output;
    size_t place = shown.find("Frequency:");
    return place == std::string::npos ? "none" : shown.substr(place + 10, shown.find(' ', place) - place - 10);
}

// Parameters

TEST_F(Iwpriv, KeepsWhatIsSetAndAnswersItAsTheRealToolDoes) {
    set({"wifi0", "txchainmask", "3"});
    set({"wifi0", "rxchainmask", "1"});
    set({"wifi0", "ssidqos_ena", "1"});
    set({"ath0", "ssidqos_lvl", "VO"});
    set({"ath0", "l2tif", "1"});
    set({"ath0", "inact", "600"});
    set({"ath0", "maccmd", "2"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:3  \n");
    EXPECT_EQ(answer({"wifi0", "get_rxchainmask"}), "wifi0     get_rxchainmask:1  \n");
    EXPECT_EQ(answer({"wifi0", "get_ssidqos_ena"}), "wifi0     get_ssidqos_ena:1  \n");
    EXPECT_EQ(answer({"ath0", "get_ssidqos_lvl"}), "ath0      get_ssidqos_lvl:VO\n");
    EXPECT_EQ(answer({"ath0", "get_l2tif"}), "ath0      get_l2tif:1  \n");
    EXPECT_EQ(answer({"ath0", "get_inact"}), "ath0      get_inact:600  \n");
    EXPECT_EQ(answer({"ath0", "get_maccmd"}), "ath0      get_maccmd:2  \n");
}

TEST_F(Iwpriv, KeepsItsValuesAsPlainTextInTheGatewaysDirectory) {
    set({"wifi1", "txchainmask", "3"});
    EXPECT_NE(read_file("/run/gateway/parameters").find("\nwifi1.txchainmask=3\n"), std::string::npos);
}

TEST_F(Iwpriv, AnInterfaceHasItsOwnValues) {
    set({"wifi0", "txchainmask", "1"});
    set({"ath0", "inact", "111"});
    EXPECT_EQ(answer({"wifi1", "get_txchainmask"}), "wifi1     get_txchainmask:7  \n");
    EXPECT_EQ(answer({"ath8", "get_inact"}), "ath8      get_inact:300  \n");
}

TEST_F(Iwpriv, ADriverThatWasJustLoadedHasStartValues) {
    run({"fast_down.sh"});
    run({"apup_simple"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
    EXPECT_EQ(answer({"wifi0", "get_rxchainmask"}), "wifi0     get_rxchainmask:7  \n");
    EXPECT_EQ(answer({"wifi0", "get_ssidqos_ena"}), "wifi0     get_ssidqos_ena:0  \n");
    EXPECT_EQ(access("/run/gateway/parameters", F_OK), -1);
}

TEST_F(Iwpriv, AVapWithoutSettingsHasStartValues) {
    for (const char *key : {"AP_INACT", "AP_STATIONISOLATE"})
        run({"cfg", "-r", key});
    run({"apup"});
    EXPECT_EQ(answer({"ath0", "get_inact"}), "ath0      get_inact:300  \n");
    EXPECT_EQ(answer({"ath0", "get_l2tif"}), "ath0      get_l2tif:0  \n");
    EXPECT_EQ(answer({"ath0", "get_maccmd"}), "ath0      get_maccmd:0  \n");
    EXPECT_EQ(answer({"ath0", "get_ssidqos_lvl"}), "ath0      get_ssidqos_lvl:BE\n");
}

TEST_F(Iwpriv, ApupTakesTheMasksOfRadioOneFromTheBareKeysAndThoseOfRadioZeroFromSuffix2) {
    set_store("TX_CHAINMASK=1");
    set_store("TX_CHAINMASK_2=3");
    set_store("RX_CHAINMASK=5");
    set_store("RX_CHAINMASK_2=6");
    run({"apup"});
    EXPECT_EQ(answer({"wifi1", "get_txchainmask"}), "wifi1     get_txchainmask:1  \n");
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:3  \n");
    EXPECT_EQ(answer({"wifi1", "get_rxchainmask"}), "wifi1     get_rxchainmask:5  \n");
    EXPECT_EQ(answer({"wifi0", "get_rxchainmask"}), "wifi0     get_rxchainmask:6  \n");
}

TEST_F(Iwpriv, ApupTakesIdleTimeAndIsolationOfEachVapFromTheStore) {
    set_store("AP_ENABLE_3=1");
    set_store("AP_INACT=100");
    set_store("AP_INACT_3=333");
    set_store("AP_STATIONISOLATE_3=1");
    run({"apup"});
    EXPECT_EQ(answer({"ath0", "get_inact"}), "ath0      get_inact:100  \n");
    EXPECT_EQ(answer({"ath2", "get_inact"}), "ath2      get_inact:333  \n");
    EXPECT_EQ(answer({"ath0", "get_l2tif"}), "ath0      get_l2tif:0  \n");
    EXPECT_EQ(answer({"ath2", "get_l2tif"}), "ath2      get_l2tif:1  \n");
}

TEST_F(Iwpriv, ASettingThatTheDriverRefusesLeavesTheStartValue) {
    set_store("TX_CHAINMASK_2=0");
    set_store("AP_INACT=soon");
    set_store("AP_STATIONISOLATE=2");
    run({"apup"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
    EXPECT_EQ(answer({"ath0", "get_inact"}), "ath0      get_inact:300  \n");
    EXPECT_EQ(answer({"ath0", "get_l2tif"}), "ath0      get_l2tif:0  \n");
}

TEST_F(Iwpriv, ApupPutsTheStoresValuesInThePlaceOfThoseThatWereSet) {
    set({"wifi0", "txchainmask", "1"});
    set({"ath0", "ssidqos_lvl", "VI"});
    run({"apup"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
    EXPECT_EQ(answer({"ath0", "get_ssidqos_lvl"}), "ath0      get_ssidqos_lvl:BE\n");
}

TEST_F(Iwpriv, FastDownForgetsWhatWasSet) {
    set({"wifi0", "txchainmask", "1"});
    run({"fast_down.sh"});
    run({"apup_simple"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
}

TEST_F(Iwpriv, TakesANumberInAnyBaseUpToWhereItsDigitsEnd) {
    set({"wifi0", "txchainmask", "0x3"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:3  \n");
    set({"wifi0", "txchainmask", "07 of all"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
}

TEST_F(Iwpriv, TakesTheFirstAndTheLastValueOfARange) {
    for (const lines &words :
         {lines{"wifi0", "txchainmask", "1"}, lines{"wifi0", "txchainmask", "7"}, lines{"wifi0", "rxchainmask", "1"},
          lines{"wifi0", "rxchainmask", "7"}, lines{"wifi0", "ssidqos_ena", "0"}, lines{"wifi0", "ssidqos_ena", "9"},
          lines{"ath0", "l2tif", "0"}, lines{"ath0", "l2tif", "1"}, lines{"ath0", "inact", "0"},
          lines{"ath0", "inact", "65535"}, lines{"ath0", "maccmd", "0"}, lines{"ath0", "maccmd", "4"}})
        set(words);
}

TEST_F(Iwpriv, SaysInvalidArgumentToAValueThatIsNoneAndKeepsTheOldOne) {
    for (const lines &words :
         {lines{"wifi0", "txchainmask", "0"}, lines{"wifi0", "txchainmask", "8"}, lines{"wifi0", "txchainmask", "-1"},
          lines{"wifi0", "txchainmask", ""}, lines{"wifi0", "txchainmask", "all"},
          lines{"wifi0", "txchainmask", "99999999999999999999"}, lines{"wifi0", "rxchainmask", "8"},
          lines{"wifi0", "ssidqos_ena", "10"}, lines{"ath0", "l2tif", "2"}, lines{"ath0", "inact", "65536"},
          lines{"ath0", "inact", "-2147483648"}, lines{"ath0", "maccmd", "5"}})
        EXPECT_EQ(refusal(words),
                  "Interface doesn't accept private ioctl...\n" + words[1] + " (8BE0): Invalid argument\n");
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
}

TEST_F(Iwpriv, AServiceLevelIsTwoPrintableCharacters) {
    for (const char *level : {"", "A", "ABC", "A ", "A\n", "\xc3\xa4", "a very long text that does not end so soon"})
        EXPECT_EQ(refusal({"ath0", "ssidqos_lvl", level}),
                  "Interface doesn't accept private ioctl...\nssidqos_lvl (8BE2): Invalid argument\n")
            << level;
    EXPECT_EQ(answer({"ath0", "get_ssidqos_lvl"}), "ath0      get_ssidqos_lvl:BE\n");
    set({"ath0", "ssidqos_lvl", "~!"});
    EXPECT_EQ(answer({"ath0", "get_ssidqos_lvl"}), "ath0      get_ssidqos_lvl:~!\n");
}

// Usage

TEST_F(Iwpriv, SaysInvalidCommandToOneThatTheInterfaceHasNot) {
    EXPECT_EQ(refusal({"ath0", "teleport", "1"}), "Invalid command : teleport\n");
    EXPECT_EQ(refusal({"ath0", ""}), "Invalid command : \n");
    // A radio's on a VAP, and the other way round.
    EXPECT_EQ(refusal({"ath0", "txchainmask", "3"}), "Invalid command : txchainmask\n");
    EXPECT_EQ(refusal({"wifi0", "inact", "3"}), "Invalid command : inact\n");
}

TEST_F(Iwpriv, SaysHowManyArgumentsACommandNeeds) {
    EXPECT_EQ(refusal({"ath0", "inact"}), "The command inact needs exactly 1 argument(s)...\n");
    EXPECT_EQ(refusal({"ath0", "addmac"}), "The command addmac needs exactly 1 argument(s)...\n");
    EXPECT_EQ(refusal({"ath0", "ssidqos_lvl"}), "The command ssidqos_lvl needs exactly 1 argument(s)...\n");
    EXPECT_EQ(refusal({"ath0", "doth_ch_chwidth", "11", "5"}),
              "The command doth_ch_chwidth needs exactly 3 argument(s)...\n");
}

TEST_F(Iwpriv, PassesOverArgumentsBeyondThoseThatACommandTakes) {
    set({"ath0", "inact", "100", "200"});
    EXPECT_EQ(answer({"ath0", "get_inact", "1"}), "ath0      get_inact:100  \n");
}

TEST_F(Iwpriv, AnInterfaceThatIsNotThereHasNoPrivateIoctls) {
    EXPECT_EQ(refusal({"ath3", "get_inact"}), "ath3      no private ioctls.\n\n");
    EXPECT_EQ(refusal({"wifi2", "get_ssidqos_ena"}), "wifi2     no private ioctls.\n\n");
    EXPECT_EQ(refusal({"ath-1", "inact", "5"}), "ath-1     no private ioctls.\n\n");
    EXPECT_EQ(refusal({"a-very-long-name-of-an-interface", "inact", "5"}), "a-very-long-name  no private ioctls.\n\n");
    run({"fast_down.sh"});
    EXPECT_EQ(refusal({"wifi0", "get_txchainmask"}), "wifi0     no private ioctls.\n\n");
    EXPECT_EQ(refusal({"ath0", "get_inact"}), "ath0      no private ioctls.\n\n");
}

TEST_F(Iwpriv, WithAnInterfaceAloneListsItsCommands) {
    EXPECT_EQ(answer({"wifi0"}),
              "wifi0     Available private ioctls :\n"
              "          txchainmask      (8BE0) : set   1 int   & get   0      \n"
              "          get_txchainmask  (8BE1) : set   0       & get   1 int  \n"
              "          rxchainmask      (8BE0) : set   1 int   & get   0      \n"
              "          get_rxchainmask  (8BE1) : set   0       & get   1 int  \n"
              "          ssidqos_ena      (8BE0) : set   1 int   & get   0      \n"
              "          get_ssidqos_ena  (8BE1) : set   0       & get   1 int  \n\n");
    std::string of_vap = answer({"ath0"});
    EXPECT_NE(of_vap.find("          addmac           (8BEA) : set   1 addr  & get   0      \n"), std::string::npos);
    EXPECT_EQ(of_vap.find("chainmask"), std::string::npos);
    outcome nothing = iwpriv({"ath3"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_EQ(nothing.output, "");
    EXPECT_EQ(nothing.errors, "ath3      no private ioctls.\n\n");
}

TEST_F(Iwpriv, WithoutArgumentsExplainsItself) {
    outcome explained = iwpriv({});
    EXPECT_EQ(explained.status, 1);
    EXPECT_EQ(explained.errors, "usage: iwpriv INTERFACE [COMMAND [VALUE...]]\n");
}

TEST_F(Iwpriv, StandsInTheJournalWithItsArguments) {
    iwpriv({"wifi0", "txchainmask", "3"});
    iwpriv({"ath0", "ssidqos_lvl", "A B"});
    EXPECT_EQ(journal(), (lines{"run iwpriv wifi0 txchainmask 3", "run iwpriv ath0 ssidqos_lvl \"A B\""}));
}

TEST_F(Iwpriv, ObeysFaultsAndThenDoesNothing) {
    run({"fault", "iwpriv", "silent"});
    outcome silent = iwpriv({"wifi0", "get_txchainmask"});
    EXPECT_EQ(silent.status, 0);
    EXPECT_EQ(silent.output + silent.errors, "");
    iwpriv({"wifi0", "txchainmask", "1"});
    run({"fault", "iwpriv", "garbage"});
    EXPECT_EQ(iwpriv({"wifi0", "get_txchainmask"}).output.find("get_txchainmask:"), std::string::npos);
    run({"fault", "iwpriv", "off"});
    EXPECT_EQ(answer({"wifi0", "get_txchainmask"}), "wifi0     get_txchainmask:7  \n");
}

TEST_F(Iwpriv, CallsAtTheSameTimeLoseNoValue) {
    EXPECT_EQ(run_shell("for i in 0 1 2 3 4 5 6 7 8 9; do iwpriv ath0 addmac 28:6A:BA:4C:10:0$i & "
                        "iwpriv ath8 addmac 98:01:A7:9B:55:0$i & done; iwpriv ath0 inact 77 & wait")
                  .status,
              0);
    for (char digit = '0'; digit <= '9'; digit++) {
        EXPECT_NE(answer({"ath0", "getmac"}).find(std::string("28:6A:BA:4C:10:0") + digit), std::string::npos);
        EXPECT_NE(answer({"ath8", "getmac"}).find(std::string("98:01:A7:9B:55:0") + digit), std::string::npos);
    }
    EXPECT_EQ(answer({"ath0", "get_inact"}), "ath0      get_inact:77  \n");
}

// The MAC filter

TEST_F(Iwpriv, ListsTheAddressesThatWereAddedOneBelowTheOther) {
    set({"ath0", "addmac", "28:6a:ba:4c:10:01"});
    set({"ath0", "addmac", "F0:D1:A9:27:33:02"});
    EXPECT_EQ(answer({"ath0", "getmac"}),
              "ath0      getmac:28:6A:BA:4C:10:01\n"
              "                 F0:D1:A9:27:33:02\n");
    EXPECT_EQ(answer({"ath8", "getmac"}), "ath8      getmac:\n");
}

TEST_F(Iwpriv, AnAddressStandsOnceHoweverOftenAndInWhateverLettersItIsAdded) {
    set({"ath0", "addmac", "28:6a:ba:4c:10:01"});
    set({"ath0", "addmac", "28:6A:BA:4C:10:01"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:28:6A:BA:4C:10:01\n");
}

TEST_F(Iwpriv, DeletesTheFirstAMiddleAndTheLastAddress) {
    for (const char *last : {"01", "02", "03", "04"})
        set({"ath0", "addmac", std::string("28:6A:BA:4C:10:") + last});
    set({"ath0", "delmac", "28:6a:ba:4c:10:01"});
    EXPECT_EQ(answer({"ath0", "getmac"}),
              "ath0      getmac:28:6A:BA:4C:10:02\n                 28:6A:BA:4C:10:03\n"
              "                 28:6A:BA:4C:10:04\n");
    set({"ath0", "delmac", "28:6A:BA:4C:10:03"});
    set({"ath0", "delmac", "28:6A:BA:4C:10:04"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:28:6A:BA:4C:10:02\n");
    EXPECT_NE(read_file("/run/gateway/parameters").find("\nath0.maclist=28:6A:BA:4C:10:02\n"), std::string::npos);
    set({"ath0", "delmac", "28:6A:BA:4C:10:02"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:\n");
}

TEST_F(Iwpriv, DoesNotMindDeletingAnAddressThatIsNotThere) {
    set({"ath0", "delmac", "28:6A:BA:4C:10:01"});
    set({"ath0", "addmac", "28:6A:BA:4C:10:02"});
    set({"ath0", "delmac", "28:6A:BA:4C:10:01"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:28:6A:BA:4C:10:02\n");
}

TEST_F(Iwpriv, RefusesWhatIsNoAddress) {
    for (const char *address : {"", "28:6A:BA:4C:10", "28:6A:BA:4C:10:0", "28:6A:BA:4C:10:0g", "28-6A-BA-4C-10-01",
                                "28:6A:BA:4C:10:01:02", "all of them"}) {
        EXPECT_EQ(refusal({"ath0", "addmac", address}), std::string("Invalid address [") + address + "]...\n");
        EXPECT_EQ(refusal({"ath0", "delmac", address}), std::string("Invalid address [") + address + "]...\n");
    }
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:\n");
}

TEST_F(Iwpriv, Maccmd3EmptiesTheListOfThatVapAndLeavesThePolicy) {
    set({"ath0", "addmac", "28:6A:BA:4C:10:01"});
    set({"ath8", "addmac", "28:6A:BA:4C:10:02"});
    set({"ath0", "maccmd", "1"});
    set({"ath0", "maccmd", "3"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:\n");
    EXPECT_EQ(answer({"ath0", "get_maccmd"}), "ath0      get_maccmd:1  \n");
    EXPECT_EQ(answer({"ath8", "getmac"}), "ath8      getmac:28:6A:BA:4C:10:02\n");
}

TEST_F(Iwpriv, Maccmd4EmptiesTheListAndEndsThePolicy) {
    set({"ath0", "addmac", "28:6A:BA:4C:10:01"});
    set({"ath0", "maccmd", "2"});
    set({"ath0", "maccmd", "4"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:\n");
    EXPECT_EQ(answer({"ath0", "get_maccmd"}), "ath0      get_maccmd:0  \n");
}

TEST_F(Iwpriv, APolicyLeavesTheListAlone) {
    set({"ath0", "addmac", "28:6A:BA:4C:10:01"});
    set({"ath0", "maccmd", "2"});
    EXPECT_EQ(answer({"ath0", "getmac"}), "ath0      getmac:28:6A:BA:4C:10:01\n");
}

TEST_F(Iwpriv, ApupPutsTheSteerlistEntriesOfTheStoreIntoTheFilter) {
    set_store(
        "AP_MACLIST=28:6A:BA:4C:10:01,steerlist;28:6A:BA:4C:10:02,blacklist;28:6a:ba:4c:10:03,steerlist;"
        ";nonsense;zz:6A:BA:4C:10:04,steerlist;28:6A:BA:4C:10:05,steerlist2;28:6A:BA:4C:10:06;28:6A:BA:4C:10:07,"
        "steerlist");
    set_store("AP_MACLIST_9=28:6A:BA:4C:10:08,steerlist;");
    set({"ath0", "addmac", "28:6A:BA:4C:10:99"});
    run({"apup"});
    EXPECT_EQ(answer({"ath0", "getmac"}),
              "ath0      getmac:28:6A:BA:4C:10:01\n                 28:6A:BA:4C:10:03\n"
              "                 28:6A:BA:4C:10:07\n");
    EXPECT_EQ(answer({"ath8", "getmac"}), "ath8      getmac:28:6A:BA:4C:10:08\n");
}

// The announced channel switch

TEST_F(Iwpriv, AChannelSwitchWithoutAnnouncementsMovesTheRadioAtOnce) {
    set({"ath0", "doth_ch_chwidth", "11", "0", "0"});
    EXPECT_EQ(frequency_of("ath0"), "2.462");
    EXPECT_EQ(frequency_of("ath8"), "5.18");
}

TEST_F(Iwpriv, AnAnnouncedChannelSwitchMovesTheRadioAfterItsBeacons) {
    set_store("BEACON_INT=50");
    auto start = std::chrono::steady_clock::now();
    set({"ath0", "doth_ch_chwidth", "11", "10", "2"});
    ASSERT_TRUE(eventually([] { return frequency_of("ath0") == "2.462"; }));
    // Ten times 50 units of 1.024 ms.
    std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken.count(), 0.512);
}

TEST_F(Iwpriv, TheRadioStaysOnItsChannelWhileASwitchIsAnnounced) {
    set({"ath0", "doth_ch_chwidth", "1", "0", "0"});
    set({"ath0", "doth_ch_chwidth", "11", "255", "0"});
    EXPECT_EQ(frequency_of("ath0"), "2.412");
}

TEST_F(Iwpriv, WhileASwitchIsAnnouncedTheRadioStaysWhereTheLastOneLedIt) {
    set_store("BEACON_INT=20");
    set({"ath0", "doth_ch_chwidth", "1", "1", "0"});
    ASSERT_TRUE(eventually([] { return frequency_of("ath0") == "2.412"; }));
    set({"ath0", "doth_ch_chwidth", "11", "255", "0"});
    EXPECT_EQ(frequency_of("ath0"), "2.412");
}

TEST_F(Iwpriv, AChannelChosenByHandEndsAnAnnouncement) {
    set_store("BEACON_INT=50");
    set({"ath0", "doth_ch_chwidth", "11", "2", "0"});
    EXPECT_EQ(run({"iwconfig", "ath0", "channel", "1"}).status, 0);
    usleep(150000);
    EXPECT_EQ(frequency_of("ath0"), "2.412");
}

TEST_F(Iwpriv, ApupEndsAnAnnouncement) {
    set({"ath0", "doth_ch_chwidth", "11", "0", "0"});
    set({"ath0", "doth_ch_chwidth", "1", "1", "0"});
    run({"apup"});
    usleep(110000);
    EXPECT_EQ(frequency_of("ath0"), "2.437");
}

TEST_F(Iwpriv, WithoutABeaconIntervalInTheStoreItIs100Units) {
    run({"cfg", "-r", "BEACON_INT"});
    auto start = std::chrono::steady_clock::now();
    set({"ath0", "doth_ch_chwidth", "11", "3", "0"});
    ASSERT_TRUE(eventually([] { return frequency_of("ath0") == "2.462"; }));
    std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken.count(), 0.3072);
}

TEST_F(Iwpriv, RefusesASwitchToAChannelThatTheRadioHasNotOrWithNumbersThatAreNone) {
    for (const lines &words : {lines{"ath0", "doth_ch_chwidth", "36", "0", "0"},
                               {"ath0", "doth_ch_chwidth", "0", "0", "0"},
                               {"ath0", "doth_ch_chwidth", "eleven", "0", "0"},
                               {"ath0", "doth_ch_chwidth", "11", "256", "0"},
                               {"ath0", "doth_ch_chwidth", "11", "-1", "0"},
                               {"ath0", "doth_ch_chwidth", "11", "0", "4"},
                               {"ath0", "doth_ch_chwidth", "11", "0", "wide"}})
        EXPECT_EQ(refusal(words),
                  "Interface doesn't accept private ioctl...\ndoth_ch_chwidth (8BE8): Invalid argument\n");
    EXPECT_EQ(frequency_of("ath0"), "2.437");
}

}  // namespace
