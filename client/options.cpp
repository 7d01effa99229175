#include "client/options.h"

#include <ctype.h>
#include <getopt.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

// Global options are numbered from here, a command's own behind them.
constexpr int FIRST_GLOBAL = 0x100;
constexpr int FIRST_OWN = 0x200;

constexpr size_t ALL_OPTIONS_MAX = 16;

// "+:" or ":", then each letter with a ':' where a value follows, and the NUL.
constexpr size_t LETTERS_SIZE = 2 + 2 * ALL_OPTIONS_MAX + 1;

struct getopt_tables {
    option options[ALL_OPTIONS_MAX + 1];
    size_t count;
    char letters[LETTERS_SIZE];
};

static bool wants_colour(bool terminal) {
    const char *no_color = getenv("NO_COLOR");
    return terminal && !(no_color && *no_color);
}

client_settings default_settings(FILE *out) {
    bool terminal = isatty(fileno(out));
    return {DEFAULT_TIMEOUT_SECONDS, output_format::TEXT, nullptr, terminal, wants_colour(terminal)};
}

static void add_options(getopt_tables *tables, const option_row *rows, size_t count, int first) {
    for (size_t i = 0; i < count && tables->count < ALL_OPTIONS_MAX; i++) {
        bool valued = rows[i].value_name;
        tables->options[tables->count++] = {rows[i].name, valued ? required_argument : no_argument, nullptr,
                                            first + static_cast<int>(i)};
        if (rows[i].letter)
            snprintf(tables->letters + strlen(tables->letters), 3, "%c%s", rows[i].letter, valued ? ":" : "");
    }
}

// What an option that getopt found is in a list of rows that begins with the number `first`; nullptr for none of them.
static const option_row *found_row(const option_row *rows, size_t count, int found, int first) {
    for (size_t i = 0; i < count; i++)
        if (found == first + static_cast<int>(i) || (rows[i].letter && found == rows[i].letter))
            return &rows[i];
    return nullptr;
}

static bool parse_seconds(const char *word, int *seconds) {
    argument_value parsed;
    // Reads the word only.
    if (!parse_argument(argument_kind::UINT, const_cast<char *>(word), &parsed) || parsed.number < 1 ||
        parsed.number > TIMEOUT_SECONDS_MAX)
        return false;
    *seconds = static_cast<int>(parsed.number);
    return true;
}

enum colour_when : int { COLOUR_AUTO, COLOUR_ALWAYS, COLOUR_NEVER };

static constexpr choice_row formats[] = {
    {"text", "for people", static_cast<int>(output_format::TEXT)},
    {"json", "one object, for programs", static_cast<int>(output_format::JSON)},
    {"value", "bare values", static_cast<int>(output_format::VALUE)},
    {"dump", "every byte of a result", static_cast<int>(output_format::DUMP)},
};

static constexpr choice_row colours[] = {
    {"auto", "on a terminal without NO_COLOR", COLOUR_AUTO},
    {"always", "also into files and pipes", COLOUR_ALWAYS},
    {"never", "no colours", COLOUR_NEVER},
};

word_choices choices_of(word_kind kind) {
    if (kind == word_kind::FORMAT)
        return {sizeof formats / sizeof *formats, formats};
    if (kind == word_kind::WHEN)
        return {sizeof colours / sizeof *colours, colours};
    return {0, nullptr};
}

static bool parse_choice(word_kind kind, const char *word, int *number) {
    word_choices choices = choices_of(kind);
    for (size_t i = 0; i < choices.count; i++)
        if (strcmp(choices.rows[i].word, word) == 0) {
            *number = choices.rows[i].number;
            return true;
        }
    return false;
}

static bool parse_format(const char *word, output_format *format) {
    int number;
    if (!parse_choice(word_kind::FORMAT, word, &number))
        return false;
    *format = static_cast<output_format>(number);
    return true;
}

static bool parse_colour(const char *word, client_settings *settings) {
    int when;
    if (!parse_choice(word_kind::WHEN, word, &when))
        return false;
    settings->colour = when == COLOUR_ALWAYS || (when == COLOUR_AUTO && wants_colour(settings->terminal));
    return true;
}

// What parse_seconds takes.
constexpr const char SECONDS_TEXT[] = "a number of seconds from 1 to 3600";

static void describe_wrong_value(const char *option, const char *word, const char *wanted, char problem[PROBLEM_SIZE]) {
    snprintf(problem, PROBLEM_SIZE, "--%s is \"%s\", but has to be %s", option, word, wanted);
}

static bool wrong_value(const option_row *row, const char *word, const char *wanted, suggestions *meant,
                        char problem[PROBLEM_SIZE]) {
    word_choices choices = choices_of(row->value);
    for (size_t i = 0; i < choices.count; i++)
        consider(meant, word, choices.rows[i].word);
    describe_wrong_value(row->name, word, wanted, problem);
    return false;
}

static bool take_global_option(const option_row *row, char *word, parsed_options *options, char problem[PROBLEM_SIZE]) {
    client_settings *settings = &options->settings;
    if (strcmp(row->name, "timeout") == 0) {
        if (!parse_seconds(word, &settings->timeout_seconds))
            return wrong_value(row, word, SECONDS_TEXT, &options->meant, problem);
    } else if (strcmp(row->name, "server") == 0) {
        options->server = word;
    } else if (strcmp(row->name, "output") == 0) {
        if (!parse_format(word, &settings->format))
            return wrong_value(row, word, "text, json, value or dump", &options->meant, problem);
    } else if (strcmp(row->name, "field") == 0) {
        settings->field = word;
        settings->format = output_format::VALUE;
    } else if (strcmp(row->name, "color") == 0) {
        if (!parse_colour(word, settings))
            return wrong_value(row, word, "auto, always or never", &options->meant, problem);
    } else if (strcmp(row->name, "shell-text") == 0) {
        settings->shell_text = true;
    } else {
        options->help = true;
    }
    return true;
}

static bool begins_with(const option_row *row, const char *name, size_t length) {
    return strncmp(row->name, name, length) == 0;
}

static bool is_exactly(const option_row *row, const char *name, size_t length) {
    return strlen(row->name) == length && begins_with(row, name, length);
}

// All options that may stand behind a command, or before any where `own` is null: the global ones come first.
static size_t count_options(const command_row *own) {
    return global_option_count + (own ? own->option_count : 0);
}

static const option_row *option_at(const command_row *own, size_t place) {
    return place < global_option_count ? &global_options[place] : &own->options[place - global_option_count];
}

// How many options the word is the beginning of.
static size_t count_begun(const command_row *own, const char *name, size_t length) {
    size_t count = 0;
    for (size_t i = 0; i < count_options(own); i++)
        count += begins_with(option_at(own, i), name, length);
    return count;
}

const option_row *find_option(const command_row *own, const char *name, size_t length) {
    const option_row *found = nullptr;
    for (size_t i = 0; i < count_options(own); i++) {
        if (is_exactly(option_at(own, i), name, length))
            return option_at(own, i);
        if (begins_with(option_at(own, i), name, length))
            found = option_at(own, i);
    }
    return count_begun(own, name, length) == 1 ? found : nullptr;
}

const option_row *find_option_letter(const command_row *own, char letter) {
    for (size_t i = 0; i < count_options(own); i++)
        if (option_at(own, i)->letter == letter)
            return option_at(own, i);
    return nullptr;
}

// The options that a mistyped --tiemout=5 may have meant.
static void consider_options(suggestions *meant, const command_row *own, const char *word) {
    char wanted[SUGGESTION_SIZE], option[SUGGESTION_SIZE];
    snprintf(wanted, sizeof wanted, "%.*s", static_cast<int>(strcspn(word, "=")), word);
    for (size_t i = 0; i < count_options(own); i++) {
        snprintf(option, sizeof option, "--%s", option_at(own, i)->name);
        consider(meant, wanted, option);
    }
}

// And those that a word is the beginning of.
static void consider_begun(suggestions *meant, const command_row *own, const char *name, size_t length) {
    char option[SUGGESTION_SIZE];
    for (size_t i = 0; i < count_options(own); i++) {
        snprintf(option, sizeof option, "--%s", option_at(own, i)->name);
        if (begins_with(option_at(own, i), name, length))
            add_suggestion(meant, 0, option);
    }
}

// An option of the long form, with its hyphens, that getopt_long did not take.
static void describe_wrong_name(const command_row *own, const char *word, suggestions *meant,
                                char problem[PROBLEM_SIZE]) {
    size_t length = strcspn(word, "=");
    if (find_option(own, word + 2, length - 2)) {
        snprintf(problem, PROBLEM_SIZE, "%.*s takes no value", static_cast<int>(length), word);
    } else if (count_begun(own, word + 2, length - 2) > 1) {
        snprintf(problem, PROBLEM_SIZE, "%s is the beginning of more than one option", word);
        consider_begun(meant, own, word + 2, length - 2);
    } else {
        snprintf(problem, PROBLEM_SIZE, "%s is no option", word);
        consider_options(meant, own, word);
    }
}

// `found` is what getopt_long made of the wrong option: ':' for a missing value, '?' for everything else.
static void describe_wrong_option(int found, const command_row *own, char **words, suggestions *meant,
                                  char problem[PROBLEM_SIZE]) {
    bool is_short = optopt > 0 && optopt < FIRST_GLOBAL;
    const char *word = words[optind - 1];
    if (is_short)
        snprintf(problem, PROBLEM_SIZE, "-%c %s", optopt, found == ':' ? "needs a value" : "is no option");
    else if (found == ':')
        snprintf(problem, PROBLEM_SIZE, "%s needs a value", word);
    else
        describe_wrong_name(own, word, meant, problem);
}

// A number below zero behind a command is one of its words, as it is behind an operation, and no option. While getopt
// sorts the words its minus sign is another character, which no option begins with.
constexpr char HIDDEN_MINUS = '\x01';

static void hide_minus(int count, char **words) {
    for (int i = 1; i < count && strcmp(words[i], "--") != 0; i++)
        if (words[i][0] == '-' && isdigit(static_cast<unsigned char>(words[i][1])))
            words[i][0] = HIDDEN_MINUS;
}

static void show_minus(char *word) {
    if (word && word[0] == HIDDEN_MINUS && isdigit(static_cast<unsigned char>(word[1])))
        word[0] = '-';
}

static bool parse_options(const command_row *row, const char *mode, int count, char **words, parsed_options *options,
                          const char **own_values, char problem[PROBLEM_SIZE]) {
    getopt_tables tables = {};
    snprintf(tables.letters, sizeof tables.letters, "%s", mode);
    add_options(&tables, global_options, global_option_count, FIRST_GLOBAL);
    if (row)
        add_options(&tables, row->options, row->option_count, FIRST_OWN);
    optind = 0;  // start afresh
    opterr = 0;
    for (int found; (found = getopt_long(count, words, tables.letters, tables.options, nullptr)) >= 0;) {
        show_minus(optarg);
        const option_row *own = row ? found_row(row->options, row->option_count, found, FIRST_OWN) : nullptr;
        const option_row *global = found_row(global_options, global_option_count, found, FIRST_GLOBAL);
        if (own) {
            own_values[own - row->options] = own->value_name ? optarg : "";
        } else if (!global) {
            describe_wrong_option(found, row, words, &options->meant, problem);
            return false;
        } else if (!take_global_option(global, optarg, options, problem)) {
            return false;
        }
    }
    return true;
}

// The format that the word at a place asks for, "" when it asks for none.
static const char *format_at(int count, char *const *words, int place) {
    const char *word = words[place];
    const char *next = place + 1 < count ? words[place + 1] : "";
    if (strncmp(word, "-o", 2) == 0)
        return word[2] ? word + 2 : next;
    if (strncmp(word, "--", 2) != 0)
        return "";
    size_t length = strcspn(word, "=");
    const option_row *option = find_option(nullptr, word + 2, length - 2);
    if (!option || option->value != word_kind::FORMAT)
        return "";
    return word[length] ? word + length + 1 : next;
}

void adopt_format(client_settings *settings, int count, char *const *words) {
    for (int i = 0; i < count && strcmp(words[i], "--") != 0; i++)
        parse_format(format_at(count, words, i), &settings->format);
}

bool parse_leading_options(int count, char **words, parsed_options *options, int *used, char problem[PROBLEM_SIZE]) {
    bool parsed = parse_options(nullptr, "+:", count, words, options, nullptr, problem);
    *used = optind;
    return parsed;
}

bool parse_command_options(const command_row *row, int count, char **words, parsed_options *options, command_line *line,
                           char problem[PROBLEM_SIZE]) {
    *line = {row->options, {}, 0, nullptr};
    if (row->words[0] == word_kind::RAW_WORDS) {
        line->word_count = static_cast<size_t>(count - 1);
        line->words = words + 1;
        return true;
    }
    bool whole_line = row->words[0] == word_kind::COMMAND_LINE;  // whose options are its own
    if (!whole_line)
        hide_minus(count, words);
    bool parsed = parse_options(row, whole_line ? "+:" : ":", count, words, options, line->values, problem);
    for (int i = 1; i < count; i++)
        show_minus(words[i]);
    if (!parsed)
        return false;
    line->word_count = static_cast<size_t>(count - optind);
    line->words = words + optind;
    return true;
}

bool seconds_option(const command_line *line, const char *name, int otherwise, int *seconds,
                    char problem[PROBLEM_SIZE]) {
    const char *given = option_value(line, name);
    *seconds = otherwise;
    if (!given || parse_seconds(given, seconds))
        return true;
    describe_wrong_value(name, given, SECONDS_TEXT, problem);
    return false;
}
