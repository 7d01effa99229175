// Runs the client's program inside the test: its exit status and what it writes.
#pragma once

#include <stdio.h>

#include <functional>
#include <string>
#include <vector>

#include "client/call.h"
#include "client/operations.h"
#include "client/session.h"

// What a function writes to the stream it is given.
std::string written(const std::function<void(FILE *)> &write);

struct run_outcome {
    int status;
    std::string out;
    std::string errors;
};

// The whole program with these words behind its name. What it writes goes to no terminal.
run_outcome run_at(const call_endpoint &endpoint, std::vector<std::string> words);

// For words that must not lead to a call: there is nobody.
run_outcome run(const std::vector<std::string> &words);

// The row of a procedure; ends the tests when there is none.
const procedure_row *row_named(const std::string &procedure);

// The name of its operation.
std::string name_of(const procedure_row *row);

// A session that writes into strings, with a connection to nobody unless a test gives it another.
class TestSession {
public:
    explicit TestSession(output_format format = output_format::TEXT, const call_endpoint &endpoint = {"127.0.0.1", 1});
    ~TestSession();
    TestSession(const TestSession &) = delete;
    TestSession &operator=(const TestSession &) = delete;

    // What has been written up to now.
    std::string out();
    std::string errors();

private:
    char *out_text = nullptr;
    char *error_text = nullptr;
    size_t out_size = 0;
    size_t error_size = 0;

public:
    server_connection connection;
    client_session session;
};
