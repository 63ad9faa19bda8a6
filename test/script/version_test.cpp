#include <gtest/gtest.h>

#include <fstream>

#include "harness/package_folder.hpp"
#include "harness/program.hpp"

namespace fs = std::filesystem;

namespace {

constexpr const char* changes = "# Changelog\n\n## [Unreleased]\n\n- More.\n\n";
constexpr const char* released = "## [1.2.0] - 2026-11-21\n\n- All.\n\n## [1.1.0] - 2026-10-01\n";

/// packaging/version in its own folder, with a commit of 2026-11-22, 12:00 UTC.
class version_test : public testing::Test {
protected:
    version_test() {
        fs::create_directory(top / "packaging");
        fs::copy_file(SCRIPT_FOLDER "/../packaging/version", top / "packaging/version");
        write("CMakeLists.txt",
              "project(some VERSION 1.2.0 LANGUAGES CXX\n    DESCRIPTION \"x\")\n");
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(top / name) << text;
    }

    outcome_t run(const std::string& command) const {
        program_t program;
        program.path = "/bin/sh";
        program.arguments = {"sh", "-c", command};
        program.environment = {{"PATH", "/usr/bin:/bin"},
                               {"HOME", top.string()},
                               {"TZ", "Asia/Tokyo"},
                               {"GIT_AUTHOR_DATE", "@1795377600 +0000"},
                               {"GIT_COMMITTER_DATE", "@1795377600 +0000"}};
        program.directory = top.string();
        return outcomeOf(program);
    }

    void commit(const std::string& changelog) const {
        write("CHANGELOG.md", changelog);
        const outcome_t outcome =
            run("git init -q && git config user.name x && git config user.email x@y.example && "
                "git add CMakeLists.txt CHANGELOG.md && git commit -q -m x");
        ASSERT_EQ((outcome_t{0, "", ""}), outcome);
    }

    std::string hash() const {
        const std::string all = run("git rev-parse HEAD").output;
        return all.substr(0, 10);
    }

    package_folder folder;
    fs::path top = folder.root();
};

}  // namespace

TEST_F(version_test, IsThatOfTheReleaseForItsCommit) {
    commit(released);
    EXPECT_EQ((outcome_t{0, "1.2.0 1795377600\n", ""}), run("packaging/version"));
}

TEST_F(version_test, IsALaterOneWithUnreleasedChanges) {
    commit(std::string(changes) + released);
    const std::string version = "1.2.0+git20261122." + hash();
    EXPECT_EQ((outcome_t{0, version + " 1795377600\n", ""}), run("packaging/version"));
    EXPECT_EQ(0, run("dpkg --compare-versions " + version + " gt 1.2.0").status);
    EXPECT_EQ(0, run("dpkg --compare-versions " + version + " lt 1.2.1").status);
}

TEST_F(version_test, IsALaterOneForFilesThatWereChanged) {
    commit(released);
    write("another", "not known to git\n");
    EXPECT_EQ((outcome_t{0, "1.2.0 1795377600\n", ""}), run("packaging/version"));
    write("CHANGELOG.md", std::string(released) + "\n");
    const std::string version = "1.2.0+git20261122." + hash() + ".changed";
    EXPECT_EQ((outcome_t{0, version + " 1795377600\n", ""}), run("packaging/version"));
}

TEST_F(version_test, IsRefusedWhereTheChangelogSaysAnother) {
    for (const std::string changelog :
         {"## [1.3.0] - 2026-11-22\n\n", "## [1.3.0] - 2026-11-22\n\n## [1.2.0] - 2026-11-21\n",
          "## [Unreleased]\n\n## [1.1.0] - 2026-11-22\n\n", "## [1.2.0]\n\n", "# Changelog\n"}) {
        commit(changelog + "- All.\n");
        const outcome_t outcome = run("packaging/version");
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_TRUE(
            outcome.errors.starts_with("version: CMakeLists.txt says 1.2.0, but the newest release "
                                       "with a date in CHANGELOG.md is"))
            << outcome.errors;
    }
    commit("## Later\n\n" + std::string(released));
    EXPECT_EQ((outcome_t{
                  1, "",
                  "version: the first section of CHANGELOG.md is neither [Unreleased] nor [1.2.0]: "
                  "## Later\n"}),
              run("packaging/version"));
}

TEST_F(version_test, IsInTheSourceArchive) {
    write(".tarball-version", "1.2.0+git20261122.0123456789 1795377600\n");
    EXPECT_EQ((outcome_t{0, "1.2.0+git20261122.0123456789 1795377600\n", ""}),
              run("packaging/version"));
}

TEST_F(version_test, IsUnknownWithoutGitAndArchive) {
    EXPECT_EQ(
        (outcome_t{
            1, "",
            "version: neither git nor a file .tarball-version is here to say which commit this "
            "is: use a clone, or varnmenu-VERSION.tar.gz\n"}),
        run("packaging/version"));
}
