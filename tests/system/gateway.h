// What system tests need of the running gateway: calls as raw datagrams, the store, the journal, the server's lines.
//
// Runs inside the simulated gateway only.
#pragma once

#include <gtest/gtest.h>
#include <stdint.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/calls.h"

constexpr const char JOURNAL_FILE[] = "/run/gateway/journal";
constexpr const char SERVER_LOG_FILE[] = "/run/gateway/server.log";

std::string read_file(const char *path);
void write_file(const char *path, const std::string &text);

// Lines that a file gained since a mark, which is its size at that time.
size_t mark_of(const char *path);
std::vector<std::string> lines_since(const char *path, size_t mark);

using strings = std::vector<std::string>;

// The server's shell commands since a mark of the journal, exactly as it handed them over: those with captured output,
// or ("system ") those without.
strings commands_since(size_t mark, const std::string &door = "popen ");

// A socket of its own to the server, so that answers to other calls cannot be mistaken for one of these.
int open_client_socket();

// One call and its answer, within five seconds.
call_reply call(uint32_t procedure, const bytes &arguments);
call_reply call_program(uint32_t program, uint32_t version, uint32_t procedure, const bytes &arguments);

// A result taken apart. code of a bare return code; values and data of the result record.
struct decoded_result {
    int code;
    std::vector<uint32_t> values;
    bytes data;
};
int code_of(const call_reply &reply);
decoded_result result_of(const call_reply &reply);

// Code and text of a string getter.
struct text_result {
    int code;
    std::string text;
    bool operator==(const text_result &) const = default;
};
std::ostream &operator<<(std::ostream &out, const text_result &result);
text_result text_of(const call_reply &reply);

// Code and number of a getter of one integer.
struct number_result {
    int code;
    int number;
    bool operator==(const number_result &) const = default;
};
std::ostream &operator<<(std::ostream &out, const number_result &result);
number_result number_of(const call_reply &reply);

// The usual calls: a VAP index alone, or with one text or number behind it.
bytes vap(int index);
int set_text(uint32_t procedure, int index, const std::string &text);
int set_number(uint32_t procedure, int index, uint32_t number);
text_result get_text(uint32_t procedure, int index);
number_result get_number(uint32_t procedure, int index);

// Replaces the store: header, these lines, four zero bytes.
void set_store(const std::vector<std::string> &lines);

// Value of a key in the store, "(absent)" when no line has it.
std::string store_value(const std::string &key);

// Brings the driver up with VAPs 1 and 9, WPA and WPS, and with what belongs to them: what the gateway begins with. The
// store has nothing else.
void restart_driver();

// Starts the soft-block daemon and waits until it is there and the journal says so.
void start_soft_block();

// Keeps what restoring factory defaults changes or removes, to put it back: the store, the defaults file, everything
// that lies in /nvram.
class kept_settings {
public:
    kept_settings();
    void put_back() const;

private:
    struct kept_file {
        std::string path;
        std::string content;
    };
    std::vector<kept_file> files;
};

// Runs a shell command: its standard output, and its exit status.
struct command_output {
    int status;
    std::string text;
    std::string errors;
};
command_output run_command(const std::string &command);

// The client, and what it says to these words of a shell.
constexpr const char CLIENT_PROGRAM[] = "/usr/sbin/vlk_rpc_wlan_config_client";
command_output client(const std::string &words);

// A test that looks at what the server runs and prints.
class WatchedGateway : public testing::Test {
protected:
    // Forgets what was run and printed before; replaces the store as well.
    void begin_watching();
    void begin_with(const strings &lines);

    // The server's commands since then, or since the last look.
    strings commands() const;
    strings new_commands();

    // The requests that reached the driver since the beginning.
    strings requests() const;

    // What the server printed since the beginning: all lines that begin with one of these. Its tools write to the same
    // file.
    strings lines_with(const strings &beginnings) const;

    size_t journal_mark = 0;
    size_t log_mark = 0;
};

// Process id of the server's child, which is the one that answers. It is another one after the child has died.
std::string serving_child();

// A watched test that breaks something. Whatever becomes of it, faults and debug lines are off afterwards, and the
// child that was there before still answers.
class BrokenGateway : public WatchedGateway {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    std::string child;
};

// A store with two VAPs on each radio: 1 and 2, 9 and 10.
inline const strings TWO_RADIOS = {"AP_VAP_NUM=8",      "AP_RADIO_ID=0",          "AP_RADIO_ID_2=0",
                                   "AP_RADIO_ID_9=1",   "AP_RADIO_ID_10=1",       "AP_PRIMARY_CH=36",
                                   "AP_PRIMARY_CH_2=6", "AP_CHMODE=11NAHT40PLUS", "AP_CHMODE_2=11NGHT20"};

// Switches the server's debug lines.
void set_debug(bool on);

// How many files that child has open.
size_t open_files_of_child();

// Has the server answer so many equal calls, some of them waiting in its socket at any time. False when one has no
// answer, or one that is no success.
bool call_often(uint32_t procedure, const bytes &arguments, int count);

// Whole results: a code alone, a code with an integer, a code with a record (whose size is a multiple of four).
bytes code_reply(int code);
bytes integer_reply(int code, uint32_t number);
bytes image_reply(int code, const bytes &image);

// Compares long texts of bytes; a failure tells the first offset at which they differ.
testing::AssertionResult same_bytes(const bytes &found, const bytes &expected);

// Puts bytes, or a number of the machine's order, at an offset of a record.
void put(bytes *record, size_t offset, const bytes &field);
void put_number(bytes *record, size_t offset, uint32_t number);
uint32_t number_in(const bytes &record, size_t offset);

// Switches a fault of the platform: "scan_count 300".
void fault(const std::string &words);

// A test with a scenario of its own, which is put back whatever happens: the VAPs 1, 9 and 16 are up, VAP 2 is there
// and down.
class ScenarioGateway : public BrokenGateway {
protected:
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    // From now on the scenario has radios (2.4 GHz with the channels 1 and 6, 5 GHz with 36, scans of so many seconds),
    // VAPs, and these items.
    void set_items(const std::string &items, const std::string &scan_seconds = "0");

    // The driver as it is when the VAPs have been up for so many seconds. Nobody has scanned, unless there is a line of
    // its memory that says so; then the lists of the last scans stay as they are.
    void set_driver(double seconds_up, const std::string &scan_line = "");

private:
    std::string scenario;
};

// The clock of the driver's times.
double driver_seconds();
