// Many commands on standard input, against the real server.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "tests/system/gateway.h"

namespace {

class ClientBatch : public testing::Test {
protected:
    void SetUp() override {
        set_store({"AP_VAP_NUM=8", "AP_RADIO_ID_9=1", "AP_SSID=home"});
    }
};

TEST_F(ClientBatch, StandardInputIsReadWithAndWithoutAFile) {
    for (const char *file : {"", "-"}) {
        command_output run =
            run_command("printf 'setSsid 1 \"My net\"\\ngetSsid 1\\n' | /usr/sbin/vlk_rpc_wlan_config_client batch " +
                        std::string(file));
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.text, "ok\nMy net\n");
    }
}

TEST_F(ClientBatch, LinesOfStandardInputAreNoDocument) {
    command_output run = run_command(
        "printf 'diff -\\n{\"schema\":1}\\ngetSsid 1\\n' | /usr/sbin/vlk_rpc_wlan_config_client batch --keep-going");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.text, "home\n");
    EXPECT_TRUE(run.errors.starts_with("stdin:1: diff: standard input cannot be read: the lines come from there\n"))
        << run.errors;
}

TEST_F(ClientBatch, LinesOfStandardInputMayNameADocument) {
    write_file("/tmp/document", "{\"schema\":1}");
    command_output run = run_command("echo diff /tmp/document | /usr/sbin/vlk_rpc_wlan_config_client batch");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.text, "no changes\n");
    unlink("/tmp/document");
}

TEST_F(ClientBatch, LinesOfAFileLeaveStandardInputForADocument) {
    write_file("/tmp/lines", "diff -\n");
    command_output run = run_command("echo '{\"schema\":1}' | /usr/sbin/vlk_rpc_wlan_config_client batch /tmp/lines");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.text, "no changes\n");
    unlink("/tmp/lines");
}

TEST_F(ClientBatch, FirstFailureEndsItAndNothingBehindItReachesTheGateway) {
    write_file("/tmp/lines", "setSsid 1 one\nsetChannel 9 6\nsetSsid 1 two\n");
    command_output run = run_command("/usr/sbin/vlk_rpc_wlan_config_client batch /tmp/lines");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.text, "ok\n");
    EXPECT_EQ(run.errors,
              "/tmp/lines:2: setChannel: the server answered failure (-1)\n"
              "/tmp/lines:2: stopped here; the lines behind it were not sent\n");
    EXPECT_EQ(store_value("AP_SSID"), "one");
    unlink("/tmp/lines");
}

// A batch whose standard input and output are pipes that stay open.
struct open_batch {
    open_batch() {
        int input[2], output[2];
        EXPECT_EQ(pipe2(input, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
        pid = fork();
        if (pid == 0) {
            dup2(input[0], STDIN_FILENO);
            dup2(output[1], STDOUT_FILENO);
            signal(SIGINT, SIG_DFL);  // a shell that runs the tests in the background has it ignored
            execl("/usr/sbin/vlk_rpc_wlan_config_client", "client", "batch", nullptr);
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        to = input[1];
        from = output[0];
    }

    ~open_batch() {
        close(to);
        close(from);
    }

    std::string answer_to(const std::string &line) const {
        EXPECT_EQ(write(to, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        pollfd waiting = {from, POLLIN, 0};
        char buffer[100];
        ssize_t length = poll(&waiting, 1, 5000) > 0 ? read(from, buffer, sizeof buffer) : 0;
        return std::string(buffer, length > 0 ? static_cast<size_t>(length) : 0);
    }

    pid_t pid;
    int to, from;
};

TEST_F(ClientBatch, LinesAreCarriedOutAsTheyArriveAndASignalEndsTheWaitForMore) {
    open_batch batch;
    EXPECT_EQ(batch.answer_to("getSsid 1\n"), "home\n");
    EXPECT_EQ(batch.answer_to("setSsid 1 other\n"), "ok\n");
    EXPECT_EQ(batch.answer_to("getSsid 1\n"), "other\n");
    kill(batch.pid, SIGINT);
    int status = 0;
    waitpid(batch.pid, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
}

}  // namespace
