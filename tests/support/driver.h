// The driver's side of the wireless ioctls in the unit tests: an `ioctl` in front of the C library's, for the whole
// program, that records what was asked and answers as it is told. Nothing reaches the kernel.
#pragma once

#include <linux/wireless.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "config/wireless.h"

// What the driver was asked last, and what it is to answer.
struct fake_driver {
    int calls;
    int descriptor;
    unsigned long request;
    iwreq record;
    int error;                  // refuses with this when not 0
    bool lists_channels;        // answers with the table below
    channel_table table;        // copied to where the request points
    const char *inline_answer;  // 16 bytes for the record's data, when not null
    uint16_t length_answer;     // the length word of the answer, when not 0
};
extern fake_driver driver;

// A debug request (0x8BF8) as it reached the driver.
struct seen_debug_request {
    iwreq record;
    std::string bytes;   // what the record refers to
    std::string buffer;  // for 211 bytes with an address in them: what was there; empty otherwise
    bool is_internet_datagram_socket;
    bool is_closed_on_exec;
};

// As much of the buffer is looked at, and filled at most.
constexpr size_t DEBUG_BUFFER_SIZE = 2048;

// What the driver does with one debug request: fills the buffer, then refuses with the error when that is not 0, or
// returns the result.
struct debug_answer {
    int error;
    std::string buffer;
    int result;
};

// All debug requests, and the answers to the next ones: one each, success without effect when there is none left.
extern std::vector<seen_debug_request> debug_requests;
extern std::vector<debug_answer> debug_answers;

// Where the buffer of a debug request of 211 bytes is.
uint32_t buffer_address_of(const std::string &request);

// Nothing asked; answers everything with success and changes nothing.
void reset_driver();

// Adds a channel to the table of every interface.
void list_channel(unsigned frequency, uint32_t flags);
