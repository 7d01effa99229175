// The wire contract: program, procedure numbers, argument and result records and their XDR routines.
//
// Everything here follows from server/procedures.def. An XDR routine encodes, decodes or frees a record, field by
// field in wire order, and returns TRUE, or FALSE at the first field that fails. Decoding allocates texts and result
// payloads; the caller releases them with xdr_free, also after a FALSE. Thread-safe: nothing is kept between calls.
#pragma once

#include <rpc/rpc.h>

#include "server/expand.h"
#include "server/records.h"

constexpr rpcprog_t WLAN_CONFIG_RPC_PROG = 0x20131337;
constexpr rpcvers_t WLAN_CONFIG_API_VERSION = 1;

// The gateway's internal address and the server's port. Both are fixed: clients in the field know no others.
constexpr const char SERVICE_ADDRESS[] = "192.168.254.254";
constexpr u_short SERVICE_PORT = 60001;

// PROC_wlan_load = 1, ...
enum wlan_config_procedure : u_int {
#define PROCEDURE(number, procedure, ...) PROC_##procedure = number,
#include "server/procedures.def"
};

extern "C" {

// Status of a back end, passed through unchanged. A client treats every non-zero value as failure.
enum wlan_config_return_code_e : int { WLAN_CONFIG_SUCCESS = 0, WLAN_CONFIG_FAILURE = -1 };

// The generic result. return_values_len is the *byte* size of the integers, although it counts elements on the wire:
// one integer travels as 4 elements of which the first has a meaning. Do not mend it: every client in the field reads
// the front of an array of that length.
struct wlan_config_result_data_t {
    wlan_config_return_code_e return_code;
    struct {
        u_int return_values_len;
        u_int *return_values_val;
    } return_values;
    struct {
        u_int return_data_len;  // at most RESULT_DATA_SIZE
        char *return_data_val;
    } return_data;
};

// A list of stations. No procedure returns it; clients know the record.
struct wlan_device_result_data_t {
    wlan_config_return_code_e return_code;
    struct {
        u_int devices_len;
        wlan_device_t *devices_val;
    } devices;
};

bool_t xdr_wlan_config_return_code_e(XDR *xdrs, wlan_config_return_code_e *code);
bool_t xdr_wlan_config_result_data_t(XDR *xdrs, wlan_config_result_data_t *result);
bool_t xdr_wlan_device_result_data_t(XDR *xdrs, wlan_device_result_data_t *result);
bool_t xdr_wlan_basicStats_t(XDR *xdrs, wlan_basicStats_t *stats);
bool_t xdr_wlan_stats_t(XDR *xdrs, wlan_stats_t *stats);
bool_t xdr_wlan_device_t(XDR *xdrs, wlan_device_t *device);
bool_t xdr_wlan_assoc_devices_table(XDR *xdrs, wlan_assoc_devices_table *table);
bool_t xdr_scan_entry(XDR *xdrs, scan_entry *entry);
bool_t xdr_scan_table(XDR *xdrs, scan_table *table);

// A string without a bound of its own. Decoding is from a memory stream and never allocates more than that still holds,
// whatever length the string claims.
bool_t xdr_text(XDR *xdrs, char **text);

// struct wlan_set_ssid_1_argument { int arg1; char *arg2; }; and its routine, one for each record of the table.
#define FIELD(n, element) WIRE_TYPE_##element arg##n;
#define DECLARE_RECORD_NONE(procedure)
#define DECLARE_RECORD_BARE(procedure, element)
#define DECLARE_RECORD_RECORD_OF(procedure, record, ...)
#define DECLARE_RECORD_RECORD_NAMED DECLARE_RECORD_RECORD
#define DECLARE_RECORD_RECORD(procedure, record, ...) \
    struct record {                                   \
        MAP(FIELD, __VA_ARGS__)                       \
    };                                                \
    bool_t xdr_##record(XDR *xdrs, record *argument);
#define PROCEDURE(number, procedure, arguments, ...) FOR_SHAPE(DECLARE_RECORD, procedure, arguments)
#include "server/procedures.def"
#undef FIELD
#undef DECLARE_RECORD_NONE
#undef DECLARE_RECORD_BARE
#undef DECLARE_RECORD_RECORD
#undef DECLARE_RECORD_RECORD_OF
#undef DECLARE_RECORD_RECORD_NAMED
}

// An XDR routine as the library's untyped procedure type. The library calls it with exactly (XDR *, T *).
template <typename T>
inline xdrproc_t as_xdrproc(bool_t (*routine)(XDR *, T *)) {
    return reinterpret_cast<xdrproc_t>(reinterpret_cast<void (*)()>(routine));
}
