#include "client/commands.h"

#include <getopt.h>
#include <string.h>
#include <unistd.h>

#include "client/arguments.h"
#include "client/help.h"
#include "client/names.h"
#include "client/print.h"
#include "client/reference.h"

struct client_options {
    int timeout_seconds;
    bool help;
};

struct client_streams {
    FILE *out;
    FILE *errors;
};

static client_exit_status say_usage(FILE *errors, const char *problem) {
    fprintf(errors, "%s: %s\nTry: %s --help\n", PROGRAM_NAME, problem, PROGRAM_NAME);
    return EXIT_STATUS_USAGE;
}

static bool parse_timeout(char *word, int *seconds) {
    argument_value value;
    if (!parse_argument(argument_kind::UINT, word, &value) || value.number < 1 || value.number > TIMEOUT_SECONDS_MAX)
        return false;
    *seconds = static_cast<int>(value.number);
    return true;
}

// What getopt_long returns for an option, beyond every character of a short one.
enum client_option : int { OPTION_HELP = 256, OPTION_TIMEOUT };

// `found` is what getopt_long made of the wrong option: '?', ':' or an option whose value is wrong.
static void describe_wrong_option(int found, char **argv, char problem[PROBLEM_SIZE]) {
    bool is_short = optopt > 0 && optopt < OPTION_HELP;
    if (found == OPTION_TIMEOUT)
        snprintf(problem, PROBLEM_SIZE, "--timeout is \"%s\", but has to be a number of seconds from 1 to %d", optarg,
                 TIMEOUT_SECONDS_MAX);
    else if (found == '?' && is_short)
        snprintf(problem, PROBLEM_SIZE, "-%c is no option", optopt);
    else
        snprintf(problem, PROBLEM_SIZE, "%s %s", argv[optind - 1], found == ':' ? "needs a value" : "is no option");
}

// Options end at the first word that is none, for behind an operation -1 is a value. Leaves getopt's optind there.
static bool parse_options(int argc, char **argv, client_options *options, char problem[PROBLEM_SIZE]) {
    static const option known[] = {
        {"help", no_argument, nullptr, OPTION_HELP},
        {"timeout", required_argument, nullptr, OPTION_TIMEOUT},
        {},
    };
    optind = 0;  // start afresh
    opterr = 0;
    for (int found; (found = getopt_long(argc, argv, "+:", known, nullptr)) >= 0;) {
        if (found == OPTION_HELP) {
            options->help = true;
        } else if (found != OPTION_TIMEOUT || !parse_timeout(optarg, &options->timeout_seconds)) {
            describe_wrong_option(found, argv, problem);
            return false;
        }
    }
    return true;
}

static const procedure_row *find_or_complain(FILE *errors, const char *word) {
    const procedure_row *row = find_operation(word);
    if (row)
        return row;
    const procedure_row *suggestions[SUGGESTIONS_MAX];
    size_t count = suggest_operations(word, suggestions);
    fprintf(errors, "%s: there is no operation \"%s\"\n", PROGRAM_NAME, word);
    for (size_t i = 0; i < count; i++) {
        char name[OPERATION_NAME_SIZE];
        operation_name(suggestions[i], name);
        fprintf(errors, "%s%s%s", i == 0 ? "Did you mean " : ", ", name, i + 1 == count ? "?\n" : "");
    }
    fprintf(errors, "Try: %s list\n", PROGRAM_NAME);
    return nullptr;
}

static client_exit_status exit_status_of(call_status status) {
    switch (status) {
        case call_status::ANSWERED:
            return EXIT_STATUS_SUCCESS;
        case call_status::REFUSED:
            return EXIT_STATUS_FAILURE;
        case call_status::TOO_LARGE:
            return EXIT_STATUS_USAGE;
        case call_status::NO_ANSWER:
            return EXIT_STATUS_NO_ANSWER;
    }
    return EXIT_STATUS_FAILURE;
}

static client_exit_status show_result(const client_streams *streams, const procedure_row *row,
                                      const wlan_config_result_data_t *result) {
    char name[OPERATION_NAME_SIZE], problem[PROBLEM_SIZE];
    operation_name(row, name);
    if (!check_result(row, result, problem)) {
        fprintf(streams->errors, "%s: %s\n", name, problem);
        return EXIT_STATUS_FAILURE;
    }
    bool terminal = isatty(fileno(streams->out));
    print_result(streams->out, row, result, terminal ? text_style::FOR_A_TERMINAL : text_style::AS_THEY_ARE);
    if (result->return_code == WLAN_CONFIG_SUCCESS)
        return EXIT_STATUS_SUCCESS;
    fflush(streams->out);  // the payload first, also where both streams go to one place
    fprintf(streams->errors, "%s: the server answered failure (%d)\n", name, result->return_code);
    return EXIT_STATUS_FAILURE;
}

static client_exit_status run_operation(const call_endpoint *endpoint, const client_options *options, int count,
                                        char **words, const client_streams *streams) {
    const procedure_row *row = find_or_complain(streams->errors, words[0]);
    if (!row)
        return EXIT_STATUS_USAGE;
    call_arguments arguments;
    char problem[PROBLEM_SIZE];
    if (!parse_arguments(row, static_cast<size_t>(count - 1), words + 1, &arguments, problem)) {
        fprintf(streams->errors, "%s\n", problem);
        print_usage(streams->errors, row);
        return EXIT_STATUS_USAGE;
    }
    wlan_config_result_data_t result;
    call_outcome outcome = call_procedure(endpoint, row, &arguments, options->timeout_seconds, &result);
    client_exit_status status = exit_status_of(outcome.status);
    if (outcome.status == call_status::ANSWERED) {
        status = show_result(streams, row, &result);
    } else {
        char name[OPERATION_NAME_SIZE];
        operation_name(row, name);
        fprintf(streams->errors, "%s: %s\n", name, outcome.problem);
    }
    release_result(&result);
    return status;
}

static client_exit_status run_help(int count, char **words, const client_streams *streams) {
    if (count == 1) {
        print_program_help(streams->out);
        return EXIT_STATUS_SUCCESS;
    }
    const procedure_row *row = find_or_complain(streams->errors, words[1]);
    if (!row)
        return EXIT_STATUS_USAGE;
    print_operation_help(streams->out, row);
    return EXIT_STATUS_SUCCESS;
}

static client_exit_status run_list(int count, char **words, const client_streams *streams) {
    const char *word = count == 1 ? "" : words[1];
    if (print_list(streams->out, word) > 0)
        return EXIT_STATUS_SUCCESS;
    fprintf(streams->errors, "%s: no operation has \"%s\" in its name, subject or summary\n", PROGRAM_NAME, word);
    return EXIT_STATUS_USAGE;
}

static client_exit_status run_reference(int, char **, const client_streams *streams) {
    print_reference(streams->out);
    return EXIT_STATUS_SUCCESS;
}

static client_exit_status run_interface(int, char **, const client_streams *streams) {
    print_interface(streams->out);
    return EXIT_STATUS_SUCCESS;
}

struct client_command {
    const char *name;
    int words_max;  // with its own
    client_exit_status (*run)(int count, char **words, const client_streams *streams);
};

// No operation has one of these names. Those are matched exactly, so that this stays so.
static const client_command commands[] = {
    {"list", 2, run_list},
    {"help", 2, run_help},
    {"reference", 1, run_reference},
    {"interface", 1, run_interface},
};

static client_exit_status run_words(const call_endpoint *endpoint, const client_options *options, int count,
                                    char **words, const client_streams *streams) {
    for (const client_command &command : commands) {
        if (strcmp(command.name, words[0]) != 0)
            continue;
        if (count <= command.words_max)
            return command.run(count, words, streams);
        char problem[PROBLEM_SIZE];
        snprintf(problem, sizeof problem, "%s takes %s", command.name,
                 command.words_max == 1 ? "nothing behind it" : "at most one word behind it");
        return say_usage(streams->errors, problem);
    }
    return run_operation(endpoint, options, count, words, streams);
}

client_exit_status run_client(int argc, char **argv, const call_endpoint *endpoint, FILE *out, FILE *errors) {
    const client_streams streams = {out, errors};
    client_options options = {DEFAULT_TIMEOUT_SECONDS, false};
    char problem[PROBLEM_SIZE];
    client_exit_status status = EXIT_STATUS_SUCCESS;
    if (!parse_options(argc, argv, &options, problem))
        return say_usage(errors, problem);
    if (options.help)
        print_program_help(out);
    else if (optind >= argc)
        return say_usage(errors, "an operation is missing");
    else
        status = run_words(endpoint, &options, argc - optind, argv + optind, &streams);
    if (fflush(out) == 0 && !ferror(out))
        return status;
    fprintf(errors, "%s: cannot write the output: %m\n", PROGRAM_NAME);
    return status == EXIT_STATUS_SUCCESS ? EXIT_STATUS_FAILURE : status;
}
