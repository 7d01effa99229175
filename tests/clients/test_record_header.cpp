// docs/wlan_config_records.h says the same as the server's own headers.
#include <gtest/gtest.h>

#include "client/record_fields.h"
#include "tests/clients/layout.h"

namespace {

TEST(RecordHeader, HasEveryRecordWithItsSizeAndAlignment) {
    std::vector<record_layout> server = server_layouts(), published = published_layouts();
    ASSERT_EQ(published.size(), record_row_count);
    for (size_t i = 0; i < published.size(); i++) {
        EXPECT_EQ(published[i].name, server[i].name);
        EXPECT_EQ(published[i].size, server[i].size) << published[i].name;
        EXPECT_EQ(published[i].alignment, server[i].alignment) << published[i].name;
    }
}

TEST(RecordHeader, HasEveryMemberInItsPlaceWithItsWidthAndSign) {
    std::vector<record_layout> server = server_layouts(), published = published_layouts();
    for (size_t i = 0; i < published.size(); i++)
        for (size_t n = 0; n < published[i].members.size(); n++)
            EXPECT_EQ(published[i].members[n], server[i].members[n])
                << published[i].name << "." << published[i].members[n].name;
}

TEST(RecordHeader, HasTheNumbersOfTheServer) {
    std::vector<named_number> server = server_numbers(), published = published_numbers();
    ASSERT_EQ(published.size(), 340u + 11u);
    for (size_t i = 0; i < published.size(); i++)
        EXPECT_EQ(published[i], server[i]) << published[i].name;
    EXPECT_EQ(published_address(), server_address());
}

}  // namespace
