#include "client/help.h"

#include "client/call.h"
#include "client/command_table.h"
#include "client/options.h"

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

// How the program is called: a command line a line.
static const char *const usage_lines[] = {
    "[OPTION...] OPERATION [ARGUMENT...] [OPTION...]",
    "[OPTION...] COMMAND [WORD...]",
};

static void print_introduction(FILE *out) {
    fprintf(out,
            "Calls one operation of the Wi-Fi configuration server at %s and prints its result.\n"
            "getSsid, get_ssid and wlan_get_ssid name the same operation, in any capitalisation.\n"
            "As many words as the operation has arguments are its arguments, also those with a minus sign.",
            SERVICE_ADDRESS);
}

void print_program_help(FILE *out) {
    const char *before = "usage:";
    for (const char *line : usage_lines) {
        fprintf(out, "%-6s %s %s\n", before, PROGRAM_NAME, line);
        before = "";
    }
    putc('\n', out);
    print_introduction(out);
    putc('\n', out);
    for (size_t i = 0; i < command_group_count; i++)
        print_commands(out, &command_groups[i]);
    fputs("\nOptions\n", out);
    print_options(out, global_options, global_option_count);
    print_exit_statuses(out);
}

static void print_command_usage(FILE *out, const command_row *row) {
    fprintf(out, "%s [OPTION...] %s%s%s", PROGRAM_NAME, row->name, *row->synopsis ? " " : "", row->synopsis);
}

void print_command_help(FILE *out, const command_row *row) {
    fprintf(out, "%s: %s\n\nusage: ", row->name, row->summary);
    print_command_usage(out, row);
    putc('\n', out);
    if (*row->description)
        fprintf(out, "\n%s\n", row->description);
    fputs("\nOptions\n", out);
    print_options(out, row->options, row->option_count);
    print_options(out, global_options, global_option_count);
}

// --- for programs ---

static const char *kind_word(word_kind kind) {
    switch (kind) {
        case word_kind::NONE:
            return "nothing";
        case word_kind::NUMBER:
            return "number";
        case word_kind::TEXT:
            return "text";
        case word_kind::FILE_NAME:
            return "file";
        case word_kind::VAP:
            return "vap";
        case word_kind::OPERATION:
            return "operation";
        case word_kind::SUBJECT:
            return "subject";
        case word_kind::ANY_COMMAND:
            return "command-or-operation";
        case word_kind::COMMAND_LINE:
            return "command-line";
        case word_kind::FORMAT:
            return "format";
        case word_kind::WHEN:
            return "when";
        case word_kind::FIELD:
            return "field";
        case word_kind::RAW_WORDS:
            return "any-words";
    }
    return "";
}

static void add_option(value *to, const option_row *option) {
    const char letter[] = {option->letter, '\0'};
    value *added = add_object(to, nullptr);
    add_string(added, "name", option->name);
    if (option->letter)
        add_string(added, "letter", letter);
    else
        add_nothing(added, "letter");
    if (option->value_name)
        add_string(added, "value", option->value_name);
    else
        add_nothing(added, "value");
    add_string(added, "kind", kind_word(option->value));
    value *choices = add_list(added, "choices");
    word_choices words = choices_of(option->value);
    for (size_t i = 0; i < words.count; i++)
        add_string(choices, nullptr, words.rows[i].word);
    add_string(added, "summary", option->summary);
}

static void add_options(value *to, const char *name, const option_row *rows, size_t count) {
    value *options = add_list(to, name);
    for (size_t i = 0; i < count; i++)
        add_option(options, &rows[i]);
}

static const char *group_title(command_group group) {
    for (size_t i = 0; i < command_group_count; i++)
        if (command_groups[i].group == group)
            return command_groups[i].title;
    return nullptr;
}

// What stands in front of everything else about a command.
static void add_command_head(value *to, const command_row *row) {
    const char *title = group_title(row->group);
    add_string(to, "command", row->name);
    if (title)
        add_string(to, "group", title);
    else
        add_nothing(to, "group");  // of a hidden one
    add_string(to, "synopsis", row->synopsis);
    add_string(to, "summary", row->summary);
}

// How many words a command takes, and of which kinds; the last kind holds for all words behind.
static void add_words(value *to, const command_row *row) {
    value *words = add_object(to, "words");
    add_unsigned(words, "least", row->words_least);
    if (row->words_most == ANY_NUMBER_OF_WORDS)
        add_nothing(words, "most");
    else
        add_unsigned(words, "most", row->words_most);
    value *kinds = add_list(words, "kinds");
    for (word_kind kind : row->words)
        if (kind != word_kind::NONE)
            add_string(kinds, nullptr, kind_word(kind));
}

value *command_help(const command_row *row) {
    value *made = new_object();
    printed_text usage;
    add_command_head(made, row);
    add_string(made, "description", row->description);
    begin_text(&usage);
    print_command_usage(usage.out, row);
    add_printed(made, "usage", &usage);
    add_words(made, row);
    add_options(made, "options", row->options, row->option_count);
    add_options(made, "global_options", global_options, global_option_count);
    return made;
}

static void add_commands(value *to) {
    value *commands = add_list(to, "commands");
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            add_command_head(add_object(commands, nullptr), &command_rows[i]);
}

static void add_exit_statuses(value *to) {
    value *statuses = add_list(to, "exit_statuses");
    for (size_t i = 0; i < exit_status_row_count; i++) {
        value *added = add_object(statuses, nullptr);
        add_number(added, "status", exit_status_rows[i].status);
        add_string(added, "kind", exit_status_rows[i].word);
        add_string(added, "meaning", exit_status_rows[i].meaning);
    }
}

value *program_help(void) {
    value *made = new_object();
    printed_text description;
    value *usage = add_list(made, "usage");
    for (const char *words : usage_lines) {
        printed_text line;
        begin_text(&line);
        fprintf(line.out, "%s %s", PROGRAM_NAME, words);
        add_printed(usage, nullptr, &line);
    }
    begin_text(&description);
    print_introduction(description.out);
    add_printed(made, "description", &description);
    add_commands(made);
    add_options(made, "global_options", global_options, global_option_count);
    add_exit_statuses(made);
    return made;
}
