#include "soak/traffic.h"

#include <arpa/inet.h>
#include <errno.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

#include "server/wire.h"
#include "soak/report.h"

// Between two looks at whether a call is lost.
constexpr int LOOK_MS = 50;

// What the child that ended has sent may still be on its way.
constexpr int GRACE_LOOKS = 4;

// A client waits this many times as long as it may take, and then gives the call up.
constexpr double GIVE_UP = 2;

traffic_state traffic;

static std::mutex guard;
static std::vector<long> times_called(procedure_row_count);
static traffic_counts counts;
static int holds;
static double held_before;  // seconds of holds that are over
static double hold_begin;
static double last_answer;  // on the service clock

// Seconds in which the server could have answered.
static double service_second_locked() {
    return run_second() - held_before - (holds > 0 ? run_second() - hold_begin : 0);
}

static double service_second() {
    std::lock_guard lock(guard);
    return service_second_locked();
}

void hold_begins() {
    std::lock_guard lock(guard);
    if (holds++ == 0)
        hold_begin = run_second();
}

void hold_ends() {
    std::lock_guard lock(guard);
    if (--holds == 0)
        held_before += run_second() - hold_begin;
}

caller open_caller(int number) {
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in server = {};
    server.sin_family = AF_INET;
    server.sin_port = htons(SERVICE_PORT);
    inet_aton(SERVICE_ADDRESS, &server.sin_addr);
    if (connect(file, reinterpret_cast<const sockaddr *>(&server), sizeof server) != 0)
        violated("answers", "no way to %s: %s", SERVICE_ADDRESS, strerror(errno));
    return {file, number, static_cast<uint32_t>(number) << 24};
}

void close_caller(caller *which) {
    close(which->socket);
}

// A call that is waiting.
struct pending {
    uint32_t xid;
    double sent;  // on the service clock
    int losses;
    bool answered;
    call_reply reply;
};

static double silence_of(const pending &call) {
    std::lock_guard lock(guard);
    return service_second_locked() - std::max(call.sent, last_answer);
}

static void note_answer(const pending &call) {
    std::lock_guard lock(guard);
    double now = service_second_locked();
    if (call.losses == traffic.losses)
        counts.longest_silence = std::max(counts.longest_silence, now - std::max(call.sent, last_answer));
    last_answer = std::max(last_answer, now);
    counts.answered++;
}

// A call that is lost says nothing about the time that the next ones take.
static void note_loss() {
    std::lock_guard lock(guard);
    last_answer = std::max(last_answer, service_second_locked());
    counts.lost++;
}

// Whether an xid is one that this socket has used.
static bool is_own(const caller &which, uint32_t xid) {
    return xid >> 24 == static_cast<uint32_t>(which.number) && xid <= which.xid;
}

// Takes one datagram and gives it to its call.
static void take_answer(caller *which, std::vector<pending> *calls, const bytes &datagram) {
    uint32_t xid = word_at(datagram, 0);
    if (datagram.size() < 12 || word_at(datagram, 4) != 1)
        violated("own answers", "client %d got %zu bytes that are no answer", which->number, datagram.size());
    else if (!is_own(*which, xid))
        violated("own answers", "client %d got the answer to call %08x, which it did not make", which->number, xid);
    for (pending &call : *calls)
        if (call.xid == xid) {
            if (call.answered)
                violated("own answers", "client %d got two answers to call %08x", which->number, xid);
            call.answered = true;
            call.reply = parse_reply(datagram);
            note_answer(call);
        }
}

static bool all_answered(const std::vector<pending> &calls) {
    return std::all_of(calls.begin(), calls.end(), [](const pending &call) { return call.answered; });
}

// Waits until every call has its answer. False when one is lost, or given up.
static bool await_answers(caller *which, std::vector<pending> *calls) {
    int grace = GRACE_LOOKS;
    bool late = false;
    while (!all_answered(*calls)) {
        bytes datagram;
        if (receive_datagram(which->socket, &datagram, LOOK_MS)) {
            take_answer(which, calls, datagram);
            continue;
        }
        const pending &first =
            *std::find_if(calls->begin(), calls->end(), [](const pending &c) { return !c.answered; });
        if (first.losses != traffic.losses && grace-- == 0)
            break;
        double silence = silence_of(first);
        double bound = ANSWER_SECONDS * options.patience;
        if (silence > bound && !late && traffic.excused == 0) {
            violated("answers", "the server has been silent for %.1f seconds; its waits explain %.1f", silence, bound);
            late = true;
        }
        if (silence > GIVE_UP * bound)
            break;
    }
    return all_answered(*calls);
}

// False when the datagram cannot be sent, which is a violation unless a fault explains it.
static bool send_call(caller *which, const bytes &datagram, pending *call) {
    *call = {which->xid, service_second(), traffic.losses, false, {}};
    if (send_datagram(which->socket, datagram))
        return true;
    // The answer to an earlier one, that nobody listened, is told with the next one.
    if (errno == ECONNREFUSED && send_datagram(which->socket, datagram))
        return true;
    if (traffic.excused == 0 && errno != ECONNREFUSED)
        violated("answers", "a call cannot be sent: %s", strerror(errno));
    return false;
}

bool exchange_all(caller *which, uint32_t procedure, const std::vector<bytes> &arguments,
                  std::vector<call_reply> *replies) {
    std::vector<pending> calls(arguments.size());
    bool sent = true;
    for (size_t i = 0; i < arguments.size() && sent; i++) {
        which->xid++;
        bytes header = call_header(which->xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure);
        sent = send_call(which, header + arguments[i], &calls[i]);
    }
    if (!sent || !await_answers(which, &calls)) {
        note_loss();
        return false;
    }
    for (const pending &call : calls)
        replies->push_back(call.reply);
    return true;
}

exchange_result exchange(caller *which, uint32_t procedure, const bytes &arguments) {
    std::vector<call_reply> replies;
    if (!exchange_all(which, procedure, {arguments}, &replies)) {
        usleep(LOOK_MS * 1000);
        return {exchange_outcome::LOST, {}};
    }
    if (replies[0].outcome != call_outcome::SUCCESS) {
        std::lock_guard lock(guard);
        counts.refused++;
    }
    return {exchange_outcome::ANSWERED, replies[0]};
}

void send_hostile(caller *which, const std::function<bytes(uint32_t)> &make) {
    std::vector<pending> nobody;
    bytes datagram;
    while (receive_datagram(which->socket, &datagram, 0))
        take_answer(which, &nobody, datagram);
    which->xid++;
    if (send_datagram(which->socket, make(which->xid))) {
        std::lock_guard lock(guard);
        counts.hostile++;
    }
}

void count_call(const procedure_row &row) {
    std::lock_guard lock(guard);
    times_called[static_cast<size_t>(&row - procedure_rows)]++;
}

traffic_counts counts_of_traffic() {
    std::lock_guard lock(guard);
    return counts;
}

void look_at_coverage() {
    std::lock_guard lock(guard);
    for (size_t i = 0; i < procedure_row_count; i++) {
        if (times_called[i] == 0)
            violated("every procedure", "%s was not called", procedure_rows[i].name);
        times_called[i] = 0;
    }
}
