#include "client/commands.h"

#include <string.h>

#include "client/arguments.h"
#include "client/ask.h"
#include "client/command_table.h"
#include "client/dump.h"
#include "client/help.h"
#include "client/list.h"
#include "client/names.h"
#include "client/operation_text.h"
#include "client/options.h"
#include "client/results.h"
#include "client/shell_texts.h"
#include "client/suggest.h"
#include "client/words.h"

static client_exit_status complain_of_usage(client_session *session, const char *problem, const suggestions *meant) {
    client_exit_status status = complain_with_suggestions(session, EXIT_STATUS_USAGE, problem, meant);
    remark(session, "Try: %s --help\n", PROGRAM_NAME);
    return status;
}

// The options before the wrong one hold for what is said about it, and the format that is asked for anywhere.
static client_exit_status complain_of_option(client_session *session, const parsed_options *options, int count,
                                             char *const *words, const char *problem) {
    session->settings = options->settings;
    adopt_format(&session->settings, count, words);
    return complain_of_usage(session, problem, &options->meant);
}

// The answer to an operation: what came back, and that it failed when it did.
static client_exit_status answer_failure(client_session *session, const procedure_row *row,
                                         const wlan_config_result_data_t *result) {
    value *answer = new_answer(session);
    add_number(answer, "code", result->return_code);
    if (says_something(row, result)) {
        value *payload = result_value(row, result);
        if (session->settings.format == output_format::TEXT)
            show(session, payload);
        else
            add_value(answer, "result", payload);
    }
    return complain_in(session, answer, EXIT_STATUS_FAILURE, session->problem);
}

static client_exit_status answer_success(client_session *session, const procedure_row *row,
                                         const wlan_config_result_data_t *result) {
    value *payload = result_value(row, result);
    if (!payload->first && session->settings.format == output_format::TEXT) {
        free_value(payload);
        fputs("ok\n", session->out);
        return EXIT_STATUS_SUCCESS;
    }
    return show(session, payload);
}

// Known before anything is sent, and not only when a list turns out to have more than one element.
static bool is_choice_missing(const client_session *session, const procedure_row *row) {
    return session->settings.format == output_format::VALUE && !session->settings.field && has_several_values(row);
}

// Nobody may send by mistake what the server's shell would obey. A caller that has put backslashes in front is not kept
// from it, and the client puts none of its own there: what it sends is what it was given.
static bool is_text_refused(client_session *session, const procedure_row *row, const call_arguments *arguments) {
    return !session->settings.shell_text && !check_shell_texts(row, arguments, session->problem);
}

static client_exit_status call_operation(client_session *session, const procedure_row *row, call_arguments *arguments) {
    if (is_choice_missing(session, row))
        return complain(session, EXIT_STATUS_USAGE,
                        "the result has several values: choose one by its name with --field");
    if (is_text_refused(session, row, arguments))
        return complain(session, EXIT_STATUS_USAGE, "%s", session->problem);
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, row, arguments, &result);
    bool answered = status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_FAILURE;
    if (answered && session->settings.format == output_format::DUMP)
        print_dump(session->out, &result);
    if (status == EXIT_STATUS_FAILURE)
        status = answer_failure(session, row, &result);
    else if (status != EXIT_STATUS_SUCCESS)
        status = complain_of_call(session, status);
    else if (session->settings.format != output_format::DUMP)
        status = answer_success(session, row, &result);
    release_result(&result);
    return status;
}

// The options of one command hold for it alone. `own` becomes its connection when it names a server.
static void begin(client_session *session, const parsed_options *options, server_connection *own) {
    session->settings = options->settings;
    if (!options->server)
        return;
    call_endpoint endpoint = session->connection->endpoint;
    endpoint.address = options->server;
    *own = new_connection(&endpoint);
    session->connection = own;
}

// --help gives what the command help gives: nothing is carried out that could have a code.
static void speak_as_help(client_session *session) {
    session->speaker = "help";
    session->is_operation = false;
}

static bool is_help_option(const char *word) {
    return strcmp(word, "--help") == 0 || strcmp(word, "-h") == 0;
}

// --help in the place of an argument that can be no such word.
static bool asks_for_help(const procedure_row *row, int count, char **words) {
    bool takes_text = row->argument_count > 0 && row->arguments[0].kind == argument_kind::TEXT;
    return count > 1 && !takes_text && is_help_option(words[1]);
}

// As many words as the operation has arguments are arguments, whatever they look like. Options may stand behind them,
// and behind --help. What is left of `count` is the name, the arguments, and the words too many that are no options.
static bool parse_trailing_options(const procedure_row *row, int *count, char **words, parsed_options *options,
                                   char problem[PROBLEM_SIZE]) {
    int taken = asks_for_help(row, *count, words) ? 1 : static_cast<int>(row->argument_count) + 1;
    if (*count <= taken || *words[taken] != '-')
        return true;
    int used = 1;
    int rest = *count - taken + 1;
    if (!parse_leading_options(rest, words + taken - 1, options, &used, problem))
        return false;
    *count = taken + rest - used;
    return true;
}

// What the first word that is no argument may have meant, where it should be one of the words for true and false.
static void consider_booleans(suggestions *meant, const procedure_row *row, int count, char **words) {
    argument_value parsed;
    int place = 0;
    int last = static_cast<int>(row->argument_count);
    while (place < count && place < last && parse_argument(row->arguments[place].kind, words[place], &parsed))
        place++;
    if (place == count || place == last || row->arguments[place].kind != argument_kind::BOOL)
        return;
    for (size_t i = 0; i < boolean_word_count; i++)
        for (const char *word : boolean_words[i])
            consider(meant, words[place], word);
}

static client_exit_status run_operation(client_session *session, const procedure_row *row, int count, char **words,
                                        server_connection *own) {
    char name[OPERATION_NAME_SIZE], problem[PROBLEM_SIZE];
    operation_name(row, name);
    session->speaker = name;
    session->is_operation = true;
    parsed_options options = {session->settings, nullptr, false};
    int all = count;
    if (!parse_trailing_options(row, &count, words, &options, problem))
        return complain_of_option(session, &options, count, words, problem);
    begin(session, &options, own);
    if (options.help) {
        speak_as_help(session);
        return describe_operation(session, row);
    }
    call_arguments arguments;
    if (parse_arguments(row, static_cast<size_t>(count - 1), words + 1, &arguments, problem))
        return call_operation(session, row, &arguments);
    suggestions meant;
    consider_booleans(&meant, row, count - 1, words + 1);
    if (static_cast<size_t>(count - 1) != row->argument_count)
        adopt_format(&session->settings, all, words);
    complain_with_suggestions(session, EXIT_STATUS_USAGE, problem, &meant);
    if (session->settings.format != output_format::JSON)
        print_usage(session->errors, row);
    return EXIT_STATUS_USAGE;
}

static client_exit_status complain_of_words(client_session *session, const command_row *row) {
    complain(session, EXIT_STATUS_USAGE, "takes %s behind it", *row->synopsis ? row->synopsis : "nothing");
    remark(session, "Try: %s help %s\n", PROGRAM_NAME, row->name);
    return EXIT_STATUS_USAGE;
}

static client_exit_status run_command(client_session *session, const command_row *row, int count, char **words,
                                      server_connection *own) {
    parsed_options options = {session->settings, nullptr, false};
    command_line line;
    char problem[PROBLEM_SIZE];
    session->speaker = row->name;
    session->is_operation = false;
    if (!parse_command_options(row, count, words, &options, &line, problem))
        return complain_of_option(session, &options, count, words, problem);
    begin(session, &options, own);
    if (options.help) {
        speak_as_help(session);
        return help_command(session, row);
    }
    bool fits = line.word_count >= row->words_least && line.word_count <= row->words_most;
    return fits ? row->run(session, &line) : complain_of_words(session, row);
}

static client_exit_status complain_of_first_word(client_session *session, int count, char **words) {
    adopt_format(&session->settings, count, words);
    return complain_of_word(session, EXIT_STATUS_USAGE, words[0]);
}

// Commands are matched exactly, operations in any spelling. load, init and reset are commands that carry out the
// operation of that name; no other command has the name of one, so none is hidden.
client_exit_status run_words(client_session *session, int count, char **words) {
    client_session one = *session;
    server_connection own = {};
    client_exit_status status = EXIT_STATUS_USAGE;
    const command_row *command = find_command(words[0]);
    const procedure_row *row = command ? nullptr : find_operation(words[0]);
    if (command)
        status = run_command(&one, command, count, words, &own);
    else if (row)
        status = run_operation(&one, row, count, words, &own);
    else
        status = complain_of_first_word(&one, count, words);
    close_connection(&own);
    return status;
}

static client_exit_status run_command_line(client_session *session, int argc, char **argv, server_connection *own) {
    parsed_options options = {session->settings, nullptr, false};
    char problem[PROBLEM_SIZE];
    int used;
    if (!parse_leading_options(argc, argv, &options, &used, problem))
        return complain_of_option(session, &options, argc, argv, problem);
    begin(session, &options, own);
    if (options.help) {
        speak_as_help(session);
        return help_program(session);
    }
    if (used >= argc)
        return complain_of_usage(session, "an operation or a command is missing", &options.meant);
    return run_words(session, argc - used, argv + used);
}

bool is_this_program(const char *word) {
    const char *slash = strrchr(word, '/');
    return strcmp(slash ? slash + 1 : word, PROGRAM_NAME) == 0;
}

client_exit_status run_line(client_session *session, size_t count, char **words) {
    size_t first = count > 0 && is_this_program(words[0]);
    char program[] = "";
    char *line[LINE_WORDS_MAX + 2] = {program};
    int taken = 1;
    for (size_t i = first; i < count && i < LINE_WORDS_MAX; i++)
        line[taken++] = words[i];
    client_session one = *session;
    one.speaker = nullptr;
    one.is_operation = false;
    server_connection own = {};
    client_exit_status status = run_command_line(&one, taken, line, &own);
    close_connection(&own);
    return status;
}

client_exit_status run_client(int argc, char **argv, const call_endpoint *endpoint, FILE *out, FILE *errors) {
    server_connection connection = new_connection(endpoint);
    client_session session = {&connection, default_settings(out), out, errors, nullptr, false, ""};
    server_connection own = {};
    client_exit_status status = run_command_line(&session, argc, argv, &own);
    close_connection(&own);
    close_connection(&connection);
    if (fflush(out) == 0 && !ferror(out))
        return status;
    fprintf(errors, "%s: cannot write the output: %m\n", PROGRAM_NAME);
    return status == EXIT_STATUS_SUCCESS ? EXIT_STATUS_LOCAL : status;
}
