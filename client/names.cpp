#include "client/names.h"

#include <ctype.h>
#include <string.h>

#define PROCEDURE(number, procedure, ...) static_assert(sizeof #procedure <= OPERATION_NAME_SIZE);
#include "server/procedures.def"

constexpr char PREFIX[] = "wlan";
constexpr size_t PREFIX_LENGTH = sizeof PREFIX - 1;

void operation_name(const procedure_row *row, char name[OPERATION_NAME_SIZE]) {
    size_t length = 0;
    bool starts_word = false;
    for (const char *c = row->name + PREFIX_LENGTH + 1; *c; c++) {
        if (*c != '_')
            name[length++] = starts_word ? static_cast<char>(toupper(static_cast<unsigned char>(*c))) : *c;
        starts_word = *c == '_';
    }
    name[length] = '\0';
}

// What all spellings of a name have in common: its letters and digits in lower case, without the prefix. False when
// the word is longer than any name.
static bool key_of(const char *word, char key[OPERATION_NAME_SIZE]) {
    if (!fold_word(word, key))
        return false;
    if (strncmp(key, PREFIX, PREFIX_LENGTH) == 0)
        memmove(key, key + PREFIX_LENGTH, strlen(key + PREFIX_LENGTH) + 1);
    return true;
}

const procedure_row *find_operation(const char *word) {
    char wanted[OPERATION_NAME_SIZE];
    if (!key_of(word, wanted))
        return nullptr;
    for (size_t i = 0; i < procedure_row_count; i++) {
        char key[OPERATION_NAME_SIZE];
        if (key_of(procedure_rows[i].name, key) && strcmp(key, wanted) == 0)
            return &procedure_rows[i];
    }
    return nullptr;
}

void consider_operations(suggestions *found, const char *word) {
    char wanted[OPERATION_NAME_SIZE], key[OPERATION_NAME_SIZE], name[OPERATION_NAME_SIZE];
    if (!key_of(word, wanted))
        return;
    for (size_t i = 0; i < procedure_row_count; i++) {
        operation_name(&procedure_rows[i], name);
        if (key_of(procedure_rows[i].name, key))
            add_suggestion(found, slip_distance(wanted, key), name);
    }
}

bool begins_its_subject(const procedure_row *row) {
    for (const procedure_row *earlier = procedure_rows; earlier < row; earlier++)
        if (strcmp(earlier->subject, row->subject) == 0)
            return false;
    return true;
}

bool operation_matches(const procedure_row *row, const char *word) {
    char part[OPERATION_NAME_SIZE], key[OPERATION_NAME_SIZE];
    bool in_name = key_of(word, part) && *part && key_of(row->name, key) && strstr(key, part);
    return in_name || strcasestr(row->name, word) || strcasestr(row->subject, word) || strcasestr(row->summary, word);
}
