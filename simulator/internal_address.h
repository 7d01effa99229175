// The gateway's internal address on the loopback device of the private network namespace.
//
// Touches the kernel's network configuration, by ioctl; where proot carries the run, a file that says whether the
// address is there. Used by the launcher, by `apup` (starting the driver puts the address back) and by the fault that
// takes it away.
#pragma once

// Switches `lo` on. Returns 0, or -1 with errno.
int loopback_up(void);

// Gives `lo` the internal address, as an alias; a second time changes nothing. Returns 0, or -1 with errno.
int internal_address_add(void);

// Takes it away again. Returns 0, or -1 with errno; that it is not there is no error.
int internal_address_remove(void);
