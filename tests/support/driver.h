// The driver's side of the wireless ioctls in the unit tests: an `ioctl` in front of the C library's, for the whole
// program, that records what was asked and answers as it is told. Nothing reaches the kernel.
#pragma once

#include <linux/wireless.h>
#include <stdint.h>

#include "config/wireless.h"

// What the driver was asked last, and what it is to answer.
struct fake_driver {
    int calls;
    int descriptor;
    unsigned long request;
    iwreq record;
    int error;                  // refuses with this when not 0
    bool lists_channels;        // answers with the table below
    channel_table table;        // copied to where the request points
    const char *inline_answer;  // 16 bytes for the record's data, when not null
    uint16_t length_answer;     // the length word of the answer, when not 0
};
extern fake_driver driver;

// Nothing asked; answers everything with success and changes nothing.
void reset_driver();

// Adds a channel to the table of every interface.
void list_channel(unsigned frequency, uint32_t flags);
