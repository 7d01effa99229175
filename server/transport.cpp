#include "server/transport.h"

#include <sys/socket.h>

#include <type_traits>

// The kernel accounts about 830 bytes for a waiting small call. 4 MiB are doubled by the kernel and hold several
// thousand; a setter that blocks for seconds must not lose the calls of a busy page behind it.
constexpr int RECEIVE_BUFFER_SIZE = 4 << 20;

// Call header without credentials: xid, direction, RPC version, program, version, procedure, and flavour and length
// of credentials and verifier.
constexpr size_t CALL_HEADER_SIZE = size_t{10} * BYTES_PER_XDR_UNIT;

using transport_operations = std::remove_cv_t<std::remove_pointer_t<decltype(SVCXPRT::xp_ops)>>;

static const transport_operations *library_operations;
static transport_operations guarded_operations;
static size_t datagram_length;  // of the call being served

static bool header_is_inside(const rpc_msg *call) {
    size_t credentials = call->rm_call.cb_cred.oa_length;
    size_t verifier = call->rm_call.cb_verf.oa_length;
    return CALL_HEADER_SIZE + RNDUP(credentials) + RNDUP(verifier) <= datagram_length;
}

// Receives one call. A datagram that ends inside its own call header is dropped, as the library drops every header
// it cannot decode: there is nothing in it to answer to.
static bool_t receive(SVCXPRT *transport, rpc_msg *call) {
    char nothing;
    ssize_t length = recv(transport->xp_fd, &nothing, 0, MSG_PEEK | MSG_TRUNC | MSG_DONTWAIT);
    if (length < 0)
        return FALSE;
    datagram_length = static_cast<size_t>(length);
    return library_operations->xp_recv(transport, call) && header_is_inside(call);
}

struct guarded_arguments {
    xdrproc_t decode;
    void *arguments;
    bool_t decoded;
};

// Runs in place of the decoder, on the library's stream, which reaches to the end of the receive buffer: ends the
// stream where the datagram ends. A failed decoding is undone here, since the dispatcher frees nothing then.
static bool_t decode_inside_datagram(XDR *xdrs, guarded_arguments *guarded) {
    u_int position = XDR_GETPOS(xdrs);
    if (position > datagram_length)
        return FALSE;
    u_int left = static_cast<u_int>(datagram_length) - position;
    u_int beyond = xdrs->x_handy > left ? xdrs->x_handy - left : 0;
    xdrs->x_handy -= beyond;
    bool_t decoded = guarded->decode(xdrs, guarded->arguments);
    xdrs->x_handy += beyond;
    if (!decoded)
        xdr_free(guarded->decode, guarded->arguments);
    return decoded;
}

static bool_t get_arguments(SVCXPRT *transport, xdrproc_t decode, void *arguments) {
    guarded_arguments guarded = {decode, arguments, FALSE};
    auto *routine = reinterpret_cast<void (*)()>(decode_inside_datagram);
    return library_operations->xp_getargs(transport, reinterpret_cast<xdrproc_t>(routine), &guarded);
}

static void size_receive_buffer(int socket) {
    int size = RECEIVE_BUFFER_SIZE;
    if (setsockopt(socket, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) < 0)
        setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
}

SVCXPRT *transport_create(int socket) {
    size_receive_buffer(socket);
    SVCXPRT *transport = svcudp_create(socket);
    if (!transport)
        return nullptr;
    library_operations = transport->xp_ops;
    guarded_operations = *transport->xp_ops;
    guarded_operations.xp_recv = receive;
    guarded_operations.xp_getargs = get_arguments;
    transport->xp_ops = &guarded_operations;
    return transport;
}
