#include "tests/support/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>

using clock_type = std::chrono::steady_clock;

constexpr int PATIENCE_MS = 30000;
constexpr char CTRL_C[] = "\x03";

static clock_type::time_point end_of_patience() {
    return clock_type::now() + std::chrono::milliseconds(PATIENCE_MS);
}

static std::string modes_of(int fd) {
    termios modes = {};
    tcgetattr(fd, &modes);
    return std::string(reinterpret_cast<const char *>(&modes), sizeof modes);
}

[[noreturn]] static void become(const std::vector<std::string> &words, const std::vector<std::string> &environment) {
    std::vector<char *> pointers;
    for (const std::string &word : words)
        pointers.push_back(const_cast<char *>(word.c_str()));
    pointers.push_back(nullptr);
    for (const std::string &addition : environment)
        putenv(const_cast<char *>(addition.c_str()));
    signal(SIGINT, SIG_DFL);  // whoever runs the tests in the background ignores it
    execvp(pointers[0], pointers.data());
    _exit(127);
}

Terminal::Terminal(const std::vector<std::string> &words, const std::vector<std::string> &environment) {
    const winsize size = {40, 200, 0, 0};
    pid = forkpty(&fd, nullptr, nullptr, &size);
    if (pid == 0)
        become(words, environment);
    EXPECT_GT(pid, 0);
    fcntl(fd, F_SETFD, FD_CLOEXEC);
    modes = modes_of(fd);
}

Terminal::~Terminal() {
    if (pid > 0) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    close(fd);
}

void Terminal::type(const std::string &keys) {
    EXPECT_EQ(write(fd, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

// False when nothing came in time and when nobody has the terminal open any more.
bool Terminal::read_some(int timeout_ms) {
    char buffer[4096];
    pollfd waiting = {fd, POLLIN, 0};
    if (poll(&waiting, 1, timeout_ms) <= 0)
        return false;
    ssize_t length = read(fd, buffer, sizeof buffer);
    if (length > 0)
        printed.append(buffer, static_cast<size_t>(length));
    return length > 0;
}

bool Terminal::await(const std::function<bool(const std::string &)> &wanted) {
    auto end = end_of_patience();
    while (!wanted(printed))
        if (clock_type::now() > end || !read_some(PATIENCE_MS))
            return false;
    return true;
}

bool Terminal::shows(const std::string &wanted) {
    size_t place = std::string::npos;
    if (!await([&](const std::string &text) { return (place = text.find(wanted, looked_at)) != std::string::npos; }))
        return false;
    looked_at = place + wanted.size();
    return true;
}

std::string Terminal::screen() const {
    return printed.substr(looked_at);
}

bool Terminal::interrupt() {
    auto begun = clock_type::now();
    type(CTRL_C);
    ends();
    return clock_type::now() - begun < std::chrono::seconds(1);
}

int Terminal::ends() {
    auto end = end_of_patience();
    int ended = 0;
    while (waitpid(pid, &ended, WNOHANG) == 0) {
        if (clock_type::now() > end)
            return -1;
        if (!read_some(5))  // a program that writes to a full terminal does not end
            usleep(1000);
    }
    pid = -1;
    while (read_some(1000)) {
    }
    same_modes = modes_of(fd) == modes;
    status = WIFEXITED(ended) ? WEXITSTATUS(ended) : 128 + WTERMSIG(ended);
    return status;
}

bool Terminal::is_cooked() const {
    termios found = {};
    constexpr tcflag_t wanted = ICANON | ECHO | ISIG;
    return tcgetattr(fd, &found) == 0 && (found.c_lflag & wanted) == wanted && found.c_cc[VINTR] == CTRL_C[0];
}
