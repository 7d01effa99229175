// Texts that reach the server's shell: what the client refuses, and that a real shell takes the rest for nothing but
// texts.
#include "client/shell_texts.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/support/client_runs.h"
#include "tests/support/fake_peer.h"

namespace {

using strings = std::vector<std::string>;

const shell_row QUOTED_ONCE = {"wlan_x", "text", shell_place::QUOTED, shell_times::ONCE};
const shell_row QUOTED_AGAIN = {"wlan_x", "text", shell_place::QUOTED, shell_times::AGAIN};
const shell_row BARE_ONCE = {"wlan_x", "text", shell_place::BARE, shell_times::ONCE};
const shell_row BARE_AGAIN = {"wlan_x", "text", shell_place::BARE, shell_times::AGAIN};

// Where the first character is that is found, -1 for none.
long found_at(const shell_row &row, const std::string &text) {
    const char *found = find_shell_character(&row, text.c_str());
    return found ? found - text.c_str() : -1;
}

TEST(ClientShellTexts, AreTextsOfProceduresAndStandInTheTableOnce) {
    std::set<std::string> seen;
    for (size_t i = 0; i < shell_row_count; i++) {
        const procedure_row *row = row_named(shell_rows[i].procedure);
        std::string name = std::string(row->name) + " " + shell_rows[i].argument;
        bool is_text = false;
        for (size_t j = 0; j < row->argument_count; j++)
            is_text = is_text || (row->arguments[j].kind == argument_kind::TEXT &&
                                  strcmp(row->arguments[j].name, shell_rows[i].argument) == 0);
        EXPECT_TRUE(is_text) << name;
        EXPECT_TRUE(seen.insert(name).second) << name;
        EXPECT_EQ(find_shell_row(row, shell_rows[i].argument), &shell_rows[i]);
    }
    EXPECT_EQ(find_shell_row(row_named("wlan_set_ssid"), "ssid"), nullptr);
    EXPECT_EQ(find_shell_row(row_named("wlan_set_wep_key"), "index"), nullptr);
}

TEST(ClientShellTexts, BetweenQuotesHaveFiveCharactersThatAreFound) {
    EXPECT_EQ(found_at(QUOTED_ONCE, "it's ; | & < > ( ) * ? [ ] { } # ~ ! plain\tk\xe9y"), -1);
    EXPECT_EQ(found_at(QUOTED_ONCE, ""), -1);
    for (char character : std::string("\"$`\\\n"))
        EXPECT_EQ(found_at(QUOTED_ONCE, std::string("ab") + character + "c"), 2) << character;
}

TEST(ClientShellTexts, ThatAreBareHaveManyMore) {
    EXPECT_EQ(found_at(BARE_ONCE, "28:6A:BA:4C:10:01_-.,/@%+=!^\xe9"), -1);
    for (char character : std::string("\"$`\\\n \t'&;|<>()*?[]{}#~"))
        EXPECT_EQ(found_at(BARE_ONCE, std::string("ab") + character + "c"), 2) << character;
}

TEST(ClientShellTexts, MayHaveABackslashInFrontOfEachOfThem) {
    EXPECT_EQ(found_at(QUOTED_ONCE, R"(a\$(b)\`\"\\)"), -1);
    EXPECT_EQ(found_at(BARE_ONCE, R"(a\ \;\|\'\\)"), -1);
    EXPECT_EQ(found_at(QUOTED_ONCE, R"(\\$)"), 2) << "the second backslash is the text";
    EXPECT_EQ(found_at(QUOTED_ONCE, R"(a\)"), 1) << "it would keep the quote behind it from the shell";
    EXPECT_EQ(found_at(QUOTED_ONCE, R"(a\;)"), 1) << "there is nothing to keep from the shell";
    EXPECT_EQ(found_at(QUOTED_ONCE, "\\\n"), 0) << "the shell would drop both";
}

// The server leaves the colons of some MACs out, and the backslash in front of one would stand in front of another.
TEST(ClientShellTexts, MayHaveNoBackslashInFrontOfAColon) {
    EXPECT_EQ(found_at(BARE_ONCE, R"(\:\;reboot)"), 0);
}

TEST(ClientShellTexts, ThatGoThroughTheShellAgainMayHaveNoneOfThem) {
    for (const shell_row *row : {&QUOTED_AGAIN, &BARE_AGAIN}) {
        EXPECT_EQ(found_at(*row, R"(a\$b)"), 1);
        EXPECT_EQ(found_at(*row, R"(a\\)"), 1);
        EXPECT_EQ(found_at(*row, "28:6A:BA:4C:10:01"), -1);
    }
}

// --- a real shell ---

// What is left of a text that passes when a shell has taken the backslashes off.
std::string without_backslashes(const std::string &text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); i++) {
        i += text[i] == '\\';
        plain += text[i];
    }
    return plain;
}

// All bytes alone and beside others, and longer texts of what a shell likes.
strings many_texts() {
    strings texts;
    for (int c = 1; c < 256; c++)
        for (const char *beside : {"", "a", "\\", "$", "x\\"})
            texts.insert(texts.end(), {beside + std::string(1, static_cast<char>(c)),
                                       static_cast<char>(c) + ("a" + std::string(beside))});
    std::mt19937 random(7);
    const std::string alphabet = "\\\\\\\\\"$`();&|<>'*?~#{},.! \ta:b1=-[]^%@\xe9";
    for (int i = 0; i < 20000; i++) {
        std::string text;
        for (size_t length = 1 + random() % 6; length > 0; length--)
            text += alphabet[random() % alphabet.size()];
        texts.push_back(text);
    }
    return texts;
}

// What a shell prints that runs these lines, in an empty folder.
std::string printed_by_shell(const std::string &lines) {
    std::ofstream("/tmp/shell_texts.sh", std::ios::binary) << lines;
    FILE *pipe = popen("mkdir -p /tmp/shell_texts && cd /tmp/shell_texts && exec sh ../shell_texts.sh 2>&1; ", "r");
    std::string printed;
    for (int c; pipe && (c = getc(pipe)) != EOF;)
        printed += static_cast<char>(c);
    if (pipe)
        pclose(pipe);
    unlink("/tmp/shell_texts.sh");
    EXPECT_EQ(rmdir("/tmp/shell_texts"), 0) << "a command has made a file";
    return printed;
}

// As the server builds them: cfg -a KEY="TEXT".
TEST(ClientShellTexts, ThatPassBetweenQuotesAreOneWordToAShell) {
    std::string lines, expected;
    size_t passed = 0;
    for (const std::string &text : many_texts()) {
        if (found_at(QUOTED_ONCE, text) >= 0)
            continue;
        lines += "printf '<%s>' -a KEY=\"" + text + "\"\n";
        expected += "<-a><KEY=" + without_backslashes(text) + ">";
        passed++;
    }
    EXPECT_GT(passed, 1000u);
    EXPECT_TRUE(printed_by_shell(lines) == expected);
}

// As the server builds them: airtime add_sta TEXT 30, without the colons.
TEST(ClientShellTexts, ThatPassBareAreOneWordToAShell) {
    std::string lines, expected;
    size_t passed = 0;
    for (const std::string &text : many_texts()) {
        if (found_at(BARE_ONCE, text) >= 0)
            continue;
        std::string bare = text;
        std::erase(bare, ':');
        if (bare.empty())
            continue;
        lines += "printf '<%s>' add_sta " + bare + " 30\n";
        expected += "<add_sta><" + without_backslashes(bare) + "><30>";
        passed++;
    }
    EXPECT_GT(passed, 1000u);
    EXPECT_TRUE(printed_by_shell(lines) == expected);
}

// --- what the client does ---

class ClientShellText : public testing::Test {
protected:
    void SetUp() override {
        portmapper.answer_with(success(word_bytes(server.port)));
        server.answer_with(success(word_bytes(0)));
    }

    run_outcome call(const strings &words) {
        return run_at({"127.0.0.1", portmapper.port}, words);
    }

    run_outcome batch(const std::string &lines, strings words = {"batch", "/tmp/shell_texts.batch"}) {
        std::ofstream("/tmp/shell_texts.batch", std::ios::binary) << lines;
        run_outcome outcome = call(words);
        unlink("/tmp/shell_texts.batch");
        return outcome;
    }

    FakePeer portmapper, server;
};

// The text is not repeated: it may be a secret, and errors are kept.
TEST_F(ClientShellText, ThatAShellWouldObeyIsUsageAndNothingIsSent) {
    run_outcome outcome = call({"setPreSharedKey", "1", "1", "top$ecret"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors,
              "setPreSharedKey: <key> has $ in it, which the server's shell would obey; put a backslash in front of "
              "it, or send it as it stands with --shell-text\n");
    EXPECT_EQ(call({"setWpsPinstart", "1", "1234 5670"}).errors,
              "setWpsPinstart: <pin> has a blank in it, which the server's shell would obey; put a backslash in front "
              "of it, or send it as it stands with --shell-text\n");
    EXPECT_EQ(call({"setWpsPinstart", "1", "1234\t5670"}).errors.substr(0, 36), "setWpsPinstart: <pin> has a tab in i");
    EXPECT_EQ(call({"setMacAddressControlAdd", "1", "02:00:00:00:00:01", "a\\$b"}).errors,
              "setMacAddressControlAdd: <list_name> has \\ in it, which the server's shell would obey, now or with the "
              "next change of the list; --shell-text sends it all the same\n");
    EXPECT_EQ(call({"setWepKey", "1", "1", "a\nb"}).errors,
              "setWepKey: <key> has a line break in it, which no setting can have; --shell-text sends it all the "
              "same\n");
    EXPECT_EQ(server.received(), 0);
    EXPECT_EQ(portmapper.received(), 0);
}

TEST_F(ClientShellText, ThatIsRefusedIsAnErrorForPrograms) {
    run_outcome outcome = call({"-o", "json", "setPreSharedKey", "1", "1", "top`ecret"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.out,
              "{\"operation\":\"setPreSharedKey\",\"error\":{\"status\":2,\"kind\":\"usage\",\"message\":\"<key> has ` "
              "in it, which the server's shell would obey; put a backslash in front of it, or send it as it stands "
              "with --shell-text\"}}\n");
}

TEST_F(ClientShellText, ThatIsPlainOrHasItsBackslashesIsSentAsItStands) {
    EXPECT_EQ(call({"setAcctServerKey", "1", "a\\$b"}).out, "ok\n");
    EXPECT_EQ(server.arguments(), word_bytes(1) + word_bytes(4) + "a\\$b");
    EXPECT_EQ(call({"setAcctServerKey", "1", "it's; it"}).out, "ok\n");
}

TEST_F(ClientShellText, ThatAShellWouldObeyIsSentAsItStandsWhenThatIsWanted) {
    EXPECT_EQ(call({"--shell-text", "setAcctServerKey", "1", "$(b)"}).out, "ok\n");
    EXPECT_EQ(server.arguments(), word_bytes(1) + word_bytes(4) + "$(b)");
    EXPECT_EQ(call({"setAcctServerKey", "1", "`cd`", "--shell-text"}).out, "ok\n");
    EXPECT_EQ(server.arguments(), word_bytes(1) + word_bytes(4) + "`cd`");
}

TEST_F(ClientShellText, OfAnArgumentThatReachesNoShellIsSent) {
    EXPECT_EQ(call({"setSsid", "1", "$(b)"}).out, "ok\n");
    EXPECT_EQ(call({"setKeyPassphrase", "1", "1", "`b`\"\\"}).out, "ok\n");
    EXPECT_EQ(call({"setRadiusServerKey", "1", "$b"}).out, "ok\n");
}

TEST_F(ClientShellText, EndsABatchAndWhatStandsBehindItIsNotSent) {
    run_outcome outcome = batch("setSsid 1 a\nsetWepKey 1 1 '$b'\nsetSsid 1 c\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "ok\n");
    EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find(" has ")), "/tmp/shell_texts.batch:2: setWepKey: <key>");
    EXPECT_EQ(server.received(), 1);
}

TEST_F(ClientShellText, IsWantedForOneLineOfABatchOrForAll) {
    EXPECT_EQ(batch("setWepKey 1 1 '$a' --shell-text\nsetWepKey 1 1 '$b'\n").status, 2);
    EXPECT_EQ(server.received(), 1);
    EXPECT_EQ(batch("setWepKey 1 1 '$a'\n--shell-text setWepKey 1 1 '$b'\n",
                    {"--shell-text", "batch", "/tmp/shell_texts.batch"})
                  .status,
              0);
    EXPECT_EQ(server.received(), 3);
}

TEST_F(ClientShellText, IsRefusedInAWatchToo) {
    EXPECT_EQ(call({"watch", "--count", "1", "setWepKey", "1", "1", "$b"}).status, 2);
    EXPECT_EQ(server.received(), 0);
    EXPECT_EQ(call({"watch", "--count", "1", "--shell-text", "setWepKey", "1", "1", "$b"}).status, 0);
    EXPECT_EQ(server.received(), 1);
}

// --- what it tells ---

TEST(ClientShellTextHelp, SaysWhereATextStandsAndWhatToDoAboutIt) {
    std::string key = run({"describe", "setWepKey"}).out;
    EXPECT_NE(
        key.find("                10 or 26 hexadecimal digits; any other is taken as it is\n"
                 "                reaches the server's shell between double quotes: \" $ ` \\ need a backslash in "
                 "front; leave out line breaks\n"),
        std::string::npos)
        << key;
    std::string list = run({"describe", "setMacAddressControlAdd"}).out;
    EXPECT_NE(
        list.find("                reaches the server's shell as a bare word: leave out blanks, tabs, \" $ ` \\ ' & ; "
                  "| < > ( ) * ? [ ] { } # ~ and line breaks\n"),
        std::string::npos)
        << list;
    EXPECT_EQ(run({"describe", "setSsid"}).out.find("shell"), std::string::npos);
}

TEST(ClientShellTextHelp, TellsProgramsTheSame) {
    std::string list = run({"-o", "json", "describe", "setMacAddressControlAdd"}).out;
    EXPECT_NE(list.find("\"name\":\"index\""), std::string::npos);
    EXPECT_NE(list.find("\"shell\":null"), std::string::npos);
    EXPECT_NE(list.find("\"shell\":{\"place\":\"bare\",\"backslash\":false}"), std::string::npos) << list;
    EXPECT_NE(list.find("\"shell\":{\"place\":\"quoted\",\"backslash\":false}"), std::string::npos) << list;
    EXPECT_NE(
        run({"-o", "json", "describe", "setWepKey"}).out.find("\"shell\":{\"place\":\"quoted\",\"backslash\":true}"),
        std::string::npos);
}

TEST(ClientShellTextHelp, DocumentsNameEachOfThem) {
    std::string reference = run({"reference"}).out, manual = run({"manual"}).out;
    size_t marks = 0;
    for (size_t at = 0;
         (at = reference.find(" ([shell](security.md#texts-that-reach-a-shell))", at)) != std::string::npos; at++)
        marks++;
    EXPECT_EQ(marks, shell_row_count);
    for (size_t i = 0; i < shell_row_count; i++)
        EXPECT_NE(manual.find(name_of(row_named(shell_rows[i].procedure)) + " <" + shell_rows[i].argument + ">\n"),
                  std::string::npos)
            << shell_rows[i].procedure;
}

}  // namespace
