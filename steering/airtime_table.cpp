// Airtime fairness as the driver tells it: the table of an interface, the counters of a station, and the list of
// connected stations that is made of both.
//
// Touches the driver (its own request and that for the SSID) and runs `wlanconfig`. Runs on the service thread.
#include "steering/airtime_table.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "config/text.h"
#include "params/vap.h"
#include "steering/airtime.h"

// How the driver tells the request for its table.
constexpr uint16_t ATF_TABLE_REQUEST = 0xFF05;

constexpr uint32_t IEEE80211_PARAM_STA_ATM_STATS = 64;

// Room for a MAC is room for one without colons.
constexpr size_t BARE_MAC_SIZE = MAC_TEXT_SIZE;

// As much of an SSID or group name as a record takes, though it has room for more: clients have always got so much.
constexpr size_t RECORD_NAME_LENGTH = 17;

// The name under which the driver lists stations that have no share of their own.
constexpr const char OTHER_STATIONS[] = "Others";

// --- the table of an interface ---

// Reads the SSID of an interface, with zeros behind it. Returns -1 after a line in the caller's name, which names the
// table's reader whoever the caller is: do not mend it, nor its spelling; logs are searched for it as it stands.
static int read_essid(const char *caller, const char *interface, char (&essid)[ESSID_SIZE]) {
    memset(essid, 0, sizeof(essid));
    int length = wlan_get_essid(interface, essid);
    if (length < 0 || length > static_cast<int>(ESSID_SIZE - 1)) {
        log_error("[VLK-API] Error %s getWlanStftableInfo: %s ssid_length invaild \n", caller, interface);
        return -1;
    }
    memset(essid + length, 0, ESSID_SIZE - static_cast<size_t>(length));
    return 0;
}

// The driver may count more rows than there are and leave names without NUL.
static void bound_table(atf_table *table) {
    if (table->info_cnt > ATF_INFOS_MAX) {
        table->info_cnt = ATF_INFOS_MAX;
    }
    for (atf_info &info : table->infos) {
        info.ssid[sizeof(info.ssid) - 1] = '\0';
        info.grpname[sizeof(info.grpname) - 1] = '\0';
    }
}

int getWlanStftableInfo(const char *interface, atf_table *table, char ssid[ESSID_SIZE]) {
    char essid[ESSID_SIZE];
    if (read_essid(__func__, interface, essid) != 0) {
        return -1;
    }
    memcpy(ssid, essid, sizeof(essid));
    memset(table, 0, sizeof(*table));
    table->request = ATF_TABLE_REQUEST;
    if (wlan_ioctl(interface, IOCTL_DRIVER, table, sizeof(*table)) != 0) {
        log_error("[VLK-API] Error %s getWlanStftableInfo: ioctl error\n", __func__);
        return -1;
    }
    bound_table(table);
    return 0;
}

bool is_named_row(const atf_table *table, const atf_info *info) {
    return info->ssid[0] != '\0' || table->show_group != 0;
}

bool is_station_row(const atf_info *info) {
    return info->info_mark != 0;
}

void put_station_mac(const atf_info *info, char mac[MAC_TEXT_SIZE]) {
    const uint8_t *byte = info->sta_mac;
    snprintf(mac, MAC_TEXT_SIZE, "%02x:%02x:%02x:%02x:%02x:%02x", byte[0], byte[1], byte[2], byte[3], byte[4], byte[5]);
}

// --- the counters of a station, from the command line ---

// Reads the number behind something else, one character at least, and returns what follows the number; null, with
// nothing read, when there is none. As the tool prints 64-bit numbers, the low half of one is what counts.
static const char *read_number_behind(const char *text, uint32_t *number) {
    size_t other = strcspn(text, "0123456789");
    if (other == 0 || text[other] == '\0') {
        return nullptr;
    }
    char *rest;
    *number = static_cast<uint32_t>(strtoll(text + other, &rest, 10));
    return rest;
}

// What scanning for "%*[^0123456789]%d, %*[^0123456789]%d" gives, for numbers of any length too: the second number is
// read only where a comma stands directly behind the first.
static void scan_counters(const char *text, uint32_t *short_average, uint64_t *total) {
    const char *rest = read_number_behind(text, short_average);
    if (!rest || *rest != ',') {
        return;
    }
    rest++;
    rest += strspn(rest, " \t\n\v\f\r");
    uint32_t low = 0;
    read_number_behind(rest, &low);
    *total = low;
}

int wlan_get_sta_atm_stats(const char *interface, const char *mac, uint32_t *short_average, uint64_t *total) {
    *short_average = 0;
    *total = 0;
    char bare[BARE_MAC_SIZE];
    char *output;
    remove_colon(mac, bare, sizeof(bare));
    if (athcfg_executecmdf(__func__, &output, "wlanconfig %s atfstat %s 2>&1", interface, bare) != 0) {
        free(output);
        return -1;
    }
    if (output) {
        scan_counters(output, short_average, total);
    }
    free(output);
    log_debug("[VLK-API] %s %s:interface:%s client:%s got shortavg: %d airtimeTotal %llu\n", __func__, __func__,
              interface, mac, static_cast<int>(*short_average), static_cast<unsigned long long>(*total));
    return 0;
}

// --- the counters of a station, from the driver ---

// Each pair of digits from its own place in the text; what the text does not reach is 0.
static void parse_mac(const char *text, uint8_t (&mac)[6]) {
    size_t length = strlen(text);
    for (size_t k = 0; k < sizeof(mac); k++) {
        mac[k] = 3 * k < length ? static_cast<uint8_t>(strtoul(text + 3 * k, nullptr, 16)) : 0;
    }
}

static int read_counters(const char *caller, int index, const char *mac, sta_atm_stats *stats) {
    *stats = {};
    stats->code = IEEE80211_PARAM_STA_ATM_STATS;
    parse_mac(mac, stats->sta_mac);
    char interface[INTERFACE_NAME_SIZE];
    interface_name(index, interface);
    if (wlan_shared_request(interface, IOCTL_DRIVER, stats, sizeof(*stats)) < 0) {
        log_error("[VLK-API] Error %s !!!failed: IEEE80211_PARAM_STA_ATM_STATS from %s\n", caller, interface);
        return -1;
    }
    return 0;
}

int wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(int index, const char *mac, uint32_t *short_average) {
    sta_atm_stats stats;
    if (read_counters(__func__, index, mac, &stats) != 0) {
        return -1;
    }
    *short_average = stats.short_average;
    return 0;
}

int wlan_getAdvAirtimeStatsCl_AirtimeTotal(int index, const char *mac, uint64_t *total) {
    sta_atm_stats stats;
    if (read_counters(__func__, index, mac, &stats) != 0) {
        return -1;
    }
    *total = stats.total_airtime;
    log_debug("[VLK-API] %s %s: got airtimeTotal %llu\n", __func__, __func__, static_cast<unsigned long long>(*total));
    return 0;
}

int wlan_getAdvAirtimeStatsCl_AirtimeStat(int index, const char *mac, sta_atm_stats *stats) {
    sta_atm_stats answer;
    if (read_counters(__func__, index, mac, &answer) != 0) {
        return -1;
    }
    *stats = answer;
    // No error, and printed all the same: whoever watches the tokens finds them among the errors. Do not mend it.
    log_error("[VLK-API] Error %s act_tokens %d unused %d total %d\n", __func__, static_cast<int>(answer.act_tokens),
              static_cast<int>(answer.unused), static_cast<int>(answer.total));
    return 0;
}

// --- the connected stations of a radio ---

// What the rows read so far say of a station row. The name belongs to the table.
struct table_position {
    const char *name;         // of the last SSID or group, empty before it
    uint32_t configured;      // its share in percent
    char mac[MAC_TEXT_SIZE];  // of the last station, empty before it
    uint32_t share;           // its share in percent
};

static void take_row(const atf_table *table, const atf_info *info, table_position *position) {
    if (!is_named_row(table, info)) {
        return;
    }
    if (is_station_row(info)) {
        put_station_mac(info, position->mac);
        position->share = info->value / 10;
    } else {
        position->name = table->show_group ? info->grpname : info->ssid;
        position->configured = info->cfg_value / 10;
    }
}

static bool is_connected(const atf_info *info) {
    return info->active == 1;
}

static void log_row(const char *caller, const atf_info *info, const table_position *position) {
    log_debug(
        "[VLK-API] %s info_mark:%d SSID: %s  MAC:%s  quotient_val:%d remainder_val:%d quotient_cfg:%d remainder_cfg:%d "
        "active:%s\n",
        caller, info->info_mark, position->name, position->mac, static_cast<int>(info->value / 10),
        static_cast<int>(info->value % 10), static_cast<int>(info->cfg_value / 10),
        static_cast<int>(info->cfg_value % 10), is_connected(info) ? "connected" : "idle");
}

// Whether an interface serves a station. The list is searched as one text.
static bool serves_station(const char *caller, const char *interface, const char *mac) {
    char *list;
    athcfg_executecmdf(caller, &list, "wlanconfig %s list", interface);
    bool found = list && strstr(list, mac);
    free(list);
    return found;
}

// The SSID that replaces the name; none when it cannot be read. One of 32 characters fills the field: there is no NUL
// then, and clients that read it as text bound it.
static void put_ssid_as_name(const char *caller, const char *interface, wlan_atf_station_t *record) {
    memset(record->name, 0, sizeof(record->name));
    char essid[ESSID_SIZE];
    static_assert(sizeof(record->name) == ESSID_SIZE - 1);
    if (read_essid(caller, interface, essid) == 0) {
        memcpy(record->name, essid, sizeof(record->name));
    }
}

static void put_airtime(const char *caller, const char *interface, wlan_atf_station_t *record) {
    uint32_t short_average;
    uint64_t total;
    wlan_get_sta_atm_stats(interface, record->mac, &short_average, &total);
    record->short_average = short_average;
    record->total = total;
    log_debug("[VLK-API] %s shortavg:%d aritime_total: %llu\n", caller, static_cast<int>(short_average),
              static_cast<unsigned long long>(total));
}

// Looks for the interface of the radio that serves a record's station, and completes the record from there. A record
// without MAC is no station's: nobody is asked for it.
static void complete_record(const char *caller, int first_vap, wlan_atf_station_t *record) {
    if (record->mac[0] == '\0') {
        return;
    }
    for (int vap = first_vap; vap < first_vap + VAPS_PER_RADIO; vap++) {
        char interface[INTERFACE_NAME_SIZE];
        interface_name(vap, interface);
        if (!serves_station(caller, interface, record->mac)) {
            continue;
        }
        if (strstr(record->name, OTHER_STATIONS)) {
            put_ssid_as_name(caller, interface, record);
        }
        put_airtime(caller, interface, record);
        return;
    }
}

// The driver can list more connected stations than a reply has room for; it has the first ones.
static void append_record(const char *caller, int first_vap, const table_position *position,
                          wlan_atf_station_table_t *reply) {
    if (reply->count == ATF_STATIONS_MAX) {
        return;
    }
    wlan_atf_station_t *record = &reply->stations[reply->count];
    record->index = reply->count + 1;
    put_text(record->mac, sizeof(record->mac), position->mac);
    put_characters(record->name, sizeof(record->name), position->name, RECORD_NAME_LENGTH);
    record->share = position->share;
    record->configured = position->configured;
    complete_record(caller, first_vap, record);
    reply->count++;
}

int wlan_getAdvAirtimeStatsCl_AtfTable(int index, wlan_atf_station_table_t *reply) {
    log_debug("[VLK-API] %s %s: %d\n", __func__, __func__, index);
    if (index < 1) {
        return -1;
    }
    int first_vap = index < FIRST_VAP_5G ? FIRST_VAP_2G : FIRST_VAP_5G;
    char interface[INTERFACE_NAME_SIZE];
    interface_name(first_vap, interface);
    atf_table table;
    char ssid[ESSID_SIZE];
    if (getWlanStftableInfo(interface, &table, ssid) != 0) {
        return -1;
    }
    *reply = {};
    table_position position = {.name = "", .configured = 0, .mac = "", .share = 0};
    for (int i = 0; i < table.info_cnt; i++) {
        const atf_info *info = &table.infos[i];
        take_row(&table, info, &position);
        log_row(__func__, info, &position);
        if (is_station_row(info) && is_connected(info)) {
            append_record(__func__, first_vap, &position, reply);
        }
    }
    return 0;
}
