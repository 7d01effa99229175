#include "client/record_fields.h"

#include <string.h>

#include <type_traits>

#include "server/records.h"

// A member of type T: how many numbers or records it has, of how many bytes each. Text and addresses are one thing.
template <typename T>
struct member_of {
    using element = std::remove_extent_t<T>;
    static constexpr size_t elements = std::is_array_v<T> ? sizeof(T) / sizeof(element) : 1;
};

#define NUMBER_SHAPE(member)                                                                           \
    member_of<decltype(owner::member)>::elements, sizeof(member_of<decltype(owner::member)>::element), \
        std::is_signed_v<member_of<decltype(owner::member)>::element>
#define TEXT_SHAPE(member) 1, sizeof(owner::member), false
#define MAC_SHAPE(member) 1, sizeof(owner::member), false
// Rows of bytes are entries; a plain run of bytes is one.
#define OCTETS_SHAPE(member)                                              \
    sizeof(owner::member) / sizeof(octet_entry<decltype(owner::member)>), \
        sizeof(octet_entry<decltype(owner::member)>), false

template <typename T>
using octet_entry = std::conditional_t<std::rank_v<T> == 2, std::remove_extent_t<T>, T>;

#define FIELD_AT(kind, detail, member, unit)                                                                  \
    {#member, field_kind::kind, detail, offsetof(owner, member), sizeof(owner::member), kind##_SHAPE(member), \
     unit,    nullptr,          ""},
#define FIELD(kind, member, unit) FIELD_AT(kind, false, member, unit)
#define DETAIL(kind, member, unit) FIELD_AT(kind, true, member, unit)
#define PADDING_SHAPE(member) 1, sizeof(owner::member), false
#define PADDING(member) FIELD_AT(PADDING, true, member, "")
#define LIST(member, contained, count)          \
    {#member,                                   \
     field_kind::LIST,                          \
     false,                                     \
     offsetof(owner, member),                   \
     sizeof(owner::member),                     \
     sizeof(owner::member) / sizeof(contained), \
     sizeof(contained),                         \
     false,                                     \
     "",                                        \
     &contained##_row,                          \
     #count},

// The fields of wlan_device_t, and wlan_device_t_row that names them. Fields that leave a gap, or overlap, would stand
// for other bytes than their own: a test adds them up.
#define RECORD(record, ...)                                 \
    namespace record##_table {                              \
        using owner = ::record;                             \
        static const record_field fields[] = {__VA_ARGS__}; \
    }                                                       \
    static const record_row record##_row = {                \
        #record, sizeof(::record), sizeof record##_table::fields / sizeof(record_field), record##_table::fields};
#include "server/record_fields.def"

const record_row *const record_rows[] = {
#define RECORD(record, ...) &record##_row,
#include "server/record_fields.def"
};
const size_t record_row_count = sizeof record_rows / sizeof *record_rows;

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
