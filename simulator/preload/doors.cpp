// The doors through which the server leaves its process besides ioctls: the shell, the system log and the store.
//
// Interposes popen(), system() and syslog(). What goes through the first two is written down and goes on; a line for
// the system log is only written down, as nobody listens for it inside the gateway. The server reads the store itself
// and tells wlan_store_key_read(), which is here and nowhere else, what it looks for.
#include "simulator/preload/doors.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

#include "simulator/faults.h"
#include "simulator/journal.h"

using popen_function = FILE *(*)(const char *, const char *);
using system_function = int (*)(const char *);

void *next_function(const char *name) {
    void *function = dlsym(RTLD_NEXT, name);
    if (function == nullptr)
        abort();
    return function;
}

// The format may hold "%m", which stands for the errno that the caller has and keeps.
static void write_down(const char *format, va_list arguments) __attribute__((format(printf, 1, 0)));

static void write_down(const char *format, va_list arguments) {
    int reason = errno;
    char *text = nullptr;
    if (vasprintf(&text, format, arguments) >= 0) {
        journal_shell("syslog", text);
        free(text);
    }
    errno = reason;
}

extern "C" {

__attribute__((visibility("default"))) FILE *popen(const char *command, const char *mode) {
    journal_shell("popen", command);
    int reason = fault_errno("popen");
    if (reason != 0) {
        errno = reason;
        return nullptr;
    }
    return ((popen_function)next_function("popen"))(command, mode);
}

__attribute__((visibility("default"))) int system(const char *command) {
    // Without a command the question is whether there is a shell; nothing is run.
    if (command != nullptr) {
        journal_shell("system", command);
        int reason = fault_errno("system");
        if (reason != 0) {
            errno = reason;
            return -1;
        }
    }
    return ((system_function)next_function("system"))(command);
}

__attribute__((visibility("default"), format(printf, 2, 3))) void syslog(int, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write_down(format, arguments);
    va_end(arguments);
}

// Called by config/store.cpp for each look-up, on any thread.
__attribute__((visibility("default"))) void wlan_store_key_read(const char *search_key) {
    journal_read(search_key);
}

// What syslog() is called by in programs that were built with checks.
__attribute__((visibility("default"), format(printf, 3, 4))) void __syslog_chk(int, int, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write_down(format, arguments);
    va_end(arguments);
}
}
