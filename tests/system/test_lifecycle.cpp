// The driver's lifecycle over the wire: what is started, parked, dropped, absorbed and cancelled while scripts take
// their time, seen in the journal and in the server's lines. Runs in gateways of its own.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

#include "lifecycle/workers.h"
#include "server/wire.h"
#include "tests/system/gateway.h"
#include "tests/system/lifecycle.h"
#include "tests/system/smoke.h"

namespace {

#ifndef WLAN_SANITIZED
static_assert(WORKER_STACK_SIZE == 32768, "what the workers of the server under test have");
#endif

// A script that is to be running takes this long, or until it is killed.
constexpr const char SLOW[] = "slow 600";

// One request, and the script that its worker runs first.
struct kind {
    const char *name;
    uint32_t procedure;
    bool has_argument;
    std::string script;
};

const kind LOAD = {"wlan_load", PROC_wlan_load, true, "apup_simple"};
const kind INIT = {"wlan_init", PROC_wlan_init, false, "apup"};
const kind RESET = {"wlan_reset", PROC_wlan_reset, false, "fast_down.sh"};
const kind RECONNECT = {"pci_reconnect", PROC_wlan_pci_reconnect, false, "fast_down.sh"};

std::string still_processing(const kind &busy) {
    return std::string("[VLK-API] Error thread_wrapper ********** ") + busy.name +
           " - still processing, request queued. **********";
}

std::string cancelling(const kind &busy) {
    return std::string("[VLK-API] Error thread_wrapper ********** cancelling ") + busy.name + " process **********";
}

class Lifecycle : public WatchedGateway {
protected:
    void SetUp() override {
        set_debug(true);
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_RADIO_ENABLED=1", "AP_RADIO_ENABLED_2=1",
                   "AP_ENABLE=1", "AP_ENABLE_9=1"});
        begin_watching();
        first_log_mark = log_mark;
        child = last_child();
    }

    void TearDown() override {
        EXPECT_EQ(last_child(), child) << "the server's child has died";
        for (const std::string &line : lines_since(SERVER_LOG_FILE, first_log_mark))
            EXPECT_TRUE(line.find("Sanitizer") == std::string::npos && line.find("runtime error:") == std::string::npos)
                << line;
        set_debug(false);
        settle();
    }

    // Calls, and how long that took.
    double file(const kind &request) {
        auto begin = steady_clock::now();
        call_reply reply = call_patiently(request.procedure, request.has_argument ? xdr_word(0) : "");
        EXPECT_EQ(code_of(reply), 0) << request.name;
        return seconds_since(begin);
    }

    // How often a line stands in the journal, or begins one of the server's, since the test began.
    long journalled(const std::string &line) const {
        strings lines = lines_since(JOURNAL_FILE, journal_mark);
        return std::count(lines.begin(), lines.end(), line);
    }
    long printed(const std::string &beginning) const {
        return static_cast<long>(lines_with({beginning}).size());
    }

    long runs(const kind &request) const {
        return journalled("run " + request.script);
    }
    bool await_run(const kind &request, long count) const {
        return eventually([&] { return runs(request) >= count; });
    }

    // How often a worker, or the test, has had the queue looked at, to the end.
    long queue_checks() const {
        return printed("[VLK-API] wlan_check_thread_queue_1_svc  WLAN RPC server : return code :0");
    }

    // Files a request whose script does not end by itself, and waits until that runs.
    void begin(const kind &request) {
        run_command("fault " + request.script + " " + SLOW);
        long before = runs(request);
        EXPECT_LT(file(request), 1.0);
        ASSERT_TRUE(await_run(request, before + 1)) << request.name;
    }

    // Ends the running script of a request; further ones take their usual time.
    void release(const kind &request) {
        run_command("fault " + request.script + " off");
        EXPECT_EQ(run_command("killall " + request.script).status, 0);
    }

    // What was put into the queue since a mark of the server's lines: names, "" for its being emptied.
    strings queued_since(size_t mark) const {
        strings names;
        for (const std::string &line : lines_since(SERVER_LOG_FILE, mark)) {
            if (!line.starts_with("[VLK-API] queue_thread queue'd -> "))
                continue;
            size_t begin = line.find(" name: ") + 7;
            names.push_back(line.substr(begin, line.find(" state: ") - begin));
        }
        return names;
    }

    size_t first_log_mark = 0;
    int child = 0;
};

// --- every cell of the table ---

// While `busy` runs, with an init parked or nothing, the request comes. What it puts into the queue, and what starts
// when the busy one has ended.
struct cell {
    const kind *busy;
    bool init_parked;
    const kind *request;
    strings queued;
    const kind *next;  // null for none
};

const cell CELLS[] = {
    {&LOAD, false, &LOAD, {"wlan_load"}, &LOAD},
    {&LOAD, false, &INIT, {"wlan_init"}, &INIT},
    {&LOAD, false, &RESET, {"wlan_reset"}, &RESET},
    {&LOAD, true, &LOAD, {}, &INIT},
    {&LOAD, true, &INIT, {}, &INIT},
    {&LOAD, true, &RESET, {}, &INIT},
    {&INIT, false, &LOAD, {"wlan_load"}, &LOAD},
    {&INIT, false, &INIT, {"wlan_init"}, &INIT},
    {&INIT, false, &RESET, {"wlan_reset"}, &RESET},
    {&INIT, true, &LOAD, {}, &INIT},
    {&INIT, true, &INIT, {}, &INIT},
    {&INIT, true, &RESET, {}, &INIT},
    {&RESET, false, &LOAD, {"wlan_load"}, &LOAD},
    {&RESET, false, &INIT, {"wlan_init"}, &INIT},
    {&RESET, false, &RESET, {""}, nullptr},
    {&RESET, false, &RECONNECT, {"pci_reconnect"}, &RECONNECT},
    {&RESET, true, &LOAD, {}, &INIT},
    {&RESET, true, &INIT, {}, &INIT},
    {&RESET, true, &RESET, {""}, nullptr},
    {&RESET, true, &RECONNECT, {"pci_reconnect"}, &RECONNECT},
};

class LifecycleCell : public Lifecycle, public testing::WithParamInterface<cell> {
protected:
    // A load that came out of the queue after a reset leaves driver_loaded at 0, so that another one is accepted.
    void begin_load_from_queue() {
        begin(RESET);
        file(LOAD);
        run_command("fault apup_simple " + std::string(SLOW));
        release(RESET);
        ASSERT_TRUE(await_run(LOAD, 1));
    }
};

TEST_P(LifecycleCell, IsAsTheTableSays) {
    const cell &now = GetParam();
    if (now.busy == &LOAD && now.request == &LOAD)
        begin_load_from_queue();
    else
        begin(*now.busy);
    if (now.init_parked) {
        file(INIT);
    }
    long checks = queue_checks();
    size_t mark = mark_of(SERVER_LOG_FILE);
    EXPECT_LT(file(*now.request), 1.0);
    EXPECT_EQ(queued_since(mark), now.queued);
    strings lines = lines_since(SERVER_LOG_FILE, mark);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), still_processing(*now.busy)), 1);

    const kind &next = now.next ? *now.next : INIT;
    long before = runs(next);
    auto released = steady_clock::now();
    release(*now.busy);
    if (now.next) {
        EXPECT_TRUE(await_run(next, before + 1));
        EXPECT_GE(seconds_since(released), 3.0);
        return;
    }
    ASSERT_TRUE(eventually([&] { return queue_checks() == checks + 1; }));
    EXPECT_EQ(printed("[VLK-API] wlan_checkThreadQueue de-queue'd"), 0);
    file(INIT);
    EXPECT_TRUE(await_run(INIT, before + 1)) << "nothing runs, so this starts at once";
    EXPECT_EQ(runs(INIT), before + 1);
}

std::ostream &operator<<(std::ostream &out, const cell &which) {
    return out << which.request->name << " during " << which.busy->name;
}

std::string cell_name(const testing::TestParamInfo<cell> &info) {
    return std::string(info.param.request->name) + "_during_" + info.param.busy->name +
           (info.param.init_parked ? "_with_init_parked" : "");
}

INSTANTIATE_TEST_SUITE_P(Table, LifecycleCell, testing::ValuesIn(CELLS), cell_name);

// While a reconnect runs, which takes too long to be waited for in each of these.
class LifecycleReconnectRow : public Lifecycle {
protected:
    void SetUp() override {
        Lifecycle::SetUp();
        begin(RECONNECT);
    }

    // What a request puts into the queue.
    strings queued_by(const kind &request) {
        size_t mark = mark_of(SERVER_LOG_FILE);
        long said = printed(still_processing(RECONNECT));
        EXPECT_LT(file(request), 1.0);
        EXPECT_EQ(printed(still_processing(RECONNECT)), said + 1);
        return queued_since(mark);
    }
};

TEST_F(LifecycleReconnectRow, ItsOwnInitStaysParkedUntilAResetEmptiesTheQueue) {
    EXPECT_EQ(queued_since(log_mark), strings{"wlan_init"});
    EXPECT_EQ(queued_by(LOAD), strings{});
    EXPECT_EQ(queued_by(INIT), strings{});
    EXPECT_EQ(queued_by(RECONNECT), strings{});
    EXPECT_EQ(queued_by(RESET), strings{""});
}

TEST_F(LifecycleReconnectRow, OtherRequestsReplaceEachOtherInAQueueWithoutInit) {
    EXPECT_EQ(queued_by(RESET), strings{""});
    EXPECT_EQ(queued_by(LOAD), strings{"wlan_load"});
    EXPECT_EQ(queued_by(RECONNECT), strings{"pci_reconnect"});
    EXPECT_EQ(queued_by(INIT), strings{"wlan_init"});
    EXPECT_EQ(queued_by(RECONNECT), strings{});
}

// --- nothing runs ---

const kind RESTART = {"wlan_restart", PROC_wlan_restart, true, "apup"};
const kind RESTART_ALL = {"wlan_restart_all", PROC_wlan_restart_all, false, "apup"};

class LifecycleStart : public Lifecycle, public testing::WithParamInterface<kind> {};

TEST_P(LifecycleStart, HappensAtOnceAndTheWorkerHasTheQueueLookedAt) {
    EXPECT_LT(file(GetParam()), 1.0);
    EXPECT_TRUE(await_run(GetParam(), 1));
    EXPECT_TRUE(eventually([&] { return queue_checks() == 1; }));
    EXPECT_EQ(queued_since(log_mark), strings{}) << "nothing was parked";
    EXPECT_EQ(commands().front(), GetParam().script + " > /dev/null 2>&1");
    EXPECT_EQ(commands().back(), "/usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue");
    EXPECT_EQ(printed("[VLK-API] Error thread_wrapper"), 0);
}

std::ostream &operator<<(std::ostream &out, const kind &which) {
    return out << which.name;
}

std::string kind_name(const testing::TestParamInfo<kind> &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, LifecycleStart, testing::Values(LOAD, INIT, RESET, RESTART, RESTART_ALL), kind_name);

// --- the workers on the platform ---

// The steps of a chip reset, as they reach the shell.
const strings CHIP_RESET = {
    "/usr/sbin/wps_gpio read 100",
    "/usr/sbin/wps_gpio read 10",
    "/usr/sbin/wps_gpio write 100 1",
    "/usr/sbin/wps_gpio write 10 0",
    "/usr/sbin/wps_gpio write 10 1",
    "/usr/sbin/wps_gpio write 100 0",
    "echo 0 > /sys/bus/pci/slots/0000\\:02\\:00.0/power",
    "echo 0 > /sys/bus/pci/slots/0000\\:03\\:00.0/power",
    "echo 1 > /sys/bus/pci/rescan",
};

class LifecycleWorker : public Lifecycle {
protected:
    // The server's commands without captured output that contain none of these words.
    strings shell_commands_without(const strings &words) const {
        strings found = commands_since(journal_mark, "system ");
        for (const std::string &word : words)
            std::erase_if(found, [&](const std::string &command) { return command.find(word) != std::string::npos; });
        return found;
    }

    bool await_queue_checks(long count) const {
        return eventually([&] { return queue_checks() >= count; });
    }
};

TEST_F(LifecycleWorker, InitBringsTheVapsUpAndSettlesTheStore) {
    run_command("fast_down.sh");
    ASSERT_FALSE(is_up("ath0"));
    file(INIT);
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_TRUE(is_up("ath0"));
    EXPECT_TRUE(is_up("ath8"));
    EXPECT_FALSE(is_up("ath1"));
    EXPECT_EQ(commands(),
              (strings{"apup > /dev/null 2>&1", "cfg -c", "/usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue"}));
}

TEST_F(LifecycleWorker, ResetStopsSoftBlockAndTakesTheVapsDown) {
    run_command("apup");
    ASSERT_TRUE(is_up("ath0"));
    file(RESET);
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_FALSE(is_up("ath0"));
    EXPECT_FALSE(is_up("ath8"));
    EXPECT_EQ(commands_since(journal_mark, "system "), strings{"killall softblock"});
}

TEST_F(LifecycleWorker, SecondLoadStartsNothingUntilAResetHasUnloadedTheDriver) {
    file(LOAD);
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_EQ(commands_since(journal_mark, "system "), (strings{"killall softblock", "softblock &"}));
    file(LOAD);
    EXPECT_EQ(printed("[VLK-API] wlan_load driver already loaded"), 1);
    EXPECT_EQ(commands_since(journal_mark, "system ").size(), 2u);
    file(RESET);
    ASSERT_TRUE(await_queue_checks(2));
    file(LOAD);
    ASSERT_TRUE(await_queue_checks(3));
    EXPECT_EQ(runs(LOAD), 2);
}

TEST_F(LifecycleWorker, ScriptThatIsKilledCountsAsASuccess) {
    begin(INIT);
    release(INIT);
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_EQ(printed("[VLK-API] init_thread_function wlan init - traffic is now passing."), 1);
    EXPECT_EQ(printed("[VLK-API] Error init_thread_function"), 0);
}

// The shell says that there is no such script and could itself be started: nobody looks at what it returned.
TEST_F(LifecycleWorker, ScriptThatIsMissingCountsAsASuccessAndLeavesTheWorkerIdle) {
    run_command("fast_down.sh; fault apup missing");
    file(INIT);
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_EQ(printed("[VLK-API] init_thread_function wlan init - traffic is now passing."), 1);
    EXPECT_FALSE(is_up("ath0"));
    run_command("fault apup off");
    file(INIT);
    ASSERT_TRUE(await_queue_checks(2));
    EXPECT_TRUE(is_up("ath0"));
}

TEST_F(LifecycleWorker, ScriptThatCannotBeStartedIsSaidAndLeavesTheWorkerIdle) {
    run_command("fault popen EMFILE");
    file(LOAD);
    ASSERT_TRUE(
        eventually([&] { return printed("[VLK-API] Error load_thread_function load thread failed !!!") == 1; }));
    ASSERT_TRUE(
        eventually([&] { return journalled("popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue") == 1; }));
    run_command("fault popen off");
    file(LOAD);
    EXPECT_EQ(printed("[VLK-API] wlan_load driver already loaded"), 1) << "the failed one counts";
    file(RESET);
    EXPECT_TRUE(await_run(RESET, 1));
    EXPECT_EQ(printed(still_processing(LOAD)), 0);
}

TEST_F(LifecycleWorker, ScriptThatHangsIsInNobodyElsesWay) {
    begin(INIT);
    auto begun = steady_clock::now();
    EXPECT_EQ(get_number(PROC_wlan_get_enable, 1), (number_result{0, 1}));
    EXPECT_EQ(set_text(PROC_wlan_set_ssid, 1, "Meanwhile"), 0);
    EXPECT_EQ(get_text(PROC_wlan_get_ssid, 1), (text_result{0, "Meanwhile"}));
    EXPECT_LT(seconds_since(begun), 2.0);
    EXPECT_EQ(queue_checks(), 0);
}

TEST_F(LifecycleWorker, QueueCheckOfAnEmptyQueueReturnsAtOnce) {
    auto begun = steady_clock::now();
    EXPECT_EQ(run_command("/usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue").status, 0);
    EXPECT_LT(seconds_since(begun), 2.0);
    EXPECT_EQ(queue_checks(), 1);
}

TEST_F(LifecycleWorker, ChildThatIsKilledDuringAnInitIsReplacedByOneThatCanInit) {
    begin(INIT);
    run_command("fault apup off");
    renew_child();
    child = last_child();
    EXPECT_LT(file(INIT), 1.0);
    EXPECT_TRUE(await_run(INIT, 2));
    ASSERT_TRUE(await_queue_checks(1));
    EXPECT_EQ(printed(still_processing(INIT)), 0);
    EXPECT_TRUE(is_up("ath0"));
}

TEST_F(LifecycleWorker, ReconnectResetsTheChipsInElevenSecondsAndAnInitFollows) {
    auto begun = steady_clock::now();
    EXPECT_LT(file(RECONNECT), 1.0);
    ASSERT_TRUE(await_run(RECONNECT, 1));
    ASSERT_TRUE(eventually([] { return !is_up("ath0"); }));
    ASSERT_TRUE(
        eventually([&] { return journalled("popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue") == 1; }));
    EXPECT_GE(seconds_since(begun), 11.0);
    EXPECT_EQ(commands_since(journal_mark, "system "), CHIP_RESET);
    EXPECT_EQ(printed("[VLK-API] Error reconnect_thread_function Driver unload complete."), 1);
    ASSERT_TRUE(await_run(INIT, 1));
    EXPECT_GE(seconds_since(begun), 14.0);
    EXPECT_TRUE(eventually([] { return is_up("ath0") && is_up("ath8"); }));
}

// --- cancelling ---

const strings CANCELLATION = {"killall apup", "killall apup_simple",
                              "while [ \"`ps | grep insmod | grep -v grep`\" ]; do sleep 1; done;"};

class LifecycleCancellation : public LifecycleWorker {
protected:
    // The cancelling commands among the server's.
    strings cancelling_commands() const {
        strings found = commands_since(journal_mark, "system ");
        std::erase_if(found, [](const std::string &command) {
            return std::find(CANCELLATION.begin(), CANCELLATION.end(), command) == CANCELLATION.end();
        });
        return found;
    }
};

TEST_F(LifecycleCancellation, OfALoadEmptiesTheQueueAndStartsTheReconnect) {
    begin(LOAD);
    file(INIT);
    size_t mark = mark_of(SERVER_LOG_FILE);
    EXPECT_GE(file(RECONNECT), 3.0);
    EXPECT_EQ(queued_since(mark), (strings{"", "wlan_init"}));
    EXPECT_EQ(cancelling_commands(), CANCELLATION);
    EXPECT_EQ(printed(cancelling(LOAD)), 1);
    EXPECT_TRUE(await_run(RECONNECT, 1));
}

// A process of that name; the real thing runs for as long as an insertion takes.
TEST_F(LifecycleCancellation, WaitsForAModuleInsertion) {
    begin(LOAD);
    run_command("ln -sf /bin/sleep /tmp/insmod; /tmp/insmod 600 > /dev/null 2>&1 &");
    std::thread end_of_insertion([] {
        std::this_thread::sleep_for(std::chrono::seconds(2));
        run_command("killall insmod");
    });
    EXPECT_GE(file(RECONNECT), 5.0);
    end_of_insertion.join();
    EXPECT_TRUE(await_run(RECONNECT, 1));
}

// The worker of the cancelled init asks for the queue while the service thread is busy with the cancellation, or soon
// after: the init that follows the reconnect has to survive that.
TEST_F(LifecycleCancellation, OfAnInitLeadsThroughTheReconnectToAnotherInit) {
    begin(INIT);
    file(LOAD);
    EXPECT_EQ(queued_since(log_mark), strings{"wlan_load"});
    run_command("fault apup off");
    size_t mark = mark_of(SERVER_LOG_FILE);
    auto begun = steady_clock::now();
    EXPECT_GE(file(RECONNECT), 3.0);
    EXPECT_EQ(queued_since(mark), (strings{"", "wlan_init"}));
    EXPECT_EQ(cancelling_commands(), CANCELLATION);
    EXPECT_EQ(printed(cancelling(INIT)), 1);
    ASSERT_TRUE(await_run(INIT, 2));
    EXPECT_GE(seconds_since(begun), 17.0);
    EXPECT_EQ(shell_commands_without({"killall", "while", "softblock", "radstat", "iwpriv"}), CHIP_RESET);
    EXPECT_TRUE(eventually([] { return is_up("ath0") && is_up("ath8"); }));
    EXPECT_EQ(runs(LOAD), 0) << "it was in the queue that was emptied";
}

// --- what an init applies again ---

// Which radios are on, and which VAPs.
struct radios {
    bool radio_2g, radio_5g, vap_2g, vap_5g;
};

class LifecycleStatistics : public LifecycleWorker, public testing::WithParamInterface<int> {};

strings collector_commands(int interface, bool wanted) {
    std::string number = std::to_string(interface);
    strings commands = {"killall radstat" + number};
    if (wanted)
        commands.push_back("/var/run/radstat" + number + " -i ath" + number + " -r 11 -m 700 -R 30&");
    if (interface == 8)
        commands.push_back(std::string("iwpriv wifi1 enable_ol_stats ") + (wanted ? "1" : "0"));
    return commands;
}

TEST_P(LifecycleStatistics, AreStartedForTheRadiosThatTheirModeWantsAndThatAreInUse) {
    int mode = GetParam();
    for (const radios &now :
         {radios{true, true, true, true}, radios{false, true, true, true}, radios{true, false, true, true},
          radios{true, true, false, true}, radios{true, true, true, false}}) {
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "RSG_Enable=" + std::to_string(mode),
                   "RSG_Rate=11", "RSG_Interval=700", std::string("AP_RADIO_ENABLED_2=") + (now.radio_2g ? "1" : "0"),
                   std::string("AP_RADIO_ENABLED=") + (now.radio_5g ? "1" : "0"),
                   std::string("AP_ENABLE_8=") + (now.vap_2g ? "1" : "0"),
                   std::string("AP_ENABLE_16=") + (now.vap_5g ? "1" : "0")});
        begin_watching();
        file(INIT);
        ASSERT_TRUE(await_queue_checks(1));
        strings wanted = collector_commands(0, (mode == 1 || mode == 3) && now.radio_2g && now.vap_2g);
        for (const std::string &command : collector_commands(8, (mode == 2 || mode == 3) && now.radio_5g && now.vap_5g))
            wanted.push_back(command);
        EXPECT_EQ(shell_commands_without({"ln -s", "softblock"}), wanted)
            << "radios " << now.radio_2g << now.radio_5g << ", VAPs " << now.vap_2g << now.vap_5g;
    }
}

INSTANTIATE_TEST_SUITE_P(Mode, LifecycleStatistics, testing::Range(0, 4));

// --- the rows ---

TEST_F(Lifecycle, WithoutTheDebugSwitchOnlyErrorsAreWritten) {
    set_debug(false);
    for (const procedure_row &row : rows_of_lifecycle(true))
        EXPECT_EQ(call_patiently(row.number, sample_arguments(row)).outcome, call_outcome::SUCCESS) << row.name;
    for (const std::string &line : lines_with({"[VLK-API]"}))
        EXPECT_TRUE(line.starts_with("[VLK-API] Error ")) << line;
}

INSTANTIATE_TEST_SUITE_P(Table, Procedures, testing::ValuesIn(rows_of_lifecycle(true)), procedure_name);

}  // namespace

void prepare_for_row() {}

void settle_after_row() {
    settle();
}
