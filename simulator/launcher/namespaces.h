// The namespaces that keep the simulated gateway away from the host: mount, network, pid, and user where needed.
//
// Touches the calling process and its namespaces. The launcher's outer process, single-threaded.
#pragma once

// Enters new mount and network namespaces; the next child is the first process of a new pid namespace. Where the
// caller may not do that, a user namespace in which the caller is root comes first. False after saying what was
// refused.
bool enter_namespaces(void);

// Whether the kernel refuses what enter_namespaces() needs, or the mounts that are made in them. A child tries, so that
// this process stays as it is.
bool namespaces_are_refused(void);
