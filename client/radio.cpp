#include "client/radio.h"

#include <stdio.h>

#include "client/ask.h"
#include "client/bars.h"
#include "client/names.h"
#include "client/vaps.h"

// Entry i of the histogram counts the stations whose RSSI is 2i or 2i+1 dB above the noise; the first also those below,
// the last also those above.
constexpr size_t HISTOGRAM_ENTRIES = 37;
constexpr int64_t RSSI_OF_AN_ENTRY = 2;

// What the server says for a number that nobody has measured.
constexpr int64_t NOT_MEASURED = -1;

// "72-73" with any numbers.
constexpr size_t RANGE_SIZE = sizeof "-2147483648--2147483648";

constexpr const char PERCENT[] = "%";
constexpr const char DBM[] = "dBm";

// A rate and an interval in seconds that suit: the collector is started with them where nobody chose others.
constexpr int USUAL_RATE = 30;
constexpr int USUAL_INTERVAL = 1800;

enum channel_statistic { UTILISATION, ACTIVITY, BUSY, CHANNEL_STATISTICS };

static bool gather_channel_statistics(gathering *from, int index, int64_t statistics[CHANNEL_STATISTICS]) {
    if (!gather_numbers(from, PROC_wlan_get_channel_statistics, index, statistics, CHANNEL_STATISTICS))
        return false;
    bool is_measured = false;
    for (int i = 0; i < CHANNEL_STATISTICS; i++)
        is_measured = is_measured || statistics[i] != NOT_MEASURED;
    return is_measured;
}

// No percentage is negative.
static void add_percentage(value *to, const char *name, int64_t number) {
    if (number >= 0)
        add_measure(to, name, number, PERCENT);
    else
        add_nothing(to, name);
}

void add_utilisation(gathering *from, value *to, int index) {
    int64_t statistics[CHANNEL_STATISTICS];
    bool is_measured = gather_channel_statistics(from, index, statistics);
    add_percentage(to, "utilisation", is_measured ? statistics[UTILISATION] : NOT_MEASURED);
}

static void add_retransmission(gathering *from, value *to, int index) {
    int64_t percent;
    bool is_told = gather_number(from, PROC_wlan_get_retransmission_metric, index, &percent);
    add_percentage(to, "retransmission", is_told ? percent : NOT_MEASURED);
}

// The collector counts in 32 bits, and the server takes them for signed ones.
static void add_packets(gathering *from, value *to, const char *name, uint32_t procedure, int index) {
    int64_t packets;
    if (!gather_number(from, procedure, index, &packets) || packets < INT32_MIN)
        add_nothing(to, name);
    else
        add_number(to, name, packets < 0 ? packets + (int64_t{UINT32_MAX} + 1) : packets);
}

// -1 dBm is no noise floor that anyone has measured.
static void add_noise(value *to, const char *name, int64_t noise) {
    if (noise == NOT_MEASURED)
        add_nothing(to, name);
    else
        add_measure(to, name, noise, DBM);
}

static void add_noise_floor(gathering *from, value *to, int index) {
    static const char *const names[] = {"minimum", "maximum", "median", "average"};
    constexpr size_t count = sizeof names / sizeof *names;
    int64_t noise[count];
    bool is_told = gather_numbers(from, PROC_wlan_get_channel_noise_floor, index, noise, count);
    value *floor = add_object(to, "noise_floor");
    for (size_t i = 0; i < count; i++)
        add_noise(floor, names[i], is_told ? noise[i] : NOT_MEASURED);
}

struct rssi_histogram {
    int64_t stations[HISTOGRAM_ENTRIES];
    int64_t most;
    size_t first;  // of the entries that count somebody, with `last`
    size_t last;
};

static void measure_histogram(rssi_histogram *histogram) {
    histogram->most = 0;
    histogram->first = histogram->last = 0;
    for (size_t i = 0; i < HISTOGRAM_ENTRIES; i++) {
        int64_t stations = histogram->stations[i];
        if (stations <= 0)
            continue;
        histogram->first = histogram->most == 0 ? i : histogram->first;
        histogram->last = i;
        histogram->most = stations > histogram->most ? stations : histogram->most;
    }
}

static void draw_entry(value *list, const rssi_histogram *histogram, size_t i, bool blocks) {
    char range[RANGE_SIZE];
    char bar[BAR_SIZE];
    int64_t rssi = RSSI_OF_AN_ENTRY * static_cast<int64_t>(i);
    value *row = add_object(list, nullptr);
    snprintf(range, sizeof range, "%d-%d", static_cast<int>(rssi), static_cast<int>(rssi + RSSI_OF_AN_ENTRY - 1));
    add_string(row, "rssi", range);
    add_number(row, "stations", histogram->stations[i]);
    draw_bar(bar, histogram->stations[i], histogram->most, blocks);
    add_string(row, "bar", bar);
}

// From the first to the last entry that counts somebody: what lies outside is empty and would fill the screen.
static void draw_histogram(value *to, const rssi_histogram *histogram, bool blocks) {
    value *list = add_list(to, "stations by rssi");
    list->readers = audience::PEOPLE;
    for (size_t i = histogram->first; histogram->most > 0 && i <= histogram->last; i++)
        draw_entry(list, histogram, i, blocks);
}

static void list_histogram(value *to, const rssi_histogram *histogram) {
    value *list = add_list(to, "rssi_histogram");
    list->readers = audience::PROGRAMS;
    for (size_t i = 0; i < HISTOGRAM_ENTRIES; i++) {
        value *entry = add_object(list, nullptr);
        add_number(entry, "rssi", RSSI_OF_AN_ENTRY * static_cast<int64_t>(i));
        if (histogram->stations[i] >= 0)
            add_number(entry, "stations", histogram->stations[i]);
        else
            add_nothing(entry, "stations");
    }
}

static void add_histogram(gathering *from, value *to, int index) {
    rssi_histogram histogram;
    if (!gather_numbers(from, PROC_wlan_get_rssi_table, index, histogram.stations, HISTOGRAM_ENTRIES)) {
        add_nothing(to, "rssi_histogram");
        return;
    }
    measure_histogram(&histogram);
    draw_histogram(to, &histogram, has_blocks(from->session->settings.terminal));
    list_histogram(to, &histogram);
}

static void add_nothing_measured(value *to) {
    static const char *const names[] = {"utilisation", "activity",   "busy",        "retransmission",
                                        "tx_packets",  "rx_packets", "noise_floor", "rssi_histogram"};
    for (const char *name : names)
        add_nothing(to, name);
}

bool add_readings(gathering *from, value *to, int index) {
    int64_t statistics[CHANNEL_STATISTICS];
    if (!gather_channel_statistics(from, index, statistics)) {
        add_nothing_measured(to);
        return false;
    }
    add_percentage(to, "utilisation", statistics[UTILISATION]);
    add_percentage(to, "activity", statistics[ACTIVITY]);
    add_percentage(to, "busy", statistics[BUSY]);
    add_retransmission(from, to, index);
    add_packets(from, to, "tx_packets", PROC_wlan_get_radio_tx_packets, index);
    add_packets(from, to, "rx_packets", PROC_wlan_get_radio_rx_packets, index);
    add_noise_floor(from, to, index);
    add_histogram(from, to, index);
    return true;
}

static client_exit_status complain_of_no_collector(client_session *session, int index) {
    char operation[OPERATION_NAME_SIZE];
    operation_name(row_of(PROC_wlan_set_rad_stat_enable), operation);
    return complain(session, EXIT_STATUS_NOT_FOUND,
                    "no statistics collector has measured anything for VAP %d; this starts one: %s %d 1 %d %d", index,
                    operation, index, USUAL_RATE, USUAL_INTERVAL);
}

client_exit_status run_radio(client_session *session, const command_line *line) {
    int index;
    client_exit_status status = parse_vap(session, line->words[0], &index);
    if (status != EXIT_STATUS_SUCCESS)
        return status;
    gathering from = {session, EXIT_STATUS_SUCCESS};
    value *result = new_object();
    add_number(result, "vap", index);
    bool measured = add_readings(&from, result, index);
    if (measured && from.status == EXIT_STATUS_SUCCESS)
        return show(session, result);
    free_value(result);
    if (from.status != EXIT_STATUS_SUCCESS)
        return complain_of_call(session, from.status);
    return complain_of_no_collector(session, index);
}
