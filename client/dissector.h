// The packet dissector for Wireshark, emitted from the table: docs/wlan_config.lua is this function's output.
//
// Writes to the given stream only, and the same bytes every time.
#pragma once

#include <stdio.h>

// A Lua script: procedures and records as tables, then the code that is the same for all of them.
void print_dissector(FILE *out);
