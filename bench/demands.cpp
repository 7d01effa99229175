#include "bench/demands.h"

#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bench/goals.h"
#include "bench/processes.h"
#include "server/wire.h"

void measure_setter(const running_server &server) {
    const int rounds = rehearsing() ? 1 : 200;
    constexpr double MOST = 1.05;
    write_store(100);
    std::vector<double> ours, floor, ratios;
    load_call call = call_of(server, PROC_wlan_set_dtim_period, {1, 2});
    for (int round = 0; round < rounds; round++) {
        load_outcome outcome = load_count(call, 1, 1);
        ask_for(outcome.failed == 0, "the setter failed");
        ours.push_back(outcome.latencies[0]);
        double begun = now_seconds();
        output_of("cfg -a AP_DTIM=\"2\"");
        floor.push_back((now_seconds() - begun) * 1e6);
        ratios.push_back(ours.back() / floor.back());
    }
    report(goal::TIMED, median(ratios) <= MOST, "%-58s %5.3f of a popen of its command, at most %.2f", "a setter",
           median(ratios), MOST);
    printf("    server       p50 %7.0f us   p99 %7.0f us\n", median(ours), percentile(ours, 0.99));
    printf("    popen        p50 %7.0f us   p99 %7.0f us\n", median(floor), percentile(floor, 0.99));
}

void measure_waiting_calls(const running_server &server) {
    constexpr size_t WAITING = 4000;
    constexpr useconds_t HEAD_START = 50000;  // the setter runs its command by then
    output_of("fault cfg slow 2");
    int fd = open_load_socket(server.address);
    double begun = now_seconds();
    ask_for(send_call(fd, call_of(server, PROC_wlan_set_dtim_period, {1, 2})), "cannot send");
    usleep(HEAD_START);
    load_outcome outcome = load_count(call_of(server, PROC_wlan_get_dtim_period, {1}), WAITING, WAITING);
    double seconds = now_seconds() - begun;
    close(fd);
    output_of("fault cfg off");
    // Sooner than two seconds means that the setter did not block.
    report(goal::CERTAIN, outcome.latencies.size() == WAITING && outcome.failed == 0 && seconds > 2,
           "%-58s %zu answered, %.2f s in all", "4,000 calls behind a setter that takes two seconds",
           outcome.latencies.size() - outcome.failed, seconds);
}

void measure_start() {
    const int starts = rehearsing() ? 1 : 9;
    constexpr double MOST_MS = 50;
    std::vector<double> times;
    for (int i = 0; i < starts; i++) {
        double seconds;
        running_server server = start_server(driver::NONE, &seconds);
        times.push_back(seconds * 1000);
        end(server.pid);
    }
    report(goal::TIMED, median(times) < MOST_MS, "%-58s %.1f ms, under %.0f", "from start to first answer",
           median(times), MOST_MS);
}

static void call_a_mixture(const running_server &server, size_t count) {
    const load_call calls[] = {call_of(server, PROC_wlan_get_dtim_period, {1}),
                               call_of(server, PROC_wlan_get_ssid, {1}),
                               call_of(server, PROC_wlan_get_ap_scan_result, {1}), call_of(server, 0)};
    for (const load_call &call : calls)
        ask_for(load_count(call, 16, count / std::size(calls)).failed == 0, "a call failed");
}

void measure_memory(const running_server &floor) {
    constexpr size_t WARMING_UP = 4000;
    const size_t calls = rehearsing() ? 4000 : 1000000;
    constexpr long MOST_MORE = 1024;  // kB than the bare server
    constexpr long FLAT_WITHIN = 16;  // kB: a page here or there of the libraries is touched late
    set_networks(64);
    write_store(100);
    running_server server = start_server(driver::NETWORKS);
    call_a_mixture(server, WARMING_UP);
    load_count(call_of(floor, FLOOR_TABLE, {0}), 16, WARMING_UP);
    load_count(call_of(floor, FLOOR_TEXT_LOOKED_UP, {0}), 16, WARMING_UP);
    long before = resident_kilobytes(server.serving), bare = resident_kilobytes(floor.serving);
    int files = open_files(server.serving);
    call_a_mixture(server, calls);
    long more = resident_kilobytes(server.serving) - before;
    int more_files = open_files(server.serving) - files;
    end(server.pid);
    report(goal::CERTAIN, before <= bare + MOST_MORE, "%-58s %ld kB, the bare server %ld kB, at most %ld kB more",
           "resident memory", before, bare, MOST_MORE);
    report(goal::CERTAIN, more <= FLAT_WITHIN && more_files == 0, "%-58s %+ld kB, %+d files", "after a million calls",
           more, more_files);
}

void measure_size() {
    constexpr off_t MOST = 400000;
    output_of(std::string("strip -o /tmp/bench_stripped ") + getenv("VLK_SERVER_PROGRAM"));
    struct stat status = {};
    stat("/tmp/bench_stripped", &status);
    report(goal::CERTAIN, status.st_size > 0 && status.st_size < MOST, "%-58s %ld bytes, under %ld",
           "the stripped server", static_cast<long>(status.st_size), static_cast<long>(MOST));
}
