// Soft block's daemon as far as its socket goes: what it is sent stays in its queue until a test looks. For a daemon
// that serves by itself see tests/support/daemon.h.
//
// Touches the daemon's socket.
#pragma once

#include <errno.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "survey/control_channel.h"

inline sockaddr_un steering_address() {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, STEERING_SOCKET, sizeof(address.sun_path) - 1);
    return address;
}

struct steering_listener {
    int sock;

    steering_listener() : sock(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        unlink(STEERING_SOCKET);
        sockaddr_un address = steering_address();
        EXPECT_EQ(bind(sock, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0) << strerror(errno);
    }
    ~steering_listener() {
        close(sock);
        unlink(STEERING_SOCKET);
    }
    steering_listener(const steering_listener &) = delete;
    steering_listener &operator=(const steering_listener &) = delete;

    // Everything sent so far, a datagram an element, NULs included.
    std::vector<std::string> received() const {
        std::vector<std::string> datagrams;
        std::string buffer(1 << 16, '\0');
        for (ssize_t length; (length = recv(sock, buffer.data(), buffer.size(), MSG_DONTWAIT)) >= 0;) {
            datagrams.push_back(buffer.substr(0, static_cast<size_t>(length)));
        }
        return datagrams;
    }

    // Leaves no room in its queue.
    void fill() const {
        int filler = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address = steering_address();
        int count = 0;
        while (sendto(filler, "x", 1, MSG_DONTWAIT, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 1) {
            count++;
        }
        EXPECT_EQ(errno, EAGAIN);
        EXPECT_GT(count, 0);
        close(filler);
    }

    // Waits for one request, answers it, and returns it; *sender becomes the address it came from.
    std::string answer(const std::string &reply, std::string *sender = nullptr) const {
        pollfd readable = {sock, POLLIN, 0};
        if (poll(&readable, 1, 10000) != 1) {
            return "(no request)";
        }
        char buffer[256];
        sockaddr_un client = {};
        socklen_t size = sizeof(client);
        ssize_t length = recvfrom(sock, buffer, sizeof(buffer), 0, reinterpret_cast<sockaddr *>(&client), &size);
        if (sender) {
            *sender = client.sun_path;
        }
        sendto(sock, reply.data(), reply.size(), 0, reinterpret_cast<sockaddr *>(&client), size);
        return std::string(buffer, length > 0 ? static_cast<size_t>(length) : 0);
    }
};
