// load, init, reset and reconnect with --wait: the driver is where it was sent when they end. Runs in gateways of its
// own.
#include <gtest/gtest.h>
#include <signal.h>

#include <nlohmann/json.hpp>

#include <regex>
#include <thread>

#include "server/wire.h"
#include "tests/system/gateway.h"
#include "tests/system/lifecycle.h"

namespace {

using json = nlohmann::json;

bool is_loaded() {
    return read_file("/run/gateway/driver").starts_with("loaded\n");
}

bool are_vaps_up() {
    return is_up("ath0") && is_up("ath8");
}

// Text with the number of seconds in it written N.
std::string without_seconds(const std::string &text) {
    return std::regex_replace(text, std::regex("(waited +)[0-9]+"), "$1N");
}

constexpr const char SCENARIO_FILE[] = "/run/gateway/scenario";

class ClientLifecycle : public WatchedGateway {
protected:
    void SetUp() override {
        scenario = read_file(SCENARIO_FILE);
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1",
                   "AP_ENABLE=1", "AP_ENABLE_9=1"});
        begin_watching();
    }

    void TearDown() override {
        write_file(SCENARIO_FILE, scenario);
        settle();
    }

    std::string scenario;

    long runs(const std::string &tool) const {
        strings lines = lines_since(JOURNAL_FILE, journal_mark);
        return std::count(lines.begin(), lines.end(), "run " + tool);
    }
};

TEST_F(ClientLifecycle, InitIsFollowedUntilEveryVapThatIsSwitchedOnIsUp) {
    run_command("fast_down.sh");
    // Four seconds, of which the driver takes two and each VAP one.
    write_file(SCENARIO_FILE,
               std::regex_replace(scenario, std::regex("script apup seconds=[0-9.]+"), "script apup seconds=4"));
    command_output init = client("init --wait");
    EXPECT_EQ(init.status, 0);
    EXPECT_TRUE(are_vaps_up());
    EXPECT_EQ(without_seconds(init.text), "state    up\nwaited   N\nvaps_up  1 9\n");
    EXPECT_TRUE(std::regex_match(init.errors, std::regex("\\.{4,}\n"))) << init.errors;
    EXPECT_EQ(runs("apup"), 1);
}

TEST_F(ClientLifecycle, ValuesThatCannotBeShownBareAreUsageAndNothingIsRequested) {
    for (const char *command : {"load", "init", "reset", "reconnect"}) {
        command_output run = client(std::string(command) + " --wait -o value");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.errors,
                  std::string(command) + ": the result has several values: choose one by its name with --field\n");
    }
    command_output load = client("load --wait --field state");
    EXPECT_EQ(load.status, 0) << load.errors;
    EXPECT_EQ(load.text, "loaded\n");
}

TEST_F(ClientLifecycle, InitWaitsOnlyForVapsWhoseRadioIsSwitchedOn) {
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_RADIO_ENABLED=0", "AP_RADIO_ENABLED_2=1",
               "AP_ENABLE=1", "AP_ENABLE_3=1", "AP_ENABLE_9=1"});
    run_command("fast_down.sh");
    json answer = json::parse(client("-o json init --wait").text, nullptr, false);
    EXPECT_EQ(answer["command"], "init");
    EXPECT_EQ(answer["result"]["state"], "up");
    EXPECT_EQ(answer["result"]["vaps_up"], (json{1, 3}));
    EXPECT_GE(answer["result"]["waited"], 2) << "seen twice, a second apart";
}

TEST_F(ClientLifecycle, InitWithoutAnyVapWaitsForTheDriver) {
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1"});
    run_command("fast_down.sh; fault apup slow 3");
    command_output init = client("init --wait");
    EXPECT_EQ(init.status, 0);
    EXPECT_EQ(without_seconds(init.text), "state    up\nwaited   N\nvaps_up  none\n");
    EXPECT_TRUE(is_loaded());
}

TEST_F(ClientLifecycle, DriverIsLoadedWhenOnlyTheSecondRadioIsThere) {
    run_command("fast_down.sh; echo 0 > /sys/bus/pci/slots/0000:02:00.0/power");
    command_output load = client("load --wait-for 20");
    EXPECT_EQ(load.status, 0) << load.errors;
    EXPECT_EQ(read_file("/run/gateway/driver"), "loaded\nabsent wifi0\n");
    run_command("fast_down.sh; echo 1 > /sys/bus/pci/slots/0000:02:00.0/power; echo 1 > /sys/bus/pci/rescan");
}

TEST_F(ClientLifecycle, VapsThatAreNotUpInTimeAreStatusFourAndNamed) {
    run_command("fast_down.sh; fault apup missing");
    command_output init = client("init --wait-for 2");
    EXPECT_EQ(init.status, 4);
    EXPECT_EQ(init.text, "");
    EXPECT_TRUE(init.errors.ends_with(".\ninit: requested, but not up within 2 s: VAP 1, 9 not up\n")) << init.errors;
    json answer = json::parse(client("-o json init --wait-for 2").text, nullptr, false);
    EXPECT_EQ(answer["vaps_down"], (json{1, 9}));
    EXPECT_EQ(answer["error"]["status"], 4);
    EXPECT_EQ(answer["error"]["message"], "requested, but not up within 2 s: VAP 1, 9 not up");
}

TEST_F(ClientLifecycle, ResetIsFollowedUntilTheDriverIsGoneSoThatALoadIsCarriedOutBehindIt) {
    run_command("apup");
    ASSERT_EQ(client("load --wait").status, 0);
    ASSERT_EQ(runs("apup_simple"), 1);
    run_command("fault fast_down.sh slow 2");
    command_output reset = client("reset --wait");
    EXPECT_EQ(reset.status, 0);
    EXPECT_EQ(without_seconds(reset.text), "state   down\nwaited  N\n");
    EXPECT_FALSE(is_loaded());
    EXPECT_FALSE(is_up("ath0"));
    command_output load = client("load 1 --wait");
    EXPECT_EQ(load.status, 0);
    EXPECT_EQ(without_seconds(load.text), "state   loaded\nwaited  N\n");
    EXPECT_TRUE(is_loaded());
    EXPECT_FALSE(are_vaps_up());
    EXPECT_EQ(runs("apup_simple"), 2);
}

TEST_F(ClientLifecycle, VapsThatStayUpAreNamedByAReset) {
    run_command("apup; fault fast_down.sh missing");
    command_output reset = client("reset --wait-for 2");
    EXPECT_EQ(reset.status, 4);
    EXPECT_TRUE(reset.errors.ends_with(".\nreset: requested, but not down within 2 s: VAP 1, 9 still up\n"))
        << reset.errors;
    // Nor are they overlooked when no radio answers.
    run_command("fault iwpriv silent");
    json answer = json::parse(client("-o json reset --wait-for 3").text, nullptr, false);
    EXPECT_EQ(answer["vaps_up"], (json{1, 9}));
}

TEST_F(ClientLifecycle, LoadIsFollowedUntilTheInsertionIsOver) {
    run_command("fast_down.sh; fault apup_simple slow 2");
    auto begun = steady_clock::now();
    EXPECT_EQ(client("load --wait").status, 0);
    EXPECT_GE(seconds_since(begun), 2.0);
    EXPECT_TRUE(is_loaded());
}

TEST_F(ClientLifecycle, ReconnectIsFollowedThroughTheDriversEndToItsNextStart) {
    run_command("apup");
    auto begun = steady_clock::now();
    command_output reconnect = client("reconnect --wait");
    EXPECT_EQ(reconnect.status, 0);
    EXPECT_GE(seconds_since(begun), 14.0);
    EXPECT_EQ(without_seconds(reconnect.text), "state    up\nwaited   N\nvaps_up  1 9\n");
    EXPECT_TRUE(are_vaps_up());
    EXPECT_EQ(runs("apup"), 2);
}

TEST_F(ClientLifecycle, ReconnectThatTakesNothingDownIsNotTakenForOneThatIsOver) {
    run_command("apup; fault fast_down.sh hang");
    command_output reconnect = client("reconnect --wait-for 3");
    EXPECT_EQ(reconnect.status, 4);
    EXPECT_TRUE(reconnect.errors.ends_with(".\nreconnect: requested, but not down within 3 s: VAP 1, 9 still up\n"))
        << reconnect.errors;
}

// As while a reconnect cancels a load, or the queue is looked at, only longer.
TEST_F(ClientLifecycle, ServerThatDoesNotAnswerForAWhileIsWaitedFor) {
    run_command("fast_down.sh");
    int child = last_child();
    std::thread busy([&] {
        eventually([&] { return runs("apup") == 1; });
        kill(child, SIGSTOP);
        std::this_thread::sleep_for(std::chrono::milliseconds(2500));
        kill(child, SIGCONT);
    });
    auto begun = steady_clock::now();
    command_output init = client("--timeout 1 init --wait");
    busy.join();
    EXPECT_EQ(init.status, 0) << init.errors;
    EXPECT_GE(seconds_since(begun), 2.5);
    EXPECT_EQ(without_seconds(init.text), "state    up\nwaited   N\nvaps_up  1 9\n");
}

TEST_F(ClientLifecycle, ServerThatNeverAnswersIsGivenUpAtTheLimit) {
    int child = last_child();
    kill(child, SIGSTOP);
    auto begun = steady_clock::now();
    command_output init = client("--timeout 1 init --wait-for 2");
    double taken = seconds_since(begun);
    kill(child, SIGCONT);
    EXPECT_EQ(init.status, 4);
    EXPECT_GE(taken, 2.0);
    EXPECT_LT(taken, 7.0);
    EXPECT_TRUE(init.errors.ends_with("\ninit: requested, but not up within 2 s: the server does not answer\n"))
        << init.errors;
    EXPECT_TRUE(eventually([&] { return runs("apup") == 1; })) << "it was sent, once";
}

TEST_F(ClientLifecycle, WithoutWaitingTheCommandReturnsAtOnceAsTheOperationDoes) {
    run_command("fault apup hang");
    auto begun = steady_clock::now();
    EXPECT_EQ(client("init").text, "ok\n");
    EXPECT_LT(seconds_since(begun), 2.0);
}

}  // namespace
