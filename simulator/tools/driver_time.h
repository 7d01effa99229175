// What the scripts and insmod share: taking their time, and saying which radios the driver has not found.
//
// Reads the driver's state. One thread, that of the tool.
#pragma once

#include "simulator/scenario.h"

// Waits; signals that do not end the process do not shorten it.
void sleep_seconds(double seconds);

// Says on standard error, in a tool's name, which of the scenario's radios the driver has not found on the bus.
void name_absent_radios(const char *tool, const scenario *scene);
