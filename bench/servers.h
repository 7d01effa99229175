// The two servers that are compared, and the store that both read.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

#include "bench/load.h"

// What runs on which processor when there are two of them.
constexpr int SERVER_PROCESSOR = 0;
constexpr int CLIENT_PROCESSOR = 1;

// The procedures of floor.x.
enum floor_procedure : uint32_t {
    FLOOR_NULL,
    FLOOR_INTEGER_LOOKED_UP,
    FLOOR_TEXT_LOOKED_UP,
    FLOOR_TABLE,
};

struct running_server {
    pid_t pid;      // what was started
    pid_t serving;  // the process that answers
    server_address address;
};

load_call call_of(const running_server &server, uint32_t procedure, const std::vector<uint32_t> &arguments = {});

// What the server is started with: a driver with a scan list (networks_driver.cpp), or none.
enum class driver { NONE, NETWORKS };

// Starts the server and waits for its first answer, which may take so long.
running_server start_server(driver driver = driver::NONE, double *seconds_to_first_answer = nullptr);

running_server start_floor();

// How many debug lines a call would write, each of which costs the server a look at the file that switches them on.
uint32_t debug_lines_of(uint32_t procedure, driver driver = driver::NONE);

void write_file(const char *path, const std::string &text);

// A store of so many lines, at least 3, of which the last two are the keys that are asked for.
void write_store(int lines);

// So many networks in the scan list of servers that are started from now on.
void set_networks(int count);
