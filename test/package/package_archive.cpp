#include "package/package_archive.hpp"

#include <fstream>

namespace fs = std::filesystem;

namespace {

void writeBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace

const std::vector<std::vector<std::string>>& shellsWithTar() {
    static const std::vector<std::vector<std::string>> all{
        {"/bin/dash"},
        {"/bin/busybox", "sh", "-c", "tar() { /bin/tar \"$@\"; }; script=$1; shift; . \"$script\"",
         "sh"},
        {"/bin/bash", "--posix"}};
    return all;
}

package_archive_test::package_archive_test() {
    package.write("tool/varnflash", "#!/bin/sh\n");
    fs::create_directory(temporary());
    script.environment["TMPDIR"] = temporary().string();
}

void package_archive_test::writeArchive(const std::string& bytes) const {
    writeBytes(archive(), bytes);
    program_t call;
    call.path = "/usr/bin/sha256sum";
    call.arguments = {"sha256sum", "varn.tar"};
    call.directory = out().string();
    writeBytes(out() / "varn.tar.sha256", outcomeOf(call).output);
}

std::vector<tar_member_t> package_archive_test::soundMembers() const {
    const auto folder = [](const std::string& name) {
        return tar_member_t{.name = name, .type = '5', .mode = 0755};
    };
    std::vector<tar_member_t> members{folder("varn/"), folder("varn/tool/")};
    for (const std::string name : {"tool/varnmenu", "tool/varnflash"}) {
        members.push_back(
            {.name = "varn/" + name, .content = contentOf(package.root() / name), .mode = 0755});
    }
    for (const auto& entry : fs::directory_iterator(package.root())) {
        if (entry.is_regular_file()) {
            members.push_back(
                {.name = "varn/" + entry.path().filename().string(), .content = contentOf(entry)});
        }
    }
    return members;
}

outcome_t package_archive_test::verify(const std::vector<std::string>& words) const {
    std::vector<std::string> all{"verify", "out/varn.tar"};
    all.insert(all.end(), words.begin(), words.end());
    return run(all);
}

void package_archive_test::expectNothingLeft() const { EXPECT_TRUE(fs::is_empty(temporary())); }
