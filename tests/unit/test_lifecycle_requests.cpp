// Lifecycle requests: what is started, parked, dropped, absorbed and cancelled, what is said about it, and the queue.
// No worker runs here: threads are recorded, not started, and the tests set the flags that workers would.
#include "lifecycle/requests.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "lifecycle/state.h"
#include "lifecycle/workers.h"
#include "tests/support/events.h"
#include "tests/support/lifecycle.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"

namespace {

// What a cancellation does before it empties the queue.
const step_list CANCELLATION = {"system killall apup", "system killall apup_simple",
                                "system while [ \"`ps | grep insmod | grep -v grep`\" ]; do sleep 1; done;", "pause 3"};

struct LifecycleRequests : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_lifecycle();
        take_events();
        record();
    }

    void TearDown() override {
        end_steps();
        reset_lifecycle();
    }

    void record(step_rules rules = {}) {
        rules.run_commands = false;
        begin_steps(rules);
    }
};

// One request, as clients file it.
struct kind {
    int (*file)();
    const char *name;
    pthread_t *handle;
    void *(*worker)(void *);
    std::atomic<uint8_t> *state;
};

const kind LOAD = {wlan_load, "wlan_load", &load_thread, load_thread_function, &load_state};
const kind INIT = {wlan_init, "wlan_init", &init_thread, init_thread_function, &init_state};
const kind RESET = {wlan_reset, "wlan_reset", &reset_thread, reset_thread_function, &reset_state};
const kind RECONNECT = {wlan_pci_reconnect, "pci_reconnect", &reconnect_thread, reconnect_thread_function,
                        &reconnect_state};
const std::vector<kind> KINDS = {LOAD, INIT, RESET, RECONNECT};

// The request as thread_wrapper and queue_thread take it.
lifecycle_request request_of(const kind &which) {
    return {which.handle, which.worker, nullptr, which.name, which.state};
}

int wrap(const kind &which) {
    lifecycle_request request = request_of(which);
    return thread_wrapper(&request);
}

void park(const kind &which) {
    lifecycle_request request = request_of(which);
    queue_thread(&request);
}

// What a request prints to standard error; it must return the status.
template <typename Request>
std::string errors_of(Request request, int status = 0) {
    int returned = 4711;
    std::string errors = capture([&] { returned = request(); }).err;
    EXPECT_EQ(returned, status);
    return errors;
}

std::string still_processing(const std::string &name) {
    return "[VLK-API] Error thread_wrapper ********** " + name + " - still processing, request queued. **********\n";
}

std::string cancelling(const std::string &name) {
    return "[VLK-API] Error thread_wrapper ********** cancelling " + name + " process **********\n";
}

std::string started(const std::string &name) {
    return "event ********** " + name + " - thread started. **********\n";
}

// --- every situation ---

// Which workers run, what is parked (null: nothing), and what is requested.
struct situation {
    bool load, init, reset, reconnect;
    const kind *parked;
    const kind *request;
};

// What becomes of it, said as a person would who walks through the workers one by one.
struct consequence {
    std::string errors;
    step_list steps;
    std::string parked;
    bool is_started;
    bool operator==(const consequence &) const = default;
};

std::ostream &operator<<(std::ostream &out, const consequence &what) {
    out << what.errors << "parked: " << what.parked << (what.is_started ? ", started" : ", not started");
    for (const std::string &step : what.steps)
        out << "\n  " << step;
    return out;
}

consequence expected(const situation &now) {
    consequence then = {"", {}, now.parked ? now.parked->name : "", false};
    std::string name = now.request->name;
    bool is_reconnect = name == "pci_reconnect";
    for (const char *worker : {"wlan_load", "wlan_init"}) {
        if (!(std::string(worker) == "wlan_load" ? now.load : now.init))
            continue;
        then.errors += still_processing(worker);
        if (!is_reconnect) {
            if (then.parked != "wlan_init")
                then.parked = name;
            return then;
        }
        then.errors += cancelling(worker);
        then.steps.insert(then.steps.end(), CANCELLATION.begin(), CANCELLATION.end());
        then.parked = "";
    }
    if (now.reset) {
        then.errors += still_processing("wlan_reset");
        if (name == "wlan_reset")
            then.parked = "";
        else if (is_reconnect || then.parked != "wlan_init")
            then.parked = name;
        return then;
    }
    if (now.reconnect) {
        then.errors += still_processing("pci_reconnect");
        if (name == "wlan_reset")
            then.parked = "";
        else if (then.parked != "wlan_init")
            then.parked = name;
        return then;
    }
    if (is_reconnect)
        then.parked = "wlan_init";
    then.steps.push_back("thread");
    then.steps.push_back(started(name));
    then.is_started = true;
    return then;
}

// All combinations of running workers, with each thing parked and each request.
struct EverySituation : LifecycleRequests, testing::WithParamInterface<int> {};

TEST_P(EverySituation, HasTheConsequencesThatTheRulesSay) {
    int running = GetParam();
    for (const kind *parked_before : {(const kind *)nullptr, &LOAD, &INIT, &RESET, &RECONNECT}) {
        for (const kind &request : KINDS) {
            situation now = {(running & 1) != 0, (running & 2) != 0, (running & 4) != 0,
                             (running & 8) != 0, parked_before,      &request};
            reset_lifecycle();
            load_state = now.load;
            init_state = now.init;
            reset_state = now.reset;
            reconnect_state = now.reconnect;
            if (parked_before)
                park(*parked_before);
            uint8_t before = *request.state;
            record();
            std::string errors = errors_of([&] { return wrap(request); });
            bool is_started = before == WORKER_IDLE && *request.state == WORKER_RUNNING;
            EXPECT_EQ((consequence{errors, recorded_steps(), parked(), is_started}), expected(now))
                << request.name << " with " << (parked_before ? parked_before->name : "nothing") << " parked";
        }
    }
}

std::string names_of_workers(const testing::TestParamInfo<int> &info) {
    const char *const workers[] = {"Load", "Init", "Reset", "Reconnect"};
    std::string names;
    for (int i = 0; i < 4; i++)
        names += (info.param >> i) & 1 ? workers[i] : "";
    return names.empty() ? "Nothing" : names;
}

INSTANTIATE_TEST_SUITE_P(Running, EverySituation, testing::Range(0, 16), names_of_workers);

// --- starting ---

TEST_F(LifecycleRequests, EachRequestStartsItsWorkerWithItsHandleAndItsFlag) {
    for (const kind &request : KINDS) {
        reset_lifecycle();
        record();
        EXPECT_EQ(request.file(), 0) << request.name;
        started_thread thread = last_thread();
        EXPECT_EQ(thread.handle, request.handle) << request.name;
        EXPECT_EQ(thread.routine, request.worker) << request.name;
        EXPECT_EQ(thread.argument, nullptr) << request.name;
        EXPECT_EQ(*request.state, WORKER_RUNNING) << request.name;
        EXPECT_EQ(recorded_steps().back(), started(request.name));
        EXPECT_EQ(load_state + init_state + reset_state + reconnect_state, 1) << request.name;
    }
}

TEST_F(LifecycleRequests, AWorkerIsDetachedAndHasTheStackThatItIsMeantToHave) {
    wlan_init();
    EXPECT_EQ(last_thread().stack_size, WORKER_STACK_SIZE);
    EXPECT_TRUE(last_thread().is_detached);
}

TEST_F(LifecycleRequests, AStartIsAnnouncedAsAnEventWithFiveArguments) {
    wlan_reset();
    std::string text = "********** wlan_reset - thread started. **********\n";
    EXPECT_EQ(take_events(), (std::vector<sent_event>{{1, 3, 0, text, text.size()}}));
}

TEST_F(LifecycleRequests, AnEventIsCutTo255Characters) {
    std::string name(300, 'n');
    kind request = INIT;
    request.name = name.c_str();
    EXPECT_EQ(wrap(request), 0);
    std::string text = "********** " + std::string(244, 'n');
    EXPECT_EQ(take_events(), (std::vector<sent_event>{{1, 3, 0, text, 255}}));
}

TEST_F(LifecycleRequests, AStartPrintsNothing) {
    printed_text printed = capture([] {
        set_debug(true);
        wlan_reset();
        set_debug(false);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// A worker may be at its end before its creator goes on. A flag that was set after that would stay for ever.
TEST_F(LifecycleRequests, AWorkerThatEndsAtOnceIsNotTakenForARunningOne) {
    uint8_t at_creation = 4711 & 0xff;
    step_rules rules;
    rules.before = [&](const std::string &step) {
        if (step == "thread")
            at_creation = load_state;
        else if (step.starts_with("event"))
            load_state = WORKER_IDLE;  // the worker's end
    };
    record(rules);
    EXPECT_EQ(wrap(LOAD), 0);
    EXPECT_EQ(at_creation, WORKER_RUNNING);
    EXPECT_EQ(load_state, WORKER_IDLE);
}

TEST_F(LifecycleRequests, AThreadThatCannotBeCreatedIsSaidAndLeavesTheFlag) {
    for (const kind &request : KINDS) {
        reset_lifecycle();
        step_rules rules;
        rules.refused = "thread";
        record(rules);
        EXPECT_EQ(errors_of([&] { return wrap(request); }, -1),
                  std::string("[VLK-API] Error thread_wrapper ********** ") + request.name +
                      " - error creating thread. **********\n");
        EXPECT_EQ(*request.state, WORKER_IDLE);
        EXPECT_EQ(recorded_steps(), step_list{"thread"}) << "no event";
    }
    EXPECT_EQ(parked(), "wlan_init") << "the reconnect's";
}

TEST_F(LifecycleRequests, AnUnknownFlagKeepsItsWorkerFromBeingStarted) {
    for (int state : {2, 255}) {
        for (const kind &request : KINDS) {
            reset_lifecycle();
            *request.state = static_cast<uint8_t>(state);
            record();
            EXPECT_EQ(errors_of([&] { return wrap(request); }, -1),
                      std::string("[VLK-API] Error thread_wrapper ********** ") + request.name +
                          " - unknown state-machine state: " + std::to_string(state) + ". **********\n");
            EXPECT_EQ(*request.state, state);
            EXPECT_EQ(recorded_steps(), step_list{});
            EXPECT_EQ(parked(), request.name == std::string("pci_reconnect") ? "wlan_init" : "");
        }
    }
}

TEST_F(LifecycleRequests, AnUnknownFlagOfAnotherWorkerIsInNobodysWay) {
    for (const kind &request : KINDS) {
        reset_lifecycle();
        load_state = init_state = reset_state = reconnect_state = 2;
        *request.state = WORKER_IDLE;
        record();
        EXPECT_EQ(errors_of([&] { return wrap(request); }), "");
        EXPECT_EQ(*request.state, WORKER_RUNNING);
    }
}

// --- cancelling ---

TEST_F(LifecycleRequests, ACancellationKeepsTheQueueUntilThePauseIsOverAndLeavesTheFlag) {
    load_state = WORKER_RUNNING;
    park(INIT);
    std::vector<std::string> parked_at_step;
    step_rules rules;
    rules.before = [&](const std::string &) { parked_at_step.push_back(parked()); };
    record(rules);
    EXPECT_EQ(wlan_pci_reconnect(), 0);
    // During the four steps; then emptied; then the reconnect's own init.
    ASSERT_EQ(parked_at_step.size(), 6u);
    EXPECT_EQ(parked_at_step[0], "wlan_init");
    EXPECT_EQ(parked_at_step[3], "wlan_init");
    EXPECT_EQ(parked_at_step[4], "wlan_init");
    EXPECT_EQ(load_state, WORKER_RUNNING);
}

TEST_F(LifecycleRequests, ACancellationThatMeetsARunningResetParksTheReconnectInTheEmptiedQueue) {
    init_state = reset_state = WORKER_RUNNING;
    park(INIT);
    EXPECT_EQ(errors_of(wlan_pci_reconnect),
              still_processing("wlan_init") + cancelling("wlan_init") + still_processing("wlan_reset"));
    EXPECT_EQ(recorded_steps(), CANCELLATION);
    EXPECT_EQ(parked(), "pci_reconnect");
}

TEST_F(LifecycleRequests, AWorkerThatEndsDuringACancellationIsNotCancelledAsWell) {
    load_state = init_state = WORKER_RUNNING;
    step_rules rules;
    rules.before = [](const std::string &step) {
        if (step == "pause 3")
            init_state = WORKER_IDLE;
    };
    record(rules);
    EXPECT_EQ(errors_of(wlan_pci_reconnect), still_processing("wlan_load") + cancelling("wlan_load"));
}

TEST_F(LifecycleRequests, APauseIsWaitedForInFullAlthoughASignalArrives) {
    load_state = WORKER_RUNNING;
    step_rules rules;
    rules.refused = "pause 3";
    record(rules);
    wlan_pci_reconnect();
    step_list steps = recorded_steps();
    ASSERT_GE(steps.size(), 5u);
    EXPECT_EQ(steps[3], "pause 3");
    EXPECT_EQ(steps[4], "pause 0.5") << "the rest";
}

TEST_F(LifecycleRequests, APauseIsARealOneOfThatLength) {
    step_rules rules;
    rules.wait_pauses = true;
    record(rules);
    park(INIT);
    timespec before, after;
    clock_gettime(CLOCK_MONOTONIC, &before);
    wlan_checkThreadQueue();
    clock_gettime(CLOCK_MONOTONIC, &after);
    double seconds =
        static_cast<double>(after.tv_sec - before.tv_sec) + static_cast<double>(after.tv_nsec - before.tv_nsec) / 1e9;
    EXPECT_GE(seconds, 3.0);
    EXPECT_LT(seconds, 5.0);
}

// --- load and restart ---

TEST_F(LifecycleRequests, ALoadStartsSoftBlockFirst) {
    EXPECT_EQ(wlan_load(), 0);
    EXPECT_EQ(recorded_steps(),
              (step_list{"system killall softblock", "system softblock &", "thread", started("wlan_load")}));
    EXPECT_EQ(driver_loaded, 1);
}

TEST_F(LifecycleRequests, ASecondLoadDoesNothingAndSaysSoOnlyWhenDebugging) {
    wlan_load();
    load_state = WORKER_IDLE;
    record();
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_load(), 0); }), "[VLK-API] wlan_load driver already loaded\n");
    EXPECT_EQ(recorded_steps(), step_list{});
    set_debug(false);
    EXPECT_EQ(errors_of(wlan_load), "");
}

TEST_F(LifecycleRequests, ALoadThatIsDroppedCountsAsMade) {
    reset_state = WORKER_RUNNING;
    park(INIT);
    EXPECT_EQ(wlan_load(), 0);
    EXPECT_EQ(parked(), "wlan_init");
    EXPECT_EQ(driver_loaded, 1);
}

TEST_F(LifecycleRequests, ALoadWhoseWorkerCannotBeStartedCountsAsMade) {
    step_rules rules;
    rules.refused = "thread";
    record(rules);
    EXPECT_EQ(wlan_load(), -1);
    EXPECT_EQ(driver_loaded, 1);
    EXPECT_EQ(wlan_load(), 0) << "already loaded";
}

TEST_F(LifecycleRequests, DriverLoadedIsSetBeforeSoftBlockAndTheWorkerAreStarted) {
    std::vector<int> loaded;
    step_rules rules;
    rules.before = [&](const std::string &) { loaded.push_back(driver_loaded); };
    record(rules);
    wlan_load();
    EXPECT_EQ(loaded, (std::vector<int>{1, 1, 1, 1}));
}

TEST_F(LifecycleRequests, OtherRequestsTouchNeitherSoftBlockNorDriverLoaded) {
    for (const kind &request : {INIT, RESET, RECONNECT}) {
        for (int loaded : {0, 1}) {
            reset_lifecycle();
            driver_loaded = static_cast<uint8_t>(loaded);
            record();
            EXPECT_EQ(request.file(), 0);
            EXPECT_EQ(recorded_steps(), (step_list{"thread", started(request.name)}));
            EXPECT_EQ(driver_loaded, loaded);
        }
    }
}

TEST_F(LifecycleRequests, BothRestartsAreAnInit) {
    for (auto *restart : {wlan_restart, wlan_restart_all}) {
        reset_lifecycle();
        record();
        EXPECT_EQ(restart(), 0);
        EXPECT_EQ(recorded_steps(), (step_list{"thread", started("wlan_init")}));
        EXPECT_EQ(last_thread().routine, init_thread_function);
        step_rules rules;
        rules.refused = "thread";
        reset_lifecycle();
        record(rules);
        EXPECT_EQ(restart(), -1) << "what init returns";
    }
}

// The path is set once in a process, so these have processes of their own.
struct LifecycleSearchPath : LifecycleRequests {
    void SetUp() override {
        LifecycleRequests::SetUp();
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

[[noreturn]] void print_path_after(int (*request)()) {
    setenv("PATH", "/bin", 1);
    request();
    fprintf(stderr, "path is <%s>\n", getenv("PATH"));
    exit(0);
}

TEST_F(LifecycleSearchPath, RestartsExtendItToTheDriversScripts) {
    EXPECT_EXIT(print_path_after(wlan_restart), testing::ExitedWithCode(0), "path is </bin:/etc/ath>");
    EXPECT_EXIT(print_path_after(wlan_restart_all), testing::ExitedWithCode(0), "path is </bin:/etc/ath>");
}

TEST_F(LifecycleSearchPath, AnInitLeavesItToItsWorker) {
    EXPECT_EXIT(print_path_after(wlan_init), testing::ExitedWithCode(0), "path is </bin>");
}

// --- the queue ---

template <typename Address>
std::string low_word(Address address) {
    return std::to_string(static_cast<int>(static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address))));
}

std::string queue_line(const std::string &how, const kind &which) {
    return "[VLK-API] " + how + " -> thread: " + low_word(which.handle) + " routine: " + low_word(which.worker) +
           " arg: 0 name: " + which.name + " state: " + low_word(which.state) + "\n";
}

const char EMPTY_LINE[] = "[VLK-API] queue_thread queue'd -> thread: 0 routine: 0 arg: 0 name:  state: 0\n";

TEST_F(LifecycleRequests, ParkingKeepsAllFieldsAndIsADebugLine) {
    for (const kind &which : KINDS) {
        EXPECT_EQ(debug_lines([&] { park(which); }), queue_line("queue_thread queue'd", which));
        EXPECT_EQ(queued_request.thread, which.handle);
        EXPECT_EQ(queued_request.routine, which.worker);
        EXPECT_EQ(queued_request.argument, nullptr);
        EXPECT_STREQ(queued_request.name, which.name);
        EXPECT_EQ(queued_request.state, which.state);
    }
}

TEST_F(LifecycleRequests, EmptyingTheQueueIsADebugLineOfZeros) {
    park(INIT);
    reset_state = WORKER_RUNNING;
    EXPECT_EQ(debug_lines([] { wlan_reset(); }), EMPTY_LINE);
    EXPECT_EQ(queued_request.thread, nullptr);
    EXPECT_EQ(queued_request.routine, nullptr);
    EXPECT_EQ(queued_request.argument, nullptr);
    EXPECT_STREQ(queued_request.name, "");
    EXPECT_EQ(queued_request.state, nullptr);
}

TEST_F(LifecycleRequests, AParkedNameIsCutTo16Characters) {
    kind which = INIT;
    which.name = "0123456789abcdefgh";
    park(which);
    EXPECT_STREQ(queued_request.name, "0123456789abcdef");
    which.name = "0123456789abcdef";
    park(which);
    EXPECT_STREQ(queued_request.name, "0123456789abcdef");
}

TEST_F(LifecycleRequests, AParkedNameOf16CharactersIsTakenOutWhole) {
    kind which = INIT;
    which.name = "0123456789abcdef";
    park(which);
    EXPECT_EQ(debug_lines([] { wlan_checkThreadQueue(); }),
              EMPTY_LINE + queue_line("wlan_checkThreadQueue de-queue'd", which));
    EXPECT_EQ(recorded_steps().back(), started("0123456789abcdef"));
}

TEST_F(LifecycleRequests, ANullNameIsTheEmptyName) {
    kind which = INIT;
    which.name = nullptr;
    park(which);
    EXPECT_STREQ(queued_request.name, "");
    EXPECT_EQ(wrap(which), 0);
    EXPECT_EQ(recorded_steps().back(), started(""));
}

TEST_F(LifecycleRequests, AParkedRequestDoesNotDependOnItsCallersName) {
    std::string name = "before";
    kind which = INIT;
    which.name = name.c_str();
    park(which);
    name = "behind";
    EXPECT_STREQ(queued_request.name, "before");
}

TEST_F(LifecycleRequests, AnEmptyQueueIsLookedAtWithoutAPause) {
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_checkThreadQueue(), 0); }), "");
    EXPECT_EQ(recorded_steps(), step_list{});
}

TEST_F(LifecycleRequests, AParkedRequestIsTakenOutAndStartedAfterThreeSeconds) {
    park(RESET);
    EXPECT_EQ(debug_lines([] { EXPECT_EQ(wlan_checkThreadQueue(), 0); }),
              EMPTY_LINE + queue_line("wlan_checkThreadQueue de-queue'd", RESET));
    EXPECT_EQ(recorded_steps(), (step_list{"pause 3", "thread", started("wlan_reset")}));
    EXPECT_EQ(last_thread().routine, reset_thread_function);
    EXPECT_EQ(last_thread().handle, &reset_thread);
    EXPECT_EQ(reset_state, WORKER_RUNNING);
    EXPECT_EQ(parked(), "");
}

TEST_F(LifecycleRequests, AParkedRequestStaysParkedDuringThePause) {
    park(RESET);
    std::string during;
    step_rules rules;
    rules.before = [&](const std::string &step) {
        if (step == "pause 3")
            during = parked();
    };
    record(rules);
    wlan_checkThreadQueue();
    EXPECT_EQ(during, "wlan_reset");
}

TEST_F(LifecycleRequests, AParkedRequestIsParkedAgainWhileAWorkerRuns) {
    park(INIT);
    load_state = WORKER_RUNNING;
    EXPECT_EQ(errors_of(wlan_checkThreadQueue), still_processing("wlan_load"));
    EXPECT_EQ(recorded_steps(), step_list{"pause 3"});
    EXPECT_EQ(parked(), "wlan_init");
    EXPECT_EQ(queued_request.state, &init_state);
}

TEST_F(LifecycleRequests, AParkedLoadIsStartedWithoutSoftBlockAndWithoutLookingAtDriverLoaded) {
    for (int loaded : {0, 1}) {
        reset_lifecycle();
        driver_loaded = static_cast<uint8_t>(loaded);
        park(LOAD);
        record();
        EXPECT_EQ(wlan_checkThreadQueue(), 0);
        EXPECT_EQ(recorded_steps(), (step_list{"pause 3", "thread", started("wlan_load")}));
        EXPECT_EQ(driver_loaded, loaded);
    }
}

TEST_F(LifecycleRequests, AParkedReconnectParksItsInitWhenItIsStarted) {
    park(RECONNECT);
    EXPECT_EQ(wlan_checkThreadQueue(), 0);
    EXPECT_EQ(last_thread().routine, reconnect_thread_function);
    EXPECT_EQ(parked(), "wlan_init");
}

TEST_F(LifecycleRequests, TheQueueCheckReturnsWhatBecameOfTheRequest) {
    park(INIT);
    init_state = 9;
    EXPECT_EQ(errors_of(wlan_checkThreadQueue, -1),
              "[VLK-API] Error thread_wrapper ********** wlan_init - unknown state-machine state: 9. **********\n");
    EXPECT_EQ(parked(), "");
}

}  // namespace
