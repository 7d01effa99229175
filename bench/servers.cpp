#include "bench/servers.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "bench/goals.h"
#include "bench/processes.h"
#include "server/transport.h"
#include "server/wire.h"

constexpr uint32_t FLOOR_PROGRAM = 0x20131338;
constexpr double START_SECONDS = 10;
constexpr const char DEBUG_SWITCH[] = "/tmp/wlandbg";
constexpr const char DEBUG_LINES[] = "/tmp/bench_debug_lines";

load_call call_of(const running_server &server, uint32_t procedure, const std::vector<uint32_t> &arguments) {
    return {server.address, procedure, words(arguments)};
}

static pid_t start_program(driver driver, const char *log) {
    if (driver == driver::NETWORKS)
        setenv("LD_PRELOAD", getenv("BENCH_NETWORKS_DRIVER"), 1);
    pid_t pid = start({getenv("VLK_SERVER_PROGRAM")}, log);
    unsetenv("LD_PRELOAD");
    return pid;
}

static running_server start_logging(driver driver, const char *log, double *seconds_to_first_answer) {
    running_server server = {0, 0, {SERVICE_ADDRESS, SERVICE_PORT, WLAN_CONFIG_RPC_PROG}};
    double begun = now_seconds();
    server.pid = start_program(driver, log);
    ask_for(answers(call_of(server, 0), START_SECONDS), "the server does not answer");
    if (seconds_to_first_answer)
        *seconds_to_first_answer = now_seconds() - begun;
    server.serving = only_child_of(server.pid);
    pin(server.serving, SERVER_PROCESSOR);
    return server;
}

running_server start_server(driver driver, double *seconds_to_first_answer) {
    return start_logging(driver, "/dev/null", seconds_to_first_answer);
}

running_server start_floor() {
    constexpr const char port_file[] = "/tmp/bench_floor_port";
    running_server floor = {0, 0, {"127.0.0.1", 0, FLOOR_PROGRAM}};
    unlink(port_file);
    floor.pid = floor.serving = start({getenv("BENCH_FLOOR")}, port_file);
    for (double end = now_seconds() + START_SECONDS; floor.address.port == 0 && now_seconds() < end; usleep(1000))
        std::ifstream(port_file) >> floor.address.port;
    ask_for(answers(call_of(floor, FLOOR_NULL), START_SECONDS), "the bare server does not answer");
    pin(floor.serving, SERVER_PROCESSOR);
    return floor;
}

static long lines_in(const char *path) {
    std::ifstream file(path);
    return std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n');
}

uint32_t debug_lines_of(uint32_t procedure, driver driver) {
    running_server server = start_logging(driver, DEBUG_LINES, nullptr);
    long before = lines_in(DEBUG_LINES);
    write_file(DEBUG_SWITCH, "");
    load_outcome outcome = load_count(call_of(server, procedure, {1}), 1, 1);
    unlink(DEBUG_SWITCH);
    ask_for(outcome.failed == 0, "a call failed");
    end(server.pid);
    long lines = lines_in(DEBUG_LINES) - before;
    ask_for(lines > 0, "a call wrote no debug line");
    unlink(DEBUG_LINES);
    return static_cast<uint32_t>(lines);
}

void write_file(const char *path, const std::string &text) {
    std::ofstream file(path);
    ask_for(static_cast<bool>(file << text << std::flush), path);
}

void write_store(int lines) {
    std::string text = "CFG\n";
    char line[64];
    for (int i = 0; i < lines - 3; i++) {
        snprintf(line, sizeof line, "AP_FILLER_%05d=%d\n", i, i);
        text += line;
    }
    // A store ends with four zero bytes.
    write_file("/tmp/.apcfg", text + "AP_SSID=Home network\nAP_DTIM=7\n" + std::string(4, '\0'));
}

void set_networks(int count) {
    write_file("/tmp/bench_networks", std::to_string(count));
}
