// What the client tells about itself and its operations. Everything about an operation comes from its row.
//
// Writes to the given stream only.
#pragma once

#include <stdio.h>

#include "client/operations.h"

struct command_row;

// The program's name, which begins its usage lines and messages.
constexpr const char PROGRAM_NAME[] = "vlk_rpc_wlan_config_client";

// How the program is called.
void print_program_help(FILE *out);

// What a command does, takes and can be told by options.
void print_command_help(FILE *out, const command_row *row);

// setSsid <index> <ssid>. Returns the number of characters.
int print_synopsis(FILE *out, const procedure_row *row);

// usage: vlk_rpc_wlan_config_client setSsid <index> <ssid>
void print_usage(FILE *out, const procedure_row *row);

// What a result carries, in words: "port (integer), index (integer)".
void print_result_shape(FILE *out, const result_row *result);

// 21, or 0x100000C in the second block of numbers.
void print_number(FILE *out, uint32_t number);

// The source file with the row's handler.
const char *handler_file(const procedure_row *row);

// Whether the row has a back end; a handler may answer alone.
bool has_back_end(const procedure_row *row);

// All that the tables know about one operation.
void print_operation_help(FILE *out, const procedure_row *row, bool colour);

// One line for each operation that the word matches, all of them for "", under their subjects. Returns how many.
size_t print_list(FILE *out, const char *word, bool colour);
