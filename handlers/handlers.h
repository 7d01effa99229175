// The service handlers, one a procedure: bool_t wlan_set_ssid_1_svc(int index, const char *ssid,
// wlan_config_return_code_e *result, svc_req *request).
//
// A handler logs its inputs, calls one back end, packs what that produced and returns TRUE: a failure of the back end
// travels in the return code of an ordinary reply. It sets every member of the result; payloads are heap buffers that
// the dispatcher frees. Handlers keep no state. Service thread only.
#pragma once

#include "server/wire.h"

extern "C" {
#define PARAMETER(n, element) PARAMETER_##element
#define PROCEDURE(number, procedure, arguments, result_kind, ...) \
    bool_t procedure##_1_svc(MAP(PARAMETER, ELEMENTS_##arguments) RESULT_TYPE_##result_kind *result, svc_req *request);
#include "server/procedures.def"
#undef PARAMETER
}
