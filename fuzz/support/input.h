// The bytes of one input, taken off one after the other. Behind their end everything reads as zero or empty, so that a
// short input is a valid one.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>

struct fuzz_input {
    const uint8_t *next;
    size_t left;
};

fuzz_input new_input(const uint8_t *data, size_t size);

uint8_t take_byte(fuzz_input *input);
uint16_t take_u16(fuzz_input *input);  // low byte first
uint32_t take_u32(fuzz_input *input);

// At most so many bytes.
std::string take_bytes(fuzz_input *input, size_t length);

// A text with its length in front: a byte below 0xF0 is the length; 0xF0 to 0xFE stand for 256 to 3840 bytes; 0xFF for
// a length of two bytes.
std::string take_text(fuzz_input *input);

// Everything that is left.
std::string take_rest(fuzz_input *input);

// The next line, without its line break.
std::string take_line(fuzz_input *input);

// Mostly a VAP, sometimes any number: a byte up to 31 is that number less 2, any other is followed by four bytes.
int take_index(fuzz_input *input);
