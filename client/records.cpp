#include <stdlib.h>
#include <string.h>

#include "client/results.h"

static uint64_t unsigned_at(const char *bytes, size_t size) {
    uint8_t small;
    uint16_t medium;
    uint32_t word;
    uint64_t number = 0;
    switch (size) {
        case sizeof small:
            memcpy(&small, bytes, sizeof small);
            return small;
        case sizeof medium:
            memcpy(&medium, bytes, sizeof medium);
            return medium;
        case sizeof word:
            memcpy(&word, bytes, sizeof word);
            return word;
        case sizeof number:
            memcpy(&number, bytes, sizeof number);
            return number;
        default:
            return 0;
    }
}

// The same bits with a sign.
static int64_t signed_at(const char *bytes, size_t size) {
    uint64_t number = unsigned_at(bytes, size);
    unsigned shift = static_cast<unsigned>(8 * (sizeof number - size));
    return static_cast<int64_t>(number << shift) >> shift;
}

static value *add_element(value *to, const char *name, const record_field *field, const char *bytes) {
    if (field->is_signed)
        return add_number(to, name, signed_at(bytes, field->element_size));
    return add_unsigned(to, name, unsigned_at(bytes, field->element_size));
}

static value *add_numbers(value *to, const record_field *field, const char *bytes) {
    if (field->elements == 1)
        return add_element(to, field->name, field, bytes);
    value *list = add_list(to, field->name);
    for (size_t i = 0; i < field->elements; i++)
        add_element(list, nullptr, field, bytes + i * field->element_size);
    return list;
}

static value *add_hex(value *to, const char *name, const char *bytes, size_t size) {
    value *added = add_text(to, name, "", 0);
    char *text = static_cast<char *>(realloc(added->text, 2 * size + 1));
    if (!text)
        return added;
    for (size_t i = 0; i < size; i++)
        snprintf(text + 2 * i, 3, "%02x", static_cast<unsigned char>(bytes[i]));
    added->text = text;
    added->length = 2 * size;
    return added;
}

static size_t smaller(size_t a, size_t b) {
    return a < b ? a : b;
}

// Without the zeros at the end, for people.
static size_t used_size(const char *bytes, size_t size) {
    while (size > 0 && bytes[size - 1] == 0)
        size--;
    return size;
}

static value *add_octets(value *to, const record_field *field, const char *bytes, size_t rows) {
    if (field->elements == 1) {
        if (!field->detail)
            add_hex(to, field->name, bytes, used_size(bytes, field->size))->readers = audience::PEOPLE;
        value *added = add_hex(to, field->name, bytes, field->size);
        added->readers = audience::PROGRAMS;
        return added;
    }
    value *list = add_list(to, field->name);
    for (size_t i = 0; i < smaller(rows, field->elements); i++)
        add_hex(list, nullptr, bytes + i * field->element_size, field->element_size);
    return list;
}

// How many elements of a list mean something. A count may be anything: it came over the wire.
static size_t counted_elements(const record_row *record, const record_field *list, const char *image) {
    const record_field *count = find_field(record, list->count);
    const char *at = image + count->offset;
    if (count->is_signed && signed_at(at, count->element_size) < 0)
        return 0;
    uint64_t counted = unsigned_at(at, count->element_size);
    return counted < list->elements ? static_cast<size_t>(counted) : list->elements;
}

static value *add_elements(value *to, const record_row *record, const record_field *field, const char *image) {
    value *list = add_list(to, field->name);
    size_t count = counted_elements(record, field, image);
    for (size_t i = 0; i < count; i++)
        add_record(add_object(list, nullptr), field->record, image + field->offset + i * field->element_size, 0);
    return list;
}

static value *add_field(value *to, const record_row *record, const record_field *field, const char *image,
                        size_t rows) {
    const char *bytes = image + field->offset;
    switch (field->kind) {
        case field_kind::NUMBER:
            return add_numbers(to, field, bytes);
        case field_kind::TEXT:
            return add_text(to, field->name, bytes, strnlen(bytes, field->size));
        case field_kind::MAC:
            return add_mac(to, field->name, bytes);
        case field_kind::OCTETS:
            return add_octets(to, field, bytes, rows);
        case field_kind::LIST:
            return add_elements(to, record, field, image);
        case field_kind::PADDING:
            break;
    }
    return nullptr;
}

void add_record(value *to, const record_row *record, const void *image, size_t rows) {
    for (size_t i = 0; i < record->field_count; i++) {
        value *added = add_field(to, record, &record->fields[i], static_cast<const char *>(image), rows);
        if (added && record->fields[i].detail)
            added->readers = audience::PROGRAMS;
    }
}
