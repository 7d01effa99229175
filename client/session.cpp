#include "client/session.h"

#include <stdarg.h>
#include <string.h>

#include "client/help.h"
#include "client/render.h"
#include "client/suggest.h"
#include "client/utf8.h"

value *new_answer(const client_session *session) {
    value *answer = new_object();
    if (session->origin.line)
        add_unsigned(answer, "line", session->origin.line);
    if (session->origin.text)
        add_string(answer, "input", session->origin.text);
    if (session->speaker)
        add_string(answer, session->is_operation ? "operation" : "command", session->speaker);
    return answer;
}

bool speaks_to_people(const client_session *session) {
    return session->settings.format == output_format::TEXT || session->settings.format == output_format::DUMP;
}

bool wants_page(const client_session *session) {
    return speaks_to_people(session) || (session->settings.format == output_format::VALUE && !session->settings.field);
}

static void consider_members(suggestions *found, const value *parent, const char *wanted) {
    for (const value *child = parent->first; child; child = child->next) {
        if (child->readers == audience::PEOPLE)
            continue;
        if (child->name)
            consider(found, wanted, child->name);
        consider_members(found, child, wanted);
    }
}

static client_exit_status complain_of_field(client_session *session, const value *result, const char *field) {
    char problem[PROBLEM_SIZE];
    snprintf(problem, sizeof problem, "the result has no \"%s\"", field);
    const char *last = strrchr(field, '.');
    suggestions found;
    consider_members(&found, result, last ? last + 1 : field);
    return complain_with_suggestions(session, EXIT_STATUS_NOT_FOUND, problem, &found);
}

static client_exit_status show_value(client_session *session, const value *result) {
    const char *field = session->settings.field;
    size_t count = render_values(session->out, result, field);
    if (field && count == 0)
        return complain_of_field(session, result, field);
    if (!field && count > 1)
        return complain(session, EXIT_STATUS_USAGE, "the result has %zu values: choose one by its name with --field",
                        count);
    return EXIT_STATUS_SUCCESS;
}

bool can_show_many(client_session *session) {
    if (session->settings.format != output_format::VALUE || session->settings.field)
        return true;
    complain(session, EXIT_STATUS_USAGE, "the result has several values: choose one by its name with --field");
    return false;
}

client_exit_status show(client_session *session, value *result) {
    client_exit_status status = EXIT_STATUS_SUCCESS;
    const text_options options = {session->settings.terminal, session->settings.colour};
    switch (session->settings.format) {
        case output_format::TEXT:
        case output_format::DUMP:
            render_text(session->out, result, &options);
            free_value(result);
            break;
        case output_format::JSON: {
            value *answer = new_answer(session);
            if (session->is_operation)
                add_number(answer, "code", WLAN_CONFIG_SUCCESS);
            add_value(answer, "result", result);
            render_json(session->out, answer);
            free_value(answer);
            break;
        }
        case output_format::VALUE:
            status = show_value(session, result);
            free_value(result);
            break;
    }
    fflush(session->out);
    return status;
}

// Who says it: "batch.txt:3: getSsid: ", or the program's name where there is no better one.
static void print_speaker(const client_session *session) {
    const char *speaker = session->speaker;
    if (session->origin.file)
        fprintf(session->errors, "%s:%zu: ", session->origin.file, session->origin.line);
    else if (!speaker)
        speaker = PROGRAM_NAME;
    if (speaker)
        fprintf(session->errors, "%s: ", speaker);
}

client_exit_status complain_in(client_session *session, value *answer, client_exit_status status, const char *problem) {
    fflush(session->out);  // what is there of a result comes first, also where both streams go to one place
    if (session->settings.format == output_format::JSON) {
        value *error = add_object(answer, "error");
        add_number(error, "status", status);
        add_string(error, "kind", exit_status_word(status));
        add_string(error, "message", problem);
        render_json(session->out, answer);
        fflush(session->out);
    } else {
        print_speaker(session);
        print_visible(session->errors, problem);  // it may quote a file, a name of a network, a word
        putc('\n', session->errors);
    }
    free_value(answer);
    return status;
}

client_exit_status complain(client_session *session, client_exit_status status, const char *format, ...) {
    char problem[PROBLEM_SIZE];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(problem, sizeof problem, format, arguments);
    va_end(arguments);
    return complain_in(session, new_answer(session), status, problem);
}

client_exit_status complain_of_call(client_session *session, client_exit_status status) {
    return complain(session, status, "%s", session->problem);
}

void remark(client_session *session, const char *format, ...) {
    if (session->settings.format == output_format::JSON)
        return;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(session->errors, format, arguments);
    va_end(arguments);
    fflush(session->errors);
}
