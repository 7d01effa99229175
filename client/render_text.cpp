#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include "client/colour.h"
#include "client/render.h"
#include "client/scalar.h"
#include "client/table.h"
#include "client/utf8.h"

// Names of lone values end here, so that the values of most answers stand in one column.
constexpr int NAME_COLUMN_MAX = 24;

// The fewest blanks between two columns.
constexpr int GAP = 2;

static bool for_people(const value *shown) {
    return shown->readers != audience::PROGRAMS;
}

static size_t count_for_people(const value *parent) {
    size_t count = 0;
    for (const value *child = parent->first; child; child = child->next)
        count += for_people(child);
    return count;
}

enum class line_breaks { AS_THEY_ARE, ESCAPED };

// A terminal gets neither controls nor what is no character. Lines and tabs stay in a text of its own (several have
// more than one line), never in the cell of a table.
static void print_text(FILE *out, const value *text, bool terminal, line_breaks breaks) {
    size_t used;
    for (size_t at = 0; at < text->length; at += used) {
        const char *c = text->text + at;
        used = utf8_length(c, text->length - at);
        bool is_break = *c == '\n' || *c == '\t' || *c == '\r';
        bool escape = is_break ? breaks == line_breaks::ESCAPED || (terminal && *c == '\r')
                               : terminal && (used == 0 || is_control_character(c, text->length - at));
        used = used ? used : 1;
        for (size_t i = 0; escape && i < used; i++)
            fprintf(out, "\\x%02x", static_cast<unsigned char>(c[i]));
        if (!escape)
            fwrite(c, 1, used, out);
    }
}

static constexpr scalar_words PEOPLES_WORDS = {"-", "no", "yes"};

static void print_one(FILE *out, const value *shown, bool terminal, line_breaks breaks) {
    if (shown->kind == value_kind::TEXT)
        print_text(out, shown, terminal, breaks);
    else
        print_scalar(out, shown, &PEOPLES_WORDS);
}

// The text of one cell, which the caller frees: a scalar, or all scalars of a list with blanks between.
static char *cell_text(const value *shown, bool terminal) {
    char *text = nullptr;
    size_t size;
    FILE *memory = open_memstream(&text, &size);
    if (!memory)
        return nullptr;
    if (is_scalar(shown))
        print_one(memory, shown, terminal, line_breaks::ESCAPED);
    for (const value *element = shown->first; element; element = element->next) {
        print_one(memory, element, terminal, line_breaks::ESCAPED);
        fputs(element->next ? " " : "", memory);
    }
    if (fclose(memory) == 0)
        return text;
    free(text);
    return nullptr;
}

static bool is_number(const value *shown) {
    return shown->kind == value_kind::SIGNED || shown->kind == value_kind::UNSIGNED;
}

// TX_PACKETS; the caller frees it.
static char *heading_of(const char *name) {
    char *heading = strdup(name);
    for (char *c = heading; c && *c; c++)
        *c = static_cast<char>(toupper(static_cast<unsigned char>(*c)));
    return heading;
}

struct drawn_table {
    table_column *columns;
    table_cell *cells;
    char **owned;  // headings and cells
    size_t owned_count;
};

static const char *keep(drawn_table *drawn, char *text) {
    if (!text)
        return "";
    drawn->owned[drawn->owned_count++] = text;
    return text;
}

static const value *find_for_people(const value *row, const char *name) {
    for (const value *member = row->first; member; member = member->next)
        if (for_people(member) && strcmp(member->name, name) == 0)
            return member;
    return nullptr;
}

// The columns are the members of the first row. What other rows have besides is not shown.
static void fill_table(drawn_table *drawn, const value *list, bool terminal) {
    size_t column = 0;
    for (const value *member = list->first->first; member; member = member->next)
        if (for_people(member))
            drawn->columns[column++] = {keep(drawn, heading_of(member->name)), is_number(member)};
    table_cell *cells = drawn->cells;
    for (const value *row = list->first; row; row = row->next) {
        for (const value *heading = list->first->first; heading; heading = heading->next) {
            if (!for_people(heading))
                continue;
            const value *member = find_for_people(row, heading->name);
            *cells++ = member ? table_cell{keep(drawn, cell_text(member, terminal)), member->shown}
                              : table_cell{"", emphasis::NONE};
        }
    }
}

static void print_objects(FILE *out, const value *list, const text_options *options) {
    size_t columns = count_for_people(list->first);
    if (columns == 0)
        return;
    size_t rows = count_values(list);
    drawn_table drawn = {};
    drawn.columns = static_cast<table_column *>(calloc(columns, sizeof *drawn.columns));
    drawn.cells = static_cast<table_cell *>(calloc(columns * rows, sizeof *drawn.cells));
    drawn.owned = static_cast<char **>(calloc(columns * (rows + 1), sizeof *drawn.owned));
    if (drawn.columns && drawn.cells && drawn.owned) {
        fill_table(&drawn, list, options->terminal);
        const text_table table = {columns, drawn.columns, rows, drawn.cells};
        print_table(out, &table, options->colour);
    }
    for (size_t i = 0; i < drawn.owned_count; i++)
        free(drawn.owned[i]);
    free(drawn.owned);
    free(drawn.cells);
    free(drawn.columns);
}

static bool is_list_of_objects(const value *shown) {
    return shown->kind == value_kind::LIST && shown->first && shown->first->kind == value_kind::OBJECT;
}

static bool stands_on_its_line(const value *shown) {
    return is_scalar(shown) || (shown->kind == value_kind::LIST && !is_list_of_objects(shown));
}

static int name_column(const value *object) {
    int column = 0;
    for (const value *member = object->first; member; member = member->next) {
        int length = static_cast<int>(strlen(member->name));
        if (for_people(member) && stands_on_its_line(member) && length > column && length <= NAME_COLUMN_MAX)
            column = length;
    }
    return column;
}

static void print_line(FILE *out, const value *member, int column, const text_options *options) {
    char *text = cell_text(member, options->terminal);
    const char *begin = emphasis_begin(member->shown, options->colour);
    const char *end = emphasis_end(member->shown, options->colour);
    bool empty_list = member->kind == value_kind::LIST && !member->first;
    fprintf(out, "%-*s%*s%s%s%s\n", column, member->name, GAP, "", begin, empty_list ? "none" : (text ? text : ""),
            end);
    free(text);
}

static void print_members(FILE *out, const value *object, const text_options *options);

static void print_section(FILE *out, const value *member, const text_options *options) {
    if (is_list_of_objects(member))
        print_objects(out, member, options);
    else
        print_members(out, member, options);
}

static void print_members(FILE *out, const value *object, const text_options *options) {
    int column = name_column(object);
    bool any = false;
    for (const value *member = object->first; member; member = member->next) {
        if (!for_people(member))
            continue;
        if (stands_on_its_line(member)) {
            print_line(out, member, column, options);
        } else {
            fprintf(out, "%s%s%s%s\n", any ? "\n" : "", heading_begin(options->colour), member->name,
                    heading_end(options->colour));
            print_section(out, member, options);
        }
        any = true;
    }
}

void render_text(FILE *out, const value *object, const text_options *options) {
    const value *only = nullptr;
    for (const value *member = object->first; member && count_for_people(object) == 1; member = member->next)
        only = for_people(member) ? member : only;
    if (!only) {
        print_members(out, object, options);
    } else if (only->kind == value_kind::OBJECT) {
        render_text(out, only, options);
    } else if (is_scalar(only)) {
        print_one(out, only, options->terminal, line_breaks::AS_THEY_ARE);
        putc('\n', out);
    } else if (only->kind == value_kind::LIST && !only->first) {
        fprintf(out, "no %s\n", only->name);
    } else if (stands_on_its_line(only)) {
        print_line(out, only, 0, options);
    } else {
        print_section(out, only, options);
    }
}
