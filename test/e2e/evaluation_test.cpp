#include <chrono>
#include <set>

#include "docs/package_documents.hpp"
#include "harness/tool_test.hpp"

namespace {

class evaluation_test : public tool_test, public testing::WithParamInterface<const char*> {
protected:
    void startWalk(const std::string& word = "--eval") {
        program.arguments = {"./varnmenu", word};
        start();
    }

    void awaitNormalEnd() {
        EXPECT_EQ(0, awaitEnd());
        EXPECT_EQ("Exitting program 'varnmenu' due to user normal exit\n",
                  session->screen().text());
        expectTerminalRestored();
    }

    /// How often the text was printed.
    int count(const std::string& text) const {
        int times = 0;
        const std::string& output = session->output();
        for (std::size_t at = output.find(text); at != std::string::npos;
             at = output.find(text, at + 1)) {
            ++times;
        }
        return times;
    }
};

}  // namespace

TEST_F(evaluation_test, WalksThroughBothMenusWithoutAnyFlash) {
    runAsNobody();  // the root check is skipped
    std::filesystem::permissions(package.root(), std::filesystem::perms::all);
    startWalk();
    awaitNormalEnd();
    EXPECT_EQ(3, count("Starting validation of inactive image, please wait..."));
    EXPECT_EQ(1, count("Preparing forced flash of 1st image, please wait..."));
    EXPECT_EQ(1, count("Preparing forced flash of 2nd image, please wait..."));
    EXPECT_EQ(1, count("Preparing emergency flash, please wait..."));
    EXPECT_EQ(1, count("Varn reboot pending, wait for boot to complete"));
    EXPECT_EQ(0, count("[WARN]"));
    EXPECT_EQ(0, count("text of readme.txt"));

    // Every document that has an entry, unseen; the first legal one twice.
    std::multiset<std::string> expected{"./varnflash /ispfr", "which cat", "cat ../eula_en.txt"};
    for (const document_t& document : packageDocuments) {
        if (document.id != doc_copyrights_debian) {
            expected.insert({"which cat", "cat ../" + std::string(document.fileName)});
        }
    }
    const std::vector<std::string> run = package.commandLines();
    EXPECT_EQ(expected, std::multiset<std::string>(run.begin(), run.end()));
}

// Nobody is there to press ENTER: a pause takes its place, and the walk goes on.
TEST_F(evaluation_test, PausesASecondAtAWarning) {
    package.remove("readme.txt");
    startWalk();
    session->awaitScreen("[WARN] Text file is not present ../readme.txt");
    const auto shown = std::chrono::steady_clock::now();
    session->awaitScreen("#LEGAL");
    const auto pause = std::chrono::steady_clock::now() - shown;
    EXPECT_GE(pause, std::chrono::milliseconds(900));
    EXPECT_LT(pause, std::chrono::milliseconds(1900));
    awaitNormalEnd();
    EXPECT_EQ(0, count("Press ENTER"));
}

TEST_P(evaluation_test, StartsWithEitherWord) {
    startWalk(GetParam());
    session->awaitScreen("Starting validation of inactive image");
}

INSTANTIATE_TEST_SUITE_P(Words, evaluation_test, testing::Values("--eval", "/eval"),
                         [](const auto& word) { return word.index == 0 ? "dashes" : "slash"; });
