// The radio statistics collector: what it last answered.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Size of one answer of the collector; it fixes this size.
constexpr size_t COLLECTOR_ANSWER_SIZE = 192;

// The last non-zero answer of each radio: slot 0 for VAP indices up to 7, slot 1 for those above. All bytes 0xFF (every
// number reads as -1) until there is one; the server's child sees to that before it serves.
extern uint8_t buf_reply[2 * COLLECTOR_ANSWER_SIZE];
