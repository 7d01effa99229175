// The dispatcher: from a received call to its handler and back.
//
// Touches nothing but the transport it is handed. Service thread only, one call at a time; it keeps no state between
// calls.
#pragma once

#include "server/wire.h"

extern "C" {

// The service routine of the program. Answers procedure 0 with nothing, an unknown number with the
// unavailable-procedure error, arguments that cannot be decoded with the decode error, and every other call with what
// its handler made of it.
void wlan_config_rpc_prog_1(svc_req *request, SVCXPRT *transport);

// Releases what a handler allocated for its result. TRUE always.
bool_t wlan_config_rpc_prog_1_freeresult(SVCXPRT *transport, xdrproc_t encode, void *result);

// int _wlan_set_ssid_1(void *argument, void *result, svc_req *request): unpacks the argument area, calls the handler
// and returns its flag. One a procedure, of this one shape.
#define PROCEDURE(number, procedure, ...) int _##procedure##_1(void *argument, void *result, svc_req *request);
#include "server/procedures.def"
}
