#include "simulator/scenario.h"

#include <arpa/inet.h>
#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// One line of a scenario, cut into its words.
constexpr int MOST_WORDS = 16;         // the longest item has fewer
constexpr size_t LONGEST_LINE = 1024;  // a setting with key and value, and a margin

struct scenario_reader {
    scenario *scene;
    const char *name;
    int line;
    int vap_line[SCENARIO_VAPS];  // where a VAP was declared, for what can only be judged at the end
    char *error;
    size_t error_size;
    char text[LONGEST_LINE + 1];  // the line
    char *words[MOST_WORDS];      // its words, pointing into text
    int word_count;
};

static bool complain(scenario_reader *reader, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Always false, so that a parser can end with it.
static bool complain(scenario_reader *reader, const char *format, ...) {
    char message[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    snprintf(reader->error, reader->error_size, "%s:%d: %s", reader->name, reader->line, message);
    return false;
}

// Words.

// Cuts the text into words at blanks; a part in double quotes keeps its blanks and loses its quotes.
static bool cut_words(scenario_reader *reader) {
    char *from = reader->text, *to = reader->text;
    reader->word_count = 0;
    while (true) {
        from += strspn(from, " \t");
        if (*from == '\0')
            return true;
        if (reader->word_count == MOST_WORDS)
            return complain(reader, "too many words");
        reader->words[reader->word_count++] = to;
        bool quoted = false;
        for (; *from != '\0' && (quoted || (*from != ' ' && *from != '\t')); from++) {
            if (*from == '"')
                quoted = !quoted;
            else
                *to++ = *from;
        }
        if (quoted)
            return complain(reader, "a quote is not closed");
        // The NUL may overwrite the blank that ended the word, so step over it first.
        bool last = *from == '\0';
        *to++ = '\0';
        if (last)
            return true;
        from++;
    }
}

static bool parse_number(const char *text, unsigned long most, unsigned long *number) {
    if (!isdigit((unsigned char)text[0]))
        return false;
    char *end;
    errno = 0;
    *number = strtoul(text, &end, 0);
    return errno == 0 && *end == '\0' && *number <= most;
}

static bool parse_integer(const char *text, long least, long most, int *number) {
    char *end;
    errno = 0;
    long value = strtol(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0' || value < least || value > most)
        return false;
    *number = (int)value;
    return true;
}

static bool parse_mac(const char *text, char *mac) {
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

// "START" or "START+PER_SECOND".
static bool parse_counter(const char *text, scenario_counter *counter) {
    char start[24];
    const char *plus = strchr(text, '+');
    size_t length = plus != nullptr ? (size_t)(plus - text) : strlen(text);
    if (length >= sizeof start)
        return false;
    memcpy(start, text, length);
    start[length] = '\0';
    unsigned long value = 0, speed = 0;
    if (!parse_number(start, ULONG_MAX, &value) || (plus != nullptr && !parse_number(plus + 1, 1UL << 40, &speed)))
        return false;
    counter->start = value;
    counter->per_second = speed;
    return true;
}

// A day at most: "0.5", "2".
static bool parse_seconds(const char *text, double *seconds) {
    char *end;
    if (!isdigit((unsigned char)text[0]))
        return false;
    *seconds = strtod(text, &end);
    return *end == '\0' && *seconds <= 86400;
}

static bool copy_text(const char *text, char *out, size_t size) {
    if (strlen(text) >= size)
        return false;
    memcpy(out, text, strlen(text) + 1);
    return true;
}

// Fields "name=value" behind the words that lead an item.

enum field_kind {
    FIELD_MAC,
    FIELD_SSID,
    FIELD_WORD,
    FIELD_INTEGER,
    FIELD_FLAG,
    FIELD_NUMBER,
    FIELD_ADDRESS,
    FIELD_COUNTER
};

struct field {
    const char *name;
    void *target;
    int64_t least, most;  // of integers and numbers
    field_kind kind;
    bool required;
    bool seen;
};

static bool parse_field(const field *wanted, const char *value) {
    unsigned long number;
    unsigned char address[4];
    switch (wanted->kind) {
        case FIELD_MAC:
            return parse_mac(value, (char *)wanted->target);
        case FIELD_SSID:
            return copy_text(value, (char *)wanted->target, SSID_SIZE);
        case FIELD_WORD:
            return *value != '\0' && copy_text(value, (char *)wanted->target, SCENARIO_WORD_SIZE);
        case FIELD_INTEGER:
            return parse_integer(value, wanted->least, wanted->most, (int *)wanted->target);
        case FIELD_FLAG:
            *(bool *)wanted->target = value[0] == '1';
            return strcmp(value, "0") == 0 || strcmp(value, "1") == 0;
        case FIELD_NUMBER:
            if (!parse_number(value, (unsigned long)wanted->most, &number) || (int64_t)number < wanted->least)
                return false;
            *(unsigned *)wanted->target = (unsigned)number;
            return true;
        case FIELD_ADDRESS:
            return inet_pton(AF_INET, value, address) == 1 && copy_text(value, (char *)wanted->target, 16);
        case FIELD_COUNTER:
            return parse_counter(value, (scenario_counter *)wanted->target);
    }
    return false;
}

static field *find_field(field *fields, int count, const char *name, size_t length) {
    for (int i = 0; i < count; i++) {
        if (strlen(fields[i].name) == length && strncmp(fields[i].name, name, length) == 0)
            return &fields[i];
    }
    return nullptr;
}

// Reads the words from `first` on as fields.
static bool read_fields(scenario_reader *reader, int first, field *fields, int count) {
    for (int i = first; i < reader->word_count; i++) {
        char *word = reader->words[i];
        size_t length = strcspn(word, "=");
        if (word[length] == '\0')
            return complain(reader, "\"%s\" is no name=value", word);
        field *wanted = find_field(fields, count, word, length);
        if (wanted == nullptr)
            return complain(reader, "%s has no \"%.*s\"", reader->words[0], (int)length, word);
        if (wanted->seen)
            return complain(reader, "%s stands twice", wanted->name);
        wanted->seen = true;
        if (!parse_field(wanted, word + length + 1))
            return complain(reader, "\"%s\" is no good value for %s", word + length + 1, wanted->name);
    }
    for (int i = 0; i < count; i++) {
        if (fields[i].required && !fields[i].seen)
            return complain(reader, "%s needs %s=", reader->words[0], fields[i].name);
    }
    return true;
}

// Reads word number `position` as an integer in a range.
static bool read_position(scenario_reader *reader, int position, const char *what, int least, int most, int *number) {
    if (position >= reader->word_count)
        return complain(reader, "%s needs a %s", reader->words[0], what);
    if (!parse_integer(reader->words[position], least, most, number))
        return complain(reader, "\"%s\" is no %s from %d to %d", reader->words[position], what, least, most);
    return true;
}

// Items, one function each.

// radio 0 band=2.4 mac=00:03:7F:10:00:00 txpower=20
static bool read_radio(scenario_reader *reader) {
    int number = 0;
    if (!read_position(reader, 1, "radio", 0, SCENARIO_RADIOS - 1, &number))
        return false;
    scenario_radio *radio = &reader->scene->radios[number];
    if (radio->declared)
        return complain(reader, "radio %d is declared twice", number);
    radio->declared = true;
    radio->txpower = 20;
    char band[SCENARIO_WORD_SIZE];
    field fields[] = {
        {"band", band, 0, 0, FIELD_WORD, true, false},
        {"mac", radio->mac, 0, 0, FIELD_MAC, true, false},
        {"txpower", &radio->txpower, 0, 40, FIELD_INTEGER, false, false},
    };
    if (!read_fields(reader, 2, fields, 3))
        return false;
    radio->five_ghz = strcmp(band, "5") == 0;
    if (!radio->five_ghz && strcmp(band, "2.4") != 0)
        return complain(reader, "band is 2.4 or 5, not \"%s\"", band);
    return true;
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

// station 1 mac=28:6A:BA:00:00:01 ip=192.168.1.20 rssi=45 tx_rate=130 rx_rate=117
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
    };
    if (!read_fields(reader, 2, fields, 5))
        return false;
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

// set AP_COUNTRY US: the value is the rest of the line as it stands, quotes and blanks included.
static bool read_setting(scenario_reader *reader) {
    scenario *scene = reader->scene;
    const char *key = reader->text + strspn(reader->text, " \t");
    key += strlen("set");
    key += strspn(key, " \t");
    size_t key_length = strcspn(key, " \t");
    const char *value = key + key_length + (key[key_length] != '\0' ? 1 : 0);
    if (key_length == 0 || memchr(key, '=', key_length) != nullptr)
        return complain(reader, "set needs a key without \"=\" and a value");
    if (scene->setting_count == SCENARIO_SETTINGS)
        return complain(reader, "more than %d settings", SCENARIO_SETTINGS);
    scenario_setting *setting = &scene->settings[scene->setting_count];
    if (key_length >= sizeof setting->key)
        return complain(reader, "a key has at most %zu characters", sizeof setting->key - 1);
    if (!copy_text(value, setting->value, sizeof setting->value))
        return complain(reader, "a value has at most %zu characters", sizeof setting->value - 1);
    memcpy(setting->key, key, key_length);
    setting->key[key_length] = '\0';
    scene->setting_count++;
    return true;
}

struct item {
    const char *word;
    bool (*read)(scenario_reader *reader);
};

static const item items[] = {
    {"radio", read_radio},     {"channel", read_channel},     {"vap", read_vap},       {"counters", read_counters},
    {"station", read_station}, {"neighbour", read_neighbour}, {"script", read_script}, {"driver", read_driver},
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
    if (starts_with_word(start, "set"))
        return read_setting(reader);
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
