// Calls as datagrams, as many at a time as wanted, and what they took.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

struct server_address {
    const char *host;
    uint16_t port;
    uint32_t program;
};

struct load_call {
    server_address server;
    uint32_t procedure;
    std::string arguments;  // as XDR
};

// The arguments of most procedures.
std::string words(const std::vector<uint32_t> &values);

struct load_outcome {
    double seconds;                 // from the first call to the last answer
    std::vector<double> latencies;  // microseconds, a call each, in the order of the answers
    size_t failed;                  // no success, a return code other than 0, or no answer within five seconds
};

// A socket to the server with room for the answers of several thousand calls.
int open_load_socket(const server_address &server);

// Keeps so many calls under way until the time is over, then takes the last answers.
load_outcome load_for(const load_call &call, int outstanding, double seconds);

// So many calls in all.
load_outcome load_count(const load_call &call, int outstanding, size_t count);

// Sends one call and does not wait for its answer.
bool send_call(int fd, const load_call &call);

// Calls again and again until there is an answer, or the time is over.
bool answers(const load_call &call, double seconds);

double now_seconds();
