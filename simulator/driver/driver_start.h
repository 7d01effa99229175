// What the driver takes over when its VAPs are brought up: the values of its private commands and the MAC filters from
// the store, band steering's tables from the scenario.
//
// Touches /run/gateway/parameters. Used by driver_life, whenever VAPs come up.
#pragma once

#include "simulator/driver/driver_state.h"

// Forgets all values and takes over what the store says for the radios and for the VAPs that are up. The caller holds
// the driver's lock. Returns 0, or -1 with errno.
int driver_start_parameters(const driver_state *state, const scenario *scene, const char *store_path);
