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

std::vector<seen_request> requests;
std::function<request_answer(const seen_request &)> answer_request;

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

// What lies at an address; null when it is 0. An address that leads nowhere fails the test instead of ending it.
static char *find_memory(uintptr_t address, size_t size) {
    constexpr uintptr_t PAGE_MASK = 4095;
    uintptr_t page = address & ~PAGE_MASK;
    if (address == 0) {
        return nullptr;
    }
    if (msync(std::bit_cast<void *>(page), address - page + size, MS_ASYNC) != 0) {
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
    char *buffer = find_memory(buffer_address_of(seen.bytes), DEBUG_BUFFER_SIZE);
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

static bool is_told_request(unsigned long request) {
    return request == IOCTL_DRIVER || request == SIOCSIWSCAN || request == SIOCGIWESSID;
}

// Data of a null address, and what a length of 0 refers to, is not there.
static int answer_told_request(int descriptor, unsigned long request, iwreq *record) {
    seen_request seen = {};
    seen.interface.assign(record->ifr_name, strnlen(record->ifr_name, IFNAMSIZ));
    seen.request = request;
    seen.data = record->u.data.pointer;
    seen.length = record->u.data.length;
    seen.flags = record->u.data.flags;
    char *data = static_cast<char *>(record->u.data.pointer);
    if (data) {
        seen.bytes.assign(data, seen.length);
    }
    seen.descriptor = descriptor;
    seen.is_closed_on_exec = (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0;
    requests.push_back(seen);
    if (!answer_request) {
        return 0;
    }
    request_answer answer = answer_request(seen);
    if (data) {
        memcpy(data, answer.bytes.data(), std::min<size_t>(answer.bytes.size(), seen.length));
    }
    if (answer.length != NO_LENGTH) {
        record->u.data.length = static_cast<uint16_t>(answer.length);
    }
    if (answer.error != 0) {
        errno = answer.error;
        return -1;
    }
    return answer.result;
}

driver_command block_of(const seen_request &request) {
    driver_command block = {};
    EXPECT_EQ(request.bytes.size(), sizeof(block));
    memcpy(&block, request.bytes.data(), std::min(request.bytes.size(), sizeof(block)));
    return block;
}

std::string bytes_of(const driver_command &block) {
    return {reinterpret_cast<const char *>(&block), sizeof(block)};
}

void write_buffer(uint32_t address, const std::string &bytes) {
    char *buffer = find_memory(address, bytes.size());
    if (buffer) {
        memcpy(buffer, bytes.data(), bytes.size());
    }
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
    if (is_told_request(request)) {
        return answer_told_request(descriptor, request, record);
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
    requests.clear();
    answer_request = nullptr;
}

void list_channel(unsigned frequency, uint32_t flags) {
    channel_entry *entry = &driver.table.entries[driver.table.count++];
    entry->frequency = static_cast<uint16_t>(frequency);
    entry->ic_flags = flags;
    driver.lists_channels = true;
}
