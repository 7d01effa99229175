// What arguments and results mean: units, ranges, examples.
//
// Everything comes from server/meanings.def. Constant data and pure functions; any thread may use them.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include "client/exit_status.h"
#include "client/operations.h"

enum class range_kind { ANY, NUMBERS, EITHER, WORDS, FORM, LENGTH, UNUSED };

// What becomes of a value outside the range.
enum class outside_kind { TAKEN, REFUSED, WITHOUT_EFFECT, COUNTS_AS };

struct value_range {
    int64_t least;  // of NUMBERS: what makes sense; of EITHER the two numbers
    int64_t most;
    int64_t lowest;  // beyond these something happens to a number
    int64_t highest;
    size_t length;         // of LENGTH: how many characters are kept
    const char *accepted;  // of WORDS the words, of FORM and LENGTH what it looks like, else ""
    const char *becomes;   // of COUNTS_AS: what an outsider is taken for, else ""
    range_kind kind;
    outside_kind outside;
};

struct meaning_row {
    const char *label;
    const char *unit;     // "" without one
    const char *example;  // "" of records
    value_range range;
    const char *meaning;
};

// In the order of the file.
extern const meaning_row meaning_rows[];
extern const size_t meaning_row_count;

// Names that mean something else in a room, or in a procedure.
struct meaning_exception {
    const char *where;  // params/vap, or wlan_get_ssid
    const char *name;
    const char *label;
};

extern const meaning_exception room_meanings[];
extern const size_t room_meaning_count;
extern const meaning_exception procedure_meanings[];
extern const size_t procedure_meaning_count;

struct failing_example {
    const char *procedure;
    const char *why;
};

extern const failing_example failing_examples[];
extern const size_t failing_example_count;

// What an argument or an output of a procedure means; nullptr for a name without a row, which no name of the table is.
const meaning_row *meaning_of(const procedure_row *row, const char *name);

// Why the server answers the procedure's example with a failure; nullptr when it does not.
const char *why_example_fails(const procedure_row *row);

// "1 to 16; below 0 is refused", of an argument; nothing for a range that says nothing beyond the kind.
void print_accepted(FILE *out, const argument_row *argument, const value_range *range);

// "1 to 16", of a result; nothing for a range that says nothing.
void print_range(FILE *out, const value_range *range);

// "refused", "taken", "without-effect" or "counts-as", for programs.
const char *outside_word(outside_kind outside);

// The example of an operation as it is typed: vlk_rpc_wlan_config_client setSsid 1 "Guest network". Words that a shell
// would take apart are quoted.
void print_example(FILE *out, const procedure_row *row);
