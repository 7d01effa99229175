// The store's lock as other processes take it, and what this process holds open meanwhile.
//
// Touches /tmp/.apcfg_lock.
#pragma once

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "config/store.h"
#include "tests/support/platform.h"

// Takes the store's lock as another program would, waiting for it (F_SETLKW) or not (F_SETLK), and keeps it. In the
// process under test it would only take what that process has.
inline bool take_lock(int command) {
    int lock = open(STORE_LOCK_FILE, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    struct flock whole_file = {};
    whole_file.l_type = F_WRLCK;
    whole_file.l_whence = SEEK_SET;
    return fcntl(lock, command, &whole_file) == 0;
}

// Runs the block in a process of its own, which ends with 0 when the block returns true.
template <typename Block>
pid_t start_process(Block block) {
    pid_t child = fork();
    if (child == 0) {
        _exit(block() ? 0 : 1);
    }
    return child;
}

inline bool has_succeeded(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Whether another process finds the lock free.
inline bool is_lock_free() {
    return has_succeeded(start_process([] { return take_lock(F_SETLK); }));
}

// Whether some process waits for the lock.
inline bool is_lock_awaited() {
    struct stat lock = {};
    if (stat(STORE_LOCK_FILE, &lock) != 0) {
        return false;
    }
    // A waiting process is a line with an arrow that names the file by its inode.
    std::string inode = ":" + std::to_string(lock.st_ino) + " ";
    std::string locks = read_file("/proc/locks");
    for (size_t arrow = 0; (arrow = locks.find("->", arrow)) != std::string::npos; arrow++) {
        std::string line = locks.substr(arrow, locks.find('\n', arrow) - arrow);
        if (line.find(inode) != std::string::npos) {
            return true;
        }
    }
    return false;
}

// Ends the process with a failure when nobody comes to wait: whoever should has gone on without the lock.
inline void wait_until_lock_is_awaited() {
    constexpr int PATIENCE_MS = 10000;
    for (int waited = 0; !is_lock_awaited(); waited++) {
        if (waited == PATIENCE_MS) {
            _exit(1);
        }
        usleep(1000);
    }
}

// Starts a process that holds the lock, and returns when it does. Once somebody waits for it, the process runs the
// block and ends.
template <typename Block>
pid_t start_lock_holder(Block block) {
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) {
        abort();
    }
    pid_t holder = start_process([&] {
        if (!take_lock(F_SETLK) || write(ready[1], "", 1) != 1) {
            return false;
        }
        wait_until_lock_is_awaited();
        block();
        return true;
    });
    char byte;
    if (read(ready[0], &byte, 1) != 1) {
        abort();
    }
    close(ready[0]);
    close(ready[1]);
    return holder;
}

// Whether every descriptor of this process on the file is closed on exec; false when there is none.
inline bool is_closed_on_exec(const char *path) {
    struct stat wanted = {};
    int found = 0;
    int inherited = 0;
    if (stat(path, &wanted) != 0) {
        return false;
    }
    for (int descriptor = 0; descriptor < 256; descriptor++) {
        struct stat seen = {};
        std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        if (stat(link.c_str(), &seen) == 0 && seen.st_ino == wanted.st_ino && seen.st_dev == wanted.st_dev) {
            found++;
            inherited += (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0;
        }
    }
    return found > 0 && inherited == 0;
}

// The descriptor that the next open would get: the same before and after whatever leaves nothing open.
inline int lowest_free_descriptor() {
    int descriptor = dup(STDIN_FILENO);
    close(descriptor);
    return descriptor;
}
