// The examples of server/meanings.def as bytes and lines. For tests that call the real server.
#pragma once

#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "client/meanings.h"
#include "client/operations.h"
#include "tests/support/calls.h"

inline bytes encoded_argument(argument_kind kind, const std::string &word) {
    if (kind == argument_kind::TEXT)
        return xdr_string_bytes(word);
    return xdr_word(static_cast<uint32_t>(atoll(word.c_str())));
}

inline std::vector<std::string> example_words(const procedure_row &row) {
    std::vector<std::string> words;
    for (size_t i = 0; i < row.argument_count; i++)
        words.push_back(meaning_of(&row, row.arguments[i].name)->example);
    return words;
}

inline bytes encoded_arguments(const procedure_row &row, const std::vector<std::string> &words) {
    bytes arguments;
    for (size_t i = 0; i < row.argument_count; i++)
        arguments += encoded_argument(row.arguments[i].kind, words[i]);
    return arguments;
}

inline bool is_getter(const procedure_row &row) {
    return strncmp(row.name, "wlan_get_", strlen("wlan_get_")) == 0;
}

// What others of the examples need would be gone behind them.
inline bool takes_away(const procedure_row &row) {
    for (const char *word : {"_delete", "_clear", "_destroy", "_restore"})
        if (strstr(row.name, word))
            return true;
    return std::string(row.name).ends_with("_del");
}

// All rows but those that load, start and stop the driver, in an order in which every example has what it needs: first
// all that set or do something, then the getters, then those that take something away.
inline std::vector<const procedure_row *> rows_in_working_order() {
    std::vector<const procedure_row *> rows;
    for (int turn = 0; turn < 3; turn++)
        for (size_t i = 0; i < procedure_row_count; i++) {
            const procedure_row *row = &procedure_rows[i];
            bool loads = strcmp(row->room, "lifecycle/requests") == 0;
            if (!loads && turn == (takes_away(*row) ? 2 : (is_getter(*row) ? 1 : 0)))
                rows.push_back(row);
        }
    return rows;
}
