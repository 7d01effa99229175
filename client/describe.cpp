#include "client/describe.h"

#include "client/colour.h"
#include "client/description.h"
#include "client/meanings.h"
#include "client/names.h"
#include "client/operation_text.h"
#include "client/record_fields.h"
#include "client/render.h"
#include "client/shell_texts.h"
#include "client/touches.h"

// Where the meanings of arguments and outputs begin, behind all but the longest names.
constexpr int MEANING_COLUMN = 16;

// Where the kinds of fields do.
constexpr int FIELD_COLUMN = 24;

// What each level of a record is moved to the right.
constexpr int INDENTATION = 2;

// "channel, 0 for automatic", "time, in s"
static void print_meaning(FILE *out, const meaning_row *meaning) {
    fputs(meaning->meaning, out);
    if (*meaning->unit)
        fprintf(out, ", in %s", meaning->unit);
}

static void print_column(FILE *out, int width, int column) {
    fprintf(out, "%*s", width + 1 < column ? column - width : 2, "");
}

static void print_shell(FILE *out, const procedure_row *row, const argument_row *argument) {
    const shell_row *shell = find_shell_row(row, argument->name);
    if (!shell)
        return;
    fprintf(out, "%*s", MEANING_COLUMN, "");
    print_shell_row(out, shell);
    putc('\n', out);
}

static void print_arguments(FILE *out, const procedure_row *row) {
    for (size_t i = 0; i < row->argument_count; i++) {
        const argument_row *argument = &row->arguments[i];
        const meaning_row *meaning = meaning_of(row, argument->name);
        print_column(out, fprintf(out, "  <%s>", argument->name), MEANING_COLUMN);
        print_meaning(out, meaning);
        fprintf(out, "\n%*s", MEANING_COLUMN, "");
        print_accepted(out, argument, &meaning->range);
        putc('\n', out);
        print_shell(out, row, argument);
    }
}

// --- results ---

enum class shown_range { YES, NO };

static void print_output(FILE *out, const procedure_row *row, const char *name, const char *shape,
                         shown_range range = shown_range::YES) {
    const meaning_row *meaning = meaning_of(row, name);
    bool has_range = meaning->range.kind == range_kind::NUMBERS || meaning->range.kind == range_kind::WORDS;
    print_column(out, fprintf(out, "  %s", name), MEANING_COLUMN);
    print_meaning(out, meaning);
    fprintf(out, " (%s", shape);
    if (has_range && range == shown_range::YES) {
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

// What a truth can be is said by its shape already.
static void print_integers(FILE *out, const procedure_row *row) {
    for (size_t i = 0; i < row->result.output_count; i++) {
        const output_row *output = &row->result.outputs[i];
        shown_range range = output->kind == output_kind::BOOL ? shown_range::NO : shown_range::YES;
        print_output(out, row, output->name, output_text(output->kind), range);
    }
}

static void print_outputs(FILE *out, const procedure_row *row) {
    char several[64];
    const result_row *result = &row->result;
    switch (result->kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            break;
        case result_kind::INTEGERS:
            print_integers(out, row);
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

static void print_result(FILE *out, const procedure_row *row, bool colour) {
    fprintf(out, "\n%sresult%s%s\n", heading_begin(colour), heading_end(colour),
            is_only_a_code(&row->result) ? "     success or failure" : "");
    print_outputs(out, row);
}

// --- the example ---

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

static void print_example_lines(FILE *out, const procedure_row *row) {
    const char *why = why_example_fails(row);
    fputs("$ ", out);
    print_example(out, row);
    putc('\n', out);
    if (why)
        fprintf(out, "fails: %s\n", why);
    else
        print_example_result(out, row);
}

// --- all of it ---

static void print_names(FILE *out, const procedure_row *row) {
    fprintf(out, "\nsubject    %s\nprocedure  %s, number ", row->subject, row->name);
    print_procedure_number(out, row->number);
    fprintf(out, "\nhandler    %s_1_svc in %s\n", row->name, handler_file(row));
    if (has_back_end(row))
        fprintf(out, "back end   %s in %s.cpp\n", row->back_end, row->room);
    else
        fputs("back end   none\n", out);
}

void print_operation_help(FILE *out, const procedure_row *row, bool colour) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    fprintf(out, "%s%s%s: %s\n\n", heading_begin(colour), name, heading_end(colour), row->summary);
    print_usage(out, row);
    print_arguments(out, row);
    print_result(out, row, colour);
    fprintf(out, "\n%sexample%s\n", heading_begin(colour), heading_end(colour));
    print_example_lines(out, row);
    print_names(out, row);
    print_touches(out, row);
}
