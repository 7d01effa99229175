// The root file system of the simulated gateway where it has namespaces of its own: the host's, read-only, with its own
// directories where a gateway keeps things.
//
// Touches the mount namespace of the calling process, which must be the gateway's own. The gateway's first process,
// before anything else runs in it.
#pragma once

#include "simulator/launcher/root_contents.h"

// Builds the root and enters it. False after saying what was refused.
bool enter_private_root(const kept_directories *kept, const gateway_programs *programs);
