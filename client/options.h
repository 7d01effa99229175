// Options: those of every command, and those of one.
//
// Not thread-safe: getopt_long keeps its place in globals.
#pragma once

#include "client/command_table.h"
#include "client/suggest.h"

// The settings that hold when no option is given: text, colours where standard output is a terminal and NO_COLOR is
// not set or empty.
client_settings default_settings(FILE *out);

struct parsed_options {
    client_settings settings;
    const char *server;  // nullptr when not given
    bool help;
    suggestions meant = {};  // what a word may have stood for with which parsing failed
};

// One of the words that a kind of word can be.
struct choice_row {
    const char *word;
    const char *summary;
    int number;  // what it stands for
};

struct word_choices {
    size_t count;
    const choice_row *rows;
};

// All words of a kind that has few: FORMAT and WHEN. None of any other kind.
word_choices choices_of(word_kind kind);

// The option that a word names: "timeout", or its beginning when no other option begins so. nullptr for none. `own` are
// a command's own options, nullptr outside of commands.
const option_row *find_option(const command_row *own, const char *name, size_t length);

// The option with this letter.
const option_row *find_option_letter(const command_row *own, char letter);

// Takes the options off the words. Before a command they end at the first word that is none, for behind an operation -1
// is a value; behind a command they may stand anywhere, and up to "--". Of the words that remain, the first is at
// words[*used]. False with a sentence in `problem`.
bool parse_leading_options(int count, char **words, parsed_options *options, int *used, char problem[PROBLEM_SIZE]);
bool parse_command_options(const command_row *row, int count, char **words, parsed_options *options, command_line *line,
                           char problem[PROBLEM_SIZE]);

// Takes the format that a command line asks for anywhere before "--", although it makes no sense otherwise: what is
// wrong with it is said in that format.
void adopt_format(client_settings *settings, int count, char *const *words);

// The value of an option of seconds, 1 to 3600; `otherwise` when it is not given. False with a sentence in `problem`.
bool seconds_option(const command_line *line, const char *name, int otherwise, int *seconds,
                    char problem[PROBLEM_SIZE]);
