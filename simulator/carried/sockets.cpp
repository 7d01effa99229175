// The socket calls of a gateway without a network of its own: addresses are exchanged on the way out and on the way
// back (addresses.h).
#include <errno.h>
#include <netinet/in.h>
#include <stddef.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "simulator/carried/addresses.h"
#include "simulator/carried/run.h"
#include "simulator/paths.h"

using bind_function = int (*)(int, const sockaddr *, socklen_t);
using name_function = int (*)(int, sockaddr *, socklen_t *);
using accept4_function = int (*)(int, sockaddr *, socklen_t *, int);
using sendto_function = ssize_t (*)(int, const void *, size_t, int, const sockaddr *, socklen_t);
using recvfrom_function = ssize_t (*)(int, void *, size_t, int, sockaddr *, socklen_t *);
using sendmsg_function = ssize_t (*)(int, const msghdr *, int);
using recvmsg_function = ssize_t (*)(int, msghdr *, int);
using socket_function = int (*)(int, int, int);

// The same function each time, found when it is first needed; finding it twice does no harm.
#define NEXT(type, name)                                       \
    static type next_##name(void) {                            \
        static type found;                                     \
        type next = __atomic_load_n(&found, __ATOMIC_RELAXED); \
        if (next == nullptr) {                                 \
            next = (type)next_of(#name);                       \
            __atomic_store_n(&found, next, __ATOMIC_RELAXED);  \
        }                                                      \
        return next;                                           \
    }
NEXT(socket_function, socket)
NEXT(bind_function, bind)
NEXT(bind_function, connect)
NEXT(name_function, getsockname)
NEXT(name_function, getpeername)
NEXT(name_function, accept)
NEXT(accept4_function, accept4)
NEXT(sendto_function, sendto)
NEXT(recvfrom_function, recvfrom)
NEXT(sendmsg_function, sendmsg)
NEXT(recvmsg_function, recvmsg)

// Exchanges an address on its way out. False with errno when there is none like it.
static bool go_out(const carrier *run, address_use use, const sockaddr *inside, socklen_t length,
                   sockaddr_storage *outside, socklen_t *outside_length) {
    int before = errno;
    bool there = inside->sa_family != AF_INET || access(GATEWAY_ADDRESS_GONE, F_OK) != 0;
    int error = address_outside(run, there, use, inside, length, outside, outside_length);
    errno = error != 0 ? error : before;
    return error == 0;
}

// A socket that is not bound yet would get the host's 127.0.0.1, which is outside the run: it gets the address that it
// calls, as it would for calling one of its own machine.
static void bind_first(int file, const sockaddr_storage *target) {
    sockaddr_in own = {};
    socklen_t length = sizeof own;
    int before = errno;
    if (target->ss_family == AF_INET && next_getsockname()(file, (sockaddr *)&own, &length) == 0 &&
        own.sin_family == AF_INET && own.sin_port == 0 && own.sin_addr.s_addr == 0) {
        own.sin_addr = ((const sockaddr_in *)target)->sin_addr;
        next_bind()(file, (const sockaddr *)&own, sizeof own);
    }
    errno = before;
}

// Exchanges the address that a call gave back; `room` is what the caller had for it.
static void come_in(sockaddr *address, socklen_t *length, socklen_t room) {
    const carrier *run = own_run();
    if (run != nullptr && address != nullptr && length != nullptr)
        address_inside(run, address, length, room);
}

static socklen_t room_of(const sockaddr *address, const socklen_t *length) {
    return address != nullptr && length != nullptr ? *length : 0;
}

// There is no IPv6 in the gateway: its addresses would be the host's.
EXPORTED int socket(int family, int type, int protocol) noexcept {
    if (family == AF_INET6 && own_run() != nullptr) {
        errno = EAFNOSUPPORT;
        return -1;
    }
    return next_socket()(family, type, protocol);
}

EXPORTED int bind(int file, const sockaddr *address, socklen_t length) noexcept {
    sockaddr_storage outside;
    const carrier *run = own_run();
    if (run == nullptr || address == nullptr || length < sizeof(sa_family_t))
        return next_bind()(file, address, length);
    if (!go_out(run, ADDRESS_TO_BIND, address, length, &outside, &length))
        return -1;
    return next_bind()(file, (const sockaddr *)&outside, length);
}

EXPORTED int connect(int file, const sockaddr *address, socklen_t length) {
    sockaddr_storage outside;
    const carrier *run = own_run();
    if (run == nullptr || address == nullptr || length < sizeof(sa_family_t))
        return next_connect()(file, address, length);
    // proot sees the paths of this call.
    address_use use = address->sa_family == AF_UNIX ? ADDRESS_TO_BIND : ADDRESS_TO_REACH;
    if (!go_out(run, use, address, length, &outside, &length))
        return -1;
    bind_first(file, &outside);
    return next_connect()(file, (const sockaddr *)&outside, length);
}

EXPORTED ssize_t sendto(int file, const void *data, size_t size, int flags, const sockaddr *address, socklen_t length) {
    sockaddr_storage outside;
    const carrier *run = own_run();
    if (run == nullptr || address == nullptr || length < sizeof(sa_family_t))
        return next_sendto()(file, data, size, flags, address, length);
    if (!go_out(run, ADDRESS_TO_REACH, address, length, &outside, &length))
        return -1;
    bind_first(file, &outside);
    return next_sendto()(file, data, size, flags, (const sockaddr *)&outside, length);
}

EXPORTED ssize_t sendmsg(int file, const msghdr *message, int flags) {
    sockaddr_storage outside;
    const carrier *run = own_run();
    if (run == nullptr || message->msg_name == nullptr || message->msg_namelen < sizeof(sa_family_t))
        return next_sendmsg()(file, message, flags);
    msghdr changed = *message;
    if (!go_out(run, ADDRESS_TO_REACH, (const sockaddr *)message->msg_name, message->msg_namelen, &outside,
                &changed.msg_namelen))
        return -1;
    changed.msg_name = &outside;
    bind_first(file, &outside);
    return next_sendmsg()(file, &changed, flags);
}

EXPORTED ssize_t recvfrom(int file, void *data, size_t size, int flags, sockaddr *address, socklen_t *length) {
    socklen_t room = room_of(address, length);
    ssize_t result = next_recvfrom()(file, data, size, flags, address, length);
    if (result >= 0)
        come_in(address, length, room);
    return result;
}

EXPORTED ssize_t recvmsg(int file, msghdr *message, int flags) {
    socklen_t room = message->msg_namelen;
    ssize_t result = next_recvmsg()(file, message, flags);
    if (result >= 0)
        come_in((sockaddr *)message->msg_name, &message->msg_namelen, room);
    return result;
}

EXPORTED int getsockname(int file, sockaddr *address, socklen_t *length) noexcept {
    socklen_t room = room_of(address, length);
    int result = next_getsockname()(file, address, length);
    if (result == 0)
        come_in(address, length, room);
    return result;
}

EXPORTED int getpeername(int file, sockaddr *address, socklen_t *length) noexcept {
    socklen_t room = room_of(address, length);
    int result = next_getpeername()(file, address, length);
    if (result == 0)
        come_in(address, length, room);
    return result;
}

EXPORTED int accept(int file, sockaddr *address, socklen_t *length) {
    socklen_t room = room_of(address, length);
    int result = next_accept()(file, address, length);
    if (result >= 0)
        come_in(address, length, room);
    return result;
}

EXPORTED int accept4(int file, sockaddr *address, socklen_t *length, int flags) {
    socklen_t room = room_of(address, length);
    int result = next_accept4()(file, address, length, flags);
    if (result >= 0)
        come_in(address, length, room);
    return result;
}
