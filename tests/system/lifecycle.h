// What the lifecycle's tests share: patience, calls that take long, the server's child, and the driver as it was.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "server/wire.h"
#include "tests/system/gateway.h"

using std::chrono::steady_clock;

// Far longer than anything here takes, also under a sanitizer on a busy machine.
constexpr int PATIENCE_SECONDS = 60;

inline bool eventually(const std::function<bool()> &condition) {
    auto deadline = steady_clock::now() + std::chrono::seconds(PATIENCE_SECONDS);
    while (!condition()) {
        if (steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

inline double seconds_since(steady_clock::time_point begin) {
    return std::chrono::duration<double>(steady_clock::now() - begin).count();
}

// A call that may take as long as a cancellation.
inline call_reply call_patiently(uint32_t procedure, const bytes &arguments) {
    int client = open_client_socket();
    bytes answer;
    EXPECT_TRUE(
        send_datagram(client, call_header(1, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure) + arguments));
    EXPECT_TRUE(receive_datagram(client, &answer, PATIENCE_SECONDS * 1000));
    close(client);
    return parse_reply(answer);
}

inline int last_child() {
    int supervisor = 0, child = 0;
    for (const std::string &line : lines_since(SERVER_LOG_FILE, 0))
        sscanf(line.c_str(), "VLK WLAN RPC Server pid=%d forked child pid=%d", &supervisor, &child);
    return child;
}

// Ends the child with everything that it knows, and waits until the next one serves.
inline void renew_child() {
    int before = last_child();
    ASSERT_EQ(kill(before, SIGKILL), 0);
    EXPECT_TRUE(eventually([&] { return last_child() != before && call(0, "").outcome == call_outcome::SUCCESS; }));
}

// Ends whatever a test left under way: scripts that run, workers that wait for them, a queue that is not empty.
inline void settle() {
    run_command("fault off");
    renew_child();
    run_command("killall -q apup apup_simple fast_down.sh insmod radstat0 radstat8");
    // The client of a worker that has ended with its server must not have the next test's queue looked at; what it has
    // sent is served before the call behind it. The brackets keep the pattern from its own shell.
    run_command("pkill -KILL -f 'wlan_config_client check[T]hreadQueue'");
    call(0, "");
    // A reconnect that was cut short must not leave the chips in reset or off the bus.
    run_command("wps_gpio write 10 1; wps_gpio write 100 0; echo 1 > /sys/bus/pci/rescan");
}

inline bool is_up(const char *interface) {
    return run_command(std::string("ifconfig ") + interface).status == 0;
}
