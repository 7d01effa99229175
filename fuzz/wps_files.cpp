// The WPS files: reading an attribute, and rewriting the file with another value.
//
// Input: a byte of switches, a VAP, the key as a line, the value as a line, then the file.
#include "config/wps_files.h"

#include <stdlib.h>
#include <string.h>

#include "config/store.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"

enum file_bits : uint8_t {
    NO_FILE = 0x01,
    LISTED_ALL_THE_SAME = 0x02,  // the directory's list has it
    STORAGE_FULL = 0x04,
    READS_FAIL = 0x08,
};

static bool is_listed;
static std::string file_path;

// `cat FILE | grep KEY`, for keys that are plain words.
static std::string lines_with(const std::string &key) {
    std::string found;
    const std::string &content = platform.files[file_path];
    for (size_t place = 0; place < content.size();) {
        size_t end = content.find('\n', place);
        std::string line = content.substr(place, end == std::string::npos ? end : end - place);
        place += line.size() + 1;
        if (line.find(key) != std::string::npos) {
            found += line + "\n";
        }
    }
    return found;
}

static bool run_tool(const std::string &command, std::string *output) {
    std::string cat = "cat " + file_path + " | grep ";
    if (command.compare(0, cat.size(), cat) == 0) {
        if (platform.files.count(file_path) != 0) {
            *output = lines_with(command.substr(cat.size()));
        }
    } else if (command.compare(0, 3, "ls ") == 0) {
        *output = is_listed ? "WSC_ath0.conf\n" : "";
    } else if (command == "rm " + file_path + ";mv " + file_path + ".tmp " + file_path) {
        platform.files[file_path] = platform.files[file_path + ".tmp"];
        platform.files.erase(file_path + ".tmp");
    } else {
        fail("only the known commands are run");
    }
    return true;
}

// As the header says it: lines that set the key get the new value, wherever the key stands in front of its '='; a line
// that does not fit its buffer, or has no line break, ends the file.
static std::string wanted_file(const std::string &content, const std::string &key, const std::string &value) {
    constexpr size_t LINE_MAX_LENGTH = 254;
    const std::string setting = key + "=" + value;
    std::string wanted;
    bool replaced = false;
    for (size_t place = 0; place < content.size();) {
        size_t end = content.find('\n', place);
        if (end == std::string::npos || end - place > LINE_MAX_LENGTH) {
            break;
        }
        std::string line = content.substr(place, end - place);
        place = end + 1;
        if (line.find('\0') != std::string::npos) {
            break;
        }
        size_t found = line.find(key);
        bool is_set = found != std::string::npos && found + key.size() < line.size() && line[found + key.size()] == '=';
        wanted += is_set ? setting : line;
        wanted += '\n';
        replaced = replaced || is_set;
    }
    return replaced ? wanted : wanted + setting + '\n';
}

static void check_reading(int index, const std::string &key, size_t size) {
    char *value = static_cast<char *>(malloc(size));
    memset(value, 0, size);
    std::string lines = lines_with(key);
    int status = athwps_getbyname(index, key.c_str(), value, size);
    must_be_terminated(value, size, "a value");
    // What a command prints is a text; where one has NULs, it is not said what stands behind them.
    if (lines.find('\0') == std::string::npos) {
        must(status == (lines.find('=') != std::string::npos ? 0 : -1), "a value is there when a line has one");
    }
    free(value);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz_input input = new_input(data, size);
    begin_platform(&input);
    uint8_t bits = take_byte(&input);
    int index = take_index(&input);
    size_t value_size = take_byte(&input) + 1u;
    std::string key = take_line(&input);
    key = key.substr(0, key.find('\0'));
    std::string value = take_line(&input);
    value = value.substr(0, value.find('\0'));
    std::string content = take_rest(&input);
    file_path = std::string(WPS_DIRECTORY) + "/WSC_ath" + std::to_string(interface_number(index)) + ".conf";
    is_listed = (bits & NO_FILE) == 0 || (bits & LISTED_ALL_THE_SAME) != 0;
    platform.run_tool = run_tool;
    if ((bits & NO_FILE) == 0) {
        platform.files[file_path] = content;
        check_reading(index, key, value_size);
    }
    platform.storage_left = (bits & STORAGE_FULL) != 0 ? 3 : platform.storage_left;
    platform.reads_fail = (bits & READS_FAIL) != 0;
    int status = athwps_setbyname(index, key.c_str(), value.c_str());
    bool is_simple = (bits & (STORAGE_FULL | READS_FAIL)) == 0;
    if ((bits & NO_FILE) != 0) {
        must(status == -1, "there is no file to rewrite");
    } else if (is_simple) {
        must(status == 0, "a file is rewritten");
        must(platform.files[file_path] == wanted_file(content, key, value), "only the key's lines change");
    } else if (status != 0) {
        must(platform.files[file_path] == content, "a file that cannot be rewritten stays as it was");
    }
    must(platform.files.count(file_path + ".tmp") == 0, "no temporary file is left behind");
    end_platform();
    return 0;
}
