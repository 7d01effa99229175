#include "client/open_metrics.h"

#include <string.h>

#include "client/utf8.h"

enum class metric_subject { SERVER, RADIO, VAP, RSSI };

enum class metric_type { GAUGE, COUNTER };

// From what a member counts to the unit of its metric.
enum class metric_scale { AS_IT_IS, PERCENT_TO_RATIO, MEGAHERTZ_TO_HERTZ };

// A family: a line a subject. The member may lie within another one: "noise_floor.minimum"; "" is the constant 1 with
// all that identifies the subject as labels.
struct metric_family {
    const char *name;
    const char *unit;  // which the name ends in, "" without one
    const char *member;
    const char *help;
    metric_subject subject;
    metric_type type;
    metric_scale scale;
};

// Facts that do not change from one moment to the next are gauges of 1 with labels. They are not of OpenMetrics' type
// info: node_exporter does not know it and would refuse the whole file.
static const metric_family families[] = {
    {"wlan_config_up", "", "up", "Whether the Wi-Fi configuration server answered.", metric_subject::SERVER,
     metric_type::GAUGE, metric_scale::AS_IT_IS},

    {"wlan_radio_info", "", "", "What a radio is.", metric_subject::RADIO, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_radio_enabled", "", "enabled", "Whether a radio is switched on.", metric_subject::RADIO, metric_type::GAUGE,
     metric_scale::AS_IT_IS},
    {"wlan_radio_channel", "", "channel", "Channel that a radio works on.", metric_subject::RADIO, metric_type::GAUGE,
     metric_scale::AS_IT_IS},
    {"wlan_radio_channel_width_hertz", "hertz", "width", "Channel width that a radio is set to.", metric_subject::RADIO,
     metric_type::GAUGE, metric_scale::MEGAHERTZ_TO_HERTZ},
    {"wlan_radio_transmit_power", "", "transmit_power",
     "Transmit power that a radio is set to, as the driver counts it.", metric_subject::RADIO, metric_type::GAUGE,
     metric_scale::AS_IT_IS},
    {"wlan_radio_utilisation_ratio", "ratio", "utilisation", "Part of the time in which the channel is used.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::PERCENT_TO_RATIO},
    {"wlan_radio_activity_ratio", "ratio", "activity", "Part of the time in which the gateway itself uses the channel.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::PERCENT_TO_RATIO},
    {"wlan_radio_busy_ratio", "ratio", "busy", "Part of the time in which the channel is busy.", metric_subject::RADIO,
     metric_type::GAUGE, metric_scale::PERCENT_TO_RATIO},
    {"wlan_radio_retransmission_ratio", "ratio", "retransmission", "Part of the packets that was sent again.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::PERCENT_TO_RATIO},
    {"wlan_radio_noise_floor_minimum_dbm", "dbm", "noise_floor.minimum", "Noise floor of a radio, minimum.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_radio_noise_floor_maximum_dbm", "dbm", "noise_floor.maximum", "Noise floor of a radio, maximum.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_radio_noise_floor_median_dbm", "dbm", "noise_floor.median", "Noise floor of a radio, median.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_radio_noise_floor_average_dbm", "dbm", "noise_floor.average", "Noise floor of a radio, average.",
     metric_subject::RADIO, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_radio_transmitted_packets", "packets", "tx_packets", "Packets that a radio has sent.", metric_subject::RADIO,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_radio_received_packets", "packets", "rx_packets", "Packets that a radio has received.",
     metric_subject::RADIO, metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_radio_rssi_stations", "stations", "stations",
     "Stations of a radio by their RSSI: label rssi is dB above the noise, and counts with the next higher one.",
     metric_subject::RSSI, metric_type::GAUGE, metric_scale::AS_IT_IS},

    {"wlan_vap_info", "", "", "What a VAP is.", metric_subject::VAP, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_vap_enabled", "", "enabled", "Whether a VAP is switched on.", metric_subject::VAP, metric_type::GAUGE,
     metric_scale::AS_IT_IS},
    {"wlan_vap_up", "", "up", "Whether a VAP is up.", metric_subject::VAP, metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_vap_hidden", "", "hidden", "Whether a VAP keeps its SSID to itself.", metric_subject::VAP,
     metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_vap_stations", "stations", "stations", "Stations that are associated with a VAP.", metric_subject::VAP,
     metric_type::GAUGE, metric_scale::AS_IT_IS},
    {"wlan_vap_transmitted_bytes", "bytes", "tx_bytes", "Bytes that a VAP has sent.", metric_subject::VAP,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_vap_received_bytes", "bytes", "rx_bytes", "Bytes that a VAP has received.", metric_subject::VAP,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_vap_transmitted_packets", "packets", "tx_packets", "Packets that a VAP has sent.", metric_subject::VAP,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_vap_received_packets", "packets", "rx_packets", "Packets that a VAP has received.", metric_subject::VAP,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_vap_transmitted_unicast_packets", "packets", "tx_unicast", "Packets that a VAP has sent to one station.",
     metric_subject::VAP, metric_type::COUNTER, metric_scale::AS_IT_IS},
    {"wlan_vap_transmitted_multicast_packets", "packets", "tx_multicast",
     "Packets that a VAP has sent to many stations.", metric_subject::VAP, metric_type::COUNTER,
     metric_scale::AS_IT_IS},
    {"wlan_vap_receive_errors", "", "rx_errors", "Errors that a VAP met while it received.", metric_subject::VAP,
     metric_type::COUNTER, metric_scale::AS_IT_IS},
};

// A label of an info metric and the member that it shows, which may have another name.
struct metric_label {
    const char *name;
    const char *member;
};

static const metric_label radio_labels[] = {{"standard", "standard"}};
static const metric_label vap_labels[] = {
    {"radio", "radio"}, {"interface", "interface"}, {"ssid", "ssid"}, {"bssid", "bssid"}, {"security", "security"},
};

static bool is_number(const value *found) {
    return found && (found->kind == value_kind::SIGNED || found->kind == value_kind::BOOLEAN);
}

// A path is at most two names with a dot between.
static const value *find_path(const value *object, const char *path) {
    const char *dot = strchr(path, '.');
    if (!dot)
        return find_member(object, path);
    for (const value *member = object->first; member; member = member->next)
        if (strlen(member->name) == static_cast<size_t>(dot - path) &&
            strncmp(member->name, path, strlen(member->name)) == 0)
            return find_member(member, dot + 1);
    return nullptr;
}

// In double quotes, with the three characters escaped that the format escapes; what is no UTF-8 becomes U+FFFD.
static void print_label_text(FILE *out, const value *text) {
    putc('"', out);
    size_t used;
    for (size_t at = 0; at < text->length; at += used) {
        const char *c = text->text + at;
        used = utf8_length(c, text->length - at);
        if (used == 0)
            fputs("\xef\xbf\xbd", out);
        else if (*c == '\n')
            fputs("\\n", out);
        else if (*c == '"' || *c == '\\')
            fprintf(out, "\\%c", *c);
        else
            fwrite(c, 1, used, out);
        used = used ? used : 1;
    }
    putc('"', out);
}

static void print_label(FILE *out, const char *separator, const char *name, const value *shown) {
    if (!shown || shown->kind == value_kind::NOTHING)
        return;
    fprintf(out, "%s%s=", separator, name);
    if (shown->kind == value_kind::TEXT)
        print_label_text(out, shown);
    else
        fprintf(out, "\"%lld\"", static_cast<long long>(shown->number));
}

static void print_number(FILE *out, const value *shown, metric_scale scale) {
    long long number = shown->kind == value_kind::BOOLEAN ? shown->truth : shown->number;
    switch (scale) {
        case metric_scale::AS_IT_IS:
            fprintf(out, "%lld", number);
            break;
        case metric_scale::PERCENT_TO_RATIO:
            fprintf(out, "%lld.%02lld", number / 100, number % 100);
            break;
        case metric_scale::MEGAHERTZ_TO_HERTZ:
            fprintf(out, "%lld000000", number);
            break;
    }
}

static const char *suffix_of(metric_type type) {
    return type == metric_type::COUNTER ? "_total" : "";
}

// Before the first line of a family; a family without a line is left out.
static void print_head(FILE *out, const metric_family *family, bool *begun) {
    if (*begun)
        return;
    fprintf(out, "# HELP %s %s\n# TYPE %s %s\n", family->name, family->help, family->name,
            family->type == metric_type::COUNTER ? "counter" : "gauge");
    if (*family->unit)
        fprintf(out, "# UNIT %s %s\n", family->name, family->unit);
    *begun = true;
}

static void print_server(FILE *out, const metric_family *family, const value *facts) {
    bool begun = false;
    print_head(out, family, &begun);
    fprintf(out, "%s ", family->name);
    print_number(out, find_member(facts, family->member), family->scale);
    putc('\n', out);
}

template <size_t count>
static void print_info(FILE *out, const metric_family *family, const value *subject, const char *identity,
                       const metric_label (&labels)[count], bool *begun) {
    print_head(out, family, begun);
    fprintf(out, "%s{", family->name);
    print_label(out, "", identity, find_member(subject, identity));
    for (const metric_label &label : labels)
        print_label(out, ",", label.name, find_member(subject, label.member));
    fputs("} 1\n", out);
}

static void print_sample(FILE *out, const metric_family *family, const value *subject, const char *identity,
                         bool *begun) {
    const value *shown = find_path(subject, family->member);
    if (!is_number(shown))
        return;
    print_head(out, family, begun);
    fprintf(out, "%s%s{", family->name, suffix_of(family->type));
    print_label(out, "", identity, find_member(subject, identity));
    fputs("} ", out);
    print_number(out, shown, family->scale);
    putc('\n', out);
}

static void print_histogram(FILE *out, const metric_family *family, const value *radio, bool *begun) {
    const value *histogram = find_member(radio, "rssi_histogram");
    for (const value *entry = histogram ? histogram->first : nullptr; entry; entry = entry->next) {
        const value *shown = find_member(entry, family->member);
        if (!is_number(shown))
            continue;
        print_head(out, family, begun);
        fprintf(out, "%s{", family->name);
        print_label(out, "", "radio", find_member(radio, "radio"));
        print_label(out, ",", "rssi", find_member(entry, "rssi"));
        fputs("} ", out);
        print_number(out, shown, family->scale);
        putc('\n', out);
    }
}

static void print_radio(FILE *out, const metric_family *family, const value *radio, bool *begun) {
    if (*family->member)
        print_sample(out, family, radio, "radio", begun);
    else
        print_info(out, family, radio, "radio", radio_labels, begun);
}

static void print_vap(FILE *out, const metric_family *family, const value *vap, bool *begun) {
    if (*family->member)
        print_sample(out, family, vap, "vap", begun);
    else
        print_info(out, family, vap, "vap", vap_labels, begun);
}

using subject_printer = void (*)(FILE *, const metric_family *, const value *, bool *);

static void print_each(FILE *out, const metric_family *family, const value *list, subject_printer print) {
    bool begun = false;
    for (const value *subject = list ? list->first : nullptr; subject; subject = subject->next)
        print(out, family, subject, &begun);
}

static void print_family(FILE *out, const metric_family *family, const value *facts) {
    switch (family->subject) {
        case metric_subject::SERVER:
            print_server(out, family, facts);
            break;
        case metric_subject::RADIO:
            print_each(out, family, find_member(facts, "radios"), print_radio);
            break;
        case metric_subject::VAP:
            print_each(out, family, find_member(facts, "vaps"), print_vap);
            break;
        case metric_subject::RSSI:
            print_each(out, family, find_member(facts, "radios"), print_histogram);
            break;
    }
}

void print_open_metrics(FILE *out, const value *facts) {
    for (const metric_family &family : families)
        print_family(out, &family, facts);
    fputs("# EOF\n", out);
}
