// What the last word of a command line can become. Where VAPs are wanted, a server made up here tells their SSIDs.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "client/command_table.h"
#include "client/names.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

using strings = std::vector<std::string>;

std::string ssid_answer(std::string ssid) {
    ssid += '\0';
    std::string length = word_bytes(static_cast<uint32_t>(ssid.size()));
    ssid.resize((ssid.size() + 3) / 4 * 4);
    return success(word_bytes(0) + word_bytes(0) + length + ssid);
}

std::string completed_at(const call_endpoint &endpoint, strings words) {
    words.insert(words.begin(), "__complete");
    run_outcome outcome = run_at(endpoint, words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return outcome.out;
}

// Without any server.
std::string completed(const strings &words) {
    return completed_at({"127.0.0.1", 1}, words);
}

// The candidates alone.
strings words_for(const strings &words) {
    std::istringstream lines(completed(words));
    strings found;
    for (std::string line; std::getline(lines, line);)
        found.push_back(line.substr(0, line.find('\t')));
    return found;
}

std::string completed_line(const std::string &line) {
    run_outcome outcome = run({"__complete_line", line});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return outcome.out;
}

TEST(ClientCompletion, FirstWordIsACommandOrAnOperation) {
    strings found = words_for({""});
    std::set<std::string> names(found.begin(), found.end());
    EXPECT_EQ(names.size(), found.size());
    std::set<std::string> known;
    for (size_t i = 0; i < command_row_count; i++) {
        bool hidden = command_rows[i].group == command_group::HIDDEN;
        EXPECT_EQ(names.contains(command_rows[i].name), !hidden) << command_rows[i].name;
        if (!hidden)
            known.insert(command_rows[i].name);
    }
    for (size_t i = 0; i < procedure_row_count; i++) {
        char name[OPERATION_NAME_SIZE];
        operation_name(&procedure_rows[i], name);
        EXPECT_TRUE(names.contains(name)) << name;
        known.insert(name);
    }
    EXPECT_EQ(names, known);
}

TEST(ClientCompletion, CandidatesHaveTheirSummaries) {
    EXPECT_EQ(completed({"getSsi"}),
              "getSsid\tSSID of the VAP\ngetSsidAdvertisementEnabled\twhether beacons carry the SSID\n");
    EXPECT_EQ(completed({"interf"}), "interface\tthe interface file for rpcgen\n");
}

TEST(ClientCompletion, OperationsComeInTheSpellingBegunWith) {
    EXPECT_EQ(words_for({"getNumberOf"}), strings{"getNumberOfEntries"});
    EXPECT_EQ(words_for({"GETNUMBEROF"}), strings{"getNumberOfEntries"});
    EXPECT_EQ(words_for({"get_number"}), strings{"get_number_of_entries"});
    EXPECT_EQ(words_for({"get-number"}), strings{"get-number-of-entries"});
    EXPECT_EQ(words_for({"wlan_get_number"}), strings{"wlan_get_number_of_entries"});
    EXPECT_EQ(words_for({"wlan-get-number"}), strings{"wlan-get-number-of-entries"});
    EXPECT_EQ(words_for({"wlanGetNumber"}), strings{"wlanGetNumberOfEntries"});
    EXPECT_EQ(words_for({"wlan"}).size(), procedure_row_count);
    for (const std::string &spelled : words_for({"wlan"}))
        EXPECT_NE(find_operation(spelled.c_str()), nullptr) << spelled;
    for (const std::string &spelled : words_for({"wlanget"}))
        EXPECT_NE(find_operation(spelled.c_str()), nullptr) << spelled;
}

TEST(ClientCompletion, OptionsOfTheProgramStandBeforeTheCommand) {
    EXPECT_EQ(words_for({"--"}),
              (strings{"--timeout", "--server", "--output", "--field", "--color", "--shell-text", "--help"}));
    EXPECT_EQ(words_for({"--ti"}), strings{"--timeout"});
    EXPECT_EQ(words_for({"-o"}), strings{"-o"});
    EXPECT_EQ(words_for({"--timeout", "3", "--se"}), strings{"--server"});
    EXPECT_EQ(words_for({"--timeout=3", "-o", "json", "getNumberO"}), strings{"getNumberOfEntries"});
    EXPECT_EQ(words_for({"--", "getNumberO"}), strings{"getNumberOfEntries"});
}

TEST(ClientCompletion, OneHyphenBeginsAllOptions) {
    strings found = words_for({"-"});
    ASSERT_EQ(found.size(), global_option_count);
    EXPECT_EQ(found[0], "--timeout");
}

TEST(ClientCompletion, SecondPairOfHyphensIsAWord) {
    EXPECT_FALSE(words_for({"list", "--", ""}).empty());
    EXPECT_TRUE(words_for({"list", "--", "--", ""}).empty());
}

TEST(ClientCompletion, LetterOfACommandsOwnOptionHasItsValue) {
    EXPECT_EQ(completed({"scan", "-w", ""}).substr(0, 14), "\thint\tSECONDS:");
    EXPECT_EQ(completed({"watch", "-c", ""}).substr(0, 13), "\thint\tNUMBER:");
}

TEST(ClientCompletion, CommandsHaveTheirOwnOptionsAsWell) {
    strings found = words_for({"batch", "--"});
    EXPECT_EQ(found, (strings{"--keep-going", "--echo", "--timeout", "--server", "--output", "--field", "--color",
                              "--shell-text", "--help"}));
    EXPECT_EQ(words_for({"batch", "--", "--"}), strings{""}) << "a file that begins with a minus sign";
}

TEST(ClientCompletion, OptionsStandBehindTheArgumentsOfAnOperation) {
    EXPECT_EQ(words_for({"setSsid", "1", "-x", "--ou"}), strings{"--output"});
    EXPECT_EQ(words_for({"setSsid", "1", "-x", "-o", "js"}), strings{"json"});
    EXPECT_EQ(completed({"setSsid", "1", "--ou"}), "\thint\t<ssid>: text\n") << "a text may begin with a minus sign";
    EXPECT_EQ(words_for({"setSsid", "1", "x", "y"}), strings{});
    EXPECT_EQ(words_for({"setSsid", "--"}), strings{"--help"});
}

TEST(ClientCompletion, ValuesOfOptionsAreCompletedInEverySpelling) {
    strings formats = {"text", "json", "value", "dump"};
    EXPECT_EQ(words_for({"--output", ""}), formats);
    EXPECT_EQ(words_for({"-o", ""}), formats);
    EXPECT_EQ(words_for({"--outp", "d"}), strings{"dump"});
    EXPECT_EQ(words_for({"list", "-o", "v"}), strings{"value"});
    EXPECT_EQ(words_for({"--output=j"}), strings{"--output=json"});
    EXPECT_EQ(words_for({"--output="}), (strings{"--output=text", "--output=json", "--output=value", "--output=dump"}));
    EXPECT_EQ(words_for({"-oj"}), strings{"-ojson"});
    EXPECT_EQ(words_for({"--color", ""}), (strings{"auto", "always", "never"}));
    EXPECT_EQ(completed({"-t", ""}), "\thint\tSECONDS: wait this long for each answer, 1 to 3600; 25 if not given\n");
}

TEST(ClientCompletion, FieldsAreThoseOfTheOperationBefore) {
    EXPECT_EQ(completed({"getBasicStats", "1", "-f", "tx"}), "tx_bytes\tbytes\ntx_packets\tpackets\n");
    EXPECT_EQ(words_for({"getBssidPort", "x", "--field="}), (strings{"--field=port", "--field=index"}));
    EXPECT_EQ(words_for({"getSsid", "1", "-f", ""}), strings{"ssid"});
    EXPECT_EQ(words_for({"--field", ""}), strings{});
}

TEST(ClientCompletion, TruthsAreOnAndOff) {
    EXPECT_EQ(completed({"setEnable", "1", ""}), "on\tenabled\noff\tenabled\n");
    EXPECT_EQ(words_for({"setEnable", "1", "of"}), strings{"off"});
}

TEST(ClientCompletion, ArgumentThatCannotBeCompletedIsNamed) {
    EXPECT_EQ(completed({"associateVlan", ""}), "\thint\t<bssid>: text\n");
    EXPECT_EQ(completed({"associateVlan", "00:03:7f:10:00:01", ""}), "\thint\t<vlan>: a number from 0 to 65535\n");
    EXPECT_EQ(completed({"associateVlan", "00:03:7f:10:00:01", "5", ""}), "");
}

TEST(ClientCompletion, FileNamesAreLeftToTheShell) {
    EXPECT_EQ(completed({"batch", ""}), "\tfiles\t\n");
    EXPECT_EQ(completed({"batch", "-k", "abc"}), "\tfiles\t\n");
    EXPECT_EQ(completed({"batch", "abc", ""}), "") << "takes one file";
}

TEST(ClientCompletion, WordsOfCommandsAreCompletedByTheirKind) {
    EXPECT_EQ(words_for({"describe", "getNumberO"}), strings{"getNumberOfEntries"});
    EXPECT_EQ(words_for({"describe", "lis"}), strings{}) << "a command is no operation";
    EXPECT_EQ(words_for({"help", "lis"}), strings{"list"});
    EXPECT_EQ(words_for({"list", "radio"}), (strings{"radio tuning and regulatory settings", "radio statistics"}));
}

TEST(ClientCompletion, LineIsSplitByTheClient) {
    EXPECT_EQ(completed_line("client interf"), "interface\tthe interface file for rpcgen\n");
    EXPECT_EQ(completed_line("/some/where/client list 'radio t"), "radio tuning and regulatory settings\t\n");
    EXPECT_EQ(completed_line("client setSsid 1 'a \"b:=' -o j"), "json\tone object, for programs\n");
    EXPECT_EQ(completed_line("client setEnable 1 "), "on\tenabled\noff\tenabled\n");
    EXPECT_EQ(completed_line("client"), "") << "the program's own name is not the client's to complete";
    EXPECT_EQ(completed_line("client list # sec"), "");
    EXPECT_EQ(completed_line(""), "");
    EXPECT_EQ(completed_line("client " + std::string(20000, 'x')), "");
}

TEST(ClientCompletion, NonsenseIsNeverAnError) {
    for (const strings &words : std::vector<strings>{{},
                                                     {"--bogus"},
                                                     {"--bogus", ""},
                                                     {"--bogus=", "x", ""},
                                                     {"xylophone", ""},
                                                     {"-"},
                                                     {"-xyz", ""},
                                                     {"--", "--", "--"},
                                                     {"__complete", "a", "b"},
                                                     {"setSsid", "a", "b", "c", "d", "e"},
                                                     {"getSsid", "1", "-o"},
                                                     {std::string(5000, 'a')},
                                                     {"--output=" + std::string(5000, 'a')},
                                                     {"\xff\xfe\n\t"}})
        completed(words);
}

TEST(ClientCompletion, JsonIsTheSameAsATree) {
    run_outcome outcome = run({"-o", "json", "__complete", "batch", ""});
    EXPECT_EQ(nlohmann::json::parse(outcome.out, nullptr, false),
              nlohmann::json::parse(R"({"command":"__complete","result":{"candidates":[],"files":"","hint":null}})"));
}

class ClientVapCompletion : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(success(word_bytes(server.port)));
    }

    std::string completed_here(const strings &words) {
        return completed_at({"127.0.0.1", portmapper.port}, words);
    }

    FakePeer portmapper, server;
};

TEST_F(ClientVapCompletion, VapsHaveTheirSsids) {
    server.answer_with(ssid_answer("home"));
    std::string expected;
    for (int index = 1; index <= 16; index++)
        expected += std::to_string(index) + "\thome\n";
    EXPECT_EQ(completed_here({"getSsid", ""}), expected);
    EXPECT_EQ(server.received(), 16);
}

TEST_F(ClientVapCompletion, SsidsThatALineCannotHaveAreMadePrintable) {
    server.answer_with(ssid_answer("a\tb\n\033\177\377\303\244"));
    EXPECT_EQ(completed_here({"getSsid", "16"}), "16\ta?b????\303\244\n");
}

TEST_F(ClientVapCompletion, ServerOfTheCommandLineIsAsked) {
    server.answer_with(ssid_answer("home"));
    EXPECT_EQ(completed_at({"127.0.0.2", portmapper.port}, {"--server", "127.0.0.1", "getSsid", "16"}), "16\thome\n");
    EXPECT_EQ(completed_at({"127.0.0.2", portmapper.port}, {"--server=127.0.0.1", "getSsid", "16"}), "16\thome\n");
    EXPECT_EQ(completed_at({"127.0.0.2", portmapper.port}, {"-s127.0.0.1", "getSsid", "16"}), "16\thome\n");
    EXPECT_EQ(completed_at({"127.0.0.2", portmapper.port}, {"getSsid", "16"}), "16\t\n");
}

TEST_F(ClientVapCompletion, NothingIsAskedWhereNoVapIsWanted) {
    for (const strings &words : std::vector<strings>{
             {""}, {"getSsid"}, {"getSsid", "x"}, {"setSsid", "1", ""}, {"list", ""}, {"-o", ""}, {"getSsid", "--"}})
        completed_here(words);
    EXPECT_EQ(portmapper.received(), 0);
}

TEST_F(ClientVapCompletion, SilentServerCostsOneSecondAndTheNumbersAreThere) {
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(completed_here({"getSsid", "16"}), "16\t\n");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1800));
}

// Each of the sixteen calls is answered in time; all of them together would not be.
TEST_F(ClientVapCompletion, SlowServerCostsOneSecondInAll) {
    server.answer_with(ssid_answer("home"));
    server.answer_after(std::chrono::milliseconds(300));
    auto begin = std::chrono::steady_clock::now();
    std::string found = completed_here({"getSsid", ""});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1800));
    EXPECT_TRUE(found.starts_with("1\thome\n")) << found;
    EXPECT_TRUE(found.ends_with("16\t\n")) << found;
}

TEST(ClientCompletion, WithoutAServerTheNumbersAreThereAtOnce) {
    auto shortest = std::chrono::steady_clock::duration::max();
    for (int attempt = 0; attempt < 5; attempt++) {
        auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(words_for({"getSsid", "1"}), (strings{"1", "10", "11", "12", "13", "14", "15", "16"}));
        shortest = std::min(shortest, std::chrono::steady_clock::now() - begin);
    }
    EXPECT_LT(shortest, std::chrono::milliseconds(800));
}

}  // namespace
