#include "server/wire.h"

#include <string.h>

// The library's routines take the objects they encode by non-const pointers to their own types.
static bool_t xdr_u32(XDR *xdrs, uint32_t *value) {
    return xdr_u_int(xdrs, value);
}

static bool_t xdr_u32s(XDR *xdrs, uint32_t *values, u_int count) {
    return xdr_vector(xdrs, reinterpret_cast<char *>(values), count, sizeof *values, as_xdrproc(xdr_u_int));
}

// Fixed arrays of characters and bytes travel one element a unit of four bytes, not as opaque data.
static bool_t xdr_chars(XDR *xdrs, char *text, u_int size) {
    return xdr_vector(xdrs, text, size, sizeof *text, as_xdrproc(xdr_char));
}

static bool_t xdr_octets(XDR *xdrs, uint8_t *octets, u_int size) {
    return xdr_vector(xdrs, reinterpret_cast<char *>(octets), size, sizeof *octets, as_xdrproc(xdr_u_char));
}

// xdr_char follows the sign of the machine's char; a signal strength is negative everywhere.
static bool_t xdr_signed_octet(XDR *xdrs, int8_t *octet) {
    int value = *octet;
    if (!xdr_int(xdrs, &value))
        return FALSE;
    *octet = static_cast<int8_t>(value);
    return TRUE;
}

// Calls and replies are decoded from memory streams only, whose x_handy counts the bytes that are left.
static u_int limit_of(XDR *xdrs, u_int bytes_an_element) {
    return xdrs->x_op == XDR_DECODE ? xdrs->x_handy / bytes_an_element : ~0u;
}

bool_t xdr_text(XDR *xdrs, char **text) {
    return xdr_string(xdrs, text, limit_of(xdrs, 1));
}

bool_t xdr_wlan_config_return_code_e(XDR *xdrs, wlan_config_return_code_e *code) {
    return xdr_enum(xdrs, reinterpret_cast<enum_t *>(code));
}

bool_t xdr_wlan_config_result_data_t(XDR *xdrs, wlan_config_result_data_t *result) {
    return xdr_wlan_config_return_code_e(xdrs, &result->return_code) &&
           xdr_array(xdrs, reinterpret_cast<char **>(&result->return_values.return_values_val),
                     &result->return_values.return_values_len, limit_of(xdrs, BYTES_PER_XDR_UNIT), sizeof(u_int),
                     as_xdrproc(xdr_u_int)) &&
           xdr_bytes(xdrs, &result->return_data.return_data_val, &result->return_data.return_data_len,
                     RESULT_DATA_SIZE);
}

bool_t xdr_wlan_device_result_data_t(XDR *xdrs, wlan_device_result_data_t *result) {
    return xdr_wlan_config_return_code_e(xdrs, &result->return_code) &&
           xdr_array(xdrs, reinterpret_cast<char **>(&result->devices.devices_val), &result->devices.devices_len,
                     limit_of(xdrs, BYTES_PER_XDR_UNIT), sizeof(wlan_device_t), as_xdrproc(xdr_wlan_device_t));
}

bool_t xdr_wlan_basicStats_t(XDR *xdrs, wlan_basicStats_t *stats) {
    return xdr_u32(xdrs, &stats->tx_bytes) && xdr_u32(xdrs, &stats->rx_bytes) && xdr_u32(xdrs, &stats->tx_packets) &&
           xdr_u32(xdrs, &stats->rx_packets) && xdr_u32(xdrs, &stats->assoc_count);
}

bool_t xdr_wlan_stats_t(XDR *xdrs, wlan_stats_t *stats) {
    return xdr_u32(xdrs, &stats->word_0) && xdr_u32(xdrs, &stats->rx_errors) && xdr_u32(xdrs, &stats->tx_unicast) &&
           xdr_u32s(xdrs, stats->words_3_to_5, 3) && xdr_u32(xdrs, &stats->tx_multicast) &&
           xdr_u32s(xdrs, stats->words_7_to_10, 4);
}

bool_t xdr_wlan_device_t(XDR *xdrs, wlan_device_t *device) {
    return xdr_chars(xdrs, device->mac, sizeof device->mac) && xdr_chars(xdrs, device->ip, sizeof device->ip) &&
           xdr_chars(xdrs, device->capabilities, sizeof device->capabilities) &&
           xdr_chars(xdrs, device->field_4, sizeof device->field_4) && xdr_u32(xdrs, &device->connected_time) &&
           xdr_u32(xdrs, &device->state) && xdr_u32(xdrs, &device->tx_packets) && xdr_u32(xdrs, &device->tx_rate) &&
           xdr_u32(xdrs, &device->max_rate) && xdr_int(xdrs, &device->field_10) &&
           xdr_u32(xdrs, &device->mc_tx_packets) && xdr_u32(xdrs, &device->uc_tx_packets) &&
           xdr_u_short(xdrs, &device->field_13) && xdr_u32(xdrs, &device->field_14) &&
           xdr_u32(xdrs, &device->field_15) && xdr_u32(xdrs, &device->field_16) &&
           xdr_u_char(xdrs, &device->interface) && xdr_int(xdrs, &device->field_18) &&
           xdr_chars(xdrs, device->ssid, sizeof device->ssid);
}

bool_t xdr_wlan_assoc_devices_table(XDR *xdrs, wlan_assoc_devices_table *table) {
    return xdr_u32(xdrs, &table->NumOfEntries) &&
           xdr_vector(xdrs, reinterpret_cast<char *>(table->Devices), ASSOC_DEVICES_MAX, sizeof(wlan_device_t),
                      as_xdrproc(xdr_wlan_device_t));
}

bool_t xdr_scan_entry(XDR *xdrs, scan_entry *entry) {
    return xdr_octets(xdrs, entry->bssid, sizeof entry->bssid) && xdr_chars(xdrs, entry->ssid, sizeof entry->ssid) &&
           xdr_octets(xdrs, entry->scan_octets_1, sizeof entry->scan_octets_1) &&
           xdr_u_char(xdrs, &entry->scan_byte_1) &&
           xdr_octets(xdrs, entry->scan_octets_2, sizeof entry->scan_octets_2) &&
           xdr_u_char(xdrs, &entry->scan_byte_2) &&
           xdr_octets(xdrs, entry->scan_octets_3, sizeof entry->scan_octets_3) && xdr_u_char(xdrs, &entry->scan_flag) &&
           xdr_u_char(xdrs, &entry->scan_byte_3) && xdr_chars(xdrs, entry->scan_text_1, sizeof entry->scan_text_1) &&
           xdr_signed_octet(xdrs, &entry->rssi) && xdr_chars(xdrs, entry->auth_mode, sizeof entry->auth_mode) &&
           xdr_chars(xdrs, entry->scan_text_2, sizeof entry->scan_text_2) &&
           xdr_chars(xdrs, entry->wireless_mode, sizeof entry->wireless_mode) && xdr_int(xdrs, &entry->scan_value) &&
           xdr_u_char(xdrs, &entry->scan_byte_4);
}

bool_t xdr_scan_table(XDR *xdrs, scan_table *table) {
    return xdr_u_char(xdrs, &table->num_entries) &&
           xdr_vector(xdrs, reinterpret_cast<char *>(table->entries), SCAN_ENTRIES_MAX, sizeof(scan_entry),
                      as_xdrproc(xdr_scan_entry));
}

// bool_t xdr_wlan_set_ssid_1_argument(XDR *xdrs, wlan_set_ssid_1_argument *argument)
// {
//     return TRUE && xdr_int(xdrs, &argument->arg1) && xdr_text(xdrs, &argument->arg2);
// }
#define FIELD(n, element) &&WIRE_XDR_##element(xdrs, &argument->arg##n)
#define DEFINE_XDR_NONE(procedure)
#define DEFINE_XDR_BARE(procedure, element)
#define DEFINE_XDR_RECORD_OF(procedure, record, ...)
#define DEFINE_XDR_RECORD_NAMED DEFINE_XDR_RECORD
#define DEFINE_XDR_RECORD(procedure, record, ...)      \
    bool_t xdr_##record(XDR *xdrs, record *argument) { \
        return TRUE MAP(FIELD, __VA_ARGS__);           \
    }
#define PROCEDURE(number, procedure, arguments, ...) FOR_SHAPE(DEFINE_XDR, procedure, arguments)
#include "server/procedures.def"
