#include "client/gather.h"

#include <stdio.h>

#include "client/ask.h"
#include "server/records.h"

static_assert(GATHERED_TEXT_SIZE == RESULT_DATA_SIZE + 1);

// Room for "-9223372036854775808 MHz".
constexpr size_t MEASURE_SIZE = 32;

// A failure is one value less; anything else is the end.
static bool is_there(gathering *from, client_exit_status status) {
    if (status != EXIT_STATUS_SUCCESS && status != EXIT_STATUS_FAILURE)
        from->status = status;
    return status == EXIT_STATUS_SUCCESS;
}

static bool has_ended(const gathering *from) {
    return from->status != EXIT_STATUS_SUCCESS;
}

bool gather_number(gathering *from, uint32_t procedure, int index, int64_t *number) {
    return gather_numbers(from, procedure, index, number, 1);
}

bool gather_numbers(gathering *from, uint32_t procedure, int index, int64_t *numbers, size_t count) {
    const int64_t arguments[ARGUMENTS_MAX] = {index};
    return !has_ended(from) && is_there(from, ask_numbers(from->session, procedure, arguments, numbers, count));
}

bool gather_text(gathering *from, uint32_t procedure, int index, char text[GATHERED_TEXT_SIZE]) {
    return !has_ended(from) && is_there(from, ask_text(from->session, procedure, index, text, GATHERED_TEXT_SIZE));
}

bool gather_record(gathering *from, uint32_t procedure, int index, void *record) {
    return !has_ended(from) && is_there(from, ask_record(from->session, procedure, index, record));
}

value *add_gathered_number(gathering *from, value *to, const char *name, uint32_t procedure, int index) {
    int64_t number;
    return gather_number(from, procedure, index, &number) ? add_number(to, name, number) : add_nothing(to, name);
}

value *add_gathered_boolean(gathering *from, value *to, const char *name, uint32_t procedure, int index) {
    int64_t number;
    return gather_number(from, procedure, index, &number) ? add_boolean(to, name, number != 0) : add_nothing(to, name);
}

value *add_gathered_text(gathering *from, value *to, const char *name, uint32_t procedure, int index) {
    char text[GATHERED_TEXT_SIZE];
    return gather_text(from, procedure, index, text) ? add_string(to, name, text) : add_nothing(to, name);
}

value *add_gathered_word(gathering *from, value *to, const char *name, uint32_t procedure, int index) {
    char text[GATHERED_TEXT_SIZE];
    return gather_text(from, procedure, index, text) && *text ? add_string(to, name, text) : add_nothing(to, name);
}

void add_measure(value *to, const char *name, int64_t number, const char *unit) {
    char text[MEASURE_SIZE];
    snprintf(text, sizeof text, "%lld %s", static_cast<long long>(number), unit);
    add_number(to, name, number)->readers = audience::PROGRAMS;
    add_string(to, name, text)->readers = audience::PEOPLE;
}
