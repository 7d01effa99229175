// What the tests of the daemons share: starting and ending them, and asking them by datagrams.
#pragma once

#include <string>
#include <vector>

#include "tests/simulator/platform.h"

// A socket that is connected to a daemon's, with a name of its own that it can be answered at.
struct daemon_client {
    int file;
    std::string name;  // empty when it has none in the file system
};

// Names are a path, an abstract one (no path, but an answer finds it) or none at all.
enum client_name { NAMED_BY_PATH, NAMED_BY_KERNEL, NAMELESS };

daemon_client connect_to(const std::string &path, client_name name = NAMED_BY_PATH);
void disconnect(const daemon_client &client);

void send_to(const daemon_client &client, const std::string &bytes);

// What comes within so many seconds; nothing is "no answer".
std::string answer_at(const daemon_client &client, double seconds = 5);

// Asks with a text and its NUL.
std::string ask(const std::string &path, const std::string &text, double seconds = 5);

// A text and its NUL as one datagram, without waiting for an answer.
void tell(const std::string &path, const std::string &text);

// The 32-bit number at an offset of an answer.
int32_t number_at(const std::string &answer, size_t offset);

bool exists(const std::string &path);

// Whether somebody serves a socket.
bool is_served(const std::string &path);

// Starts a daemon in a shell's background, as the server does, and waits until it serves its socket.
void start_in_background(const std::string &command, const std::string &path);

// The pids of all processes of exactly this name that run, a line each, the lowest first.
std::string pids_of(const std::string &name);

// Ends all processes of a name with a signal and waits until they are gone.
void end_all(const std::string &name, int number = SIGTERM);
