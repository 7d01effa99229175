#include "simulator/faults.h"

#include <ctype.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "simulator/paths.h"

// Room for a fault's file name, and for that of the file beside it that replaces it.
constexpr size_t FAULT_PATH_SIZE = sizeof GATEWAY_FAULTS + FAULT_NAME_SIZE + 16;

// The longest that a tool may be told to wait, in seconds: a day.
constexpr double LONGEST_SLOWNESS = 86400;

// Linux numbers its errors from 1; no architecture goes beyond this.
constexpr int LARGEST_ERRNO = 4095;

static void fault_path(const char *name, char *path, size_t size) {
    snprintf(path, size, "%s/%.*s", GATEWAY_FAULTS, (int)FAULT_NAME_SIZE - 1, name);
}

bool fault_get(const char *name, char *value, size_t size) {
    char path[FAULT_PATH_SIZE];
    fault_path(name, path, sizeof path);
    value[0] = '\0';
    int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    ssize_t length = read(file, value, size - 1);
    close(file);
    value[length > 0 ? length : 0] = '\0';
    return true;
}

int errno_by_name(const char *name) {
    for (int number = 1; number <= LARGEST_ERRNO; number++) {
        const char *candidate = strerrorname_np(number);
        if (candidate != nullptr && strcmp(candidate, name) == 0)
            return number;
    }
    return 0;
}

int fault_errno(const char *name) {
    char value[FAULT_VALUE_SIZE];
    if (!fault_get(name, value, sizeof value))
        return 0;
    int number = errno_by_name(value);
    // A hand-made file with another content still means "fail".
    return number != 0 ? number : EIO;
}

bool fault_number(const char *name, int64_t *number) {
    char value[FAULT_VALUE_SIZE];
    if (!fault_get(name, value, sizeof value))
        return false;
    *number = strtoll(value, nullptr, 10);
    return true;
}

bool fault_slowness(const char *value, double *seconds) {
    if (strncmp(value, "slow ", 5) != 0 || !isdigit((unsigned char)value[5]))
        return false;
    char *end;
    *seconds = strtod(value + 5, &end);
    return *end == '\0' && *seconds <= LONGEST_SLOWNESS;
}

void ioctl_fault_name(unsigned long request, char *name, size_t size) {
    snprintf(name, size, "ioctl:0x%lx", request);
}

void ioctl_part_fault_name(unsigned long request, unsigned part, char *name, size_t size) {
    snprintf(name, size, "ioctl:0x%lx.%u", request, part);
}

int fault_set(const char *name, const char *value) {
    char path[FAULT_PATH_SIZE];
    char beside[FAULT_PATH_SIZE + 8];
    fault_path(name, path, sizeof path);
    // Outside the directory of faults, or it would be listed as one.
    snprintf(beside, sizeof beside, "%s.new", GATEWAY_FAULTS);
    int file = open(beside, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return -1;
    size_t length = strlen(value);
    bool written = write(file, value, length) == (ssize_t)length;
    close(file);
    return written ? rename(beside, path) : -1;
}

int fault_clear(const char *name) {
    char path[FAULT_PATH_SIZE];
    fault_path(name, path, sizeof path);
    return unlink(path) == 0 || errno == ENOENT ? 0 : -1;
}
