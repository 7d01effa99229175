#include "client/settings.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "client/ask.h"
#include "client/results.h"
#include "client/setting_conversions.h"
#include "client/setting_lists.h"
#include "client/vaps.h"

constexpr size_t GETTER_PREFIX_LENGTH = sizeof("wlan_get_") - 1;

// A VAP of each radio belongs to a pair.
constexpr int PAIRS = VAPS_OF_A_RADIO;

// {"ssid", PROC_wlan_get_ssid, PROC_wlan_set_ssid, nullptr, nullptr, "...", setting_scope::VAP, ...},
#define SETTING(getter, setter, scope, phase, family, conversion, keeping, example)                               \
    {&#getter[GETTER_PREFIX_LENGTH], PROC_##getter,        PROC_##setter,          &conversion, nullptr, example, \
     setting_scope::scope,           setting_phase::phase, setting_family::family, keeping},
#define LIST(getter, scope, phase, list, example)                                                              \
    {&#getter[GETTER_PREFIX_LENGTH], PROC_##getter,         0,   &PLAIN, &list, example, setting_scope::scope, \
     setting_phase::phase,           setting_family::ALONE, OPEN},
const setting_row setting_rows[] = {
#include "client/settings.def"
};
const size_t setting_row_count = sizeof setting_rows / sizeof *setting_rows;

#define PART_OF(getter, procedure) {PROC_##procedure, #getter},
#define EXCEPT(procedure, reason) {PROC_##procedure, reason},
const setting_exception setting_exceptions[] = {
#include "client/settings.def"
};
const size_t setting_exception_count = sizeof setting_exceptions / sizeof *setting_exceptions;

static_assert(PLACES_MAX == VAP_COUNT_MAX + 1);

struct scope_row {
    setting_scope scope;
    const char *section;
    const char *place;    // how one is called, nullptr for the gateway
    const char *element;  // nullptr where there are no elements
    place_range places;
};

static const scope_row scopes[] = {
    {setting_scope::GATEWAY, "gateway", nullptr, nullptr, {0, 0}},
    {setting_scope::GATEWAY_BARE, "gateway", nullptr, nullptr, {0, 0}},
    {setting_scope::RADIO, "radios", "radio", nullptr, {0, RADIO_COUNT - 1}},
    {setting_scope::RADIO_KEYS, "radios", "radio", "key", {0, RADIO_COUNT - 1}},
    {setting_scope::VAP, "vaps", "vap", nullptr, {1, VAP_COUNT_MAX}},
    {setting_scope::VAP_CATEGORIES, "vaps", "vap", "category", {1, VAP_COUNT_MAX}},
    {setting_scope::PAIR, "vaps", "vap", nullptr, {1, PAIRS}},
};

static const scope_row *row_of_scope(setting_scope scope) {
    const scope_row *row = scopes;
    while (row->scope != scope)
        row++;
    return row;
}

const char *scope_section(setting_scope scope) {
    return row_of_scope(scope)->section;
}

place_range places_of(setting_scope scope) {
    return row_of_scope(scope)->places;
}

bool has_elements(const setting_row *setting) {
    return element_word(setting);
}

const char *element_word(const setting_row *setting) {
    return row_of_scope(setting->scope)->element;
}

int call_index(const setting_row *setting, int place) {
    switch (setting->scope) {
        case setting_scope::GATEWAY:
            return 1;
        case setting_scope::GATEWAY_BARE:
            return 0;
        case setting_scope::RADIO:
        case setting_scope::RADIO_KEYS:
            return first_vap_of(place);
        case setting_scope::VAP:
        case setting_scope::VAP_CATEGORIES:
        case setting_scope::PAIR:
            return place;
    }
    return place;
}

argument_kind setting_kind(const setting_row *setting) {
    const procedure_row *setter = row_of(setting->setter);
    return setter->arguments[setter->argument_count - 1].kind;
}

const setting_row *find_setting(const char *section, const char *name) {
    for (const setting_row &row : setting_rows)
        if (strcmp(row.name, name) == 0 && strcmp(scope_section(row.scope), section) == 0)
            return &row;
    return nullptr;
}

// --- trees of settings ---

const value *find_place(const value *settings, setting_scope scope, int place) {
    const scope_row *row = row_of_scope(scope);
    const value *section = find_member(settings, row->section);
    if (!section || !row->place)
        return section;
    char number[16];
    snprintf(number, sizeof number, "%d", place);
    return find_member(section, number);
}

static const value *without_nothing(const value *found) {
    return found && found->kind != value_kind::NOTHING ? found : nullptr;
}

const value *find_setting_value(const value *settings, const setting_row *setting, int place) {
    const value *object = find_place(settings, setting->scope, place);
    return without_nothing(object ? find_member(object, setting->name) : nullptr);
}

const value *find_setting_element(const value *settings, const setting_row *setting, int place, int element) {
    const value *found = find_setting_value(settings, setting, place);
    if (!found || !has_elements(setting))
        return found;
    const value *at = found->first;
    for (int i = 0; at && i < element; i++)
        at = at->next;
    return without_nothing(at);
}

void name_place(const setting_row *setting, int place, int element, char where[WHERE_SIZE]) {
    const scope_row *row = row_of_scope(setting->scope);
    if (!row->place)
        snprintf(where, WHERE_SIZE, "%s", row->section);
    else if (!row->element || element == WHOLE_SETTING)
        snprintf(where, WHERE_SIZE, "%s %d", row->place, place);
    else
        snprintf(where, WHERE_SIZE, "%s %d %s %d", row->place, place, row->element, element + 1);
}

// --- reading ---

// What stands before the values of a call: the index, and the number of the key or category. Where a second number has
// no effect, it is 1.
static call_arguments leading_arguments(const procedure_row *row, const setting_row *setting, int place, int element) {
    const int64_t numbers[ARGUMENTS_MAX] = {call_index(setting, place), element + 1};
    return number_arguments(row, numbers);
}

// A number as the setter's argument takes it: getters and setters do not always agree about the sign.
static void add_scalar(value *to, const char *name, argument_kind kind, int64_t number) {
    if (kind == argument_kind::BOOL)
        // Stored numbers beyond 1 are on, and a switch is all that can be set.
        add_boolean(to, name, number != 0);
    else if (kind == argument_kind::UINT)
        add_number(to, name, static_cast<uint32_t>(number));
    else
        add_number(to, name, static_cast<int32_t>(number));
}

// Puts what the getter said behind `to`, in the kinds that the setter takes.
static void add_result(value *to, const setting_row *setting, const procedure_row *getter,
                       const wlan_config_result_data_t *result) {
    const char *name = to->kind == value_kind::LIST ? nullptr : setting->name;
    const procedure_row *setter = row_of(setting->setter);
    const argument_row *arguments = setter->arguments + getter->argument_count;
    if (getter->result.kind == result_kind::STRING) {
        add_string(to, name, result->return_data.return_data_val);
    } else if (getter->result.output_count == 1) {
        add_scalar(to, name, arguments->kind, result_number(getter, result, 0));
    } else {
        value *outputs = add_object(to, name);
        for (size_t i = 0; i < getter->result.output_count; i++)
            add_scalar(outputs, arguments[i].name, arguments[i].kind, result_number(getter, result, i));
    }
}

// Takes the last member or element off.
static void drop_last(value *from) {
    value *before = nullptr;
    for (value *at = from->first; at != from->last; at = at->next)
        before = at;
    free_value(from->last);
    from->last = before;
    if (before)
        before->next = nullptr;
    else
        from->first = nullptr;
}

// Reads one value and puts it behind `to`, unless it says nothing.
static client_exit_status read_one(client_session *session, const setting_row *setting, int place, int element,
                                   value *to) {
    const procedure_row *getter = row_of(setting->getter);
    call_arguments arguments = leading_arguments(getter, setting, place, element);
    wlan_config_result_data_t result;
    client_exit_status status = ask(session, getter, &arguments, &result);
    if (status == EXIT_STATUS_SUCCESS) {
        add_result(to, setting, getter, &result);
        bool says = !setting->conversion->read || setting->conversion->read(to->last);
        if (!says)
            drop_last(to);
    }
    release_result(&result);
    return status;
}

static client_exit_status read_elements(client_session *session, const setting_row *setting, int place, value *to) {
    value *list = add_list(to, setting->name);
    client_exit_status failure = EXIT_STATUS_SUCCESS;
    for (int element = 0; element < SETTING_ELEMENTS; element++) {
        const value *before = list->last;
        client_exit_status status = read_one(session, setting, place, element, list);
        if (status != EXIT_STATUS_SUCCESS && status != EXIT_STATUS_FAILURE)
            return status;
        failure = status == EXIT_STATUS_SUCCESS ? failure : status;
        if (list->last == before)
            add_nothing(list, nullptr);
    }
    return failure;
}

// Reads a setting and adds it to the object of its place.
static client_exit_status read_member(client_session *session, const setting_row *setting, int place, value *to) {
    if (!setting->list)
        return has_elements(setting) ? read_elements(session, setting, place, to)
                                     : read_one(session, setting, place, 0, to);
    value *list = nullptr;
    client_exit_status status = setting->list->read(session, call_index(setting, place), &list);
    if (list)
        add_value(to, setting->name, list);
    return status;
}

client_exit_status read_setting(client_session *session, const setting_row *setting, int place, value **found) {
    value *object = new_object();
    *found = nullptr;
    client_exit_status status = read_member(session, setting, place, object);
    if (object->first) {
        *found = object->first;
        object->first = object->last = nullptr;
    }
    free_value(object);
    return status;
}

// What of a place is wanted: what the document has, and what its setters may change besides.
static bool is_wanted(const value *like, const setting_row *setting, int place) {
    if (!like)
        return true;
    if (setting->family == setting_family::ALONE)
        return find_setting_value(like, setting, place);
    return find_place(like, setting->scope, place);
}

static client_exit_status read_place(client_session *session, const value *like, const char *section, int place,
                                     unread_setting unread, void *context, value *to) {
    for (const setting_row &row : setting_rows) {
        place_range places = places_of(row.scope);
        bool there = strcmp(scope_section(row.scope), section) == 0 && place >= places.first && place <= places.last;
        if (!there || !is_wanted(like, &row, place))
            continue;
        client_exit_status status = read_member(session, &row, place, to);
        if (status == EXIT_STATUS_FAILURE && unread)
            unread(context, &row, place);
        else if (status != EXIT_STATUS_SUCCESS && status != EXIT_STATUS_FAILURE)
            return status;
    }
    return EXIT_STATUS_SUCCESS;
}

static client_exit_status read_section(client_session *session, const value *like, setting_scope scope,
                                       unread_setting unread, void *context, value *settings) {
    const scope_row *row = row_of_scope(scope);
    value *section = add_object(settings, row->section);
    client_exit_status status = EXIT_STATUS_SUCCESS;
    for (int place = row->places.first; place <= row->places.last && status == EXIT_STATUS_SUCCESS; place++) {
        if (like && !find_place(like, scope, place))
            continue;
        char number[16];
        snprintf(number, sizeof number, "%d", place);
        value *object = row->place ? add_object(section, number) : section;
        status = read_place(session, like, row->section, place, unread, context, object);
    }
    return status;
}

client_exit_status read_settings(client_session *session, const value *like, unread_setting unread, void *context,
                                 value **settings) {
    static const setting_scope sections[] = {setting_scope::GATEWAY, setting_scope::RADIO, setting_scope::VAP};
    *settings = new_object();
    for (setting_scope scope : sections) {
        client_exit_status status = read_section(session, like, scope, unread, context, *settings);
        if (status != EXIT_STATUS_SUCCESS)
            return status;
    }
    return EXIT_STATUS_SUCCESS;
}

// --- plans ---

void plan_call(call_plan *plan, const setting_change *change, uint32_t procedure, const call_arguments *arguments) {
    if (plan->count == plan->room) {
        plan->room = plan->room ? 2 * plan->room : 64;
        plan->calls = static_cast<planned_call *>(realloc(plan->calls, plan->room * sizeof *plan->calls));
        if (!plan->calls)
            end_without_memory();
    }
    planned_call *call = &plan->calls[plan->count++];
    *call = {*change, row_of(procedure), *arguments};
    for (size_t i = 0; i < call->arguments.count; i++) {
        argument_value *argument = &call->arguments.values[i];
        if (argument->kind == argument_kind::TEXT && !(argument->text = strdup(argument->text)))
            end_without_memory();
    }
}

static int64_t number_of(const value *said) {
    return said->kind == value_kind::BOOLEAN ? said->truth : said->number;
}

void plan_change(call_plan *plan, const setting_change *change) {
    const setting_row *setting = change->setting;
    if (setting->list) {
        setting->list->plan(plan, change);
        return;
    }
    const procedure_row *setter = row_of(setting->setter);
    call_arguments arguments = leading_arguments(setter, setting, change->place, change->element);
    argument_value *values = arguments.values + row_of(setting->getter)->argument_count;
    char *text = nullptr;
    if (change->then->kind == value_kind::TEXT) {
        text = setting->conversion->write ? setting->conversion->write(change) : strdup(change->then->text);
        if (!text)
            end_without_memory();
        values->text = text;
    } else if (change->then->kind == value_kind::OBJECT) {
        for (const value *member = change->then->first; member; member = member->next)
            (values++)->number = number_of(member);
    } else {
        values->number = number_of(change->then);
    }
    plan_call(plan, change, setting->setter, &arguments);
    free(text);
    if (setting->conversion->plan_more)
        setting->conversion->plan_more(plan, change);
}

void free_plan(call_plan *plan) {
    for (size_t i = 0; i < plan->count; i++)
        for (size_t j = 0; j < plan->calls[i].arguments.count; j++)
            free(plan->calls[i].arguments.values[j].text);
    free(plan->calls);
    *plan = {};
}
