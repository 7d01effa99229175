// The network interfaces of a gateway without a network of its own: `lo` with the gateway's two addresses, whatever the
// host has. The portmapper looks here which address it tells a caller.
//
// Interposes getifaddrs() and freeifaddrs().
#include <arpa/inet.h>
#include <errno.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <unistd.h>

#include "simulator/carried/run.h"
#include "simulator/paths.h"

using getifaddrs_function = int (*)(ifaddrs **);
using freeifaddrs_function = void (*)(ifaddrs *);

// One address of the device, and all that its entry points to.
struct entry {
    ifaddrs list;
    char name[IFNAMSIZ];
    sockaddr_in address;
    sockaddr_in mask;
};

static sockaddr_in internet(const char *text) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    inet_pton(AF_INET, text, &address.sin_addr);
    return address;
}

static void fill(entry *one, ifaddrs *next, const char *name, const char *address, const char *mask) {
    one->address = internet(address);
    one->mask = internet(mask);
    for (size_t i = 0; name[i] != '\0'; i++)
        one->name[i] = name[i];
    one->list.ifa_next = next;
    one->list.ifa_name = one->name;
    one->list.ifa_flags = IFF_UP | IFF_LOOPBACK | IFF_RUNNING;
    one->list.ifa_addr = (sockaddr *)&one->address;
    one->list.ifa_netmask = (sockaddr *)&one->mask;
}

EXPORTED int getifaddrs(ifaddrs **list) noexcept {
    if (own_run() == nullptr)
        return ((getifaddrs_function)next_of("getifaddrs"))(list);
    int before = errno;
    bool internal_is_there = access(GATEWAY_ADDRESS_GONE, F_OK) != 0;
    errno = before;
    entry *entries = (entry *)calloc(2, sizeof *entries);
    if (entries == nullptr)
        return -1;
    fill(&entries[1], nullptr, "lo:1", GATEWAY_ADDRESS, "255.255.255.255");
    fill(&entries[0], internal_is_there ? &entries[1].list : nullptr, "lo", "127.0.0.1", "255.0.0.0");
    *list = &entries[0].list;
    return 0;
}

EXPORTED void freeifaddrs(ifaddrs *list) noexcept {
    if (own_run() == nullptr)
        ((freeifaddrs_function)next_of("freeifaddrs"))(list);
    else
        free(list);
}
