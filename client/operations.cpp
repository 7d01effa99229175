#include "client/operations.h"

#include "server/expand.h"
#include "server/records.h"

struct room_row {
    const char *file;
    const char *subject;
};

#define ROOM(room, file, subject) static constexpr room_row ROOM_##room = {file, subject};
#include "server/rooms.def"

// {argument_kind::VAP, "index"}, {argument_kind::TEXT, "ssid"},
#define ARGUMENT(n, element) ARGUMENT_##element,
#define ARGUMENT_VAP(name) \
    { argument_kind::VAP, #name }
#define ARGUMENT_INT(name) \
    { argument_kind::INT, #name }
#define ARGUMENT_IGNORED(name) \
    { argument_kind::IGNORED, #name }
#define ARGUMENT_UINT(name) \
    { argument_kind::UINT, #name }
#define ARGUMENT_BOOL(name) \
    { argument_kind::BOOL, #name }
#define ARGUMENT_USHORT(name) \
    { argument_kind::USHORT, #name }
#define ARGUMENT_TEXT(name) \
    { argument_kind::TEXT, #name }
#define ONE(n, element) +1

// argument_shape::RECORD, "wlan_set_ssid_1_argument"
#define SHAPE_AND_RECORD_NONE(procedure) argument_shape::NONE, ""
#define SHAPE_AND_RECORD_BARE(procedure, element) argument_shape::BARE, ""
#define SHAPE_AND_RECORD_RECORD(procedure, record, ...) argument_shape::RECORD, TEXT_OF(record)
#define SHAPE_AND_RECORD_RECORD_NAMED(procedure, record, ...) argument_shape::RECORD_NAMED, TEXT_OF(record)
#define SHAPE_AND_RECORD_RECORD_OF(procedure, record, ...) argument_shape::RECORD_OF, TEXT_OF(record)
#define TEXT_OF(word) #word

// {result_kind::STRING, 0, {}, "ssid", "", 0}
#define OUTPUT(n, element) OUTPUT_##element,
#define OUTPUT_INT(name) \
    { output_kind::INT, #name }
#define OUTPUT_UINT(name) \
    { output_kind::UINT, #name }
#define OUTPUT_BOOL(name) \
    { output_kind::BOOL, #name }
#define RESULT_CODE \
    { result_kind::CODE, 0, {}, "", "", 0 }
#define RESULT_ACTION \
    { result_kind::ACTION, 0, {}, "", "", 0 }
#define RESULT_INTEGERS(...) \
    { result_kind::INTEGERS, MAP(ONE, __VA_ARGS__), {MAP(OUTPUT, __VA_ARGS__)}, "", "", 0 }
#define RESULT_INTEGERS64(count, name) \
    { result_kind::INTEGERS64, 0, {}, #name, "", count }
#define RESULT_WORDS(type, name) \
    { result_kind::WORDS, 0, {}, #name, #type, sizeof(type) }
#define RESULT_STRING(name) \
    { result_kind::STRING, 0, {}, #name, "", 0 }
#define RESULT_LONG_STRING(size, name) \
    { result_kind::LONG_STRING, 0, {}, #name, "", 0 }
#define RESULT_IMAGE(type, name) \
    { result_kind::IMAGE, 0, {}, #name, #type, sizeof(type) }
#define RESULT_COUNTED_IMAGE(type, name) \
    { result_kind::COUNTED_IMAGE, 0, {}, #name, #type, sizeof(type) }

#define ROW(kind, number, procedure, argument_column, result_column, room, back_end, summary) \
    {procedure_kind::kind,                                                                    \
     number,                                                                                  \
     #procedure,                                                                              \
     FOR_SHAPE(SHAPE_AND_RECORD, procedure, argument_column),                                 \
     0 MAP(ONE, ELEMENTS_##argument_column),                                                  \
     {MAP(ARGUMENT, ELEMENTS_##argument_column)},                                             \
     RESULT_##result_column,                                                                  \
     ROOM_##room.file,                                                                        \
     ROOM_##room.subject,                                                                     \
     #back_end,                                                                               \
     summary},

const procedure_row procedure_rows[] = {
#define PROCEDURE(...) ROW(PROCEDURE, __VA_ARGS__)
#define BY_HAND(...) ROW(BY_HAND, __VA_ARGS__)
#include "server/procedures.def"
};
const size_t procedure_row_count = sizeof procedure_rows / sizeof *procedure_rows;

const unassigned_range unassigned_ranges[] = {
#define PROCEDURE(...)
#define UNASSIGNED(first, last) {first, last},
#include "server/procedures.def"
};
const size_t unassigned_range_count = sizeof unassigned_ranges / sizeof *unassigned_ranges;
