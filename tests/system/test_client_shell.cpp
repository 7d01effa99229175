// The interactive shell on a terminal, against the real server.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

constexpr const char STATE_FOLDER[] = "/tmp/shell_state";
const std::string HISTORY = std::string(STATE_FOLDER) + "/vlk_wlan_config_history";

class ClientShell : public testing::Test {
protected:
    void SetUp() override {
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID_9=1", "AP_SSID=home"});
    }

    void TearDown() override {
        run_command("fault cfg off");
        std::filesystem::remove_all(STATE_FOLDER);
    }
};

class ShellTerminal : public Terminal {
public:
    ShellTerminal()
        : Terminal({"/usr/sbin/vlk_rpc_wlan_config_client", "shell"},
                   {"TERM=vt100", "HOME=/tmp", std::string("XDG_STATE_HOME=") + STATE_FOLDER}) {
        EXPECT_TRUE(prompts());
    }

    bool prompts() {
        return shows("wlan> ");
    }
};

TEST_F(ClientShell, CarriesOutWhatIsTypedAndEndsWithTheStatusOfTheLast) {
    ShellTerminal shell;
    shell.type("getSsid 1\r");
    EXPECT_TRUE(shell.shows("\nhome\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("setChannel 9 6\r");
    EXPECT_TRUE(shell.shows("setChannel: the server answered failure (-1)\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("exit\r");
    EXPECT_EQ(shell.ends(), 1);
    EXPECT_TRUE(shell.is_cooked());
}

TEST_F(ClientShell, EndsAtTheEndOfTheInput) {
    ShellTerminal shell;
    shell.type("getSsid 1\r");
    EXPECT_TRUE(shell.shows("\nhome\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("\004");
    EXPECT_EQ(shell.ends(), 0);
    EXPECT_TRUE(shell.is_cooked());
}

TEST_F(ClientShell, ControlCGivesANewLineWithoutCarryingOutTheOld) {
    ShellTerminal shell;
    shell.type("setSsid 1 wrong\003");
    EXPECT_TRUE(shell.shows("^C\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("getSsid 1\r");
    EXPECT_TRUE(shell.shows("\nhome\r\n")) << shell.screen();
    shell.type("quit\r");
    EXPECT_EQ(shell.ends(), 0);
}

TEST_F(ClientShell, ControlCEndsTheWaitForAnAnswerAndTheShellGoesOn) {
    run_command("fault cfg slow 1");
    size_t mark = mark_of(JOURNAL_FILE);
    ShellTerminal shell;
    shell.type("setSsid 1 late\r");
    EXPECT_TRUE(shell.shows("late\r\n")) << shell.screen();
    for (int i = 0; i < 5000 && lines_since(JOURNAL_FILE, mark).empty(); i++)
        usleep(1000);
    shell.type("\003");
    EXPECT_TRUE(shell.shows("interrupted; the server may still carry out what it was asked for\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("exit\r");
    EXPECT_EQ(shell.ends(), 4);
    EXPECT_TRUE(shell.is_cooked());
    // The server has carried it out all the same, and is free again.
    EXPECT_EQ(run_command("/usr/sbin/vlk_rpc_wlan_config_client getSsid 1").text, "late\n");
}

TEST_F(ClientShell, InterruptFromElsewhereLeavesTheLineAlone) {
    ShellTerminal shell;
    shell.type("getSsid ");
    EXPECT_TRUE(shell.shows("getSsid ")) << shell.screen();
    kill(shell.pid, SIGINT);
    shell.type("1\r");
    EXPECT_TRUE(shell.shows("\nhome\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("exit\r");
    EXPECT_EQ(shell.ends(), 0);
}

TEST_F(ClientShell, TerminalIsAsBeforeWhenASignalEndsIt) {
    ShellTerminal shell;
    EXPECT_FALSE(shell.is_cooked());
    kill(shell.pid, SIGTERM);
    EXPECT_EQ(shell.ends(), 128 + SIGTERM);
    EXPECT_TRUE(shell.is_cooked());
}

TEST_F(ClientShell, TabCompletesOperationsAndQuotesWords) {
    ShellTerminal shell;
    shell.type("getssida\t1\r");
    EXPECT_TRUE(shell.shows("SsidAdvertisementEnabled 1\r\n1\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("list \"band st\t\r");
    EXPECT_TRUE(shell.shows("eering\" \r\n")) << shell.screen();
    EXPECT_TRUE(shell.shows("band steering\033[0m\r\n")) << shell.screen();
}

TEST_F(ClientShell, TabShowsVapsWithTheirSsidsAndWhatIsWanted) {
    ShellTerminal shell;
    shell.type("getSsid \t");
    EXPECT_TRUE(shell.shows("\n1                                 home\r\n2 ")) << shell.screen();
    EXPECT_TRUE(shell.shows("getSsid ")) << shell.screen();
    shell.type("\003");
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("setSsid 1 \t");
    EXPECT_TRUE(shell.shows("\n<ssid>: text\r\n")) << shell.screen();
}

TEST_F(ClientShell, TabCompletesFileNamesWithBlanks) {
    write_file("/tmp/a batch.txt", "getSsid 1\n");
    ShellTerminal shell;
    shell.type("batch /tmp/a\t\r");
    EXPECT_TRUE(shell.shows("\\ batch.txt \r\nhome\r\n")) << shell.screen();
    unlink("/tmp/a batch.txt");
}

TEST_F(ClientShell, TabCompletesFileNamesWithQuotesInQuotes) {
    write_file("/tmp/it's.txt", "getSsid 1\n");
    ShellTerminal shell;
    shell.type("batch '/tmp/it\t\r");
    EXPECT_TRUE(shell.shows("'\\''s.txt' \r\nhome\r\n")) << shell.screen();
    unlink("/tmp/it's.txt");
}

TEST_F(ClientShell, TabLeavesOutNamesThatNoLineCanHave) {
    write_file("/tmp/odd\033[2J", "");
    write_file("/tmp/odd.txt", "getSsid 1\n");
    ShellTerminal shell;
    shell.type("batch /tmp/od\t\r");
    EXPECT_TRUE(shell.shows("d.txt \r\nhome\r\n")) << shell.screen();
    unlink("/tmp/odd\033[2J");
    unlink("/tmp/odd.txt");
}

TEST_F(ClientShell, TabCutsNothingOfALongName) {
    const std::string folder = "/tmp/long";
    const std::string inner = folder + "/" + std::string(200, 'a') + "/" + std::string(200, 'b') + "/";
    std::filesystem::create_directories(inner);
    write_file((inner + std::string(200, 'c') + ".txt").c_str(), "getSsid 1\n");
    ShellTerminal shell;
    shell.type("batch " + inner + "c\t\r");
    EXPECT_TRUE(shell.shows("\r\nhome\r\n")) << shell.screen();
    std::filesystem::remove_all(folder);
}

TEST_F(ClientShell, HistoryIsKeptWithoutSecretsForItsOwnerAlone) {
    {
        ShellTerminal shell;
        shell.type("getSsid 1\rsetPreSharedKey 1 1 topsecret\rexit\r");
        EXPECT_GE(shell.ends(), 0);
    }
    EXPECT_EQ(read_file(HISTORY.c_str()), "getSsid 1\n");
    struct stat found;
    ASSERT_EQ(stat(HISTORY.c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0600u);
    ShellTerminal shell;
    shell.type("\020\r");  // Ctrl-P, the line before
    EXPECT_TRUE(shell.shows("getSsid 1\r\n")) << shell.screen();
    EXPECT_TRUE(shell.shows("home\r\n")) << shell.screen();
}

TEST_F(ClientShell, LineThatIsNoneIsSaidAndTheShellGoesOn) {
    ShellTerminal shell;
    shell.type("getSsid '1\r");
    EXPECT_TRUE(shell.shows("the quote ' in column 9 has no end\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("\r# nothing\rshell\r");
    EXPECT_TRUE(shell.shows("shell: this is already a shell or a batch\r\n")) << shell.screen();
    EXPECT_TRUE(shell.prompts()) << shell.screen();
    shell.type("exit\r");
    EXPECT_EQ(shell.ends(), 2);
}

TEST_F(ClientShell, WithoutATerminalItIsABatchThatKeepsGoing) {
    command_output run = run_command(
        "printf 'getSsid 1\\nsetChannel 9 6\\ngetSsid 1\\nexit\\nxylophone\\n' | "
        "/usr/sbin/vlk_rpc_wlan_config_client shell");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.text, "home\nhome\n");
    EXPECT_EQ(run.errors, "stdin:2: setChannel: the server answered failure (-1)\n");
}

}  // namespace
