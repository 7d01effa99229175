#include "client/names.h"

#include <ctype.h>
#include <string.h>

#define PROCEDURE(number, procedure, ...) static_assert(sizeof #procedure <= OPERATION_NAME_SIZE);
#include "server/procedures.def"

constexpr char PREFIX[] = "wlan";
constexpr size_t PREFIX_LENGTH = sizeof PREFIX - 1;

static char lower(char c) {
    return static_cast<char>(tolower(static_cast<unsigned char>(c)));
}

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
    size_t length = 0;
    for (; *word; word++) {
        if (*word == '_' || *word == '-')
            continue;
        if (length + 1 == OPERATION_NAME_SIZE)
            return false;
        key[length++] = lower(*word);
    }
    key[length] = '\0';
    if (strncmp(key, PREFIX, PREFIX_LENGTH) == 0)
        memmove(key, key + PREFIX_LENGTH, length - PREFIX_LENGTH + 1);
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

static size_t least(size_t a, size_t b, size_t c) {
    size_t smaller = a < b ? a : b;
    return smaller < c ? smaller : c;
}

// How many characters have to be inserted, removed or replaced to get from one key to the other.
static size_t edit_distance(const char *from, const char *to) {
    size_t distances[OPERATION_NAME_SIZE];  // from the part of `from` read so far to each beginning of `to`
    size_t to_length = strlen(to);
    for (size_t i = 0; i <= to_length; i++)
        distances[i] = i;
    for (size_t row = 0; from[row]; row++) {
        size_t diagonal = distances[0];
        distances[0] = row + 1;
        for (size_t i = 1; i <= to_length; i++) {
            size_t replaced = diagonal + (from[row] != to[i - 1]);
            diagonal = distances[i];
            distances[i] = least(replaced, distances[i] + 1, distances[i - 1] + 1);
        }
    }
    return distances[to_length];
}

// A slip of the fingers: one character in four, but always two, so that short names have suggestions too.
static size_t tolerated_distance(size_t length) {
    return length / 4 > 2 ? length / 4 : 2;
}

// Shorter words are part of too many names to say anything.
constexpr size_t TELLING_LENGTH = 3;
constexpr size_t TOO_FAR = ~size_t{0};

// The smaller, the likelier. A name that only contains the word stands behind every slip of the fingers, and the more
// it has besides the word the further behind.
static size_t distance_to(const char *wanted, const procedure_row *row) {
    char key[OPERATION_NAME_SIZE];
    if (!key_of(row->name, key))
        return TOO_FAR;
    size_t distance = edit_distance(wanted, key);
    if (distance <= tolerated_distance(strlen(wanted)))
        return distance;
    if (strlen(wanted) >= TELLING_LENGTH && strstr(key, wanted))
        return OPERATION_NAME_SIZE + distance;
    return TOO_FAR;
}

size_t suggest_operations(const char *word, const procedure_row *suggestions[SUGGESTIONS_MAX]) {
    char wanted[OPERATION_NAME_SIZE];
    size_t distances[SUGGESTIONS_MAX];
    size_t count = 0;
    if (!key_of(word, wanted))
        return 0;
    for (size_t i = 0; i < procedure_row_count; i++) {
        size_t distance = distance_to(wanted, &procedure_rows[i]);
        size_t place = count;
        while (place > 0 && distance < distances[place - 1])
            place--;
        if (distance == TOO_FAR || place == SUGGESTIONS_MAX)
            continue;
        count += count < SUGGESTIONS_MAX;
        for (size_t last = count - 1; last > place; last--) {
            distances[last] = distances[last - 1];
            suggestions[last] = suggestions[last - 1];
        }
        distances[place] = distance;
        suggestions[place] = &procedure_rows[i];
    }
    return count;
}

bool operation_matches(const procedure_row *row, const char *word) {
    char part[OPERATION_NAME_SIZE], key[OPERATION_NAME_SIZE];
    bool in_name = key_of(word, part) && *part && key_of(row->name, key) && strstr(key, part);
    return in_name || strcasestr(row->name, word) || strcasestr(row->subject, word) || strcasestr(row->summary, word);
}
