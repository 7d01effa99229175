// The store that a gateway of a scenario starts with.
//
// Touches nothing; the launcher saves the result.
#pragma once

#include "simulator/scenario.h"
#include "simulator/store.h"

// Fills an empty store: the settings of the device, of its radios and of its VAPs, then the scenario's own "set"
// lines, which replace a line of the same key. Returns 0, or -1 when memory ran out.
int initial_store(const scenario *scene, store_text *store);

// The radio that a line of the store belongs to by its key, itself or through a VAP: 0 or 1. -1 when it belongs to the
// whole device; keys that nobody knows do, unless they carry the number of a VAP.
int initial_store_radio(const scenario *scene, const char *key);
