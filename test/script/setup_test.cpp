#include <gtest/gtest.h>

#include <fstream>

#include "harness/package_folder.hpp"
#include "harness/program.hpp"

namespace fs = std::filesystem;

namespace {

/// script/setup on a system where every package that is there, or on offer, has one version.
class setup_test : public testing::Test {
protected:
    setup_test() {
        addProgram("dpkg-query", R"(test -n "$INSTALLED" && echo "installed all $INSTALLED")");
        addProgram("apt-cache", R"(echo "  Candidate: $ON_OFFER")");
        addProgram("apt-get", R"(echo "apt-get $*")");
        addProgram("dpkg", R"(test "$1" = --add-architecture || exec /usr/bin/dpkg "$@")");
    }

    outcome_t setUp(const std::vector<std::string>& purposes) const {
        program_t program;
        program.path = "/bin/sh";
        program.arguments = {"sh", SCRIPT_FOLDER "/setup"};
        program.arguments.insert(program.arguments.end(), purposes.begin(), purposes.end());
        program.environment = environment;
        program.directory = "/";
        return outcomeOf(program);
    }

    /// @return the words of the one command that installs, with a blank after each
    std::string installed(const std::vector<std::string>& purposes) const {
        const std::string all = setUp(purposes).output;
        const std::size_t begin = all.find("apt-get install");
        return begin == std::string::npos ? "" : all.substr(begin, all.size() - begin - 1) + " ";
    }

    void addProgram(const std::string& name, const std::string& text) const {
        std::ofstream(folder.programs() / name) << "#!/bin/sh\n" << text << "\n";
        fs::permissions(folder.programs() / name, fs::perms(0755));
    }

    package_folder folder;
    std::map<std::string, std::string> environment{
        {"PATH", folder.programs().string() + ":/usr/bin:/bin"}, {"ON_OFFER", "3.25.1"}};
};

bool hasWord(const std::string& text, const std::string& word) {
    return text.find(" " + word + " ") != std::string::npos;
}

}  // namespace

TEST_F(setup_test, DoesNothingWhereAllIsThere) {
    environment["INSTALLED"] = "3.25.1";
    EXPECT_EQ((outcome_t{0, "", ""}), setUp({}));
}

TEST_F(setup_test, InstallsWhatThePurposeNeedsAlone) {
    const std::string build = installed({"build"});
    EXPECT_TRUE(hasWord(build, "g++") && hasWord(build, "cmake")) << build;
    EXPECT_FALSE(hasWord(build, "libgtest-dev") || hasWord(build, "clang")) << build;
}

TEST_F(setup_test, InstallsWhatThePurposesBelowNeed) {
    const std::string test = installed({"test"});
    EXPECT_TRUE(hasWord(test, "g++") && hasWord(test, "libgtest-dev")) << test;
    EXPECT_FALSE(hasWord(test, "valgrind")) << test;
    const std::string check = installed({});
    EXPECT_TRUE(hasWord(check, "g++") && hasWord(check, "valgrind") && hasWord(check, "shellcheck"))
        << check;
}

TEST_F(setup_test, ReplacesAVersionThatIsTooOld) {
    environment["INSTALLED"] = "3.18.4";
    EXPECT_TRUE(installed({"build"}).ends_with(" cmake ")) << installed({"build"});
}

TEST_F(setup_test, InstallsTheFirstPackageOfSeveralThatIsOnOffer) {
    addProgram("apt-cache",
               R"(test "$2" = libstdc++-14-dev:arm64 || echo "  Candidate: $ON_OFFER")");
    const std::string cross = installed({"cross-arm64"});
    EXPECT_TRUE(hasWord(cross, "libstdc++-12-dev:arm64")) << cross;
    EXPECT_FALSE(hasWord(cross, "libstdc++-14-dev:arm64")) << cross;
    addProgram("apt-cache", R"(echo "  Candidate: $ON_OFFER")");
    const std::string newer = installed({"cross-arm64"});
    EXPECT_TRUE(hasWord(newer, "libstdc++-14-dev:arm64")) << newer;
    EXPECT_FALSE(hasWord(newer, "libstdc++-12-dev:arm64")) << newer;
}

TEST_F(setup_test, SaysWhatThisSystemCannotInstall) {
    for (const std::string version : {"3.18.4", "(none)", ""}) {
        environment["ON_OFFER"] = version;
        environment["INSTALLED"] = "3.18.4";
        const outcome_t outcome = setUp({"build"});
        EXPECT_EQ(1, outcome.status);
        EXPECT_TRUE(outcome.errors.ends_with(
            " has no cmake>=3.21; use Debian 12 or 13, which have all that is needed\n"))
            << outcome.errors;
        EXPECT_EQ(std::string::npos, outcome.output.find("apt-get install")) << outcome.output;
    }
}

TEST_F(setup_test, KnowsItsPurposes) {
    EXPECT_EQ((outcome_t{1, "", "setup: no such purpose: nothing\n"}), setUp({"build", "nothing"}));
}

TEST(TestScript, SaysThatItNeedsRoot) {
    const package_folder folder;
    program_t program;
    program.path = folder.copyForEveryone(SCRIPT_FOLDER "/test").string();
    program.arguments = {"test"};
    program.environment = {{"PATH", "/usr/bin:/bin"}};
    program.directory = "/";
    program.user = 65534;
    EXPECT_EQ((outcome_t{1, "", "test: missing: root, as the menu is for administrators\n"}),
              outcomeOf(program));
}
