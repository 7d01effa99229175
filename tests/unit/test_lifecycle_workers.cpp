// The lifecycle's workers: which commands each runs, in which order, with which pauses, what the flags and results are
// meanwhile, what is printed, and how much of its stack it uses.
#include "lifecycle/workers.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "lifecycle/requests.h"
#include "lifecycle/state.h"
#include "survey/control_channel.h"
#include "tests/support/lifecycle.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/steps.h"

namespace {

const char CLIENT[] = "/usr/sbin/vlk_rpc_wlan_config_client";
const char KEPT_CLIENT[] = "/usr/sbin/vlk_rpc_wlan_config_client.kept";
const char QUEUE_CHECK[] = "popen /usr/sbin/vlk_rpc_wlan_config_client checkThreadQueue";

// Where the collectors' names are links on a gateway: scripts here, so that nothing real is started.
const char *const COLLECTORS[] = {"/var/run/radstat0", "/var/run/radstat8"};

// A script in the client's place, recorded as the tool "client". The process of a death test finds one there already.
void put_client_in_place() {
    install_tool("client");
    bool is_kept = std::filesystem::is_symlink(KEPT_CLIENT);
    ASSERT_TRUE(is_kept || rename(CLIENT, KEPT_CLIENT) == 0);
    unlink(CLIENT);
    ASSERT_EQ(symlink((std::string(FAKE_TOOLS) + "/client").c_str(), CLIENT), 0);
}

void put_client_back() {
    unlink(CLIENT);
    rename(KEPT_CLIENT, CLIENT);
}

struct LifecycleWorkers : testing::Test {
    void SetUp() override {
        reset_platform();
        reset_lifecycle();
        for (const char *tool : {"apup", "apup_simple", "fast_down.sh", "cfg", "killall", "softblock", "iwpriv"})
            install_tool(tool);
        for (const char *collector : COLLECTORS) {
            unlink(collector);
            write_file(collector, "#!/bin/sh\n");
            chmod(collector, 0755);
        }
        unlink(STEERING_SOCKET);
        put_client_in_place();
        store({});
    }

    void TearDown() override {
        end_steps();
        set_debug(false);
        put_client_back();
        for (const char *collector : COLLECTORS)
            unlink(collector);
        reset_lifecycle();
    }

    void store(std::vector<std::string> lines) {
        lines.push_back("AP_VAP_NUM=8");
        write_store(lines);
    }

    // Runs a worker on this thread, its request being under way. Its steps, each with what its flag, driver_loaded and
    // its result are at that moment.
    step_list run(void *(*worker)(void *), std::atomic<uint8_t> *state, std::atomic<int32_t> *result,
                  const std::string &refused = "") {
        *state = WORKER_RUNNING;
        driver_loaded = 1;
        step_list moments;
        step_rules rules;
        rules.refused = refused;
        rules.before = [&](const std::string &step) {
            moments.push_back(step + " | state " + std::to_string(*state) + ", loaded " +
                              std::to_string(driver_loaded) + ", result " + std::to_string(*result));
        };
        begin_steps(rules);
        void *exit_value = nullptr;
        printed = capture([&] { exit_value = worker(nullptr); });
        end_steps();
        EXPECT_EQ(exit_value, result);
        return moments;
    }

    step_list run_load(const std::string &refused = "") {
        return run(load_thread_function, &load_state, &load_result, refused);
    }
    step_list run_init(const std::string &refused = "") {
        return run(init_thread_function, &init_state, &init_result, refused);
    }
    step_list run_reset(const std::string &refused = "") {
        return run(reset_thread_function, &reset_state, &reset_result, refused);
    }
    step_list run_reconnect(const std::string &refused = "") {
        return run(reconnect_thread_function, &reconnect_state, &reconnect_result, refused);
    }

    // The debug lines of the worker itself.
    std::string own_debug_lines(const std::string &worker) const {
        std::string own;
        for (size_t at = 0, end; (end = printed.out.find('\n', at)) != std::string::npos; at = end + 1) {
            std::string line = printed.out.substr(at, end + 1 - at);
            if (line.starts_with("[VLK-API] " + worker + " "))
                own += line;
        }
        return own;
    }

    printed_text printed;
};

// A soft-block daemon that takes everything and does nothing.
struct silent_daemon {
    int file;

    silent_daemon() : file(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        strcpy(address.sun_path, STEERING_SOCKET);
        unlink(STEERING_SOCKET);
        EXPECT_EQ(bind(file, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    }
    ~silent_daemon() {
        close(file);
        unlink(STEERING_SOCKET);
    }

    // The next message, NUL and all; "" when there is none.
    std::string take() const {
        char text[256];
        ssize_t length = recv(file, text, sizeof(text), MSG_DONTWAIT);
        return std::string(text, length > 0 ? static_cast<size_t>(length) : 0);
    }
};

// --- load ---

TEST_F(LifecycleWorkers, LoadRunsItsScriptThenClearsItsFlagThenTriggersTheQueueCheck) {
    EXPECT_EQ(run_load(), (step_list{"popen apup_simple > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                     std::string(QUEUE_CHECK) + " | state 0, loaded 1, result 0"}));
    EXPECT_EQ(tool_calls(), (calls{"apup_simple ", "client checkThreadQueue"}));
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(LifecycleWorkers, LoadSaysWhatItDoesWhenDebugging) {
    set_debug(true);
    run_load();
    EXPECT_EQ(own_debug_lines("load_thread_function"),
              "[VLK-API] load_thread_function started load thread.\n[VLK-API] load_thread_function wlan loaded.\n");
}

TEST_F(LifecycleWorkers, LoadWhoseScriptCannotBeStartedFailsAndStillTriggersTheQueueCheck) {
    set_debug(true);
    EXPECT_EQ(run_load("apup_simple"), (step_list{"popen apup_simple > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                                  std::string(QUEUE_CHECK) + " | state 0, loaded 1, result -1"}));
    EXPECT_EQ(printed.err, "[VLK-API] Error load_thread_function load thread failed !!!\n");
    EXPECT_EQ(own_debug_lines("load_thread_function"), "[VLK-API] load_thread_function started load thread.\n");
    EXPECT_EQ(tool_calls(), calls{"client checkThreadQueue"});
}

// --- init ---

TEST_F(LifecycleWorkers, InitReappliesSettingsTellsSoftBlockAndSettlesTheStoreBeforeItClearsItsFlag) {
    silent_daemon daemon;
    EXPECT_EQ(run_init(), (step_list{"popen apup > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                     "system killall radstat0 | state 1, loaded 1, result 7",
                                     "system killall radstat8 | state 1, loaded 1, result 7",
                                     "system iwpriv wifi1 enable_ol_stats 0 | state 1, loaded 1, result 7",
                                     "popen cfg -c | state 1, loaded 1, result 7",
                                     std::string(QUEUE_CHECK) + " | state 0, loaded 1, result 0"}));
    EXPECT_EQ(daemon.take(), std::string("restart\0", 8));
    EXPECT_EQ(daemon.take(), "");
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(LifecycleWorkers, InitSaysWhatItDoesWhenDebugging) {
    silent_daemon daemon;
    set_debug(true);
    run_init();
    EXPECT_EQ(own_debug_lines("init_thread_function"),
              "[VLK-API] init_thread_function entry.\n"
              "[VLK-API] init_thread_function wlan init - traffic is now passing.\n");
    EXPECT_EQ(printed.err, "");
}

TEST_F(LifecycleWorkers, InitWhoseScriptCannotBeStartedStillDoesItsLaterSteps) {
    silent_daemon daemon;
    set_debug(true);
    EXPECT_EQ(run_init("popen apup"), (step_list{"popen apup > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                                 "system killall radstat0 | state 1, loaded 1, result 7",
                                                 "system killall radstat8 | state 1, loaded 1, result 7",
                                                 "system iwpriv wifi1 enable_ol_stats 0 | state 1, loaded 1, result 7",
                                                 "popen cfg -c | state 1, loaded 1, result 7",
                                                 std::string(QUEUE_CHECK) + " | state 0, loaded 1, result -1"}));
    EXPECT_EQ(printed.err, "[VLK-API] Error init_thread_function init_thread failed!!!\n");
    EXPECT_EQ(own_debug_lines("init_thread_function"), "[VLK-API] init_thread_function entry.\n");
    EXPECT_EQ(daemon.take(), std::string("restart\0", 8));
}

TEST_F(LifecycleWorkers, InitWhoseStoreCannotBeSettledSucceedsAllTheSame) {
    silent_daemon daemon;
    EXPECT_EQ(run_init("cfg -c").back(), std::string(QUEUE_CHECK) + " | state 0, loaded 1, result 0");
}

TEST_F(LifecycleWorkers, InitStartsSoftBlockAnewWhenItCannotBeTold) {
    step_list steps = run_init();
    ASSERT_EQ(steps.size(), 8u);
    EXPECT_EQ(steps[3], "system iwpriv wifi1 enable_ol_stats 0 | state 1, loaded 1, result 7");
    EXPECT_EQ(steps[4], "system killall softblock | state 1, loaded 1, result 7");
    EXPECT_EQ(steps[5], "system softblock & | state 1, loaded 1, result 7");
    EXPECT_EQ(steps[6], "popen cfg -c | state 1, loaded 1, result 7");
    EXPECT_TRUE(contains(printed.err,
                         "[VLK-API] Error notifyWiFiRestartToSBCtrl something is wrong, need to restart "
                         "soft block\n"))
        << printed.err;
}

// The 2.4 GHz radio is of no interest in mode 2; the 5 GHz radio has to be on and to have a VAP.
TEST_F(LifecycleWorkers, InitTurnsStatisticsOnOnlyForTheRadioThatIsWanted) {
    silent_daemon daemon;
    store({"RSG_Enable=2", "RSG_Rate=7", "RSG_Interval=900", "AP_RADIO_ID_9=1", "AP_RADIO_ENABLED=1",
           "AP_RADIO_ENABLED_2=1", "AP_ENABLE=1", "AP_ENABLE_11=1"});
    step_list steps = run_init();
    ASSERT_EQ(steps.size(), 7u);
    EXPECT_TRUE(steps[1].starts_with("system killall radstat0 |"));
    EXPECT_TRUE(steps[2].starts_with("system killall radstat8 |"));
    EXPECT_TRUE(steps[3].starts_with("system /var/run/radstat8 -i ath8 -r 7 -m 900 -R 30& |")) << steps[3];
    EXPECT_TRUE(steps[4].starts_with("system iwpriv wifi1 enable_ol_stats 1 |"));
}

// --- reset ---

TEST_F(LifecycleWorkers, ResetStopsSoftBlockThenTheDriverThenUnloadsIt) {
    EXPECT_EQ(run_reset(), (step_list{"system killall softblock | state 1, loaded 1, result 7",
                                      "popen fast_down.sh > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                      std::string(QUEUE_CHECK) + " | state 0, loaded 0, result 0"}));
    EXPECT_EQ(tool_calls(), (calls{"killall softblock", "fast_down.sh ", "client checkThreadQueue"}));
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(LifecycleWorkers, ResetSaysWhatItDoesWhenDebugging) {
    set_debug(true);
    run_reset();
    EXPECT_EQ(own_debug_lines("reset_thread_function"), "[VLK-API] reset_thread_function wlan reset complete.\n");
}

TEST_F(LifecycleWorkers, ResetWhoseScriptCannotBeStartedFailsButUnloads) {
    set_debug(true);
    EXPECT_EQ(run_reset("fast_down.sh"), (step_list{"system killall softblock | state 1, loaded 1, result 7",
                                                    "popen fast_down.sh > /dev/null 2>&1 | state 1, loaded 1, result 7",
                                                    std::string(QUEUE_CHECK) + " | state 0, loaded 0, result -1"}));
    EXPECT_EQ(printed.err, "[VLK-API] Error reset_thread_function reset thread failed !!!\n");
    EXPECT_EQ(own_debug_lines("reset_thread_function"), "");
}

// --- reconnect ---

TEST_F(LifecycleWorkers, ReconnectUnloadsTheDriverThenResetsTheChipsStepByStepWithItsPauses) {
    step_list steps = run_reconnect();
    step_list wanted;
    for (const char *step : {"popen fast_down.sh > /dev/null 2>&1", "system /usr/sbin/wps_gpio read 100",
                             "system /usr/sbin/wps_gpio read 10", "system /usr/sbin/wps_gpio write 100 1", "pause 1",
                             "system /usr/sbin/wps_gpio write 10 0", "pause 3", "system /usr/sbin/wps_gpio write 10 1",
                             "pause 1", "system /usr/sbin/wps_gpio write 100 0", "pause 1",
                             "system echo 0 > /sys/bus/pci/slots/0000\\:02\\:00.0/power",
                             "system echo 0 > /sys/bus/pci/slots/0000\\:03\\:00.0/power", "pause 2",
                             "system echo 1 > /sys/bus/pci/rescan", "pause 3"})
        wanted.push_back(std::string(step) + " | state 1, loaded 1, result 7");
    wanted.push_back(std::string(QUEUE_CHECK) + " | state 0, loaded 0, result 0");
    EXPECT_EQ(steps, wanted);
}

TEST_F(LifecycleWorkers, ReconnectPrintsItsProgressAlwaysAndAsAnError) {
    run_reconnect();
    const std::string line =
        "[VLK-API] Error reconnect_thread_function Driver unload complete. Resetting Wireless Chipsets...\n";
    EXPECT_TRUE(printed.err.starts_with(line)) << printed.err;
    EXPECT_EQ(printed.err.find(line, 1), std::string::npos) << "once";
    set_debug(true);
    run_reconnect();
    EXPECT_EQ(own_debug_lines("reconnect_thread_function"), "");
}

TEST_F(LifecycleWorkers, ReconnectReachesTheSlotsByTheirNames) {
    for (const char *file : {"/sys/bus/pci/slots/0000:02:00.0/power", "/sys/bus/pci/slots/0000:03:00.0/power"})
        write_file(file, "1\n");
    write_file("/sys/bus/pci/rescan", "");
    run_reconnect();
    EXPECT_EQ(read_file("/sys/bus/pci/slots/0000:02:00.0/power"), "0\n");
    EXPECT_EQ(read_file("/sys/bus/pci/slots/0000:03:00.0/power"), "0\n");
    EXPECT_EQ(read_file("/sys/bus/pci/rescan"), "1\n");
    for (const char *file : {"/sys/bus/pci/slots/0000:02:00.0/power", "/sys/bus/pci/slots/0000:03:00.0/power"})
        write_file(file, "1\n");
}

TEST_F(LifecycleWorkers, ReconnectGoesOnWhateverItsBoardStepsReturn) {
    EXPECT_EQ(run_reconnect("wps_gpio").back(), std::string(QUEUE_CHECK) + " | state 0, loaded 0, result 0");
}

TEST_F(LifecycleWorkers, ReconnectWhoseScriptCannotBeStartedTouchesNoChipButUnloads) {
    EXPECT_EQ(run_reconnect("fast_down.sh"),
              (step_list{"popen fast_down.sh > /dev/null 2>&1 | state 1, loaded 1, result 7",
                         std::string(QUEUE_CHECK) + " | state 0, loaded 0, result -1"}));
    EXPECT_EQ(printed.err, "[VLK-API] Error reconnect_thread_function reconnect thread failed on fast_down.sh !!!\n");
}

// --- all of them ---

// A worker's flag, driver_loaded and its result.
struct moment {
    int state, loaded, result;
    bool operator==(const moment &) const = default;
};
using moments = std::vector<moment>;

struct worker {
    const char *name;
    void *(*function)(void *);
    std::atomic<uint8_t> *state;
    std::atomic<int32_t> *result;
    moments order;  // of its stores, when its script cannot be started
};

const worker WORKERS[] = {
    {"load", load_thread_function, &load_state, &load_result, {{1, 1, 7}, {1, 1, -1}, {0, 1, -1}}},
    {"init", init_thread_function, &init_state, &init_result, {{1, 1, 7}, {1, 1, -1}, {0, 1, -1}}},
    {"reset", reset_thread_function, &reset_state, &reset_result, {{1, 1, 7}, {1, 1, -1}, {0, 1, -1}, {0, 0, -1}}},
    {"reconnect",
     reconnect_thread_function,
     &reconnect_state,
     &reconnect_result,
     {{1, 1, 7}, {1, 1, -1}, {1, 0, -1}, {0, 0, -1}}},
};

struct LifecycleWorker : LifecycleWorkers, testing::WithParamInterface<worker> {};

std::ostream &operator<<(std::ostream &out, const worker &which) {
    return out << which.name;
}

std::string worker_name(const testing::TestParamInfo<worker> &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, LifecycleWorker, testing::ValuesIn(WORKERS), worker_name);

TEST_P(LifecycleWorker, LeavesTheFlagsAndResultsOfTheOthersAlone) {
    load_state = init_state = reset_state = reconnect_state = WORKER_RUNNING;
    run(GetParam().function, GetParam().state, GetParam().result);
    for (const worker &other : WORKERS) {
        bool is_own = other.function == GetParam().function;
        EXPECT_EQ(*other.state, is_own ? WORKER_IDLE : WORKER_RUNNING) << other.name;
        EXPECT_EQ(*other.result, is_own ? 0 : NO_RESULT) << other.name;
    }
}

TEST_P(LifecycleWorker, DoesNotLookAtTheExitStatusOfItsScript) {
    for (const char *script : {"apup", "apup_simple", "fast_down.sh"})
        install_tool(script, "", 1);
    run(GetParam().function, GetParam().state, GetParam().result);
    EXPECT_EQ(*GetParam().result, 0);
}

TEST_P(LifecycleWorker, TakesAnAbsentScriptForOneThatRan) {
    for (const char *script : {"apup", "apup_simple", "fast_down.sh"})
        std::filesystem::remove(std::string(FAKE_TOOLS) + "/" + script);
    run(GetParam().function, GetParam().state, GetParam().result);
    EXPECT_EQ(*GetParam().result, 0);
}

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

std::ostream &operator<<(std::ostream &out, const moment &now) {
    return out << "state " << now.state << ", loaded " << now.loaded << ", result " << now.result;
}

// The worker that is being stepped through, and what it has shown; room for more than any right one shows.
const worker *stepped;
moment shown[16];
size_t shown_count;

// Behind every instruction.
void look_at_moment(int) {
    moment now = {*stepped->state, driver_loaded, *stepped->result};
    if (shown_count < std::size(shown) && (shown_count == 0 || shown[shown_count - 1] != now))
        shown[shown_count++] = now;
}

// Stores that stand side by side are a matter of nanoseconds to another thread, so the processor is made to stop behind
// every instruction.
TEST_P(LifecycleWorker, StoresItsWordsInOrderOneAtATime) {
    constexpr unsigned long long trap_flag = 0x100;
    stepped = &GetParam();
    shown_count = 0;
    *stepped->state = WORKER_RUNNING;
    driver_loaded = 1;
    struct sigaction trap = {}, kept = {};
    trap.sa_handler = look_at_moment;
    step_rules rules;
    rules.refused = "popen";
    rules.run_commands = false;
    begin_steps(rules);
    capture([&] {
        sigaction(SIGTRAP, &trap, &kept);
        __builtin_ia32_writeeflags_u64(__builtin_ia32_readeflags_u64() | trap_flag);
        stepped->function(nullptr);
        __builtin_ia32_writeeflags_u64(__builtin_ia32_readeflags_u64() & ~trap_flag);
        sigaction(SIGTRAP, &kept, nullptr);
    });
    EXPECT_EQ(moments(shown, shown + shown_count), stepped->order);
}

#endif

// The path is set once in a process, so each of these has a process of its own.
TEST_P(LifecycleWorker, ExtendsTheSearchPathToTheDriversScripts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("PATH", "/bin", 1);
            std::string path_of_script;
            step_rules rules;
            rules.run_commands = false;
            rules.before = [&](const std::string &step) {
                if (step.ends_with("> /dev/null 2>&1"))
                    path_of_script = getenv("PATH");
            };
            begin_steps(rules);
            GetParam().function(nullptr);
            fprintf(stderr, "path is <%s>\n", path_of_script.c_str());
            exit(0);
        },
        testing::ExitedWithCode(0), "path is </bin:/etc/ath>");
}

// --- the stack ---

// Of 32 KiB, for what the C library of another machine, or a longer line, may need more.
constexpr size_t LARGEST_USE = 24 << 10;

// Runs a routine on a stack of the workers' size that is filled with a pattern and has an inaccessible page below it.
// How many bytes of it were used, the C library's own at its top included.
size_t stack_used_by(void *(*routine)(void *)) {
    constexpr unsigned char paint = 0xa5;
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_t size = page + WORKER_STACK_SIZE;
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    EXPECT_NE(memory, MAP_FAILED);
    unsigned char *stack = static_cast<unsigned char *>(memory) + page;
    memset(stack, paint, WORKER_STACK_SIZE);
    EXPECT_EQ(mprotect(memory, page, PROT_NONE), 0);

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    EXPECT_EQ(pthread_attr_setstack(&attributes, stack, WORKER_STACK_SIZE), 0);
    pthread_t thread;
    step_rules rules;
    rules.start_threads = true;
    begin_steps(rules);
    EXPECT_EQ(pthread_create(&thread, &attributes, routine, nullptr), 0);
    pthread_join(thread, nullptr);
    end_steps();
    pthread_attr_destroy(&attributes);

    size_t unused = 0;
    while (unused < WORKER_STACK_SIZE && stack[unused] == paint)
        unused++;
    munmap(memory, size);
    return WORKER_STACK_SIZE - unused;
}

void expect_room_on_the_stack(const worker &which, const char *road) {
    set_debug(true);
    size_t used = 0;
    capture([&] { used = stack_used_by(which.function); });
    testing::Test::RecordProperty(std::string("stack_") + which.name + "_" + road, static_cast<int>(used));
    EXPECT_GT(used, 0u);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LE(used, LARGEST_USE) << which.name << ", " << road;
#endif
}

TEST_P(LifecycleWorker, HasRoomOnItsStackWithDebuggingOnAndLongSettings) {
    const std::string tail = std::string(1700, ' ');
    store({"RSG_Enable=3" + tail, "RSG_Rate=7" + tail, "RSG_Interval=9" + tail, "AP_RADIO_ID_9=1" + tail,
           "AP_RADIO_ENABLED=1" + tail, "AP_RADIO_ENABLED_2=1" + tail, "AP_ENABLE_8=1" + tail,
           "AP_ENABLE_16=1" + tail});
    expect_room_on_the_stack(GetParam(), "debugging");
}

TEST_P(LifecycleWorker, HasRoomOnItsStackWhenNothingCanBeStarted) {
    begin_descriptor_shortage();
    size_t used = stack_used_by(GetParam().function);
    end_descriptor_shortage();
    RecordProperty(std::string("stack_") + GetParam().name + "_shortage", static_cast<int>(used));
    EXPECT_EQ(*GetParam().result, -1);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LE(used, LARGEST_USE);
#endif
}

TEST_P(LifecycleWorker, HasRoomOnItsStackBesideADaemonThatDoesNotAnswer) {
    silent_daemon daemon;
    expect_room_on_the_stack(GetParam(), "daemon");
}

// --- with the service thread ---

bool eventually(const std::function<bool()> &condition) {
    for (int i = 0; i < 10000; i++) {
        if (condition())
            return true;
        usleep(1000);
    }
    return false;
}

// Makes the driver's scripts wait until they are told to go on.
void install_waiting_scripts() {
    for (const char *script : {"apup", "apup_simple", "fast_down.sh"})
        write_file(std::string(FAKE_TOOLS) + "/" + script,
                   std::string("#!/bin/sh\nwhile [ ! -e ") + FAKE_TOOLS + "/go ]; do sleep 0.01; done\n");
}

// What is shared between the threads is looked at by the thread sanitizer here.
TEST_P(LifecycleWorker, RunsBesideRequestsOnTheServiceThread) {
    silent_daemon daemon;
    install_waiting_scripts();
    set_debug(true);
    driver_loaded = 1;
    lifecycle_request request = {&load_thread, GetParam().function, nullptr, GetParam().name, GetParam().state};
    step_rules rules;
    rules.start_threads = true;
    begin_steps(rules);
    capture([&] {
        EXPECT_EQ(thread_wrapper(&request), 0);
        EXPECT_EQ(*GetParam().state, WORKER_RUNNING);
        EXPECT_EQ(wlan_load(), 0);
        EXPECT_EQ(wlan_init(), 0);
        EXPECT_EQ(wlan_reset(), 0);
        write_file(std::string(FAKE_TOOLS) + "/go", "");
        EXPECT_TRUE(eventually([] {
            const calls called = tool_calls();
            return !called.empty() && called.back() == "client checkThreadQueue";
        }));
        EXPECT_EQ(*GetParam().state, WORKER_IDLE);
        EXPECT_EQ(*GetParam().result, 0);
    });
}

}  // namespace
