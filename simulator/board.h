// The board around the driver: its general-purpose inputs and outputs, and the bus that the radios sit on.
//
// Touches /run/gateway/gpio (lines like "10=1") and the bus's plain files below /sys/bus/pci. Files only: nothing
// happens when somebody writes them. Whoever loads or starts the driver looks there which radios it finds.
#pragma once

// The lines that there are: 0 to 255. Of these one has a meaning here.
constexpr int BOARD_GPIO_LINES = 256;
constexpr int GPIO_RADIO_RESET = 10;  // 0 holds both radios in reset

// Lays down the lines as they are when the board is switched on. Returns 0, or -1 with errno.
int board_start(void);

// The value of a line, 0 or 1. A line that nobody has set has the value that it starts with.
int board_gpio_read(int line);

// Returns 0, or -1 with errno.
int board_gpio_write(int line, int value);

// Whether the bus shows a radio, 0 or 1. It does not while the radio is held in reset, nor after its slot's power was
// switched off ("0") unless the bus was told to look again ("1" in its rescan file) since then. Looking notes what a
// rescan has done: the slot's file says "1" again.
bool board_has_radio(int radio);
