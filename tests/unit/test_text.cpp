// Texts that back ends give out: terminated, cut to fit, nothing behind the buffer's end touched.
#include "config/text.h"

#include <gtest/gtest.h>
#include <string.h>

#include <string>

namespace {

// Eight bytes of which the first `size` are the buffer; the rest must stay as it is.
struct buffer {
    char bytes[8];

    buffer() {
        memset(bytes, '?', sizeof(bytes));
    }

    std::string all() const {
        return {bytes, sizeof(bytes)};
    }
};

TEST(Text, ATextThatFitsIsCopiedWithItsEnd) {
    buffer out;
    put_text(out.bytes, 4, "abc");
    EXPECT_EQ(out.all(), std::string("abc\0????", 8));
}

TEST(Text, ATextThatDoesNotFitIsCut) {
    buffer out;
    put_text(out.bytes, 4, "abcd");
    EXPECT_EQ(out.all(), std::string("abc\0????", 8));
}

TEST(Text, AFormatSignInATextIsNoFormat) {
    buffer out;
    put_text(out.bytes, 8, "%d%s");
    EXPECT_STREQ(out.bytes, "%d%s");
}

TEST(Text, AtMostTheAskedNumberOfCharactersIsCopied) {
    buffer out;
    put_characters(out.bytes, 8, "abcdef", 2);
    EXPECT_EQ(out.all(), std::string("ab\0?????", 8));
}

TEST(Text, CopyingCharactersEndsWithTheText) {
    buffer out;
    put_characters(out.bytes, 8, "ab\0cd", 5);
    EXPECT_EQ(out.all(), std::string("ab\0?????", 8));
}

TEST(Text, CopyingCharactersCutsToTheBuffer) {
    buffer out;
    put_characters(out.bytes, 3, "abcdef", 6);
    EXPECT_EQ(out.all(), std::string("ab\0?????", 8));
}

TEST(Text, RefusedIndicesGiveFourZeroBytes) {
    buffer out;
    put_zeros(out.bytes, sizeof(out.bytes));
    EXPECT_EQ(out.all(), std::string("\0\0\0\0????", 8));
}

TEST(Text, FewerZeroBytesWhereTheBufferHasFewer) {
    buffer out;
    put_zeros(out.bytes, 2);
    EXPECT_EQ(out.all(), std::string("\0\0??????", 8));
}

}  // namespace
