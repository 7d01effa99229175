// Soft block: what each operation stores, what it tells the daemon, to the byte, what it prints, and what becomes of it
// when there is no daemon, one that does not answer, or one that does not read.
#include "steering/soft_block.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "survey/control_channel.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steering_listener.h"

namespace {

using texts = std::vector<std::string>;

const char BLACK_LIST[] = "/nvram/blackList.dat";
const char OWN_PREFIX[] = "/tmp/ssidsteering_";

// A daemon that answers one request.
struct answerer : steering_listener {
    std::string request;
    std::string sender;
    std::thread thread;

    explicit answerer(const std::string &reply) : thread([this, reply] { request = answer(reply, &sender); }) {}
    ~answerer() {
        finish();
    }

    void finish() {
        if (thread.joinable()) {
            thread.join();
        }
    }
};

// A text as it travels.
std::string with_nul(const std::string &text) {
    return text + '\0';
}

double seconds_of(const std::function<void()> &block) {
    auto begin = std::chrono::steady_clock::now();
    block();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// A wait of two seconds, on a machine that is busy with other things as well.
void expect_two_seconds(double seconds) {
    EXPECT_GT(seconds, 1.9);
    EXPECT_LT(seconds, 3.5);
}

struct SoftBlock : testing::Test {
    void SetUp() override {
        reset_platform();
        install_tool("cfg");
        write_store({});
        unlink(STEERING_SOCKET);
        unlink(BLACK_LIST);
    }
};

const char NO_DAEMON[] = "[VLK-API] Error sendDataToSBCtrl Could not connect\n";

// --- the tunables, one by one ---

template <auto Setter>
int set_with(int index, int value) {
    return Setter(index, value);
}

template <auto Getter>
int get_with(int index, int *value) {
    if constexpr (std::is_same_v<decltype(Getter), int (*)(int, u_int *)>) {
        return Getter(index, reinterpret_cast<u_int *>(value));
    } else {
        return Getter(index, value);
    }
}

struct tunable_row {
    const char *getter;
    int (*get)(int, int *);
    const char *setter;
    int (*set)(int, int);
    const char *key;
    bool writes_own_key;  // of VAP 2 and higher; else the bare one
    bool reads_own_key;
    bool checks_index;       // also: reading fails when the key is absent
    const char *message;     // of value 17 for VAP 3; null where the daemon is not told
    const char *entry;       // debug line of the setter, behind its name twice
    const char *failure;     // line of the setter, behind its name
    const char *logged_key;  // in the getter's debug line; null where it has none
};

#define GET(name) #name, get_with < &name>
#define SET(name) #name, set_with < &name>

// clang-format off
const tunable_row TUNABLES[] = {
    {GET(wlan_getSBEnable), SET(wlan_setSBEnable), "SOFT_BLOCK_EN", false, false, false, "setBSE:17",
     "wlan_setSBEnable entered", "send data to SBCtrl failed", nullptr},
    {GET(wlan_getSBBLSelMask), SET(wlan_setSBBLSelMask), "SOFT_BLOCK_BLACK_LIST_SELECTOR", false, false, false, "setBLM:17",
     "wlan_setSBEnable entered", "wlan_setSBBLSelMask: send data to SBCtrl failed", nullptr},
    {GET(wlan_getSBSelMask), SET(wlan_setSBSelMask), "SOFT_BLOCK_SELECTOR", false, false, false, "setSBM:17",
     "wlan_setSBSelMask entered", "wlan_setSBMask: send data to SBCtrl failed", nullptr},
    {GET(wlan_getSBWaitingTime), SET(wlan_setSBWaitingTime), "SOFT_BLOCK_WAITING_TIME", false, false, false, "setWTT:17",
     "wlan_setSBWaitingTime entered", "wlan_setSBWaitingTime: send data to SBCtrl failed", nullptr},
    {GET(wlan_getSBAllowTimer), SET(wlan_setSBAllowTimer), "SOFT_BLOCK_ALLOW_TIMER", false, false, false, "setATR:17",
     "wlan_setSBAllowTimer: entered", "wlan_setSBAllowTimer: send data to SBCtrl failed", nullptr},
    {GET(wlan_getSBAuthRespStCode), SET(wlan_setSBAuthRespStCode), "SOFT_BLOCK_AUTH_RESP_ST_C", false, true, true, "setAUT:17",
     "wlan_setSBAuthRespStCode entered", "wlan_setSBAuthRespStCode: send data to SBCtrl failed", "AP_SB_AUTH_RESP_ST_CODE"},
    {GET(wlan_getSBIgnoreProbeReqType), SET(wlan_setSBIgnoreProbeReqType), "SOFT_BLOCK_IGNORE_PR_T", false, true, true, "setRES:17",
     "wlan_setSBIgnoreProbeReqType entered", "wlan_setSBIgnoreProbeReqType: send data to SBCtrl failed", "SOFT_BLOCK_IGNORE_PR_T"},
    {GET(wlan_getBSSClientRSSIThreshold), SET(wlan_setBSSClientRSSIThreshold), "AP_BSS_STA_RSSI_THR", true, true, true, "setRSSI:17@2",
     "wlan_setBSSClientRSSIThreshold entered", "wlan_setBSSClientRSSIThreshold: send data to SBCtrl failed", "AP_BSS_STA_RSSI_THR"},
    {GET(wlan_getBSSClientRSSIThresholdDelta), SET(wlan_setBSSClientRSSIThresholdDelta), "AP_BSS_STA_RSSI_THR_D", true, true, true, nullptr,
     "wlan_setBSSClientRSSIThresholdDelta entered", nullptr, "AP_BSS_STA_RSSI_THR_D"},
};
// clang-format on

std::string own_key(const std::string &key, int index) {
    return index < 2 ? key : key + "_" + std::to_string(index);
}

std::string written_key(const tunable_row &row, int index) {
    return row.writes_own_key ? own_key(row.key, index) : row.key;
}

// The message of a value and an index other than those of the row.
std::string message_of(const tunable_row &row, int index, int value) {
    std::string message = row.message;
    message = message.substr(0, message.find(':') + 1) + std::to_string(value);
    if (std::string(row.message).ends_with("@2")) {
        message += "@" + std::to_string(index - 1LL);
    }
    return with_nul(message);
}

// The indices that a tunable's operations take.
std::vector<int> taken_indices(const tunable_row &row) {
    std::vector<int> indices = {0, 1, 2, 3, 16, 17, INT_MAX};
    if (!row.checks_index) {
        indices.insert(indices.end(), {-1, INT_MIN});
    }
    return indices;
}

TEST_F(SoftBlock, EverySetterWritesItsKeyAndSendsItsMessage) {
    for (const tunable_row &row : TUNABLES) {
        reset_platform();
        install_tool("cfg");
        steering_listener daemon;
        EXPECT_EQ(row.set(3, 17), 0) << row.setter;
        EXPECT_EQ(tool_calls(), calls{"cfg -a " + written_key(row, 3) + "=17"}) << row.setter;
        EXPECT_EQ(daemon.received(), row.message ? texts{with_nul(row.message)} : texts{}) << row.setter;
    }
}

TEST_F(SoftBlock, EverySetterTakesEveryIndexThatItDoesNotRefuse) {
    for (const tunable_row &row : TUNABLES) {
        for (int index : taken_indices(row)) {
            reset_platform();
            install_tool("cfg");
            steering_listener daemon;
            EXPECT_EQ(row.set(index, 5), 0) << row.setter << " index " << index;
            EXPECT_EQ(tool_calls(), calls{"cfg -a " + written_key(row, index) + "=5"}) << row.setter;
            EXPECT_EQ(daemon.received(), row.message ? texts{message_of(row, index, 5)} : texts{})
                << row.setter << " index " << index;
        }
    }
}

TEST_F(SoftBlock, EverySetterTakesEveryNumber) {
    for (const tunable_row &row : TUNABLES) {
        for (int value : {INT_MIN, -70, -1, 0, INT_MAX}) {
            reset_platform();
            install_tool("cfg");
            steering_listener daemon;
            EXPECT_EQ(row.set(2, value), 0) << row.setter;
            EXPECT_EQ(tool_calls(), calls{"cfg -a " + written_key(row, 2) + "=" + std::to_string(value)}) << row.setter;
            EXPECT_EQ(daemon.received(), row.message ? texts{message_of(row, 2, value)} : texts{}) << row.setter;
        }
    }
}

TEST_F(SoftBlock, TheLongestMessageOfATunableIsWhole) {
    steering_listener daemon;
    EXPECT_EQ(wlan_setBSSClientRSSIThreshold(INT_MAX, INT_MIN), 0);
    EXPECT_EQ(daemon.received(), texts{with_nul("setRSSI:-2147483648@2147483646")});
}

TEST_F(SoftBlock, AnRssiFloorGoesOutWithTheNumberOfItsInterface) {
    steering_listener daemon;
    EXPECT_EQ(wlan_setBSSClientRSSIThreshold(3, -70), 0);
    EXPECT_EQ(wlan_setBSSClientRSSIThreshold(0, -70), 0);
    EXPECT_EQ(tool_calls(), (calls{"cfg -a AP_BSS_STA_RSSI_THR_3=-70", "cfg -a AP_BSS_STA_RSSI_THR=-70"}));
    EXPECT_EQ(daemon.received(), (texts{with_nul("setRSSI:-70@2"), with_nul("setRSSI:-70@-1")}));
}

// They are unsigned on the wire, the texts are "%d".
TEST_F(SoftBlock, MasksWithTheirHighestBitAreStoredAndSentAsNegativeNumbers) {
    steering_listener daemon;
    EXPECT_EQ(wlan_setSBBLSelMask(1, 0x80000000U), 0);
    EXPECT_EQ(wlan_setSBSelMask(1, 0xffffffffU), 0);
    EXPECT_EQ(tool_calls(),
              (calls{"cfg -a SOFT_BLOCK_BLACK_LIST_SELECTOR=-2147483648", "cfg -a SOFT_BLOCK_SELECTOR=-1"}));
    EXPECT_EQ(daemon.received(), (texts{with_nul("setBLM:-2147483648"), with_nul("setSBM:-1")}));
}

TEST_F(SoftBlock, SuchMasksAreReadBackAsTheyWere) {
    write_store({"SOFT_BLOCK_BLACK_LIST_SELECTOR=-2147483648", "SOFT_BLOCK_SELECTOR=-1"});
    u_int mask = 0;
    EXPECT_EQ(wlan_getSBBLSelMask(1, &mask), 0);
    EXPECT_EQ(mask, 0x80000000U);
    EXPECT_EQ(wlan_getSBSelMask(1, &mask), 0);
    EXPECT_EQ(mask, 0xffffffffU);
}

// The tool takes the daemon away: what is sent afterwards does not arrive.
TEST_F(SoftBlock, EverySetterStoresBeforeItSends) {
    for (const tunable_row &row : TUNABLES) {
        if (!row.message) {
            continue;
        }
        steering_listener daemon;
        std::string tool = std::string(FAKE_TOOLS) + "/cfg";
        write_file(tool, std::string("#!/bin/sh\nrm -f ") + STEERING_SOCKET + "\n");
        ASSERT_EQ(chmod(tool.c_str(), 0755), 0);
        capture([&] { EXPECT_EQ(row.set(1, 17), 0) << row.setter; });
        EXPECT_EQ(daemon.received(), texts{}) << row.setter;
    }
}

TEST_F(SoftBlock, EverySetterSendsAlsoWhenTheToolIsMissing) {
    for (const tunable_row &row : TUNABLES) {
        reset_platform();
        steering_listener daemon;
        capture([&] { EXPECT_EQ(row.set(3, 17), 0) << row.setter; });
        EXPECT_EQ(daemon.received(), row.message ? texts{with_nul(row.message)} : texts{}) << row.setter;
    }
}

TEST_F(SoftBlock, WithoutADaemonEverySetterStoresComplainsAndSucceeds) {
    for (const tunable_row &row : TUNABLES) {
        reset_platform();
        install_tool("cfg");
        printed_text printed = capture([&] { EXPECT_EQ(row.set(3, 17), 0) << row.setter; });
        std::string line = row.message ? std::string("[VLK-API] Error ") + row.setter + " " + row.failure + "\n" : "";
        EXPECT_EQ(printed.err, row.message ? NO_DAEMON + line : "") << row.setter;
        EXPECT_EQ(printed.out, "") << row.setter;
        EXPECT_EQ(tool_calls(), calls{"cfg -a " + written_key(row, 3) + "=17"}) << row.setter;
    }
}

TEST_F(SoftBlock, ADaemonThatEndedAndLeftItsSocketIsNone) {
    int sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = steering_address();
    ASSERT_EQ(bind(sock, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    close(sock);
    EXPECT_EQ(capture([] { EXPECT_EQ(wlan_setSBEnable(1, 1), 0); }).err,
              std::string(NO_DAEMON) + "[VLK-API] Error wlan_setSBEnable send data to SBCtrl failed\n");
}

TEST_F(SoftBlock, WithoutDescriptorsASetterComplainsAndSucceeds) {
    steering_listener daemon;
    begin_capture();
    begin_descriptor_shortage();
    int status = wlan_setSBWaitingTime(1, 30);
    end_descriptor_shortage();
    EXPECT_EQ(end_capture().err, std::string(NO_DAEMON) +
                                     "[VLK-API] Error wlan_setSBWaitingTime "
                                     "wlan_setSBWaitingTime: send data to SBCtrl failed\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(tool_calls(), calls{});
    EXPECT_EQ(daemon.received(), texts{});
}

TEST_F(SoftBlock, ADaemonThatDoesNotReadHoldsASetterForTwoSeconds) {
    steering_listener daemon;
    daemon.fill();
    double seconds = 0;
    printed_text printed = capture([&] { seconds = seconds_of([] { EXPECT_EQ(wlan_setSBSelMask(1, 6), 0); }); });
    expect_two_seconds(seconds);
    EXPECT_EQ(printed.err, "[VLK-API] Error wlan_setSBSelMask wlan_setSBMask: send data to SBCtrl failed\n");
    EXPECT_EQ(tool_calls(), calls{"cfg -a SOFT_BLOCK_SELECTOR=6"});
}

TEST_F(SoftBlock, ANegativeIndexIsRefusedBeforeAnythingIsDone) {
    steering_listener daemon;
    for (const tunable_row &row : TUNABLES) {
        if (!row.checks_index) {
            continue;
        }
        write_store({std::string(row.key) + "=77"});
        for (int index : {-1, INT_MIN}) {
            int value = UNTOUCHED;
            EXPECT_EQ(row.set(index, 17), -1) << row.setter;
            EXPECT_EQ(row.get(index, &value), -1) << row.getter;
            EXPECT_EQ(value, UNTOUCHED) << row.getter;
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
    EXPECT_EQ(daemon.received(), texts{});
}

TEST_F(SoftBlock, ARefusedIndexIsNotComplainedOf) {
    for (const tunable_row &row : TUNABLES) {
        if (row.checks_index) {
            EXPECT_EQ(capture([&] { EXPECT_EQ(row.set(-1, 17), -1); }).err, "") << row.setter;
        }
    }
}

TEST_F(SoftBlock, EveryGetterReadsTheKeyOfItsRow) {
    for (const tunable_row &row : TUNABLES) {
        std::string key = row.key;
        write_store({key + "_3=30", key + "=10", key + "_2=20", key + "_16=160", key + "_17=170", key + "_0=5",
                     key + "_1=6", key + "_2147483647=70"});
        for (int index : taken_indices(row)) {
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(index, &value), 0) << row.getter;
            int own = index < 2 ? 10 : index == INT_MAX ? 70 : index * 10;
            EXPECT_EQ(value, row.reads_own_key ? own : 10) << row.getter << " index " << index;
        }
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(SoftBlock, AnAbsentTunableOfTheDeviceReadsAsZeroAndOneOfAVapFails) {
    for (const tunable_row &row : TUNABLES) {
        for (bool empty : {false, true}) {
            write_store(empty ? texts{std::string(row.key) + "="} : texts{});
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(1, &value), row.checks_index ? -1 : 0) << row.getter;
            EXPECT_EQ(value, row.checks_index ? UNTOUCHED : 0) << row.getter;
        }
    }
}

TEST_F(SoftBlock, WithoutAStoreEveryTunableIsAbsent) {
    unlink(STORE_FILE);
    for (const tunable_row &row : TUNABLES) {
        int value = UNTOUCHED;
        EXPECT_EQ(row.get(1, &value), row.checks_index ? -1 : 0) << row.getter;
        EXPECT_EQ(value, row.checks_index ? UNTOUCHED : 0) << row.getter;
    }
}

// Whoever set it for VAP 3 wrote the bare key.
TEST_F(SoftBlock, WhatWasSetForAVapIsNotWhatReadingTheVapGives) {
    steering_listener daemon;
    EXPECT_EQ(wlan_setSBAuthRespStCode(3, 17), 0);
    EXPECT_EQ(wlan_setSBIgnoreProbeReqType(3, 18), 0);
    ASSERT_EQ(tool_calls(), (calls{"cfg -a SOFT_BLOCK_AUTH_RESP_ST_C=17", "cfg -a SOFT_BLOCK_IGNORE_PR_T=18"}));
    write_store({"SOFT_BLOCK_AUTH_RESP_ST_C=17", "SOFT_BLOCK_IGNORE_PR_T=18"});
    u_int value = UNTOUCHED;
    EXPECT_EQ(wlan_getSBAuthRespStCode(3, &value), -1);
    EXPECT_EQ(wlan_getSBIgnoreProbeReqType(3, &value), -1);
    EXPECT_EQ(value, static_cast<u_int>(UNTOUCHED));
    EXPECT_EQ(number_of(wlan_getSBAuthRespStCode, 1), 17);
    EXPECT_EQ(number_of(wlan_getSBIgnoreProbeReqType, 1), 18);
}

TEST_F(SoftBlock, EveryTunableIsReadAsANumber) {
    for (const tunable_row &row : TUNABLES) {
        for (auto [text, number] : std::vector<std::pair<std::string, int>>{{"-70", -70},
                                                                            {"-2147483648", INT_MIN},
                                                                            {"2147483647", INT_MAX},
                                                                            {"12 s", 12},
                                                                            {"never", 0},
                                                                            {std::string(1727, 'x'), 0},
                                                                            {std::string(1726, '0') + "8", 8}}) {
            write_store({std::string(row.key) + "=" + text});
            int value = UNTOUCHED;
            EXPECT_EQ(row.get(1, &value), 0) << row.getter;
            EXPECT_EQ(value, number) << row.getter << " " << text.substr(0, 20);
        }
    }
}

TEST_F(SoftBlock, NothingIsPrintedWithoutTheDebugSwitchWhenTheDaemonIsThere) {
    steering_listener daemon;
    for (const tunable_row &row : TUNABLES) {
        write_store({std::string(row.key) + "=77"});
        printed_text printed = capture([&] {
            int value;
            row.set(1, 17);
            row.get(1, &value);
        });
        EXPECT_EQ(printed.out + printed.err, "") << row.setter;
    }
}

std::string twice(const char *name) {
    return std::string("[VLK-API] ") + name + " " + name + ": ";
}

TEST_F(SoftBlock, EverySetterLogsItsEntryAndThenWhatTheStoreDoes) {
    steering_listener daemon;
    for (const tunable_row &row : TUNABLES) {
        std::string command = "cfg -a " + written_key(row, 3) + "=\"17\"";
        std::string shown_index = row.writes_own_key ? "2" : "-1";
        EXPECT_EQ(debug_lines([&] { row.set(3, 17); }),
                  twice(row.setter) + row.entry + "\n[VLK-API] athcfg_setbyname athcfg_setbyname: index " +
                      shown_index + ", execute cmd: " + command +
                      "\n[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:" + command + "\n");
    }
}

TEST_F(SoftBlock, EveryGetterLogsItsEntryAndThoseOfAVapTheStoredText) {
    for (const tunable_row &row : TUNABLES) {
        std::string key = row.reads_own_key ? own_key(row.key, 3) : row.key;
        write_store({key + "=17 s"});
        std::string shown_index = row.reads_own_key ? "2" : "-1";
        std::string lines = twice(row.getter) + row.getter + " entered\n[VLK-API] athcfg_getbyname index " +
                            shown_index + ", Param: " + key + "= is 17 s\n";
        if (row.logged_key) {
            lines += twice(row.getter) + "get " + row.logged_key + " 17 s\n";
        }
        EXPECT_EQ(debug_lines([&] {
                      int value;
                      EXPECT_EQ(row.get(3, &value), 0);
                  }),
                  lines);
    }
}

TEST_F(SoftBlock, OfAnAbsentKeyNoTextIsLogged) {
    for (const tunable_row &row : TUNABLES) {
        std::string lines = debug_lines([&] {
            int value;
            row.get(1, &value);
        });
        EXPECT_FALSE(contains(lines, ": get ")) << lines;
    }
}

TEST_F(SoftBlock, ARefusedIndexLogsTheEntryAlone) {
    for (const tunable_row &row : TUNABLES) {
        if (!row.checks_index) {
            continue;
        }
        EXPECT_EQ(debug_lines([&] { row.set(-1, 17); }), twice(row.setter) + row.entry + "\n");
        EXPECT_EQ(debug_lines([&] {
                      int value;
                      row.get(-1, &value);
                  }),
                  twice(row.getter) + row.getter + " entered\n");
    }
}

// --- any message ---

TEST_F(SoftBlock, AMessageIsOneDatagramWithItsNul) {
    steering_listener daemon;
    for (const std::string &text : {std::string("restart"), std::string(), std::string(8192, 'm')}) {
        EXPECT_EQ(sendDataToSBCtrl(text.c_str()), 0);
        EXPECT_EQ(daemon.received(), texts{with_nul(text)});
    }
}

TEST_F(SoftBlock, ANullMessageIsRefused) {
    steering_listener daemon;
    EXPECT_EQ(capture([] { EXPECT_EQ(sendDataToSBCtrl(nullptr), -1); }).err,
              "[VLK-API] Error sendDataToSBCtrl NULL data\n");
    EXPECT_EQ(daemon.received(), texts{});
}

TEST_F(SoftBlock, WithoutADaemonAMessageFailsWithALine) {
    EXPECT_EQ(capture([] { EXPECT_EQ(sendDataToSBCtrl("restart"), -1); }).err, NO_DAEMON);
}

// More than a socket's buffer holds.
TEST_F(SoftBlock, AMessageThatCannotBeSentFailsWithoutALine) {
    steering_listener daemon;
    std::string huge(8 << 20, 'm');
    printed_text printed = capture([&] { EXPECT_EQ(sendDataToSBCtrl(huge.c_str()), -1); });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(SoftBlock, AMessageComesFromAnAddressWithTheProcessIdThatIsGoneAfterwards) {
    std::string own = OWN_PREFIX + std::to_string(getpid());
    {
        answerer daemon("unasked");
        EXPECT_EQ(sendDataToSBCtrl("restart"), 0);
        daemon.finish();
        EXPECT_EQ(daemon.sender, own);
    }
    EXPECT_NE(access(own.c_str(), F_OK), 0);
    capture([] { sendDataToSBCtrl("restart"); });
    EXPECT_NE(access(own.c_str(), F_OK), 0);
}

TEST_F(SoftBlock, AMessageLeavesNothingOpen) {
    steering_listener daemon;
    int before = dup(STDIN_FILENO);
    close(before);
    EXPECT_EQ(sendDataToSBCtrl("restart"), 0);
    int after = dup(STDIN_FILENO);
    close(after);
    EXPECT_EQ(after, before);
}

// --- the black list: adding, deleting, clearing ---

struct mac_row {
    const char *name;
    int (*tell)(int, const char *);
    const char *beginning;
};

const mac_row MAC_OPERATIONS[] = {
    {"wlan_setSBBlackListAdd", wlan_setSBBlackListAdd, "addMac:"},
    {"wlan_setSBBlackListDel", wlan_setSBBlackListDel, "delMac:"},
};

TEST_F(SoftBlock, AMacGoesToTheDaemonAndIsNotStored) {
    for (const mac_row &row : MAC_OPERATIONS) {
        steering_listener daemon;
        EXPECT_EQ(row.tell(1, "02:00:00:00:00:aF"), 0) << row.name;
        EXPECT_EQ(daemon.received(), texts{with_nul(std::string(row.beginning) + "02:00:00:00:00:aF")});
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(SoftBlock, AMacIsTakenForEveryIndex) {
    for (const mac_row &row : MAC_OPERATIONS) {
        for (int index : {INT_MIN, -1, 0, 16, 17, INT_MAX}) {
            steering_listener daemon;
            EXPECT_EQ(row.tell(index, "m"), 0) << row.name << " index " << index;
            EXPECT_EQ(daemon.received(), texts{with_nul(std::string(row.beginning) + "m")});
        }
    }
}

TEST_F(SoftBlock, AMacIsCutTo24Characters) {
    std::string digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (const mac_row &row : MAC_OPERATIONS) {
        for (const std::string &mac :
             {digits.substr(0, 23), digits.substr(0, 24), digits.substr(0, 25), digits, std::string(8192, 'm'),
              std::string(24, '\xff'), std::string("%s%n"), std::string()}) {
            steering_listener daemon;
            EXPECT_EQ(row.tell(1, mac.c_str()), 0) << row.name;
            EXPECT_EQ(daemon.received(), texts{with_nul(row.beginning + mac.substr(0, 24))}) << mac.size();
        }
    }
}

TEST_F(SoftBlock, WithoutADaemonAMacFailsWithoutALineOfItsOwn) {
    for (const mac_row &row : MAC_OPERATIONS) {
        printed_text printed = capture([&] { EXPECT_EQ(row.tell(1, "m"), -1) << row.name; });
        EXPECT_EQ(printed.err, NO_DAEMON);
        EXPECT_EQ(printed.out, "");
    }
}

TEST_F(SoftBlock, AMacIsLogged) {
    steering_listener daemon;
    for (const mac_row &row : MAC_OPERATIONS) {
        EXPECT_EQ(debug_lines([&] { row.tell(1, "m"); }), twice(row.name) + row.name + " entered\n");
    }
}

TEST_F(SoftBlock, ClearingGoesToTheDaemonWhichKeepsTheFile) {
    for (int which : {INT_MIN, -1, 0, 1, INT_MAX}) {
        steering_listener daemon;
        write_file(BLACK_LIST, "stations");
        printed_text printed = capture([&] { EXPECT_EQ(wlan_setSBBlackListClear(1, which), 0); });
        EXPECT_EQ(daemon.received(), texts{with_nul("clearL:" + std::to_string(which))});
        EXPECT_EQ(read_file(BLACK_LIST), "stations");
        EXPECT_EQ(printed.out + printed.err, "");
    }
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(SoftBlock, ClearingIsTakenForEveryIndex) {
    for (int index : {INT_MIN, -1, 0, 16, 17, INT_MAX}) {
        steering_listener daemon;
        EXPECT_EQ(wlan_setSBBlackListClear(index, 2), 0) << "index " << index;
        EXPECT_EQ(daemon.received(), texts{with_nul("clearL:2")});
    }
}

TEST_F(SoftBlock, ClearingWithoutADaemonDeletesTheFileAndSucceeds) {
    for (bool there : {true, false}) {
        if (there) {
            write_file(BLACK_LIST, "stations");
        }
        printed_text printed = capture([] { EXPECT_EQ(wlan_setSBBlackListClear(1, 1), 0); });
        EXPECT_EQ(printed.err,
                  std::string(NO_DAEMON) + "[VLK-API] Error wlan_setSBBlackListClear send data to SBCtrl failed\n");
        EXPECT_NE(access(BLACK_LIST, F_OK), 0);
    }
}

TEST_F(SoftBlock, ClearingIsLoggedUnderAShorterName) {
    steering_listener daemon;
    EXPECT_EQ(debug_lines([] { wlan_setSBBlackListClear(1, 1); }),
              "[VLK-API] wlan_setSBBlackListClear wlan_setSBBlackListClear: wlan_setBlackListClear entered\n");
}

// --- the black list: reading ---

// An answer of the daemon with every byte set: 64 stations.
wlan_sb_station_list_t full_list(int total) {
    wlan_sb_station_list_t list;
    memset(&list, 0x5a, sizeof(list));
    list.total = total;
    list.oldest = -3;
    for (size_t i = 0; i < SB_STATIONS_MAX; i++) {
        const signed char mac[] = {0x02, -128, 0x7f, -1, 0x00, static_cast<signed char>(i)};
        memcpy(list.entries[i].mac, mac, sizeof(mac));
        list.entries[i].timestamp = 1000 - static_cast<int>(i) * 1000;
    }
    return list;
}

std::string image_of(const wlan_sb_station_list_t &list) {
    return {reinterpret_cast<const char *>(&list), sizeof(list)};
}

constexpr size_t LIST_SIZE = 776;

// On the heap and as large as it is, so that the sanitizers see every step beyond it. All bytes are '?' before.
struct read_list {
    std::unique_ptr<wlan_sb_station_list_t> list = std::make_unique<wlan_sb_station_list_t>();

    read_list() {
        memset(list.get(), '?', sizeof(*list));
    }

    int from(int index) {
        return wlan_getSBBlackList(index, list.get());
    }

    std::string image() const {
        return image_of(*list);
    }
};

const std::string UNTOUCHED_LIST(LIST_SIZE, '?');

TEST_F(SoftBlock, TheListIsTheDaemonsToTheByte) {
    std::string image = image_of(full_list(64));
    ASSERT_EQ(image.size(), LIST_SIZE);
    answerer daemon(image);
    read_list list;
    printed_text printed = capture([&] { EXPECT_EQ(list.from(1), 0); });
    daemon.finish();
    EXPECT_EQ(daemon.request, with_nul("getList"));
    EXPECT_EQ(daemon.sender, OWN_PREFIX + std::to_string(getpid()));
    EXPECT_EQ(list.image(), image);
    EXPECT_EQ(printed.out + printed.err, "");
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(SoftBlock, TheListIsReadForEveryIndex) {
    std::string image = image_of(full_list(1));
    for (int index : {INT_MIN, -1, 0, 16, 17, INT_MAX}) {
        answerer daemon(image);
        read_list list;
        EXPECT_EQ(list.from(index), 0) << "index " << index;
        EXPECT_EQ(list.image(), image) << "index " << index;
    }
}

TEST_F(SoftBlock, AShortListIsFilledWithZeros) {
    std::string image = image_of(full_list(64));
    for (size_t length : {size_t{775}, size_t{20}, size_t{8}, size_t{1}, size_t{0}}) {
        answerer daemon(image.substr(0, length));
        read_list list;
        EXPECT_EQ(list.from(1), 0);
        EXPECT_EQ(list.image(), image.substr(0, length) + std::string(LIST_SIZE - length, '\0')) << length;
    }
}

TEST_F(SoftBlock, ALongListIsCut) {
    std::string image = image_of(full_list(64));
    for (size_t more : {size_t{1}, size_t{5000}}) {
        answerer daemon(image + std::string(more, 'x'));
        read_list list;
        EXPECT_EQ(list.from(1), 0);
        EXPECT_EQ(list.image(), image) << more;
    }
}

TEST_F(SoftBlock, WithoutADaemonTheListStaysAsItWas) {
    read_list list;
    set_debug(true);
    printed_text printed = capture([&] { EXPECT_EQ(list.from(1), 0); });
    EXPECT_EQ(printed.err,
              "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n"
              "[VLK-API] Error wlan_getSBBlackList get station list failed\n");
    EXPECT_EQ(printed.out, "[VLK-API] wlan_getSBBlackList wlan_getSBBlackList: wlan_getSBBlackList entered\n");
    EXPECT_EQ(list.image(), UNTOUCHED_LIST);
}

TEST_F(SoftBlock, ADaemonThatDoesNotAnswerLeavesTheListAsItWasAfterTwoSeconds) {
    steering_listener daemon;
    read_list list;
    double seconds = 0;
    printed_text printed = capture([&] { seconds = seconds_of([&] { EXPECT_EQ(list.from(1), 0); }); });
    expect_two_seconds(seconds);
    EXPECT_EQ(printed.err, "[VLK-API] Error wlan_getSBBlackList get station list failed\n");
    EXPECT_EQ(list.image(), UNTOUCHED_LIST);
    EXPECT_EQ(daemon.received(), texts{with_nul("getList")});
}

// What reading a list prints with debugging on, behind its entry line.
std::string printed_list(const wlan_sb_station_list_t &list) {
    answerer daemon(image_of(list));
    read_list read;
    std::string printed = debug_lines([&] { EXPECT_EQ(read.from(1), 0); });
    std::string entry = "[VLK-API] wlan_getSBBlackList wlan_getSBBlackList: wlan_getSBBlackList entered\n";
    EXPECT_TRUE(printed.starts_with(entry)) << printed;
    return printed.substr(entry.size());
}

// No tag, a signed octet with eight digits, no line end behind the last line.
TEST_F(SoftBlock, TheListIsPrintedStationByStation) {
    EXPECT_EQ(printed_list(full_list(3)),
              "station list(total:3 oldest Index:-3):\n"
              "02:FFFFFF80:7F:FFFFFFFF:00:00\n"
              "timestampe:1000\n"
              "02:FFFFFF80:7F:FFFFFFFF:00:01\n"
              "timestampe:0\n"
              "02:FFFFFF80:7F:FFFFFFFF:00:02\n"
              "timestampe:-1000\n"
              "-----station list end-----");
}

TEST_F(SoftBlock, AListOfNobodyIsPrintedWithoutStations) {
    for (int total : {0, -1, INT_MIN}) {
        EXPECT_EQ(printed_list(full_list(total)),
                  "station list(total:" + std::to_string(total) + " oldest Index:-3):\n-----station list end-----");
    }
}

TEST_F(SoftBlock, NoMoreStationsArePrintedThanAListHas) {
    std::string stations;
    char line[64];
    for (int i = 0; i < 64; i++) {
        snprintf(line, sizeof(line), "02:FFFFFF80:7F:FFFFFFFF:00:%02X\ntimestampe:%d\n", i, 1000 - i * 1000);
        stations += line;
    }
    for (int total : {64, 65, INT_MAX}) {
        EXPECT_EQ(printed_list(full_list(total)), "station list(total:" + std::to_string(total) +
                                                      " oldest Index:-3):\n" + stations + "-----station list end-----");
    }
}

TEST_F(SoftBlock, TheExtremesOfATimeAreWhole) {
    wlan_sb_station_list_t list = full_list(2);
    list.entries[0].timestamp = INT_MIN;
    list.entries[1].timestamp = INT_MAX;
    std::string printed = printed_list(list);
    EXPECT_TRUE(contains(printed, "timestampe:-2147483648\n")) << printed;
    EXPECT_TRUE(contains(printed, "timestampe:2147483647\n")) << printed;
}

// --- the daemon itself ---

const char DAEMON_PID_FILE[] = "/tmp/fake_softblock.pid";
const char DAEMON_FILES[] = "/tmp/fake_softblock.files";

struct SoftBlockDaemon : SoftBlock {
    pid_t pid = 0;

    void SetUp() override {
        SoftBlock::SetUp();
        install_tool("killall");
        unlink(DAEMON_PID_FILE);
    }

    void TearDown() override {
        if (pid > 0) {
            kill(pid, SIGKILL);
        }
    }

    // A daemon that says what it has open and then does nothing for longer than a call may take.
    static void install_daemon() {
        std::string path = std::string(FAKE_TOOLS) + "/softblock";
        write_file(path, std::string("#!/bin/sh\nfind /proc/$$/fd -type l -printf '%f %l\\n' >") + DAEMON_FILES +
                             "\necho $$ >" + DAEMON_PID_FILE + "\nexec sleep 20\n");
        ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    }

    // Until it sleeps.
    void await_daemon() {
        for (int i = 0; i < 1000; i++) {
            std::string number = read_file(DAEMON_PID_FILE);
            pid = number.ends_with("\n") ? atoi(number.c_str()) : 0;
            if (pid > 0 && read_file("/proc/" + std::to_string(pid) + "/comm") == "sleep\n") {
                return;
            }
            usleep(10000);
        }
        FAIL() << "the daemon does not run";
    }

    // Number and name of each file that it has open.
    static std::set<std::string> files_of_daemon() {
        std::set<std::string> files;
        std::istringstream stream(read_file(DAEMON_FILES));
        for (std::string line; std::getline(stream, line);) {
            files.insert(line);
        }
        return files;
    }

    void end_daemon() {
        kill(pid, SIGKILL);
        unlink(DAEMON_PID_FILE);
        pid = 0;
    }
};

// The daemon is started in the background: its call may come a little later.
calls calls_when_there_are(size_t count) {
    for (int i = 0; i < 1000 && tool_calls().size() < count; i++) {
        usleep(10000);
    }
    return tool_calls();
}

TEST_F(SoftBlockDaemon, IsEndedAndStartedAnewWhenSwitchedOn) {
    install_tool("softblock");
    for (int on : {1, 2, -1, INT_MIN}) {
        reset_platform();
        install_tool("killall");
        install_tool("softblock");
        EXPECT_EQ(loadSB(on), 0);
        EXPECT_EQ(calls_when_there_are(2), (calls{"killall softblock", "softblock "})) << on;
    }
}

TEST_F(SoftBlockDaemon, IsOnlyEndedWhenSwitchedOff) {
    install_tool("softblock");
    EXPECT_EQ(loadSB(0), 0);
    usleep(200000);
    EXPECT_EQ(tool_calls(), calls{"killall softblock"});
}

// No line of the capturing runner among them.
TEST_F(SoftBlockDaemon, IsSwitchedByThePlainShellWithALineForEachStep) {
    install_tool("softblock");
    EXPECT_EQ(debug_lines([] { loadSB(1); }), "[VLK-API] loadSB loadSB: onOff:1\n[VLK-API] loadSB enable SB\n");
    EXPECT_EQ(calls_when_there_are(2).size(), 2u);
    EXPECT_EQ(debug_lines([] { loadSB(0); }), "[VLK-API] loadSB loadSB: onOff:0\n[VLK-API] loadSB disable SB\n");
    EXPECT_EQ(debug_lines([] { loadSB(-7); }), "[VLK-API] loadSB loadSB: onOff:-7\n[VLK-API] loadSB enable SB\n");
    calls_when_there_are(5);
}

// The tools write to the same output; their words show where they ran.
TEST_F(SoftBlockDaemon, LinesAndCommandsComeInTheirOrder) {
    install_tool("killall", "(killall)\n");
    setvbuf(stdout, nullptr, _IONBF, 0);
    std::string on = debug_lines([] { loadSB(1); });
    std::string off = debug_lines([] { loadSB(0); });
    setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
    EXPECT_EQ(on, "[VLK-API] loadSB loadSB: onOff:1\n(killall)\n[VLK-API] loadSB enable SB\n");
    EXPECT_EQ(off, "[VLK-API] loadSB loadSB: onOff:0\n[VLK-API] loadSB disable SB\n(killall)\n");
}

TEST_F(SoftBlockDaemon, MayBeMissingWithoutAnybodyCaring) {
    reset_platform();
    install_tool("killall", "", 1);
    printed_text printed = capture([] {
        EXPECT_EQ(loadSB(1), 0);
        EXPECT_EQ(loadSB(0), 0);
        usleep(200000);  // the shell in the background says that there is no such tool
    });
    EXPECT_FALSE(contains(printed.err, "[VLK-API]")) << printed.err;
    EXPECT_EQ(tool_calls(), (calls{"killall softblock", "killall softblock"}));
}

TEST_F(SoftBlockDaemon, OutlivesTheCallThatStartsItAndIsNotWaitedFor) {
    install_daemon();
    EXPECT_LT(seconds_of([] { loadSB(1); }), 5);
    await_daemon();
    usleep(100000);
    EXPECT_EQ(kill(pid, 0), 0);
    EXPECT_EQ(read_file("/proc/" + std::to_string(pid) + "/comm"), "sleep\n");
}

// A lifecycle worker starts it while the service thread is in the middle of something. What a daemon has that the test
// itself starts before is what whoever runs the tests left open.
TEST_F(SoftBlockDaemon, HoldsNothingThatTheServerHasOpen) {
    install_daemon();
    ASSERT_EQ(system("softblock &"), 0);
    await_daemon();
    auto files = files_of_daemon();
    EXPECT_GE(files.size(), 3u);
    end_daemon();
    steering_listener busy;
    rad_ctrl_conn *connection = rad_ctrl_open(STEERING_SOCKET, RAD_CTRL_STEERING);
    ASSERT_NE(connection, nullptr);
    int lock = lock_store();
    loadSB(1);
    unlock_store(lock);
    rad_ctrl_close(connection);
    await_daemon();
    EXPECT_EQ(files_of_daemon(), files);
}

TEST_F(SoftBlockDaemon, IsToldThatTheWifiWasRestarted) {
    install_tool("softblock");
    steering_listener daemon;
    printed_text printed = capture([] { EXPECT_EQ(notifyWiFiRestartToSBCtrl(), 0); });
    EXPECT_EQ(daemon.received(), texts{with_nul("restart")});
    EXPECT_EQ(printed.out + printed.err, "");
    usleep(100000);
    EXPECT_EQ(tool_calls(), calls{});
}

TEST_F(SoftBlockDaemon, IsStartedAnewWhenItCannotBeTold) {
    install_tool("softblock");
    set_debug(true);
    printed_text printed = capture([] { EXPECT_EQ(notifyWiFiRestartToSBCtrl(), 0); });
    EXPECT_EQ(printed.err, std::string(NO_DAEMON) +
                               "[VLK-API] Error notifyWiFiRestartToSBCtrl something is wrong, "
                               "need to restart soft block\n");
    EXPECT_EQ(printed.out, "[VLK-API] loadSB loadSB: onOff:1\n[VLK-API] loadSB enable SB\n");
    EXPECT_EQ(calls_when_there_are(2), (calls{"killall softblock", "softblock "}));
}

TEST_F(SoftBlockDaemon, IsStartedAnewWhenItDoesNotReadForTwoSeconds) {
    install_tool("softblock");
    steering_listener daemon;
    daemon.fill();
    double seconds = 0;
    printed_text printed = capture([&] { seconds = seconds_of([] { EXPECT_EQ(notifyWiFiRestartToSBCtrl(), 0); }); });
    expect_two_seconds(seconds);
    EXPECT_EQ(printed.err,
              "[VLK-API] Error notifyWiFiRestartToSBCtrl something is wrong, need to restart soft block\n");
    EXPECT_EQ(calls_when_there_are(2), (calls{"killall softblock", "softblock "}));
}

TEST_F(SoftBlockDaemon, IsToldAndStartedOnTheStackOfAWorker) {
    install_tool("softblock");
    set_debug(true);
    auto run = [](void *result) -> void * {
        *static_cast<int *>(result) = notifyWiFiRestartToSBCtrl() + loadSB(0);
        return nullptr;
    };
    int result = UNTOUCHED;
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 32768);
    capture([&] {
        pthread_t worker;
        ASSERT_EQ(pthread_create(&worker, &small, run, &result), 0);
        pthread_join(worker, nullptr);
    });
    pthread_attr_destroy(&small);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(calls_when_there_are(3).size(), 3u);
}

}  // namespace
