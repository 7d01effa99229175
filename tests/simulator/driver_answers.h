// What came of a command of the driver's own, taken apart.
#pragma once

#include <stdint.h>
#include <string.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/simulator/platform.h"

using record = std::vector<uint8_t>;

struct driver_answer {
    std::string result;  // "0", "-1 EFAULT"
    std::string words;   // the command's words afterwards: "40 3 kept"
    std::vector<record> records;
};

constexpr size_t NETWORK_SIZE = 128;
constexpr size_t STATION_SIZE = 236;

inline record record_of(const std::string &digits) {
    record bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

inline driver_answer driver_command(const std::string &arguments) {
    std::istringstream text(probe("driver " + arguments).output);
    driver_answer answer;
    std::getline(text, answer.result);
    std::getline(text, answer.words);
    for (std::string line; std::getline(text, line);)
        answer.records.push_back(record_of(line));
    while (!answer.result.empty() && answer.result.back() == ' ')
        answer.result.pop_back();
    return answer;
}

inline driver_answer networks(const std::string &interface, unsigned value = 1024) {
    return driver_command(interface + " command=40 record=128 value=" + std::to_string(value));
}

inline driver_answer stations(const std::string &interface, unsigned value = 555) {
    return driver_command(interface + " command=42 record=236 value=" + std::to_string(value));
}

// A field of a record: a word in the machine's order, a text with what is behind its NUL cut off.
inline uint32_t word_at(const record &bytes, size_t offset) {
    uint32_t word = 0;
    if (bytes.size() >= offset + sizeof word)
        memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

inline std::string text_at(const record &bytes, size_t offset, size_t size) {
    if (bytes.size() < offset + size)
        return "no such field";
    const auto *text = reinterpret_cast<const char *>(bytes.data() + offset);
    return std::string(text, strnlen(text, size));
}

// A record put together by offsets, for comparison with one as a whole.
inline void put(record *bytes, size_t offset, const std::string &text) {
    memcpy(bytes->data() + offset, text.data(), text.size());
}

inline void put_word(record *bytes, size_t offset, uint32_t word) {
    memcpy(bytes->data() + offset, &word, sizeof word);
}
