// Measures the server against a bare one, in one run: rates, latencies and processor time, then what a gateway asks of
// it besides, then how costs grow. "bench rehearse" only sees that all of it can be measured. Runs inside a bare
// simulated gateway (bench/run), as root, with two processors.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "bench/compare.h"
#include "bench/demands.h"
#include "bench/goals.h"
#include "bench/growth.h"
#include "bench/processes.h"
#include "bench/servers.h"
#include "server/wire.h"

// Least ratios to the bare server.
constexpr double LEAST = 0.95;
constexpr double LEAST_OF_NULL = 0.97;

// Of a comparison; with both processors at work they differ more from each other.
constexpr int ROUNDS = 10;
constexpr int ROUNDS_ON_TWO = 16;

static int rounds_for(int outstanding) {
    return outstanding > 1 ? ROUNDS_ON_TWO : ROUNDS;
}

// Our call beside the bare server's, once as it is and once with as many looks at the debug switch as ours takes: what
// is missing in the first and not in the second is what those cost.
static void compare_both_ways(const running_server &server, const running_server &floor, const std::string &name,
                              uint32_t ours, uint32_t theirs, uint32_t looks, int outstanding) {
    load_call call = call_of(server, ours, {1});
    int rounds = rounds_for(outstanding);
    print_comparison(name.c_str(), compare(server, call, floor, call_of(floor, theirs, {0}), outstanding, rounds),
                     LEAST);
    std::string with_looks = "  the same with " + std::to_string(looks) + " looks at the debug switch";
    print_comparison(with_looks.c_str(),
                     compare(server, call, floor, call_of(floor, theirs, {looks}), outstanding, rounds / 2), LEAST);
}

static void compare_getters(int lines, int outstanding) {
    write_store(lines);
    uint32_t integer_looks = debug_lines_of(PROC_wlan_get_dtim_period);
    uint32_t text_looks = debug_lines_of(PROC_wlan_get_ssid);
    running_server server = start_server(), floor = start_floor();
    std::string behind = " behind " + std::to_string(lines) + " lines";
    compare_both_ways(server, floor, "an integer" + behind, PROC_wlan_get_dtim_period, FLOOR_INTEGER_LOOKED_UP,
                      integer_looks, outstanding);
    compare_both_ways(server, floor, "a text" + behind, PROC_wlan_get_ssid, FLOOR_TEXT_LOOKED_UP, text_looks,
                      outstanding);
    end(server.pid);
    end(floor.pid);
}

static void compare_null(double least, int outstanding) {
    running_server server = start_server(), floor = start_floor();
    print_comparison(
        "the null procedure",
        compare(server, call_of(server, 0), floor, call_of(floor, FLOOR_NULL), outstanding, rounds_for(outstanding)),
        least);
    end(server.pid);
    end(floor.pid);
}

static void compare_tables(int outstanding) {
    constexpr int FULL_TABLE = 64;
    for (int networks : {0, FULL_TABLE}) {
        set_networks(networks);
        uint32_t looks = debug_lines_of(PROC_wlan_get_ap_scan_result, driver::NETWORKS);
        running_server server = start_server(driver::NETWORKS), floor = start_floor();
        compare_both_ways(server, floor, "a table of 8,196 bytes, " + std::to_string(networks) + " networks in it",
                          PROC_wlan_get_ap_scan_result, FLOOR_TABLE, looks, outstanding);
        end(server.pid);
        end(floor.pid);
    }
}

static void compare_on_one_processor() {
    puts("\none call at a time, both ends on one processor");
    pin(0, SERVER_PROCESSOR);
    compare_null(LEAST_OF_NULL, 1);
    for (int lines : {100, 1000, 10000})
        compare_getters(lines, 1);
    running_server server = start_server();
    measure_setter(server);
    end(server.pid);
    compare_tables(1);
}

static void compare_on_two_processors() {
    constexpr int OUTSTANDING = 16;
    puts("\nsixteen calls under way, the ends on two processors");
    pin(0, CLIENT_PROCESSOR);
    compare_null(LEAST, OUTSTANDING);
    compare_getters(1000, OUTSTANDING);
    compare_tables(OUTSTANDING);
}

static void measure_demands() {
    puts("");
    measure_start();
    running_server server = start_server(), floor = start_floor();
    measure_waiting_calls(server);
    end(server.pid);
    measure_memory(floor);
    end(floor.pid);
    measure_size();
}

static void measure_growth() {
    puts("");
    pin(0, SERVER_PROCESSOR);
    running_server server = start_server(), floor = start_floor();
    grow_store(server, floor);
    grow_waiting(server, floor);
    end(server.pid);
    grow_networks(floor);
    grow_vaps();
    end(floor.pid);
}

int main(int argument_count, char **arguments) {
    if (argument_count > 1 && strcmp(arguments[1], "rehearse") == 0)
        begin_rehearsal();
    double begun = now_seconds();
    ask_for(getenv("VLK_PRIVATE_NAMESPACE") != nullptr, "it runs inside the simulated gateway only: bench/run");
    ask_for(sysconf(_SC_NPROCESSORS_ONLN) >= 2, "it needs two processors");
    pid_t portmap = start({getenv("VLK_PORTMAP_PROGRAM"), "-f"}, "/dev/null");
    for (int i = 0; i < 1000 && access("/run/rpcbind.sock", F_OK) != 0; i++)
        usleep(1000);
    write_store(100);
    compare_on_one_processor();
    compare_on_two_processors();
    measure_demands();
    measure_growth();
    end(portmap);
    goal_count goals = goals_reported();
    printf("\n%d of %d goals reached, in %.0f s\n", goals.all - goals.missed, goals.all, now_seconds() - begun);
    return goals.missed > 0;
}
