#include "client/description.h"

#include <stdio.h>
#include <stdlib.h>

#include "client/exit_status.h"
#include "client/meanings.h"
#include "client/names.h"
#include "client/operation_text.h"
#include "client/record_fields.h"
#include "client/shell_texts.h"
#include "client/touches.h"

static void add_example(value *to, const procedure_row *row, const char *name, bool is_text) {
    const char *example = meaning_of(row, name)->example;
    if (is_text)
        add_string(to, name, example);
    else
        add_number(to, name, atoll(example));
}

value *example_result(const procedure_row *row) {
    const result_row *result = &row->result;
    bool is_text = result->kind == result_kind::STRING || result->kind == result_kind::LONG_STRING;
    bool is_number = result->kind == result_kind::INTEGERS64 && result->size == 1;
    if (!is_only_a_code(&row->result) && !is_text && !is_number && result->kind != result_kind::INTEGERS)
        return nullptr;
    value *made = new_object();
    for (size_t i = 0; i < result->output_count; i++)
        add_example(made, row, result->outputs[i].name, false);
    if (is_text || is_number)
        add_example(made, row, result->name, is_text);
    return made;
}

static void add_optional(value *to, const char *name, const char *text) {
    if (*text)
        add_string(to, name, text);
    else
        add_nothing(to, name);
}

static void add_range(value *to, const value_range *range, bool of_argument) {
    bool is_number = range->kind == range_kind::NUMBERS || range->kind == range_kind::EITHER;
    if (is_number) {
        add_number(to, "least", range->least);
        add_number(to, "most", range->most);
    } else {
        add_nothing(to, "least");
        add_nothing(to, "most");
    }
    if (of_argument && range->kind != range_kind::UNUSED && range->kind != range_kind::ANY)
        add_string(to, "outside", outside_word(range->outside));
    else if (of_argument)
        add_nothing(to, "outside");
}

static const char *argument_word(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
            return "vap";
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return "integer";
        case argument_kind::UINT:
        case argument_kind::USHORT:
            return "unsigned";
        case argument_kind::BOOL:
            return "boolean";
        case argument_kind::TEXT:
            return "text";
    }
    return "";
}

static void add_accepts(value *to, const argument_row *argument, const value_range *range) {
    printed_text text;
    begin_text(&text);
    print_accepted(text.out, argument, range);
    add_printed(to, "accepts", &text);
}

static void add_arguments(value *to, const procedure_row *row) {
    value *arguments = add_list(to, "arguments");
    for (size_t i = 0; i < row->argument_count; i++) {
        const argument_row *argument = &row->arguments[i];
        const meaning_row *meaning = meaning_of(row, argument->name);
        value *added = add_object(arguments, nullptr);
        add_string(added, "name", argument->name);
        add_string(added, "kind", argument_word(argument->kind));
        add_string(added, "meaning", meaning->meaning);
        add_optional(added, "unit", meaning->unit);
        add_range(added, &meaning->range, true);
        add_accepts(added, argument, &meaning->range);
        add_boolean(added, "used", meaning->range.kind != range_kind::UNUSED);
        add_shell_row(added, find_shell_row(row, argument->name));
        add_string(added, "example", meaning->example);
    }
}

// "None, Basic, WPA" too, which is no range of numbers.
static void add_range_text(value *to, const value_range *range) {
    printed_text text;
    begin_text(&text);
    print_range(text.out, range);
    value *added = add_printed(to, "range", &text);
    if (added->length == 0)
        added->kind = value_kind::NOTHING;
}

static void add_output(value *to, const procedure_row *row, const char *name, const char *kind, size_t count) {
    const meaning_row *meaning = meaning_of(row, name);
    value *added = add_object(to, nullptr);
    add_string(added, "name", name);
    add_string(added, "kind", kind);
    add_string(added, "meaning", meaning->meaning);
    add_optional(added, "unit", meaning->unit);
    add_range(added, &meaning->range, false);
    add_range_text(added, &meaning->range);
    add_unsigned(added, "count", count);
}

static const char *output_word(output_kind kind) {
    switch (kind) {
        case output_kind::INT:
            return "integer";
        case output_kind::UINT:
            return "unsigned";
        case output_kind::BOOL:
            return "boolean";
    }
    return "";
}

static const char *field_word(const record_field *field) {
    switch (field->kind) {
        case field_kind::NUMBER:
            return field->is_signed ? "integer" : "unsigned";
        case field_kind::TEXT:
            return "text";
        case field_kind::MAC:
            return "mac";
        case field_kind::OCTETS:
            return "hexadecimal";
        case field_kind::LIST:
            return "list";
        case field_kind::PADDING:
            break;
    }
    return "";
}

static void add_fields(value *to, const record_row *record) {
    value *fields = add_list(to, "fields");
    for (size_t i = 0; i < record->field_count; i++) {
        const record_field *field = &record->fields[i];
        if (field->kind == field_kind::PADDING)
            continue;
        value *added = add_object(fields, nullptr);
        add_string(added, "name", field->name);
        add_string(added, "kind", field_word(field));
        add_optional(added, "unit", field->unit);
        add_unsigned(added, "count", field->elements);
        add_boolean(added, "detail", field->detail);
        if (field->record)
            add_fields(added, field->record);
    }
}

static const char *result_word(result_kind kind) {
    switch (kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            return "code";
        case result_kind::INTEGERS:
        case result_kind::INTEGERS64:
            return "numbers";
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            return "text";
        case result_kind::WORDS:
        case result_kind::IMAGE:
        case result_kind::COUNTED_IMAGE:
            return "record";
    }
    return "";
}

static void add_values(value *to, const procedure_row *row) {
    const result_row *result = &row->result;
    value *values = add_list(to, "values");
    for (size_t i = 0; i < result->output_count; i++)
        add_output(values, row, result->outputs[i].name, output_word(result->outputs[i].kind), 1);
    if (result->kind == result_kind::COUNTED_IMAGE)
        add_output(values, row, "count", "integer", 1);
    if (*result->name) {
        bool many = result->kind == result_kind::INTEGERS64;
        const char *kind = *result->type ? "record" : (many ? "integer" : "text");
        add_output(values, row, result->name, kind, many ? result->size : 1);
    }
}

// {"kind":"record","values":[...],"record":"scan_table","bytes":8196,"fields":[...]}; null and no fields without one.
static void add_result(value *to, const procedure_row *row) {
    const result_row *result = &row->result;
    const record_row *record = *result->type ? find_record(result->type) : nullptr;
    value *added = add_object(to, "result");
    add_string(added, "kind", result_word(result->kind));
    add_values(added, row);
    add_optional(added, "record", result->type);
    if (record) {
        add_unsigned(added, "bytes", record->size);
        add_fields(added, record);
    } else {
        add_nothing(added, "bytes");
        add_list(added, "fields");
    }
}

static void add_example_of(value *to, const procedure_row *row) {
    value *example = add_object(to, "example");
    printed_text command;
    begin_text(&command);
    print_example(command.out, row);
    add_printed(example, "command", &command);
    value *words = add_list(example, "words");
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    add_string(words, nullptr, name);
    for (size_t i = 0; i < row->argument_count; i++)
        add_string(words, nullptr, meaning_of(row, row->arguments[i].name)->example);
    bool fails = why_example_fails(row);
    add_number(example, "status", fails ? EXIT_STATUS_FAILURE : EXIT_STATUS_SUCCESS);
    value *result = fails ? nullptr : example_result(row);
    if (result)
        add_value(example, "result", result);
    else
        add_nothing(example, "result");
}

static void add_places(value *to, const procedure_row *row) {
    value *handler = add_object(to, "handler");
    printed_text function;
    begin_text(&function);
    fprintf(function.out, "%s_1_svc", row->name);
    add_printed(handler, "function", &function);
    add_string(handler, "file", handler_file(row));
    if (!has_back_end(row)) {
        add_nothing(to, "back_end");
        return;
    }
    char file[OPERATION_NAME_SIZE];
    snprintf(file, sizeof file, "%s.cpp", row->room);
    value *back_end = add_object(to, "back_end");
    add_string(back_end, "function", row->back_end);
    add_string(back_end, "file", file);
}

static void add_texts(value *to, const char *name, const char *const *texts) {
    value *list = add_list(to, name);
    for (const char *const *text = texts; *text; text++)
        add_string(list, nullptr, *text);
}

// What the procedure touched when it was called with the sample; null for one that nobody has recorded.
static void add_touches(value *to, const procedure_row *row) {
    const touch_row *touched = find_touches(row->number);
    if (!touched) {
        add_nothing(to, "touches");
        return;
    }
    value *touches = add_object(to, "touches");
    add_texts(touches, "sample", touched->sample);
    add_texts(touches, "reads", touched->reads);
    add_texts(touches, "writes", touched->writes);
    add_texts(touches, "commands", touched->commands);
    add_texts(touches, "files", touched->files);
    add_texts(touches, "requests", touched->requests);
    add_texts(touches, "datagrams", touched->datagrams);
    add_texts(touches, "messages", touched->messages);
}

value *described_operation(const procedure_row *row) {
    value *made = new_object();
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    add_string(made, "operation", name);
    add_string(made, "summary", row->summary);
    printed_text usage;
    begin_text(&usage);
    print_synopsis(usage.out, row);
    add_printed(made, "usage", &usage);
    add_string(made, "subject", row->subject);
    add_string(made, "procedure", row->name);
    add_unsigned(made, "number", row->number);
    add_arguments(made, row);
    add_result(made, row);
    add_places(made, row);
    add_example_of(made, row);
    add_touches(made, row);
    return made;
}
