#include "simulator/scenario.h"

#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "simulator/scenario_reader.h"

// The air around a radio of which the scenario says nothing.
constexpr scenario_air AIR = {false, 20, 5, 25, 2, -95, 3, 0.1};

// What a scan takes when the scenario does not say it.
constexpr double SCAN_SECONDS = 2;

// Items, one function each.

// radio 0 band=2.4 mac=00:03:7F:10:00:00 txpower=20 scan_seconds=2
static bool read_radio(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "radio", 0, SCENARIO_RADIOS - 1, &number))
        return false;
    scenario_radio *radio = &reader->scene->radios[number];
    if (radio->declared)
        return complain(reader, "radio %d is declared twice", number);
    radio->declared = true;
    radio->txpower = 20;
    radio->air = AIR;
    radio->scan_seconds = SCAN_SECONDS;
    char band[SCENARIO_WORD_SIZE];
    field fields[] = {
        {"band", band, 0, 0, FIELD_WORD, true, false},
        {"mac", radio->mac, 0, 0, FIELD_MAC, true, false},
        {"txpower", &radio->txpower, 0, 40, FIELD_INTEGER, false, false},
        {"scan_seconds", &radio->scan_seconds, 0, 0, FIELD_SECONDS, false, false},
    };
    if (!read_fields(reader, 2, fields, 4))
        return false;
    radio->five_ghz = strcmp(band, "5") == 0;
    if (!radio->five_ghz && strcmp(band, "2.4") != 0)
        return complain(reader, "band is 2.4 or 5, not \"%s\"", band);
    return true;
}

// air 0 utilisation=35 activity=12 busy=41 noise=-95 retry=4 swing=5 seconds=0.1
static bool read_air(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "radio", 0, SCENARIO_RADIOS - 1, &number))
        return false;
    scenario_radio *radio = &reader->scene->radios[number];
    scenario_air *air = &radio->air;
    if (!radio->declared)
        return complain(reader, "radio %d is not declared yet", number);
    if (air->declared)
        return complain(reader, "air of radio %d stands twice", number);
    air->declared = true;
    field fields[] = {
        {"utilisation", &air->utilisation, 0, 100, FIELD_INTEGER, false, false},
        {"activity", &air->activity, 0, 100, FIELD_INTEGER, false, false},
        {"busy", &air->busy, 0, 100, FIELD_INTEGER, false, false},
        {"retry", &air->retry, 0, 100, FIELD_INTEGER, false, false},
        {"noise", &air->noise, -128, 0, FIELD_INTEGER, false, false},
        {"swing", &air->swing, 0, 50, FIELD_INTEGER, false, false},
        {"seconds", &air->seconds, 0, 0, FIELD_SECONDS, false, false},
    };
    return read_fields(reader, 2, fields, 7);
}

// channel 0 6 frequency=2437 flags=0x000704a0
static bool read_channel(scenario_reader *reader) {
    int number = 0, channel = 0;
    if (!read_position(reader, 1, "radio", 0, SCENARIO_RADIOS - 1, &number) ||
        !read_position(reader, 2, "channel", 1, 255, &channel))
        return false;
    scenario_radio *radio = &reader->scene->radios[number];
    if (!radio->declared)
        return complain(reader, "radio %d is not declared yet", number);
    if (scenario_find_channel(radio, (unsigned)channel) != nullptr)
        return complain(reader, "channel %d of radio %d stands twice", channel, number);
    if (radio->channel_count == SCENARIO_CHANNELS)
        return complain(reader, "more than %d channels", SCENARIO_CHANNELS);
    scenario_channel *entry = &radio->channels[radio->channel_count];
    field fields[] = {
        {"frequency", &entry->frequency, 2000, 7000, FIELD_NUMBER, true, false},
        {"flags", &entry->flags, 0, 0xFFFFFFFF, FIELD_NUMBER, true, false},
    };
    if (!read_fields(reader, 3, fields, 2))
        return false;
    entry->number = (unsigned)channel;
    radio->channel_count++;
    return true;
}

// vap 1 radio=0 bssid=00:03:7F:10:00:01 ssid="Home network" enable=1
static bool read_vap(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "VAP", 1, SCENARIO_VAPS, &number))
        return false;
    scenario_vap *vap = &reader->scene->vaps[number - 1];
    if (vap->declared)
        return complain(reader, "VAP %d is declared twice", number);
    vap->declared = true;
    reader->vap_line[number - 1] = reader->line;
    field fields[] = {
        {"radio", &vap->radio, 0, SCENARIO_RADIOS - 1, FIELD_INTEGER, true, false},
        {"bssid", vap->bssid, 0, 0, FIELD_MAC, true, false},
        {"ssid", vap->ssid, 0, 0, FIELD_SSID, false, false},
        {"enable", &vap->enabled, 0, 0, FIELD_FLAG, false, false},
    };
    return read_fields(reader, 2, fields, 4);
}

// counters 1 rx_packets=1000+12 tx_packets=2000+15 rx_bytes=600000+9000 tx_bytes=1500000+16000
static bool read_counters(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "VAP", 1, SCENARIO_VAPS, &number))
        return false;
    scenario_vap *vap = &reader->scene->vaps[number - 1];
    if (!vap->declared)
        return complain(reader, "VAP %d is not declared yet", number);
    field fields[] = {
        {"rx_packets", &vap->rx_packets, 0, 0, FIELD_COUNTER, true, false},
        {"tx_packets", &vap->tx_packets, 0, 0, FIELD_COUNTER, true, false},
        {"rx_bytes", &vap->rx_bytes, 0, 0, FIELD_COUNTER, true, false},
        {"tx_bytes", &vap->tx_bytes, 0, 0, FIELD_COUNTER, true, false},
    };
    return read_fields(reader, 2, fields, 4);
}

// airtime 1 share=125 group=Guests
static bool read_airtime(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "VAP", 1, SCENARIO_VAPS, &number))
        return false;
    scenario_vap *vap = &reader->scene->vaps[number - 1];
    if (!vap->declared)
        return complain(reader, "VAP %d is not declared yet", number);
    if (vap->airtime.declared)
        return complain(reader, "airtime of VAP %d stands twice", number);
    vap->airtime.declared = true;
    field fields[] = {
        {"share", &vap->airtime.share, 0, 1000, FIELD_INTEGER, true, false},
        {"group", vap->airtime.group, 0, 0, FIELD_WORD, false, false},
    };
    return read_fields(reader, 2, fields, 2);
}

// station 1 mac=28:6A:BA:00:00:01 ip=192.168.1.20 rssi=45 tx_rate=130 rx_rate=117 from=5 until=60 packets=10+3
// airtime=20000+1500 tokens=1000 act_tokens=600 unused=200 capabilities=QoS
static bool read_station(scenario_reader *reader) {
    scenario *scene = reader->scene;
    if (scene->station_count == SCENARIO_STATIONS)
        return complain(reader, "more than %d stations", SCENARIO_STATIONS);
    scenario_station *station = &scene->stations[scene->station_count];
    if (!read_position(reader, 1, "VAP", 1, SCENARIO_VAPS, &station->vap))
        return false;
    if (!scene->vaps[station->vap - 1].declared)
        return complain(reader, "VAP %d is not declared yet", station->vap);
    field fields[] = {
        {"mac", station->mac, 0, 0, FIELD_MAC, true, false},
        {"ip", station->ip, 0, 0, FIELD_ADDRESS, true, false},
        {"rssi", &station->rssi, -128, 127, FIELD_INTEGER, true, false},
        {"tx_rate", &station->tx_rate, 0, 10000, FIELD_INTEGER, true, false},
        {"rx_rate", &station->rx_rate, 0, 10000, FIELD_INTEGER, true, false},
        {"from", &station->from, 0, 0, FIELD_SECONDS, false, false},
        {"until", &station->until, 0, 0, FIELD_SECONDS, false, false},
        {"capabilities", station->capabilities, 0, 0, FIELD_WORD, false, false},
        {"packets", &station->packets, 0, 0, FIELD_COUNTER, false, false},
        {"airtime", &station->airtime, 0, 0, FIELD_COUNTER, false, false},
        {"tokens", &station->tokens, 0, UINT32_MAX, FIELD_NUMBER, false, false},
        {"act_tokens", &station->act_tokens, 0, UINT32_MAX, FIELD_NUMBER, false, false},
        {"unused", &station->unused, 0, UINT32_MAX, FIELD_NUMBER, false, false},
    };
    if (!read_fields(reader, 2, fields, sizeof fields / sizeof fields[0]))
        return false;
    if (fields[6].seen && station->until <= station->from)
        return complain(reader, "a station goes after it came: until is larger than from");
    scene->station_count++;
    return true;
}

// neighbour bssid=9C:3D:CF:00:00:01 ssid="Cafe" channel=6 rssi=-60 auth=WPA2 mode=11ng
static bool read_neighbour(scenario_reader *reader) {
    scenario *scene = reader->scene;
    if (scene->neighbour_count == SCENARIO_NEIGHBOURS)
        return complain(reader, "more than %d neighbours", SCENARIO_NEIGHBOURS);
    scenario_neighbour *neighbour = &scene->neighbours[scene->neighbour_count];
    field fields[] = {
        {"bssid", neighbour->bssid, 0, 0, FIELD_MAC, true, false},
        {"ssid", neighbour->ssid, 0, 0, FIELD_SSID, true, false},
        {"channel", &neighbour->channel, 1, 255, FIELD_NUMBER, true, false},
        {"rssi", &neighbour->rssi, -128, 127, FIELD_INTEGER, true, false},
        {"auth", neighbour->auth, 0, 0, FIELD_WORD, true, false},
        {"mode", neighbour->mode, 0, 0, FIELD_WORD, true, false},
    };
    if (!read_fields(reader, 1, fields, 6))
        return false;
    scene->neighbour_count++;
    return true;
}

// Whether the fields of a VAP's wps item say together what becomes of an exchange.
static bool check_wps(scenario_reader *reader, scenario_wps *wps, const char *result, bool has_seconds, bool has_mac) {
    static const char *const results[] = {"timeout", "success", "failed"};
    for (int i = 0; i < 3; i++) {
        if (strcmp(result, results[i]) != 0)
            continue;
        wps->result = (scenario_wps_result)i;
        if (wps->result != WPS_RUNS_OUT && !has_seconds)
            return complain(reader, "wps needs seconds= with result=%s", result);
        return wps->result != WPS_SUCCEEDS || has_mac || complain(reader, "wps needs mac= with result=success");
    }
    return complain(reader, "result is success, failed or timeout, not \"%s\"", result);
}

// A line of a VAP's WPS file: "friendly_name=Living room".
static bool read_wps_line(scenario_reader *reader, int vap, const char *word) {
    scenario *scene = reader->scene;
    scenario_wps_line *line = &scene->wps_lines[scene->wps_line_count];
    size_t length = strcspn(word, "=");
    if (length == 0 || length >= sizeof line->key || strcspn(word, " \t") < length)
        return complain(reader, "\"%.*s\" is no key of a WPS file", (int)length, word);
    memcpy(line->key, word, length);
    line->key[length] = '\0';
    for (int i = 0; i < scene->wps_line_count; i++) {
        if (scene->wps_lines[i].vap == vap && strcmp(scene->wps_lines[i].key, line->key) == 0)
            return complain(reader, "%s stands twice", line->key);
    }
    if (!copy_text(word + length + 1, line->value, sizeof line->value))
        return complain(reader, "a value has at most %zu characters", sizeof line->value - 1);
    line->vap = vap;
    scene->wps_line_count++;
    return true;
}

// wps 1 seconds=3 result=success mac=28:6A:BA:4C:10:03 friendly_name="Living room"
static bool read_wps(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "VAP", 1, SCENARIO_VAPS, &number))
        return false;
    scenario_wps *wps = &reader->scene->vaps[number - 1].wps;
    if (!reader->scene->vaps[number - 1].declared)
        return complain(reader, "VAP %d is not declared yet", number);
    if (wps->declared)
        return complain(reader, "wps of VAP %d stands twice", number);
    wps->declared = true;
    char result[SCENARIO_WORD_SIZE] = "timeout";
    field fields[] = {
        {"seconds", &wps->seconds, 0, 0, FIELD_SECONDS, false, false},
        {"result", result, 0, 0, FIELD_WORD, false, false},
        {"mac", wps->mac, 0, 0, FIELD_MAC, false, false},
    };
    // Every other name is a line of the VAP's WPS file.
    for (int i = 2; i < reader->word_count; i++) {
        const char *word = reader->words[i];
        field *wanted = find_field(fields, 3, word);
        bool good = is_assignment(reader, word) &&
                    (wanted != nullptr ? read_field(reader, wanted, word) : read_wps_line(reader, number, word));
        if (!good)
            return false;
    }
    return check_wps(reader, wps, result, fields[0].seen, fields[2].seen);
}

// script apup seconds=0.5
static bool read_script(scenario_reader *reader) {
    static const char *const names[SCENARIO_SCRIPTS] = {"apup", "apup_simple", "fast_down.sh"};
    scenario *scene = reader->scene;
    const char *name = reader->word_count > 1 ? reader->words[1] : "";
    bool known = false;
    for (const char *candidate : names)
        known = known || strcmp(candidate, name) == 0;
    if (!known)
        return complain(reader, "script is apup, apup_simple or fast_down.sh, not \"%s\"", name);
    for (int i = 0; i < scene->script_count; i++) {
        if (strcmp(scene->scripts[i].name, name) == 0)
            return complain(reader, "script %s stands twice", name);
    }
    scenario_script *script = &scene->scripts[scene->script_count++];
    copy_text(name, script->name, sizeof script->name);
    if (reader->word_count != 3 || strncmp(reader->words[2], "seconds=", 8) != 0 ||
        !parse_seconds(reader->words[2] + 8, &script->seconds))
        return complain(reader, "script needs seconds= with 0 to 86400");
    return true;
}

// driver up
static bool read_driver(scenario_reader *reader) {
    static const char *const states[] = {"unloaded", "loaded", "up"};
    for (int i = 0; reader->word_count == 2 && i < 3; i++) {
        if (strcmp(reader->words[1], states[i]) == 0) {
            reader->scene->driver = (scenario_driver)i;
            return true;
        }
    }
    return complain(reader, "driver is unloaded, loaded or up");
}

// defaults none
static bool read_no_defaults(scenario_reader *reader) {
    reader->scene->no_defaults = true;
    bool good = reader->word_count == 2 && strcmp(reader->words[1], "none") == 0;
    return good || complain(reader, "defaults is none, or not there");
}

// The VAP of an item for band steering's tables, which only those of the first radio have.
static bool read_table_vap(scenario_reader *reader, int *vap) {
    if (!read_position(reader, 1, "VAP", 1, VAPS_PER_RADIO, vap))
        return false;
    return reader->scene->vaps[*vap - 1].declared || complain(reader, "VAP %d is not declared yet", *vap);
}

// blacklist2g 1 mac=28:6A:BA:4C:10:01 rssi=42 seconds=600 reason=1
static bool read_blacklisted(scenario_reader *reader) {
    scenario *scene = reader->scene;
    if (scene->blacklisted_count == SCENARIO_BLACKLISTED)
        return complain(reader, "more than %d stations on black lists", SCENARIO_BLACKLISTED);
    scenario_blacklisted *entry = &scene->blacklisted[scene->blacklisted_count];
    field fields[] = {
        {"mac", entry->mac, 0, 0, FIELD_MAC, true, false},
        {"rssi", &entry->rssi, -128, 127, FIELD_INTEGER, true, false},
        {"seconds", &entry->seconds, 0, 0, FIELD_SECONDS, true, false},
        {"reason", &entry->reason, 0, 255, FIELD_INTEGER, false, false},
    };
    if (!read_table_vap(reader, &entry->vap) || !read_fields(reader, 2, fields, 4))
        return false;
    scene->blacklisted_count++;
    return true;
}

// capable5g 1 mac=28:6A:BA:4C:10:01
static bool read_capable(scenario_reader *reader) {
    scenario *scene = reader->scene;
    if (scene->capable_count == SCENARIO_CAPABLE)
        return complain(reader, "more than %d stations known to be 5 GHz capable", SCENARIO_CAPABLE);
    scenario_capable *entry = &scene->capable[scene->capable_count];
    field fields[] = {{"mac", entry->mac, 0, 0, FIELD_MAC, true, false}};
    if (!read_table_vap(reader, &entry->vap) || !read_fields(reader, 2, fields, 1))
        return false;
    scene->capable_count++;
    return true;
}

// "set AP_COUNTRY US" and "default AP_COUNTRY US": the value is the rest of the line as it stands, quotes and blanks
// included.
static bool read_setting(scenario_reader *reader, const char *word, scenario_setting *list, int size, int *count) {
    const char *key = reader->text + strspn(reader->text, " \t");
    key += strlen(word);
    key += strspn(key, " \t");
    size_t key_length = strcspn(key, " \t");
    const char *value = key + key_length + (key[key_length] != '\0' ? 1 : 0);
    if (key_length == 0 || memchr(key, '=', key_length) != nullptr)
        return complain(reader, "%s needs a key without \"=\" and a value", word);
    if (*count == size)
        return complain(reader, "more than %d %s", size, list == reader->scene->settings ? "settings" : "defaults");
    scenario_setting *setting = &list[*count];
    if (key_length >= sizeof setting->key)
        return complain(reader, "a key has at most %zu characters", sizeof setting->key - 1);
    if (!copy_text(value, setting->value, sizeof setting->value))
        return complain(reader, "a value has at most %zu characters", sizeof setting->value - 1);
    memcpy(setting->key, key, key_length);
    setting->key[key_length] = '\0';
    (*count)++;
    return true;
}

struct item {
    const char *word;
    bool (*read)(scenario_reader *reader);
};

static const item items[] = {
    {"radio", read_radio},
    {"channel", read_channel},
    {"vap", read_vap},
    {"counters", read_counters},
    {"airtime", read_airtime},
    {"station", read_station},
    {"neighbour", read_neighbour},
    {"wps", read_wps},
    {"script", read_script},
    {"driver", read_driver},
    {"defaults", read_no_defaults},
    {"blacklist2g", read_blacklisted},
    {"capable5g", read_capable},
    {"air", read_air},
};

static bool starts_with_word(const char *text, const char *word) {
    size_t length = strlen(word);
    return strncmp(text, word, length) == 0 && (text[length] == '\0' || text[length] == ' ' || text[length] == '\t');
}

static bool read_line(scenario_reader *reader) {
    const char *start = reader->text + strspn(reader->text, " \t");
    if (*start == '\0' || *start == '#')
        return true;
    // A setting's value is not made of words, so it is read before the line is cut.
    scenario *scene = reader->scene;
    if (starts_with_word(start, "set"))
        return read_setting(reader, "set", scene->settings, SCENARIO_SETTINGS, &scene->setting_count);
    if (starts_with_word(start, "default"))
        return read_setting(reader, "default", scene->defaults, SCENARIO_DEFAULTS, &scene->default_count);
    if (!cut_words(reader) || reader->word_count == 0)
        return false;
    for (const item &candidate : items) {
        if (strcmp(candidate.word, reader->words[0]) == 0)
            return candidate.read(reader);
    }
    return complain(reader, "\"%s\" is no item of a scenario", reader->words[0]);
}

// What only shows when everything is declared.
static bool check_whole(scenario_reader *reader) {
    for (int i = 0; i < SCENARIO_VAPS; i++) {
        const scenario_vap *vap = &reader->scene->vaps[i];
        if (vap->declared && !reader->scene->radios[vap->radio].declared) {
            reader->line = reader->vap_line[i];
            return complain(reader, "radio %d of VAP %d is not declared", vap->radio, i + 1);
        }
    }
    return true;
}

static bool read_lines(scenario_reader *reader, const char *text, size_t length) {
    while (length > 0) {
        reader->line++;
        const char *end = (const char *)memchr(text, '\n', length);
        size_t line_length = end != nullptr ? (size_t)(end - text) : length;
        if (line_length > LONGEST_LINE)
            return complain(reader, "a line has at most %zu characters", LONGEST_LINE);
        if (memchr(text, '\0', line_length) != nullptr)
            return complain(reader, "a zero byte");
        memcpy(reader->text, text, line_length);
        reader->text[line_length] = '\0';
        if (!read_line(reader))
            return false;
        size_t used = line_length + (end != nullptr ? 1 : 0);
        text += used;
        length -= used;
    }
    return check_whole(reader);
}

scenario *scenario_parse(const char *name, const char *text, size_t length, char *error, size_t error_size) {
    scenario_reader *reader = (scenario_reader *)calloc(1, sizeof *reader);
    scenario *scene = (scenario *)calloc(1, sizeof *scene);
    if (reader == nullptr || scene == nullptr) {
        snprintf(error, error_size, "%s: no memory", name);
        free(reader);
        free(scene);
        return nullptr;
    }
    scene->driver = DRIVER_UP;
    reader->scene = scene;
    reader->name = name;
    reader->error = error;
    reader->error_size = error_size;
    bool good = read_lines(reader, text, length);
    free(reader);
    if (good)
        return scene;
    free(scene);
    return nullptr;
}

scenario *scenario_new(const char *path, char *error, size_t error_size) {
    FILE *file = fopen(path, "re");
    char *text = nullptr;
    size_t size = 0;
    // Files hold no zero byte (the parser refuses one), so "up to the next NUL or the end" is the whole file.
    ssize_t length = file != nullptr ? getdelim(&text, &size, '\0', file) : -1;
    bool empty = length < 0 && file != nullptr && feof(file);
    if (length < 0 && !empty)
        snprintf(error, error_size, "%s: %s", path, strerror(errno));
    if (file != nullptr)
        fclose(file);
    scenario *scene = nullptr;
    if (length >= 0 || empty)
        scene = scenario_parse(path, text != nullptr ? text : "", empty ? 0 : (size_t)length, error, error_size);
    free(text);
    return scene;
}

void scenario_free(scenario *scene) {
    free(scene);
}

uint64_t scenario_count(const scenario_counter *counter, double seconds) {
    return counter->start + (uint64_t)((double)counter->per_second * seconds);
}

// Number behind a name's letters, without sign or leading zeros, or -1.
static int number_behind(const char *name, const char *letters, int most) {
    size_t length = strlen(letters);
    if (strncmp(name, letters, length) != 0)
        return -1;
    const char *digits = name + length;
    size_t count = strlen(digits);
    if (count == 0 || count > 2 || (count > 1 && digits[0] == '0') || digits[strspn(digits, "0123456789")] != '\0')
        return -1;
    int number = atoi(digits);
    return number <= most ? number : -1;
}

int vap_of_interface(const char *name) {
    return number_behind(name, "ath", SCENARIO_VAPS - 1);
}

int radio_of_device(const char *name) {
    return number_behind(name, "wifi", SCENARIO_RADIOS - 1);
}

bool copy_mac(const char *text, char *mac) {
    if (strlen(text) != MAC_TEXT_SIZE - 1)
        return false;
    for (size_t i = 0; i < MAC_TEXT_SIZE - 1; i++) {
        bool good = i % 3 == 2 ? text[i] == ':' : isxdigit((unsigned char)text[i]) != 0;
        if (!good)
            return false;
    }
    memcpy(mac, text, MAC_TEXT_SIZE);
    return true;
}

void mac_octets(const char *mac, uint8_t *octets) {
    for (size_t i = 0; i < 6; i++)
        octets[i] = (uint8_t)strtoul(mac + 3 * i, nullptr, 16);
}

const scenario_channel *scenario_find_channel(const scenario_radio *radio, unsigned number) {
    for (int i = 0; i < radio->channel_count; i++) {
        if (radio->channels[i].number == number)
            return &radio->channels[i];
    }
    return nullptr;
}

static int neighbours_on(const scenario *scene, unsigned channel) {
    int count = 0;
    for (int i = 0; i < scene->neighbour_count; i++)
        count += scene->neighbours[i].channel == channel ? 1 : 0;
    return count;
}

unsigned scenario_quietest_channel(const scenario *scene, int radio) {
    const scenario_radio *wanted = &scene->radios[radio];
    unsigned quietest = 0;
    int fewest = INT_MAX;
    for (int i = 0; i < wanted->channel_count; i++) {
        int count = neighbours_on(scene, wanted->channels[i].number);
        if (count < fewest) {
            fewest = count;
            quietest = wanted->channels[i].number;
        }
    }
    return quietest;
}
