// A capture file for Wireshark, written from datagrams that a test has at hand: no rights and no waiting, and the same
// bytes every time.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

#include "tests/support/calls.h"

struct endpoint {
    uint32_t address;
    uint16_t port;
};

// Where the server answers, and a client on the gateway.
constexpr endpoint SERVER_END = {0xc0a8fefe, 60001};
constexpr endpoint CLIENT_END = {0xc0a8fefe, 40000};

struct captured_datagram {
    endpoint from;
    endpoint to;
    bytes content;
    double seconds;
    size_t missing;     // bytes at the end that the capture does not have
    bool inside_error;  // carried in an ICMP error: nobody listens there
};

using capture = std::vector<captured_datagram>;

// Adds one datagram and returns the number of its frame. Frames follow each other in milliseconds.
size_t add_frame(capture *frames, endpoint from, endpoint to, const bytes &content);
size_t add_call(capture *frames, const bytes &content);
size_t add_reply(capture *frames, const bytes &content);

void write_capture(const capture &frames, const std::string &path);
