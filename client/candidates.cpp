#include "client/candidates.h"

#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include "client/names.h"
#include "client/options.h"
#include "client/record_fields.h"
#include "client/ssids.h"
#include "client/utf8.h"

static bool is_candidate(const completion *state, const char *before, const char *word) {
    size_t length = strlen(before);
    size_t typed = strlen(state->typed);
    if (strncasecmp(state->typed, before, typed < length ? typed : length) != 0)
        return false;
    return typed <= length || strncasecmp(state->typed + length, word, typed - length) == 0;
}

void add_candidate(completion *state, const char *before, const char *word, const char *description) {
    char whole[PROBLEM_SIZE];
    if (!is_candidate(state, before, word))
        return;
    snprintf(whole, sizeof whole, "%s%s", before, word);
    value *candidate = add_object(state->candidates, nullptr);
    add_string(candidate, "word", whole);
    add_string(candidate, "description", description);
}

// The spelling in which an operation's name is given: as a person has begun it.
struct name_style {
    bool prefix;     // wlan stands before it
    char separator;  // between words, '\0' for camel case
};

static name_style style_of(const char *typed) {
    constexpr char PREFIX[] = "wlan";
    name_style style = {strncasecmp(typed, PREFIX, sizeof PREFIX - 1) == 0, '\0'};
    size_t separated = strcspn(typed, "_-");
    style.separator = typed[separated];
    if (style.prefix && strlen(typed) == sizeof PREFIX - 1)
        style.separator = '_';
    return style;
}

static void styled_name(const procedure_row *row, name_style style, char name[OPERATION_NAME_SIZE + 1]) {
    char camel[OPERATION_NAME_SIZE];
    operation_name(row, camel);
    const char *full = row->name;  // wlan_get_ssid
    size_t prefix = strcspn(full, "_");
    if (!style.separator && !style.prefix) {
        snprintf(name, OPERATION_NAME_SIZE, "%s", camel);
    } else if (!style.separator) {
        snprintf(name, OPERATION_NAME_SIZE + 1, "%.*s%s", static_cast<int>(prefix), full, camel);
        name[prefix] = static_cast<char>(toupper(static_cast<unsigned char>(name[prefix])));
    } else {
        snprintf(name, OPERATION_NAME_SIZE, "%s", style.prefix ? full : full + prefix + 1);
        for (char *c = name; *c; c++)
            *c = *c == '_' ? style.separator : *c;
    }
}

static void add_operations(completion *state, const char *before) {
    size_t length = strlen(before);
    name_style style = style_of(strlen(state->typed) < length ? "" : state->typed + length);
    char name[OPERATION_NAME_SIZE + 1];
    for (size_t i = 0; i < procedure_row_count; i++) {
        styled_name(&procedure_rows[i], style, name);
        if (!find_command(name))  // which carries out the operation of its name
            add_candidate(state, before, name, procedure_rows[i].summary);
    }
}

static void add_commands(completion *state, const char *before) {
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            add_candidate(state, before, command_rows[i].name, command_rows[i].summary);
    if (state->session->origin.source == line_source::SHELL)
        add_candidate(state, before, "exit", "end the shell");
}

static void add_subjects(completion *state, const char *before) {
    for (size_t i = 0; i < procedure_row_count; i++)
        if (begins_its_subject(&procedure_rows[i]))
            add_candidate(state, before, procedure_rows[i].subject, "");
}

static void add_choices(completion *state, const char *before, word_kind kind) {
    word_choices choices = choices_of(kind);
    for (size_t i = 0; i < choices.count; i++)
        add_candidate(state, before, choices.rows[i].word, choices.rows[i].summary);
}

static void add_record_fields(completion *state, const char *before, const record_row *record) {
    for (size_t i = 0; i < record->field_count; i++) {
        if (record->fields[i].kind == field_kind::PADDING)
            continue;
        add_candidate(state, before, record->fields[i].name, record->fields[i].unit);
        if (record->fields[i].record)
            add_record_fields(state, before, record->fields[i].record);
    }
}

// The names in the result of the operation that stands before the option.
static void add_fields(completion *state, const char *before) {
    if (!state->row)
        return;
    const result_row *result = &state->row->result;
    for (size_t i = 0; i < result->output_count; i++)
        add_candidate(state, before, result->outputs[i].name, "");
    const record_row *record = *result->type ? find_record(result->type) : nullptr;
    if (record)
        add_record_fields(state, before, record);
    else if (*result->name)
        add_candidate(state, before, result->name, "");
}

static void add_hint(completion *state, const char *what, const char *accepted) {
    char hint[PROBLEM_SIZE];
    snprintf(hint, sizeof hint, "%s%s%s", what, *accepted ? ": " : "", accepted);
    add_string(state->answer, "hint", hint);
}

// An SSID that a terminal and a line can have: a question mark for each byte that they cannot.
static void make_printable(char *text) {
    size_t length = strlen(text), used = 0;
    for (size_t at = 0; at < length;) {
        size_t character = utf8_length(text + at, length - at);
        bool is_shown = character > 0 && !is_control_character(text + at, length - at);
        if (!is_shown)
            text[used++] = '?';
        for (size_t i = 0; is_shown && i < character; i++)
            text[used++] = text[at + i];
        at += character > 0 ? character : 1;
    }
    text[used] = '\0';
}

static void add_vaps(completion *state, const char *before) {
    char ssids[VAP_COUNT_MAX][SSID_TEXT_SIZE] = {};
    char number[sizeof "-2147483648"];
    bool wanted = false;
    for (int index = 1; index <= VAP_COUNT_MAX && !wanted; index++) {
        snprintf(number, sizeof number, "%d", index);
        wanted = is_candidate(state, before, number);
    }
    if (wanted)
        find_ssids(state->session, state->server, ssids);
    for (int index = 1; index <= VAP_COUNT_MAX; index++) {
        snprintf(number, sizeof number, "%d", index);
        make_printable(ssids[index - 1]);
        add_candidate(state, before, number, ssids[index - 1]);
    }
}

void add_kind(completion *state, word_kind kind, const char *before, const char *name, const char *accepted) {
    switch (kind) {
        case word_kind::NONE:
        case word_kind::COMMAND_LINE:
        case word_kind::RAW_WORDS:
            break;
        case word_kind::NUMBER:
        case word_kind::TEXT:
            add_hint(state, name, accepted);
            break;
        case word_kind::FILE_NAME:
            add_string(state->answer, "files", before);
            break;
        case word_kind::VAP:
            add_vaps(state, before);
            break;
        case word_kind::OPERATION:
            add_operations(state, before);
            break;
        case word_kind::SUBJECT:
            add_subjects(state, before);
            break;
        case word_kind::ANY_COMMAND:
            add_commands(state, before);
            add_operations(state, before);
            break;
        case word_kind::FORMAT:
        case word_kind::WHEN:
            add_choices(state, before, kind);
            break;
        case word_kind::FIELD:
            add_fields(state, before);
            break;
    }
}

void add_argument(completion *state, const argument_row *argument) {
    char name[OPERATION_NAME_SIZE];
    switch (argument->kind) {
        case argument_kind::VAP:
            add_vaps(state, "");
            return;
        case argument_kind::BOOL:
            add_candidate(state, "", "on", argument->name);
            add_candidate(state, "", "off", argument->name);
            return;
        case argument_kind::INT:
        case argument_kind::IGNORED:
        case argument_kind::UINT:
        case argument_kind::USHORT:
        case argument_kind::TEXT:
            snprintf(name, sizeof name, "<%s>", argument->name);
            add_hint(state, name, accepted_text(argument->kind));
            return;
    }
}

void add_options(completion *state, const option_row *rows, size_t count) {
    for (size_t i = 0; i < count; i++) {
        const char letter[] = {rows[i].letter, '\0'};
        add_candidate(state, "--", rows[i].name, rows[i].summary);
        if (rows[i].letter && strlen(state->typed) == 2)
            add_candidate(state, "-", letter, rows[i].summary);
    }
}
