#include "simulator/preload/caller_memory.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

int move_bytes(const void *from, void *to, size_t size) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    bool moved = write(ends[1], from, size) == (ssize_t)size && read(ends[0], to, size) == (ssize_t)size;
    int reason = moved ? 0 : EFAULT;
    close(ends[0]);
    close(ends[1]);
    return reason;
}

void *caller_place(uint32_t address, uint64_t offset) {
    uintptr_t number = address + offset;
    void *pointer;
    memcpy(&pointer, &number, sizeof pointer);
    return pointer;
}
