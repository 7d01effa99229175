#include "soak/invariants.h"

#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "simulator/paths.h"
#include "soak/calls.h"
#include "soak/report.h"
#include "soak/server.h"
#include "soak/store_lock.h"
#include "soak/traffic.h"
#include "tests/support/examples.h"

// Between two looks at the store, and at the child.
constexpr useconds_t STORE_LOOK = 100'000;
constexpr useconds_t CHILD_LOOK = 50'000;

// How long after its calls the lifecycle is at rest: a reconnect pauses for eleven seconds while it resets the chips,
// the init that it parks waits three more, and each may have been cancelled and begun again.
constexpr double LIFECYCLE_SECONDS = 2 * (11 + 3 + 5);

// Memory that a plain server may have more than at the first quiet moment, in kB: the heap has pieces in between that
// are free and too small to be given back. A sanitizer keeps what was freed for a while.
constexpr long MEMORY_KB = 2048;
constexpr long SANITIZED_MEMORY_KB = 128L * 1024;

// Looks until there is rest, and between two of them.
constexpr int REST_LOOKS = 4;
constexpr useconds_t REST_LOOK = 100'000;

// The client number of the calls of quiet moments.
constexpr int QUIET_CLIENT = 80;

static std::atomic<bool> watching;
static std::vector<std::thread> threads;

struct sizes {
    process_size supervisor, child;
};
static sizes first, most;
static bool measured;

// --- the store ---

struct store_look {
    bool readable;
    std::set<std::string> keys;
    std::string wrong;  // empty for a whole store
};

// The keys of the lines. Those that are there twice, after defaults were restored, are settled by the next init.
static std::set<std::string> keys_of(const std::string &lines) {
    std::set<std::string> keys;
    for (size_t begin = 0; begin < lines.size(); begin = lines.find('\n', begin) + 1) {
        std::string line = lines.substr(begin, lines.find('\n', begin) - begin);
        if (line.find('=') != std::string::npos)
            keys.insert(line.substr(0, line.find('=')));
    }
    return keys;
}

static store_look look_into(const std::string &text) {
    static const std::string header = "CFG\n";
    if (!text.starts_with(header))
        return {true, {}, "it does not begin with its header"};
    size_t end = text.find('\0');
    if (end == std::string::npos)
        return {true, {}, "it has no end"};
    if (text[end - 1] != '\n')
        return {true, {}, "its last line does not end"};
    return {true, keys_of(text.substr(header.size(), end - header.size())), ""};
}

// The settings of stations with a weight of their own come and go with these: a tool of the platform takes them out.
constexpr const char STATION_SETTINGS[] = "ATF_STA_";

static std::string first_not_in(const std::set<std::string> &before, const std::set<std::string> &now) {
    for (const std::string &key : before)
        if (!now.contains(key) && !key.starts_with(STATION_SETTINGS))
            return key;
    return "";
}

static store_look read_store() {
    store_lock_holder lock;
    struct stat status = {};
    if (stat(APCFG_STORE, &status) != 0 || !S_ISREG(status.st_mode))
        return {false, {}, ""};
    return look_into(read_whole_file(APCFG_STORE));
}

// Reads as everybody does, under the lock. Whoever broke it on purpose is no half writer, and may take keys away.
static void watch_store() {
    std::set<std::string> keys;
    int disturbed = -1;
    while (watching) {
        bool quiet = traffic.disturbing == 0;
        int disturbed_before = traffic.disturbed;
        store_look look = read_store();
        quiet = quiet && traffic.disturbing == 0 && disturbed_before == traffic.disturbed;
        if (look.readable && !look.wrong.empty())
            violated("whole store", "%s", look.wrong.c_str());
        if (quiet && !look.readable)
            violated("whole store", "it is not there");
        std::string lost = first_not_in(keys, look.keys);
        if (quiet && disturbed == disturbed_before && !lost.empty())
            violated("whole store", "it had %zu settings and has %zu: %.100s is gone", keys.size(), look.keys.size(),
                     lost.c_str());
        keys = look.keys;
        disturbed = quiet ? disturbed_before : -1;
        usleep(STORE_LOOK);
    }
}

// --- the child ---

// A child that ends by itself has met something that the server does not survive.
static void watch_child() {
    pid_t supervisor = find_supervisor();
    pid_t child = find_child(supervisor);
    while (watching) {
        bool excused = traffic.excused > 0;
        pid_t now = find_child(supervisor);
        excused = excused || traffic.excused > 0;
        if (now != child) {
            traffic.losses++;
            if (!excused && child != 0)
                violated("living child", "child %d has ended by itself", static_cast<int>(child));
            say("the child is %d now", static_cast<int>(now));
        }
        child = now;
        usleep(CHILD_LOOK);
    }
}

void start_watching() {
    watching = true;
    threads.emplace_back(watch_store);
    threads.emplace_back(watch_child);
}

void end_watching() {
    watching = false;
    for (std::thread &thread : threads)
        thread.join();
    threads.clear();
}

// --- quiet moments ---

// Whether no worker is under way. How many threads that leaves is not known before the first time.
static bool is_at_rest(pid_t child) {
    for (const char *script : {"apup", "apup_simple", "fast_down.sh", "insmod"})
        if (!processes_of(script).empty())
            return false;
    return descendants_of(child).empty() && (!measured || size_of_process(child).threads <= first.child.threads);
}

static void complain_about_unrest(pid_t child) {
    std::string names;
    for (const std::string &name : descendants_of(child))
        names += " " + name;
    violated("no growth", "the lifecycle does not come to rest: %d threads,%s", size_of_process(child).threads,
             names.c_str());
}

// A worker that ends may start the next one a little later, so there has to be rest for some looks.
static void wait_for_rest(pid_t supervisor) {
    double end = run_second() + LIFECYCLE_SECONDS * options.patience;
    for (int looks = 0; looks < REST_LOOKS;) {
        pid_t child = find_child(supervisor);
        looks = child != 0 && is_at_rest(child) ? looks + 1 : 0;
        if (run_second() > end)
            return complain_about_unrest(child);
        usleep(REST_LOOK);
    }
}

// So that everything that a child keeps once it was used is there; the thread sanitizer has a thread more after the
// first worker.
static void use_everything() {
    static int number = QUIET_CLIENT;
    caller self = open_caller(number++);
    exchange(&self, row_named("wlan_init")->number, "");
    for (size_t i = 0; i < procedure_row_count; i++) {
        const procedure_row &row = procedure_rows[i];
        if (is_getter(row) &&
            exchange(&self, row.number, encoded_arguments(row, example_words(row))).outcome == exchange_outcome::LOST)
            violated("answers", "%s is not answered at a quiet moment", row.name);
    }
    close_caller(&self);
}

static void compare(const char *whose, const process_size &before, const process_size &now, long memory) {
    if (now.descriptors != before.descriptors)
        violated("no growth", "the %s has %d descriptors and had %d", whose, now.descriptors, before.descriptors);
    if (now.threads != before.threads)
        violated("no growth", "the %s has %d threads and had %d", whose, now.threads, before.threads);
    if (now.resident_kb > before.resident_kb + memory)
        violated("no growth", "the %s has %ld kB of memory and had %ld", whose, now.resident_kb, before.resident_kb);
}

static void look_at_processes(pid_t child) {
    std::vector<std::string> started = descendants_of(child);
    std::vector<std::string> dead = zombies();
    if (!started.empty())
        violated("no growth", "the child has processes, %s among them", started[0].c_str());
    if (!dead.empty())
        violated("no growth", "there are zombies, %s among them", dead[0].c_str());
}

// What the sanitizers say stands in the same log.
static void look_at_log() {
    static size_t seen;
    std::string log = log_since(seen);
    seen += log.size();
    for (const char *text : {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer", "WARNING: ThreadSanitizer",
                             "FATAL: ThreadSanitizer", "runtime error: ", "unable to free "}) {
        size_t place = log.find(text);
        if (place != std::string::npos)
            violated("living child", "the log has \"%s\"", log.substr(place, log.find('\n', place) - place).c_str());
    }
}

static void remember_most(const process_size &now, process_size *highest) {
    highest->descriptors = std::max(highest->descriptors, now.descriptors);
    highest->threads = std::max(highest->threads, now.threads);
    highest->resident_kb = std::max(highest->resident_kb, now.resident_kb);
}

void look_at_quiet_moment() {
    pid_t supervisor = find_supervisor();
    wait_for_rest(supervisor);
    use_everything();
    wait_for_rest(supervisor);
    pid_t child = find_child(supervisor);
    sizes now = {size_of_process(supervisor), size_of_process(child)};
    say("quiet: child %d has %d descriptors, %d threads, %ld kB; the supervisor %d, %d, %ld kB",
        static_cast<int>(child), now.child.descriptors, now.child.threads, now.child.resident_kb,
        now.supervisor.descriptors, now.supervisor.threads, now.supervisor.resident_kb);
    if (!measured)
        first = most = now;
    measured = true;
    long memory = is_sanitized(child) ? SANITIZED_MEMORY_KB : MEMORY_KB;
    compare("child", first.child, now.child, memory);
    compare("supervisor", first.supervisor, now.supervisor, memory);
    remember_most(now.child, &most.child);
    look_at_processes(child);
    look_at_log();
}

void say_growth() {
    say("memory of the child: %ld kB at the first quiet moment, %ld kB at most", first.child.resident_kb,
        most.child.resident_kb);
}
