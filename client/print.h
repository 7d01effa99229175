// Results for people and scripts, by the result kind of a row.
//
// A result is foreign data: check_result comes first, and what it passed can be printed. Pure functions but for the
// stream they write to.
#pragma once

#include <stdio.h>

#include "client/arguments.h"
#include "client/operations.h"
#include "server/wire.h"

// Texts come from the air (names of networks and stations) as well as from the store. A terminal must not obey the
// control characters in them; a program gets them as they are.
enum class text_style { AS_THEY_ARE, FOR_A_TERMINAL };

// Whether the payload is what the row promises. False with a sentence in `problem` when it is not. A failure may come
// without any payload.
bool check_result(const procedure_row *row, const wlan_config_result_data_t *result, char problem[PROBLEM_SIZE]);

// The payload of a checked result, "ok" for a success that has none. Of a failure only a payload that carries
// something: integers, a text that is not empty, an image that is not all zeros.
void print_result(FILE *out, const procedure_row *row, const wlan_config_result_data_t *result, text_style style);

// The name of one word of a record that travels as words: rx_packets.
const char *word_name(const char *type, size_t word);
