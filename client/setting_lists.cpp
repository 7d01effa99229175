#include "client/setting_lists.h"

#include <ctype.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "client/ask.h"
#include "client/setting_conversions.h"
#include "server/records.h"

constexpr size_t MAC_LENGTH = sizeof("00:00:00:00:00:00") - 1;

// As many stations as the text of the MAC access list has room for, "MAC,;" each.
constexpr size_t MAC_LIST_MOST = MAC_LIST_SIZE / (MAC_LENGTH + 2);

// Some of these setters hand their MAC to a shell as it comes: nothing but a MAC may pass.
static bool is_mac(const value *text) {
    if (!text || text->kind != value_kind::TEXT || text->length != MAC_LENGTH)
        return false;
    for (size_t i = 0; i < MAC_LENGTH; i++) {
        bool separator = i % 3 == 2;
        if (separator ? text->text[i] != ':' : !isxdigit(static_cast<unsigned char>(text->text[i])))
            return false;
    }
    return true;
}

// Getters that give out octets and bare digits give them in lower case.
static void lower(value *text) {
    for (char *c = text->text; *c; c++)
        *c = static_cast<char>(tolower(static_cast<unsigned char>(*c)));
}

static value *member(value *object, const char *name) {
    return const_cast<value *>(find_member(object, name));
}

// Brings an entry's members into the order in which they are read, so that entries can be compared. False when it has
// others.
template <size_t count>
static bool put_in_order(value *entry, const char *const (&names)[count]) {
    if (entry->kind != value_kind::OBJECT || count_values(entry) != count)
        return false;
    value *members[count];
    for (size_t i = 0; i < count; i++)
        if (!(members[i] = member(entry, names[i])))
            return false;
    for (size_t i = 0; i < count; i++)
        members[i]->next = i + 1 < count ? members[i + 1] : nullptr;
    entry->first = members[0];
    entry->last = members[count - 1];
    return true;
}

static const value *mac_of(const value *entry) {
    return entry->kind == value_kind::TEXT ? entry : find_member(entry, "mac");
}

static bool same_mac(const value *one, const value *other) {
    return strcmp(mac_of(one)->text, mac_of(other)->text) == 0;
}

// Whether there are so few stations, and each once: the second of two would take the place of the first.
static bool fits(const value *list, size_t most) {
    if (count_values(list) > most)
        return false;
    for (const value *one = list->first; one; one = one->next)
        for (const value *other = one->next; other; other = other->next)
            if (strcasecmp(mac_of(one)->text, mac_of(other)->text) == 0)
                return false;
    return true;
}

// --- ways from one list to another ---

using same_entry = bool (*)(const value *, const value *);

// Walks through what is there now, and calls `take_off` for each entry that does not stand in the document behind those
// that stay. Returns the document's first entry that has to be added, nullptr for none.
template <typename function>
static const value *keep_what_fits(const value *now, const value *then, same_entry same, function take_off) {
    const value *wanted = then->first;
    for (const value *entry = now ? now->first : nullptr; entry; entry = entry->next) {
        if (wanted && same(entry, wanted))
            wanted = wanted->next;
        else
            take_off(entry);
    }
    return wanted;
}

using clean_entry = bool (*)(const value *);

static bool has_mac(const value *entry) {
    return is_mac(mac_of(entry));
}

// Whether the list is emptied at once: when nothing of it stays, and when taking something off would hand to a shell
// what is no MAC, or what is obeyed there.
static bool is_cleared(const setting_change *change, same_entry same, clean_entry is_clean) {
    size_t gone = 0;
    bool clean = true;
    keep_what_fits(change->now, change->then, same, [&](const value *entry) {
        gone++;
        clean = clean && is_clean(entry);
    });
    return !clean || (gone > 1 && gone == count_values(change->now));
}

// Arguments of a call whose first is the index.
static call_arguments arguments_of(uint32_t procedure, const setting_change *change) {
    const int64_t numbers[ARGUMENTS_MAX] = {call_index(change->setting, change->place)};
    return number_arguments(row_of(procedure), numbers);
}

static void plan_text(call_plan *plan, const setting_change *change, uint32_t procedure, const value *text) {
    call_arguments arguments = arguments_of(procedure, change);
    arguments.values[1].text = text->text;
    plan_call(plan, change, procedure, &arguments);
}

static void plan_bare(call_plan *plan, const setting_change *change, uint32_t procedure) {
    call_arguments arguments = arguments_of(procedure, change);
    plan_call(plan, change, procedure, &arguments);
}

// --- the MAC access list ---

// "MAC=NAME;MAC=NAME;;"
static client_exit_status read_mac_list(client_session *session, int index, value **found) {
    char text[RESULT_DATA_SIZE];
    client_exit_status status = ask_text(session, PROC_wlan_get_mac_address_control_list, index, text, sizeof text);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    *found = new_list();
    char *rest = nullptr;
    for (const char *entry = strtok_r(text, ";", &rest); entry; entry = strtok_r(nullptr, ";", &rest)) {
        value *object = add_object(*found, nullptr);
        size_t length = strcspn(entry, "=");
        add_text(object, "mac", entry, length);
        add_string(object, "list", entry[length] ? entry + length + 1 : "");
    }
    return EXIT_STATUS_SUCCESS;
}

// The whole list goes through the shell with each addition, and these characters separate its parts.
static bool is_list_name(const value *name) {
    return name && name->kind == value_kind::TEXT && is_settable_text(name) && !strpbrk(name->text, "\"`\\$;,=");
}

static const char *const list_members[] = {"mac", "list"};

static bool accept_mac_list(value *said, const char **wanted) {
    *wanted =
        "a list of {\"mac\":\"00:00:00:00:00:00\",\"list\":\"NAME\"}, each MAC once, without \" ` \\ $ ; , = in NAME";
    for (value *entry = said->first; entry; entry = entry->next)
        if (!put_in_order(entry, list_members) || !is_mac(find_member(entry, "mac")) ||
            !is_list_name(find_member(entry, "list")))
            return false;
    return fits(said, MAC_LIST_MOST);
}

// Each entry that is taken off has the rest of the list written anew, through the shell.
static bool has_mac_and_harmless_name(const value *entry) {
    return has_mac(entry) && !strpbrk(find_member(entry, "list")->text, "\"`\\$");
}

static bool same_list_entry(const value *one, const value *other) {
    return same_mac(one, other) && strcmp(find_member(one, "list")->text, find_member(other, "list")->text) == 0;
}

static void plan_mac_list(call_plan *plan, const setting_change *change) {
    const value *missing = change->then->first;
    if (is_cleared(change, same_list_entry, has_mac_and_harmless_name))
        plan_bare(plan, change, PROC_wlan_set_mac_address_control_clear);
    else
        missing = keep_what_fits(change->now, change->then, same_list_entry, [&](const value *entry) {
            plan_text(plan, change, PROC_wlan_set_mac_address_control_delete, mac_of(entry));
        });
    for (; missing; missing = missing->next) {
        call_arguments arguments = arguments_of(PROC_wlan_set_mac_address_control_add, change);
        arguments.values[1].text = mac_of(missing)->text;
        arguments.values[2].text = find_member(missing, "list")->text;
        plan_call(plan, change, PROC_wlan_set_mac_address_control_add, &arguments);
    }
}

const setting_list mac_list = {read_mac_list, accept_mac_list, plan_mac_list};

// --- stations with an airtime weight ---

static client_exit_status read_airtime_list(client_session *session, int index, value **found) {
    int64_t count = 0;
    client_exit_status status = ask_number(session, PROC_wlan_get_advairtime_sta_entry_count, index, &count);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    int64_t most = static_cast<int64_t>(AIRTIME_STAS_MAX);
    count = count < 0 ? 0 : (count > most ? most : count);
    wlan_airtime_sta_list_t record = {};
    if (count > 0)
        status = ask_record(session, PROC_wlan_get_advairtime_sta_list, static_cast<int>(count), &record);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    *found = new_list();
    for (int64_t i = 0; i < count && i < record.count; i++) {
        const wlan_airtime_sta_t *station = &record.stations[i];
        value *object = add_object(*found, nullptr);
        add_text(object, "mac", station->mac, strnlen(station->mac, sizeof station->mac));
        add_number(object, "weight", static_cast<int32_t>(station->weight));
        add_number(object, "period", static_cast<int32_t>(station->period));
    }
    return EXIT_STATUS_SUCCESS;
}

static bool accept_number(const value *number) {
    return number && number->kind == value_kind::SIGNED && number->number >= INT32_MIN && number->number <= INT32_MAX;
}

static const char *const airtime_members[] = {"mac", "weight", "period"};

static bool accept_airtime_list(value *said, const char **wanted) {
    *wanted =
        "a list of {\"mac\":\"00:00:00:00:00:00\",\"weight\":NUMBER,\"period\":NUMBER}, each MAC once, 64 at most";
    for (value *entry = said->first; entry; entry = entry->next) {
        if (!put_in_order(entry, airtime_members) || !is_mac(find_member(entry, "mac")) ||
            !accept_number(find_member(entry, "weight")) || !accept_number(find_member(entry, "period")))
            return false;
        lower(member(entry, "mac"));
    }
    return fits(said, AIRTIME_STAS_MAX);
}

static void plan_weight(call_plan *plan, const setting_change *change, const value *station) {
    call_arguments arguments = arguments_of(PROC_wlan_set_advairtime_sta_entry_add, change);
    arguments.values[1].text = mac_of(station)->text;
    arguments.values[2].number = find_member(station, "weight")->number;
    plan_call(plan, change, PROC_wlan_set_advairtime_sta_entry_add, &arguments);
}

static void plan_period(call_plan *plan, const setting_change *change, int64_t number, const value *station) {
    call_arguments arguments = arguments_of(PROC_wlan_set_advairtime_sta_period, change);
    arguments.values[1].number = number;
    arguments.values[2].number = find_member(station, "period")->number;
    plan_call(plan, change, PROC_wlan_set_advairtime_sta_period, &arguments);
}

static bool same_number(const value *now, const value *then, const char *name) {
    return find_member(now, name)->number == find_member(then, name)->number;
}

// A station that is there already gets another weight where it stands.
static void plan_airtime_list(call_plan *plan, const setting_change *change) {
    const value *now = change->now;
    const value *missing = change->then->first;
    if (is_cleared(change, same_mac, has_mac))
        plan_bare(plan, change, PROC_wlan_set_advairtime_sta_weight_destroy_all);
    else
        missing = keep_what_fits(now, change->then, same_mac, [&](const value *entry) {
            plan_text(plan, change, PROC_wlan_set_advairtime_sta_entry_del, mac_of(entry));
        });
    int64_t number = 1;
    const value *there = now ? now->first : nullptr;
    for (const value *station = change->then->first; station != missing; station = station->next, number++) {
        while (!same_mac(there, station))
            there = there->next;
        if (!same_number(there, station, "weight"))
            plan_weight(plan, change, station);
        if (!same_number(there, station, "period"))
            plan_period(plan, change, number, station);
        there = there->next;
    }
    for (; missing; missing = missing->next, number++) {
        plan_weight(plan, change, missing);
        if (find_member(missing, "period")->number != 0)
            plan_period(plan, change, number, missing);
    }
}

const setting_list airtime_list = {read_airtime_list, accept_airtime_list, plan_airtime_list};

// --- the soft-block list ---

// From the oldest entry on: the daemon's list goes round.
static client_exit_status read_soft_block_list(client_session *session, int index, value **found) {
    wlan_sb_station_list_t record;
    client_exit_status status = ask_record(session, PROC_wlan_get_softblock_black_list, index, &record);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    *found = new_list();
    int32_t most = static_cast<int32_t>(SB_STATIONS_MAX);
    int32_t count = record.total < most ? record.total : most;
    int32_t oldest = record.oldest >= 0 && record.oldest < count ? record.oldest : 0;
    for (int32_t i = 0; i < count; i++)
        add_mac(*found, nullptr, record.entries[(oldest + i) % count].mac);
    return EXIT_STATUS_SUCCESS;
}

static bool accept_soft_block_list(value *said, const char **wanted) {
    *wanted = "a list of MACs like \"00:00:00:00:00:00\", each once, 64 at most";
    for (value *entry = said->first; entry; entry = entry->next) {
        if (!is_mac(entry))
            return false;
        lower(entry);
    }
    return fits(said, SB_STATIONS_MAX);
}

static void plan_soft_block_list(call_plan *plan, const setting_change *change) {
    const value *missing = keep_what_fits(change->now, change->then, same_mac, [&](const value *entry) {
        plan_text(plan, change, PROC_wlan_set_softblock_black_list_del, mac_of(entry));
    });
    for (; missing; missing = missing->next)
        plan_text(plan, change, PROC_wlan_set_softblock_black_list_add, missing);
}

const setting_list soft_block_list = {read_soft_block_list, accept_soft_block_list, plan_soft_block_list};
