#include "client/list.h"

#include <string.h>

#include "client/describe.h"
#include "client/help.h"
#include "client/names.h"

client_exit_status complain_of_word(client_session *session, client_exit_status status, const char *word) {
    const procedure_row *suggestions[SUGGESTIONS_MAX];
    size_t count = suggest_operations(word, suggestions);
    value *answer = new_answer(session);
    value *meant = add_list(answer, "suggestions");
    char problem[PROBLEM_SIZE];
    int length = snprintf(problem, sizeof problem, "there is no operation \"%.64s\"", word);
    for (size_t i = 0; i < count; i++) {
        char name[OPERATION_NAME_SIZE];
        operation_name(suggestions[i], name);
        add_string(meant, nullptr, name);
        length += snprintf(problem + length, sizeof problem - static_cast<size_t>(length), "%s%s%s",
                           i == 0 ? "\nDid you mean " : ", ", name, i + 1 == count ? "?" : "");
    }
    snprintf(problem + length, sizeof problem - static_cast<size_t>(length), "\nTry: %s list", PROGRAM_NAME);
    return complain_in(session, answer, status, problem);
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
    return complain(session, EXIT_STATUS_NOT_FOUND, "no operation has \"%s\" in its name, subject or summary", word);
}

client_exit_status run_list(client_session *session, const command_line *line) {
    const char *word = line->word_count == 0 ? "" : line->words[0];
    if (session->settings.format != output_format::TEXT)
        return list_for_programs(session, word);
    if (print_list(session->out, word, session->settings.colour) > 0)
        return EXIT_STATUS_SUCCESS;
    return complain(session, EXIT_STATUS_NOT_FOUND, "no operation has \"%s\" in its name, subject or summary", word);
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
