#include <fstream>

#include "package/package_archive.hpp"

namespace fs = std::filesystem;

namespace {

class package_verify_test : public package_archive_test {
protected:
    package_verify_test() { expectMade(create({"--output=out/varn"})); }

    void expectFinding(const std::string& line) const {
        EXPECT_EQ((outcome_t{1, line, ""}), verify());
        expectNothingLeft();
    }
};

constexpr const char* otherChecksum =
    "out/varn.tar: is not what out/varn.tar.sha256 is the checksum of; fetch both anew\n";

}  // namespace

TEST_F(package_verify_test, TakesWhatCreateMakes) {
    for (const auto& shell : shellsWithTar()) {
        script.shell = shell;
        EXPECT_EQ((outcome_t{0, unsignedLine, ""}), verify());
        expectNothingLeft();
    }
}

TEST_F(package_verify_test, IsWhatCheckDoesWithAnArchive) {
    EXPECT_EQ((outcome_t{0, unsignedLine, ""}), run({"check", "out/varn.tar"}));
    std::ofstream(archive(), std::ios::app) << "more";
    EXPECT_EQ(otherChecksum, run({"check", "out/varn.tar"}).output);
}

TEST_F(package_verify_test, TakesItFromAnyUser) {
    runScriptAsNobody();
    script.environment.erase("TMPDIR");
    const mode_t old = umask(0777);
    EXPECT_EQ(unsignedLine, verify().output);
    umask(old);
}

TEST_F(package_verify_test, IsNotMisledByTheSurroundings) {
    script.environment["TAR_OPTIONS"] = "--exclude=*.txt --show-stored-names";
    script.environment["TZ"] = "Asia/Tokyo";
    const mode_t old = umask(0);
    EXPECT_EQ(unsignedLine, verify().output);
    umask(0777);
    EXPECT_EQ(unsignedLine, verify().output);
    umask(old);
}

TEST_F(package_verify_test, ComparesTheChecksum) {
    const std::string bytes = contentOf(archive());
    std::ofstream(archive(), std::ios::app) << std::string(512, '\0');
    expectFinding(otherChecksum);
    std::ofstream(archive()) << bytes.substr(0, bytes.size() - 512);
    expectFinding(otherChecksum);
    std::ofstream(archive()) << bytes;
    for (const std::string sum : {"", "\n", "0", "varn.tar", "*"}) {
        std::ofstream(out() / "varn.tar.sha256") << sum;
        expectFinding(otherChecksum);
    }
}

TEST_F(package_verify_test, MissesTheChecksum) {
    fs::remove(out() / "varn.tar.sha256");
    expectFinding("out/varn.tar.sha256: is missing; put it beside the archive\n");
}

TEST_F(package_verify_test, ChecksWhatIsInTheArchive) {
    auto members = soundMembers();
    std::erase_if(members, [](const auto& member) { return member.name == "varn/readme.txt"; });
    writeArchive(tarOf(members) + zeroBlocks(2));
    expectFinding("readme.txt: is missing; put it there\n");
    fs::remove(out() / "varn.tar.sha256");
    expectFinding(
        "out/varn.tar.sha256: is missing; put it beside the archive\n"
        "readme.txt: is missing; put it there\n");
}

TEST_F(package_verify_test, UnpacksWhatItHasChecked) {
    package.write("hostile.tar", tarOf({{.name = "/hostile"}}) + zeroBlocks(2));
    replaceProgram("sha256sum", "cp hostile.tar out/varn.tar; exec /usr/bin/sha256sum \"$@\"");
    EXPECT_EQ(unsignedLine, verify().output);
    EXPECT_EQ(contentOf(package.root() / "hostile.tar"), contentOf(archive()));
}

// Anybody may make folders where temporary files lie, but nobody may look into this one.
TEST_F(package_verify_test, WorksInAPrivateFolder) {
    replaceProgram("sha256sum", "stat -c %a \"$TMPDIR\"/* >modes; exec /usr/bin/sha256sum \"$@\"");
    EXPECT_EQ(0, verify().status);
    EXPECT_EQ("700\n", contentOf(package.root() / "modes"));
}

TEST_F(package_verify_test, LeavesNothingWhenItIsInterrupted) {
    for (const auto& [signal, number] :
         {std::pair{"HUP", 1}, {"INT", 2}, {"QUIT", 3}, {"PIPE", 13}, {"TERM", 15}}) {
        replaceProgram("cp", std::string("ls \"$TMPDIR\" >seen; kill -") + signal + " $PPID");
        const outcome_t outcome = verify();
        EXPECT_EQ(128 + number, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_NE("", contentOf(package.root() / "seen"));
        expectNothingLeft();
    }
}

TEST_F(package_verify_test, SaysWhichProgramTheSystemLacks) {
    for (const std::string name : {"od", "sha256sum"}) {
        removeProgram(name);
        EXPECT_EQ("varnmenu-package: verify: this system has no " + name + "; install coreutils\n",
                  verify().errors);
        package.remove("without");
    }
    script.environment["PATH"] = "/usr/bin:/bin";
    script.shell = {"/bin/busybox", "sh"};
    EXPECT_EQ((outcome_t{1, "", "varnmenu-package: verify: needs GNU tar; install it\n"}),
              verify());
}
