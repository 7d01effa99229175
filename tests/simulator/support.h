// What the simulator's tests share: running a command, reading the journal.
#pragma once

#include <string>
#include <vector>

struct outcome {
    int status;  // exit status, 128 + number after a signal
    std::string output;
    std::string errors;
};

// Runs a program with its arguments, standard input empty. The errors are without the line in which a launcher says
// that proot carries its run.
outcome run(const std::vector<std::string> &words);

// Runs a program on a terminal of its own and returns what stands on it afterwards.
std::string run_on_terminal(const std::vector<std::string> &words);

// Runs a shell command.
outcome run_shell(const std::string &command);

std::string read_file(const std::string &path);
void write_file(const std::string &path, const std::string &text);

// The journal's lines from the mark on; journal_mark is where it ends now.
size_t journal_mark();
std::vector<std::string> journal_since(size_t mark);
