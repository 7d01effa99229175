// The file of the stations that can use 5 GHz, and the driver's debug requests.
//
// Touches /nvram/5gcapabletable and the driver's private request 0x8BF8. Runs on the service thread.
#include "steering/steering_tables.h"

#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <sys/file.h>
#include <unistd.h>

#include "config/store.h"
#include "config/wireless.h"
#include "params/vap.h"

constexpr unsigned long IEEE80211_IOCTL_DBGREQ = 0x8BF8;

// What the driver takes for a debug request: packed, and as long as the longest of its commands wants it.
struct __attribute__((packed)) debug_request {
    uint8_t command;
    uint8_t destination[6];  // a MAC
    uint32_t table_index;
    uint32_t buffer_size;     // bytes
    uint32_t buffer_address;  // 32 bits on every build
    uint8_t rest[192];
};
static_assert(sizeof(debug_request) == 211);
static_assert(offsetof(debug_request, command) == 0);
static_assert(offsetof(debug_request, destination) == 1);
static_assert(offsetof(debug_request, table_index) == 7);
static_assert(offsetof(debug_request, buffer_size) == 11);
static_assert(offsetof(debug_request, buffer_address) == 15);
static_assert(offsetof(debug_request, rest) == 19);

bool is_steered_pair(int index) {
    return index >= 1 && index <= VAPS_PER_RADIO;
}

static off_t slot_offset(int index) {
    return static_cast<off_t>(index - 1) * static_cast<off_t>(sizeof(wlan_5g_capable_table_t));
}

static bool is_file_absent(void) {
    return access(CAPABLE_TABLE_FILE, F_OK) != 0 && errno == ENOENT;
}

static int lock_exclusively(int file) {
    int status;
    do {
        status = flock(file, LOCK_EX);
    } while (status != 0 && errno == EINTR);
    return status;
}

// Opens the file and locks it; closing it gives the lock back. Returns 0 with *file -1 when there is none, and -1, with
// *file -1 too, when it cannot be opened or locked.
static int open_table(int flags, int *file) {
    *file = open(CAPABLE_TABLE_FILE, flags | O_CLOEXEC);
    if (*file < 0) {
        return is_file_absent() ? 0 : -1;
    }
    if (lock_exclusively(*file) != 0) {
        close(*file);
        *file = -1;
        return -1;
    }
    return 0;
}

int read5GHzCapableTable(int index, wlan_5g_capable_table_t *table) {
    if (!is_steered_pair(index) || !table) {
        return -1;
    }
    int file;
    int status = open_table(O_RDONLY, &file);
    if (file < 0) {
        return status;
    }
    ssize_t length = pread(file, table, sizeof(*table), slot_offset(index));
    close(file);
    return length == static_cast<ssize_t>(sizeof(*table)) ? 0 : -1;
}

int clear5GHzCapableTable(int index) {
    if (!is_steered_pair(index)) {
        return -1;
    }
    int file;
    int status = open_table(O_RDWR, &file);
    if (file < 0) {
        return status;
    }
    static const wlan_5g_capable_table_t empty = {};
    ssize_t length = pwrite(file, &empty, sizeof(empty), slot_offset(index));
    close(file);
    return length == static_cast<ssize_t>(sizeof(empty)) ? 0 : -1;
}

int request_debug(int index, uint8_t command, void *buffer, uint32_t size) {
    char interface[INTERFACE_NAME_SIZE];
    interface_name(index, interface);
    debug_request request = {};
    request.command = command;
    request.buffer_size = size;
    request.buffer_address = low_memory_address(buffer);
    return wlan_private_request(interface, IEEE80211_IOCTL_DBGREQ, &request, sizeof(request));
}
