// Log lines: the debug switch and the two roads a line can take.
//
// Touches /tmp/wlandbg (existence only), standard output and standard error. Runs on every thread that logs.
#include "config/log.h"

#include <stdarg.h>
#include <stdio.h>
#include <unistd.h>

bool wlan_debug_enabled(void) {
    return access(DEBUG_SWITCH_FILE, R_OK) == 0;
}

void log_debug(const char *format, ...) {
    if (!wlan_debug_enabled()) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
}

void log_error(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void log_always(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
}
