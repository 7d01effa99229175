// Well-formed calls of all procedures, which reach deep into the back ends.
//
// Input: switches and store (support/gateway.h); the number of calls, at most 16; for each the place of its procedure
// in the table (two bytes) and its arguments; then what the doors answer. A replayed corpus has to reach all
// procedures.
#include <stdio.h>

#include "client/operations.h"
#include "fuzz/support/calls.h"
#include "fuzz/support/check.h"
#include "fuzz/support/gateway.h"
#include "fuzz/support/platform.h"

constexpr int CALLS_MAX = 16;

static size_t served_here;

// Mostly a small number, which is what values are.
static uint32_t take_number(fuzz_input *input) {
    uint8_t byte = take_byte(input);
    return byte < 0xF0 ? static_cast<uint32_t>(byte - 20) : take_u32(input);
}

static void put_argument(std::string *datagram, argument_kind kind, fuzz_input *input) {
    switch (kind) {
        case argument_kind::VAP:
            put_number(datagram, static_cast<uint32_t>(take_index(input)));
            break;
        case argument_kind::BOOL:
            put_number(datagram, take_byte(input) & 1);
            break;
        case argument_kind::USHORT:
            put_number(datagram, take_u16(input));
            break;
        case argument_kind::INT:
        case argument_kind::IGNORED:
        case argument_kind::UINT:
            put_number(datagram, take_number(input));
            break;
        case argument_kind::TEXT:
            put_counted(datagram, take_text(input));
            break;
    }
}

static std::string take_call(fuzz_input *input) {
    const procedure_row *row = &procedure_rows[take_u16(input) % procedure_row_count];
    std::string datagram = call_header(row->number);
    for (size_t i = 0; i < row->argument_count; i++) {
        put_argument(&datagram, row->arguments[i].kind, input);
    }
    return datagram;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz_input input = new_input(data, size);
    gateway_switches switches = begin_gateway(&input);
    int count = take_byte(&input) % (CALLS_MAX + 1);
    std::string calls[CALLS_MAX];
    for (int i = 0; i < count; i++) {
        calls[i] = take_call(&input);
    }
    answer_from(&input);
    for (int i = 0; i < count; i++) {
        must(serve(calls[i]), "a well-formed call is carried out and answered");
        if (switches.workers_at_once) {
            run_workers();
        }
    }
    served_here = served_procedures();
    end_platform();
    return 0;
}

// For the replay: what the corpus has to reach and does not.
extern "C" const char *corpus_shortfall() {
    static char text[80];
    if (served_here == all_procedures()) {
        return nullptr;
    }
    snprintf(text, sizeof(text), "reaches %zu of %zu procedures", served_here, all_procedures());
    return text;
}
