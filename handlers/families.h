// What the handlers of a family have in common: how outputs become the payload of a result.
//
// Touches nothing outside. Service thread only. Each function sets both members of the result's payload, the unused
// one to length 0 and null; return_code stays the handler's. When memory runs out the payload stays empty: the client
// still gets its return code.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "server/wire.h"

// Both members empty.
void pack_nothing(wlan_config_result_data_t *result);

// `count` integers. They travel as count * 4 elements, those past the first `count` zero; see
// wlan_config_result_data_t.
void pack_integers(wlan_config_result_data_t *result, const void *words, size_t count);

// `count` 64-bit integers, each as two integers, low word first.
void pack_integers64(wlan_config_result_data_t *result, const int64_t *values, size_t count);

// A text with its NUL.
void pack_string(wlan_config_result_data_t *result, const char *text);

// A record's memory image.
void pack_image(wlan_config_result_data_t *result, const void *record, size_t size);

// A record's memory image with the number of its entries as one integer.
void pack_counted_image(wlan_config_result_data_t *result, int count, const void *record, size_t size);
