// Site survey over the wire: the networks of the scenario to the byte, scans that run, and drivers that lie or refuse.
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

// --- networks, as the scenario has them and as they arrive ---

constexpr size_t NETWORK_SIZE = 128;
constexpr size_t TABLE_SIZE = 8196;
constexpr size_t TABLE_NETWORKS = 64;
const bytes EMPTY_TABLE(TABLE_SIZE, '\0');

struct network {
    bytes bssid;
    std::string ssid;
    int channel;
    int rssi;
    std::string auth;
    std::string mode;
    bool is_new = true;  // found by the last scan
};
using networks = std::vector<network>;

std::string item_of(const network &near) {
    char bssid[18];
    snprintf(bssid, sizeof bssid, "%02X:%02X:%02X:%02X:%02X:%02X", near.bssid[0] & 0xff, near.bssid[1] & 0xff,
             near.bssid[2] & 0xff, near.bssid[3] & 0xff, near.bssid[4] & 0xff, near.bssid[5] & 0xff);
    return "neighbour bssid=" + std::string(bssid) + " ssid=\"" + near.ssid +
           "\" channel=" + std::to_string(near.channel) + " rssi=" + std::to_string(near.rssi) + " auth=" + near.auth +
           " mode=" + near.mode + "\n";
}

std::string items_of(const networks &all) {
    std::string items;
    for (const network &near : all)
        items += item_of(near);
    return items;
}

std::string cipher_of(const std::string &auth) {
    return auth == "OPEN" ? "NONE" : auth == "WEP" ? "WEP" : auth == "WPA" ? "TKIP" : "AES";
}

// The 128 bytes of a network in the table.
bytes entry_of(const network &near) {
    bool at_five = near.channel > 14;
    bool has_streams = near.mode.starts_with("11n") || near.mode.starts_with("11ac");
    bool open = near.auth == "OPEN";
    bytes entry(NETWORK_SIZE, '\0');
    put(&entry, 0, near.bssid);
    put(&entry, 6, near.ssid.substr(0, 31));
    put(&entry, 38,
        at_five ? bytes("\x8c\x12\x98\x24\xb0\x48\x60\x6c")
                : bytes("\x82\x84\x8b\x96\x0c\x12\x18\x24\x30\x48\x60\x6c"));
    put(&entry, 50, at_five ? "\x08" : "\x0c");
    if (has_streams) {
        put(&entry, 51, "\xff\xff");
        put(&entry, 63, "\x02");
    }
    put(&entry, 64, bytes("\x64\0", 2) + (open ? "\x21\x04" : "\x31\x04"));
    // The driver's flag for a network with keys is 0x10.
    put(&entry, 79, bytes(1, open ? 0 : 1));
    put(&entry, 80, "\x01");
    put(&entry, 81, at_five ? "5GHz" : "2GHz");
    put(&entry, 87, bytes(1, static_cast<char>(near.rssi)));
    put(&entry, 88, near.auth.substr(0, 14));
    put(&entry, 103, cipher_of(near.auth));
    put(&entry, 111, near.mode.substr(0, 7));
    put_number(&entry, 120, static_cast<uint32_t>(near.channel));
    put(&entry, 124, bytes(1, near.is_new));
    return entry;
}

// The table with these networks, in this order.
bytes table_of(const networks &reported) {
    bytes table = EMPTY_TABLE;
    table[0] = static_cast<char>(reported.size());
    for (size_t i = 0; i < reported.size(); i++)
        put(&table, 4 + i * NETWORK_SIZE, entry_of(reported[i]));
    return table;
}

// Strongest first, by the exchanges that clients know; then the first `count`.
networks strongest(networks all, size_t count) {
    for (size_t i = 0; i < all.size(); i++)
        for (size_t j = i + 1; j < all.size(); j++)
            if (all[i].rssi < all[j].rssi)
                std::swap(all[i], all[j]);
    all.resize(count);
    return all;
}

// So many networks, each of which differs from the others; their strengths, which are not in order, occur often.
networks many_networks(int count) {
    networks all;
    for (int i = 0; i < count; i++)
        all.push_back({bytes("\x00\x11\x22\x33", 4) + static_cast<char>(i >> 8) + static_cast<char>(i),
                       "n" + std::to_string(i), i % 3 ? 6 : 1, -(i * 37 % 89), i % 4 ? "WPA2" : "OPEN",
                       i % 5 ? "11ng" : "11g"});
    return all;
}

// What a driver has that tells of more networks than there are.
networks repeated(const networks &all, size_t count) {
    networks list;
    for (size_t i = 0; i < count; i++) {
        list.push_back(all[i % all.size()]);
        if (i < all.size())
            continue;
        list[i].bssid[0] = static_cast<char>(list[i].bssid[0] | 2);
        list[i].bssid[4] = static_cast<char>(i >> 8);
        list[i].bssid[5] = static_cast<char>(i);
    }
    return list;
}

// Each authentication, cipher and kind of mode, texts of every length, strengths of both signs.
const networks HOUSE = {
    {"\x9c\x3d\xcf\x01\x02\x03", "Cafe am Eck", 1, -71, "WPA2", "11ng"},
    {"\x9c\x3d\xcf\x0a\x0b\x0c", "Upstairs", 6, -58, "WEP", "11b"},
    {"\x64\x70\x02\xaa\x10\x20", "printer", 6, -128, "OPEN", "11g"},
    {"\xc0\x4a\x30\x77\x88\x99", "0123456789abcdef0123456789abcdef", 1, 127, "WPA", "11ng"},
    {"\xff\xff\xff\xff\xff\xff", "", 1, 0, "OPEN", "12345678"},
    {"\xa4\x2b\xb0\x31\x41\x59", "x", 6, -1, "WPA2-ENTERPRISE-192", "11ac"},
};

const networks HOUSE_AT_FIVE = {
    {"\xc0\x4a\x30\x77\x88\x9d", "Number 12", 36, -77, "WPA2", "11ac"},
    {"\xa4\x2b\xb0\x31\x41\x5a", "", 36, -69, "OPEN", "11a"},
};

// --- calls ---

bytes scan(int index) {
    return call(PROC_wlan_ap_scan, vap(index)).result;
}

bytes status_reply(int index) {
    return call(PROC_wlan_get_ap_scan_status, vap(index)).result;
}

bytes number_reply(int index) {
    return call(PROC_wlan_get_ap_scan_num_of_entries, vap(index)).result;
}

bytes table_reply(int index) {
    return call(PROC_wlan_get_ap_scan_result, vap(index)).result;
}

constexpr uint32_t NONE = 0xffffffff;  // -1

class SiteSurvey : public ScenarioGateway {
protected:
    // These networks are nearby, and the radio of this VAP has scanned.
    void scan_among(const networks &nearby, int index = 1) {
        set_items(items_of(nearby));
        ASSERT_EQ(scan(index), code_reply(0));
    }

    void expect_table(int index, const networks &reported) {
        EXPECT_TRUE(same_bytes(table_reply(index), image_reply(0, table_of(reported))));
    }

    strings warnings() const {
        return lines_with({"wlan_getApScanResult_2"});
    }
};

// --- the table ---

TEST_F(SiteSurvey, NetworksOfTheScenarioTravelToTheByte) {
    scan_among(HOUSE);
    EXPECT_EQ(status_reply(1), integer_reply(0, 3));
    EXPECT_EQ(number_reply(1), integer_reply(0, 6));
    expect_table(1, {HOUSE[3], HOUSE[4], HOUSE[5], HOUSE[1], HOUSE[0], HOUSE[2]});
    EXPECT_EQ(warnings(), strings{});
}

TEST_F(SiteSurvey, EachRadioHasItsOwnNetworks) {
    scan_among(HOUSE_AT_FIVE, 9);
    EXPECT_EQ(status_reply(1), integer_reply(0, 0));
    EXPECT_EQ(number_reply(1), integer_reply(0, 0));
    for (int index : {9, 16}) {
        EXPECT_EQ(status_reply(index), integer_reply(0, 3));
        EXPECT_EQ(number_reply(index), integer_reply(0, 2));
        expect_table(index, {HOUSE_AT_FIVE[1], HOUSE_AT_FIVE[0]});
    }
}

TEST_F(SiteSurvey, EachCallAsksTheDriverAsFarAsItNeeds) {
    scan_among(HOUSE);
    status_reply(1);
    number_reply(1);
    table_reply(16);
    table_reply(1);
    EXPECT_EQ(requests(),
              (strings{"ioctl ath0 0x8b18 0 = 0", "ioctl ath0 0x89fc.38 12 = 3", "ioctl ath0 0x89fc.39 12 = 0",
                       "ioctl ath15 0x89fc.38 12 = 0", "ioctl ath15 0x89fc.39 12 = 0", "ioctl ath0 0x89fc.38 12 = 3",
                       "ioctl ath0 0x89fc.39 12 = 0", "ioctl ath0 0x89fc.40 12 = 0"}));
    EXPECT_EQ(commands(), strings{});
}

TEST_F(SiteSurvey, ATableHasTheNumberCutToAByteAndThenToSixtyFour) {
    const std::pair<int, size_t> rows[] = {{0, 0},    {1, 1},    {63, 63},  {64, 64},  {65, 64},
                                           {127, 64}, {128, 64}, {255, 64}, {256, 0},  {257, 1},
                                           {300, 44}, {319, 63}, {320, 64}, {321, 64}, {512, 0}};
    for (auto [nearby, reported] : rows) {
        SCOPED_TRACE(nearby);
        networks all = many_networks(nearby);
        scan_among(all);
        EXPECT_EQ(number_reply(1), integer_reply(0, static_cast<uint32_t>(nearby)));
        expect_table(1, strongest(all, reported));
    }
}

// Neither the driver's order nor that of any usual sort: just what the exchanges make of it.
TEST_F(SiteSurvey, EqualStrengthsStandInTheOrderThatTheExchangesLeave) {
    networks all = many_networks(5);
    const int strengths[] = {-70, -50, -70, -50, -40};
    for (size_t i = 0; i < all.size(); i++)
        all[i].rssi = strengths[i];
    scan_among(all);
    expect_table(1, {all[4], all[3], all[1], all[0], all[2]});
}

TEST_F(SiteSurvey, NetworksThatAreAllEquallyStrongKeepTheDriversOrder) {
    networks all = many_networks(65);
    for (network &near : all)
        near.rssi = -60;
    scan_among(all);
    expect_table(1, networks(all.begin(), all.begin() + TABLE_NETWORKS));
}

TEST_F(SiteSurvey, OfSixtyFiveNetworksTheWeakestIsLeftOut) {
    networks all = many_networks(65);
    for (size_t i = 0; i < all.size(); i++)
        all[i].rssi = -20 - static_cast<int>(i);
    std::swap(all[0], all[64]);
    scan_among(all);
    networks reported = all;
    std::swap(reported[0], reported[64]);
    reported.pop_back();
    expect_table(1, reported);
}

// --- the life of a scan ---

TEST_F(SiteSurvey, BeforeTheFirstScanThereIsNothingAndAWarning) {
    set_items(items_of(HOUSE));
    EXPECT_EQ(status_reply(1), integer_reply(0, 0));
    EXPECT_EQ(number_reply(1), integer_reply(0, 0));
    expect_table(1, {});
    EXPECT_EQ(warnings(), strings{"wlan_getApScanResult_2: Site Survey not complete : 0"});
}

TEST_F(SiteSurvey, AScanRunsForItsTimeAndIsCompleteThen) {
    set_items(items_of(HOUSE), "0.3");
    double begin = driver_seconds();
    EXPECT_EQ(scan(1), code_reply(0));
    EXPECT_EQ(status_reply(1), integer_reply(0, 1));
    bytes last;
    for (int i = 0; i < 500 && last != integer_reply(0, 3); i++, usleep(5000))
        last = status_reply(1);
    EXPECT_EQ(last, integer_reply(0, 3));
    EXPECT_GE(driver_seconds() - begin, 0.3);
    expect_table(1, strongest(HOUSE, 6));
    EXPECT_EQ(warnings(), strings{});
}

TEST_F(SiteSurvey, AScanWhileOneRunsIsRefused) {
    set_items(items_of(HOUSE), "1000");
    EXPECT_EQ(scan(9), code_reply(0));
    EXPECT_EQ(scan(9), code_reply(-1));
    EXPECT_EQ(scan(16), code_reply(-1));
    EXPECT_EQ(scan(1), code_reply(0));
    EXPECT_EQ(status_reply(16), integer_reply(0, 1));
    EXPECT_EQ(requests()[1], "ioctl ath8 0x8b18 0 = -1 EBUSY");
}

// What it has found up to now, two of its four; what only the scan before had found stands behind it, as equals do.
TEST_F(SiteSurvey, AScanThatRunsIsReadAsFarAsItIsWithAWarning) {
    networks before = {HOUSE[0], HOUSE[1]}, all = many_networks(4);
    for (network &near : all)
        near.rssi = -71;
    scan_among(before);
    set_items(items_of(all), "1000");
    EXPECT_EQ(scan(1), code_reply(0));
    double now = driver_seconds();
    set_driver(0, "scan wifi0 " + std::to_string(now - 625) + " " + std::to_string(now + 375) + "\n");
    EXPECT_EQ(status_reply(1), integer_reply(0, 1));
    EXPECT_EQ(number_reply(1), integer_reply(0, 4));
    before[0].is_new = before[1].is_new = false;
    expect_table(1, strongest({all[0], all[1], before[0], before[1]}, 4));
    EXPECT_EQ(warnings(), strings{"wlan_getApScanResult_2: Site Survey not complete : 1"});
}

TEST_F(SiteSurvey, AScenarioThatIsEditedShowsWithTheNextScan) {
    scan_among(HOUSE);
    networks after = {HOUSE[1], HOUSE[0]};
    after[1].rssi = -12;
    after[1].ssid = "Cafe of another name";
    set_items(items_of(after));
    expect_table(1, strongest(HOUSE, 6));
    EXPECT_EQ(scan(1), code_reply(0));
    EXPECT_EQ(number_reply(1), integer_reply(0, 2));
    expect_table(1, {after[1], after[0]});
}

// --- indices ---

TEST_F(SiteSurvey, AnInterfaceThatIsNotThereFailsButForItsStatus) {
    scan_among(HOUSE);
    for (int index : {0, -1, 2, 8, 17, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(scan(index), code_reply(-1));
        EXPECT_EQ(status_reply(index), integer_reply(0, NONE));
        EXPECT_EQ(number_reply(index), integer_reply(-1, 0));
        EXPECT_TRUE(same_bytes(table_reply(index), image_reply(-1, EMPTY_TABLE)));
    }
}

TEST_F(SiteSurvey, ANegativeIndexIsRefusedBeforeAnythingIsSaidOfItsTable) {
    for (int index : {-1, INT_MIN})
        table_reply(index);
    EXPECT_EQ(warnings(), strings{});
    table_reply(0);
    EXPECT_EQ(warnings(), strings{"wlan_getApScanResult_2: Site Survey not complete : -1"});
}

// --- faults ---

// Each request refused on its own: what is left of the calls. A reply that is not told here is as ever.
TEST_F(SiteSurvey, EachRequestThatTheDriverRefusesFailsAlone) {
    const struct {
        const char *fault;
        int scan, number, table;
        uint32_t status;
        strings warned;
    } rows[] = {
        {"ioctl:0x8b18", -1, 0, 0, 3, {}},
        {"ioctl:0x89fc.38", 0, 0, 0, NONE, {"wlan_getApScanResult_2: Site Survey not complete : -1"}},
        {"ioctl:0x89fc.39", 0, -1, -1, 3, {}},
        {"ioctl:0x89fc.40", 0, 0, -1, 3, {}},
        {"ioctl:0x89fc.41", 0, 0, 0, 3, {}},
        {"ioctl:0x89fc", 0, -1, -1, NONE, {"wlan_getApScanResult_2: Site Survey not complete : -1"}},
    };
    scan_among(HOUSE);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.fault);
        fault(std::string(row.fault) + " EPERM");
        log_mark = mark_of(SERVER_LOG_FILE);
        EXPECT_EQ(scan(1), code_reply(row.scan));
        EXPECT_EQ(status_reply(1), integer_reply(0, row.status));
        EXPECT_EQ(number_reply(1), integer_reply(row.number, row.number == 0 ? 6 : 0));
        bytes table = row.table == 0 ? table_of(strongest(HOUSE, 6)) : EMPTY_TABLE;
        EXPECT_TRUE(same_bytes(table_reply(1), image_reply(row.table, table)));
        EXPECT_EQ(warnings(), row.warned);
        fault(std::string(row.fault) + " off");
        expect_table(1, strongest(HOUSE, 6));
    }
}

// What a driver tells, what clients get for it, and how many networks the table has. Three are there.
const struct {
    const char *told;
    int number;
    size_t listed;  // asked for: the driver repeats what it has
    size_t reported;
} COUNTS[] = {
    {"0", 0, 0, 0},
    {"1", 1, 1, 1},
    {"31", 31, 31, 31},
    {"32", 32, 32, 32},
    {"33", 33, 33, 33},
    {"64", 64, 64, 64},
    {"65", 65, 65, 64},
    {"127", 127, 127, 64},
    {"128", 128, 128, 64},
    {"255", 255, 255, 64},
    {"256", 256, 256, 0},
    {"300", 300, 300, 44},
    {"4096", 4096, 4096, 0},
    {"4095", 4095, 4095, 64},
    {"4097", 4097, 0, 0},  // from here on the number is not believed
    {"4420", 4420, 0, 0},
    {"-1", -1, 0, 0},
    {"-2147483648", INT_MIN, 0, 0},
    {"2147483647", INT_MAX, 0, 0},
    {"4294967295", -1, 0, 0},
};

TEST_F(SiteSurvey, WhateverNumberTheDriverTellsTheTableIsWhatFollowsFromIt) {
    networks nearby(HOUSE.begin(), HOUSE.begin() + 3);
    scan_among(nearby);
    for (const auto &row : COUNTS) {
        SCOPED_TRACE(row.told);
        fault(std::string("scan_count ") + row.told);
        EXPECT_EQ(number_reply(1), integer_reply(0, static_cast<uint32_t>(row.number)));
        journal_mark = mark_of(JOURNAL_FILE);
        expect_table(1, strongest(repeated(nearby, row.listed), row.reported));
        EXPECT_EQ(requests().size(), row.listed > 0 ? 3u : 2u);
        EXPECT_EQ(status_reply(1), integer_reply(0, 3));
    }
    EXPECT_EQ(warnings(), strings{});
}

TEST_F(SiteSurvey, NetworksThatTheDriverTellsOfAndDoesNotHaveAreZeros) {
    scan_among({});
    for (auto [told, reported] : {std::pair{"1", 1}, {"65", 64}, {"300", 44}, {"4096", 0}}) {
        fault(std::string("scan_count ") + told);
        bytes table = EMPTY_TABLE;
        table[0] = static_cast<char>(reported);
        EXPECT_TRUE(same_bytes(table_reply(1), image_reply(0, table))) << told;
    }
}

TEST_F(SiteSurvey, AnyStateOfAScanIsToldAsItIs) {
    scan_among(HOUSE);
    strings warned;
    for (const char *state : {"0", "1", "2", "4", "255", "256", "2147483647"}) {
        fault(std::string("scan_status ") + state);
        EXPECT_EQ(status_reply(1), integer_reply(0, static_cast<uint32_t>(std::stoul(state))));
        expect_table(1, strongest(HOUSE, 6));
        warned.push_back(std::string("wlan_getApScanResult_2: Site Survey not complete : ") + state);
    }
    fault("scan_status 3");
    expect_table(1, strongest(HOUSE, 6));
    EXPECT_EQ(warnings(), warned);
}

TEST_F(SiteSurvey, TextsWithoutAnEndTravelAsTheyAre) {
    scan_among({HOUSE[0]});
    fault("texts unterminated");
    set_debug(true);
    bytes table = table_of({HOUSE[0]});
    const struct {
        size_t offset, size;
        std::string text;
    } fields[] = {{6, 32, "Cafe am Eck"}, {81, 6, "2GHz"}, {88, 15, "WPA2"}, {103, 8, "AES"}, {111, 8, "11ng"}};
    for (const auto &field : fields)
        put(&table, 4 + field.offset, field.text + std::string(field.size - field.text.size(), 'x'));
    EXPECT_TRUE(same_bytes(table_reply(1), image_reply(0, table)));
}

TEST_F(SiteSurvey, AScenarioThatMakesNoSenseFailsAndCanBeMended) {
    scan_among(HOUSE);
    set_items("nonsense\n");
    EXPECT_EQ(scan(1), code_reply(-1));
    EXPECT_EQ(status_reply(1), integer_reply(0, NONE));
    EXPECT_EQ(number_reply(1), integer_reply(-1, 0));
    EXPECT_TRUE(same_bytes(table_reply(1), image_reply(-1, EMPTY_TABLE)));
    scan_among(HOUSE);
    expect_table(1, strongest(HOUSE, 6));
}

// --- lines ---

TEST_F(SiteSurvey, TheEndOfAScanCallAndOfAStatusCallIsAlwaysToldOnce) {
    scan_among(HOUSE);
    for (int index : {1, 0, 9}) {
        log_mark = mark_of(SERVER_LOG_FILE);
        scan(index);
        EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark), strings{"end wlan_ap_scan_1_svc"}) << index;
        log_mark = mark_of(SERVER_LOG_FILE);
        status_reply(index);
        EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark), strings{"end wlan_get_ap_scan_status_1_svc"}) << index;
        log_mark = mark_of(SERVER_LOG_FILE);
        number_reply(index);
        EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark), strings{}) << index;
    }
}

TEST_F(SiteSurvey, ADebuggerIsToldWhatIsAskedAndAnswered) {
    scan_among(HOUSE);
    set_debug(true);
    log_mark = mark_of(SERVER_LOG_FILE);
    scan(1);
    status_reply(1);
    number_reply(1);
    EXPECT_EQ(lines_since(SERVER_LOG_FILE, log_mark),
              (strings{"[VLK-API] wlan_ap_scan_1_svc  WLAN RPC server : [index 1]",
                       "[VLK-API] wlan_ap_scan_1_svc  WLAN RPC server : return code :0", "end wlan_ap_scan_1_svc",
                       "[VLK-API] wlan_get_ap_scan_status_1_svc  WLAN RPC server : [index 1]",
                       "[VLK-API] wlan_get_ap_scan_status_1_svc  WLAN RPC server : [status 3]",
                       "end wlan_get_ap_scan_status_1_svc",
                       "[VLK-API] wlan_get_ap_scan_num_of_entries_1_svc  WLAN RPC server : [index 1]",
                       "[VLK-API] wlan_get_ap_scan_num_of_entries_1_svc  WLAN RPC server : [count 6]"}));
}

TEST_F(SiteSurvey, ADebuggerIsToldOfTheTableItsNumberAndItsBuffer) {
    scan_among(HOUSE);
    set_debug(true);
    log_mark = mark_of(SERVER_LOG_FILE);
    table_reply(1);
    strings lines = lines_since(SERVER_LOG_FILE, log_mark);
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[0], "[VLK-API] wlan_get_ap_scan_result_1_svc  WLAN RPC server : [index 1]");
    EXPECT_EQ(lines[1], "[VLK-API] wlan_getApScanResult_2 wlan_getApScanResult_2:10832 entry_num 6 ");
    unsigned address = 0;
    char end = 0;
    EXPECT_EQ(sscanf(lines[2].c_str(), "[VLK-API] wlan_getApScanResult_2 scan buffer is at 0x%8x%c", &address, &end),
              1);
    EXPECT_GT(address, 0u);
}

// --- a long life ---

// Each scan opens a socket.
TEST_F(SiteSurvey, TenThousandScansLeaveNothingOpen) {
    scan_among({});
    size_t before = open_files_of_child();
    ASSERT_TRUE(call_often(PROC_wlan_ap_scan, vap(1), 10'000));
    EXPECT_EQ(open_files_of_child(), before);
    // Refused ones, too.
    ASSERT_TRUE(call_often(PROC_wlan_ap_scan, vap(2), 1'000));
    EXPECT_EQ(open_files_of_child(), before);
}

TEST_F(SiteSurvey, HundredsOfQuestionsLeaveNothingOpen) {
    scan_among(HOUSE);
    status_reply(1);
    size_t before = open_files_of_child();
    for (uint32_t procedure :
         {PROC_wlan_get_ap_scan_status, PROC_wlan_get_ap_scan_num_of_entries, PROC_wlan_get_ap_scan_result}) {
        ASSERT_TRUE(call_often(procedure, vap(1), 200));
        EXPECT_EQ(open_files_of_child(), before) << procedure;
    }
}

}  // namespace
