// The moments of the driver's life: it is inserted into the kernel, its VAPs come up and go down, it is removed. Each
// is one change of the driver's state under its lock; what lies between them is the scripts' business.
//
// Touches what driver_state, driver_start and board touch. Used by the scripts, by insmod, and by the launcher for a
// gateway whose driver is loaded or up from the beginning. All return 0, or -1 with errno: ENODEV when the driver is
// not loaded, because somebody removed it in the meantime.
#pragma once

#include "simulator/driver/driver_state.h"

// Loads the driver, which looks for its radios. One that is loaded stays as it is.
int driver_insert(void);

// Begins the start of the VAPs: the driver looks for its radios again, forgets chosen channels, and takes down the VAPs
// that the store does not want: those with AP_ENABLE 0, on a radio with AP_RADIO_ENABLED 0, or on one that is not
// there. `coming` (SCENARIO_VAPS numbers from 0 on) gets those that have to come up, *count how many.
int driver_start_begin(const scenario *scene, const char *store_path, int *coming, int *count);

// Brings one VAP up; all that are up have what the store says afterwards. One that is up stays so.
int driver_start_vap(const scenario *scene, const char *store_path, int vap);

// Ends the start: exactly the VAPs that the store wants now are up, also when it, or the driver, was changed by
// somebody else in the meantime, and they have what the store says.
int driver_start_end(const scenario *scene, const char *store_path);

// Takes one VAP down.
int driver_stop_vap(int vap);

// Removes the driver: it forgets everything.
int driver_remove(void);

// The numbers of the VAPs that are up (SCENARIO_VAPS of them). Returns how many.
int driver_vaps_up(const driver_state *state, int *vaps);
