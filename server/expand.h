// How the rows of server/procedures.def are taken apart. Preprocessor only; no code comes from here.
//
// An expansion site defines PROCEDURE (and BY_HAND, UNASSIGNED where they differ) and includes the table.
// It reaches into a row by pasting: `ELEMENTS_##arguments` turns RECORD(VAP(index), TEXT(ssid)) into the list
// VAP(index), TEXT(ssid), and `WIRE_TYPE_##element` turns TEXT(ssid) into `char *`. None of the words VAP, TEXT,
// RECORD ... is ever a macro itself, so that pasting works.
//
//   MAP(m, a, b, c)       m(1, a) m(2, b) m(3, c)
//   WITHOUT_COMMA(, a, b) a, b: lists that may be empty are built with leading commas
#pragma once

#define MAP(m, ...) __VA_OPT__(MAP_(MAP_COUNT(__VA_ARGS__), m, __VA_ARGS__))
#define MAP_(count, m, ...) MAP__(count, m, __VA_ARGS__)
#define MAP__(count, m, ...) MAP_##count(m, __VA_ARGS__)
#define MAP_COUNT(...) MAP_COUNT_(__VA_ARGS__, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1)
#define MAP_COUNT_(a, b, c, d, e, f, g, h, i, j, count, ...) count
#define MAP_1(m, a) m(1, a)
#define MAP_2(m, a, b) MAP_1(m, a) m(2, b)
#define MAP_3(m, a, b, c) MAP_2(m, a, b) m(3, c)
#define MAP_4(m, a, b, c, d) MAP_3(m, a, b, c) m(4, d)
#define MAP_5(m, a, b, c, d, e) MAP_4(m, a, b, c, d) m(5, e)
#define MAP_6(m, a, b, c, d, e, f) MAP_5(m, a, b, c, d, e) m(6, f)
#define MAP_7(m, a, b, c, d, e, f, g) MAP_6(m, a, b, c, d, e, f) m(7, g)
#define MAP_8(m, a, b, c, d, e, f, g, h) MAP_7(m, a, b, c, d, e, f, g) m(8, h)
#define MAP_9(m, a, b, c, d, e, f, g, h, i) MAP_8(m, a, b, c, d, e, f, g, h) m(9, i)
#define MAP_10(m, a, b, c, d, e, f, g, h, i, j) MAP_9(m, a, b, c, d, e, f, g, h, i) m(10, j)

#define WITHOUT_COMMA(...) WITHOUT_COMMA_(__VA_ARGS__)
#define WITHOUT_COMMA_(first, ...) __VA_ARGS__

// The elements of an argument column.
#define ELEMENTS_NONE
#define ELEMENTS_BARE(element) element
#define ELEMENTS_RECORD(...) __VA_ARGS__
#define ELEMENTS_RECORD_NAMED(record, ...) __VA_ARGS__
#define ELEMENTS_RECORD_OF(record, ...) __VA_ARGS__

// FOR_SHAPE(m, procedure, arguments) calls m_NONE(procedure), m_BARE(procedure, element) or
// m_RECORD, m_RECORD_NAMED, m_RECORD_OF (procedure, record, elements).
#define FOR_SHAPE(m, procedure, arguments) FOR_SHAPE_(m, procedure, SHAPE_##arguments)
#define FOR_SHAPE_(m, ...) FOR_SHAPE__(m, __VA_ARGS__)
#define FOR_SHAPE__(m, procedure, shape, ...) FOR_SHAPE_##shape(m, procedure __VA_OPT__(, ) __VA_ARGS__)
#define SHAPE_NONE NONE
#define SHAPE_BARE(element) BARE, element
#define SHAPE_RECORD(...) RECORD, __VA_ARGS__
#define SHAPE_RECORD_NAMED(...) RECORD_NAMED, __VA_ARGS__
#define SHAPE_RECORD_OF(...) RECORD_OF, __VA_ARGS__
#define FOR_SHAPE_NONE(m, procedure) m##_NONE(procedure)
#define FOR_SHAPE_BARE(m, procedure, element) m##_BARE(procedure, element)
#define FOR_SHAPE_RECORD(m, procedure, ...) m##_RECORD(procedure, procedure##_1_argument, __VA_ARGS__)
#define FOR_SHAPE_RECORD_NAMED(m, procedure, record, ...) m##_RECORD_NAMED(procedure, record, __VA_ARGS__)
#define FOR_SHAPE_RECORD_OF(m, procedure, record, ...) m##_RECORD_OF(procedure, record, __VA_ARGS__)

// Type of an element on the wire, and its XDR routine.
#define WIRE_TYPE_VAP(name) int
#define WIRE_TYPE_INT(name) int
#define WIRE_TYPE_IGNORED(name) int
#define WIRE_TYPE_UINT(name) u_int
#define WIRE_TYPE_BOOL(name) bool_t
#define WIRE_TYPE_USHORT(name) u_short
#define WIRE_TYPE_TEXT(name) char *
#define WIRE_XDR_VAP(name) xdr_int
#define WIRE_XDR_INT(name) xdr_int
#define WIRE_XDR_IGNORED(name) xdr_int
#define WIRE_XDR_UINT(name) xdr_u_int
#define WIRE_XDR_BOOL(name) xdr_bool
#define WIRE_XDR_USHORT(name) xdr_u_short
#define WIRE_XDR_TEXT(name) xdr_text

// An element's name.
#define NAME_VAP(name) name
#define NAME_INT(name) name
#define NAME_IGNORED(name) name
#define NAME_UINT(name) name
#define NAME_BOOL(name) name
#define NAME_USHORT(name) name
#define NAME_TEXT(name) name

// An element as a handler's parameter, and in a debug line.
#define PARAMETER_VAP(name) int name,
#define PARAMETER_INT(name) int name,
#define PARAMETER_IGNORED(name) int name,
#define PARAMETER_UINT(name) u_int name,
#define PARAMETER_BOOL(name) bool_t name,
#define PARAMETER_USHORT(name) u_short name,
#define PARAMETER_TEXT(name) const char *name,
#define LOG_FORMAT_VAP(name) "[" #name " %d]"
#define LOG_FORMAT_INT(name) "[" #name " %d]"
#define LOG_FORMAT_IGNORED(name) "[" #name " %d]"
#define LOG_FORMAT_UINT(name) "[" #name " %u]"
#define LOG_FORMAT_BOOL(name) "[" #name " %d]"
#define LOG_FORMAT_USHORT(name) "[" #name " %u]"
#define LOG_FORMAT_TEXT(name) "[" #name " %s]"

// An element as an argument of the back end, with a leading comma; an ignored one is not passed on.
#define PASSED_VAP(name) , name
#define PASSED_INT(name) , name
#define PASSED_IGNORED(name)
#define PASSED_UINT(name) , name
#define PASSED_BOOL(name) , name
#define PASSED_USHORT(name) , name
#define PASSED_TEXT(name) , name
#define PASSED_TYPE_VAP(name) , int
#define PASSED_TYPE_INT(name) , int
#define PASSED_TYPE_IGNORED(name)
#define PASSED_TYPE_UINT(name) , u_int
#define PASSED_TYPE_BOOL(name) , bool_t
#define PASSED_TYPE_USHORT(name) , u_short
#define PASSED_TYPE_TEXT(name) , const char *

// An element as an integer output of the back end.
#define OUTPUT_TYPE_INT(name) int
#define OUTPUT_TYPE_UINT(name) u_int
#define OUTPUT_TYPE_BOOL(name) int

// The two result types of the wire.
#define RESULT_TYPE_CODE wlan_config_return_code_e
#define RESULT_TYPE_ACTION wlan_config_result_data_t
#define RESULT_TYPE_INTEGERS(...) wlan_config_result_data_t
#define RESULT_TYPE_INTEGERS64(...) wlan_config_result_data_t
#define RESULT_TYPE_WORDS(...) wlan_config_result_data_t
#define RESULT_TYPE_STRING(...) wlan_config_result_data_t
#define RESULT_TYPE_LONG_STRING(...) wlan_config_result_data_t
#define RESULT_TYPE_IMAGE(...) wlan_config_result_data_t
#define RESULT_TYPE_COUNTED_IMAGE(...) wlan_config_result_data_t
