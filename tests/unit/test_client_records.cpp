// Records decoded by their fields, whatever a server claims in them.
#include <gtest/gtest.h>
#include <string.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/render.h"
#include "client/results.h"
#include "server/records.h"
#include "tests/support/client_runs.h"

namespace {

using nlohmann::json;

// The record as programs get it. The image is an exactly sized copy, so that a sanitizer sees a read past its end.
template <typename record>
json decoded(const char *name, const record &image, size_t rows = 0) {
    const char *first = reinterpret_cast<const char *>(&image);
    std::vector<char> copy(first, first + sizeof image);
    value *object = new_object();
    add_record(object, find_record(name), copy.data(), rows);
    std::string text = written([&](FILE *out) { render_json(out, object); });
    free_value(object);
    return json::parse(text, nullptr, false);
}

template <typename record>
std::string shown(const char *name, const record &image, size_t rows = 0) {
    const text_options plain = {false, false};
    value *object = new_object();
    add_record(object, find_record(name), &image, rows);
    std::string text = written([&](FILE *out) { render_text(out, object, &plain); });
    free_value(object);
    return text;
}

template <size_t size>
void put(char (&field)[size], const std::string &text) {
    memcpy(field, text.data(), text.size());
}

wlan_device_t a_station() {
    wlan_device_t station = {};
    put(station.mac, "28:6a:ba:4c:10:01");
    put(station.ip, "192.168.0.20");
    put(station.capabilities, "QoS/HT");
    put(station.field_4, "four");
    station.connected_time = 1;
    station.state = 2;
    station.tx_packets = 3;
    station.tx_rate = 4;
    station.max_rate = 5;
    station.field_10 = -10;
    station.mc_tx_packets = 6;
    station.uc_tx_packets = UINT32_MAX;
    station.field_13 = UINT16_MAX;
    station.field_14 = 14;
    station.field_15 = 15;
    station.field_16 = 16;
    station.interface = UINT8_MAX;
    station.field_18 = INT32_MIN;
    station.reserved = 17;
    put(station.ssid, "home");
    return station;
}

const json A_STATION = {{"mac", "28:6a:ba:4c:10:01"},
                        {"ip", "192.168.0.20"},
                        {"capabilities", "QoS/HT"},
                        {"field_4", "four"},
                        {"connected_time", 1},
                        {"state", 2},
                        {"tx_packets", 3},
                        {"tx_rate", 4},
                        {"max_rate", 5},
                        {"field_10", -10},
                        {"mc_tx_packets", 6},
                        {"uc_tx_packets", 4294967295u},
                        {"field_13", 65535},
                        {"field_14", 14},
                        {"field_15", 15},
                        {"field_16", 16},
                        {"interface", 255},
                        {"field_18", INT32_MIN},
                        {"reserved", 17},
                        {"ssid", "home"}};

TEST(ClientRecords, StationHasAllItsFields) {
    EXPECT_EQ(decoded("wlan_device_t", a_station()), A_STATION);
}

TEST(ClientRecords, StationForPeopleHasTheFieldsWithAMeaning) {
    EXPECT_EQ(shown("wlan_device_t", a_station()),
              "mac             28:6a:ba:4c:10:01\n"
              "ip              192.168.0.20\n"
              "capabilities    QoS/HT\n"
              "connected_time  1\n"
              "state           2\n"
              "tx_packets      3\n"
              "tx_rate         4\n"
              "max_rate        5\n"
              "mc_tx_packets   6\n"
              "uc_tx_packets   4294967295\n"
              "ssid            home\n");
}

TEST(ClientRecords, TextWithoutNulEndsWithItsField) {
    wlan_device_t station = a_station();
    put(station.mac, "28:6a:ba:4c:10:01X");
    put(station.ssid, std::string(32, 's'));
    json fields = decoded("wlan_device_t", station);
    EXPECT_EQ(fields["mac"], "28:6a:ba:4c:10:01X");
    EXPECT_EQ(fields["ssid"], std::string(32, 's'));
    EXPECT_EQ(fields["ip"], "192.168.0.20");
}

TEST(ClientRecords, TextThatIsNoUtf8HasItsHexadecimalTwin) {
    scan_entry entry = {};
    put(entry.ssid, "a\xff");
    json fields = decoded("scan_entry", entry);
    EXPECT_EQ(fields["ssid"], "a\xef\xbf\xbd");
    EXPECT_EQ(fields["ssid_hex"], "61ff");
}

TEST(ClientRecords, NetworkHasAllItsFields) {
    scan_entry entry = {};
    const uint8_t bssid[6] = {0x9c, 0x3d, 0xcf, 0x01, 0x02, 0xff};
    memcpy(entry.bssid, bssid, sizeof bssid);
    put(entry.ssid, "Number 12");
    memset(entry.scan_octets_1, 0x0c, sizeof entry.scan_octets_1);
    entry.scan_byte_1 = 12;
    entry.scan_octets_2[11] = 0xff;
    entry.scan_byte_2 = 2;
    entry.scan_octets_3[0] = 0x64;
    entry.scan_flag = 1;
    entry.scan_byte_3 = 3;
    put(entry.scan_text_1, "2GHz");
    entry.rssi = -71;
    put(entry.auth_mode, "WPA2");
    put(entry.scan_text_2, "AES");
    put(entry.wireless_mode, "11ng");
    entry.scan_value = -1;
    entry.scan_byte_4 = 4;
    const json expected = {{"bssid", "9c:3d:cf:01:02:ff"},
                           {"ssid", "Number 12"},
                           {"scan_octets_1", "0c0c0c0c0c0c0c0c0c0c0c0c"},
                           {"scan_byte_1", 12},
                           {"scan_octets_2", "0000000000000000000000ff"},
                           {"scan_byte_2", 2},
                           {"scan_octets_3", "640000000000000000000000000000"},
                           {"scan_flag", 1},
                           {"scan_byte_3", 3},
                           {"scan_text_1", "2GHz"},
                           {"rssi", -71},
                           {"auth_mode", "WPA2"},
                           {"scan_text_2", "AES"},
                           {"wireless_mode", "11ng"},
                           {"scan_value", -1},
                           {"scan_byte_4", 4}};
    EXPECT_EQ(decoded("scan_entry", entry), expected);
    EXPECT_EQ(shown("scan_entry", entry),
              "bssid          9c:3d:cf:01:02:ff\nssid           Number 12\nrssi           -71\nauth_mode      WPA2\n"
              "wireless_mode  11ng\n");
}

TEST(ClientRecords, SignedBytesReachFromTheLeastToTheMost) {
    scan_entry entry = {};
    for (int rssi : {-128, -1, 0, 1, 127}) {
        entry.rssi = static_cast<int8_t>(rssi);
        EXPECT_EQ(decoded("scan_entry", entry)["rssi"], rssi);
    }
}

TEST(ClientRecords, TableOfNetworksHasAsManyAsItsCountSaysButNoMoreThanFit) {
    static scan_table table;
    for (size_t i = 0; i < SCAN_ENTRIES_MAX; i++)
        table.entries[i].rssi = static_cast<int8_t>(i);
    for (auto [count, entries] : {std::pair{0, 0}, {1, 1}, {63, 63}, {64, 64}, {65, 64}, {255, 64}}) {
        table.num_entries = static_cast<uint8_t>(count);
        json fields = decoded("scan_table", table);
        EXPECT_EQ(fields["num_entries"], count);
        ASSERT_EQ(fields["entries"].size(), static_cast<size_t>(entries)) << count;
        for (int i = 0; i < entries; i++)
            EXPECT_EQ(fields["entries"][static_cast<size_t>(i)]["rssi"], i);
    }
}

TEST(ClientRecords, TableOfStationsHasNoMoreThanFit) {
    static wlan_assoc_devices_table table;
    table.Devices[0] = table.Devices[ASSOC_DEVICES_MAX - 1] = a_station();
    for (auto [count, entries] : {std::pair{0u, 0u}, {1u, 1u}, {32u, 32u}, {33u, 32u}, {UINT32_MAX, 32u}}) {
        table.NumOfEntries = count;
        json fields = decoded("wlan_assoc_devices_table", table);
        EXPECT_EQ(fields["NumOfEntries"], count);
        ASSERT_EQ(fields["Devices"].size(), entries);
        if (entries > 0) {
            EXPECT_EQ(fields["Devices"][0], A_STATION);
        }
        if (entries == 32) {
            EXPECT_EQ(fields["Devices"][31], A_STATION);
        }
    }
}

TEST(ClientRecords, SoftBlockListHasNoMoreThanFitAndNoneForANegativeCount) {
    wlan_sb_station_list_t list = {};
    list.oldest = -3;
    list.entries[0].mac[0] = -1;
    list.entries[0].timestamp = INT32_MIN;
    for (auto [count, entries] :
         {std::pair{0, 0u}, {1, 1u}, {64, 64u}, {65, 64u}, {INT32_MAX, 64u}, {-1, 0u}, {INT32_MIN, 0u}}) {
        list.total = count;
        json fields = decoded("wlan_sb_station_list_t", list);
        EXPECT_EQ(fields["total"], count);
        EXPECT_EQ(fields["oldest"], -3);
        ASSERT_EQ(fields["entries"].size(), entries);
        if (entries > 0) {
            EXPECT_EQ(fields["entries"][0], (json{{"mac", "ff:00:00:00:00:00"}, {"timestamp", INT32_MIN}}));
        }
    }
}

TEST(ClientRecords, AirtimeListHasAllFieldsOfItsStations) {
    wlan_airtime_sta_list_t list = {};
    list.count = 65;
    list.stations[63] = {64, "28:6a:ba:4c:10:01", {}, UINT32_MAX, 10};
    json fields = decoded("wlan_airtime_sta_list_t", list);
    EXPECT_EQ(fields["count"], 65);
    ASSERT_EQ(fields["stations"].size(), AIRTIME_STAS_MAX);
    EXPECT_EQ(fields["stations"][63],
              (json{{"index", 64}, {"mac", "28:6a:ba:4c:10:01"}, {"weight", UINT32_MAX}, {"period", 10}}));
    list.count = -1;
    EXPECT_EQ(decoded("wlan_airtime_sta_list_t", list)["stations"].size(), 0u);
}

TEST(ClientRecords, AirtimeTableHasNumbersOf64BitsWithoutAlignment) {
    static wlan_atf_station_table_t table;
    table.count = UINT32_MAX;
    wlan_atf_station_t &station = table.stations[1];
    station.index = 2;
    put(station.mac, "28:6a:ba:4c:10:01");
    put(station.name, std::string(32, 'n'));
    station.share = 70;
    station.configured = 80;
    station.short_average = UINT32_MAX;
    station.total = UINT64_MAX;
    json fields = decoded("wlan_atf_station_table_t", table);
    ASSERT_EQ(fields["stations"].size(), ATF_STATIONS_MAX);
    EXPECT_EQ(fields["stations"][1], (json{{"index", 2},
                                           {"mac", "28:6a:ba:4c:10:01"},
                                           {"name", std::string(32, 'n')},
                                           {"share", 70},
                                           {"configured", 80},
                                           {"short_average", UINT32_MAX},
                                           {"total", UINT64_MAX}}));
}

TEST(ClientRecords, CountersHaveAllTheirWords) {
    const wlan_basicStats_t basic = {1, 2, 3, 4, UINT32_MAX};
    EXPECT_EQ(
        decoded("wlan_basicStats_t", basic),
        (json{{"tx_bytes", 1}, {"rx_bytes", 2}, {"tx_packets", 3}, {"rx_packets", 4}, {"assoc_count", UINT32_MAX}}));
    const wlan_stats_t stats = {1, 2, 3, {4, 5, 6}, 7, {8, 9, 10, 11}};
    EXPECT_EQ(decoded("wlan_stats_t", stats), (json{{"word_0", 1},
                                                    {"rx_errors", 2},
                                                    {"tx_unicast", 3},
                                                    {"words_3_to_5", {4, 5, 6}},
                                                    {"tx_multicast", 7},
                                                    {"words_7_to_10", {8, 9, 10, 11}}}));
}

TEST(ClientRecords, OctetsAreWholeForProgramsAndWithoutTheZerosAtTheirEndForPeople) {
    wlan_5g_capable_table_t table = {};
    table.count = 1;
    table.entries[0] = 0xab;
    table.entries[2] = 0x01;
    json fields = decoded("wlan_5g_capable_table_t", table);
    EXPECT_EQ(fields["count"], 1);
    EXPECT_EQ(fields["entries"], "ab0001" + std::string(2 * (sizeof table.entries - 3), '0'));
    EXPECT_EQ(shown("wlan_5g_capable_table_t", table), "ab0001\n");
}

TEST(ClientRecords, RowsOfBytesAreAsManyAsTheCallerKnowsButNoMoreThanThereAre) {
    wlan_2g_temp_blacklist_table_t table = {};
    table.entries[0][0] = 0x3c;
    table.entries[63][31] = 0xff;
    for (auto [rows, entries] : {std::pair{size_t{0}, 0u}, {1, 1u}, {64, 64u}, {65, 64u}, {SIZE_MAX, 64u}}) {
        json fields = decoded("wlan_2g_temp_blacklist_table_t", table, rows);
        ASSERT_EQ(fields["entries"].size(), entries);
        if (entries > 0) {
            EXPECT_EQ(fields["entries"][0], "3c" + std::string(62, '0'));
        }
        if (entries == 64) {
            EXPECT_EQ(fields["entries"][63], std::string(62, '0') + "ff");
        }
    }
}

TEST(ClientRecords, EveryRecordOfTheTableIsDecodedHere) {
    EXPECT_EQ(record_row_count, 14u) << "a new record wants a test above";
}

// The counted image: its count comes beside it.

TEST(ClientRecords, CountBesideAnImageMayLieToo) {
    const procedure_row *row = row_named("wlan_get_bs_bss_2g_temp_blacklist_table");
    std::vector<char> image(sizeof(wlan_2g_temp_blacklist_table_t), 1);
    for (auto [count, entries] : {std::pair{0u, 0u}, {2u, 2u}, {255u, 64u}, {0x7fffffffu, 64u}, {0xffffffffu, 0u}}) {
        u_int words[] = {count, 0, 0, 0};
        wlan_config_result_data_t result = {};
        result.return_values = {4, words};
        result.return_data = {static_cast<u_int>(image.size()), image.data()};
        char problem[PROBLEM_SIZE];
        ASSERT_TRUE(check_result(row, &result, problem)) << problem;
        value *object = result_value(row, &result);
        json fields = json::parse(written([&](FILE *out) { render_json(out, object); }), nullptr, false);
        EXPECT_EQ(fields["count"], static_cast<int32_t>(count));
        EXPECT_EQ(fields["table"]["entries"].size(), entries) << count;
        free_value(object);
    }
}

}  // namespace
