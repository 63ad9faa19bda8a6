#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>

#include "package/program_test.hpp"

namespace fs = std::filesystem;

namespace {

class create_program_test : public program_test {
protected:
    void expectNothingMade(const outcome_t& outcome, const std::string& message,
                           int status = 1) const {
        EXPECT_EQ(status, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_EQ(message, outcome.errors);
        EXPECT_EQ("package ", scratch.names());
    }
};

std::string failure(const std::string& message) { return "varnmenu-package: " + message + "\n"; }

std::string wrongUse(const std::string& message) {
    return failure(message) + failure("see varnmenu-package --help");
}

const std::string nothingMade = failure("create: nothing is made, as the package has findings");

}  // namespace

TEST_F(create_program_test, MakesAPackageThatIsGood) {
    EXPECT_EQ((outcome_t{0, "", ""}), create());
    EXPECT_EQ("package varn varn.tar varn.tar.sha256 ", scratch.names());
    EXPECT_TRUE(archiveOf(soundPackage()) == contentOf(scratch.path() / "varn.tar"));
    EXPECT_EQ((outcome_t{0, goodVerdict(), ""}), run({"verify", "varn.tar"}));
    EXPECT_EQ((outcome_t{0, goodVerdict(), ""}), run({"check", "varn.tar"}));
    EXPECT_EQ((outcome_t{0, "", ""}), run({"check", "varn"}));
    EXPECT_EQ((outcome_t{0, "", ""}),
              shell("diff -r package varn && sha256sum --quiet -c *.sha256"));
}

// As GNU tar does, so that one may be shown to be the other.
TEST_F(create_program_test, MakesTheArchiveThatGnuTarMakes) {
    create();
    EXPECT_EQ((outcome_t{0, "", ""}),
              shell("tar --format=ustar --sort=name --owner=0 --group=0 --numeric-owner "
                    "--mtime=@1700000000 -cf - varn | cmp - varn.tar"));
}

TEST_F(create_program_test, MakesTheSameBytesWhateverTheSurroundings) {
    EXPECT_EQ(
        0, shell("umask 077; chmod 600 package/*.txt; ln -s package/fw.bin fw.bin; LC_ALL=C.UTF-8 "
                 "\"$P\" create --image fw.bin --core package/tool/varnflash --tool "
                 "package/tool/varnmenu --documents package --release 2.41 --sdr 3.07 "
                 "--system 'SV 1000' --output ./varn//; rm fw.bin")
               .status);
    EXPECT_TRUE(archiveOf(soundPackage()) == contentOf(scratch.path() / "varn.tar"));
    struct stat status {};
    ASSERT_EQ(0, stat(scratch.at("varn.tar").c_str(), &status));
    EXPECT_EQ(0644U, status.st_mode & 07777U);
}

TEST_F(create_program_test, TakesTheMenuBesideItselfAndTheTimeOfTheClock) {
    environment.erase("SOURCE_DATE_EPOCH");
    fs::create_directory(scratch.path() / "bin");
    fs::copy(PACKAGE_PROGRAM, scratch.path() / "bin/varnmenu-package");
    fs::copy(scratch.path() / "package/tool/varnmenu", scratch.path() / "bin/varnmenu");
    const std::time_t before = std::time(nullptr);
    EXPECT_EQ(0, shell("bin/varnmenu-package create --image package/fw.bin --core "
                       "package/tool/varnflash --documents package --release 2.41 --sdr 3.07 "
                       "--system x --output varn")
                     .status);
    struct stat status {};
    ASSERT_EQ(0, stat(scratch.at("varn/tool/varnmenu").c_str(), &status));
    EXPECT_LE(before, status.st_mtime);
}

TEST_F(create_program_test, MakesNothingOfAPackageWithFindings) {
    fs::remove(scratch.path() / "package/readme.txt");
    expectNothingMade(create(), "readme.txt: is missing; put it there\n" + nothingMade);
}

TEST_F(create_program_test, SaysWhichPartIsMissingOrUnfit) {
    expectNothingMade(create({"--image=none"}),
                      failure("cannot open none: No such file or directory"));
    expectNothingMade(create({"--core", "package"}), failure("package is not a regular file"));
    expectNothingMade(create({"--documents=none"}),
                      failure("cannot open none: No such file or directory"));
    expectNothingMade(create({"--documents=package/fw.bin"}),
                      failure("cannot open package/fw.bin/CopyrightsCentOS: Not a directory"));
    expectNothingMade(create({"--image=package/readme.txt"}),
                      failure("package/readme.txt has the name of another file of the package"));
    expectNothingMade(create({"--output=none/varn"}),
                      failure("cannot enter none/: No such file or directory"));
    expectNothingMade(create({"--sign=none"}),
                      "Couldn't load public key none: No such file or directory\r\n" +
                          failure("cannot sign the archive with none"));
}

TEST_F(create_program_test, RefusesNamesAndValuesThatNoPackageCanHave) {
    const std::string rule =
        " has to be of letters, digits and ._+-, at most 100 of them, with no dot or dash first";
    for (const std::string name : {"a:b", "a b", ".a", ""}) {
        expectNothingMade(create({"--output=x/" + name + (name.empty() ? "\x1b" : "")}),
                          wrongUse("create: the name in --output" + rule), 2);
    }
    expectNothingMade(create({"--output=/"}), wrongUse("create: the name in --output" + rule), 2);
    expectNothingMade(create({"--image=a;b"}), wrongUse("create: the name in --image" + rule), 2);
    for (const std::string option : {"--release", "--sdr", "--system"}) {
        expectNothingMade(create({option + "=1\nSYSTEM=x"}),
                          wrongUse("create: the value of " + option + " holds a line feed"), 2);
    }
    for (const std::string time : {"x", "1x", "", "-1", "8589934592", "99999999999999999999"}) {
        environment["SOURCE_DATE_EPOCH"] = time;
        expectNothingMade(create(), wrongUse("create: SOURCE_DATE_EPOCH is no number of seconds"),
                          2);
    }
}

TEST_F(create_program_test, TouchesNothingThatIsThere) {
    for (const std::string name : {"varn", "varn.tar", "varn.tar.sig", "varn.tar.sha256"}) {
        fs::create_symlink("nowhere", scratch.path() / name);
        const outcome_t outcome = create();
        EXPECT_EQ((outcome_t{1, "", failure(name + " exists already")}), outcome);
        EXPECT_EQ("package " + name + " ", scratch.names());
        fs::remove(scratch.path() / name);
    }
}

// Made while the key's pass phrase is asked for, say.
TEST_F(create_program_test, TouchesNothingThatOthersMakeMeanwhile) {
    fs::create_directory(scratch.path() / "bin");
    for (const std::string name : {"varn", "varn.tar", "varn.tar.sig", "varn.tar.sha256"}) {
        scratch.write("bin/ssh-keygen", "#!/bin/sh\ncat >/dev/null\necho mine >" + name + "\n");
        fs::permissions(scratch.path() / "bin/ssh-keygen", fs::perms(0755));
        environment["PATH"] = scratch.at("bin") + ":/usr/bin:/bin";
        EXPECT_EQ((outcome_t{1, "", failure("cannot make ./" + name + ": File exists")}),
                  create({"--sign=key"}));
        EXPECT_EQ("bin package " + name + " ", scratch.names());
        EXPECT_EQ("mine\n", contentOf(scratch.path() / name));
        fs::remove(scratch.path() / name);
    }
}

TEST_F(create_program_test, LeavesNothingWhenASignalEndsIt) {
    fs::create_directory(scratch.path() / "bin");
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM}) {
        scratch.write("bin/ssh-keygen",
                      "#!/bin/sh\nkill -" + std::to_string(number) + " $PPID\nexec sleep 100\n");
        fs::permissions(scratch.path() / "bin/ssh-keygen", fs::perms(0755));
        environment["PATH"] = scratch.at("bin") + ":/usr/bin:/bin";
        EXPECT_EQ((outcome_t{128 + number, "", ""}), create({"--sign=key"}));
        EXPECT_EQ("bin package ", scratch.names());
    }
}

TEST_F(create_program_test, LeavesNothingWhenTheDiskIsFull) {
    scratch.write("package/fw.bin", std::string(200'000, 'i'));
    const outcome_t outcome = shell(
        "trap '' XFSZ; ulimit -f 100; exec \"$P\" create --image package/fw.bin --core "
        "package/tool/varnflash --tool package/tool/varnmenu --documents package --release "
        "2.41 --sdr 3.07 --system x --output varn");
    EXPECT_EQ(1, outcome.status);
    EXPECT_NE(std::string::npos, outcome.errors.find("/varn.tar: File too large")) << outcome;
    EXPECT_EQ("package ", scratch.names());
}

TEST_F(create_program_test, NoticesAFileThatGrows) {
    // What /proc shows is of size 0 until it is read.
    expectNothingMade(create({"--core=/proc/version"}),
                      failure("/proc/version has changed while it was read"));
}

TEST_F(program_test, UnpacksWhatItHasVerified) {
    writeSoundArchive();
    EXPECT_EQ((outcome_t{0, goodVerdict() + "varn\n", ""}), run({"unpack", "varn.tar"}));
    EXPECT_EQ("package varn varn.tar varn.tar.sha256 ", scratch.names());
    EXPECT_EQ((outcome_t{0, "", ""}), shell("diff -r package varn && mkdir in"));
    EXPECT_EQ((outcome_t{0, goodVerdict("./varn.tar") + "in/varn\n", ""}),
              run({"unpack", "./varn.tar", "--into=in/"}));
    EXPECT_EQ((outcome_t{0, "", ""}), shell("diff -r package in/varn"));
}

TEST_F(program_test, UnpacksNothingThatIsNotGood) {
    samples_t samples = soundPackage();
    sampleOf(samples, "fw.bin") = sampleFile("varn/fw.bin", "");
    writeArchive(archiveOf(samples));
    const std::string empty = "fw.bin: is empty; put the right file there\n";
    EXPECT_EQ((outcome_t{1, empty, ""}), run({"unpack", "varn.tar"}));
    writeSoundArchive();
    fs::remove(scratch.path() / "varn.tar.sha256");
    EXPECT_EQ((outcome_t{1, "varn.tar.sha256: is missing; put it beside the archive\n", ""}),
              run({"unpack", "varn.tar"}));
    EXPECT_EQ("package varn.tar ", scratch.names());
}

TEST_F(program_test, UnpacksOverNothing) {
    writeSoundArchive();
    fs::create_directory(scratch.path() / "varn");
    EXPECT_EQ((outcome_t{1, "", failure("varn exists already")}), run({"unpack", "varn.tar"}));
    EXPECT_EQ((outcome_t{1, "", failure("cannot enter none: No such file or directory")}),
              run({"unpack", "varn.tar", "--into", "none"}));
    EXPECT_TRUE(fs::is_empty(scratch.path() / "varn"));
}

TEST_F(program_test, SaysWhatIsWrongWithAnArchive) {
    writeSoundArchive();
    const auto verify = [&](const std::string& bytes) {
        writeArchive(bytes);
        return run({"verify", "varn.tar"});
    };
    const std::string archive = archiveOf(soundPackage());
    EXPECT_EQ((outcome_t{1, "varn.tar: is cut off; fetch it again\n", ""}),
              verify(archive.substr(0, 600)));
    scratch.write("varn.tar", archive);
    EXPECT_EQ((outcome_t{1,
                         "varn.tar: does not match the checksum in varn.tar.sha256; fetch both "
                         "again\n",
                         ""}),
              run({"verify", "varn.tar"}));
    fs::remove(scratch.path() / "varn.tar.sha256");
    fs::create_symlink("varn.tar.sha256", scratch.path() / "varn.tar.sha256");
    EXPECT_EQ(
        (outcome_t{1, "",
                   failure("cannot open varn.tar.sha256: Too many levels of symbolic links")}),
        run({"verify", "varn.tar"}));
    for (const std::string name : {"varn", ".ssh.tar", "a b.tar"}) {
        writeArchive(archive, name);
        const outcome_t expected{1,
                                 name +
                                     ": is not named as a package is; rename it to FOLDER.tar, "
                                     "with letters, digits and ._+- in FOLDER\n",
                                 ""};
        EXPECT_EQ(expected, run({"verify", name}));
        EXPECT_EQ(expected, run({"unpack", name}));
    }
}

TEST_F(program_test, IsUsedAsTheCommandLineHasToBe) {
    EXPECT_EQ((outcome_t{2, "", wrongUse("verify: takes one archive")}), run({"verify"}));
    for (const std::string command : {"verify", "unpack", "check"}) {
        EXPECT_EQ((outcome_t{2, "", wrongUse(command + ": a\\033 does not exist")}),
                  run({command, "a\x1b"}));
    }
    EXPECT_EQ((outcome_t{2, "", wrongUse("verify: package is not an archive")}),
              run({"verify", "package"}));
    EXPECT_EQ((outcome_t{2, "", wrongUse("unpack: package is not an archive")}),
              run({"unpack", "package"}));
    EXPECT_EQ(
        (outcome_t{2, "", wrongUse("check: /dev/null is neither a directory nor an archive")}),
        run({"check", "/dev/null"}));
    EXPECT_EQ((outcome_t{0, "varnmenu-package " PROJECT_VERSION "\n", ""}), run({"--version"}));
    const outcome_t help = run({"--help"});
    EXPECT_EQ(0, help.status);
    EXPECT_TRUE(help.output.starts_with("usage: varnmenu-package create OPTION...\n"));
}

TEST_F(program_test, FailsWhenItCannotSayWhatItHasFound) {
    EXPECT_EQ((outcome_t{1, "", failure("cannot write the output: No space left on device")}),
              shell("exec \"$P\" --help >/dev/full"));
    EXPECT_EQ(0, shell("exec \"$P\" check package <&- >&- 2>&-").status);
    EXPECT_EQ(1, shell("rm package/readme.txt; exec \"$P\" check package <&- >&-").status);
}

TEST_F(program_test, PrintsTheMenusVersion) {
    samples_t samples = soundPackage();
    // That of the same build, which has the same version.
    fs::copy(fs::path(PACKAGE_PROGRAM).replace_filename("varnmenu"),
             scratch.path() / "package/tool/varnmenu", fs::copy_options::overwrite_existing);
    EXPECT_EQ((outcome_t{0, "tool/varnmenu: varnmenu " PROJECT_VERSION "\n", ""}),
              run({"check", "package"}));
    EXPECT_EQ((outcome_t{0, "", ""}), create());
    EXPECT_TRUE(run({"verify", "varn.tar"})
                    .output.ends_with("\ntool/varnmenu: varnmenu " PROJECT_VERSION "\n"));
}
