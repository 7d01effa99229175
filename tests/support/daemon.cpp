// A helper daemon as the tests need it. See the header.
#include "tests/support/daemon.h"

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

// Longer than every request and every answer.
constexpr size_t DATAGRAM_SIZE = 4096;

// A test whose daemon cannot be there must not go on and pass.
[[noreturn]] static void give_up(const char *what, const std::string &path) {
    fprintf(stderr, "fake daemon: cannot %s %s: %s\n", what, path.c_str(), strerror(errno));
    abort();
}

static sockaddr_un address_of(const std::string &path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() > sizeof(address.sun_path)) {
        give_up("put into an address", path);
    }
    memcpy(address.sun_path, path.data(), path.size());
    return address;
}

fake_daemon::fake_daemon(const std::string &daemon_path) : path(daemon_path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    if (std::filesystem::exists(std::filesystem::symlink_status(path))) {
        aside = path + ".aside";
        std::filesystem::rename(path, aside, error);
    }
    sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = address_of(path);
    if (sock < 0 || bind(sock, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0) {
        give_up("bind", path);
    }
}

fake_daemon::~fake_daemon() {
    die();
    unlink(path.c_str());
    if (!aside.empty()) {
        rename(aside.c_str(), path.c_str());
    }
}

void fake_daemon::die() {
    if (sock < 0) {
        return;
    }
    ended = true;
    shutdown(sock, SHUT_RDWR);
    if (thread.joinable()) {
        thread.join();
    }
    close(sock);
    sock = -1;
}

void fake_daemon::run(const handler &handle) {
    for (;;) {
        char datagram[DATAGRAM_SIZE];
        sockaddr_un peer = {};
        socklen_t peer_size = sizeof(peer);
        ssize_t length = recvfrom(sock, datagram, sizeof(datagram), 0, reinterpret_cast<sockaddr *>(&peer), &peer_size);
        if (length < 0 || ended) {
            return;
        }
        std::string request(datagram, static_cast<size_t>(length));
        {
            std::lock_guard<std::mutex> lock(mutex);
            asked.push_back(request);
        }
        std::string answer;
        if (handle(request, &answer)) {
            sendto(sock, answer.data(), answer.size(), 0, reinterpret_cast<sockaddr *>(&peer), peer_size);
        }
    }
}

void fake_daemon::serve(const handler &handle) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread = std::thread([this, handle] { run(handle); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void fake_daemon::answer(const std::string &bytes) {
    serve([bytes](const std::string &, std::string *answer) {
        *answer = bytes;
        return true;
    });
}

void fake_daemon::stay_silent() {
    serve([](const std::string &, std::string *) { return false; });
}

std::vector<std::string> fake_daemon::requests() {
    std::lock_guard<std::mutex> lock(mutex);
    return asked;
}

void fake_daemon::fill_queue() const {
    sockaddr_un address = address_of(path);
    int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    while (sendto(sender, "full", 4, MSG_DONTWAIT, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 4) {
    }
    if (errno != EAGAIN) {
        give_up("fill the queue of", path);
    }
    close(sender);
}

std::string fake_daemon::read_one() const {
    char datagram[DATAGRAM_SIZE];
    ssize_t length = recv(sock, datagram, sizeof(datagram), MSG_DONTWAIT);
    return length < 0 ? "(nothing)" : std::string(datagram, static_cast<size_t>(length));
}
