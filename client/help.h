// How the program and its commands are used, for people and for programs. Everything comes from the tables of commands,
// options and exit statuses.
//
// Writes to the given stream only.
#pragma once

#include <stdio.h>

#include "client/value.h"

struct command_row;

// The program's name, which begins its usage lines and messages.
constexpr const char PROGRAM_NAME[] = "vlk_rpc_wlan_config_client";

// How the program is called.
void print_program_help(FILE *out);

// What a command does, takes and can be told by options.
void print_command_help(FILE *out, const command_row *row);

// The same as objects, which the caller owns.
value *program_help(void);
value *command_help(const command_row *row);
