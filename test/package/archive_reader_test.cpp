#include "package/archive_reader.hpp"

#include <gtest/gtest.h>

#include "package/archive_writer.hpp"
#include "package/printable.hpp"
#include "package/sample_package.hpp"

namespace {

/// @return what is found in an archive that comes in pieces of this size
std::string foundInArchive(const std::string& archive, collecting_sink& sink,
                           std::size_t piece = 4096) {
    return foundBy([&](findings& found) {
        archive_reader reader("varn.tar", "varn", sink, found);
        for (std::size_t at = 0; at < archive.size(); at += piece) {
            reader.take(std::string_view(archive).substr(at, piece));
        }
        reader.end();
    });
}

std::string foundInArchive(const std::string& archive) {
    collecting_sink sink;
    const std::string found = foundInArchive(archive, sink);
    EXPECT_FALSE(sink.hasEnded);
    return found;
}

std::string foundInArchive(const samples_t& samples) { return foundInArchive(archiveOf(samples)); }

std::string withMember(const sample_t& sample) {
    samples_t samples = soundPackage();
    samples.push_back(sample);
    return foundInArchive(samples);
}

const std::string nul(1, '\0');
const std::string foreign =
    "varn.tar: holds more than plain headers; make it with varnmenu-package create, or with "
    "--format=ustar of GNU tar\n";
const std::string owned =
    "varn.tar: gives files to others than root; make it with varnmenu-package create, or with "
    "--owner=0 --group=0 --numeric-owner of GNU tar\n";
const std::string damaged = "varn.tar: is no tar archive, or a damaged one; fetch it again\n";
const std::string cutOff = "varn.tar: is cut off; fetch it again\n";
const std::string goesOn = "varn.tar: goes on after its end; do not use it\n";

std::string unplain(const std::string& name) {
    return name +
           ": is no plain name; rename it: letters, digits and ._+- alone, no dot or dash "
           "first\n";
}

std::string outside(const std::string& name) {
    return name + ": lies in no directory of the archive; archive one directory as a whole\n";
}

}  // namespace

TEST(ArchiveReader, YieldsWhatWasWrittenHoweverItComes) {
    const std::string archive = archiveOf(soundPackage());
    EXPECT_EQ(0U, archive.size() % 10240);
    for (const std::size_t piece : {1U, 7U, 511U, 512U, 513U, 100000U}) {
        collecting_sink sink;
        EXPECT_EQ("", foundInArchive(archive, sink, piece));
        EXPECT_EQ(soundPackage(), sink.samples);
        EXPECT_TRUE(sink.hasEnded);
    }
}

TEST(ArchiveReader, TakesFilesThatFillTheirBlocks) {
    const samples_t samples{sampleFolder("varn"), sampleFile("varn/a", std::string(1024, 'a')),
                            sampleFile("varn/b", "b")};
    collecting_sink sink;
    EXPECT_EQ("", foundInArchive(archiveOf(samples), sink));
    EXPECT_EQ(samples, sink.samples);
}

// Of 21 blocks the last one is in a second record.
TEST(ArchiveReader, GetsTwoBlocksOfZerosAtTheEnd) {
    EXPECT_EQ(
        40U * 512,
        archiveOf({sampleFolder("varn"), sampleFile("varn/a", std::string(17 * 512, 'a'))}).size());
}

TEST(ArchiveReader, TakesTheOwnersNameRootAndEmptyDeviceNumbers) {
    for (const bool namesRoot : {false, true}) {
        for (const bool hasNumbers : {false, true}) {
            std::string archive = archiveOf({sampleFolder("varn")});
            const std::string root = namesRoot ? "root" : std::string(4, '\0');
            const std::string device = hasNumbers ? "0000000" : std::string(7, '\0');
            archive = withHeader(archive, 265, root);
            archive = withHeader(archive, 297, root);
            archive = withHeader(archive, 329, device);
            archive = withHeader(archive, 337, device);
            collecting_sink sink;
            EXPECT_EQ("", foundInArchive(archive, sink));
        }
    }
}

TEST(ArchiveReader, TakesOneSpellingOfEachField) {
    const std::string archive = archiveOf({sampleFolder("varn"), sampleFile("varn/x", "content")});
    struct {
        std::size_t offset;
        std::string bytes;
        std::string expected;
    } const rows[] = {
        {100, "000644 ", foreign},                              // as bsdtar has it
        {100, nul + "000644", foreign},                         // begins with a NUL
        {100, " 000644", foreign},                              // blanks
        {124, nul + "0000000007", foreign},                     // a size that begins with a NUL
        {124, "\n0000000007", foreign},                         // with a line feed
        {124, "\v0000000007", foreign},                         // with a vertical tab
        {124, "+0000000007", foreign},                          // with a sign
        {124, "00000000007 ", foreign},                         // a blank at its end
        {124, "\x80" + std::string(10, '\0') + "\7", foreign},  // base 256
        {136, "-0000000001", foreign},                          // a negative time
        {148, "12345678", damaged},
        {156, nul, foreign},  // the type of old
        {156, "1", foreign},  // a link
        {156, "7", foreign},
        {156, "L", foreign},
        {156, "x", foreign},
        {156, "S", foreign},
        {157, "target", foreign},         // the name of a link
        {257, "ustar  " + nul, foreign},  // magic of GNU tar
        {257, "ustar" + nul + "01", foreign},
        {257, std::string(8, '\0'), damaged},  // an archive of old
        {345, "prefix", foreign},              // a name that needed none
        {500, "x", foreign},                   // after the prefix
        {50, "x", foreign},                    // after the end of the name
        {108, "0001750", owned},
        {116, "0001750", owned},
        {265, "user", owned},
        {297, "group", owned},
        {265, "root", owned},  // one of two names
        {329, "0000001", foreign},
    };
    for (const auto& [offset, bytes, expected] : rows) {
        const std::string changed = withHeader(archive, offset, bytes, 1);
        EXPECT_EQ(expected,
                  foundInArchive(offset == 148 ? std::string(archive).replace(512 + 148, 8, bytes)
                                               : changed))
            << offset;
    }
}

TEST(ArchiveReader, TakesZerosAloneAsPaddingAndEnd) {
    const std::string archive = archiveOf({sampleFolder("varn"), sampleFile("varn/x", "content")});
    const std::string members = archive.substr(0, 3 * 512);
    const std::string zeros(512, '\0');
    EXPECT_EQ("varn.tar: holds something between two members; do not use it\n",
              foundInArchive(std::string(archive).replace(2 * 512 + 7, 1, "x")));
    EXPECT_EQ("varn.tar: holds something between two members; do not use it\n",
              foundInArchive(std::string(archive).replace(3 * 512 - 1, 1, "x")));
    EXPECT_EQ(goesOn, foundInArchive(archive + archive));
    EXPECT_EQ(goesOn, foundInArchive(members + zeros + members + zeros + zeros));
    EXPECT_EQ(goesOn, foundInArchive(std::string(archive).replace(archive.size() - 1, 1, "x")));
    for (const std::string& cut :
         {std::string(), archive.substr(0, 100), archive.substr(0, 512), archive.substr(0, 1027),
          archive.substr(0, 1400), members, members + zeros}) {
        EXPECT_EQ(cutOff, foundInArchive(cut)) << cut.size();
    }
    EXPECT_EQ(cutOff, foundInArchive(members + zeros + zeros.substr(1)));
    EXPECT_EQ(cutOff, foundInArchive(archive + nul));
    EXPECT_EQ("varn.tar: holds nothing; fetch it again\n", foundInArchive(zeros + zeros));
    collecting_sink sink;
    EXPECT_EQ("", foundInArchive(members + zeros + zeros, sink));
}

TEST(ArchiveReader, TakesPlainNamesAlone) {
    for (const std::string name : {"varn/.hidden", "varn/-rf", "varn/a b", "varn/a;b", "varn/a:b",
                                   "varn/a\\b", "varn/\xc3\xa4"}) {
        EXPECT_EQ(unplain(printable(name)), withMember(sampleFile(name, ""))) << name;
    }
    EXPECT_EQ(unplain("varn/../x") + outside("varn/../x"), withMember(sampleFile("varn/../x", "")));
    EXPECT_EQ(unplain("/etc/x") + outside("/etc/x"), withMember(sampleFile("/etc/x", "")));
    EXPECT_EQ(unplain("varn//x") + outside("varn//x"), withMember(sampleFile("varn//x", "")));
    EXPECT_EQ(unplain("\\033[2J") + outside("\\033[2J"), withMember(sampleFile("\x1b[2J", "")));
}

TEST(ArchiveReader, TakesOneFolderWithTheNameOfTheArchive) {
    EXPECT_EQ("varn.tar: holds the directory other; name the archive other.tar\n",
              foundInArchive({sampleFolder("other")}));
    EXPECT_EQ(unplain(".ssh") + "varn.tar: holds the directory .ssh; name the archive .ssh.tar\n",
              foundInArchive({sampleFolder(".ssh")}));
    EXPECT_EQ(outside("varn"), foundInArchive({sampleFile("varn", "")}));
    EXPECT_EQ(outside("second"), withMember(sampleFolder("second")));
    EXPECT_EQ(outside("varn/sub/x"), withMember(sampleFile("varn/sub/x", "")));
    EXPECT_EQ(outside("varn/fw.bin/x"), withMember(sampleFile("varn/fw.bin/x", "")));
}

TEST(ArchiveReader, TakesNothingTwice) {
    const std::string twice =
        ": is in the archive more than once; leave one of them out; capitals make no other name\n";
    EXPECT_EQ("varn/fw.bin" + twice, withMember(sampleFile("varn/fw.bin", "other")));
    EXPECT_EQ("varn/FW.BIN" + twice, withMember(sampleFile("varn/FW.BIN", "other")));
    EXPECT_EQ("varn/Tool" + twice, withMember(sampleFolder("varn/Tool")));
}

TEST(ArchiveReader, TakesModesThatKeepOthersOut) {
    EXPECT_EQ("varn/x: has a set-ID or a sticky bit; chmod ug-s,-t it\n",
              withMember(sampleFile("varn/x", "", 04755)));
    EXPECT_EQ("varn/x: has a set-ID or a sticky bit; chmod ug-s,-t it\n",
              withMember(sampleFolder("varn/x", 01755)));
    for (const unsigned mode : {0664U, 0646U}) {
        EXPECT_EQ("varn/x: can be written by others; chmod go-w it\n",
                  withMember(sampleFile("varn/x", "", mode)));
    }
    for (const unsigned mode : {0055U, 0355U, 0655U, 0555U}) {
        EXPECT_EQ("varn/x: is closed to its owner; chmod u+rwX it\n",
                  withMember(sampleFolder("varn/x", mode)));
    }
    EXPECT_EQ("varn/x: is closed to its owner; chmod u+rwX it\n",
              withMember(sampleFile("varn/x", "", 0244)));
    collecting_sink sink;
    EXPECT_EQ(
        "", foundInArchive(archiveOf({sampleFolder("varn", 0700), sampleFile("varn/x", "", 0400)}),
                           sink));
}

TEST(ArchiveReader, TakesAThousandMembers) {
    samples_t samples{sampleFolder("varn")};
    while (samples.size() < archive_reader::mostMembers) {
        samples.push_back(sampleFile("varn/" + std::to_string(samples.size()), ""));
    }
    collecting_sink sink;
    EXPECT_EQ("", foundInArchive(archiveOf(samples), sink));
    samples.push_back(sampleFile("varn/more", ""));
    EXPECT_EQ("varn.tar: holds more than 1000 members; leave some out\n", foundInArchive(samples));
}

TEST(ArchiveReader, RefusesADirectoryWithContent) {
    samples_t samples = soundPackage();
    samples.push_back({{"varn/x", true, 0755, 3, 0}, "abc"});
    EXPECT_EQ("varn/x: is a directory with content; do not use the archive\n",
              foundInArchive(samples));
}

TEST(ArchiveReader, YieldsNothingMoreAfterAFinding) {
    collecting_sink sink;
    const std::string found = foundInArchive(
        archiveOf({sampleFolder("varn"), sampleFile("varn/a", "a"), sampleFile("varn/-b", "b"),
                   sampleFile("varn/-c", "c"), sampleFile("varn/d", "d")}),
        sink);
    EXPECT_EQ(unplain("varn/-b") + unplain("varn/-c"), found);
    EXPECT_EQ((samples_t{sampleFolder("varn"), sampleFile("varn/a", "a")}), sink.samples);
    EXPECT_FALSE(sink.hasEnded);
}
