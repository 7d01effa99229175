#include "client/record_fields.h"

#include <gtest/gtest.h>

#include <string>

#include "client/operations.h"
#include "server/records.h"

TEST(RecordFields, FollowEachOtherWithoutGapAndFillTheirRecord) {
    for (size_t i = 0; i < record_row_count; i++) {
        size_t end = 0;
        for (size_t n = 0; n < record_rows[i]->field_count; n++) {
            EXPECT_EQ(record_rows[i]->fields[n].offset, end)
                << record_rows[i]->name << "." << record_rows[i]->fields[n].name;
            end += record_rows[i]->fields[n].size;
        }
        EXPECT_EQ(end, record_rows[i]->size) << record_rows[i]->name;
    }
}

TEST(RecordFields, HaveElementsThatFillTheirMember) {
    for (size_t i = 0; i < record_row_count; i++)
        for (size_t n = 0; n < record_rows[i]->field_count; n++) {
            const record_field &field = record_rows[i]->fields[n];
            EXPECT_EQ(field.elements * field.element_size, field.size) << record_rows[i]->name << "." << field.name;
        }
}

TEST(RecordFields, AreThereForEveryRecordThatAResultCarries) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        const char *type = procedure_rows[i].result.type;
        if (!*type)
            continue;
        const record_row *record = find_record(type);
        ASSERT_NE(record, nullptr) << type;
        EXPECT_EQ(record->size, procedure_rows[i].result.size) << type;
    }
}

TEST(RecordFields, CountTheirListsWithAMemberOfTheSameRecord) {
    size_t lists = 0;
    for (size_t i = 0; i < record_row_count; i++)
        for (size_t n = 0; n < record_rows[i]->field_count; n++) {
            const record_field &field = record_rows[i]->fields[n];
            if (field.kind != field_kind::LIST)
                continue;
            lists++;
            ASSERT_NE(field.record, nullptr) << field.name;
            EXPECT_EQ(field.record->size, field.element_size) << field.name;
            const record_field *count = find_field(record_rows[i], field.count);
            ASSERT_NE(count, nullptr) << field.name;
            EXPECT_EQ(count->kind, field_kind::NUMBER) << field.name;
            EXPECT_EQ(count->elements, 1u) << field.name;
        }
    EXPECT_EQ(lists, 5u);
}

TEST(RecordFields, KnowWidthAndSignOfTheirNumbers) {
    const record_field *rssi = find_field(find_record("scan_entry"), "rssi");
    EXPECT_EQ(rssi->element_size, 1u);
    EXPECT_TRUE(rssi->is_signed);
    const record_field *total = find_field(find_record("wlan_atf_station_t"), "total");
    EXPECT_EQ(total->element_size, 8u);
    EXPECT_FALSE(total->is_signed);
    const record_field *words = find_field(find_record("wlan_stats_t"), "words_7_to_10");
    EXPECT_EQ(words->elements, 4u);
    EXPECT_EQ(words->element_size, 4u);
    const record_field *entries = find_field(find_record("wlan_2g_temp_blacklist_table_t"), "entries");
    EXPECT_EQ(entries->elements, 64u);
    EXPECT_EQ(entries->element_size, 32u);
    const record_field *capable = find_field(find_record("wlan_5g_capable_table_t"), "entries");
    EXPECT_EQ(capable->elements, 1u);
}

TEST(RecordFields, AreNotFoundUnderAnotherName) {
    EXPECT_EQ(find_record("wlan_device"), nullptr);
    EXPECT_EQ(find_field(find_record("scan_entry"), "rss"), nullptr);
}
