#include "client/table.h"

#include <libsmartcols.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

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

// A cell as the library can draw it, which the caller frees; nullptr without memory. Behind a byte that is no character
// in the locale's character set the library would measure the cell for ever, so such bytes are shown as \xff.
static char *drawable_text(const char *text) {
    char *made = nullptr;
    size_t size;
    FILE *memory = open_memstream(&made, &size);
    if (!memory)
        return nullptr;
    while (*text) {
        mbstate_t state = {};
        size_t used = mbrtowc(nullptr, text, strnlen(text, MB_CUR_MAX), &state);
        if (used <= MB_CUR_MAX) {
            fwrite(text, 1, used, memory);
            text += used;
        } else {
            fprintf(memory, "\\x%02x", static_cast<unsigned char>(*text++));
        }
    }
    if (fclose(memory) == 0)
        return made;
    free(made);
    return nullptr;
}

static bool set_text(libscols_line *line, size_t column, const char *text) {
    char *drawable = drawable_text(text);
    bool set = drawable && scols_line_set_data(line, column, drawable) == 0;
    free(drawable);
    return set;
}

static bool add_row(libscols_table *drawn, const text_table *table, size_t row, bool colour) {
    libscols_line *line = scols_table_new_line(drawn, nullptr);
    if (!line)
        return false;
    for (size_t i = 0; i < table->column_count; i++) {
        const table_cell *cell = &table->cells[row * table->column_count + i];
        if (!set_text(line, i, cell->text))
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
