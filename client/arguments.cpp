#include "client/arguments.h"

#include <limits.h>
#include <stdio.h>
#include <string.h>

struct number_range {
    int64_t least;
    int64_t most;
};

static number_range range_of(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return {INT32_MIN, INT32_MAX};
        case argument_kind::UINT:
            return {0, UINT32_MAX};
        case argument_kind::USHORT:
            return {0, UINT16_MAX};
        case argument_kind::BOOL:
            return {0, 1};
        case argument_kind::TEXT:
            break;
    }
    return {0, 0};
}

const char *accepted_text(argument_kind kind) {
    switch (kind) {
        case argument_kind::VAP:
            return "a VAP index: a number, 1 to 16 for the VAPs there are";
        case argument_kind::INT:
            return "a number from -2147483648 to 2147483647";
        case argument_kind::IGNORED:
            return "a number from -2147483648 to 2147483647, of no effect";
        case argument_kind::UINT:
            return "a number from 0 to 4294967295";
        case argument_kind::USHORT:
            return "a number from 0 to 65535";
        case argument_kind::BOOL:
            return "1, true, on or yes, or 0, false, off or no";
        case argument_kind::TEXT:
            return "text";
    }
    return "";
}

static int digit_value(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return INT_MAX;
}

// A whole number and nothing else: no blanks, no plus sign, and 010 is ten. The library's parsers accept more.
static bool parse_number(const char *word, number_range range, int64_t *number) {
    bool negative = *word == '-';
    word += negative;
    bool hexadecimal = word[0] == '0' && (word[1] == 'x' || word[1] == 'X');
    word += hexadecimal ? 2 : 0;
    int base = hexadecimal ? 16 : 10;
    int64_t value = 0;
    if (!*word)
        return false;
    for (; *word; word++) {
        int digit = digit_value(*word);
        if (digit >= base)
            return false;
        value = value * base + digit;
        if (value > UINT32_MAX)  // beyond every range, and far from overflow
            return false;
    }
    value = negative ? -value : value;
    if (value < range.least || value > range.most)
        return false;
    *number = value;
    return true;
}

const char *const boolean_words[][2] = {{"false", "true"}, {"off", "on"}, {"no", "yes"}};
const size_t boolean_word_count = sizeof boolean_words / sizeof *boolean_words;

static bool parse_bool(const char *word, int64_t *number) {
    for (const auto &pair : boolean_words)
        for (int value = 0; value <= 1; value++)
            if (strcasecmp(word, pair[value]) == 0) {
                *number = value;
                return true;
            }
    return parse_number(word, range_of(argument_kind::BOOL), number);
}

bool parse_argument(argument_kind kind, char *word, argument_value *value) {
    argument_value parsed = {kind, 0, nullptr};
    bool fits = true;
    if (kind == argument_kind::TEXT)
        parsed.text = word;
    else if (kind == argument_kind::BOOL)
        fits = parse_bool(word, &parsed.number);
    else
        fits = parse_number(word, range_of(kind), &parsed.number);
    if (fits)
        *value = parsed;
    return fits;
}

bool parse_arguments(const procedure_row *row, size_t count, char *const *words, call_arguments *arguments,
                     char problem[PROBLEM_SIZE]) {
    if (count != row->argument_count) {
        snprintf(problem, PROBLEM_SIZE, "takes %zu argument%s, not %zu", row->argument_count,
                 row->argument_count == 1 ? "" : "s", count);
        return false;
    }
    call_arguments parsed = {count, {}};
    for (size_t i = 0; i < count; i++) {
        const argument_row *argument = &row->arguments[i];
        if (parse_argument(argument->kind, words[i], &parsed.values[i]))
            continue;
        snprintf(problem, PROBLEM_SIZE, "<%s> is \"%s\", but has to be %s", argument->name, words[i],
                 accepted_text(argument->kind));
        return false;
    }
    *arguments = parsed;
    return true;
}

static bool_t xdr_value(XDR *xdrs, argument_value *value) {
    int integer = static_cast<int>(value->number);
    u_int natural = static_cast<u_int>(value->number);
    u_short small = static_cast<u_short>(value->number);
    bool_t truth = static_cast<bool_t>(value->number);
    switch (value->kind) {
        case argument_kind::VAP:
        case argument_kind::INT:
        case argument_kind::IGNORED:
            return xdr_int(xdrs, &integer);
        case argument_kind::UINT:
            return xdr_u_int(xdrs, &natural);
        case argument_kind::USHORT:
            return xdr_u_short(xdrs, &small);
        case argument_kind::BOOL:
            return xdr_bool(xdrs, &truth);
        case argument_kind::TEXT:
            return xdr_text(xdrs, &value->text);
    }
    return FALSE;
}

bool_t xdr_call_arguments(XDR *xdrs, call_arguments *arguments) {
    for (size_t i = 0; i < arguments->count; i++)
        if (!xdr_value(xdrs, &arguments->values[i]))
            return FALSE;
    return TRUE;
}
