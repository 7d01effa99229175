#include "client/describe.h"

#include <stdlib.h>
#include <string.h>

#include "client/arguments.h"
#include "client/exit_status.h"
#include "client/help.h"
#include "client/meanings.h"
#include "client/names.h"
#include "client/record_fields.h"
#include "client/render.h"
#include "client/touches.h"

// Where the meanings of arguments and outputs begin, behind all but the longest names.
constexpr int MEANING_COLUMN = 16;

// Where the kinds of fields do.
constexpr int FIELD_COLUMN = 24;

// What each level of a record is moved to the right.
constexpr int INDENTATION = 2;

const char *heading_begin(bool colour) {
    return colour ? "\033[1m" : "";
}

const char *heading_end(bool colour) {
    return colour ? "\033[0m" : "";
}

// "channel, 0 for automatic", "time, in s"
static void print_meaning(FILE *out, const meaning_row *meaning) {
    fputs(meaning->meaning, out);
    if (*meaning->unit)
        fprintf(out, ", in %s", meaning->unit);
}

static void print_column(FILE *out, int width, int column) {
    fprintf(out, "%*s", width + 1 < column ? column - width : 2, "");
}

void print_argument_meanings(FILE *out, const procedure_row *row) {
    for (size_t i = 0; i < row->argument_count; i++) {
        const argument_row *argument = &row->arguments[i];
        const meaning_row *meaning = meaning_of(row, argument->name);
        print_column(out, fprintf(out, "  <%s>", argument->name), MEANING_COLUMN);
        print_meaning(out, meaning);
        fprintf(out, "\n%*s", MEANING_COLUMN, "");
        print_accepted(out, argument, &meaning->range);
        putc('\n', out);
    }
}

// --- results ---

static void print_output(FILE *out, const procedure_row *row, const char *name, const char *shape) {
    const meaning_row *meaning = meaning_of(row, name);
    print_column(out, fprintf(out, "  %s", name), MEANING_COLUMN);
    print_meaning(out, meaning);
    fprintf(out, " (%s", shape);
    if (meaning->range.kind == range_kind::NUMBERS || meaning->range.kind == range_kind::WORDS) {
        fputs(", ", out);
        print_range(out, &meaning->range);
    }
    fputs(")\n", out);
}

static const char *kind_text(const record_field *field) {
    switch (field->kind) {
        case field_kind::NUMBER:
            return field->is_signed ? "integer" : "unsigned integer";
        case field_kind::TEXT:
            return "text";
        case field_kind::MAC:
            return "MAC";
        case field_kind::OCTETS:
            return "bytes in hexadecimal";
        case field_kind::LIST:
            return "list";
        case field_kind::PADDING:
            break;
    }
    return "";
}

static bool is_for_people(const record_field *field) {
    return !field->detail && field->kind != field_kind::PADDING;
}

static void print_fields(FILE *out, const record_row *record, int level);

static void print_field(FILE *out, const record_field *field, int level) {
    print_column(out, fprintf(out, "%*s%s", level * INDENTATION, "", field->name), FIELD_COLUMN);
    fputs(kind_text(field), out);
    if (field->kind == field_kind::LIST)
        fprintf(out, ", as many as %s says, %zu at most", field->count, field->elements);
    else if (field->elements > 1)
        fprintf(out, ", %zu of them", field->elements);
    if (*field->unit)
        fprintf(out, ", in %s", field->unit);
    putc('\n', out);
    if (field->record)
        print_fields(out, field->record, level + 1);
}

// The fields that people read, a line each, and the names of the others.
static void print_fields(FILE *out, const record_row *record, int level) {
    const char *separator = "";
    for (size_t i = 0; i < record->field_count; i++)
        if (is_for_people(&record->fields[i]))
            print_field(out, &record->fields[i], level);
    for (size_t i = 0; i < record->field_count; i++) {
        if (is_for_people(&record->fields[i]) || record->fields[i].kind == field_kind::PADDING)
            continue;
        if (!*separator)
            fprintf(out, "%*sand for programs", level * INDENTATION, "");
        fprintf(out, "%s %s", separator, record->fields[i].name);
        separator = ",";
    }
    if (*separator)
        putc('\n', out);
}

static void print_record(FILE *out, const procedure_row *row) {
    const result_row *result = &row->result;
    const record_row *record = find_record(result->type);
    print_column(out, fprintf(out, "  %s", result->name), MEANING_COLUMN);
    print_meaning(out, meaning_of(row, result->name));
    fprintf(out, " (%s, %zu bytes)\n", result->type, result->size);
    print_fields(out, record, 2);
}

static const char *output_shape(output_kind kind) {
    switch (kind) {
        case output_kind::INT:
            return "integer";
        case output_kind::UINT:
            return "unsigned integer";
        case output_kind::BOOL:
            return "integer";
    }
    return "";
}

static void print_outputs(FILE *out, const procedure_row *row) {
    char several[64];
    const result_row *result = &row->result;
    switch (result->kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            break;
        case result_kind::INTEGERS:
            for (size_t i = 0; i < result->output_count; i++)
                print_output(out, row, result->outputs[i].name, output_shape(result->outputs[i].kind));
            break;
        case result_kind::INTEGERS64:
            snprintf(several, sizeof several, "%zu 64-bit integers", result->size);
            print_output(out, row, result->name, result->size == 1 ? "64-bit integer" : several);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            print_output(out, row, result->name, "text");
            break;
        case result_kind::COUNTED_IMAGE:
            print_output(out, row, "count", "integer");
            print_record(out, row);
            break;
        case result_kind::WORDS:
        case result_kind::IMAGE:
            print_record(out, row);
            break;
    }
}

static bool is_only_a_code(const procedure_row *row) {
    return row->result.kind == result_kind::CODE || row->result.kind == result_kind::ACTION;
}

void print_result_meanings(FILE *out, const procedure_row *row, bool colour) {
    fprintf(out, "\n%sresult%s%s\n", heading_begin(colour), heading_end(colour),
            is_only_a_code(row) ? "     success or failure" : "");
    print_outputs(out, row);
}

// --- the example ---

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
    if (!is_only_a_code(row) && !is_text && !is_number && result->kind != result_kind::INTEGERS)
        return nullptr;
    value *made = new_object();
    for (size_t i = 0; i < result->output_count; i++)
        add_example(made, row, result->outputs[i].name, false);
    if (is_text || is_number)
        add_example(made, row, result->name, is_text);
    return made;
}

// As the client prints it.
static void print_example_result(FILE *out, const procedure_row *row) {
    const text_options plain = {false, false};
    value *result = example_result(row);
    if (result && result->first)
        render_text(out, result, &plain);
    else if (result)
        fputs("ok\n", out);
    free_value(result);
}

void print_example_lines(FILE *out, const procedure_row *row) {
    const char *why = why_example_fails(row);
    fputs("$ ", out);
    print_example(out, row);
    putc('\n', out);
    if (why)
        fprintf(out, "fails: %s\n", why);
    else
        print_example_result(out, row);
}

// --- for programs ---

static char *memory_text(void (*print)(FILE *out, const procedure_row *row), const procedure_row *row) {
    char *text = nullptr;
    size_t size;
    FILE *memory = open_memstream(&text, &size);
    if (!memory)
        return nullptr;
    print(memory, row);
    if (fclose(memory) == 0)
        return text;
    free(text);
    return nullptr;
}

static void add_printed(value *to, const char *name, void (*print)(FILE *out, const procedure_row *row),
                        const procedure_row *row) {
    char *text = memory_text(print, row);
    add_string(to, name, text ? text : "");
    free(text);
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
    char *text = nullptr;
    size_t size;
    FILE *memory = open_memstream(&text, &size);
    if (memory) {
        print_accepted(memory, argument, range);
        fclose(memory);
    }
    add_string(to, "accepts", text ? text : "");
    free(text);
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
        add_string(added, "example", meaning->example);
    }
}

static void add_output(value *to, const procedure_row *row, const char *name, const char *kind, size_t count) {
    const meaning_row *meaning = meaning_of(row, name);
    value *added = add_object(to, nullptr);
    add_string(added, "name", name);
    add_string(added, "kind", kind);
    add_string(added, "meaning", meaning->meaning);
    add_optional(added, "unit", meaning->unit);
    add_range(added, &meaning->range, false);
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
    add_printed(example, "command", print_example, row);
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

static void print_handler(FILE *out, const procedure_row *row) {
    fprintf(out, "%s_1_svc", row->name);
}

static void add_places(value *to, const procedure_row *row) {
    value *handler = add_object(to, "handler");
    add_printed(handler, "function", print_handler, row);
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

static void print_synopsis_text(FILE *out, const procedure_row *row) {
    print_synopsis(out, row);
}

value *described_operation(const procedure_row *row) {
    value *made = new_object();
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    add_string(made, "operation", name);
    add_string(made, "summary", row->summary);
    add_printed(made, "usage", print_synopsis_text, row);
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
