// The doors to the shell: what is captured, what failure looks like, and the search path.
#include "config/command.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "tests/support/platform.h"

// No block of this thread is resized to this size or beyond; 0 is no limit.
static thread_local size_t growth_limit = 0;

// Stands in front of the C library's, so that memory can run out where a test wants it. The library itself calls it
// from threads that are not ready for the thread sanitizer yet, so nothing of that may be in here.
extern "C" __attribute__((no_sanitize("thread"))) void *realloc(void *block, size_t size) noexcept {
    using function = void *(*)(void *, size_t);
    static function library = nullptr;
    if (!library) {
        library = reinterpret_cast<function>(dlsym(RTLD_NEXT, "realloc"));
    }
    if (growth_limit != 0 && size >= growth_limit) {
        return nullptr;
    }
    return library(block, size);
}

namespace {

struct Command : testing::Test {
    void SetUp() override {
        reset_platform();
    }

    void TearDown() override {
        growth_limit = 0;
        free(output);
    }

    char *output = nullptr;
};

TEST_F(Command, TheWholeOutputIsCaptured) {
    EXPECT_EQ(athcfg_executecmd("caller", "echo one; echo; echo two", &output), 0);
    EXPECT_STREQ(output, "one\n\ntwo\n");
}

TEST_F(Command, OutputWithoutALastLineBreakIsCaptured) {
    EXPECT_EQ(athcfg_executecmd("caller", "printf 'one\\ntwo'", &output), 0);
    EXPECT_STREQ(output, "one\ntwo");
}

TEST_F(Command, ASilentCommandYieldsAnEmptyTextAndNotNull) {
    EXPECT_EQ(athcfg_executecmd("caller", "true", &output), 0);
    EXPECT_STREQ(output, "");
}

TEST_F(Command, LinesOfAnyLengthAreCapturedWhole) {
    for (size_t length : {254, 255, 256, 510, 511, 512, 1000}) {
        SCOPED_TRACE(length);
        std::string line(length, 'x');
        char *text = nullptr;
        EXPECT_EQ(athcfg_executecmd("caller", ("echo " + line + "; echo end").c_str(), &text), 0);
        EXPECT_EQ(text, line + "\nend\n");
        free(text);
    }
}

TEST_F(Command, AnOutputOfManyLinesIsCaptured) {
    EXPECT_EQ(athcfg_executecmd("caller", "seq 1 20000", &output), 0);
    std::string expected;
    for (int i = 1; i <= 20000; i++) {
        expected += std::to_string(i) + "\n";
    }
    EXPECT_TRUE(output == expected);
}

TEST_F(Command, ALineThatBeginsWithNulEndsTheReading) {
    EXPECT_EQ(athcfg_executecmd("caller", "printf 'one\\n\\000two\\nthree\\n'", &output), 0);
    EXPECT_STREQ(output, "one\n");
}

TEST_F(Command, TheTextBehindANulIsLostUpToTheEndOfItsLine) {
    EXPECT_EQ(athcfg_executecmd("caller", "printf 'one\\000two\\nthree\\n'", &output), 0);
    EXPECT_STREQ(output, "onethree\n");
}

TEST_F(Command, TheExitStatusOfTheCommandIsNotExamined) {
    EXPECT_EQ(athcfg_executecmd("caller", "echo text; exit 3", &output), 0);
    EXPECT_STREQ(output, "text\n");
}

TEST_F(Command, AMissingToolIsNoFailure) {
    capture([this] { EXPECT_EQ(athcfg_executecmd("caller", "no_such_tool", &output), 0); });
    EXPECT_STREQ(output, "");
}

TEST_F(Command, StandardErrorOfTheCommandIsNotCaptured) {
    printed_text printed =
        capture([this] { EXPECT_EQ(athcfg_executecmd("caller", "echo out; echo err >&2", &output), 0); });
    EXPECT_STREQ(output, "out\n");
    EXPECT_EQ(printed.err, "err\n");
}

TEST_F(Command, ACommandWithoutAPipeFailsWithANullOutput) {
    char stale[] = "stale";
    char *text = stale;
    begin_descriptor_shortage();
    int status = athcfg_executecmd("caller", "true", &text);
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(text, nullptr);
}

TEST_F(Command, ACommandWithoutAPipeIsReportedWithItsCaller) {
    set_debug(true);
    printed_text printed = capture([this] {
        begin_descriptor_shortage();
        athcfg_executecmd("wlan_somebody", "true", &output);
        end_descriptor_shortage();
    });
    EXPECT_EQ(printed.out,
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:true\n"
              "[VLK-API] athcfg_executecmd wlan_somebody: popen true error\n");
}

// One line that needs the buffer grown once: its first 255 characters fit the first step.
const char LONG_LINE_COMMAND[] = "printf '%0300d' 0";
constexpr size_t SECOND_STEP = 255 + 256;

TEST_F(Command, WhenMemoryRunsOutTheTextSoFarIsLeftToTheCaller) {
    growth_limit = SECOND_STEP;
    int status = athcfg_executecmd("caller", LONG_LINE_COMMAND, &output);
    growth_limit = 0;
    EXPECT_EQ(status, -1);
    EXPECT_EQ(std::string(output), std::string(255, '0'));
}

TEST_F(Command, ACommandThatMemoryRanOutForIsReportedWithItsCaller) {
    set_debug(true);
    printed_text printed = capture([this] {
        growth_limit = SECOND_STEP;
        athcfg_executecmd("wlan_somebody", LONG_LINE_COMMAND, &output);
        growth_limit = 0;
    });
    EXPECT_EQ(printed.out,
              "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:printf '%0300d' 0\n"
              "[VLK-API] athcfg_executecmd wlan_somebody: realloc printf '%0300d' 0 error\n");
}

TEST_F(Command, ACommandIsLoggedOnceWhileDebuggingIsOn) {
    set_debug(true);
    printed_text printed = capture([this] { athcfg_executecmd("caller", "echo text", &output); });
    EXPECT_EQ(printed.out, "[VLK-API] athcfg_executecmd athcfg_executecmd: cmd:echo text\n");
}

TEST_F(Command, NothingIsPrintedWhileDebuggingIsOff) {
    printed_text printed = capture([this] {
        athcfg_executecmd("caller", "echo text", &output);
        begin_descriptor_shortage();
        char *nothing = nullptr;
        athcfg_executecmd("caller", "true", &nothing);
        end_descriptor_shortage();
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
}

TEST_F(Command, AFormattedCommandIsPutTogether) {
    EXPECT_EQ(athcfg_executecmdf("caller", &output, "echo %s %d", "ath", 7), 0);
    EXPECT_STREQ(output, "ath 7\n");
}

TEST_F(Command, ACommandWhoseOutputNobodyWantsIsRunToItsEnd) {
    install_tool("iwpriv", std::string(100'000, 'x'));
    printed_text printed = capture([] { EXPECT_EQ(athcfg_runcmdf("caller", "iwpriv ath%d l2tif %d", 0, 1), 0); });
    EXPECT_EQ(tool_calls(), std::vector<std::string>{"iwpriv ath0 l2tif 1"});
    EXPECT_EQ(printed.out, "");
}

TEST_F(Command, ACommandWhoseOutputNobodyWantsFailsWithoutAPipe) {
    begin_descriptor_shortage();
    int status = athcfg_runcmdf("caller", "true");
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
}

TEST_F(Command, AFormattedCommandMayBeLong) {
    std::string argument(20000, 'a');
    EXPECT_EQ(athcfg_executecmdf("caller", &output, "echo %s", argument.c_str()), 0);
    EXPECT_EQ(output, argument + "\n");
}

TEST_F(Command, AFormattedCommandWithoutAPipeFailsWithANullOutput) {
    char stale[] = "stale";
    char *text = stale;
    begin_descriptor_shortage();
    int status = athcfg_executecmdf("caller", &text, "true");
    end_descriptor_shortage();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(text, nullptr);
}

// --- the beginning of an output ---

// What was read; the bytes behind it must be as they were.
std::string beginning_of(const char *command, size_t size) {
    std::string bytes(size + 8, '?');
    ssize_t length = read_command(command, bytes.data(), size);
    EXPECT_GE(length, 0) << command;
    EXPECT_LE(length, static_cast<ssize_t>(size)) << command;
    size_t count = static_cast<size_t>(length);
    EXPECT_EQ(bytes.substr(count), std::string(bytes.size() - count, '?')) << command;
    return bytes.substr(0, count);
}

TEST_F(Command, AShortOutputIsReadWholeAndNotTerminated) {
    EXPECT_EQ(beginning_of("printf 'one\\ntwo'", 128), "one\ntwo");
}

TEST_F(Command, OfALongOutputTheBeginningIsRead) {
    EXPECT_EQ(beginning_of("printf 12345678", 7), "1234567");
    EXPECT_EQ(beginning_of("printf 12345678", 8), "12345678");
    EXPECT_EQ(beginning_of("printf 12345678", 9), "12345678");
    EXPECT_EQ(beginning_of("printf 12345678", 1), "1");
}

TEST_F(Command, BytesOfAllKindsAreRead) {
    EXPECT_EQ(beginning_of("printf '\\000a\\000\\n\\377\\n\\000'", 128), std::string("\0a\0\n\377\n\0", 7));
}

TEST_F(Command, AnOutputThatComesInPiecesIsPutTogether) {
    EXPECT_EQ(beginning_of("printf a; sleep 0.05; printf b; sleep 0.05; printf cd", 3), "abc");
}

TEST_F(Command, ACommandThatPrintsForEverIsNotReadForEver) {
    EXPECT_EQ(beginning_of("yes 2>/dev/null", 4), "y\ny\n");
}

TEST_F(Command, ThereIsNothingToReadOfASilentOrMissingCommand) {
    printed_text printed = capture([] {
        EXPECT_EQ(beginning_of("true", 128), "");
        EXPECT_EQ(beginning_of("exit 3", 128), "");
        EXPECT_EQ(beginning_of("no_such_tool", 128), "");
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_TRUE(printed.err.find("no_such_tool") != std::string::npos) << printed.err;
}

TEST_F(Command, TheExitStatusOfACommandThatIsReadIsNotExamined) {
    EXPECT_EQ(beginning_of("printf text; exit 3", 128), "text");
}

TEST_F(Command, NothingIsReadOfACommandWithoutAPipe) {
    char bytes[] = "as it was";
    begin_descriptor_shortage();
    ssize_t length = read_command("echo text", bytes, sizeof(bytes));
    end_descriptor_shortage();
    EXPECT_EQ(length, -1);
    EXPECT_STREQ(bytes, "as it was");
}

TEST_F(Command, ACommandThatIsReadIsWaitedFor) {
    std::string file = std::string(FAKE_TOOLS) + "/done";
    EXPECT_EQ(beginning_of(("exec 3>&1; printf ab; exec >&- 3>&-; sleep 0.2; echo yes >" + file).c_str(), 2), "ab");
    EXPECT_EQ(read_file(file), "yes\n");
}

TEST_F(Command, ReadingLeavesNoDescriptorOpen) {
    int before = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    close(before);
    beginning_of("printf 12345678", 2);
    int after = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    close(after);
    EXPECT_EQ(after, before);
}

TEST_F(Command, ReadingIsNotLogged) {
    set_debug(true);
    printed_text printed = capture([] { beginning_of("echo text", 128); });
    EXPECT_EQ(printed.out + printed.err, "");
}

// --- both, and the shell ---

TEST_F(Command, CommandsOfSeveralThreadsDoNotMix) {
    constexpr int THREADS = 4;
    constexpr int ROUNDS = 10;
    int wrong[THREADS] = {};
    std::thread threads[THREADS];
    for (int i = 0; i < THREADS; i++) {
        threads[i] = std::thread([i, &wrong] {
            char expected[32];
            snprintf(expected, sizeof(expected), "%d\n%d\n", i, i);
            for (int round = 0; round < ROUNDS; round++) {
                char *text = nullptr;
                athcfg_executecmdf("caller", &text, "echo %d; echo %d", i, i);
                wrong[i] += !text || strcmp(text, expected) != 0;
                free(text);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (int i = 0; i < THREADS; i++) {
        EXPECT_EQ(wrong[i], 0) << "thread " << i;
    }
}

TEST_F(Command, AShellCommandPrintsToTheServersStandardOutput) {
    printed_text printed = capture([] { run_shell("echo text"); });
    EXPECT_EQ(printed.out, "text\n");
}

TEST_F(Command, AShellCommandIsWaitedForAndItsStatusReturned) {
    int status = run_shell("exit 3");
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 3);
}

TEST_F(Command, AShellCommandInTheBackgroundIsNotWaitedFor) {
    std::string fifo = std::string(FAKE_TOOLS) + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    // The reader ends only when this test writes, so waiting for it would last for ever.
    EXPECT_EQ(run_shell(("cat " + fifo + " >/dev/null &").c_str()), 0);
    write_file(fifo, "go");
}

// The path is set once in a process, so each of these has a process of its own; it prints the path it ends with.
struct SearchPath : Command {
    void SetUp() override {
        Command::SetUp();
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

[[noreturn]] void print_path_and_exit() {
    fprintf(stderr, "path is <%s>\n", getenv("PATH"));
    exit(0);
}

TEST_F(SearchPath, TheScriptsDirectoryIsAppended) {
    EXPECT_EXIT(
        {
            setenv("PATH", "/usr/bin:/bin", 1);
            athcfg_set_path();
            print_path_and_exit();
        },
        testing::ExitedWithCode(0), "path is </usr/bin:/bin:/etc/ath>");
}

TEST_F(SearchPath, APathThatNamesTheScriptsDirectoryIsLeftUnchanged) {
    EXPECT_EXIT(
        {
            setenv("PATH", "/etc/ath:/bin", 1);
            athcfg_set_path();
            print_path_and_exit();
        },
        testing::ExitedWithCode(0), "path is </etc/ath:/bin>");
}

TEST_F(SearchPath, SettingItTwiceAppendsOnce) {
    EXPECT_EXIT(
        {
            setenv("PATH", "/bin", 1);
            athcfg_set_path();
            athcfg_set_path();
            print_path_and_exit();
        },
        testing::ExitedWithCode(0), "path is </bin:/etc/ath>");
}

TEST_F(SearchPath, OnlyTheFirstCallDoesAnything) {
    EXPECT_EXIT(
        {
            setenv("PATH", "/bin", 1);
            athcfg_set_path();
            setenv("PATH", "/usr/bin", 1);
            athcfg_set_path();
            print_path_and_exit();
        },
        testing::ExitedWithCode(0), "path is </usr/bin>");
}

TEST_F(SearchPath, AnAbsentPathBecomesTheUsualOneAndTheScriptsDirectory) {
    EXPECT_EXIT(
        {
            unsetenv("PATH");
            athcfg_set_path();
            print_path_and_exit();
        },
        testing::ExitedWithCode(0), "path is </usr/sbin:/usr/bin:/sbin:/bin:/etc/ath>");
}

TEST_F(SearchPath, SettingItAlwaysReturnsZero) {
    EXPECT_EXIT(exit(athcfg_set_path() == 0 && athcfg_set_path() == 0 ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
