#include "simulator/carried/addresses.h"

#include <arpa/inet.h>
#include <errno.h>
#include <netinet/in.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <sys/un.h>

#include "simulator/paths.h"

constexpr uint32_t LOOPBACK_NETWORK = 127U << 24;
constexpr uint32_t HOST_MASK = 0xff;

// The one service that listens on every address of the gateway.
constexpr uint16_t PORTMAPPER_PORT = 111;

static uint32_t internal_address(void) {
    in_addr address = {};
    inet_pton(AF_INET, GATEWAY_ADDRESS, &address);
    return ntohl(address.s_addr);
}

// The host's part of a socket on all addresses is that of 127.0.0.1: nothing outside the run may reach it.
static int internet_outside(const carrier *run, bool internal_is_there, address_use use, sockaddr_in *address) {
    uint32_t inside = ntohl(address->sin_addr.s_addr);
    uint32_t host;
    uint16_t port = ntohs(address->sin_port);
    if (inside == INADDR_ANY) {
        host = 1;
    } else if (inside == internal_address()) {
        if (!internal_is_there)
            return use == ADDRESS_TO_BIND ? EADDRNOTAVAIL : ENETUNREACH;
        host = use == ADDRESS_TO_REACH && port == PORTMAPPER_PORT ? 1 : INTERNAL_HOST;
    } else if ((inside & ~HOST_MASK) == LOOPBACK_NETWORK) {
        host = inside & HOST_MASK;
    } else {
        return use == ADDRESS_TO_BIND ? EADDRNOTAVAIL : ENETUNREACH;
    }
    address->sin_addr.s_addr = htonl(run->network + host);
    if (port != 0 && port < FIRST_FREE_PORT)
        address->sin_port = htons((uint16_t)(port + run->port_shift));
    return 0;
}

static void internet_inside(const carrier *run, sockaddr_in *address) {
    uint32_t outside = ntohl(address->sin_addr.s_addr);
    uint16_t port = ntohs(address->sin_port);
    if ((outside & ~HOST_MASK) != run->network)
        return;
    uint32_t host = outside & HOST_MASK;
    address->sin_addr.s_addr = htonl(host == INTERNAL_HOST ? internal_address() : LOOPBACK_NETWORK + host);
    if (port >= run->port_shift && port - run->port_shift < FIRST_FREE_PORT)
        address->sin_port = htons((uint16_t)(port - run->port_shift));
}

// What stands behind an abstract name.
static size_t put_suffix(const carrier *run, char *suffix, size_t size) {
    return (size_t)snprintf(suffix, size, "@%08x", run->network);
}

// Whether the kernel chose the name: a NUL and five hexadecimal digits. It chooses no name twice, so that these stay as
// they are.
static bool is_chosen_by_kernel(const sockaddr_un *name, socklen_t length) {
    return length == offsetof(sockaddr_un, sun_path) + 6 && strspn(name->sun_path + 1, "0123456789abcdef") >= 5;
}

static int abstract_outside(const carrier *run, sockaddr_un *name, socklen_t *length) {
    char suffix[16];
    size_t size = put_suffix(run, suffix, sizeof suffix);
    if (is_chosen_by_kernel(name, *length))
        return 0;
    if (*length + size > sizeof *name)
        return EINVAL;
    memcpy((char *)name + *length, suffix, size);
    *length += (socklen_t)size;
    return 0;
}

static void abstract_inside(const carrier *run, const sockaddr_un *name, socklen_t *length) {
    char suffix[16];
    size_t size = put_suffix(run, suffix, sizeof suffix);
    if (*length > offsetof(sockaddr_un, sun_path) + size &&
        memcmp((const char *)name + *length - size, suffix, size) == 0)
        *length -= (socklen_t)size;
}

// A path that proot does not see, as it stands in the address of a datagram.
static int path_outside(const carrier *run, sockaddr_un *name, socklen_t *length) {
    static const char *const own[] = {"/tmp/", "/run/", "/nvram/", "/var/run/"};
    char path[sizeof name->sun_path + 1] = "";
    memcpy(path, name->sun_path, *length - offsetof(sockaddr_un, sun_path));
    for (const char *folder : own) {
        if (strncmp(path, folder, strlen(folder)) != 0)
            continue;
        const char *below = strncmp(path, "/var/run/", 9) == 0 ? path + 4 : path;
        size_t size = strlen(run->root) + strlen(below) + 1;
        if (size > sizeof name->sun_path)
            return ENAMETOOLONG;
        memcpy(name->sun_path, run->root, strlen(run->root));
        memcpy(name->sun_path + strlen(run->root), below, strlen(below) + 1);
        *length = (socklen_t)(offsetof(sockaddr_un, sun_path) + size);
        return 0;
    }
    return 0;
}

static void path_inside(const carrier *run, sockaddr_un *name, socklen_t *length) {
    char path[sizeof name->sun_path + 1] = "";
    size_t size = strlen(run->root);
    memcpy(path, name->sun_path, *length - offsetof(sockaddr_un, sun_path));
    if (strncmp(path, run->root, size) != 0 || path[size] != '/')
        return;
    memmove(name->sun_path, path + size, strlen(path + size) + 1);
    *length = (socklen_t)(offsetof(sockaddr_un, sun_path) + strlen(path + size) + 1);
}

int address_outside(const carrier *run, bool internal_is_there, address_use use, const sockaddr *inside,
                    socklen_t inside_length, sockaddr_storage *outside, socklen_t *outside_length) {
    socklen_t length = inside_length < sizeof *outside ? inside_length : (socklen_t)sizeof *outside;
    memset(outside, 0, sizeof *outside);
    memcpy(outside, inside, length);
    *outside_length = inside_length;
    if (length < sizeof(sa_family_t))
        return 0;
    if (outside->ss_family == AF_INET && length >= sizeof(sockaddr_in))
        return internet_outside(run, internal_is_there, use, (sockaddr_in *)outside);
    auto *name = (sockaddr_un *)outside;
    if (outside->ss_family != AF_UNIX || length <= offsetof(sockaddr_un, sun_path) || length > sizeof *name)
        return 0;
    if (name->sun_path[0] == '\0')
        return abstract_outside(run, name, outside_length);
    // What is bound or connected by a path passes proot.
    return use == ADDRESS_TO_REACH ? path_outside(run, name, outside_length) : 0;
}

void address_inside(const carrier *run, sockaddr *address, socklen_t *length, socklen_t room) {
    socklen_t whole = *length < room ? *length : room;
    if (whole < sizeof(sa_family_t))
        return;
    if (address->sa_family == AF_INET && whole >= sizeof(sockaddr_in)) {
        internet_inside(run, (sockaddr_in *)address);
        return;
    }
    if (address->sa_family != AF_UNIX || whole <= offsetof(sockaddr_un, sun_path) || *length > room)
        return;
    auto *name = (sockaddr_un *)address;
    if (name->sun_path[0] == '\0')
        abstract_inside(run, name, length);
    else if (whole <= sizeof *name && room >= sizeof *name)
        path_inside(run, name, length);
}
