// What tshark makes of a capture with docs/wlan_config.lua.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/dissector/capture.h"

// A field as it was dissected: its name, its value as filters see it, and its bytes.
struct dissected_field {
    std::string name;
    std::string show;
    bytes value;
    bool operator==(const dissected_field &) const = default;
};
std::ostream &operator<<(std::ostream &out, const dissected_field &field);
using field_list = std::vector<dissected_field>;

struct dissected_frame {
    std::string title;                // the line of the message, "" when the frame has none of ours
    field_list fields;                // in their order
    std::set<std::string> problems;   // the expert notes by the ends of their names: "failure", "malformed"
    std::vector<std::string> labels;  // every line below the title, as people see it

    // The value of the first field with this name, "(absent)" without one.
    std::string operator[](const std::string &name) const;
};

// All frames of a capture in their order; frame n of the capture is element n - 1. A Lua error anywhere, or an output
// that is none, is a test failure.
std::vector<dissected_frame> dissect(const capture &frames, const std::string &options = "");

// The lines that tshark prints with other options.
std::vector<std::string> tshark_lines(const capture &frames, const std::string &options);

// What a call's arguments and a reply's result have to look like, taken apart by the row. Texts are compared by their
// bytes, and by their value where it is plain ASCII; octets by their bytes.
struct procedure_row;
constexpr const char ANY_VALUE[] = "(any)";
field_list expected_arguments(const procedure_row &row, const bytes &arguments);
field_list expected_result(const procedure_row &row, const bytes &result);

// Of a frame's fields those that say what the arguments or the result are, without the header's and without lengths.
field_list payload_of(const dissected_frame &frame);

// Compares fields in their order; a failure tells the first difference.
testing::AssertionResult same_fields(const field_list &found, const field_list &expected);
