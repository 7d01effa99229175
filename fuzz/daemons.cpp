// The datagrams of the helper daemons, the collectors and soft block, and how they behave on their sockets.
//
// Input: the number of exchanges, at most 8; then for each which one, a VAP, and, as support/server_doors.cpp takes
// them, the daemon's behaviour and its datagram.
#include <stdlib.h>
#include <string.h>

#include "fuzz/support/back_ends.h"
#include "fuzz/support/platform.h"
#include "steering/soft_block.h"
#include "survey/collector.h"
#include "survey/control_channel.h"

// One exchange takes no longer, whatever the daemon does.
constexpr int64_t EXCHANGE_MS_MAX = 4000;

static void read_utilisation(int index) {
    int utilisation, activity, busy;
    must(wlan_getChannelStatistics(index, &utilisation, &activity, &busy) == 0, "a reading always succeeds");
}

static void read_noise(int index) {
    int minimum, maximum, median, average;
    must(wlan_getChannelNoiseFloor(index, &minimum, &maximum, &median, &average) == 0, "a reading always succeeds");
}

static void read_packets(int index) {
    int64_t packets = 0;
    wlan_getRadioTxPackets(index, &packets);
    must(packets >= INT32_MIN && packets <= INT32_MAX, "a counter has 32 bits");
}

static void read_retransmissions(int index) {
    int percent;
    wlan_getRetransmissionMetric(index, &percent);
}

static void read_signal_table(int index) {
    int64_t *entries = static_cast<int64_t *>(calloc(RSSI_TABLE_ENTRIES, sizeof(int64_t)));
    wlan_getRSSITable(index, entries);
    free(entries);
}

static void read_black_list(int index) {
    auto *list = static_cast<wlan_sb_station_list_t *>(calloc(1, sizeof(wlan_sb_station_list_t)));
    wlan_getSBBlackList(index, list);
    free(list);
}

static void tell_daemon(int index) {
    wlan_setSBEnable(index, 1);
    wlan_setBSSClientRSSIThreshold(index, -70);
}

static void change_black_list(int index) {
    wlan_setSBBlackListAdd(index, "00:11:22:33:44:55:66:77:88:99:aa:bb:cc");
    wlan_setSBBlackListDel(index, "");
    wlan_setSBBlackListClear(index, index);
}

// Replies of any room, through the channel itself: no byte beyond the room is written.
static void request_directly(int index) {
    for (size_t room : {size_t{0}, size_t{1}, size_t{40}, 2 * COLLECTOR_ANSWER_SIZE}) {
        size_t length = room;
        char *reply = static_cast<char *>(malloc(room + 1));
        reply[room] = 'x';
        int64_t before = platform.clock_ms;
        rad_ctrl_request_buffered(index, "result", sizeof("result"), reply, &length,
                                  room % 2 == 0 ? RAD_CTRL_STATISTICS : RAD_CTRL_STEERING);
        must(length <= room && reply[room] == 'x', "a reply stays within its room");
        must(platform.clock_ms - before <= EXCHANGE_MS_MAX, "an exchange comes to an end in time");
        free(reply);
    }
}

static void switch_collector(int index) {
    wlan_applyRSGSettings(index);
}

static constexpr back_end EXCHANGES[] = {
    {read_utilisation}, {read_noise},  {read_packets},      {read_retransmissions}, {read_signal_table},
    {read_black_list},  {tell_daemon}, {change_black_list}, {request_directly},     {switch_collector},
};
constexpr size_t EXCHANGE_COUNT = sizeof(EXCHANGES) / sizeof(*EXCHANGES);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr int CALLS_MAX = 8;
    fuzz_input input = new_input(data, size);
    begin_platform(&input);
    platform.files[STORE_FILE] = BUSY_STORE;
    platform.files["/tmp/wlandbg"] = "";
    platform.run_tool = [](const std::string &, std::string *) { return true; };
    int count = take_byte(&platform.answers) % (CALLS_MAX + 1);
    for (int i = 0; i < count; i++) {
        const back_end *chosen = &EXCHANGES[take_byte(&platform.answers) % EXCHANGE_COUNT];
        chosen->call(take_index(&platform.answers));
    }
    end_platform();
    return 0;
}
