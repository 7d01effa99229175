// docs/wire.md: its bytes are those of the server, its clients run.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

constexpr int ANSWER_TIMEOUT_MS = 5000;

// The content of all blocks that are marked with a word.
std::vector<std::string> blocks_of(const std::string &mark) {
    std::istringstream document(read_file(WLAN_SOURCE_DIR "/docs/wire.md"));
    std::vector<std::string> blocks;
    bool inside = false;
    for (std::string line; std::getline(document, line);) {
        if (inside && line == "```")
            inside = false;
        else if (inside)
            blocks.back() += line + "\n";
        else if (line == "```" + mark)
            inside = true, blocks.push_back("");
    }
    return blocks;
}

// "48 6f 6d 65  Home" is four bytes and what they mean.
bytes bytes_of_block(const std::string &block) {
    std::istringstream lines(block);
    bytes content;
    for (std::string line; std::getline(lines, line);)
        for (size_t at = 0; at < 12; at += 3)
            content += static_cast<char>(std::stoi(line.substr(at, 2), nullptr, 16));
    return content;
}

// What the examples start from.
void prepare_gateway() {
    set_store({"AP_VAP_NUM=8", "AP_RADIO_ID=0", "AP_RADIO_ID_3=0", "AP_PRIMARY_CH_2=6", "AP_CHMODE_2=11NGHT20",
               "AP_SSID=Home"});
}

TEST(WireDocument, CallsWhatItSays) {
    std::vector<std::string> blocks = blocks_of("text");
    ASSERT_EQ(blocks.size(), 6u);
    auto header = [](uint32_t xid, uint32_t procedure) {
        return call_header(xid, WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, procedure);
    };
    EXPECT_TRUE(same_bytes(bytes_of_block(blocks[0]), header(1, PROC_wlan_get_ssid) + xdr_word(1)));
    EXPECT_TRUE(same_bytes(bytes_of_block(blocks[2]),
                           header(2, PROC_wlan_set_ssid) + xdr_word(3) + xdr_string_bytes("Guest network")));
    EXPECT_TRUE(same_bytes(bytes_of_block(blocks[4]), header(3, PROC_wlan_get_channel) + xdr_word(1)));
}

TEST(WireDocument, HasTheBytesOfItsThreeCalls) {
    prepare_gateway();
    std::vector<std::string> blocks = blocks_of("text");
    ASSERT_EQ(blocks.size(), 6u);
    int client = open_client_socket();
    for (size_t i = 0; i < blocks.size(); i += 2) {
        bytes answer;
        ASSERT_TRUE(send_datagram(client, bytes_of_block(blocks[i])));
        ASSERT_TRUE(receive_datagram(client, &answer, ANSWER_TIMEOUT_MS));
        EXPECT_TRUE(same_bytes(answer, bytes_of_block(blocks[i + 1]))) << blocks[i];
    }
    close(client);
    EXPECT_EQ(store_value("AP_SSID_3"), "Guest network");
}

// A folder with what a document asks for in it.
const std::string &folder() {
    static std::string path;
    if (path.empty()) {
        char name[] = "/tmp/wire-XXXXXX";
        path = mkdtemp(name);
    }
    return path;
}

command_output run_in_folder(const std::string &command) {
    return run_command("cd " + folder() + " && " + command);
}

void write_only_block(const std::string &mark, const std::string &name) {
    std::vector<std::string> blocks = blocks_of(mark);
    ASSERT_EQ(blocks.size(), 1u) << mark;
    write_file((folder() + "/" + name).c_str(), blocks[0]);
}

class PythonClient : public testing::Test {
protected:
    void SetUp() override {
        prepare_gateway();
        write_only_block("python", "wlan.py");
    }
    void TearDown() override {
        restart_driver();
    }
};

TEST_F(PythonClient, ReadsAnSsid) {
    command_output output = run_in_folder("python3 wlan.py get 1");
    EXPECT_EQ(output.text, "Home\n") << output.errors;
    EXPECT_EQ(output.status, 0);
}

TEST_F(PythonClient, SetsAnSsidOfAnyBytes) {
    command_output output = run_in_folder("python3 wlan.py set 3 'caf\xc3\xa9 \"1\"'");
    EXPECT_EQ(output.status, 0) << output.errors;
    EXPECT_EQ(store_value("AP_SSID_3"), "caf\xc3\xa9 \"1\"");
    EXPECT_EQ(run_in_folder("python3 wlan.py get 3").text, "caf\xc3\xa9 \"1\"\n");
}

TEST_F(PythonClient, ReadsAnInteger) {
    EXPECT_EQ(run_in_folder("python3 wlan.py channel 1").text, "6\n");
}

TEST_F(PythonClient, UnderstandsAResultWithIntegersAndARecord) {
    command_output output = run_in_folder(
        "python3 -c 'import sys; sys.argv[1:] = [\"get\", \"1\"]; import wlan; "
        "wlan.call = lambda *rest: wlan.words(0, 4, 7, 0, 0, 0, 5) + b\"data!\" + bytes(3); "
        "print(wlan.ask(0, 0, b\"\"))'");
    EXPECT_EQ(output.text, "Home\n((7, 0, 0, 0), b'data!')\n") << output.errors;
}

TEST_F(PythonClient, SaysThatTheServerAnsweredFailure) {
    command_output output = run_in_folder("python3 wlan.py channel -1");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.errors, "wlan.py: the server answered failure (-1)\n");
}

// The commands of the document, as they stand there, with the files that it wants in the folder.
TEST(CClient, IsBuiltByItsCommandsAndListsStations) {
    restart_driver();
    write_only_block("c", "stations.c");
    for (const char *name : {"wlan_config.x", "wlan_config_records.h"})
        write_file((folder() + "/" + name).c_str(), read_file((std::string(WLAN_SOURCE_DIR "/docs/") + name).c_str()));
    std::vector<std::string> commands = blocks_of("console");
    ASSERT_FALSE(commands.empty());
    write_file((folder() + "/build.sh").c_str(), commands[0]);
    command_output output = run_in_folder("sh -e build.sh");
    ASSERT_EQ(output.status, 0) << output.errors;
    command_output stations = run_command("vlk_rpc_wlan_config_client getAssocDevicesTableNumOfEntries 1");
    EXPECT_EQ(std::to_string(std::count(output.text.begin(), output.text.end(), '\n')) + "\n", stations.text);
    EXPECT_NE(output.text.find("28:6A:BA:4C:10:01 192.168.0.20\n"), std::string::npos) << output.text;
}

}  // namespace
