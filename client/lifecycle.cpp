#include "client/lifecycle.h"

#include <string.h>

#include "client/ask.h"
#include "client/commands.h"
#include "client/names.h"
#include "client/options.h"
#include "client/vaps.h"
#include "client/waiting.h"

// Loading may take a minute, a reconnect a quarter of one before its init begins, and a request may have to wait for
// another that runs.
constexpr int WAIT_SECONDS = 180;

constexpr int64_t LOOK_INTERVAL_MS = 1000;
constexpr int LOOKS_IN_A_ROW = 2;

// The last look begins when the waiting is over, and may take this long.
constexpr int64_t LAST_LOOK_MS = 2000;

// Large enough for the statuses, which are single words; a longer text is none of them.
constexpr size_t STATUS_SIZE = 32;

enum class driver_state { LOADED, UP, DOWN };

struct lifecycle_row {
    uint32_t procedure;
    driver_state goal;
    bool goes_down_first;  // before it is where it was sent
};

static const lifecycle_row LOAD = {PROC_wlan_load, driver_state::LOADED, false};
static const lifecycle_row INIT = {PROC_wlan_init, driver_state::UP, false};
static const lifecycle_row RESET = {PROC_wlan_reset, driver_state::DOWN, false};
static const lifecycle_row RECONNECT = {PROC_wlan_pci_reconnect, driver_state::UP, true};

struct followed_driver {
    client_session *session;
    int call_seconds;  // that the session allows a call
    time_limit limit;
    bool answers;  // the server, in the look of the moment
    bool cut;      // that look, because its time is over
    bool wanted_known;
    size_t wanted_count;
    int wanted[VAP_COUNT_MAX];  // VAPs that are switched on, on radios that are
    size_t late_count;
    int late[VAP_COUNT_MAX];  // VAPs that stood in the way when the last look was over
};

static const char *state_word(driver_state state) {
    switch (state) {
        case driver_state::LOADED:
            return "loaded";
        case driver_state::UP:
            return "up";
        case driver_state::DOWN:
            return "down";
    }
    return "";
}

// --- looking ---

// Without an answer the rest of a look is worth nothing, and the server is asked again at the next one: it may be busy
// with this very driver, or may just be started again.
static bool may_ask(followed_driver *driver) {
    driver->cut = driver->cut || clock_ms() > driver->limit.end + LAST_LOOK_MS;
    driver->session->settings.timeout_seconds = call_seconds(driver->call_seconds, &driver->limit);
    return driver->answers && !driver->cut;
}

static bool succeeded(followed_driver *driver, client_exit_status status) {
    driver->answers = status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_FAILURE;
    return status == EXIT_STATUS_SUCCESS;
}

static bool is_switched_on(followed_driver *driver, uint32_t procedure, int vap) {
    int64_t on = 0;
    return may_ask(driver) && succeeded(driver, ask_number(driver->session, procedure, vap, &on)) && on != 0;
}

static bool is_vap_up(followed_driver *driver, int vap) {
    char status[STATUS_SIZE] = "";
    return may_ask(driver) &&
           succeeded(driver, ask_text(driver->session, PROC_wlan_get_status, vap, status, sizeof status)) &&
           strcmp(status, "Up") == 0;
}

// A radio is there as soon as the driver is, whether any of its VAPs is up or not.
static bool is_loaded(followed_driver *driver) {
    int64_t streams;
    for (int radio = 0; radio < RADIO_COUNT; radio++)
        if (may_ask(driver) &&
            succeeded(driver, ask_number(driver->session, PROC_wlan_get_ht_tx_stream, first_vap_of(radio), &streams)))
            return true;
    return false;
}

static void look_what_is_wanted(followed_driver *driver) {
    driver->wanted_count = 0;
    for (int vap = 1; vap <= VAP_COUNT_MAX; vap++)
        if (is_switched_on(driver, PROC_wlan_get_enable, vap) &&
            is_switched_on(driver, PROC_wlan_get_radio_enabled, vap))
            driver->wanted[driver->wanted_count++] = vap;
    driver->wanted_known = driver->answers && !driver->cut;
}

static bool look_up(followed_driver *driver) {
    if (!driver->wanted_known)
        look_what_is_wanted(driver);
    if (driver->wanted_known && driver->wanted_count == 0)
        return is_loaded(driver);
    for (size_t i = 0; i < driver->wanted_count && driver->answers; i++)
        if (!is_vap_up(driver, driver->wanted[i]) && driver->answers && !driver->cut)
            driver->late[driver->late_count++] = driver->wanted[i];
    return driver->late_count == 0;
}

static bool look_down(followed_driver *driver) {
    bool loaded = is_loaded(driver);
    for (int vap = 1; vap <= VAP_COUNT_MAX && driver->answers; vap++)
        if (is_vap_up(driver, vap))
            driver->late[driver->late_count++] = vap;
    return !loaded && driver->late_count == 0;
}

static bool look(followed_driver *driver, driver_state goal) {
    bool reached = false;
    driver->answers = true;
    driver->cut = false;
    driver->late_count = 0;
    switch (goal) {
        case driver_state::LOADED:
            reached = is_loaded(driver);
            break;
        case driver_state::UP:
            reached = look_up(driver);
            break;
        case driver_state::DOWN:
            reached = look_down(driver);
            break;
    }
    return reached && driver->answers && !driver->cut;
}

// --- following ---

static void step(followed_driver *driver, progress_line *progress, driver_state goal) {
    int waited = seconds_waited(&driver->limit);
    const char *word = state_word(goal);
    if (!driver->answers)
        step_progress(progress, "waiting for the driver to be %s: %d s, the server does not answer", word, waited);
    else if (driver->late_count > 0)
        step_progress(progress, "waiting for the driver to be %s: %d s, %zu VAP%s to go", word, waited,
                      driver->late_count, driver->late_count == 1 ? "" : "s");
    else
        step_progress(progress, "waiting for the driver to be %s: %d s", word, waited);
}

// Whether the goal was seen so many times in a row before the limit was over.
static bool follow(followed_driver *driver, progress_line *progress, driver_state goal, int looks_in_a_row) {
    for (int seen = 0; seen < looks_in_a_row;) {
        if (left_ms(&driver->limit) == 0)
            return false;
        step(driver, progress, goal);
        pause_within(&driver->limit, LOOK_INTERVAL_MS);
        seen = look(driver, goal) ? seen + 1 : 0;
    }
    return true;
}

static void add_vaps(value *to, const char *name, size_t count, const int *vaps) {
    value *list = add_list(to, name);
    for (size_t i = 0; i < count; i++)
        add_number(list, nullptr, vaps[i]);
}

static client_exit_status show_goal(const followed_driver *driver, driver_state goal) {
    value *result = new_object();
    add_string(result, "state", state_word(goal));
    add_number(result, "waited", seconds_waited(&driver->limit));
    if (goal == driver_state::UP)
        add_vaps(result, "vaps_up", driver->wanted_count, driver->wanted);
    return show(driver->session, result);
}

// "VAP 1, VAP 9 not yet": what stood in the way, as the end of a sentence.
static void describe_delay(const followed_driver *driver, driver_state missed, char *text, size_t size) {
    size_t used = 0;
    *text = '\0';
    if (!driver->answers) {
        snprintf(text, size, ": the server does not answer");
        return;
    }
    for (size_t i = 0; i < driver->late_count && used < size; i++)
        used +=
            static_cast<size_t>(snprintf(text + used, size - used, "%s %d", i == 0 ? ": VAP" : ",", driver->late[i]));
    if (driver->late_count > 0 && used < size)
        snprintf(text + used, size - used, " %s", missed == driver_state::DOWN ? "still up" : "not up");
}

static client_exit_status complain_of_delay(const followed_driver *driver, driver_state missed, int wait_seconds) {
    char delay[PROBLEM_SIZE / 2], problem[PROBLEM_SIZE];
    value *answer = new_answer(driver->session);
    describe_delay(driver, missed, delay, sizeof delay);
    snprintf(problem, sizeof problem, "requested, but not %s within %d s%s", state_word(missed), wait_seconds, delay);
    add_vaps(answer, missed == driver_state::DOWN ? "vaps_up" : "vaps_down", driver->late_count, driver->late);
    return complain_in(driver->session, answer, EXIT_STATUS_TIMED_OUT, problem);
}

// The session is a copy: the time that each call may take is changed in it.
static client_exit_status follow_to_goal(client_session *session, const lifecycle_row *row, int wait_seconds) {
    client_session own = *session;
    followed_driver driver = {};
    driver.session = &own;
    driver.call_seconds = session->settings.timeout_seconds;
    driver.limit = begin_waiting(wait_seconds);
    driver.answers = true;
    progress_line progress = begin_progress(session);
    bool gone = !row->goes_down_first || follow(&driver, &progress, driver_state::DOWN, 1);
    bool reached = gone && follow(&driver, &progress, row->goal, LOOKS_IN_A_ROW);
    end_progress(&progress);
    if (reached)
        return show_goal(&driver, row->goal);
    return complain_of_delay(&driver, gone ? row->goal : driver_state::DOWN, wait_seconds);
}

// --- the commands ---

// Exactly what the operation does, since it is the operation that is carried out, under a name that no command has.
static client_exit_status run_as_operation(client_session *session, const procedure_row *operation, char *radio) {
    char name[OPERATION_NAME_SIZE];
    snprintf(name, sizeof name, "%s", operation->name);
    char *words[] = {name, radio};
    return run_words(session, 1 + static_cast<int>(operation->argument_count), words);
}

// A request that was not answered in time has been sent all the same, and is followed as well: a reconnect that has to
// cancel a load is answered when the driver's insertion is over.
static client_exit_status request(client_session *session, const procedure_row *operation, char *radio) {
    call_arguments arguments;
    wlan_config_result_data_t result;
    if (!parse_arguments(operation, operation->argument_count, &radio, &arguments, session->problem))
        return complain_of_call(session, EXIT_STATUS_USAGE);
    client_exit_status status = ask(session, operation, &arguments, &result);
    release_result(&result);
    if (status == EXIT_STATUS_SUCCESS || status == EXIT_STATUS_TIMED_OUT)
        return EXIT_STATUS_SUCCESS;
    return complain_of_call(session, status);
}

static client_exit_status run_lifecycle(client_session *session, const command_line *line, const lifecycle_row *row) {
    const procedure_row *operation = row_of(row->procedure);
    char any_radio[] = "0";  // the server does not look at it
    char *radio = line->word_count > 0 ? line->words[0] : any_radio;
    int wait_seconds;
    if (!seconds_option(line, "wait-for", WAIT_SECONDS, &wait_seconds, session->problem))
        return complain_of_call(session, EXIT_STATUS_USAGE);
    if (!option_value(line, "wait") && !option_value(line, "wait-for"))
        return run_as_operation(session, operation, radio);
    if (!can_show_many(session))
        return EXIT_STATUS_USAGE;
    client_exit_status status = request(session, operation, radio);
    return status == EXIT_STATUS_SUCCESS ? follow_to_goal(session, row, wait_seconds) : status;
}

client_exit_status run_load(client_session *session, const command_line *line) {
    return run_lifecycle(session, line, &LOAD);
}

client_exit_status run_init(client_session *session, const command_line *line) {
    return run_lifecycle(session, line, &INIT);
}

client_exit_status run_reset(client_session *session, const command_line *line) {
    return run_lifecycle(session, line, &RESET);
}

client_exit_status run_reconnect(client_session *session, const command_line *line) {
    return run_lifecycle(session, line, &RECONNECT);
}
