// The bytes of one input. See the header.
#include "fuzz/support/input.h"

#include <string.h>

fuzz_input new_input(const uint8_t *data, size_t size) {
    return {data, size};
}

uint8_t take_byte(fuzz_input *input) {
    if (input->left == 0) {
        return 0;
    }
    input->left--;
    return *input->next++;
}

uint16_t take_u16(fuzz_input *input) {
    uint16_t low = take_byte(input);
    return static_cast<uint16_t>(low | take_byte(input) << 8);
}

uint32_t take_u32(fuzz_input *input) {
    uint32_t low = take_u16(input);
    return low | static_cast<uint32_t>(take_u16(input)) << 16;
}

std::string take_bytes(fuzz_input *input, size_t length) {
    length = length < input->left ? length : input->left;
    std::string taken(reinterpret_cast<const char *>(input->next), length);
    input->next += length;
    input->left -= length;
    return taken;
}

std::string take_text(fuzz_input *input) {
    uint8_t head = take_byte(input);
    if (head < 0xF0) {
        return take_bytes(input, head);
    }
    return take_bytes(input, head < 0xFF ? (head - 0xEFu) * 256 : take_u16(input));
}

std::string take_rest(fuzz_input *input) {
    return take_bytes(input, input->left);
}

std::string take_line(fuzz_input *input) {
    const void *end = input->left > 0 ? memchr(input->next, '\n', input->left) : nullptr;
    if (!end) {
        return take_rest(input);
    }
    std::string line = take_bytes(input, static_cast<size_t>(static_cast<const uint8_t *>(end) - input->next));
    take_byte(input);
    return line;
}

int take_index(fuzz_input *input) {
    uint8_t byte = take_byte(input);
    return byte < 32 ? byte - 2 : static_cast<int>(take_u32(input));
}
