// Processes that the benchmark starts: where they run, what they take, how they end.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

// Starts a program in a process group of its own; what it prints goes to a new file, its errors nowhere.
pid_t start(const std::vector<std::string> &command, const char *output);

// Ends it, and whatever it has started that is still in its process group.
void end(pid_t pid);

// The process and those that it starts from now on run on this processor only.
void pin(pid_t pid, int processor);

pid_t only_child_of(pid_t pid);  // 0 while there is none

double processor_seconds(pid_t pid);
long resident_kilobytes(pid_t pid);  // what is its own or has been touched by it
int open_files(pid_t pid);

std::string output_of(const std::string &shell_command);
