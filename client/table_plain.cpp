#include "client/table.h"

#include "client/colour.h"

static void print_cell(FILE *out, const table_cell *cell, bool colour) {
    fprintf(out, "%s%s%s", emphasis_begin(cell->shown, colour), cell->text, emphasis_end(cell->shown, colour));
}

bool print_table(FILE *out, const text_table *table, bool colour) {
    for (size_t i = 0; i < table->column_count; i++)
        fprintf(out, "%s%s", i ? "\t" : "", table->columns[i].heading);
    for (size_t i = 0; i < table->row_count * table->column_count; i++) {
        fputs(i % table->column_count == 0 ? "\n" : "\t", out);
        print_cell(out, &table->cells[i], colour);
    }
    putc('\n', out);
    return true;
}
