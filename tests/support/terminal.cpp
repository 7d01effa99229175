#include "tests/support/terminal.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>

constexpr int PATIENCE_SECONDS = 30;
constexpr char CTRL_C = '\x03';

static std::string modes_of(int terminal_fd) {
    termios modes = {};
    tcgetattr(terminal_fd, &modes);
    return std::string(reinterpret_cast<const char *>(&modes), sizeof modes);
}

program_at_terminal::program_at_terminal(std::vector<std::string> words) {
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    child = forkpty(&terminal_fd, nullptr, nullptr, nullptr);
    if (child == 0) {
        signal(SIGINT, SIG_DFL);  // whoever runs the tests in the background ignores it
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    EXPECT_GT(child, 0);
    modes = modes_of(terminal_fd);
}

program_at_terminal::~program_at_terminal() {
    if (status == -1 && child > 0) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    close(terminal_fd);
}

// False when nothing came in time and when nobody has the terminal open any more.
bool program_at_terminal::read_some(int timeout_ms) {
    char buffer[4096];
    pollfd waiting = {terminal_fd, POLLIN, 0};
    if (poll(&waiting, 1, timeout_ms) <= 0)
        return false;
    ssize_t length = read(terminal_fd, buffer, sizeof buffer);
    if (length > 0)
        printed.append(buffer, static_cast<size_t>(length));
    return length > 0;
}

bool program_at_terminal::await(const std::function<bool(const std::string &)> &wanted) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(PATIENCE_SECONDS);
    while (!wanted(printed))
        if (std::chrono::steady_clock::now() > deadline || !read_some(PATIENCE_SECONDS * 1000))
            return false;
    return true;
}

bool program_at_terminal::interrupt() {
    auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(write(terminal_fd, &CTRL_C, 1), 1);
    end();
    return std::chrono::steady_clock::now() - begun < std::chrono::seconds(1);
}

int program_at_terminal::end() {
    while (read_some(PATIENCE_SECONDS * 1000)) {
    }
    same_modes = modes_of(terminal_fd) == modes;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}
