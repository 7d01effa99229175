// The factory defaults: the copy that the board keeps, and its handing out.
//
// Touches /run/gateway/defaults (written when the gateway starts, readable and editable) and /tmp/wifi_defaults.dat.
// Lines KEY=VALUE: those of the whole device first, then those of each radio between a line
// "SETTING_DELIMETER=24_RADIO_START" (spelled so; 50_RADIO for the 5 GHz band) and one that ends in _STOP.
#pragma once

#include "simulator/scenario.h"

// Writes the board's copy: the lines of the scenario's first store, with its "default" lines in their place or behind
// them. Returns 0, or -1 with errno.
int factory_defaults_lay_down(const scenario *scene);

// Puts the board's copy where the server looks for it, in one step. Returns 0, or -1 with errno when there is none or
// nothing in it; then nothing was written.
int factory_defaults_fetch(void);
