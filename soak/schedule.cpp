#include "soak/schedule.h"

#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "soak/calls.h"
#include "soak/report.h"
#include "soak/server.h"
#include "soak/traffic.h"
#include "tests/support/examples.h"

// How long a fault is on, and how long everything works in between. Faults that hold the server are no longer than the
// others, so that most of a run is not waiting.
constexpr double FAULT_LEAST = 0.4;
constexpr double FAULT_MOST = 1.6;
constexpr double GAP_LEAST = 0.1;
constexpr double GAP_MOST = 0.6;

// One step in so many has two faults.
constexpr size_t PAIR_EVERY = 4;

// How soon the log tells of a fault whose call has its answer: at once, but for a child that has to be started.
constexpr double LINE_SECONDS = 5;

// How long after the end of a fault a child may still end by it, or a datagram be missing.
constexpr double EXCUSE_SECONDS = 0.5;

// The client number of the calls that meet the faults.
constexpr int FAULT_CLIENT = 100;

struct times {
    int all;
    int alone;
};
static std::map<std::string, times> times_of;

static void wait_until(double second) {
    while (run_second() < second)
        usleep(2000);
}

// The next row that has not had its turn, of another group than a given one.
static const fault_row *take_row(std::vector<const fault_row *> *rows, bool sanitized, const fault_row *beside,
                                 random_source *source) {
    if (rows->empty()) {
        for (size_t i = 0; i < fault_row_count; i++)
            if (!sanitized || !(fault_rows[i].traits & PLAIN_ONLY))
                rows->push_back(&fault_rows[i]);
        shuffle(rows, source);
    }
    const fault_row *row = rows->back();
    if (beside && strcmp(row->group, beside->group) == 0)
        return nullptr;
    rows->pop_back();
    return row;
}

std::vector<fault_step> plan_steps(double seconds, bool sanitized, std::vector<const fault_row *> *rows,
                                   random_source *source) {
    std::vector<fault_step> steps;
    for (double second = 0; second + GAP_MOST + FAULT_MOST < seconds;) {
        fault_step step = {};
        step.begin = second + next_between(source, GAP_LEAST, GAP_MOST);
        step.end = step.begin + next_between(source, FAULT_LEAST, FAULT_MOST);
        step.first = take_row(rows, sanitized, nullptr, source);
        step.second = next_is_one_in(source, PAIR_EVERY) ? take_row(rows, sanitized, step.first, source) : nullptr;
        steps.push_back(step);
        second = step.end;
    }
    return steps;
}

static void begin_row(const fault_row &row) {
    say("fault begins: %s", row.name);
    traffic.disturbing++;
    if (row.traits & HOLDS)
        hold_begins();
    if (row.traits & EXCUSES) {
        traffic.excused++;
        traffic.losses++;
    }
    begin_fault(row);
}

static void end_row(const fault_row &row) {
    end_fault(row);
    if (row.traits & EXCUSES) {
        traffic.losses++;
        usleep(static_cast<useconds_t>(EXCUSE_SECONDS * 1e6));
        traffic.excused--;
    }
    if (row.traits & HOLDS)
        hold_ends();
    traffic.disturbed++;
    traffic.disturbing--;
    say("fault ended: %s", row.name);
}

// Whether the log has one of the texts that stand with a | between them.
static bool has_one_of(const std::string &log, const std::string &texts) {
    for (size_t begin = 0; begin <= texts.size();) {
        size_t end = std::min(texts.find('|', begin), texts.size());
        if (log.find(texts.substr(begin, end - begin)) != std::string::npos)
            return true;
        begin = end + 1;
    }
    return false;
}

static bool log_tells(const fault_row &row, size_t mark) {
    double end = run_second() + LINE_SECONDS * options.patience;
    while (!has_one_of(log_since(mark), row.says)) {
        if (run_second() > end)
            return false;
        usleep(20000);
    }
    return true;
}

// Makes the call that meets a fault, more than once where another call may have mended it just before.
static void meet(const fault_row &row, caller *self, size_t mark) {
    if (row.procedure[0] == '\0')
        return;
    const procedure_row *called = row_named(row.procedure);
    if (!called) {
        violated("faults", "%s: there is no procedure %s", row.name, row.procedure);
        return;
    }
    bytes arguments = encoded_arguments(*called, example_words(*called));
    for (int i = 0; i < 5; i++) {
        if (i > 0 && (row.traits & RIGHT_BEFORE))
            begin_fault(row);
        exchange(self, called->number, arguments);
        if (!(row.traits & RIGHT_BEFORE) || has_one_of(log_since(mark), row.says))
            return;
    }
}

static void carry_out_alone(const fault_step &step, double end, caller *self) {
    const fault_row &row = *step.first;
    size_t mark = log_length();
    begin_row(row);
    meet(row, self, mark);
    wait_until(end);
    end_row(row);
    times_of[row.name].all++;
    times_of[row.name].alone++;
    if (row.says[0] != '\0' && !log_tells(row, mark))
        violated("error lines", "the log does not tell of \"%s\": there is no \"%s\"", row.name, row.says);
}

static void carry_out_pair(const fault_step &step, double end) {
    begin_row(*step.first);
    begin_row(*step.second);
    wait_until(end);
    end_row(*step.second);
    end_row(*step.first);
    times_of[step.first->name].all++;
    times_of[step.second->name].all++;
}

void carry_out(const std::vector<fault_step> &steps) {
    static int number = FAULT_CLIENT;
    caller self = open_caller(number++);
    double storm = run_second();
    for (const fault_step &step : steps) {
        wait_until(storm + step.begin);
        if (step.second)
            carry_out_pair(step, storm + step.end);
        else
            carry_out_alone(step, storm + step.end, &self);
    }
    close_caller(&self);
}

void say_faults() {
    for (const auto &[name, count] : times_of)
        say("fault: %s: %d times, %d of them alone", name.c_str(), count.all, count.alone);
    say("%zu of %zu faults have been there", times_of.size(), fault_row_count);
}
