#include "tests/system/gateway.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "config/log.h"
#include "config/store.h"
#include "server/wire.h"
#include "survey/control_channel.h"

constexpr int ANSWER_TIMEOUT_MS = 5000;

std::string read_file(const char *path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

void write_file(const char *path, const std::string &text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
}

size_t mark_of(const char *path) {
    return read_file(path).size();
}

std::vector<std::string> lines_since(const char *path, size_t mark) {
    std::string text = read_file(path);
    std::istringstream stream(mark < text.size() ? text.substr(mark) : "");
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

strings commands_since(size_t mark, const std::string &door) {
    strings commands;
    for (std::string line : lines_since(JOURNAL_FILE, mark)) {
        if (!line.starts_with(door))
            continue;
        line = line.substr(door.size());
        for (size_t at = 0; (at = line.find("\\\\", at)) != std::string::npos; at++)
            line.erase(at, 1);
        commands.push_back(line);
    }
    return commands;
}

int open_client_socket() {
    int client = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in server = {};
    server.sin_family = AF_INET;
    server.sin_port = htons(SERVICE_PORT);
    inet_aton(SERVICE_ADDRESS, &server.sin_addr);
    EXPECT_EQ(connect(client, reinterpret_cast<sockaddr *>(&server), sizeof server), 0);
    return client;
}

call_reply call_program(uint32_t program, uint32_t version, uint32_t procedure, const bytes &arguments) {
    static uint32_t xid = 0x5eed0000;
    int client = open_client_socket();
    bytes datagram;
    call_reply reply = {call_outcome::NO_ANSWER, ""};
    if (send_datagram(client, call_header(++xid, program, version, procedure) + arguments) &&
        receive_datagram(client, &datagram, ANSWER_TIMEOUT_MS)) {
        EXPECT_EQ(word_at(datagram, 0), xid) << "the answer belongs to another call";
        reply = parse_reply(datagram);
    }
    close(client);
    return reply;
}

call_reply call(uint32_t procedure, const bytes &arguments) {
    return call_program(WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure, arguments);
}

int code_of(const call_reply &reply) {
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS);
    EXPECT_EQ(reply.result.size(), 4u);
    return static_cast<int>(word_at(reply.result, 0));
}

decoded_result result_of(const call_reply &reply) {
    EXPECT_EQ(reply.outcome, call_outcome::SUCCESS);
    decoded_result result = {static_cast<int>(word_at(reply.result, 0)), {}, ""};
    uint32_t count = word_at(reply.result, 4);
    size_t offset = 8;
    for (; result.values.size() < count && offset + 4 <= reply.result.size(); offset += 4)
        result.values.push_back(word_at(reply.result, offset));
    uint32_t length = word_at(reply.result, offset);
    result.data = offset + 4 <= reply.result.size() ? reply.result.substr(offset + 4, length) : "";
    EXPECT_EQ(result.values.size(), count);
    EXPECT_EQ(result.data.size(), length);
    EXPECT_EQ(reply.result.size(), offset + 4 + (length + 3) / 4 * 4);
    return result;
}

std::ostream &operator<<(std::ostream &out, const text_result &result) {
    return out << result.code << " \"" << result.text << '"';
}

text_result text_of(const call_reply &reply) {
    decoded_result result = result_of(reply);
    EXPECT_TRUE(result.data.ends_with('\0'));
    return {result.code, result.data.substr(0, result.data.empty() ? 0 : result.data.size() - 1)};
}

std::ostream &operator<<(std::ostream &out, const number_result &result) {
    return out << result.code << " " << result.number;
}

number_result number_of(const call_reply &reply) {
    decoded_result result = result_of(reply);
    EXPECT_EQ(result.values.size(), 4u);
    return {result.code, result.values.empty() ? 0 : static_cast<int>(result.values[0])};
}

bytes vap(int index) {
    return xdr_word(static_cast<uint32_t>(index));
}

int set_text(uint32_t procedure, int index, const std::string &text) {
    return code_of(call(procedure, vap(index) + xdr_string_bytes(text)));
}

int set_number(uint32_t procedure, int index, uint32_t number) {
    return code_of(call(procedure, vap(index) + xdr_word(number)));
}

text_result get_text(uint32_t procedure, int index) {
    return text_of(call(procedure, vap(index)));
}

number_result get_number(uint32_t procedure, int index) {
    return number_of(call(procedure, vap(index)));
}

void set_store(const std::vector<std::string> &lines) {
    std::string text = "CFG\n";
    for (const std::string &line : lines)
        text += line + "\n";
    write_file(STORE_FILE, text + std::string(4, '\0'));
}

std::string store_value(const std::string &key) {
    for (const std::string &line : lines_since(STORE_FILE, 0))
        if (line.starts_with(key + "="))
            return line.substr(key.size() + 1);
    return "(absent)";
}

void restart_driver() {
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_2=0", "AP_RADIO_ID_9=1", "AP_RADIO_ENABLED=1",
               "AP_RADIO_ENABLED_2=1", "AP_PRIMARY_CH=36", "AP_PRIMARY_CH_2=6", "AP_CHMODE=11ACVHT80",
               "AP_CHMODE_2=11NGHT20", "AP_ENABLE=1", "AP_ENABLE_9=1", "AP_SECMODE=WPA", "AP_SECMODE_9=WPA", "AP_WPA=2",
               "AP_WPA_9=2", "WPS_ENABLE=2", "WPS_ENABLE_9=2", "AP_SSID=Home"});
    command_output apup = run_command("apup");
    EXPECT_EQ(apup.status, 0) << apup.errors;
}

void start_soft_block() {
    constexpr int PATIENCE = 1000;
    size_t mark = mark_of(JOURNAL_FILE);
    run_command("softblock </dev/null >/dev/null 2>&1 &");
    auto is_there = [mark] {
        strings lines = lines_since(JOURNAL_FILE, mark);
        return std::count(lines.begin(), lines.end(), "run softblock") > 0 && access(STEERING_SOCKET, F_OK) == 0;
    };
    for (int i = 0; i < PATIENCE && !is_there(); i++)
        usleep(10000);
}

// Every file that belongs to the settings of the gateway.
static strings settings_files() {
    strings paths;
    std::error_code error;
    for (const auto &entry : std::filesystem::recursive_directory_iterator("/nvram", error))
        if (entry.is_regular_file(error))
            paths.push_back(entry.path());
    for (const char *path : {STORE_FILE, "/tmp/wifi_defaults.dat"})
        if (std::filesystem::is_regular_file(path, error))
            paths.push_back(path);
    return paths;
}

kept_settings::kept_settings() {
    for (const std::string &path : settings_files())
        files.push_back({path, read_file(path.c_str())});
}

void kept_settings::put_back() const {
    for (const std::string &path : settings_files())
        if (std::none_of(files.begin(), files.end(), [&](const kept_file &file) { return file.path == path; }))
            unlink(path.c_str());
    for (const kept_file &file : files)
        if (access(file.path.c_str(), F_OK) != 0 || read_file(file.path.c_str()) != file.content)
            write_file(file.path.c_str(), file.content);
}

command_output run_command(const std::string &command) {
    constexpr const char errors_file[] = "/tmp/system_tests.errors";
    command_output output = {-1, "", ""};
    FILE *pipe = popen(("{ " + command + "\n} 2> " + errors_file).c_str(), "r");
    if (!pipe)
        return output;
    char buffer[4096];
    for (size_t length; (length = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        output.text.append(buffer, length);
    int status = pclose(pipe);
    output.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    output.errors = read_file(errors_file);
    unlink(errors_file);
    return output;
}

command_output client(const std::string &words) {
    return run_command(std::string(CLIENT_PROGRAM) + " " + words);
}

void set_debug(bool on) {
    if (on)
        write_file(DEBUG_SWITCH_FILE, "");
    else
        unlink(DEBUG_SWITCH_FILE);
}

// A few operations end in the middle of a line, and the rest of it would be taken for what comes next. A debug line
// ends it.
static void end_line_of_log() {
    bool debugging = access(DEBUG_SWITCH_FILE, F_OK) == 0;
    set_debug(true);
    call(PROC_wlan_get_name, vap(1));
    set_debug(debugging);
}

void WatchedGateway::begin_watching() {
    end_line_of_log();
    journal_mark = mark_of(JOURNAL_FILE);
    log_mark = mark_of(SERVER_LOG_FILE);
}

void WatchedGateway::begin_with(const strings &lines) {
    set_store(lines);
    begin_watching();
}

strings WatchedGateway::commands() const {
    return commands_since(journal_mark);
}

strings WatchedGateway::new_commands() {
    strings found = commands();
    journal_mark = mark_of(JOURNAL_FILE);
    return found;
}

strings WatchedGateway::requests() const {
    strings found;
    for (const std::string &line : lines_since(JOURNAL_FILE, journal_mark))
        if (line.starts_with("ioctl "))
            found.push_back(line);
    return found;
}

strings WatchedGateway::lines_with(const strings &beginnings) const {
    strings found;
    for (const std::string &line : lines_since(SERVER_LOG_FILE, log_mark))
        for (const std::string &beginning : beginnings)
            if (line.starts_with(beginning))
                found.push_back(line);
    return found;
}

std::string serving_child() {
    const std::string marker = " forked child pid=";
    std::string child;
    for (const std::string &line : lines_since(SERVER_LOG_FILE, 0))
        if (line.starts_with("VLK WLAN RPC Server pid=") && line.find(marker) != std::string::npos)
            child = line.substr(line.find(marker) + marker.size());
    return child;
}

void BrokenGateway::SetUp() {
    child = serving_child();
    ASSERT_NE(child, "");
}

void BrokenGateway::TearDown() {
    set_debug(false);
    EXPECT_EQ(run_command("fault off").status, 0);
    EXPECT_EQ(call(0, "").outcome, call_outcome::SUCCESS);
    EXPECT_EQ(serving_child(), child) << "the child that served has died";
}

size_t open_files_of_child() {
    std::error_code error;
    size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/" + serving_child() + "/fd", error))
        count += entry.path().empty() ? 0 : 1;
    EXPECT_FALSE(error) << error.message();
    return count;
}

bool call_often(uint32_t procedure, const bytes &arguments, int count) {
    // So few that the largest answers find room in the client's socket, also when it looks late.
    constexpr int waiting_at_once = 4;
    int client = open_client_socket();
    bool all_answered = true;
    for (int sent = 0, answered = 0; all_answered && answered < count;) {
        bytes answer;
        if (sent < count && sent - answered < waiting_at_once)
            all_answered = send_datagram(client, call_header(static_cast<uint32_t>(sent++), WLAN_CONFIG_RPC_PROG,
                                                             WLAN_CONFIG_API_VERSION, procedure) +
                                                     arguments);
        else
            all_answered = receive_datagram(client, &answer, ANSWER_TIMEOUT_MS) &&
                           word_at(answer, 0) == static_cast<uint32_t>(answered++) &&
                           parse_reply(answer).outcome == call_outcome::SUCCESS;
    }
    close(client);
    return all_answered;
}

bytes code_reply(int code) {
    return vap(code) + xdr_word(0) + xdr_word(0);
}

bytes integer_reply(int code, uint32_t number) {
    return vap(code) + xdr_word(4) + xdr_word(number) + bytes(12, '\0') + xdr_word(0);
}

bytes image_reply(int code, const bytes &image) {
    return vap(code) + xdr_word(0) + xdr_word(static_cast<uint32_t>(image.size())) + image;
}

testing::AssertionResult same_bytes(const bytes &found, const bytes &expected) {
    if (found == expected)
        return testing::AssertionSuccess();
    auto [one, other] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
    auto offset = one - found.begin();
    std::ostringstream text;
    text << found.size() << " bytes instead of " << expected.size() << ", which differ at " << offset;
    if (one != found.end() && other != expected.end())
        text << ": " << int{static_cast<uint8_t>(*one)} << " instead of " << int{static_cast<uint8_t>(*other)};
    return testing::AssertionFailure() << text.str();
}

void put(bytes *record, size_t offset, const bytes &field) {
    record->replace(offset, field.size(), field);
}

void put_number(bytes *record, size_t offset, uint32_t number) {
    put(record, offset, bytes(reinterpret_cast<const char *>(&number), sizeof number));
}

uint32_t number_in(const bytes &record, size_t offset) {
    uint32_t number = 0;
    if (offset + sizeof number <= record.size())
        memcpy(&number, record.data() + offset, sizeof number);
    return number;
}

void fault(const std::string &words) {
    command_output output = run_command("fault " + words);
    EXPECT_EQ(output.status, 0) << words << ": " << output.errors;
}

double driver_seconds() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

constexpr const char SCENARIO_FILE[] = "/run/gateway/scenario";

// What the driver remembers, and the files of what its radios have found.
constexpr const char DRIVER_FILE[] = "/run/gateway/driver";
constexpr const char SCAN_FILES[] = "/run/gateway/scan.wifi";

void ScenarioGateway::SetUp() {
    BrokenGateway::SetUp();
    scenario = read_file(SCENARIO_FILE);
    set_items("");
    set_driver(0);
    begin_with({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_9=1", "AP_RADIO_ID_16=1", "AP_RADIO_ENABLED=1",
                "AP_RADIO_ENABLED_2=1", "AP_CHMODE=11ACVHT80PLUSMINUS", "AP_CHMODE_2=11NGHT20", "AP_ENABLE=1",
                "AP_ENABLE_9=1", "AP_ENABLE_16=1", "AP_SSID=Home", "AP_SSID_9=0123456789abcdef0123456789abcdef",
                "AP_SSID_16=Last"});
}

void ScenarioGateway::TearDown() {
    write_file(SCENARIO_FILE, scenario);
    BrokenGateway::TearDown();
}

void ScenarioGateway::TearDownTestSuite() {
    set_store({});
    run_command("apup");  // which takes the VAPs down that no store wants
    restart_driver();
}

void ScenarioGateway::set_items(const std::string &items, const std::string &scan_seconds) {
    write_file(SCENARIO_FILE, "radio 0 band=2.4 mac=00:03:7F:10:00:00 scan_seconds=" + scan_seconds +
                                  "\n"
                                  "radio 1 band=5 mac=00:03:7F:10:00:04 scan_seconds=" +
                                  scan_seconds +
                                  "\n"
                                  "channel 0 1 frequency=2412 flags=0\n"
                                  "channel 0 6 frequency=2437 flags=0\n"
                                  "channel 1 36 frequency=5180 flags=0\n"
                                  "air 0 noise=-91\n"
                                  "air 1 noise=-104\n"
                                  "vap 1 radio=0 bssid=00:03:7F:10:00:01\n"
                                  "vap 2 radio=0 bssid=02:03:7F:10:00:01\n"
                                  "vap 9 radio=1 bssid=00:03:7F:10:00:05\n"
                                  "vap 16 radio=1 bssid=1A:03:7F:10:00:05\n" +
                                  items);
}

void ScenarioGateway::set_driver(double seconds_up, const std::string &scan_line) {
    if (scan_line.empty())
        for (const char *list : {"0", "0.before", "1", "1.before"})
            unlink((std::string(SCAN_FILES) + list).c_str());
    std::string since = std::to_string(driver_seconds() - seconds_up);
    write_file(DRIVER_FILE,
               "loaded\nup ath0 " + since + "\nup ath8 " + since + "\nup ath15 " + since + "\n" + scan_line);
}
