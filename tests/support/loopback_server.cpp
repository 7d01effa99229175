// Transport, dispatcher, handlers and back ends in this process. See the header.
#include "tests/support/loopback_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "server/dispatch.h"
#include "server/transport.h"

static loopback_server start_server() {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    int service = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    EXPECT_EQ(bind(service, generic, sizeof address), 0);
    EXPECT_EQ(getsockname(service, generic, &length), 0);
    SVCXPRT *transport = transport_create(service);
    EXPECT_NE(transport, nullptr);
    constexpr int no_portmapper = 0;
    EXPECT_TRUE(
        svc_register(transport, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, wlan_config_rpc_prog_1, no_portmapper));
    int client = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    EXPECT_EQ(connect(client, generic, sizeof address), 0);
    return {client, transport};
}

loopback_server &server() {
    static loopback_server started = start_server();
    return started;
}

call_reply serve(const bytes &datagram) {
    EXPECT_TRUE(send_datagram(server().client, datagram));
    svc_getreq_common(server().transport->xp_fd);
    bytes answer;
    if (!receive_datagram(server().client, &answer, 0))
        return {call_outcome::NO_ANSWER, ""};
    return parse_reply(answer);
}

bytes header_of(u_int procedure) {
    return call_header(1, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure);
}
