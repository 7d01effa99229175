// What the launcher says on standard error when something does not work: one line each.
//
// Touches standard error. Any process of the launcher, single-threaded.
#pragma once

// Exit status of the launcher when the gateway could not be set up, whatever the reason.
constexpr int STATUS_NO_GATEWAY = 2;

// Says what did not work and why. Always false.
bool complain(const char *what, const char *why);

// Says what was refused and what would allow it; errno is the reason. Always false.
bool refused(const char *what, const char *remedy);
