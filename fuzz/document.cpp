// The documents that `apply` and `diff` read: parsed, checked against the table of settings, compared, and shown as the
// calls that make one of the other.
//
// Input: two documents, one behind the other, with a byte 0x1E between them; without it the second is empty.
#include <string.h>

#include "client/changes.h"
#include "client/dry_run.h"
#include "client/names.h"
#include "client/render.h"
#include "client/session.h"
#include "client/settings_document.h"
#include "client/words.h"
#include "fuzz/support/check.h"
#include "fuzz/support/client_answers.h"
#include "fuzz/support/input.h"
#include "fuzz/support/printed.h"

// A checked document, nullptr when there is something wrong with it.
static value *read_settings_of(const std::string &text) {
    char problem[PROBLEM_SIZE] = "";
    value *document = parse_document(text.data(), text.size(), problem);
    value *settings = document ? checked_settings(document, problem) : nullptr;
    must_be_terminated(problem, sizeof(problem), "a problem");
    must(settings || *problem != '\0', "what is wrong with a document is said");
    free_value(document);
    return settings;
}

// Written and read again, settings are the same.
static void check_round_trip(const value *settings) {
    value *document = new_object();
    add_number(document, "schema", DOCUMENT_SCHEMA);
    for (const value *section = settings->first; section; section = section->next) {
        add_copy(document, section->name, section);
    }
    memory_stream stream;
    open_memory(&stream);
    render_json_document(stream.out, document);
    std::string text = close_memory(&stream);
    value *again = read_settings_of(text);
    must(again != nullptr, "what is written can be read");
    must(same_value(settings, again), "settings are read as they were written");
    free_value(again);
    free_value(document);
}

// A line of a dry run is a command that makes the planned call.
static void check_line(const std::string &line, const planned_call *call) {
    static line_words split;
    char problem[PROBLEM_SIZE] = "";
    if (line.size() > LINE_LENGTH_MAX) {
        return;
    }
    must(split_line(line.data(), line.size(), &split, problem), "a shown command can be read");
    must(split.count >= 2 && find_operation(split.words[1]) == call->procedure, "a shown command names the operation");
    call_arguments said;
    must(parse_arguments(call->procedure, split.count - 2, split.words + 2, &said, problem), "it has the arguments");
    for (size_t i = 0; i < said.count; i++) {
        const argument_value *wanted = &call->arguments.values[i];
        bool is_text = wanted->kind == argument_kind::TEXT;
        must(is_text ? strcmp(said.values[i].text, wanted->text) == 0 : said.values[i].number == wanted->number,
             "an argument is shown as it is sent");
    }
}

static void check_lines(const std::string &text, const change_list *changes) {
    call_plan plan = {};
    for (size_t i = 0; i < changes->count; i++) {
        plan_change(&plan, &changes->changes[i]);
    }
    size_t place = 0;
    for (size_t i = 0; i < plan.count; i++) {
        size_t end = text.find('\n', place);
        must(end != std::string::npos, "each call is shown on a line");
        check_line(text.substr(place, end - place), &plan.calls[i]);
        place = end + 1;
    }
    must(place == text.size(), "no more lines than calls");
    free_plan(&plan);
}

// The calls themselves, to a server that carries everything out.
static void make_all(client_session *session, const change_list *changes) {
    client_answers = {nullptr, 0};
    session->settings.timeout_seconds = DEFAULT_TIMEOUT_SECONDS;
    if (!check_sizes(session, changes)) {
        return;
    }
    auto listener = [](void *, const change_outcome *outcome) {
        must(outcome->status == EXIT_STATUS_SUCCESS, "what fits a call can be sent");
    };
    must(make_changes(session, changes, false, listener, nullptr) == EXIT_STATUS_SUCCESS, "all changes are made");
}

static void show_difference(const value *now, const value *then) {
    change_list changes = find_changes(now, then);
    server_connection connection = new_connection(&GATEWAY_ENDPOINT);
    client_session session = {};
    memory_stream stream;
    open_memory(&stream);
    session.connection = &connection;
    session.out = session.errors = stream.out;
    session.settings.format = output_format::TEXT;
    session.speaker = "apply";
    show_calls(&session, &changes);
    fflush(stream.out);
    std::string text(stream.text, stream.length);
    make_all(&session, &changes);
    close_connection(&connection);
    close_memory(&stream);
    check_lines(text, &changes);
    free_changes(&changes);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    constexpr char SEPARATOR = 0x1E;
    fuzz_input input = new_input(data, size);
    std::string texts = take_rest(&input);
    size_t border = texts.find(SEPARATOR);
    value *then = read_settings_of(texts.substr(0, border));
    value *now = border == std::string::npos ? nullptr : read_settings_of(texts.substr(border + 1));
    if (then) {
        check_round_trip(then);
        value *nothing = now ? nullptr : new_object();
        show_difference(now ? now : nothing, then);
        free_value(nothing);
    }
    free_value(now);
    free_value(then);
    return 0;
}
