// Site survey. See the header.
#include "survey/site_survey.h"

#include <errno.h>
#include <linux/wireless.h>
#include <time.h>

#include <algorithm>
#include <utility>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"

// A longer list than this is not believed: the busiest places have some hundred networks. It bounds the memory, which
// is 512 KiB then, and the sort, during which no other call is answered.
constexpr int NETWORKS_MAX = 4096;

// Stands where others would have a line number. The debug line is searched for with it: it never changes.
constexpr int ENTRY_NUM_LINE = 10832;

// How long the diagnostic waits for a survey.
constexpr int POLLS_MAX = 20;
constexpr time_t POLL_INTERVAL = 1;  // seconds

int wlan_ApSiteSurvey(int index) {
    char interface[INTERFACE_NAME_SIZE];
    interface_name(index, interface);
    return wlan_private_request(interface, SIOCSIWSCAN, nullptr, 0) < 0 ? -1 : 0;
}

int wlan_ApSiteSurveyStatus(int index, int *status) {
    driver_command block = {COMMAND_SCAN_STATUS, 0, 0};
    *status = wlan_driver_command(index, &block);
    return 0;
}

int wlan_getApScanNumOfEntries(int index, int *count) {
    driver_command block = {COMMAND_SCAN_COUNT, 0, 0};
    if (wlan_driver_command(index, &block) < 0) {
        return -1;
    }
    *count = static_cast<int>(block.value);
    return 0;
}

int wlan_getApScanResult(int index, driver_command *block) {
    block->command = COMMAND_SCAN_RESULTS;
    return wlan_driver_command(index, block) < 0 ? -1 : 0;
}

static size_t size_of_list(int count) {
    return static_cast<size_t>(count) * sizeof(scan_entry);
}

// A zeroed list for `count` networks, at least 1. Null without memory, which is also what an unbelievable count gets.
static scan_entry *new_list(int count) {
    return count <= NETWORKS_MAX ? static_cast<scan_entry *>(low_memory_new(size_of_list(count))) : nullptr;
}

static void free_list(scan_entry *list, int count) {
    low_memory_free(list, size_of_list(count));
}

static int fill_list(int index, scan_entry *list, int count) {
    // What the driver makes of the block is not looked at: the list has the size it had.
    driver_command block = {0, static_cast<uint32_t>(count), low_memory_address(list)};
    return wlan_getApScanResult(index, &block);
}

// Where a network stands in the driver's list, and what it is sorted by.
struct ranked_network {
    int rssi;
    int place;
};

// The strongest `wanted` of them to the front, strongest first. Where networks of equal strength end up follows from
// just these exchanges, and clients know the table in this order: do not replace them by another sort, stable or not.
// Places are exchanged instead of the networks, which are sixteen times as large.
static void sort_networks(ranked_network *networks, int count, int wanted) {
    for (int i = 0; i < wanted; i++) {
        ranked_network strongest = networks[i];
        for (int j = i + 1; j < count; j++) {
            if (strongest.rssi < networks[j].rssi) {
                std::swap(strongest, networks[j]);
            }
        }
        networks[i] = strongest;
    }
}

// First cut to the byte that it travels in, then limited: of 300 networks the strongest 44 are reported, of 256 none.
// Do not mend it: clients have the whole number from a call of its own and expect just this one in the table.
static int reported_number(int count) {
    return std::min<int>(static_cast<uint8_t>(count), SCAN_ENTRIES_MAX);
}

static void copy_strongest(const scan_entry *list, int count, scan_table *table) {
    ranked_network networks[NETWORKS_MAX];
    for (int i = 0; i < count; i++) {
        networks[i] = {list[i].rssi, i};
    }
    int reported = reported_number(count);
    sort_networks(networks, count, reported);
    table->num_entries = static_cast<uint8_t>(reported);
    for (int i = 0; i < reported; i++) {
        table->entries[i] = list[networks[i].place];
        table->entries[i].scan_flag = table->entries[i].scan_flag ? 1 : 0;
    }
}

int wlan_getApScanResult_2(int index, scan_table *table) {
    if (index < 0) {
        return -1;
    }
    int status;
    wlan_ApSiteSurveyStatus(index, &status);
    if (status != SURVEY_COMPLETE) {
        log_error("%s: Site Survey not complete : %d\n", __func__, status);
    }
    int count;
    if (wlan_getApScanNumOfEntries(index, &count) != 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s:%d entry_num %d \n", __func__, __func__, ENTRY_NUM_LINE, count);
    if (count <= 0) {
        return 0;
    }
    scan_entry *list = new_list(count);
    log_debug("[VLK-API] %s scan buffer is at 0x%08x\n", __func__, low_memory_address(list));
    if (!list) {
        return 0;
    }
    int result = fill_list(index, list, count);
    if (result == 0) {
        copy_strongest(list, count, table);
    }
    free_list(list, count);
    return result;
}

void wlan_printScanInfo(const scan_entry *table, int count) {
    for (int i = 0; i < count; i++) {
        const scan_entry *entry = &table[i];
        log_error("AP[%d] --> ssid %.*s\n", i, static_cast<int>(sizeof(entry->ssid)), entry->ssid);
        log_error("AP[%d] --> WirelessMode %.*s\n", i, static_cast<int>(sizeof(entry->wireless_mode)),
                  entry->wireless_mode);
        log_error("AP[%d] --> AuthMode %.*s\n", i, static_cast<int>(sizeof(entry->auth_mode)), entry->auth_mode);
        log_error("AP[%d] --> Rssi %d\n", i, entry->rssi);
    }
}

// Waits for the whole time, also when signals arrive.
static void wait_for_next_poll(void) {
    timespec left = {POLL_INTERVAL, 0};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {
    }
}

// Waits before it asks: until the driver has begun, it still tells of the survey before.
static void wait_for_survey(int index, const char *caller) {
    int status = 0;
    for (int i = 0; i < POLLS_MAX && status != SURVEY_COMPLETE; i++) {
        wait_for_next_poll();
        wlan_ApSiteSurveyStatus(index, &status);
        log_error("%s:%d i=%d status=%d\n", caller, __LINE__, i, status);
    }
}

int wlan_getScanResult(int index) {
    athcfg_set_path();
    if (index < 0 || wlan_ApSiteSurvey(index) != 0) {
        return -1;
    }
    wait_for_survey(index, __func__);
    int count;
    if (wlan_getApScanNumOfEntries(index, &count) != 0 || count < 1) {
        return -1;
    }
    log_error("%s:%d entry_num %d \n", __func__, __LINE__, count);
    scan_entry *list = new_list(count);
    log_error("scan buffer is at 0x%08x\n", low_memory_address(list));
    if (!list) {
        return -1;
    }
    int result = fill_list(index, list, count);
    if (result == 0) {
        wlan_printScanInfo(list, count);
    }
    free_list(list, count);
    return result;
}
