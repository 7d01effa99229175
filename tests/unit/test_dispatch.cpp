// Transport and dispatcher in this process, on a socket of the loopback interface: what is refused, and that nothing is
// lost whatever is refused (a leak checker looks at this process when it ends).
#include "server/dispatch.h"

#include <gtest/gtest.h>
#include <rpc/rpc.h>
#include <sys/socket.h>
#include <unistd.h>

#include "client/operations.h"
#include "tests/support/loopback_server.h"

namespace {

TEST(Dispatch, ReplyCarriesTheResultOfTheBackEnd) {
    call_reply reply = serve(header_of(PROC_wlan_get_name) + xdr_word(9));
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS);
    EXPECT_EQ(reply.result, xdr_word(0) + xdr_word(0) + xdr_word(5) + bytes("ath8\0\0\0\0", 8));
}

TEST(Dispatch, BackEndsFailureIsAnOrdinaryReply) {
    call_reply reply = serve(header_of(PROC_wlan_get_name) + xdr_word(0));
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS);
    EXPECT_EQ(reply.result, xdr_word(0xffffffff) + xdr_word(0) + xdr_word(1) + xdr_word(0));
}

// The text in front was decoded, and allocated, before what follows it is found missing.
TEST(Dispatch, RecordCutShortBehindItsTextIsRefusedAndNothingOfItIsKept) {
    bytes whole = xdr_string_bytes("00:03:7f:10:00:01") + xdr_word(7);
    for (int round = 0; round < 100; round++)
        for (size_t length = 0; length < whole.size(); length++)
            ASSERT_EQ(serve(header_of(PROC_wlan_associate_vlan) + whole.substr(0, length)).outcome,
                      call_outcome::DECODE_ERROR)
                << length;
}

TEST(Dispatch, WhatAnEarlierCallLeftInTheBufferIsNeverDecoded) {
    EXPECT_EQ(serve(header_of(PROC_wlan_get_name) + xdr_word(9)).outcome, call_outcome::SUCCESS);
    for (size_t length = 0; length < 4; length++)
        EXPECT_EQ(serve(header_of(PROC_wlan_get_name) + xdr_word(9).substr(0, length)).outcome,
                  call_outcome::DECODE_ERROR);
}

TEST(Dispatch, ProcedureWithoutArgumentsIsServedFromItsHeaderAlone) {
    EXPECT_EQ(serve(header_of(PROC_wlan_get_number_of_entries)).outcome, call_outcome::SUCCESS);
    EXPECT_EQ(serve(header_of(NULLPROC)).outcome, call_outcome::SUCCESS);
}

TEST(Dispatch, DatagramCutInsideItsHeaderIsNotAnswered) {
    bytes whole = header_of(PROC_wlan_get_number_of_entries);
    ASSERT_EQ(serve(whole).outcome, call_outcome::SUCCESS);
    for (size_t length = 0; length < whole.size(); length++)
        EXPECT_EQ(serve(whole.substr(0, length)).outcome, call_outcome::NO_ANSWER) << length;
}

TEST(Dispatch, DatagramLargerThanTheReceiveBufferIsRefused) {
    bytes text = xdr_string_bytes(std::string(UDPMSGSIZE, 'x'));
    EXPECT_EQ(serve(header_of(PROC_wlan_get_bssid_port) + text).outcome, call_outcome::DECODE_ERROR);
}

// Stamp, machine name, user, group and no further groups, as UNIX clients send them.
TEST(Dispatch, CallWithSystemCredentialsIsServed) {
    bytes credentials = xdr_word(1) + xdr_string_bytes("page") + xdr_word(1000) + xdr_word(1000) + xdr_word(0);
    bytes header = header_of(PROC_wlan_get_name).substr(0, 24) + xdr_word(AUTH_SYS) +
                   xdr_word(static_cast<uint32_t>(credentials.size())) + credentials + xdr_word(0) + xdr_word(0);
    EXPECT_EQ(serve(header + xdr_word(9)).outcome, call_outcome::SUCCESS);
    EXPECT_EQ(serve(header).outcome, call_outcome::DECODE_ERROR);
}

TEST(Dispatch, EachAnswerGoesToTheCallerThatAsked) {
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    getsockname(server().transport->xp_fd, reinterpret_cast<sockaddr *>(&address), &length);
    int other = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    ASSERT_EQ(connect(other, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    ASSERT_TRUE(send_datagram(server().client, call_header(0xa1, WLAN_CONFIG_RPC_PROG, 1, NULLPROC)));
    ASSERT_TRUE(send_datagram(other, call_header(0xb2, WLAN_CONFIG_RPC_PROG, 1, NULLPROC)));
    svc_getreq_common(server().transport->xp_fd);
    svc_getreq_common(server().transport->xp_fd);
    bytes answer;
    ASSERT_TRUE(receive_datagram(server().client, &answer, 0));
    EXPECT_EQ(word_at(answer, 0), 0xa1u);
    ASSERT_TRUE(receive_datagram(other, &answer, 0));
    EXPECT_EQ(word_at(answer, 0), 0xb2u);
    close(other);
}

TEST(Dispatch, CallOfAnotherRpcVersionIsNotAnswered) {
    bytes header = header_of(NULLPROC);
    EXPECT_EQ(serve(header.substr(0, 8) + xdr_word(3) + header.substr(12)).outcome, call_outcome::NO_ANSWER);
}

TEST(Dispatch, ReplyThatArrivesAsACallIsNotAnswered) {
    bytes header = header_of(NULLPROC);
    EXPECT_EQ(serve(header.substr(0, 4) + xdr_word(1) + header.substr(8)).outcome, call_outcome::NO_ANSWER);
}

}  // namespace
