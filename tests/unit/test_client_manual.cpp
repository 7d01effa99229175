// The manual page: it has every command and option, and its texts cannot be taken for requests.
#include "client/manual.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "client/command_table.h"
#include "tests/support/client_runs.h"

namespace {

std::string manual() {
    return run({"manual"}).out;
}

TEST(ClientManual, HasTheSectionsOfAProgrammesPageInTheirOrder) {
    std::string text = manual();
    size_t at = 0;
    for (const char *section : {"NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "OPTIONS", "OUTPUT", "ENVIRONMENT",
                                "FILES", "EXIT STATUS", "EXAMPLES", "SEE ALSO"}) {
        size_t found = text.find(std::string("\n.Sh ") + section + "\n");
        ASSERT_NE(found, std::string::npos) << section;
        EXPECT_GT(found, at) << section;
        at = found;
    }
}

TEST(ClientManual, HasEveryCommandButTheHiddenOnes) {
    std::string text = manual();
    for (size_t i = 0; i < command_row_count; i++) {
        std::string item = std::string("\n.It Cm ") + command_rows[i].name;
        bool found = text.find(item + "\n") != std::string::npos || text.find(item + " ") != std::string::npos;
        EXPECT_EQ(found, command_rows[i].group != command_group::HIDDEN) << command_rows[i].name;
    }
}

TEST(ClientManual, HasEveryOptionWithItsLetterAndItsValue) {
    std::string text = manual();
    for (const char *line :
         {"\n.It Fl t , Fl -timeout Ar SECONDS\n", "\n.It Fl -color Ar WHEN\n", "\n.It Fl h , Fl -help\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
    for (size_t i = 0; i < global_option_count; i++)
        EXPECT_NE(text.find(std::string("Fl -") + global_options[i].name), std::string::npos);
}

TEST(ClientManual, HasEveryExitStatusAndEveryKindOfError) {
    std::string text = manual();
    for (size_t i = 0; i < exit_status_row_count; i++) {
        EXPECT_NE(text.find("\n.It " + std::to_string(exit_status_rows[i].status) + "\n"), std::string::npos);
        bool is_kind = text.find(std::string("\n.Cm ") + exit_status_rows[i].word + " ") != std::string::npos;
        EXPECT_EQ(is_kind, exit_status_rows[i].status != EXIT_STATUS_SUCCESS) << exit_status_rows[i].word;
    }
}

TEST(ClientManual, GroupsWithoutCommandsHaveNoHeading) {
    std::string text = manual();
    for (size_t i = 0; i < command_group_count; i++) {
        bool any = false;
        for (size_t j = 0; j < command_row_count; j++)
            any = any || command_rows[j].group == command_groups[i].group;
        EXPECT_EQ(text.find(std::string("\n.Ss ") + command_groups[i].title + "\n") != std::string::npos, any);
    }
}

TEST(ClientManual, LinesAreShortAndDoNotEndWithBlanks) {
    std::istringstream lines(manual());
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80u) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
        EXPECT_FALSE(line.empty());
    }
}

std::string as_mdoc(const char *text) {
    return written([&](FILE *out) { print_manual_text(out, text); });
}

TEST(ClientManual, SentencesBeginLinesOfTheirOwn) {
    EXPECT_EQ(as_mdoc("One. Two, e.g. this! Three"), "One.\nTwo, e.g.\nthis!\nThree\n");
}

TEST(ClientManual, LongTextIsBrokenBetweenWords) {
    std::string text;
    for (int i = 0; i < 40; i++)
        text += "word ";
    std::istringstream lines(as_mdoc(text.c_str()));
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 78u);
    std::string longest(200, 'x');
    EXPECT_EQ(as_mdoc(("a " + longest + " b").c_str()), "a\n" + longest + "\nb\n");
}

TEST(ClientManual, EmptyLineBeginsAParagraph) {
    EXPECT_EQ(as_mdoc("one\n\n\ntwo"), "one\n.Pp\ntwo\n");
    EXPECT_EQ(as_mdoc("\n\none\n\n"), "one\n");
}

TEST(ClientManual, LinesThatBeginWithABlankAreShownAsTheyStand) {
    EXPECT_EQ(as_mdoc("see:\n  scan 1  --cached\n  scan 9\nand more"),
              "see:\n.Bd -literal -offset indent\nscan 1  --cached\nscan 9\n.Ed\nand more\n");
    EXPECT_EQ(as_mdoc("  alone"), ".Bd -literal -offset indent\nalone\n.Ed\n");
}

TEST(ClientManual, TextIsNeverARequestOrAnEscape) {
    EXPECT_EQ(as_mdoc(".Sh 'x \\n"), "\\&.Sh 'x \\en\n");
    EXPECT_EQ(as_mdoc("'quoted"), "\\&'quoted\n");
    EXPECT_EQ(as_mdoc("a. .b"), "a.\n\\&.b\n");
    EXPECT_EQ(as_mdoc("  .literal \\"), ".Bd -literal -offset indent\n\\&.literal \\e\n.Ed\n");
}

}  // namespace
