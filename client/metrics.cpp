#include "client/metrics.h"

#include "client/ask.h"
#include "client/open_metrics.h"
#include "client/radio.h"
#include "client/replace_file.h"
#include "client/vaps.h"
#include "server/records.h"

const option_row metrics_options[] = {
    {"file", "PATH", "write to this file, which is replaced in one step", word_kind::FILE_NAME, '\0'},
};
const size_t metrics_option_count = sizeof metrics_options / sizeof *metrics_options;

static void add_counter(value *to, const char *name, bool is_told, uint32_t count) {
    if (is_told)
        add_number(to, name, count);
    else
        add_nothing(to, name);
}

// What the driver's tools count of an interface. One that is not up has no counters, and nobody is asked.
static void add_traffic(gathering *from, value *to, int index, bool up) {
    wlan_basicStats_t traffic = {};
    bool is_told = up && gather_record(from, PROC_wlan_get_basic_stats, index, &traffic);
    add_counter(to, "tx_bytes", is_told, traffic.tx_bytes);
    add_counter(to, "rx_bytes", is_told, traffic.rx_bytes);
    add_counter(to, "tx_packets", is_told, traffic.tx_packets);
    add_counter(to, "rx_packets", is_told, traffic.rx_packets);
}

static void add_details(gathering *from, value *to, int index, bool up) {
    wlan_stats_t details = {};
    bool is_told = up && gather_record(from, PROC_wlan_get_stats, index, &details);
    add_counter(to, "rx_errors", is_told, details.rx_errors);
    add_counter(to, "tx_unicast", is_told, details.tx_unicast);
    add_counter(to, "tx_multicast", is_told, details.tx_multicast);
}

static value *gather_vaps(gathering *from, int count) {
    value *vaps = new_list();
    for (int index = 1; index <= count && from->status == EXIT_STATUS_SUCCESS; index++) {
        value *vap = add_object(vaps, nullptr);
        add_vap(from, vap, index);
        add_number(vap, "radio", radio_of_vap(index));
        bool up = is_up(vap);
        add_boolean(vap, "up", up);
        add_traffic(from, vap, index, up);
        add_details(from, vap, index, up);
    }
    return vaps;
}

// Without a collector a radio has none of these, which is no failure.
static void add_collected(gathering *from, value *to, int first_vap) {
    add_readings(from, to, first_vap);
}

// With a server that answers: everything. Else only that it does not; half the numbers would look like a gateway with
// half its VAPs.
static value *gather_facts(gathering *from) {
    int count = gather_vap_count(from);
    value *vaps = gather_vaps(from, count);
    value *radios = gather_radios(from, count, vaps, add_collected);
    value *facts = new_object();
    bool answers = from->status == EXIT_STATUS_SUCCESS;
    add_boolean(facts, "up", answers);
    if (answers) {
        add_value(facts, "radios", radios);
        add_value(facts, "vaps", vaps);
    } else {
        free_value(radios);
        free_value(vaps);
    }
    return facts;
}

static client_exit_status write_file(client_session *session, const char *path, const value *facts) {
    replaced_file file;
    if (begin_replacing(&file, path, READABLE_FOR_ALL)) {
        print_open_metrics(file.stream, facts);
        if (end_replacing(&file))
            return EXIT_STATUS_SUCCESS;
    }
    return complain(session, EXIT_STATUS_LOCAL, "cannot write %.256s: %m", path);
}

// Frees the facts.
static client_exit_status complain_of_server(client_session *session, client_exit_status status, value *facts) {
    value *answer = new_answer(session);
    add_value(answer, "result", facts);
    return complain_in(session, answer, status, session->problem);
}

client_exit_status run_metrics(client_session *session, const command_line *line) {
    gathering from = {session, EXIT_STATUS_SUCCESS};
    value *facts = gather_facts(&from);
    const char *path = option_value(line, "file");
    client_exit_status written = path ? write_file(session, path, facts) : EXIT_STATUS_SUCCESS;
    if (written != EXIT_STATUS_SUCCESS) {
        free_value(facts);
        return written;
    }
    bool is_text = speaks_to_people(session);
    if (is_text && !path)
        print_open_metrics(session->out, facts);
    if (from.status != EXIT_STATUS_SUCCESS)
        return complain_of_server(session, from.status, facts);
    if (!is_text)
        return show(session, facts);
    free_value(facts);
    return EXIT_STATUS_SUCCESS;
}
