// Log lines: the debug switch and the two roads a line can take.
//
// Touches /tmp/wlandbg (existence only), standard output and standard error. Any thread may log; a line is
// written by one call of the C library, so lines of different threads do not mix.
#pragma once

// Debug lines are written only while this file exists and is readable.
constexpr const char DEBUG_SWITCH_FILE[] = "/tmp/wlandbg";

// Whether debug lines are wanted right now. Looked up afresh on every call: creating or deleting the file takes
// effect at once, in the middle of a request too.
bool wlan_debug_enabled(void);

// Writes one line to standard output, only while debugging is on. The format is the whole line, prefix
// "[VLK-API] " and newline included, so that every text can be found by searching the tree for it.
void log_debug(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Writes one line to standard error, always. The format begins "[VLK-API] Error ", but for a few older lines that are
// known by their own words ("chan_flag", "Site Survey not complete") and for the diagnostics.
void log_error(const char *format, ...) __attribute__((format(printf, 1, 2)));

// Writes one line to standard output, always: a few operations report to whoever watches the server's output.
void log_always(const char *format, ...) __attribute__((format(printf, 1, 2)));
