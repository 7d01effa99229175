#include "client/scan.h"

#include <langinfo.h>
#include <string.h>

#include "client/ask.h"
#include "client/options.h"
#include "client/render.h"
#include "client/results.h"
#include "client/vaps.h"
#include "client/waiting.h"
#include "server/records.h"

// What the driver answers when it is asked for the state of its survey. Every other number means that one is running,
// as far as anybody but the driver can tell.
constexpr int64_t SURVEY_COMPLETE = 3;
constexpr int64_t SURVEY_UNKNOWN = -1;  // it refuses to tell

// Surveys of all channels take from two to some ten seconds.
constexpr int WAIT_SECONDS = 30;

// A driver that has just been told to begin may still tell of the survey before: what it says is not believed before
// this has passed. The server's own diagnosis waits as long.
constexpr int64_t BEGINNING_MS = 1000;
constexpr int64_t POLL_MS = 250;

// The bars of a network at this strength and above. Below the last one a connection hardly holds.
constexpr int FOUR_BARS = -55;
constexpr int THREE_BARS = -65;
constexpr int TWO_BARS = -75;
constexpr int ONE_BAR = -85;

struct survey {
    int vap;
    int64_t status;        // as the driver tells it
    int64_t completed_ms;  // when this client saw that it is complete, -1 when it cannot know
    int64_t found;         // as the driver tells it: any number
    bool count_known;
    scan_table table;
};

int signal_bars(int rssi) {
    if (rssi >= FOUR_BARS)
        return 4;
    if (rssi >= THREE_BARS)
        return 3;
    if (rssi >= TWO_BARS)
        return 2;
    return rssi >= ONE_BAR ? 1 : 0;
}

const char *signal_drawing(int rssi) {
    static const char *const blocks[] = {"____", "▂___", "▂▄__", "▂▄▆_", "▂▄▆█"};
    static const char *const stars[] = {"____", "*___", "**__", "***_", "****"};
    bool utf8 = strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    return (utf8 ? blocks : stars)[signal_bars(rssi)];
}

// --- the survey ---

static client_exit_status ask_status(client_session *session, survey *made) {
    return ask_number(session, PROC_wlan_get_ap_scan_status, made->vap, &made->status);
}

// A survey that runs already is as good as one of our own: the radio of the VAP has one at a time. A refusal without
// one may come from a survey that has ended in between, which is what the second attempt is for.
static client_exit_status begin_survey(client_session *session, survey *made) {
    for (int attempt = 0; attempt < 2; attempt++) {
        client_exit_status begun = tell(session, PROC_wlan_ap_scan, made->vap);
        if (begun != EXIT_STATUS_FAILURE)
            return begun;
        client_exit_status asked = ask_status(session, made);
        if (asked != EXIT_STATUS_SUCCESS)
            return asked;
        if (made->status != SURVEY_COMPLETE && made->status != SURVEY_UNKNOWN) {
            remark(session, "A survey is running already; waiting for that one.\n");
            return EXIT_STATUS_SUCCESS;
        }
    }
    snprintf(session->problem, sizeof session->problem, "the driver refuses a survey on VAP %d: is it up?", made->vap);
    return EXIT_STATUS_FAILURE;
}

// A server that is busy with something else does not end the survey.
static client_exit_status poll_survey(client_session *session, const time_limit *limit, survey *made) {
    int patience = session->settings.timeout_seconds;
    session->settings.timeout_seconds = call_seconds(patience, limit);
    client_exit_status status = ask_status(session, made);
    session->settings.timeout_seconds = patience;
    if (status == EXIT_STATUS_TIMED_OUT)
        return EXIT_STATUS_SUCCESS;
    if (status != EXIT_STATUS_SUCCESS || made->status != SURVEY_UNKNOWN)
        return status;
    snprintf(session->problem, sizeof session->problem,
             "the driver no longer tells of its survey: has VAP %d been taken down?", made->vap);
    return EXIT_STATUS_FAILURE;
}

static client_exit_status follow_survey(client_session *session, int wait_seconds, survey *made) {
    time_limit limit = begin_waiting(wait_seconds);
    progress_line progress = begin_progress(session);
    client_exit_status status = EXIT_STATUS_SUCCESS;
    int64_t pause = BEGINNING_MS;
    made->status = 0;
    do {
        step_progress(&progress, "surveying all channels of VAP %d: %d s", made->vap, seconds_waited(&limit));
        pause_within(&limit, pause);
        pause = POLL_MS;
        status = poll_survey(session, &limit, made);
    } while (status == EXIT_STATUS_SUCCESS && made->status != SURVEY_COMPLETE && left_ms(&limit) > 0);
    end_progress(&progress);
    made->completed_ms = clock_ms();
    if (status != EXIT_STATUS_SUCCESS || made->status == SURVEY_COMPLETE)
        return status;
    snprintf(session->problem, sizeof session->problem,
             "the survey is not complete after %d s; what has been found by now: scan %d --cached", wait_seconds,
             made->vap);
    return EXIT_STATUS_TIMED_OUT;
}

static client_exit_status read_list(client_session *session, survey *made) {
    client_exit_status counted = ask_number(session, PROC_wlan_get_ap_scan_num_of_entries, made->vap, &made->found);
    made->count_known = counted == EXIT_STATUS_SUCCESS;
    if (!made->count_known && counted != EXIT_STATUS_FAILURE)
        return counted;
    client_exit_status listed = ask_record(session, PROC_wlan_get_ap_scan_result, made->vap, &made->table);
    if (listed == EXIT_STATUS_FAILURE)
        snprintf(session->problem, sizeof session->problem, "the driver refuses the list of VAP %d: is it up?",
                 made->vap);
    if (made->table.num_entries > SCAN_ENTRIES_MAX)
        made->table.num_entries = SCAN_ENTRIES_MAX;
    return listed;
}

// --- what it found ---

static int64_t not_shown(const survey *made) {
    int64_t rest = made->count_known ? made->found - made->table.num_entries : 0;
    return rest > 0 ? rest : 0;
}

static int age_seconds(const survey *made) {
    return static_cast<int>((clock_ms() - made->completed_ms) / 1000);
}

static value *for_programs(const survey *made) {
    value *result = new_object();
    add_number(result, "vap", made->vap);
    add_number(result, "survey_status", made->status);
    add_boolean(result, "complete", made->status == SURVEY_COMPLETE);
    if (made->completed_ms < 0)
        add_nothing(result, "age");
    else
        add_number(result, "age", age_seconds(made));
    if (made->count_known)
        add_number(result, "found", made->found);
    else
        add_nothing(result, "found");
    add_number(result, "not_shown", not_shown(made));
    value *networks = add_list(result, "networks");
    for (size_t i = 0; i < made->table.num_entries; i++)
        add_record(add_object(networks, nullptr), find_record("scan_entry"), &made->table.entries[i], 0);
    return result;
}

static emphasis shown_as(int rssi) {
    int bars = signal_bars(rssi);
    if (bars >= 3)
        return emphasis::GOOD;
    return bars == 2 ? emphasis::WARNING : emphasis::BAD;
}

// What a record does not say in so many words, such as the channel, is left to programs.
static void add_row(value *networks, const scan_entry *entry) {
    value *row = add_object(networks, nullptr);
    add_mac(row, "bssid", entry->bssid);
    add_text(row, "ssid", entry->ssid, strnlen(entry->ssid, sizeof entry->ssid));
    add_number(row, "rssi", entry->rssi);
    add_string(row, "signal", signal_drawing(entry->rssi))->shown = shown_as(entry->rssi);
    add_text(row, "auth_mode", entry->auth_mode, strnlen(entry->auth_mode, sizeof entry->auth_mode));
    add_text(row, "wireless_mode", entry->wireless_mode, strnlen(entry->wireless_mode, sizeof entry->wireless_mode));
}

static void print_age(FILE *out, const survey *made) {
    if (made->status != SURVEY_COMPLETE)
        fprintf(out, "survey not complete, or none made (state %lld)", static_cast<long long>(made->status));
    else if (made->completed_ms < 0)
        fputs("surveyed earlier; when, the gateway does not tell", out);
    else
        fprintf(out, "survey completed %d s ago", age_seconds(made));
}

static void print_summary(FILE *out, const survey *made) {
    int count = made->table.num_entries;
    if (count == 0)
        fputs("no networks", out);
    else
        fprintf(out, "\n%d network%s", count, count == 1 ? "" : "s");
    if (not_shown(made) > 0)
        fprintf(out, " of %lld: an answer has no room for the others", static_cast<long long>(made->found));
    fputs("; ", out);
    print_age(out, made);
    putc('\n', out);
}

static client_exit_status show_for_people(client_session *session, const survey *made) {
    client_exit_status status = EXIT_STATUS_SUCCESS;
    if (made->table.num_entries > 0) {
        value *shown = new_object();
        value *networks = add_list(shown, "networks");
        for (size_t i = 0; i < made->table.num_entries; i++)
            add_row(networks, &made->table.entries[i]);
        status = show(session, shown);
    }
    print_summary(session->out, made);
    fflush(session->out);
    return status;
}

static client_exit_status show_survey(client_session *session, const survey *made) {
    switch (session->settings.format) {
        case output_format::TEXT:
        case output_format::DUMP:
            return show_for_people(session, made);
        case output_format::JSON:
        case output_format::VALUE:
            break;
    }
    return show(session, for_programs(made));
}

static client_exit_status run_survey(client_session *session, int wait_seconds, survey *made) {
    client_exit_status status = begin_survey(session, made);
    return status == EXIT_STATUS_SUCCESS ? follow_survey(session, wait_seconds, made) : status;
}

client_exit_status run_scan(client_session *session, const command_line *line) {
    survey made = {};
    made.completed_ms = -1;
    int wait_seconds;
    bool cached = option_value(line, "cached");
    client_exit_status status = parse_vap(session, line->words[0], &made.vap);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    if (!seconds_option(line, "wait", WAIT_SECONDS, &wait_seconds, session->problem))
        return complain_of_call(session, EXIT_STATUS_USAGE);
    if (cached && option_value(line, "wait"))
        return complain(session, EXIT_STATUS_USAGE, "with --cached there is nothing to --wait for");
    if (!can_show_many(session))
        return EXIT_STATUS_USAGE;
    status = cached ? ask_status(session, &made) : run_survey(session, wait_seconds, &made);
    if (status == EXIT_STATUS_SUCCESS)
        status = read_list(session, &made);
    return status == EXIT_STATUS_SUCCESS ? show_survey(session, &made) : complain_of_call(session, status);
}
