#include "client/shell_texts.h"

#include <string.h>

#define SHELL(procedure, argument, place, times) {#procedure, #argument, shell_place::place, shell_times::times},
const shell_row shell_rows[] = {
#include "server/meanings.def"
};
const size_t shell_row_count = sizeof shell_rows / sizeof *shell_rows;

// What a shell obeys in either place. Braces and the tilde are obeyed by some shells and in some places only: nobody
// should have to know which. No setting can have a line break, which is none to a shell in quotes.
constexpr const char QUOTED_CHARACTERS[] = "\"$`\\\n";
constexpr const char BARE_CHARACTERS[] = "\"$`\\\n \t'&;|<>()*?[]{}#~";

static const char *characters_of(const shell_row *row) {
    switch (row->place) {
        case shell_place::QUOTED:
            return QUOTED_CHARACTERS;
        case shell_place::BARE:
            return BARE_CHARACTERS;
    }
    return "";
}

const shell_row *find_shell_row(const procedure_row *row, const char *argument) {
    for (const shell_row &shell : shell_rows)
        if (strcmp(shell.procedure, row->name) == 0 && strcmp(shell.argument, argument) == 0)
            return &shell;
    return nullptr;
}

// Whether a backslash stands at `c` and keeps what is behind it from the shell. A line break would only get lost there.
// In front of anything else a backslash is not taken for harmless: the server leaves characters out of some texts, and
// then it might stand in front of another.
static bool protects(const shell_row *row, const char *c) {
    return *c == '\\' && c[1] && c[1] != '\n' && row->times == shell_times::ONCE && strchr(characters_of(row), c[1]);
}

const char *find_shell_character(const shell_row *row, const char *text) {
    const char *c = text;
    while (*c) {
        if (protects(row, c))
            c += 2;
        else if (strchr(characters_of(row), *c))
            return c;
        else
            c++;
    }
    return nullptr;
}

// What is to be said of a character, and what is to be done about it.
static const char *name_of(char character, char name[2]) {
    if (character == '\t')
        return "a tab";
    if (character == ' ')
        return "a blank";
    snprintf(name, 2, "%c", character);
    return name;
}

static const char *advice_for(const shell_row *row) {
    switch (row->times) {
        case shell_times::ONCE:
            return "; put a backslash in front of it, or send it as it stands with --shell-text";
        case shell_times::AGAIN:
            return ", now or with the next change of the list; --shell-text sends it all the same";
    }
    return "";
}

static void describe_shell_character(const shell_row *row, char character, char problem[PROBLEM_SIZE]) {
    char name[2];
    if (character == '\n')
        snprintf(problem, PROBLEM_SIZE,
                 "<%s> has a line break in it, which no setting can have; --shell-text sends it all the same",
                 row->argument);
    else
        snprintf(problem, PROBLEM_SIZE, "<%s> has %s in it, which the server's shell would obey%s", row->argument,
                 name_of(character, name), advice_for(row));
}

bool check_shell_texts(const procedure_row *row, const call_arguments *arguments, char problem[PROBLEM_SIZE]) {
    for (size_t i = 0; i < arguments->count; i++) {
        const shell_row *shell = find_shell_row(row, row->arguments[i].name);
        const char *found = shell ? find_shell_character(shell, arguments->values[i].text) : nullptr;
        if (!found)
            continue;
        describe_shell_character(shell, *found, problem);
        return false;
    }
    return true;
}

static const char *characters_text(shell_place place) {
    switch (place) {
        case shell_place::QUOTED:
            return "\" $ ` \\";
        case shell_place::BARE:
            return "blanks, tabs, \" $ ` \\ ' & ; | < > ( ) * ? [ ] { } # ~";
    }
    return "";
}

static const char *place_text(shell_place place) {
    switch (place) {
        case shell_place::QUOTED:
            return "between double quotes";
        case shell_place::BARE:
            return "as a bare word";
    }
    return "";
}

void print_shell_row(FILE *out, const shell_row *row) {
    fprintf(out, "reaches the server's shell %s: ", place_text(row->place));
    switch (row->times) {
        case shell_times::ONCE:
            fprintf(out, "%s need a backslash in front; leave out line breaks", characters_text(row->place));
            break;
        case shell_times::AGAIN:
            fprintf(out, "leave out %s and line breaks", characters_text(row->place));
            break;
    }
}

void add_shell_row(value *to, const shell_row *row) {
    if (!row) {
        add_nothing(to, "shell");
        return;
    }
    value *shell = add_object(to, "shell");
    add_string(shell, "place", row->place == shell_place::QUOTED ? "quoted" : "bare");
    add_boolean(shell, "backslash", row->times == shell_times::ONCE);
}
