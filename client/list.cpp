#include "client/list.h"

#include <string.h>

#include "client/colour.h"
#include "client/describe.h"
#include "client/description.h"
#include "client/help.h"
#include "client/names.h"
#include "client/operation_text.h"

client_exit_status complain_of_word(client_session *session, client_exit_status status, const char *word) {
    bool commands_too = !session->speaker || strcmp(session->speaker, "describe") != 0;
    suggestions found;
    for (size_t i = 0; commands_too && i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            consider(&found, word, command_rows[i].name);
    consider_operations(&found, word);
    char problem[PROBLEM_SIZE];
    snprintf(problem, sizeof problem, "there is no %s \"%.64s\"", commands_too ? "command or operation" : "operation",
             word);
    complain_with_suggestions(session, status, problem, &found);
    remark(session, "Try: %s list\n", PROGRAM_NAME);
    return status;
}

// Each word of a text, such as a subject or the name of a procedure.
static void consider_words(suggestions *found, const char *wanted, const char *text) {
    for (size_t length; *text; text += length) {
        text += strspn(text, " _,");
        length = strcspn(text, " _,");
        char word[SUGGESTION_SIZE];
        snprintf(word, sizeof word, "%.*s", static_cast<int>(length), text);
        consider(found, wanted, word);
    }
}

// The same for a word that filters the list: single words of subjects and names do for that.
static client_exit_status complain_of_filter(client_session *session, const char *word) {
    suggestions found;
    for (size_t i = 0; i < procedure_row_count; i++)
        consider_words(&found, word, procedure_rows[i].subject);
    for (size_t i = 0; i < procedure_row_count; i++)
        consider_words(&found, word, procedure_rows[i].name);
    for (size_t i = 0; i < procedure_row_count; i++)
        consider(&found, word, procedure_rows[i].subject);
    consider_operations(&found, word);
    char problem[PROBLEM_SIZE];
    snprintf(problem, sizeof problem, "no operation has \"%.64s\" in its name, subject or summary", word);
    return complain_with_suggestions(session, EXIT_STATUS_NOT_FOUND, problem, &found);
}

// Where the summaries of a list begin; three operations in four are shorter.
constexpr int SUMMARY_COLUMN = 46;

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

// One line for each operation that the word matches, all of them for "", under their subjects. Returns how many.
static size_t print_list(FILE *out, const char *word, bool colour) {
    size_t count = 0;
    for (const procedure_row *row = procedure_rows; row < procedure_rows + procedure_row_count; row++)
        if (begins_its_subject(row))
            count += print_subject(out, row, word, colour);
    return count;
}

static client_exit_status list_for_programs(client_session *session, const char *word) {
    value *result = new_object();
    value *operations = add_list(result, "operations");
    for (size_t i = 0; i < procedure_row_count; i++)
        if (operation_matches(&procedure_rows[i], word))
            add_value(operations, nullptr, described_operation(&procedure_rows[i]));
    if (operations->first)
        return show(session, result);
    free_value(result);
    return complain_of_filter(session, word);
}

client_exit_status run_list(client_session *session, const command_line *line) {
    const char *word = line->word_count == 0 ? "" : line->words[0];
    if (!speaks_to_people(session))
        return list_for_programs(session, word);
    if (print_list(session->out, word, session->settings.colour) > 0)
        return EXIT_STATUS_SUCCESS;
    return complain_of_filter(session, word);
}

client_exit_status describe_operation(client_session *session, const procedure_row *row) {
    if (!speaks_to_people(session))
        return show(session, described_operation(row));
    print_operation_help(session->out, row, session->settings.colour);
    return EXIT_STATUS_SUCCESS;
}

static client_exit_status complain_of_command(client_session *session, const char *command) {
    complain(session, EXIT_STATUS_NOT_FOUND, "%s is a command and no operation", command);
    remark(session, "Try: %s help %s\n", PROGRAM_NAME, command);
    return EXIT_STATUS_NOT_FOUND;
}

client_exit_status run_describe(client_session *session, const command_line *line) {
    const procedure_row *row = find_operation(line->words[0]);
    if (row)
        return describe_operation(session, row);
    if (find_command(line->words[0]))
        return complain_of_command(session, line->words[0]);
    return complain_of_word(session, EXIT_STATUS_NOT_FOUND, line->words[0]);
}

client_exit_status help_program(client_session *session) {
    if (!wants_page(session))
        return show(session, program_help());
    print_program_help(session->out);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status help_command(client_session *session, const command_row *row) {
    if (!wants_page(session))
        return show(session, command_help(row));
    print_command_help(session->out, row);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_help(client_session *session, const command_line *line) {
    if (line->word_count == 0)
        return help_program(session);
    const command_row *command = find_command(line->words[0]);
    return command ? help_command(session, command) : run_describe(session, line);
}
