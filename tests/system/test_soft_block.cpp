// Soft block over the wire: the reply, the store, what reaches the daemon, to the byte, and the lines without one. The
// tests are the daemon here: one that runs is ended first and started again at the end.
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "server/records.h"
#include "server/wire.h"
#include "tests/support/steering_listener.h"
#include "tests/system/gateway.h"

namespace {

const char BLACK_LIST[] = "/nvram/blackList.dat";

// How long a daemon may take to end or to start, in hundredths of a second.
constexpr int PATIENCE = 1000;

bytes with_nul(const std::string &text) {
    return text + '\0';
}

class SoftBlock : public WatchedGateway {
protected:
    // The socket can be bound when the daemon is gone: it may remove its own while it ends.
    static void SetUpTestSuite() {
        gateway_has_one = run_command("killall -q softblock").status == 0;
        for (int i = 0; i < PATIENCE && run_command("killall -q -0 softblock").status == 0; i++)
            usleep(10000);
        unlink(STEERING_SOCKET);
    }

    static void TearDownTestSuite() {
        if (gateway_has_one)
            start_soft_block();
    }

    void SetUp() override {
        set_debug(false);
        unlink(BLACK_LIST);
        begin_with({"AP_VAP_NUM=8"});
    }

    void TearDown() override {
        set_debug(false);
        unlink(BLACK_LIST);
    }

    strings errors() const {
        return lines_with({"[VLK-API]"});
    }

    static bool gateway_has_one;
};

bool SoftBlock::gateway_has_one;

const std::string NO_DAEMON = "[VLK-API] Error sendDataToSBCtrl Could not connect";

struct setting_row {
    uint32_t setter;
    uint32_t getter;
    const char *key;      // what setting it for VAP 3 writes
    const char *message;  // of 1 for VAP 3
    const char *failure;  // line without a daemon
};

// clang-format off
const setting_row SETTINGS[] = {
    {PROC_wlan_set_softblock_enable, PROC_wlan_get_softblock_enable, "SOFT_BLOCK_EN", "setBSE:1",
     "[VLK-API] Error wlan_setSBEnable send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_black_list_selector_mask, PROC_wlan_get_softblock_black_list_selector_mask, "SOFT_BLOCK_BLACK_LIST_SELECTOR", "setBLM:1",
     "[VLK-API] Error wlan_setSBBLSelMask wlan_setSBBLSelMask: send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_selector_mask, PROC_wlan_get_softblock_selector_mask, "SOFT_BLOCK_SELECTOR", "setSBM:1",
     "[VLK-API] Error wlan_setSBSelMask wlan_setSBMask: send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_waiting_time, PROC_wlan_get_softblock_waiting_time, "SOFT_BLOCK_WAITING_TIME", "setWTT:1",
     "[VLK-API] Error wlan_setSBWaitingTime wlan_setSBWaitingTime: send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_allow_timer, PROC_wlan_get_softblock_allow_timer, "SOFT_BLOCK_ALLOW_TIMER", "setATR:1",
     "[VLK-API] Error wlan_setSBAllowTimer wlan_setSBAllowTimer: send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_auth_response_st_code, PROC_wlan_get_softblock_auth_response_st_code, "SOFT_BLOCK_AUTH_RESP_ST_C", "setAUT:1",
     "[VLK-API] Error wlan_setSBAuthRespStCode wlan_setSBAuthRespStCode: send data to SBCtrl failed"},
    {PROC_wlan_set_softblock_ignore_probereq_type, PROC_wlan_get_softblock_ignore_probereq_type, "SOFT_BLOCK_IGNORE_PR_T", "setRES:1",
     "[VLK-API] Error wlan_setSBIgnoreProbeReqType wlan_setSBIgnoreProbeReqType: send data to SBCtrl failed"},
    {PROC_wlan_set_bss_client_rssi_threshold, PROC_wlan_get_bss_client_rssi_threshold, "AP_BSS_STA_RSSI_THR_3", "setRSSI:1@2",
     "[VLK-API] Error wlan_setBSSClientRSSIThreshold wlan_setBSSClientRSSIThreshold: send data to SBCtrl failed"},
};
// clang-format on

TEST_F(SoftBlock, EverySettingIsStoredAndGivenToTheDaemon) {
    steering_listener daemon;
    for (const setting_row &row : SETTINGS) {
        EXPECT_EQ(set_number(row.setter, 3, 1), 0);
        EXPECT_EQ(daemon.received(), strings{with_nul(row.message)});
        EXPECT_EQ(store_value(row.key), "1") << row.key;
        EXPECT_EQ(new_commands(), strings{std::string("cfg -a ") + row.key + "=\"1\""});
    }
    EXPECT_EQ(errors(), strings{});
}

TEST_F(SoftBlock, EverySettingIsReadBackThroughTheFirstVap) {
    for (const setting_row &row : SETTINGS) {
        steering_listener daemon;
        EXPECT_EQ(set_number(row.setter, 1, 1), 0);
        EXPECT_EQ(get_number(row.getter, 1), (number_result{0, 1})) << row.key;
        EXPECT_EQ(set_number(row.setter, 1, 0), 0);
        EXPECT_EQ(get_number(row.getter, 1), (number_result{0, 0})) << row.key;
    }
    EXPECT_EQ(errors(), strings{});
}

TEST_F(SoftBlock, WithoutADaemonEverySettingIsStoredAndComplainedOf) {
    for (const setting_row &row : SETTINGS) {
        begin_watching();
        EXPECT_EQ(set_number(row.setter, 3, 1), 0);
        EXPECT_EQ(store_value(row.key), "1") << row.key;
        EXPECT_EQ(errors(), (strings{NO_DAEMON, row.failure}));
    }
}

TEST_F(SoftBlock, ADeltaIsStoredAndTheDaemonNotTold) {
    steering_listener daemon;
    EXPECT_EQ(set_number(PROC_wlan_set_bss_client_rssi_threshold_delta, 3, 5), 0);
    EXPECT_EQ(store_value("AP_BSS_STA_RSSI_THR_D_3"), "5");
    EXPECT_EQ(get_number(PROC_wlan_get_bss_client_rssi_threshold_delta, 3), (number_result{0, 5}));
    EXPECT_EQ(daemon.received(), strings{});
    EXPECT_EQ(errors(), strings{});
}

TEST_F(SoftBlock, AnRssiFloorIsNegativeAndOfOneVap) {
    steering_listener daemon;
    EXPECT_EQ(set_number(PROC_wlan_set_bss_client_rssi_threshold, 3, static_cast<uint32_t>(-70)), 0);
    EXPECT_EQ(store_value("AP_BSS_STA_RSSI_THR_3"), "-70");
    EXPECT_EQ(daemon.received(), strings{with_nul("setRSSI:-70@2")});
    EXPECT_EQ(get_number(PROC_wlan_get_bss_client_rssi_threshold, 3), (number_result{0, -70}));
    EXPECT_EQ(get_number(PROC_wlan_get_bss_client_rssi_threshold, 4), (number_result{-1, 0}));
}

// They are unsigned on the wire, the texts are "%d".
TEST_F(SoftBlock, LargeMasksAreStoredAndSentAsNegativeNumbersAndReadBackAsTheyWere) {
    steering_listener daemon;
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_selector_mask, 1, 0x80000000u), 0);
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_black_list_selector_mask, 1, 0xffffffffu), 0);
    EXPECT_EQ(store_value("SOFT_BLOCK_SELECTOR"), "-2147483648");
    EXPECT_EQ(store_value("SOFT_BLOCK_BLACK_LIST_SELECTOR"), "-1");
    EXPECT_EQ(daemon.received(), (strings{with_nul("setSBM:-2147483648"), with_nul("setBLM:-1")}));
    EXPECT_EQ(get_number(PROC_wlan_get_softblock_selector_mask, 1), (number_result{0, INT_MIN}));
    EXPECT_EQ(get_number(PROC_wlan_get_softblock_black_list_selector_mask, 1), (number_result{0, -1}));
}

TEST_F(SoftBlock, SettingsOfTheDeviceAreTakenForEveryIndex) {
    steering_listener daemon;
    for (int index : {INT_MIN, -1, 0, 17}) {
        EXPECT_EQ(set_number(PROC_wlan_set_softblock_waiting_time, index, 30), 0);
        EXPECT_EQ(get_number(PROC_wlan_get_softblock_waiting_time, index), (number_result{0, 30}));
        EXPECT_EQ(daemon.received(), strings{with_nul("setWTT:30")});
    }
}

TEST_F(SoftBlock, SettingsOfAVapRefuseANegativeIndex) {
    set_store({"SOFT_BLOCK_AUTH_RESP_ST_C=1", "SOFT_BLOCK_IGNORE_PR_T=1", "AP_BSS_STA_RSSI_THR=1",
               "AP_BSS_STA_RSSI_THR_D=1"});
    steering_listener daemon;
    for (uint32_t setter : {PROC_wlan_set_softblock_auth_response_st_code, PROC_wlan_set_softblock_ignore_probereq_type,
                            PROC_wlan_set_bss_client_rssi_threshold, PROC_wlan_set_bss_client_rssi_threshold_delta})
        EXPECT_EQ(set_number(setter, -1, 5), -1);
    for (uint32_t getter : {PROC_wlan_get_softblock_auth_response_st_code, PROC_wlan_get_softblock_ignore_probereq_type,
                            PROC_wlan_get_bss_client_rssi_threshold, PROC_wlan_get_bss_client_rssi_threshold_delta})
        EXPECT_EQ(get_number(getter, -1), (number_result{-1, 0}));
    EXPECT_EQ(commands(), strings{});
    EXPECT_EQ(daemon.received(), strings{});
    EXPECT_EQ(errors(), strings{});
}

TEST_F(SoftBlock, WhatIsNotStoredIsZeroForTheDeviceAndAFailureForAVap) {
    for (const setting_row &row : SETTINGS) {
        bool of_vap = row.setter >= PROC_wlan_set_softblock_auth_response_st_code;
        EXPECT_EQ(get_number(row.getter, 1), (number_result{of_vap ? -1 : 0, 0})) << row.key;
    }
}

// The setter writes the bare key, the getter reads the VAP's.
TEST_F(SoftBlock, AStatusCodeSetForAVapIsNotWhatReadingTheVapGives) {
    steering_listener daemon;
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_auth_response_st_code, 3, 17), 0);
    EXPECT_EQ(get_number(PROC_wlan_get_softblock_auth_response_st_code, 3), (number_result{-1, 0}));
    EXPECT_EQ(get_number(PROC_wlan_get_softblock_auth_response_st_code, 1), (number_result{0, 17}));
}

TEST_F(SoftBlock, ADaemonThatDoesNotReadHoldsTheServerForTwoSecondsAtMost) {
    steering_listener daemon;
    daemon.fill();
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_allow_timer, 1, 40), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(3500));
    EXPECT_EQ(errors(),
              strings{"[VLK-API] Error wlan_setSBAllowTimer wlan_setSBAllowTimer: send data to SBCtrl failed"});
    EXPECT_EQ(store_value("SOFT_BLOCK_ALLOW_TIMER"), "40");
}

// --- the black list ---

struct mac_row {
    uint32_t procedure;
    const char *beginning;
};

const mac_row MAC_OPERATIONS[] = {
    {PROC_wlan_set_softblock_black_list_add, "addMac:"},
    {PROC_wlan_set_softblock_black_list_del, "delMac:"},
};

TEST_F(SoftBlock, AMacGoesToTheDaemonCutTo24Characters) {
    steering_listener daemon;
    for (const mac_row &row : MAC_OPERATIONS) {
        for (const std::string &mac : {std::string("02:00:00:00:00:aF"), std::string("123456789012345678901234"),
                                       std::string("1234567890123456789012345"), std::string(8000, 'm'),
                                       std::string("%s\xff\"$(x)"), std::string()}) {
            EXPECT_EQ(set_text(row.procedure, 1, mac), 0);
            EXPECT_EQ(daemon.received(), strings{with_nul(row.beginning + mac.substr(0, 24))});
        }
    }
    EXPECT_EQ(commands(), strings{});
}

TEST_F(SoftBlock, WithoutADaemonAMacFails) {
    for (const mac_row &row : MAC_OPERATIONS) {
        begin_watching();
        EXPECT_EQ(set_text(row.procedure, 1, "02:00:00:00:00:01"), -1);
        EXPECT_EQ(errors(), strings{NO_DAEMON});
    }
}

TEST_F(SoftBlock, ClearingGoesToTheDaemonWhichKeepsItsFile) {
    steering_listener daemon;
    write_file(BLACK_LIST, "stations");
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_black_list_clear, 1, static_cast<uint32_t>(INT_MIN)), 0);
    EXPECT_EQ(daemon.received(), strings{with_nul("clearL:-2147483648")});
    EXPECT_EQ(read_file(BLACK_LIST), "stations");
    EXPECT_EQ(errors(), strings{});
}

TEST_F(SoftBlock, ClearingWithoutADaemonDeletesItsFile) {
    write_file(BLACK_LIST, "stations");
    EXPECT_EQ(set_number(PROC_wlan_set_softblock_black_list_clear, 1, 1), 0);
    EXPECT_NE(access(BLACK_LIST, F_OK), 0);
    EXPECT_EQ(errors(), (strings{NO_DAEMON, "[VLK-API] Error wlan_setSBBlackListClear send data to SBCtrl failed"}));
}

// An answer with every byte set, and octets and times of both signs.
bytes list_image(int total) {
    wlan_sb_station_list_t list;
    memset(&list, 0x5a, sizeof list);
    list.total = total;
    list.oldest = 1;
    for (size_t i = 0; i < SB_STATIONS_MAX; i++) {
        list.entries[i].mac[0] = static_cast<signed char>(0x80 + i);
        list.entries[i].timestamp = 1 - static_cast<int>(i);
    }
    return bytes(reinterpret_cast<const char *>(&list), sizeof list);
}

// The call, and meanwhile the daemon's answer to it.
decoded_result get_list_answered_with(const steering_listener &daemon, const bytes &answer) {
    bytes request;
    std::thread daemon_thread([&] { request = daemon.answer(answer); });
    decoded_result result = result_of(call(PROC_wlan_get_softblock_black_list, vap(1)));
    daemon_thread.join();
    EXPECT_EQ(request, with_nul("getList"));
    EXPECT_TRUE(result.values.empty());
    return result;
}

TEST_F(SoftBlock, TheListIsTheDaemonsToTheByte) {
    steering_listener daemon;
    decoded_result result = get_list_answered_with(daemon, list_image(64));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.data.size(), 776u);
    EXPECT_EQ(result.data, list_image(64));
    EXPECT_EQ(errors(), strings{});
    EXPECT_EQ(commands(), strings{});
}

TEST_F(SoftBlock, AShortListEndsWithZerosAndALongOneIsCut) {
    steering_listener daemon;
    EXPECT_EQ(get_list_answered_with(daemon, list_image(1).substr(0, 20)).data,
              list_image(1).substr(0, 20) + bytes(756, '\0'));
    EXPECT_EQ(get_list_answered_with(daemon, list_image(64) + bytes(1000, 'x')).data, list_image(64));
}

TEST_F(SoftBlock, AnyCountOfStationsIsPassedOn) {
    steering_listener daemon;
    set_debug(true);
    for (int total : {-1, 65, INT_MAX})
        EXPECT_EQ(get_list_answered_with(daemon, list_image(total)).data, list_image(total));
    EXPECT_EQ(lines_with({"timestampe:"}).size(), 2u * 64);
}

TEST_F(SoftBlock, TheListIsPrintedWhileDebugging) {
    steering_listener daemon;
    set_debug(true);
    get_list_answered_with(daemon, list_image(2));
    strings lines = lines_with({"station list", "FFFFFF", "timestampe:", "-----"});
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], "station list(total:2 oldest Index:1):");
    EXPECT_EQ(lines[1], "FFFFFF80:5A:5A:5A:5A:5A");
    EXPECT_EQ(lines[2], "timestampe:1");
    EXPECT_EQ(lines[3], "FFFFFF81:5A:5A:5A:5A:5A");
    EXPECT_EQ(lines[4], "timestampe:0");
    // It has no line end: the handler's line follows in the same one.
    EXPECT_EQ(lines[5],
              "-----station list end-----[VLK-API] wlan_get_softblock_black_list_1_svc  WLAN RPC server : "
              "result->return_data.return_data_len = 776 ");
}

TEST_F(SoftBlock, WithoutADaemonTheListIsZerosAndASuccess) {
    decoded_result result = result_of(call(PROC_wlan_get_softblock_black_list, vap(1)));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.data, bytes(776, '\0'));
    EXPECT_EQ(errors(), (strings{"[VLK-API] Error rad_ctrl_request_buffered Could not connect",
                                 "[VLK-API] Error wlan_getSBBlackList get station list failed"}));
}

TEST_F(SoftBlock, ADaemonThatDoesNotAnswerMakesTheListZerosAfterTwoSeconds) {
    steering_listener daemon;
    auto begin = std::chrono::steady_clock::now();
    decoded_result result = result_of(call(PROC_wlan_get_softblock_black_list, vap(1)));
    auto time = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(time, std::chrono::milliseconds(1900));
    EXPECT_LT(time, std::chrono::milliseconds(3500));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.data, bytes(776, '\0'));
    EXPECT_EQ(errors(), strings{"[VLK-API] Error wlan_getSBBlackList get station list failed"});
    EXPECT_EQ(daemon.received(), strings{with_nul("getList")});
}

}  // namespace
