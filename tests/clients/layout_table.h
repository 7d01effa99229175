// Expands the table of fields over whichever records have been included before: record_layouts() of this source file.
#include <type_traits>

#include "tests/clients/layout.h"

namespace {

// A packed member cannot be bound to a reference, so everything is asked of types.
#define IS_SIGNED_NUMBER(member) std::is_signed_v<std::remove_all_extents_t<decltype(owner::member)>>
#define IS_SIGNED_TEXT(member) false
#define IS_SIGNED_MAC(member) false
#define IS_SIGNED_OCTETS(member) false
#define MEMBER(member, is_signed)                             \
    {#member, offsetof(owner, member), sizeof(owner::member), \
     sizeof(std::remove_all_extents_t<decltype(owner::member)>), is_signed},
#define FIELD(kind, member, unit) MEMBER(member, IS_SIGNED_##kind(member))
#define DETAIL FIELD
#define PADDING(member) MEMBER(member, false)
#define LIST(member, record, count) MEMBER(member, false)

std::vector<record_layout> record_layouts() {
    std::vector<record_layout> layouts;
#define RECORD(record, ...)                                                         \
    {                                                                               \
        using owner = record;                                                       \
        layouts.push_back({#record, sizeof(owner), alignof(owner), {__VA_ARGS__}}); \
    }
#include "server/record_fields.def"
    return layouts;
}

std::vector<named_number> procedure_numbers() {
    return {
#define PROCEDURE(number, procedure, ...) {#procedure, PROC_##procedure},
#include "server/procedures.def"
    };
}

}  // namespace
