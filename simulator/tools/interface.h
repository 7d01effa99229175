// An interface as the driver's tools see it: found by its name, with scenario and driver state of the moment.
//
// Touches scenario, store and driver state: to read them, and the last to move a radio. One thread, that of the tool.
#pragma once

#include "simulator/driver/driver_state.h"

struct interface {
    const char *name;
    int vap;  // 0 to 15
    scenario *scene;
    driver_state state;
};

// Reads the model. False when there is no such interface or it is not up. Free it in both cases.
bool interface_find(interface *wanted, const char *name);
void interface_free(interface *wanted);

// The interface's VAP and its radio in the scenario.
const scenario_vap *interface_vap(const interface *wanted);
const scenario_radio *interface_radio(const interface *wanted);

// A setting of the store for the interface's VAP, or for its radio, cut to the buffer; empty when it is not there.
void interface_setting(const interface *wanted, const char *name, char *value, size_t size);
void interface_radio_setting(const interface *wanted, const char *name, char *value, size_t size);

// The channel that the radio works on: the one given to it, else the store's, else (automatic) the quietest.
unsigned interface_channel(const interface *wanted);

// Moves the interface's radio to a channel, after an announcement of so many seconds or (0) at once. Returns 0, or -1
// with errno.
int interface_move(const interface *wanted, unsigned channel, double seconds);

// A frequency in GHz as the tools write it: "2.437", "5.18", "5.2".
void frequency_text(unsigned megahertz, char *text, size_t size);
