// What carries a run of the simulated gateway: namespaces of its own, or, where those are refused, proot and a library
// that every program in the gateway has loaded.
//
// Touches /run/gateway/carrier inside the gateway, one line: "namespaces", or "proot NETWORK SHIFT ROOT". Any process.
#pragma once

#include <limits.h>
#include <stdint.h>

// Where everything of the gateway is for the kernel when proot carries it.
struct carrier {
    uint32_t network;     // 127.x.y.0, the run's own; the gateway's 127.0.0.N is N in it, its internal address 254
    uint16_t port_shift;  // what is added to ports below 1024, where the caller may not bind these; else 0
    char root[PATH_MAX];  // the folder that is / inside
};

// The first port that needs no right.
constexpr uint16_t FIRST_FREE_PORT = 1024;

// The place of the internal address in the run's network.
constexpr uint32_t INTERNAL_HOST = 254;

// Writes the line for a run that proot carries, or, null, namespaces, below `root`. Returns 0, or -1 with errno.
int carrier_write(const char *root, const carrier *self);

// Reads it inside the gateway. False when namespaces carry the run, or nothing is known.
bool carrier_read(carrier *self);
