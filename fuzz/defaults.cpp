// The factory defaults file: what of it comes into the store is what the description of the format says.
//
// Input: a byte of switches, the scope, the store with its length in front, then the defaults file.
#include "config/factory_defaults.h"

#include <string.h>

#include "config/store.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"

constexpr const char DEFAULTS_FILE[] = "/tmp/wifi_defaults.dat";

enum defaults_bits : uint8_t {
    FETCHED = 0x01,  // the tool brings the file
    NEVER_THERE = 0x02,
    NO_STORE = 0x04,
    STORAGE_SHORT = 0x08,
    READS_FAIL = 0x10,
};

static std::string defaults_to_fetch;

static bool fetch_defaults(const std::string &command, std::string *) {
    if (command == "wps_gpio wifi_conf") {
        platform.files[DEFAULTS_FILE] = defaults_to_fetch;
    }
    return true;
}

// Whether the first 512 bytes of a line, which is what of it is looked at, have both texts.
static bool has_both(const std::string &line, const char *marker, const char *word) {
    std::string looked_at = line.substr(0, 512);
    return looked_at.find(marker) != std::string::npos && looked_at.find(word) != std::string::npos;
}

// The lines of one radio's sections; all of them for scope 2.
static std::string wanted_lines(const std::string &defaults, int scope) {
    static const char *const markers[] = {"SETTING_DELIMETER=50_RADIO", "SETTING_DELIMETER=24_RADIO"};
    if (scope == 2) {
        return defaults;
    }
    std::string taken;
    bool inside = false;
    for (size_t place = 0; place < defaults.size();) {
        size_t end = defaults.find('\n', place);
        std::string line = defaults.substr(place, end == std::string::npos ? end : end + 1 - place);
        place += line.size();
        if (!inside) {
            inside = has_both(line, markers[scope], "_START");
        } else if (has_both(line, markers[scope], "_STOP")) {
            inside = false;
        } else {
            taken += line;
        }
    }
    return taken;
}

// The store behind the call: the lines and four zeros, over the zeros at its end or, with all defaults, behind its
// header.
static std::string wanted_store(std::string store, const std::string &defaults, int scope) {
    constexpr size_t HEADER = 4;
    constexpr size_t ZEROS = 4;
    std::string written = wanted_lines(defaults, scope) + std::string(ZEROS, '\0');
    size_t place = scope != 2 && store.size() > HEADER + ZEROS ? store.size() - ZEROS : HEADER;
    if (store.size() < place + written.size()) {
        store.resize(place + written.size());
    }
    return store.replace(place, written.size(), written);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz_input input = new_input(data, size);
    begin_platform(&input);
    uint8_t bits = take_byte(&input);
    int scope = static_cast<int>(take_index(&input) + 2U);
    std::string store = take_text(&input);
    std::string defaults = take_rest(&input);
    defaults_to_fetch = defaults;
    platform.run_tool = fetch_defaults;
    bool is_there = (bits & (FETCHED | NEVER_THERE)) == 0;
    if (is_there) {
        platform.files[DEFAULTS_FILE] = defaults;
    }
    if ((bits & NEVER_THERE) != 0) {
        platform.run_tool = [](const std::string &, std::string *) { return true; };
    }
    if ((bits & NO_STORE) == 0) {
        platform.files[STORE_FILE] = store;
    }
    platform.files["/nvram/wlanlog"] = "";
    platform.storage_left = (bits & STORAGE_SHORT) != 0 ? 100 : platform.storage_left;
    platform.reads_fail = (bits & READS_FAIL) != 0;
    int status = wlan_setRestoreDefaults(scope);
    bool can_be_done = scope >= 0 && scope <= 2 && (bits & (NEVER_THERE | NO_STORE)) == 0;
    bool is_simple = (bits & (STORAGE_SHORT | READS_FAIL)) == 0;
    if (is_simple) {
        must(status == (can_be_done ? 0 : -1), "defaults are restored when there are both files");
    }
    if (is_simple && (bits & NO_STORE) == 0) {
        std::string wanted = can_be_done ? wanted_store(store, defaults, scope) : store;
        must(platform.files[STORE_FILE] == wanted, "the store has the lines of the sections that were asked for");
    }
    end_platform();
    return 0;
}
