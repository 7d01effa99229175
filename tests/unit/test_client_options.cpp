// Options before, between and behind the words of commands and operations.
#include "client/options.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "client/help.h"
#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

// The environment's NO_COLOR for one test.
class no_color {
public:
    explicit no_color(const char *value) {
        const char *old = getenv("NO_COLOR");
        if (old)
            before = old;
        set(value);
    }
    ~no_color() {
        set(before ? before->c_str() : nullptr);
    }

private:
    static void set(const char *value) {
        if (value)
            setenv("NO_COLOR", value, 1);
        else
            unsetenv("NO_COLOR");
    }

    std::optional<std::string> before;
};

struct parsed {
    bool fits;
    parsed_options options;
    std::vector<std::string> words;  // that remain
    std::string problem;
};

const client_settings DEFAULTS = {25, output_format::TEXT, nullptr, false, false};

std::vector<char *> pointers_to(std::vector<std::string> &words) {
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

parsed leading(std::vector<std::string> words, client_settings settings = DEFAULTS) {
    static std::vector<std::string> kept;  // options point into the words
    kept = words;
    kept.insert(kept.begin(), PROGRAM_NAME);
    std::vector<char *> pointers = pointers_to(kept);
    parsed result = {false, {settings, nullptr, false}, {}, ""};
    char problem[PROBLEM_SIZE] = "";
    int used = 0;
    int count = static_cast<int>(kept.size());
    result.fits = parse_leading_options(count, pointers.data(), &result.options, &used, problem);
    result.problem = problem;
    for (int i = used; result.fits && i < count; i++)
        result.words.push_back(pointers[static_cast<size_t>(i)]);
    return result;
}

const option_row OWN[] = {
    {"cached", nullptr, "", word_kind::NONE, 'c'},
    {"confirm-within", "SECONDS", "", word_kind::NUMBER, '\0'},
};

command_row row_with(word_kind words) {
    return {"scan", command_group::GATEWAY, "VAP", {words}, 0, 9, OWN, 2, nullptr, "", ""};
}

struct parsed_command {
    parsed common;
    std::vector<std::optional<std::string>> own;
};

parsed_command behind(std::vector<std::string> words, word_kind kind = word_kind::VAP) {
    static std::vector<std::string> kept;
    static command_row row;
    kept = words;
    kept.insert(kept.begin(), "scan");
    row = row_with(kind);
    std::vector<char *> pointers = pointers_to(kept);
    parsed_command result = {{false, {DEFAULTS, nullptr, false}, {}, ""}, {}};
    command_line line;
    char problem[PROBLEM_SIZE] = "";
    result.common.fits = parse_command_options(&row, static_cast<int>(kept.size()), pointers.data(),
                                               &result.common.options, &line, problem);
    result.common.problem = problem;
    for (size_t i = 0; result.common.fits && i < line.word_count; i++)
        result.common.words.push_back(line.words[i]);
    for (const option_row &option : OWN) {
        const char *value = result.common.fits ? option_value(&line, option.name) : nullptr;
        result.own.push_back(value ? std::optional<std::string>(value) : std::nullopt);
    }
    return result;
}

using strings = std::vector<std::string>;

TEST(ClientOptions, EveryGlobalOptionIsTakenInEachOfItsForms) {
    for (const strings &words : {strings{"-t", "7"}, {"-t7"}, {"--timeout", "7"}, {"--timeout=7"}, {"--time", "7"}})
        EXPECT_EQ(leading(words).options.settings.timeout_seconds, 7) << words[0];
    for (const strings &words : {strings{"-s", "host"}, {"-shost"}, {"--server", "host"}, {"--server=host"}})
        EXPECT_STREQ(leading(words).options.server, "host") << words[0];
    for (const strings &words : {strings{"-o", "json"}, {"-ojson"}, {"--output", "json"}, {"--output=json"}})
        EXPECT_EQ(leading(words).options.settings.format, output_format::JSON) << words[0];
    for (const strings &words : {strings{"-f", "ssid"}, {"-fssid"}, {"--field", "ssid"}, {"--field=ssid"}})
        EXPECT_STREQ(leading(words).options.settings.field, "ssid") << words[0];
    for (const strings &words : {strings{"-h"}, {"--help"}})
        EXPECT_TRUE(leading(words).options.help) << words[0];
    for (const strings &words : {strings{"--color", "always"}, {"--color=always"}})
        EXPECT_TRUE(leading(words).options.settings.colour) << words[0];
}

TEST(ClientOptions, WithoutOptionsNothingIsChanged) {
    parsed result = leading({"getSsid", "1"});
    EXPECT_TRUE(result.fits);
    EXPECT_EQ(result.options.settings.timeout_seconds, DEFAULT_TIMEOUT_SECONDS);
    EXPECT_EQ(result.options.settings.format, output_format::TEXT);
    EXPECT_EQ(result.options.server, nullptr);
    EXPECT_FALSE(result.options.help);
    EXPECT_EQ(result.words, (strings{"getSsid", "1"}));
}

TEST(ClientOptions, EveryFormatHasItsWord) {
    for (auto [word, format] : {std::pair{"text", output_format::TEXT},
                                {"json", output_format::JSON},
                                {"value", output_format::VALUE},
                                {"dump", output_format::DUMP}})
        EXPECT_EQ(leading({"-o", word}).options.settings.format, format) << word;
    for (const char *word : {"", "JSON", "jso", "yaml"})
        EXPECT_EQ(leading({"-o", word}).problem,
                  std::string("--output is \"") + word + "\", but has to be text, json, value or dump");
}

TEST(ClientOptions, FieldMeansBareValues) {
    EXPECT_EQ(leading({"--field", "ssid"}).options.settings.format, output_format::VALUE);
    EXPECT_EQ(leading({"-o", "json", "--field", "ssid"}).options.settings.format, output_format::VALUE);
}

TEST(ClientOptions, LastOneOfTwoCounts) {
    EXPECT_EQ(leading({"-t", "3", "-t", "4"}).options.settings.timeout_seconds, 4);
    EXPECT_EQ(leading({"-o", "json", "-o", "text"}).options.settings.format, output_format::TEXT);
}

TEST(ClientOptions, TimeoutIsASecondToAnHour) {
    EXPECT_EQ(leading({"-t", "1"}).options.settings.timeout_seconds, 1);
    EXPECT_EQ(leading({"-t", "3600"}).options.settings.timeout_seconds, 3600);
    for (const char *word : {"0", "3601", "-1", "", "1s", "1.5", "4294967297"})
        EXPECT_EQ(leading({"-t", word}).problem,
                  std::string("--timeout is \"") + word + "\", but has to be a number of seconds from 1 to 3600");
}

TEST(ClientOptions, LeadingOptionsEndAtTheFirstWord) {
    parsed result = leading({"-t", "3", "setSsid", "-t", "4"});
    EXPECT_EQ(result.options.settings.timeout_seconds, 3);
    EXPECT_EQ(result.words, (strings{"setSsid", "-t", "4"}));
}

TEST(ClientOptions, TwoHyphensEndThem) {
    EXPECT_EQ(leading({"-t", "3", "--", "-t", "4"}).words, (strings{"-t", "4"}));
    EXPECT_EQ(behind({"1", "--", "--cached"}).common.words, (strings{"1", "--cached"}));
    EXPECT_FALSE(behind({"1", "--", "--cached"}).own[0]);
}

TEST(ClientOptions, CommandTakesItsOwnAndTheGlobalOnesAnywhere) {
    for (const strings &words : {strings{"--cached", "-t", "9", "a", "b"},
                                 {"a", "--cached", "-t", "9", "b"},
                                 {"a", "b", "--cached", "-t", "9"},
                                 {"-c", "a", "-t9", "b"}}) {
        parsed_command result = behind(words);
        EXPECT_TRUE(result.common.fits) << result.common.problem;
        EXPECT_EQ(result.common.options.settings.timeout_seconds, 9);
        EXPECT_EQ(result.own[0], "");
        EXPECT_FALSE(result.own[1]);
        EXPECT_EQ(result.common.words, (strings{"a", "b"}));
    }
}

TEST(ClientOptions, OwnOptionHasItsValue) {
    EXPECT_EQ(behind({"1", "--confirm-within", "30"}).own[1], "30");
    EXPECT_EQ(behind({"--confirm-within=30", "1"}).own[1], "30");
    EXPECT_EQ(behind({"1", "--confirm-within"}).common.problem, "--confirm-within needs a value");
    EXPECT_EQ(behind({"1"}).own[1], std::nullopt);
}

TEST(ClientOptions, WholeCommandLineKeepsItsOwnOptions) {
    parsed_command result = behind({"--cached", "scan", "--cached", "-t", "9"}, word_kind::COMMAND_LINE);
    EXPECT_EQ(result.own[0], "");
    EXPECT_EQ(result.common.options.settings.timeout_seconds, DEFAULT_TIMEOUT_SECONDS);
    EXPECT_EQ(result.common.words, (strings{"scan", "--cached", "-t", "9"}));
}

TEST(ClientOptions, UnknownOptionIsNamed) {
    EXPECT_EQ(leading({"--bogus"}).problem, "--bogus is no option");
    EXPECT_EQ(leading({"-x"}).problem, "-x is no option");
    EXPECT_EQ(leading({"-hx"}).problem, "-x is no option");
    EXPECT_EQ(behind({"1", "--bogus"}).common.problem, "--bogus is no option");
    EXPECT_EQ(behind({"1", "-x", "2"}).common.problem, "-x is no option");
    EXPECT_FALSE(leading({"--cached"}).fits) << "an option of a command alone";
}

TEST(ClientOptions, OptionThatTakesNoValueIsNamedWhenItIsGivenOne) {
    EXPECT_EQ(leading({"--help=yes"}).problem, "--help takes no value");
    EXPECT_EQ(behind({"1", "--cached="}).common.problem, "--cached takes no value");
    EXPECT_EQ(behind({"1", "--cach=1"}).common.problem, "--cach takes no value");
    EXPECT_EQ(leading({"--bogus=1"}).problem, "--bogus=1 is no option");
}

TEST(ClientOptions, BeginningOfSeveralOptionsIsNoneOfThem) {
    EXPECT_EQ(behind({"1", "--c"}).common.problem, "--c is the beginning of more than one option");
    EXPECT_EQ(behind({"1", "--c=1"}).common.problem, "--c=1 is the beginning of more than one option");
    EXPECT_EQ(leading({"--c"}).problem, "--c needs a value") << "only --color begins so outside of commands";
}

TEST(ClientOptions, OptionWithoutItsValueIsNamed) {
    EXPECT_EQ(leading({"-t"}).problem, "-t needs a value");
    EXPECT_EQ(leading({"--server"}).problem, "--server needs a value");
    EXPECT_EQ(behind({"1", "-o"}).common.problem, "-o needs a value");
}

TEST(ClientOptions, OptionsCanBeParsedAgainAndAgain) {
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(leading({"-hx"}).fits);
        EXPECT_EQ(behind({"a", "-c"}).own[0], "");
    }
}

// Colours.

TEST(ClientOptions, ColourFollowsTheTerminalAndNoColor) {
    const client_settings terminal = {25, output_format::TEXT, nullptr, true, true};
    {
        no_color unset(nullptr);
        EXPECT_TRUE(leading({"--color", "auto"}, terminal).options.settings.colour);
        EXPECT_FALSE(leading({"--color", "auto"}).options.settings.colour) << "no terminal";
        EXPECT_FALSE(leading({"--color", "never"}, terminal).options.settings.colour);
        EXPECT_TRUE(leading({"--color", "always"}).options.settings.colour);
    }
    {
        no_color set("1");
        EXPECT_FALSE(leading({"--color", "auto"}, terminal).options.settings.colour);
        EXPECT_TRUE(leading({"--color", "always"}, terminal).options.settings.colour);
    }
    {
        no_color empty("");
        EXPECT_TRUE(leading({"--color", "auto"}, terminal).options.settings.colour);
    }
    EXPECT_EQ(leading({"--color", "red"}).problem, "--color is \"red\", but has to be auto, always or never");
}

TEST(ClientOptions, FileIsNoTerminalAndHasNoColours) {
    FILE *file = tmpfile();
    client_settings settings = default_settings(file);
    EXPECT_FALSE(settings.terminal);
    EXPECT_FALSE(settings.colour);
    EXPECT_EQ(settings.timeout_seconds, DEFAULT_TIMEOUT_SECONDS);
    fclose(file);
}

// Operations: as many words as there are arguments are arguments.

class ClientOperationOptions : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(accepted(0, word_bytes(server.port)));
        server.answer_with(accepted(0, word_bytes(0)));
    }

    run_outcome call(const strings &words) {
        return run_at({"127.0.0.1", portmapper.port}, words);
    }

    // The text that the server was told to set as an SSID.
    std::string ssid_sent() {
        std::string arguments = server.arguments();
        return arguments.size() < 8 ? "none" : arguments.substr(8, static_cast<size_t>(arguments[7]));
    }

    FakePeer portmapper, server;
};

TEST_F(ClientOperationOptions, ArgumentsThatLookLikeOptionsAreArguments) {
    for (const char *word : {"-h", "--help", "-t", "--timeout", "--", "-", "-o", "--output=json"}) {
        EXPECT_EQ(call({"setSsid", "1", word}).out, "ok\n") << word;
        EXPECT_EQ(ssid_sent(), word);
    }
    EXPECT_EQ(call({"setSsid", "-1", "x"}).out, "ok\n");
    EXPECT_EQ(server.arguments().substr(0, 4), word_bytes(0xffffffff));
}

TEST_F(ClientOperationOptions, OptionsMayStandBeforeAndBehind) {
    const std::string ok = "{\"operation\":\"setSsid\",\"code\":0,\"result\":{}}\n";
    EXPECT_EQ(call({"-o", "json", "setSsid", "1", "x"}).out, ok);
    EXPECT_EQ(call({"setSsid", "1", "x", "-o", "json"}).out, ok);
    EXPECT_EQ(call({"-o", "text", "setSsid", "1", "x", "-ojson", "-t", "9"}).out, ok);
    EXPECT_EQ(call({"setSsid", "1", "-ojson", "-o", "json"}).out, ok);
    EXPECT_EQ(ssid_sent(), "-ojson");
}

TEST_F(ClientOperationOptions, OptionsOfAnOperationWithoutArgumentsStandBehindIt) {
    EXPECT_EQ(call({"init", "-o", "json"}).out, "{\"operation\":\"init\",\"code\":0,\"result\":{}}\n");
}

TEST_F(ClientOperationOptions, WordBehindTheArgumentsThatIsNoOptionIsOneTooMany) {
    run_outcome outcome = call({"setSsid", "1", "a", "b"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.errors.starts_with("setSsid: takes 2 arguments, not 3\n")) << outcome.errors;
    outcome = call({"setSsid", "1", "a", "-t", "9", "b"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.errors.starts_with("setSsid: takes 2 arguments, not 3\n")) << "options are no arguments";
    outcome = call({"getSsid", "1", "--", "-o", "json"});
    EXPECT_TRUE(outcome.errors.starts_with("getSsid: takes 1 argument, not 3\n")) << outcome.errors;
    EXPECT_EQ(server.received(), 0);
}

TEST_F(ClientOperationOptions, HelpBehindAnOperationDescribesItAndCallsNobody) {
    std::string described = call({"describe", "getSsid"}).out;
    for (const strings &words : {strings{"getSsid", "--help"},
                                 {"getSsid", "-h"},
                                 {"getSsid", "1", "--help"},
                                 {"getSsid", "1", "-h"},
                                 {"help", "getSsid"}})
        EXPECT_EQ(call(words).out, described) << words.back();
    EXPECT_TRUE(call({"init", "--help"}).out.starts_with("init: "));
    EXPECT_EQ(server.received() + portmapper.received(), 0);
}

TEST_F(ClientOperationOptions, HelpInPlaceOfATextIsText) {
    EXPECT_EQ(call({"getBssidPort", "-h"}).status, 5) << "it was sent, and the answer is no port";
    EXPECT_EQ(server.arguments(), word_bytes(2) + std::string("-h\0\0", 4));
}

TEST_F(ClientOperationOptions, ServerOfAnOperationIsAskedInsteadOfTheOther) {
    run_outcome outcome = call({"init", "--server", "127.0.0.1"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(server.received(), 1);
    outcome = call({"--server", "no.such.host.invalid", "init", "-s", "127.0.0.1"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
}

TEST_F(ClientOperationOptions, HelpOfACommandTakesAnyFormat) {
    EXPECT_EQ(call({"list", "--help"}).out, call({"help", "list"}).out);
    EXPECT_EQ(call({"-h"}).out, call({"help"}).out);
}

TEST_F(ClientOperationOptions, BareValueOutOfSeveralHasToBeChosenBeforeAnythingIsSent) {
    const std::string line = ": the result has several values: choose one by its name with --field\n";
    EXPECT_EQ(call({"getBssidPort", "x", "-o", "value"}).errors, "getBssidPort" + line);
    EXPECT_EQ(call({"getAssocDevicesTable", "1", "-o", "value"}).errors, "getAssocDevicesTable" + line);
    EXPECT_EQ(call({"getRssiTable", "1", "-o", "value"}).errors, "getRssiTable" + line);
    EXPECT_EQ(call({"getStats", "1", "-o", "value"}).status, 2);
    EXPECT_EQ(server.received() + portmapper.received(), 0);
    for (const strings &words :
         {strings{"setSsid", "1", "x"}, {"getSsid", "1"}, {"getEnable", "1"}, {"getRadioTxPackets", "1"}})
        EXPECT_NE(call({"-o", "value", words[0], words[1], words.size() > 2 ? words[2] : "-t9"}).errors,
                  words[0] + line);
    EXPECT_EQ(server.received(), 4);
    call({"getBssidPort", "x", "--field", "port"});
    EXPECT_EQ(server.received(), 5) << "chosen";
}

TEST_F(ClientOperationOptions, WhatIsWrongIsSaidInTheFormatThatIsAskedForAnywhere) {
    for (const strings &words : {strings{"bogus", "1", "-o", "json"},
                                 {"bogus", "--output=json", "1"},
                                 {"getSsid", "-o", "json"},
                                 {"getSsid", "-ojson", "--field"},
                                 {"getSsid", "1", "--bogus", "-o", "json"},
                                 {"--bogus", "getSsid", "1", "--out", "json"},
                                 {"list", "--bogus", "-o", "json"},
                                 {"-hojson", "--bogus"},
                                 {"-o", "text", "--timeout", "x", "list", "-ojson"}}) {
        run_outcome outcome = call(words);
        EXPECT_EQ(outcome.status, 2) << words[0];
        EXPECT_EQ(outcome.errors, "") << words[0];
        EXPECT_EQ(nlohmann::json::parse(outcome.out, nullptr, false)["error"]["kind"], "usage") << outcome.out;
    }
    EXPECT_EQ(server.received() + portmapper.received(), 0);
}

TEST_F(ClientOperationOptions, WordsThatAreNoFormatChangeNothing) {
    for (const strings &words : {strings{"bogus", "-o"},
                                 {"bogus", "json"},
                                 {"bogus", "-o", "jsn"},
                                 {"bogus", "--field", "json"},
                                 {"setEnable", "x", "-ojson"},
                                 {"bogus", "-", "--", "--output"}}) {
        run_outcome outcome = call(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "") << words[1];
    }
}

TEST_F(ClientOperationOptions, UsageForProgramsIsAnObject) {
    run_outcome outcome = call({"-o", "json", "setEnable", "1", "maybe"});
    nlohmann::json answer = nlohmann::json::parse(outcome.out, nullptr, false);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(answer["operation"], "setEnable");
    EXPECT_EQ(answer["error"]["kind"], "usage");
}

TEST(ClientOptionTables, OptionsHaveDifferentNamesAndLetters) {
    for (size_t i = 0; i < command_row_count; i++) {
        std::vector<std::string> names;
        std::string letters;
        auto add = [&](const option_row *rows, size_t count) {
            for (size_t j = 0; j < count; j++) {
                EXPECT_EQ(std::count(names.begin(), names.end(), rows[j].name), 0) << rows[j].name;
                EXPECT_TRUE(!rows[j].letter || letters.find(rows[j].letter) == std::string::npos) << rows[j].name;
                names.push_back(rows[j].name);
                letters += rows[j].letter;
            }
        };
        add(global_options, global_option_count);
        add(command_rows[i].options, command_rows[i].option_count);
        EXPECT_LE(command_rows[i].option_count, COMMAND_OPTIONS_MAX) << command_rows[i].name;
    }
}

}  // namespace
