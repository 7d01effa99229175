// Remote calls: ask the portmapper for the server's port, send each call once, wait for its answer.
//
// The only room of the client that touches the network. Blocks its thread, which can be interrupted meanwhile. A
// connection belongs to one thread.
#pragma once

#include <sys/types.h>

#include "client/arguments.h"
#include "client/operations.h"
#include "server/wire.h"

// Where a portmapper answers. The server is asked for at the same address.
struct call_endpoint {
    const char *address;      // IPv4 in dotted form, or a name
    u_short portmapper_port;  // in host order
};

// 192.168.254.254 and the portmapper's well-known port.
extern const call_endpoint GATEWAY_ENDPOINT;

// One service thread serves one call at a time, and the slowest procedures wait for tools for several seconds. 25 s is
// also what generated ONC RPC clients of this server wait.
constexpr int DEFAULT_TIMEOUT_SECONDS = 25;
constexpr int TIMEOUT_SECONDS_MAX = 3600;  // nothing the server does takes an hour

enum class call_status {
    ANSWERED,   // the result is there, whatever code it carries
    REFUSED,    // the server answered that it cannot serve the call, or answered nonsense
    TOO_LARGE,  // the arguments do not fit a datagram; nothing was sent
    NO_ANSWER,  // there is no way to the server; nothing was carried out
    TIMED_OUT,  // the server has the call, as far as is known, and may still carry it out
};

struct call_outcome {
    call_status status;
    char problem[PROBLEM_SIZE];  // a sentence, "" when ANSWERED
};

// The way to one server. Its port is asked for before the first call and kept for the others, until one of
// them has no answer.
struct server_connection {
    call_endpoint endpoint;
    CLIENT *client;  // nullptr before the first call and after a call that nothing answered
    u_short port;    // the server's
};

// Nothing is sent before the first call.
server_connection new_connection(const call_endpoint *endpoint);
void close_connection(server_connection *connection);

// Calls the row's procedure. A setter may have been carried out although its answer is missing: the call is never
// repeated, since a repeated setter would be carried out twice. The result's payload is to be released with
// release_result; a bare return code comes as a result without payload.
call_outcome call_procedure(server_connection *connection, const procedure_row *row, call_arguments *arguments,
                            int timeout_seconds, wlan_config_result_data_t *result);

void release_result(wlan_config_result_data_t *result);
