// The parsers of what tools print: iwconfig, iwlist, iwpriv, ifconfig, wlanconfig, apstats, hostapd_cli, airtime,
// wifitool, ps.
//
// Input: which back end, a VAP, then what its commands print, one text after the other between bytes 0x1E; the last one
// is printed by all further commands.
#include "fuzz/support/back_ends.h"
#include "fuzz/support/platform.h"
#include "lifecycle/authenticator.h"
#include "params/rates.h"
#include "params/statistics.h"
#include "params/tuning.h"
#include "params/vap.h"
#include "params/wps.h"
#include "steering/airtime.h"
#include "steering/airtime_table.h"
#include "steering/band_steering.h"
#include "survey/collector.h"

template <int (*getter)(int, u_int *)>
static void read_natural(int index) {
    read_record<u_int, getter>(index);
}

template <int (*getter)(int, int *)>
static void read_int(int index) {
    read_record<int, getter>(index);
}

static void read_counters_of_station(int) {
    uint32_t average;
    uint64_t total;
    wlan_get_sta_atm_stats("ath0", "00:11:22:33:44:55", &average, &total);
    must(total <= UINT32_MAX, "the total has 32 bits");
}

static void read_station_count(int) {
    int count = 0;
    wlan_getAdvAirtime_STAEntryCount(&count);
}

static void read_weighted_stations(int) {
    wlan_airtime_sta_list_t list = {};
    wlan_getAdvAirtime_STAList(3, &list);
    must(list.count == 3, "as many records as were asked for");
    for (const wlan_airtime_sta_t &station : list.stations) {
        must_be_terminated(station.mac, sizeof(station.mac), "a station's MAC");
    }
}

static void find_vap_of_bssid(int) {
    int port = 0;
    int index = 0;
    wlan_getBssIdPort("00:11:22:33:44:55", &port, &index);
}

static void read_bandwidth(int index) {
    int bandwidth = 0;
    wlan_getMaxBandwidth(index, 1, &bandwidth);
}

static void push_button(int index) {
    wlan_setWpsPushButton(index);
}

static void start_pin(int index) {
    wlan_setWpsPinStart(index, "12345670");
}

static void cancel_wps(int index) {
    wlan_setWpsCancel(index);
}

static void restart_authenticator(int) {
    wps_hostapd_restart();
    for (const std::string &command : platform.commands) {
        must(command.compare(0, 5, "kill ") != 0 || (command[5] >= '1' && command[5] <= '9'),
             "only a process with an id is killed");
    }
}

// What a station of another tool's list looks like has been read before; here the tool is asked about it.
static constexpr back_end BACK_ENDS[] = {
    {read_text<wlan_getStatus>},
    {read_text<wlan_getMaxBitRate>},
    {read_text<wlan_getBSSID>},
    {read_text<wlan_getName>},
    {read_text<wlan_getBasicDataTransmitRates>},
    {read_text<wlan_getOperationalDataTransmitRates>},
    {read_text<wlan_getPossibleChannels>},
    {read_text<wlan_getWpsConfigurationState>},
    {read_text<wlan_getWpsStatus>},
    {read_text<wlan_getWpsResultStatus>},
    {read_text<wlan_getWpsDeviceName>},
    {read_text<wlan_getWpsUuid>},
    {read_text<wlan_getWpsModelName>},
    {read_text<wlan_getWpsDevicePassword>},
    {read_text<wlan_getWpsSetupLockedState>},
    {read_text<wlan_getAdvAirtime_STA_MAC>},
    {read_record<wlan_basicStats_t, wlan_getBasicStats>},
    {read_record<wlan_stats_t, wlan_getStats>},
    {read_natural<wlan_getTransmitPower>},
    {read_int<wlan_getCurrentChannel>},
    {read_int<wlan_getHTTxStream>},
    {read_int<wlan_getHTRxStream>},
    {read_int<wlan_getAutoRateFallbackEnable>},
    {read_int<wlan_getBssWeight>},
    {read_int<wlan_getBssBandSteerEnable>},
    {read_int<wlan_getAdvAirtime_STA_Weight>},
    {read_int<wlan_getAdvAirtime_STA_Period>},
    {read_int<ath_getApNoiseFloor>},
    {read_counters_of_station},
    {read_station_count},
    {read_weighted_stations},
    {find_vap_of_bssid},
    {read_bandwidth},
    {push_button},
    {start_pin},
    {cancel_wps},
    {restart_authenticator},
};
constexpr size_t BACK_END_COUNT = sizeof(BACK_ENDS) / sizeof(*BACK_ENDS);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr char SEPARATOR = 0x1E;
    constexpr fuzz_input NOTHING = {nullptr, 0};
    fuzz_input input = new_input(data, size);
    begin_platform(&NOTHING);
    const back_end *chosen = &BACK_ENDS[take_byte(&input) % BACK_END_COUNT];
    int index = take_index(&input);
    std::string rest = take_rest(&input);
    input_has_fresh_byte = rest.find(FRESH_MEMORY) != std::string::npos;
    for (size_t place = 0; place <= rest.size();) {
        size_t end = rest.find(SEPARATOR, place);
        platform.outputs.push_back(rest.substr(place, end == std::string::npos ? end : end - place));
        place = end == std::string::npos ? rest.size() + 1 : end + 1;
    }
    platform.files[STORE_FILE] = BUSY_STORE;
    platform.files["/tmp/wlandbg"] = "";
    chosen->call(index);
    end_platform();
    return 0;
}
