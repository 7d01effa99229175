// What the collector and the soft-block daemon have in common, shown with both: what they keep of their starter, how
// they follow each other, their faults, and what the journal says of datagrams.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <string>

#include "simulator/daemons/processes.h"
#include "simulator/daemons/requests.h"
#include "tests/simulator/daemons.h"

namespace {

struct subject {
    const char *name;     // among the faults
    const char *process;  // as it is started here
    const char *folder;   // of what is called
    const char *call;     // as it stands in the journal
    const char *socket;
    const char *question;
    size_t answer_size;
};

const subject SUBJECTS[] = {
    {"radstat", "radstat0", "/tmp/", "radstat0 -i ath0 -r 30 -m 1800 -R 30", "/var/run/radstat/ath0", "result", 192},
    {"softblock", "softblock", "", "softblock", "/var/run/ssidsteering", "getList", 776},
};

class Daemons : public Platform, public testing::WithParamInterface<subject> {
protected:
    void SetUp() override {
        Platform::SetUp();
        unlink("/nvram/blackList.dat");
        unlink("/tmp/radstat0");
        EXPECT_EQ(symlink("/usr/sbin/radstat", "/tmp/radstat0"), 0);
        mark = journal_mark();
    }

    void TearDown() override {
        end_all("radstat0", SIGKILL);
        end_all("softblock", SIGKILL);
        unlink(the.socket);
        Platform::TearDown();
    }

    void start() {
        start_in_background(command, the.socket);
    }

    std::string answer(double seconds = 5) {
        return ask(the.socket, the.question, seconds);
    }

    void set_fault(const std::string &value) {
        outcome set = run_shell("fault " + std::string(the.name) + " " + value);
        EXPECT_EQ(set.status, 0) << set.errors;
    }

    // Of the process that runs.
    std::string pid() {
        std::string all = pids_of(the.process);
        return all.substr(0, all.find('\n'));
    }

    const subject &the = GetParam();
    const std::string command = std::string(the.folder) + the.call;
};

INSTANTIATE_TEST_SUITE_P(Each, Daemons, testing::ValuesIn(SUBJECTS),
                         [](const testing::TestParamInfo<subject> &of) { return of.param.name; });

// Processes

TEST_P(Daemons, AnswersAsSoonAsItsSocketIsThere) {
    start();
    EXPECT_EQ(answer().size(), the.answer_size);
    EXPECT_EQ(journal()[0], std::string("run ") + the.call);
}

TEST_P(Daemons, StaysInTheForegroundUntilItIsToldToEndAndTakesItsSocketAway) {
    for (const char *number : {"TERM", "INT"}) {
        EXPECT_EQ(run_shell(std::string("timeout -s ") + number + " 0.2 " + command).status, 124);
        EXPECT_FALSE(exists(the.socket));
    }
    EXPECT_EQ(pids_of(the.process), "");
}

TEST_P(Daemons, EndsWithStatus0) {
    EXPECT_EQ(run_shell(command + " & until [ -S " + the.socket + " ]; do sleep 0.01; done; kill $!; wait $!").status,
              0);
}

TEST_P(Daemons, CanBeEndedWhateverItsStarterDidWithSignals) {
    start_in_background(std::string("trap '' TERM INT; ") + command, the.socket);
    end_all(the.process);
    EXPECT_FALSE(exists(the.socket));
}

TEST_P(Daemons, IsNotEndedByALostTerminalNorByItsStartersEnd) {
    start();
    run_shell("kill -HUP " + pid());
    EXPECT_EQ(answer().size(), the.answer_size);
    std::string of = pid();
    EXPECT_EQ(run_shell("ps -o sid=,ppid= -p " + of + " | tr -s ' '").output, " " + of + " 1\n");
}

TEST_P(Daemons, KeepsNoDescriptorOfItsStarterButTheStandardOnes) {
    // A socket and a pipe without close-on-exec.
    int pair[2], ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
    start();
    close(pair[1]);
    close(ends[1]);
    char byte;
    EXPECT_EQ(recv(pair[0], &byte, 1, MSG_DONTWAIT), 0) << "nobody else has the other side";
    EXPECT_EQ(read(ends[0], &byte, 1), 0);
    close(pair[0]);
    close(ends[0]);
    answer();
    outcome held = run_shell("ls -l /proc/" + pid() + "/fd | sed -n 's/.* -> //p' | sort | sed 's/:.*//' | uniq -c");
    // What it has of its own: its socket, and what tells it of signals. Nothing is left over from an answer.
    EXPECT_EQ(held.output, "      3 /dev/null\n      1 anon_inode\n      1 socket\n");
}

// One after the other

TEST_P(Daemons, ASecondOneIsRefusedAndTheFirstOneLivesOn) {
    start();
    std::string first = pids_of(the.process);
    outcome second = run_shell("timeout 5 " + command);
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, std::string(the.name) + ": " + the.socket + ": Address already in use\n");
    EXPECT_EQ(pids_of(the.process), first);
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, StartsInThePlaceOfOneThatWasToldToEndWithoutWaitingForIt) {
    start();
    for (int i = 0; i < 5; i++) {
        std::string before = pid();
        run_shell(std::string("killall ") + the.process + "; " + command + " >/dev/null 2>&1 &");
        ASSERT_TRUE(eventually([&] { return pid() != before && !pid().empty() && is_served(the.socket); }));
        EXPECT_EQ(answer().size(), the.answer_size);
    }
}

TEST_P(Daemons, WaitsAMomentForOneThatIsAboutToEnd) {
    start();
    // Stopped, it gets to the end that it was told only when it goes on.
    std::string before = pid();
    run_shell("kill -STOP " + before + "; kill " + before);
    run_shell(command + " >/dev/null 2>&1 & sleep 0.2; kill -CONT " + before);
    EXPECT_TRUE(eventually([&] { return pid() != before && !pid().empty() && is_served(the.socket); }));
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, StartsInThePlaceOfOneThatWasKilledAndLeftItsSocket) {
    start();
    end_all(the.process, SIGKILL);
    ASSERT_TRUE(exists(the.socket));
    start();
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, OfSeveralThatFindADeadSocketOneStays) {
    start();
    end_all(the.process, SIGKILL);
    std::string all;
    for (int i = 0; i < 6; i++)
        all += command + " >/dev/null 2>&1 & ";
    run_shell(all);
    EXPECT_TRUE(eventually([&] { return pids_of(the.process).size() == pid().size() + 1; }));
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, TakesItsNameUnderTheLockOfTheFolderSoThatTwoCannotTakeEachOthersAway) {
    run({"mkdir", "-p", "/var/run/radstat"});
    std::string path = the.socket;
    int folder = open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    run_shell(command + " >/dev/null 2>&1 &");
    EXPECT_TRUE(eventually([&] { return !pids_of(the.process).empty(); }));
    usleep(100'000);
    EXPECT_FALSE(exists(path));
    close(folder);
    EXPECT_TRUE(eventually([&] { return is_served(path); }));
}

// Askers

TEST_P(Daemons, AnswersAnAskerByWhateverNameItHas) {
    start();
    for (client_name name : {NAMED_BY_PATH, NAMED_BY_KERNEL}) {
        daemon_client client = connect_to(the.socket, name);
        send_to(client, std::string(the.question) + '\0');
        EXPECT_EQ(answer_at(client).size(), the.answer_size);
        disconnect(client);
    }
}

TEST_P(Daemons, AnAskerWithoutANameOrOneThatIsGoneOrDoesNotReadDoesNotStopIt) {
    start();
    tell(the.socket, the.question);
    daemon_client gone = connect_to(the.socket);
    send_to(gone, std::string(the.question) + '\0');
    disconnect(gone);
    daemon_client deaf = connect_to(the.socket);
    // More answers than a queue of datagrams has places.
    for (int i = 0; i < 40; i++)
        send_to(deaf, std::string(the.question) + '\0');
    EXPECT_EQ(answer().size(), the.answer_size);
    disconnect(deaf);
}

TEST_P(Daemons, AnswersOnlyTheTextItselfWithItsNul) {
    start();
    daemon_client client = connect_to(the.socket);
    std::string question = the.question;
    const std::string odd[] = {"",
                               question,
                               question + " " + '\0',
                               question + '\0' + '\0',
                               std::string("\0", 1) + question + '\0',
                               question.substr(1) + '\0',
                               "GET\xff%s%n" + std::string(1, '\0'),
                               std::string(REQUEST_SIZE, 'x') + '\0',
                               std::string(65536, 'x')};
    for (const std::string &bytes : odd)
        send_to(client, bytes);
    send_to(client, question + '\0');
    EXPECT_EQ(answer_at(client).size(), the.answer_size);
    EXPECT_EQ(answer_at(client, 0), "no answer") << "one answer for all of them";
    disconnect(client);
}

// The journal

TEST_P(Daemons, TheJournalHoldsEveryDatagramUnderTheProcessesName) {
    start();
    answer();
    daemon_client client = connect_to(the.socket);
    mark = journal_mark();
    for (const std::string &bytes : {std::string("plain:-70@2\0", 12), std::string("two words\"\0", 11),
                                     std::string("a\0b\n\\\xff\0", 7), std::string("no end"), std::string(),
                                     std::string(1, '\0'), std::string(REQUEST_SIZE, 'x'), std::string(65536, 'y')})
        send_to(client, bytes);
    std::string start = std::string("datagram ") + the.process + " ";
    lines expected = {start + "plain:-70@2",
                      start + "\"two words\\\"\"",
                      start + "\"a\\x00b\\n\\\\\xff\"",
                      start + "\"no end\" without NUL",
                      start + "\"\" without NUL",
                      start + "\"\"",
                      start + std::string(REQUEST_SIZE, 'x') + " without NUL",
                      start + std::string(REQUEST_SIZE, 'y') + " of 65536 bytes"};
    EXPECT_TRUE(eventually([&] { return journal().size() == expected.size(); }));
    EXPECT_EQ(journal(), expected);
    disconnect(client);
}

// Faults

TEST_P(Daemons, ASilentOneReadsAndDoesNotAnswer) {
    start();
    set_fault("silent");
    mark = journal_mark();
    EXPECT_EQ(answer(0.1), "no answer");
    EXPECT_EQ(journal(), (lines{std::string("datagram ") + the.process + " " + the.question}));
    set_fault("off");
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, AStuckOneLetsItsQueueFillUpAndReadsOnWhenTheFaultIsOff) {
    start();
    set_fault("stuck");
    daemon_client client = connect_to(the.socket);
    mark = journal_mark();
    std::string question = std::string(the.question) + '\0';
    int taken = 0;
    while (taken < 1000 && send(client.file, question.data(), question.size(), MSG_DONTWAIT) > 0)
        taken++;
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_GT(taken, 0);
    EXPECT_LT(taken, 1000);
    EXPECT_EQ(answer_at(client, 0.1), "no answer");
    EXPECT_EQ(journal(), lines());
    set_fault("off");
    EXPECT_TRUE(eventually([&] { return journal().size() == static_cast<size_t>(taken) + 1; }));
    EXPECT_EQ(answer_at(client).size(), the.answer_size);
    disconnect(client);
}

TEST_P(Daemons, AStuckOneDoesNotWorkHard) {
    start();
    set_fault("stuck");
    tell(the.socket, the.question);
    // Of its own and of the kernel's for it.
    std::string sum = "set -- $(cut -d' ' -f14,15 /proc/" + pid() + "/stat); echo $(($1 + $2))";
    auto ticks = [&] { return atoi(run_shell(sum).output.c_str()); };
    int before = ticks();
    usleep(300'000);
    EXPECT_LE(ticks() - before, 3) << "hundredths of a second";
}

TEST_P(Daemons, AShortOneAnswersSoManyBytes) {
    start();
    set_fault("short 12");
    EXPECT_EQ(answer().size(), 12u);
    set_fault("short 0");
    EXPECT_EQ(answer(), "");
    set_fault("short " + std::to_string(the.answer_size - 1));
    EXPECT_EQ(answer().size(), the.answer_size - 1);
}

TEST_P(Daemons, OneThatAnswersZerosAnswersAllOfThem) {
    start();
    tell(the.socket, "addMac:28:6A:BA:4C:10:01");
    set_fault("zeros");
    EXPECT_EQ(answer(), std::string(the.answer_size, '\0'));
    set_fault("off");
    EXPECT_TRUE(eventually([&] { return answer() != std::string(the.answer_size, '\0'); }));
}

TEST_P(Daemons, OneThatAnswersGarbageNamesNumbersThatNobodyExpects) {
    start();
    set_fault("garbage");
    std::string odd = answer();
    EXPECT_EQ(odd.size(), the.answer_size);
    EXPECT_GT(number_at(odd, 0), 1'000'000);
    EXPECT_GT(number_at(odd, 4), 1'000'000);
    EXPECT_LT(number_at(odd, 8), -1'000'000);
    EXPECT_LT(number_at(odd, the.answer_size - 4), -1'000'000);
}

TEST_P(Daemons, ASlowOneAnswersSoMuchLater) {
    start();
    set_fault("slow 0.3");
    std::string late;
    EXPECT_GE(duration_of([&] { late = answer(); }), 0.3);
    EXPECT_EQ(late.size(), the.answer_size);
}

TEST_P(Daemons, ASlowOneIsDoneWithItsWaitingWhenTheFaultIsOff) {
    start();
    set_fault("slow 1000");
    daemon_client client = connect_to(the.socket);
    send_to(client, std::string(the.question) + '\0');
    EXPECT_EQ(answer_at(client, 0.1), "no answer");
    set_fault("off");
    EXPECT_EQ(answer_at(client).size(), the.answer_size);
    disconnect(client);
}

TEST_P(Daemons, OneThatIsSlowOrStuckCanBeToldToEnd) {
    for (const char *value : {"slow 1000", "stuck"}) {
        start();
        set_fault(value);
        tell(the.socket, the.question);
        usleep(50'000);
        EXPECT_LT(duration_of([&] { end_all(the.process); }), 5);
        EXPECT_FALSE(exists(the.socket)) << value;
    }
}

TEST_P(Daemons, AFaultThatLiesInItsAnswersDoesNotKeepItFromStarting) {
    for (const char *value : {"silent", "stuck", "short 4", "zeros", "slow 1", "garbage"}) {
        set_fault(value);
        start();
        end_all(the.process);
    }
}

TEST_P(Daemons, AnAbsentOneEndsAtOnceAndCannotBeStarted) {
    for (auto [value, status] : {std::pair("fail", 1), std::pair("missing", 127)}) {
        start();
        set_fault(value);
        EXPECT_EQ(pids_of(the.process), "") << "gone when the command is";
        EXPECT_FALSE(exists(the.socket));
        EXPECT_EQ(run_shell("timeout 5 " + command).status, status);
        set_fault("off");
    }
    start();
    EXPECT_EQ(answer().size(), the.answer_size);
}

TEST_P(Daemons, AnAbsentOneThatIsStuckIsGoneToo) {
    start();
    set_fault("stuck");
    tell(the.socket, the.question);
    set_fault("missing");
    EXPECT_EQ(pids_of(the.process), "");
}

TEST_P(Daemons, AFaultWithoutAValueIsAbsence) {
    start();
    set_fault("");
    EXPECT_EQ(pids_of(the.process), "");
    EXPECT_EQ(run({"fault"}).output, std::string(the.name) + " fail\n");
}

TEST_P(Daemons, ValuesThatMakeNoSenseAreRefused) {
    for (const std::string &value :
         {std::string("sleepy"), std::string("short"), std::string("short -1"), std::string("short x"),
          "short " + std::to_string(the.answer_size), std::string("short 1x"),
          std::string("short 99999999999999999999"), std::string("slow"), std::string("slow x"),
          std::string("slow 86401"), std::string("hang"), std::string("EIO")}) {
        outcome refused = run_shell("fault " + std::string(the.name) + " " + value);
        EXPECT_EQ(refused.status, 1) << value;
        EXPECT_EQ(refused.errors, "fault: \"" + value + "\" is no value for " + the.name + "\n");
    }
    EXPECT_EQ(run({"fault"}).output, "");
}

class Faults : public Platform {};

TEST_F(Faults, ToolsAndTheAuthenticatorHaveNoneOfTheDaemons) {
    for (const char *tool : {"iwconfig", "hostapd"}) {
        for (const char *value : {"stuck", "zeros", "short 4"})
            EXPECT_EQ(run_shell(std::string("fault ") + tool + " " + value).status, 1) << tool << " " << value;
    }
}

TEST_F(Faults, ACollectorsFaultIsThatOfAllCollectors) {
    EXPECT_EQ(run({"fault", "radstat0", "silent"}).status, 1);
}

TEST_F(Faults, AHandWrittenFaultThatMakesNoSenseIsNone) {
    start_in_background("softblock", "/var/run/ssidsteering");
    write_file("/run/gateway/faults/softblock", "short 776");
    EXPECT_EQ(ask("/var/run/ssidsteering", "getList").size(), 776u);
    end_all("softblock");
}

TEST_F(Faults, AHandWrittenAbsenceIsSilence) {
    start_in_background("softblock", "/var/run/ssidsteering");
    write_file("/run/gateway/faults/softblock", "missing");
    EXPECT_EQ(ask("/var/run/ssidsteering", "getList", 0.1), "no answer");
    end_all("softblock");
}

// In this process, without a daemon.

bool is_request(const std::string &bytes) {
    int ends[2];
    request received;
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends), 0);
    EXPECT_EQ(send(ends[0], bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    bool taken = request_receive(ends[1], "softblock", 776, &received);
    char answer;
    request_answer(ends[1], &received, "", 1);
    EXPECT_EQ(recv(ends[0], &answer, 1, MSG_DONTWAIT), -1) << "an asker without a name";
    close(ends[0]);
    close(ends[1]);
    return taken;
}

TEST_F(Faults, ARequestIsOneTextThatFits) {
    EXPECT_TRUE(is_request(std::string("getList\0", 8)));
    EXPECT_TRUE(is_request(std::string(1, '\0')));
    EXPECT_TRUE(is_request(std::string(REQUEST_SIZE - 1, 'x') + '\0'));
    EXPECT_FALSE(is_request(std::string(REQUEST_SIZE - 1, 'x') + '\0' + 'y')) << "what was cut is not looked at";
    EXPECT_FALSE(is_request(std::string(REQUEST_SIZE, 'x') + '\0'));
    EXPECT_FALSE(is_request(std::string(REQUEST_SIZE * 4, '\xff')));
    EXPECT_FALSE(is_request(""));
}

TEST(Processes, AProgramsNameMayHaveANumberBehindItAndNothingElse) {
    EXPECT_TRUE(is_name_of("radstat", "radstat"));
    EXPECT_TRUE(is_name_of("radstat", "radstat0"));
    EXPECT_TRUE(is_name_of("radstat", "radstat15"));
    for (const char *name : {"radsta", "radstatx", "radstat0x", "xradstat", "radstat-1", ""})
        EXPECT_FALSE(is_name_of("radstat", name)) << name;
}

TEST_F(Faults, AbsenceLeavesProcessesOfOtherNamesAlone) {
    ASSERT_EQ(run_shell("cp /bin/sleep /tmp/radstatic").status, 0);
    pid_t child = fork();
    if (child == 0) {
        execl("/tmp/radstatic", "radstat", "100", nullptr);
        _exit(127);
    }
    ASSERT_TRUE(eventually([] { return !pids_of("radstatic").empty(); }));
    run({"fault", "radstat", "missing"});
    EXPECT_NE(pids_of("radstatic"), "");
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

}  // namespace
