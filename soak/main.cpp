// soak: calls of all procedures, valid, wrong and hostile, while the platform breaks; and what must hold meanwhile.
//
//   soak [--seed N] [--seconds N] [--patience FACTOR]
//   soak faults                                         the table of faults, for docs/soak.md
//
// Runs inside the simulated gateway only, and breaks it. The same seed gives the same calls of each client and the same
// faults at the same times. Status 0 when everything held, 1 when something did not, 2 when it could not begin. See
// docs/soak.md.
#include <inttypes.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "config/log.h"
#include "soak/clients.h"
#include "soak/invariants.h"
#include "soak/report.h"
#include "soak/schedule.h"
#include "soak/server.h"
#include "soak/traffic.h"

// From one quiet moment to the next, and what of it the quiet moment takes at most, as a rule.
constexpr double LEAST_ROUND = 15;
constexpr double MOST_ROUND = 40;
constexpr double ROUNDS = 4;
constexpr double QUIET_SECONDS = 3;

// In the last part of a storm nobody loads or starts the driver, so that it soon comes to rest.
constexpr double LIFECYCLE_REST = 4;

// How often every procedure has to be called.
constexpr double COVERAGE_SECONDS = 120;

// The faults have a sequence of their own.
constexpr uint64_t FAULT_SEQUENCE = 1000;

static int usage() {
    fputs("usage: soak [--seed N] [--seconds N] [--patience FACTOR]\n       soak faults\n", stderr);
    return 2;
}

static bool read_options(int count, char **words) {
    for (int i = 1; i + 1 < count; i += 2) {
        char *end = words[i + 1];
        if (strcmp(words[i], "--seed") == 0)
            options.seed = strtoull(words[i + 1], &end, 10);
        else if (strcmp(words[i], "--seconds") == 0)
            options.seconds = strtod(words[i + 1], &end);
        else if (strcmp(words[i], "--patience") == 0)
            options.patience = strtod(words[i + 1], &end);
        if (end == words[i + 1] || *end != '\0')
            return false;
    }
    return count % 2 == 1 && options.seconds > 0 && options.patience >= 1;
}

// Whether the processes that would be killed are the gateway's alone.
static bool is_inside_gateway() {
    return getenv("VLK_PRIVATE_NAMESPACE") && read_whole_file("/proc/1/comm").starts_with("vlk_simulated_g") &&
           find_supervisor() != 0;
}

static void set_debug_lines() {
    FILE *file = fopen(DEBUG_SWITCH_FILE, "we");
    if (file)
        fclose(file);
}

static void be_quiet() {
    pause_clients();
    mend_everything();
    look_at_quiet_moment();
    set_debug_lines();
    resume_clients();
}

// Everybody calls and everything breaks, for so many seconds.
static void storm(double seconds, bool sanitized, random_source *source) {
    static std::vector<const fault_row *> rows;
    double end = run_second() + seconds;
    traffic.lifecycle_end = end - LIFECYCLE_REST;
    carry_out(plan_steps(seconds, sanitized, &rows, source));
    while (run_second() < end)
        usleep(10'000);
}

static void say_end() {
    traffic_counts counts = counts_of_traffic();
    say_faults();
    say_growth();
    say("%ld calls answered, %ld of them refused, %ld lost with their child or address, %ld hostile datagrams",
        counts.answered, counts.refused, counts.lost, counts.hostile);
    say("longest silence %.2f s of %.1f s", counts.longest_silence, ANSWER_SECONDS * options.patience);
    say("processor time: %.1f s of the soak, %.1f s of the server and what it ran", processor_seconds(getpid()),
        processor_seconds(find_supervisor()) + processor_seconds(find_child(find_supervisor())));
    if (violations() > 0)
        say("FAILED, %d violations: soak --seed %" PRIu64 " --seconds %.0f", violations(), options.seed,
            options.seconds);
    else
        say("everything held: seed %" PRIu64 ", %.0f seconds", options.seed, options.seconds);
}

static void run() {
    random_source source = random_source_of(options.seed, FAULT_SEQUENCE);
    bool sanitized = is_sanitized(find_child(find_supervisor()));
    double length = std::clamp(options.seconds / ROUNDS, LEAST_ROUND, MOST_ROUND);
    int rounds = std::max(1, static_cast<int>(lround(options.seconds / length)));
    double covered = 0;
    set_debug_lines();
    look_at_quiet_moment();
    start_watching();
    start_clients();
    for (int i = 1; i <= rounds; i++) {
        storm(length - QUIET_SECONDS, sanitized, &source);
        be_quiet();
        if (static_cast<double>(i) * length - covered >= COVERAGE_SECONDS) {
            look_at_coverage();
            covered = static_cast<double>(i) * length;
        }
    }
    end_clients();
    end_watching();
}

int main(int count, char **words) {
    if (count == 2 && strcmp(words[1], "faults") == 0) {
        print_faults();
        return 0;
    }
    if (!read_options(count, words))
        return usage();
    if (!is_inside_gateway()) {
        fputs("soak runs inside the simulated gateway only, where it breaks nothing else\n", stderr);
        return 2;
    }
    say("seed %" PRIu64 ", %.0f seconds, patience %.1f", options.seed, options.seconds, options.patience);
    run();
    say_end();
    return violations() > 0 ? 1 : 0;
}
