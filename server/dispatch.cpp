#include "server/dispatch.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "handlers/handlers.h"

// int _wlan_set_ssid_1(void *argument, void *result, svc_req *request)
// {
//     auto *record = static_cast<wlan_set_ssid_1_argument *>(argument);
//     return wlan_set_ssid_1_svc(record->arg1, record->arg2, static_cast<wlan_config_return_code_e *>(result),
//     request);
// }
#define FIELD(n, element) record->arg##n,
#define UNPACK_NONE(procedure)
#define UNPACK_BARE(procedure, element) *static_cast<WIRE_TYPE_##element *>(argument),
#define UNPACK_RECORD(procedure, record, ...) MAP(FIELD, __VA_ARGS__)
#define UNPACK_RECORD_NAMED UNPACK_RECORD
#define UNPACK_RECORD_OF UNPACK_RECORD
#define RECORD_POINTER_NONE(procedure)
#define RECORD_POINTER_BARE(procedure, element)
#define RECORD_POINTER_RECORD(procedure, record_type, ...) auto *record = static_cast<record_type *>(argument);
#define RECORD_POINTER_RECORD_NAMED RECORD_POINTER_RECORD
#define RECORD_POINTER_RECORD_OF RECORD_POINTER_RECORD
#define PROCEDURE(number, procedure, arguments, result_kind, ...)                                               \
    int _##procedure##_1([[maybe_unused]] void *argument, void *result, svc_req *request) {                     \
        FOR_SHAPE(RECORD_POINTER, procedure, arguments)                                                         \
        return procedure##_1_svc(                                                                               \
            FOR_SHAPE(UNPACK, procedure, arguments) static_cast<RESULT_TYPE_##result_kind *>(result), request); \
    }
#include "server/procedures.def"

// Room for every argument record; the bare values are no larger.
union argument_area {
    int bare_int;
    char *bare_text;
#define MEMBER_NONE(procedure)
#define MEMBER_BARE(procedure, element)
#define MEMBER_RECORD(procedure, record, ...) record procedure;
#define MEMBER_RECORD_NAMED MEMBER_RECORD
#define MEMBER_RECORD_OF MEMBER_RECORD
#define PROCEDURE(number, procedure, arguments, ...) FOR_SHAPE(MEMBER, procedure, arguments)
#include "server/procedures.def"
};
static_assert(sizeof(argument_area) == 40, "the largest argument record is the channel switch's ten fields");

union result_area {
    wlan_config_return_code_e code;
    wlan_config_result_data_t data;
};

struct procedure_entry {
    xdrproc_t decode;
    xdrproc_t encode;
    int (*wrapper)(void *argument, void *result, svc_req *request);
};

// The library's xdr_void takes no arguments at all, so it cannot be called as a routine of a stream and an object.
static bool_t xdr_nothing(XDR *, void *) {
    return TRUE;
}

// The procedure behind a number, false for a number without one.
// case 22: *entry = {xdr_wlan_set_ssid_1_argument, xdr_wlan_config_return_code_e, _wlan_set_ssid_1}; return true;
static bool select_procedure(u_int number, procedure_entry *entry) {
    switch (number) {
#define DECODER_NONE(procedure) xdr_nothing
#define DECODER_BARE(procedure, element) WIRE_XDR_##element
#define DECODER_RECORD(procedure, record, ...) xdr_##record
#define DECODER_RECORD_NAMED DECODER_RECORD
#define DECODER_RECORD_OF DECODER_RECORD
#define ENCODER(type) ENCODER_(type)
#define ENCODER_(type) xdr_##type
#define PROCEDURE(number, procedure, arguments, result_kind, ...)                    \
    case number:                                                                     \
        *entry = {as_xdrproc(FOR_SHAPE(DECODER, procedure, arguments)),              \
                  as_xdrproc(ENCODER(RESULT_TYPE_##result_kind)), _##procedure##_1}; \
        return true;
#include "server/procedures.def"
    }
    return false;
}

bool_t wlan_config_rpc_prog_1_freeresult(SVCXPRT *, xdrproc_t encode, void *result) {
    xdr_free(encode, result);
    return TRUE;
}

static void answer(const procedure_entry *procedure, svc_req *request, SVCXPRT *transport) {
    argument_area argument;
    result_area result;  // not cleared: every handler sets all that its result sends
    memset(&argument, 0, sizeof argument);
    if (!svc_getargs(transport, procedure->decode, &argument)) {
        svcerr_decode(transport);
        return;
    }
    int flag = procedure->wrapper(&argument, &result, request);
    if (flag > 0 && !svc_sendreply(transport, procedure->encode, &result))
        svcerr_systemerr(transport);
    if (!svc_freeargs(transport, procedure->decode, &argument)) {
        fputs("unable to free arguments\n", stderr);
        exit(1);
    }
    if (!wlan_config_rpc_prog_1_freeresult(transport, procedure->encode, &result))
        fputs("unable to free results\n", stderr);
}

void wlan_config_rpc_prog_1(svc_req *request, SVCXPRT *transport) {
    procedure_entry procedure;
    if (request->rq_proc == NULLPROC)
        svc_sendreply(transport, as_xdrproc(xdr_nothing), nullptr);
    else if (select_procedure(request->rq_proc, &procedure))
        answer(&procedure, request, transport);
    else
        svcerr_noproc(transport);
}
