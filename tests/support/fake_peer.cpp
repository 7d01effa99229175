#include "tests/support/fake_peer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

std::string word_bytes(uint32_t word) {
    word = htonl(word);
    return std::string(reinterpret_cast<char *>(&word), sizeof word);
}

std::string accepted(uint32_t accept_status, const std::string &result) {
    return word_bytes(1) + word_bytes(0) + word_bytes(0) + word_bytes(0) + word_bytes(accept_status) + result;
}

std::string success(const std::string &result) {
    return accepted(0, result);
}

// Held by a peer that is at work, and by a thread that forks.
static std::mutex at_work;

static void fork_between_the_answers() {
    static const int registered =
        pthread_atfork([] { at_work.lock(); }, [] { at_work.unlock(); }, [] { at_work.unlock(); });
    EXPECT_EQ(registered, 0);
}

FakePeer::FakePeer() {
    fork_between_the_answers();
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socket_fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(socket_fd, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(getsockname(socket_fd, reinterpret_cast<sockaddr *>(&address), &size), 0);
    port = ntohs(address.sin_port);
    elsewhere_fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    reply_fd = socket_fd;
    EXPECT_EQ(pipe2(stop, O_CLOEXEC), 0);
    thread = std::thread([this] { serve(); });
    serving.wait();
}

FakePeer::~FakePeer() {
    close(stop[1]);
    thread.join();
    close(stop[0]);
    close(socket_fd);
    close(elsewhere_fd);
}

void FakePeer::answer_with(const bytes &behind_the_xid) {
    std::lock_guard guard(lock);
    answer = behind_the_xid;
}

void FakePeer::answer_after(std::chrono::milliseconds milliseconds) {
    std::lock_guard guard(lock);
    delay = milliseconds;
}

void FakePeer::answer_the_call_before_with(const bytes &behind_the_xid) {
    std::lock_guard guard(lock);
    late_answer = behind_the_xid;
}

void FakePeer::answer_from_elsewhere() {
    std::lock_guard guard(lock);
    reply_fd = elsewhere_fd;
}

int FakePeer::received() {
    std::lock_guard guard(lock);
    return datagrams;
}

FakePeer::bytes FakePeer::arguments() {
    std::lock_guard guard(lock);
    return call.size() < 40 ? "no call" : call.substr(40);
}

FakePeer::bytes FakePeer::procedure() {
    std::lock_guard guard(lock);
    return call.size() < 40 ? "no call" : call.substr(20, 4);
}

void FakePeer::serve() {
    pollfd waiting[] = {{socket_fd, POLLIN, 0}, {stop[0], POLLIN, 0}};
    serving.count_down();
    while (poll(waiting, 2, -1) > 0 && !waiting[1].revents) {
        std::this_thread::sleep_for(wanted_delay());
        answer_one();
    }
}

std::chrono::milliseconds FakePeer::wanted_delay() {
    std::lock_guard guard(lock);
    return delay;
}

void FakePeer::answer_one() {
    std::lock_guard busy(at_work);
    char buffer[65536];
    sockaddr_in from = {};
    socklen_t size = sizeof from;
    ssize_t length = recvfrom(socket_fd, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr *>(&from), &size);
    if (length < 4)
        return;
    std::lock_guard guard(lock);
    call_before = call;
    caller_before = caller;
    caller = from;
    call.assign(buffer, static_cast<size_t>(length));
    datagrams++;
    auto reply_to = [&](const bytes &to_call, const sockaddr_in &to, const bytes &behind) {
        bytes reply = to_call.substr(0, 4) + behind;
        if (!to_call.empty() && !behind.empty())
            sendto(reply_fd, reply.data(), reply.size(), 0, reinterpret_cast<const sockaddr *>(&to), sizeof to);
    };
    reply_to(call_before, caller_before, late_answer);
    reply_to(call, caller, answer);
}
