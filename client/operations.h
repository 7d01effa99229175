// The table as the client sees it: a row a procedure, with words instead of types.
//
// Everything comes from server/procedures.def. Constant data; any thread may read it.
#pragma once

#include <stddef.h>
#include <stdint.h>

enum class argument_kind { VAP, INT, IGNORED, UINT, BOOL, USHORT, TEXT };

enum class argument_shape { NONE, BARE, RECORD, RECORD_NAMED, RECORD_OF };

enum class result_kind { CODE, ACTION, INTEGERS, INTEGERS64, WORDS, STRING, LONG_STRING, IMAGE, COUNTED_IMAGE };

enum class procedure_kind { PROCEDURE, BY_HAND };

enum class output_kind { INT, UINT, BOOL };

struct argument_row {
    argument_kind kind;
    const char *name;
};

struct output_row {
    output_kind kind;
    const char *name;
};

// The channel switch has ten arguments, more than any other procedure; the 802.11u attributes five outputs.
constexpr size_t ARGUMENTS_MAX = 10;
constexpr size_t OUTPUTS_MAX = 5;

struct result_row {
    result_kind kind;
    size_t output_count;  // of INTEGERS
    output_row outputs[OUTPUTS_MAX];
    const char *name;  // of every other kind with a payload, else ""
    const char *type;  // of WORDS, IMAGE and COUNTED_IMAGE: the record's name, else ""
    size_t size;       // of INTEGERS64: how many; of WORDS and the images: the record's bytes; else 0
};

struct procedure_row {
    procedure_kind kind;
    uint32_t number;
    const char *name;  // wlan_get_ssid
    argument_shape shape;
    const char *record;  // wlan_set_ssid_1_argument, "" without one
    size_t argument_count;
    argument_row arguments[ARGUMENTS_MAX];
    result_row result;
    const char *room;      // the back end's source file without its ending
    const char *subject;   // what the room is about
    const char *back_end;  // wlan_getSSID, "none" where there is none
    const char *summary;
};

struct unassigned_range {
    uint32_t first;
    uint32_t last;
};

extern const procedure_row procedure_rows[];
extern const size_t procedure_row_count;
extern const unassigned_range unassigned_ranges[];
extern const size_t unassigned_range_count;
