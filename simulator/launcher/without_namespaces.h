// The second way: where namespaces are refused, proot carries the gateway.
//
// A folder of the run's own is the root of every process inside, the host's directories are bound into it, and each
// program has a library loaded that keeps addresses and processes of the gateway apart from the host's. Between the
// launcher and proot stands a keeper, which ends everything and removes the folder when the command or the launcher
// ends, however that happens.
//
// Touches a folder below $TMPDIR, /tmp or /var/tmp, and processes that it started. The launcher's processes outside,
// single-threaded.
#pragma once

#include <stddef.h>
#include <sys/types.h>

#include "simulator/launcher/options.h"
#include "simulator/launcher/root_contents.h"

// Finds proot. False when it is not installed. `path` has PATH_MAX bytes.
bool find_proot(char *path);

// Starts the keeper, which starts everything else; `alive` is a pipe, and the keeper ends everything when nobody has
// its writing end open any more. Its status is the launcher's. Returns its number, or -1 with errno.
pid_t start_without_namespaces(const char *proot, const options *given, const kept_directories *kept,
                               const gateway_programs *programs, const char *text, size_t length, int alive[2]);

// Whether this process is the launcher once more, inside; its working directory then is the caller's as far as it is
// visible, and what is left of the way here is gone from the environment.
bool is_inside_without_namespaces(void);

// Says how the command ended, in the launcher inside; then the keeper ends everything.
void say_status(int status);
