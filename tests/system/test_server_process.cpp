// The server's process: its checks, its lines, its exit statuses and its replacement of children. Runs in a gateway
// that has no portmapper and no server yet; each test starts what it needs and ends it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <rpc/pmap_clnt.h>
#include <signal.h>
#include <stddef.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

#include "server/wire.h"
#include "tests/system/gateway.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char LOG[] = "/tmp/server_process.log";
constexpr const char INTERNAL_ADDRESS_OFF[] = "ip address del 192.168.254.254/32 dev lo";
constexpr const char INTERNAL_ADDRESS_ON[] = "ip address replace 192.168.254.254/32 dev lo";

bool eventually(const std::function<bool()> &condition, milliseconds limit = milliseconds(10000)) {
    auto deadline = steady_clock::now() + limit;
    while (!condition()) {
        if (steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
}

// From here on the kernel refuses these calls to this process and whatever it becomes.
void refuse_calls(const std::vector<unsigned> &numbers) {
    std::vector<sock_filter> steps = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (unsigned number : numbers) {
        steps.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1));
        steps.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EACCES));
    }
    steps.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    sock_fprog program = {static_cast<unsigned short>(steps.size()), steps.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

// Starts a program with its output in LOG and a process group of its own.
pid_t start(const std::vector<std::string> &words, const std::vector<unsigned> &refused = {}) {
    pid_t pid = fork();
    if (pid != 0)
        return pid;
    setpgid(0, 0);
    if (!refused.empty())
        refuse_calls(refused);
    int log = open(LOG, O_WRONLY | O_CREAT | O_APPEND, 0644);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    std::vector<char *> arguments;
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    execv(arguments[0], arguments.data());
    _exit(127);
}

// The exit status of a program that should end by itself; -1, and an end by force, when it does not.
int end_status(pid_t pid) {
    int status = 0;
    if (!eventually([&] { return waitpid(pid, &status, WNOHANG) == pid; })) {
        kill(-pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string server_program() {
    return getenv("VLK_SERVER_PROGRAM");
}
std::string portmap_program() {
    return getenv("VLK_PORTMAP_PROGRAM");
}

size_t count_lines(const std::string &beginning) {
    std::vector<std::string> lines = lines_since(LOG, 0);
    return std::count_if(lines.begin(), lines.end(),
                         [&](const std::string &line) { return line.starts_with(beginning); });
}

// The processes of the child line "VLK WLAN RPC Server pid=%d forked child pid=%d" that was printed last.
struct server_pids {
    int supervisor;
    int child;
};

server_pids last_pids() {
    server_pids pids = {0, 0};
    for (const std::string &line : lines_since(LOG, 0))
        sscanf(line.c_str(), "VLK WLAN RPC Server pid=%d forked child pid=%d", &pids.supervisor, &pids.child);
    return pids;
}

bool answers() {
    return call(0, "").outcome == call_outcome::SUCCESS;
}

bool serves() {
    return count_lines("VLK WLAN RPC server bind successfully") > 0 && answers();
}

class ServerProcess : public testing::Test {
protected:
    void SetUp() override {
        unlink(LOG);
        portmap = start({portmap_program(), "-f"});
        ASSERT_TRUE(eventually([] { return access("/run/rpcbind.sock", F_OK) == 0; }));
    }

    void TearDown() override {
        if (server > 0) {
            kill(-server, SIGKILL);
            waitpid(server, nullptr, 0);
        }
        stop_portmap();
        run_command(INTERNAL_ADDRESS_ON);
        unlink("/tmp/wlandbg");
    }

    void stop_portmap() {
        if (portmap > 0)
            kill(portmap, SIGKILL);
        if (portmap > 0)
            waitpid(portmap, nullptr, 0);
        portmap = 0;
        unlink("/run/rpcbind.sock");
    }

    void start_server(const std::vector<unsigned> &refused = {}) {
        server = start({server_program()}, refused);
    }

    pid_t portmap = 0;
    pid_t server = 0;
};

TEST_F(ServerProcess, WithoutPortmapperSaysSoAndEndsWithStatus0BeforeForking) {
    stop_portmap();
    start_server();
    EXPECT_EQ(end_status(server), 0);
    server = 0;
    EXPECT_EQ(read_file(LOG), server_program() + " - Network and/or portmapper has not been setup\n");
}

TEST_F(ServerProcess, WithTheInstanceLockHeldSaysSoAndEndsWithStatus0) {
    int lock_file = open("/tmp/.wlanrpc_lock", O_RDWR | O_CREAT, 0644);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    ASSERT_EQ(fcntl(lock_file, F_SETLK, &lock), 0);
    start_server();
    EXPECT_EQ(end_status(server), 0);
    server = 0;
    EXPECT_EQ(read_file(LOG), "Process already running\n");
    close(lock_file);
}

TEST_F(ServerProcess, WithALockFileThatCannotBeOpenedSaysThatItRunsAlready) {
    unlink("/tmp/.wlanrpc_lock");
    ASSERT_EQ(run_command("mkdir /tmp/.wlanrpc_lock").status, 0);
    start_server();
    EXPECT_EQ(end_status(server), 0);
    server = 0;
    EXPECT_EQ(read_file(LOG), "Process already running\n");
    run_command("rmdir /tmp/.wlanrpc_lock");
}

TEST_F(ServerProcess, ReleasesTheInstanceLockAtOnce) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    int lock_file = open("/tmp/.wlanrpc_lock", O_RDWR | O_CREAT, 0644);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    EXPECT_EQ(fcntl(lock_file, F_SETLK, &lock), 0);
    close(lock_file);
}

TEST_F(ServerProcess, PrintsItsStartInOrderAndEachLineOnce) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    server_pids pids = last_pids();
    EXPECT_EQ(pids.supervisor, server);
    EXPECT_NE(pids.child, server);
    EXPECT_EQ(read_file(LOG), "VLK WLAN RPC Server pid=" + std::to_string(pids.supervisor) +
                                  " forked child pid=" + std::to_string(pids.child) +
                                  "\nVLK WLAN RPC server bind successfully to 192.168.254.254:60001\n");
}

TEST_F(ServerProcess, RegistersItsProgramWithThePortmapper) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    command_output list = run_command("rpcinfo -p 192.168.254.254");
    EXPECT_EQ(list.status, 0) << list.errors;
    EXPECT_NE(list.text.find("538121015    1   udp  60001"), std::string::npos) << list.text;
    command_output null_call = run_command("rpcinfo -T udp 192.168.254.254 538121015 1");
    EXPECT_EQ(null_call.status, 0) << null_call.errors;
    EXPECT_EQ(null_call.text, "program 538121015 version 1 ready and waiting\n");
}

TEST_F(ServerProcess, EarlierRegistrationOfTheProgramIsReplaced) {
    ASSERT_TRUE(eventually([] { return pmap_set(WLAN_CONFIG_RPC_PROG, 1, IPPROTO_UDP, 1234) == TRUE; }));
    start_server();
    ASSERT_TRUE(eventually(serves));
    command_output list = run_command("rpcinfo -p 192.168.254.254");
    EXPECT_NE(list.text.find("538121015    1   udp  60001"), std::string::npos) << list.text;
    EXPECT_EQ(list.text.find("1234"), std::string::npos) << list.text;
}

TEST_F(ServerProcess, KilledChildIsReplacedAtOnceAndInSilence) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    int first = last_pids().child;
    auto killed = steady_clock::now();
    ASSERT_EQ(kill(first, SIGKILL), 0);
    ASSERT_TRUE(eventually([&] { return last_pids().child != first && answers(); }));
    EXPECT_LT(steady_clock::now() - killed, milliseconds(1500));
    EXPECT_EQ(last_pids().supervisor, server);
    EXPECT_EQ(count_lines("The child exited"), 0u);
}

TEST_F(ServerProcess, SecondBindFailureEndsTheChildCleanlyAndPausesTwoSeconds) {
    ASSERT_EQ(run_command(INTERNAL_ADDRESS_OFF).status, 0);
    auto started = steady_clock::now();
    start_server();
    ASSERT_TRUE(eventually([] { return count_lines("VLK WLAN RPC Server pid=") == 2; }));
    EXPECT_GE(steady_clock::now() - started, milliseconds(2000));
    EXPECT_LT(steady_clock::now() - started, milliseconds(4000));
    EXPECT_EQ(count_lines("bind: Cannot assign requested address"), count_lines("The child exited with status = 0"));
    EXPECT_EQ(count_lines("socket bind failed restarting driver"), 0u) << "there is no authenticator";
    run_command(INTERNAL_ADDRESS_ON);
    EXPECT_TRUE(eventually(serves));
}

TEST_F(ServerProcess, FailedBindBesideARunningAuthenticatorRestartsTheDriverOnceAndBindsAgain) {
    ASSERT_EQ(run_command("hostapd -B /nvram/etc/wpa2/WSC_ath0.conf").status, 0);
    ASSERT_EQ(run_command(INTERNAL_ADDRESS_OFF).status, 0);
    size_t mark = mark_of(JOURNAL_FILE);
    start_server();
    ASSERT_TRUE(eventually(serves));
    EXPECT_EQ(count_lines("socket bind failed restarting driver"), 1u);
    EXPECT_EQ(count_lines("bind:"), 0u);
    std::vector<std::string> lines = lines_since(JOURNAL_FILE, mark);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "run apup"), 1);
    run_command("killall hostapd");
}

TEST_F(ServerProcess, FailedRegistrationEndsTheChildCleanly) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    int first = last_pids().child;
    stop_portmap();
    kill(first, SIGKILL);
    ASSERT_TRUE(eventually([] { return count_lines("The child exited with status = 0") > 0; }, milliseconds(60000)));
    EXPECT_GT(count_lines("unable to register (WLAN_CONFIG_RPC_PROG, WLAN_CONFIG_API_VERSION, udp)."), 0u);
}

// Without processes the checks cannot be made either: they pass, and the first fork fails.
TEST_F(ServerProcess, WithoutAChildToWaitForSaysSoAndEndsWithStatus1) {
    start_server({SYS_clone, SYS_clone3});
    EXPECT_EQ(end_status(server), 1);
    server = 0;
    // The first line: a leak checker that was built in complains behind it that it has no process either.
    EXPECT_EQ(lines_since(LOG, 0).at(0), "wait child error: No child processes");
}

TEST_F(ServerProcess, FailedSocketEndsTheChildWithStatus1AndItIsReplacedAtOnce) {
    auto started = steady_clock::now();
    start_server({SYS_socket});
    ASSERT_TRUE(eventually([] { return count_lines("The child exited with status = 1") >= 10; }));
    EXPECT_LT(steady_clock::now() - started, milliseconds(2000)) << "there was a pause between the children";
    EXPECT_GE(count_lines("socket: Permission denied"), 10u);
}

TEST_F(ServerProcess, TransportThatCannotBeMadeEndsTheChildWithStatus1) {
    start_server({SYS_getsockname});
    ASSERT_TRUE(eventually([] { return count_lines("The child exited with status = 1") > 0; }));
    EXPECT_GT(count_lines("cannot create udp service."), 0u);
}

TEST_F(ServerProcess, StaysWithItsDescriptorsClosedToTheProgramsItStarts) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    std::string child = std::to_string(last_pids().child);
    // Flags of every descriptor beyond the standard three: 02000000 is close-on-exec.
    command_output open_files =
        run_command("cd /proc/" + child + "/fdinfo && for f in *; do [ $f -gt 2 ] && grep -H flags: $f; done; true");
    EXPECT_NE(open_files.text, "");
    for (size_t at = 0, end; (end = open_files.text.find('\n', at)) != std::string::npos; at = end + 1) {
        std::string line = open_files.text.substr(at, end - at);
        unsigned long flags = std::stoul(line.substr(line.rfind('\t') + 1), nullptr, 8);
        EXPECT_TRUE(flags & O_CLOEXEC) << line;
    }
}

TEST_F(ServerProcess, AsksForAReceiveBufferOfSeveralMegabytes) {
    start_server();
    ASSERT_TRUE(eventually(serves));
    command_output sockets = run_command("ss -uamn 'sport = :60001'");
    EXPECT_NE(sockets.text.find("rb8388608"), std::string::npos) << sockets.text;
}

}  // namespace
