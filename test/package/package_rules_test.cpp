#include "package/package_rules.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "harness/test_surroundings.hpp"
#include "harness/tool_test.hpp"
#include "package/sample_package.hpp"

namespace fs = std::filesystem;

namespace {

std::string foundInPackage(const package_files_t& files) {
    return foundBy([&](findings& found) { checkPackage(files, found); });
}

std::string foundInPackage(const samples_t& samples) { return foundInPackage(filesOf(samples)); }

/// A sound package, unpacked; "varn" in a folder.
class package_directory_test : public testing::Test {
protected:
    package_directory_test() { writeSamples(soundPackage(), scratch.path()); }

    fs::path at(const std::string& name) const { return scratch.path() / "varn" / name; }
    std::string found() const { return foundInPackage(filesBelow(at("").string())); }

    void replaceByLink(const std::string& name) const {
        fs::rename(at(name), scratch.path() / "elsewhere");
        fs::create_symlink(scratch.path() / "elsewhere", at(name));
    }

    scratch_folder scratch;
};

}  // namespace

TEST(PackageRules, FindNothingWrongWithASoundPackage) {
    EXPECT_EQ("", foundInPackage(soundPackage()));
    samples_t samples = soundPackage();
    std::erase_if(samples, [](const sample_t& sample) {
        return sample.member.name == "varn/CopyrightsDebian";
    });
    EXPECT_EQ("", foundInPackage(samples));
}

TEST(PackageRules, MissEachFileThatVarnmenuNeeds) {
    for (const sample_t& removed : soundPackage()) {
        const std::string name = removed.member.name.substr(removed.member.name.find('/') + 1);
        if (removed.member.isDirectory || name == "CopyrightsDebian") {
            continue;
        }
        samples_t samples = soundPackage();
        std::erase(samples, removed);
        EXPECT_EQ(name + ": is missing; put it there\n", foundInPackage(samples));
    }
}

TEST(PackageRules, SayWhatIsWrongWithAFile) {
    samples_t samples = soundPackage();
    sampleOf(samples, "fw.bin") = sampleFile("varn/fw.bin", "");
    EXPECT_EQ("fw.bin: is empty; put the right file there\n", foundInPackage(samples));
    sampleOf(samples, "fw.bin") = sampleFolder("varn/fw.bin");
    EXPECT_EQ("fw.bin: is not a regular file; put the file itself there\n",
              foundInPackage(samples));
    package_files_t files = filesOf(soundPackage());
    files.at("fw.bin").isReadable = false;
    EXPECT_EQ("fw.bin: cannot be read; chmod a+r it, or check as root\n", foundInPackage(files));
    files = filesOf(soundPackage());
    files.at("fw.bin").kind = file_kind_t::other;
    EXPECT_EQ("fw.bin: is not a regular file; put the file itself there\n", foundInPackage(files));
    files = filesOf(soundPackage());
    files.at("").mode = 0757;
    files.at("fw.bin").mode = 0646;
    EXPECT_EQ(
        ".: can be written by everybody; chmod o-w it\n"
        "fw.bin: can be written by everybody; chmod o-w it\n",
        foundInPackage(files));
}

TEST(PackageRules, MissTheFolderOfThePrograms) {
    samples_t samples = soundPackage();
    std::erase_if(samples, [](const sample_t& sample) {
        return sample.member.name.find("/tool") != std::string::npos;
    });
    EXPECT_EQ("tool/varnmenu: is missing; put it there\ntool/varnflash: is missing; put it there\n",
              foundInPackage(samples));
}

TEST(PackageRules, LookIntoTheReleaseFile) {
    samples_t samples = soundPackage();
    sampleOf(samples, "releasefile-information.txt") =
        sampleFile("varn/releasefile-information.txt",
                   "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=x\nIMAGE_NAME=a b\n");
    EXPECT_EQ(
        "releasefile-information.txt: IMAGE_NAME holds a blank; rename the image: the core "
        "program would be given two names\n",
        foundInPackage(samples));
}

TEST(PackageRules, LookNoFurtherIntoAClosedFolder) {
    package_files_t files = filesOf(soundPackage());
    files.erase("tool/varnmenu");
    files.at("tool").isReadable = false;
    EXPECT_EQ("tool: cannot be entered; chmod a+rx it, or check as root\n", foundInPackage(files));
}

TEST_F(package_directory_test, IsReadAsAnArchiveIs) {
    const package_files_t files = filesBelow(at("").string());
    const package_files_t expected = filesOf(soundPackage());
    ASSERT_EQ(expected.size(), files.size());
    for (const auto& [path, file] : expected) {
        EXPECT_EQ(file.kind, files.at(path).kind) << path;
        EXPECT_EQ(file.mode, files.at(path).mode) << path;
        EXPECT_EQ(file.start, files.at(path).start) << path;
        if (file.kind == file_kind_t::regular) {
            EXPECT_EQ(file.size, files.at(path).size) << path;
        }
    }
    EXPECT_EQ("", found());
}

TEST_F(package_directory_test, MayHoldNoSymbolicLinks) {
    const std::string link = ": is a symbolic link; put the file itself there\n";
    replaceByLink("tool");
    EXPECT_EQ("tool" + link, found());
    fs::remove(at("tool"));
    fs::rename(scratch.path() / "elsewhere", at("tool"));
    for (const std::string name : {"tool/varnmenu", "readme.txt", "fw.bin"}) {
        replaceByLink(name);
        EXPECT_EQ(name + link, found());
        fs::remove(at(name));
        fs::rename(scratch.path() / "elsewhere", at(name));
    }
}

TEST_F(package_directory_test, MayHoldOtherThingsWhereNothingIsLookedFor) {
    ASSERT_EQ(0, mkfifo(at("fifo").c_str(), 0600));
    EXPECT_EQ("", found());
    fs::remove(at("fw.bin"));
    ASSERT_EQ(0, mkfifo(at("fw.bin").c_str(), 0600));
    EXPECT_EQ("fw.bin: is not a regular file; put the file itself there\n", found());
}

// From its own folder: the way to that may be closed to others.
TEST_F(package_directory_test, SaysWhatItMayNotRead) {
    fs::permissions(at("tool"), fs::perms(0700));
    fs::permissions(at("fw.bin"), fs::perms(0600));
    const fs::path before = fs::current_path();
    fs::current_path(scratch.path());
    ASSERT_EQ(0, seteuid(nobody));
    const package_files_t files = filesBelow("varn");
    ASSERT_EQ(0, seteuid(0));
    fs::current_path(before);
    EXPECT_EQ(
        "fw.bin: cannot be read; chmod a+r it, or check as root\n"
        "tool: cannot be entered; chmod a+rx it, or check as root\n",
        foundInPackage(files));
}

TEST_F(package_directory_test, FailsWhenItCannotBeEntered) {
    EXPECT_EQ("cannot enter " + at("none").string() + ": No such file or directory",
              thrown<std::runtime_error>([&] { filesBelow(at("none").string()); }));
}

TEST(MenuVersion, IsNotThatOfAScript) {
    EXPECT_EQ("", menuVersion(filesOf(soundPackage())));
    EXPECT_EQ("", menuVersion({}));
}
