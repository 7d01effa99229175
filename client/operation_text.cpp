#include "client/operation_text.h"

#include <string.h>

#include "client/help.h"
#include "client/names.h"
#include "client/record_fields.h"

// The second block of numbers begins here and has always been written in hexadecimal.
constexpr uint32_t SECOND_BLOCK = 0x1000000;

int print_synopsis(FILE *out, const procedure_row *row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    int width = fprintf(out, "%s", name);
    for (size_t i = 0; i < row->argument_count; i++)
        width += fprintf(out, " <%s>", row->arguments[i].name);
    return width;
}

void print_usage(FILE *out, const procedure_row *row) {
    fprintf(out, "usage: %s ", PROGRAM_NAME);
    print_synopsis(out, row);
    putc('\n', out);
}

const char *output_text(output_kind kind) {
    switch (kind) {
        case output_kind::INT:
            return "integer";
        case output_kind::UINT:
            return "unsigned integer";
        case output_kind::BOOL:
            return "0 or 1";
    }
    return "";
}

bool is_only_a_code(const result_row *result) {
    return result->kind == result_kind::CODE || result->kind == result_kind::ACTION;
}

static void print_word_field(FILE *out, const record_field *field, bool first) {
    fprintf(out, "%s%s", first ? " " : ", ", field->name);
    if (field->elements > 1)
        fprintf(out, " (%zu)", field->elements);
}

// stats (unsigned integers word_0, rx_errors, tx_unicast, words_3_to_5 (3), ...)
static void print_words_shape(FILE *out, const result_row *result) {
    const record_row *record = find_record(result->type);
    fprintf(out, "%s (unsigned integers", result->name);
    for (size_t i = 0; i < record->field_count; i++)
        print_word_field(out, &record->fields[i], i == 0);
    putc(')', out);
}

void print_result_shape(FILE *out, const result_row *result) {
    switch (result->kind) {
        case result_kind::CODE:
        case result_kind::ACTION:
            fputs("success or failure", out);
            break;
        case result_kind::INTEGERS:
            for (size_t i = 0; i < result->output_count; i++)
                fprintf(out, "%s%s (%s)", i ? ", " : "", result->outputs[i].name, output_text(result->outputs[i].kind));
            break;
        case result_kind::INTEGERS64:
            fprintf(out, "%s (%zu 64-bit integer%s)", result->name, result->size, result->size == 1 ? "" : "s");
            break;
        case result_kind::WORDS:
            print_words_shape(out, result);
            break;
        case result_kind::STRING:
        case result_kind::LONG_STRING:
            fprintf(out, "%s (text)", result->name);
            break;
        case result_kind::IMAGE:
            fprintf(out, "%s (%s, %zu bytes)", result->name, result->type, result->size);
            break;
        case result_kind::COUNTED_IMAGE:
            fprintf(out, "count (integer), %s (%s, %zu bytes)", result->name, result->type, result->size);
            break;
    }
}

void print_procedure_number(FILE *out, uint32_t number) {
    fprintf(out, number < SECOND_BLOCK ? "%u" : "0x%X", number);
}

const char *handler_file(const procedure_row *row) {
    switch (row->kind) {
        case procedure_kind::PROCEDURE:
            return "handlers/regular.cpp";
        case procedure_kind::BY_HAND:
            return "handlers/by_hand.cpp";
    }
    return "";
}

bool has_back_end(const procedure_row *row) {
    return strcmp(row->back_end, "none") != 0;
}
