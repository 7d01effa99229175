#include "server/transport.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <type_traits>

// The kernel accounts about 830 bytes for a waiting small call. 4 MiB are doubled by the kernel and hold several
// thousand; a setter that blocks for seconds must not lose the calls of a busy page behind it.
constexpr int RECEIVE_BUFFER_SIZE = 4 << 20;

using transport_operations = std::remove_cv_t<std::remove_pointer_t<decltype(SVCXPRT::xp_ops)>>;

static transport_operations operations;

// The call being served. Its arguments are copied out before the reply is written over it.
static struct {
    alignas(BYTES_PER_XDR_UNIT) char datagram[UDPMSGSIZE];
    XDR stream;
    sockaddr_in caller;
    uint32_t xid;
} current;

// Receives one call. A datagram that ends inside its own call header is dropped, as is every header that cannot be
// decoded: there is nothing in it to answer to.
static bool_t receive(SVCXPRT *transport, rpc_msg *call) {
    socklen_t length = sizeof current.caller;
    ssize_t size = recvfrom(transport->xp_fd, current.datagram, sizeof current.datagram, MSG_DONTWAIT,
                            reinterpret_cast<sockaddr *>(&current.caller), &length);
    if (size < 0)
        return FALSE;
    xdrmem_create(&current.stream, current.datagram, static_cast<u_int>(size), XDR_DECODE);
    if (!xdr_callmsg(&current.stream, call))
        return FALSE;
    current.xid = call->rm_xid;
    return TRUE;
}

// Decodes the arguments behind the header. A failed decoding is undone here, since the dispatcher frees nothing then.
static bool_t get_arguments(SVCXPRT *, xdrproc_t decode, void *arguments) {
    if (decode(&current.stream, arguments))
        return TRUE;
    xdr_free(decode, arguments);
    return FALSE;
}

static bool_t reply(SVCXPRT *transport, rpc_msg *answer) {
    XDR stream;
    xdrmem_create(&stream, current.datagram, sizeof current.datagram, XDR_ENCODE);
    answer->rm_xid = current.xid;
    if (!xdr_replymsg(&stream, answer))
        return FALSE;
    ssize_t size = XDR_GETPOS(&stream);
    return sendto(transport->xp_fd, current.datagram, static_cast<size_t>(size), 0,
                  reinterpret_cast<const sockaddr *>(&current.caller), sizeof current.caller) == size;
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
    operations = *transport->xp_ops;
    operations.xp_recv = receive;
    operations.xp_getargs = get_arguments;
    operations.xp_reply = reply;
    transport->xp_ops = &operations;
    return transport;
}
