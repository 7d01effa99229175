// Results: whether they are what their row promises, and what they say.
//
// A result is foreign data: check_result comes first, and what it passed can be looked at. Pure functions.
#pragma once

#include "client/arguments.h"
#include "client/operations.h"
#include "client/record_fields.h"
#include "client/value.h"
#include "server/wire.h"

// Whether the payload is what the row promises. False with a sentence in `problem` when it is not. A failure may come
// without any payload.
bool check_result(const procedure_row *row, const wlan_config_result_data_t *result, char problem[PROBLEM_SIZE]);

// Whether a checked result has a payload that says something: integers, a text that is not empty, an image that is not
// all zeros. Failures mostly have none.
bool says_something(const procedure_row *row, const wlan_config_result_data_t *result);

// Whether results of a row have more than one value, so that a bare one has to be chosen by its name.
bool has_several_values(const procedure_row *row);

// The payload of a checked result as an object that the caller owns: its integers, its text or its record under the
// names that the row has for them. Empty for a result without payload.
value *result_value(const procedure_row *row, const wlan_config_result_data_t *result);

// One integer of a checked result with integers, by its place in the row.
int64_t result_number(const procedure_row *row, const wlan_config_result_data_t *result, size_t place);

// A record's fields as members of `to`. `image` has the record's size. Of rows of bytes, which no member counts, the
// first `rows` are given.
void add_record(value *to, const record_row *record, const void *image, size_t rows);
