#include "simulator/tools/held_lock.h"

#include <errno.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include "simulator/faults.h"
#include "simulator/paths.h"
#include "simulator/store.h"

// How soon the holder sees that the fault was switched off.
constexpr long LOOK_NANOSECONDS = 5'000'000;

static bool is_on(void) {
    char value[FAULT_VALUE_SIZE];
    return fault_get(STORE_LOCK_FAULT, value, sizeof value);
}

// Nobody is to wait for the end of this process because it has their files.
static void let_go_of_files(void) {
    int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int file = STDIN_FILENO; file <= STDERR_FILENO; file++)
        dup2(null, file);
    setsid();
}

[[noreturn]] static void hold_lock(int told) {
    let_go_of_files();
    int lock = store_lock(APCFG_LOCK);
    [[maybe_unused]] ssize_t written = write(told, lock >= 0 ? "1" : "", lock >= 0 ? 1 : 0);
    close(told);
    while (lock >= 0 && is_on()) {
        timespec pause = {0, LOOK_NANOSECONDS};
        nanosleep(&pause, nullptr);
    }
    _exit(0);
}

// Once it is on there is a holder, for whom a second one would wait.
int held_lock_begin(void) {
    int ends[2];
    if (is_on())
        return 0;
    if (fault_set(STORE_LOCK_FAULT, STORE_LOCK_HELD) != 0 || pipe2(ends, O_CLOEXEC) != 0)
        return -1;
    pid_t child = fork();
    if (child == 0)
        hold_lock(ends[1]);
    close(ends[1]);
    char byte;
    bool held = child > 0 && read(ends[0], &byte, 1) == 1;
    close(ends[0]);
    if (!held)
        errno = ENOLCK;
    return held ? 0 : -1;
}

int held_lock_end(void) {
    if (!is_on())
        return 0;
    if (fault_clear(STORE_LOCK_FAULT) != 0)
        return -1;
    int lock = store_lock(APCFG_LOCK);
    if (lock >= 0)
        close(lock);
    return 0;
}
