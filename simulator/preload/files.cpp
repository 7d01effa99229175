// The files that the server opens itself, without a tool that would show them.
//
// Interposes open() and fopen(): what is opened below /nvram or /tmp is written down, and goes on. The store's own
// traffic is left out: its lock, and the reading of it, of which wlan_store_key_read() (doors.cpp) tells more.
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "simulator/journal.h"
#include "simulator/paths.h"
#include "simulator/preload/doors.h"

using open_function = int (*)(const char *, int, ...);
using fopen_function = FILE *(*)(const char *, const char *);

static bool begins_with(const char *text, const char *beginning) {
    return strncmp(text, beginning, strlen(beginning)) == 0;
}

static bool is_of_interest(const char *path, bool writes) {
    if (strcmp(path, APCFG_STORE) == 0)
        return writes;
    return (begins_with(path, "/nvram/") || begins_with(path, "/tmp/")) && strcmp(path, APCFG_LOCK) != 0;
}

static void write_down(const char *path, bool writes) {
    if (is_of_interest(path, writes))
        journal_file(writes ? "write" : "read", path);
}

extern "C" {

__attribute__((visibility("default"))) int open(const char *path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t mode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    write_down(path, (flags & O_ACCMODE) != O_RDONLY);
    return ((open_function)next_function("open"))(path, flags, mode);
}

__attribute__((visibility("default"))) FILE *fopen(const char *path, const char *mode) {
    write_down(path, *mode != 'r' || strchr(mode, '+') != nullptr);
    return ((fopen_function)next_function("fopen"))(path, mode);
}
}
