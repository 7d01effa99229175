#include "simulator/internal_address.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <net/if.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "simulator/carrier.h"
#include "simulator/paths.h"

// An alias rather than the device itself, which keeps 127.0.0.1.
static const char ALIAS[] = "lo:1";

static ifreq request_for(const char *device) {
    ifreq request = {};
    snprintf(request.ifr_name, sizeof request.ifr_name, "%s", device);
    return request;
}

static void put_address(ifreq *request, const char *address) {
    sockaddr_in internet = {};
    internet.sin_family = AF_INET;
    inet_pton(AF_INET, address, &internet.sin_addr);
    memcpy(&request->ifr_addr, &internet, sizeof internet);
}

// Issues one request and closes the socket it needs.
static int issue(unsigned long number, ifreq *request) {
    int file = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (file < 0)
        return -1;
    int result = ioctl(file, number, request);
    int reason = errno;
    close(file);
    errno = reason;
    return result;
}

int loopback_up(void) {
    ifreq request = request_for("lo");
    request.ifr_flags = IFF_UP | IFF_RUNNING | IFF_LOOPBACK;
    return issue(SIOCSIFFLAGS, &request);
}

// Where there is no network of the gateway's own the address is one of the host's loopback addresses under another
// name, which the library that carries the run takes away and gives back.
static bool is_only_a_name(void) {
    carrier self;
    return carrier_read(&self);
}

int internal_address_add(void) {
    if (is_only_a_name())
        return unlink(GATEWAY_ADDRESS_GONE) == 0 || errno == ENOENT ? 0 : -1;
    ifreq request = request_for(ALIAS);
    put_address(&request, GATEWAY_ADDRESS);
    if (issue(SIOCSIFADDR, &request) != 0 && errno != EEXIST)
        return -1;
    put_address(&request, "255.255.255.255");
    return issue(SIOCSIFNETMASK, &request);
}

int internal_address_remove(void) {
    if (is_only_a_name()) {
        int file = open(GATEWAY_ADDRESS_GONE, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        return file >= 0 ? close(file) : -1;
    }
    ifreq request = request_for(ALIAS);
    request.ifr_flags = 0;
    return issue(SIOCSIFFLAGS, &request) == 0 || errno == EADDRNOTAVAIL ? 0 : -1;
}
