// What the calls of all clients have in common: when the server has last answered, how long it may take, and what
// became of the calls.
//
// Any thread.
#pragma once

#include <atomic>
#include <functional>

#include "client/operations.h"
#include "tests/support/calls.h"

// --- the times of the system ---

// How long the server may be silent while calls wait for it. One thread answers one call after another, so this is the
// longest that one of them takes, with what may lie between it and the next one that a client of ours hears of:
// checks of the queue, which the lifecycle's workers ask for.
constexpr double CHANNEL_SECONDS = 2 + 2;  // a daemon takes a datagram in two seconds, and answers in two
constexpr double QUEUE_CHECK_SECONDS = 3;  // the pause in front of a parked request
constexpr double CANCELLATION_SECONDS =
    3 + 2;                                 // the driver's pause, and an insertion that has begun; looked at each second
constexpr int CHECKS_BETWEEN_ANSWERS = 2;  // of two workers that ended: the second one finds the first one's request
constexpr double TOOLS_SECONDS = 2;        // a setter's tools, dozens of them on a machine that has other work too
constexpr double ANSWER_SECONDS =
    CHANNEL_SECONDS + TOOLS_SECONDS + CHECKS_BETWEEN_ANSWERS * (QUEUE_CHECK_SECONDS + CANCELLATION_SECONDS);

// --- what is going on ---

struct traffic_state {
    std::atomic<bool> paused;           // clients send nothing new
    std::atomic<double> lifecycle_end;  // from this second on nobody loads, starts or stops the driver
    std::atomic<bool> ended;
    std::atomic<int> working;     // clients that are not pausing
    std::atomic<int> losses;      // counts what takes calls away that wait: the end of a child, a missing address
    std::atomic<int> excused;     // faults that are on and may have the child end by itself, or keep datagrams away
    std::atomic<int> disturbed;   // counts what may change a setting that nobody set: faults, restored defaults
    std::atomic<int> disturbing;  // those that go on
};
extern traffic_state traffic;

// A fault that keeps the server from answering for as long as it is on: the time does not count.
void hold_begins();
void hold_ends();

// --- calls ---

enum class exchange_outcome { ANSWERED, LOST };

struct exchange_result {
    exchange_outcome outcome;
    call_reply reply;
};

// A socket with calls of its own. xids follow from its number, so that an answer tells whose call it was.
struct caller {
    int socket;
    int number;
    uint32_t xid;
};
caller open_caller(int number);
void close_caller(caller *which);

// Sends a call and waits for its answer, which is lost only with the child, or the address, that it was sent to. An
// answer that is none to it, or that does not come in time, is a violation.
exchange_result exchange(caller *which, uint32_t procedure, const bytes &arguments);

// Sends calls one after another before it waits for the answers, which are in their order. False when one is lost.
bool exchange_all(caller *which, uint32_t procedure, const std::vector<bytes> &arguments,
                  std::vector<call_reply> *replies);

// Sends a datagram that is no call, and takes what answers come to earlier ones.
void send_hostile(caller *which, const std::function<bytes(uint32_t xid)> &make);

// --- what became of them ---

// Counts a procedure that was carried out.
void count_call(const procedure_row &row);

struct traffic_counts {
    long answered, lost, refused, hostile;
    double longest_silence;  // of the server, holds and losses not counted
};
traffic_counts counts_of_traffic();

// Requires each procedure to have been called since the last look at it.
void look_at_coverage();
