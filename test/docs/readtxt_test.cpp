#include "docs/readtxt.hpp"

#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"

namespace {

using pairs_t = std::vector<std::pair<int, int>>;
using lines_t = std::vector<std::string>;

const pairs_t readmePairs{{6, doc_readme}};
const pairs_t legalPairs{{2, doc_eula},
                         {3, doc_licence_flashtools},
                         {4, doc_licence_morv},
                         {5, doc_licence_firmware},
                         {7, doc_copyrights_centos},
                         {6, doc_copyrights_debian}};

class readtxt_test : public testing::Test {
protected:
    /// Shows a document, ENTER being pressed for readers that ask for it.
    /// @return the command lines run for it
    lines_t shown(int menuItem, int kind) {
        readtxt texts(evaluate, readmePairs, legalPairs);
        const typed_input enter("\n");
        captured_output output;
        const std::size_t before = package.runs().size();
        texts.showText(menuItem, kind);
        printed = output.text();
        lines_t lines = package.commandLines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
        return lines;
    }

    static std::string failure(int menuItem, int kind, const pairs_t& legal = legalPairs) {
        readtxt texts(false, readmePairs, legal);
        return thrown<std::runtime_error>([&] { texts.showText(menuItem, kind); });
    }

    bool evaluate = false;
    std::string printed;
    package_folder package;
    inside_package inside{package};
};

}  // namespace

TEST_F(readtxt_test, ShowsTheReadmeWithLess) {
    EXPECT_EQ((lines_t{"which less", "clear", "less ../readme.txt"}), shown(6, text_readme));
    EXPECT_EQ("\x1b[H\x1b[2J\n", printed);
    EXPECT_EQ(4U, package.runs().back().environment.size());  // the usual ones alone
}

TEST_F(readtxt_test, ShowsEveryLegalDocument) {
    EXPECT_EQ("less ../eula_en.txt", shown(2, text_legal).back());
    EXPECT_EQ("less ../ThirdPartyLicenseReadmeFlashtools.txt", shown(3, text_legal).back());
    EXPECT_EQ("less ../ThirdPartyLicenseReadme_MORV_API.txt", shown(4, text_legal).back());
    EXPECT_EQ("less ../ThirdPartyLicenseReadmeFirmware.txt", shown(5, text_legal).back());
    EXPECT_EQ("less ../CopyrightsCentOS", shown(7, text_legal).back());
    EXPECT_EQ("less ../CopyrightsDebian", shown(6, text_legal).back());
}

TEST_F(readtxt_test, TakesMoreWhereThereIsNoLess) {
    package.remove("programs/less");
    package.let("more", "show");
    EXPECT_EQ((lines_t{"which less", "which less", "which more", "clear", "more ../readme.txt"}),
              shown(6, text_readme));
    EXPECT_EQ("\x1b[H\x1b[2J\ntext of readme.txt\nPress ENTER to close the file...\n", printed);
}

TEST_F(readtxt_test, TakesCatWhereThereIsNeither) {
    package.remove("programs/less");
    package.remove("programs/more");
    EXPECT_EQ("cat ../readme.txt", shown(6, text_readme).back());
    EXPECT_TRUE(printed.ends_with("Press ENTER to close the file...\n"));
}

TEST_F(readtxt_test, SaysWhenThereIsNoReader) {
    for (const char* reader : {"less", "more", "cat"}) {
        package.remove(std::string("programs/") + reader);
    }
    EXPECT_EQ("No programs available for txtfile reading", failure(6, text_readme));
    package.remove("readme.txt");
    EXPECT_EQ("Text file is not present ../readme.txt", failure(6, text_readme));
}

// The file is looked for first, and nothing is run or cleared without it.
TEST_F(readtxt_test, SaysWhenTheDocumentIsMissing) {
    package.remove("eula_en.txt");
    captured_output output;
    EXPECT_EQ("Text file is not present ../eula_en.txt", failure(2, text_legal));
    EXPECT_EQ("", output.text());
    EXPECT_EQ(0U, package.runs().size());
}

TEST_F(readtxt_test, RefusesUnknownKindsItemsAndDocuments) {
    EXPECT_EQ("Read file type not supported", failure(2, 2));
    EXPECT_EQ("Text file not supported", failure(2, text_readme));
    EXPECT_EQ("Text file not supported", failure(8, text_legal));
    EXPECT_EQ("Text file is not defined", failure(2, text_legal, {{2, 99}}));
}

TEST_F(readtxt_test, KeepsTheFirstDocumentOfAMenuItem) {
    package.remove("CopyrightsCentOS");
    EXPECT_EQ("Text file is not present ../CopyrightsCentOS",
              failure(2, text_legal, {{2, doc_copyrights_centos}, {2, doc_eula}}));
}

TEST_F(readtxt_test, IgnoresTheReadersExitStatus) {
    package.let("less", "exit 1");
    EXPECT_EQ("less ../readme.txt", shown(6, text_readme).back());
}

TEST_F(readtxt_test, FailsWithoutClear) {
    package.remove("programs/clear");
    EXPECT_EQ("Command cannot be executed properly", failure(6, text_readme));
}

TEST_F(readtxt_test, PassesOnTheRunnersFailure) {
    package.let("less", "kill 9");
    captured_output output;
    EXPECT_EQ("Command cannot be executed properly", failure(6, text_readme));
}

// Nobody is there to see it: no clearing, no output, no wait.
TEST_F(readtxt_test, ReadsUnseenThroughCatInEvaluationMode) {
    evaluate = true;
    package.let("cat", "show");
    EXPECT_EQ((lines_t{"which cat", "cat ../readme.txt"}), shown(6, text_readme));
    EXPECT_EQ("", printed);
    EXPECT_EQ("r /dev/null", package.runs().back().descriptors.at(1));
}
