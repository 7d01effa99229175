// The store's text: what a look-up finds is what the description of the format says, however the file is cut into
// reads.
//
// Input: how much a read gives at most (0: all), a VAP, the size of the value buffer, the key as a line, then the
// store.
#include "config/store.h"

#include <stdlib.h>
#include <string.h>

#include "config/log.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"

// As the header of config/store says it: the first line that begins with the key and its '=' wins; the value ends at
// the first CR, LF or NUL. False when there is none.
static bool find_value(const std::string &store, const std::string &search_key, std::string *value) {
    std::string lines = "\n" + store;
    size_t found = lines.find("\n" + search_key);
    if (found == std::string::npos) {
        return false;
    }
    size_t place = lines.find('=', found) + 1;
    size_t end = lines.find_first_of(std::string("\r\n\0", 3), place);
    *value = lines.substr(place, end == std::string::npos ? end : end - place);
    return true;
}

static void check_lookup(const std::string &store, const std::string &key, int index, size_t size) {
    std::string search_key = index < 2 ? key + "=" : key + "_" + std::to_string(index) + "=";
    // What is longer than any key is cut.
    constexpr size_t SEARCH_KEY_MAX = 255;
    if (search_key.size() > SEARCH_KEY_MAX) {
        return;
    }
    std::string wanted;
    bool is_there = find_value(store, search_key, &wanted);
    char *value = static_cast<char *>(malloc(size));
    int status = athcfg_getbyname(index, key.c_str(), value, size);
    must_be_terminated(value, size, "a value");
    must(wanted.substr(0, size - 1) == value, "a value is what stands behind its key, cut to the buffer");
    must(status == (is_there && *value ? 0 : -1), "an empty value reads as missing, any other as there");
    free(value);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr fuzz_input NOTHING = {nullptr, 0};
    fuzz_input input = new_input(data, size);
    begin_platform(&NOTHING);
    platform.read_step = take_byte(&input);
    int index = take_index(&input);
    size_t value_size = take_byte(&input) + 1u;
    std::string key = take_line(&input);
    // A key is a name: without a NUL, which no text has, and a '=', which no caller's has.
    key = key.substr(0, key.find_first_of(std::string("=\0", 2)));
    std::string store = take_rest(&input);
    platform.files[STORE_FILE] = store;
    check_lookup(store, key, index, value_size);
    int number;
    athcfg_getint(index, key.c_str(), &number);
    must(athcfg_get_radio(index) <= 1, "there are two radios");
    end_platform();
    return 0;
}
