// What a back end writes into its outputs, and what it prints.
#pragma once

#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "config/store.h"
#include "tests/support/platform.h"

// The recorded calls of tools, see tool_calls().
using calls = std::vector<std::string>;

constexpr size_t TEXT_SIZE = STORE_VALUE_SIZE;

// A buffer that shows what was written into it.
struct text_buffer {
    char text[TEXT_SIZE];

    text_buffer() {
        memset(text, '?', sizeof(text));
        text[sizeof(text) - 1] = '\0';
    }

    bool is_untouched() const {
        return strspn(text, "?") == sizeof(text) - 1;
    }

    bool begins_with_zeros_only(size_t count) const {
        for (size_t i = 0; i < count; i++) {
            if (text[i] != '\0') {
                return false;
            }
        }
        return text[count] == '?';
    }
};

// The text of a getter that must succeed.
template <typename Getter>
std::string text_of(Getter getter, int index) {
    text_buffer buffer;
    EXPECT_EQ(getter(index, buffer.text, sizeof(buffer.text)), 0) << "index " << index;
    return buffer.text;
}

// What number getters' outputs hold before the call.
constexpr int UNTOUCHED = 4711;

// The output of a getter of int or u_int that must succeed.
template <typename Number>
int number_of(int (*getter)(int, Number *), int index) {
    Number number = UNTOUCHED;
    EXPECT_EQ(getter(index, &number), 0) << "index " << index;
    return static_cast<int>(number);
}

// What a block prints to standard output with debugging on.
template <typename Block>
std::string debug_lines(Block block) {
    set_debug(true);
    return capture(block).out;
}

// What a block prints behind this beginning of a line, with debugging on, a line an element.
template <typename Block>
calls printed_behind(const std::string &beginning, Block block) {
    std::string lines = debug_lines(block);
    set_debug(false);
    calls found;
    for (size_t at = 0; (at = lines.find(beginning, at)) != std::string::npos;) {
        at += beginning.size();
        found.push_back(lines.substr(at, lines.find('\n', at) - at));
    }
    return found;
}

// The commands with captured output that a block runs, exactly as they are handed over; tool_calls() has what the shell
// makes of them. None of them may have more than one line.
template <typename Block>
calls commands_of(Block block) {
    return printed_behind("[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:", block);
}

inline bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}
