// The authenticator's restart: who is ended, what is started, and what the new one inherits. The process list and the
// authenticator are scripts, mounted where the real ones stand.
#include "lifecycle/authenticator.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <netinet/in.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "config/wireless.h"
#include "server/transport.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"
#include "tests/support/wps_platform.h"

namespace {

const char PROCESS_LIST[] = "/tmp/test_authenticator.ps";
const char STARTED[] = "/tmp/test_authenticator.started";
const char INHERITED[] = "/tmp/test_authenticator.descriptors";

const char LIST_COMMAND[] = "/bin/ps | grep hostapd";
const char NAME_COMMAND[] = "cat /tmp/conf_filename";

// A process that waits to be ended.
struct victim {
    pid_t pid;

    victim() : pid(fork()) {
        if (pid == 0) {
            execl("/bin/sleep", "sleep", "60", nullptr);
            _exit(127);
        }
    }

    ~victim() {
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }

    // Whether it ends by the signal of a plain `kill`.
    bool is_killed() {
        int status = 0;
        for (int i = 0; i < 5000; i++, usleep(1000)) {
            if (waitpid(pid, &status, WNOHANG) == pid) {
                pid = -1;
                return WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM;
            }
        }
        return false;
    }

    bool is_alive() const {
        return waitpid(pid, nullptr, WNOHANG) == 0;
    }

    // Its line in the process list.
    std::string line(const std::string &name = "hostapd") const {
        return "  " + std::to_string(pid) + " pts/0    00:00:00 " + name + "\n";
    }
};

void write_script(const std::string &path, const std::string &commands) {
    write_file(path, "#!/bin/sh\n" + commands);
    ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

struct Authenticator : testing::Test {
    void SetUp() override {
        reset_platform();
        for (const char *path : {PROCESS_LIST, STARTED, INHERITED, CONFIGURATION_NAME_FILE}) {
            std::filesystem::remove(path);
        }
        // Something else must not be covered, as it would be where ps is one of many names of a program.
        ASSERT_EQ(std::filesystem::canonical("/bin/ps").filename(), "ps");
        std::string list = std::string(FAKE_TOOLS) + "/ps";
        write_script(list, std::string("cat ") + PROCESS_LIST + "\n");
        ASSERT_EQ(mount(list.c_str(), "/bin/ps", nullptr, MS_BIND, nullptr), 0);
        ASSERT_EQ(mount("authenticator", "/sbin", "tmpfs", 0, "mode=755"), 0);
        write_script("/sbin/hostapd", std::string("echo \"$*\" >> ") + STARTED + "\nls -l /proc/$$/fd > " + INHERITED +
                                          "\necho configuration read\n");
        list_processes("");
        write_file(CONFIGURATION_NAME_FILE, "/tmp/a.conf\n");
    }

    void TearDown() override {
        EXPECT_EQ(umount2("/sbin", MNT_DETACH), 0);
        EXPECT_EQ(umount2("/bin/ps", MNT_DETACH), 0);
        std::filesystem::remove(CONFIGURATION_NAME_FILE);
    }

    static void list_processes(const std::string &lines) {
        write_file(PROCESS_LIST, lines);
    }

    // A restart with this list ends nobody, and starts the authenticator all the same.
    static void expect_nobody_ended(const std::string &lines) {
        list_processes(lines);
        EXPECT_EQ(commands_of(wps_hostapd_restart),
                  (calls{LIST_COMMAND, NAME_COMMAND, "/sbin/hostapd -B /tmp/a.conf -e /etc/wpa2/entropy"}))
            << lines.substr(0, 100);
    }

    // What the authenticator is started with when the name file has this content.
    static std::string started_with(const std::string &content) {
        std::filesystem::remove(STARTED);
        write_file(CONFIGURATION_NAME_FILE, content);
        wps_hostapd_restart();
        return read_file(STARTED);
    }
};

// --- who is ended ---

TEST_F(Authenticator, TheRunningOneIsEndedAndANewOneIsStarted) {
    victim running;
    list_processes(running.line());
    std::string pid = std::to_string(running.pid);
    EXPECT_EQ(commands_of(wps_hostapd_restart),
              (calls{LIST_COMMAND, "kill " + pid, NAME_COMMAND, "/sbin/hostapd -B /tmp/a.conf -e /etc/wpa2/entropy"}));
    EXPECT_TRUE(running.is_killed());
    EXPECT_EQ(read_file(STARTED), "-B /tmp/a.conf -e /etc/wpa2/entropy\n");
}

TEST_F(Authenticator, TheSearchItselfIsNotTakenForIt) {
    victim search, running;
    list_processes(search.line("grep hostapd") + running.line());
    wps_hostapd_restart();
    EXPECT_TRUE(running.is_killed());
    EXPECT_TRUE(search.is_alive());
}

TEST_F(Authenticator, OfTwoOnlyTheFirstIsEnded) {
    victim first, second;
    list_processes(first.line("/sbin/hostapd -B /tmp/a.conf") + second.line());
    wps_hostapd_restart();
    EXPECT_TRUE(first.is_killed());
    EXPECT_TRUE(second.is_alive());
}

TEST_F(Authenticator, TheListIsWalkedByLinesNotByBlanks) {
    victim search, running;
    std::string line = running.line();
    line.pop_back();
    list_processes("\n\n" + search.line("sh -c ps | grep hostapd") + "\n" + line);
    wps_hostapd_restart();
    EXPECT_TRUE(running.is_killed());
    EXPECT_TRUE(search.is_alive());
}

TEST_F(Authenticator, TheProcessIdEndsAtTheFirstBlank) {
    victim running;
    list_processes(std::to_string(running.pid) + " 77 hostapd\n");
    wps_hostapd_restart();
    EXPECT_TRUE(running.is_killed());
}

TEST_F(Authenticator, WithoutARunningOneOneIsStarted) {
    expect_nobody_ended("");
}

TEST_F(Authenticator, ALineOfTheSearchAloneEndsNobody) {
    victim search;
    expect_nobody_ended(search.line("grep hostapd"));
}

// The list comes from a program: what is no process id must never become one, least of all 0 or a negative number, by
// which the server would end itself.
TEST_F(Authenticator, ALineWithoutAProcessIdEndsNobody) {
    for (const char *line : {"hostapd\n", "  hostapd 17\n", "0 hostapd\n", "-1 hostapd\n", "-12 hostapd\n",
                             "4294967296 hostapd\n", "99999999999999999999999 hostapd\n"}) {
        expect_nobody_ended(line);
    }
}

TEST_F(Authenticator, BehindALineWithoutAProcessIdNoOtherIsLookedFor) {
    victim other;
    expect_nobody_ended("hostapd\n" + other.line());
    EXPECT_TRUE(other.is_alive());
}

TEST_F(Authenticator, AVeryLongListIsWalkedToItsEnd) {
    victim running;
    std::string lines;
    for (int i = 0; i < 2000; i++) {
        lines += "17 grep hostapd\n";
    }
    list_processes(lines + std::string(5000, ' ') + std::to_string(running.pid) + " hostapd" + std::string(5000, 'x'));
    wps_hostapd_restart();
    EXPECT_TRUE(running.is_killed());
}

// --- what is started ---

TEST_F(Authenticator, OneLineBreakAtTheEndOfTheNameIsRemoved) {
    EXPECT_EQ(started_with("/tmp/b.conf\n"), "-B /tmp/b.conf -e /etc/wpa2/entropy\n");
    EXPECT_EQ(started_with("/tmp/b.conf"), "-B /tmp/b.conf -e /etc/wpa2/entropy\n");
}

TEST_F(Authenticator, TheRestOfTheNameFileGoesIntoTheCommandAsItStands) {
    EXPECT_EQ(started_with(" /tmp/a.conf  /tmp/b.conf \n"), "-B /tmp/a.conf /tmp/b.conf -e /etc/wpa2/entropy\n");
    write_file(CONFIGURATION_NAME_FILE, " a  %s \n\n");
    EXPECT_TRUE(contains(debug_lines(wps_hostapd_restart), "/sbin/hostapd -B  a  %s \n -e /etc/wpa2/entropy\n"));
}

TEST_F(Authenticator, ANameOfAnyLengthIsTaken) {
    std::string name(20000, 'x');
    EXPECT_EQ(started_with(name + "\n"), "-B " + name + " -e /etc/wpa2/entropy\n");
}

TEST_F(Authenticator, WithoutANameTheRunningOneIsEndedAndNothingIsStarted) {
    for (const char *content : {"", "\n", static_cast<const char *>(nullptr)}) {
        victim running;
        list_processes(running.line());
        std::filesystem::remove(CONFIGURATION_NAME_FILE);
        if (content) {
            write_file(CONFIGURATION_NAME_FILE, content);
        }
        EXPECT_EQ(commands_of(wps_hostapd_restart),
                  (calls{LIST_COMMAND, "kill " + std::to_string(running.pid), NAME_COMMAND}));
        EXPECT_TRUE(running.is_killed());
        EXPECT_EQ(read_file(STARTED), "");
    }
}

TEST_F(Authenticator, NothingIsEndedOrStartedWhenTheShellCannotBeStarted) {
    victim running;
    list_processes(running.line());
    begin_descriptor_shortage();
    wps_hostapd_restart();
    end_descriptor_shortage();
    EXPECT_TRUE(running.is_alive());
    EXPECT_EQ(read_file(STARTED), "");
}

// --- debug lines ---

std::string command_line(const std::string &command) {
    return "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:" + command + "\n";
}

TEST_F(Authenticator, EveryStepIsInTheDebugLines) {
    victim running;
    list_processes(running.line());
    std::string pid = std::to_string(running.pid);
    // 12 characters of the name file, its line break included, and 41.
    EXPECT_EQ(
        debug_lines(wps_hostapd_restart),
        "[VLK-API] wps_hostapd_restart WPS hostapd restart\n" + command_line(LIST_COMMAND) +
            "[VLK-API] wps_hostapd_restart wps_hostapd_restart: kill hostapd pid " + pid + "\n" +
            command_line("kill " + pid) + command_line(NAME_COMMAND) +
            "[VLK-API] wps_hostapd_restart cmd_hostapd_len:53\n"
            "[VLK-API] wps_hostapd_restart restart hostapd -- /sbin/hostapd -B /tmp/a.conf -e /etc/wpa2/entropy\n" +
            command_line("/sbin/hostapd -B /tmp/a.conf -e /etc/wpa2/entropy"));
}

TEST_F(Authenticator, WithoutANameNoLengthIsInTheDebugLines) {
    write_file(CONFIGURATION_NAME_FILE, "\n");
    EXPECT_EQ(debug_lines(wps_hostapd_restart), "[VLK-API] wps_hostapd_restart WPS hostapd restart\n" +
                                                    command_line(LIST_COMMAND) + command_line(NAME_COMMAND));
}

TEST_F(Authenticator, ItSaysNothingWhileDebuggingIsOff) {
    printed_text printed = capture(wps_hostapd_restart);
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

// --- what the new one inherits ---

std::string socket_name(int socket) {
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(socket));
}

// As a daemon it would hold the service port as long as it lives, and no successor of the server could bind it.
TEST_F(Authenticator, TheNewOneInheritsNoSocketOfTheServer) {
    int service = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(service, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    SVCXPRT *transport = transport_create(service);
    ASSERT_NE(transport, nullptr);
    std::string service_name = socket_name(service);
    std::string wireless_name = socket_name(wlan_ioctl_socket());
    wps_hostapd_restart();
    svc_destroy(transport);
    std::string inherited = read_file(INHERITED);
    EXPECT_TRUE(contains(inherited, " 0 -> ")) << inherited;
    EXPECT_FALSE(contains(inherited, service_name)) << inherited;
    EXPECT_FALSE(contains(inherited, wireless_name)) << inherited;
}

}  // namespace
