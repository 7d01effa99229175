// One operation in a few words: its synopsis, its number, what its result carries. Everything comes from its row.
//
// Writes to the given stream only. The documents that are emitted from the table, too, are made of these.
#pragma once

#include <stdio.h>

#include "client/operations.h"

// setSsid <index> <ssid>. Returns the number of characters.
int print_synopsis(FILE *out, const procedure_row *row);

// usage: vlk_rpc_wlan_config_client setSsid <index> <ssid>
void print_usage(FILE *out, const procedure_row *row);

// What an output can be: "integer", "unsigned integer", "0 or 1".
const char *output_text(output_kind kind);

// Whether a result carries nothing but that it is one: success or failure.
bool is_only_a_code(const result_row *result);

// What a result carries, in words: "port (integer), index (integer)".
void print_result_shape(FILE *out, const result_row *result);

// 21, or 0x100000C in the second block of numbers.
void print_procedure_number(FILE *out, uint32_t number);

// The source file with the row's handler.
const char *handler_file(const procedure_row *row);

// Whether the row has a back end; a handler may answer alone.
bool has_back_end(const procedure_row *row);
