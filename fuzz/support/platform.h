// A gateway's platform that is made of an input: files in memory, tools that print what the input says, a driver and
// daemons that answer with it, a clock that nobody waits for. The doors (server_doors.cpp, server_files.cpp) lead here;
// nothing leads to the machine.
//
// A target begins a platform with the part of the input that answers are taken from, calls the server, and ends it.
// The end asserts what holds after every call: nothing is left open, mapped or locked, and no worker has been
// forgotten.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <map>
#include <string>
#include <vector>

#include "fuzz/support/input.h"

struct fuzz_platform {
    // What doors answer with, when the members below do not say it.
    fuzz_input answers;

    // The files that there are, by their paths.
    std::map<std::string, std::string> files;
    size_t storage_left;  // bytes that can still be written; then the storage is full
    size_t read_step;     // the most that one read of a file gives; 0 for no limit
    bool reads_fail;

    // What commands print, in turn, the last one again and again; taken from the answers when there is none.
    std::vector<std::string> outputs;
    // Carries out a command of a target's own. False: it is none.
    bool (*run_tool)(const std::string &command, std::string *output);
    std::vector<std::string> commands;  // that were run

    // The datagram that the transport receives next, and what it sent.
    std::string call;
    bool has_call;
    std::vector<std::string> replies;

    int64_t clock_ms;       // moves where the server would wait
    size_t bytes_mapped;    // of low memory
    size_t open_pipes;      // commands that were not closed
    size_t messages_heard;  // by the daemons

    // Threads that were asked for; run_workers runs them.
    std::vector<void *(*)(void *)> workers;
};

extern fuzz_platform platform;

void begin_platform(const fuzz_input *answers);

// Runs what was started, and what becomes of it, as far as the queue goes.
void run_workers();

void end_platform();

// What a command prints: from the outputs or the answers.
struct tool_answer {
    bool starts;
    bool breaks;  // a read error ends what it prints
    std::string text;
};
tool_answer answer_command(const char *command);

// Sockets; see server_doors.cpp.
bool is_socket_open();

// Files; see server_files.cpp.
bool is_known_path(const std::string &path);
bool is_file_open();
int file_open(const std::string &path, int flags);
long file_read(int descriptor, void *bytes, size_t size);
long file_read_at(int descriptor, void *bytes, size_t size, long offset);
long file_write_at(int descriptor, const void *bytes, size_t size, long offset);
bool file_close(int descriptor);  // false when it is none of a file
