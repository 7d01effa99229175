#include "simulator/internal_address.h"

#include <arpa/inet.h>
#include <errno.h>
#include <net/if.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

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

int internal_address_add(void) {
    ifreq request = request_for(ALIAS);
    put_address(&request, GATEWAY_ADDRESS);
    if (issue(SIOCSIFADDR, &request) != 0 && errno != EEXIST)
        return -1;
    put_address(&request, "255.255.255.255");
    return issue(SIOCSIFNETMASK, &request);
}

int internal_address_remove(void) {
    ifreq request = request_for(ALIAS);
    request.ifr_flags = 0;
    return issue(SIOCSIFFLAGS, &request) == 0 || errno == EADDRNOTAVAIL ? 0 : -1;
}
