// A program at a terminal of its own, as a person has it: what it prints there, keys that are typed, how it ends.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

class Terminal {
public:
    // Starts the program in a session of its own, with these additions to its environment ("NAME=value").
    explicit Terminal(const std::vector<std::string> &words, const std::vector<std::string> &environment = {});
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    void type(const std::string &keys);

    // Reads until the text is there, behind what was looked for before. False when it does not come in half a minute.
    bool shows(const std::string &wanted);

    // What stands behind that, for messages.
    std::string screen() const;

    // Reads until all that has been printed is as wanted. False when it does not come to be in half a minute.
    bool await(const std::function<bool(const std::string &)> &wanted);

    // Types Ctrl-C and waits for the end. Whether both took less than a second.
    bool interrupt();

    // Waits for the end of the program, half a minute at most: its status.
    int ends();

    // Whether the terminal is as a program finds it: lines, echo, and signals by Ctrl-C.
    bool is_cooked() const;

    std::string printed;      // by now; lines end as the terminal ends them, with \r\n
    int status = -1;          // when it has ended: its exit status, or 128 and the number of the signal that ended it
    bool same_modes = false;  // whether the terminal was then set as it was before
    pid_t pid;

private:
    bool read_some(int timeout_ms);

    int fd = -1;
    size_t looked_at = 0;  // of what has been printed
    std::string modes;
};
