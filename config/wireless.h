// The door through which wireless ioctls leave: one shared socket, the request wrappers, the channel table.
//
// Touches the driver's network interfaces. Service thread only.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Private wireless request that answers with the driver's channel table (the first private request plus 7).
constexpr unsigned long IOCTL_CHANNEL_TABLE = 0x8BE7;

// The driver's own request. Which question it is shows in the length of the record that it carries the address of: the
// command block below, the airtime table, a station's airtime counters.
constexpr unsigned long IOCTL_DRIVER = 0x89FC;

enum driver_command_number : uint32_t {
    COMMAND_SCAN_STATUS = 38,    // the answer is what the request returns
    COMMAND_SCAN_COUNT = 39,     // answers with the number of networks in value
    COMMAND_SCAN_RESULTS = 40,   // fills the buffer, which has room for `value` networks
    COMMAND_STATION_COUNT = 41,  // answers with the number of associated stations in the low 7 bits of value
    COMMAND_STATION_TABLE = 42,  // fills the buffer, which has room for `value` stations
};

// A command with its operand or answer, and a buffer below 4 GiB (low_memory_new).
struct driver_command {
    uint32_t command;
    uint32_t value;
    uint32_t buffer;
};
static_assert(sizeof(driver_command) == 12);

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

// The same on the shared socket.
int wlan_shared_request(const char *interface, unsigned long request, void *data, uint16_t length);

// Sends a command block to the driver of a VAP, any int. Returns what the driver returned, -1 with errno; nothing is
// reported.
int wlan_driver_command(int index, driver_command *block);

// Reads the SSID that an interface uses, on a socket of its own, into a buffer for 32 characters and the NUL, which
// the driver need not write. Returns the length that the driver told, which is any number; -1 with errno, and nothing
// reported, when the request or the socket failed.
constexpr size_t ESSID_SIZE = 33;
int wlan_get_essid(const char *interface, char essid[ESSID_SIZE]);

// Memory for the driver: it keeps some addresses in 32-bit words, so these bytes lie below 4 GiB on every build.
// Zeroed. Null when there is no room. The caller gives them back with the same size. One small piece is kept for the
// next caller.
void *low_memory_new(size_t size);
void low_memory_free(void *memory, size_t size);

// The address of such memory as the driver takes it, and the way back.
uint32_t low_memory_address(const void *memory);
void *low_memory_at(uint32_t address);

// Channel number of a frequency in MHz.
unsigned freq_to_channel(unsigned frequency);

// Capability flags of a channel, 0 when the interface does not list it, -1 when the table could not be read.
int get_channels(const char *interface, unsigned channel);
