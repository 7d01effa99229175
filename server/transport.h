// The UDP transport: the library's own, with a guard in front that knows how long each datagram is.
//
// The library decodes a call from its whole receive buffer, so that a call shorter than its arguments would be
// answered with what an earlier datagram left there, and a setter would act on it. The guard looks at the length of a
// datagram before the library receives it and refuses whatever ends beyond it. Surplus bytes are ignored.
//
// Touches the service socket. Service thread only; one transport a process.
#pragma once

#include <rpc/rpc.h>

// Makes the transport on a bound UDP socket and sizes the socket's receive buffer so that a burst of calls that
// arrives while a setter blocks is kept. svc_getargs on it fails for an argument that ends beyond its datagram,
// leaving the argument area all zero with nothing to free. Returns null when the library cannot make it.
SVCXPRT *transport_create(int socket);
