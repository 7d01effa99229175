// Many commands, a line each, over one connection.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "client/commands.h"
#include "client/words.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

constexpr const char FILE_NAME[] = "/tmp/batch.txt";

class ClientBatch : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(success(word_bytes(server.port)));
        server.answer_with(success(word_bytes(0)));
    }

    void TearDown() override {
        unlink(FILE_NAME);
    }

    run_outcome batch(const std::string &lines, std::vector<std::string> words = {"batch", FILE_NAME}) {
        std::ofstream(FILE_NAME, std::ios::binary) << lines;
        return run_at({"127.0.0.1", portmapper.port}, words);
    }

    FakePeer portmapper, server;
};

std::vector<nlohmann::json> objects_of(const std::string &text) {
    std::vector<nlohmann::json> objects;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line, nullptr, false));
    return objects;
}

TEST_F(ClientBatch, LinesAreCarriedOutOverOneConnection) {
    run_outcome outcome = batch("setSsid 1 a\nsetSsid 2 'b c'\nset_ssid 3 \"d\"\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "ok\nok\nok\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(server.received(), 3);
    EXPECT_EQ(portmapper.received(), 1);
    EXPECT_EQ(server.arguments(), word_bytes(3) + word_bytes(1) + std::string("d\0\0\0", 4));
}

TEST_F(ClientBatch, EmptyLinesAndCommentsAreLeftOut) {
    EXPECT_EQ(batch("\n   \n# comment\n  # another 'one\nsetSsid 1 a # behind\n").out, "ok\n");
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientBatch, LastLineNeedsNoEnd) {
    EXPECT_EQ(batch("setSsid 1 a\nsetSsid 1 b").out, "ok\nok\n");
    EXPECT_EQ(batch("").out, "");
    EXPECT_EQ(batch("").status, 0);
}

TEST_F(ClientBatch, FirstFailureEndsItAndTheRestIsNotSent) {
    run_outcome outcome = batch("setSsid 1 a\n\nsetSsid x b\nsetSsid 1 c\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_EQ(outcome.errors,
              "/tmp/batch.txt:3: setSsid: <index> is \"x\", but has to be a VAP index: a number, 1 to 16 for the VAPs "
              "there are\n"
              "usage: vlk_rpc_wlan_config_client setSsid <index> <ssid>\n"
              "/tmp/batch.txt:3: stopped here; the lines behind it were not sent\n");
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientBatch, FailureOfTheServerEndsItToo) {
    server.answer_with(success(word_bytes(0xffffffff)));
    run_outcome outcome = batch("setSsid 1 a\nsetSsid 1 b\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "/tmp/batch.txt:1: setSsid: the server answered failure (-1)\n"
              "/tmp/batch.txt:1: stopped here; the lines behind it were not sent\n");
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientBatch, KeepGoingCarriesOutTheRestAndEndsWithTheFirstFailure) {
    run_outcome outcome = batch("xylophone\ndescribe xylophone\nsetSsid 1 c\n", {"batch", "--keep-going", FILE_NAME});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_TRUE(outcome.errors.starts_with("/tmp/batch.txt:1: there is no command or operation \"xylophone\"\n"))
        << outcome.errors;
    EXPECT_NE(outcome.errors.find("\n/tmp/batch.txt:2: describe: there is no operation \"xylophone\"\n"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(outcome.errors.find("stopped"), std::string::npos);
}

TEST_F(ClientBatch, OptionsOnALineHoldForThatLineOnly) {
    server.answer_with(success(word_bytes(0) + word_bytes(0) + word_bytes(2) + std::string("a\0\0\0", 4)));
    EXPECT_EQ(batch("getSsid 1 -o json\n-o json getSsid 1\ngetSsid 1\n").out,
              "{\"line\":1,\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"a\"}}\n"
              "{\"line\":2,\"operation\":\"getSsid\",\"code\":0,\"result\":{\"ssid\":\"a\"}}\n"
              "a\n");
}

TEST_F(ClientBatch, LineMayBeginWithTheProgramsName) {
    EXPECT_EQ(
        batch("vlk_rpc_wlan_config_client setSsid 1 a\n/usr/sbin/vlk_rpc_wlan_config_client -t 3 setSsid 1 b\n").out,
        "ok\nok\n");
    EXPECT_EQ(batch("vlk_rpc_wlan_config_client\n").status, 2);
}

TEST_F(ClientBatch, JsonIsOneObjectALineWithItsNumber) {
    run_outcome outcome =
        batch("setSsid 1 a\n\ngetSsid\nxylophone\n'\nsetSsid 1 b\n", {"-o", "json", "batch", "-k", FILE_NAME});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "");
    std::vector<nlohmann::json> objects = objects_of(outcome.out);
    ASSERT_EQ(objects.size(), 5u) << outcome.out;
    EXPECT_EQ(objects[0], nlohmann::json::parse(R"({"line":1,"operation":"setSsid","code":0,"result":{}})"));
    EXPECT_EQ(objects[1]["line"], 3);
    EXPECT_EQ(objects[1]["operation"], "getSsid");
    EXPECT_EQ(objects[1]["error"]["kind"], "usage");
    EXPECT_EQ(objects[2]["error"]["message"], "there is no command or operation \"xylophone\"");
    EXPECT_EQ(objects[3]["line"], 5);
    EXPECT_EQ(objects[3]["error"]["message"], "the quote ' in column 1 has no end");
    EXPECT_EQ(objects[4]["line"], 6);
}

TEST_F(ClientBatch, EchoRepeatsEachLineBeforeItsOutput) {
    EXPECT_EQ(batch("# c\nsetSsid  1 'a b'\n", {"batch", "--echo", FILE_NAME}).out, "+ setSsid  1 'a b'\nok\n");
    std::vector<nlohmann::json> objects =
        objects_of(batch("setSsid  1 'a b'\n", {"batch", "-e", "-o", "json", FILE_NAME}).out);
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(objects[0]["input"], "setSsid  1 'a b'");
}

TEST_F(ClientBatch, BatchWithinABatchIsRefused) {
    for (const char *line : {"batch /tmp/batch.txt\n", "batch\n", "batch -\n", "shell\n"}) {
        run_outcome outcome = batch(line);
        EXPECT_EQ(outcome.status, 2) << line;
        EXPECT_TRUE(outcome.errors.starts_with("/tmp/batch.txt:1: ")) << outcome.errors;
    }
    for (const char *line : {"batch other.txt", "batch"})
        EXPECT_TRUE(batch(line).errors.starts_with("/tmp/batch.txt:1: batch: a batch within a batch is refused\n"));
}

TEST_F(ClientBatch, FileThatIsNoTextIsALocalError) {
    run_outcome outcome =
        batch(std::string("setSsid 1 a\nset\0Ssid 1 b\nsetSsid 1 c\n", 37), {"batch", "-k", FILE_NAME});
    EXPECT_EQ(outcome.status, 7);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_EQ(outcome.errors, "/tmp/batch.txt:2: is no text: there is a NUL in it\n");
    EXPECT_EQ(server.received(), 1) << "a file that is no text is not read further";
}

TEST_F(ClientBatch, FileThatCannotBeReadIsALocalError) {
    run_outcome outcome = run({"batch", "/tmp/nothing/here"});
    EXPECT_EQ(outcome.status, 7);
    EXPECT_EQ(outcome.errors, "batch: cannot read \"/tmp/nothing/here\": No such file or directory\n");
    outcome = run({"batch", "/tmp"});
    EXPECT_EQ(outcome.status, 7);
    EXPECT_EQ(outcome.errors, "/tmp:1: cannot be read: Is a directory\n");
}

TEST_F(ClientBatch, LineThatIsTooLongIsAnErrorAndTheNextOneIsNot) {
    std::string fits = "setSsid 1 a" + std::string(LINE_LENGTH_MAX - 11, ' ');
    EXPECT_EQ(batch(fits + "\n").out, "ok\n");
    run_outcome outcome = batch(fits + std::string(100000, ' ') + "\nsetSsid 1 b\n", {"batch", "-k", FILE_NAME});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_EQ(outcome.errors, "/tmp/batch.txt:1: the line is longer than 16384 bytes\n");
    EXPECT_EQ(batch(fits + " \n").errors.substr(0, 53), "/tmp/batch.txt:1: the line is longer than 16384 bytes");
}

TEST_F(ClientBatch, OutputThatCannotBeWrittenEndsIt) {
    std::ofstream(FILE_NAME) << "setSsid 1 a\nsetSsid 1 b\n";
    FILE *full = fopen("/dev/full", "we");
    char program[] = "client", command[] = "batch", file[] = "/tmp/batch.txt";
    char *words[] = {program, command, file, nullptr};
    const call_endpoint endpoint = {"127.0.0.1", portmapper.port};
    std::string errors =
        written([&](FILE *stream) { EXPECT_EQ(run_client(3, words, &endpoint, full, stream), EXIT_STATUS_LOCAL); });
    fclose(full);
    EXPECT_EQ(server.received(), 1);
}

}  // namespace
