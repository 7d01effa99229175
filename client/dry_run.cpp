#include "client/dry_run.h"

#include <ctype.h>
#include <string.h>

#include "client/help.h"
#include "client/names.h"
#include "client/session.h"
#include "client/utf8.h"

static bool is_bare_word(const char *text) {
    for (const char *c = text; *c; c++)
        if (!isalnum(static_cast<unsigned char>(*c)) && !strchr("_./:@%+,-", *c))
            return false;
    return *text;
}

// Bytes that a terminal would obey or cannot show.
static bool is_plain_text(const char *text) {
    size_t length = strlen(text);
    for (size_t i = 0; i < length; i += utf8_length(text + i, length - i))
        if (utf8_length(text + i, length - i) == 0 || is_control_character(text + i, length - i))
            return false;
    return true;
}

// A word as a shell takes it: bare, in quotes, or with its bytes spelled out.
static void print_word(FILE *out, const char *text) {
    if (is_bare_word(text)) {
        fputs(text, out);
        return;
    }
    bool plain = is_plain_text(text);
    fputs(plain ? "'" : "$'", out);
    for (const char *c = text; *c; c++) {
        unsigned char byte = static_cast<unsigned char>(*c);
        if (plain && *c == '\'')
            fputs("'\\''", out);
        else if (plain)
            putc(*c, out);
        else if (byte < 0x20 || byte >= 0x7f || *c == '\'' || *c == '\\')
            fprintf(out, "\\x%02x", byte);
        else
            putc(*c, out);
    }
    putc('\'', out);
}

static void print_call(client_session *session, const planned_call *call) {
    char name[OPERATION_NAME_SIZE];
    operation_name(call->procedure, name);
    fprintf(session->out, "%s ", PROGRAM_NAME);
    if (strcmp(session->connection->endpoint.address, GATEWAY_ENDPOINT.address) != 0) {
        fputs("--server ", session->out);
        print_word(session->out, session->connection->endpoint.address);
        putc(' ', session->out);
    }
    fputs(name, session->out);
    for (size_t i = 0; i < call->arguments.count; i++) {
        const argument_value *argument = &call->arguments.values[i];
        putc(' ', session->out);
        if (argument->kind == argument_kind::TEXT)
            print_word(session->out, argument->text);
        else
            fprintf(session->out, "%lld", static_cast<long long>(argument->number));
    }
    fputs(call->change.expected ? "\n" : "  # if a call above has changed it\n", session->out);
}

static void add_call(value *list, const planned_call *call) {
    value *entry = add_object(list, nullptr);
    char name[OPERATION_NAME_SIZE], where[WHERE_SIZE];
    operation_name(call->procedure, name);
    add_string(entry, "operation", name);
    value *arguments = add_list(entry, "arguments");
    for (size_t i = 0; i < call->arguments.count; i++) {
        const argument_value *argument = &call->arguments.values[i];
        if (argument->kind == argument_kind::TEXT)
            add_string(arguments, nullptr, argument->text);
        else
            add_number(arguments, nullptr, argument->number);
    }
    name_place(call->change.setting, call->change.place, call->change.element, where);
    add_string(entry, "where", where);
    add_string(entry, "setting", call->change.setting->name);
    add_boolean(entry, "expected", call->change.expected);
}

client_exit_status show_calls(client_session *session, const change_list *changes) {
    call_plan plan = {};
    for (size_t i = 0; i < changes->count; i++)
        plan_change(&plan, &changes->changes[i]);
    client_exit_status status = EXIT_STATUS_SUCCESS;
    if (session->settings.format == output_format::TEXT) {
        for (size_t i = 0; i < plan.count; i++)
            print_call(session, &plan.calls[i]);
    } else {
        value *result = new_object();
        value *list = add_list(result, "calls");
        for (size_t i = 0; i < plan.count; i++)
            add_call(list, &plan.calls[i]);
        status = show(session, result);
    }
    free_plan(&plan);
    return status;
}
