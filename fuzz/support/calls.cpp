// Calls as datagrams. See the header.
#include "fuzz/support/calls.h"

#include <arpa/inet.h>
#include <rpc/rpc.h>
#include <string.h>

#include <set>

#include "client/results.h"
#include "config/store.h"
#include "config/wireless.h"
#include "fuzz/support/check.h"
#include "fuzz/support/platform.h"
#include "server/dispatch.h"
#include "server/transport.h"

// Any number below FD_SETSIZE that the process does not use; nothing is ever done with it.
constexpr int SERVICE_SOCKET = 900;

// Where the kind of credential stands in a call.
constexpr size_t CREDENTIAL_OFFSET = 24;

// A call's header with an empty credential.
constexpr size_t HEADER_SIZE_MIN = 40;

static std::set<uint32_t> served;

void put_number(std::string *datagram, uint32_t number) {
    number = htonl(number);
    datagram->append(reinterpret_cast<const char *>(&number), sizeof(number));
}

void put_counted(std::string *datagram, const std::string &text) {
    put_number(datagram, static_cast<uint32_t>(text.size()));
    datagram->append(text);
    datagram->append((4 - text.size() % 4) % 4, '\0');
}

std::string call_header(uint32_t procedure) {
    std::string header;
    for (uint32_t word : {0x12345678u, uint32_t{CALL}, uint32_t{RPC_MSG_VERSION}, uint32_t{WLAN_CONFIG_RPC_PROG},
                          uint32_t{WLAN_CONFIG_API_VERSION}, procedure, 0u, 0u, 0u, 0u}) {
        put_number(&header, word);
    }
    return header;
}

static uint32_t word_at(const std::string &bytes, size_t offset) {
    uint32_t word = 0;
    if (bytes.size() >= offset + sizeof(word)) {
        memcpy(&word, bytes.data() + offset, sizeof(word));
    }
    return ntohl(word);
}

static const procedure_row *row_of_number(uint32_t number) {
    for (size_t i = 0; i < procedure_row_count; i++) {
        if (procedure_rows[i].number == number) {
            return &procedure_rows[i];
        }
    }
    fail("only procedures that there are have results");
}

static bool start_server() {
    wlan_ioctl_socket();
    SVCXPRT *transport = transport_create(SERVICE_SOCKET);
    xprt_register(transport);
    return svc_reg(transport, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, wlan_config_rpc_prog_1, nullptr);
}

// The bare wait threshold has a record without a value where its row promises one.
static void check_payload(const procedure_row *row, const wlan_config_result_data_t *result) {
    char problem[PROBLEM_SIZE];
    bool is_empty = result->return_values.return_values_len == 0 && result->return_data.return_data_len == 0;
    if (!(row->kind == procedure_kind::BY_HAND && is_empty)) {
        must(check_result(row, result, problem), "the reply is what the procedure's row promises");
    }
    if (row->result.kind == result_kind::STRING && !is_empty) {
        size_t size = result->return_data.return_data_len;
        must(size <= STORE_VALUE_SIZE && strlen(result->return_data.return_data_val) + 1 == size,
             "a text travels with its NUL and nothing behind it");
    }
}

static void check_result_bytes(const procedure_row *row, XDR *stream) {
    wlan_config_result_data_t result = {};
    if (row->result.kind == result_kind::CODE) {
        must(xdr_wlan_config_return_code_e(stream, &result.return_code), "a return code can be decoded");
    } else {
        must(xdr_wlan_config_result_data_t(stream, &result), "a result can be decoded");
        check_payload(row, &result);
    }
    must(stream->x_handy == 0, "nothing stands behind a result");
    xdr_free(as_xdrproc(xdr_wlan_config_result_data_t), &result);
}

// Whether the reply carries a result.
static bool check_reply(const std::string &call, std::string reply) {
    XDR stream;
    rpc_msg message = {};
    xdrmem_create(&stream, reply.data(), static_cast<u_int>(reply.size()), XDR_DECODE);
    message.acpted_rply.ar_results.where = nullptr;
    // The library's routine decodes results as well: with none it stops before them.
    message.acpted_rply.ar_results.proc = as_xdrproc(+[](XDR *, void *) -> bool_t { return TRUE; });
    must(xdr_replymsg(&stream, &message), "a reply can be decoded");
    must(message.rm_xid == word_at(call, 0), "a reply belongs to its call");
    bool has_result = message.rm_reply.rp_stat == MSG_ACCEPTED && message.acpted_rply.ar_stat == SUCCESS;
    uint32_t number = word_at(call, 20);
    if (has_result && number != NULLPROC) {
        const procedure_row *row = row_of_number(number);
        must(call.size() >= HEADER_SIZE_MIN + row->argument_count * BYTES_PER_XDR_UNIT,
             "no argument is taken from behind the end of a call");
        check_result_bytes(row, &stream);
        served.insert(number);
    }
    if (message.rm_reply.rp_stat == MSG_ACCEPTED) {
        xdr_free(as_xdrproc(xdr_opaque_auth), &message.acpted_rply.ar_verf);
    }
    return has_result;
}

// Those credentials are checked by the library with the help of other processes.
static bool asks_others(const std::string &call) {
    uint32_t credential = word_at(call, CREDENTIAL_OFFSET);
    return credential == AUTH_DES || credential == RPCSEC_GSS;
}

bool serve(const std::string &datagram) {
    static bool is_started = start_server();
    must(is_started, "the server can be started");
    if (asks_others(datagram)) {
        return false;
    }
    platform.call = datagram;
    platform.has_call = true;
    platform.replies.clear();
    svc_getreq_common(SERVICE_SOCKET);
    must(platform.replies.size() <= 1, "a call has one reply");
    return !platform.replies.empty() && check_reply(datagram, platform.replies[0]);
}

size_t served_procedures() {
    return served.size();
}

size_t all_procedures() {
    return procedure_row_count;
}
