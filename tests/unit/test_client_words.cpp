// Lines of a batch and of the shell: how they become words.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "client/words.h"

namespace {

using strings = std::vector<std::string>;

struct outcome {
    bool is_line;
    strings words;
    std::string problem;
    std::unique_ptr<line_words> split = std::make_unique<line_words>();
};

outcome split(const std::string &line) {
    outcome made;
    char problem[PROBLEM_SIZE] = "";
    // An exact copy, so that a sanitizer sees a read behind the end.
    std::vector<char> copy(line.begin(), line.end());
    made.is_line = split_line(copy.data(), copy.size(), made.split.get(), problem);
    made.problem = problem;
    for (size_t i = 0; i < made.split->count; i++)
        made.words.push_back(made.split->words[i]);
    return made;
}

void expect_words(const std::string &line, const strings &words) {
    outcome made = split(line);
    EXPECT_TRUE(made.is_line) << line << ": " << made.problem;
    EXPECT_EQ(made.words, words) << line;
    EXPECT_EQ(made.split->words[made.words.size()], nullptr);
}

void expect_problem(const std::string &line, const std::string &problem) {
    outcome made = split(line);
    EXPECT_FALSE(made.is_line) << line;
    EXPECT_EQ(made.problem, problem) << line;
}

TEST(ClientWords, BlanksSeparateWords) {
    expect_words("", {});
    expect_words(" \t ", {});
    expect_words("getSsid 1", {"getSsid", "1"});
    expect_words("  getSsid\t \t1  ", {"getSsid", "1"});
    expect_words("getSsid 1\r", {"getSsid", "1"});
}

TEST(ClientWords, SingleQuotesKeepEverythingAsItStands) {
    expect_words(R"(a 'b  c\"$x` #' d)", {"a", R"(b  c\"$x` #)", "d"});
}

TEST(ClientWords, DoubleQuotesKeepBlanksAndObeyTheBackslashBeforeFourCharacters) {
    expect_words(R"("a b" "\"\\\$\`")", {"a b", "\"\\$`"});
    expect_words(R"("\a\'")", {R"(\a\')"});
}

TEST(ClientWords, BackslashTakesTheMeaningFromOneCharacter) {
    expect_words(R"(a\ b \'c \\ \# \d)", {"a b", "'c", "\\", "#", "d"});
}

TEST(ClientWords, QuotesWithinAWordBelongToIt) {
    expect_words(R"(a'b c'"d e"\ f)", {"ab cd e f"});
}

TEST(ClientWords, EmptyQuotesAreAnEmptyWord) {
    expect_words("setSsid 1 ''", {"setSsid", "1", ""});
    expect_words("\"\"", {""});
}

TEST(ClientWords, CommentBeginsAtTheBeginningOfAWordOnly) {
    expect_words("# getSsid 1", {});
    expect_words("getSsid 1 # 'the first", {"getSsid", "1"});
    expect_words("a#b c# '#d'", {"a#b", "c#", "#d"});
}

TEST(ClientWords, NothingIsExpanded) {
    expect_words("$HOME `id` $(id) * ~ a;b|c>d&", {"$HOME", "`id`", "$(id)", "*", "~", "a;b|c>d&"});
}

TEST(ClientWords, BytesAreSpelledOutBehindADollarAsDryRunsShowThem) {
    expect_words(R"(setSsid 5 $'\x1b[m\xe9\x27')", {"setSsid", "5", "\x1b[m\xe9'"});
    expect_words(R"(a$'b\x20c'd $'\'\\' $'')", {"ab cd", R"('\)", ""});
    expect_words(R"($'\x5C\x41f')", {R"(\Af)"});
}

TEST(ClientWords, WhatIsNoByteBehindADollarStandsAsItIs) {
    expect_words(R"($'\x00 \xg1 \x4g \n' $'\x4')", {R"(\x00 \xg1 \x4g \n)", R"(\x4)"});
    expect_words(R"("$'x'" '$' $x $ \$a)", {"$'x'", "$", "$x", "$", "$a"});
    expect_words(R"($"a")", {"$a"});
    expect_problem("a $'b", "the quote ' in column 4 has no end");
}

TEST(ClientWords, QuoteWithoutItsEndIsAnErrorWithItsColumn) {
    expect_problem("'", "the quote ' in column 1 has no end");
    expect_problem("setSsid 1 'My net", "the quote ' in column 11 has no end");
    expect_problem("setSsid 1 \"it's\" \"", "the quote \" in column 18 has no end");
    expect_problem("a \"\\\"", "the quote \" in column 3 has no end");
}

TEST(ClientWords, ColumnsCountCharactersNotBytes) {
    expect_problem("\303\244\303\266 '", "the quote ' in column 4 has no end");
    expect_problem("\342\202\254 '", "the quote ' in column 3 has no end");
}

TEST(ClientWords, BackslashAtTheEndHasNothingBehindIt) {
    expect_problem("a b\\", "the backslash in column 4 has nothing behind it");
}

TEST(ClientWords, WordsBeforeAnUnfinishedQuoteAreThere) {
    outcome made = split("list \"radio t");
    EXPECT_EQ(made.words, (strings{"list", "radio t"}));
    EXPECT_EQ(made.split->open, '"');
    EXPECT_EQ(made.split->last_begin, 5u);
    EXPECT_TRUE(made.split->in_word);
}

TEST(ClientWords, EndOfTheLineIsWithinAWordOrBehindIt) {
    EXPECT_TRUE(split("list a").split->in_word);
    EXPECT_FALSE(split("list a ").split->in_word);
    EXPECT_FALSE(split("").split->in_word);
    EXPECT_TRUE(split("list # a").split->in_comment);
    EXPECT_FALSE(split("list # a").split->in_word);
    EXPECT_FALSE(split("list a").split->in_comment);
}

TEST(ClientWords, AsManyWordsAsThereIsRoomForAndNotOneMore) {
    std::string line;
    for (size_t i = 0; i < LINE_WORDS_MAX; i++)
        line += "w ";
    expect_words(line, strings(LINE_WORDS_MAX, "w"));
    expect_problem(line + "x", "more than 64 words: the next one is in column 129");
    expect_words(line + "# x", strings(LINE_WORDS_MAX, "w"));
}

TEST(ClientWords, AsManyCharactersAsThereIsRoomForAndNotOneMore) {
    std::string longest(LINE_LENGTH_MAX, 'x');
    expect_words(longest, {longest});
    expect_problem(longest + "x", "the line is longer than 16384 bytes");
}

TEST(ClientWords, ManyShortWordsFitAsWellAsOneLongOne) {
    expect_words("a b c", {"a", "b", "c"});
    std::string line(LINE_LENGTH_MAX, ' ');
    line.front() = line.back() = 'x';
    expect_words(line, {"x", "x"});
}

TEST(ClientWords, NulIsNoText) {
    expect_problem(std::string("get\0Ssid", 8), "the line is no text: it has a NUL in it");
}

}  // namespace
