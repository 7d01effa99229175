#include "tests/support/calls.h"

#include <arpa/inet.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>

bytes xdr_word(uint32_t word) {
    uint32_t wire = htonl(word);
    return bytes(reinterpret_cast<char *>(&wire), sizeof wire);
}

bytes xdr_string_bytes(const std::string &text) {
    return xdr_word(static_cast<uint32_t>(text.size())) + text + bytes((4 - text.size() % 4) % 4, '\0');
}

bytes call_header(uint32_t xid, uint32_t program, uint32_t version, uint32_t procedure) {
    bytes header;
    for (uint32_t word : {xid, 0u, 2u, program, version, procedure, 0u, 0u, 0u, 0u})
        header += xdr_word(word);
    return header;
}

bool send_datagram(int socket, const bytes &datagram) {
    return send(socket, datagram.data(), datagram.size(), 0) == static_cast<ssize_t>(datagram.size());
}

bool receive_datagram(int socket, bytes *datagram, int milliseconds) {
    pollfd ready = {socket, POLLIN, 0};
    if (poll(&ready, 1, milliseconds) != 1)
        return false;
    char buffer[65536];
    ssize_t length = recv(socket, buffer, sizeof buffer, 0);
    if (length < 0)
        return false;
    datagram->assign(buffer, static_cast<size_t>(length));
    return true;
}

std::ostream &operator<<(std::ostream &out, call_outcome outcome) {
    static const char *names[] = {"SUCCESS",      "NO_PROGRAM",   "WRONG_VERSION", "NO_PROCEDURE",
                                  "DECODE_ERROR", "SYSTEM_ERROR", "NO_ANSWER",     "OTHER"};
    return out << names[static_cast<int>(outcome)];
}

uint32_t word_at(const bytes &text, size_t offset) {
    uint32_t wire = 0;
    if (offset + 4 <= text.size())
        memcpy(&wire, text.data() + offset, 4);
    return ntohl(wire);
}

// The words of an accepted reply: xid, direction, accepted, verifier (two), status.
call_reply parse_reply(const bytes &datagram) {
    if (datagram.size() < 24 || word_at(datagram, 4) != 1 || word_at(datagram, 8) != 0)
        return {call_outcome::OTHER, ""};
    static const call_outcome outcomes[] = {call_outcome::SUCCESS,       call_outcome::NO_PROGRAM,
                                            call_outcome::WRONG_VERSION, call_outcome::NO_PROCEDURE,
                                            call_outcome::DECODE_ERROR,  call_outcome::SYSTEM_ERROR};
    uint32_t status = word_at(datagram, 20);
    return {status < 6 ? outcomes[status] : call_outcome::OTHER, datagram.substr(24)};
}
