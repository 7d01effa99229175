// The launcher seen from the host: exit statuses, its one-line refusals, and that nothing outlives it.
//
// These tests start gateways and write nothing but scenario files in their own working directory, which is part of
// the build tree.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <signal.h>
#include <stddef.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "tests/simulator/support.h"

namespace {

using lines = std::vector<std::string>;

const std::string LAUNCHER = getenv("VLK_LAUNCHER") != nullptr ? getenv("VLK_LAUNCHER") : "";
const std::string RPCBIND = getenv("VLK_RPCBIND") != nullptr ? getenv("VLK_RPCBIND") : "";

outcome bare(const std::vector<std::string> &command) {
    std::vector<std::string> words = {LAUNCHER, "--bare", "run"};
    words.insert(words.end(), command.begin(), command.end());
    return run(words);
}

// Runs a function in a child process and what it prints and returns like a program's.
template <typename Function>
outcome in_child(Function prepare, const std::vector<std::string> &words) {
    // The preparation changes the process for good, so it happens between two forks.
    int result[2];
    EXPECT_EQ(pipe(result), 0);
    pid_t child = fork();
    if (child == 0) {
        if (!prepare())
            _exit(99);
        outcome inner = run(words);
        std::string text = std::to_string(inner.status) + "\n" + inner.output + inner.errors;
        [[maybe_unused]] ssize_t written = write(result[1], text.data(), text.size());
        _exit(0);
    }
    close(result[1]);
    std::string text;
    char buffer[4096];
    for (ssize_t length; (length = read(result[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(length));
    close(result[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the preparation failed";
    size_t end = text.find('\n');
    return {end == std::string::npos ? -1 : atoi(text.c_str()), end == std::string::npos ? "" : text.substr(end + 1),
            ""};
}

TEST(Launcher, TheExitStatusIsThatOfTheCommandInside) {
    EXPECT_EQ(bare({"true"}).status, 0);
    EXPECT_EQ(bare({"sh", "-c", "exit 7"}).status, 7);
}

TEST(Launcher, ACommandThatASignalEndedGives128AndItsNumber) {
    EXPECT_EQ(bare({"sh", "-c", "kill -TERM $$"}).status, 128 + SIGTERM);
}

TEST(Launcher, ACommandThatDoesNotExistGives127) {
    EXPECT_EQ(bare({"/no/such/command"}).status, 127);
}

TEST(Launcher, BadUsageIsExplainedWithStatus2) {
    for (const std::vector<std::string> &words : {std::vector<std::string>{LAUNCHER},
                                                  {LAUNCHER, "fly"},
                                                  {LAUNCHER, "run"},
                                                  {LAUNCHER, "--bare"},
                                                  {LAUNCHER, "--colour", "tour"},
                                                  {LAUNCHER, "tour", "now"},
                                                  {LAUNCHER, "--scenario"}}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 2) << words.back();
        EXPECT_EQ(refused.errors.substr(0, 28), "usage: vlk_simulated_gateway") << words.back();
    }
}

TEST(Launcher, AScenarioWithAMistakeIsRefusedWithFileAndLineBeforeAnythingStarts) {
    write_file("mistake.scn", "driver up\nradio 3\n");
    outcome refused = run({LAUNCHER, "--bare", "--scenario", "mistake.scn", "run", "true"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.errors.find("mistake.scn:2: \"3\" is no radio from 0 to 1\n"), std::string::npos)
        << refused.errors;
}

TEST(Launcher, AnotherScenarioMakesAnotherGateway) {
    write_file("small.scn",
               "driver loaded\nradio 0 band=2.4 mac=00:03:7F:10:00:00\n"
               "vap 2 radio=0 bssid=02:03:7F:10:00:01 ssid=Small enable=1\n");
    outcome shown = run({LAUNCHER, "--bare", "--scenario", "small.scn", "run", "sh", "-c",
                         "cfg -v AP_SSID_2; cat /run/gateway/driver; apup; iwconfig ath1 | head -n 1"});
    EXPECT_EQ(shown.output, "Small\nloaded\nath1      IEEE 802.11ng  ESSID:\"Small\"  \n");
}

TEST(Launcher, ADriverThatIsUpFromTheBeginningHasTakenOverTheStore) {
    write_file("masks.scn",
               "driver up\nradio 0 band=2.4 mac=00:03:7F:10:00:00\n"
               "vap 1 radio=0 bssid=02:03:7F:10:00:01 ssid=Small enable=1\n"
               "set TX_CHAINMASK_2 3\n");
    outcome shown = run({LAUNCHER, "--bare", "--scenario", "masks.scn", "run", "iwpriv", "wifi0", "get_txchainmask"});
    EXPECT_EQ(shown.output, "wifi0     get_txchainmask:3  \n");
}

TEST(Launcher, TheBoardAndBandSteeringAreAsTheScenarioHasThemFromTheBeginning) {
    outcome shown =
        bare({"sh", "-c",
              "cat /run/gateway/gpio; grep AP_SSID= /run/gateway/defaults; wifitool ath0 bandsteering_status; "
              "wc -c </nvram/5gcapabletable; head -c 1 /nvram/5gcapabletable | od -An -tu1"});
    EXPECT_EQ(shown.output,
              "10=1\n100=0\nAP_SSID=Gateway\n"
              "ath0: band steering is disabled\n5 GHz capable stations: 3\n2.4 GHz temporary black list: 2\n"
              "12288\n   3\n");
}

TEST(Launcher, ADriverThatIsNotUpHasNoTables) {
    write_file("tables.scn",
               "driver loaded\nradio 0 band=2.4 mac=00:03:7F:10:00:00\n"
               "vap 1 radio=0 bssid=02:03:7F:10:00:01 enable=1\ncapable5g 1 mac=02:03:7F:10:00:01\n");
    outcome shown = run({LAUNCHER, "--bare", "--scenario", "tables.scn", "run", "sh", "-c",
                         "cat /run/gateway/driver; ls /nvram/5gcapabletable /run/gateway/parameters"});
    EXPECT_EQ(shown.output, "loaded\n");
}

// The authenticator and the WPS files at the start of a gateway.

constexpr const char SHOW_AUTHENTICATOR[] =
    "pgrep -c -x hostapd; grep -H . /tmp/conf_filename 2>/dev/null || ls /tmp/conf_filename 2>/dev/null; hostapd_cli "
    "-iath0 ping 2>/dev/null; "
    "ls /nvram/etc/wpa2 | wc -l";

TEST(Launcher, AGatewayWhoseDriverIsUpHasItsAuthenticatorFromTheBeginning) {
    ASSERT_NE(RPCBIND, "");
    outcome shown = run({LAUNCHER, "--rpcbind", RPCBIND, "run", "sh", "-c", SHOW_AUTHENTICATOR});
    EXPECT_EQ(shown.output,
              "1\n/tmp/conf_filename:/nvram/etc/wpa2/WSC_ath0.conf /nvram/etc/wpa2/WSC_ath8.conf\nPONG\n16\n");
    EXPECT_EQ(shown.errors, "");
}

TEST(Launcher, ABareGatewayHasTheFilesButNoAuthenticator) {
    EXPECT_EQ(bare({"sh", "-c", SHOW_AUTHENTICATOR}).output, "0\n16\n");
}

TEST(Launcher, AGatewayWhoseDriverIsNotUpHasNoAuthenticator) {
    ASSERT_NE(RPCBIND, "");
    write_file("loaded.scn",
               "driver loaded\nradio 0 band=2.4 mac=00:03:7F:10:00:00\n"
               "vap 1 radio=0 bssid=02:03:7F:10:00:01 ssid=Small enable=1\n");
    outcome shown =
        run({LAUNCHER, "--rpcbind", RPCBIND, "--scenario", "loaded.scn", "run", "sh", "-c", SHOW_AUTHENTICATOR});
    EXPECT_EQ(shown.output, "0\n1\n");
}

TEST(Launcher, AnAuthenticatorThatDoesNotStartIsReportedAndTheGatewayRunsWithoutIt) {
    ASSERT_NE(RPCBIND, "");
    write_file("broken.scn",
               "radio 0 band=2.4 mac=00:03:7F:10:00:00\n"
               "vap 1 radio=0 bssid=02:03:7F:10:00:01 ssid=Small enable=1\n"
               "wps 1 interface=ath7\n");
    outcome shown = run({LAUNCHER, "--rpcbind", RPCBIND, "--scenario", "broken.scn", "run", "tail", "-n", "1",
                         "/run/gateway/hostapd.log"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "vlk_simulated_gateway: /sbin/hostapd does not run; /run/gateway/hostapd.log says why\n");
    EXPECT_EQ(shown.output, "Failed to set up interface with /nvram/etc/wpa2/WSC_ath0.conf\n");
}

// The soft-block daemon at the start of a gateway.

constexpr const char SHOW_SOFT_BLOCK[] =
    "pgrep -c -x softblock; ls /var/run/ssidsteering /run/gateway/softblock 2>/dev/null; pgrep -c radstat";

std::string soft_block_with(const std::string &driver, bool bare_gateway) {
    write_file("driver.scn", "driver " + driver + "\nradio 0 band=2.4 mac=00:03:7F:10:00:00\n");
    lines words = {LAUNCHER, "--rpcbind", RPCBIND, "--scenario", "driver.scn"};
    if (bare_gateway)
        words.push_back("--bare");
    words.insert(words.end(), {"run", "sh", "-c", SHOW_SOFT_BLOCK});
    outcome shown = run(words);
    EXPECT_EQ(shown.errors, "");
    return shown.output;
}

TEST(Launcher, AGatewayWhoseDriverIsLoadedHasTheSoftBlockDaemonFromTheBeginningAndNoCollector) {
    ASSERT_NE(RPCBIND, "");
    EXPECT_EQ(soft_block_with("loaded", false), "1\n/run/gateway/softblock\n/var/run/ssidsteering\n0\n");
    EXPECT_EQ(soft_block_with("up", false), "1\n/run/gateway/softblock\n/var/run/ssidsteering\n0\n");
}

TEST(Launcher, AGatewayWhoseDriverIsNotLoadedAndABareOneHaveNone) {
    ASSERT_NE(RPCBIND, "");
    EXPECT_EQ(soft_block_with("unloaded", false), "0\n0\n");
    EXPECT_EQ(soft_block_with("up", true), "0\n0\n");
}

// A server that looks for the authenticator as the real one does, and ends; its words end up in the launcher's.
lines looking_server() {
    write_file("server-that-looks", "#!/bin/sh\n/bin/ps | grep hostapd | sed 's/.* //'\n");
    EXPECT_EQ(chmod("server-that-looks", 0755), 0);
    return {LAUNCHER, "--rpcbind", RPCBIND, "--server", "server-that-looks", "--client", "/bin/true", "run", "true"};
}

TEST(Launcher, AServerStartedWithoutATerminalSeesTheAuthenticatorInAPlainListOfProcesses) {
    ASSERT_NE(RPCBIND, "");
    outcome looked = in_child([] { return setsid() > 0; }, looking_server());
    EXPECT_EQ(looked.output, "vlk_simulated_gateway: the server: ended before it answered\nhostapd\n");
}

TEST(Launcher, AServerStartedOnATerminalSeesTheAuthenticatorInAPlainListOfProcesses) {
    ASSERT_NE(RPCBIND, "");
    std::string shown = run_on_terminal(looking_server());
    EXPECT_EQ(shown, "vlk_simulated_gateway: the server: ended before it answered\r\nhostapd\r\n");
}

TEST(Launcher, TheWorkingDirectoryIsTheCallersWhenItIsVisible) {
    char here[4096];
    ASSERT_NE(getcwd(here, sizeof here), nullptr);
    EXPECT_EQ(bare({"pwd"}).output, std::string(here) + "\n");
}

TEST(Launcher, ManyGatewaysRunAtTheSameTimeWithoutKnowingOfEachOther) {
    outcome shown = run_shell("for i in 1 2 3 4; do " + LAUNCHER +
                              " --bare run sh -c \"cfg -a AP_SSID=$i; sleep 0.2; cfg -v AP_SSID\" & done; wait");
    std::string digits = shown.output;
    std::sort(digits.begin(), digits.end());
    EXPECT_EQ(digits, "\n\n\n\n1234");
}

// Starts a gateway whose command holds the write end of a pipe open; the pipe ends when everything inside has ended.
struct running {
    pid_t launcher;
    int pipe_end;
};

running start_gateway() {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    running started = {fork(), ends[0]};
    if (started.launcher == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(LAUNCHER.c_str(), LAUNCHER.c_str(), "--bare", "run", "sh", "-c", "sleep 1000 & echo up; sleep 1000",
              nullptr);
        _exit(127);
    }
    close(ends[1]);
    char text[3] = "";
    EXPECT_EQ(read(ends[0], text, 3), 3);
    EXPECT_EQ(std::string(text, 3), "up\n");
    return started;
}

int end_of(const running &started) {
    char byte;
    EXPECT_EQ(read(started.pipe_end, &byte, 1), 0) << "something inside lives on";
    close(started.pipe_end);
    int status = 0;
    waitpid(started.launcher, &status, 0);
    return status;
}

TEST(Launcher, ATerminatedLauncherTakesEverythingWithIt) {
    running started = start_gateway();
    kill(started.launcher, SIGTERM);
    int status = end_of(started);
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGTERM);
}

TEST(Launcher, AKilledLauncherTakesEverythingWithIt) {
    running started = start_gateway();
    kill(started.launcher, SIGKILL);
    int status = end_of(started);
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST(Launcher, DaemonsThatTheCommandLeftBehindEndWithIt) {
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(bare({"sh", "-c", "hostapd -B /nvram/etc/wpa2/WSC_ath0.conf; sleep 1000 & exit 3"}).status, 3);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

// The same process as an ordinary user: in a user namespace where it is not root.
bool become_ordinary_user() {
    std::string users = "1000 " + std::to_string(geteuid()) + " 1\n";
    std::string groups = "1000 " + std::to_string(getegid()) + " 1\n";
    if (unshare(CLONE_NEWUSER) != 0)
        return false;
    write_file("/proc/self/setgroups", "deny");
    write_file("/proc/self/uid_map", users);
    write_file("/proc/self/gid_map", groups);
    return geteuid() == 1000;
}

TEST(Launcher, AnOrdinaryUserIsRootInsideAndFindsTheSameGateway) {
    outcome shown = in_child(become_ordinary_user, {LAUNCHER, "--bare", "run", "sh", "-c",
                                                    "id -u; cfg -a AP_SSID=x && cfg -v AP_SSID; iwconfig ath0 | wc -l; "
                                                    "touch /usr/x /.host/x 2>/dev/null || echo read-only"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output, "0\nx\n10\nread-only\n");
}

TEST(Launcher, AnOrdinaryUsersPortmapperAnswers) {
    ASSERT_NE(RPCBIND, "");
    // The server never comes, so this ends with the server's message; that it is the server's shows that the
    // portmapper answered.
    outcome shown = in_child(become_ordinary_user, {LAUNCHER, "--rpcbind", RPCBIND, "--server", "/bin/true", "--client",
                                                    "/bin/true", "run", "true"});
    EXPECT_EQ(shown.status, 2);
    EXPECT_EQ(shown.output, "vlk_simulated_gateway: the server: ended before it answered\n");
}

bool refuse_call(unsigned number, int error) {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program = {sizeof steps / sizeof steps[0], steps};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// What the launcher says when the kernel refuses a call and there is no proot: one line, status 2.
std::string refusal_of(unsigned number, int error) {
    auto prepare = [=] { return setenv("PATH", "/no/programs", 1) == 0 && refuse_call(number, error); };
    outcome refused = in_child(prepare, {LAUNCHER, "--bare", "run", "/bin/true"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(std::count(refused.output.begin(), refused.output.end(), '\n'), 1) << refused.output;
    return refused.output;
}

TEST(Launcher, RefusedNamespacesAreOneLineThatSaysWhatToSwitchOn) {
    std::string line = refusal_of(SYS_unshare, EPERM);
    EXPECT_NE(line.find("a user namespace refused (Operation not permitted)"), std::string::npos) << line;
    EXPECT_NE(line.find("kernel.unprivileged_userns_clone"), std::string::npos) << line;
    EXPECT_NE(line.find("CAP_SYS_ADMIN"), std::string::npos) << line;
    EXPECT_NE(line.find("install proot"), std::string::npos) << line;
}

TEST(Launcher, WhatCarriesTheRunStandsInAFile) {
    std::string way = bare({"cat", "/run/gateway/carrier"}).output;
    EXPECT_TRUE(way == "namespaces\n" || way.starts_with("proot 127.")) << way;
}

TEST(Launcher, ExhaustedNamespacesAreOneLineThatNamesTheLimits) {
    std::string line = refusal_of(SYS_unshare, ENOSPC);
    EXPECT_NE(line.find("user.max_"), std::string::npos) << line;
}

TEST(Launcher, RefusedMountsAreOneLineThatSaysWhatToSwitchOn) {
    std::string line = refusal_of(SYS_mount, EPERM);
    EXPECT_NE(line.find("private mounts refused (Operation not permitted)"), std::string::npos) << line;
    EXPECT_NE(line.find("CAP_SYS_ADMIN"), std::string::npos) << line;
    EXPECT_NE(refusal_of(SYS_pivot_root, EINVAL).find("pivot_root refused"), std::string::npos);
}

TEST(Launcher, AKernelThatCannotMakeTreesReadOnlyIsGoodEnough) {
    outcome shown =
        in_child([] { return refuse_call(SYS_mount_setattr, ENOSYS); }, {LAUNCHER, "--bare", "run", "echo", "here"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output, "here\n");
}

TEST(Launcher, APortmapperThatEndsIsReportedWithStatus2) {
    outcome refused =
        run({LAUNCHER, "--rpcbind", "/bin/true", "--server", "/bin/true", "--client", "/bin/true", "run", "true"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors, "vlk_simulated_gateway: the portmapper: ended before it answered\n");
}

TEST(Launcher, AServerThatEndsIsReportedWithTheEndOfItsLog) {
    ASSERT_NE(RPCBIND, "");
    write_file("server-that-ends", "#!/bin/sh\necho the server cannot go on\n");
    ASSERT_EQ(chmod("server-that-ends", 0755), 0);
    outcome refused =
        run({LAUNCHER, "--rpcbind", RPCBIND, "--server", "server-that-ends", "--client", "/bin/true", "run", "true"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors,
              "vlk_simulated_gateway: the server: ended before it answered\n"
              "the server cannot go on\n");
}

TEST(Launcher, AMissingProgramIsReportedWithWhatToDo) {
    outcome refused = run({LAUNCHER, "--server", "/no/server", "tour"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors,
              "vlk_simulated_gateway: there is no server at /no/server; build it, or name one with --server\n");
}

TEST(Launcher, ToolsRefuseToRunOutsideAGateway) {
    pid_t child = fork();
    if (child == 0) {
        freopen("/dev/null", "w", stderr);
        execl(GATEWAY_TOOLS, "cfg", "-s", nullptr);
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
