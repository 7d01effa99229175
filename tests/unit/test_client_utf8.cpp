// What is UTF-8, at every boundary of it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/utf8.h"
#include "tests/support/client_runs.h"

namespace {

struct sequence {
    std::string bytes;
    size_t length;  // of the character it begins with
};

TEST(ClientUtf8, CharacterHasTheLengthThatItsLeadByteSays) {
    const std::vector<sequence> sequences = {
        {std::string("\0", 1), 1},
        {"\x01", 1},
        {"\x7f", 1},  // one byte: all of them
        {"\xc2\x80", 2},
        {"\xdf\xbf", 2},  // U+0080, U+07FF
        {"\xe0\xa0\x80", 3},
        {"\xed\x9f\xbf", 3},  // U+0800, U+D7FF
        {"\xee\x80\x80", 3},
        {"\xef\xbf\xbf", 3},  // U+E000, U+FFFF
        {"\xf0\x90\x80\x80", 4},
        {"\xf4\x8f\xbf\xbf", 4},  // U+10000, U+10FFFF
        {"\xc3\xa4more", 2},
    };
    for (const sequence &one : sequences) {
        EXPECT_EQ(utf8_length(one.bytes.data(), one.bytes.size()), one.length) << testing::PrintToString(one.bytes);
        EXPECT_TRUE(is_utf8(one.bytes.data(), one.bytes.size())) << testing::PrintToString(one.bytes);
    }
}

const std::vector<std::string> NO_CHARACTERS = {
    "",
    "\x80",
    "\xbf",  // continuations alone
    "\xc0\x80",
    "\xc1\xbf",
    "\xe0\x80\x80",
    "\xe0\x9f\xbf",
    "\xf0\x80\x80\x80",
    "\xf0\x8f\xbf\xbf",  // overlong
    "\xed\xa0\x80",
    "\xed\xbf\xbf",  // surrogates
    "\xf4\x90\x80\x80",
    "\xf5\x80\x80\x80",
    "\xf7\xbf\xbf\xbf",  // beyond U+10FFFF
    "\xf8\x88\x80\x80\x80",
    "\xfc\x84\x80\x80\x80\x80",
    "\xfe",
    "\xff",  // longer forms of old
    "\xc2",
    "\xe0\xa0",
    "\xf0\x90\x80",  // cut
    "\xc2\x7f",
    "\xc2\xc0",
    "\xe0\xa0\x7f",
    "\xe0\xc0\x80",
    "\xf0\x90\x80\x7f",
    "\xf0\x90\xc0\x80",  // no continuation
};

TEST(ClientUtf8, AnythingElseIsNoCharacter) {
    for (const std::string &bytes : NO_CHARACTERS)
        EXPECT_EQ(utf8_length(bytes.data(), bytes.size()), 0u) << testing::PrintToString(bytes);
}

TEST(ClientUtf8, OneWrongByteAnywhereMakesATextNoUtf8) {
    for (const std::string &bytes : NO_CHARACTERS) {
        if (bytes.empty())
            continue;
        for (const std::string &text : {bytes, "a" + bytes, bytes + "a", "\xc3\xa4" + bytes + "\xc3\xa4"})
            EXPECT_FALSE(is_utf8(text.data(), text.size())) << testing::PrintToString(text);
    }
}

TEST(ClientUtf8, EmptyTextIsUtf8) {
    EXPECT_TRUE(is_utf8("", 0));
}

TEST(ClientUtf8, LengthIsNotReadBeyond) {
    const std::vector<char> exact = {'\xe2', '\x82'};
    EXPECT_EQ(utf8_length(exact.data(), exact.size()), 0u);
    EXPECT_EQ(utf8_length("\xe2\x82\xac", 2), 0u);
    EXPECT_EQ(utf8_length("\xe2\x82\xac", 3), 3u);
}

TEST(ClientUtf8, ControlsAreC0AndDelAndC1) {
    for (int c = 0; c < 0x100; c++) {
        std::string text = c < 0x80
                               ? std::string(1, static_cast<char>(c))
                               : std::string{static_cast<char>(0xc0 | c >> 6), static_cast<char>(0x80 | (c & 0x3f))};
        EXPECT_EQ(is_control_character(text.data(), text.size()), c < 0x20 || (c >= 0x7f && c < 0xa0)) << c;
    }
}

TEST(ClientUtf8, BytesThatAreNoCharacterAreNoControlEither) {
    for (const std::string &bytes : NO_CHARACTERS)
        EXPECT_FALSE(is_control_character(bytes.data(), bytes.size())) << testing::PrintToString(bytes);
}

TEST(ClientUtf8, PrintedTextHasNothingThatATerminalObeys) {
    EXPECT_EQ(written([](FILE *out) { print_visible(out, "a\033[31m\xc2\x9b b\n\xe9\x7f Caf\xc3\xa9"); }),
              "a\\x1b[31m\\xc2\\x9b b\\x0a\\xe9\\x7f Caf\xc3\xa9");
}

}  // namespace
