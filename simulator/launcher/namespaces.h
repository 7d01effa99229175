// The namespaces that keep the simulated gateway away from the host: mount, network, pid, and user where needed.
//
// Touches the calling process and its namespaces. The launcher's outer process, single-threaded.
#pragma once

// Exit status of the launcher when the gateway could not be set up, whatever the reason.
constexpr int STATUS_NO_GATEWAY = 2;

// Says on standard error, in one line, what was refused and what would allow it; errno is the reason. Always false.
bool refused(const char *what, const char *remedy);

// Enters new mount and network namespaces; the next child is the first process of a new pid namespace. Where the
// caller may not do that, a user namespace in which the caller is root comes first. False after saying what was
// refused.
bool enter_namespaces(void);
