// The records that travel as memory images inside a result, and the limits of a result.
//
// Their bytes are part of the wire contract: fixed-width members, host byte order, every size and offset asserted
// here, so that 32-bit and 64-bit builds send the same bytes. A record is zeroed before it is filled; what nobody
// fills, padding included, stays zero.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The most that return_data carries; the XDR routine refuses more.
constexpr uint32_t RESULT_DATA_SIZE = 8256;

// The stored MAC list and its NUL: the only setting longer than an ordinary store line.
constexpr size_t MAC_LIST_SIZE = 3200;

#define ASSERT_OFFSET(type, member, offset) static_assert(offsetof(type, member) == offset)

struct wlan_basicStats_t {
    uint32_t tx_bytes;
    uint32_t rx_bytes;
    uint32_t tx_packets;
    uint32_t rx_packets;
    uint32_t assoc_count;  // associated stations
};
static_assert(sizeof(wlan_basicStats_t) == 20);
ASSERT_OFFSET(wlan_basicStats_t, tx_bytes, 0);
ASSERT_OFFSET(wlan_basicStats_t, rx_bytes, 4);
ASSERT_OFFSET(wlan_basicStats_t, tx_packets, 8);
ASSERT_OFFSET(wlan_basicStats_t, rx_packets, 12);
ASSERT_OFFSET(wlan_basicStats_t, assoc_count, 16);

struct wlan_stats_t {
    uint32_t word_0;
    uint32_t rx_errors;
    uint32_t tx_unicast;
    uint32_t words_3_to_5[3];
    uint32_t tx_multicast;  // multicast and broadcast
    uint32_t words_7_to_10[4];
};
static_assert(sizeof(wlan_stats_t) == 44);
ASSERT_OFFSET(wlan_stats_t, word_0, 0);
ASSERT_OFFSET(wlan_stats_t, rx_errors, 4);
ASSERT_OFFSET(wlan_stats_t, tx_unicast, 8);
ASSERT_OFFSET(wlan_stats_t, words_3_to_5, 12);
ASSERT_OFFSET(wlan_stats_t, tx_multicast, 24);
ASSERT_OFFSET(wlan_stats_t, words_7_to_10, 28);

// One associated station, as the driver fills it. The named fields are called as the server's own listing calls them;
// what the numbered ones mean is the driver's. It delivers tx_packets and tx_rate the other way round.
struct wlan_device_t {
    char mac[18];  // six colon-separated hexadecimal pairs and the NUL
    char ip[64];
    char capabilities[45];
    char field_4[17];
    uint32_t connected_time;
    uint32_t state;
    uint32_t tx_packets;
    uint32_t tx_rate;
    uint32_t max_rate;
    int32_t field_10;
    uint32_t mc_tx_packets;
    uint32_t uc_tx_packets;
    uint16_t field_13;
    uint8_t padding_13[2];
    uint32_t field_14;
    uint32_t field_15;
    uint32_t field_16;
    uint8_t interface;  // VAP index - 1
    uint8_t padding_17[3];
    int32_t field_18;
    uint32_t reserved;  // not part of the XDR form
    char ssid[32];
};
static_assert(sizeof(wlan_device_t) == 236);
ASSERT_OFFSET(wlan_device_t, mac, 0);
ASSERT_OFFSET(wlan_device_t, ip, 18);
ASSERT_OFFSET(wlan_device_t, capabilities, 82);
ASSERT_OFFSET(wlan_device_t, field_4, 127);
ASSERT_OFFSET(wlan_device_t, connected_time, 144);
ASSERT_OFFSET(wlan_device_t, state, 148);
ASSERT_OFFSET(wlan_device_t, tx_packets, 152);
ASSERT_OFFSET(wlan_device_t, tx_rate, 156);
ASSERT_OFFSET(wlan_device_t, max_rate, 160);
ASSERT_OFFSET(wlan_device_t, field_10, 164);
ASSERT_OFFSET(wlan_device_t, mc_tx_packets, 168);
ASSERT_OFFSET(wlan_device_t, uc_tx_packets, 172);
ASSERT_OFFSET(wlan_device_t, field_13, 176);
ASSERT_OFFSET(wlan_device_t, padding_13, 178);
ASSERT_OFFSET(wlan_device_t, field_14, 180);
ASSERT_OFFSET(wlan_device_t, field_15, 184);
ASSERT_OFFSET(wlan_device_t, field_16, 188);
ASSERT_OFFSET(wlan_device_t, interface, 192);
ASSERT_OFFSET(wlan_device_t, padding_17, 193);
ASSERT_OFFSET(wlan_device_t, field_18, 196);
ASSERT_OFFSET(wlan_device_t, reserved, 200);
ASSERT_OFFSET(wlan_device_t, ssid, 204);

// As many stations as one reply reports.
constexpr size_t ASSOC_DEVICES_MAX = 32;

struct wlan_assoc_devices_table {
    uint32_t NumOfEntries;  // four bytes on every build
    wlan_device_t Devices[ASSOC_DEVICES_MAX];
};
static_assert(sizeof(wlan_assoc_devices_table) == 7556);
ASSERT_OFFSET(wlan_assoc_devices_table, NumOfEntries, 0);
ASSERT_OFFSET(wlan_assoc_devices_table, Devices, 4);

// One neighbouring access point, as the driver fills it.
struct scan_entry {
    uint8_t bssid[6];
    char ssid[32];
    uint8_t scan_octets_1[12];
    uint8_t scan_byte_1;
    uint8_t scan_octets_2[12];
    uint8_t scan_byte_2;
    uint8_t scan_octets_3[15];
    uint8_t scan_flag;  // 0 or 1
    uint8_t scan_byte_3;
    char scan_text_1[6];
    int8_t rssi;  // dBm-like
    char auth_mode[15];
    char scan_text_2[8];
    char wireless_mode[8];
    uint8_t padding_1;
    int32_t scan_value;
    uint8_t scan_byte_4;
    uint8_t padding_2[3];
};
static_assert(sizeof(scan_entry) == 128);
ASSERT_OFFSET(scan_entry, bssid, 0);
ASSERT_OFFSET(scan_entry, ssid, 6);
ASSERT_OFFSET(scan_entry, scan_octets_1, 38);
ASSERT_OFFSET(scan_entry, scan_byte_1, 50);
ASSERT_OFFSET(scan_entry, scan_octets_2, 51);
ASSERT_OFFSET(scan_entry, scan_byte_2, 63);
ASSERT_OFFSET(scan_entry, scan_octets_3, 64);
ASSERT_OFFSET(scan_entry, scan_flag, 79);
ASSERT_OFFSET(scan_entry, scan_byte_3, 80);
ASSERT_OFFSET(scan_entry, scan_text_1, 81);
ASSERT_OFFSET(scan_entry, rssi, 87);
ASSERT_OFFSET(scan_entry, auth_mode, 88);
ASSERT_OFFSET(scan_entry, scan_text_2, 103);
ASSERT_OFFSET(scan_entry, wireless_mode, 111);
ASSERT_OFFSET(scan_entry, padding_1, 119);
ASSERT_OFFSET(scan_entry, scan_value, 120);
ASSERT_OFFSET(scan_entry, scan_byte_4, 124);
ASSERT_OFFSET(scan_entry, padding_2, 125);

// As many networks as one reply reports.
constexpr size_t SCAN_ENTRIES_MAX = 64;

struct scan_table {
    uint8_t num_entries;
    uint8_t padding[3];
    scan_entry entries[SCAN_ENTRIES_MAX];
};
static_assert(sizeof(scan_table) == 8196);
ASSERT_OFFSET(scan_table, num_entries, 0);
ASSERT_OFFSET(scan_table, padding, 1);
ASSERT_OFFSET(scan_table, entries, 4);

// One station on the soft-block list, as the daemon keeps it.
struct wlan_sb_station_t {
    signed char mac[6];
    uint8_t padding[2];
    int32_t timestamp;
};
static_assert(sizeof(wlan_sb_station_t) == 12);
ASSERT_OFFSET(wlan_sb_station_t, mac, 0);
ASSERT_OFFSET(wlan_sb_station_t, padding, 6);
ASSERT_OFFSET(wlan_sb_station_t, timestamp, 8);

constexpr size_t SB_STATIONS_MAX = 64;

struct wlan_sb_station_list_t {
    int32_t total;   // number of valid entries
    int32_t oldest;  // index of the oldest entry
    wlan_sb_station_t entries[SB_STATIONS_MAX];
};
static_assert(sizeof(wlan_sb_station_list_t) == 776);
ASSERT_OFFSET(wlan_sb_station_list_t, total, 0);
ASSERT_OFFSET(wlan_sb_station_list_t, oldest, 4);
ASSERT_OFFSET(wlan_sb_station_list_t, entries, 8);

// The stations of one BSS that can use 5 GHz: a slot of the driver's table file. The entries are the driver's.
struct wlan_5g_capable_table_t {
    uint32_t count;
    uint8_t entries[1532];
};
static_assert(sizeof(wlan_5g_capable_table_t) == 1536);
ASSERT_OFFSET(wlan_5g_capable_table_t, count, 0);
ASSERT_OFFSET(wlan_5g_capable_table_t, entries, 4);

// The 2.4 GHz temporary black list of one BSS: at most 64 entries of 32 bytes, the driver's own.
struct wlan_2g_temp_blacklist_table_t {
    uint8_t entries[64][32];
};
static_assert(sizeof(wlan_2g_temp_blacklist_table_t) == 2048);
ASSERT_OFFSET(wlan_2g_temp_blacklist_table_t, entries, 0);

// One station with an airtime weight.
struct wlan_airtime_sta_t {
    uint32_t index;  // 1-based
    char mac[18];
    uint8_t padding[2];
    uint32_t weight;
    uint32_t period;
};
static_assert(sizeof(wlan_airtime_sta_t) == 32);
ASSERT_OFFSET(wlan_airtime_sta_t, index, 0);
ASSERT_OFFSET(wlan_airtime_sta_t, mac, 4);
ASSERT_OFFSET(wlan_airtime_sta_t, padding, 22);
ASSERT_OFFSET(wlan_airtime_sta_t, weight, 24);
ASSERT_OFFSET(wlan_airtime_sta_t, period, 28);

constexpr size_t AIRTIME_STAS_MAX = 64;

struct wlan_airtime_sta_list_t {
    int32_t count;
    wlan_airtime_sta_t stations[AIRTIME_STAS_MAX];
};
static_assert(sizeof(wlan_airtime_sta_list_t) == 2052);
ASSERT_OFFSET(wlan_airtime_sta_list_t, count, 0);
ASSERT_OFFSET(wlan_airtime_sta_list_t, stations, 4);

// One connected station with its configured and its used airtime. Packed: the records follow each other without
// alignment.
struct __attribute__((packed)) wlan_atf_station_t {
    uint32_t index;  // 1-based
    char mac[18];
    char name[32];           // SSID or group
    uint32_t share;          // percent
    uint32_t configured;     // percent, of the SSID or group
    uint32_t short_average;  // airtime
    uint64_t total;          // airtime
};
static_assert(sizeof(wlan_atf_station_t) == 74);
ASSERT_OFFSET(wlan_atf_station_t, index, 0);
ASSERT_OFFSET(wlan_atf_station_t, mac, 4);
ASSERT_OFFSET(wlan_atf_station_t, name, 22);
ASSERT_OFFSET(wlan_atf_station_t, share, 54);
ASSERT_OFFSET(wlan_atf_station_t, configured, 58);
ASSERT_OFFSET(wlan_atf_station_t, short_average, 62);
ASSERT_OFFSET(wlan_atf_station_t, total, 66);

constexpr size_t ATF_STATIONS_MAX = 64;

struct __attribute__((packed)) wlan_atf_station_table_t {
    uint32_t count;
    wlan_atf_station_t stations[ATF_STATIONS_MAX];
};
static_assert(sizeof(wlan_atf_station_table_t) == 4740);
ASSERT_OFFSET(wlan_atf_station_table_t, count, 0);
ASSERT_OFFSET(wlan_atf_station_table_t, stations, 4);

#undef ASSERT_OFFSET
