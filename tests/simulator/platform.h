// What the tests inside a gateway without daemons share: each begins from the same state.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>

#include "simulator/paths.h"
#include "tests/simulator/support.h"

using lines = std::vector<std::string>;

// The driver is up, the store, the scenario and the WPS files are those of the scenario, and there are no faults.
class Platform : public testing::Test {
protected:
    void SetUp() override {
        static const std::string first_store = read_file(APCFG_STORE);
        // Its scripts' times would be most of the time that the tests take.
        static const std::string first_scenario =
            run_shell("sed 's/^\\(script .*seconds=\\).*/\\10/' /run/gateway/scenario").output;
        write_file(APCFG_STORE, first_store);
        write_file(GATEWAY_SCENARIO, first_scenario);
        ASSERT_EQ(run({"fault", "off"}).status, 0);
        write_file(PCI_POWER_0, "1\n");
        write_file(PCI_POWER_1, "1\n");
        write_file(PCI_RESCAN, "");
        write_file(GATEWAY_GPIO, "10=1\n100=0\n");
        // apup lays the missing ones down.
        ASSERT_EQ(run_shell("rm -rf /nvram/etc/wpa2/*").status, 0);
        ASSERT_EQ(run({"apup"}).status, 0);
        mark = journal_mark();
    }

    void TearDown() override {
        run({"fault", "off"});
        run({"fault", "address", "off"});
    }

    lines journal() {
        return journal_since(mark);
    }

    size_t mark = 0;
};

inline void set_store(const std::string &assignment) {
    EXPECT_EQ(run({"cfg", "-a", assignment}).status, 0);
}

// Adds lines to the scenario; the last item of its kind is not replaced, so take a kind that it has not.
inline void add_to_scenario(const std::string &text) {
    write_file(GATEWAY_SCENARIO, read_file(GATEWAY_SCENARIO) + text);
}

// Runs the program that makes calls with the driver library in front of it.
inline outcome probe(const std::string &arguments) {
    std::string preloaded = "LD_PRELOAD=$VLK_GATEWAY_DRIVER ASAN_OPTIONS=verify_asan_link_order=0:$ASAN_OPTIONS ";
    return run_shell(preloaded + DRIVER_PROBE " " + arguments);
}

// A scenario of one radio and one VAP that is up, for tests that bring their own.
inline const std::string SMALL_SCENARIO =
    "driver up\n"
    "radio 0 band=2.4 mac=00:03:7F:10:00:00\n"
    "channel 0 6 frequency=2437 flags=0\n"
    "vap 1 radio=0 bssid=00:03:7F:10:00:01 ssid=\"Home network\" enable=1\n";

inline bool eventually(const std::function<bool()> &condition, double seconds = 10) {
    auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        usleep(5000);
    }
    return true;
}

inline double duration_of(const std::function<void()> &work) {
    auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Ends every authenticator with a signal and waits until there is none.
inline void end_authenticators(int number = SIGTERM) {
    run_shell("killall -q -" + std::to_string(number) + " hostapd");
    EXPECT_TRUE(eventually([] { return run_shell("pgrep -x hostapd").output.empty(); }));
}
