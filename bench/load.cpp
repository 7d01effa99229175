#include "bench/load.h"

#include <arpa/inet.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

// Behind the xid: reply, accepted, verifier (two words), success, and the result's first word, the return code. The
// null procedure's answer has none.
constexpr size_t HEADER_WORDS = 6;
constexpr int PATIENCE_MS = 5000;
constexpr int ROOM_FOR_ANSWERS = 64 << 20;

double now_seconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

std::string words(const std::vector<uint32_t> &values) {
    std::string text;
    for (uint32_t value : values) {
        uint32_t wire = htonl(value);
        text.append(reinterpret_cast<const char *>(&wire), sizeof wire);
    }
    return text;
}

int open_load_socket(const server_address &server) {
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &ROOM_FOR_ANSWERS, sizeof ROOM_FOR_ANSWERS);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(server.port);
    inet_aton(server.host, &address.sin_addr);
    connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address);
    return fd;
}

// Transaction, call, RPC 2, program, version, procedure, no credentials (4 words), arguments.
static std::string datagram_of(const load_call &call) {
    return words({0, 0, 2, call.server.program, 1, call.procedure, 0, 0, 0, 0}) + call.arguments;
}

namespace {

// Calls that are under way have consecutive xids, whose low bits are places in a table of their start times.
constexpr uint32_t PLACES = 1 << 16;

class load_generator {
public:
    explicit load_generator(const load_call &call)
        : datagram(datagram_of(call)), starts(PLACES), fd(open_load_socket(call.server)) {}
    ~load_generator() {
        close(fd);
    }
    load_generator(const load_generator &) = delete;
    load_generator &operator=(const load_generator &) = delete;

    void send_one() {
        uint32_t wire = htonl(++xid);
        memcpy(datagram.data(), &wire, sizeof wire);
        starts[xid % PLACES] = now_seconds();
        if (send(fd, datagram.data(), datagram.size(), 0) < 0)
            outcome.failed++;
        under_way++;
    }

    // False when no answer comes any more.
    bool receive_one() {
        ssize_t length = recv(fd, answer, sizeof answer, 0);
        if (length < 0)
            return false;
        uint32_t front[HEADER_WORDS + 1] = {};
        memcpy(front, answer, static_cast<size_t>(length) < sizeof front ? static_cast<size_t>(length) : sizeof front);
        outcome.latencies.push_back((now_seconds() - starts[ntohl(front[0]) % PLACES]) * 1e6);
        bool success = static_cast<size_t>(length) >= HEADER_WORDS * 4 && ntohl(front[1]) == 1 && front[2] == 0 &&
                       front[5] == 0 && front[6] == 0;
        if (!success)
            outcome.failed++;
        under_way--;
        return true;
    }

    template <typename condition>
    load_outcome run(int outstanding, condition more) {
        timeval patience = {PATIENCE_MS / 1000, 0};
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        double begun = now_seconds();
        size_t sent = 0;
        while (static_cast<int>(under_way) < outstanding && more(sent)) {
            send_one();
            sent++;
        }
        while (under_way > 0) {
            if (!receive_one()) {
                outcome.failed += under_way;
                break;
            }
            if (more(sent)) {
                send_one();
                sent++;
            }
        }
        outcome.seconds = now_seconds() - begun;
        return outcome;
    }

private:
    std::string datagram;
    std::vector<double> starts;
    int fd;
    uint32_t xid = 0;
    size_t under_way = 0;
    load_outcome outcome = {};
    char answer[65536];
};

}  // namespace

load_outcome load_for(const load_call &call, int outstanding, double seconds) {
    load_generator generator(call);
    double end = now_seconds() + seconds;
    return generator.run(outstanding, [&](size_t) { return now_seconds() < end; });
}

load_outcome load_count(const load_call &call, int outstanding, size_t count) {
    load_generator generator(call);
    return generator.run(outstanding, [&](size_t sent) { return sent < count; });
}

bool send_call(int fd, const load_call &call) {
    std::string datagram = datagram_of(call);
    return send(fd, datagram.data(), datagram.size(), 0) == static_cast<ssize_t>(datagram.size());
}

bool answers(const load_call &call, double seconds) {
    constexpr int PAUSE_MS = 1;
    double end = now_seconds() + seconds;
    int fd = open_load_socket(call.server);
    bool answered = false;
    while (!answered && now_seconds() < end) {
        pollfd waiting = {fd, POLLIN, 0};
        char answer[HEADER_WORDS * 4];
        // Where nobody listens yet the next call of the socket fails, at once.
        answered = send_call(fd, call) && poll(&waiting, 1, PAUSE_MS) == 1 && recv(fd, answer, sizeof answer, 0) > 0;
    }
    close(fd);
    return answered;
}
