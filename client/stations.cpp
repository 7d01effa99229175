#include "client/stations.h"

#include <string.h>

#include "client/ask.h"
#include "client/record_fields.h"
#include "client/results.h"
#include "client/vaps.h"
#include "server/records.h"

// The driver counts stations in seven bits.
constexpr int64_t STATIONS_MAX = 127;

// Members of a station that a line has no room for. An SSID is the VAP's; the counters of packets to many and to one
// are parts of tx_packets.
static const char *const left_to_programs[] = {"state", "mc_tx_packets", "uc_tx_packets", "ssid"};

static bool is_left_to_programs(const char *name) {
    for (const char *left : left_to_programs)
        if (strcmp(left, name) == 0)
            return true;
    return false;
}

// The stations of one VAP stand together from a place of the list on, which is a link: that of the station before, or
// the list's own.
struct station_list {
    value *stations;
    value **beginning;
};

static station_list list_behind(value *stations) {
    return {stations, stations->last ? &stations->last->next : &stations->first};
}

static const char *address_of(const value *station) {
    return find_member(station, "mac")->text;
}

// In the order of their addresses: so two lists can be compared, and a station stays where it was when another comes.
static void insert_station(const station_list *list, value *station) {
    value **place = list->beginning;
    while (*place && strcmp(address_of(*place), address_of(station)) <= 0)
        place = &(*place)->next;
    station->next = *place;
    *place = station;
    if (!station->next)
        list->stations->last = station;
}

static void add_station(const station_list *list, int index, const wlan_device_t *record) {
    value *station = new_object();
    add_number(station, "vap", index);
    add_record(station, find_record("wlan_device_t"), record, 0);
    for (value *member = station->first; member; member = member->next)
        if (is_left_to_programs(member->name))
            member->readers = audience::PROGRAMS;
    insert_station(list, station);
}

// A table has room for 32 stations. Those behind them are asked for one by one, as long as there is one at the next
// position: they may be fewer by now than when they were counted.
static void add_further_stations(gathering *from, const station_list *list, int index) {
    int64_t count;
    if (!gather_number(from, PROC_wlan_get_assoc_devices_num, index, &count))
        return;
    for (int64_t device = ASSOC_DEVICES_MAX; device < count && device < STATIONS_MAX; device++) {
        const int64_t arguments[ARGUMENTS_MAX] = {index, device};
        wlan_device_t station;
        client_exit_status status = ask_record_at(from->session, PROC_wlan_get_assoc_device, arguments, &station);
        if (status != EXIT_STATUS_SUCCESS) {
            from->status = status == EXIT_STATUS_FAILURE ? from->status : status;
            return;
        }
        add_station(list, index, &station);
    }
}

// False when the server has no list for this VAP.
static bool add_stations(gathering *from, value *to, int index) {
    wlan_assoc_devices_table table;
    if (!gather_record(from, PROC_wlan_get_assoc_devices_table, index, &table))
        return false;
    const station_list list = list_behind(to);
    for (uint32_t i = 0; i < table.NumOfEntries && i < ASSOC_DEVICES_MAX; i++)
        add_station(&list, index, &table.Devices[i]);
    if (table.NumOfEntries >= ASSOC_DEVICES_MAX)
        add_further_stations(from, &list, index);
    return true;
}

// Of every VAP that has some. To count them costs the gateway much less than to list them, and a VAP that is not up
// has none.
static void add_all_stations(gathering *from, value *to) {
    int vap_count = gather_vap_count(from);
    for (int index = 1; index <= vap_count; index++) {
        int64_t count;
        if (gather_number(from, PROC_wlan_get_assoc_devices_num, index, &count) && count > 0)
            add_stations(from, to, index);
    }
}

static client_exit_status answer(gathering *from, value *result, int missing) {
    client_session *session = from->session;
    if (from->status == EXIT_STATUS_SUCCESS && missing == 0)
        return show(session, result);
    free_value(result);
    if (from->status != EXIT_STATUS_SUCCESS)
        return complain_of_call(session, from->status);
    return complain(session, EXIT_STATUS_FAILURE, "the server has no list of the stations of VAP %d: is it up?",
                    missing);
}

client_exit_status run_stations(client_session *session, const command_line *line) {
    int indices[VAP_COUNT_MAX];
    for (size_t i = 0; i < line->word_count; i++) {
        client_exit_status status = parse_vap(session, line->words[i], &indices[i]);
        if (status != EXIT_STATUS_SUCCESS)
            return status;
    }
    gathering from = {session, EXIT_STATUS_SUCCESS};
    value *result = new_object();
    value *stations = add_list(result, "stations");
    int missing = 0;
    if (line->word_count == 0)
        add_all_stations(&from, stations);
    for (size_t i = 0; i < line->word_count && missing == 0; i++)
        if (!add_stations(&from, stations, indices[i]))
            missing = indices[i];
    return answer(&from, result, missing);
}
