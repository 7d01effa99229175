#include "client/record_fields.h"

#include <string.h>

#include <type_traits>

#include "server/records.h"

// An array's numbers or records; a single one has one. How many of them a member of type T has.
template <typename T>
using element_of = std::remove_extent_t<T>;
template <typename T>
constexpr size_t elements_of = std::is_array_v<T> ? std::extent_v<T> : 1;

// Rows of bytes are entries; a plain run of bytes is one.
template <typename T>
using entry_of = std::conditional_t<std::rank_v<T> == 2, std::remove_extent_t<T>, T>;
template <typename T>
constexpr size_t entries_of = std::rank_v<T> == 2 ? std::extent_v<T> : 1;

// Elements, bytes of an element, and whether it has a sign, by the kind of a field.
#define NUMBER_ELEMENTS(type) elements_of<type>, sizeof(element_of<type>)
#define NUMBER_SIGN(type) std::is_signed_v<element_of<type>>
#define OCTETS_ELEMENTS(type) entries_of<type>, sizeof(entry_of<type>)
#define OCTETS_SIGN(type) false
#define TEXT_ELEMENTS(type) 1, sizeof(type)
#define TEXT_SIGN(type) false
#define MAC_ELEMENTS(type) 1, sizeof(type)
#define MAC_SIGN(type) false
#define PADDING_ELEMENTS(type) 1, sizeof(type)
#define PADDING_SIGN(type) false

// {"rssi", 87, 1, 1, 1, "dBm", nullptr, "", field_kind::NUMBER, true, false},
#define FIELD_AT(kind, detail, member, unit)   \
    {#member,                                  \
     offsetof(owner, member),                  \
     sizeof(owner::member),                    \
     kind##_ELEMENTS(decltype(owner::member)), \
     unit,                                     \
     nullptr,                                  \
     "",                                       \
     field_kind::kind,                         \
     kind##_SIGN(decltype(owner::member)),     \
     detail},
#define FIELD(kind, member, unit) FIELD_AT(kind, false, member, unit)
#define DETAIL(kind, member, unit) FIELD_AT(kind, true, member, unit)
#define PADDING(member) FIELD_AT(PADDING, true, member, "")
#define LIST(member, contained, count)     \
    {#member,                              \
     offsetof(owner, member),              \
     sizeof(owner::member),                \
     elements_of<decltype(owner::member)>, \
     sizeof(contained),                    \
     "",                                   \
     &contained##_row,                     \
     #count,                               \
     field_kind::LIST,                     \
     false,                                \
     false},

// The fields of wlan_device_t, and wlan_device_t_row that names them. Fields that leave a gap, or overlap, would stand
// for other bytes than their own: a test adds them up.
#define RECORD(record, ...)                                            \
    namespace record##_table {                                         \
        using owner = ::record;                                        \
        static const record_field fields[] = {__VA_ARGS__};            \
    }                                                                  \
    static const record_row record##_row = {#record, sizeof(::record), \
                                            std::extent_v<decltype(record##_table::fields)>, record##_table::fields};
#include "server/record_fields.def"

const record_row *const record_rows[] = {
#define RECORD(record, ...) &record##_row,
#include "server/record_fields.def"
};
const size_t record_row_count = std::extent_v<decltype(record_rows)>;

const record_row *find_record(const char *name) {
    for (const record_row *record : record_rows)
        if (strcmp(record->name, name) == 0)
            return record;
    return nullptr;
}

const record_field *find_field(const record_row *record, const char *name) {
    for (size_t i = 0; i < record->field_count; i++)
        if (strcmp(record->fields[i].name, name) == 0)
            return &record->fields[i];
    return nullptr;
}
