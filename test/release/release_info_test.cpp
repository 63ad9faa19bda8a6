#include "release/release_info.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>
#include <stdexcept>
#include <thread>

#include "harness/terminal_session.hpp"
#include "harness/test_surroundings.hpp"
#include "release/release_model.hpp"

namespace {

constexpr const char* notProper = "Info file has not all needed data or provided is not proper";

using values_t = release_outcome_t;

class release_info_test : public testing::Test {
protected:
    void given(const std::string& text) { package.write("releasefile-information.txt", text); }

    static values_t values() { return releaseRead(); }

    /// What values() returns while the file is a fifo, into which these pieces are written one
    /// after the other, each once the last one has been read.
    values_t valuesFromFifo(const std::vector<std::string>& pieces) {
        package.remove("releasefile-information.txt");
        const std::string path = package.root() / "releasefile-information.txt";
        if (mkfifo(path.c_str(), 0600) != 0) {
            throw std::runtime_error("mkfifo failed");
        }
        auto writer = std::async(std::launch::async, [&] { writePieces(path, pieces); });
        const values_t result = values();
        writer.get();
        return result;
    }

    package_folder package;
    inside_package inside{package};

private:
    static void writePieces(const std::string& path, const std::vector<std::string>& pieces) {
        const int fifo = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        pollfd readerGone{fifo, 0, 0};
        for (const std::string& piece : pieces) {
            if (poll(&readerGone, 1, 0) != 0) {
                break;  // the values tell what it has missed, a signal would tell nothing
            }
            if (write(fifo, piece.data(), piece.size()) != static_cast<ssize_t>(piece.size())) {
                throw std::runtime_error("cannot write to the fifo");
            }
            int unread = 1;
            while (unread > 0 && ioctl(fifo, FIONREAD, &unread) == 0 &&
                   poll(&readerGone, 1, 0) == 0) {
                std::this_thread::yield();
            }
        }
        close(fifo);
    }
};

const values_t properValues{"1.2", "3.4", "RX", "fw.bin"};
const values_t refused{notProper};

}  // namespace

TEST_F(release_info_test, ReadsTheFourValues) {
    given("VARN_RELEASE=1.2\nSDR_RELEASE=3.4\nSYSTEM=RX\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, TakesThemInAnyOrderAmongOtherLines) {
    given(
        "# package\n\nIMAGE_NAME=fw.bin\nOTHER=1\nSYSTEM=RX\n#SYSTEM=x\nVARN_RELEASE=1.2\n"
        " SYSTEM=blank ahead\nsystem=lower case\nSDR_RELEASE=3.4");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, RemovesCarriageReturns) {
    given("VARN_RELEASE=1.2\r\nSDR_RELEASE=3.4\r\nSYSTEM=RX\r\nIMAGE_NAME=fw.bin\r\n");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, RemovesQuotesAndKeepsBlanks) {
    given("VARN_RELEASE=\"1\"2\"\nSDR_RELEASE=\t3\nSYSTEM=\"RX 2540\"\nIMAGE_NAME= RX \n");
    EXPECT_EQ((values_t{"12", "\t3", "RX 2540", " RX "}), values());
}

TEST_F(release_info_test, RefusesAFileWithoutOneOfTheKeys) {
    const values_t lines{"VARN_RELEASE=1.2\n", "SDR_RELEASE=3.4\n", "SYSTEM=RX\n",
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
    given("VARN_RELEASE=1.2\nVARN_RELEASE=9\nSDR_RELEASE=3.4\nSYSTEM=RX\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(properValues, values());
}

TEST_F(release_info_test, RefusesALineThatBeginsWithAnEarlierValue) {
    given("SYSTEM=A\nABC\nVARN_RELEASE=1.2\nSDR_RELEASE=3.4\nIMAGE_NAME=fw.bin\n");
    EXPECT_EQ(refused, values());
}

// Four lines match here, too, but one key has another's text.
TEST_F(release_info_test, RefusesAValueInThePlaceOfAMissingKey) {
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

// It exists, so it is not "missing" either. Root reads it all the same.
TEST_F(release_info_test, RefusesAFileThatCannotBeRead) {
    constexpr uid_t nobody = 65534;
    std::filesystem::permissions(release_info::releaseFilePath, std::filesystem::perms::none);
    terminal_session session([] {
        if (getuid() == 0 && setresuid(nobody, nobody, nobody) != 0) {
            return std::string("setresuid failed");
        }
        return std::string(release_info::infoFileExists() ? "" : "missing ") + values().front();
    });
    EXPECT_EQ(notProper, session.result());
}

TEST_F(release_info_test, ReadsAFifo) {
    EXPECT_EQ((values_t{"2.41", "3.07", "RX 2540", "fw.bin"}),
              valuesFromFifo({properReleaseInformation()}));
    EXPECT_EQ(refused, valuesFromFifo({}));
}

TEST_F(release_info_test, ReadsAFileThatGrowsMeanwhileToItsEnd) {
    EXPECT_EQ(properValues, valuesFromFifo({"VARN_REL", "EASE=1.2\nSDR_RELEASE=3", ".4", "\r", "\n",
                                            "SYSTEM=RX\nIMAGE_NAME=fw", ".bin"}));
    EXPECT_EQ(refused, valuesFromFifo({"VARN_RELEASE=1.2\nSDR_RELEASE=3.4\n",
                                       "SYSTEM=RX\nIMAGE_NAME=fw.bin\n", "RX2\n"}));
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
