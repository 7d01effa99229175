// Factory defaults: what is cleared, which lines reach the store and where, what is run, locked, printed and refused.
#include "config/factory_defaults.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "config/store.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/statistics_library.h"
#include "tests/support/store_lock.h"
#include "tests/support/wps_platform.h"

namespace {

const char DEFAULTS[] = "/tmp/wifi_defaults.dat";
const char BLACK_LIST[] = "/nvram/blackList.dat";
const char CAPABLE_TABLE[] = "/nvram/5gcapabletable";
const char DRIVER_LOG[] = "/nvram/wlanlog";
const char DAEMON_SOCKET[] = "/var/run/ssidsteering";

// Bytes that no tool would write there, to see that nobody does.
const std::string HEADER("\1\2\0\3", 4);
const std::string ZEROS(4, '\0');

const std::string START_5("SETTING_DELIMETER=50_RADIO_START\n");
const std::string STOP_5("SETTING_DELIMETER=50_RADIO_STOP\n");
const std::string START_24("SETTING_DELIMETER=24_RADIO_START\n");
const std::string STOP_24("SETTING_DELIMETER=24_RADIO_STOP\n");

// What an ordinary defaults file looks like.
const std::string BOTH_RADIOS =
    START_5 + "AP_SSID_9=Factory5\n" + STOP_5 + START_24 + "AP_SSID=Factory24\nAP_SSID_2=Guest\n" + STOP_24;

const calls SETTLING = {"cfg -c", "rm -f /nvram/etc/wpa2/*"};

const std::string CLEARING_LINE =
    "[VLK-API] wlan_setSBBlackListClear wlan_setSBBlackListClear: wlan_setBlackListClear entered\n";
const std::string WRITE_ERROR = "[VLK-API] Error wlan_setRestoreDefaults write /tmp/.apcfg failed\n";
const std::string READ_ERROR = "[VLK-API] Error wlan_setRestoreDefaults read /tmp/wifi_defaults.dat failed\n";

std::string command_line(const std::string &command) {
    return "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:" + command + "\n";
}

// A platform with a store, a soft-block daemon that only listens, and no defaults file yet.
struct FactoryDefaults : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_wps_files();
        reset_statistics_library();
        for (const char *path : {DEFAULTS, BLACK_LIST, CAPABLE_TABLE, DRIVER_LOG, DAEMON_SOCKET}) {
            std::filesystem::remove_all(path);
        }
        install_tool("cfg");
        install_tool("wps_gpio");
        start_daemon();
        write_file(STORE_FILE, HEADER + "AP_SSID=Old\n" + ZEROS);
    }

    void TearDown() override {
        end_daemon();
        std::filesystem::remove_all(DEFAULTS);
    }

    void start_daemon() {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, DAEMON_SOCKET);
        daemon = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        ASSERT_EQ(bind(daemon, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    }

    void end_daemon() {
        if (daemon >= 0) {
            close(daemon);
        }
        unlink(DAEMON_SOCKET);
        daemon = -1;
    }

    // The next message to the daemon with its NUL, empty when there is none.
    static std::string next_message() {
        char message[64];
        ssize_t length = recv(daemon, message, sizeof(message), 0);
        return length < 0 ? "" : std::string(message, static_cast<size_t>(length));
    }

    static int daemon;
};

int FactoryDefaults::daemon = -1;

// Restores, which must succeed and print nothing.
void restore(int scope) {
    printed_text printed = capture([=] { EXPECT_EQ(wlan_setRestoreDefaults(scope), 0) << "scope " << scope; });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// The bytes of a store after these defaults.
std::string restored(int scope, const std::string &store, const std::string &defaults) {
    write_file(STORE_FILE, store);
    write_file(DEFAULTS, defaults);
    restore(scope);
    FactoryDefaults::next_message();  // the daemon's queue is short
    return read_file(STORE_FILE);
}

// What is appended to a store of one line.
std::string appended(int scope, const std::string &defaults) {
    const std::string before = HEADER + "AP_SSID=Old\n";
    std::string after = restored(scope, before + ZEROS, defaults);
    if (!after.starts_with(before) || !after.ends_with(ZEROS) || after.size() < before.size() + ZEROS.size()) {
        ADD_FAILURE() << "the store is " << testing::PrintToString(after);
        return "";
    }
    return after.substr(before.size(), after.size() - before.size() - ZEROS.size());
}

// --- which scopes there are ---

TEST_F(FactoryDefaults, AnotherScopeIsRefusedBeforeAnythingElse) {
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(wps_file(0), "uuid=1\n");
    write_file(CAPABLE_TABLE, "table");
    const std::string before = read_file(STORE_FILE);
    for (int scope : {-1, 3, INT_MIN, INT_MAX}) {
        std::string printed = debug_lines([=] { EXPECT_EQ(wlan_setRestoreDefaults(scope), -1) << scope; });
        EXPECT_EQ(printed, "") << scope;
    }
    EXPECT_EQ(next_message(), "");
    EXPECT_EQ(statistics_library.clearings, 0);
    EXPECT_EQ(read_file(STORE_FILE), before);
    EXPECT_EQ(access(STORE_LOCK_FILE, F_OK), -1);
    EXPECT_EQ(access(wps_file(0).c_str(), F_OK), 0);
    EXPECT_EQ(access(CAPABLE_TABLE, F_OK), 0);
    EXPECT_EQ(tool_calls(), calls({}));
}

TEST_F(FactoryDefaults, ScopeZeroIsTheSectionOfFiveGigahertz) {
    EXPECT_EQ(appended(0, BOTH_RADIOS), "AP_SSID_9=Factory5\n");
}

TEST_F(FactoryDefaults, ScopeOneIsTheSectionOfTwoPointFourGigahertz) {
    EXPECT_EQ(appended(1, BOTH_RADIOS), "AP_SSID=Factory24\nAP_SSID_2=Guest\n");
}

TEST_F(FactoryDefaults, ScopeTwoIsTheWholeFileWithItsMarkers) {
    EXPECT_EQ(restored(2, HEADER + "AP_SSID=Old\n" + ZEROS, BOTH_RADIOS),
              std::string("\1\2\0\3"
                          "SETTING_DELIMETER=50_RADIO_START\n"
                          "AP_SSID_9=Factory5\n"
                          "SETTING_DELIMETER=50_RADIO_STOP\n"
                          "SETTING_DELIMETER=24_RADIO_START\n"
                          "AP_SSID=Factory24\n"
                          "AP_SSID_2=Guest\n"
                          "SETTING_DELIMETER=24_RADIO_STOP\n"
                          "\0\0\0\0",
                          4 + 33 + 19 + 32 + 33 + 18 + 16 + 32 + 4));
}

// --- what is cleared first ---

TEST_F(FactoryDefaults, TheSoftBlockDaemonIsToldToClearItsListOnce) {
    write_file(DEFAULTS, BOTH_RADIOS);
    for (int scope : {0, 1, 2}) {
        restore(scope);
        EXPECT_EQ(next_message(), std::string("clearL:1\0", 9)) << scope;
        EXPECT_EQ(next_message(), "") << scope;
    }
}

TEST_F(FactoryDefaults, WithoutTheDaemonItsListIsDeletedAndTheRestoreGoesOn) {
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(BLACK_LIST, "list");
    end_daemon();
    printed_text printed = capture([] { EXPECT_EQ(wlan_setRestoreDefaults(0), 0); });
    EXPECT_EQ(printed.err,
              "[VLK-API] Error sendDataToSBCtrl Could not connect\n"
              "[VLK-API] Error wlan_setSBBlackListClear send data to SBCtrl failed\n");
    EXPECT_EQ(access(BLACK_LIST, F_OK), -1);
    EXPECT_TRUE(contains(read_file(STORE_FILE), "AP_SSID_9=Factory5\n"));
}

TEST_F(FactoryDefaults, TheStatisticsAreClearedOnce) {
    write_file(DEFAULTS, BOTH_RADIOS);
    for (int scope : {0, 1, 2}) {
        reset_statistics_library();
        restore(scope);
        EXPECT_EQ(statistics_library.clearings, 1) << scope;
    }
}

// What there was when the statistics were cleared.
std::string message_at_clearing;
calls calls_at_clearing;

TEST_F(FactoryDefaults, TheListIsClearedBeforeTheStatisticsAndBothBeforeTheDefaultsFileIsLookedAt) {
    message_at_clearing = "";
    calls_at_clearing = {"nobody looked"};
    statistics_library.on_clearing = [] {
        message_at_clearing = next_message();
        calls_at_clearing = tool_calls();
        write_file(DEFAULTS, START_5 + "AP_SSID_9=JustInTime\n");
    };
    restore(0);
    EXPECT_EQ(message_at_clearing, std::string("clearL:1\0", 9));
    EXPECT_EQ(calls_at_clearing, calls({}));
    EXPECT_TRUE(contains(read_file(STORE_FILE), "AP_SSID_9=JustInTime\n"));
    EXPECT_EQ(tool_calls(), calls({"cfg -c"})) << "the file was there in time, nothing had to be fetched";
}

// --- where the defaults come from ---

// A tool that lays a defaults file down.
void install_fetching_tool(const std::string &content) {
    write_file("/tmp/fetched.dat", content);
    std::string path = std::string(FAKE_TOOLS) + "/wps_gpio";
    write_file(path, std::string("#!/bin/sh\n[ \"$*\" = wifi_conf ] && cp /tmp/fetched.dat ") + DEFAULTS + "\n");
    ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

TEST_F(FactoryDefaults, WithoutADefaultsFileTheRestoreFailsAfterClearing) {
    write_file(wps_file(0), "uuid=1\n");
    const std::string before = read_file(STORE_FILE);
    for (int scope : {0, 1, 2}) {
        reset_statistics_library();
        EXPECT_EQ(wlan_setRestoreDefaults(scope), -1) << scope;
        EXPECT_EQ(next_message(), std::string("clearL:1\0", 9)) << scope;
        EXPECT_EQ(statistics_library.clearings, 1) << scope;
    }
    EXPECT_EQ(tool_calls(), calls({"wps_gpio wifi_conf", "wps_gpio wifi_conf", "wps_gpio wifi_conf"}));
    EXPECT_EQ(read_file(STORE_FILE), before);
    EXPECT_EQ(access(STORE_LOCK_FILE, F_OK), -1);
    EXPECT_EQ(access(wps_file(0).c_str(), F_OK), 0);
}

TEST_F(FactoryDefaults, WhatCannotBeFetchedIsReported) {
    EXPECT_EQ(debug_lines([] { wlan_setRestoreDefaults(0); }),
              CLEARING_LINE + "[VLK-API] wlan_setRestoreDefaults file not found: /tmp/wifi_defaults.dat\n" +
                  command_line("wps_gpio wifi_conf") +
                  "[VLK-API] wlan_setRestoreDefaults file could not be retrieved: /tmp/wifi_defaults.dat\n");
}

TEST_F(FactoryDefaults, AMissingFileIsFetched) {
    install_fetching_tool(BOTH_RADIOS);
    restore(0);
    EXPECT_EQ(read_file(STORE_FILE), HEADER + "AP_SSID=Old\nAP_SSID_9=Factory5\n" + ZEROS);
}

TEST_F(FactoryDefaults, AFetchedFileIsReported) {
    install_fetching_tool(BOTH_RADIOS);
    EXPECT_EQ(debug_lines([] { wlan_setRestoreDefaults(0); }),
              CLEARING_LINE + "[VLK-API] wlan_setRestoreDefaults file not found: /tmp/wifi_defaults.dat\n" +
                  command_line("wps_gpio wifi_conf") +
                  "[VLK-API] wlan_setRestoreDefaults file successfully retrieved from ARM: /tmp/wifi_defaults.dat\n" +
                  command_line("cfg -c") + command_line("rm -f /nvram/etc/wpa2/*"));
}

TEST_F(FactoryDefaults, AFileThatIsThereIsNotFetchedAndNotReported) {
    write_file(DEFAULTS, BOTH_RADIOS);
    EXPECT_EQ(debug_lines([] { wlan_setRestoreDefaults(0); }),
              CLEARING_LINE + command_line("cfg -c") + command_line("rm -f /nvram/etc/wpa2/*"));
}

TEST_F(FactoryDefaults, WhatCannotBeReadIsFetchedAnewAndElseLeavesTheStoreAlone) {
    const std::string before = read_file(STORE_FILE);
    ASSERT_EQ(mkdir(DEFAULTS, 0755), 0);
    EXPECT_EQ(wlan_setRestoreDefaults(2), -1) << "a directory";
    ASSERT_EQ(rmdir(DEFAULTS), 0);
    ASSERT_EQ(symlink("/proc/self/mem", DEFAULTS), 0);
    EXPECT_EQ(wlan_setRestoreDefaults(2), -1) << "a file whose first byte cannot be read";
    EXPECT_EQ(tool_calls(), calls({"wps_gpio wifi_conf", "wps_gpio wifi_conf"}));
    EXPECT_EQ(read_file(STORE_FILE), before);
}

TEST_F(FactoryDefaults, WithoutDescriptorsTheRestoreFails) {
    write_file(DEFAULTS, BOTH_RADIOS);
    const std::string before = read_file(STORE_FILE);
    begin_capture();
    begin_descriptor_shortage();
    int status = wlan_setRestoreDefaults(2);
    end_descriptor_shortage();
    end_capture();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(read_file(STORE_FILE), before);
    EXPECT_EQ(tool_calls(), calls({}));
}

// --- which lines are taken ---

TEST_F(FactoryDefaults, ASectionOfTheOtherRadioOnlyGivesNoLines) {
    EXPECT_EQ(appended(1, START_5 + "AP_SSID_9=Factory5\n" + STOP_5), "");
    EXPECT_EQ(tool_calls(), calls({"cfg -c"}));
    EXPECT_EQ(appended(0, START_24 + "AP_SSID=Factory24\n" + STOP_24), "");
}

TEST_F(FactoryDefaults, AnEmptyFileGivesNoLines) {
    for (int scope : {0, 1}) {
        EXPECT_EQ(appended(scope, ""), "") << scope;
    }
}

TEST_F(FactoryDefaults, LinesOutsideEverySectionAreLeftOut) {
    EXPECT_EQ(appended(0, "A=1\n" + START_5 + "B=2\n" + STOP_5 + "C=3\n"), "B=2\n");
}

TEST_F(FactoryDefaults, AllSectionsOfARadioAreTaken) {
    EXPECT_EQ(appended(0, START_5 + "A=1\n" + STOP_5 + "B=2\n" + START_5 + "C=3\n" + STOP_5), "A=1\nC=3\n");
}

TEST_F(FactoryDefaults, ASectionWithoutEndGoesToTheEndOfTheFile) {
    EXPECT_EQ(appended(0, START_5 + "A=1\n" + START_24 + "B=2\n" + STOP_24 + "C=3\n"),
              "A=1\n" + START_24 + "B=2\n" + STOP_24 + "C=3\n");
}

TEST_F(FactoryDefaults, AnEndWithoutABeginningIsPassedOver) {
    EXPECT_EQ(appended(0, STOP_5 + "A=1\n" + START_5 + "B=2\n" + STOP_5 + STOP_5 + "C=3\n"), "B=2\n");
}

TEST_F(FactoryDefaults, ABeginningInsideASectionIsALineOfIt) {
    EXPECT_EQ(appended(0, START_5 + "A=1\n" + START_5 + "B=2\n" + STOP_5 + "C=3\n"), "A=1\n" + START_5 + "B=2\n");
}

TEST_F(FactoryDefaults, OnlyMarkersGiveNoLines) {
    EXPECT_EQ(appended(0, START_5 + STOP_5 + START_24 + STOP_24), "");
    EXPECT_EQ(appended(1, START_5 + STOP_5 + START_24 + STOP_24), "");
}

TEST_F(FactoryDefaults, AMarkerCountsAnywhereInALineAndItsEndingTwo) {
    EXPECT_EQ(appended(0, "X=SETTING_DELIMETER=50_RADIO_START\nA=1\n# _STOP SETTING_DELIMETER=50_RADIO\nB=2\n"),
              "A=1\n");
}

TEST_F(FactoryDefaults, AMarkerWithBothEndingsDoesWhatIsPossible) {
    const std::string both = "SETTING_DELIMETER=50_RADIO_START_STOP\n";
    EXPECT_EQ(appended(0, both + "A=1\n" + both + "B=2\n"), "A=1\n");
}

TEST_F(FactoryDefaults, AMarkerWithoutEndingIsNone) {
    const std::string bare = "SETTING_DELIMETER=50_RADIO\n";
    EXPECT_EQ(appended(0, bare + "A=1\n" + START_5 + bare + "B=2\n"), bare + "B=2\n");
}

TEST_F(FactoryDefaults, AnEndingWithoutAMarkerIsNone) {
    EXPECT_EQ(appended(0, "_START\nA=1\n" + START_5 + "K=_STOP\nB=2\n"), "K=_STOP\nB=2\n");
}

// What is written correctly is no marker: the files in the field have it wrong.
TEST_F(FactoryDefaults, TheMarkerIsMisspelled) {
    EXPECT_EQ(appended(0, "SETTING_DELIMITER=50_RADIO_START\nA=1\n"), "");
}

TEST_F(FactoryDefaults, AMarkerIsTakenLetterByLetter) {
    for (const char *near : {"SETTING_DELIMETER =50_RADIO_START\n", "SETTING_DELIMETER= 50_RADIO_START\n",
                             "setting_delimeter=50_radio_start\n", "SETTING_DELIMETER=5_RADIO_START\n"}) {
        EXPECT_EQ(appended(0, near + std::string("A=1\n")), "") << near;
    }
}

TEST_F(FactoryDefaults, CarriageReturnsAreKeptAndDoNotHideAMarker) {
    EXPECT_EQ(appended(0,
                       "SETTING_DELIMETER=50_RADIO_START\r\nA=1\r\n\r\nB=2\r\n"
                       "SETTING_DELIMETER=50_RADIO_STOP\r\nC=3\r\n"),
              "A=1\r\n\r\nB=2\r\n");
}

TEST_F(FactoryDefaults, ALastLineWithoutLineBreakIsTakenAsItIs) {
    EXPECT_EQ(appended(0, START_5 + "A=1\nB=2"), "A=1\nB=2");
}

TEST_F(FactoryDefaults, ALastMarkerWithoutLineBreakCounts) {
    EXPECT_EQ(appended(0, START_5 + "A=1\nSETTING_DELIMETER=50_RADIO_STOP"), "A=1\n");
}

TEST_F(FactoryDefaults, NulsAreCopiedAndHideNothing) {
    const std::string hidden("A=\0\0one\n\0\n", 10);
    const std::string stop("x\0SETTING_DELIMETER=50_RADIO\0_STOP\n", 35);
    EXPECT_EQ(appended(0, START_5 + hidden + stop + "B=2\n"), hidden);
    EXPECT_EQ(restored(2, HEADER + ZEROS, hidden + stop), HEADER + hidden + stop + ZEROS);
}

TEST_F(FactoryDefaults, EveryByteIsCopied) {
    std::string all;
    for (int byte = 0; byte < 256; byte++) {
        all += static_cast<char>(byte);
    }
    EXPECT_EQ(appended(1, START_24 + all), all);
    EXPECT_EQ(restored(2, HEADER + ZEROS, all), HEADER + all + ZEROS);
}

// --- long lines ---

TEST_F(FactoryDefaults, LinesOfEveryLengthArriveWhole) {
    std::string lines;
    for (size_t length : {0, 1, 510, 511, 512, 513, 1023, 1024, 1025, 5000, 100000}) {
        lines += "K=" + std::string(length, 'v') + "\n";
    }
    EXPECT_EQ(appended(0, START_5 + lines + STOP_5), lines);
    EXPECT_EQ(restored(2, HEADER + ZEROS, lines), HEADER + lines + ZEROS);
}

TEST_F(FactoryDefaults, AMarkerMayEndALineOfFiveHundredAndElevenCharacters) {
    for (size_t length : {510, 511}) {
        std::string start = std::string(length + 1 - START_5.size(), '#') + START_5;
        std::string stop = std::string(length + 1 - STOP_5.size(), '#') + STOP_5;
        EXPECT_EQ(appended(0, start + "A=1\n" + stop + "B=2\n"), "A=1\n") << length;
    }
}

// What comes behind is a value's business.
TEST_F(FactoryDefaults, TheBeginningOfALongLineDecidesForAllOfIt) {
    const std::string filler(600, 'v');
    EXPECT_EQ(appended(0, "K=" + filler + START_5 + "A=1\n"), "") << "no section begins inside a long value";
    EXPECT_EQ(appended(0, START_5 + "K=" + filler + STOP_5 + "A=1\n"), "K=" + filler + STOP_5 + "A=1\n")
        << "and none ends there";
    EXPECT_EQ(appended(0, "SETTING_DELIMETER=50_RADIO_START" + filler + "\nA=1\n"), "A=1\n")
        << "a long marker is left out to its end";
    EXPECT_EQ(appended(0, START_5 + "A=1\nSETTING_DELIMETER=50_RADIO_STOP" + filler + "\nB=2\n"), "A=1\n");
}

// --- where the lines go ---

TEST_F(FactoryDefaults, ARadiosLinesTakeThePlaceOfTheZerosThatEndTheStore) {
    EXPECT_EQ(restored(0, std::string("HEADA=1\nB=2\n\0\0\0\0", 16), START_5 + "C=3\n" + STOP_5),
              std::string("HEADA=1\nB=2\nC=3\n\0\0\0\0", 20));
}

// They are the last four bytes, whatever they are: a store without them loses its last four.
TEST_F(FactoryDefaults, TheLastFourBytesAreOverwrittenWhateverTheyAre) {
    EXPECT_EQ(restored(0, "HEADA=1\nB=2\n", START_5 + "C=3\n"), std::string("HEADA=1\nC=3\n\0\0\0\0", 16));
}

TEST_F(FactoryDefaults, WithoutLinesTheZerosAreWrittenAgain) {
    EXPECT_EQ(restored(1, "HEADA=1\nabcd", START_5), std::string("HEADA=1\n\0\0\0\0", 12));
}

// The bytes of the header are the tool's, also where there is nothing else.
TEST_F(FactoryDefaults, AStoreTooShortForItsEndIsFilledBehindTheHeader) {
    const std::string eight = "HEADwxyz";
    for (int scope : {0, 2}) {
        for (size_t length = 0; length <= eight.size(); length++) {
            std::string header = eight.substr(0, std::min<size_t>(length, 4));
            header.resize(4, '\0');
            EXPECT_EQ(restored(scope, eight.substr(0, length), START_5 + "A=1\n").substr(0, 4), header) << length;
            EXPECT_EQ(read_file(STORE_FILE).substr(4), (scope == 0 ? "" : START_5) + "A=1\n" + ZEROS) << length;
        }
    }
}

TEST_F(FactoryDefaults, AStoreOfNineBytesKeepsTheFifth) {
    EXPECT_EQ(restored(0, std::string("HEADx\0\0\0\0", 9), START_5 + "A=1\n"), std::string("HEADxA=1\n\0\0\0\0", 13));
}

TEST_F(FactoryDefaults, TheWholeFileOverwritesFromTheFirstLineOn) {
    EXPECT_EQ(restored(2, std::string("HEADA=1\n\0\0\0\0", 12), "B=2\nC=3\nD=4\n"),
              std::string("HEADB=2\nC=3\nD=4\n\0\0\0\0", 20));
}

// The store is not shortened: the driver's tool knows the end by its zeros.
TEST_F(FactoryDefaults, OldBytesBehindAShorterFileStay) {
    EXPECT_EQ(restored(2, std::string("HEADAAAA=111x\nBBBB=2222\n\0\0\0\0", 28), "C=3\n"),
              std::string("HEADC=3\n\0\0\0\0x\nBBBB=2222\n\0\0\0\0", 28));
}

TEST_F(FactoryDefaults, AFileThatIsAsLongAsTheContentLeavesNothing) {
    EXPECT_EQ(restored(2, std::string("HEADA=1\n\0\0\0\0", 12), "B=2\n"), std::string("HEADB=2\n\0\0\0\0", 12));
}

TEST_F(FactoryDefaults, AnEmptyWholeFileLeavesZerosInFrontOfTheOldBytes) {
    EXPECT_EQ(restored(2, std::string("HEADAAAA=1\n\0\0\0\0", 15), ""), std::string("HEAD\0\0\0\0=1\n\0\0\0\0", 15));
}

TEST_F(FactoryDefaults, LargeStoresAndLargeDefaultsArriveWhole) {
    std::string old_lines;
    std::string new_lines;
    for (int i = 0; i < 20000; i++) {
        old_lines += "OLD_" + std::to_string(i) + "=value\n";
        new_lines += "NEW_" + std::to_string(i) + "=default\n";
    }
    EXPECT_EQ(restored(0, HEADER + old_lines + ZEROS, START_5 + new_lines + STOP_5),
              HEADER + old_lines + new_lines + ZEROS);
    EXPECT_EQ(restored(2, HEADER + old_lines + ZEROS, new_lines), HEADER + new_lines + ZEROS);
}

// A store that was written over by half would be none: the zeros at its end would be gone, and a line would be cut.
TEST_F(FactoryDefaults, WithoutRoomForAllLinesTheStoreStaysAsItIs) {
    std::string lines;
    for (int i = 0; i < 20000; i++) {
        lines += "NEW_" + std::to_string(i) + "=default\n";
    }
    const std::string before = read_file(STORE_FILE);
    write_file(DEFAULTS, START_5 + lines + STOP_5);
    rlimit usual = {};
    getrlimit(RLIMIT_FSIZE, &usual);
    rlimit small = {65536, usual.rlim_max};
    auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    printed_text printed = capture([] { EXPECT_EQ(wlan_setRestoreDefaults(0), 0); });
    setrlimit(RLIMIT_FSIZE, &usual);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(printed.err, WRITE_ERROR);
    EXPECT_EQ(read_file(STORE_FILE), before);
}

TEST_F(FactoryDefaults, TheStoreIsRewrittenInItsPlace) {
    write_file(DEFAULTS, BOTH_RADIOS);
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(chmod(STORE_FILE, 0640), 0);
    ASSERT_EQ(stat(STORE_FILE, &before), 0);
    for (int scope : {0, 1, 2}) {
        restore(scope);
        ASSERT_EQ(stat(STORE_FILE, &after), 0);
        EXPECT_EQ(after.st_ino, before.st_ino) << scope;
        EXPECT_EQ(after.st_mode, before.st_mode) << scope;
    }
}

TEST_F(FactoryDefaults, TheDefaultsFileStaysAsItIs) {
    write_file(DEFAULTS, BOTH_RADIOS);
    restore(2);
    EXPECT_EQ(read_file(DEFAULTS), BOTH_RADIOS);
}

// --- without a store ---

TEST_F(FactoryDefaults, WithoutAStoreTheRestoreFailsAndMakesNone) {
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(wps_file(0), "uuid=1\n");
    unlink(STORE_FILE);
    for (int scope : {0, 1, 2}) {
        EXPECT_EQ(wlan_setRestoreDefaults(scope), -1) << scope;
    }
    EXPECT_EQ(access(STORE_FILE, F_OK), -1);
    EXPECT_EQ(tool_calls(), calls({}));
    EXPECT_EQ(access(wps_file(0).c_str(), F_OK), 0);
    EXPECT_EQ(statistics_library.clearings, 3);
}

TEST_F(FactoryDefaults, AStoreThatIsADirectoryFails) {
    write_file(DEFAULTS, BOTH_RADIOS);
    unlink(STORE_FILE);
    ASSERT_EQ(mkdir(STORE_FILE, 0755), 0);
    EXPECT_EQ(wlan_setRestoreDefaults(2), -1);
}

TEST_F(FactoryDefaults, AMissingStoreIsReported) {
    write_file(DEFAULTS, BOTH_RADIOS);
    unlink(STORE_FILE);
    EXPECT_EQ(debug_lines([] { wlan_setRestoreDefaults(2); }),
              CLEARING_LINE + "[VLK-API] wlan_setRestoreDefaults file not found: /tmp/.apcfg\n");
}

TEST_F(FactoryDefaults, WithoutAStoreTheLockIsGivenBack) {
    write_file(DEFAULTS, BOTH_RADIOS);
    unlink(STORE_FILE);
    wlan_setRestoreDefaults(2);
    EXPECT_EQ(access(STORE_LOCK_FILE, F_OK), 0) << "it was taken before the store was looked for";
    EXPECT_TRUE(is_lock_free());
}

// --- what follows ---

TEST_F(FactoryDefaults, TheStoreIsSettledThenTheFilesOfTheVapsAreRemoved) {
    write_file(DEFAULTS, BOTH_RADIOS);
    for (int scope : {0, 1, 2}) {
        EXPECT_EQ(commands_of([=] { wlan_setRestoreDefaults(scope); }), SETTLING) << scope;
    }
}

TEST_F(FactoryDefaults, TheCapableTableAndTheDriversLogAreRemovedWhenTheyExist) {
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(CAPABLE_TABLE, "table");
    write_file(DRIVER_LOG, "log");
    EXPECT_EQ(commands_of([] { wlan_setRestoreDefaults(1); }),
              (calls{"cfg -c", "rm -f /nvram/etc/wpa2/*", "rm -f /nvram/5gcapabletable", "rm -f /nvram/wlanlog"}));
    EXPECT_EQ(access(CAPABLE_TABLE, F_OK), -1);
    EXPECT_EQ(access(DRIVER_LOG, F_OK), -1);
}

TEST_F(FactoryDefaults, OfTheTwoOnlyTheOneThatExistsIsRemoved) {
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(CAPABLE_TABLE, "table");
    EXPECT_EQ(commands_of([] { wlan_setRestoreDefaults(1); }),
              (calls{"cfg -c", "rm -f /nvram/etc/wpa2/*", "rm -f /nvram/5gcapabletable"}));
    write_file(DRIVER_LOG, "log");
    EXPECT_EQ(commands_of([] { wlan_setRestoreDefaults(1); }),
              (calls{"cfg -c", "rm -f /nvram/etc/wpa2/*", "rm -f /nvram/wlanlog"}));
}

TEST_F(FactoryDefaults, TheWpsFilesOfAllVapsGoWhateverTheScope) {
    write_file(DEFAULTS, BOTH_RADIOS);
    for (int scope : {0, 1, 2}) {
        for (int interface : {0, 7, 8, 15}) {
            write_file(wps_file(interface), "uuid=1\n");
        }
        restore(scope);
        EXPECT_TRUE(std::filesystem::is_empty(WPS_DIRECTORY)) << scope;
    }
}

TEST_F(FactoryDefaults, OtherPersistentFilesStay) {
    const char other[] = "/nvram/system_wide_setting";
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(other, "kept");
    write_file(BLACK_LIST, "the daemon's");
    restore(2);
    EXPECT_EQ(read_file(other), "kept");
    EXPECT_EQ(read_file(BLACK_LIST), "the daemon's");
    unlink(other);
}

TEST_F(FactoryDefaults, WhatTheToolsSayIsNotExamined) {
    install_tool("cfg", "no room", 1);
    install_tool("rm", "", 1);
    write_file(DEFAULTS, BOTH_RADIOS);
    write_file(CAPABLE_TABLE, "table");
    restore(0);
    EXPECT_EQ(tool_calls(), calls({"cfg -c", "rm -f /nvram/etc/wpa2/*", "rm -f /nvram/5gcapabletable"}));
}

TEST_F(FactoryDefaults, TheRestoreSucceedsWithoutTheTool) {
    unlink("/tmp/fake_tools/cfg");
    write_file(DEFAULTS, BOTH_RADIOS);
    capture([] { EXPECT_EQ(wlan_setRestoreDefaults(0), 0); });
    EXPECT_TRUE(contains(read_file(STORE_FILE), "AP_SSID_9=Factory5\n"));
}

// --- a full file system ---

// A store on a file system of 64 KiB, which is a number of whole pages everywhere.
struct FullFileSystem : FactoryDefaults {
    static constexpr size_t SIZE = 64 << 10;

    void SetUp() override {
        FactoryDefaults::SetUp();
        mkdir("/tmp/small", 0755);
        ASSERT_EQ(mount("small", "/tmp/small", "tmpfs", MS_NOSUID | MS_NODEV, "size=64k"), 0) << strerror(errno);
        unlink(STORE_FILE);
        ASSERT_EQ(symlink("/tmp/small/apcfg", STORE_FILE), 0);
    }

    void TearDown() override {
        umount2("/tmp/small", MNT_DETACH);
        FactoryDefaults::TearDown();
    }

    // A store of exactly this size.
    static std::string store_of(size_t size) {
        return HEADER + "K=" + std::string(size - HEADER.size() - ZEROS.size() - 3, 'v') + "\n" + ZEROS;
    }
};

// The text of an error line is the only sign: callers take the result for "there was a file to restore from".
void expect_write_error(int scope) {
    printed_text printed = capture([=] { EXPECT_EQ(wlan_setRestoreDefaults(scope), 0); });
    EXPECT_EQ(printed.err, WRITE_ERROR);
    EXPECT_EQ(tool_calls(), calls({"cfg -c"}));
}

TEST_F(FullFileSystem, LinesThatDoNotFitAreReported) {
    write_file(STORE_FILE, store_of(50000));
    write_file(DEFAULTS, START_5 + "K=" + std::string(300000, 'w') + "\n");
    expect_write_error(0);
    EXPECT_EQ(read_file(STORE_FILE).substr(0, 100), store_of(50000).substr(0, 100));
}

TEST_F(FullFileSystem, AWholeFileThatDoesNotFitIsReported) {
    write_file(STORE_FILE, store_of(50000));
    write_file(DEFAULTS, "K=" + std::string(300000, 'w') + "\n");
    expect_write_error(2);
    EXPECT_EQ(read_file(STORE_FILE).substr(0, 4), HEADER);
}

TEST_F(FullFileSystem, ALineThatOnlyTheLastWriteFindsTooLongIsReported) {
    write_file(STORE_FILE, store_of(SIZE));
    write_file(DEFAULTS, START_5 + "A=1\nB=2\n");
    expect_write_error(0);
}

TEST_F(FullFileSystem, DefaultsWithoutEndEndWithTheFileSystem) {
    write_file(STORE_FILE, store_of(100));
    ASSERT_EQ(symlink("/dev/zero", DEFAULTS), 0);
    expect_write_error(2);
}

TEST_F(FullFileSystem, LinesThatJustFitAreNoError) {
    EXPECT_EQ(restored(0, store_of(SIZE - 4), START_5 + "A=1\n"),
              store_of(SIZE - 4).substr(0, SIZE - 8) + "A=1\n" + ZEROS);
}

TEST_F(FactoryDefaults, AStoreWithoutPositionsIsReported) {
    write_file(DEFAULTS, BOTH_RADIOS);
    unlink(STORE_FILE);
    ASSERT_EQ(mkfifo(STORE_FILE, 0600), 0);
    for (int scope : {0, 2}) {
        EXPECT_EQ(capture([=] { EXPECT_EQ(wlan_setRestoreDefaults(scope), 0); }).err, WRITE_ERROR) << scope;
    }
}

// --- in the middle of a restore ---

// A restore on a thread of its own from a defaults file that is a pipe: it goes on as the test writes.
struct HalfRestored : FactoryDefaults {
    void SetUp() override {
        FactoryDefaults::SetUp();
        ASSERT_EQ(mkfifo(DEFAULTS, 0600), 0);
    }

    // Returns when the restore has the store open and waits for more lines.
    void begin(int scope) {
        restoring = std::thread([this, scope] { status = wlan_setRestoreDefaults(scope); });
        pipe = open(DEFAULTS, O_WRONLY | O_CLOEXEC);
        put("A=1\n");
        for (int i = 0; i < 10000 && descriptor_of(STORE_FILE) < 0; i++) {
            usleep(1000);
        }
    }

    void put(const std::string &text) const {
        EXPECT_EQ(write(pipe, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    int end() {
        close(pipe);
        restoring.join();
        return status;
    }

    // The first descriptor of this process that leads to the path.
    static int descriptor_of(const char *path, int after = -1) {
        for (int descriptor = after + 1; descriptor < 256; descriptor++) {
            std::error_code error;
            std::string link = "/proc/self/fd/" + std::to_string(descriptor);
            if (std::filesystem::read_symlink(link, error) == path) {
                return descriptor;
            }
        }
        return -1;
    }

    std::thread restoring;
    int pipe = -1;
    int status = 1;
};

TEST_F(HalfRestored, TheLockIsHeld) {
    begin(2);
    EXPECT_FALSE(is_lock_free());
    EXPECT_EQ(end(), 0);
    EXPECT_TRUE(is_lock_free());
}

TEST_F(HalfRestored, NoChildInheritsWhatIsOpen) {
    begin(2);
    EXPECT_TRUE(is_closed_on_exec(STORE_FILE));
    EXPECT_TRUE(is_closed_on_exec(STORE_LOCK_FILE));
    EXPECT_TRUE(is_closed_on_exec(DEFAULTS));
    EXPECT_EQ(end(), 0);
}

TEST_F(HalfRestored, DefaultsThatCannotBeReadToTheirEndAreReportedAndTheStoreGetsItsEnd) {
    begin_capture();
    begin(2);
    // From the read after the next one on it cannot be read any more.
    int writable = open("/dev/null", O_WRONLY | O_CLOEXEC);
    int reading = descriptor_of(DEFAULTS) == pipe ? descriptor_of(DEFAULTS, pipe) : descriptor_of(DEFAULTS);
    // Past the C library: to the thread sanitizer this would be the race that it is.
    int moved = static_cast<int>(syscall(SYS_dup3, writable, reading, 0));
    put("B=2\n");
    restoring.join();
    printed_text printed = end_capture();
    close(writable);
    close(pipe);
    EXPECT_EQ(moved, reading);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(printed.err, READ_ERROR);
    EXPECT_EQ(read_file(STORE_FILE).substr(0, 16), HEADER + "A=1\nB=2\n" + ZEROS);
}

// --- the lock ---

TEST_F(FactoryDefaults, ARestoreWaitsForTheLockBeforeItOpensTheStore) {
    write_file(DEFAULTS, START_5 + "A=1\n");
    pid_t holder = start_lock_holder([] {
        // As the driver's tool does it: another file in the store's place.
        write_file("/tmp/.apcfg.new", HEADER + "K=new\n" + ZEROS);
        rename("/tmp/.apcfg.new", STORE_FILE);
    });
    restore(0);
    EXPECT_TRUE(has_succeeded(holder));
    EXPECT_EQ(read_file(STORE_FILE), HEADER + "K=new\nA=1\n" + ZEROS);
}

TEST_F(FactoryDefaults, ARestoreGoesOnUnlockedWhenTheLockFileCannotBeMade) {
    write_file(DEFAULTS, START_5 + "A=1\n");
    ASSERT_EQ(mkdir(STORE_LOCK_FILE, 0755), 0);
    restore(0);
    EXPECT_EQ(read_file(STORE_FILE), HEADER + "AP_SSID=Old\nA=1\n" + ZEROS);
}

// The tool takes the lock, and the store as it then is.
TEST_F(FactoryDefaults, TheToolFindsTheStoreWholeAndTheLockFree) {
    write_file(DEFAULTS, START_5 + "A=1\n");
    std::string tool = std::string(FAKE_TOOLS) + "/cfg";
    write_file(tool, "#!/bin/sh\ncp /tmp/.apcfg /tmp/store.seen\ncp /proc/locks /tmp/locks.seen\n");
    ASSERT_EQ(chmod(tool.c_str(), 0755), 0);
    restore(0);
    EXPECT_EQ(read_file("/tmp/store.seen"), HEADER + "AP_SSID=Old\nA=1\n" + ZEROS);
    struct stat lock = {};
    ASSERT_EQ(stat(STORE_LOCK_FILE, &lock), 0);
    EXPECT_FALSE(contains(read_file("/tmp/locks.seen"), ":" + std::to_string(lock.st_ino) + " "));
    unlink("/tmp/store.seen");
    unlink("/tmp/locks.seen");
}

// What another process saw of the store.
struct reader_counts {
    std::atomic<bool> stop;
    std::atomic<int> first;
    std::atomic<int> second;
    std::atomic<int> neither;
};

// Reads the store under the lock until it is told to stop.
bool read_until_stopped(reader_counts *seen, const std::string &first, const std::string &second) {
    int lock = open(STORE_LOCK_FILE, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    struct flock whole_file = {};
    whole_file.l_whence = SEEK_SET;
    while (!seen->stop) {
        whole_file.l_type = F_WRLCK;
        if (fcntl(lock, F_SETLKW, &whole_file) != 0) {
            return false;
        }
        std::string store = read_file(STORE_FILE);
        whole_file.l_type = F_UNLCK;
        fcntl(lock, F_SETLK, &whole_file);
        (store == first ? seen->first : store == second ? seen->second : seen->neither)++;
        usleep(50);
    }
    return true;
}

TEST_F(FactoryDefaults, AnotherProcessThatTakesTheLockNeverSeesAHalfWrittenStore) {
    constexpr int RESTORES = 300;
    const std::string one(100000, '1');
    const std::string two(100000, '2');
    const std::string store_one = HEADER + one + ZEROS;
    const std::string store_two = HEADER + two + ZEROS;
    write_file(STORE_FILE, store_one);
    unlink("/tmp/fake_tools/cfg");
    ASSERT_EQ(symlink("/bin/true", "/tmp/fake_tools/cfg"), 0);
    void *shared = mmap(nullptr, sizeof(reader_counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    reader_counts *seen = new (shared) reader_counts();
    pid_t reader = start_process([&] { return read_until_stopped(seen, store_one, store_two); });
    for (int i = 0; i < RESTORES; i++) {
        write_file(DEFAULTS, i % 2 == 0 ? two : one);
        restore(2);
        next_message();  // the daemon's queue is short
    }
    seen->stop = true;
    EXPECT_TRUE(has_succeeded(reader));
    EXPECT_EQ(seen->neither, 0);
    EXPECT_GT(seen->first, 10);
    EXPECT_GT(seen->second, 10);
    munmap(shared, sizeof(reader_counts));
}

// --- descriptors ---

TEST_F(FactoryDefaults, NothingIsLeftOpenOnAnyRoad) {
    capture([] {
        int before = lowest_free_descriptor();
        wlan_setRestoreDefaults(3);
        wlan_setRestoreDefaults(2);  // no defaults file
        mkdir(DEFAULTS, 0755);
        wlan_setRestoreDefaults(2);  // none that can be read
        rmdir(DEFAULTS);
        write_file(DEFAULTS, BOTH_RADIOS);
        wlan_setRestoreDefaults(0);
        wlan_setRestoreDefaults(1);
        wlan_setRestoreDefaults(2);
        unlink(STORE_FILE);
        wlan_setRestoreDefaults(2);
        mkfifo(STORE_FILE, 0600);
        wlan_setRestoreDefaults(2);
        EXPECT_EQ(lowest_free_descriptor(), before);
    });
}

}  // namespace
