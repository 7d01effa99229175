#include "client/table.h"

#include <libsmartcols.h>
#include <stdlib.h>

#include "client/colour.h"

static bool add_columns(libscols_table *drawn, const text_table *table, bool colour) {
    for (size_t i = 0; i < table->column_count; i++) {
        int flags = table->columns[i].right ? SCOLS_FL_RIGHT : 0;
        libscols_column *column = scols_table_new_column(drawn, table->columns[i].heading, 0, flags);
        if (!column)
            return false;
        if (colour)
            scols_cell_set_color(scols_column_get_header(column), heading_begin(colour));
    }
    return true;
}

static bool add_row(libscols_table *drawn, const text_table *table, size_t row, bool colour) {
    libscols_line *line = scols_table_new_line(drawn, nullptr);
    if (!line)
        return false;
    for (size_t i = 0; i < table->column_count; i++) {
        const table_cell *cell = &table->cells[row * table->column_count + i];
        if (scols_line_set_data(line, i, cell->text) != 0)
            return false;
        if (colour && cell->shown != emphasis::NONE)
            scols_cell_set_color(scols_line_get_cell(line, i), emphasis_begin(cell->shown, colour));
    }
    return true;
}

bool print_table(FILE *out, const text_table *table, bool colour) {
    libscols_table *drawn = scols_new_table();
    if (!drawn)
        return false;
    scols_table_set_stream(drawn, out);
    scols_table_set_termforce(drawn, SCOLS_TERMFORCE_NEVER);  // the same lines in a pipe and in a narrow window
    scols_table_enable_noencoding(drawn, 1);  // cells are escaped already, and so would their escapes be
    scols_table_enable_colors(drawn, colour);
    scols_table_set_column_separator(drawn, "  ");
    bool complete = add_columns(drawn, table, colour);
    for (size_t row = 0; complete && row < table->row_count; row++)
        complete = add_row(drawn, table, row, colour);
    complete = complete && scols_print_table(drawn) == 0;
    scols_unref_table(drawn);
    return complete;
}
