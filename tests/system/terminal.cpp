#include "tests/system/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>

constexpr int PATIENCE_MS = 5000;

static std::chrono::steady_clock::time_point end_of_patience() {
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(PATIENCE_MS);
}

Terminal::Terminal(const std::vector<std::string> &words, const std::vector<std::string> &environment) {
    const winsize size = {40, 200, 0, 0};
    pid = forkpty(&fd, nullptr, nullptr, &size);
    if (pid != 0) {
        fcntl(fd, F_SETFD, FD_CLOEXEC);
        return;
    }
    std::vector<char *> pointers;
    for (const std::string &word : words)
        pointers.push_back(const_cast<char *>(word.c_str()));
    pointers.push_back(nullptr);
    for (const std::string &addition : environment)
        putenv(const_cast<char *>(addition.c_str()));
    execvp(pointers[0], pointers.data());
    _exit(127);
}

Terminal::~Terminal() {
    if (pid > 0) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    close(fd);
}

void Terminal::type(const std::string &keys) {
    if (write(fd, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        text += "(cannot type)";
}

bool Terminal::read_more(int milliseconds) {
    pollfd waiting = {fd, POLLIN, 0};
    char buffer[4096];
    if (poll(&waiting, 1, milliseconds) <= 0)
        return false;
    ssize_t length = read(fd, buffer, sizeof buffer);
    if (length <= 0)
        return false;
    text.append(buffer, static_cast<size_t>(length));
    return true;
}

bool Terminal::shows(const std::string &wanted) {
    auto end = end_of_patience();
    size_t place;
    while ((place = text.find(wanted)) == std::string::npos)
        if (std::chrono::steady_clock::now() > end || !read_more(PATIENCE_MS))
            return false;
    text.erase(0, place + wanted.size());
    return true;
}

const std::string &Terminal::screen() const {
    return text;
}

int Terminal::ends() {
    auto end = end_of_patience();
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end)
            return -1;
        if (!read_more(5))  // a program that writes to a full terminal does not end
            usleep(1000);
    }
    pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool Terminal::is_cooked() const {
    termios modes = {};
    constexpr tcflag_t wanted = ICANON | ECHO | ISIG;
    return tcgetattr(fd, &modes) == 0 && (modes.c_lflag & wanted) == wanted && modes.c_cc[VINTR] == 3;
}
