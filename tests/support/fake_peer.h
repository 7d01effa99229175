// A server, or a portmapper, that answers what a test wants it to, on a UDP port of 127.0.0.1 of its own.
#pragma once

#include <netinet/in.h>
#include <sys/types.h>

#include <chrono>
#include <latch>
#include <mutex>
#include <string>
#include <thread>

// A word of the wire.
std::string word_bytes(uint32_t word);

// An accepted answer as it stands behind its xid: a status of the RPC layer (0 success, 3 unavailable, 4 garbage
// arguments, 5 system error) and the result. Without credentials.
std::string accepted(uint32_t accept_status, const std::string &result);
std::string success(const std::string &result);

// Answers every datagram with its xid and what the test wants behind that; not at all while that is empty. The process
// may fork at any time: no peer is in the middle of an allocation then, whose lock the child would have for ever.
class FakePeer {
public:
    using bytes = std::string;

    FakePeer();
    ~FakePeer();
    FakePeer(const FakePeer &) = delete;
    FakePeer &operator=(const FakePeer &) = delete;

    void answer_with(const bytes &behind_the_xid);

    // From now on each answer takes this long, one after another.
    void answer_after(std::chrono::milliseconds);

    // From now on the call before is answered too, with this, where it came from, right before the one that has come.
    void answer_the_call_before_with(const bytes &behind_the_xid);

    // As an impostor would: with everything right but the port it comes from.
    void answer_from_elsewhere();

    int received();

    // The last call, whose header ends here since it has no credentials.
    bytes arguments();
    bytes procedure();

    u_short port;

private:
    void serve();
    void answer_one();
    std::chrono::milliseconds wanted_delay();

    int socket_fd;
    int elsewhere_fd;
    int stop[2];
    std::mutex lock;  // of everything below but the thread
    int reply_fd;
    bytes answer;
    bytes late_answer;
    bytes call;
    bytes call_before;
    sockaddr_in caller = {};
    sockaddr_in caller_before = {};
    int datagrams = 0;
    std::chrono::milliseconds delay{0};
    std::latch serving{1};
    std::thread thread;
};
