// The smoke test of a row of the table: it reaches its handler and answers with its kind of result, and cut arguments
// reach nobody. Each program that includes this instantiates it for its
// rows; together they have all of them.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "client/operations.h"
#include "tests/system/gateway.h"

// Rows that load, start and stop the driver; the tests of everything else need it as it is.
inline bool is_lifecycle_row(const procedure_row &row) {
    return strcmp(row.room, "lifecycle/requests") == 0;
}

inline std::vector<procedure_row> rows_of_lifecycle(bool lifecycle) {
    std::vector<procedure_row> rows;
    for (size_t i = 0; i < procedure_row_count; i++)
        if (is_lifecycle_row(procedure_rows[i]) == lifecycle)
            rows.push_back(procedure_rows[i]);
    return rows;
}

// Words for arguments for which not just any will do: an operation that refuses its arguments shows little of itself.
// procedure is null where the name alone says it.
struct sample {
    const char *procedure;
    const char *argument;
    const char *word;
};

constexpr sample SAMPLES[] = {
    {nullptr, "bssid", "00:03:7F:10:00:05"},  // VAP 9 of the simulated gateway
    {nullptr, "mac", "28:6A:BA:4C:10:01"},    // a station of its VAP 1
    {nullptr, "address", "192.168.0.10"},
    {nullptr, "country", "US"},
    {nullptr, "dbm", "-60"},
    {nullptr, "list_name", "steerlist"},
    {nullptr, "methods", "PushButton"},
    {nullptr, "pin", "12345670"},
    {nullptr, "standard", "bgn"},
    {"wlan_set_basic_authentication_modes", "modes", "SharedAuthentication"},
    {"wlan_set_basic_encryption_modes", "modes", "WEPEncryption"},
    {"wlan_set_beacon_type", "type", "11i"},
    {"wlan_set_implicit_beamforming_enable", "index", "0"},
    {"wlan_set_wep_key", "key", "0123456789"},
    {"wlan_set_wpa_authentication_modes", "modes", "WPA2PSK"},
    {"wlan_set_wpa_encryption_modes", "modes", "AESEncryption"},
};

// What an argument is in a smoke call, as the client takes it.
inline std::string sample_word(const procedure_row &row, const argument_row &argument) {
    for (const sample &each : SAMPLES)
        if (strcmp(each.argument, argument.name) == 0 && (!each.procedure || strcmp(each.procedure, row.name) == 0))
            return each.word;
    return argument.kind == argument_kind::TEXT ? "word" : "1";
}

inline strings sample_words(const procedure_row &row) {
    strings words;
    for (size_t i = 0; i < row.argument_count; i++)
        words.push_back(sample_word(row, row.arguments[i]));
    return words;
}

inline bytes sample_arguments(const procedure_row &row) {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++) {
        std::string word = sample_word(row, row.arguments[i]);
        arguments += row.arguments[i].kind == argument_kind::TEXT
                         ? xdr_string_bytes(word)
                         : xdr_word(static_cast<uint32_t>(strtol(word.c_str(), nullptr, 10)));
    }
    return arguments;
}

inline bool handler_was_called(const char *procedure, size_t mark) {
    std::string name = std::string("[VLK-API] ") + procedure + "_1_svc ";
    for (const std::string &line : lines_since(SERVER_LOG_FILE, mark))
        if (line.starts_with(name))
            return true;
    return false;
}

// Whether an answer is of its row's kind.
inline void expect_kind_of_result(const procedure_row &row, const call_reply &reply) {
    if (row.result.kind == result_kind::CODE) {
        EXPECT_EQ(reply.result.size(), 4u);
        return;
    }
    decoded_result result = result_of(reply);
    switch (row.result.kind) {
        case result_kind::CODE:
            break;
        case result_kind::ACTION:
            EXPECT_TRUE(result.values.empty());
            EXPECT_TRUE(result.data.empty());
            break;
        case result_kind::INTEGERS:
            EXPECT_EQ(result.values.size(), 4 * row.result.output_count);
            EXPECT_TRUE(result.data.empty());
            break;
        case result_kind::INTEGERS64:
            EXPECT_EQ(result.values.size(), 8 * row.result.size);
            EXPECT_TRUE(result.data.empty());
            break;
        case result_kind::WORDS:
            EXPECT_EQ(result.values.size(), row.result.size);
            EXPECT_TRUE(result.data.empty());
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            EXPECT_TRUE(result.values.empty());
            EXPECT_TRUE(result.data.ends_with('\0'));
            break;
        case result_kind::IMAGE:
            EXPECT_TRUE(result.values.empty());
            EXPECT_EQ(result.data.size(), row.result.size);
            break;
        case result_kind::COUNTED_IMAGE:
            EXPECT_EQ(result.values.size(), 4u);
            EXPECT_EQ(result.data.size(), row.result.size);
            break;
    }
}

// Makes the gateway ready for any of the rows that a program calls, and undoes what it left behind or running. Each
// program has its own.
void prepare_for_row();
void settle_after_row();

class Procedures : public testing::TestWithParam<procedure_row> {
protected:
    void SetUp() override {
        prepare_for_row();
        set_debug(true);
    }
    void TearDown() override {
        set_debug(false);
        settle_after_row();
    }
};

TEST_P(Procedures, AnswersAsItsRowSays) {
    const procedure_row &row = GetParam();
    size_t mark = mark_of(SERVER_LOG_FILE);
    call_reply reply = call(row.number, sample_arguments(row));
    ASSERT_EQ(reply.outcome, call_outcome::SUCCESS);
    EXPECT_TRUE(handler_was_called(row.name, mark));
    expect_kind_of_result(row, reply);
}

// Every truncation of a procedure's arguments, each behind a whole call of the same procedure, whose bytes the
// server's receive buffer then still holds.
TEST_P(Procedures, RefusesTruncatedArgumentsWithoutCallingItsHandler) {
    const procedure_row &row = GetParam();
    bytes arguments = sample_arguments(row);
    if (arguments.empty())
        return;
    ASSERT_EQ(call(row.number, arguments).outcome, call_outcome::SUCCESS);
    size_t mark = mark_of(SERVER_LOG_FILE);
    for (size_t length = 0; length < arguments.size(); length++)
        EXPECT_EQ(call(row.number, arguments.substr(0, length)).outcome, call_outcome::DECODE_ERROR)
            << length << " of " << arguments.size() << " bytes";
    EXPECT_FALSE(handler_was_called(row.name, mark));
}

inline std::string procedure_name(const testing::TestParamInfo<procedure_row> &info) {
    return info.param.name;
}
