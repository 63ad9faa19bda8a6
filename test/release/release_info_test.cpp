#include "release/release_info.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <future>
#include <stdexcept>

#include "harness/test_surroundings.hpp"
#include "release/release_model.hpp"

namespace {

constexpr const char* notProper = "Info file has not all needed data or provided is not proper";

using values_t = release_outcome_t;

class release_info_test : public testing::Test {
protected:
    void given(const std::string& text) { package.write("releasefile-information.txt", text); }

    static values_t values() { return releaseRead(); }

    package_folder package;
    inside_package inside{package};
};

const values_t properValues{"1.2", "3.4", "SV", "fw.bin"};
const values_t refused{notProper};

}  // namespace

TEST_F(release_info_test, ReadsTheFourValues) {
    given("VARN_RELEASE=1.2\nSDR_RELEASE=3.4\nSYSTEM=SV\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, TakesThemInAnyOrderAmongOtherLines) {
    given(
        "# package\n\nIMAGE_NAME=fw.bin\nOTHER=1\nSYSTEM=SV\n#SYSTEM=x\nVARN_RELEASE=1.2\n"
        " SYSTEM=blank ahead\nsystem=lower case\nSDR_RELEASE=3.4");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, RemovesQuotesAndCarriageReturnsAndKeepsBlanks) {
    given("VARN_RELEASE=\"1\"2\"\r\nSDR_RELEASE=\t3\r\nSYSTEM=\"SV 1000\"\nIMAGE_NAME= SV \n");
    EXPECT_EQ((values_t{"12", "\t3", "SV 1000", " SV "}), values());
}

TEST_F(release_info_test, RefusesAFileWithoutOneOfTheKeys) {
    const values_t lines{"VARN_RELEASE=1.2\n", "SDR_RELEASE=3.4\n", "SYSTEM=SV\n",
                         "IMAGE_NAME=fw.bin\n"};
    for (std::size_t missing = 0; missing < lines.size(); ++missing) {
        std::string text;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            text += i == missing ? "" : lines[i];
        }
        given(text);
        EXPECT_EQ(refused, values()) << text;
    }
    given("");
    EXPECT_EQ(refused, values());
}

TEST_F(release_info_test, KeepsTheFirstValueOfAKeyThatComesTwice) {
    given("VARN_RELEASE=1.2\nVARN_RELEASE=9\nSDR_RELEASE=3.4\nSYSTEM=SV\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, RefusesALineThatBeginsWithAnEarlierValue) {
    given("SYSTEM=A\nABC\nVARN_RELEASE=1.2\nSDR_RELEASE=3.4\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(refused, values());
    // Four lines match here, too, but one key has another's text.
    given("SYSTEM=A\nABC\nVARN_RELEASE=1.2\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(refused, values());
}

TEST_F(release_info_test, RefusesAnyLineAfterAnEmptyValue) {
    given("VARN_RELEASE=1.2\nSDR_RELEASE=3.4\nSYSTEM=\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(refused, values());
    given("VARN_RELEASE=1.2\nSDR_RELEASE=3.4\nIMAGE_NAME=fw.bin\nSYSTEM=\n\n");
    EXPECT_EQ(refused, values());
    given("SYSTEM=\nVARN_RELEASE=1.2\nSDR_RELEASE=3.4\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(refused, values());
}

TEST_F(release_info_test, TakesAnEmptyValueInTheLastLine) {
    given("VARN_RELEASE=1.2\nSDR_RELEASE=3.4\nIMAGE_NAME=fw.bin\nSYSTEM=\"\"\n");
    EXPECT_EQ((values_t{"1.2", "3.4", "", "fw.bin"}), values());
}

TEST_F(release_info_test, SaysWhenTheFileIsMissing) {
    package.remove("releasefile-information.txt");
    package.write("tool/releasefile-information.txt", properReleaseInformation());
    EXPECT_EQ(values_t{"Info file is missing"}, values());
    EXPECT_FALSE(release_info::infoFileExists());
}

// It exists, so it is not "missing".
TEST_F(release_info_test, RefusesADirectory) {
    package.remove("releasefile-information.txt");
    std::filesystem::create_directory(package.root() / "releasefile-information.txt");
    EXPECT_TRUE(release_info::infoFileExists());
    EXPECT_EQ(refused, values());
}

// Its lines come in pieces.
TEST_F(release_info_test, ReadsAFifo) {
    const std::string path = package.root() / "fifo";
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    std::filesystem::rename(path, release_info::releaseFilePath);
    const auto writer = std::async(std::launch::async, [] {
        std::ofstream fifo(release_info::releaseFilePath);
        for (const char* piece : {"VARN_REL", "EASE=1.2\nSDR_RELEASE=3", ".4\r", "\n",
                                  "SYSTEM=SV\nIMAGE_NAME=fw", ".bin"}) {
            fifo << piece << std::flush;
        }
    });
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, ReadsLongLines) {
    const std::string longText(1 << 20, 'x');
    given("VARN_RELEASE=1.2\n" + longText + "\nSDR_RELEASE=3.4\nSYSTEM=" + longText +
          "\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ((values_t{"1.2", "3.4", longText, "fw.bin"}), values());
}

TEST_F(release_info_test, HasNoValuesForOtherIds) {
    const release_info info;
    for (const int id : {4, -1}) {
        EXPECT_EQ("Release info for given id not available",
                  thrown<std::invalid_argument>([&] { static_cast<void>(info.getInfo(id)); }));
    }
}
