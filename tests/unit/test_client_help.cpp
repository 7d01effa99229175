// The help of the program, of commands and of operations, and the documents, for people and for programs.
#include "client/help.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "client/command_table.h"
#include "tests/support/client_runs.h"

namespace {

using nlohmann::json;
using strings = std::vector<std::string>;

json help_for(strings words) {
    words.insert(words.begin(), {"-o", "json"});
    run_outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1) << "one object on one line";
    return json::parse(outcome.out, nullptr, false);
}

const char *const DOCUMENTS[] = {"reference", "interface", "dissector", "records", "manual"};

TEST(ClientHelpForPrograms, ProgramHasItsCommandsItsOptionsAndItsStatuses) {
    json answer = help_for({"help"});
    EXPECT_EQ(answer["command"], "help");
    json help = answer["result"];
    EXPECT_EQ(help["usage"], (json{"vlk_rpc_wlan_config_client [OPTION...] OPERATION [ARGUMENT...] [OPTION...]",
                                   "vlk_rpc_wlan_config_client [OPTION...] COMMAND [WORD...]"}));
    EXPECT_TRUE(help["description"].get<std::string>().ends_with("also those with a minus sign."));
    EXPECT_EQ(help["commands"][0], (json{{"command", "list"},
                                         {"group", "Finding an operation"},
                                         {"synopsis", "[WORD]"},
                                         {"summary",
                                          "the operations, all or those with WORD in name, subject or "
                                          "summary"}}));
    ASSERT_EQ(help["global_options"].size(), global_option_count);
    EXPECT_EQ(help["global_options"][2], (json{{"name", "output"},
                                               {"letter", "o"},
                                               {"value", "FORMAT"},
                                               {"kind", "format"},
                                               {"choices", {"text", "json", "value", "dump"}},
                                               {"summary", global_options[2].summary}}));
    ASSERT_EQ(help["exit_statuses"].size(), exit_status_row_count);
    EXPECT_EQ(help["exit_statuses"][6],
              (json{{"status", 6}, {"kind", "not-found"}, {"meaning", "what was asked for does not exist"}}));
}

TEST(ClientHelpForPrograms, ProgramHasEveryCommandButTheHiddenOnes) {
    strings shown, expected;
    json answer = help_for({"--help"});
    for (const json &command : answer["result"]["commands"])
        shown.push_back(command["command"]);
    for (size_t i = 0; i < command_row_count; i++)
        if (command_rows[i].group != command_group::HIDDEN)
            expected.push_back(command_rows[i].name);
    EXPECT_EQ(shown, expected);
}

TEST(ClientHelpForPrograms, CommandIsWhole) {
    json global = help_for({"help"})["result"]["global_options"];
    EXPECT_EQ(help_for({"help", "batch"})["result"],
              (json{{"command", "batch"},
                    {"group", "Many commands"},
                    {"synopsis", "[FILE]"},
                    {"summary", find_command("batch")->summary},
                    {"description", find_command("batch")->description},
                    {"usage", "vlk_rpc_wlan_config_client [OPTION...] batch [FILE]"},
                    {"words", {{"least", 0}, {"most", 1}, {"kinds", {"file"}}}},
                    {"options",
                     {{{"name", "keep-going"},
                       {"letter", "k"},
                       {"value", nullptr},
                       {"kind", "nothing"},
                       {"choices", json::array()},
                       {"summary", "go on with the next line when one fails"}},
                      {{"name", "echo"},
                       {"letter", "e"},
                       {"value", nullptr},
                       {"kind", "nothing"},
                       {"choices", json::array()},
                       {"summary", "print each line before its output; in JSON as \"input\""}}}},
                    {"global_options", global}}));
}

TEST(ClientHelpForPrograms, OptionWithoutALetterHasNoneAndOneOfSecondsIsANumber) {
    json option = help_for({"help", "init"})["result"]["options"][1];
    EXPECT_EQ(option["name"], "wait-for");
    EXPECT_EQ(option["letter"], nullptr);
    EXPECT_EQ(option["value"], "SECONDS");
    EXPECT_EQ(option["kind"], "number");
}

TEST(ClientHelpForPrograms, WordsWithoutAnEndHaveNoMostAndNoWordsHaveNoKind) {
    EXPECT_EQ(help_for({"help", "watch"})["result"]["words"],
              (json{{"least", 1}, {"most", nullptr}, {"kinds", {"command-line"}}}));
    EXPECT_EQ(help_for({"help", "status"})["result"]["words"],
              (json{{"least", 0}, {"most", 0}, {"kinds", json::array()}}));
    EXPECT_EQ(help_for({"help", "status"})["result"]["usage"], "vlk_rpc_wlan_config_client [OPTION...] status");
}

TEST(ClientHelpForPrograms, HiddenCommandHasNoGroup) {
    EXPECT_EQ(help_for({"help", "manual"})["result"]["group"], nullptr);
}

TEST(ClientHelpForPrograms, EveryCommandHasTheSameMembers) {
    for (size_t i = 0; i < command_row_count; i++) {
        json help = help_for({"help", command_rows[i].name})["result"];
        EXPECT_EQ(help.size(), 9u) << help;
        EXPECT_EQ(help["command"], command_rows[i].name);
        EXPECT_EQ(help["options"].size(), command_rows[i].option_count);
        for (const json &kind : help["words"]["kinds"])
            EXPECT_NE(kind, "") << command_rows[i].name;
    }
}

TEST(ClientHelpForPrograms, OptionGivesWhatTheCommandGives) {
    EXPECT_EQ(help_for({"--help"}), help_for({"help"}));
    EXPECT_EQ(help_for({"scan", "--help"}), help_for({"help", "scan"}));
    EXPECT_EQ(help_for({"scan", "1", "-h"}), help_for({"help", "scan"}));
    EXPECT_EQ(help_for({"getSsid", "--help"}), help_for({"help", "getSsid"}));
    EXPECT_EQ(help_for({"getSsid", "1", "--help"}), help_for({"help", "getSsid"}))
        << "nothing was called that could have a code";
}

TEST(ClientHelpForPrograms, OperationIsDescribed) {
    EXPECT_EQ(help_for({"help", "getSsid"})["result"], help_for({"describe", "getSsid"})["result"]);
}

TEST(ClientHelp, OptionsMayStandBehindTheOneForHelp) {
    EXPECT_EQ(run({"getSsid", "--help", "-o", "json"}).out, run({"-o", "json", "help", "getSsid"}).out);
    EXPECT_EQ(run({"setSsid", "-h", "-o", "json"}).out, run({"-o", "json", "help", "setSsid"}).out);
    EXPECT_EQ(run({"getSsid", "--help", "1"}).out, run({"help", "getSsid"}).out);
    EXPECT_EQ(run({"getSsid", "--help", "--bogus"}).status, 2);
}

TEST(ClientHelp, PageIsABareValueAndADumpToo) {
    for (const strings &words : {strings{"help"}, {"help", "scan"}, {"scan", "--help"}})
        for (const char *format : {"value", "dump"}) {
            strings with_format = {"-o", format};
            with_format.insert(with_format.end(), words.begin(), words.end());
            EXPECT_EQ(run(with_format).out, run(words).out) << words.back() << format;
        }
}

TEST(ClientHelp, MembersAreBareValuesByTheirNames) {
    EXPECT_EQ(run({"help", "status", "--field", "usage"}).out, "vlk_rpc_wlan_config_client [OPTION...] status\n");
    EXPECT_TRUE(run({"help", "--field", "commands.command"}).out.starts_with("list\ndescribe\nhelp\n"));
    EXPECT_EQ(run({"help", "--field", "xylophone"}).status, 6);
}

TEST(ClientHelp, DumpOfAListOrADescriptionIsTheTextForPeople) {
    for (const strings &words : {strings{"list"}, {"list", "ssid"}, {"describe", "getSsid"}}) {
        strings dumped = words;
        dumped.insert(dumped.end(), {"-o", "dump"});
        EXPECT_EQ(run(dumped).out, run(words).out) << words.back();
    }
}

TEST(ClientHelp, CommandThatIsDescribedIsNamedAsOne) {
    run_outcome outcome = run({"describe", "status"});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.errors,
              "describe: status is a command and no operation\nTry: vlk_rpc_wlan_config_client help status\n");
    EXPECT_EQ(run({"describe", "init"}).status, 0) << "which is both";
}

TEST(ClientHelp, CommandsOfTheDriverHaveAGroupOfTheirOwn) {
    EXPECT_NE(run({"help"}).out.find("\nWi-Fi down and up\n  load [RADIO] "), std::string::npos);
}

TEST(ClientDocuments, AreOneTextForPrograms) {
    for (const char *document : DOCUMENTS) {
        json answer = help_for({document});
        EXPECT_EQ(answer["command"], document);
        EXPECT_EQ(answer["result"], (json{{"text", run({document}).out}})) << document;
    }
}

TEST(ClientDocuments, GoOutAsTheyStandInEveryOtherFormat) {
    for (const char *document : DOCUMENTS) {
        std::string text = run({document}).out;
        EXPECT_GT(text.size(), 10000u) << document;
        for (const char *format : {"value", "dump", "text"})
            EXPECT_EQ(run({document, "-o", format}).out, text) << document;
        EXPECT_EQ(run({document, "--field", "text", "-o", "text"}).out, text) << document;
    }
}

TEST(ClientDocuments, HaveNoMemberButTheText) {
    EXPECT_EQ(run({"records", "--field", "text"}).out, run({"records"}).out + "\n");
    run_outcome outcome = run({"records", "--field", "tetx"});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors, "records: the result has no \"tetx\"\nDid you mean text?\n");
}

// Those that ask a server find none here; the two that read lines would wait for them.
TEST(ClientJsonOfCommands, EveryAnswerIsOneObject) {
    for (size_t i = 0; i < command_row_count; i++) {
        std::string name = command_rows[i].name;
        if (name == "batch" || name == "shell")
            continue;
        strings words = {"-o", "json", name};
        if (name == "watch")
            words.insert(words.end(), {"--count", "1", "list"});
        else if (command_rows[i].words_least == 1)
            words.push_back(command_rows[i].words[0] == word_kind::OPERATION ? "getSsid" : "1");
        run_outcome outcome = run(words);
        json answer = json::parse(outcome.out, nullptr, false);
        ASSERT_TRUE(answer.is_object()) << name << outcome.out;
        EXPECT_EQ(answer.contains("error"), outcome.status != 0) << name;
        EXPECT_EQ(outcome.errors, "") << name;
    }
}

}  // namespace
