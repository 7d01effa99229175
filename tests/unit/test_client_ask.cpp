// Calls of commands: one connection for many, and nothing but the answer to a call is taken for it.
#include "client/ask.h"

#include <gtest/gtest.h>
#include <string.h>

#include <optional>
#include <string>

#include "server/records.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

using bytes = std::string;

bytes code(uint32_t number) {
    return accepted(0, word_bytes(number));
}

// A result record with one integer, in front of three zeros as the server sends it; with a text and its NUL.
bytes number_result(uint32_t number, uint32_t return_code = 0) {
    return accepted(0, word_bytes(return_code) + word_bytes(4) + word_bytes(number) + bytes(12, '\0') + word_bytes(0));
}

bytes text_result(const bytes &text) {
    bytes data = text + bytes(1, '\0');
    bytes padding((4 - data.size() % 4) % 4, '\0');
    return accepted(0, word_bytes(0) + word_bytes(0) + word_bytes(static_cast<uint32_t>(data.size())) + data + padding);
}

class ClientAsk : public testing::Test {
protected:
    void SetUp() override {
        server.emplace();
        tell_port(server->port);
        test.emplace(output_format::TEXT, call_endpoint{"127.0.0.1", portmapper.port});
        session = &test->session;
    }

    void tell_port(u_short port) {
        portmapper.answer_with(accepted(0, word_bytes(port)));
    }

    FakePeer portmapper;
    std::optional<FakePeer> server;
    std::optional<TestSession> test;
    client_session *session;
};

TEST_F(ClientAsk, ManyCallsAskThePortmapperOnce) {
    server->answer_with(code(0));
    for (int i = 1; i <= 20; i++)
        EXPECT_EQ(tell_number(session, PROC_wlan_set_enable, i, 1), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(portmapper.received(), 1);
    EXPECT_EQ(server->received(), 20);
}

TEST_F(ClientAsk, NothingIsSentBeforeTheFirstCall) {
    EXPECT_EQ(portmapper.received() + server->received(), 0);
}

TEST_F(ClientAsk, ServerThatWasStartedAgainOnAnotherPortIsFoundByTheNextCallButOne) {
    server->answer_with(code(0));
    EXPECT_EQ(tell(session, PROC_wlan_set_wps_cancel, 1), EXIT_STATUS_SUCCESS);
    server.reset();
    EXPECT_EQ(tell(session, PROC_wlan_set_wps_cancel, 1), EXIT_STATUS_NO_ANSWER);
    server.emplace();
    tell_port(server->port);
    server->answer_with(code(0));
    EXPECT_EQ(tell(session, PROC_wlan_set_wps_cancel, 1), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(portmapper.received(), 2);
}

TEST_F(ClientAsk, LateAnswerIsNotTakenForThatOfTheNextCall) {
    int64_t number = 0;
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 1, &number), EXIT_STATUS_TIMED_OUT);
    server->answer_the_call_before_with(number_result(6));
    server->answer_with(number_result(36));
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 9, &number), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(number, 36);
}

TEST_F(ClientAsk, LateAnswerAloneLeavesTheNextCallWithoutOne) {
    int64_t number = -7;
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 1, &number), EXIT_STATUS_TIMED_OUT);
    server->answer_the_call_before_with(number_result(6));
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 9, &number), EXIT_STATUS_TIMED_OUT);
    EXPECT_EQ(number, -7);
}

TEST_F(ClientAsk, ArgumentsStandInTheOrderOfTheRow) {
    server->answer_with(code(0));
    tell_number(session, PROC_wlan_set_channel, 9, 36);
    EXPECT_EQ(server->arguments(), word_bytes(9) + word_bytes(36));
    EXPECT_EQ(server->procedure(), word_bytes(PROC_wlan_set_channel));
    tell_text(session, PROC_wlan_set_ssid, -1, "home!");
    EXPECT_EQ(server->arguments(), word_bytes(0xffffffff) + word_bytes(5) + bytes("home!\0\0\0", 8));
    tell(session, PROC_wlan_set_wps_oob, 3);
    EXPECT_EQ(server->arguments(), word_bytes(3));
}

TEST_F(ClientAsk, NumbersHaveTheSignOfTheirKind) {
    int64_t number = 0;
    server->answer_with(number_result(0xffffffff));
    EXPECT_EQ(ask_number(session, PROC_wlan_get_current_channel, 1, &number), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(number, -1);
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 1, &number), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(number, 4294967295);
}

TEST_F(ClientAsk, SeveralNumbersComeInTheirOrder) {
    server->answer_with(accepted(
        0, word_bytes(0) + word_bytes(3) + word_bytes(35) + word_bytes(12) + word_bytes(0xffffffff) + word_bytes(0)));
    const int64_t arguments[ARGUMENTS_MAX] = {1};
    int64_t values[3] = {};
    EXPECT_EQ(ask_numbers(session, PROC_wlan_get_channel_statistics, arguments, values, 3), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(values[0], 35);
    EXPECT_EQ(values[1], 12);
    EXPECT_EQ(values[2], -1);
}

TEST_F(ClientAsk, TextIsCutToItsBuffer) {
    char text[4] = "???";
    server->answer_with(text_result("home"));
    EXPECT_EQ(ask_text(session, PROC_wlan_get_ssid, 1, text, sizeof text), EXIT_STATUS_SUCCESS);
    EXPECT_STREQ(text, "hom");
}

TEST_F(ClientAsk, RecordsComeFromWordsAndFromImages) {
    server->answer_with(accepted(0, word_bytes(0) + word_bytes(5) + word_bytes(1) + word_bytes(2) + word_bytes(3) +
                                        word_bytes(4) + word_bytes(5) + word_bytes(0)));
    wlan_basicStats_t stats = {};
    EXPECT_EQ(ask_record(session, PROC_wlan_get_basic_stats, 1, &stats), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(stats.tx_bytes, 1u);
    EXPECT_EQ(stats.assoc_count, 5u);
    wlan_sb_station_list_t sent = {}, list = {};
    sent.total = 2;
    sent.entries[63].timestamp = -5;
    bytes image(reinterpret_cast<char *>(&sent), sizeof sent);
    server->answer_with(accepted(0, word_bytes(0) + word_bytes(0) + word_bytes(sizeof sent) + image));
    EXPECT_EQ(ask_record(session, PROC_wlan_get_softblock_black_list, 1, &list), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(memcmp(&sent, &list, sizeof list), 0);
}

TEST_F(ClientAsk, FailureLeavesTheOutputAndSaysItsCode) {
    int64_t number = -7;
    server->answer_with(number_result(6, 0xffffffff));
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 1, &number), EXIT_STATUS_FAILURE);
    EXPECT_EQ(number, -7);
    EXPECT_STREQ(session->problem, "the server answered failure (-1)");
    char text[8] = "?";
    server->answer_with(accepted(0, word_bytes(0xffffffff) + word_bytes(0) + word_bytes(3) + bytes("US\0\0", 4)));
    EXPECT_EQ(ask_text(session, PROC_wlan_get_country_code, 1, text, sizeof text), EXIT_STATUS_FAILURE);
    EXPECT_STREQ(text, "?");
}

TEST_F(ClientAsk, AnswerOfAnotherShapeIsRefused) {
    int64_t number = -7;
    char text[8] = "?";
    wlan_basicStats_t stats = {};
    server->answer_with(text_result("home"));
    EXPECT_EQ(ask_number(session, PROC_wlan_get_channel, 1, &number), EXIT_STATUS_REFUSED);
    EXPECT_EQ(ask_record(session, PROC_wlan_get_basic_stats, 1, &stats), EXIT_STATUS_REFUSED);
    server->answer_with(number_result(6));
    EXPECT_EQ(ask_text(session, PROC_wlan_get_ssid, 1, text, sizeof text), EXIT_STATUS_REFUSED);
    EXPECT_EQ(number, -7);
    EXPECT_STREQ(text, "?");
    EXPECT_EQ(stats.tx_bytes, 0u);
}

TEST_F(ClientAsk, TextThatIsLongerThanACallIsUsage) {
    EXPECT_EQ(tell_text(session, PROC_wlan_set_ssid, 1, bytes(20000, 'x').c_str()), EXIT_STATUS_USAGE);
    EXPECT_EQ(server->received(), 0);
    server->answer_with(code(0));
    EXPECT_EQ(tell_text(session, PROC_wlan_set_ssid, 1, "home"), EXIT_STATUS_SUCCESS);
}

TEST(ClientRows, EveryProcedureHasItsRowAndHolesHaveNone) {
    for (size_t i = 0; i < procedure_row_count; i++)
        EXPECT_EQ(row_of(procedure_rows[i].number), &procedure_rows[i]);
    for (size_t i = 0; i < unassigned_range_count; i++)
        EXPECT_EQ(row_of(unassigned_ranges[i].first), nullptr);
    EXPECT_EQ(row_of(0), nullptr);
}

}  // namespace
