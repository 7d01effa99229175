// The door through which wireless ioctls leave: one shared socket, the request wrappers, the channel table.
//
// Touches the driver's network interfaces. Runs on the service thread.
#include "config/wireless.h"

#include <errno.h>
#include <linux/wireless.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <bit>

#include "config/log.h"
#include "config/store.h"

// Data below this size travels inside the request record, as the wireless extensions lay it down.
constexpr size_t INLINE_DATA_SIZE = IFNAMSIZ;
static_assert(INLINE_DATA_SIZE == 16 && sizeof(iwreq_data) >= INLINE_DATA_SIZE);

// Where memory for the driver is looked for: above what a kernel keeps free at the bottom and below 2 GiB, where
// nothing of an ordinary program lies on any 64-bit machine; a 32-bit program has gaps there. The step is larger than
// what is asked for at once.
constexpr uintptr_t LOW_MEMORY_BEGIN = 0x1000'0000;
constexpr uintptr_t LOW_MEMORY_END = 0x7000'0000;
constexpr uintptr_t LOW_MEMORY_STEP = 0x10'0000;

// A piece up to this size is mapped as one of this size, and the last of them that was given back is kept for the next
// call: mapping and touching it anew would take longer than all the rest of a table of neighbours (measured). It holds
// the list of 256 neighbours.
constexpr size_t KEPT_SIZE = 32 << 10;
static void *kept;

int wlan_ioctl_socket(void) {
    static int shared = -1;
    if (shared < 0) {
        shared = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        if (shared < 0) {
            perror("socket(SOCK_DRAGM)");  // spelt so: this is what people search the logs for
            exit(1);
        }
    }
    return shared;
}

// A request for an interface, without data.
static void begin_request(iwreq *record, const char *interface) {
    memset(record, 0, sizeof(*record));
    // A name of all 16 bytes goes without NUL: the kernel looks no further.
    memcpy(record->ifr_name, interface, strnlen(interface, sizeof(record->ifr_name)));
}

static int send_request(const char *interface, unsigned long request, void *data, size_t length, iwreq *record) {
    begin_request(record, interface);
    if (length < INLINE_DATA_SIZE) {
        memcpy(record->u.name, data, length);
    } else {
        record->u.data.pointer = data;
        record->u.data.length = static_cast<uint16_t>(length);
    }
    return ioctl(wlan_ioctl_socket(), request, record);
}

int wlan_ioctl(const char *interface, unsigned long request, void *data, size_t length) {
    iwreq record;
    if (send_request(interface, request, data, length, &record) < 0) {
        perror("ioctl");
        return -1;
    }
    return 0;
}

int wlan_get80211priv(const char *interface, unsigned long request, void *data, size_t length) {
    iwreq record;
    if (send_request(interface, request, data, length, &record) < 0) {
        return -1;
    }
    if (length < INLINE_DATA_SIZE) {
        memcpy(data, record.u.name, length);
    }
    return record.u.data.length;
}

// Sends a request with its data passed by reference whatever the length. The driver's length word comes back in length.
static int send_by_reference(int sender, const char *interface, unsigned long request, void *data, uint16_t *length) {
    iwreq record;
    begin_request(&record, interface);
    record.u.data.pointer = data;
    record.u.data.length = *length;
    int result = ioctl(sender, request, &record);
    *length = record.u.data.length;
    return result;
}

// The same on a socket of its own.
static int send_alone(const char *interface, unsigned long request, void *data, uint16_t *length) {
    int own = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (own < 0) {
        return -1;
    }
    int result = send_by_reference(own, interface, request, data, length);
    int reason = errno;
    close(own);
    errno = reason;
    return result;
}

int wlan_private_request(const char *interface, unsigned long request, void *data, uint16_t length) {
    return send_alone(interface, request, data, &length);
}

int wlan_shared_request(const char *interface, unsigned long request, void *data, uint16_t length) {
    return send_by_reference(wlan_ioctl_socket(), interface, request, data, &length);
}

int wlan_driver_command(int index, driver_command *block) {
    char interface[INTERFACE_NAME_SIZE];
    interface_name(index, interface);
    return wlan_shared_request(interface, IOCTL_DRIVER, block, sizeof(*block));
}

int wlan_get_essid(const char *interface, char essid[ESSID_SIZE]) {
    uint16_t length = ESSID_SIZE - 1;
    return send_alone(interface, SIOCGIWESSID, essid, &length) < 0 ? -1 : length;
}

static void *map_low_memory(size_t size) {
    for (uintptr_t address = LOW_MEMORY_BEGIN; address < LOW_MEMORY_END; address += LOW_MEMORY_STEP) {
        if (size > LOW_MEMORY_END - address) {
            break;  // it would end too high
        }
        void *wanted = std::bit_cast<void *>(address);
        void *memory =
            mmap(wanted, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
        if (memory == wanted) {
            return memory;
        }
        // An old kernel takes the address for a wish.
        if (memory != MAP_FAILED) {
            munmap(memory, size);
        }
    }
    return nullptr;
}

void *low_memory_new(size_t size) {
    if (size > KEPT_SIZE) {
        return map_low_memory(size);
    }
    void *memory = kept;
    kept = nullptr;
    if (!memory) {
        return map_low_memory(KEPT_SIZE);
    }
    memset(memory, 0, size);
    return memory;
}

void low_memory_free(void *memory, size_t size) {
    if (!memory) {
        return;
    }
    if (size > KEPT_SIZE) {
        munmap(memory, size);
    } else if (kept) {
        munmap(memory, KEPT_SIZE);
    } else {
        kept = memory;
    }
}

uint32_t low_memory_address(const void *memory) {
    return static_cast<uint32_t>(std::bit_cast<uintptr_t>(memory));
}

void *low_memory_at(uint32_t address) {
    return std::bit_cast<void *>(static_cast<uintptr_t>(address));
}

// All of this in unsigned arithmetic: what lies between the bands wraps around, and callers only ever compare the
// outcome with channels that exist.
unsigned freq_to_channel(unsigned frequency) {
    if (frequency == 2484) {
        return 14;
    }
    if (frequency < 2484) {
        return (frequency - 2407) / 5;
    }
    if (frequency >= 5000) {
        return (frequency - 5000) / 5;
    }
    if (frequency >= 4941 && frequency <= 4989) {
        // The public safety band: its 5 MHz channels lie half a channel beside the grid.
        return (frequency * 10 + (frequency % 5 == 2 ? 5 : 0) - 49400) / 5;
    }
    if (frequency < 4901) {
        return 15 + (frequency - 2512) / 20;
    }
    return (frequency - 4000) / 5;
}

int get_channels(const char *interface, unsigned channel) {
    channel_table table = {};
    if (wlan_get80211priv(interface, IOCTL_CHANNEL_TABLE, &table, sizeof(table)) < 0) {
        perror("unable to get channel information");
        return -1;
    }
    for (uint32_t i = 0; i < table.count && i < CHANNEL_TABLE_ENTRIES; i++) {
        const channel_entry *entry = &table.entries[i];
        if (freq_to_channel(entry->frequency) == channel) {
            log_debug("[VLK-API] %s ic_flags:0x%x\n", __func__, entry->ic_flags);
            return static_cast<int>(entry->ic_flags);
        }
    }
    return 0;
}
