// The wire as the server answers it: which numbers exist, what is refused, and that nothing hostile reaches a handler.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>
#include <random>
#include <set>

#include "client/operations.h"
#include "server/wire.h"
#include "tests/system/gateway.h"
#include "tests/system/smoke.h"

// Among the rows is the one that restores factory defaults: here of a file without any, and what it removes all the
// same comes back. Another starts a collector.
static std::optional<kept_settings> kept;

void prepare_for_row() {
    kept.emplace();
    write_file("/tmp/wifi_defaults.dat", "");
}

void settle_after_row() {
    kept->put_back();
    run_command("killall -q radstat0");
}

namespace {

// All rows but those of the lifecycle, which have theirs in the lifecycle's own gateways.
INSTANTIATE_TEST_SUITE_P(Table, Procedures, testing::ValuesIn(rows_of_lifecycle(false)), procedure_name);

TEST(Calls, NullProcedureAnswersWithNothing) {
    call_reply reply = call(0, "");
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS);
    EXPECT_EQ(reply.result, "");
}

TEST(Calls, TableHasAllNumbersBetweenItsHoles) {
    std::set<uint32_t> numbers;
    uint64_t covered = 1;  // procedure 0
    for (size_t i = 0; i < procedure_row_count; i++)
        covered += numbers.insert(procedure_rows[i].number).second;
    for (size_t i = 0; i < unassigned_range_count; i++)
        covered += uint64_t{unassigned_ranges[i].last} - unassigned_ranges[i].first + 1;
    EXPECT_EQ(numbers.size(), 340u);
    EXPECT_EQ(covered, uint64_t{1} << 32);
}

TEST(Calls, BareCodesAndResultRecordsAreAsManyAsClientsKnow) {
    size_t codes = 0;
    for (size_t i = 0; i < procedure_row_count; i++)
        codes += procedure_rows[i].result.kind == result_kind::CODE;
    EXPECT_EQ(codes, 156u);
    EXPECT_EQ(procedure_row_count - codes, 184u);
}

TEST(Calls, EdgesOfEveryHoleAreUnavailable) {
    for (size_t i = 0; i < unassigned_range_count; i++) {
        EXPECT_EQ(call(unassigned_ranges[i].first, "").outcome, call_outcome::NO_PROCEDURE);
        EXPECT_EQ(call(unassigned_ranges[i].last, "").outcome, call_outcome::NO_PROCEDURE);
    }
    for (uint32_t number : {20u, 245u, 252u, 0x1000003u, 0xffffffffu})
        EXPECT_EQ(call(number, "").outcome, call_outcome::NO_PROCEDURE) << number;
}

TEST(Calls, WrongProgramAndWrongVersionGetTheirOwnErrors) {
    EXPECT_EQ(call_program(WLAN_CONFIG_RPC_PROG + 1, 1, 0, "").outcome, call_outcome::NO_PROGRAM);
    EXPECT_EQ(call_program(WLAN_CONFIG_RPC_PROG, 2, 0, "").outcome, call_outcome::WRONG_VERSION);
}

TEST(Calls, SurplusBytesBehindTheArgumentsAreIgnored) {
    decoded_result result = result_of(call(PROC_wlan_get_name, xdr_word(3) + "surplus!"));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.data, bytes("ath2\0", 5));
    EXPECT_EQ(call(0, "surplus!").outcome, call_outcome::SUCCESS);
}

TEST(Calls, TextLengthBeyondThePacketIsADecodeError) {
    for (uint32_t length : {5u, 100u, 8800u, 0x7fffffffu, 0xffffffffu})
        EXPECT_EQ(call(PROC_wlan_get_bssid_port, xdr_word(length) + "word").outcome, call_outcome::DECODE_ERROR)
            << length;
}

TEST(Calls, SetterCutShortDoesNotActOnWhatAnEarlierCallLeft) {
    set_store({"AP_SSID_3=before"});
    ASSERT_EQ(code_of(call(PROC_wlan_set_ssid, xdr_word(3) + xdr_string_bytes("first"))), 0);
    size_t mark = mark_of(JOURNAL_FILE);
    EXPECT_EQ(call(PROC_wlan_set_ssid, xdr_word(3)).outcome, call_outcome::DECODE_ERROR);
    EXPECT_EQ(call(PROC_wlan_set_ssid, "").outcome, call_outcome::DECODE_ERROR);
    EXPECT_TRUE(lines_since(JOURNAL_FILE, mark).empty());
    EXPECT_EQ(store_value("AP_SSID_3"), "first");
}

// A call header that ends early has no answer: there may be no xid to answer to.
TEST(Calls, DatagramThatEndsInsideTheCallHeaderIsDropped) {
    int client = open_client_socket();
    bytes whole = call_header(7, WLAN_CONFIG_RPC_PROG, 1, 0);
    bytes answer;
    ASSERT_TRUE(send_datagram(client, whole));
    ASSERT_TRUE(receive_datagram(client, &answer, 5000));
    for (size_t length = 0; length < whole.size(); length++)
        ASSERT_TRUE(send_datagram(client, whole.substr(0, length)));
    ASSERT_TRUE(send_datagram(client, call_header(8, WLAN_CONFIG_RPC_PROG, 1, 0)));
    ASSERT_TRUE(receive_datagram(client, &answer, 5000));
    EXPECT_EQ(answer.substr(0, 4), xdr_word(8)) << "something before the last call was answered";
    close(client);
}

TEST(Calls, CredentialsThatEndBeyondTheDatagramAreDropped) {
    int client = open_client_socket();
    bytes header = call_header(9, WLAN_CONFIG_RPC_PROG, 1, 0);
    bytes claimed = header.substr(0, 28) + xdr_word(64) + header.substr(32);
    bytes answer;
    ASSERT_TRUE(send_datagram(client, header + bytes(200, '\0')));
    ASSERT_TRUE(receive_datagram(client, &answer, 5000));
    ASSERT_TRUE(send_datagram(client, claimed));
    EXPECT_FALSE(receive_datagram(client, &answer, 300));
    close(client);
}

// How often a child was started so far; a child that dies is replaced, which makes another line.
size_t children_started() {
    size_t count = 0;
    for (const std::string &line : lines_since(SERVER_LOG_FILE, 0))
        count += line.starts_with("VLK WLAN RPC Server pid=");
    return count;
}

TEST(Calls, RandomDatagramsLeaveTheSameServerRunning) {
    size_t children = children_started();
    std::mt19937 random(20131337);
    int client = open_client_socket();
    bytes ignored;
    for (int i = 0; i < 3000; i++) {
        bytes datagram(random() % 200, '\0');
        for (char &byte : datagram)
            byte = static_cast<char>(random());
        if (i % 2)  // half of them with a valid header and a number that exists
            datagram =
                call_header(random(), WLAN_CONFIG_RPC_PROG, 1, procedure_rows[3 + random() % 2].number) + datagram;
        send_datagram(client, datagram);
        while (receive_datagram(client, &ignored, 0))
            ;
    }
    close(client);
    EXPECT_EQ(call(0, "").outcome, call_outcome::SUCCESS);
    EXPECT_EQ(children_started(), children);
}

// What a few operations write whether somebody debugs or not.
bool is_always_written(const std::string &line) {
    for (const char *begin :
         {" WLAN RPC server : [Channel Switch ", "Command is ", "Has not been implemented", "chan_flag ", "not exist ",
          "[VLK-API] Error wlan_associateVlan ", "error in ioctl ",
          "IEEE80211_IOCTL_DBGREQ: ", "Debug info: involve the need to up",
          "wlan_setBssBandSteer2gTempBlacklistClear cmd: ", "end wlan_ap_scan_1_svc",
          "wlan_getApScanResult_2: Site Survey not complete : ", "[VLK-API] Error getWlanStftableInfo ",
          "[VLK-API] Error wlan_queryWlanInfo ", "[VLK-API] Error wlan_getAdvAirtimeStatsCl_", "\t ATF IS DISABLED!!!",
          "ioctl: ", "end wlan_get_ap_scan_status_1_svc"})
        if (line.starts_with(begin))
            return true;
    return line.empty();  // the last line of the warning about airtime
}

// Tools complain on the server's standard error: of interfaces that are down, of a MAC that is none, of a collector
// that does not run.
bool is_complaint_of_a_tool(const std::string &line) {
    for (const char *begin : {"ath", "Invalid address ", "radstat", "airtime: "})
        if (line.starts_with(begin))
            return true;
    return false;
}

// Errors are written always; here that soft block's daemon is not there.
bool is_complaint_of_a_missing_daemon(const std::string &line) {
    return line.starts_with("[VLK-API] Error ") &&
           (line.ends_with(" Could not connect") || line.ends_with(" send data to SBCtrl failed") ||
            line.ends_with(" get station list failed"));
}

TEST(Calls, WithoutTheDebugSwitchNoHandlerWritesAnything) {
    prepare_for_row();
    set_debug(false);
    size_t mark = mark_of(SERVER_LOG_FILE);
    for (const procedure_row &row : rows_of_lifecycle(false))
        EXPECT_NE(call(row.number, sample_arguments(row)).outcome, call_outcome::NO_ANSWER);
    settle_after_row();
    for (const std::string &line : lines_since(SERVER_LOG_FILE, mark))
        EXPECT_TRUE(is_complaint_of_a_tool(line) || is_complaint_of_a_missing_daemon(line) || is_always_written(line))
            << line;
}

TEST(Calls, FourThousandCallsThatArriveDuringASlowSetterAreAllAnswered) {
    run_command("fault cfg slow 1");
    int client = open_client_socket();
    int size = 64 << 20;
    ASSERT_EQ(setsockopt(client, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size), 0);
    ASSERT_TRUE(send_datagram(
        client, call_header(1, WLAN_CONFIG_RPC_PROG, 1, PROC_wlan_set_ssid) + xdr_word(3) + xdr_string_bytes("slow")));
    usleep(200000);  // the setter is inside its tool now, which takes a second
    for (uint32_t i = 0; i < 4000; i++)
        ASSERT_TRUE(send_datagram(client, call_header(100 + i, WLAN_CONFIG_RPC_PROG, 1, 0)));
    std::set<bytes> answered;
    bytes answer;
    while (answered.size() < 4001 && receive_datagram(client, &answer, 3000))
        answered.insert(answer.substr(0, 4));
    EXPECT_EQ(answered.size(), 4001u);
    close(client);
    run_command("fault cfg off");
}

}  // namespace
