// "Did you mean", for every word that the client takes.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/suggest.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

using strings = std::vector<std::string>;

strings suggested(const char *wanted, const strings &candidates) {
    suggestions found;
    for (const std::string &candidate : candidates)
        consider(&found, wanted, candidate.c_str());
    return strings(found.words, found.words + found.count);
}

TEST(ClientSuggestions, NearestComesFirst) {
    EXPECT_EQ(suggested("stauts", {"start", "getStatus", "status"}), (strings{"status", "start"}));
    EXPECT_EQ(suggested("laod", {"lead", "load"}), (strings{"load", "lead"}));
}

TEST(ClientSuggestions, SwappedNeighboursAreOneSlip) {
    EXPECT_EQ(slip_distance("laod", "load"), 1u);
    EXPECT_EQ(slip_distance("stauts", "status"), 1u);
    EXPECT_EQ(slip_distance("abcd", "bacd"), 1u);
    EXPECT_EQ(slip_distance("load", "load"), 0u);
    EXPECT_EQ(slip_distance("loads", "load"), 1u);
    EXPECT_EQ(slip_distance("lod", "load"), 1u);
    EXPECT_EQ(slip_distance("lxad", "load"), 1u);
}

TEST(ClientSuggestions, EquallyLikelyOnesStayInTheirOrder) {
    EXPECT_EQ(suggested("load", {"loan", "toad", "lord"}), (strings{"loan", "toad", "lord"}));
}

TEST(ClientSuggestions, HalfOfAShortWordMustBeRight) {
    EXPECT_EQ(suggested("of", {"on", "off", "yes"}), (strings{"on", "off"}));
    EXPECT_EQ(suggested("x", {"y"}), strings{});
    EXPECT_EQ(suggested("red", {"never", "auto"}), strings{});
    EXPECT_EQ(suggested("abc", {"abxy"}), strings{});
}

TEST(ClientSuggestions, LongWordsMayHaveMoreSlips) {
    EXPECT_EQ(suggested("getBasikDataTrnsmitRats", {"getBasicDataTransmitRates"}),
              strings{"getBasicDataTransmitRates"});
}

TEST(ClientSuggestions, NameThatContainsTheWordStandsBehindEverySlip) {
    EXPECT_EQ(suggested("stats", {"getBasicStats", "state"}), (strings{"state", "getBasicStats"}));
    EXPECT_EQ(suggested("st", {"getBasicStats"}), strings{}) << "too short to say anything";
}

TEST(ClientSuggestions, SpellingMakesNoDifference) {
    EXPECT_EQ(suggested("KEEP_GOIN", {"--keep-going"}), strings{"--keep-going"});
}

TEST(ClientSuggestions, EachWordIsSuggestedOnceAndOnlyAFewAre) {
    EXPECT_EQ(suggested("load", {"loan", "loan"}), strings{"loan"});
    EXPECT_EQ(suggested("load", {"loaa", "loab", "loac", "loae", "loaf", "loag", "load"}),
              (strings{"load", "loaa", "loab", "loac", "loae"}));
}

TEST(ClientSuggestions, WordsBeyondTheRoomAreNeverSuggestedNorReadBeyond) {
    std::string fits(SUGGESTION_SIZE - 1, 'x'), beyond(SUGGESTION_SIZE, 'x');
    EXPECT_EQ(suggested(fits.c_str(), {fits}), strings{fits});
    EXPECT_EQ(suggested(fits.c_str(), {beyond}), strings{});
    EXPECT_EQ(suggested(beyond.c_str(), {fits}), strings{});
    EXPECT_EQ(suggested(std::string(100000, 'x').c_str(), {fits}), strings{});
}

// A line for people, a list for programs.
void expect_meant(const strings &words, int status, const strings &meant) {
    std::string line = "\nDid you mean ";
    for (const std::string &word : meant)
        line += (word == meant.front() ? "" : ", ") + word;
    run_outcome people = run(words);
    EXPECT_EQ(people.status, status);
    EXPECT_NE(people.errors.find(line + "?\n"), std::string::npos) << people.errors << line;
    strings for_programs = {"-o", "json"};
    for_programs.insert(for_programs.end(), words.begin(), words.end());
    run_outcome programs = run(for_programs);
    nlohmann::json answer = nlohmann::json::parse(programs.out, nullptr, false);
    EXPECT_EQ(programs.status, status);
    EXPECT_EQ(answer["suggestions"], nlohmann::json(meant)) << programs.out;
    EXPECT_EQ(answer["error"]["message"].get<std::string>().find("Did you mean"), std::string::npos) << programs.out;
}

TEST(ClientSuggestions, UnknownFirstWordSuggestsCommandsAndOperationsTogether) {
    expect_meant({"lsit"}, 2, {"list", "init"});
    expect_meant({"hepl"}, 2, {"help", "shell"});
    expect_meant({"getSsdi", "1"}, 2, {"getSsid", "getBssid", "setSsid"});
    expect_meant({"help", "bacth"}, 6, {"batch", "watch"});
}

TEST(ClientSuggestions, HiddenCommandsAreNotSuggested) {
    EXPECT_EQ(run({"__complet"}).errors.find("__complete"), std::string::npos);
}

TEST(ClientSuggestions, DescribeSuggestsOperationsAlone) {
    expect_meant({"describe", "lsit"}, 6, {"init"});
}

TEST(ClientSuggestions, MistypedOptionSuggestsThoseOfTheProgramAndOfTheCommand) {
    expect_meant({"--tiemout", "3", "list"}, 2, {"--timeout"});
    expect_meant({"--tiemout=3", "list"}, 2, {"--timeout"});
    expect_meant({"list", "--colour=auto"}, 2, {"--color"});
    expect_meant({"batch", "--keepgoin"}, 2, {"--keep-going"});
}

TEST(ClientSuggestions, BeginningOfSeveralOptionsSuggestsAllOfThem) {
    expect_meant({"init", "--wa"}, 2, {"--wait", "--wait-for"});
    expect_meant({"scan", "1", "--c"}, 2, {"--color", "--cached"});
    EXPECT_TRUE(run({"init", "--wa"}).errors.starts_with("init: --wa is the beginning of more than one option\n"));
}

TEST(ClientSuggestions, MistypedFormatsAndColoursSuggestThem) {
    run_outcome outcome = run({"-o", "jsno", "list"});
    EXPECT_EQ(outcome.errors,
              "vlk_rpc_wlan_config_client: --output is \"jsno\", but has to be text, json, value or dump\n"
              "Did you mean json?\n"
              "Try: vlk_rpc_wlan_config_client --help\n");
    expect_meant({"--color", "nevr", "list"}, 2, {"never"});
}

TEST(ClientSuggestions, MistypedTruthSuggestsItsWords) {
    expect_meant({"setEnable", "1", "treu"}, 2, {"true"});
    expect_meant({"setEnable", "1", "fasle"}, 2, {"false"});
    EXPECT_EQ(run({"setEnable", "treu", "1"}).errors.find("Did you mean"), std::string::npos)
        << "a VAP index is no truth";
}

TEST(ClientSuggestions, FilterOfTheListSuggestsWordsOfSubjectsAndNames) {
    expect_meant({"list", "band stering"}, 6, {"band steering"});
    expect_meant({"list", "chanel"}, 6, {"channel", "channels", "cancel"});
    expect_meant({"list", "secruity"}, 6, {"security"});
}

TEST(ClientSuggestions, MistypedFieldSuggestsTheNamesOfTheResult) {
    EXPECT_EQ(run({"-f", "sumary", "list", "switch port"}).errors,
              "list: the result has no \"sumary\"\nDid you mean summary?\n");
    EXPECT_EQ(run({"-f", "operations.sumary", "list", "switch port"}).errors,
              "list: the result has no \"operations.sumary\"\nDid you mean summary?\n");
}

}  // namespace
