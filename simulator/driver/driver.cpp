// The simulated driver inside the server: a preloaded library that answers wireless ioctls and watches the shell.
//
// Interposes ioctl(), popen() and system(). Any thread of the server may come through here, workers with small stacks
// included, so texts and scenarios live on the heap. Built without sanitizers and without anything that runs before
// main() but one small function: it must be loadable into a server that is itself built with a sanitizer.
#include <dlfcn.h>
#include <errno.h>
#include <net/if.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <linux/wireless.h>

#include "simulator/driver_state.h"
#include "simulator/faults.h"
#include "simulator/journal.h"
#include "simulator/paths.h"
#include "simulator/store.h"

// The driver's private request for its channel table, and the table: a count and 255 entries of 20 bytes.
constexpr unsigned long REQUEST_CHANNEL_TABLE = SIOCIWFIRSTPRIV + 7;

struct table_entry {
    uint16_t frequency;
    uint16_t padding;
    uint32_t flags;
    uint8_t rest[12];
};

struct channel_table {
    uint32_t count;
    table_entry entries[SCENARIO_CHANNELS];
};
static_assert(sizeof(channel_table) == 5104);

using ioctl_function = int (*)(int, unsigned long, ...);
using popen_function = FILE *(*)(const char *, const char *);
using system_function = int (*)(const char *);

// What the next library calls `name`: libc's function, or a sanitizer's in front of it.
static void *next_function(const char *name) {
    void *function = dlsym(RTLD_NEXT, name);
    if (function == nullptr)
        abort();
    return function;
}

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

// The radio that an interface name stands for.
static const scenario_radio *radio_of(const scenario *scene, const char *name) {
    int vap = vap_of_interface(name);
    return &scene->radios[vap >= 0 ? scene->vaps[vap].radio : radio_of_device(name)];
}

// Fills the caller's buffer. 0 or an error number.
static int answer_channel_table(const scenario_radio *radio, iwreq *request) {
    if (request->u.data.pointer == nullptr)
        return EFAULT;
    if (request->u.data.length < sizeof(channel_table))
        return E2BIG;
    channel_table *table = (channel_table *)request->u.data.pointer;
    memset(table, 0, sizeof *table);
    table->count = (uint32_t)radio->channel_count;
    for (int i = 0; i < radio->channel_count; i++) {
        table->entries[i].frequency = (uint16_t)radio->channels[i].frequency;
        table->entries[i].flags = radio->channels[i].flags;
    }
    request->u.data.length = sizeof *table;
    return 0;
}

// The SSID as the store has it. 0 or an error number.
static int answer_essid(int vap, iwreq *request) {
    if (vap < 0)
        return EOPNOTSUPP;
    if (request->u.essid.pointer == nullptr)
        return EFAULT;
    char key[SETTING_KEY_SIZE];
    char ssid[SSID_SIZE];
    store_key("AP_SSID", vap + 1, key, sizeof key);
    store_value(APCFG_STORE, key, ssid, sizeof ssid);
    size_t length = strlen(ssid);
    if (request->u.essid.length < length)
        return E2BIG;
    memcpy(request->u.essid.pointer, ssid, length);
    request->u.essid.length = (uint16_t)length;
    request->u.essid.flags = 1;
    return 0;
}

static int answer_request(const char *name, unsigned long number, iwreq *request) {
    char error[SCENARIO_ERROR_SIZE];
    scenario *scene = scenario_new(GATEWAY_SCENARIO, error, sizeof error);
    if (scene == nullptr)
        return EIO;
    int reason = number == REQUEST_CHANNEL_TABLE ? answer_channel_table(radio_of(scene, name), request)
                                                 : answer_essid(vap_of_interface(name), request);
    scenario_free(scene);
    return reason;
}

// The error number of a request that fails before it is looked at: by a fault, or because the interface is not there.
static int refusal(const char *name, unsigned long number) {
    char fault[FAULT_NAME_SIZE];
    ioctl_fault_name(number, fault, sizeof fault);
    int reason = fault_errno(fault);
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
    bool simulated = number == REQUEST_CHANNEL_TABLE || number == SIOCGIWESSID;
    unsigned length = request->u.data.length;
    int result = 0;
    int reason = refusal(name, number);
    if (reason == 0 && simulated) {
        reason = answer_request(name, number, request);
    } else if (reason == 0) {
        result = ((ioctl_function)next_function("ioctl"))(file, number, request);
        reason = result < 0 ? errno : 0;
    }
    if (reason != 0)
        result = -1;
    journal_ioctl(name, number, length, result, reason);
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

__attribute__((visibility("default"))) FILE *popen(const char *command, const char *mode) {
    journal_shell("popen", command);
    int reason = fault_errno("popen");
    if (reason != 0) {
        errno = reason;
        return nullptr;
    }
    return ((popen_function)next_function("popen"))(command, mode);
}

__attribute__((visibility("default"))) int system(const char *command) {
    // Without a command the question is whether there is a shell; nothing is run.
    if (command != nullptr) {
        journal_shell("system", command);
        int reason = fault_errno("system");
        if (reason != 0) {
            errno = reason;
            return -1;
        }
    }
    return ((system_function)next_function("system"))(command);
}
}
