#include "package/unpacker.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include "harness/package_folder.hpp"
#include "harness/test_surroundings.hpp"
#include "package/interruption.hpp"
#include "package/private_folder.hpp"
#include "package/sample_package.hpp"

namespace fs = std::filesystem;

namespace {

void unpack(const samples_t& samples, const private_folder& folder) {
    unpacker sink(folder.get());
    for (const auto& [member, content] : samples) {
        sink.begin(member);
        if (!content.empty()) {
            sink.take(content);
        }
    }
    sink.end();
}

}  // namespace

TEST(Unpacker, WritesWhatIsInTheArchive) {
    const scratch_folder scratch;
    const mode_t before = umask(077);
    {
        const private_folder folder(scratch.path().string(), "varn");
        unpack(soundPackage(), folder);
        folder.publish("varn");
    }
    umask(before);
    EXPECT_EQ("varn ", scratch.names());
    std::size_t count = 1;
    for (const auto& [member, content] : soundPackage()) {
        const fs::path path = scratch.path() / member.name;
        struct stat status {};
        ASSERT_EQ(0, stat(path.c_str(), &status));
        EXPECT_EQ(member.mode, status.st_mode & 07777U) << path;
        EXPECT_EQ(member.isDirectory, S_ISDIR(status.st_mode));
        if (!member.isDirectory) {
            EXPECT_EQ(content, contentOf(path));
            EXPECT_EQ(member.time, static_cast<std::uint64_t>(status.st_mtime));
        }
        count += member.name == "varn" ? 0 : 1;
    }
    EXPECT_EQ(count - 1, static_cast<std::size_t>(std::distance(
                             fs::recursive_directory_iterator(scratch.path() / "varn"), {})));
}

TEST(Unpacker, OverwritesNothing) {
    const scratch_folder scratch;
    const private_folder folder(scratch.path().string(), "varn");
    EXPECT_EQ("cannot make varn/x: File exists", thrown<std::runtime_error>([&] {
                  unpack(
                      {sampleFolder("varn"), sampleFile("varn/x", "1"), sampleFile("varn/x", "2")},
                      folder);
              }));
    EXPECT_EQ("cannot make varn: File exists",
              thrown<std::runtime_error>([&] { unpack({sampleFolder("varn")}, folder); }));
}

TEST(PrivateFolder, IsClosedAndLeavesNothing) {
    const scratch_folder scratch;
    {
        const private_folder folder(scratch.path().string(), "varn");
        struct stat status {};
        ASSERT_EQ(0, fstat(folder.get(), &status));
        EXPECT_EQ(0700U, status.st_mode & 07777U);
        EXPECT_TRUE(scratch.names().starts_with(".varn."));
        unpack(soundPackage(), folder);
        folder.make("file").write("text");
        EXPECT_EQ("text", contentOf(folder.pathOf("file")));
        EXPECT_THROW(folder.make("file"), std::runtime_error);
    }
    EXPECT_EQ("", scratch.names());
}

TEST(PrivateFolder, PublishesNothingOverWhatIsThere) {
    const scratch_folder scratch;
    scratch.write("file", "of somebody else");
    fs::create_directory(scratch.path() / "varn");
    {
        const private_folder folder(scratch.path().string(), "varn");
        folder.make("file").write("text");
        unpack({sampleFolder("varn")}, folder);
        for (const std::string name : {"file", "varn"}) {
            EXPECT_EQ("cannot make " + scratch.at(name) + ": File exists",
                      thrown<std::runtime_error>([&] { folder.publish(name); }));
        }
    }
    EXPECT_EQ("file varn ", scratch.names());
    EXPECT_EQ("of somebody else", contentOf(scratch.path() / "file"));
}

TEST(PrivateFolder, TakesBackWhatItHasPublished) {
    const scratch_folder scratch;
    {
        const private_folder folder(scratch.path().string(), "varn");
        folder.make("file").write("text");
        folder.publish("file");
        EXPECT_EQ("text", contentOf(scratch.path() / "file"));
        folder.takeBack("file");
    }
    EXPECT_EQ("", scratch.names());
}

TEST(Descriptor, SaysThatTheDiskIsFull) {
    const descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC), "cannot open", "a\x1b");
    EXPECT_EQ("cannot write a\\033: No space left on device",
              thrown<std::runtime_error>([&] { full.write("x"); }));
}

TEST(Descriptor, ReadsRegularFilesAlone) {
    const scratch_folder scratch;
    scratch.write("file", "content");
    const descriptor file = openRegularFile(scratch.at("file"));
    EXPECT_EQ("cont", file.read(4));
    EXPECT_EQ("ent", file.read(100));
    ASSERT_EQ(0, mkfifo(scratch.at("fifo").c_str(), 0600));
    EXPECT_EQ(scratch.at("fifo") + " is not a regular file",
              thrown<std::runtime_error>([&] { openRegularFile(scratch.at("fifo")); }));
    EXPECT_EQ("cannot open " + scratch.at("none") + ": No such file or directory",
              thrown<std::runtime_error>([&] { openRegularFile(scratch.at("none")); }));
}

// The signals are pending only: otherwise they would end the test.
TEST(Interruption, IsNoticedUnlessTheSignalIsIgnored) {
    const scratch_folder scratch;
    scratch.write("file", "content");
    const interruption held;
    EXPECT_NO_THROW(throwIfInterrupted());
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM}) {
        raise(number);
        EXPECT_THROW(throwIfInterrupted(), interrupted);
        EXPECT_THROW(awaitEvents({}), interrupted);
        EXPECT_THROW(openRegularFile(scratch.at("file")).readPieces([](std::string_view) {}),
                     interrupted);
        signal(number, SIG_IGN);  // takes the one that is pending away
        EXPECT_NO_THROW(throwIfInterrupted());
        raise(number);
        EXPECT_NO_THROW(throwIfInterrupted());
        signal(number, SIG_IGN);
        signal(number, SIG_DFL);
    }
}
