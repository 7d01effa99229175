// Addresses of the gateway and what they are for the kernel.
//
// The gateway's 127.0.0.N and 192.168.254.254 are addresses of the run's own loopback network, so that several gateways
// and the host do not meet; abstract names of local sockets have the network's number behind them. No state.
#pragma once

#include <sys/socket.h>

#include "simulator/carrier.h"

// Why the gateway asks.
enum address_use {
    ADDRESS_TO_BIND,
    ADDRESS_TO_REACH,
};

// An address that the gateway names, as the kernel wants it, into `outside`, and its length into `outside_length`;
// what is no address of the gateway's stays as it is. Returns 0, or the error that the call ends with: there is no such
// address, or no way to it. internal_is_there: whether the internal address is.
int address_outside(const carrier *run, bool internal_is_there, address_use use, const sockaddr *inside,
                    socklen_t inside_length, sockaddr_storage *outside, socklen_t *outside_length);

// An address that the kernel named, as the gateway knows it; in place, *length bytes of which there may be `room`.
void address_inside(const carrier *run, sockaddr *address, socklen_t *length, socklen_t room);
