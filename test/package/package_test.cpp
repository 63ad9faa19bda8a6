#include "package/package_test.hpp"

#include <fstream>

namespace fs = std::filesystem;

const std::vector<std::vector<std::string>>& shells() {
    static const std::vector<std::vector<std::string>> all{
        {"/bin/dash"}, {"/bin/busybox", "sh"}, {"/bin/bash", "--posix"}};
    return all;
}

std::string shellName(const testing::TestParamInfo<std::vector<std::string>>& info) {
    return fs::path(info.param.front()).filename().string();
}

outcome_t package_script::run(const std::vector<std::string>& words,
                              const fs::path& directory) const {
    program_t program;
    program.path = shell.front();
    program.arguments = shell;
    program.arguments.push_back(path);
    program.arguments.insert(program.arguments.end(), words.begin(), words.end());
    program.environment = environment;
    program.directory = directory.string();
    program.user = user;
    return outcomeOf(program);
}

void addStandInTool(const package_folder& package) {
    package.write("tool/varnmenu", "#!/bin/sh\n");
    fs::permissions(package.tool() / "varnmenu", fs::perms(0755));
    for (const auto& entry : fs::recursive_directory_iterator(package.root())) {
        fs::permissions(entry, fs::perms(0022), fs::perm_options::remove);
    }
}

void package_test::runScriptAsNobody() {
    script.user = nobody;
    script.path = package.copyForEveryone(script.path).string();
}

void package_test::replaceProgram(const std::string& name, const std::string& text) {
    const fs::path replacements = package.root() / "replacements";
    fs::create_directories(replacements);
    std::ofstream(replacements / name) << "#!/bin/sh\n" << text << "\n";
    fs::permissions(replacements / name, fs::perms(0755));
    script.environment["PATH"] = replacements.string() + ":/usr/bin:/bin";
}

void package_test::removeProgram(const std::string& name) {
    const fs::path others = package.root() / "without";
    fs::create_directory(others);
    for (const fs::path folder : {"/bin", "/usr/bin"}) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            const fs::path file = entry.path().filename();
            if (file != name && !fs::exists(fs::symlink_status(others / file))) {
                fs::create_symlink(entry.path(), others / file);
            }
        }
    }
    script.environment["PATH"] = others.string();
}

package_create_test::package_create_test() {
    fs::create_directory(out());
    script.environment["SOURCE_DATE_EPOCH"] = "1700000000";
}

outcome_t package_create_test::create(const std::vector<std::string>& words) const {
    std::vector<std::string> all{"create",
                                 "--image",
                                 "fw.bin",
                                 "--core",
                                 "tool/varnflash",
                                 "--release=2.41",
                                 "--sdr",
                                 "3.07",
                                 "--system=RX 2540",
                                 "--documents",
                                 ".",
                                 "--output",
                                 "out/varn-2.41",
                                 "--tool=tool/varnmenu"};
    all.insert(all.end(), words.begin(), words.end());
    return run(all);
}

void package_create_test::expectNothingMade(const outcome_t& outcome, const std::string& message,
                                            int status) const {
    EXPECT_EQ(status, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_TRUE(outcome.errors.ends_with(message)) << outcome.errors;
    EXPECT_TRUE(fs::is_empty(out()));
}

void expectMade(const outcome_t& outcome) {
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.output + outcome.errors);
}
