// Preloaded into the server for the benchmark: a driver that has a scan list of so many networks, the number in
// /tmp/bench_networks, and nothing else. It answers from memory, so that what is measured is the server.
#include <fcntl.h>
#include <linux/wireless.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "config/wireless.h"
#include "server/records.h"

constexpr int COMPLETE = 3;

static uint32_t networks(void) {
    char text[16] = {};
    int file = open("/tmp/bench_networks", O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
        ssize_t length = read(file, text, sizeof text - 1);
        close(file);
        if (length > 0)
            return static_cast<uint32_t>(atoi(text));
    }
    return 0;
}

static int answer(driver_command *block) {
    // Read once: the benchmark starts a server for each number.
    static const uint32_t count = networks();
    switch (block->command) {
        case COMMAND_SCAN_STATUS:
            return COMPLETE;
        case COMMAND_SCAN_COUNT:
            block->value = count;
            return 0;
        case COMMAND_SCAN_RESULTS: {
            auto *list = reinterpret_cast<scan_entry *>(static_cast<uintptr_t>(block->buffer));
            // In no order, as a driver has them.
            for (uint32_t i = 0; i < count && i < block->value; i++)
                list[i].rssi = static_cast<decltype(list[i].rssi)>(-95 + static_cast<int>(i * 37 % 90));
            return 0;
        }
        default:
            return -1;
    }
}

extern "C" int ioctl(int, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    auto *record = va_arg(arguments, iwreq *);
    va_end(arguments);
    return request == IOCTL_DRIVER ? answer(static_cast<driver_command *>(record->u.data.pointer)) : -1;
}
