// watch: a command again and again, in a pipe, as lines of JSON, and at a terminal.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <regex>
#include <thread>

#include "server/wire.h"
#include "tests/support/terminal.h"
#include "tests/system/gateway.h"

namespace {

using json = nlohmann::json;

// The text with every time in it written TIME.
std::string timeless(const std::string &text) {
    static const std::regex time("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z");
    return std::regex_replace(text, time, "TIME");
}

strings lines_of(const std::string &text) {
    std::istringstream stream(text);
    strings lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

size_t times_in(const std::string &text, const std::string &piece) {
    size_t count = 0;
    for (size_t at = 0; (at = text.find(piece, at)) != std::string::npos; at += piece.size())
        count++;
    return count;
}

class ClientWatch : public BrokenGateway {
protected:
    void SetUp() override {
        BrokenGateway::SetUp();
        begin_with({"AP_VAP_NUM=8", "AP_RADIO_ID_9=1", "AP_SSID=home"});
    }
};

TEST_F(ClientWatch, PrintsEachAnswerBelowTheTimeAndTheCommandLine) {
    command_output watch = client("watch --interval 0.1 --count 2 getSsid 1");
    EXPECT_EQ(watch.status, 0);
    EXPECT_EQ(timeless(watch.text), "TIME  getSsid 1\nhome\n\nTIME  getSsid 1\nhome\n");
    EXPECT_EQ(watch.errors, "");
}

TEST_F(ClientWatch, WaitsForTheIntervalBetweenTwoRuns) {
    auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(client("watch --interval 0.7 --count 2 getSsid 1").status, 0);
    auto taken = std::chrono::steady_clock::now() - begun;
    EXPECT_GE(taken, std::chrono::milliseconds(700));
    EXPECT_LT(taken, std::chrono::milliseconds(1400)) << "none behind the last run";
}

TEST_F(ClientWatch, JsonIsOneLineARunWithTheTimeInFrontOfTheAnswer) {
    strings lines = lines_of(client("-o json watch --interval 0.1 --count 2 getSsid 1").text);
    ASSERT_EQ(lines.size(), 2u);
    for (const std::string &line : lines) {
        EXPECT_EQ(timeless(line), R"({"time":"TIME","operation":"getSsid","code":0,"result":{"ssid":"home"}})");
        EXPECT_TRUE(json::accept(line)) << line;
    }
    EXPECT_LT(lines[0].substr(9, 24), lines[1].substr(9, 24));
}

TEST_F(ClientWatch, DocumentIsInItsResultAsWithoutAWatch) {
    json line = json::parse(client("watch --count 1 -o json interface").text, nullptr, false);
    line.erase("time");
    EXPECT_EQ(line, json::parse(client("-o json interface").text, nullptr, false));
}

TEST_F(ClientWatch, CommandThatPrintsNothingIsALineToo) {
    write_file("/tmp/lines", "");
    json line = json::parse(client("watch --count 1 -o json batch /tmp/lines").text, nullptr, false);
    EXPECT_EQ(line["text"], "");
    EXPECT_EQ(line.size(), 2u);
    unlink("/tmp/lines");
}

TEST_F(ClientWatch, BareValuesStandAlone) {
    EXPECT_EQ(client("-o value watch --interval 0.1 --count 2 getSsid 1").text, "home\nhome\n");
    EXPECT_EQ(timeless(client("watch --count 1 getSsid 1 -o json").text),
              "TIME  getSsid 1 -o json\n{\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"home\"}}\n");
}

TEST_F(ClientWatch, CommandThatFailsIsRunAgainAndTheLastStatusIsTheWatchs) {
    command_output watch = client("watch --interval 0.1 --count 2 setChannel 9 6");
    EXPECT_EQ(watch.status, 1);
    EXPECT_EQ(timeless(watch.text), "TIME  setChannel 9 6\n\nTIME  setChannel 9 6\n");
    EXPECT_EQ(watch.errors,
              "setChannel: the server answered failure (-1)\nsetChannel: the server answered failure (-1)\n");
}

TEST_F(ClientWatch, StatusIsThatOfTheLastRunOnly) {
    fault("iwconfig slow 1.6");
    // The first run meets a tool that is too slow, which is mended meanwhile. What the server answers to that run comes
    // too late and meets nobody.
    std::thread mending([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(1200));
        EXPECT_EQ(system("fault iwconfig off"), 0);
    });
    command_output watch = client("--timeout 1 watch --interval 1 --count 2 getStatus 1");
    mending.join();
    EXPECT_EQ(watch.status, 0);
    EXPECT_NE(watch.errors.find("no answer"), std::string::npos) << watch.errors;
    EXPECT_EQ(timeless(watch.text), "TIME  getStatus 1\n\nTIME  getStatus 1\nUp\n");
}

TEST_F(ClientWatch, WordsThatMakeNoSenseEndItAtOnce) {
    command_output watch = client("watch getSid 1");
    EXPECT_EQ(watch.status, 2);
    EXPECT_EQ(watch.text, "");
    EXPECT_TRUE(watch.errors.find("there is no command or operation \"getSid\"") != std::string::npos) << watch.errors;
    EXPECT_EQ(client("watch getSsid one").status, 2);
    EXPECT_EQ(client("watch").status, 2);
}

TEST_F(ClientWatch, WhatHasNoEndOfItsOwnCannotBeWatched) {
    EXPECT_EQ(client("watch --count 1 watch getSsid 1").errors, "watch: a watch cannot be watched\n");
    EXPECT_EQ(client("watch --count 1 shell </dev/null").errors, "shell: a shell cannot be watched\n");
    write_file("/tmp/lines", "watch getSsid 1\n");
    command_output batch = client("watch --count 1 batch --keep-going /tmp/lines");
    EXPECT_EQ(batch.status, 2);
    EXPECT_EQ(batch.errors, "/tmp/lines:1: watch: a watch cannot be watched\n");
    unlink("/tmp/lines");
}

TEST_F(ClientWatch, StandardInputIsNotReadByRuns) {
    for (const char *command : {"diff -", "batch -", "batch"}) {
        command_output watch = client(std::string("watch --count 2 ") + command + " </dev/null");
        EXPECT_EQ(watch.status, 2) << command;
        EXPECT_NE(
            watch.errors.find("standard input cannot be read: only the first run of a watch would find something"),
            std::string::npos)
            << watch.errors;
    }
}

TEST_F(ClientWatch, OptionsOfTheCommandStayItsOwnInEachRun) {
    strings lines = lines_of(client("watch --interval 0.1 --count 3 list --output json identity").text);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(timeless(lines[0]), "TIME  list --output json identity");
    EXPECT_TRUE(json::accept(lines[1]));
    EXPECT_EQ(lines[4], lines[1]);
    EXPECT_EQ(lines[7], lines[1]);
}

TEST_F(ClientWatch, OutputThatCannotBeWrittenEndsIt) {
    EXPECT_EQ(client("watch --interval 0.1 getSsid 1 > /dev/full").status, 7);
    EXPECT_NE(client("watch --interval 0.1 getSsid 1 | head -n 1").text, "") << "and this ends at all";
}

// A watch in the background, whose output goes to a file.
class watch_in_background {
public:
    explicit watch_in_background(const std::string &words) {
        child = fork();
        if (child == 0) {
            signal(SIGINT, SIG_DFL);  // whoever runs the tests in the background ignores it
            execl("/bin/sh", "sh", "-c", ("exec " + std::string(CLIENT_PROGRAM) + " " + words + " > " + FILE).c_str(),
                  nullptr);
            _exit(127);
        }
    }

    ~watch_in_background() {
        if (child > 0)
            end(SIGKILL);
        unlink(FILE);
    }

    bool await(const std::string &piece, size_t count) const {
        for (int i = 0; i < 3000; i++) {
            if (times_in(read_file(FILE), piece) >= count)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    std::string output() const {
        return read_file(FILE);
    }

    int end(int number) {
        int status = -1;
        kill(child, number);
        waitpid(child, &status, 0);
        child = -1;
        return status;
    }

private:
    static constexpr const char FILE[] = "/tmp/watch.out";
    pid_t child = -1;
};

TEST_F(ClientWatch, ChangesShowsOnlyAnswersThatDifferFromTheOneBefore) {
    watch_in_background watch("-o value watch --changes --interval 0.1 getSsid 1");
    ASSERT_TRUE(watch.await("home\n", 1));
    std::this_thread::sleep_for(std::chrono::milliseconds(350));
    ASSERT_EQ(set_text(PROC_wlan_set_ssid, 1, "away"), 0);
    ASSERT_TRUE(watch.await("away\n", 1));
    ASSERT_EQ(set_text(PROC_wlan_set_ssid, 1, "home"), 0);
    ASSERT_TRUE(watch.await("home\n", 2));
    EXPECT_EQ(watch.end(SIGTERM), 0);
    EXPECT_EQ(watch.output(), "home\naway\nhome\n");
}

TEST_F(ClientWatch, FailuresThatDifferAreChangesToo) {
    command_output watch = client("watch --changes --interval 0.1 --count 4 setChannel 9 6");
    EXPECT_EQ(watch.errors, "setChannel: the server answered failure (-1)\n");
}

TEST_F(ClientWatch, LinesAreThereAsSoonAsTheyArePrinted) {
    watch_in_background watch("-o json watch --interval 3600 getSsid 1");
    EXPECT_TRUE(watch.await("\"result\":{\"ssid\":\"home\"}}\n", 1));
    EXPECT_EQ(watch.end(SIGINT), 0);
}

TEST_F(ClientWatch, InterruptIsASuccessAlsoAfterARunThatFailed) {
    watch_in_background watch("-o json watch --interval 3600 setChannel 9 6");
    EXPECT_TRUE(watch.await("\"kind\":\"failure\"", 1)) << watch.output();
    EXPECT_EQ(watch.end(SIGTERM), 0);
}

// --- at a terminal ---

constexpr const char CLEAR[] = "\033[H\033[2J";

TEST_F(ClientWatch, TerminalIsClearedBeforeEachAnswer) {
    Terminal watch({CLIENT_PROGRAM, "watch", "--interval", "0.1", "--count", "2", "getSsid", "1"});
    EXPECT_EQ(watch.ends(), 0);
    std::string frame = std::string(CLEAR) + "TIME  getSsid 1\r\nhome\r\n";
    EXPECT_EQ(timeless(watch.printed), frame + frame);
}

TEST_F(ClientWatch, TerminalIsNotClearedForPrograms) {
    Terminal watch({CLIENT_PROGRAM, "-o", "value", "watch", "--interval", "0.1", "--count", "2", "getSsid", "1"});
    EXPECT_EQ(watch.ends(), 0);
    EXPECT_EQ(watch.printed, "home\r\nhome\r\n");
}

// Whatever is still switched on when the text ends: "" when each colour has its end.
std::string left_behind(std::string text) {
    text = std::regex_replace(text, std::regex("\033\\[H\033\\[2J"), "");
    text = std::regex_replace(text, std::regex("\033\\[[1-9][0-9;]*m[^\033]*\033\\[0?m"), "");
    size_t at = text.find('\033');
    return at == std::string::npos ? "" : text.substr(at);
}

TEST_F(ClientWatch, InterruptInAPauseEndsItAtOnceWithSuccessAndLeavesNoSequenceBehind) {
    Terminal watch({CLIENT_PROGRAM, "watch", "--interval", "3600", "list", "identity", "--color=always"});
    ASSERT_TRUE(watch.await([](const std::string &printed) { return printed.find("getSsid") != std::string::npos; }));
    EXPECT_TRUE(watch.interrupt());
    EXPECT_EQ(watch.status, 0);
    EXPECT_EQ(left_behind(watch.printed), "");
    EXPECT_TRUE(watch.same_modes);
}

TEST_F(ClientWatch, InterruptDuringACallEndsItAtOnceWithSuccess) {
    size_t mark = mark_of(JOURNAL_FILE);
    fault("iwconfig slow 1.3");
    Terminal watch({CLIENT_PROGRAM, "watch", "getStatus", "1"});
    for (int i = 0; i < 3000 && commands_since(mark).empty(); i++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(watch.interrupt());
    EXPECT_EQ(watch.status, 0);
    EXPECT_EQ(watch.printed, "^C");
    EXPECT_TRUE(watch.same_modes);
}

TEST_F(ClientWatch, WithoutAWatchTooACallIsInterruptedAtOnce) {
    size_t mark = mark_of(JOURNAL_FILE);
    fault("iwconfig slow 1.3");
    Terminal getter({CLIENT_PROGRAM, "getStatus", "1"});
    for (int i = 0; i < 3000 && commands_since(mark).empty(); i++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(getter.interrupt());
    EXPECT_EQ(getter.status, 128 + SIGINT);
}

TEST_F(ClientWatch, InterruptsAtAnyMomentLeaveOnlyWholeFrames) {
    for (int delay : {30, 110, 160, 230}) {
        Terminal watch({CLIENT_PROGRAM, "watch", "--interval", "0.1", "--color=always", "getAssocDevicesTable", "1"});
        ASSERT_TRUE(watch.await([](const std::string &printed) { return !printed.empty(); }));
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        EXPECT_TRUE(watch.interrupt());
        EXPECT_EQ(watch.status, 0);
        EXPECT_EQ(left_behind(watch.printed), "");
    }
}

}  // namespace
