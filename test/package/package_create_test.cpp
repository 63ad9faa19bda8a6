#include <sys/stat.h>

#include <chrono>
#include <sstream>

#include "package/package_test.hpp"

namespace fs = std::filesystem;

namespace {

std::string octal(fs::perms permissions) {
    std::ostringstream text;
    text << std::oct << static_cast<unsigned>(permissions);
    return text.str();
}

constexpr const char* listing =
    "drwxr-xr-x 0/0               0 2023-11-14 22:13 varn-2.41/\n"
    "-rw-r--r-- 0/0              25 2023-11-14 22:13 varn-2.41/CopyrightsCentOS\n"
    "-rw-r--r-- 0/0              25 2023-11-14 22:13 varn-2.41/CopyrightsDebian\n"
    "-rw-r--r-- 0/0              44 2023-11-14 22:13 "
    "varn-2.41/ThirdPartyLicenseReadmeFirmware.txt\n"
    "-rw-r--r-- 0/0              46 2023-11-14 22:13 "
    "varn-2.41/ThirdPartyLicenseReadmeFlashtools.txt\n"
    "-rw-r--r-- 0/0              45 2023-11-14 22:13 "
    "varn-2.41/ThirdPartyLicenseReadme_MORV_API.txt\n"
    "-rw-r--r-- 0/0              20 2023-11-14 22:13 varn-2.41/eula_en.txt\n"
    "-rw-r--r-- 0/0               6 2023-11-14 22:13 varn-2.41/fw.bin\n"
    "-rw-r--r-- 0/0              19 2023-11-14 22:13 varn-2.41/readme.txt\n"
    "-rw-r--r-- 0/0              68 2023-11-14 22:13 varn-2.41/releasefile-information.txt\n"
    "drwxr-xr-x 0/0               0 2023-11-14 22:13 varn-2.41/tool/\n"
    "-rwxr-xr-x 0/0              10 2023-11-14 22:13 varn-2.41/tool/varnflash\n"
    "-rwxr-xr-x 0/0              10 2023-11-14 22:13 varn-2.41/tool/varnmenu\n";

/// What is made, and what becomes of it.
class package_made_test : public package_create_test {
protected:
    /// Runs a program of the system in the folder "out".
    outcome_t runSystems(const std::vector<std::string>& words) const {
        program_t call;
        call.path = "/usr/bin/env";
        call.arguments = {"env"};
        call.arguments.insert(call.arguments.end(), words.begin(), words.end());
        call.environment = {{"PATH", "/usr/bin:/bin"}, {"TZ", "UTC"}};
        call.directory = out().string();
        return outcomeOf(call);
    }

    /// Makes the archive anew.
    std::string archive() const {
        fs::remove_all(out());
        fs::create_directory(out());
        expectMade(create());
        return contentOf(out() / "varn-2.41.tar");
    }
};

}  // namespace

TEST_F(package_made_test, MakesAPackageThatStarts) {
    expectMade(create({"--tool", programUnderTest()}));
    EXPECT_EQ(properReleaseInformation(),
              contentOf(out() / "varn-2.41/releasefile-information.txt"));
    EXPECT_EQ(0, run({"check", "out/varn-2.41"}).status);
    EXPECT_EQ("varn-2.41.tar: OK\n",
              runSystems({"sha256sum", "-c", "varn-2.41.tar.sha256"}).output);

    fs::create_directory(out() / "server");
    EXPECT_EQ(0, runSystems({"tar", "-C", "server", "-xf", "varn-2.41.tar"}).status);
    program.path = (out() / "server/varn-2.41/tool/varnmenu").string();
    program.directory = (out() / "server/varn-2.41/tool").string();
    startMenu();
    EXPECT_EQ("       This tool will update Varn FW --> Rel. 2.41", session->screen().row(0));
    EXPECT_TRUE(session->screen().contains("Varn-FW: 2.41  SDRR: 3.07  for RX 2540"));
}

TEST_F(package_made_test, TakesTheToolBesideIt) {
    fs::create_directory(package.root() / "installed");
    fs::copy_file(PACKAGE_SCRIPT, package.root() / "installed/varnmenu-package");
    package.write("installed/varnmenu", "#!/beside\n");
    fs::create_symlink("installed/varnmenu-package", package.root() / "varnmenu-package");
    std::vector<std::string> words{"create",       "--image=fw.bin", "--core=tool/varnflash",
                                   "--release=1",  "--sdr=2",        "--system=RX",
                                   "--documents=."};
    for (const std::string name : {"installed/varnmenu-package", "varnmenu-package"}) {
        program_t call;
        call.path = "/bin/sh";
        call.arguments = {"sh", name};
        call.arguments.insert(call.arguments.end(), words.begin(), words.end());
        call.arguments.push_back("--output=out/" + fs::path(name).parent_path().string() + "made");
        call.environment = script.environment;
        call.directory = package.root().string();
        expectMade(outcomeOf(call));
    }
    EXPECT_EQ("#!/beside\n", contentOf(out() / "made/tool/varnmenu"));
    EXPECT_EQ("#!/beside\n", contentOf(out() / "installedmade/tool/varnmenu"));
}

TEST_F(package_made_test, MakesTheSameArchiveFromTheSameFiles) {
    package.write("tool/varnflash", "#!/bin/sh\n");
    const std::string first = archive();
    EXPECT_EQ(listing, runSystems({"tar", "-tvf", "varn-2.41.tar"}).output);

    for (const auto& file : fs::directory_iterator(package.root())) {
        if (file.is_regular_file()) {
            fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(50));
            fs::permissions(file, fs::perms(0600));
        }
    }
    script.environment["TAR_OPTIONS"] = "--exclude=*.txt";
    script.environment["TZ"] = "Asia/Tokyo";
    EXPECT_TRUE(first == archive());

    script.environment["SOURCE_DATE_EPOCH"] = "1700000001";
    EXPECT_FALSE(first == archive());
}

TEST_F(package_made_test, MakesTheSameArchiveForAnyUserAndInAnyFolder) {
    const std::string first = archive();
    const mode_t old = umask(0077);
    EXPECT_TRUE(first == archive());
    umask(old);
    fs::create_directory(package.root() / "other");
    fs::permissions(package.root() / "other", fs::perms(02777));
    runScriptAsNobody();
    expectMade(create({"--output=other/varn-2.41"}));
    EXPECT_TRUE(first == contentOf(package.root() / "other/varn-2.41.tar"));
}

TEST_F(package_made_test, GivesFilesTheirPermissions) {
    fs::permissions(package.tool() / "varnflash", fs::perms(0400));
    fs::permissions(package.root() / "readme.txt", fs::perms(0777));
    expectMade(create());
    EXPECT_EQ("755", octal(fs::status(out() / "varn-2.41/tool/varnflash").permissions()));
    EXPECT_EQ("755", octal(fs::status(out() / "varn-2.41/tool/varnmenu").permissions()));
    EXPECT_EQ("644", octal(fs::status(out() / "varn-2.41/readme.txt").permissions()));
    EXPECT_EQ("644", octal(fs::status(out() / "varn-2.41/fw.bin").permissions()));
}

TEST_F(package_made_test, LeavesOutTheDocumentThatNoMenuOffersWhenItIsNotThere) {
    package.remove("CopyrightsDebian");
    expectMade(create());
    EXPECT_FALSE(fs::exists(out() / "varn-2.41/CopyrightsDebian"));
}

TEST_F(package_made_test, CopiesWhatALinkPointsTo) {
    fs::rename(package.root() / "fw.bin", package.root() / "real.bin");
    fs::create_symlink("real.bin", package.root() / "fw.bin");
    expectMade(create());
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(out() / "varn-2.41/fw.bin")));
}

TEST_F(package_made_test, WorksUnderAnyPath) {
    const fs::path here = out() / "here";
    for (const std::string name : {"*", "host:file", "$(x)", "slashes//", "-odd/x", "a b/x",
                                   "two\nlines/x", "back\\slash/x"}) {
        fs::remove_all(here);
        const std::string bare = name.substr(0, name.find("//"));
        fs::create_directories((here / bare).parent_path());
        fs::create_directory(here / "-images");
        package.write("out/here/-images/image", "image\n");
        fs::copy_file(package.tool() / "varnflash", here / "-core");
        fs::create_directory_symlink(package.root(), here / "-documents");
        expectMade(script.run({"create", "--image", "-images/image", "--core", "-core",
                               "--documents", "-documents", "--release=1", "--sdr=2", "--system=-",
                               "--output", name, "--tool", "../../tool/varnmenu"},
                              here));
        EXPECT_TRUE(fs::exists(here / bare / "image")) << name;
        EXPECT_EQ(0, script.run({"verify", "--", bare + ".tar"}, here).status) << name;
    }
}

// Or verify would refuse the archive.
TEST_F(package_made_test, TakesPlainNamesOnly) {
    for (const std::string name :
         {"-x", "a b", "back\\slash", "tail\n", "\xc3\xa4", "\x1b", ".."}) {
        for (const std::string option : {"--output", "--image"}) {
            const outcome_t outcome = create({option, "out/" + name});
            EXPECT_EQ(2, outcome.status) << name;
            EXPECT_TRUE(outcome.errors.starts_with("varnmenu-package: create: the name in " +
                                                   option + " has to be of printable ASCII"))
                << outcome.errors;
        }
    }
    EXPECT_TRUE(fs::is_empty(out()));
}

TEST_F(package_made_test, NeedsANameForItsOutput) { EXPECT_EQ(2, create({"--output=/"}).status); }

TEST_F(package_made_test, WorksInEachShell) {
    for (const auto& shell : shells()) {
        // It would take a tar of its own, which knows too little.
        if (shell.front() != "/bin/busybox") {
            script.shell = shell;
            EXPECT_NE("", archive());
        }
    }
}
