#include "simulator/scenario_reader.h"

#include <arpa/inet.h>
#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// The longest time that a scenario can give, in seconds: a day.
constexpr double LONGEST_TIME = 86400;

bool complain(scenario_reader *reader, const char *format, ...) {
    char message[256];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    snprintf(reader->error, reader->error_size, "%s:%d: %s", reader->name, reader->line, message);
    return false;
}

// Words.

bool cut_words(scenario_reader *reader) {
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

static bool parse_number(const char *text, uint64_t most, uint64_t *number) {
    if (!isdigit((unsigned char)text[0]))
        return false;
    char *end;
    errno = 0;
    *number = strtoull(text, &end, 0);
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

// "START" or "START+PER_SECOND".
static bool parse_counter(const char *text, scenario_counter *counter) {
    char start[24];
    const char *plus = strchr(text, '+');
    size_t length = plus != nullptr ? (size_t)(plus - text) : strlen(text);
    if (length >= sizeof start)
        return false;
    memcpy(start, text, length);
    start[length] = '\0';
    uint64_t value = 0, speed = 0;
    if (!parse_number(start, UINT64_MAX, &value) ||
        (plus != nullptr && !parse_number(plus + 1, UINT64_C(1) << 40, &speed)))
        return false;
    counter->start = value;
    counter->per_second = speed;
    return true;
}

bool parse_seconds(const char *text, double *seconds) {
    char *end;
    if (!isdigit((unsigned char)text[0]))
        return false;
    *seconds = strtod(text, &end);
    return *end == '\0' && *seconds <= LONGEST_TIME;
}

bool copy_text(const char *text, char *out, size_t size) {
    if (strlen(text) >= size)
        return false;
    memcpy(out, text, strlen(text) + 1);
    return true;
}

// Fields.

static bool parse_field(const field *wanted, const char *value) {
    uint64_t number;
    unsigned char address[4];
    switch (wanted->kind) {
        case FIELD_MAC:
            return copy_mac(value, (char *)wanted->target);
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
            if (!parse_number(value, (uint64_t)wanted->most, &number) || (int64_t)number < wanted->least)
                return false;
            *(unsigned *)wanted->target = (unsigned)number;
            return true;
        case FIELD_SECONDS:
            return parse_seconds(value, (double *)wanted->target);
        case FIELD_ADDRESS:
            return inet_pton(AF_INET, value, address) == 1 && copy_text(value, (char *)wanted->target, 16);
        case FIELD_COUNTER:
            return parse_counter(value, (scenario_counter *)wanted->target);
    }
    return false;
}

field *find_field(field *fields, int count, const char *word) {
    size_t length = strcspn(word, "=");
    for (int i = 0; i < count; i++) {
        if (strlen(fields[i].name) == length && strncmp(fields[i].name, word, length) == 0)
            return &fields[i];
    }
    return nullptr;
}

bool is_assignment(scenario_reader *reader, const char *word) {
    return strchr(word, '=') != nullptr || complain(reader, "\"%s\" is no name=value", word);
}

bool read_field(scenario_reader *reader, field *wanted, const char *word) {
    const char *value = word + strcspn(word, "=") + 1;
    if (wanted->seen)
        return complain(reader, "%s stands twice", wanted->name);
    wanted->seen = true;
    return parse_field(wanted, value) || complain(reader, "\"%s\" is no good value for %s", value, wanted->name);
}

bool read_fields(scenario_reader *reader, int first, field *fields, int count) {
    for (int i = first; i < reader->word_count; i++) {
        const char *word = reader->words[i];
        if (!is_assignment(reader, word))
            return false;
        field *wanted = find_field(fields, count, word);
        if (wanted == nullptr)
            return complain(reader, "%s has no \"%.*s\"", reader->words[0], (int)strcspn(word, "="), word);
        if (!read_field(reader, wanted, word))
            return false;
    }
    for (int i = 0; i < count; i++) {
        if (fields[i].required && !fields[i].seen)
            return complain(reader, "%s needs %s=", reader->words[0], fields[i].name);
    }
    return true;
}

bool read_position(scenario_reader *reader, int position, const char *what, int least, int most, int *number) {
    if (position >= reader->word_count)
        return complain(reader, "%s needs a %s", reader->words[0], what);
    if (!parse_integer(reader->words[position], least, most, number))
        return complain(reader, "\"%s\" is no %s from %d to %d", reader->words[position], what, least, most);
    return true;
}
