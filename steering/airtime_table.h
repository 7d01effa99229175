// Airtime fairness as the driver tells it: the table of an interface, the counters of a station, and the list of
// connected stations that is made of both.
//
// Touches the driver (its own request and that for the SSID) and runs `wlanconfig`. Service thread.
//
// Every operation returns 0 or -1. Interfaces and MACs are texts, MACs with lower-case letters and colons, which is how
// `wlanconfig` prints them.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "config/wireless.h"
#include "params/vap.h"
#include "server/records.h"

// --- what the driver fills, in host byte order ---

// One row of the table: an SSID, a group of SSIDs, or a station of the SSID or group before it.
struct atf_info {
    char ssid[33];
    uint8_t sta_mac[6];
    uint8_t padding_39;
    uint32_t value;     // share in tenths of a percent
    uint8_t info_mark;  // 0: SSID or group, else: station
    uint8_t active;     // 1: the station is connected
    uint8_t padding_46[2];
    uint32_t cfg_value;  // configured share in tenths of a percent
    char grpname[36];
};
static_assert(sizeof(atf_info) == 88);
static_assert(offsetof(atf_info, ssid) == 0);
static_assert(offsetof(atf_info, sta_mac) == 33);
static_assert(offsetof(atf_info, value) == 40);
static_assert(offsetof(atf_info, info_mark) == 44);
static_assert(offsetof(atf_info, active) == 45);
static_assert(offsetof(atf_info, cfg_value) == 48);
static_assert(offsetof(atf_info, grpname) == 52);

// As many rows as the driver's table has room for.
constexpr uint16_t ATF_INFOS_MAX = 66;

struct atf_table {
    uint16_t request;
    uint8_t padding_2[2];
    atf_info infos[ATF_INFOS_MAX];
    uint16_t info_cnt;   // rows that are filled
    uint8_t atf_status;  // not 0: airtime fairness is at work
    uint8_t padding_5815[5];
    uint32_t show_group;  // not 0: rows are named by group
};
static_assert(sizeof(atf_table) == 5824);
static_assert(offsetof(atf_table, request) == 0);
static_assert(offsetof(atf_table, infos) == 4);
static_assert(offsetof(atf_table, info_cnt) == 5812);
static_assert(offsetof(atf_table, atf_status) == 5814);
static_assert(offsetof(atf_table, show_group) == 5820);

// The counters of a station. Packed, or some machines would align the 64-bit number's record to 40 bytes.
struct __attribute__((packed, aligned(4))) sta_atm_stats {
    uint32_t code;
    uint8_t sta_mac[6];
    uint8_t padding_10[2];
    uint32_t short_average;  // airtime
    uint64_t total_airtime;
    uint32_t total;  // tokens, as are the following
    uint32_t act_tokens;
    uint32_t unused;
};
static_assert(sizeof(sta_atm_stats) == 36);
static_assert(offsetof(sta_atm_stats, code) == 0);
static_assert(offsetof(sta_atm_stats, sta_mac) == 4);
static_assert(offsetof(sta_atm_stats, short_average) == 12);
static_assert(offsetof(sta_atm_stats, total_airtime) == 16);
static_assert(offsetof(sta_atm_stats, total) == 24);
static_assert(offsetof(sta_atm_stats, act_tokens) == 28);
static_assert(offsetof(sta_atm_stats, unused) == 32);

// --- the table of an interface ---

// Reads the table of an interface and the SSID that it uses, terminated. What comes back can be trusted: there are no
// more rows than the table has room for, and their names are terminated. On failure, which is a line to standard error,
// or two when the driver refuses the table, neither output may be used.
int getWlanStftableInfo(const char *interface, atf_table *table, char ssid[ESSID_SIZE]);

// Whether a row counts: only rows with a name do, and in a table of groups, where they all have one.
bool is_named_row(const atf_table *table, const atf_info *info);

bool is_station_row(const atf_info *info);

// The MAC of a station row as text.
void put_station_mac(const atf_info *info, char mac[MAC_TEXT_SIZE]);

// --- the counters of a station ---

// From `wlanconfig`. Both outputs are 0 on failure, and where it prints no number. The total has 32 bits.
int wlan_get_sta_atm_stats(const char *interface, const char *mac, uint32_t *short_average, uint64_t *total);

// From the driver of a VAP, any int. On failure, which is a line to standard error, the output stays as it was.
int wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(int index, const char *mac, uint32_t *short_average);
int wlan_getAdvAirtimeStatsCl_AirtimeTotal(int index, const char *mac, uint64_t *total);
int wlan_getAdvAirtimeStatsCl_AirtimeStat(int index, const char *mac, sta_atm_stats *stats);

// --- the connected stations of a radio ---

// Index 1 to 8 is the 2.4 GHz radio, every higher one the 5 GHz radio, any other gives -1. -1 also when the driver's
// table cannot be read. On failure the output stays as it was.
int wlan_getAdvAirtimeStatsCl_AtfTable(int index, wlan_atf_station_table_t *reply);
