// What procedures touch, as the client has it: complete, in order, and printed for people.
#include "client/touches.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <set>
#include <string>
#include <vector>

#include "client/arguments.h"
#include "client/describe.h"
#include "server/wire.h"

namespace {

std::vector<std::string> items(const char *const *list) {
    std::vector<std::string> found;
    for (; *list; list++)
        found.push_back(*list);
    return found;
}

const procedure_row *row_of(uint32_t number) {
    for (size_t i = 0; i < procedure_row_count; i++)
        if (procedure_rows[i].number == number)
            return &procedure_rows[i];
    return nullptr;
}

std::string printed(uint32_t number) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print_touches(stream, row_of(number));
    fclose(stream);
    std::string copy(text, size);
    free(text);
    return copy;
}

bool is_accepted(argument_kind kind, std::string word) {
    argument_value value;
    return parse_argument(kind, word.data(), &value);
}

TEST(Touches, EveryProcedureHasARow) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        const touch_row *row = find_touches(procedure_rows[i].number);
        ASSERT_NE(row, nullptr) << procedure_rows[i].name;
        EXPECT_EQ(row->number, procedure_rows[i].number);
    }
}

TEST(Touches, NumbersWithoutAProcedureHaveNone) {
    EXPECT_EQ(find_touches(0), nullptr);
    for (size_t i = 0; i < unassigned_range_count; i++) {
        EXPECT_EQ(find_touches(unassigned_ranges[i].first), nullptr) << unassigned_ranges[i].first;
        EXPECT_EQ(find_touches(unassigned_ranges[i].last), nullptr) << unassigned_ranges[i].last;
    }
}

TEST(Touches, RowsAreThoseOfTheTableInItsOrder) {
    ASSERT_EQ(touch_row_count, procedure_row_count);
    for (size_t i = 0; i < touch_row_count; i++)
        EXPECT_EQ(touch_rows[i].number, procedure_rows[i].number) << procedure_rows[i].name;
}

TEST(Touches, SamplesAreWhatTheClientTakesForTheirArguments) {
    for (const touch_row *row = touch_rows; row < touch_rows + touch_row_count; row++) {
        const procedure_row *procedure = row_of(row->number);
        std::vector<std::string> sample = items(row->sample);
        ASSERT_EQ(sample.size(), procedure->argument_count) << procedure->name;
        for (size_t i = 0; i < sample.size(); i++)
            EXPECT_TRUE(is_accepted(procedure->arguments[i].kind, sample[i])) << procedure->name << " " << sample[i];
    }
}

TEST(Touches, ListsHaveNoTextTwiceAndNoEmptyOne) {
    for (const touch_row *row = touch_rows; row < touch_rows + touch_row_count; row++)
        for (const auto *list :
             {row->reads, row->writes, row->commands, row->files, row->requests, row->datagrams, row->messages}) {
            std::vector<std::string> all = items(list);
            EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size()) << row->number;
            for (const std::string &item : all)
                EXPECT_NE(item, "") << row->number;
        }
}

TEST(Touches, EveryKeyThatIsWrittenIsWrittenByACommandOfTheRow) {
    for (const touch_row *row = touch_rows; row < touch_rows + touch_row_count; row++) {
        std::set<std::string> written;
        for (const std::string &command : items(row->commands))
            if (command.starts_with("cfg -a "))
                written.insert(command.substr(7, command.find('=') - 7));
        std::vector<std::string> keys = items(row->writes);
        EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()), written) << row->number;
    }
}

TEST(Touches, ArePrintedAKindALineBehindTheCall) {
    EXPECT_EQ(printed(PROC_wlan_set_ht_tx_stream),
              "\nOn a gateway, `setHtTxStream 1 1` touches\n"
              "looks up   AP_RADIO_ID\n"
              "writes     TX_CHAINMASK_2\n"
              "runs       cfg -a TX_CHAINMASK_2=\"1\"\n"
              "           iwpriv wifi0 txchainmask 1\n");
    EXPECT_EQ(printed(PROC_wlan_get_assoc_devices_table),
              "\nOn a gateway, `getAssocDevicesTable 1` touches\n"
              "ioctl      ath0 0x89fc.41\n"
              "           ath0 0x89fc.42\n");
    EXPECT_EQ(printed(PROC_wlan_get_rssi_table),
              "\nOn a gateway, `getRssiTable 1` touches\n"
              "sends to   radstat0 result\n");
    EXPECT_EQ(printed(PROC_wlan_set_bs_bss_5g_capable_clear),
              "\nOn a gateway, `setBsBss5gCapableClear 1 1` touches\n"
              "opens      write /nvram/5gcapabletable\n"
              "ioctl      ath0 0x8bf8\n");
}

TEST(Touches, WhatTouchesNothingSaysSo) {
    EXPECT_EQ(printed(PROC_wlan_get_name), "\nOn a gateway, `getName 1` touches nothing.\n");
}

TEST(Touches, EndTheHelpOfAnOperation) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print_operation_help(stream, row_of(PROC_wlan_get_ssid), false);
    fclose(stream);
    EXPECT_TRUE(std::string(text, size).ends_with(printed(PROC_wlan_get_ssid))) << text;
    free(text);
}

// As many as fit into 100 columns.
TEST(Touches, LinesOfKeysAreFullAndNotTooLong) {
    std::string line = "writes    ";
    std::string expected;
    for (const std::string &key : items(find_touches(PROC_wlan_set_tx_preamble)->writes)) {
        if (line.size() + 1 + key.size() > 100) {
            expected += line + "\n";
            line = "          ";
        }
        line += " " + key;
    }
    expected += line + "\nruns ";
    EXPECT_NE(printed(PROC_wlan_set_tx_preamble).find(expected), std::string::npos) << expected;
}

TEST(Touches, ProcedureThatNobodyHasRecordedIsPrintedWithoutThem) {
    procedure_row fresh = procedure_rows[0];
    fresh.number = 0x1FFFFFF;
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print_touches(stream, &fresh);
    fclose(stream);
    EXPECT_STREQ(text, "");
    free(text);
}

}  // namespace
