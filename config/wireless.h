// The door through which wireless ioctls leave: one shared socket, the request wrappers, the channel table.
//
// Touches the driver's network interfaces. Service thread only.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Private wireless request that answers with the driver's channel table (the first private request plus 7).
constexpr unsigned long IOCTL_CHANNEL_TABLE = 0x8BE7;

// One entry of the channel table, as the driver lays it out.
struct channel_entry {
    uint16_t frequency;  // MHz
    uint16_t padding;
    uint32_t ic_flags;
    uint8_t unused[12];
};
static_assert(sizeof(channel_entry) == 20);

// As many entries as the driver's answer has room for.
constexpr size_t CHANNEL_TABLE_ENTRIES = 255;

struct channel_table {
    uint32_t count;
    channel_entry entries[CHANNEL_TABLE_ENTRIES];
};
static_assert(sizeof(channel_table) == 5104);

// The shared datagram socket, opened on first use and kept. Ends the process with status 1 when it cannot be opened.
int wlan_ioctl_socket(void);

// Issues a wireless request on an interface. Data of 16 bytes or more is passed by reference, shorter data inside
// the request itself. Returns 0, or -1 after reporting "ioctl" with the system's error text.
int wlan_ioctl(const char *interface, unsigned long request, void *data, size_t length);

// Issues a private request that answers. Short data is copied back to the caller.
// Returns -1 on failure (nothing is reported), else the length word that the driver returned.
int wlan_get80211priv(const char *interface, unsigned long request, void *data, size_t length);

// Issues a private request on a socket of its own, with the data passed by reference whatever its length.
// Returns what the driver returned; -1 with errno, and nothing reported, when it or the socket failed.
int wlan_private_request(const char *interface, unsigned long request, void *data, uint16_t length);

// Memory for the driver: it keeps some addresses in 32-bit words, so these bytes lie below 4 GiB on every build.
// Zeroed. Null when there is no room. The caller gives them back with the same size.
void *low_memory_new(size_t size);
void low_memory_free(void *memory, size_t size);

// Channel number of a frequency in MHz.
unsigned freq_to_channel(unsigned frequency);

// Capability flags of a channel, 0 when the interface does not list it, -1 when the table could not be read.
int get_channels(const char *interface, unsigned channel);
