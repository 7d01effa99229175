#include "bench/growth.h"

#include <stdio.h>
#include <string.h>

#include "bench/compare.h"
#include "bench/goals.h"
#include "bench/processes.h"
#include "server/wire.h"

constexpr int ROUNDS = 3;

static void print_row(const char *table, int amount, double ours, double other) {
    printf("growth\t%s\t%d\t%.2f\t%.2f\n", table, amount, ours, other);
    fflush(stdout);
}

static double microseconds(const side &side) {
    return 1e6 / median(side.rates);
}

void grow_store(const running_server &server, const running_server &floor) {
    for (int lines : {10, 30, 100, 300, 1000, 3000, 10000, 30000}) {
        write_store(lines);
        comparison result = compare(server, call_of(server, PROC_wlan_get_ssid, {1}), floor,
                                    call_of(floor, FLOOR_TEXT_LOOKED_UP, {0}), 1, ROUNDS);
        print_row("store", lines, microseconds(result.ours), microseconds(result.floor));
    }
}

void grow_waiting(const running_server &server, const running_server &floor) {
    for (int waiting : {1, 2, 4, 16, 64, 256, 1000, 4000}) {
        comparison result = compare(server, call_of(server, 0), floor, call_of(floor, FLOOR_NULL), waiting, ROUNDS);
        print_row("waiting", waiting, median(result.ours.rates) / 1000, median(result.floor.rates) / 1000);
    }
}

void grow_networks(const running_server &floor) {
    for (int networks : {0, 1, 16, 64, 100, 150, 200, 250, 300}) {
        set_networks(networks);
        running_server server = start_server(driver::NETWORKS);
        comparison result = compare(server, call_of(server, PROC_wlan_get_ap_scan_result, {1}), floor,
                                    call_of(floor, FLOOR_TABLE, {0}), 1, ROUNDS);
        print_row("networks", networks, microseconds(result.ours), microseconds(result.floor));
        end(server.pid);
    }
}

// All sixteen VAPs are up.
static void start_vaps() {
    std::string store = "CFG\nAP_VAP_NUM=8\nAP_RADIO_ENABLED=1\nAP_RADIO_ENABLED_2=1\n";
    for (int vap = 1; vap <= 16; vap++) {
        std::string suffix = vap == 1 ? "" : "_" + std::to_string(vap);
        store += "AP_RADIO_ID" + suffix + "=" + (vap <= 8 ? "0" : "1") + "\nAP_ENABLE" + suffix + "=1\n";
    }
    write_file("/tmp/.apcfg", store + std::string(4, '\0'));
    output_of("fast_down.sh; apup");
}

// As ifconfig shows it; that of nobody for VAP 16.
static std::string address_of(int vap) {
    if (vap == 16)
        return "02:00:00:00:00:00";
    std::string shown = output_of("ifconfig ath" + std::to_string(vap - 1));
    size_t place = shown.find("HWaddr ");
    ask_for(place != std::string::npos, "ifconfig shows no address");
    return shown.substr(place + strlen("HWaddr "), strlen("02:00:00:00:00:00"));
}

static double milliseconds_of_ifconfigs(int count) {
    double begun = now_seconds();
    for (int i = 0; i < count; i++)
        output_of("ifconfig ath" + std::to_string(i));
    return (now_seconds() - begun) * 1000;
}

void grow_vaps() {
    const int looks = rehearsing() ? 1 : 9;
    start_vaps();
    running_server server = start_server();
    // The search for these begins at VAP 1, that for nobody's address ends where it began.
    for (int vap : {1, 4, 5, 8, 16}) {
        std::string address = address_of(vap);
        std::string argument = words({static_cast<uint32_t>(address.size())}) + address + std::string(3, '\0');
        std::vector<double> ours, floor;
        for (int look = 0; look < looks; look++) {
            load_outcome outcome = load_count({server.address, PROC_wlan_get_bssid_port, argument}, 1, 1);
            ask_for((outcome.failed == 0) == (vap != 16), "a VAP is not found by its address");
            ours.push_back(outcome.latencies[0] / 1000);
            floor.push_back(milliseconds_of_ifconfigs(vap));
        }
        print_row("vaps", vap, median(ours), median(floor));
    }
    end(server.pid);
}
