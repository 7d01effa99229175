// Answers to getters as members of a tree, and what is said of VAPs: with a server that answers anything.
#include <gtest/gtest.h>
#include <limits.h>

#include <functional>
#include <string>

#include "client/ask.h"
#include "client/gather.h"
#include "client/security.h"
#include "client/vaps.h"
#include "tests/support/fake_peer.h"

namespace {

constexpr uint32_t RPC_SUCCESS = 0;
constexpr uint32_t FAILURE = 0xffffffff;

std::string padded(std::string text) {
    text.resize((text.size() + 3) / 4 * 4);
    return text;
}

// Results as they travel: a text; integers, of which four times as many words go over the wire; a failure.
std::string text_answer(const std::string &text) {
    return accepted(RPC_SUCCESS, word_bytes(0) + word_bytes(0) + word_bytes(static_cast<uint32_t>(text.size() + 1)) +
                                     padded(text + '\0'));
}

std::string number_answer(uint32_t number) {
    return accepted(RPC_SUCCESS,
                    word_bytes(0) + word_bytes(4) + word_bytes(number) + std::string(12, '\0') + word_bytes(0));
}

std::string failure_answer() {
    return accepted(RPC_SUCCESS, word_bytes(FAILURE) + word_bytes(0) + word_bytes(0));
}

class Gathering : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(accepted(RPC_SUCCESS, word_bytes(server.port)));
        endpoint = {"127.0.0.1", portmapper.port};
        connection = new_connection(&endpoint);
        session = {&connection, {1, output_format::TEXT, nullptr, false, false}, stdout, stderr, "test", false, ""};
        made = new_object();
    }
    void TearDown() override {
        free_value(made);
        close_connection(&connection);
    }

    const value *member(const char *name) const {
        const value *found = find_member(made, name);
        EXPECT_NE(found, nullptr) << name;
        return found ? found : made;
    }

    std::string security_for(const std::string &told) {
        server.answer_with(text_answer(told));
        value *vap = new_object();
        add_security(&from, vap, 1);
        const value *security = find_member(vap, "security");
        std::string word = !security ? "(absent)" : security->kind == value_kind::NOTHING ? "(null)" : security->text;
        free_value(vap);
        return word;
    }

    FakePeer portmapper, server;
    call_endpoint endpoint;
    server_connection connection;
    client_session session;
    gathering from = {&session, EXIT_STATUS_SUCCESS};
    value *made;
};

TEST_F(Gathering, AnswersBecomeMembers) {
    server.answer_with(number_answer(7));
    EXPECT_EQ(add_gathered_number(&from, made, "channel", PROC_wlan_get_channel, 1)->number, 7);
    EXPECT_TRUE(add_gathered_boolean(&from, made, "enabled", PROC_wlan_get_enable, 1)->truth);
    server.answer_with(number_answer(0));
    EXPECT_FALSE(add_gathered_boolean(&from, made, "off", PROC_wlan_get_enable, 1)->truth);
    server.answer_with(text_answer("home"));
    EXPECT_STREQ(add_gathered_text(&from, made, "ssid", PROC_wlan_get_ssid, 1)->text, "home");
    EXPECT_STREQ(add_gathered_word(&from, made, "standard", PROC_wlan_get_standard, 1)->text, "home");
    EXPECT_EQ(from.status, EXIT_STATUS_SUCCESS);
}

TEST_F(Gathering, EmptyTextIsOneAndEmptyWordIsNull) {
    server.answer_with(text_answer(""));
    EXPECT_EQ(add_gathered_text(&from, made, "ssid", PROC_wlan_get_ssid, 1)->kind, value_kind::TEXT);
    EXPECT_EQ(add_gathered_word(&from, made, "standard", PROC_wlan_get_standard, 1)->kind, value_kind::NOTHING);
}

TEST_F(Gathering, FailureIsNullAndDoesNotEndIt) {
    server.answer_with(failure_answer());
    EXPECT_EQ(add_gathered_number(&from, made, "channel", PROC_wlan_get_channel, 1)->kind, value_kind::NOTHING);
    EXPECT_EQ(add_gathered_boolean(&from, made, "enabled", PROC_wlan_get_enable, 1)->kind, value_kind::NOTHING);
    EXPECT_EQ(add_gathered_text(&from, made, "ssid", PROC_wlan_get_ssid, 1)->kind, value_kind::NOTHING);
    EXPECT_EQ(from.status, EXIT_STATUS_SUCCESS);
    EXPECT_EQ(server.received(), 3);
}

TEST_F(Gathering, DamagedAnswerEndsItAndNothingMoreIsSent) {
    server.answer_with(text_answer("home"));
    add_gathered_number(&from, made, "channel", PROC_wlan_get_channel, 1);
    EXPECT_EQ(member("channel")->kind, value_kind::NOTHING);
    EXPECT_EQ(from.status, EXIT_STATUS_REFUSED);
    int64_t numbers[1];
    char text[GATHERED_TEXT_SIZE];
    char record[32];
    EXPECT_FALSE(gather_numbers(&from, PROC_wlan_get_channel, 1, numbers, 1));
    EXPECT_FALSE(gather_text(&from, PROC_wlan_get_ssid, 1, text));
    EXPECT_FALSE(gather_record(&from, PROC_wlan_get_basic_stats, 1, record));
    EXPECT_EQ(server.received(), 1);
    EXPECT_EQ(from.status, EXIT_STATUS_REFUSED);
    EXPECT_STREQ(session.problem, "the server's answer is damaged: 0 integers instead of 1");
}

TEST_F(Gathering, MeasureIsANumberForProgramsAndHasItsUnitForPeople) {
    add_measure(made, "noise", INT64_MIN, "dBm");
    EXPECT_EQ(made->first->number, INT64_MIN);
    EXPECT_EQ(made->first->readers, audience::PROGRAMS);
    EXPECT_STREQ(made->last->text, "-9223372036854775808 dBm");
    EXPECT_EQ(made->last->readers, audience::PEOPLE);
}

TEST_F(Gathering, VapsAreNeverMoreThanTheAddressingHas) {
    for (auto [told, counted] : {std::pair{16u, 16}, {17u, 16}, {0x7fffffffu, 16}, {8u, 8}, {0u, 0}, {FAILURE, 0}}) {
        server.answer_with(number_answer(told));
        EXPECT_EQ(gather_vap_count(&from), counted) << told;
    }
    server.answer_with(failure_answer());
    EXPECT_EQ(gather_vap_count(&from), 0);
}

TEST_F(Gathering, RadiosAreThoseThatHaveAVap) {
    server.answer_with(failure_answer());
    value *vaps = new_list();
    for (auto [vap_count, radios] : {std::pair{0, 0u}, {1, 1u}, {8, 1u}, {9, 2u}, {16, 2u}}) {
        value *list = gather_radios(&from, vap_count, vaps,
                                    [](gathering *, value *to, int first_vap) { add_number(to, "more", first_vap); });
        EXPECT_EQ(count_values(list), radios) << vap_count;
        EXPECT_TRUE(radios < 2 || find_member(list->last, "more")->number == 9);
        free_value(list);
    }
    free_value(vaps);
}

TEST_F(Gathering, SecurityFollowsTheWpaAuthenticationModes) {
    for (auto [told, word] : {std::pair{"WPAPSK", "WPA-PSK"},
                              {"WPA2PSK", "WPA2-PSK"},
                              {"WPAPSKWPA2PSK", "WPA/WPA2-PSK"},
                              {"WPA2", "WPA2-Enterprise"},
                              {"WPA1WPA2", "WPA/WPA2-Enterprise"},
                              {"WPA", "WPA-Enterprise"},
                              {"WEPEncryption", "WEP"}}) {
        int before = server.received();
        EXPECT_EQ(security_for(told), word);
        EXPECT_EQ(server.received(), before + 1) << "one call tells it";
    }
}

TEST_F(Gathering, SecurityIsTheFamilyWhereNothingElseIsTold) {
    // Each word answers all questions; what is no authentication mode can only be a family.
    EXPECT_EQ(security_for("None"), "open");
    EXPECT_EQ(security_for("Basic"), "WEP");
    EXPECT_EQ(security_for("11i"), "WPA2");
    EXPECT_EQ(security_for("WPAand11i"), "WPA/WPA2");
}

TEST_F(Gathering, SecurityThatNobodyKnowsIsNull) {
    EXPECT_EQ(security_for(""), "(null)");
    EXPECT_EQ(security_for("WPA3"), "(null)");
    EXPECT_EQ(security_for(std::string(8000, 'W')), "(null)");
    server.answer_with(failure_answer());
    add_security(&from, made, 1);
    EXPECT_EQ(member("security")->kind, value_kind::NOTHING);
}

TEST_F(Gathering, OpenNetworksStandOutOnATerminal) {
    for (auto [told, shown] :
         {std::pair{"None", emphasis::WARNING}, {"WEPEncryption", emphasis::WARNING}, {"WPAPSK", emphasis::NONE}}) {
        server.answer_with(text_answer(told));
        value *vap = new_object();
        add_security(&from, vap, 1);
        EXPECT_EQ(vap->first->shown, shown) << told;
        free_value(vap);
    }
}

// What a function writes to the session's streams.
std::string complaint_of(client_session *session, const std::function<void()> &act) {
    char *text = nullptr;
    size_t size = 0;
    session->errors = open_memstream(&text, &size);
    act();
    fclose(session->errors);
    std::string copy(text, size);
    free(text);
    return copy;
}

TEST_F(Gathering, VapIsAWordFromOneToSixteen) {
    for (auto [word, number] : {std::pair{"1", 1}, {"16", 16}, {"0x9", 9}}) {
        std::string copy = word;
        int index = 0;
        EXPECT_EQ(parse_vap(&session, copy.data(), &index), EXIT_STATUS_SUCCESS) << word;
        EXPECT_EQ(index, number);
    }
    for (std::string word : {"0", "17", "-1", "-2147483648", "4294967297", "", "one", "1,9"}) {
        int index = 77;
        std::string complaint = complaint_of(
            &session, [&] { EXPECT_EQ(parse_vap(&session, word.data(), &index), EXIT_STATUS_USAGE) << word; });
        EXPECT_EQ(complaint, "test: VAP is \"" + word + "\", but has to be a number from 1 to 16\n");
        EXPECT_EQ(index, 77);
    }
}

}  // namespace
