// What the gateway begins with: files, state of the driver, daemons.
//
// Touches /run, /tmp, /nvram, processes and sockets inside the gateway. The gateway's first process.
#pragma once

#include <stddef.h>

#include "simulator/launcher/options.h"
#include "simulator/scenario.h"

// Sets what every process in the gateway has in its environment.
void set_environment(const options *given);

// Gives the gateway its network where it has one of its own. False after saying why not.
bool set_up_network(void);

// Lays down the state that the scenario begins with (text: the scenario as it was read) and starts the daemons. False
// after saying why not.
bool begin(const options *given, const scenario *scene, const char *text, size_t length);
