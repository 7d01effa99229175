// The driver's side of the wireless ioctls. See the header.
#include "tests/support/driver.h"

#include <errno.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ioctl.h>

fake_driver driver;

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    iwreq *record = va_arg(arguments, iwreq *);
    va_end(arguments);
    driver.calls++;
    driver.descriptor = descriptor;
    driver.request = request;
    memcpy(&driver.record, record, sizeof(driver.record));
    if (driver.error != 0) {
        errno = driver.error;
        return -1;
    }
    if (driver.lists_channels) {
        memcpy(record->u.data.pointer, &driver.table, record->u.data.length);
    }
    if (driver.inline_answer) {
        memcpy(record->u.name, driver.inline_answer, sizeof(record->u.name));
    }
    if (driver.length_answer != 0) {
        record->u.data.length = driver.length_answer;
    }
    return 0;
}

void reset_driver() {
    memset(&driver, 0, sizeof(driver));
}

void list_channel(unsigned frequency, uint32_t flags) {
    channel_entry *entry = &driver.table.entries[driver.table.count++];
    entry->frequency = static_cast<uint16_t>(frequency);
    entry->ic_flags = flags;
    driver.lists_channels = true;
}
