// The interface of the server in the RPC language, emitted from the table: docs/wlan_config.x is this function's
// output.
//
// Writes to the given stream only, and the same bytes every time.
#pragma once

#include <stdio.h>

// For rpcgen -N.
void print_interface(FILE *out);
