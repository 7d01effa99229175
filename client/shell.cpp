#include "client/shell.h"

#include <dirent.h>
#include <errno.h>
#include <histedit.h>
#include <limits.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "client/batch.h"
#include "client/commands.h"
#include "client/completion.h"
#include "client/shell_history.h"
#include "client/words.h"

// As many candidates as fit a screen with what was there before.
constexpr size_t LISTED_MAX = 60;

struct shell {
    client_session *session;
    EditLine *editor;
    History *history;
    char history_file[PATH_MAX];  // "" for none
    bool cancelled;               // the line that was being typed
    client_exit_status status;    // of the last line
};

static char *prompt(EditLine *) {
    static char text[] = "wlan> ";  // libedit wants one that it could change
    return text;
}

static shell *shell_of(EditLine *editor) {
    void *data = nullptr;
    el_get(editor, EL_CLIENTDATA, &data);
    return static_cast<shell *>(data);
}

// Ctrl-C comes as a character while a line is edited: a signal would take the terminal out of libedit's hands.
static unsigned char cancel_line(EditLine *editor, int) {
    shell_of(editor)->cancelled = true;
    return CC_NEWLINE;
}

static bool is_continuation(char c) {
    return (c & 0xc0) == 0x80;
}

static int count_characters(const char *text, size_t length) {
    int count = 0;
    for (size_t i = 0; i < length; i++)
        count += !is_continuation(text[i]);
    return count;
}

// Appends a character as it has to be typed: `quote` is the quote that it stands in, '\0' for none.
static void append_quoted(char *text, size_t size, char c, char quote) {
    bool escaped = quote ? quote == '"' && strchr("\"\\$`", c) : strchr(" \t'\"\\#", c) != nullptr;
    size_t length = strlen(text);
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
        if (hidden || strncmp(entry->d_name, begin, strlen(begin)) != 0)
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
static unsigned char complete_typed(EditLine *editor, const line_words *split, const value *candidates) {
    const char *typed = split->in_word ? split->words[split->count - 1] : "";
    char word[PROBLEM_SIZE];
    bool only_one = !candidates->first->next;
    size_t common = common_length(candidates);
    snprintf(word, sizeof word, "%.*s", static_cast<int>(common), word_of(candidates->first));
    bool goes_on = strlen(word) > 0 && strchr("=/", word[strlen(word) - 1]);
    if (common < strlen(typed) || (!only_one && strcmp(word, typed) == 0)) {
        list_candidates(shell_of(editor)->session->out, candidates);
        return CC_REDISPLAY;
    }
    replace_word(editor, split, word, only_one && !goes_on);
    return CC_REFRESH;
}

static unsigned char complete_here(EditLine *editor, int) {
    const LineInfo *line = el_line(editor);
    client_session *session = shell_of(editor)->session;
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
        outcome = complete_typed(editor, &split, candidates);
    } else if (hint->kind == value_kind::TEXT) {
        fprintf(session->out, "\n%s\n", hint->text);
        fflush(session->out);
        outcome = CC_REDISPLAY;
    }
    free_value(answer);
    return outcome;
}

static bool open_editor(shell *state) {
    state->editor = el_init("vlk_rpc_wlan_config_client", stdin, state->session->out, state->session->errors);
    state->history = history_init();
    if (!state->editor || !state->history)
        return false;
    HistEvent event;
    history(state->history, &event, H_SETSIZE, static_cast<int>(HISTORY_LINES_MAX));
    history(state->history, &event, H_SETUNIQUE, 1);
    el_set(state->editor, EL_CLIENTDATA, state);
    el_set(state->editor, EL_PROMPT, prompt);
    el_set(state->editor, EL_EDITOR, "emacs");
    el_set(state->editor, EL_HIST, history, state->history);
    // Wide names, of which libedit makes no copies that it never frees.
    el_wset(state->editor, EL_ADDFN, L"client-complete", L"complete the word", complete_here);
    el_wset(state->editor, EL_ADDFN, L"client-cancel", L"give the line up", cancel_line);
    el_set(state->editor, EL_BIND, "^I", "client-complete", nullptr);
    el_set(state->editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
    el_source(state->editor, nullptr);
    el_set(state->editor, EL_SETTY, "-d", "-isig", nullptr);
    el_set(state->editor, EL_BIND, "^C", "client-cancel", nullptr);
    // Signals that end or stop the shell find the terminal as it was before.
    el_set(state->editor, EL_SIGNAL, 1);
    return true;
}

static void close_editor(const shell *state) {
    if (state->editor)
        el_end(state->editor);
    if (state->history)
        history_end(state->history);
}

static void remember(void *receiver, const char *line) {
    const shell *state = static_cast<const shell *>(receiver);
    HistEvent event;
    history(state->history, &event, H_ENTER, line);
}

// Ctrl-C: is there to be seen, and for the process of a line that is running.
static volatile sig_atomic_t interrupted;
static volatile sig_atomic_t running;

static void take_interrupt(int) {
    interrupted = 1;
    if (running > 0)
        kill(running, SIGINT);
}

// Between the line's end and its process a Ctrl-C must be lost as little as while the process runs.
static void set_interrupts(int how) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigprocmask(how, &signals, nullptr);
}

static client_exit_status complain_of_interrupt(client_session *session) {
    fputs("\ninterrupted; the server may still carry out what it was asked for\n", session->errors);
    fflush(session->errors);
    return EXIT_STATUS_TIMED_OUT;
}

// What a line's process ended with. Ctrl-C ended the wait, not what the server does.
static client_exit_status status_of(client_session *session, int ended) {
    if (WIFEXITED(ended))
        return static_cast<client_exit_status>(WEXITSTATUS(ended));
    if (WTERMSIG(ended) == SIGINT)
        return complain_of_interrupt(session);
    return complain(session, EXIT_STATUS_LOCAL, "ended by signal %d", WTERMSIG(ended));
}

[[noreturn]] static void run_in_child(client_session *session, const line_words *split, pid_t parent) {
    signal(SIGINT, SIG_DFL);
    set_interrupts(SIG_UNBLOCK);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent)
        _exit(EXIT_STATUS_LOCAL);
    client_exit_status status = run_line(session, split->count, const_cast<char **>(split->words));
    bool written = fflush(session->out) == 0;
    _exit(status == EXIT_STATUS_SUCCESS && !written ? EXIT_STATUS_LOCAL : status);
}

static client_exit_status run_split(client_session *session, const line_words *split) {
    fflush(session->out);
    set_interrupts(SIG_BLOCK);
    pid_t parent = getpid(), child = interrupted ? 0 : fork();
    if (child == 0 && !interrupted)
        run_in_child(session, split, parent);
    running = child;
    set_interrupts(SIG_UNBLOCK);
    if (child == 0)
        return complain_of_interrupt(session);
    int ended = 0;
    pid_t waited = child;
    while (child > 0 && (waited = waitpid(child, &ended, 0)) < 0 && errno == EINTR) {
    }
    running = 0;
    if (waited < 0)
        return complain(session, EXIT_STATUS_LOCAL, "cannot start a process for the line: %s", strerror(errno));
    return status_of(session, ended);
}

static bool is_end(const line_words *split) {
    return split->count == 1 && (strcmp(split->words[0], "exit") == 0 || strcmp(split->words[0], "quit") == 0);
}

// False when the line ends the shell.
static bool take_line(shell *state, const char *text) {
    client_session one = *state->session;
    one.speaker = nullptr;
    one.origin = {line_source::SHELL, nullptr, 0, nullptr};
    line_words split;
    char problem[PROBLEM_SIZE];
    bool is_split = split_line(text, strlen(text), &split, problem);
    if (is_split && split.count == 0)
        return true;
    if (is_split && is_end(&split))
        return false;
    remember(state, text);
    if (*state->history_file && may_be_kept(&split))
        keep_line(state->history_file, text);
    state->status = is_split ? run_split(&one, &split) : complain(&one, EXIT_STATUS_USAGE, "%s", problem);
    return true;
}

static void set_interrupt_handler(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(SIGINT, &action, nullptr);
}

// While a line is edited Ctrl-C is a character, and signals from elsewhere are of no effect: libedit would stop editing
// without saying so.
static const char *edit_line(EditLine *editor, int *length) {
    set_interrupts(SIG_BLOCK);
    el_set(editor, EL_PREP_TERM, 1);  // before the prompt, at which a person may type
    const char *line = el_gets(editor, length);
    set_interrupt_handler(SIG_IGN);  // forgets those that came meanwhile
    interrupted = 0;
    set_interrupt_handler(take_interrupt);
    set_interrupts(SIG_UNBLOCK);
    return line;
}

static void read_lines(shell *state) {
    for (;;) {
        int length = 0;
        state->cancelled = false;
        const char *line = edit_line(state->editor, &length);
        if (state->cancelled) {
            fputs("^C\n", state->session->out);
            fflush(state->session->out);
            continue;
        }
        if (!line || length <= 0)
            break;
        char text[LINE_LENGTH_MAX + 2];
        int taken = static_cast<int>(strcspn(line, "\n"));
        snprintf(text, sizeof text, "%.*s", taken, line);
        if (!take_line(state, text))
            return;
    }
    fputs("\n", state->session->out);  // behind the prompt at which the input ended
}

client_exit_status run_shell(client_session *session, const command_line *) {
    if (session->origin.source != line_source::NONE)
        return complain(session, EXIT_STATUS_USAGE, "this is already a shell or a batch");
    if (!isatty(STDIN_FILENO)) {
        const batch_options options = {true, false, true};
        return run_lines(session, stdin, "stdin", &options);
    }
    shell state = {session, nullptr, nullptr, "", false, EXIT_STATUS_SUCCESS};
    if (!history_path(state.history_file, sizeof state.history_file))
        *state.history_file = '\0';
    if (!open_editor(&state)) {
        close_editor(&state);
        return complain(session, EXIT_STATUS_LOCAL, "the terminal cannot be used");
    }
    if (*state.history_file)
        load_history(state.history_file, remember, &state);
    read_lines(&state);
    set_interrupt_handler(SIG_DFL);
    close_editor(&state);
    return state.status;
}
