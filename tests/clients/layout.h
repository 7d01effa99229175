// The records as one of two headers lays them out: the server's own, or the one that others are given.
//
// Both headers define the same names, so that each has a source file to itself, and their names do not get out of it.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

struct member_layout {
    std::string name;
    size_t offset;
    size_t size;
    size_t element_size;  // of the innermost array's element
    bool is_signed_number;
    bool operator==(const member_layout &) const = default;
};

struct record_layout {
    std::string name;
    size_t size;
    size_t alignment;
    std::vector<member_layout> members;
};

struct named_number {
    std::string name;
    uint64_t number;
    bool operator==(const named_number &) const = default;
};

std::vector<record_layout> server_layouts();
std::vector<record_layout> published_layouts();

// What both headers say besides records: limits, procedures, where the server answers.
std::vector<named_number> server_numbers();
std::vector<named_number> published_numbers();
std::string server_address();
std::string published_address();
