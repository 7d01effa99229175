#include "client/words.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct splitter {
    const char *line;
    size_t length;
    size_t at;
    line_words *split;
    size_t used;        // characters of split->text
    size_t open_place;  // of split->open
};

// Columns count characters, as editors do, not bytes of UTF-8.
static size_t column_of(const char *line, size_t place) {
    size_t column = 1;
    for (size_t i = 0; i < place; i++)
        column += (line[i] & 0xc0) != 0x80;
    return column;
}

static bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

static bool at_end(const splitter *state) {
    return state->at == state->length;
}

static void take(splitter *state) {
    state->split->text[state->used++] = state->line[state->at++];
}

static void open_at(splitter *state) {
    state->split->open = state->line[state->at];
    state->open_place = state->at++;
}

// '...': everything as it stands.
static void take_single_quoted(splitter *state) {
    open_at(state);
    while (!at_end(state) && state->line[state->at] != '\'')
        take(state);
}

// "...": a backslash takes their meaning from the characters that have one there, and stands for itself before others.
static void take_double_quoted(splitter *state) {
    open_at(state);
    while (!at_end(state) && state->line[state->at] != '"') {
        bool escapes = state->line[state->at] == '\\' && state->at + 1 < state->length &&
                       strchr("\"\\$`", state->line[state->at + 1]);
        state->at += escapes;
        take(state);
    }
}

static bool is_at(const splitter *state, size_t ahead, const char *characters) {
    size_t place = state->at + ahead;
    return place < state->length && state->line[place] && strchr(characters, state->line[place]);
}

// The byte that \xHH stands for; 0, which is none of a text, where there is no such thing.
static int escaped_byte(const splitter *state) {
    static const char digits[] = "0123456789abcdefABCDEF";
    if (!is_at(state, 0, "\\") || !is_at(state, 1, "x") || !is_at(state, 2, digits) || !is_at(state, 3, digits))
        return 0;
    const char hex[] = {state->line[state->at + 2], state->line[state->at + 3], '\0'};
    return static_cast<int>(strtol(hex, nullptr, 16));
}

// $'...': \xHH is a byte, and a backslash takes their meaning from itself and from '. `apply --dry-run` shows texts
// like this that a line cannot have otherwise, and its lines have to mean here what they mean in a shell.
static void take_spelled_out(splitter *state) {
    state->at++;
    open_at(state);
    while (!at_end(state) && state->line[state->at] != '\'') {
        int byte = escaped_byte(state);
        if (byte != 0) {
            state->split->text[state->used++] = static_cast<char>(byte);
            state->at += sizeof "\\xHH" - 1;
            continue;
        }
        state->at += is_at(state, 0, "\\") && is_at(state, 1, "\\'");
        take(state);
    }
}

static void take_quoted(splitter *state) {
    if (state->line[state->at] == '$')
        take_spelled_out(state);
    else if (state->line[state->at] == '\'')
        take_single_quoted(state);
    else
        take_double_quoted(state);
    if (at_end(state))
        return;
    state->split->open = '\0';
    state->at++;
}

static void take_escaped(splitter *state) {
    open_at(state);
    if (at_end(state))
        return;
    state->split->open = '\0';
    take(state);
}

static void take_word(splitter *state) {
    line_words *split = state->split;
    split->last_begin = state->at;
    split->words[split->count++] = split->text + state->used;
    while (!at_end(state) && !is_blank(state->line[state->at])) {
        char c = state->line[state->at];
        if (c == '\'' || c == '"' || (c == '$' && is_at(state, 1, "'")))
            take_quoted(state);
        else if (c == '\\')
            take_escaped(state);
        else
            take(state);
    }
    split->text[state->used++] = '\0';
    split->in_word = at_end(state);
}

static bool fits(const splitter *state, char problem[PROBLEM_SIZE]) {
    if (state->length > LINE_LENGTH_MAX) {
        snprintf(problem, PROBLEM_SIZE, "the line is longer than %zu bytes", LINE_LENGTH_MAX);
        return false;
    }
    if (state->length > 0 && memchr(state->line, '\0', state->length)) {
        snprintf(problem, PROBLEM_SIZE, "the line is no text: it has a NUL in it");
        return false;
    }
    return true;
}

static bool is_closed(const splitter *state, char problem[PROBLEM_SIZE]) {
    size_t column = column_of(state->line, state->open_place);
    if (!state->split->open)
        return true;
    if (state->split->open == '\\')
        snprintf(problem, PROBLEM_SIZE, "the backslash in column %zu has nothing behind it", column);
    else
        snprintf(problem, PROBLEM_SIZE, "the quote %c in column %zu has no end", state->split->open, column);
    return false;
}

bool split_line(const char *line, size_t length, line_words *split, char problem[PROBLEM_SIZE]) {
    splitter state = {line, length, 0, split, 0, 0};
    split->count = 0;
    split->words[0] = nullptr;
    split->last_begin = 0;
    split->in_word = split->in_comment = false;
    split->open = '\0';
    if (!fits(&state, problem))
        return false;
    for (;;) {
        while (!at_end(&state) && is_blank(line[state.at]))
            state.at++;
        split->in_comment = !at_end(&state) && line[state.at] == '#';
        if (at_end(&state) || split->in_comment)
            break;
        if (split->count == LINE_WORDS_MAX) {
            snprintf(problem, PROBLEM_SIZE, "more than %zu words: the next one is in column %zu", LINE_WORDS_MAX,
                     column_of(line, state.at));
            return false;
        }
        split->in_word = false;
        take_word(&state);
        split->words[split->count] = nullptr;
    }
    split->in_word = split->in_word && !split->in_comment;
    return is_closed(&state, problem);
}
