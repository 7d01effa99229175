// Traffic counters and associated stations of a VAP. See the header.
//
// Touches the store (read only), runs `ifconfig`, `wlanconfig` and `apstats`, and asks the driver by ioctl. Runs on the
// service thread.
#include "params/statistics.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include <utility>

#include "config/command.h"
#include "config/log.h"
#include "config/store.h"
#include "params/rates.h"
#include "params/vap.h"

// The bits of the driver's answer that are the number of stations.
constexpr uint32_t STATION_COUNT_MASK = 0x7f;

// The bits of a command block's value that say how many entries a station table has.
constexpr uint32_t TABLE_COUNT_MASK = 0xff;

// Stands in the debug line about the number of stations, which is searched for with it. It is no line of this file.
constexpr int ENTRY_COUNT_TAG = 4881;

// The title of the last column in the head of wlanconfig's list, and how far from its beginning the lines start to
// count: behind the title and the end of the line. A head that goes on there counts as a line itself; do not mend that,
// clients know the number of each driver's list as it is.
constexpr const char LAST_TITLE[] = "HTCAPS";
constexpr size_t HEAD_END = sizeof(LAST_TITLE);

// What stands before a counter in a tool's output, and what is logged when it does not.
struct counter_label {
    const char *marker;
    const char *complaint;
};

// Reads the number that is the first thing in a text of this length, if any is: blanks, a sign, digits.
static uint32_t read_number(const char *text, size_t length) {
    const char *end = text + length;
    while (text < end && isspace(static_cast<unsigned char>(*text))) {
        text++;
    }
    bool negative = text < end && *text == '-';
    if (text < end && (*text == '-' || *text == '+')) {
        text++;
    }
    uint32_t number = 0;
    for (; text < end && *text >= '0' && *text <= '9'; text++) {
        number = 10 * number + static_cast<uint32_t>(*text - '0');
    }
    return negative ? 0 - number : number;
}

// Finds a counter in a tool's output and reads its number, which ends before any of these characters. Returns where
// the marker is; null, with a debug line, when it is missing.
static const char *find_counter(const char *caller, const char *output, const counter_label *label, const char *ends,
                                uint32_t *number) {
    const char *marker = strstr(output, label->marker);
    if (!marker) {
        log_debug("[VLK-API] %s %s: %s\n", caller, caller, label->complaint);
        return nullptr;
    }
    const char *text = marker + strlen(label->marker);
    *number = read_number(text, strcspn(text, ends));
    return marker;
}

// In the order in which ifconfig prints them: a counter is looked for only behind the one before it.
static constexpr struct {
    counter_label label;
    uint32_t wlan_basicStats_t::*word;
} BASIC_COUNTERS[] = {
    {{"RX packets:", "get rx packets statistics failed"}, &wlan_basicStats_t::rx_packets},
    {{"TX packets:", "get tx packets statistics failed"}, &wlan_basicStats_t::tx_packets},
    {{"RX bytes:", "get rx bytes statistics failed"}, &wlan_basicStats_t::rx_bytes},
    {{"TX bytes:", "get tx bytes statistics failed"}, &wlan_basicStats_t::tx_bytes},
};

static int read_basic_counters(const char *caller, const char *output, wlan_basicStats_t *stats) {
    for (const auto &counter : BASIC_COUNTERS) {
        // A number ends at the next blank. Where no blank comes any more in its line, the next line is not its own.
        output = find_counter(caller, output, &counter.label, " \n", &(stats->*counter.word));
        if (!output) {
            return -1;
        }
    }
    return 0;
}

// Each station has a line behind the list's head. Without a head nobody is there.
static uint32_t count_stations(const char *output) {
    const char *title = strstr(output, LAST_TITLE);
    if (!title) {
        return 0;
    }
    uint32_t lines = 0;
    for (const char *rest = title + strnlen(title, HEAD_END); *rest; rest++) {
        lines += *rest == '\n';
    }
    return lines;
}

int wlan_getBasicStats(int index, wlan_basicStats_t *stats) {
    if (index < 0) {
        // Only the first word: clients get the others as their buffer had them. It is part of the contract.
        stats->tx_bytes = 0;
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "ifconfig ath%d", interface_number(index));
    if (!output) {
        return -1;
    }
    int status = read_basic_counters(__func__, output, stats);
    free(output);
    if (status != 0) {
        return status;
    }
    athcfg_executecmdf(__func__, &output, "wlanconfig ath%d list sta", interface_number(index));
    if (!output) {
        return -1;
    }
    stats->assoc_count = count_stations(output);
    free(output);
    return 0;
}

// In the order in which they are looked for. The markers are 33 characters long, to the "=".
static constexpr struct {
    counter_label label;
    uint32_t wlan_stats_t::*word;
} DETAILED_COUNTERS[] = {
    {{"Rx errors                       =", "get Wlan_ErrorsReceived failed"}, &wlan_stats_t::rx_errors},
    {{"Tx Unicast Data Packets         =", "get wlan_UnicastPacketsSent failed"}, &wlan_stats_t::tx_unicast},
    {{"Tx Multi/Broadcast Data Packets =", "get Wlan_MulticastPacketsSent failed"}, &wlan_stats_t::tx_multicast},
};

static int read_detailed_counters(const char *caller, const char *output, wlan_stats_t *stats) {
    for (const auto &counter : DETAILED_COUNTERS) {
        if (!find_counter(caller, output, &counter.label, "\n", &(stats->*counter.word))) {
            return -1;
        }
    }
    memset(stats->words_3_to_5, 0, sizeof(stats->words_3_to_5));
    memset(stats->words_7_to_10, 0, sizeof(stats->words_7_to_10));
    return 0;
}

static bool is_enabled(int (*getter)(int, int *), int index) {
    int enabled = 0;
    return getter(index, &enabled) == 0 && enabled != 0;
}

int wlan_getStats(int index, wlan_stats_t *stats) {
    if (index < 0 || !is_enabled(wlan_getRadioEnabled, index) || !is_enabled(wlan_getEnable, index)) {
        *stats = {};
        return -1;
    }
    char *output = nullptr;
    athcfg_executecmdf(__func__, &output, "apstats -v -i ath%d", interface_number(index));
    if (!output) {
        return -1;
    }
    int status = read_detailed_counters(__func__, output, stats);
    free(output);
    return status;
}

int wlan_getAssocDevicesNum(int index, u_int *count) {
    driver_command block = {COMMAND_STATION_COUNT, 0, 0};
    if (wlan_driver_command(index, &block) < 0) {
        return -1;
    }
    *count = block.value & STATION_COUNT_MASK;
    return 0;
}

int wlan_getAssocDevicesTableNumOfEntries(int index, u_int *count) {
    wlan_getAssocDevicesNum(index, count);
    return 0;
}

int wlan_getAssocDevicesTable(int index, driver_command *block) {
    // Both as the caller gave them: what the driver writes into the block says nothing about the buffer.
    auto *stations = static_cast<wlan_device_t *>(low_memory_at(block->buffer));
    uint32_t room = block->value;
    block->command = COMMAND_STATION_TABLE;
    if (wlan_driver_command(index, block) < 0) {
        return -1;
    }
    uint32_t count = block->value & TABLE_COUNT_MASK;
    for (uint32_t i = 0; i < count && i < room; i++) {
        std::swap(stations[i].tx_packets, stations[i].tx_rate);
    }
    return 0;
}

static size_t size_of_stations(u_int count) {
    return count * sizeof(wlan_device_t);
}

static wlan_device_t *new_stations(u_int count) {
    return static_cast<wlan_device_t *>(low_memory_new(size_of_stations(count)));
}

static void free_stations(wlan_device_t *stations, u_int count) {
    low_memory_free(stations, size_of_stations(count));
}

static int read_stations(int index, const wlan_device_t *stations, u_int count) {
    driver_command block = {COMMAND_STATION_TABLE, count, low_memory_address(stations)};
    return wlan_getAssocDevicesTable(index, &block);
}

int wlan_getAssocDevice(int index, int device, wlan_device_t *station) {
    athcfg_set_path();
    u_int count = 0;
    if (index < 0 || wlan_getAssocDevicesNum(index, &count) != 0) {
        return -1;
    }
    if (device < 0 || device >= static_cast<int>(count)) {
        return -1;
    }
    wlan_device_t *stations = new_stations(count);
    if (!stations) {
        return -1;
    }
    int status = read_stations(index, stations, count);
    if (status == 0) {
        *station = stations[device];
    }
    free_stations(stations, count);
    return status;
}

static void fill_table(int index, const wlan_device_t *stations, u_int count, wlan_assoc_devices_table *table) {
    table->NumOfEntries = count < ASSOC_DEVICES_MAX ? count : ASSOC_DEVICES_MAX;
    for (uint32_t i = 0; i < table->NumOfEntries; i++) {
        table->Devices[i] = stations[i];
        table->Devices[i].interface = static_cast<uint8_t>(interface_number(index));
    }
}

int wlan_getAssocDevicesTable_2(int index, wlan_assoc_devices_table *table) {
    u_int count = 0;
    if (index < 0 || wlan_getAssocDevicesNum(index, &count) != 0) {
        return -1;
    }
    log_debug("[VLK-API] %s %s:%d entry_num %d \n", __func__, __func__, ENTRY_COUNT_TAG, count);
    if (count == 0) {
        table->NumOfEntries = 0;
        return 0;
    }
    wlan_device_t *stations = new_stations(count);
    if (!stations) {
        return -1;
    }
    log_debug("[VLK-API] %s scan buffer is at 0x%08x\n", __func__, low_memory_address(stations));
    int status = read_stations(index, stations, count);
    if (status == 0) {
        fill_table(index, stations, count, table);
    }
    free_stations(stations, count);
    return status;
}

int wlan_listSTA(int index) {
    athcfg_set_path();
    u_int count = 0;
    if (index < 0 || wlan_getAssocDevicesNum(index, &count) != 0 || count < 1) {
        return -1;
    }
    log_error("%s:%d entry_num %d \n", __func__, __LINE__, count);
    wlan_device_t *stations = new_stations(count);
    log_error("scan buffer is at 0x%08x\n", low_memory_address(stations));
    if (!stations) {
        return -1;
    }
    int status = read_stations(index, stations, count);
    if (status == 0) {
        driver_command block = {COMMAND_STATION_TABLE, count, low_memory_address(stations)};
        wlan_printSTAInfo(&block);
    }
    free_stations(stations, count);
    return status;
}

// The driver need not terminate its texts: each ends with its field at the latest.
void wlan_printSTAInfo(const driver_command *block) {
    const auto *station = static_cast<const wlan_device_t *>(low_memory_at(block->buffer));
    for (uint32_t i = 0; i < block->value; i++, station++) {
        log_error("STA[%d] --> Ssid %.*s\n", i, static_cast<int>(sizeof(station->ssid)), station->ssid);
        log_error("STA[%d] --> wlan_devMacAddress %.*s\n", i, static_cast<int>(sizeof(station->mac)), station->mac);
        log_error("STA[%d] --> wlan_CapabilityInfo %.*s\n", i, static_cast<int>(sizeof(station->capabilities)),
                  station->capabilities);
        log_error("STA[%d] --> wlan_connectedTime %d\n", i, station->connected_time);
        log_error("STA[%d] --> wlan_devState %d\n", i, station->state);
        log_error("STA[%d] --> wlan_txPackets %d\n", i, station->tx_packets);
        log_error("STA[%d] --> wlan_txRate %d\n", i, station->tx_rate);
        log_error("STA[%d] --> wlan_MaxSupportedRate %d\n", i, station->max_rate);
        log_error("STA[%d] --> wlan_mcTxPackets %d\n", i, station->mc_tx_packets);
        log_error("STA[%d] --> wlan_ucTxPackets %d\n", i, station->uc_tx_packets);
        log_error("STA[%d] --> wlan_apidx %d\n", i, station->interface);
    }
}
