#include "package/release_rules.hpp"

#include <gtest/gtest.h>

#include "package/package_rules.hpp"
#include "package/sample_package.hpp"
#include "release/release_file_maker.hpp"
#include "release/release_model.hpp"

namespace {

constexpr int fileCount = 12000;

const std::string start = "releasefile-information.txt: ";

std::string foundIn(const std::string& text) {
    return foundBy([&](findings& found) { checkReleaseText(text, found); });
}

/// A file that nothing is wrong with but its first line, which may be more than one.
std::string withSystem(const std::string& line) {
    return foundIn(line + "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nIMAGE_NAME=fw.bin\n");
}

std::string withImage(const std::string& name) {
    return foundIn("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV\nIMAGE_NAME=" + name + "\n");
}

}  // namespace

TEST(ReleaseRules, TakeFourValuesInAnyOrderAndForm) {
    EXPECT_EQ("", withSystem("SYSTEM=SV 1000\n"));
    EXPECT_EQ("", withSystem("# a remark\n\nsystem=x\nSYSTEM=\"SV 1000\"\n"));
    findings found;
    EXPECT_EQ("fw.bin", checkReleaseText("SYSTEM=SV\nIMAGE_NAME=\"fw.bin\"\nSDR_RELEASE=3\n"
                                         "VARN_RELEASE=2",
                                         found));
    EXPECT_TRUE(found.empty());
}

TEST(ReleaseRules, SayWhatIsWrongWithAValue) {
    const struct {
        std::string line;
        std::string finding;
    } rows[] = {
        {"", "SYSTEM is missing; add a line that begins with SYSTEM="},
        {"system=x\n", "SYSTEM is missing; add a line that begins with SYSTEM="},
        {" SYSTEM=x\n", "SYSTEM is missing; add a line that begins with SYSTEM="},
        {"\xef\xbb\xbfSYSTEM=x\n",
         "begins with a byte order mark; write it as plain ASCII text: the tool would not see "
         "SYSTEM"},
        {"SYSTEM=x\nSYSTEM=y\n", "SYSTEM is given 2 times; keep one of the lines"},
        {"SYSTEM=x\nSYSTEM=y\nSYSTEM=z\n", "SYSTEM is given 3 times; keep one of the lines"},
        {"SYSTEM=x\r\n", "SYSTEM holds a carriage return; end the lines as UNIX does"},
        {"SYSTEM=a\"b\n", "SYSTEM holds a quote; remove it: the tool would drop it"},
        {"SYSTEM=\"a\n", "SYSTEM holds a quote; remove it: the tool would drop it"},
        {"SYSTEM=a\x1b[2J\n", "SYSTEM holds a character other than printable ASCII; remove it"},
        {"SYSTEM=\xc3\xa4\n", "SYSTEM holds a character other than printable ASCII; remove it"},
        {"SYSTEM=a$<5>\n", "SYSTEM holds \"$<\"; remove it: varnmenu would make a pause of it"},
        {"SYSTEM=VARN\n",
         "the value of SYSTEM begins another line; change the value, or put its "
         "line below the other one"},
    };
    for (const auto& [line, finding] : rows) {
        EXPECT_EQ(start + finding + "\n", withSystem(line));
    }
}

TEST(ReleaseRules, MissEachKey) {
    std::string all;
    for (const auto& [id, key] : releaseKeys) {
        const std::string name(key.substr(0, key.size() - 1));
        all += start + name + " is missing; add a line that begins with " + name + "=\n";
    }
    EXPECT_EQ(all, foundIn(""));
    EXPECT_EQ(start + "IMAGE_NAME is missing; add a line that begins with IMAGE_NAME=\n",
              foundIn("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=x\n"));
}

TEST(ReleaseRules, SayThatAValueIsEmpty) {
    for (const std::string value : {"", "\"\"", "\r"}) {
        EXPECT_NE(std::string::npos,
                  withSystem("SYSTEM=" + value + "\n")
                      .find(start + "SYSTEM is empty; write its value after the \"=\"\n"));
    }
    EXPECT_EQ(start + "IMAGE_NAME is empty; write its value after the \"=\"\n", withImage(""));
}

// The tool compares a line with the image's name before it compares it with the others.
TEST(ReleaseRules, KnowInWhichOrderTheToolCompares) {
    EXPECT_EQ("", foundIn("VARN_RELEASE=S\nSYSTEM=x\nSDR_RELEASE=3\nIMAGE_NAME=fw.bin\n"));
    EXPECT_NE("", foundIn("SYSTEM=S\nSDR_RELEASE=3\nVARN_RELEASE=x\nIMAGE_NAME=fw.bin\n"));
}

TEST(ReleaseRules, SayWhatIsWrongWithTheFile) {
    const std::string nul(1, '\0');
    EXPECT_EQ(start + "holds a NUL byte; write it as plain ASCII text\n",
              withSystem("SYSTEM=x" + nul + "\n"));
    const std::string proper =
        "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV\nIMAGE_NAME=fw.bin\n";
    EXPECT_EQ("", foundIn(proper + std::string(largestReleaseFile - proper.size(), '#')));
    EXPECT_EQ(start + "is larger than 65536 bytes; put the right file there\n",
              foundIn(proper + std::string(largestReleaseFile + 1 - proper.size(), '#')));
}

TEST(ReleaseRules, SayWhatIsWrongWithTheImagesName) {
    const std::string unplain = start +
                                "IMAGE_NAME is no plain name; rename the image: at most 100 "
                                "letters, digits and ._+-, no dot or dash first\n";
    const std::string taken = start +
                              "IMAGE_NAME names another file of the package; write the name of "
                              "the image\n";
    EXPECT_EQ(start +
                  "IMAGE_NAME holds a blank; rename the image: the core program would be given "
                  "two names\n",
              withImage("a b"));
    EXPECT_EQ(start +
                  "IMAGE_NAME holds a slash; put the image beside this file, and write its "
                  "bare name\n",
              withImage("../fw.bin"));
    EXPECT_EQ("", withImage(std::string(100, 'i')));
    EXPECT_EQ(unplain, withImage(std::string(101, 'i')));
    EXPECT_EQ(unplain, withImage(std::string(222, 'i')));
    EXPECT_EQ(start +
                  "IMAGE_NAME is too long; shorten it by 1: the tool could not run the core "
                  "program\n",
              withImage(std::string(223, 'i')));
    EXPECT_EQ(unplain, withImage("a;b"));
    EXPECT_EQ(unplain, withImage(".."));
    EXPECT_EQ(taken, withImage("readme.txt"));
    EXPECT_EQ(taken, withImage("CopyrightsDebian"));
    EXPECT_EQ(taken, withImage("releasefile-information.txt"));
}

TEST(ReleaseRules, CallGoodOnlyWhatTheToolTakes) {
    release_file_maker maker;
    int good = 0;
    for (int number = 1; number <= fileCount; ++number) {
        const std::string text = maker.file();
        findings found;
        const auto image = checkReleaseText(text, found);
        if (found.empty()) {
            const release_outcome_t values = releaseExpected(text);
            ASSERT_NE(releaseRefused, values) << testing::PrintToString(text);
            ASSERT_EQ(values.at(release_image), image);
            ++good;
        }
    }
    EXPECT_GT(good, fileCount / 200);  // else the files would say little
}
