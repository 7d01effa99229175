// Documents emitted from the table: docs/procedures.md and docs/wlan_config.x are these functions' output.
//
// Writes to the given stream only, and the same bytes every time.
#pragma once

#include <stdio.h>

// A page with two tables of all procedures: every name derived from its row in full, and what it touches.
void print_reference(FILE *out);

// The interface of the server in the RPC language, for rpcgen -N.
void print_interface(FILE *out);
