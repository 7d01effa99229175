// What every command does with its answer, and what it says when something fails, in each format.
#include "client/session.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/client_runs.h"

namespace {

using nlohmann::json;

value *one_ssid() {
    value *result = new_object();
    add_string(result, "ssid", "home");
    return result;
}

value *two_values() {
    value *result = one_ssid();
    add_number(result, "channel", 6);
    return result;
}

TEST(ClientSession, ResultOfAnOperationIsAnObjectWithItsCode) {
    TestSession test(output_format::JSON);
    test.session.speaker = "getSsid";
    test.session.is_operation = true;
    EXPECT_EQ(show(&test.session, one_ssid()), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(test.out(), "{\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"home\"}}\n");
    EXPECT_EQ(test.errors(), "");
}

TEST(ClientSession, ResultOfACommandHasNoCode) {
    TestSession test(output_format::JSON);
    test.session.speaker = "status";
    show(&test.session, one_ssid());
    EXPECT_EQ(test.out(), "{\"command\":\"status\",\"result\":{\"ssid\":\"home\"}}\n");
}

TEST(ClientSession, ResultForPeopleIsText) {
    TestSession test;
    test.session.speaker = "status";
    EXPECT_EQ(show(&test.session, two_values()), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(test.out(), "ssid     home\nchannel  6\n");
}

TEST(ClientSession, BareValueIsTheOnlyOneOrTheNamedOnes) {
    TestSession test(output_format::VALUE);
    EXPECT_EQ(show(&test.session, one_ssid()), EXIT_STATUS_SUCCESS);
    test.session.settings.field = "channel";
    EXPECT_EQ(show(&test.session, two_values()), EXIT_STATUS_SUCCESS);
    EXPECT_EQ(test.out(), "home\n6\n");
}

TEST(ClientSession, SeveralValuesWithoutAFieldAreUsage) {
    TestSession test(output_format::VALUE);
    test.session.speaker = "status";
    EXPECT_EQ(show(&test.session, two_values()), EXIT_STATUS_USAGE);
    EXPECT_EQ(test.out(), "");
    EXPECT_EQ(test.errors(), "status: the result has 2 values: choose one by its name with --field\n");
}

TEST(ClientSession, WhetherSeveralValuesCanBeShownIsKnownBeforeThereAreAny) {
    TestSession test(output_format::VALUE);
    test.session.speaker = "apply";
    EXPECT_FALSE(can_show_many(&test.session));
    EXPECT_EQ(test.errors(), "apply: the result has several values: choose one by its name with --field\n");
    test.session.settings.field = "setting";
    EXPECT_TRUE(can_show_many(&test.session));
    for (output_format format : {output_format::TEXT, output_format::JSON, output_format::DUMP}) {
        TestSession other(format);
        EXPECT_TRUE(can_show_many(&other.session));
    }
}

TEST(ClientSession, FieldThatIsNotThereIsNotFound) {
    TestSession test(output_format::VALUE);
    test.session.speaker = "status";
    test.session.settings.field = "bssid";
    EXPECT_EQ(show(&test.session, one_ssid()), EXIT_STATUS_NOT_FOUND);
    EXPECT_EQ(test.errors(), "status: the result has no \"bssid\"\nDid you mean ssid?\n");
}

TEST(ClientSession, SuggestionsForANameBehindDotsAreForThatNameAlone) {
    TestSession test(output_format::VALUE);
    test.session.settings.field = "device.op";
    value *result = new_object();
    add_string(result, "ip", "192.168.0.20");
    EXPECT_EQ(show(&test.session, result), EXIT_STATUS_NOT_FOUND);
    EXPECT_EQ(test.errors(), "vlk_rpc_wlan_config_client: the result has no \"device.op\"\nDid you mean ip?\n");
}

TEST(ClientSession, LinesOfAStreamAreThereAtOnce) {
    TestSession test(output_format::JSON);
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    FILE *own = test.session.out;
    test.session.out = stream;
    show(&test.session, one_ssid());
    EXPECT_EQ(std::string(text, size), "{\"result\":{\"ssid\":\"home\"}}\n");
    test.session.out = own;
    fclose(stream);
    free(text);
}

TEST(ClientSession, ErrorForPeopleIsALineOnStandardErrorWithTheSpeaker) {
    for (output_format format : {output_format::TEXT, output_format::VALUE, output_format::DUMP}) {
        TestSession test(format);
        test.session.speaker = "getSsid";
        EXPECT_EQ(complain(&test.session, EXIT_STATUS_TIMED_OUT, "no answer within %d s", 5), EXIT_STATUS_TIMED_OUT);
        EXPECT_EQ(test.out(), "");
        EXPECT_EQ(test.errors(), "getSsid: no answer within 5 s\n");
    }
}

TEST(ClientSession, ErrorBeforeThereIsASpeakerIsTheProgrammes) {
    TestSession test;
    complain(&test.session, EXIT_STATUS_USAGE, "wrong");
    EXPECT_EQ(test.errors(), "vlk_rpc_wlan_config_client: wrong\n");
    TestSession programs(output_format::JSON);
    complain(&programs.session, EXIT_STATUS_USAGE, "wrong");
    EXPECT_EQ(programs.out(), "{\"error\":{\"status\":2,\"kind\":\"usage\",\"message\":\"wrong\"}}\n");
}

TEST(ClientSession, ForeignTextInAnErrorDoesNotReachTheTerminalAsItIs) {
    TestSession test;
    complain(&test.session, EXIT_STATUS_NOT_FOUND, "\"%s\" is no setting", "\033[2J\n");
    EXPECT_TRUE(test.errors().ends_with("\"\\x1b[2J\\x0a\" is no setting\n")) << test.errors();
}

TEST(ClientSession, ErrorForProgramsIsAnObjectOnStandardOutput) {
    TestSession test(output_format::JSON);
    test.session.speaker = "getSsid";
    test.session.is_operation = true;
    EXPECT_EQ(complain(&test.session, EXIT_STATUS_NO_ANSWER, "no \"server\""), EXIT_STATUS_NO_ANSWER);
    EXPECT_EQ(test.errors(), "");
    EXPECT_EQ(json::parse(test.out(), nullptr, false),
              (json{{"operation", "getSsid"},
                    {"error", {{"status", 3}, {"kind", "no-answer"}, {"message", "no \"server\""}}}}));
}

TEST(ClientSession, ErrorKeepsTheAnswerThatWasMadeSoFar) {
    TestSession test(output_format::JSON);
    test.session.speaker = "getSsid";
    test.session.is_operation = true;
    value *answer = new_answer(&test.session);
    add_number(answer, "code", -1);
    EXPECT_EQ(complain_in(&test.session, answer, EXIT_STATUS_FAILURE, "failed"), EXIT_STATUS_FAILURE);
    EXPECT_EQ(test.out(),
              "{\"operation\":\"getSsid\",\"code\":-1,\"error\":{\"status\":1,\"kind\":\"failure\",\"message\":"
              "\"failed\"}}\n");
}

TEST(ClientSession, ErrorOfACallIsWhatTheCallLeft) {
    TestSession test;
    test.session.speaker = "status";
    snprintf(test.session.problem, sizeof test.session.problem, "100%% %s", "lost");
    EXPECT_EQ(complain_of_call(&test.session, EXIT_STATUS_REFUSED), EXIT_STATUS_REFUSED);
    EXPECT_EQ(test.errors(), "status: 100% lost\n");
}

TEST(ClientSession, LongProblemIsCut) {
    TestSession test;
    complain(&test.session, EXIT_STATUS_LOCAL, "%s", std::string(10000, 'x').c_str());
    EXPECT_EQ(test.errors(), "vlk_rpc_wlan_config_client: " + std::string(PROBLEM_SIZE - 1, 'x') + "\n");
}

TEST(ClientSession, RemarksAreForPeopleOnly) {
    TestSession people, programs(output_format::JSON);
    remark(&people.session, "%d networks\n", 3);
    remark(&programs.session, "%d networks\n", 3);
    EXPECT_EQ(people.errors(), "3 networks\n");
    EXPECT_EQ(programs.errors() + programs.out(), "");
}

TEST(ClientExitStatus, EachHasItsNumberAndItsWord) {
    const std::pair<int, const char *> statuses[] = {{0, "success"},   {1, "failure"},   {2, "usage"},
                                                     {3, "no-answer"}, {4, "timed-out"}, {5, "refused"},
                                                     {6, "not-found"}, {7, "local"}};
    ASSERT_EQ(exit_status_row_count, std::size(statuses));
    for (size_t i = 0; i < exit_status_row_count; i++) {
        EXPECT_EQ(exit_status_rows[i].status, statuses[i].first);
        EXPECT_STREQ(exit_status_rows[i].word, statuses[i].second);
        EXPECT_STREQ(exit_status_word(exit_status_rows[i].status), statuses[i].second);
        EXPECT_STRNE(exit_status_rows[i].meaning, "");
    }
    EXPECT_STREQ(exit_status_word(static_cast<client_exit_status>(8)), "");
}

}  // namespace
