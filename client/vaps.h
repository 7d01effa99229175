// VAPs and radios as the commands speak of them: which there are, and what the getters say of each.
//
// VAPs 1 to 8 are addressed on radio 0 and 9 to 16 on radio 1; what concerns a whole radio goes by its first VAP. More
// than that is not assumed of either: everything else is what the getters say.
#pragma once

#include "client/gather.h"

constexpr int VAP_COUNT_MAX = 16;  // of the addressing, whatever a server says
constexpr int VAPS_OF_A_RADIO = 8;
constexpr int RADIO_COUNT = VAP_COUNT_MAX / VAPS_OF_A_RADIO;

constexpr int first_vap_of(int radio) {
    return 1 + radio * VAPS_OF_A_RADIO;
}

constexpr int radio_of_vap(int index) {
    return (index - 1) / VAPS_OF_A_RADIO;
}

// A word of the command line as a VAP, 1 to 16. Anything else is complained of: EXIT_STATUS_USAGE.
client_exit_status parse_vap(client_session *session, char *word, int *index);

// How many VAPs the server says there are, 0 to 16.
int gather_vap_count(gathering *from);

// A VAP's members: vap, interface, enabled, status, ssid, bssid, channel, width, security, hidden, stations. Of a VAP
// that is not up there is no bssid, channel, width or number of stations: all of these belong to its interface.
void add_vap(gathering *from, value *to, int index);

// A radio's members: radio, its VAPs, enabled, standard, channel (that of the first of its VAPs in the list `vaps` that
// is up), configured_channel and auto_channel, width, transmit_power.
void add_radio(gathering *from, value *to, int radio, const value *vaps);

// A list of all radios that VAPs are addressed on, with what `add_more` adds to each from its first VAP.
using radio_members = void (*)(gathering *from, value *to, int first_vap);
value *gather_radios(gathering *from, int vap_count, const value *vaps, radio_members add_more);

// Whether a VAP's members say that it is up.
bool is_up(const value *vap);
