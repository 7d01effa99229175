// What the shell remembers from one time to the next, and what it must not.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "client/operations.h"
#include "client/shell_history.h"

namespace {

using strings = std::vector<std::string>;

constexpr const char FOLDER[] = "/tmp/history";
const std::string PATH = std::string(FOLDER) + "/state/file";

class ClientHistory : public testing::Test {
protected:
    void TearDown() override {
        std::filesystem::remove_all(FOLDER);
        unsetenv("XDG_STATE_HOME");
        setenv("HOME", "/root", 1);
    }
};

bool is_kept(const std::string &line) {
    line_words split;
    char problem[PROBLEM_SIZE];
    split_line(line.c_str(), line.size(), &split, problem);
    return may_be_kept(&split);
}

strings loaded() {
    strings lines;
    load_history(
        PATH.c_str(), [](void *to, const char *line) { static_cast<strings *>(to)->push_back(line); }, &lines);
    return lines;
}

std::string path_of() {
    char path[200] = "none";
    return history_path(path, sizeof path) ? path : "none";
}

TEST_F(ClientHistory, StandsInTheFolderForState) {
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(path_of(), "/home/someone/.local/state/vlk_wlan_config_history");
    setenv("XDG_STATE_HOME", "/somewhere", 1);
    EXPECT_EQ(path_of(), "/somewhere/vlk_wlan_config_history");
    setenv("XDG_STATE_HOME", "relative", 1);
    EXPECT_EQ(path_of(), "/home/someone/.local/state/vlk_wlan_config_history");
    setenv("XDG_STATE_HOME", "", 1);
    unsetenv("HOME");
    EXPECT_EQ(path_of(), "none");
    setenv("HOME", ("/" + std::string(300, 'x')).c_str(), 1);
    EXPECT_EQ(path_of(), "none");
}

TEST_F(ClientHistory, LinesWithSecretsAreNotKept) {
    for (const char *line :
         {"setKeyPassphrase 1 1 'correct horse'", "set_key_passphrase 1 1 x", "wlan_set_pre_shared_key 1 1 abc",
          "setWepKey 1 1 abcde", "setWepKeyPassphrase 1 x", "setRadiusServerKey 1 x", "setAcctServerKey 1 x",
          "setWpsDevicePassword 1 12345670", "setWpsPinstart 1 12345670", "-t 3 setKeyPassphrase 1 1 x",
          "vlk_rpc_wlan_config_client setKeyPassphrase 1 1 x", "watch setKeyPassphrase 1 1 x", "setKeyPassphrase 1"})
        EXPECT_FALSE(is_kept(line)) << line;
    for (const char *line : {"getKeyPassphrase 1 1", "setWepKeyIndex 1 2", "setSsid 1 key", "describe setKeyPassphrase",
                             "status", "list passphrase", "getSsid 1 -o json"}) {
        EXPECT_TRUE(is_kept(line) || std::string(line) == "status") << line;
    }
}

TEST_F(ClientHistory, EveryTextThatIsASecretByItsNameIsOne) {
    for (size_t i = 0; i < procedure_row_count; i++)
        for (size_t argument = 0; argument < procedure_rows[i].argument_count; argument++) {
            const argument_row &row = procedure_rows[i].arguments[argument];
            std::string name = row.name;
            bool secret = row.kind == argument_kind::TEXT && (name == "key" || name == "passphrase" || name == "pin");
            if (secret) {
                EXPECT_FALSE(is_kept(std::string(procedure_rows[i].name) + " 1 2 3")) << procedure_rows[i].name;
            }
        }
}

TEST_F(ClientHistory, LinesThatMayBeMistypedSecretsAreNotKept) {
    EXPECT_FALSE(is_kept("setKeyPasphrase 1 1 secret"));
    EXPECT_FALSE(is_kept("setSsid 1 'unfinished"));
}

TEST_F(ClientHistory, KeepsLinesInAFileForItsOwnerAlone) {
    mode_t before = umask(0);
    keep_line(PATH.c_str(), "getSsid 1");
    umask(before);
    keep_line(PATH.c_str(), "getSsid 2");
    struct stat found;
    ASSERT_EQ(stat(PATH.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600u);
    EXPECT_EQ(loaded(), (strings{"getSsid 1", "getSsid 2"}));
}

TEST_F(ClientHistory, FileThatOthersCanReadIsClosedToThem) {
    keep_line(PATH.c_str(), "getSsid 1");
    chmod(PATH.c_str(), 0644);
    keep_line(PATH.c_str(), "getSsid 2");
    struct stat found;
    ASSERT_EQ(stat(PATH.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600u);
}

TEST_F(ClientHistory, LastLinesAreLoadedAndALongFileIsShortened) {
    std::filesystem::create_directories(std::string(FOLDER) + "/state");
    std::ofstream file(PATH);
    for (size_t i = 0; i <= 2 * HISTORY_LINES_MAX; i++)
        file << "getSsid " << i << "\n";
    file.close();
    strings lines = loaded();
    ASSERT_EQ(lines.size(), HISTORY_LINES_MAX);
    EXPECT_EQ(lines.front(), "getSsid 501");
    EXPECT_EQ(lines.back(), "getSsid 1000");
    std::ifstream shortened(PATH);
    std::string first;
    std::getline(shortened, first);
    EXPECT_EQ(first, "getSsid 501");
    struct stat found;
    ASSERT_EQ(stat(PATH.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600u);
    EXPECT_EQ(loaded(), lines);
    size_t files = 0;
    for (const auto &entry : std::filesystem::directory_iterator(std::string(FOLDER) + "/state"))
        files += entry.exists();
    EXPECT_EQ(files, 1u);
}

TEST_F(ClientHistory, WhatIsNoFileIsLeftAlone) {
    std::filesystem::create_directories(PATH);
    keep_line(PATH.c_str(), "getSsid 1");
    EXPECT_EQ(loaded(), strings{});
    std::filesystem::remove_all(PATH);
    ASSERT_EQ(mkfifo(PATH.c_str(), 0600), 0);
    keep_line(PATH.c_str(), "getSsid 1");  // would wait for a reader
    keep_line("/proc/nothing/file", "getSsid 1");
    EXPECT_TRUE(std::filesystem::is_fifo(PATH));
}

}  // namespace
