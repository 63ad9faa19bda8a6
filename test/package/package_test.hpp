#pragma once

#include <string>
#include <vector>

#include "harness/tool_test.hpp"

/// The packaging script, and how it is run.
struct package_script {
    std::vector<std::string> shell{"/bin/sh"};  ///< with its arguments
    std::map<std::string, std::string> environment{{"PATH", "/usr/bin:/bin"}};
    std::string path = PACKAGE_SCRIPT;
    uid_t user = 0;

    outcome_t run(const std::vector<std::string>& words,
                  const std::filesystem::path& directory) const;
};

/// The shells that the script is to work with.
const std::vector<std::vector<std::string>>& shells();

/// What a test that runs in each shell is called.
std::string shellName(const testing::TestParamInfo<std::vector<std::string>>& info);

/// Puts something where the package has its tool that is enough for a check, and takes from
/// everybody else what a check would find.
void addStandInTool(const package_folder& package);

/// A package that the script finds nothing wrong with.
class package_test : public tool_test {
protected:
    package_test() { addStandInTool(package); }

    /// Runs the script in the package.
    outcome_t run(const std::vector<std::string>& words) const {
        return script.run(words, package.root());
    }

    outcome_t check() const { return run({"check", "."}); }

    /// The script is to be run by another user than root, one without any rights.
    void runScriptAsNobody();

    /// Puts a shell script in the place of a program that the packaging script runs.
    void replaceProgram(const std::string& name, const std::string& text);

    /// The same with tar, but that it still says which one it is.
    void replaceTar(const std::string& text) {
        replaceProgram("tar", "[ \"$1\" != --version ] || exec /bin/tar --version\n" + text);
    }

    /// Makes a system that lacks one program.
    void removeProgram(const std::string& name);

    package_script script;
};

/// Packages are made of the files of the package that is there, in its folder "out".
class package_create_test : public package_test {
protected:
    package_create_test();

    std::filesystem::path out() const { return package.root() / "out"; }

    /// Makes out/varn-2.41.
    /// @param words more options; a later one of the same name wins
    outcome_t create(const std::vector<std::string>& words = {}) const;

    /// @param message how standard error ends
    void expectNothingMade(const outcome_t& outcome, const std::string& message,
                           int status = 1) const;
};

void expectMade(const outcome_t& outcome);
