// The simulated driver inside the server: a preloaded library that answers wireless ioctls and watches the doors of the
// server's process (doors.cpp).
//
// Interposes ioctl(). Any thread of the server may come through here, workers with small stacks included, so texts and
// scenarios live on the heap. Built without sanitizers and without anything that runs before main() but one small
// function: it must be loadable into a server that is itself built with a sanitizer.
#include <dlfcn.h>
#include <errno.h>
#include <limits.h>
#include <net/if.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <linux/wireless.h>

#include "simulator/driver/driver_state.h"
#include "simulator/faults.h"
#include "simulator/journal.h"
#include "simulator/preload/doors.h"
#include "simulator/preload/requests.h"

using ioctl_function = int (*)(int, unsigned long, ...);

// Takes this library out of a list of libraries, in place.
static void remove_from_list(char *list, const char *library) {
    char *to = list;
    for (const char *from = list; *from != '\0';) {
        from += strspn(from, ": ");
        size_t length = strcspn(from, ": ");
        if (length > 0 && !(length == strlen(library) && strncmp(from, library, length) == 0)) {
            if (to != list)
                *to++ = ':';
            memmove(to, from, length);
            to += length;
        }
        from += length;
    }
    *to = '\0';
}

// The programs that the server starts talk to the simulated platform by being part of it; this library is not theirs.
__attribute__((constructor)) static void keep_from_children(void) {
    Dl_info self;
    char *list = getenv("LD_PRELOAD");
    if (list == nullptr || dladdr((void *)keep_from_children, &self) == 0)
        return;
    remove_from_list(list, self.dli_fname);
    if (*list == '\0')
        unsetenv("LD_PRELOAD");
}

// Wireless and driver-private requests; everything else is none of the driver's business.
static bool is_driver_request(unsigned long request) {
    return (request >= SIOCIWFIRST && request <= SIOCIWLASTPRIV) ||
           (request >= SIOCDEVPRIVATE && request <= SIOCDEVPRIVATE + 15);
}

static bool is_driver_interface(const char *name) {
    return vap_of_interface(name) >= 0 || radio_of_device(name) >= 0;
}

// Stands for requests with data of any length.
constexpr unsigned ANY_LENGTH = UINT_MAX;

// A request that is answered here; all others on the driver's interfaces are the kernel's.
struct simulated_request {
    unsigned long number;
    unsigned length;  // of its data, which tells the driver's own requests apart
    int (*answer)(const char *interface, iwreq *request, int *result);
};

static const simulated_request simulated_requests[] = {
    {REQUEST_CHANNEL_TABLE, ANY_LENGTH, answer_channel_table},
    {SIOCGIWESSID, ANY_LENGTH, answer_essid},
    {REQUEST_DEBUG, ANY_LENGTH, answer_debug_request},
    {SIOCSIWSCAN, ANY_LENGTH, answer_scan},
    {REQUEST_DRIVER, AIRTIME_TABLE_LENGTH, answer_airtime_table},
    {REQUEST_DRIVER, STATION_AIRTIME_LENGTH, answer_station_airtime},
    {REQUEST_DRIVER, ANY_LENGTH, answer_driver_command},
};

// The row of a request's own length comes before that of any length.
static const simulated_request *find_request(unsigned long number, unsigned length) {
    const simulated_request *found = nullptr;
    for (const simulated_request &candidate : simulated_requests) {
        if (candidate.number != number)
            continue;
        if (candidate.length == length)
            return &candidate;
        if (candidate.length == ANY_LENGTH)
            found = &candidate;
    }
    return found;
}

// The error number of the faults of a request: of its number and, among the driver's own, of its command or length.
static int faulty(unsigned long number, unsigned part) {
    char fault[FAULT_NAME_SIZE];
    ioctl_fault_name(number, fault, sizeof fault);
    int reason = fault_errno(fault);
    if (reason != 0 || number != REQUEST_DRIVER)
        return reason;
    ioctl_part_fault_name(number, part, fault, sizeof fault);
    return fault_errno(fault);
}

// The error number of a request that fails before it is looked at: by a fault, or because the interface is not there.
static int refusal(const char *name, unsigned long number, unsigned part) {
    int reason = faulty(number, part);
    if (reason != 0)
        return reason;
    driver_state state;
    driver_state_read(&state);
    return driver_has_interface(&state, name) ? 0 : ENODEV;
}

// A request on one of the driver's interfaces: answered here when it is simulated, else by the kernel.
static int driver_ioctl(int file, unsigned long number, iwreq *request) {
    char name[IFNAMSIZ + 1];
    snprintf(name, sizeof name, "%.*s", IFNAMSIZ, request->ifr_name);
    unsigned length = request->u.data.length;
    const simulated_request *simulated = find_request(number, length);
    unsigned command = number == REQUEST_DRIVER ? driver_command_number(request) : 0;
    int result = 0;
    int reason = refusal(name, number, command != 0 ? command : length);
    if (reason == 0 && simulated != nullptr) {
        reason = simulated->answer(name, request, &result);
    } else if (reason == 0) {
        result = ((ioctl_function)next_function("ioctl"))(file, number, request);
        reason = result < 0 ? errno : 0;
    }
    if (reason != 0)
        result = -1;
    journal_ioctl(name, number, command, length, result, reason);
    if (reason != 0)
        errno = reason;
    return result;
}

extern "C" {

__attribute__((visibility("default"))) int ioctl(int file, unsigned long number, ...) noexcept {
    va_list arguments;
    va_start(arguments, number);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    // The name field ends within the 16 bytes that every such request begins with, or fills them.
    if (is_driver_request(number) && argument != nullptr) {
        char name[IFNAMSIZ + 1];
        snprintf(name, sizeof name, "%.*s", IFNAMSIZ, (const char *)argument);
        if (is_driver_interface(name))
            return driver_ioctl(file, number, (iwreq *)argument);
    }
    return ((ioctl_function)next_function("ioctl"))(file, number, argument);
}
}
