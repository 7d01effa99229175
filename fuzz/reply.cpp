// What the client makes of the bytes of a reply: decoded, checked, and said in every form it has.
//
// Input: the place of a procedure in the table (two bytes), then the bytes of its result.
#include <locale.h>
#include <string.h>

#include "client/dump.h"
#include "client/render.h"
#include "client/results.h"
#include "client/settings_document.h"
#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "fuzz/support/printed.h"

// What the client reads again: its own JSON is JSON, whatever the server said.
static void check_json(const value *said) {
    memory_stream stream;
    open_memory(&stream);
    render_json(stream.out, said);
    std::string line = close_memory(&stream);
    must(!line.empty() && line.back() == '\n' && line.find('\n') == line.size() - 1, "an answer is one line");
    char problem[PROBLEM_SIZE] = "";
    value *read = parse_document(line.data(), line.size(), problem);
    // Numbers of 64 bits and more members than a document of settings has are JSON all the same.
    must(read || !strstr(problem, "no JSON"), "an answer as JSON is JSON");
    free_value(read);
    open_memory(&stream);
    render_json_document(stream.out, said);
    close_memory(&stream);
}

// A terminal must not obey what comes from the air. Lines and tabs stay in a text that is shown alone.
static void check_text(const value *said, bool colour) {
    const text_options options = {true, colour};
    memory_stream stream;
    open_memory(&stream);
    render_text(stream.out, said, &options);
    std::string text = close_memory(&stream);
    for (char c : text) {
        bool is_control = (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
        must(!is_control || (colour && c == '\x1b'), "no control character reaches a terminal");
    }
}

// A pipe gets texts as they are.
static void print_for_pipe(const value *said) {
    const text_options options = {false, false};
    memory_stream stream;
    open_memory(&stream);
    render_text(stream.out, said, &options);
    close_memory(&stream);
}

static void say(const procedure_row *row, const wlan_config_result_data_t *result) {
    char problem[PROBLEM_SIZE] = "";
    if (!check_result(row, result, problem)) {
        must(*problem != '\0', "a damaged answer is complained of");
        must_be_terminated(problem, sizeof(problem), "a problem");
        return;
    }
    says_something(row, result);
    value *said = result_value(row, result);
    check_json(said);
    check_text(said, false);
    check_text(said, true);
    print_for_pipe(said);
    memory_stream stream;
    open_memory(&stream);
    render_values(stream.out, said, nullptr);
    render_values(stream.out, said, "mac");
    print_dump(stream.out, result);
    close_memory(&stream);
    free_value(said);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    // Both character sets that there can be where nobody has chosen one.
    setlocale(LC_CTYPE, size % 2 == 0 ? "C.UTF-8" : "C");
    fuzz_input input = new_input(data, size);
    const procedure_row *row = &procedure_rows[take_u16(&input) % procedure_row_count];
    std::string bytes = take_rest(&input);
    XDR stream;
    xdrmem_create(&stream, bytes.data(), static_cast<u_int>(bytes.size()), XDR_DECODE);
    wlan_config_result_data_t result = {};
    bool is_decoded = row->result.kind == result_kind::CODE
                          ? xdr_wlan_config_return_code_e(&stream, &result.return_code)
                          : xdr_wlan_config_result_data_t(&stream, &result);
    if (is_decoded) {
        say(row, &result);
    }
    xdr_free(as_xdrproc(xdr_wlan_config_result_data_t), &result);
    return 0;
}
