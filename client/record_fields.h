// The records that results carry, as the client sees them: their fields with name, kind and place.
//
// Everything comes from server/record_fields.def. Constant data; any thread may read it.
#pragma once

#include <stddef.h>

enum class field_kind { NUMBER, TEXT, MAC, OCTETS, LIST, PADDING };

struct record_row;

struct record_field {
    const char *name;
    size_t offset;
    size_t size;               // of the whole member, in bytes
    size_t elements;           // of an array, else 1; of LIST how many records there is room for
    size_t element_size;       // bytes of one of them
    const char *unit;          // "" without one
    const record_row *record;  // of LIST what it is a list of, else nullptr
    const char *count;         // of LIST the member that says how many mean something, else ""
    field_kind kind;
    bool is_signed;  // of NUMBER
    bool detail;     // for programs rather than for people
};

struct record_row {
    const char *name;  // wlan_device_t
    size_t size;
    size_t field_count;
    const record_field *fields;
};

// In the order of the file, contained records before those that contain them.
extern const record_row *const record_rows[];
extern const size_t record_row_count;

// The record with this name, nullptr when there is none.
const record_row *find_record(const char *name);

// The field with this name, nullptr when the record has none.
const record_field *find_field(const record_row *record, const char *name);
