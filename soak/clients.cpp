#include "soak/clients.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "client/operations.h"
#include "server/wire.h"
#include "soak/calls.h"
#include "soak/report.h"
#include "soak/traffic.h"

// Clients that call everything; one more that loads, starts and stops the driver; one that sends datagrams that are no
// calls. Their numbers are in their xids, so that 0 is nobody's.
constexpr int ORDINARY_CLIENTS = 4;
constexpr int LIFECYCLE_CLIENT = ORDINARY_CLIENTS + 1;
constexpr int HOSTILE_CLIENT = ORDINARY_CLIENTS + 2;

// The orders of the procedures have sequences of their own, a round each.
constexpr uint64_t ORDERS = 2000;
constexpr size_t BLOCK_OF_ROWS = 32;

// Pauses between calls, in seconds: together some hundred calls a second, which leaves most of a processor to others.
constexpr double PAUSE_LEAST = 0.02;
constexpr double PAUSE_MOST = 0.06;
constexpr double HOSTILE_PAUSE_LEAST = 0.05;
constexpr double HOSTILE_PAUSE_MOST = 0.2;
// Between two requests of the driver's lifecycle. Some meet a worker, others a driver that has settled.
constexpr double LIFECYCLE_PAUSE_LEAST = 0.2;
constexpr double LIFECYCLE_PAUSE_MOST = 5;

// One call in so many is about the client's own setting, or is a series.
constexpr size_t OWN_SETTING_EVERY = 8;
constexpr size_t SERIES_EVERY = 16;
constexpr size_t SERIES_LENGTH = 8;

// The VAP indices from here on are nobody's but a client's: no gateway has them, and no call chooses them. Their
// settings are lines of the store like all others.
constexpr int OWN_INDICES = 20;

static std::vector<std::thread> threads;

static void pause_for(double seconds) {
    usleep(static_cast<useconds_t>(seconds * 1e6));
}

// Waits while the clients are to be silent. False when they are to end.
static bool may_go_on() {
    if (traffic.paused && !traffic.ended) {
        traffic.working--;
        while (traffic.paused && !traffic.ended)
            pause_for(0.01);
        traffic.working++;
    }
    return !traffic.ended;
}

static bool loads(const procedure_row &row) {
    return strcmp(row.room, "lifecycle/requests") == 0;
}

// Only what cannot be decoded is refused; a server without memory cannot decode either.
static void look_at_refusal(const procedure_row &row, call_outcome expected, call_outcome outcome) {
    bool short_of_memory = traffic.excused > 0 || traffic.disturbing > 0;
    if (outcome != call_outcome::DECODE_ERROR || (expected != outcome && !short_of_memory))
        violated("own answers", "%s was answered with outcome %d", row.name, static_cast<int>(outcome));
}

// Looks at an answer. False for one that says that the arguments could not be decoded.
static bool look_at_answer(const procedure_row &row, call_outcome expected, const call_reply &reply) {
    if (reply.outcome != call_outcome::SUCCESS) {
        look_at_refusal(row, expected, reply.outcome);
        return false;
    }
    if (expected != call_outcome::SUCCESS)
        violated("own answers", "%s was called without all of its arguments and did not refuse that", row.name);
    std::string wrong = what_is_wrong(row, reply.result);
    if (!wrong.empty())
        violated("own answers", "the answer to %s %s", row.name, wrong.c_str());
    return true;
}

static void call_once(caller *which, const procedure_row &row, arguments_kind kind, random_source *source) {
    bytes arguments = choose_arguments(row, kind, source);
    bool whole = kind != arguments_kind::CUT_OFF || row.argument_count == 0;
    bool restores = strcmp(row.name, "wlan_set_restore_defaults") == 0;
    traffic.disturbing += restores;
    exchange_result result = exchange(which, row.number, arguments);
    traffic.disturbed += restores;
    traffic.disturbing -= restores;
    if (result.outcome == exchange_outcome::ANSWERED &&
        look_at_answer(row, whole ? call_outcome::SUCCESS : call_outcome::DECODE_ERROR, result.reply))
        count_call(row);
}

// A row has its turn only when it was called in earnest; what is cut off comes in front of that.
static void call_row(caller *which, const procedure_row &row, random_source *source) {
    arguments_kind kind = choose_kind(source);
    call_once(which, row, kind, source);
    if (kind == arguments_kind::CUT_OFF)
        call_once(which, row, arguments_kind::VALID, source);
}

// Sets the SSID of an index that is this client's alone, and reads it. It may be gone, by a fault or by restored
// defaults, but it is never another client's, nor one that was not set yet.
static void use_own_setting(caller *which, int turn) {
    static const procedure_row *setter = row_named("wlan_set_ssid");
    static const procedure_row *getter = row_named("wlan_get_ssid");
    std::string beginning = "soak-" + std::to_string(which->number) + "-";
    std::string text = beginning + std::to_string(turn);
    bytes index = xdr_word(static_cast<uint32_t>(OWN_INDICES + which->number));
    int disturbed = traffic.disturbed;
    bool quiet = traffic.disturbing == 0;
    exchange_result set = exchange(which, setter->number, index + xdr_string_bytes(text));
    exchange_result got = exchange(which, getter->number, index);
    if (set.outcome == exchange_outcome::LOST || got.outcome == exchange_outcome::LOST ||
        got.reply.outcome != call_outcome::SUCCESS)
        return;
    text_answer answer = text_answer_of(got.reply.result);
    bool own = answer.text.empty() || answer.text.starts_with(beginning);
    quiet = quiet && traffic.disturbing == 0 && disturbed == traffic.disturbed;
    if (!own || (quiet && answer.text != text))
        violated("own answers", "client %d set \"%s\" and got \"%.64s\"", which->number, text.c_str(),
                 answer.text.c_str());
}

// Asks for the names of many VAPs before it waits: each answer says which call it belongs to.
static void ask_series(caller *which, random_source *source) {
    static const procedure_row *getter = row_named("wlan_get_name");
    std::vector<bytes> arguments;
    std::vector<std::string> names;
    for (size_t i = 0; i < SERIES_LENGTH; i++) {
        size_t vap = next_below(source, 16);
        arguments.push_back(xdr_word(static_cast<uint32_t>(vap + 1)));
        names.push_back("ath" + std::to_string(vap));
    }
    std::vector<call_reply> replies;
    if (!exchange_all(which, getter->number, arguments, &replies))
        return;
    for (size_t i = 0; i < SERIES_LENGTH; i++) {
        std::string name = text_answer_of(replies[i].result).text;
        // Empty where the server had no memory for it.
        if (replies[i].outcome == call_outcome::SUCCESS && !name.empty() && name != names[i])
            violated("own answers", "a call for %s was answered with \"%.64s\"", names[i].c_str(), name.c_str());
    }
}

// All procedures but those of the lifecycle. The order is the seed's, and each time round it changes a little: within
// blocks only, so that each procedure has its turn about as soon as all others. It is the same for all clients, but
// each begins at another place, so that together they soon have called everything.
static std::vector<const procedure_row *> rows_in_random_order(int number, uint64_t round) {
    random_source of_seed = random_source_of(options.seed, ORDERS);
    random_source of_round = random_source_of(options.seed, ORDERS + 1 + round);
    std::vector<const procedure_row *> rows, order;
    for (size_t i = 0; i < procedure_row_count; i++)
        if (!loads(procedure_rows[i]))
            rows.push_back(&procedure_rows[i]);
    shuffle(&rows, &of_seed);
    for (size_t begin = 0; begin < rows.size(); begin += BLOCK_OF_ROWS) {
        size_t end = std::min(begin + BLOCK_OF_ROWS, rows.size());
        std::vector<const procedure_row *> block(rows.begin() + static_cast<ptrdiff_t>(begin),
                                                 rows.begin() + static_cast<ptrdiff_t>(end));
        shuffle(&block, &of_round);
        order.insert(order.end(), block.begin(), block.end());
    }
    size_t first = order.size() * static_cast<size_t>(number - 1) / ORDINARY_CLIENTS;
    std::rotate(order.begin(), order.begin() + static_cast<ptrdiff_t>(first), order.end());
    return order;
}

static void ordinary_client(int number) {
    random_source source = random_source_of(options.seed, static_cast<uint64_t>(number));
    caller self = open_caller(number);
    std::vector<const procedure_row *> rows;
    uint64_t round = 0;
    for (int turn = 1; may_go_on(); turn++) {
        if (rows.empty())
            rows = rows_in_random_order(number, round++);
        if (next_is_one_in(&source, OWN_SETTING_EVERY))
            use_own_setting(&self, turn);
        else if (next_is_one_in(&source, SERIES_EVERY))
            ask_series(&self, &source);
        else {
            call_row(&self, *rows.back(), &source);
            rows.pop_back();
        }
        pause_for(next_between(&source, PAUSE_LEAST, PAUSE_MOST));
    }
    close_caller(&self);
    traffic.working--;
}

// Each once, and about as many once more, in any order: a request may follow each of the others, and itself.
static std::vector<const procedure_row *> lifecycle_in_any_order(const std::vector<const procedure_row *> &rows,
                                                                 random_source *source) {
    std::vector<const procedure_row *> list = rows;
    for (size_t i = 0; i < rows.size(); i++)
        list.push_back(rows[next_below(source, rows.size())]);
    shuffle(&list, source);
    return list;
}

static void lifecycle_client() {
    random_source source = random_source_of(options.seed, LIFECYCLE_CLIENT);
    caller self = open_caller(LIFECYCLE_CLIENT);
    std::vector<const procedure_row *> rows;
    for (size_t i = 0; i < procedure_row_count; i++)
        if (loads(procedure_rows[i]))
            rows.push_back(&procedure_rows[i]);
    std::vector<const procedure_row *> next;
    while (may_go_on()) {
        if (run_second() > traffic.lifecycle_end) {
            pause_for(0.05);
            continue;
        }
        if (next.empty())
            next = lifecycle_in_any_order(rows, &source);
        call_row(&self, *next.back(), &source);
        next.pop_back();
        for (double left = next_between(&source, LIFECYCLE_PAUSE_LEAST, LIFECYCLE_PAUSE_MOST);
             left > 0 && !traffic.paused; left -= 0.05)
            pause_for(0.05);
    }
    close_caller(&self);
    traffic.working--;
}

static void hostile_client() {
    random_source source = random_source_of(options.seed, HOSTILE_CLIENT);
    caller self = open_caller(HOSTILE_CLIENT);
    while (may_go_on()) {
        send_hostile(&self, [&](uint32_t xid) { return choose_hostile_datagram(xid, &source); });
        pause_for(next_between(&source, HOSTILE_PAUSE_LEAST, HOSTILE_PAUSE_MOST));
    }
    close_caller(&self);
    traffic.working--;
}

void start_clients() {
    traffic.working = ORDINARY_CLIENTS + 2;
    for (int number = 1; number <= ORDINARY_CLIENTS; number++)
        threads.emplace_back(ordinary_client, number);
    threads.emplace_back(lifecycle_client);
    threads.emplace_back(hostile_client);
}

void pause_clients() {
    traffic.paused = true;
    while (traffic.working > 0)
        pause_for(0.01);
}

void resume_clients() {
    traffic.paused = false;
}

void end_clients() {
    traffic.ended = true;
    for (std::thread &thread : threads)
        thread.join();
    threads.clear();
}
