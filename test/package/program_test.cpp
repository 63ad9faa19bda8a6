#include "package/program_test.hpp"

#include <sys/stat.h>

#include "package/sha256.hpp"

namespace fs = std::filesystem;

namespace {

std::string digitsOf(const std::string& bytes) {
    sha256 hash;
    hash.take(bytes);
    return hash.digits();
}

}  // namespace

program_test::program_test() {
    fs::create_directory(scratch.path() / "parts");
    writeSamples(soundPackage(), scratch.path() / "parts");
    fs::rename(scratch.path() / "parts/varn", scratch.path() / "package");
    fs::remove(scratch.path() / "parts");
}

outcome_t program_test::run(const std::vector<std::string>& words) const {
    program_t program;
    program.path = PACKAGE_PROGRAM;
    program.arguments = {"varnmenu-package"};
    program.arguments.insert(program.arguments.end(), words.begin(), words.end());
    program.environment = environment;
    program.directory = scratch.path().string();
    program.user = user;
    return outcomeOf(program);
}

outcome_t program_test::shell(const std::string& line) const {
    program_t program;
    program.path = "/bin/bash";
    program.arguments = {"bash", "-c", line};
    program.environment = environment;
    program.environment["P"] = PACKAGE_PROGRAM;
    program.directory = scratch.path().string();
    return outcomeOf(program);
}

outcome_t program_test::create(const std::vector<std::string>& words) const {
    std::vector<std::string> all{"create",      "--image=package/fw.bin",
                                 "--core",      "package/tool/varnflash",
                                 "--tool",      "package/tool/varnmenu",
                                 "--documents", "package",
                                 "--release",   "2.41",
                                 "--sdr=3.07",  "--system=SV 1000",
                                 "--output",    "varn"};
    all.insert(all.end(), words.begin(), words.end());
    return run(all);
}

void program_test::writeArchive(const std::string& bytes, const std::string& name) const {
    scratch.write(name, bytes);
    scratch.write(name + ".sha256", digitsOf(bytes) + "  " + name + "\n");
}

std::string goodVerdict(const std::string& archive, const std::string& signer) {
    const std::string start = archive + ": ";
    return start + signer + "\n" + start + "SHA-256 " + digitsOf(archiveOf(soundPackage())) + "\n" +
           start + "unpacks to varn\n";
}
