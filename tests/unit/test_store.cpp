// The key=value store: which line answers, where its value ends, what is locked, and how a setting is written.
#include "config/store.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/platform.h"
#include "tests/support/store_lock.h"

namespace {

struct Store : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
    }
};

// What a read of the setting finds.
std::string get(int index, const char *name, size_t size = STORE_VALUE_SIZE) {
    std::string value(size, '?');
    athcfg_getbyname(index, name, value.data(), size);
    return value.c_str();
}

std::vector<std::string> lines(std::initializer_list<std::string> calls) {
    return calls;
}

// --- which line answers ---

TEST_F(Store, EveryIndexBelowTwoReadsTheBareKey) {
    write_store({"AP_SSID=bare", "AP_SSID_0=zero", "AP_SSID_1=one", "AP_SSID_-3=minus", "AP_SSID_2=two"});
    for (int index : {1, 0, -3, INT_MIN}) {
        EXPECT_EQ(get(index, "AP_SSID"), "bare") << "index " << index;
    }
}

TEST_F(Store, EveryIndexFromTwoOnReadsTheKeyWithItsSuffix) {
    write_store({"AP_SSID=bare", "AP_SSID_16=sixteen", "AP_SSID_2=two", "AP_SSID_2147483647=most"});
    EXPECT_EQ(get(2, "AP_SSID"), "two");
    EXPECT_EQ(get(16, "AP_SSID"), "sixteen");
    EXPECT_EQ(get(INT_MAX, "AP_SSID"), "most");
}

TEST_F(Store, AKeyDoesNotMatchALongerOneBeforeIt) {
    write_store({"AP_SSID_2=b", "AP_SSID=a"});
    EXPECT_EQ(get(1, "AP_SSID"), "a");
}

TEST_F(Store, AKeyMatchesOnlyAtTheStartOfALine) {
    write_store({"XAP_SSID=middle", " AP_SSID=blank", "OTHER=AP_SSID=value"});
    EXPECT_EQ(get(1, "AP_SSID"), "");
}

TEST_F(Store, TheStartOfTheFileIsTheStartOfALine) {
    write_file(STORE_FILE, "K=first\nL=second\n");
    EXPECT_EQ(get(1, "K"), "first");
}

TEST_F(Store, TheFirstOfTwoLinesWithOneKeyWins) {
    write_store({"K=first", "K=second"});
    EXPECT_EQ(get(1, "K"), "first");
}

TEST_F(Store, TheFirstLineWinsEvenWhenItsValueIsEmpty) {
    write_store({"K=", "K=second"});
    EXPECT_EQ(get(1, "K"), "");
}

TEST_F(Store, KeysAreCaseSensitive) {
    write_store({"ap_ssid=small"});
    EXPECT_EQ(get(1, "AP_SSID"), "");
}

TEST_F(Store, AKeyBehindANulIsNotSeen) {
    write_store({std::string("X=1\0K=hidden", 12)});
    EXPECT_EQ(get(1, "K"), "");
}

TEST_F(Store, ALineBehindALineWithANulIsSeen) {
    write_store({std::string("X=1\0hidden", 10), "K=seen"});
    EXPECT_EQ(get(1, "K"), "seen");
}

TEST_F(Store, ALineThatBeginsWithNulDoesNotMatch) {
    write_store({std::string("\0K=hidden", 9)});
    EXPECT_EQ(get(1, "K"), "");
}

TEST_F(Store, AKeyFarIntoALongLineIsNotTakenForALineOfItsOwn) {
    for (size_t length : {1727, 1728, 65535, 65536, 65537}) {
        write_store({std::string(length, 'x') + "K=inside"});
        EXPECT_EQ(get(1, "K"), "") << "behind " << length << " characters";
    }
}

TEST_F(Store, ALineBehindALineLongerThanABlockIsSeen) {
    write_store({"LONG=" + std::string(200000, 'x'), "K=seen"});
    EXPECT_EQ(get(1, "K"), "seen");
}

TEST_F(Store, ALineMayLieAnywhereAcrossTheBorderOfTwoBlocks) {
    for (size_t length = 65536 - 40; length < 65536 + 40; length++) {
        write_file(STORE_FILE, std::string(length, 'x') + "\nAP_SSID_2=across the border\nAP_SSID=later\n");
        ASSERT_EQ(get(2, "AP_SSID"), "across the border") << "behind " << length << " characters";
    }
}

// --- where a value ends ---

TEST_F(Store, AValueBeginsBehindTheFirstEqualsSign) {
    write_store({"K=a=b"});
    EXPECT_EQ(get(1, "K"), "a=b");
}

TEST_F(Store, AValueEndsBeforeCarriageReturnAndLineBreak) {
    write_store({"K=value\r", "L=x"});
    EXPECT_EQ(get(1, "K"), "value");
}

TEST_F(Store, AValueEndsAtTheFirstCarriageReturn) {
    write_store({"K=val\rue"});
    EXPECT_EQ(get(1, "K"), "val");
}

TEST_F(Store, AValueEndsAtANul) {
    write_store({std::string("K=val\0ue", 8)});
    EXPECT_EQ(get(1, "K"), "val");
}

TEST_F(Store, AValueEndsAtTheEndOfTheFile) {
    write_file(STORE_FILE, "CFG\nK=value");
    EXPECT_EQ(get(1, "K"), "value");
}

TEST_F(Store, BlanksAndQuotesOfAValueAreKept) {
    write_store({"K= \"a b\" "});
    EXPECT_EQ(get(1, "K"), " \"a b\" ");
}

TEST_F(Store, AValueIsCutToTheCallersBuffer) {
    write_store({"K=0123456789"});
    EXPECT_EQ(get(1, "K", 11), "0123456789");
    EXPECT_EQ(get(1, "K", 10), "012345678");
    EXPECT_EQ(get(1, "K", 1), "");
}

TEST_F(Store, AValueLongerThanAnOrdinaryLineIsReadWhole) {
    std::string value(3100, 'v');
    write_store({"K=" + value});
    EXPECT_EQ(get(1, "K", 3200), value);
}

TEST_F(Store, AValueThatSpansSeveralBlocksIsReadWhole) {
    std::string value;
    while (value.size() < 150000) {
        value += std::to_string(value.size()) + ",";
    }
    write_store({"K=" + value, "L=x"});
    EXPECT_EQ(get(1, "K", 200000), value);
}

// --- what is reported ---

TEST_F(Store, AFoundSettingReturnsZero) {
    write_store({"K=1"});
    char value[8];
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), 0);
}

TEST_F(Store, AnAbsentKeyReturnsMinusOneAndAnEmptyValue) {
    write_store({"L=1"});
    char value[8] = "stale";
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "");
}

TEST_F(Store, AKeyWithAnEmptyValueReadsAsMissing) {
    write_store({"K=", "L=1"});
    char value[8] = "stale";
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "");
}

TEST_F(Store, AnAbsentStoreReadsAsMissing) {
    char value[8] = "stale";
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "");
}

TEST_F(Store, AStoreThatCannotBeReadReadsAsMissing) {
    ASSERT_EQ(mkdir(STORE_FILE, 0755), 0);
    char value[8] = "stale";
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "");
}

TEST_F(Store, AnEmptyStoreReadsAsMissing) {
    write_file(STORE_FILE, "");
    char value[8] = "stale";
    EXPECT_EQ(athcfg_getbyname(1, "K", value, sizeof(value)), -1);
}

TEST_F(Store, ALookupThatFindsTheKeyWithAnEmptyValueSucceeds) {
    write_store({"K="});
    char value[8] = "stale";
    EXPECT_EQ(getWifiParam("K=", value, sizeof(value)), 0);
    EXPECT_STREQ(value, "");
}

TEST_F(Store, ALookupThatFindsNothingLeavesTheValueAlone) {
    write_store({"L=1"});
    char value[8] = "kept";
    EXPECT_EQ(getWifiParam("K=", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "kept");
}

TEST_F(Store, ALookupInAnAbsentStoreLeavesTheValueAlone) {
    char value[8] = "kept";
    EXPECT_EQ(getWifiParam("K=", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "kept");
}

TEST_F(Store, AMatchingLineWithoutAnEqualsSignIsAFailedLookup) {
    write_store({"KEY", "KEY=later"});
    char value[8] = "kept";
    EXPECT_EQ(getWifiParam("KEY", value, sizeof(value)), -1);
    EXPECT_STREQ(value, "kept");
}

TEST_F(Store, AReadSeesTheLatestWrite) {
    write_store({"K=old"});
    EXPECT_EQ(get(1, "K"), "old");
    write_store({"K=new"});
    EXPECT_EQ(get(1, "K"), "new");
}

TEST_F(Store, ReadingNeverRunsTheTool) {
    write_store({"K=1"});
    get(1, "K");
    EXPECT_EQ(tool_calls(), lines({}));
}

// --- the lock ---

TEST_F(Store, ALookupMakesTheLockFile) {
    write_store({"K=1"});
    get(1, "K");
    EXPECT_EQ(access(STORE_LOCK_FILE, F_OK), 0);
}

TEST_F(Store, ALookupEmptiesTheLockFile) {
    write_store({"K=1"});
    write_file(STORE_LOCK_FILE, "somebody's note");
    get(1, "K");
    EXPECT_EQ(read_file(STORE_LOCK_FILE), "");
}

TEST_F(Store, ALookupGoesOnUnlockedWhenTheLockFileCannotBeMade) {
    write_store({"K=1"});
    ASSERT_EQ(mkdir(STORE_LOCK_FILE, 0755), 0);
    EXPECT_EQ(get(1, "K"), "1");
}

TEST_F(Store, TheLockIsHeldWhileTheStoreIsRead) {
    // A store that is a pipe lets the other side look around in the middle of the lookup.
    ASSERT_EQ(mkfifo(STORE_FILE, 0600), 0);
    pid_t other = start_process([] {
        int store = open(STORE_FILE, O_WRONLY | O_CLOEXEC);
        const char *text = take_lock(F_SETLK) ? "K=free\n" : "K=taken\n";
        return write(store, text, strlen(text)) > 0;
    });
    EXPECT_EQ(get(1, "K"), "taken");
    EXPECT_TRUE(has_succeeded(other));
}

TEST_F(Store, TheLockIsReleasedAfterALookup) {
    write_store({"K=1"});
    get(1, "K");
    get(1, "ABSENT");
    EXPECT_TRUE(is_lock_free());
}

TEST_F(Store, TheLockIsReleasedWhenTheStoreCannotBeOpened) {
    get(1, "K");
    EXPECT_TRUE(is_lock_free());
}

TEST_F(Store, ALookupWaitsForTheLockOfAnotherProcess) {
    write_store({"K=old"});
    pid_t holder = start_lock_holder([] { write_store({"K=new"}); });
    EXPECT_EQ(get(1, "K"), "new");
    EXPECT_TRUE(has_succeeded(holder));
}

TEST_F(Store, ASignalDoesNotEndTheWaitForTheLock) {
    struct sigaction ignoring = {};
    struct sigaction kept;
    ignoring.sa_handler = [](int) {};  // without SA_RESTART: the wait is interrupted
    sigaction(SIGUSR1, &ignoring, &kept);
    write_store({"K=old"});
    pid_t waiting = getpid();
    pid_t holder = start_lock_holder([waiting] {
        for (int i = 0; i < 5; i++) {
            kill(waiting, SIGUSR1);
            usleep(1000);
            wait_until_lock_is_awaited();
        }
        write_store({"K=new"});
    });
    EXPECT_EQ(get(1, "K"), "new");
    EXPECT_TRUE(has_succeeded(holder));
    sigaction(SIGUSR1, &kept, nullptr);
}

TEST_F(Store, WhatALookupOpensIsClosedOnExec) {
    ASSERT_EQ(mkfifo(STORE_FILE, 0600), 0);
    bool store_closed = false;
    bool lock_closed = false;
    std::thread other([&] {
        int store = open(STORE_FILE, O_WRONLY | O_CLOEXEC);
        store_closed = is_closed_on_exec(STORE_FILE);
        lock_closed = is_closed_on_exec(STORE_LOCK_FILE);
        close(store);
    });
    get(1, "K");
    other.join();
    EXPECT_TRUE(store_closed);
    EXPECT_TRUE(lock_closed);
}

TEST_F(Store, ALookupLeavesNothingOpen) {
    write_store({"K=1"});
    int before = lowest_free_descriptor();
    get(1, "K");
    get(1, "ABSENT");
    EXPECT_EQ(lowest_free_descriptor(), before);
}

// --- the lock, for whoever needs it longer ---

TEST_F(Store, TheLockIsHeldFromLockingToUnlocking) {
    int lock = lock_store();
    EXPECT_FALSE(is_lock_free());
    unlock_store(lock);
    EXPECT_TRUE(is_lock_free());
}

// Wherever somebody writes, another one may not write: half of the file would not do.
TEST_F(Store, TheLockCoversTheWholeLockFile) {
    int lock = lock_store();
    for (off_t start : {0, 1, 1000000}) {
        EXPECT_TRUE(has_succeeded(start_process([start] {
            int file = open(STORE_LOCK_FILE, O_WRONLY | O_CLOEXEC);
            struct flock one_byte = {};
            one_byte.l_type = F_WRLCK;
            one_byte.l_whence = SEEK_SET;
            one_byte.l_start = start;
            one_byte.l_len = 1;
            return fcntl(file, F_GETLK, &one_byte) == 0 && one_byte.l_type == F_WRLCK;
        }))) << "byte "
             << start;
    }
    unlock_store(lock);
}

TEST_F(Store, LockingWaitsUntilAnotherProcessUnlocks) {
    pid_t holder = start_lock_holder([] { write_file(STORE_FILE, "left by the holder"); });
    int lock = lock_store();
    EXPECT_EQ(read_file(STORE_FILE), "left by the holder");
    EXPECT_TRUE(has_succeeded(holder));
    unlock_store(lock);
}

TEST_F(Store, LockingMakesTheLockFileAndEmptiesIt) {
    unlock_store(lock_store());
    EXPECT_EQ(access(STORE_LOCK_FILE, F_OK), 0);
    write_file(STORE_LOCK_FILE, "somebody's note");
    unlock_store(lock_store());
    EXPECT_EQ(read_file(STORE_LOCK_FILE), "");
}

TEST_F(Store, LockingWithoutALockFileSaysSoAndThereIsNothingToUnlock) {
    ASSERT_EQ(mkdir(STORE_LOCK_FILE, 0755), 0);
    int before = lowest_free_descriptor();
    int lock = lock_store();
    EXPECT_EQ(lock, -1);
    unlock_store(lock);
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(Store, ALockIsClosedOnExec) {
    int lock = lock_store();
    EXPECT_TRUE(is_closed_on_exec(STORE_LOCK_FILE));
    unlock_store(lock);
}

TEST_F(Store, UnlockingLeavesNothingOpen) {
    int before = lowest_free_descriptor();
    unlock_store(lock_store());
    EXPECT_EQ(lowest_free_descriptor(), before);
}

TEST_F(Store, ALookupFitsTheStackOfAWorker) {
    write_store({"K=" + std::string(1000, 'v')});
    set_debug(true);
    std::string value;
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 32768);
    pthread_t worker;
    printed_text printed = capture([&] {
        auto run = [](void *result) -> void * {
            int number;
            athcfg_getint(1, "K", &number);
            *static_cast<std::string *>(result) = get(1, "K");
            return nullptr;
        };
        ASSERT_EQ(pthread_create(&worker, &small, run, &value), 0);
        pthread_join(worker, nullptr);
    });
    pthread_attr_destroy(&small);
    EXPECT_EQ(value, std::string(1000, 'v'));
}

// --- writing ---

TEST_F(Store, EveryIndexBelowTwoWritesTheBareKey) {
    for (int index : {1, 0, -3, INT_MIN}) {
        athcfg_setbyname(index, "AP_SSID", "net");
    }
    EXPECT_EQ(tool_calls(),
              lines({"cfg -a AP_SSID=net", "cfg -a AP_SSID=net", "cfg -a AP_SSID=net", "cfg -a AP_SSID=net"}));
}

TEST_F(Store, EveryIndexFromTwoOnWritesTheKeyWithItsSuffix) {
    athcfg_setbyname(2, "AP_SSID", "net");
    athcfg_setbyname(16, "AP_SSID", "net");
    EXPECT_EQ(tool_calls(), lines({"cfg -a AP_SSID_2=net", "cfg -a AP_SSID_16=net"}));
}

TEST_F(Store, AValueIsWrittenBetweenDoubleQuotes) {
    athcfg_setbyname(1, "K", "two  words; *");
    EXPECT_EQ(tool_calls(), lines({"cfg -a K=two  words; *"}));
}

TEST_F(Store, AnEmptyValueIsWritten) {
    athcfg_setbyname(1, "K", "");
    EXPECT_EQ(tool_calls(), lines({"cfg -a K="}));
}

TEST_F(Store, WhatTheShellInterpretsInAValueIsNotEscaped) {
    athcfg_setbyname(1, "K", "$((40 + 2))");
    EXPECT_EQ(tool_calls(), lines({"cfg -a K=42"}));
}

TEST_F(Store, AValueOfSeveralKilobytesIsWritten) {
    std::string value(8000, 'v');
    EXPECT_EQ(athcfg_setbyname(2, "K", value.c_str()), 0);
    EXPECT_EQ(tool_calls(), lines({"cfg -a K_2=" + value}));
}

TEST_F(Store, WritingSucceedsWhateverTheToolSays) {
    install_tool("cfg", "no room", 1);
    EXPECT_EQ(athcfg_setbyname(1, "K", "v"), 0);
}

TEST_F(Store, WritingFailsWhenTheToolCannotBeStarted) {
    begin_descriptor_shortage();
    int status = athcfg_setbyname(1, "K", "v");
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
}

TEST_F(Store, WritingNeverTouchesTheStoreFileItself) {
    write_store({"K=old"});
    athcfg_setbyname(1, "K", "new");
    EXPECT_EQ(get(1, "K"), "old");
}

// --- numbers ---

TEST_F(Store, ANumberIsReadFromDecimalText) {
    write_store({"K=42", "NEGATIVE=-7", "MIXED=12abc", "TEXT=abc", "BLANK=  5"});
    int value;
    EXPECT_EQ(athcfg_getint(1, "K", &value), 0);
    EXPECT_EQ(value, 42);
    athcfg_getint(1, "NEGATIVE", &value);
    EXPECT_EQ(value, -7);
    athcfg_getint(1, "MIXED", &value);
    EXPECT_EQ(value, 12);
    athcfg_getint(1, "BLANK", &value);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(athcfg_getint(1, "TEXT", &value), 0);
    EXPECT_EQ(value, 0);
}

TEST_F(Store, AnAbsentNumberIsZeroAndMinusOneIsReturned) {
    write_store({});
    int value = 99;
    EXPECT_EQ(athcfg_getint(1, "K", &value), -1);
    EXPECT_EQ(value, 0);
}

TEST_F(Store, ANumberIsWrittenAsDecimalText) {
    EXPECT_EQ(athcfg_setint(2, "K", INT_MIN), 0);
    athcfg_setint(1, "K", 0);
    athcfg_setint(1, "K", INT_MAX);
    EXPECT_EQ(tool_calls(), lines({"cfg -a K_2=-2147483648", "cfg -a K=0", "cfg -a K=2147483647"}));
}

// --- radios ---

TEST_F(Store, AVapIsOnRadioOneWhenItsRadioIdContainsAOne) {
    for (const char *id : {"1", "wifi1", "10"}) {
        write_store({std::string("AP_RADIO_ID_3=") + id});
        EXPECT_EQ(athcfg_get_radio(3), 1) << id;
    }
}

TEST_F(Store, AVapIsOnRadioZeroOtherwise) {
    for (const char *id : {"0", "2", "wifi0", ""}) {
        write_store({"AP_RADIO_ID=1", std::string("AP_RADIO_ID_3=") + id});
        EXPECT_EQ(athcfg_get_radio(3), 0) << id;
    }
    write_store({"AP_RADIO_ID=1"});
    EXPECT_EQ(athcfg_get_radio(3), 0) << "without a radio";
}

TEST_F(Store, RadioOneUsesTheBareKeyAndRadioZeroTheSecondIndex) {
    EXPECT_EQ(radio_store_index(1), 1);
    EXPECT_EQ(radio_store_index(0), 2);
}

// --- debug lines ---

template <typename Block>
std::string debug_lines(Block block) {
    set_debug(true);
    return capture(block).out;
}

TEST_F(Store, AReadLogsTheIndexTheKeyAndTheValue) {
    write_store({"K=v", "K_2=w"});
    EXPECT_EQ(debug_lines([] { get(1, "K"); }), "[VLK-API] athcfg_getbyname index 0, Param: K= is v\n");
    EXPECT_EQ(debug_lines([] { get(2, "K"); }), "[VLK-API] athcfg_getbyname index 1, Param: K_2= is w\n");
}

TEST_F(Store, AnAbsentKeyIsLogged) {
    write_store({});
    EXPECT_EQ(debug_lines([] { get(0, "K"); }),
              "[VLK-API] getWifiParam K= does not exist in /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index -1, Param: K= is \n");
}

TEST_F(Store, AnAbsentStoreIsLogged) {
    EXPECT_EQ(debug_lines([] { get(16, "K"); }),
              "[VLK-API] getWifiParam Cannot open file /tmp/.apcfg\n"
              "[VLK-API] athcfg_getbyname index 15, Param: K_16= is \n");
}

TEST_F(Store, AWriteLogsTheIndexAndTheCommand) {
    EXPECT_EQ(debug_lines([] { athcfg_setbyname(2, "K", "v"); }),
              "[VLK-API] athcfg_setbyname athcfg_setbyname: index 1, execute cmd: cfg -a K_2=\"v\"\n"
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:cfg -a K_2=\"v\"\n");
}

TEST_F(Store, AWriteThatCannotBeStartedIsLoggedWithItsCaller) {
    std::string printed = debug_lines([] {
        begin_descriptor_shortage();
        athcfg_setbyname(1, "K", "v");
        end_descriptor_shortage();
    });
    EXPECT_NE(printed.find("[VLK-API] athcfg_executecmd athcfg_setbyname: popen cfg -a K=\"v\" error\n"),
              std::string::npos)
        << printed;
}

TEST_F(Store, TheRadioOfAVapIsLogged) {
    write_store({"AP_RADIO_ID_3=wifi1"});
    EXPECT_EQ(debug_lines([] { athcfg_get_radio(3); }),
              "[VLK-API] athcfg_getbyname index 2, Param: AP_RADIO_ID_3= is wifi1\n"
              "[VLK-API] athcfg_get_radio athcfg_get_radio: index 3 => radio 1\n");
}

TEST_F(Store, NothingIsPrintedWhileDebuggingIsOff) {
    write_store({"K=v"});
    printed_text printed = capture([] {
        get(1, "K");
        get(1, "ABSENT");
        athcfg_setbyname(1, "K", "v");
        athcfg_get_radio(1);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
