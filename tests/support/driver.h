// The driver's side of the wireless ioctls in the unit tests: an `ioctl` in front of the C library's, for the whole
// program, that records what was asked and answers as it is told. Nothing reaches the kernel.
#pragma once

#include <linux/wireless.h>
#include <stdint.h>

#include <functional>
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

// A request of the other kinds as it reached the driver: the driver's own (0x89FC), a scan (0x8B18), the SSID (0x8B1B).
struct seen_request {
    std::string interface;
    unsigned long request;
    void *data;       // where the record points
    uint16_t length;  // of the data
    uint16_t flags;
    std::string bytes;  // the data as it came
    int descriptor;
    bool is_closed_on_exec;
};

// What the driver does with it: writes the bytes over the data's beginning, as many as the data has room for; sets the
// length word when it is not NO_LENGTH; then refuses with the error when that is not 0, or returns the result.
constexpr int NO_LENGTH = -1;
struct request_answer {
    int error;
    int result;
    std::string bytes;
    int length;
};
constexpr auto ANSWERED = [](const std::string &bytes = "") { return request_answer{0, 0, bytes, NO_LENGTH}; };
constexpr auto REFUSED = [](int error) { return request_answer{error, 0, "", NO_LENGTH}; };

// All such requests, and who answers them; nobody: success without effect. He may look at the caller's buffer, whose
// address is in a command block's bytes, and fill it (write_buffer).
extern std::vector<seen_request> requests;
extern std::function<request_answer(const seen_request &)> answer_request;

// The command block of a request of 12 bytes.
driver_command block_of(const seen_request &request);
// Bytes of a command block for an answer.
std::string bytes_of(const driver_command &block);
// Writes into a caller's buffer as the driver would; an address that leads nowhere fails the test instead of ending it.
void write_buffer(uint32_t address, const std::string &bytes);

// Nothing asked; answers everything with success and changes nothing.
void reset_driver();

// Adds a channel to the table of every interface.
void list_channel(unsigned frequency, uint32_t flags);
