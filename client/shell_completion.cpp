#include "client/shell_completion.h"

#include <dirent.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "client/completion.h"
#include "client/utf8.h"
#include "client/words.h"

// As many candidates as fit a screen with what was there before.
constexpr size_t LISTED_MAX = 60;

static bool is_continuation(char c) {
    return (c & 0xc0) == 0x80;
}

static int count_characters(const char *text, size_t length) {
    int count = 0;
    for (size_t i = 0; i < length; i++)
        count += !is_continuation(text[i]);
    return count;
}

// Appends a character as it has to be typed: `quote` is the quote that it stands in, '\0' for none. In '...' a
// backslash means nothing, and a ' has to stand outside.
static void append_quoted(char *text, size_t size, char c, char quote) {
    bool escaped = quote ? quote == '"' && strchr("\"\\$`", c) : strchr(" \t'\"\\#", c) != nullptr;
    size_t length = strlen(text);
    if (quote == '\'' && c == '\'')
        snprintf(text + length, size - length, "'\\''");
    else
        snprintf(text + length, size - length, "%s%c", escaped ? "\\" : "", c);
}

// Puts a word in the place of the one that is being typed. `whole` words are ended by their quote and a blank.
static void replace_word(EditLine *editor, const line_words *split, const char *word, bool whole) {
    const LineInfo *line = el_line(editor);
    size_t begin = split->in_word ? split->last_begin : static_cast<size_t>(line->cursor - line->buffer);
    char quote = split->open == '\\' ? '\0' : split->open;
    char text[2 * LINE_LENGTH_MAX] = {quote, '\0'};
    for (; *word; word++)
        append_quoted(text, sizeof text, *word, quote);
    size_t length = strlen(text);
    if (whole)
        snprintf(text + length, sizeof text - length, "%.1s ", quote ? split->open == '"' ? "\"" : "'" : "");
    el_deletestr(editor,
                 count_characters(line->buffer + begin, static_cast<size_t>(line->cursor - line->buffer) - begin));
    el_insertstr(editor, text);
}

static const char *word_of(const value *candidate) {
    return find_member(candidate, "word")->text;
}

// How much all candidates have in common.
static size_t common_length(const value *candidates) {
    const char *first = word_of(candidates->first);
    size_t common = strlen(first);
    for (const value *one = candidates->first->next; one; one = one->next)
        for (size_t i = 0; i < common; i++)
            if (word_of(one)[i] != first[i])
                common = i;
    while (common > 0 && is_continuation(first[common]))
        common--;
    return common;
}

static void list_candidates(FILE *out, const value *candidates) {
    size_t shown = 0;
    putc('\n', out);
    for (const value *one = candidates->first; one && shown < LISTED_MAX; one = one->next, shown++)
        fprintf(out, "%-32s  %s\n", word_of(one), find_member(one, "description")->text);
    if (count_values(candidates) > shown)
        fprintf(out, "... and %zu more\n", count_values(candidates) - shown);
    fflush(out);
}

// No line can have such a name, and no terminal should see it.
static bool has_control_character(const char *name) {
    size_t length = strlen(name);
    for (size_t i = 0; i < length; i++)
        if (is_control_character(name + i, length - i))
            return true;
    return false;
}

// File names that begin as `typed` does, whose folder stands before them in the candidates.
static void add_files(value *candidates, const char *typed) {
    const char *slash = strrchr(typed, '/');
    const char *begin = slash ? slash + 1 : typed;
    char folder[PATH_MAX], path[PATH_MAX + NAME_MAX + sizeof "/"];
    snprintf(folder, sizeof folder, "%.*s", static_cast<int>(begin - typed), typed);
    DIR *entries = opendir(*folder ? folder : ".");
    for (const dirent *entry = nullptr; entries && (entry = readdir(entries));) {
        struct stat found;
        bool hidden = entry->d_name[0] == '.' && *begin != '.';
        int length = snprintf(path, sizeof path, "%s%s", folder, entry->d_name);
        if (hidden || has_control_character(entry->d_name) || strncmp(entry->d_name, begin, strlen(begin)) != 0)
            continue;
        bool is_folder = stat(path, &found) == 0 && S_ISDIR(found.st_mode);
        snprintf(path + length, 2, "%s", is_folder ? "/" : "");
        value *candidate = add_object(candidates, nullptr);
        add_string(candidate, "word", path);
        add_string(candidate, "description", "");
    }
    if (entries)
        closedir(entries);
}

// Puts in what is certain; shows the candidates when that is nothing more than what is there.
static unsigned char complete_word(EditLine *editor, FILE *out, const line_words *split, const value *candidates) {
    const char *typed = split->in_word ? split->words[split->count - 1] : "";
    char word[LINE_LENGTH_MAX];
    bool only_one = !candidates->first->next;
    size_t common = common_length(candidates);
    snprintf(word, sizeof word, "%.*s", static_cast<int>(common), word_of(candidates->first));
    bool goes_on = strlen(word) > 0 && strchr("=/", word[strlen(word) - 1]);
    if (common < strlen(typed) || (!only_one && strcmp(word, typed) == 0)) {
        list_candidates(out, candidates);
        return CC_REDISPLAY;
    }
    replace_word(editor, split, word, only_one && !goes_on);
    return CC_REFRESH;
}

unsigned char complete_typed_line(EditLine *editor, const client_session *session) {
    const LineInfo *line = el_line(editor);
    line_words split;
    char problem[PROBLEM_SIZE];
    if (!split_line(line->buffer, static_cast<size_t>(line->cursor - line->buffer), &split, problem) && !split.open)
        return CC_ERROR;
    client_session own = *session;
    own.origin.source = line_source::SHELL;
    value *answer = complete_line(&own, &split);
    value *candidates = answer->first;
    const value *files = find_member(answer, "files");
    const value *hint = find_member(answer, "hint");
    const char *typed = split.in_word ? split.words[split.count - 1] : "";
    if (files->kind == value_kind::TEXT && files->length == 0)
        add_files(candidates, typed);
    unsigned char outcome = CC_ERROR;
    if (candidates->first) {
        outcome = complete_word(editor, session->out, &split, candidates);
    } else if (hint->kind == value_kind::TEXT) {
        fprintf(session->out, "\n%s\n", hint->text);
        fflush(session->out);
        outcome = CC_REDISPLAY;
    }
    free_value(answer);
    return outcome;
}
