#include "client/completion.h"

#include <stdio.h>
#include <string.h>

#include "client/candidates.h"
#include "client/commands.h"
#include "client/help.h"
#include "client/names.h"
#include "client/options.h"

static void add_option_value(completion *state, const option_row *option, const char *before) {
    add_kind(state, option->value, before, option->value_name, option->summary);
}

// What an option word says: which option needs a value, and where in the word that begins; nullptr when the word is
// without one.
struct option_word {
    const option_row *valued;
    const char *value;  // nullptr when it is the next word
};

static option_word read_option(const command_row *own, const char *word) {
    if (strncmp(word, "--", 2) == 0) {
        size_t length = strcspn(word + 2, "=");
        const option_row *option = find_option(own, word + 2, length);
        if (!option || !option->value_name)
            return {nullptr, nullptr};
        return {option, word[2 + length] ? word + 2 + length + 1 : nullptr};
    }
    for (const char *letter = word + 1; *letter; letter++) {
        const option_row *option = find_option_letter(own, *letter);
        if (option && option->value_name)
            return {option, letter[1] ? letter + 1 : nullptr};
    }
    return {nullptr, nullptr};
}

// The last word is an option: its name, or its value behind a = or a letter.
static void complete_option(completion *state, const command_row *own) {
    option_word word = read_option(own, state->typed);
    if (word.valued && word.value) {
        char before[PROBLEM_SIZE];
        snprintf(before, sizeof before, "%.*s", static_cast<int>(word.value - state->typed), state->typed);
        add_option_value(state, word.valued, before);
        return;
    }
    if (own)
        add_options(state, own->options, own->option_count);
    add_options(state, global_options, global_option_count);
}

static bool looks_like_option(const char *word, bool is_last) {
    return *word == '-' && (word[1] || is_last);
}

// Goes over the option at words[*at] and its value. True when the last word was reached and completed.
static bool pass_option(completion *state, const command_row *own, size_t count, char *const *words, size_t *at) {
    if (*at + 1 == count) {
        complete_option(state, own);
        return true;
    }
    option_word word = read_option(own, words[*at]);
    bool is_next = word.valued && !word.value;
    if (is_next && *at + 2 == count) {
        add_option_value(state, word.valued, "");
        return true;
    }
    if (word.valued && strcmp(word.valued->name, "server") == 0)
        state->server = is_next ? words[*at + 1] : word.value;
    *at += is_next ? 2 : 1;
    return false;
}

// The words behind the name of an operation: as many as it has arguments are arguments, options stand behind them.
static void complete_operation(completion *state, size_t count, char *const *words) {
    state->row = find_operation(words[0]);
    if (!state->row)
        return;
    size_t taken = state->row->argument_count + 1;
    if (count <= taken) {
        const argument_row *argument = &state->row->arguments[count - 2];
        if (count == 2 && argument->kind != argument_kind::TEXT && *state->typed == '-')
            add_candidate(state, "--", "help", "what the operation does and takes");
        add_argument(state, argument);
        return;
    }
    for (size_t at = taken; at < count && looks_like_option(words[at], at + 1 == count);)
        if (pass_option(state, nullptr, count, words, &at))
            return;
}

static word_kind kind_at(const command_row *row, size_t place) {
    if (place >= row->words_most)
        return word_kind::NONE;
    size_t last = COMMAND_WORDS_MAX - 1;
    while (last > 0 && row->words[last] == word_kind::NONE)
        last--;
    return row->words[place < last ? place : last];
}

static void complete_name_and_words(completion *state, size_t count, char *const *words);

// The words behind the name of a command.
static void complete_command(completion *state, const command_row *row, size_t count, char *const *words) {
    bool only_words = false;
    size_t place = 0;
    for (size_t at = 1; at < count;) {
        bool is_last = at + 1 == count;
        if (!only_words && !is_last && strcmp(words[at], "--") == 0) {
            only_words = true;
            at++;
        } else if (!only_words && looks_like_option(words[at], is_last)) {
            if (pass_option(state, row, count, words, &at))
                return;
        } else if (kind_at(row, place) == word_kind::COMMAND_LINE) {
            complete_name_and_words(state, count - at, words + at);
            return;
        } else if (is_last) {
            add_kind(state, kind_at(row, place), "", row->synopsis, "");
            return;
        } else {
            place++;
            at++;
        }
    }
}

static void complete_name_and_words(completion *state, size_t count, char *const *words) {
    if (count == 1) {
        add_kind(state, word_kind::ANY_COMMAND, "", "", "");
        return;
    }
    const command_row *row = find_command(words[0]);
    if (row)
        complete_command(state, row, count, words);
    else
        complete_operation(state, count, words);
}

static void complete_all(completion *state, size_t count, char *const *words) {
    size_t at = 0;
    while (at < count && looks_like_option(words[at], at + 1 == count)) {
        bool ends_options = at + 1 < count && strcmp(words[at], "--") == 0;
        if (!ends_options && pass_option(state, nullptr, count, words, &at))
            return;
        at += ends_options;
        if (ends_options)
            break;
    }
    if (at < count)
        complete_name_and_words(state, count - at, words + at);
}

value *complete_words(client_session *session, size_t count, char *const *words) {
    value *answer = new_object();
    completion state = {session, count > 0 ? words[count - 1] : "", nullptr, nullptr,
                        answer,  add_list(answer, "candidates")};
    if (count > 0)
        complete_all(&state, count, words);
    if (!find_member(answer, "files"))
        add_nothing(answer, "files");
    if (!find_member(answer, "hint"))
        add_nothing(answer, "hint");
    return answer;
}

value *complete_line(client_session *session, const line_words *split) {
    char nothing[] = "";
    char *words[LINE_WORDS_MAX + 1];
    size_t count = 0;
    bool has_program = split->count > 0 && is_this_program(split->words[0]);
    for (size_t i = has_program; i < split->count; i++)
        words[count++] = split->words[i];
    bool names_program = has_program && split->count == 1 && split->in_word;
    if (!split->in_word && !split->in_comment)
        words[count++] = nothing;
    return complete_words(session, names_program || split->in_comment ? 0 : count, words);
}

static void print_marker(FILE *out, const char *marker, const value *shown) {
    if (shown->kind == value_kind::TEXT)
        fprintf(out, "\t%s\t%s\n", marker, shown->text);
}

static client_exit_status show_completion(client_session *session, value *answer) {
    if (session->settings.format == output_format::JSON)
        return show(session, answer);
    for (const value *one = find_member(answer, "candidates")->first; one; one = one->next)
        fprintf(session->out, "%s\t%s\n", find_member(one, "word")->text, find_member(one, "description")->text);
    print_marker(session->out, "files", find_member(answer, "files"));
    print_marker(session->out, "hint", find_member(answer, "hint"));
    free_value(answer);
    return EXIT_STATUS_SUCCESS;
}

client_exit_status run_complete(client_session *session, const command_line *line) {
    return show_completion(session, complete_words(session, line->word_count, line->words));
}

// The first word is the program under whatever name it was typed.
client_exit_status run_complete_line(client_session *session, const command_line *line) {
    line_words split;
    char problem[PROBLEM_SIZE], program[sizeof PROGRAM_NAME];
    const char *text = line->word_count > 0 ? line->words[0] : "";
    if (!split_line(text, strlen(text), &split, problem) && !split.open)
        split.count = 0;
    snprintf(program, sizeof program, "%s", PROGRAM_NAME);
    bool beyond_program = split.count > 1 || (split.count == 1 && !split.in_word);
    if (beyond_program)
        split.words[0] = program;
    return show_completion(session, beyond_program ? complete_line(session, &split) : complete_words(session, 0, {}));
}
