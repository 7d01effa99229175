// The completion scripts in the shells they are for, with the real client and the real server.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

const std::string SCRIPTS = WLAN_SOURCE_DIR "/client/completion/";
const std::string PROGRAM = "/usr/sbin/vlk_rpc_wlan_config_client";
constexpr const char FOLDER[] = "/tmp/completion_test";

std::string quoted(std::string text) {
    for (size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4)
        text.replace(at, 1, "'\\''");
    return "'" + text + "'";
}

class ClientCompletion : public testing::Test {
protected:
    void SetUp() override {
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID_9=1", "AP_SSID=home", "AP_SSID_2=Guest network"});
        std::filesystem::create_directories(FOLDER);
    }

    void TearDown() override {
        std::filesystem::remove_all(FOLDER);
    }
};

// Runs a script in a shell: the lines that it prints.
strings printed_by(const std::string &shell, const std::string &script) {
    std::string file = std::string(FOLDER) + "/script";
    write_file(file.c_str(), script);
    command_output run = run_command("env HOME=" + std::string(FOLDER) + " " + shell + " " + file);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    std::istringstream lines(run.text);
    strings found;
    for (std::string line; std::getline(lines, line);)
        found.push_back(line);
    return found;
}

// What bash gets for a line with the cursor at its end, when `word` is what bash takes for its last word.
strings in_bash(const std::string &words, const std::string &word) {
    std::string line = PROGRAM + " " + words;
    return printed_by("bash", ". " + SCRIPTS + "bash\nCOMP_LINE=" + quoted(line) + "\nCOMP_POINT=${#COMP_LINE}\n" +
                                  "_vlk_rpc_wlan_config_client " + PROGRAM + " " + quoted(word) +
                                  " x\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
}

TEST_F(ClientCompletion, BashGetsTheCandidates) {
    EXPECT_EQ(in_bash("getNumberO", "getNumberO"), strings{"getNumberOfEntries"});
    EXPECT_EQ(in_bash("get_number", "get_number"), strings{"get_number_of_entries"});
    EXPECT_EQ(in_bash("setEnable 1 ", ""), (strings{"on", "off"}));
    EXPECT_EQ(in_bash("setSsid 1 ", ""), strings{""});
}

TEST_F(ClientCompletion, BashReplacesOnlyWhatStandsBehindTheEqualsSign) {
    EXPECT_EQ(in_bash("--output=j", "j"), strings{"json"});
    EXPECT_EQ(in_bash("list --output=", ""), (strings{"text", "json", "value", "dump"}));
}

TEST_F(ClientCompletion, BashWordsWithBlanksQuotesColonsAndEqualsSignsSurvive) {
    EXPECT_EQ(in_bash("setSsid 3 'a \"b:=c' -o j", "j"), strings{"json"});
    EXPECT_EQ(in_bash("associateVlan 00:03:7f:10:00:01 5 --outp", "--outp"), strings{"--output"});
    EXPECT_EQ(in_bash("setSsid 3 a\\ b=c -o j", "j"), strings{"json"});
    EXPECT_EQ(in_bash("'setEnable' 1 of", "of"), strings{"off"});
}

TEST_F(ClientCompletion, BashCandidatesWithBlanksAreQuoted) {
    EXPECT_EQ(in_bash("list band", "band"), strings{"band\\ steering"});
    EXPECT_EQ(in_bash("list 'band s", "band s"), strings{"band steering"});
}

TEST_F(ClientCompletion, BashCompletesFileNames) {
    EXPECT_EQ(in_bash("batch " + SCRIPTS + "ba", SCRIPTS + "ba"), strings{SCRIPTS + "bash"});
}

TEST_F(ClientCompletion, BashRunsNothingOfWhatIsTyped) {
    EXPECT_EQ(in_bash("setSsid 1 $(touch$IFS/tmp/completion_test/ran) -o j", "j"), strings{"json"});
    EXPECT_NE(access("/tmp/completion_test/ran", F_OK), 0);
}

TEST_F(ClientCompletion, BashOnATerminalPutsTheWordIn) {
    Terminal bash({"bash", "--norc", "--noprofile", "-i"}, {"TERM=dumb", "HOME=/tmp", "PS1=ready> "});
    ASSERT_TRUE(bash.shows("ready> "));
    bash.type(". " + SCRIPTS + "bash; PATH=/usr/sbin:$PATH; echo so\"urc\"ed\r");
    ASSERT_TRUE(bash.shows("sourced\r\n")) << bash.screen();
    ASSERT_TRUE(bash.shows("ready> ")) << bash.screen();
    bash.type("vlk_rpc_wlan_config_client list --output=j\t\"band st\t");
    EXPECT_TRUE(bash.shows("list --output=json \"band steering\" ")) << bash.screen();
}

// What zsh's compadd and its helpers are given.
strings in_zsh(const strings &words) {
    std::string script =
        "compadd() { print -rl -- \"${candidates[@]}\" }\n_message() { print -r -- \"message $2\" }\n"
        "_files() { print files }\ncompset() { print -r -- \"compset $*\" }\nwords=(" +
        PROGRAM;
    for (const std::string &word : words)
        script += " " + quoted(word);
    return printed_by("zsh -f", script + ")\nCURRENT=$#words\nPREFIX=$words[-1]\nsource " + SCRIPTS + "zsh || true\n");
}

TEST_F(ClientCompletion, ZshGetsTheCandidates) {
    EXPECT_EQ(in_zsh({"getNumberO"}), strings{"getNumberOfEntries"});
    EXPECT_EQ(in_zsh({"setEnable", "1", ""}), (strings{"on", "off"}));
    EXPECT_EQ(in_zsh({"--output=j"}), strings{"--output=json"});
    EXPECT_EQ(in_zsh({"xylophone", ""}), strings{});
}

TEST_F(ClientCompletion, ZshWordsWithBlanksQuotesColonsAndEqualsSignsSurvive) {
    EXPECT_EQ(in_zsh({"setSsid", "3", "'a \"b:=c'", "-o", "j"}), strings{"json"});
    EXPECT_EQ(in_zsh({"setSsid", "3", "''", "-o", "j"}), strings{"json"});
    EXPECT_EQ(in_zsh({"list", "band\\ s"}), strings{"band steering"});
    EXPECT_EQ(in_zsh({"'setEnable'", "1", ""}), (strings{"on", "off"}));
}

TEST_F(ClientCompletion, ZshIsToldWhatIsWantedAndCompletesFileNames) {
    EXPECT_EQ(in_zsh({"setSsid", "1", ""}), strings{"message <ssid>: text"});
    EXPECT_EQ(in_zsh({"batch", "x"}), (strings{"compset -P ", "files"}));
}

TEST_F(ClientCompletion, ZshOnATerminalPutsTheWordIn) {
    std::filesystem::copy_file(SCRIPTS + "zsh", std::string(FOLDER) + "/_vlk_rpc_wlan_config_client");
    Terminal zsh({"zsh", "-f", "-i"}, {"TERM=vt100", std::string("HOME=") + FOLDER, "PS1=ready> "});
    ASSERT_TRUE(zsh.shows("ready> "));
    zsh.type("fpath=(" + std::string(FOLDER) +
             " $fpath); autoload -Uz compinit && compinit -u -D; path+=/usr/sbin; print lo\"ad\"ed\r");
    ASSERT_TRUE(zsh.shows("loaded\r\n")) << zsh.screen();
    ASSERT_TRUE(zsh.shows("ready> ")) << zsh.screen();
    zsh.type("vlk_rpc_wlan_config_client getssida\t");
    EXPECT_TRUE(zsh.shows("AdvertisementEnabled")) << zsh.screen();
}

// The candidates that fish shows for a line, with their descriptions.
strings in_fish(const std::string &words) {
    return printed_by("fish --no-config", "source " + SCRIPTS + "fish\nset -x PATH /usr/sbin $PATH\ncomplete -C " +
                                              quoted("vlk_rpc_wlan_config_client " + words) + "\n");
}

TEST_F(ClientCompletion, FishGetsTheCandidatesWithTheirSummaries) {
    EXPECT_EQ(in_fish("getNumberO"), strings{"getNumberOfEntries\tnumber of VAPs"});
    EXPECT_EQ(in_fish("setEnable 1 "), (strings{"off\tenabled", "on\tenabled"}));
    EXPECT_EQ(in_fish("--output=j"), strings{"--output=json\tone object, for programs"});
    EXPECT_EQ(in_fish("list \"band st"), strings{"band steering"});
    EXPECT_EQ(in_fish("setSsid 1 "), strings{});
}

TEST_F(ClientCompletion, FishWordsWithBlanksQuotesColonsAndEqualsSignsSurvive) {
    EXPECT_EQ(in_fish("setSsid 3 \"a b:=c\" -o j"), strings{"json\tone object, for programs"});
    EXPECT_EQ(in_fish("setSsid 3 \"\" -o j"), strings{"json\tone object, for programs"});
    EXPECT_EQ(in_fish("\"setEnable\" 1 of"), strings{"off\tenabled"});
}

TEST_F(ClientCompletion, FishCompletesFileNames) {
    EXPECT_EQ(in_fish("batch " + SCRIPTS + "ba"), strings{SCRIPTS + "bash"});
}

TEST_F(ClientCompletion, VapsHaveTheSsidsOfTheLiveServer) {
    EXPECT_EQ(in_fish("getSsid 2"), strings{"2\tGuest network"});
    EXPECT_EQ(run_command(PROGRAM + " __complete getSsid 1").text.substr(0, 11), "1\thome\n10\t\n");
}

}  // namespace
