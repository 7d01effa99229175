#include "client/list.h"

#include <string.h>

#include "client/describe.h"
#include "client/help.h"
#include "client/names.h"

client_exit_status complain_of_word(client_session *session, client_exit_status status, const char *word) {
    bool commands_too = !session->speaker || strcmp(session->speaker, "describe") != 0;
    suggestions found;
    for (size_t i = 0; commands_too && i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            consider(&found, word, command_rows[i].name);
    consider_operations(&found, word);
    char problem[PROBLEM_SIZE];
    snprintf(problem, sizeof problem, "there is no operation \"%.64s\"", word);
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
    if (session->settings.format != output_format::TEXT)
        return list_for_programs(session, word);
    if (print_list(session->out, word, session->settings.colour) > 0)
        return EXIT_STATUS_SUCCESS;
    return complain_of_filter(session, word);
}

client_exit_status describe_operation(client_session *session, const procedure_row *row) {
    if (session->settings.format != output_format::TEXT)
        return show(session, described_operation(row));
    print_operation_help(session->out, row, session->settings.colour);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_describe(client_session *session, const command_line *line) {
    const procedure_row *row = find_operation(line->words[0]);
    if (row)
        return describe_operation(session, row);
    return complain_of_word(session, EXIT_STATUS_NOT_FOUND, line->words[0]);
}

client_exit_status run_help(client_session *session, const command_line *line) {
    if (line->word_count == 0) {
        print_program_help(session->out);
        return EXIT_STATUS_SUCCESS;
    }
    const command_row *command = find_command(line->words[0]);
    if (!command)
        return run_describe(session, line);
    print_command_help(session->out, command);
    return EXIT_STATUS_SUCCESS;
}
