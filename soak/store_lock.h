// The store's lock, as the tools and the server take it.
//
// Touches /tmp/.apcfg_lock. Any thread; but a process has the lock as a whole, so only one thread of it may want it.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

#include "simulator/paths.h"

// Has the lock from its beginning to its end.
struct store_lock_holder {
    static inline std::mutex one_thread;
    std::lock_guard<std::mutex> thread{one_thread};
    int file;

    store_lock_holder() : file(open(APCFG_LOCK, O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        struct flock whole = {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        while (file >= 0 && fcntl(file, F_SETLKW, &whole) != 0) {
        }
    }
    ~store_lock_holder() {
        close(file);
    }
    store_lock_holder(const store_lock_holder &) = delete;
    store_lock_holder &operator=(const store_lock_holder &) = delete;
};
