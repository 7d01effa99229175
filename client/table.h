// Tables for people: aligned columns below headings.
//
// client/table.cpp draws them with libsmartcols; a client built without that library has client/table_plain.cpp, which
// puts tabs between the cells instead.
#pragma once

#include <stddef.h>
#include <stdio.h>

#include "client/value.h"

struct table_column {
    const char *heading;
    bool right;  // numbers are aligned on their last digit
};

struct table_cell {
    const char *text;  // one line, "" for nothing
    emphasis shown;
};

struct text_table {
    size_t column_count;
    const table_column *columns;
    size_t row_count;
    const table_cell *cells;  // row after row
};

// Colours only where the caller knows that there is a terminal that wants them. False when memory ran out.
bool print_table(FILE *out, const text_table *table, bool colour);
