#include "client/shell.h"

#include <errno.h>
#include <histedit.h>
#include <limits.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "client/batch.h"
#include "client/commands.h"
#include "client/shell_completion.h"
#include "client/shell_history.h"
#include "client/words.h"

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

static unsigned char complete_here(EditLine *editor, int) {
    return complete_typed_line(editor, shell_of(editor)->session);
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
    if (is_split && says_end(&split))
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
    if (session->is_watched)
        return complain(session, EXIT_STATUS_USAGE, "a shell cannot be watched");
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
