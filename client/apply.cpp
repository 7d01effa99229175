#include <string.h>

#include "client/diff.h"
#include "client/dry_run.h"
#include "client/export.h"
#include "client/help.h"
#include "client/names.h"
#include "client/options.h"
#include "client/pending.h"
#include "client/settings_commands.h"

const option_row apply_options[3] = {
    {"dry-run", nullptr, "show the calls as commands, and make none of them", word_kind::NONE, '\0'},
    {"keep-going", nullptr, "go on with the other settings when one cannot be set", word_kind::NONE, '\0'},
    {"confirm-within", "SECONDS", "put the old settings back unless `confirm` comes in time, 1 to 3600",
     word_kind::NUMBER, '\0'},
};

// --- applying ---

// What became of it.
struct application {
    value *result;
    value *changed;
    value *failed;
    value *not_taken;
    value *late_found;           // to become the result's "later"
    char problem[PROBLEM_SIZE];  // the first failure
    client_exit_status status;   // of it
};

static application new_application(void) {
    application made = {};
    made.result = new_object();
    made.changed = add_list(made.result, "changes");
    made.failed = add_list(made.result, "failed");
    made.not_taken = add_list(made.result, "not_taken");
    made.late_found = new_list();
    return made;
}

// Whether an entry of the list is about the same setting.
static bool is_listed(const value *list, const setting_change *change) {
    char where[WHERE_SIZE];
    name_place(change->setting, change->place, change->element, where);
    for (const value *entry = list->first; entry; entry = entry->next)
        if (strcmp(find_member(entry, "setting")->text, change->setting->name) == 0 &&
            strcmp(find_member(entry, "where")->text, where) == 0)
            return true;
    return false;
}

// Keeps the first.
static void note_problem(application *made, client_exit_status status, const char *problem) {
    if (made->status != EXIT_STATUS_SUCCESS)
        return;
    made->status = status;
    snprintf(made->problem, sizeof made->problem, "%s", problem);
}

static void note_outcome(void *context, const change_outcome *outcome) {
    application *made = static_cast<application *>(context);
    if (outcome->status == EXIT_STATUS_SUCCESS) {
        if (!is_listed(made->changed, outcome->change))  // or it is set once more
            add_change(made->changed, outcome->change);
        return;
    }
    char name[OPERATION_NAME_SIZE], where[WHERE_SIZE];
    operation_name(outcome->procedure, name);
    name_place(outcome->change->setting, outcome->change->place, outcome->change->element, where);
    value *entry = add_object(made->failed, nullptr);
    add_string(entry, "where", where);
    add_string(entry, "setting", outcome->change->setting->name);
    add_string(entry, "operation", name);
    add_string(entry, "status", exit_status_word(outcome->status));
    add_string(entry, "message", outcome->problem);
    char problem[PROBLEM_SIZE];
    snprintf(problem, sizeof problem, "%s %s: %s: %.300s", where, outcome->change->setting->name, name,
             outcome->problem);
    note_problem(made, outcome->status, problem);
}

// Reads the settings again: the changes that are still to be made, without those that failed.
static client_exit_status read_back(client_session *session, const application *made, comparison *compared) {
    free_changes(&compared->changes);
    free_value(compared->now);
    compared->now = nullptr;
    client_exit_status status = read_settings(session, compared->then, nullptr, nullptr, &compared->now);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    compared->changes = find_changes(compared->now, compared->then);
    change_list *list = &compared->changes;
    size_t kept = 0;
    for (size_t i = 0; i < list->count; i++)
        if (list->changes[i].expected && !is_listed(made->failed, &list->changes[i]))
            list->changes[kept++] = list->changes[i];
    list->count = kept;
    return EXIT_STATUS_SUCCESS;
}

static bool is_late(const setting_change *change) {
    return change->setting->keeping & LATE;
}

// Takes those off the list that only read back when Wi-Fi has been brought up again.
static void take_late(application *made, change_list *list) {
    size_t kept = 0;
    free_value(made->late_found);
    made->late_found = new_list();
    for (size_t i = 0; i < list->count; i++)
        if (is_late(&list->changes[i]))
            add_change(made->late_found, &list->changes[i]);
        else
            list->changes[kept++] = list->changes[i];
    list->count = kept;
}

// Whether everything came to be, as the getters say. What other setters have changed meanwhile is set once more.
static client_exit_status verify(client_session *session, application *made, bool keep_going, comparison *compared) {
    client_exit_status status = read_back(session, made, compared);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    take_late(made, &compared->changes);
    if (compared->changes.count == 0)
        return EXIT_STATUS_SUCCESS;
    make_changes(session, &compared->changes, keep_going, note_outcome, made);
    status = read_back(session, made, compared);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    take_late(made, &compared->changes);
    for (size_t i = 0; i < compared->changes.count; i++)
        add_change(made->not_taken, &compared->changes.changes[i]);
    return EXIT_STATUS_SUCCESS;
}

// Empty lists are no news for people.
static void hide_empty(value *list) {
    if (!list->first)
        list->readers = audience::PROGRAMS;
}

static client_exit_status show_application(client_session *session, application *made) {
    size_t failed = count_values(made->failed), not_taken = count_values(made->not_taken);
    value *later = add_value(made->result, "later", made->late_found);
    bool anything = failed || not_taken || later->first;
    hide_empty(made->failed);
    hide_empty(made->not_taken);
    hide_empty(later);
    if (anything)
        hide_empty(made->changed);
    if (made->status == EXIT_STATUS_SUCCESS && not_taken) {
        made->status = EXIT_STATUS_FAILURE;
        snprintf(made->problem, sizeof made->problem, "%zu setting%s not what %s set to", not_taken,
                 not_taken == 1 ? " is" : "s are", not_taken == 1 ? "it was" : "they were");
    }
    if (made->status == EXIT_STATUS_SUCCESS)
        return show(session, made->result);
    if (session->settings.format != output_format::JSON) {
        show(session, made->result);
        return complain(session, made->status, "%s", made->problem);
    }
    value *answer = new_answer(session);
    add_value(answer, "result", made->result);
    return complain_in(session, answer, made->status, made->problem);
}

static client_exit_status keep_old_settings(client_session *session, const comparison *compared, int seconds,
                                            pending_changes *pending) {
    value *settings = new_object();
    for (const value *section = compared->now->first; section; section = section->next)
        add_copy(settings, section->name, section);
    value *document = new_document(settings);
    client_exit_status status = begin_pending(session, compared->now, document, &compared->changes, seconds, pending);
    free_value(document);
    return status;
}

static client_exit_status apply_changes(client_session *session, comparison *compared, bool keep_going,
                                        int confirm_within, const char *lost) {
    application made = new_application();
    if (*lost)
        add_string(made.result, "lost", lost)->readers = audience::PROGRAMS;  // people have been told
    pending_changes pending = {-1};
    if (count_expected(&compared->changes) == 0)
        return show_application(session, &made);
    if (confirm_within > 0) {
        client_exit_status status = keep_old_settings(session, compared, confirm_within, &pending);
        if (status != EXIT_STATUS_SUCCESS) {
            free_value(made.result);
            free_value(made.late_found);
            return complain_of_call(session, status);
        }
        add_number(made.result, "confirm_within", confirm_within)->readers = audience::PROGRAMS;
    }
    make_changes(session, &compared->changes, keep_going, note_outcome, &made);
    if (made.status == EXIT_STATUS_SUCCESS || (keep_going && made.status == EXIT_STATUS_FAILURE)) {
        client_exit_status status = verify(session, &made, keep_going, compared);
        if (status != EXIT_STATUS_SUCCESS)
            note_problem(&made, status, session->problem);
    }
    start_countdown(&pending);
    client_exit_status status = show_application(session, &made);
    if (confirm_within > 0)
        remark(session, "The old settings come back in %d s unless: %s confirm\n", confirm_within, PROGRAM_NAME);
    return status;
}

client_exit_status run_apply(client_session *session, const command_line *line) {
    int seconds;
    bool dry = option_value(line, "dry-run");
    if (!seconds_option(line, "confirm-within", 0, &seconds, session->problem))
        return complain_of_call(session, EXIT_STATUS_USAGE);
    if (!can_show_many(session))
        return EXIT_STATUS_USAGE;
    comparison compared = {};
    char lost[PATH_MAX] = "";
    client_exit_status status = dry ? EXIT_STATUS_SUCCESS : check_nothing_pending(session, lost);
    if (status == EXIT_STATUS_SUCCESS)
        status = compare(session, line->words[0], seconds > 0, &compared);
    if (status == EXIT_STATUS_SUCCESS && seconds > 0 && !check_way_back(session, &compared.changes))
        status = EXIT_STATUS_USAGE;
    if (status != EXIT_STATUS_SUCCESS)
        status = complain_of_call(session, status);
    else if (dry)
        status = show_calls(session, &compared.changes);
    else
        status = apply_changes(session, &compared, option_value(line, "keep-going"), seconds, lost);
    free_comparison(&compared);
    return status;
}

client_exit_status run_confirm(client_session *session, const command_line *) {
    client_exit_status status = confirm_pending(session);
    if (status != EXIT_STATUS_SUCCESS)
        return complain_of_call(session, status);
    if (session->settings.format == output_format::TEXT) {
        fputs("confirmed: the settings stay as they are\n", session->out);
        return EXIT_STATUS_SUCCESS;
    }
    value *result = new_object();
    add_boolean(result, "confirmed", true);
    return show(session, result);
}
