#include "tests/dissector/capture.h"

#include <string.h>

#include <cmath>
#include <fstream>

constexpr uint32_t LINK_TYPE_IPV4 = 228;  // frames begin with their IPv4 header
constexpr uint32_t FRAME_SIZE_MAX = 65535;

static bytes big16(size_t value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

template <typename T>
static bytes plain(T value) {
    return bytes(reinterpret_cast<const char *>(&value), sizeof value);
}

// Checksums are left out: 0 means that there is none in UDP, and nobody verifies the others unless asked to.
static bytes ip_packet(uint8_t protocol, endpoint from, endpoint to, const bytes &content) {
    bytes header = bytes("\x45\0", 2) + big16(20 + content.size()) + bytes(4, '\0') + '\x40';
    return header + static_cast<char>(protocol) + bytes(2, '\0') + xdr_word(from.address) + xdr_word(to.address) +
           content;
}

static bytes udp_packet(const captured_datagram &datagram) {
    bytes header = big16(datagram.from.port) + big16(datagram.to.port) + big16(8 + datagram.content.size());
    return ip_packet(17, datagram.from, datagram.to, header + bytes(2, '\0') + datagram.content);
}

// Destination unreachable, port unreachable, sent back by the receiver with the whole datagram.
static bytes packet(const captured_datagram &datagram) {
    bytes udp = udp_packet(datagram);
    if (!datagram.inside_error)
        return udp;
    return ip_packet(1, datagram.to, datagram.from, bytes("\3\3", 2) + bytes(6, '\0') + udp);
}

size_t add_frame(capture *frames, endpoint from, endpoint to, const bytes &content) {
    frames->push_back({from, to, content, static_cast<double>(frames->size()) / 1000, 0, false});
    return frames->size();
}

size_t add_call(capture *frames, const bytes &content) {
    return add_frame(frames, CLIENT_END, SERVER_END, content);
}

size_t add_reply(capture *frames, const bytes &content) {
    return add_frame(frames, SERVER_END, CLIENT_END, content);
}

void write_capture(const capture &frames, const std::string &path) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << plain(uint32_t{0xa1b2c3d4}) << plain(uint16_t{2}) << plain(uint16_t{4}) << plain(uint64_t{0})
         << plain(FRAME_SIZE_MAX) << plain(LINK_TYPE_IPV4);
    for (const captured_datagram &datagram : frames) {
        bytes frame = packet(datagram);
        double whole = std::floor(datagram.seconds);
        uint32_t size = static_cast<uint32_t>(frame.size());
        uint32_t kept = size - static_cast<uint32_t>(datagram.missing);
        file << plain(static_cast<uint32_t>(whole))
             << plain(static_cast<uint32_t>(std::lround((datagram.seconds - whole) * 1e6))) << plain(kept)
             << plain(size) << frame.substr(0, kept);
    }
}
