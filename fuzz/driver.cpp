// What the driver answers: wireless requests, its tables of channels, stations, networks and airtime, and the file that
// it keeps.
//
// Input: which back end, a VAP, the file of the stations that can use 5 GHz with its length in front, then the answers
// as support/server_doors.cpp takes them: a byte, the bytes of the record, those of the buffer.
#include "fuzz/support/back_ends.h"
#include "fuzz/support/platform.h"
#include "params/statistics.h"
#include "params/vap.h"
#include "steering/airtime_events.h"
#include "steering/airtime_table.h"
#include "steering/band_steering.h"
#include "steering/steering_tables.h"
#include "survey/site_survey.h"

static void read_channels(int index) {
    // The channels at the edges of freq_to_channel.
    for (unsigned channel : {0u, 1u, 14u, 36u, 184u}) {
        char interface[INTERFACE_NAME_SIZE];
        interface_name(index, interface);
        get_channels(interface, channel);
    }
}

static void set_channel(int index) {
    wlan_setChannel(index, 36);
}

static void read_station_count(int index) {
    u_int count = 0;
    wlan_getAssocDevicesNum(index, &count);
    must(count <= 127, "the driver tells of 127 stations at most");
}

static void read_stations(int index) {
    auto *table = static_cast<wlan_assoc_devices_table *>(calloc(1, sizeof(wlan_assoc_devices_table)));
    wlan_getAssocDevicesTable_2(index, table);
    must(table->NumOfEntries <= ASSOC_DEVICES_MAX, "no more stations than a reply reports");
    free(table);
}

static void read_one_station(int index) {
    wlan_device_t station = {};
    wlan_getAssocDevice(index, 1, &station);
}

static void list_stations(int index) {
    wlan_listSTA(index);
}

static void survey(int index) {
    int status = 0;
    int count = 0;
    wlan_ApSiteSurvey(index);
    wlan_ApSiteSurveyStatus(index, &status);
    wlan_getApScanNumOfEntries(index, &count);
}

// Strongest first, as far as is reported.
static void read_survey(int index) {
    auto *table = static_cast<scan_table *>(calloc(1, sizeof(scan_table)));
    wlan_getApScanResult_2(index, table);
    must(table->num_entries <= SCAN_ENTRIES_MAX, "no more networks than a reply reports");
    for (int i = 1; i < table->num_entries; i++) {
        must(table->entries[i - 1].rssi >= table->entries[i].rssi, "networks come strongest first");
    }
    for (const scan_entry &entry : table->entries) {
        must(entry.scan_flag <= 1, "a flag is 0 or 1");
    }
    free(table);
}

static void print_survey(int index) {
    wlan_getScanResult(index);
}

static void read_airtime(int index) {
    auto *table = static_cast<wlan_atf_station_table_t *>(calloc(1, sizeof(wlan_atf_station_table_t)));
    wlan_getAdvAirtimeStatsCl_AtfTable(index, table);
    must(table->count <= ATF_STATIONS_MAX, "no more stations than a reply reports");
    for (uint32_t i = 0; i < table->count; i++) {
        must_be_terminated(table->stations[i].mac, sizeof(table->stations[i].mac), "a station's MAC");
        must(table->stations[i].index == i + 1, "stations are counted from 1");
    }
    free(table);
}

static void read_airtime_of_station(int index) {
    uint32_t average = 0;
    uint64_t total = 0;
    sta_atm_stats stats = {};
    wlan_getAdvAirtimeStatsCl_AirtimeShortAvg(index, "aa:bb:cc:dd:ee:ff", &average);
    wlan_getAdvAirtimeStatsCl_AirtimeTotal(index, "aa:bb", &total);
    wlan_getAdvAirtimeStatsCl_AirtimeStat(index, "", &stats);
}

static void report_airtime(int index) {
    int done = 0;
    wlan_queryWlanInfo(index, &done);
    must(done == 1, "the report is always done");
}

static void read_black_list(int index) {
    int count = 0;
    auto *table = static_cast<wlan_2g_temp_blacklist_table_t *>(calloc(1, sizeof(wlan_2g_temp_blacklist_table_t)));
    wlan_getBssBandSteer2gTempBlacklistTable(index, &count, table);
    must(count >= 0 && count <= 64, "no more stations than the record has room for");
    free(table);
}

static void read_capable_table(int index) {
    int count = 0;
    auto *table = static_cast<wlan_5g_capable_table_t *>(calloc(1, sizeof(wlan_5g_capable_table_t)));
    wlan_getBssBandSteer5gCapableTable(index, &count, table);
    free(table);
}

static void clear_tables(int index) {
    bool is_there = platform.files.count(CAPABLE_TABLE_FILE) != 0;
    wlan_setBssBandSteer5gCapableClear(index, 0);
    wlan_setBssBandSteer2gTempBlacklistClear(index, 0);
    must(is_there == (platform.files.count(CAPABLE_TABLE_FILE) != 0), "clearing makes no file");
}

static constexpr back_end BACK_ENDS[] = {
    {read_channels},
    {set_channel},
    {read_station_count},
    {read_stations},
    {read_one_station},
    {list_stations},
    {survey},
    {read_survey},
    {print_survey},
    {read_airtime},
    {report_airtime},
    {read_black_list},
    {read_airtime_of_station},
    {clear_tables},
    {read_capable_table},
};
constexpr size_t BACK_END_COUNT = sizeof(BACK_ENDS) / sizeof(*BACK_ENDS);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr fuzz_input NOTHING = {nullptr, 0};
    fuzz_input input = new_input(data, size);
    begin_platform(&NOTHING);
    wlan_ioctl_socket();
    const back_end *chosen = &BACK_ENDS[take_byte(&input) % BACK_END_COUNT];
    int index = take_index(&input);
    std::string table = take_text(&input);
    if (!table.empty()) {
        platform.files[CAPABLE_TABLE_FILE] = table;
    }
    platform.answers = input;
    platform.files[STORE_FILE] = BUSY_STORE;
    platform.files["/tmp/wlandbg"] = "";
    // Tools list every station.
    platform.run_tool = [](const std::string &, std::string *output) {
        *output = "ADDR\naa:bb:cc:dd:ee:ff 1\n00:00:00:00:00:00 2\n";
        return true;
    };
    chosen->call(index);
    end_platform();
    return 0;
}
