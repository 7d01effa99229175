// The UDP transport: one datagram is one call, and nothing behind its end is ever decoded.
//
// The library's own UDP transport decodes a call from its whole receive buffer, so that a call shorter than its
// arguments would be answered with what an earlier datagram left there, and a setter would act on it. Here receiving,
// decoding and replying are ours, on streams that end where the datagram ends; everything around them (registration,
// the service loop, authentication, error replies) stays the library's. Surplus bytes behind the arguments are ignored,
// as the library does.
//
// Touches the service socket. Service thread only; one transport a process.
#pragma once

#include <rpc/rpc.h>

// Makes the transport on a bound UDP socket and sizes the socket's receive buffer so that a burst of calls that
// arrives while a setter blocks is kept. svc_getargs on it fails for an argument that ends beyond its datagram, with
// nothing left to free. Returns null when the library cannot make it.
SVCXPRT *transport_create(int socket);
