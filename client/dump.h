// A result byte by byte, for those who look for what a record really carried.
#pragma once

#include <stdio.h>

#include "server/wire.h"

// The integers, and below them the bytes with their offsets, as hexadecimal and as characters. Lines of bytes that only
// repeat the one before become one "*".
void print_dump(FILE *out, const wlan_config_result_data_t *result);
