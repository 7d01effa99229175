// The gateway around a call: what targets that go through the whole server read from an input before its calls.
#pragma once

#include "fuzz/support/input.h"

// Begins a platform: a byte of switches, then the store's text. What is left of the input is taken by calls and, once
// they are known, by answers (answer_from).
struct gateway_switches {
    bool workers_at_once;  // workers run after each call, not at the end
};
gateway_switches begin_gateway(fuzz_input *input);

// From now on the doors take their answers from here.
void answer_from(const fuzz_input *input);
