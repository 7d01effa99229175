// A program at a terminal of its own, as a person has it: what it prints there, keys that are pressed, how it ends.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

class program_at_terminal {
public:
    explicit program_at_terminal(std::vector<std::string> words);
    ~program_at_terminal();
    program_at_terminal(const program_at_terminal &) = delete;
    program_at_terminal &operator=(const program_at_terminal &) = delete;

    // Reads until what has been printed is as wanted. False when it has ended, or half a minute has passed.
    bool await(const std::function<bool(const std::string &)> &wanted);

    // Presses Ctrl-C and waits for the end. Whether both took less than a second.
    bool interrupt();

    // The end of a program that ends by itself: what waitpid tells.
    int end();

    std::string printed;      // by now; lines end as the terminal ends them, with \r\n
    int status = -1;          // what waitpid tells, when it has ended
    bool same_modes = false;  // whether the terminal was then set as it was before

private:
    bool read_some(int timeout_ms);

    pid_t child = -1;
    int terminal_fd = -1;
    std::string modes;
};
