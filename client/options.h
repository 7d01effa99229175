// Options: those of every command, and those of one.
//
// Not thread-safe: getopt_long keeps its place in globals.
#pragma once

#include "client/command_table.h"

// The settings that hold when no option is given: text, colours where standard output is a terminal and NO_COLOR is
// not set or empty.
client_settings default_settings(FILE *out);

struct parsed_options {
    client_settings settings;
    const char *server;  // nullptr when not given
    bool help;
};

// Takes the options off the words. Before a command they end at the first word that is none, for behind an operation -1
// is a value; behind a command they may stand anywhere, and up to "--". Of the words that remain, the first is at
// words[*used]. False with a sentence in `problem`.
bool parse_leading_options(int count, char **words, parsed_options *options, int *used, char problem[PROBLEM_SIZE]);
bool parse_command_options(const command_row *row, int count, char **words, parsed_options *options, command_line *line,
                           char problem[PROBLEM_SIZE]);

// The value of an option of seconds, 1 to 3600; `otherwise` when it is not given. False with a sentence in `problem`.
bool seconds_option(const command_line *line, const char *name, int otherwise, int *seconds,
                    char problem[PROBLEM_SIZE]);
