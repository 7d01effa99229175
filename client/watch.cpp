#include "client/watch.h"

#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "client/commands.h"
#include "client/options.h"
#include "client/waiting.h"
#include "client/watch_output.h"

constexpr int64_t DEFAULT_INTERVAL_MS = 2000;

// The server carries out one call at a time: whoever asks more often than this keeps others from it.
constexpr int64_t LEAST_INTERVAL_MS = 100;
constexpr int64_t MOST_INTERVAL_MS = int64_t{86400} * 1000;

constexpr int DECIMALS = 3;

struct watch_settings {
    int64_t interval_ms;
    int64_t count;  // of runs, 0 for no end
    bool changes;
};

bool parse_interval(const char *word, int64_t *milliseconds) {
    int64_t parsed = 0;
    int decimals = -1;  // none before the point
    if (*word < '0' || *word > '9')
        return false;
    for (; *word && decimals < DECIMALS && parsed <= MOST_INTERVAL_MS; word++) {
        if (*word == '.' && decimals < 0)
            decimals = 0;
        else if (*word < '0' || *word > '9')
            return false;
        else {
            parsed = 10 * parsed + (*word - '0');
            decimals += decimals >= 0;
        }
    }
    for (int i = decimals < 0 ? 0 : decimals; i < DECIMALS; i++)
        parsed *= 10;
    if (*word || decimals == 0 || parsed < LEAST_INTERVAL_MS || parsed > MOST_INTERVAL_MS)
        return false;
    *milliseconds = parsed;
    return true;
}

// --- signals ---

// While a call is under way, or output goes into a pipe, there is nothing to be put in order: what was printed before
// has been flushed, and a frame for the terminal is printed with the signals held.
static void end_at_once(int) {
    _exit(EXIT_STATUS_SUCCESS);
}

static const int ENDING_SIGNALS[] = {SIGINT, SIGTERM};
constexpr size_t ENDING_SIGNAL_COUNT = sizeof ENDING_SIGNALS / sizeof *ENDING_SIGNALS;

struct signal_hold {
    sigset_t held;  // those of the ending signals that are not ignored
    sigset_t before;
    struct sigaction actions[ENDING_SIGNAL_COUNT];
};

static void take_signals(signal_hold *hold) {
    struct sigaction ending = {};
    ending.sa_handler = end_at_once;
    sigemptyset(&hold->held);
    for (size_t i = 0; i < ENDING_SIGNAL_COUNT; i++) {
        sigaction(ENDING_SIGNALS[i], nullptr, &hold->actions[i]);
        if (hold->actions[i].sa_handler == SIG_IGN)
            continue;
        sigaddset(&hold->held, ENDING_SIGNALS[i]);
        sigaction(ENDING_SIGNALS[i], &ending, nullptr);
    }
    sigprocmask(SIG_BLOCK, &hold->held, &hold->before);
}

static void give_signals_back(const signal_hold *hold) {
    for (size_t i = 0; i < ENDING_SIGNAL_COUNT; i++)
        sigaction(ENDING_SIGNALS[i], &hold->actions[i], nullptr);
    sigprocmask(SIG_SETMASK, &hold->before, nullptr);
}

// False when it was ended by one of the signals.
static bool pause_or_end(const signal_hold *hold, int64_t duration_ms) {
    int64_t end = clock_ms() + duration_ms;
    for (int64_t left = duration_ms; left > 0; left = end - clock_ms()) {
        const timespec time = {static_cast<time_t>(left / 1000), static_cast<long>(left % 1000) * 1000000};
        if (sigtimedwait(&hold->held, nullptr, &time) > 0)
            return false;
    }
    return true;
}

// --- one run ---

[[noreturn]] static void end_without_memory(client_session *session) {
    exit(complain(session, EXIT_STATUS_LOCAL, "out of memory"));
}

// The words are copied, since a run may put them into another order.
static client_exit_status run_copied_words(client_session *session, const command_line *line) {
    char **words = static_cast<char **>(calloc(line->word_count + 1, sizeof *words));
    if (!words)
        end_without_memory(session);
    memcpy(words, line->words, line->word_count * sizeof *words);
    client_exit_status status = run_words(session, static_cast<int>(line->word_count), words);
    free(words);
    return status;
}

static run_output run_once(client_session *session, const command_line *line) {
    run_output output = {};
    client_session one = *session;
    one.is_watched = true;
    one.input_taken = "only the first run of a watch would find something there";
    one.out = open_memstream(&output.out, &output.out_length);
    one.errors = open_memstream(&output.errors, &output.errors_length);
    if (!one.out || !one.errors)
        end_without_memory(session);
    output.status = run_copied_words(&one, line);
    bool complete = fclose(one.out) == 0;
    complete = fclose(one.errors) == 0 && complete;
    if (!complete)
        end_without_memory(session);
    return output;
}

static void free_output(run_output *output) {
    free(output->out);
    free(output->errors);
    *output = {};
}

static bool same_output(const run_output *one, const run_output *other) {
    return one->out && other->out && one->status == other->status && one->out_length == other->out_length &&
           one->errors_length == other->errors_length && memcmp(one->out, other->out, one->out_length) == 0 &&
           memcmp(one->errors, other->errors, one->errors_length) == 0;
}

// --- all runs ---

// Whoever interrupts a watch looks at a terminal, which must not be left in the middle of a sequence; a pipe may be
// full, and nobody should have to wait for its reader.
static void print_held(client_session *session, const signal_hold *hold, const command_line *line, const char *time,
                       const run_output *output, bool first) {
    if (!session->settings.terminal)
        sigprocmask(SIG_UNBLOCK, &hold->held, nullptr);
    print_output(session, line, time, output, first);
    sigprocmask(SIG_BLOCK, &hold->held, nullptr);
}

static run_output run_interruptibly(client_session *session, const signal_hold *hold, const command_line *line) {
    sigprocmask(SIG_UNBLOCK, &hold->held, nullptr);
    run_output output = run_once(session, line);
    sigprocmask(SIG_BLOCK, &hold->held, nullptr);
    return output;
}

// A command line that makes no sense now never will; every other failure may pass.
static bool goes_on(const client_session *session, const watch_settings *settings, client_exit_status status,
                    int64_t runs) {
    return status != EXIT_STATUS_USAGE && !ferror(session->out) && (settings->count == 0 || runs < settings->count);
}

static client_exit_status watch_words(client_session *session, const watch_settings *settings, const signal_hold *hold,
                                      const command_line *line) {
    run_output last = {};
    client_exit_status status = EXIT_STATUS_SUCCESS;
    bool interrupted = false;
    for (int64_t runs = 1; !interrupted; runs++) {
        char time[TIME_SIZE];
        format_time(time);
        run_output output = run_interruptibly(session, hold, line);
        status = output.status;
        if (!settings->changes || !same_output(&output, &last))
            print_held(session, hold, line, time, &output, runs == 1);
        free_output(&last);
        last = output;
        if (!goes_on(session, settings, status, runs))
            break;
        interrupted = !pause_or_end(hold, settings->interval_ms);
    }
    free_output(&last);
    return interrupted ? EXIT_STATUS_SUCCESS : status;
}

static bool parse_settings(client_session *session, const command_line *line, watch_settings *settings) {
    const char *interval = option_value(line, "interval");
    const char *count = option_value(line, "count");
    argument_value parsed = {};
    *settings = {DEFAULT_INTERVAL_MS, 0, option_value(line, "changes") != nullptr};
    if (interval && !parse_interval(interval, &settings->interval_ms)) {
        snprintf(session->problem, sizeof session->problem,
                 "--interval is \"%s\", but has to be a number of seconds from 0.1 to 86400", interval);
        return false;
    }
    // Parsing reads the word only.
    if (count && (!parse_argument(argument_kind::UINT, const_cast<char *>(count), &parsed) || parsed.number < 1)) {
        snprintf(session->problem, sizeof session->problem, "--count is \"%s\", but has to be a number from 1", count);
        return false;
    }
    settings->count = parsed.number;
    return true;
}

client_exit_status run_watch(client_session *session, const command_line *line) {
    watch_settings settings;
    if (!parse_settings(session, line, &settings))
        return complain_of_call(session, EXIT_STATUS_USAGE);
    if (session->is_watched)
        return complain(session, EXIT_STATUS_USAGE, "a watch cannot be watched");
    signal_hold hold;
    take_signals(&hold);
    client_exit_status status = watch_words(session, &settings, &hold, line);
    give_signals_back(&hold);
    return status;
}
