#include "client/help.h"

#include <string.h>

#include "client/arguments.h"
#include "client/call.h"
#include "client/command_table.h"
#include "client/describe.h"
#include "client/names.h"
#include "client/record_fields.h"
#include "client/touches.h"

// Where the summaries of a list begin; three operations in four are shorter.
constexpr int SUMMARY_COLUMN = 46;

// The second block of numbers begins here and has always been written in hexadecimal.
constexpr uint32_t SECOND_BLOCK = 0x1000000;

// Where the summaries of commands and options begin.
constexpr int COMMAND_COLUMN = 28;

static void print_padded(FILE *out, int width, int column) {
    fprintf(out, "%*s", width < column ? column - width : 2, "");
}

static void print_command_line(FILE *out, const command_row *row) {
    int width = fprintf(out, "  %s %s", row->name, row->synopsis);
    print_padded(out, width, COMMAND_COLUMN);
    fprintf(out, "%s\n", row->summary);
}

static void print_options(FILE *out, const option_row *rows, size_t count) {
    for (size_t i = 0; i < count; i++) {
        int width = rows[i].letter ? fprintf(out, "  -%c, --%s", rows[i].letter, rows[i].name)
                                   : fprintf(out, "      --%s", rows[i].name);
        if (rows[i].value_name)
            width += fprintf(out, " %s", rows[i].value_name);
        print_padded(out, width, COMMAND_COLUMN);
        fprintf(out, "%s\n", rows[i].summary);
    }
}

static void print_commands(FILE *out, const command_group_row *group) {
    fprintf(out, "\n%s\n", group->title);
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group == group->group)
            print_command_line(out, &command_rows[i]);
}

static void print_exit_statuses(FILE *out) {
    fputs("\nExit status\n", out);
    for (size_t i = 0; i < exit_status_row_count; i++)
        fprintf(out, "  %d  %s\n", exit_status_rows[i].status, exit_status_rows[i].meaning);
}

void print_program_help(FILE *out) {
    fprintf(out,
            "usage: %s [OPTION...] OPERATION [ARGUMENT...] [OPTION...]\n"
            "       %s [OPTION...] COMMAND [WORD...]\n"
            "\n"
            "Calls one operation of the Wi-Fi configuration server at %s and prints its result.\n"
            "getSsid, get_ssid and wlan_get_ssid name the same operation, in any capitalisation.\n"
            "As many words as the operation has arguments are its arguments, also those with a minus sign.\n",
            PROGRAM_NAME, PROGRAM_NAME, SERVICE_ADDRESS);
    for (size_t i = 0; i < command_group_count; i++)
        print_commands(out, &command_groups[i]);
    fputs("\nOptions\n", out);
    print_options(out, global_options, global_option_count);
    print_exit_statuses(out);
}

void print_command_help(FILE *out, const command_row *row) {
    fprintf(out, "%s: %s\n\nusage: %s [OPTION...] %s%s%s\n", row->name, row->summary, PROGRAM_NAME, row->name,
            *row->synopsis ? " " : "", row->synopsis);
    if (*row->description)
        fprintf(out, "\n%s\n", row->description);
    fputs("\nOptions\n", out);
    print_options(out, row->options, row->option_count);
    print_options(out, global_options, global_option_count);
}

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

static const char *output_text(output_kind kind) {
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

void print_number(FILE *out, uint32_t number) {
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

static void print_names(FILE *out, const procedure_row *row) {
    fprintf(out, "\nsubject    %s\nprocedure  %s, number ", row->subject, row->name);
    print_number(out, row->number);
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
    print_argument_meanings(out, row);
    print_result_meanings(out, row, colour);
    fprintf(out, "\n%sexample%s\n", heading_begin(colour), heading_end(colour));
    print_example_lines(out, row);
    print_names(out, row);
    print_touches(out, row);
}

static void print_list_line(FILE *out, const procedure_row *row) {
    fputs("  ", out);
    int width = print_synopsis(out, row);
    fprintf(out, "%*s  %s\n", width < SUMMARY_COLUMN ? SUMMARY_COLUMN - width : 0, "", row->summary);
}

// The matching rows of a subject that begins with this row, under its heading. Rows of one subject do not stand
// together in the table, which follows the numbers.
static size_t print_subject(FILE *out, const procedure_row *first, const char *word, bool colour) {
    size_t count = 0;
    for (const procedure_row *row = first; row < procedure_rows + procedure_row_count; row++) {
        if (strcmp(row->subject, first->subject) != 0 || !operation_matches(row, word))
            continue;
        if (count++ == 0)
            fprintf(out, "%s%s%s\n", heading_begin(colour), row->subject, heading_end(colour));
        print_list_line(out, row);
    }
    return count;
}

static bool begins_its_subject(const procedure_row *row) {
    for (const procedure_row *earlier = procedure_rows; earlier < row; earlier++)
        if (strcmp(earlier->subject, row->subject) == 0)
            return false;
    return true;
}

size_t print_list(FILE *out, const char *word, bool colour) {
    size_t count = 0;
    for (const procedure_row *row = procedure_rows; row < procedure_rows + procedure_row_count; row++)
        if (begins_its_subject(row))
            count += print_subject(out, row, word, colour);
    return count;
}
