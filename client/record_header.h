// The records that results carry as a C header for programs of others: docs/wlan_config_records.h is this function's
// output.
//
// Writes to the given stream only, and the same bytes every time.
#pragma once

#include <stdio.h>

// A header for C99, C11 and C++ that needs nothing but <stddef.h> and <stdint.h>.
void print_record_header(FILE *out);
