#include "package/printable.hpp"

#include <gtest/gtest.h>

#include "package/sample_package.hpp"

TEST(Printable, ShowsEveryByteInPrintableAscii) {
    EXPECT_EQ("plain ~!", printable("plain ~!"));
    EXPECT_EQ("a\\\\b", printable("a\\b"));
    EXPECT_EQ("\\033[2J\\012\\177\\200\\377", printable("\x1b[2J\n\x7f\x80\xff"));
    EXPECT_EQ("\\000", printable(std::string_view("\0", 1)));
}

TEST(Printable, KnowsPrintableAscii) {
    EXPECT_TRUE(isPrintable(" ~"));
    EXPECT_FALSE(isPrintable("a\tb"));
    EXPECT_FALSE(isPrintable("a\x7f"));
    EXPECT_FALSE(isPrintable("\xc3\xa4"));
}

TEST(PlainName, HasLettersDigitsAndFourSigns) {
    for (const char* const name : {"a", "Z", "varn-2.41", "a_b+c", "0"}) {
        EXPECT_TRUE(isPlainName(name)) << name;
    }
    for (const char* const name :
         {"", ".a", "-a", "a b", "a;b", "a:b", "a/b", "a\\b", "a\nb", "\xc3\xa4", "a%", "a~b"}) {
        EXPECT_FALSE(isPlainName(name)) << name;
    }
    EXPECT_TRUE(isPlainName(std::string(100, 'n')));
    EXPECT_FALSE(isPlainName(std::string(101, 'n')));
    EXPECT_FALSE(isPlainName(std::string_view("a\0b", 3)));
}

TEST(Findings, SayWhereWhatAndCure) {
    findings found;
    EXPECT_TRUE(found.empty());
    found.add("a\x1b", "is wrong", "mend it");
    findings others;
    others.add("b", "is missing", "put it there");
    found.append(others);
    EXPECT_FALSE(found.empty());
    EXPECT_EQ("a\\033: is wrong; mend it\nb: is missing; put it there\n", textOf(found));
}
