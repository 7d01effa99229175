// The client's own commands, one row each: what they take, what they do, which function carries them out.
//
// Parsing, help, completion and the manual follow from the rows. Operations are not here: they come from the table of
// procedures; of the commands only load, init and reset have the name of one, which is what they carry out.
#pragma once

#include <stddef.h>

#include "client/session.h"

// What a word of the command line stands for: completion and "did you mean" go by it.
enum class word_kind {
    NONE,
    NUMBER,
    TEXT,
    FILE_NAME,
    VAP,
    OPERATION,
    SUBJECT,       // a word of the list of operations
    ANY_COMMAND,   // a command or an operation
    COMMAND_LINE,  // a whole command with everything behind it
    FORMAT,
    WHEN,       // auto, always, never
    FIELD,      // a name in a result
    RAW_WORDS,  // everything behind the command as it stands, options too
};

struct option_row {
    const char *name;        // timeout
    const char *value_name;  // SECONDS, nullptr of an option without a value
    const char *summary;
    word_kind value;
    char letter;  // of a short form, '\0' without one
};

// More than any command takes.
constexpr size_t COMMAND_OPTIONS_MAX = 8;
constexpr size_t COMMAND_WORDS_MAX = 2;

// The words of a command after its options have been taken out.
struct command_line {
    const option_row *options;                // of its row
    const char *values[COMMAND_OPTIONS_MAX];  // nullptr where an option is not given, "" of one without a value
    size_t word_count;                        // without the command's name
    char **words;
};

enum class command_group { OPERATIONS, GATEWAY, LIFECYCLE, SETTINGS, SCRIPTS, DEVELOPERS, HIDDEN };

using command_function = client_exit_status (*)(client_session *session, const command_line *line);

struct command_row {
    const char *name;
    command_group group;
    const char *synopsis;                // of its words: "[WORD]"
    word_kind words[COMMAND_WORDS_MAX];  // the last one holds for all behind it
    size_t words_least;
    size_t words_most;
    const option_row *options;
    size_t option_count;
    command_function run;
    const char *summary;      // one line
    const char *description;  // what a person has to know beyond that, "" for nothing
};

constexpr size_t ANY_NUMBER_OF_WORDS = ~size_t{0};

extern const command_row command_rows[];
extern const size_t command_row_count;

// Options that stand before any command, and behind it as well.
extern const option_row global_options[];
extern const size_t global_option_count;

struct command_group_row {
    command_group group;
    const char *title;
};

// In the order of the help; HIDDEN is not among them.
extern const command_group_row command_groups[];
extern const size_t command_group_count;

// The row with exactly this name, nullptr when there is none.
const command_row *find_command(const char *name);

// The value of an option of the command's row, "" of a given one without a value, nullptr when it is not given.
const char *option_value(const command_line *line, const char *name);
