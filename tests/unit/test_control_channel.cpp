// The datagram channel: what a daemon gets, what becomes of its answer, and that nothing is left behind on any road.
#include "survey/control_channel.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>
#include <string.h>
#include <sys/fsuid.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/daemon.h"
#include "tests/support/outputs.h"
#include "tests/support/platform.h"

namespace {

const char DAEMON[] = "/tmp/daemon";
const char COLLECTOR_0[] = "/var/run/radstat/ath0";
const char COLLECTOR_8[] = "/var/run/radstat/ath8";

// What a reply's room holds before the call.
constexpr char FILLER = '?';

std::string local_path(int kind) {
    return (kind == RAD_CTRL_STATISTICS ? "/tmp/rad_ctrl_" : "/tmp/ssidsteering_") + std::to_string(getpid());
}

bool exists(const std::string &path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

double seconds_now() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// Two seconds by the contract. The machine may be slow, so the upper bound is a generous one.
void expect_two_seconds(double seconds) {
    EXPECT_GE(seconds, 1.95);
    EXPECT_LE(seconds, 3.5);
}

std::string remembered(int slot) {
    return std::string(reinterpret_cast<char *>(buf_reply) + slot * 192, 192);
}

const std::string ALL_FF(192, '\xff');

// Every test also holds that no descriptor and no socket file stays behind.
struct ControlChannel : testing::Test {
    void SetUp() override {
        reset_platform();
        memset(buf_reply, 0xFF, sizeof(buf_reply));
        descriptors = open_descriptors();
    }

    void TearDown() override {
        EXPECT_EQ(open_descriptors(), descriptors);
        EXPECT_FALSE(exists(local_path(RAD_CTRL_STATISTICS)));
        EXPECT_FALSE(exists(local_path(RAD_CTRL_STEERING)));
    }

    size_t descriptors = 0;
};

// A signal every so often, whose handler interrupts whatever waits.
struct signal_storm {
    signal_storm() {
        struct sigaction action = {};
        action.sa_handler = [](int) { arrived = arrived + 1; };
        sigaction(SIGALRM, &action, &before);
        arrived = 0;
        itimerval often = {{0, 5000}, {0, 5000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~signal_storm() {
        itimerval never = {};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &before, nullptr);
    }
    struct sigaction before = {};
    static volatile sig_atomic_t arrived;
};
volatile sig_atomic_t signal_storm::arrived = 0;

// An exchange over a connection of its own.
struct exchange {
    int status = 0;
    size_t length = 0;
    std::string reply;
    double seconds = 0;
};

exchange ask(const char *path, const std::string &request, size_t room, int kind = RAD_CTRL_STATISTICS) {
    exchange result;
    result.length = room;
    result.reply.assign(room, FILLER);
    double begin = seconds_now();
    rad_ctrl_conn *connection = rad_ctrl_open(path, kind);
    EXPECT_NE(connection, nullptr);
    if (connection) {
        result.status =
            rad_ctrl_request(connection, request.data(), request.size(), result.reply.data(), &result.length);
    }
    rad_ctrl_close(connection);
    result.seconds = seconds_now() - begin;
    return result;
}

exchange ask_buffered(int index, size_t room = 192, int kind = RAD_CTRL_STATISTICS) {
    exchange result;
    result.length = room;
    // One byte more than there is room for.
    result.reply.assign(room + 1, FILLER);
    result.status = rad_ctrl_request_buffered(index, "result", 7, result.reply.data(), &result.length, kind);
    EXPECT_EQ(result.reply.back(), FILLER) << "written behind the reply";
    result.reply.pop_back();
    return result;
}

// Whether a connection can be made. It is closed at once: a test that fails must not keep the next one waiting.
bool can_connect(const std::string &path, int kind = RAD_CTRL_STATISTICS) {
    rad_ctrl_conn *connection = rad_ctrl_open(path.c_str(), kind);
    rad_ctrl_close(connection);
    return connection != nullptr;
}

// --- opening and closing ---

TEST_F(ControlChannel, AConnectionHasASocketFileOfItsKindUntilItIsClosed) {
    fake_daemon daemon(DAEMON);
    for (int kind : {RAD_CTRL_STATISTICS, RAD_CTRL_STEERING}) {
        rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, kind);
        ASSERT_NE(connection, nullptr);
        EXPECT_TRUE(exists(local_path(kind)));
        EXPECT_FALSE(exists(local_path(1 - kind)));
        rad_ctrl_close(connection);
        EXPECT_FALSE(exists(local_path(kind)));
    }
}

TEST_F(ControlChannel, ChildrenDoNotInheritTheSocket) {
    fake_daemon daemon(DAEMON);
    rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, RAD_CTRL_STATISTICS);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(fcntl(connection->sock, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    rad_ctrl_close(connection);
}

TEST_F(ControlChannel, ThereAreTwoKindsOnly) {
    fake_daemon daemon(DAEMON);
    for (int kind : {2, -1, INT_MIN, INT_MAX}) {
        EXPECT_FALSE(can_connect(DAEMON, kind)) << kind;
    }
}

TEST_F(ControlChannel, NoConnectionCanBeClosed) {
    rad_ctrl_close(nullptr);
}

TEST_F(ControlChannel, WithoutADaemonThereIsNoConnection) {
    printed_text printed = capture([] { EXPECT_FALSE(can_connect(DAEMON)); });
    EXPECT_EQ(printed.err, "");
}

TEST_F(ControlChannel, ADaemonThatHasDiedIsNone) {
    fake_daemon daemon(DAEMON);
    daemon.die();
    EXPECT_TRUE(exists(DAEMON));
    EXPECT_FALSE(can_connect(DAEMON, RAD_CTRL_STEERING));
}

TEST_F(ControlChannel, AfterAFailureTheNextConnectionOfTheKindIsMade) {
    for (int kind : {RAD_CTRL_STATISTICS, RAD_CTRL_STEERING}) {
        EXPECT_FALSE(can_connect(DAEMON, kind));
        EXPECT_FALSE(can_connect(std::string(109, 'x'), kind));
        fake_daemon daemon(DAEMON);
        EXPECT_TRUE(can_connect(DAEMON, kind));
    }
}

TEST_F(ControlChannel, WithoutDescriptorsThereIsNoConnection) {
    fake_daemon daemon(DAEMON);
    begin_descriptor_shortage();
    bool connected = can_connect(DAEMON);
    end_descriptor_shortage();
    EXPECT_FALSE(connected);
}

// "/tmp/xxx...", exactly this long.
std::string path_of_length(size_t length) {
    std::string path = "/tmp/";
    return path + std::string(length - path.size(), 'x');
}

TEST_F(ControlChannel, APeerPathMayHaveAHundredAndEightBytes) {
    for (size_t length : {106, 107, 108}) {
        fake_daemon daemon(path_of_length(length));
        daemon.answer("here");
        EXPECT_EQ(ask(path_of_length(length).c_str(), "ask", 4).reply, "here") << length;
    }
}

TEST_F(ControlChannel, ALongerPeerPathIsRefusedAndNotCut) {
    fake_daemon daemon(path_of_length(108));
    for (size_t length : {109, 110, 4096}) {
        EXPECT_FALSE(can_connect(path_of_length(length))) << length;
    }
}

// --- what is in the way of the own address ---

TEST_F(ControlChannel, ASocketFileLeftBehindIsRemovedAndBoundAgain) {
    for (int kind : {RAD_CTRL_STATISTICS, RAD_CTRL_STEERING}) {
        fake_daemon earlier(local_path(kind));
        earlier.die();
        ASSERT_TRUE(exists(local_path(kind)));
        fake_daemon daemon(DAEMON);
        daemon.answer("answer");
        EXPECT_EQ(ask(DAEMON, "ask", 6, kind).reply, "answer");
    }
}

TEST_F(ControlChannel, AFileInTheWayIsRemovedAndItsPlaceBound) {
    fake_daemon daemon(DAEMON);
    daemon.answer("answer");
    write_file(local_path(RAD_CTRL_STATISTICS), "somebody's");
    printed_text printed = capture([] { EXPECT_EQ(ask(DAEMON, "ask", 6).reply, "answer"); });
    EXPECT_EQ(printed.err, "");
}

TEST_F(ControlChannel, WhatCannotBeRemovedIsASilentFailure) {
    fake_daemon daemon(DAEMON);
    ASSERT_EQ(mkdir(local_path(RAD_CTRL_STATISTICS).c_str(), 0755), 0);
    printed_text printed = capture([] { EXPECT_FALSE(can_connect(DAEMON)); });
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(rmdir(local_path(RAD_CTRL_STATISTICS).c_str()), 0);
}

TEST_F(ControlChannel, AnyOtherReasonNotToBindIsReported) {
    fake_daemon daemon(DAEMON);
    begin_capture();
    ASSERT_EQ(chmod("/tmp", 0755), 0);
    setfsuid(1);  // somebody who may not write to /tmp
    bool connected = can_connect(DAEMON);
    setfsuid(0);
    chmod("/tmp", 01777);
    printed_text printed = end_capture();
    EXPECT_FALSE(connected);
    EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_open Could not bind - Permission denied \n");
    EXPECT_EQ(printed.out, "");
}

// --- sending ---

TEST_F(ControlChannel, ADatagramArrivesToTheByte) {
    fake_daemon daemon(DAEMON);
    for (const std::string &bytes : {std::string("result\0", 7), std::string(1, '\0'), std::string(2000, 'x')}) {
        rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, RAD_CTRL_STEERING);
        ASSERT_NE(connection, nullptr);
        EXPECT_EQ(rad_ctrl_send(connection, bytes.data(), bytes.size()), 0);
        rad_ctrl_close(connection);
        EXPECT_EQ(daemon.read_one(), bytes);
    }
}

TEST_F(ControlChannel, SendingToADaemonThatHasGoneFailsAtOnce) {
    fake_daemon daemon(DAEMON);
    rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, RAD_CTRL_STATISTICS);
    ASSERT_NE(connection, nullptr);
    daemon.die();
    double begin = seconds_now();
    EXPECT_EQ(rad_ctrl_send(connection, "x", 1), -1);
    size_t length = 4;
    char reply[] = "????";
    EXPECT_EQ(rad_ctrl_request(connection, "x", 1, reply, &length), -1);
    EXPECT_LE(seconds_now() - begin, 1.0);
    EXPECT_EQ(length, 4U);
    EXPECT_STREQ(reply, "????");
    rad_ctrl_close(connection);
}

TEST_F(ControlChannel, ADaemonThatDoesNotReadIsGivenUpAfterTwoSeconds) {
    fake_daemon daemon(DAEMON);
    daemon.fill_queue();
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.reply, "????");
    EXPECT_EQ(result.length, 4U);
    expect_two_seconds(result.seconds);
}

TEST_F(ControlChannel, SignalsDoNotProlongTheWaitForADaemonThatDoesNotRead) {
    fake_daemon daemon(DAEMON);
    daemon.fill_queue();
    signal_storm storm;
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, -1);
    expect_two_seconds(result.seconds);
    EXPECT_GT(signal_storm::arrived, 100);
}

TEST_F(ControlChannel, ADaemonThatReadsInTimeGetsTheRequestInSpiteOfSignals) {
    fake_daemon daemon(DAEMON);
    daemon.fill_queue();
    std::thread reader([&daemon] {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, nullptr);
        usleep(300000);
        while (daemon.read_one() == "full") {
        }
        daemon.answer("late");
    });
    rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, RAD_CTRL_STATISTICS);
    ASSERT_NE(connection, nullptr);
    {
        signal_storm storm;
        EXPECT_EQ(rad_ctrl_send(connection, "ask", 3), 0);
        EXPECT_GT(signal_storm::arrived, 10);
    }
    rad_ctrl_close(connection);
    reader.join();
}

// --- asking ---

TEST_F(ControlChannel, ARequestGetsItsAnswer) {
    fake_daemon daemon(DAEMON);
    daemon.answer(std::string("an\0swer", 7));
    exchange result = ask(DAEMON, std::string("req\0", 4), 10);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.length, 7U);
    EXPECT_EQ(result.reply, std::string("an\0swer???", 10));
    EXPECT_EQ(daemon.requests(), (std::vector<std::string>{std::string("req\0", 4)}));
}

TEST_F(ControlChannel, AnAnswerIsCutToTheRoomThereIs) {
    fake_daemon daemon(DAEMON);
    daemon.answer("0123456789");
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.length, 4U);
    EXPECT_EQ(result.reply, "0123");
}

TEST_F(ControlChannel, AnEmptyAnswerIsAnAnswer) {
    fake_daemon daemon(DAEMON);
    daemon.answer("");
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.length, 0U);
    EXPECT_EQ(result.reply, "????");
}

TEST_F(ControlChannel, ADaemonThatDoesNotAnswerIsGivenUpAfterTwoSeconds) {
    fake_daemon daemon(DAEMON);
    daemon.stay_silent();
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, -2);
    EXPECT_EQ(result.reply, "????");
    EXPECT_EQ(result.length, 4U);
    expect_two_seconds(result.seconds);
}

TEST_F(ControlChannel, SignalsDoNotProlongTheWaitForAnAnswer) {
    fake_daemon daemon(DAEMON);
    daemon.stay_silent();
    signal_storm storm;
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, -2);
    expect_two_seconds(result.seconds);
    EXPECT_GT(signal_storm::arrived, 100);
}

TEST_F(ControlChannel, AnAnswerIsNotLostToSignals) {
    fake_daemon daemon(DAEMON);
    daemon.serve([](const std::string &, std::string *answer) {
        usleep(500000);
        *answer = "late";
        return true;
    });
    signal_storm storm;
    exchange result = ask(DAEMON, "ask", 4);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.reply, "late");
    EXPECT_GT(signal_storm::arrived, 20);
}

TEST_F(ControlChannel, ADaemonThatGoesWhileItIsWaitedForIsGivenUpAfterTwoSeconds) {
    fake_daemon daemon(DAEMON);
    std::thread end([&daemon] {
        usleep(200000);
        daemon.die();
    });
    exchange result = ask(DAEMON, "ask", 4);
    end.join();
    EXPECT_EQ(result.status, -2);
    EXPECT_EQ(result.reply, "????");
    expect_two_seconds(result.seconds);
}

TEST_F(ControlChannel, AnAnswerThatCannotBeReceivedIsAFailureOfItsOwn) {
    fake_daemon daemon(DAEMON);
    daemon.answer("answer");
    rad_ctrl_conn *connection = rad_ctrl_open(DAEMON, RAD_CTRL_STATISTICS);
    ASSERT_NE(connection, nullptr);
    size_t length = 4;
    int status = rad_ctrl_request(connection, "ask", 3, nullptr, &length);  // the kernel cannot write there
    EXPECT_LT(status, -2);
    EXPECT_EQ(length, 4U);
    rad_ctrl_close(connection);
}

// --- which daemon ---

TEST_F(ControlChannel, StatisticsAreAskedOfTheCollectorOfTheVapsInterface) {
    struct {
        int index;
        const char *path;
    } rows[] = {
        {1, "/var/run/radstat/ath0"},
        {7, "/var/run/radstat/ath6"},
        {8, "/var/run/radstat/ath7"},
        {9, "/var/run/radstat/ath8"},
        {16, "/var/run/radstat/ath15"},
        {17, "/var/run/radstat/ath16"},
        {0, "/var/run/radstat/ath-1"},
        {INT_MIN, "/var/run/radstat/ath2147483647"},
        {-5, "/var/run/radstat/ath-6"},
        {INT_MAX, "/var/run/radstat/ath2147483646"},
        {INT_MIN + 1, "/var/run/radstat/ath-2147483648"},
    };
    for (const auto &row : rows) {
        fake_daemon daemon(row.path);
        daemon.answer("answer");
        exchange result = ask_buffered(row.index);
        EXPECT_EQ(result.status, 0) << row.path;
        EXPECT_EQ(result.reply.substr(0, result.length), "answer") << row.path;
        EXPECT_EQ(daemon.requests(), (std::vector<std::string>{std::string("result\0", 7)}));
    }
}

TEST_F(ControlChannel, SteeringIsAskedOfItsDaemonWhateverTheIndex) {
    for (int index : {1, 9, INT_MIN}) {
        fake_daemon daemon("/var/run/ssidsteering");
        daemon.answer("answer");
        exchange result = ask_buffered(index, 10, RAD_CTRL_STEERING);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.reply, "answer????");
        EXPECT_EQ(result.length, 6U);
    }
}

// --- what is remembered ---

TEST_F(ControlChannel, AnAnswerIsRememberedForItsRadio) {
    struct {
        int index;
        int slot;
    } rows[] = {{1, 0}, {7, 0}, {8, 1}, {9, 1}, {16, 1}, {0, 0}, {-1, 0}, {INT_MIN, 0}, {INT_MAX, 1}};
    for (const auto &row : rows) {
        SetUp();
        int number = static_cast<int>(row.index - 1U);
        fake_daemon daemon("/var/run/radstat/ath" + std::to_string(number));
        std::string answer(192, static_cast<char>('A' + row.slot));
        daemon.answer(answer);
        EXPECT_EQ(ask_buffered(row.index).reply, answer);
        EXPECT_EQ(remembered(row.slot), answer) << row.index;
        EXPECT_EQ(remembered(1 - row.slot), ALL_FF) << row.index;
    }
}

TEST_F(ControlChannel, AShortAnswerReplacesOnlyItsOwnBytes) {
    for (size_t length : {1, 40, 191, 192}) {
        SetUp();
        fake_daemon daemon(COLLECTOR_0);
        daemon.answer(std::string(length, 'x'));
        exchange result = ask_buffered(1);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.length, length);
        EXPECT_EQ(result.reply, std::string(length, 'x') + std::string(192 - length, FILLER));
        EXPECT_EQ(remembered(0), std::string(length, 'x') + std::string(192 - length, '\xff'));
        EXPECT_EQ(remembered(1), ALL_FF);
    }
}

TEST_F(ControlChannel, OfALongAnswerOneAnswersBytesAreRemembered) {
    for (int index : {1, 9}) {
        SetUp();
        fake_daemon daemon(index == 1 ? COLLECTOR_0 : COLLECTOR_8);
        daemon.answer(std::string(192, 'x') + std::string(100, 'y'));
        exchange result = ask_buffered(index, 300);
        EXPECT_EQ(result.length, 292U);
        EXPECT_EQ(remembered(index == 1 ? 0 : 1), std::string(192, 'x'));
        EXPECT_EQ(remembered(index == 1 ? 1 : 0), ALL_FF);
    }
}

TEST_F(ControlChannel, AnAnswerOfZerosIsReplacedByTheWholeRememberedOne) {
    std::string known;
    for (int i = 0; i < 384; i++) {
        known += static_cast<char>(i * 7 + 1);
    }
    memcpy(buf_reply, known.data(), known.size());
    for (size_t length : {0, 1, 40, 191, 192, 193}) {
        for (int index : {1, 9}) {
            fake_daemon daemon(index == 1 ? COLLECTOR_0 : COLLECTOR_8);
            daemon.answer(std::string(length, '\0'));
            exchange result = ask_buffered(index, 200);
            EXPECT_EQ(result.status, 0);
            EXPECT_EQ(result.length, 192U) << length;
            EXPECT_EQ(result.reply.substr(0, 192), known.substr(index == 1 ? 0 : 192, 192)) << length;
            EXPECT_EQ(std::string(reinterpret_cast<char *>(buf_reply), 384), known) << length;
        }
    }
}

TEST_F(ControlChannel, OneByteThatIsNotZeroMakesAnAnswerReal) {
    for (size_t at : {0, 39, 191}) {
        SetUp();
        fake_daemon daemon(COLLECTOR_0);
        std::string answer(192, '\0');
        answer[at] = 1;
        daemon.answer(answer);
        EXPECT_EQ(ask_buffered(1).reply, answer);
        EXPECT_EQ(remembered(0), answer);
    }
}

// Only what an answer of the contract's size has counts.
TEST_F(ControlChannel, BytesBehindTheSizeOfAnAnswerDoNotMakeItReal) {
    fake_daemon daemon(COLLECTOR_0);
    daemon.answer(std::string(192, '\0') + "x");
    exchange result = ask_buffered(1, 200);
    EXPECT_EQ(result.length, 192U);
    EXPECT_EQ(result.reply.substr(0, 192), ALL_FF);
    EXPECT_EQ(remembered(0), ALL_FF);
}

TEST_F(ControlChannel, TheRememberedAnswerIsCutToTheRoomThereIs) {
    memset(buf_reply, 'r', sizeof(buf_reply));
    exchange result;
    capture([&result] { result = ask_buffered(1, 100); });  // there is no collector
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.length, 100U);
    EXPECT_EQ(result.reply, std::string(100, 'r'));
    fake_daemon daemon(COLLECTOR_0);
    daemon.answer("");
    result = ask_buffered(1, 100);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.length, 100U);
    EXPECT_EQ(result.reply, std::string(100, 'r'));
}

TEST_F(ControlChannel, WithoutACollectorTheRememberedAnswerComesWithTheFailure) {
    memset(buf_reply, 'a', 192);
    memset(buf_reply + 192, 'b', 192);
    for (int index : {1, 7, INT_MIN, 8, 9, INT_MAX}) {
        printed_text printed = capture([index] {
            exchange result = ask_buffered(index, 200);
            EXPECT_EQ(result.status, -1);
            EXPECT_EQ(result.length, 192U);
            EXPECT_EQ(result.reply, std::string(192, index > 7 ? 'b' : 'a') + std::string(8, FILLER)) << index;
        });
        EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n");
        EXPECT_EQ(printed.out, "");
    }
}

TEST_F(ControlChannel, WithoutASteeringDaemonTheReplyStaysAsItWas) {
    printed_text printed = capture([] {
        exchange result = ask_buffered(1, 200, RAD_CTRL_STEERING);
        EXPECT_EQ(result.status, -1);
        EXPECT_EQ(result.length, 200U);
        EXPECT_EQ(result.reply, std::string(200, FILLER));
    });
    EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n");
}

TEST_F(ControlChannel, AnotherKindHasNoDaemonAndNoMemory) {
    fake_daemon collector(COLLECTOR_0);
    fake_daemon steering("/var/run/ssidsteering");
    collector.answer("c");
    steering.answer("s");
    for (int kind : {2, -1}) {
        printed_text printed = capture([kind] {
            exchange result = ask_buffered(1, 200, kind);
            EXPECT_EQ(result.status, -1);
            EXPECT_EQ(result.length, 200U);
            EXPECT_EQ(result.reply, std::string(200, FILLER));
        });
        EXPECT_EQ(printed.err, "[VLK-API] Error rad_ctrl_request_buffered Could not connect\n");
    }
}

TEST_F(ControlChannel, AnswersOfSteeringAreNotRemembered) {
    for (const std::string &answer : {std::string(192, 'x'), std::string(192, '\0'), std::string()}) {
        fake_daemon daemon("/var/run/ssidsteering");
        daemon.answer(answer);
        exchange result = ask_buffered(1, 192, RAD_CTRL_STEERING);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.length, answer.size());
        EXPECT_EQ(result.reply.substr(0, answer.size()), answer);
        EXPECT_EQ(remembered(0), ALL_FF);
        EXPECT_EQ(remembered(1), ALL_FF);
    }
}

TEST_F(ControlChannel, ACollectorThatDoesNotAnswerLeavesReplyAndMemoryAlone) {
    memset(buf_reply, 'a', sizeof(buf_reply));
    fake_daemon daemon(COLLECTOR_0);
    printed_text printed = capture([] {
        double begin = seconds_now();
        exchange result = ask_buffered(1);
        EXPECT_EQ(result.status, -2);
        EXPECT_EQ(result.length, 192U);
        EXPECT_EQ(result.reply, std::string(192, FILLER));
        expect_two_seconds(seconds_now() - begin);
    });
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(remembered(0), std::string(192, 'a'));
}

TEST_F(ControlChannel, ForgettingFillsTheSlotOfTheRadio) {
    for (int index : {1, 7, 0, INT_MIN, 8, 9, INT_MAX}) {
        memset(buf_reply, 'a', sizeof(buf_reply));
        rad_ctrl_forget(index);
        int slot = index > 7 ? 1 : 0;
        EXPECT_EQ(remembered(slot), ALL_FF) << index;
        EXPECT_EQ(remembered(1 - slot), std::string(192, 'a')) << index;
    }
}

// --- two threads ---

TEST_F(ControlChannel, ASecondConnectionOfAKindWaitsUntilTheFirstIsClosed) {
    for (int kind : {RAD_CTRL_STATISTICS, RAD_CTRL_STEERING}) {
        fake_daemon daemon(DAEMON);
        rad_ctrl_conn *first = rad_ctrl_open(DAEMON, kind);
        ASSERT_NE(first, nullptr);
        std::atomic<bool> opened = false;
        std::thread other([&] {
            rad_ctrl_conn *second = rad_ctrl_open(DAEMON, kind);
            opened = true;
            EXPECT_NE(second, nullptr);
            rad_ctrl_close(second);
        });
        usleep(200000);
        EXPECT_FALSE(opened);
        EXPECT_TRUE(exists(local_path(kind)));
        rad_ctrl_close(first);
        other.join();
        EXPECT_TRUE(opened);
    }
}

TEST_F(ControlChannel, ConnectionsOfDifferentKindsDoNotWaitForEachOther) {
    fake_daemon daemon(DAEMON);
    rad_ctrl_conn *statistics = rad_ctrl_open(DAEMON, RAD_CTRL_STATISTICS);
    rad_ctrl_conn *steering = rad_ctrl_open(DAEMON, RAD_CTRL_STEERING);
    EXPECT_NE(statistics, nullptr);
    EXPECT_NE(steering, nullptr);
    rad_ctrl_close(statistics);
    rad_ctrl_close(steering);
}

// An answer is the request with a mark of the daemon's: whoever gets another's sees it.
TEST_F(ControlChannel, ExchangesOfTwoThreadsGetTheirOwnAnswers) {
    constexpr int EXCHANGES = 50;
    fake_daemon daemon(DAEMON);
    daemon.serve([](const std::string &request, std::string *answer) {
        usleep(1000);
        *answer = "answer to " + request;
        return true;
    });
    std::atomic<int> right = 0;
    auto converse = [&right](const char *name) {
        for (int i = 0; i < EXCHANGES; i++) {
            std::string request = name + std::to_string(i);
            exchange result = ask(DAEMON, request, 100, RAD_CTRL_STEERING);
            right += result.status == 0 && result.reply.substr(0, result.length) == "answer to " + request;
        }
    };
    std::thread other(converse, "worker ");
    converse("service ");
    other.join();
    EXPECT_EQ(right, 2 * EXCHANGES);
}

// The init worker forgets what the service thread is reading.
TEST_F(ControlChannel, AnAnswerIsForgottenWholeWhileAnotherThreadRemembersIt) {
    fake_daemon daemon(COLLECTOR_0);
    std::atomic<int> count = 0;
    // Every other answer is one of zeros, which is replaced by what is remembered.
    daemon.serve([&count](const std::string &, std::string *answer) {
        answer->assign(192, count++ % 2 ? '\0' : 'x');
        return true;
    });
    std::atomic<bool> done = false;
    std::thread worker([&done] {
        while (!done) {
            rad_ctrl_forget(1);
        }
    });
    for (int i = 0; i < 200; i++) {
        exchange result = ask_buffered(1);
        EXPECT_TRUE(result.reply == std::string(192, 'x') || result.reply == ALL_FF) << i;
    }
    done = true;
    worker.join();
}

}  // namespace
