// The server's processes as the soak sees them: the supervisor, its child, and what the child started.
//
// Reads /proc and the server's log. Any thread.
#pragma once

#include <stddef.h>
#include <sys/types.h>

#include <string>
#include <vector>

// The process that the gateway started, and its child that serves; 0 when there is none.
pid_t find_supervisor();
pid_t find_child(pid_t supervisor);

// What must not grow.
struct process_size {
    int descriptors;
    int threads;
    long resident_kb;
};
process_size size_of_process(pid_t process);

// The names of the processes that a process started, directly or not.
std::vector<std::string> descendants_of(pid_t process);

// Zombies anywhere in the gateway.
std::vector<std::string> zombies();

// The ids of the processes of a name.
std::vector<pid_t> processes_of(const std::string &name);

// Processor time of a process and of those that it has waited for.
double processor_seconds(pid_t process);

// Whether the server was built with a sanitizer that takes memory of its own.
bool is_sanitized(pid_t process);

// The length of the server's log, and what was added to it since.
size_t log_length();
std::string log_since(size_t length);

std::string read_whole_file(const std::string &path);
