// The driver's MAC filter of each VAP: the addresses that were added to it.
//
// Touches /run/gateway/parameters, a line like "ath0.maclist=28:6A:BA:4C:10:01 98:01:A7:9B:55:04" a VAP that has any.
// Whether and how the driver uses the list is its policy, which the command "maccmd" sets.
#pragma once

#include "simulator/store.h"

// Adds an address in its text form, removes one, removes all. An address that is there already, or that is not there,
// is no error. Return 0, or -1 with errno.
int mac_filter_add(const char *interface, const char *mac);
int mac_filter_remove(const char *interface, const char *mac);
int mac_filter_flush(const char *interface);

// The addresses with a blank between two, in the order in which they were added; the caller frees them. Null when
// memory ran out.
char *mac_filter_list(const char *interface);

// What the start of the driver does: puts the "steerlist" entries of a VAP's AP_MACLIST into the lines of its
// parameters. Returns 0, or -1 when memory ran out.
int mac_filter_load(const char *interface, const store_text *store, int index, store_text *lines);
