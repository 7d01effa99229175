// A program on a terminal of its own, typed to and read by a test.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

class Terminal {
public:
    // Starts the program in a session of its own, with these additions to its environment ("NAME=value").
    Terminal(const std::vector<std::string> &words, const std::vector<std::string> &environment);
    ~Terminal();

    void type(const std::string &keys);

    // Reads until the text is there, five seconds at most; everything up to its end is forgotten then. False when it
    // does not come.
    bool shows(const std::string &wanted);

    // What has been read and not been looked for, for messages.
    const std::string &screen() const;

    // Waits for the end of the program, five seconds at most: its exit status, 128 and the number of the signal that
    // ended it, -1 when it does not end.
    int ends();

    // Whether the terminal is as a program finds it: lines, echo, and signals by Ctrl-C. Waits until it is, five
    // seconds at most.
    bool becomes_cooked() const;
    bool is_cooked() const;

    pid_t pid;

private:
    bool read_more(int milliseconds);

    int fd;
    std::string text;
};
