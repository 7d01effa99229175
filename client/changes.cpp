#include "client/changes.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "client/ask.h"
#include "client/setting_conversions.h"
#include "client/shell_texts.h"
#include "client/vaps.h"

constexpr size_t FAMILIES = static_cast<size_t>(setting_family::WPS) + 1;

// What stands before the arguments of a call: the call's own six words, and credentials and verifier that are empty.
constexpr size_t CALL_HEADER_SIZE = 40;

// In which phase a setter of a family was first called at a place; LAST_SETTING_PHASE where none was.
struct touched_families {
    setting_phase phases[FAMILIES][PLACES_MAX];
};

// Where a family's settings meet. The WPS methods are the gateway's and switch WPS of the first VAP of each radio.
static size_t meeting_place(const setting_row *setting, int place) {
    bool follows_methods = setting->family == setting_family::WPS && place == first_vap_of(radio_of_vap(place));
    return follows_methods ? 0 : static_cast<size_t>(place);
}

static setting_phase *touched(touched_families *families, const setting_row *setting, int place) {
    return &families->phases[static_cast<size_t>(setting->family)][meeting_place(setting, place)];
}

static void append_change(change_list *list, const setting_change *change) {
    if (list->count == list->room) {
        list->room = list->room ? 2 * list->room : 64;
        list->changes = static_cast<setting_change *>(realloc(list->changes, list->room * sizeof *list->changes));
        if (!list->changes)
            end_without_memory();
    }
    list->changes[list->count++] = *change;
}

static void compare_element(change_list *list, touched_families *families, setting_change *change) {
    const setting_row *setting = change->setting;
    change->then = find_setting_element(change->settings_then, setting, change->place, change->element);
    if (!change->then)
        return;
    change->now = find_setting_element(change->settings_now, setting, change->place, change->element);
    change->expected = !change->now || !same_value(change->now, change->then);
    bool alone = setting->family == setting_family::ALONE;
    setting_phase *before = touched(families, setting, change->place);
    if (change->expected || (!alone && *before < setting->phase))
        append_change(list, change);
    if (change->expected && setting->phase < *before)
        *before = setting->phase;
}

static void compare_setting(change_list *list, touched_families *families, const setting_row *setting,
                            setting_change *change) {
    place_range places = places_of(setting->scope);
    change->setting = setting;
    for (change->place = places.first; change->place <= places.last; change->place++)
        for (change->element = 0; change->element < (has_elements(setting) ? SETTING_ELEMENTS : 1); change->element++)
            compare_element(list, families, change);
}

change_list find_changes(const value *now, const value *then) {
    change_list list = {};
    touched_families families;
    for (auto &family : families.phases)
        for (setting_phase &phase : family)
            phase = LAST_SETTING_PHASE;
    setting_change change = {nullptr, 0, 0, false, nullptr, nullptr, now, then};
    for (int phase = 0; phase <= static_cast<int>(LAST_SETTING_PHASE); phase++)
        for (size_t i = 0; i < setting_row_count; i++)
            if (setting_rows[i].phase == static_cast<setting_phase>(phase))
                compare_setting(&list, &families, &setting_rows[i], &change);
    return list;
}

void free_changes(change_list *list) {
    free(list->changes);
    *list = {};
}

size_t count_expected(const change_list *list) {
    size_t count = 0;
    for (size_t i = 0; i < list->count; i++)
        count += list->changes[i].expected;
    return count;
}

static bool fits_a_call(planned_call *call) {
    if (call->arguments.count == 0)
        return true;
    unsigned long size = xdr_sizeof(as_xdrproc(xdr_call_arguments), &call->arguments);
    return size > 0 && size + CALL_HEADER_SIZE <= UDPMSGSIZE;
}

bool check_sizes(client_session *session, const change_list *list) {
    call_plan plan = {};
    for (size_t i = 0; i < list->count; i++)
        plan_change(&plan, &list->changes[i]);
    planned_call *call = plan.calls;
    while (call < plan.calls + plan.count && fits_a_call(call))
        call++;
    bool all_fit = call == plan.calls + plan.count;
    if (!all_fit) {
        char where[WHERE_SIZE];
        name_place(call->change.setting, call->change.place, call->change.element, where);
        snprintf(session->problem, sizeof session->problem, "%s %s is longer than a call can be (%d bytes in all)",
                 where, call->change.setting->name, UDPMSGSIZE);
    }
    free_plan(&plan);
    return all_fit;
}

static setting_change reversed(const setting_change *change) {
    setting_change back = *change;
    back.now = change->then;
    back.then = change->now;
    back.settings_now = change->settings_then;
    back.settings_then = change->settings_now;
    return back;
}

static bool may_send(client_session *session, const planned_call *call, char problem[PROBLEM_SIZE]) {
    return session->settings.shell_text || check_shell_texts(call->procedure, &call->arguments, problem);
}

bool check_way_back(client_session *session, const change_list *list) {
    call_plan plan = {};
    for (size_t i = 0; i < list->count; i++) {
        setting_change back = reversed(&list->changes[i]);
        if (back.then)
            plan_change(&plan, &back);
    }
    char problem[PROBLEM_SIZE];
    const planned_call *call = plan.calls;
    while (call < plan.calls + plan.count && may_send(session, call, problem))
        call++;
    bool all_may = call == plan.calls + plan.count;
    if (!all_may) {
        char where[WHERE_SIZE];
        name_place(call->change.setting, call->change.place, call->change.element, where);
        snprintf(session->problem, sizeof session->problem, "%s %s could not be put back: %.300s", where,
                 call->change.setting->name, problem);
    }
    free_plan(&plan);
    return all_may;
}

// Whether a setting that was as it should be still is, after others have been set.
static bool is_still_right(client_session *session, const setting_change *change, client_exit_status *status) {
    value *found;
    *status = read_setting(session, change->setting, change->place, &found);
    if (*status == EXIT_STATUS_FAILURE)
        *status = EXIT_STATUS_SUCCESS;
    bool right = found && same_value(found, change->then);
    free_value(found);
    return right;
}

static client_exit_status make_change(client_session *session, const setting_change *change,
                                      const procedure_row **procedure) {
    call_plan plan = {};
    client_exit_status status = EXIT_STATUS_SUCCESS;
    plan_change(&plan, change);
    for (size_t i = 0; i < plan.count && status == EXIT_STATUS_SUCCESS; i++) {
        wlan_config_result_data_t result;
        *procedure = plan.calls[i].procedure;
        // Of a document nothing comes here that a shell obeys. Of a gateway something may, when it is to be put back
        // what somebody else has taken off meanwhile: it counts as a setting that cannot be set.
        if (!may_send(session, &plan.calls[i], session->problem)) {
            status = EXIT_STATUS_FAILURE;
            break;
        }
        status = ask(session, *procedure, &plan.calls[i].arguments, &result);
        release_result(&result);
    }
    free_plan(&plan);
    return status;
}

client_exit_status make_changes(client_session *session, const change_list *list, bool keep_going,
                                change_listener listener, void *context) {
    client_exit_status first = EXIT_STATUS_SUCCESS;
    for (size_t i = 0; i < list->count; i++) {
        const setting_change *change = &list->changes[i];
        change_outcome outcome = {change, row_of(change->setting->getter), EXIT_STATUS_SUCCESS, ""};
        if (!change->expected && is_still_right(session, change, &outcome.status))
            continue;
        if (outcome.status == EXIT_STATUS_SUCCESS)
            outcome.status = make_change(session, change, &outcome.procedure);
        if (outcome.status != EXIT_STATUS_SUCCESS)
            snprintf(outcome.problem, sizeof outcome.problem, "%s", session->problem);
        if (listener)
            listener(context, &outcome);
        first = first == EXIT_STATUS_SUCCESS ? outcome.status : first;
        bool goes_on = outcome.status == EXIT_STATUS_SUCCESS || (keep_going && outcome.status == EXIT_STATUS_FAILURE);
        if (!goes_on)
            break;
    }
    return first;
}
