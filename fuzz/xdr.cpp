// Each XDR routine of the wire: any bytes are decoded; what could be decoded is encoded, and decoding that again gives
// the same bytes.
//
// Input: the number of the first of eight routines that are tried (two bytes), the length of what is decoded (two
// bytes), then the bytes that are repeated to that length, for some records have 28 kB; as they stand for a length of
// 0.
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "server/wire.h"

struct routine {
    xdrproc_t code;
    size_t size;
};

// The records, and one row for each argument record of the table.
static const std::vector<routine> &routines() {
#define WIRE_RECORD(type) \
    { as_xdrproc(xdr_##type), sizeof(type) }
#define ROUTINE_NONE(procedure)
#define ROUTINE_BARE(procedure, element)
#define ROUTINE_RECORD_OF(procedure, record, ...)
#define ROUTINE_RECORD_NAMED ROUTINE_RECORD
#define ROUTINE_RECORD(procedure, record, ...) WIRE_RECORD(record),
    static const std::vector<routine> table = {
        WIRE_RECORD(wlan_config_return_code_e),
        WIRE_RECORD(wlan_config_result_data_t),
        WIRE_RECORD(wlan_device_result_data_t),
        WIRE_RECORD(wlan_basicStats_t),
        WIRE_RECORD(wlan_stats_t),
        WIRE_RECORD(wlan_device_t),
        WIRE_RECORD(wlan_assoc_devices_table),
        WIRE_RECORD(scan_entry),
        WIRE_RECORD(scan_table),
        {as_xdrproc(xdr_text), sizeof(char *)},
#define PROCEDURE(number, procedure, arguments, ...) FOR_SHAPE(ROUTINE, procedure, arguments)
#include "server/procedures.def"
    };
    return table;
}

// Zeroed memory of exactly the record's size, so that nothing beyond it can be written. The caller frees it.
static void *new_record(const routine *wire) {
    return calloc(1, wire->size);
}

static bool decode(const routine *wire, std::string bytes, void *record) {
    XDR stream;
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(bytes.size()), XDR_DECODE);
    return wire->code(&stream, record);
}

static std::string encode(const routine *wire, void *record, size_t room) {
    std::string bytes(room, '\0');
    XDR stream;
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(room), XDR_ENCODE);
    must(wire->code(&stream, record), "what was decoded can be encoded");
    bytes.resize(room - stream.x_handy);
    return bytes;
}

static void check_round_trip(const routine *wire, const std::string &bytes) {
    // What travels in more bytes than it has in memory was decoded from as many.
    size_t room = bytes.size() + sizeof(uint32_t);
    void *first = new_record(wire);
    void *second = new_record(wire);
    if (decode(wire, bytes, first)) {
        std::string encoded = encode(wire, first, room);
        must(encoded.size() <= bytes.size(), "a record is not longer than what it was decoded from");
        must(decode(wire, encoded, second), "what was encoded can be decoded");
        must(encode(wire, second, room) == encoded, "decoding what was encoded gives the same record");
    }
    xdr_free(wire->code, first);
    xdr_free(wire->code, second);
    free(first);
    free(second);
}

static std::string repeated(const std::string &bytes, size_t length) {
    if (length == 0 || bytes.empty()) {
        return bytes;
    }
    std::string all;
    while (all.size() < length) {
        all += bytes;
    }
    all.resize(length);
    return all;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr size_t ROUTINES_AN_INPUT = 8;
    fuzz_input input = new_input(data, size);
    size_t first = take_u16(&input);
    size_t length = take_u16(&input);
    std::string bytes = repeated(take_rest(&input), length);
    for (size_t i = 0; i < ROUTINES_AN_INPUT; i++) {
        check_round_trip(&routines()[(first + i) % routines().size()], bytes);
    }
    return 0;
}
