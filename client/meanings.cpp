#include "client/meanings.h"

#include <string.h>

#include "client/arguments.h"
#include "client/help.h"
#include "client/names.h"

// {"dbm", "dBm", "-70", {-255, 0, -255, 0, 0, "", "", range_kind::NUMBERS, outside_kind::REFUSED}, "RSSI"},
#define OUTSIDE_TAKEN "", outside_kind::TAKEN
#define OUTSIDE_REFUSED "", outside_kind::REFUSED
#define OUTSIDE_WITHOUT_EFFECT "", outside_kind::WITHOUT_EFFECT
#define OUTSIDE_COUNTS_AS(what) what, outside_kind::COUNTS_AS
#define MAKE_RANGE(kind, least, most, lowest, highest, length, accepted, ...) \
    make_range(range_kind::kind, least, most, lowest, highest, length, accepted, __VA_ARGS__)
#define RANGE_ANY MAKE_RANGE(ANY, 0, 0, 0, 0, 0, "", OUTSIDE_TAKEN)
#define RANGE_UNUSED MAKE_RANGE(UNUSED, 0, 0, 0, 0, 0, "", OUTSIDE_TAKEN)
#define RANGE_NUMBERS(least, most, outside) MAKE_RANGE(NUMBERS, least, most, least, most, 0, "", OUTSIDE_##outside)
#define RANGE_USUAL(least, most, lowest, highest, outside) \
    MAKE_RANGE(NUMBERS, least, most, lowest, highest, 0, "", OUTSIDE_##outside)
#define RANGE_EITHER(one, other, outside) MAKE_RANGE(EITHER, one, other, one, other, 0, "", OUTSIDE_##outside)
#define RANGE_WORDS(words, outside) MAKE_RANGE(WORDS, 0, 0, 0, 0, 0, words, OUTSIDE_##outside)
#define RANGE_FORM(form, outside) MAKE_RANGE(FORM, 0, 0, 0, 0, 0, form, OUTSIDE_##outside)
#define RANGE_LENGTH(length, form) \
    MAKE_RANGE(LENGTH, 0, 0, 0, 0, length, form, OUTSIDE_COUNTS_AS("longer ones are cut"))

static constexpr value_range make_range(range_kind kind, int64_t least, int64_t most, int64_t lowest, int64_t highest,
                                        size_t length, const char *accepted, const char *becomes,
                                        outside_kind outside) {
    return {least, most, lowest, highest, length, accepted, becomes, kind, outside};
}

const meaning_row meaning_rows[] = {
#define MEANING(label, unit, example, range, meaning) {#label, unit, example, RANGE_##range, meaning},
#include "server/meanings.def"
};
const size_t meaning_row_count = sizeof meaning_rows / sizeof *meaning_rows;

#define ROOM(room, file, subject) static constexpr char FILE_##room[] = file;
#include "server/rooms.def"

const meaning_exception room_meanings[] = {
#define LIKE_IN(room, name, label) {FILE_##room, #name, #label},
#include "server/meanings.def"
};
const size_t room_meaning_count = sizeof room_meanings / sizeof *room_meanings;

const meaning_exception procedure_meanings[] = {
#define LIKE(procedure, name, label) {#procedure, #name, #label},
#include "server/meanings.def"
};
const size_t procedure_meaning_count = sizeof procedure_meanings / sizeof *procedure_meanings;

const failing_example failing_examples[] = {
#define EXAMPLE_FAILS(procedure, why) {#procedure, why},
#include "server/meanings.def"
};
const size_t failing_example_count = sizeof failing_examples / sizeof *failing_examples;

static const char *exception_for(const meaning_exception *rows, size_t count, const char *where, const char *name) {
    for (size_t i = 0; i < count; i++)
        if (strcmp(rows[i].where, where) == 0 && strcmp(rows[i].name, name) == 0)
            return rows[i].label;
    return nullptr;
}

const meaning_row *meaning_of(const procedure_row *row, const char *name) {
    const char *label = exception_for(procedure_meanings, procedure_meaning_count, row->name, name);
    if (!label)
        label = exception_for(room_meanings, room_meaning_count, row->room, name);
    if (!label)
        label = name;
    for (const meaning_row &meaning : meaning_rows)
        if (strcmp(meaning.label, label) == 0)
            return &meaning;
    return nullptr;
}

const char *why_example_fails(const procedure_row *row) {
    for (const failing_example &example : failing_examples)
        if (strcmp(example.procedure, row->name) == 0)
            return example.why;
    return nullptr;
}

const char *outside_word(outside_kind outside) {
    switch (outside) {
        case outside_kind::TAKEN:
            return "taken";
        case outside_kind::REFUSED:
            return "refused";
        case outside_kind::WITHOUT_EFFECT:
            return "without-effect";
        case outside_kind::COUNTS_AS:
            return "counts-as";
    }
    return "";
}

static void print_numbers(FILE *out, const value_range *range) {
    bool two = range->kind == range_kind::EITHER || range->most == range->least + 1;
    if (range->least == range->most)
        fprintf(out, "%lld", static_cast<long long>(range->least));
    else if (range->most == INT32_MAX)
        fprintf(out, "%lld or more", static_cast<long long>(range->least));
    else
        fprintf(out, "%lld %s %lld", static_cast<long long>(range->least), two ? "or" : "to",
                static_cast<long long>(range->most));
}

void print_range(FILE *out, const value_range *range) {
    switch (range->kind) {
        case range_kind::ANY:
        case range_kind::UNUSED:
        case range_kind::LENGTH:
        case range_kind::FORM:
            break;
        case range_kind::NUMBERS:
        case range_kind::EITHER:
            print_numbers(out, range);
            break;
        case range_kind::WORDS:
            fputs(range->accepted, out);
            break;
    }
}

// Which values are meant by "any other": all, or only those below or above.
static void print_outsiders(FILE *out, const value_range *range) {
    bool below = range->lowest < range->least;
    bool above = range->highest > range->most;
    if (!below && !above)
        fputs("any other", out);
    else if (range->highest == INT32_MAX)
        fprintf(out, "below %lld", static_cast<long long>(range->lowest));
    else
        fprintf(out, "below %lld or above %lld", static_cast<long long>(range->lowest),
                static_cast<long long>(range->highest));
}

static void print_outside(FILE *out, const value_range *range) {
    switch (range->outside) {
        case outside_kind::TAKEN:
            fputs("; any other is taken as it is", out);
            break;
        case outside_kind::REFUSED:
            fputs("; ", out);
            print_outsiders(out, range);
            fputs(" fails", out);
            break;
        case outside_kind::WITHOUT_EFFECT:
            fputs("; ", out);
            print_outsiders(out, range);
            fputs(" has no effect", out);
            break;
        case outside_kind::COUNTS_AS:
            fprintf(out, "; %s", range->becomes);
            break;
    }
}

void print_accepted(FILE *out, const argument_row *argument, const value_range *range) {
    switch (range->kind) {
        case range_kind::ANY:
            fputs(accepted_text(argument->kind), out);
            break;
        case range_kind::UNUSED:
            fprintf(out, "%s, which is passed over", argument->kind == argument_kind::TEXT ? "any text" : "any number");
            break;
        case range_kind::NUMBERS:
        case range_kind::EITHER:
            // Nothing but 0 and 1 travels as a bool.
            if (argument->kind == argument_kind::BOOL) {
                fputs(accepted_text(argument->kind), out);
                break;
            }
            print_numbers(out, range);
            print_outside(out, range);
            break;
        case range_kind::WORDS:
        case range_kind::FORM:
            fputs(range->accepted, out);
            print_outside(out, range);
            break;
        case range_kind::LENGTH:
            fprintf(out, "%s; what is beyond %zu is cut off", range->accepted, range->length);
            break;
    }
}

// In double quotes where a shell would see more than one word, or none. No example has what these do not protect.
static void print_word(FILE *out, const char *word) {
    bool plain = *word && !strpbrk(word, " ;,()'&|<>*?");
    fprintf(out, plain ? " %s" : " \"%s\"", word);
}

void print_example(FILE *out, const procedure_row *row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    fprintf(out, "%s %s", PROGRAM_NAME, name);
    for (size_t i = 0; i < row->argument_count; i++)
        print_word(out, meaning_of(row, row->arguments[i].name)->example);
}
