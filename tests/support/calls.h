// Calls and replies as bytes, for tests that speak to a server without any RPC library in between.
#pragma once

#include <stdint.h>

#include <ostream>
#include <string>

using bytes = std::string;

// Big-endian words and strings of a call's arguments.
bytes xdr_word(uint32_t word);
bytes xdr_string_bytes(const std::string &text);

// The word at an offset, 0 where there is none.
uint32_t word_at(const bytes &text, size_t offset);

// The header of a call, whole: xid, program, version, procedure, empty credentials and verifier.
bytes call_header(uint32_t xid, uint32_t program, uint32_t version, uint32_t procedure);

bool send_datagram(int socket, const bytes &datagram);

// The next datagram, or false after the given time.
bool receive_datagram(int socket, bytes *datagram, int milliseconds);

enum class call_outcome {
    SUCCESS,
    NO_PROGRAM,
    WRONG_VERSION,
    NO_PROCEDURE,
    DECODE_ERROR,
    SYSTEM_ERROR,
    NO_ANSWER,
    OTHER
};
std::ostream &operator<<(std::ostream &out, call_outcome outcome);

struct call_reply {
    call_outcome outcome;
    bytes result;  // behind the reply's header, for SUCCESS
};

call_reply parse_reply(const bytes &datagram);
