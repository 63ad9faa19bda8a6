#include <fstream>

#include "package/package_test.hpp"

namespace fs = std::filesystem;

TEST_F(package_create_test, NeverOverwrites) {
    for (const std::string name :
         {"varn-2.41", "varn-2.41.tar", "varn-2.41.tar.sig", "varn-2.41.tar.sha256"}) {
        std::ofstream(out() / name) << "precious\n";
        const outcome_t outcome = create();
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("varnmenu-package: create: ./out/" + name + " exists already\n", outcome.errors);
        EXPECT_EQ("precious\n", contentOf(out() / name));
        fs::remove(out() / name);
        EXPECT_TRUE(fs::is_empty(out()));

        fs::create_symlink("nowhere", out() / name);
        EXPECT_EQ(1, create().status);
        EXPECT_TRUE(fs::is_symlink(out() / name));
        fs::remove(out() / name);
        EXPECT_TRUE(fs::is_empty(out()));
    }
}

TEST_F(package_create_test, MakesNothingThatTheCheckRefuses) {
    package.remove("readme.txt");
    const outcome_t outcome = create({"--release=2\"41"});
    expectNothingMade(
        outcome,
        "releasefile-information.txt: VARN_RELEASE holds a quote; remove it: the tool would drop "
        "it\nreadme.txt: is missing; put it there\n"
        "varnmenu-package: create: nothing is made, as the package has findings\n");
}

TEST_F(package_create_test, NoticesThatImageAndCoreProgramAreMixedUp) {
    expectNothingMade(create({"--image=tool/varnflash", "--core=fw.bin"}),
                      "tool/varnflash: is no program; put an ELF program or a script with \"#!\" "
                      "there\nvarnmenu-package: create: nothing is made, as the package has "
                      "findings\n");
}

TEST_F(package_create_test, SaysWhatItCannotTake) {
    fs::create_directory(package.root() / "folder");
    expectNothingMade(create({"--image=folder"}), "create: ./folder is not a regular file\n");
    expectNothingMade(create({"--core=nowhere"}), "create: ./nowhere is missing\n");
    expectNothingMade(create({"--tool=/dev/zero"}), "create: /dev/zero is not a regular file\n");
    expectNothingMade(create({"--documents=fw.bin"}), "create: ./fw.bin is not a directory\n");
    expectNothingMade(create({"--documents=nowhere"}), "create: ./nowhere is missing\n");
    expectNothingMade(create({"--output=fw.bin/x"}), "create: cannot make ./fw.bin/x\n");
}

TEST_F(package_create_test, AsksForTheToolWhereItIsNotBesideTheScript) {
    const outcome_t outcome =
        run({"create", "--image=fw.bin", "--core=tool/varnflash", "--release=2.41", "--sdr=3.07",
             "--system=RX 2540", "--documents=.", "--output=out/varn-2.41"});
    expectNothingMade(outcome, "create: no varnmenu beside this script; name one with --tool\n");
}

TEST_F(package_create_test, TakesNoImageWithTheNameOfAnotherFile) {
    for (const std::string name : {"readme.txt", "releasefile-information.txt", "tool"}) {
        fs::create_directories(package.root() / "images");
        package.write("images/" + name, "image\n");
        expectNothingMade(
            create({"--image=images/" + name}),
            "create: ./images/" + name + " has the name of another file of the package\n");
    }
}

TEST_F(package_create_test, LeavesNothingWhenACopyFails) {
    replaceProgram("cp", "exit 1");
    expectNothingMade(create(), "create: cannot copy ./tool/varnmenu\n");
    replaceProgram("cp", "exec /bin/cp \"$@\"");
    replaceProgram("chmod", "exit 1");
    expectNothingMade(create(),
                      "create: cannot set the permissions of ./out/varn-2.41/tool/varnmenu\n");
}

TEST_F(package_create_test, LeavesNothingWhenTheArchiveFails) {
    replaceTar("echo half of it; exit 2");
    expectNothingMade(create(), "create: cannot write ./out/varn-2.41.tar\n");
}

TEST_F(package_create_test, LeavesNothingWhenTheChecksumFails) {
    replaceProgram("sha256sum", "echo half of it; exit 1");
    expectNothingMade(create(), "create: cannot write ./out/varn-2.41.tar.sha256\n");
}

TEST_F(package_create_test, LeavesNothingWhenItIsInterrupted) {
    for (const auto& [signal, number] :
         {std::pair{"HUP", 1}, {"INT", 2}, {"QUIT", 3}, {"PIPE", 13}, {"TERM", 15}}) {
        replaceTar("ls out >seen; kill -" + std::string(signal) + " $PPID");
        expectNothingMade(create(), "", 128 + number);
        EXPECT_EQ("varn-2.41\nvarn-2.41.tar\n", contentOf(package.root() / "seen"));
    }
}

TEST_F(package_create_test, LeavesNothingWhereItMayNotRead) {
    fs::permissions(package.root() / "fw.bin", fs::perms(0600));
    fs::permissions(out(), fs::perms(0777));
    runScriptAsNobody();
    expectNothingMade(create(), "create: cannot copy ./fw.bin\n");
}

TEST_F(package_create_test, SaysThatItMayNotEnterTheDocuments) {
    fs::create_directory(package.root() / "documents");
    fs::permissions(package.root() / "documents", fs::perms(0));
    fs::permissions(out(), fs::perms(0777));
    runScriptAsNobody();
    expectNothingMade(create({"--documents=documents"}), "create: ./documents cannot be entered\n");
}

TEST_F(package_create_test, SaysWhichProgramTheSystemLacks) {
    for (const std::string name : {"od", "sha256sum"}) {
        removeProgram(name);
        expectNothingMade(create(), "varnmenu-package: create: this system has no " + name +
                                        "; install coreutils\n");
        package.remove("without");
    }
    replaceProgram("tar", "echo some other tar");
    expectNothingMade(create(), "varnmenu-package: create: needs GNU tar; install it\n");
}
