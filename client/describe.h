// What an operation takes and gives, for people and for programs. Everything comes from the tables.
//
// Writes to the given stream only.
#pragma once

#include <stdio.h>

#include "client/operations.h"
#include "client/value.h"

// A line each: "  <channel>     channel, 0 for automatic: 0 to 196; any other is taken as it is".
void print_argument_meanings(FILE *out, const procedure_row *row);

// The result under its heading: values with meaning, unit and range, records with their fields.
void print_result_meanings(FILE *out, const procedure_row *row, bool colour);

// The example's command line, and what it may print where that is not a record or a list.
void print_example_lines(FILE *out, const procedure_row *row);

// All of it as an object, which the caller owns.
value *described_operation(const procedure_row *row);

// What the example may have as its result: the examples of the outputs, empty where there are none. The caller owns it;
// nullptr where the result is a record or a list.
value *example_result(const procedure_row *row);

// Begins and ends a heading: bold where there are colours.
const char *heading_begin(bool colour);
const char *heading_end(bool colour);
