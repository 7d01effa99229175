#include "client/vaps.h"

#include <string.h>

#include "client/ask.h"
#include "client/security.h"

constexpr const char STATUS_UP[] = "Up";

// "1-8" with any numbers.
constexpr size_t RANGE_SIZE = sizeof "-2147483648--2147483648";

// The driver's way of having no address.
constexpr const char NULL_ADDRESS[] = "00:00:00:00:00:00";

client_exit_status parse_vap(client_session *session, char *word, int *index) {
    argument_value parsed;
    bool fits =
        parse_argument(argument_kind::VAP, word, &parsed) && parsed.number >= 1 && parsed.number <= VAP_COUNT_MAX;
    if (!fits)
        return complain(session, EXIT_STATUS_USAGE, "VAP is \"%.64s\", but has to be a number from 1 to %d", word,
                        VAP_COUNT_MAX);
    *index = static_cast<int>(parsed.number);
    return EXIT_STATUS_SUCCESS;
}

int gather_vap_count(gathering *from) {
    int64_t count;
    if (!gather_number(from, PROC_wlan_get_number_of_entries, 0, &count) || count < 0)
        return 0;
    return count < VAP_COUNT_MAX ? static_cast<int>(count) : VAP_COUNT_MAX;
}

// What getChannelBw's numbers stand for, in MHz. 2 is 40 MHz, too: with the neighbours' stations left alone.
static void add_width(gathering *from, value *to, int index) {
    static constexpr int64_t megahertz[] = {20, 40, 40, 80};
    constexpr int64_t count = sizeof megahertz / sizeof *megahertz;
    int64_t width;
    if (gather_number(from, PROC_wlan_get_channel_bw, index, &width) && width >= 0 && width < count)
        add_measure(to, "width", megahertz[width], "MHz");
    else
        add_nothing(to, "width");
}

static void add_bssid(gathering *from, value *to, int index) {
    char bssid[GATHERED_TEXT_SIZE];
    if (gather_text(from, PROC_wlan_get_bssid, index, bssid) && *bssid && strcmp(bssid, NULL_ADDRESS) != 0)
        add_string(to, "bssid", bssid);
    else
        add_nothing(to, "bssid");
}

// The server says which networks are advertised.
static void add_hidden(gathering *from, value *to, int index) {
    int64_t advertised;
    if (gather_number(from, PROC_wlan_get_ssid_advertisement_enabled, index, &advertised))
        add_boolean(to, "hidden", advertised == 0);
    else
        add_nothing(to, "hidden");
}

bool is_up(const value *vap) {
    const value *status = find_member(vap, "status");
    return status && status->kind == value_kind::TEXT && strcmp(status->text, STATUS_UP) == 0;
}

static emphasis emphasis_of_status(bool up, bool enabled) {
    if (up)
        return emphasis::GOOD;
    return enabled ? emphasis::BAD : emphasis::FAINT;
}

void add_vap(gathering *from, value *to, int index) {
    add_number(to, "vap", index);
    add_gathered_word(from, to, "interface", PROC_wlan_get_name, index);
    const value *enabled = add_gathered_boolean(from, to, "enabled", PROC_wlan_get_enable, index);
    value *status = add_gathered_word(from, to, "status", PROC_wlan_get_status, index);
    bool up = is_up(to);
    status->shown = emphasis_of_status(up, enabled->truth);
    add_gathered_text(from, to, "ssid", PROC_wlan_get_ssid, index);
    if (up) {
        add_bssid(from, to, index);
        add_gathered_number(from, to, "channel", PROC_wlan_get_current_channel, index);
        add_width(from, to, index);
    } else {
        add_nothing(to, "bssid");
        add_nothing(to, "channel");
        add_nothing(to, "width");
    }
    add_security(from, to, index);
    add_hidden(from, to, index);
    if (up)
        add_gathered_number(from, to, "stations", PROC_wlan_get_assoc_devices_num, index);
    else
        add_nothing(to, "stations");
}

// The channel that is really used. Only an interface that is up tells it, and all VAPs of a radio share it.
static void add_current_channel(value *to, int radio, const value *vaps) {
    for (const value *vap = vaps->first; vap; vap = vap->next) {
        const value *index = find_member(vap, "vap");
        const value *channel = find_member(vap, "channel");
        if (radio_of_vap(static_cast<int>(index->number)) == radio && channel->kind == value_kind::SIGNED) {
            add_number(to, "channel", channel->number);
            return;
        }
    }
    add_nothing(to, "channel");
}

// For people in one word; programs get a number that is null when the driver chooses.
static void add_configured_channel(gathering *from, value *to, int index) {
    int64_t channel = 0;
    int64_t automatic = 0;
    bool is_told = gather_number(from, PROC_wlan_get_channel, index, &channel);
    bool is_known = gather_number(from, PROC_wlan_get_auto_channel_enable, index, &automatic);
    if (is_known && automatic) {
        add_string(to, "configured", "auto")->readers = audience::PEOPLE;
    } else {
        value *configured =
            is_told && channel != 0 ? add_number(to, "configured", channel) : add_nothing(to, "configured");
        configured->readers = audience::PEOPLE;
    }
    bool is_fixed = is_told && channel != 0 && !automatic;
    value *number = is_fixed ? add_number(to, "configured_channel", channel) : add_nothing(to, "configured_channel");
    number->readers = audience::PROGRAMS;
    value *choice = is_known ? add_boolean(to, "auto_channel", automatic != 0) : add_nothing(to, "auto_channel");
    choice->readers = audience::PROGRAMS;
}

void add_radio(gathering *from, value *to, int radio, const value *vaps) {
    int first = first_vap_of(radio);
    int last = first + VAPS_OF_A_RADIO - 1;
    char range[RANGE_SIZE];
    snprintf(range, sizeof range, "%d-%d", first, last);
    add_number(to, "radio", radio);
    add_string(to, "vaps", range)->readers = audience::PEOPLE;
    add_number(to, "first_vap", first)->readers = audience::PROGRAMS;
    add_number(to, "last_vap", last)->readers = audience::PROGRAMS;
    add_gathered_boolean(from, to, "enabled", PROC_wlan_get_radio_enabled, first);
    add_gathered_word(from, to, "standard", PROC_wlan_get_standard, first);
    add_current_channel(to, radio, vaps);
    add_configured_channel(from, to, first);
    add_width(from, to, first);
    add_gathered_number(from, to, "transmit_power", PROC_wlan_get_transmit_power, first);
}

value *gather_radios(gathering *from, int vap_count, const value *vaps, radio_members add_more) {
    value *radios = new_list();
    for (int radio = 0; radio < RADIO_COUNT && first_vap_of(radio) <= vap_count; radio++) {
        value *made = add_object(radios, nullptr);
        add_radio(from, made, radio, vaps);
        add_more(from, made, first_vap_of(radio));
    }
    return radios;
}
