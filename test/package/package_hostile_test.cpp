#include "package/package_archive.hpp"
#include "package/package_findings.hpp"

namespace fs = std::filesystem;

namespace {

using members_t = std::vector<tar_member_t>;

/// An archive that nobody is to unpack, and what is said about it.
struct hostile_t {
    std::string inManual;  ///< how the manual page names the finding
    std::string archive;
    std::string output;
};

/// A sound archive with one more member, and what is said about that.
struct member_row_t {
    std::string finding;
    tar_member_t member;
    std::string shownName{};  ///< where it is not the name
};

/// What is wrong with a member itself.
std::vector<member_row_t> memberRows() {
    const std::string notPlain = "is neither a plain file nor a directory; leave it out";
    const std::string setId = "has a set-ID or a sticky bit; chmod ug-s,-t it";
    const std::string byOthers = "can be written by others; chmod go-w it";
    return {
        {notPlain, {.name = "varn/x", .type = '2', .mode = 0777, .link = "/etc/passwd"}},
        {notPlain, {.name = "varn/x", .type = '2', .mode = 0777, .link = "readme.txt"}},
        {notPlain, {.name = "varn/x", .type = '1', .link = "varn/readme.txt"}},
        {notPlain, {.name = "varn/x", .type = '1', .link = "/etc/passwd"}},
        {notPlain, {.name = "varn/x", .type = '3'}},
        {notPlain, {.name = "varn/x", .type = '4'}},
        {notPlain, {.name = "varn/x", .type = '6'}},
        {setId, {.name = "varn/x", .mode = 04755}},
        {setId, {.name = "varn/x", .mode = 02755}},
        {setId, {.name = "varn/x", .mode = 04644}},
        {setId, {.name = "varn/x/", .type = '5', .mode = 01777}, "varn/x"},
        {byOthers, {.name = "varn/x", .mode = 0664}},
        {byOthers, {.name = "varn/x", .mode = 0646}},
        {byOthers, {.name = "varn/x/", .type = '5', .mode = 0777}, "varn/x"},
        {"is closed to its owner; chmod u+rwx it",
         {.name = "varn/x/", .type = '5', .mode = 0500},
         "varn/x"},
        {"is in the archive more than once; leave one of them out", {.name = "varn/readme.txt"}},
        {"is in the archive more than once; leave one of them out",
         {.name = "varn/readme.txt/", .type = '5', .mode = 0755},
         "varn/readme.txt"},
    };
}

/// Where a member would go, and what it is called.
std::vector<member_row_t> nameRows() {
    const std::string odd = "is no plain name; rename it";
    const std::string outside =
        "lies in no directory of the archive; archive one directory as a whole";
    return {
        {odd, {.name = "/etc/passwd"}},
        {odd, {.name = "varn/../../x"}},
        {odd, {.name = "../varn/x"}},
        {odd, {.name = "varn/.."}},
        {odd, {.name = "./varn/x"}},
        {odd, {.name = "varn//x"}},
        {odd, {.name = "varn/-x"}},
        {odd, {.name = "--checkpoint-action=exec=sh"}},
        {odd, {.name = "varn/a b"}, "varn/a"},
        {odd, {.name = "varn/back\\slash"}, "varn/back\\\\slash"},
        {odd, {.name = "varn/x\nblock 2: -rw-r--r-- 0/0 5 2023-11-14 22:13 y"}, "varn/x\\nblock"},
        {odd, {.name = "varn/\x1b[2J"}, "varn/\\033[2J"},
        {odd, {.name = "varn/\xc3\xa4"}, "varn/\\303\\244"},
        {outside, {.name = "other/", .type = '5', .mode = 0755}, "other"},
        {outside, {.name = "beside"}},
        {outside, {.name = "varn/readme.txt/x"}},
        {outside, {.name = "varn/later/x"}},
        {outside, {.name = "varn/too/x"}},
    };
}

std::vector<hostile_t> memberArchives(const members_t& sound) {
    std::vector<hostile_t> all;
    for (const auto& rows : {memberRows(), nameRows()}) {
        for (const member_row_t& row : rows) {
            const std::string name = row.shownName.empty() ? row.member.name : row.shownName;
            all.push_back({row.finding.substr(0, row.finding.find(';')),
                           tarOf(sound) + tarOf({row.member}) + zeroBlocks(2),
                           name + ": " + row.finding + "\n"});
        }
    }
    return all;
}

std::string changed(members_t members, const std::function<void(members_t&)>& change) {
    change(members);
    return tarOf(members) + zeroBlocks(2);
}

/// What only some tars see, or see as something else.
std::vector<hostile_t> headerArchives(const members_t& sound) {
    const std::string start = tarOf(sound);
    const std::string output =
        "out/varn.tar: holds more than plain headers; make it with varnmenu-package create, or "
        "with --format=ustar of tar\n";
    std::vector<hostile_t> all;
    const auto add = [&](const std::string& archive) {
        all.push_back({"holds more than plain headers", archive + zeroBlocks(2), output});
    };
    const std::string path = "15 path=varn/y\n";
    const tar_member_t plain{.name = "varn/x", .content = "x"};
    add(start + tarOf({{.name = "././@LongLink", .content = "varn/y", .type = 'L'}, plain}));
    add(start + tarOf({{.name = "././@LongLink", .content = "varn/y", .type = 'K'}, plain}));
    add(start + tarOf({{.name = "x", .content = path, .type = 'x'}, plain}));
    add(tarOf({{.name = "x", .content = path, .type = 'g'}}) + start);
    add(tarOf({{.name = "label", .type = 'V'}}) + start);
    add(start + tarOf({{.name = "varn/x", .content = "x", .type = 'M'}}));
    add(start + tarOf({{.name = "varn/x", .content = "x", .type = '7'}}));
    add(start + tarOf({{.name = "varn/x", .content = "x", .type = 'S'}}));
    add(start + tarOf({{.name = "varn/x/", .type = 'D', .mode = 0755}}));
    return all;
}

/// Whom root's tar would give a file to.
std::vector<hostile_t> ownerArchives(const members_t& sound) {
    const std::string finding =
        "out/varn.tar: gives files to others than root; make it with varnmenu-package create, or "
        "with --owner=0 and --numeric-owner of tar\n";
    return {
        {"gives files to others than root",
         changed(sound, [](members_t& members) { members.back().owner = 1000; }), finding},
        {"gives files to others than root",
         changed(sound,
                 [](members_t& members) {
                     members.back().owner = 1000;
                     members.back().ownerName = "root";
                 }),
         finding},
        {"gives files to others than root",
         changed(sound, [](members_t& members) { members.front().ownerName = "nobody"; }), finding},
        {"gives files to others than root",
         changed(sound, [](members_t& members) { members.back().ownerName = "rootlike"; }),
         finding},
    };
}

std::vector<hostile_t> endArchives(const members_t& sound) {
    const std::string start = tarOf(sound);
    const std::string whole = start + zeroBlocks(2);
    const std::string afterEnd = "out/varn.tar: goes on after its end; do not use it\n";
    const std::string cutOff = "out/varn.tar: is cut off; fetch it anew\n";
    const std::string other = tarOf({{.name = "varn/x"}});
    return {
        {"goes on after its end", whole + whole, afterEnd},
        {"goes on after its end", whole + "trailing bytes", afterEnd},
        {"goes on after its end", whole + zeroBlocks(20) + other + zeroBlocks(2), afterEnd},
        {"goes on after its end", start + zeroBlocks(1) + other + zeroBlocks(2), afterEnd},
        {"is cut off", start, cutOff},
        {"is cut off", start.substr(0, start.size() - 600), cutOff},
        {"is cut off", start.substr(0, 700), cutOff},
        {"is cut off", start + zeroBlocks(1), cutOff},
        {"is cut off", start + zeroBlocks(1) + std::string(511, '\0'), cutOff},
    };
}

std::vector<hostile_t> damagedArchives(const members_t& sound) {
    const std::string whole = tarOf(sound) + zeroBlocks(2);
    const std::string damaged =
        "out/varn.tar: is no tar archive, or a damaged one; fetch it anew\n";
    const auto withLast = [&](const std::function<void(tar_member_t&)>& change) {
        return changed(sound, [&](members_t& members) { change(members.back()); });
    };
    std::string otherSum = whole;
    otherSum[512] = 'w';
    std::vector<hostile_t> all;
    for (const std::string& archive :
         {std::string("no archive"), std::string("\x1f\x8b\x08"), otherSum,
          tarOf(sound) +
              tarOf({{.name = "varn/x", .content = std::string(2000, 'x')}}).substr(0, 1536),
          tarOf(sound) + tarOf({{.name = "varn/x/", .content = "x", .type = '5', .mode = 0755}}) +
              zeroBlocks(2),
          tarOf(sound) + tarOf({{.name = "varn/tail "}}) + zeroBlocks(2),
          tarOf(sound) + tarOf({{.name = " varn/x"}}) + zeroBlocks(2),
          withLast([](tar_member_t& member) { member.size = "77777777777"; }),
          withLast([](tar_member_t& member) { member.size = "\xff" + std::string(11, '\xff'); }),
          withLast([](tar_member_t& member) { member.size = "\x80" + std::string(10, '\x7f'); }),
          withLast([](tar_member_t& member) { member.time = "\x80" + std::string(10, '\x7f'); })}) {
        all.push_back({"is no tar archive, or a damaged one", archive, damaged});
    }
    all.push_back(
        {"holds nothing", zeroBlocks(20), "out/varn.tar: holds nothing; fetch it anew\n"});
    return all;
}

std::vector<hostile_t> hostileArchives(const members_t& sound) {
    std::vector<hostile_t> all;
    for (const auto& some : {memberArchives(sound), headerArchives(sound), ownerArchives(sound),
                             endArchives(sound), damagedArchives(sound)}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

class package_hostile_test : public package_archive_test,
                             public testing::WithParamInterface<std::vector<std::string>> {
protected:
    package_hostile_test() { script.shell = GetParam(); }

    /// @param output what is said about it
    void expectRefused(const std::string& bytes, const std::string& output) const {
        writeArchive(bytes);
        EXPECT_EQ((outcome_t{1, output, ""}), verify());
        expectNothingLeft();
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Shell, package_hostile_test, testing::ValuesIn(shellsWithTar()),
                         shellName);

// Or the rows below would say little.
TEST_P(package_hostile_test, TakesASoundArchiveOfTheSameWriter) {
    for (const int blocks : {2, 3, 20}) {
        writeArchive(tarOf(soundMembers()) + zeroBlocks(blocks));
        EXPECT_EQ(unsignedLine, verify().output);
        EXPECT_EQ(0, verify().status);
    }
    expectNothingLeft();
}

TEST_P(package_hostile_test, SaysWhatIsWrongWithEachArchive) {
    for (const hostile_t& hostile : hostileArchives(soundMembers())) {
        expectRefused(hostile.archive, hostile.output);
    }
}

TEST_P(package_hostile_test, SaysWhichMembersLieInNoDirectory) {
    const std::string outside =
        ": lies in no directory of the archive; archive one directory as a whole\n";
    expectRefused(tarOf({{.name = "a"}, {.name = "b/c"}}) + zeroBlocks(2),
                  "a" + outside + "b/c" + outside);
}

TEST(PackageManual, ExplainsEachFindingInAnArchive) {
    for (const hostile_t& hostile : hostileArchives({{.name = "varn"}})) {
        expectExplained(hostile.inManual);
    }
}
