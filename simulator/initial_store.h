// The store that a gateway of a scenario starts with.
//
// Touches nothing; the launcher saves the result.
#pragma once

#include "simulator/scenario.h"
#include "simulator/store.h"

// Fills an empty store: the settings of the device, of its radios and of its VAPs, then the scenario's own "set"
// lines, which replace a line of the same key. Returns 0, or -1 when memory ran out.
int initial_store(const scenario *scene, store_text *store);
