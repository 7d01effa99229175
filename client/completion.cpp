#include "client/completion.h"

#include <ctype.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "client/ask.h"
#include "client/commands.h"
#include "client/help.h"
#include "client/names.h"
#include "client/options.h"
#include "client/record_fields.h"
#include "client/utf8.h"

// The indices that the VAPs of the gateway have; whether there are so many of them makes no difference to the server.
constexpr int VAP_INDEX_MAX = 16;

// More than an SSID has; what a server may say beyond that is cut.
constexpr size_t SSID_TEXT_SIZE = 128;

// A person who presses TAB waits no longer.
constexpr int VAP_SECONDS = 1;

struct walk {
    client_session *session;
    const char *typed;         // the last word
    const char *server;        // that the words name, else nullptr
    const procedure_row *row;  // the operation in the words, nullptr before it
    value *answer;
    value *candidates;
};

// `before` stands before the word in the candidate: --output=json has "--output=" there.
static bool is_candidate(const walk *state, const char *before, const char *word) {
    size_t length = strlen(before);
    size_t typed = strlen(state->typed);
    if (strncasecmp(state->typed, before, typed < length ? typed : length) != 0)
        return false;
    return typed <= length || strncasecmp(state->typed + length, word, typed - length) == 0;
}

static void add_candidate(walk *state, const char *before, const char *word, const char *description) {
    char whole[PROBLEM_SIZE];
    if (!is_candidate(state, before, word))
        return;
    snprintf(whole, sizeof whole, "%s%s", before, word);
    value *candidate = add_object(state->candidates, nullptr);
    add_string(candidate, "word", whole);
    add_string(candidate, "description", description);
}

// The spelling in which an operation's name is given: as a person has begun it.
struct name_style {
    bool prefix;     // wlan stands before it
    char separator;  // between words, '\0' for camel case
};

static name_style style_of(const char *typed) {
    constexpr char PREFIX[] = "wlan";
    name_style style = {strncasecmp(typed, PREFIX, sizeof PREFIX - 1) == 0, '\0'};
    size_t separated = strcspn(typed, "_-");
    style.separator = typed[separated];
    if (style.prefix && strlen(typed) == sizeof PREFIX - 1)
        style.separator = '_';
    return style;
}

static void styled_name(const procedure_row *row, name_style style, char name[OPERATION_NAME_SIZE + 1]) {
    char camel[OPERATION_NAME_SIZE];
    operation_name(row, camel);
    const char *full = row->name;  // wlan_get_ssid
    size_t prefix = strcspn(full, "_");
    if (!style.separator && !style.prefix) {
        snprintf(name, OPERATION_NAME_SIZE, "%s", camel);
    } else if (!style.separator) {
        snprintf(name, OPERATION_NAME_SIZE + 1, "%.*s%s", static_cast<int>(prefix), full, camel);
        name[prefix] = static_cast<char>(toupper(static_cast<unsigned char>(name[prefix])));
    } else {
        snprintf(name, OPERATION_NAME_SIZE, "%s", style.prefix ? full : full + prefix + 1);
        for (char *c = name; *c; c++)
            *c = *c == '_' ? style.separator : *c;
    }
}

static void add_operations(walk *state, const char *before) {
    size_t length = strlen(before);
    name_style style = style_of(strlen(state->typed) < length ? "" : state->typed + length);
    char name[OPERATION_NAME_SIZE + 1];
    for (size_t i = 0; i < procedure_row_count; i++) {
        styled_name(&procedure_rows[i], style, name);
        if (!find_command(name))  // which carries out the operation of its name
            add_candidate(state, before, name, procedure_rows[i].summary);
    }
}

static void add_commands(walk *state, const char *before) {
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            add_candidate(state, before, command_rows[i].name, command_rows[i].summary);
    if (state->session->origin.source == line_source::SHELL)
        add_candidate(state, before, "exit", "end the shell");
}

static void add_subjects(walk *state, const char *before) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        bool again = false;
        for (size_t earlier = 0; earlier < i && !again; earlier++)
            again = strcmp(procedure_rows[earlier].subject, procedure_rows[i].subject) == 0;
        if (!again)
            add_candidate(state, before, procedure_rows[i].subject, "");
    }
}

static void add_choices(walk *state, const char *before, word_kind kind) {
    word_choices choices = choices_of(kind);
    for (size_t i = 0; i < choices.count; i++)
        add_candidate(state, before, choices.rows[i].word, choices.rows[i].summary);
}

static void add_record_fields(walk *state, const char *before, const record_row *record) {
    for (size_t i = 0; i < record->field_count; i++) {
        if (record->fields[i].kind == field_kind::PADDING)
            continue;
        add_candidate(state, before, record->fields[i].name, record->fields[i].unit);
        if (record->fields[i].record)
            add_record_fields(state, before, record->fields[i].record);
    }
}

// The names in the result of the operation that stands before the option.
static void add_fields(walk *state, const char *before) {
    if (!state->row)
        return;
    const result_row *result = &state->row->result;
    for (size_t i = 0; i < result->output_count; i++)
        add_candidate(state, before, result->outputs[i].name, "");
    const record_row *record = *result->type ? find_record(result->type) : nullptr;
    if (record)
        add_record_fields(state, before, record);
    else if (*result->name)
        add_candidate(state, before, result->name, "");
}

static void add_hint(walk *state, const char *what, const char *accepted) {
    char hint[PROBLEM_SIZE];
    snprintf(hint, sizeof hint, "%s%s%s", what, *accepted ? ": " : "", accepted);
    add_string(state->answer, "hint", hint);
}

// One VAP as the process that asks for it tells it. Smaller than what a pipe takes as one piece.
struct vap_message {
    int index;
    char ssid[SSID_TEXT_SIZE];
};

static void tell_ssids(client_session *session, const char *server, int to) {
    call_endpoint endpoint = session->connection->endpoint;
    if (server)
        endpoint.address = server;
    server_connection connection = new_connection(&endpoint);
    client_session own = *session;
    own.connection = &connection;
    own.settings.timeout_seconds = VAP_SECONDS;
    for (int index = 1; index <= VAP_INDEX_MAX; index++) {
        vap_message message = {index, ""};
        client_exit_status status = ask_text(&own, PROC_wlan_get_ssid, index, message.ssid, sizeof message.ssid);
        bool answered = status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_FAILURE;
        if (!answered || write(to, &message, sizeof message) != sizeof message)
            break;
    }
}

static int milliseconds_until(const timespec *end) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    time_t seconds = end->tv_sec - now.tv_sec;
    long nanoseconds = end->tv_nsec - now.tv_nsec;
    long milliseconds = static_cast<long>(seconds) * 1000 + nanoseconds / 1000000;
    return milliseconds > 0 ? static_cast<int>(milliseconds) : 0;
}

static void hear_ssids(int from, char (*ssids)[SSID_TEXT_SIZE]) {
    timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += VAP_SECONDS;
    pollfd waiting = {from, POLLIN, 0};
    for (;;) {
        int ready = poll(&waiting, 1, milliseconds_until(&end));
        if (ready < 0 && errno == EINTR)
            continue;
        vap_message message;
        if (ready <= 0 || read(from, &message, sizeof message) != sizeof message)
            return;
        snprintf(ssids[message.index - 1], SSID_TEXT_SIZE, "%s", message.ssid);
    }
}

// Looking up a name and calling have limits of their own, which add up to more than a second: so a process does both
// that can be ended at any time.
static void find_ssids(client_session *session, const char *server, char (*ssids)[SSID_TEXT_SIZE]) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        tell_ssids(session, server, ends[1]);
        _exit(0);
    }
    close(ends[1]);
    if (child > 0) {
        hear_ssids(ends[0], ssids);
        kill(child, SIGKILL);
        while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    close(ends[0]);
}

// An SSID that a terminal and a line can have: a question mark for each byte that they cannot.
static void make_printable(char *text) {
    size_t length = strlen(text), used = 0;
    for (size_t at = 0; at < length;) {
        size_t character = utf8_length(text + at, length - at);
        bool is_shown = character > 0 && !is_control_character(text + at, length - at);
        if (!is_shown)
            text[used++] = '?';
        for (size_t i = 0; is_shown && i < character; i++)
            text[used++] = text[at + i];
        at += character > 0 ? character : 1;
    }
    text[used] = '\0';
}

static void add_vaps(walk *state, const char *before) {
    char ssids[VAP_INDEX_MAX][SSID_TEXT_SIZE] = {};
    char number[sizeof "-2147483648"];
    bool wanted = false;
    for (int index = 1; index <= VAP_INDEX_MAX && !wanted; index++) {
        snprintf(number, sizeof number, "%d", index);
        wanted = is_candidate(state, before, number);
    }
    if (wanted)
        find_ssids(state->session, state->server, ssids);
    for (int index = 1; index <= VAP_INDEX_MAX; index++) {
        snprintf(number, sizeof number, "%d", index);
        make_printable(ssids[index - 1]);
        add_candidate(state, before, number, ssids[index - 1]);
    }
}

// `name` is what the word is called: an option's value, an operation's argument.
static void add_kind(walk *state, word_kind kind, const char *before, const char *name, const char *accepted) {
    switch (kind) {
        case word_kind::NONE:
        case word_kind::COMMAND_LINE:
        case word_kind::RAW_WORDS:
            break;
        case word_kind::NUMBER:
        case word_kind::TEXT:
            add_hint(state, name, accepted);
            break;
        case word_kind::FILE_NAME:
            add_string(state->answer, "files", before);
            break;
        case word_kind::VAP:
            add_vaps(state, before);
            break;
        case word_kind::OPERATION:
            add_operations(state, before);
            break;
        case word_kind::SUBJECT:
            add_subjects(state, before);
            break;
        case word_kind::ANY_COMMAND:
            add_commands(state, before);
            add_operations(state, before);
            break;
        case word_kind::FORMAT:
        case word_kind::WHEN:
            add_choices(state, before, kind);
            break;
        case word_kind::FIELD:
            add_fields(state, before);
            break;
    }
}

static void add_option_value(walk *state, const option_row *option, const char *before) {
    add_kind(state, option->value, before, option->value_name, option->summary);
}

static const option_row *find_letter(const command_row *own, char letter) {
    for (size_t i = 0; i < global_option_count; i++)
        if (global_options[i].letter == letter)
            return &global_options[i];
    for (size_t i = 0; own && i < own->option_count; i++)
        if (own->options[i].letter == letter)
            return &own->options[i];
    return nullptr;
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
        const option_row *option = find_letter(own, *letter);
        if (option && option->value_name)
            return {option, letter[1] ? letter + 1 : nullptr};
    }
    return {nullptr, nullptr};
}

static void add_options(walk *state, const option_row *rows, size_t count) {
    for (size_t i = 0; i < count; i++) {
        const char letter[] = {rows[i].letter, '\0'};
        add_candidate(state, "--", rows[i].name, rows[i].summary);
        if (rows[i].letter && strlen(state->typed) == 2)
            add_candidate(state, "-", letter, rows[i].summary);
    }
}

// The last word is an option: its name, or its value behind a = or a letter.
static void complete_option(walk *state, const command_row *own) {
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
static bool pass_option(walk *state, const command_row *own, size_t count, char *const *words, size_t *at) {
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

static void add_argument(walk *state, const argument_row *argument) {
    char name[OPERATION_NAME_SIZE];
    switch (argument->kind) {
        case argument_kind::VAP:
            add_vaps(state, "");
            return;
        case argument_kind::BOOL:
            add_candidate(state, "", "on", argument->name);
            add_candidate(state, "", "off", argument->name);
            return;
        case argument_kind::INT:
        case argument_kind::IGNORED:
        case argument_kind::UINT:
        case argument_kind::USHORT:
        case argument_kind::TEXT:
            snprintf(name, sizeof name, "<%s>", argument->name);
            add_hint(state, name, accepted_text(argument->kind));
            return;
    }
}

// The words behind the name of an operation: as many as it has arguments are arguments, options stand behind them.
static void complete_operation(walk *state, size_t count, char *const *words) {
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

static void complete_name_and_words(walk *state, size_t count, char *const *words);

// The words behind the name of a command.
static void complete_command(walk *state, const command_row *row, size_t count, char *const *words) {
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

static void complete_name_and_words(walk *state, size_t count, char *const *words) {
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

static void complete_all(walk *state, size_t count, char *const *words) {
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
    walk state = {session, count > 0 ? words[count - 1] : "", nullptr, nullptr, answer, add_list(answer, "candidates")};
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
