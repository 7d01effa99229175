// The fault with which somebody has the store's lock and does not give it back.
#pragma once

// Has a process hold the lock until the fault is off. Returns when it does, 0 or -1 with errno.
int held_lock_begin(void);

// Switches the fault off, and returns when the lock is free.
int held_lock_end(void);
