// The authenticator as a process: how it starts, what it refuses, what it leaves behind, and the driver's scripts that
// end and start it.
#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>

#include <algorithm>
#include <string>

#include "tests/simulator/daemons.h"

namespace {

const std::string FILE_0 = "/nvram/etc/wpa2/WSC_ath0.conf";
const std::string FILE_8 = "/nvram/etc/wpa2/WSC_ath8.conf";
const std::string START = "/sbin/hostapd -B " + FILE_0 + " " + FILE_8 + " -e /etc/wpa2/entropy";

// The pids of all authenticators that run, a line each.
std::string pids() {
    return pids_of("hostapd");
}

std::string pid_file() {
    return read_file("/run/hostapd.pid");
}

std::string ping(const std::string &interface) {
    return run({"hostapd_cli", "-i" + interface, "ping"}).output;
}

// Tests of the process end the one that apup started and start their own.
class Hostapd : public Platform {
protected:
    void SetUp() override {
        Platform::SetUp();
        end_authenticators();
        mark = journal_mark();
    }

    void TearDown() override {
        end_authenticators();
        Platform::TearDown();
    }
};

// Starting

TEST_F(Hostapd, StaysInTheBackgroundUnderItsNameUntilItIsKilled) {
    // The shell's output is a pipe: were it inherited, reading it would not end before the daemon does.
    EXPECT_EQ(run_shell(START).status, 0);
    EXPECT_EQ(run_shell("pgrep -c -x hostapd").output, "1\n");
    EXPECT_EQ(journal().front(), "run hostapd -B " + FILE_0 + " " + FILE_8 + " -e /etc/wpa2/entropy");
    run_shell("kill " + pids());
    EXPECT_TRUE(eventually([] { return pids().empty(); }));
}

TEST_F(Hostapd, SaysWhichFilesItReadAndWhichInterfacesItUses) {
    EXPECT_EQ(run_shell(START).output,
              "Configuration file: /nvram/etc/wpa2/WSC_ath0.conf\n"
              "Using interface ath0 with hwaddr 00:03:7f:10:00:01 and ssid \"Home network\"\n"
              "Configuration file: /nvram/etc/wpa2/WSC_ath8.conf\n"
              "Using interface ath8 with hwaddr 00:03:7f:10:00:05 and ssid \"Home network 5G\"\n");
}

TEST_F(Hostapd, AnswersOnTheSocketsOfItsInterfacesAsSoonAsItsStartReturns) {
    for (int i = 0; i < 5; i++) {
        ASSERT_EQ(run_shell(START).status, 0);
        EXPECT_EQ(ping("ath0"), "PONG\n");
        EXPECT_EQ(ping("ath8"), "PONG\n");
        EXPECT_TRUE(exists("/var/run/hostapd/ath0"));
        EXPECT_TRUE(exists("/run/hostapd/ath8"));
        end_authenticators();
    }
}

TEST_F(Hostapd, ServesOnlyTheInterfacesOfItsFiles) {
    ASSERT_EQ(run({"hostapd", "-B", FILE_8}).status, 0);
    EXPECT_EQ(ping("ath8"), "PONG\n");
    EXPECT_FALSE(exists("/run/hostapd/ath0"));
}

TEST_F(Hostapd, WritesItsPidWhereverItRuns) {
    ASSERT_EQ(run_shell(START).status, 0);
    EXPECT_EQ(pid_file(), pids());
    end_authenticators();
    pid_t child = fork();
    if (child == 0) {
        freopen("/dev/null", "w", stdout);
        execlp("hostapd", "hostapd", FILE_0.c_str(), nullptr);
        _exit(127);
    }
    EXPECT_TRUE(eventually([&] { return pid_file() == std::to_string(child) + "\n"; }));
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
}

TEST_F(Hostapd, WithoutBackgroundOptionStaysInTheForegroundUntilItIsInterrupted) {
    EXPECT_EQ(run_shell("timeout -s INT 0.3 hostapd " + FILE_0).status, 124);
    EXPECT_FALSE(exists("/run/hostapd/ath0"));
    EXPECT_FALSE(exists("/run/hostapd.pid"));
}

TEST_F(Hostapd, KeepsNoDescriptorOfItsStarter) {
    // A socket and a pipe without close-on-exec, besides the pipes that run_shell makes of the standard descriptors.
    int pair[2], pipe_ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    ASSERT_EQ(pipe(pipe_ends), 0);
    ASSERT_EQ(run_shell(START).status, 0);
    close(pair[1]);
    close(pipe_ends[1]);
    // Both are at their end at once, as nobody else has the other side.
    char byte;
    EXPECT_EQ(recv(pair[0], &byte, 1, MSG_DONTWAIT), 0);
    EXPECT_EQ(read(pipe_ends[0], &byte, 1), 0);
    close(pair[0]);
    close(pipe_ends[0]);
    std::string pid = pids().substr(0, pids().find('\n'));
    outcome held = run_shell("ls -l /proc/" + pid + "/fd | sed -n 's/.* -> //p' | sort | sed 's/:.*//' | uniq -c");
    // Standard input, output and error from nowhere, a socket for each interface, and what tells it of signals.
    EXPECT_EQ(held.output, "      3 /dev/null\n      1 anon_inode\n      2 socket\n");
}

TEST_F(Hostapd, HasASessionAndTheRootDirectoryForItself) {
    ASSERT_EQ(run_shell("cd /tmp && " + START).status, 0);
    std::string pid = pids().substr(0, pids().find('\n'));
    EXPECT_EQ(run_shell("ps -o sid=,tty= -p " + pid + " | tr -s ' '").output, " " + pid + " ?\n");
    EXPECT_EQ(run_shell("readlink /proc/" + pid + "/cwd").output, "/\n");
}

TEST_F(Hostapd, CanBeEndedWhateverItsStarterDidWithSignals) {
    ASSERT_EQ(run_shell("trap '' TERM INT; " + START).status, 0);
    end_authenticators();
}

TEST_F(Hostapd, IsListedByAPlainPsOnATerminalAndOnNone) {
    ASSERT_EQ(run_shell(START).status, 0);
    EXPECT_NE(run_shell("/bin/ps | grep hostapd").output.find(" hostapd\n"), std::string::npos);
    std::string shown = run_on_terminal({"/bin/sh", "-c", "/bin/ps | grep hostapd"});
    EXPECT_NE(shown.find(" hostapd\r\n"), std::string::npos) << shown;
    // Its first word is the pid.
    EXPECT_EQ(atoi(shown.c_str()), atoi(pids().c_str()));
}

// Ending

TEST_F(Hostapd, TakesItsSocketsAndItsPidAwayWhenItIsTerminated) {
    ASSERT_EQ(run_shell(START).status, 0);
    ASSERT_EQ(run_shell("kill $(cat /run/hostapd.pid)").status, 0);
    EXPECT_TRUE(eventually([] { return pids().empty(); }));
    EXPECT_FALSE(exists("/run/hostapd/ath0"));
    EXPECT_FALSE(exists("/run/hostapd/ath8"));
    EXPECT_FALSE(exists("/run/hostapd.pid"));
}

TEST_F(Hostapd, LeavesThePidOfALaterOneAlone) {
    ASSERT_EQ(run({"hostapd", "-B", FILE_0}).status, 0);
    ASSERT_EQ(run({"hostapd", "-B", FILE_8}).status, 0);
    std::string later = pid_file();
    std::string both = pids();
    ASSERT_EQ(run_shell("kill " + both.substr(0, both.find('\n'))).status, 0);
    EXPECT_TRUE(eventually([&] { return pids() == later; }));
    EXPECT_EQ(pid_file(), later);
    EXPECT_EQ(ping("ath8"), "PONG\n");
}

TEST_F(Hostapd, IsNotEndedByALostTerminal) {
    ASSERT_EQ(run_shell(START).status, 0);
    run_shell("killall -HUP hostapd");
    EXPECT_EQ(ping("ath0"), "PONG\n");
}

TEST_F(Hostapd, StartsInThePlaceOfOneThatWasToldToEndWithoutWaitingForIt) {
    ASSERT_EQ(run_shell(START).status, 0);
    for (int i = 0; i < 10; i++) {
        ASSERT_EQ(run_shell("kill $(pgrep -x hostapd); " + START).status, 0);
        EXPECT_EQ(ping("ath0"), "PONG\n");
        EXPECT_EQ(ping("ath8"), "PONG\n");
        EXPECT_TRUE(eventually([] { return pids() == pid_file(); }));
    }
}

TEST_F(Hostapd, WaitsAMomentForOneThatIsAboutToEnd) {
    ASSERT_EQ(run_shell(START).status, 0);
    // Stopped, it gets to the end that it was told only when it goes on.
    std::string pid = pids().substr(0, pids().find('\n'));
    run_shell("kill -STOP " + pid + "; kill " + pid);
    EXPECT_EQ(run_shell("(sleep 0.2; kill -CONT " + pid + ") >/dev/null 2>&1 & " + START).status, 0);
    EXPECT_EQ(ping("ath0") + ping("ath8"), "PONG\nPONG\n");
    EXPECT_TRUE(eventually([] { return pids() == pid_file(); }));
}

TEST_F(Hostapd, StartsInThePlaceOfOneThatWasKilledAndLeftItsSockets) {
    ASSERT_EQ(run_shell(START).status, 0);
    end_authenticators(SIGKILL);
    ASSERT_TRUE(exists("/run/hostapd/ath0"));
    EXPECT_EQ(run_shell(START).status, 0);
    EXPECT_EQ(ping("ath0"), "PONG\n");
    EXPECT_EQ(pid_file(), pids());
}

TEST_F(Hostapd, DoesNotTakeTheInterfaceOfOneThatRuns) {
    ASSERT_EQ(run({"hostapd", "-B", FILE_0}).status, 0);
    std::string first = pids();
    outcome second = run({"hostapd", "-B", FILE_8, FILE_0});
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.output.find("ctrl_iface exists and seems to be in use - cannot override it\n"
                                 "Failed to set up interface with " +
                                 FILE_0 + "\n"),
              std::string::npos)
        << second.output;
    EXPECT_EQ(pids(), first);
    EXPECT_EQ(ping("ath0"), "PONG\n");
    EXPECT_FALSE(exists("/run/hostapd/ath8")) << "what it had opened already";
}

TEST_F(Hostapd, DoesNotTryForEverToTakeAwayWhatIsNoSocket) {
    ASSERT_EQ(mkdir("/run/hostapd/ath0", 0755), 0);
    EXPECT_EQ(run({"timeout", "20", "hostapd", "-B", FILE_0}).status, 1);
    rmdir("/run/hostapd/ath0");
}

// Configuration that is no good

// What it says about files that it cannot use; nothing may have been started.
std::string complaint(const lines &files) {
    lines words = {"hostapd", "-B"};
    words.insert(words.end(), files.begin(), files.end());
    outcome refused = run(words);
    EXPECT_EQ(refused.status, 1) << files.back();
    EXPECT_EQ(pids(), "") << files.back();
    EXPECT_FALSE(exists("/run/hostapd/ath0")) << files.back();
    EXPECT_FALSE(exists("/run/hostapd.pid")) << files.back();
    return refused.output;
}

TEST_F(Hostapd, AMissingFileIsRefusedAndNothingIsStarted) {
    EXPECT_EQ(complaint({"/tmp/missing.conf"}),
              "Configuration file: /tmp/missing.conf\n"
              "Could not open configuration file '/tmp/missing.conf' for reading.\n"
              "Failed to set up interface with /tmp/missing.conf\n");
}

TEST_F(Hostapd, AMissingFileBesideAGoodOneIsRefusedToo) {
    EXPECT_NE(complaint({FILE_0, "/tmp/missing.conf"}).find("Failed to set up interface with /tmp/missing.conf\n"),
              std::string::npos);
}

TEST_F(Hostapd, AFileThatCannotBeReadIsRefused) {
    EXPECT_NE(complaint({"/tmp"}).find("Could not open configuration file '/tmp' for reading.\n"), std::string::npos);
}

TEST_F(Hostapd, EveryLineThatIsNoneIsNamedWithItsNumber) {
    write_file("/tmp/a.conf", "interface=ath0\n\n# a comment\nnonsense\nwps_state=3\nwps_state=-1\nssid=" +
                                  std::string(33, 'x') + "\nunknown_item=1\n");
    EXPECT_EQ(complaint({"/tmp/a.conf"}),
              "Configuration file: /tmp/a.conf\n"
              "Line 4: invalid line 'nonsense'\n"
              "Line 5: invalid wps_state '3'\n"
              "Line 6: invalid wps_state '-1'\n"
              "Line 7: invalid ssid '" +
                  std::string(33, 'x') +
                  "'\n"
                  "4 errors found in configuration file '/tmp/a.conf'\n"
                  "Failed to set up interface with /tmp/a.conf\n");
}

TEST_F(Hostapd, AnInterfaceThatIsNotThereIsRefused) {
    for (const char *interface : {"ath2", "ath16", "eth0", "wifi0", ""}) {
        write_file("/tmp/a.conf", std::string("interface=") + interface + "\n");
        EXPECT_EQ(complaint({"/tmp/a.conf"}), std::string("Configuration file: /tmp/a.conf\n") +
                                                  "Could not read interface " + interface +
                                                  " flags: No such device\n"
                                                  "Failed to set up interface with /tmp/a.conf\n");
    }
    write_file("/tmp/a.conf", "interface=a-name-that-is-far-too-long-for-one\n");
    EXPECT_NE(complaint({"/tmp/a.conf"}).find("Line 1: invalid interface "), std::string::npos);
    write_file("/tmp/a.conf", "");
    EXPECT_NE(complaint({"/tmp/a.conf"}).find("Could not read interface  flags"), std::string::npos);
}

TEST_F(Hostapd, OfALineThatStandsTwiceTheLastOneCounts) {
    write_file("/tmp/a.conf", "interface=ath8\nssid=one\nssid=two=2\ninterface=ath0");
    ASSERT_EQ(run({"hostapd", "-B", "/tmp/a.conf"}).status, 0);
    EXPECT_NE(run({"hostapd_cli", "-iath0", "get_config"}).output.find("\nssid=two=2\n"), std::string::npos);
}

TEST_F(Hostapd, RefusesBadUsageWithStatus1) {
    lines many = {"hostapd", "-B"};
    many.insert(many.end(), 17, FILE_0);
    for (const lines &words : {lines{"hostapd"}, lines{"hostapd", "-B"}, lines{"hostapd", "-x", FILE_0},
                               lines{"hostapd", "-B", FILE_0, "-e"}, many}) {
        outcome refused = run(words);
        EXPECT_EQ(refused.status, 1) << words.back();
        EXPECT_EQ(refused.errors, "usage: hostapd [-B] [-e FILE] CONFIGURATION...\n") << words.back();
    }
    EXPECT_EQ(pids(), "");
}

TEST_F(Hostapd, ObeysFaultsInsteadOfStarting) {
    run({"fault", "hostapd", "fail"});
    EXPECT_EQ(run_shell(START).status, 1);
    run({"fault", "hostapd", "missing"});
    EXPECT_EQ(run_shell(START).status, 127);
    EXPECT_EQ(pids(), "");
}

// The driver's scripts

class Authenticator : public Platform {};

TEST_F(Authenticator, ApupStartsItWithTheFilesOfTheVapsThatAreUp) {
    run({"apup"});
    EXPECT_EQ(journal(), (lines{"run apup", "run hostapd -B " + FILE_0 + " " + FILE_8 + " -e /etc/wpa2/entropy"}));
    EXPECT_EQ(pid_file(), pids());
    EXPECT_EQ(ping("ath0") + ping("ath8"), "PONG\nPONG\n");
}

TEST_F(Authenticator, ApupLeavesTheListOfItsFilesForWhoeverStartsItAgain) {
    EXPECT_EQ(read_file("/tmp/conf_filename"), FILE_0 + " " + FILE_8 + "\n");
    set_store("AP_ENABLE=0");
    set_store("AP_ENABLE_3=1");
    run({"apup"});
    EXPECT_EQ(read_file("/tmp/conf_filename"), "/nvram/etc/wpa2/WSC_ath2.conf " + FILE_8 + "\n");
}

TEST_F(Authenticator, ApupEndsTheOneThatRuns) {
    std::string before = pids();
    run({"apup"});
    EXPECT_NE(pids(), before);
    EXPECT_EQ(pid_file(), pids());
}

TEST_F(Authenticator, ApupEndsEveryOneThatRuns) {
    end_authenticators();
    run_shell("hostapd -B " + FILE_0 + "; hostapd -B " + FILE_8);
    run({"apup"});
    EXPECT_EQ(pid_file(), pids());
    EXPECT_EQ(ping("ath0") + ping("ath8"), "PONG\nPONG\n");
}

TEST_F(Authenticator, ApupEndsOneThatDoesNotListenByForce) {
    std::string before = pids();
    run_shell("killall -STOP hostapd");
    run({"apup"});
    EXPECT_NE(pids(), before);
    EXPECT_EQ(pid_file(), pids());
    EXPECT_EQ(ping("ath0"), "PONG\n");
}

TEST_F(Authenticator, VapsThatAreNotProtectedByWpaAreNotItsBusiness) {
    set_store("AP_SECMODE=None");
    run({"apup"});
    EXPECT_EQ(read_file("/tmp/conf_filename"), FILE_8 + "\n");
    EXPECT_FALSE(exists("/run/hostapd/ath0"));
    set_store("AP_SECMODE_9=WPAX");
    EXPECT_EQ(run({"apup"}).errors, "");
    EXPECT_EQ(read_file("/tmp/conf_filename"), "");
    EXPECT_EQ(pids(), "");
    EXPECT_EQ(journal().back(), "run apup") << "it is not even tried";
}

TEST_F(Authenticator, FastDownEndsItAndRemovesWhatApupMade) {
    EXPECT_EQ(run({"fast_down.sh"}).status, 0);
    EXPECT_EQ(pids(), "");
    for (const char *path : {"/tmp/conf_filename", "/run/hostapd.pid", "/run/hostapd/ath0", "/run/hostapd/ath8"})
        EXPECT_FALSE(exists(path)) << path;
}

TEST_F(Authenticator, FastDownClearsUpAfterOneThatWasKilled) {
    end_authenticators(SIGKILL);
    ASSERT_TRUE(exists("/run/hostapd/ath8"));
    run({"fast_down.sh"});
    for (const char *path : {"/run/hostapd.pid", "/run/hostapd/ath0", "/run/hostapd/ath8"})
        EXPECT_FALSE(exists(path)) << path;
}

TEST_F(Authenticator, LoadingTheDriverAloneLeavesItAsItIs) {
    std::string before = pids();
    run({"apup_simple"});
    EXPECT_EQ(pids(), before);
}

TEST_F(Authenticator, ApupSaysThatItDoesNotStartAndDoesTheRest) {
    set_store("AP_ENABLE_3=1");
    run({"fault", "hostapd", "fail"});
    outcome done = run({"apup"});
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.errors, "apup: /sbin/hostapd ended with status 1\n");
    EXPECT_EQ(pids(), "");
    EXPECT_EQ(run({"iwconfig", "ath2"}).status, 0);
}

TEST_F(Authenticator, ApupPutsItsWordsIntoALogOfItsOwn) {
    unlink("/run/gateway/hostapd.log");
    EXPECT_EQ(run({"apup"}).output, "");
    EXPECT_TRUE(read_file("/run/gateway/hostapd.log").starts_with("Configuration file: " + FILE_0 + "\n"));
}

TEST_F(Authenticator, ProcessesOfOtherNamesLiveOn) {
    pid_t child = fork();
    if (child == 0) {
        execlp("sleep", "hostapd", "100", nullptr);
        _exit(127);
    }
    run({"fast_down.sh"});
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

// Strange datagrams on its sockets

// A client's socket, connected to the authenticator of ath0, with a name of its own or without.
int client(bool named) {
    sockaddr_un server = {};
    sockaddr_un own = {};
    own.sun_family = server.sun_family = AF_UNIX;
    snprintf(server.sun_path, sizeof server.sun_path, "/run/hostapd/ath0");
    int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    EXPECT_TRUE(!named || bind(file, reinterpret_cast<sockaddr *>(&own), sizeof own.sun_family) == 0);
    EXPECT_EQ(connect(file, reinterpret_cast<sockaddr *>(&server), sizeof server), 0);
    timeval limit = {5, 0};
    setsockopt(file, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    return file;
}

std::string answer_to(int file, const std::string &command) {
    char answer[2048];
    EXPECT_EQ(send(file, command.data(), command.size(), 0), static_cast<ssize_t>(command.size()));
    ssize_t length = recv(file, answer, sizeof answer, 0);
    return length < 0 ? "no answer" : std::string(answer, static_cast<size_t>(length));
}

TEST_F(Authenticator, AnswersUnknownCommandToWhatItDoesNotKnow) {
    int file = client(true);
    for (const std::string &command :
         {std::string("DANCE"), std::string(""), std::string("PING "), std::string("ping"), std::string("WPS_PIN"),
          std::string(600, 'x'), std::string(60000, 'x'), std::string("\0PING", 5), std::string("\xff\n%s%n")})
        EXPECT_EQ(answer_to(file, command), "UNKNOWN COMMAND\n") << command.substr(0, 40);
    for (const std::string &command : {std::string("WPS_PIN "), std::string("WPS_PIN any"), std::string("WPS_PIN any "),
                                       "WPS_PIN any " + std::string(450, '1'), "WPS_PIN " + std::string(450, 'a')})
        EXPECT_EQ(answer_to(file, command), "FAIL\n") << command.substr(0, 40);
    EXPECT_EQ(answer_to(file, "PING"), "PONG\n");
    close(file);
}

TEST_F(Authenticator, AClientWithoutANameOrThatDoesNotReadDoesNotStopIt) {
    int nameless = client(false);
    EXPECT_EQ(send(nameless, "PING", 4, 0), 4);
    close(nameless);
    int deaf = client(true);
    // More answers than a queue of datagrams has places.
    for (int i = 0; i < 50; i++)
        EXPECT_EQ(send(deaf, "GET_CONFIG", 10, 0), 10);
    EXPECT_EQ(ping("ath0"), "PONG\n");
    close(deaf);
}

}  // namespace
