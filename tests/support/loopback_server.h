// Transport, dispatcher, handlers and back ends in this process, on a socket of the loopback interface.
//
// One server a process, as in the server itself: the library keeps its transports in globals. It starts with the first
// call and stays.
#pragma once

#include <rpc/rpc.h>

#include "server/wire.h"
#include "tests/support/calls.h"

struct loopback_server {
    int client;  // connected to the service
    SVCXPRT *transport;
};
loopback_server &server();

// Sends a datagram, serves it, and takes the answer apart.
call_reply serve(const bytes &datagram);

// The header of a call of the server's procedure.
bytes header_of(u_int procedure);
