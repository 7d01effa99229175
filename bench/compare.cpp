#include "bench/compare.h"

#include <stdio.h>

#include "bench/goals.h"
#include "bench/processes.h"

constexpr double SLICE_SECONDS = 0.1;
constexpr double REHEARSAL_SLICE_SECONDS = 0.002;

static double slice_seconds() {
    return rehearsing() ? REHEARSAL_SLICE_SECONDS : SLICE_SECONDS;
}

static void add_slice(side *side, const running_server &server, const load_call &call, int outstanding) {
    double before = processor_seconds(server.serving);
    load_outcome outcome = load_for(call, outstanding, slice_seconds());
    ask_for(outcome.failed == 0, "a call failed");
    side->processor += processor_seconds(server.serving) - before;
    side->calls += outcome.latencies.size();
    side->rates.push_back(static_cast<double>(outcome.latencies.size()) / outcome.seconds);
    side->latencies.insert(side->latencies.end(), outcome.latencies.begin(), outcome.latencies.end());
}

// Side by side, since the machine is another one from second to second; who begins takes turns.
comparison compare(const running_server &server, const load_call &ours, const running_server &floor,
                   const load_call &theirs, int outstanding, int rounds) {
    comparison result = {};
    std::vector<double> ratios;
    load_for(ours, outstanding, slice_seconds() / 2);
    load_for(theirs, outstanding, slice_seconds() / 2);
    for (int round = 0; round < (rehearsing() ? 1 : rounds); round++) {
        if (round % 2)
            add_slice(&result.floor, floor, theirs, outstanding);
        add_slice(&result.ours, server, ours, outstanding);
        if (round % 2 == 0)
            add_slice(&result.floor, floor, theirs, outstanding);
        ratios.push_back(result.ours.rates.back() / result.floor.rates.back());
    }
    result.ratio = median(ratios);
    return result;
}

static void print_side(const char *name, const side &side) {
    printf("    %-12s %8.0f calls/s   p50 %7.1f us   p99 %7.1f us   processor %6.2f us a call\n", name,
           median(side.rates), percentile(side.latencies, 0.5), percentile(side.latencies, 0.99),
           side.processor * 1e6 / static_cast<double>(side.calls));
}

void print_comparison(const char *name, const comparison &result, double goal) {
    report(goal::TIMED, result.ratio >= goal, "%-58s %5.3f of the bare server, at least %.2f", name, result.ratio,
           goal);
    print_side("server", result.ours);
    print_side("bare server", result.floor);
}
