// Any bytes as datagrams to the service: transport, dispatcher, and every handler that they reach.
//
// Input: switches and store (support/gateway.h); the number of datagrams, at most 16; each with its length in two
// bytes; then what the doors answer.
#include "fuzz/support/calls.h"
#include "fuzz/support/check.h"
#include "fuzz/support/gateway.h"
#include "fuzz/support/platform.h"

// So that one input stays quick, and tells which of its calls fails.
constexpr int CALLS_MAX = 16;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz_input input = new_input(data, size);
    gateway_switches switches = begin_gateway(&input);
    int count = take_byte(&input) % (CALLS_MAX + 1);
    std::string datagrams[CALLS_MAX];
    for (int i = 0; i < count; i++) {
        datagrams[i] = take_bytes(&input, take_u16(&input));
    }
    answer_from(&input);
    for (int i = 0; i < count; i++) {
        serve(datagrams[i]);
        if (switches.workers_at_once) {
            run_workers();
        }
    }
    end_platform();
    return 0;
}
