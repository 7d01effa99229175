// A helper daemon as the tests need it: a datagram socket that a test binds where the server expects a daemon.
//
// Touches the socket's path. What is there already is moved aside and put back at the end.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// Until serve() it is a daemon that reads nothing and answers nothing.
struct fake_daemon {
    // The path may have up to 108 bytes; directories above it are made.
    explicit fake_daemon(const std::string &path);
    ~fake_daemon();
    fake_daemon(const fake_daemon &) = delete;
    fake_daemon &operator=(const fake_daemon &) = delete;

    // From now on a thread of the daemon's hands each request to this and sends what it returns, if it returns true.
    // It takes no signals: they are the test's.
    using handler = std::function<bool(const std::string &request, std::string *answer)>;
    void serve(const handler &handle);

    // The usual ways to serve.
    void answer(const std::string &bytes);
    void stay_silent();

    // What was asked so far, to the byte.
    std::vector<std::string> requests();

    // Sends to itself until no more fits into its queue; the next sender has to wait. Not while it serves.
    void fill_queue() const;
    // Reads one datagram out of it. Not while it serves.
    std::string read_one() const;

    // The end of the daemon, as if it had been killed: its socket file stays behind.
    void die();

private:
    void run(const handler &handle);

    std::string path;
    std::string aside;
    int sock = -1;
    std::atomic<bool> ended = false;
    std::thread thread;
    std::mutex mutex;
    std::vector<std::string> asked;
};
