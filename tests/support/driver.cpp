// The driver's side of the wireless ioctls. See the header.
#include "tests/support/driver.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>

#include <algorithm>
#include <bit>

fake_driver driver;

std::vector<seen_debug_request> debug_requests;
std::vector<debug_answer> debug_answers;

static constexpr unsigned long DEBUG_REQUEST = 0x8BF8;
static constexpr size_t DEBUG_REQUEST_SIZE = 211;
static constexpr size_t BUFFER_ADDRESS_OFFSET = 15;

uint32_t buffer_address_of(const std::string &request) {
    uint32_t address = 0;
    if (request.size() == DEBUG_REQUEST_SIZE) {
        memcpy(&address, request.data() + BUFFER_ADDRESS_OFFSET, sizeof(address));
    }
    return address;
}

// The buffer of a request; null when it has none. An address that leads nowhere fails the test instead of ending it.
static char *find_buffer(const std::string &request) {
    constexpr uintptr_t PAGE_MASK = 4095;
    uintptr_t address = buffer_address_of(request);
    uintptr_t page = address & ~PAGE_MASK;
    if (address == 0) {
        return nullptr;
    }
    if (msync(std::bit_cast<void *>(page), address - page + DEBUG_BUFFER_SIZE, MS_ASYNC) != 0) {
        ADD_FAILURE() << "nothing is at the buffer's address " << address;
        return nullptr;
    }
    return std::bit_cast<char *>(address);
}

static int socket_option(int descriptor, int option) {
    int value = 0;
    socklen_t size = sizeof(value);
    getsockopt(descriptor, SOL_SOCKET, option, &value, &size);
    return value;
}

static int answer_debug_request(int descriptor, const iwreq *record) {
    seen_debug_request seen = {};
    seen.record = *record;
    seen.bytes.assign(static_cast<const char *>(record->u.data.pointer), record->u.data.length);
    seen.is_internet_datagram_socket =
        socket_option(descriptor, SO_DOMAIN) == AF_INET && socket_option(descriptor, SO_TYPE) == SOCK_DGRAM;
    seen.is_closed_on_exec = (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0;
    char *buffer = find_buffer(seen.bytes);
    if (buffer) {
        seen.buffer.assign(buffer, DEBUG_BUFFER_SIZE);
    }
    debug_requests.push_back(seen);
    if (debug_answers.empty()) {
        return 0;
    }
    debug_answer answer = debug_answers.front();
    debug_answers.erase(debug_answers.begin());
    if (buffer) {
        memcpy(buffer, answer.buffer.data(), std::min(answer.buffer.size(), DEBUG_BUFFER_SIZE));
    }
    if (answer.error != 0) {
        errno = answer.error;
        return -1;
    }
    return answer.result;
}

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    iwreq *record = va_arg(arguments, iwreq *);
    va_end(arguments);
    driver.calls++;
    driver.descriptor = descriptor;
    driver.request = request;
    memcpy(&driver.record, record, sizeof(driver.record));
    if (request == DEBUG_REQUEST) {
        return answer_debug_request(descriptor, record);
    }
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
    debug_requests.clear();
    debug_answers.clear();
}

void list_channel(unsigned frequency, uint32_t flags) {
    channel_entry *entry = &driver.table.entries[driver.table.count++];
    entry->frequency = static_cast<uint16_t>(frequency);
    entry->ic_flags = flags;
    driver.lists_channels = true;
}
