// Whatever the reader takes, every tar unpacks to the same files: changed archives are shown to it,
// and those that it takes to real tars.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>

#include "harness/package_folder.hpp"
#include "harness/program.hpp"
#include "package/archive_reader.hpp"
#include "package/sample_package.hpp"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t seed = 20261122;
constexpr int usualCount = 300;

/// So many changed headers, or as many as the environment says: 10,000 are for a run by hand.
int headerCount() {
    const char* const wanted = std::getenv("VARNMENU_HEADERS");
    return wanted == nullptr ? usualCount : std::stoi(wanted);
}

const std::vector<std::vector<std::string>> tars{
    {"/bin/tar", "--no-same-owner", "-xpf"},
    {"/bin/busybox", "tar", "-xpf"},
    {"/usr/bin/bsdtar", "--no-same-owner", "-xpf"},
};

samples_t smallPackage() {
    return {sampleFolder("varn"), sampleFile("varn/a", "some text"), sampleFolder("varn/tool"),
            sampleFile("varn/tool/b", std::string(600, 'b'), 0755)};
}

/// What lies below a folder: names, kinds, modes and contents.
std::string treeBelow(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat status {};
        lstat(entry.path().c_str(), &status);
        tree[entry.path().lexically_relative(folder).string()] =
            std::to_string(status.st_mode) +
            (S_ISREG(status.st_mode) ? " " + contentOf(entry.path()) : "");
    }
    return testing::PrintToString(tree);
}

std::string treeOf(const samples_t& samples) {
    std::map<std::string, std::string> tree;
    for (const auto& [member, content] : samples) {
        tree[member.name] = std::to_string(member.mode | (member.isDirectory ? S_IFDIR : S_IFREG)) +
                            (member.isDirectory ? "" : " " + content);
    }
    return testing::PrintToString(tree);
}

class archive_changer {
public:
    /// @return an archive with some changes, most of them in one header
    std::string changed() {
        static const std::string archive = archiveOf(smallPackage());
        static const std::size_t headers[] = {0, 1, 3, 4};
        const std::size_t block = headers[random() % 4];
        std::string bytes = withHeader(archive, 148, "");
        for (auto count = random() % 3 + 1; count > 0; --count) {
            bytes = random() % 8 == 0 ? withByte(bytes) : withField(bytes, block);
        }
        return bytes;
    }

private:
    std::string withByte(std::string bytes) {
        bytes[random() % (bytes.size())] = static_cast<char>(random());
        return bytes;
    }

    /// Changes a field to something that some tar may take for another, the checksum made right.
    std::string withField(const std::string& bytes, std::size_t block) {
        static const std::pair<std::size_t, std::size_t> fields[] = {
            {0, 100}, {100, 8},  {108, 8},  {116, 8}, {124, 12}, {136, 12},  {156, 1}, {157, 100},
            {257, 8}, {265, 32}, {297, 32}, {329, 8}, {337, 8},  {345, 155}, {500, 12}};
        static const std::vector<std::string> names{"varn/x",    "varn/x/", "varn/../y", "/z",
                                                    "varn/tool", "other/",  "varn/\x1b", "varn/a"};
        static const std::string types("0123456789gxLKSDMNVA\0", 21);
        const auto [offset, size] = fields[random() % std::size(fields)];
        std::string value = bytes.substr(block * 512 + offset, size);
        switch (random() % 6) {
            case 0:  // one byte is another one
                value[random() % size] = static_cast<char>(random());
                break;
            case 1: {  // another number, properly spelt
                value.assign(size, '0');
                value[size - 1] = '\0';
                const std::size_t digits = std::min<std::size_t>(size - 1, 3);
                for (std::size_t i = 0; i < digits; ++i) {
                    value[size - 2 - i] = static_cast<char>('0' + random() % 8);
                }
                break;
            }
            case 2: {  // a usual word
                const std::string word = offset == 0 || offset == 345
                                             ? names[random() % names.size()]
                                         : offset == 156 ? types.substr(random() % types.size(), 1)
                                                         : (random() % 2 == 0 ? "root" : "ustar  ");
                value = (word + std::string(size, '\0')).substr(0, size);
                break;
            }
            case 3:  // spelt with a sign, a blank or a NUL
                value[0] = std::string_view(" +-\t\n\0\x80\xff", 8)[random() % 8];
                break;
            case 4:
                value[size - 1] = std::string_view(" 07\0x", 5)[random() % 5];
                break;
            default:
                value.assign(size, '\0');
        }
        return withHeader(bytes, offset, value, block);
    }

    std::mt19937 random{seed};
};

/// @return what a tar makes of the archive; its exit status where that is not 0
std::string unpackedBy(std::vector<std::string> tar, const scratch_folder& scratch) {
    const fs::path folder = scratch.path() / "out";
    fs::create_directory(folder);
    program_t program;
    program.path = tar.front();
    tar.push_back("../varn.tar");
    program.arguments = tar;
    program.directory = folder.string();
    const outcome_t outcome = outcomeOf(program);
    const std::string tree = outcome.status == 0 ? treeBelow(folder) : outcome.errors;
    fs::remove_all(folder);
    return tree;
}

}  // namespace

TEST(PackageDifferential, WhatIsTakenUnpacksAlikeEverywhere) {
    const scratch_folder scratch;
    archive_changer changer;
    const int count = headerCount();
    int taken = 0;
    for (int number = 1; number <= count; ++number) {
        const std::string archive = changer.changed();
        collecting_sink sink;
        const std::string found = foundBy([&](findings& all) {
            archive_reader reader("varn.tar", "varn", sink, all);
            reader.take(archive);
            reader.end();
        });
        if (!found.empty()) {
            continue;
        }
        ++taken;
        scratch.write("varn.tar", archive);
        const std::string expected = treeOf(sink.samples);
        for (const auto& tar : tars) {
            ASSERT_EQ(expected, unpackedBy(tar, scratch))
                << tar.front() << ", archive " << number << " of seed " << seed;
        }
    }
    EXPECT_GT(taken, count / 50);  // else the archives would say little
    EXPECT_LT(taken, count / 2);
}

// Which archives of others are taken: those of GNU tar and of Python, with these options.
TEST(PackageDifferential, TarsAreTakenAsTheManualSays) {
    const scratch_folder scratch;
    writeSamples(smallPackage(), scratch.path());
    const auto found = [&](const std::string& command) {
        program_t program;
        program.path = "/bin/sh";
        program.arguments = {"sh", "-c", command};
        program.environment = {{"PATH", "/usr/bin:/bin"}};
        program.directory = scratch.path().string();
        const outcome_t outcome = outcomeOf(program);
        EXPECT_EQ(0, outcome.status) << outcome;
        collecting_sink sink;
        return foundBy([&](findings& all) {
            archive_reader reader("varn.tar", "varn", sink, all);
            reader.take(contentOf(scratch.path() / "varn.tar"));
            reader.end();
        });
    };
    const std::string python =
        "python3 -c 'import tarfile\n"
        "def root(m):\n m.uid = m.gid = 0; m.uname = m.gname = \"\"; return m\n"
        "with tarfile.open(\"varn.tar\", \"w\", format=tarfile.FORMAT) as t: "
        "t.add(\"varn\", filter=root)'";
    const auto ofFormat = [&](const std::string& format) {
        return std::string(python).replace(python.find("FORMAT"), 6, format);
    };
    EXPECT_EQ("", found("tar --format=ustar --sort=name --owner=0 --group=0 --numeric-owner -cf "
                        "varn.tar varn"));
    EXPECT_EQ("", found("tar --format=ustar --owner=root --group=root -cf varn.tar varn"));
    EXPECT_EQ("", found(ofFormat("USTAR_FORMAT")));
    for (const std::string& command :
         {std::string("tar --owner=0 --group=0 -cf varn.tar varn"),
          std::string("tar --format=pax --owner=0 --group=0 -cf varn.tar varn"),
          std::string("tar --format=v7 --owner=0 --group=0 -cf varn.tar varn"),
          std::string("bsdtar --format ustar --uid 0 --gid 0 --numeric-owner -cf varn.tar varn"),
          std::string("busybox tar -cf varn.tar varn"), ofFormat("GNU_FORMAT")}) {
        EXPECT_NE("", found(command)) << command;
    }
}
