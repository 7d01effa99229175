// The platform inside a gateway without daemons: tools, faults, the driver library, the journal, the private places.
#include <errno.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "simulator/paths.h"
#include "simulator/store.h"
#include "tests/simulator/platform.h"

namespace {

double seconds_of(const lines &words) {
    return duration_of([&] { run(words); });
}

long counter_of(const std::string &text, const std::string &marker) {
    size_t place = text.find(marker);
    return place == std::string::npos ? -1 : atol(text.c_str() + place + marker.size());
}

// cfg

TEST_F(Platform, CfgSetsAValueThatItPrintsAgain) {
    EXPECT_EQ(run({"cfg", "-a", "AP_SSID_3=Guest network"}).status, 0);
    outcome value = run({"cfg", "-v", "AP_SSID_3"});
    EXPECT_EQ(value.status, 0);
    EXPECT_EQ(value.output, "Guest network\n");
}

TEST_F(Platform, CfgKeepsEveryCharacterOfAValueAsItReceivesIt) {
    std::string odd = "a\"b`c\\d$e=f 'g' \xc3\xa4\t";
    EXPECT_EQ(run({"cfg", "-a", "AP_SSID_3=" + odd}).status, 0);
    EXPECT_EQ(run({"cfg", "-v", "AP_SSID_3"}).output, odd + "\n");
}

TEST_F(Platform, CfgReplacesALineInItsPlaceAndLeavesTheOthers) {
    std::string before = read_file(APCFG_STORE);
    ASSERT_EQ(run({"cfg", "-a", "AP_PRIMARY_CH_2=11"}).status, 0);
    size_t place = before.find("AP_PRIMARY_CH_2=6\n");
    ASSERT_NE(place, std::string::npos);
    EXPECT_EQ(read_file(APCFG_STORE), before.replace(place, 18, "AP_PRIMARY_CH_2=11\n"));
}

TEST_F(Platform, CfgRemovesAKeyAndDoesNotMindOneThatIsNotThere) {
    EXPECT_EQ(run({"cfg", "-r", "AP_SSID"}).status, 0);
    EXPECT_EQ(run({"cfg", "-v", "AP_SSID"}).status, 1);
    EXPECT_EQ(run({"cfg", "-r", "AP_SSID"}).status, 0);
}

TEST_F(Platform, CfgShowsAllLines) {
    write_file(APCFG_STORE, std::string("CFG\nA=1\nB=2\n\0\0\0\0", 16));
    EXPECT_EQ(run({"cfg", "-s"}).output, "A=1\nB=2\n");
}

TEST_F(Platform, CfgSettlesDuplicatesAndCutsWhatFollowsTheEnd) {
    write_file(APCFG_STORE, std::string("CFG\nA=1\nB=2\nA=3\n\0\0\0\0old rest", 28));
    EXPECT_EQ(run({"cfg", "-c"}).status, 0);
    EXPECT_EQ(read_file(APCFG_STORE), std::string("CFG\nA=3\nB=2\n\0\0\0\0", 16));
}

TEST_F(Platform, CfgCreatesAMissingStore) {
    unlink(APCFG_STORE);
    EXPECT_EQ(run({"cfg", "-a", "A=1"}).status, 0);
    EXPECT_EQ(read_file(APCFG_STORE), std::string("CFG\nA=1\n\0\0\0\0", 12));
}

TEST_F(Platform, CfgRefusesBadUsageWithStatus1AndLeavesTheStoreAlone) {
    std::string before = read_file(APCFG_STORE);
    for (const lines &words : {lines{"cfg"}, lines{"cfg", "-a"}, lines{"cfg", "-x"}, lines{"cfg", "-s", "A"},
                               lines{"cfg", "-a", "A=1", "B=2"}, lines{"cfg", "-a", "no assignment"},
                               lines{"cfg", "-a", "=1"}, lines{"cfg", "-r", "A=1"}, lines{"cfg", "-a", "A=1\nB=2"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_NE(refused.errors, "") << words.back();
    }
    EXPECT_EQ(read_file(APCFG_STORE), before);
}

TEST_F(Platform, CfgWaitsForTheStoresLock) {
    int lock = store_lock(APCFG_LOCK);
    ASSERT_GE(lock, 0);
    pid_t child = fork();
    if (child == 0) {
        execlp("cfg", "cfg", "-a", "AP_SSID=late", nullptr);
        _exit(127);
    }
    // The call is in the journal before the tool waits for the lock.
    while (journal().empty())
        usleep(1000);
    usleep(50000);
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    close(lock);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(run({"cfg", "-v", "AP_SSID"}).output, "late\n");
}

TEST_F(Platform, CfgCallsAtTheSameTimeLoseNoSetting) {
    EXPECT_EQ(
        run_shell("for i in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do cfg -a \"T_$i=$i\" & done; wait")
            .status,
        0);
    for (int i = 1; i <= 20; i++)
        EXPECT_EQ(run({"cfg", "-v", "T_" + std::to_string(i)}).output, std::to_string(i) + "\n");
}

// iwconfig and ifconfig

TEST_F(Platform, IwconfigDescribesAnInterfaceThatIsUp) {
    outcome shown = run({"iwconfig", "ath0"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output.substr(0, shown.output.find("          RTS")),
              "ath0      IEEE 802.11ng  ESSID:\"Home network\"  \n"
              "          Mode:Master  Frequency:2.437 GHz  Access Point: 00:03:7F:10:00:01   \n"
              "          Bit Rate:216.7 Mb/s   Tx-Power:20 dBm   \n");
}

TEST_F(Platform, IwconfigWritesFrequenciesOfTheUpperBandWithoutZerosAtTheEnd) {
    EXPECT_NE(run({"iwconfig", "ath8"}).output.find("Frequency:5.18 GHz  "), std::string::npos);
    run({"cfg", "-a", "AP_PRIMARY_CH=40"});
    EXPECT_NE(run({"iwconfig", "ath8"}).output.find("Frequency:5.2 GHz  "), std::string::npos);
}

TEST_F(Platform, IwconfigFollowsTheStoresModeAndChannel) {
    run({"cfg", "-a", "AP_CHMODE_2=11NGHT40PLUS"});
    run({"cfg", "-a", "AP_PRIMARY_CH_2=1"});
    outcome shown = run({"iwconfig", "ath0"});
    EXPECT_NE(shown.output.find("IEEE 802.11ng"), std::string::npos);
    EXPECT_NE(shown.output.find("Bit Rate:450 Mb/s"), std::string::npos);
    EXPECT_NE(shown.output.find("Frequency:2.412 GHz"), std::string::npos);
}

TEST_F(Platform, IwconfigShowsTheQuietestChannelWhenTheStoreLeavesItOpen) {
    run({"cfg", "-a", "AP_PRIMARY_CH_2=0"});
    // Neighbours sit on channels 1, 6 and 11.
    EXPECT_NE(run({"iwconfig", "ath0"}).output.find("Frequency:2.417 GHz"), std::string::npos);
}

TEST_F(Platform, IwconfigChoosesAChannelUntilTheNextApup) {
    EXPECT_EQ(run({"iwconfig", "ath0", "channel", "auto"}).status, 0);
    EXPECT_NE(run({"iwconfig", "ath0"}).output.find("Frequency:2.417 GHz"), std::string::npos);
    EXPECT_EQ(run({"iwconfig", "ath0", "channel", "11"}).status, 0);
    EXPECT_NE(run({"iwconfig", "ath0"}).output.find("Frequency:2.462 GHz"), std::string::npos);
    run({"apup"});
    EXPECT_NE(run({"iwconfig", "ath0"}).output.find("Frequency:2.437 GHz"), std::string::npos);
}

TEST_F(Platform, IwconfigRefusesAChannelThatTheRadioDoesNotHave) {
    EXPECT_NE(run({"iwconfig", "ath0", "channel", "36"}).status, 0);
}

TEST_F(Platform, IwconfigOfAnInterfaceThatIsNotUpSaysNoSuchDeviceOnStandardErrorOnly) {
    outcome shown = run({"iwconfig", "ath3"});
    EXPECT_EQ(shown.status, 237);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.errors, "ath3      No such device\n");
    EXPECT_EQ(run({"iwconfig", "ath-1"}).status, 237);
}

TEST_F(Platform, IfconfigDescribesAnInterfaceThatIsUp) {
    outcome shown = run({"ifconfig", "ath8"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output.substr(0, shown.output.find('\n')),
              "ath8      Link encap:Ethernet  HWaddr 00:03:7F:10:00:05  ");
    for (const char *marker : {"RX packets:", "TX packets:", "RX bytes:", "TX bytes:"})
        EXPECT_GT(counter_of(shown.output, marker), 0) << marker;
}

TEST_F(Platform, IfconfigsCountersGrowWithTimeFromTheScenariosStart) {
    long first = counter_of(run({"ifconfig", "ath8"}).output, "TX bytes:");
    EXPECT_GE(first, 118000000);
    usleep(20000);
    EXPECT_GT(counter_of(run({"ifconfig", "ath8"}).output, "TX bytes:"), first);
}

TEST_F(Platform, IfconfigOfAnInterfaceThatIsNotUpFails) {
    outcome shown = run({"ifconfig", "ath3"});
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.errors, "ath3: error fetching interface information: Device not found\n");
}

// The driver's scripts

TEST_F(Platform, ApupBringsUpTheVapsThatTheStoreEnables) {
    run({"cfg", "-a", "AP_ENABLE_3=1"});
    EXPECT_EQ(run({"iwconfig", "ath2"}).status, 237);
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(run({"iwconfig", "ath2"}).status, 0);
    run({"cfg", "-a", "AP_ENABLE_3=0"});
    EXPECT_EQ(run({"apup"}).status, 0);
    EXPECT_EQ(run({"iwconfig", "ath2"}).status, 237);
}

TEST_F(Platform, ApupLeavesTheVapsOfADisabledRadioDown) {
    run({"cfg", "-a", "AP_RADIO_ENABLED_2=0"});
    run({"apup"});
    EXPECT_EQ(run({"iwconfig", "ath0"}).status, 237);
    EXPECT_EQ(run({"iwconfig", "ath8"}).status, 0);
}

TEST_F(Platform, FastDownTakesEverythingDownAndApupSimpleLoadsWithoutVaps) {
    EXPECT_EQ(run({"fast_down.sh"}).status, 0);
    EXPECT_EQ(run({"iwconfig", "ath0"}).status, 237);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "");
    EXPECT_EQ(run({"apup_simple"}).status, 0);
    EXPECT_EQ(read_file(GATEWAY_DRIVER_STATE), "loaded\n");
    EXPECT_EQ(run({"iwconfig", "ath0"}).status, 237);
}

TEST_F(Platform, ScriptsTakeTheTimeThatTheScenarioGivesThem) {
    write_file(GATEWAY_SCENARIO, "script apup seconds=0.3\nscript apup_simple seconds=0.2\n");
    EXPECT_GE(seconds_of({"apup"}), 0.3);
    EXPECT_GE(seconds_of({"apup_simple"}), 0.2);
    EXPECT_LT(seconds_of({"fast_down.sh"}), 0.2);
}

TEST_F(Platform, AScriptThatIsKilledHalfwayHasDoneNothing) {
    run({"fast_down.sh"});
    run({"fault", "apup", "slow", "60"});
    pid_t child = fork();
    if (child == 0) {
        execlp("apup", "apup", nullptr);
        _exit(127);
    }
    while (journal().back() != "run apup")
        usleep(1000);
    EXPECT_EQ(run_shell("killall apup").status, 0);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(run({"iwconfig", "ath0"}).status, 237);
}

TEST_F(Platform, ApupPutsAMissingInternalAddressBack) {
    ASSERT_EQ(run({"fault", "address", "missing"}).status, 0);
    EXPECT_EQ(read_file("/proc/net/fib_trie").find(GATEWAY_ADDRESS), std::string::npos);
    run({"apup"});
    EXPECT_NE(read_file("/proc/net/fib_trie").find(GATEWAY_ADDRESS), std::string::npos);
}

// Faults of tools

TEST_F(Platform, ASilentToolPrintsNothingAndDoesNothing) {
    run({"fault", "iwconfig", "silent"});
    outcome shown = run({"iwconfig", "ath0"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output + shown.errors, "");
    run({"fault", "cfg", "silent"});
    EXPECT_EQ(run({"cfg", "-a", "AP_SSID=lost"}).status, 0);
    run({"fault", "cfg", "off"});
    EXPECT_EQ(run({"cfg", "-v", "AP_SSID"}).output, "Home network\n");
}

TEST_F(Platform, AFailingToolSaysSoWithStatus1AndDoesNothing) {
    run({"fault", "apup", "fail"});
    run({"cfg", "-a", "AP_ENABLE_3=1"});
    outcome failed = run({"apup"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "apup: failed\n");
    EXPECT_EQ(run({"iwconfig", "ath2"}).status, 237);
}

TEST_F(Platform, ASlowToolTakesItsTimeAndThenWorks) {
    run({"fault", "iwconfig", "slow", "0.3"});
    EXPECT_GE(seconds_of({"iwconfig", "ath0"}), 0.3);
    EXPECT_NE(run({"iwconfig", "ath0"}).output.find("Access Point:"), std::string::npos);
}

TEST_F(Platform, AToolThatTalksGarbageEndsWellAndNamesNoMarker) {
    run({"fault", "iwconfig", "garbage"});
    outcome garbage = run({"iwconfig", "ath0"});
    EXPECT_EQ(garbage.status, 0);
    EXPECT_GT(garbage.output.size(), 1000u);
    EXPECT_EQ(garbage.output.find('\n'), std::string::npos);
    EXPECT_EQ(garbage.output.find("Access Point:"), std::string::npos);
}

TEST_F(Platform, AMissingToolEndsAsACommandThatIsNotFound) {
    run({"fault", "ifconfig", "missing"});
    outcome missing = run({"ifconfig", "ath0"});
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.output, "");
    EXPECT_EQ(missing.errors, "ifconfig: not found\n");
}

TEST_F(Platform, AToolThatHangsDoesNothingUntilItIsKilled) {
    run({"fault", "cfg", "hang"});
    EXPECT_EQ(run_shell("timeout -s TERM 0.2 cfg -a AP_SSID=lost").status, 124);
    run({"fault", "cfg", "off"});
    EXPECT_EQ(run({"cfg", "-v", "AP_SSID"}).output, "Home network\n");
}

// Whether cfg gets the store's lock within a moment.
bool cfg_gets_its_turn() {
    return run({"timeout", "0.3", "cfg", "-a", "T=1"}).status == 0;
}

TEST_F(Platform, AHeldLockKeepsEverybodyFromTheStoreUntilTheFaultIsOff) {
    EXPECT_EQ(run({"fault", "store_lock", "held"}).status, 0);
    EXPECT_EQ(run({"fault"}).output, "store_lock held\n");
    EXPECT_FALSE(cfg_gets_its_turn());
    EXPECT_EQ(run({"fault", "store_lock", "off"}).status, 0);
    EXPECT_TRUE(cfg_gets_its_turn());
}

TEST_F(Platform, AHeldLockIsHeldOnceHoweverOftenItIsSwitchedOn) {
    EXPECT_EQ(run({"fault", "store_lock"}).status, 0);
    EXPECT_EQ(run({"timeout", "5", "fault", "store_lock"}).status, 0);
    EXPECT_FALSE(cfg_gets_its_turn());
    EXPECT_EQ(run({"fault", "store_lock", "off"}).status, 0);
    EXPECT_TRUE(cfg_gets_its_turn());
}

TEST_F(Platform, AHeldLockIsGivenBackWhenAllFaultsAreSwitchedOff) {
    EXPECT_EQ(run({"fault", "store_lock"}).status, 0);
    EXPECT_EQ(run({"fault", "off"}).status, 0);
    EXPECT_TRUE(eventually(cfg_gets_its_turn));
}

TEST_F(Platform, TheHolderOfALockKeepsNobodyWaitingForItsOutput) {
    EXPECT_LT(seconds_of({"sh", "-c", "fault store_lock | cat"}), 5);
}

// What the probe says of the four clocks.
std::vector<long> probed_clocks() {
    std::vector<long> clocks(4);
    EXPECT_EQ(
        sscanf(probe("clocks now").output.c_str(), "%ld %ld %ld %ld", &clocks[0], &clocks[1], &clocks[2], &clocks[3]),
        4);
    return clocks;
}

TEST_F(Platform, TheTimeOfDayIsTheMachinesWithoutAFault) {
    std::vector<long> clocks = probed_clocks();
    for (int i = 0; i < 3; i++)
        EXPECT_NEAR(clocks[i], time(nullptr), 5) << i;
}

TEST_F(Platform, AClockThatJumpsShowsAnotherTimeOfDayToTheServer) {
    for (long jump : {86400L, -86400L}) {
        ASSERT_EQ(run({"fault", "clock", std::to_string(jump)}).status, 0);
        std::vector<long> clocks = probed_clocks();
        for (int i = 0; i < 3; i++)
            EXPECT_NEAR(clocks[i], time(nullptr) + jump, 5) << i;
    }
}

TEST_F(Platform, AClockThatJumpsLeavesTheClockThatNobodySets) {
    timespec now = {};
    ASSERT_EQ(run({"fault", "clock"}).status, 0);
    clock_gettime(CLOCK_MONOTONIC, &now);
    EXPECT_NEAR(probed_clocks()[3], now.tv_sec, 5);
}

TEST_F(Platform, FaultListsWhatIsOnAndOffEndsAll) {
    run({"fault", "iwconfig", "slow", "2"});
    run({"fault", "popen", "ENOMEM"});
    EXPECT_EQ(run_shell("fault | sort").output, "iwconfig slow 2\npopen ENOMEM\n");
    EXPECT_EQ(run({"fault", "off"}).status, 0);
    EXPECT_EQ(run({"fault"}).output, "");
}

TEST_F(Platform, AFaultWithoutValueIsTheShortestWayToSayThatItFails) {
    run({"fault", "iwconfig"});
    run({"fault", "popen"});
    run({"fault", "blacklist2g"});
    EXPECT_EQ(run_shell("fault | sort").output, "blacklist2g 4294967295\niwconfig fail\npopen EIO\n");
}

TEST_F(Platform, FaultRefusesNamesAndValuesThatDoNotExist) {
    for (const lines &words : {lines{"fault", "nonsense", "fail"},
                               lines{"fault", "../x", "fail"},
                               lines{"fault", "fault", "fail"},
                               lines{"fault", "iwconfig", "sleepy"},
                               lines{"fault", "iwconfig", "slow"},
                               lines{"fault", "iwconfig", "slow", "x"},
                               lines{"fault", "iwconfig", "slow", "86401"},
                               lines{"fault", "popen", "ENONSENSE"},
                               lines{"fault", "popen", "hang"},
                               lines{"fault", "iwconfig", "hang", "2"},
                               lines{"fault", "blacklist2g", "many"},
                               lines{"fault", "blacklist2g", "-1"},
                               lines{"fault", "blacklist2g", "4294967296"},
                               lines{"fault", "blacklist2g", "1x"},
                               lines{"fault", "ioctl:", "EIO"},
                               lines{"fault", "ioctl:0x8be7z", "EIO"},
                               lines{"fault", "store_lock", "free"},
                               lines{"fault", "clock", "noon"},
                               lines{"fault", "clock", "99999999999"},
                               lines{"fault", "address", "gone"},
                               lines{"fault", "a", "b", "c", "d"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words[1];
        EXPECT_NE(refused.errors, "") << words[1];
    }
    EXPECT_EQ(run({"fault"}).output, "");
}

// The driver library

TEST_F(Platform, TheChannelTableListsTheRadiosChannels) {
    outcome table = probe("channels ath0 5104");
    EXPECT_EQ(table.output.substr(0, 49), "0 5104 13\n2412 0x000304a0\n2417 0x000304a0\n2422 0x");
    EXPECT_EQ(journal(), lines{"ioctl ath0 0x8be7 5104 = 0"});
    EXPECT_EQ(probe("channels wifi1 5104").output.substr(0, 26), "0 5104 17\n5180 0x00b30140\n");
}

TEST_F(Platform, AChannelTableThatDoesNotFitIsRefused) {
    EXPECT_EQ(probe("channels ath0 5103").output, "-1 E2BIG\n");
    EXPECT_EQ(journal(), lines{"ioctl ath0 0x8be7 5103 = -1 E2BIG"});
}

TEST_F(Platform, TheEssidIsTheStores) {
    EXPECT_EQ(probe("essid ath0 33").output, "0 12 1 Home network\n");
    EXPECT_EQ(probe("essid ath0 11").output, "-1 E2BIG\n");
    EXPECT_EQ(journal(), (lines{"ioctl ath0 0x8b1b 33 = 0", "ioctl ath0 0x8b1b 11 = -1 E2BIG"}));
}

TEST_F(Platform, AnInterfaceThatIsNotUpIsNoSuchDevice) {
    EXPECT_EQ(probe("channels ath3 5104").output, "-1 ENODEV\n");
    EXPECT_EQ(journal(), lines{"ioctl ath3 0x8be7 5104 = -1 ENODEV"});
    run({"fast_down.sh"});
    EXPECT_EQ(probe("channels wifi0 5104").output, "-1 ENODEV\n");
}

TEST_F(Platform, RequestsOnOtherInterfacesAreTheKernelsAndNotInTheJournal) {
    EXPECT_EQ(probe("request eth7 0x8913").output, "-1 ENODEV\n");
    EXPECT_EQ(probe("request lo 0x8913").output, "0 \n");
    EXPECT_EQ(journal(), lines{});
}

TEST_F(Platform, AnIoctlFailsWithTheErrorThatItsFaultNames) {
    EXPECT_EQ(run({"fault", "ioctl:35815", "EPERM"}).status, 0);  // 0x8be7, in whatever spelling
    EXPECT_EQ(run({"fault"}).output, "ioctl:0x8be7 EPERM\n");
    mark = journal_mark();
    EXPECT_EQ(probe("channels ath0 5104").output, "-1 EPERM\n");
    EXPECT_EQ(journal(), lines{"ioctl ath0 0x8be7 5104 = -1 EPERM"});
    EXPECT_EQ(probe("essid ath0 33").output, "0 12 1 Home network\n");
}

TEST_F(Platform, PopenFailsWithTheErrorThatItsFaultNames) {
    run({"fault", "popen", "ENOMEM"});
    mark = journal_mark();
    EXPECT_EQ(probe("popen 'cfg -s'").output, "-1 ENOMEM\n");
    EXPECT_EQ(journal(), lines{"popen cfg -s"});
}

TEST_F(Platform, SystemFailsWithTheErrorThatItsFaultNames) {
    run({"fault", "system", "EAGAIN"});
    mark = journal_mark();
    EXPECT_EQ(probe("system 'cfg -s'").output, "-1 EAGAIN\n");
    EXPECT_EQ(journal(), lines{"system cfg -s"});
}

TEST_F(Platform, ShellCommandsWorkInAThreadWithASmallStack) {
    EXPECT_EQ(probe("worker 'cfg -v AP_SSID'").output, "Home network\nclosed 0\n");
}

TEST_F(Platform, LinesForTheSystemLogStandInTheJournalAndNowhereElse) {
    // Formatted as the system log does it: "%m" is the error of the moment, which the call leaves as it is.
    EXPECT_EQ(probe("syslog 'one\\two'").output, "ENOENT\n");
    EXPECT_EQ(probe("syslog-checked three").output, "ENOENT\n");
    EXPECT_EQ(journal(),
              (lines{"syslog one\\\\two 7 No such file or directory", "syslog three 7 No such file or directory"}));
}

TEST_F(Platform, ALongLineForTheSystemLogFitsIntoAThreadWithASmallStack) {
    EXPECT_EQ(probe("syslog-worker 100000").status, 0);
    EXPECT_EQ(journal(), lines{"syslog " + std::string(100000, 'x')});
}

TEST_F(Platform, TheLibraryIsNotHandedOnToTheProgramsThatItsHostStarts) {
    EXPECT_EQ(probe("popen 'echo \"<$LD_PRELOAD>\"'").output, "<>\nclosed 0\n");
}

// The journal

TEST_F(Platform, TheJournalHoldsTheShellCommandAndBelowItTheToolThatItRan) {
    probe("popen 'cfg -a AP_SSID=\"Guest network\"'");
    EXPECT_EQ(journal(), (lines{"popen cfg -a AP_SSID=\"Guest network\"", "run cfg -a \"AP_SSID=Guest network\""}));
}

TEST_F(Platform, TheJournalWritesControlBytesAndBackslashesSoThatALineIsOneEvent) {
    run({"cfg", "-v", "a\nb\r\t\\\x01\x7f\"", "", "\xc3\xa4"});
    EXPECT_EQ(journal(), lines{"run cfg -v \"a\\nb\\r\\t\\\\\\x01\\x7f\\\"\" \"\" \"\xc3\xa4\""});
}

TEST_F(Platform, TheJournalTakesLinesOfManyProcessesWithoutMixingThem) {
    run_shell(
        "for i in 1 2 3 4 5 6 7 8; do (for j in 1 2 3 4 5 6 7 8 9 10; do cfg -v \"KEY OF $i\"; done) & done; wait");
    ASSERT_EQ(journal().size(), 80u);
    for (const std::string &line : journal())
        EXPECT_TRUE(line.size() == 21 && line.starts_with("run cfg -v \"KEY OF ")) << line;
}

// The private places

long file_system_of(const char *path) {
    struct statfs status = {};
    return statfs(path, &status) == 0 ? status.f_type : -1;
}

TEST(PrivateRoot, TheDirectoriesThatTheSystemTouchesAreItsOwn) {
    for (const char *path : {"/tmp", "/run", "/var/run", "/nvram", "/sys", "/etc", "/usr/sbin"})
        EXPECT_EQ(file_system_of(path), TMPFS_MAGIC) << path;
}

TEST(PrivateRoot, TheHostsFilesCannotBeWritten) {
    for (const char *path : {"/usr", "/usr/bin", "/var", "/.host", "/.host/usr", "/.host/etc"}) {
        struct statvfs status = {};
        ASSERT_EQ(statvfs(path, &status), 0) << path;
        EXPECT_NE(status.f_flag & ST_RDONLY, 0u) << path;
        std::string file = std::string(path) + "/written-by-a-test";
        EXPECT_EQ(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644), -1) << path;
    }
}

TEST(PrivateRoot, TheHostsOwnSystemDirectoriesAreCovered) {
    for (const char *path : {"/.host/proc", "/.host/sys", "/.host/tmp", "/.host/run"})
        EXPECT_EQ(run({"ls", "-A", path}).output, "") << path;
}

TEST(PrivateRoot, NoProcessOfTheHostIsVisible) {
    EXPECT_EQ(read_file("/proc/1/comm"), "vlk_simulated_g\n");
    EXPECT_EQ(getppid(), 1);
    // The authenticator that earlier tests left is gone after this.
    EXPECT_EQ(run({"fast_down.sh"}).status, 0);
    // The gateway's first process, this test, and the listing itself.
    EXPECT_EQ(run({"ps", "-e", "-o", "comm="}).output, "vlk_simulated_g\n" + read_file("/proc/self/comm") + "ps\n");
}

TEST(PrivateRoot, TheNetworkIsTheLoopbackDeviceWithTheInternalAddress) {
    std::string devices = read_file("/proc/net/dev");
    size_t third_line = devices.find('\n', devices.find('\n') + 1) + 1;
    EXPECT_EQ(devices.substr(third_line, 9).find("lo:"), devices.substr(third_line, 9).find_first_not_of(' '));
    std::string addresses = read_file("/proc/net/fib_trie");
    EXPECT_NE(addresses.find("192.168.254.254"), std::string::npos);
    EXPECT_NE(addresses.find("127.0.0.1"), std::string::npos);
}

TEST(PrivateRoot, ProgramsStandWhereTheGatewayHasThem) {
    for (const char *path :
         {"/etc/ath/cfg", "/etc/ath/apup", "/etc/ath/apup_simple", "/etc/ath/fast_down.sh", "/usr/sbin/iwconfig",
          "/usr/sbin/iwlist", "/usr/sbin/iwpriv", "/usr/sbin/ifconfig", "/sbin/hostapd", "/usr/sbin/hostapd_cli",
          "/usr/sbin/fault", "/sbin/insmod", "/usr/sbin/wifitool", "/usr/sbin/wps_gpio"})
        EXPECT_EQ(access(path, X_OK), 0) << path;
    char target[4096] = "";
    EXPECT_GT(readlink("/usr/sbin/vlk_rpc_wlan_config_client", target, sizeof target - 1), 0);
}

TEST(PrivateRoot, TheBoardsFilesAreThereAndCanBeWritten) {
    for (const char *path :
         {"/sys/bus/pci/rescan", "/sys/bus/pci/slots/0000:02:00.0/power", "/sys/bus/pci/slots/0000:03:00.0/power"}) {
        write_file(path, "0");
        EXPECT_EQ(read_file(path), "0") << path;
    }
    EXPECT_EQ(access("/nvram/etc/wpa2", W_OK), 0);
    EXPECT_EQ(access("/etc/wpa2", W_OK), 0);
}

TEST(PrivateRoot, ThePortmappersUserIsThereAsTheOneUserThatAlwaysIs) {
    EXPECT_EQ(run_shell("id -u _rpc").output, "0\n");
}

TEST(PrivateRoot, GivingUpGroupsSucceeds) {
    pid_t child = fork();
    if (child == 0)
        _exit(setgroups(0, nullptr) == 0 ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
