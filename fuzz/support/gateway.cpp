// The gateway around a call. See the header.
#include "fuzz/support/gateway.h"

#include "config/log.h"
#include "config/store.h"
#include "fuzz/support/platform.h"
#include "steering/steering_tables.h"

enum gateway_bits : uint8_t {
    DEBUGGING = 0x01,
    WORKERS_AT_ONCE = 0x02,
    NO_STORE = 0x04,
    STORAGE_FULL = 0x08,
    READS_FAIL = 0x10,
    SHORT_READS = 0x20,
    CAPABLE_TABLE = 0x40,
    DEFAULTS_THERE = 0x80,
};

gateway_switches begin_gateway(fuzz_input *input) {
    constexpr fuzz_input NOTHING = {nullptr, 0};
    // Short enough to end within keys and values.
    constexpr size_t SHORT_STEP = 7;
    begin_platform(&NOTHING);
    uint8_t bits = take_byte(input);
    std::string store = take_text(input);
    if ((bits & NO_STORE) == 0) {
        platform.files[STORE_FILE] = store;
    }
    if ((bits & DEBUGGING) != 0) {
        platform.files[DEBUG_SWITCH_FILE] = "";
    }
    if ((bits & CAPABLE_TABLE) != 0) {
        platform.files[CAPABLE_TABLE_FILE] = std::string(3 * sizeof(wlan_5g_capable_table_t), 'c');
    }
    if ((bits & DEFAULTS_THERE) != 0) {
        platform.files["/tmp/wifi_defaults.dat"] = store;
    }
    platform.storage_left = (bits & STORAGE_FULL) != 0 ? 0 : platform.storage_left;
    platform.reads_fail = (bits & READS_FAIL) != 0;
    platform.read_step = (bits & SHORT_READS) != 0 ? SHORT_STEP : 0;
    return {(bits & WORKERS_AT_ONCE) != 0};
}

void answer_from(const fuzz_input *input) {
    platform.answers = *input;
}
