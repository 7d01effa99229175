// A gateway's platform as the unit tests need it: the store file, tools that record how they were called, and what
// the code under test prints.
//
// Touches /tmp/.apcfg, /tmp/.apcfg_lock, /tmp/wlandbg and /tmp/fake_tools, the PATH of the test process and, while a
// block is captured, its standard output and error. One thread.
#pragma once

#include <string>
#include <vector>

// Tools are installed here. PATH holds this directory first and then only /usr/bin and /bin, so that no tool of the
// machine that runs the tests answers in place of one that a test did not install.
constexpr const char FAKE_TOOLS[] = "/tmp/fake_tools";

// A clean slate: no store, no lock file, no tools, nothing recorded, debug lines off.
void reset_platform();

void write_file(const std::string &path, const std::string &content);

// The whole file; empty when there is none.
std::string read_file(const std::string &path);

// Writes the store as the driver's tool keeps it: header "CFG\n", one line each, four zero bytes.
void write_store(const std::vector<std::string> &lines);

// Installs a tool that records its arguments, prints the text and ends with the status.
void install_tool(const std::string &name, const std::string &prints = "", int exit_status = 0);

// Makes an installed tool print this when called with this as its first argument.
void set_tool_answer(const std::string &name, const std::string &first_argument, const std::string &prints);

// What was recorded since the last reset, one call a line: name and arguments, joined by blanks.
std::vector<std::string> tool_calls();

void set_debug(bool on);

// How many file descriptors this process has open.
size_t open_descriptors();

// From begin to end no file descriptor can be opened in this process.
void begin_descriptor_shortage();
void end_descriptor_shortage();

struct printed_text {
    std::string out;
    std::string err;
};

void begin_capture();
printed_text end_capture();

// Runs the block and returns what this process and its children printed meanwhile.
template <typename Block>
printed_text capture(Block block) {
    begin_capture();
    block();
    return end_capture();
}
