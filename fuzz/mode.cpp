// The driver's mode strings: read from a store, changed, put together, and read again.
//
// Input: a radio, how the caller changes the record (width and side, four bytes each, when the first byte says so),
// then the mode string as a line and the rest of the store.
#include "config/mode.h"

#include <string.h>

#include "config/store.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"

static void check_record(const wlan_mode_info *mode) {
    must_be_terminated(mode->standard, sizeof(mode->standard), "a standard");
    must_be_terminated(mode->base, sizeof(mode->base), "a base mode");
    must_be_terminated(mode->width_text, sizeof(mode->width_text), "a width");
    must_be_terminated(mode->offset_text, sizeof(mode->offset_text), "a side");
}

// A mode that was put together is taken apart into the same one.
static void check_round_trip(int radio, wlan_mode_info *mode) {
    char text[MODE_STRING_SIZE];
    char again[MODE_STRING_SIZE];
    mode_compose(mode, text, sizeof(text));
    must_be_terminated(text, sizeof(text), "a mode string");
    check_record(mode);
    mode_compose(mode, again, sizeof(again));
    must(strcmp(text, again) == 0, "a settled mode stays as it is");
    platform.files[STORE_FILE] = std::string("AP_CHMODE=") + text + "\nAP_CHMODE_2=" + text + "\n";
    wlan_mode_info back;
    mode_parsing(radio, &back);
    check_record(&back);
    if (*mode->base) {
        must(strcmp(back.base, mode->base) == 0, "a base mode is read as it was written");
        mode_compose(&back, again, sizeof(again));
        // A width that is none of the codes is written as nothing, which reads as 20 MHz.
        bool is_width = mode->width >= WIDTH_NONE && mode->width <= WIDTH_80;
        must(!is_width || strcmp(text, again) == 0, "a mode is read as it was written");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr fuzz_input NOTHING = {nullptr, 0};
    constexpr uint8_t CHANGED = 0x80;
    fuzz_input input = new_input(data, size);
    begin_platform(&NOTHING);
    uint8_t bits = take_byte(&input);
    int radio = bits & 1;
    int32_t width = static_cast<int32_t>(take_byte(&input));
    int32_t side = static_cast<int32_t>(static_cast<int8_t>(take_byte(&input)));
    if ((bits & 0x40) != 0) {
        width = static_cast<int32_t>(take_u32(&input));
        side = static_cast<int32_t>(take_u32(&input));
    }
    std::string mode_text = take_line(&input);
    platform.files[STORE_FILE] =
        std::string(radio == 1 ? "AP_CHMODE=" : "AP_CHMODE_2=") + mode_text + "\n" + take_rest(&input);
    wlan_mode_info mode;
    mode_parsing(radio, &mode);
    check_record(&mode);
    if ((bits & CHANGED) != 0) {
        mode.width = width;
        mode.offset = side;
    }
    check_round_trip(radio, &mode);
    mode_write(radio, &mode);
    end_platform();
    return 0;
}
