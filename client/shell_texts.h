// Texts that the server hands to its shell as they stand: what that shell would make of one, and who says so.
//
// Which arguments these are comes from server/meanings.def. Constant data and pure functions; any thread may use them.
#pragma once

#include <stddef.h>
#include <stdio.h>

#include "client/arguments.h"
#include "client/operations.h"
#include "client/value.h"

// Where such a text stands in the command: between double quotes, or as a bare word.
enum class shell_place { QUOTED, BARE };

// How often it goes through the shell: what is stored may do so again with the next change.
enum class shell_times { ONCE, AGAIN };

struct shell_row {
    const char *procedure;  // wlan_set_wep_key
    const char *argument;   // key
    shell_place place;
    shell_times times;
};

extern const shell_row shell_rows[];
extern const size_t shell_row_count;

// The row of an argument; nullptr for one that no shell gets as it stands.
const shell_row *find_shell_row(const procedure_row *row, const char *argument);

// The first character that the shell would obey, nullptr when there is none. A backslash keeps a character behind it
// from the shell if it is such a one and the text goes through the shell once; any other backslash is one itself.
const char *find_shell_character(const shell_row *row, const char *text);

// Whether the shell takes all texts of a call for nothing but texts. False with a sentence in `problem`, which says
// what to do but not what the text is: it may be a secret.
bool check_shell_texts(const procedure_row *row, const call_arguments *arguments, char problem[PROBLEM_SIZE]);

// Says for people where the text stands and what is to be done about it: "reaches the server's shell between ...".
void print_shell_row(FILE *out, const shell_row *row);

// The same for programs, {"place":"quoted","backslash":true} under the name shell; null where there is no row.
void add_shell_row(value *to, const shell_row *row);
