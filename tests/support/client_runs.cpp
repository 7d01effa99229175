#include "tests/support/client_runs.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "client/commands.h"
#include "client/help.h"
#include "client/names.h"

std::string written(const std::function<void(FILE *)> &write) {
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    write(stream);
    fclose(stream);
    std::string copy(text, size);
    free(text);
    return copy;
}

run_outcome run_at(const call_endpoint &endpoint, std::vector<std::string> words) {
    run_outcome outcome = {};
    std::vector<char *> pointers = {const_cast<char *>(PROGRAM_NAME)};
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    int count = static_cast<int>(words.size()) + 1;
    outcome.errors = written([&](FILE *errors) {
        outcome.out =
            written([&](FILE *out) { outcome.status = run_client(count, pointers.data(), &endpoint, out, errors); });
    });
    return outcome;
}

run_outcome run(const std::vector<std::string> &words) {
    return run_at({"127.0.0.1", 1}, words);
}

const procedure_row *row_named(const std::string &procedure) {
    for (size_t i = 0; i < procedure_row_count; i++)
        if (procedure == procedure_rows[i].name)
            return &procedure_rows[i];
    ADD_FAILURE() << "no procedure " << procedure;
    abort();
}

std::string name_of(const procedure_row *row) {
    char name[OPERATION_NAME_SIZE];
    operation_name(row, name);
    return name;
}

TestSession::TestSession(output_format format, const call_endpoint &endpoint)
    : connection(new_connection(&endpoint)),
      session{&connection,
              {1, format, nullptr, false, false},
              open_memstream(&out_text, &out_size),
              open_memstream(&error_text, &error_size),
              nullptr,
              false,
              ""} {}

TestSession::~TestSession() {
    close_connection(&connection);
    fclose(session.out);
    fclose(session.errors);
    free(out_text);
    free(error_text);
}

std::string TestSession::out() {
    fflush(session.out);
    return std::string(out_text, out_size);
}

std::string TestSession::errors() {
    fflush(session.errors);
    return std::string(error_text, error_size);
}
