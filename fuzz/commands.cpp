// The client's commands, whole, on a server that answers anything: results that fit their row with any content, results
// that do not, and calls that fail.
//
// Input: which command, in which format, then the answers as support/client_answers.h takes them.
#include <locale.h>
#include <string.h>

#include "client/commands.h"
#include "client/settings_document.h"
#include "fuzz/support/check.h"
#include "fuzz/support/client_answers.h"
#include "fuzz/support/printed.h"

constexpr size_t WORDS_MAX = 8;

static const char *const COMMANDS[][WORDS_MAX] = {
    {"status"},
    {"stations"},
    {"stations", "3"},
    {"scan", "1"},
    {"metrics"},
    {"export"},
    {"export", "--without-secrets"},
    {"load", "--wait"},
    {"init", "--wait"},
    {"reset", "--wait"},
    {"getSsid", "3"},
    {"getStats", "1"},
    {"getRssiTable", "9"},
    {"getAssocDevice", "1", "0"},
    {"getAssocDevicesTable", "1"},
    {"getApScanResult", "1"},
    {"getSoftblockBlackList", "1"},
    {"getAdvairtimeStaList", "3"},
    {"getAdvairtimeStatsclAtftable", "9"},
    {"getDot11uAttribute", "1"},
    {"getWpsStatus", "1"},
    {"setSsid", "3", "name"},
    {"getMacAddressControlList", "1"},
};
constexpr size_t COMMAND_COUNT = sizeof(COMMANDS) / sizeof(*COMMANDS);

static void check_json(const std::string &printed) {
    for (size_t place = 0; place < printed.size();) {
        size_t end = printed.find('\n', place);
        must(end != std::string::npos, "an answer ends with its line");
        char problem[PROBLEM_SIZE] = "";
        value *read = parse_document(printed.data() + place, end - place, problem);
        // What has more or larger values than a document of settings is JSON all the same.
        must(read || !strstr(problem, "no JSON"), "an answer as JSON is JSON");
        free_value(read);
        place = end + 1;
    }
}

static void check_terminal(const std::string &printed) {
    for (char c : printed) {
        bool is_control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
        must(!is_control || c == '\n' || c == '\t', "no control character reaches a terminal");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    // Both character sets that there can be where nobody has chosen one.
    setlocale(LC_CTYPE, size % 2 == 0 ? "C.UTF-8" : "C");
    fuzz_input input = new_input(data, size);
    const char *const *chosen = COMMANDS[take_byte(&input) % COMMAND_COUNT];
    auto format = static_cast<output_format>(take_byte(&input) % 4);
    client_answers = input;
    char words[WORDS_MAX][64] = {};
    char *pointers[WORDS_MAX + 1] = {};
    int count = 0;
    for (; count < static_cast<int>(WORDS_MAX) && chosen[count]; count++) {
        strncpy(words[count], chosen[count], sizeof(words[count]) - 1);
        pointers[count] = words[count];
    }
    memory_stream out, errors;
    open_memory(&out);
    open_memory(&errors);
    server_connection connection = new_connection(&GATEWAY_ENDPOINT);
    client_session session = {
        &connection, {DEFAULT_TIMEOUT_SECONDS, format, nullptr, true, false}, out.out, errors.out, nullptr, false, ""};
    client_exit_status status = run_words(&session, count, pointers);
    close_connection(&connection);
    std::string printed = close_memory(&out);
    std::string complaints = close_memory(&errors);
    must(status == EXIT_STATUS_SUCCESS || !printed.empty() || !complaints.empty(), "a failure is not silent");
    bool is_document = strcmp(chosen[0], "export") == 0 || strcmp(chosen[0], "metrics") == 0;
    if (format == output_format::JSON) {
        check_json(printed);
    } else if (format == output_format::TEXT && !is_document) {
        check_terminal(printed);
        check_terminal(complaints);
    }
    return 0;
}
