// What tests see of the memory for the driver (config/wireless.h), of which one small piece is kept for the next
// caller.
#pragma once

#include <stdint.h>

#include "config/wireless.h"

// Whether a small piece has been given back: then it is the one that the next caller gets.
inline bool is_given_back(uint32_t address) {
    void *next = low_memory_new(1);
    bool same = next && low_memory_address(next) == address;
    low_memory_free(next, 1);
    return same;
}

// As long as this lives the piece that is kept is in use, so that others need new memory.
struct held_low_memory {
    void *piece = low_memory_new(1);
    held_low_memory() = default;
    held_low_memory(const held_low_memory &) = delete;
    held_low_memory &operator=(const held_low_memory &) = delete;
    ~held_low_memory() {
        low_memory_free(piece, 1);
    }
};
