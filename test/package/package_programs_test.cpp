#include "package/package_findings.hpp"

namespace fs = std::filesystem;

namespace {

/// The header of an ELF program, as far as anything is told from it.
struct elf_t {
    int bits = 64;
    bool isBigEndian = false;
    unsigned type = 2;
    unsigned machine = 62;
    unsigned entries = 1;   ///< program headers
    std::size_t table = 0;  ///< where they are; 0 is after the header

    std::string text() const;

private:
    void put(std::string& header, std::size_t offset, std::size_t width, std::size_t number) const {
        for (std::size_t index = 0; index < width; ++index) {
            const std::size_t shift = 8 * (isBigEndian ? width - 1 - index : index);
            header[offset + index] = static_cast<char>(number >> shift & 0xff);
        }
    }
};

// The offsets are those of elf(5).
std::string elf_t::text() const {
    const bool isLong = bits == 64;
    const std::size_t headerSize = isLong ? 64 : 52;
    const std::size_t entrySize = isLong ? 56 : 32;
    std::string header(headerSize, '\0');
    header.replace(0, 4,
                   "\x7f"
                   "ELF");
    header[4] = static_cast<char>(bits / 32);
    header[5] = static_cast<char>(isBigEndian ? 2 : 1);
    put(header, 16, 2, type);
    put(header, 18, 2, machine);
    put(header, isLong ? 32 : 28, isLong ? 8 : 4, table == 0 ? headerSize : table);
    put(header, isLong ? 54 : 42, 2, entrySize);
    put(header, isLong ? 56 : 44, 2, entries);
    return header + std::string(entrySize * entries, '\0');
}

constexpr elf_t x86_64;
constexpr elf_t i386{.bits = 32, .machine = 3};
constexpr elf_t aarch64{.machine = 183};
constexpr elf_t s390x{.isBigEndian = true, .machine = 22};

defect_t withCore(const std::string& text) { return with("tool/varnflash", text); }

defect_t withPrograms(const elf_t& menu, const elf_t& core) {
    return [menu, core](const package_folder& package) {
        package.write("tool/varnmenu", menu.text());
        package.write("tool/varnflash", core.text());
    };
}

std::vector<row_t> interpreterRows() {
    const std::string core = "tool/varnflash: ";
    const std::string foreign =
        core + "has a carriage return in its first line; end the lines as UNIX does\n";
    const std::string none = core + "names no interpreter; write its path after the \"#!\"\n";
    const std::string searched =
        core +
        "names an interpreter that does not begin with a slash; write its whole path after the "
        "\"#!\"\n";
    return {
        {"has a carriage return in its first line", withCore("#!/bin/sh\r\nexit 0\r\n"), foreign},
        {"has a carriage return in its first line", withCore("#!/bin/sh -e\r\n"), foreign},
        {"has a carriage return in its first line", withCore("#!\r\n"), foreign},
        {"names no interpreter", withCore("#!"), none},
        {"names no interpreter", withCore("#!\nexit 0\n"), none},
        {"names no interpreter", withCore("#! \t \nexit 0\n"), none},
        {"does not begin with a slash", withCore("#!sh\n"), searched},
        {"does not begin with a slash", withCore("#! bin/sh -e /\n"), searched},
    };
}

std::vector<row_t> elfRows() {
    const std::string core = "tool/varnflash: ";
    const std::string cutOff = core + "is an ELF file that is cut off; put the whole file there\n";
    const std::string foreign =
        core + "is an ELF file that no system can run; put the right file there\n";
    const std::string none =
        core + "is an ELF file, but no program; put the program itself there\n";
    const std::string whole = x86_64.text();
    std::string otherClass = whole;
    otherClass[4] = 3;
    std::string otherOrder = whole;
    otherOrder[5] = 0;
    return {
        {"is an ELF file that is cut off", withCore(whole.substr(0, 64)), cutOff},
        {"is an ELF file that is cut off", withCore(whole.substr(0, 63)), cutOff},
        {"is an ELF file that is cut off", withCore(whole.substr(0, 30)), cutOff},
        {"is an ELF file that is cut off", withCore(i386.text().substr(0, 83)), cutOff},
        {"is an ELF file that is cut off", withCore(s390x.text().substr(0, 100)), cutOff},
        {"is an ELF file that is cut off", withCore(elf_t{.table = ~std::size_t{0}}.text()),
         cutOff},
        {"is an ELF file that is cut off", withCore(elf_t{.table = ~std::size_t{0} / 2}.text()),
         cutOff},
        {"is an ELF file that is cut off",
         withCore(elf_t{.entries = 0xffff}.text().substr(0, 4096)), cutOff},
        {"is an ELF file that no system can run",
         withCore("\x7f"
                  "ELF"),
         foreign},
        {"is an ELF file that no system can run", withCore(otherClass), foreign},
        {"is an ELF file that no system can run", withCore(otherOrder), foreign},
        {"is an ELF file, but no program", withCore(elf_t{.type = 1}.text()), none},
        {"is an ELF file, but no program", withCore(elf_t{.type = 4}.text()), none},
        {"is an ELF file, but no program", withCore(elf_t{.entries = 0}.text()), none},
    };
}

std::vector<row_t> machineRows() {
    const auto finding = [](const std::string& core, const std::string& menu) {
        return "tool/varnflash: is for " + core + ", but tool/varnmenu for " + menu +
               "; take both for the same machine\n";
    };
    const elf_t bigArm{.isBigEndian = true, .machine = 183};
    return {
        {"but tool/varnmenu for", withPrograms(x86_64, aarch64), finding("aarch64", "x86_64")},
        {"but tool/varnmenu for", withPrograms(aarch64, x86_64), finding("x86_64", "aarch64")},
        {"but tool/varnmenu for", withPrograms(s390x, i386), finding("i386", "s390x")},
        {"but tool/varnmenu for", withPrograms(aarch64, i386), finding("i386", "aarch64")},
        {"but tool/varnmenu for", withPrograms(aarch64, bigArm), finding("machine 183", "aarch64")},
        {"but tool/varnmenu for", withPrograms({.machine = 8}, x86_64),
         finding("x86_64", "machine 8")},
    };
}

std::vector<row_t> allRows() {
    std::vector<row_t> all;
    for (const auto& rows : {interpreterRows(), elfRows(), machineRows()}) {
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

class package_programs_test : public package_test,
                              public testing::WithParamInterface<std::vector<std::string>> {
protected:
    package_programs_test() { script.shell = GetParam(); }

    void expectSaid(const std::string& output) const {
        EXPECT_EQ((outcome_t{0, output, ""}), check());
    }

    /// The tool gets a note, as the linker writes it, among other bytes.
    void addNote(const std::string& owner, const std::string& text) const {
        package.write("tool/varnmenu", x86_64.text() + "version\n1\xff" + owner + text +
                                           std::string(3, '\0') + "end");
    }
};

const std::string noteOwner = std::string(
    "\x7e\x1a\xfe\xca"
    "FDO\0",
    8);

}  // namespace

INSTANTIATE_TEST_SUITE_P(Shell, package_programs_test, testing::ValuesIn(shells()), shellName);

TEST_P(package_programs_test, SaysEachFindingAndItsCure) { expectFindings(script, allRows()); }

TEST_P(package_programs_test, TakesWhatStarts) {
    for (const std::string& text :
         {std::string("#!/bin/sh"), std::string("#! /bin/sh -e\n\r"), std::string("#!\t/bin/sh\n"),
          "#!/bin/sh\n" + std::string(1000, '\0'), x86_64.text(), i386.text(), s390x.text(),
          elf_t{.type = 3}.text(), elf_t{.bits = 32, .isBigEndian = true, .machine = 20}.text()}) {
        package.write("tool/varnflash", text);
        expectSaid("");
    }
}

TEST_P(package_programs_test, TakesProgramsThatRunOnOneMachine) {
    for (const auto& [menu, core] :
         {std::pair{x86_64, x86_64}, {x86_64, i386}, {i386, x86_64}, {s390x, s390x}}) {
        withPrograms(menu, core)(package);
        expectSaid("");
    }
}

TEST_P(package_programs_test, SaysTheVersionThatTheToolHas) {
    const std::string said = "tool/varnmenu: varnmenu 1.2.3~rc1\n";
    const std::string facts = R"("name":"varnmenu","version":"1.2.3~rc1")";
    addNote(noteOwner, R"({"type":"generic",)" + facts + "}");
    expectSaid(said);
    addNote(noteOwner, R"({"type":"generic",)" + facts + R"(,"architecture":"amd64"})");
    expectSaid(said);
    addNote(noteOwner, R"({ "version": "1.2.3~rc1", "name": "varnmenu" })");
    expectSaid(said);
    // In the other order of bytes.
    addNote(std::string("\xca\xfe\x1a\x7e"
                        "FDO\0",
                        8),
            "{" + facts + "}");
    expectSaid(said);
}

TEST_P(package_programs_test, SaysNoVersionThatIsNoPlainOne) {
    for (const std::string& note :
         {std::string(), std::string("{}"), std::string(R"({"name":"varnmenu"})"),
          std::string(R"({"name":"varnmenu","version":""})"),
          std::string("{\"name\":\"varnmenu\",\"version\":\"1\x1b[2J\"}"),
          std::string(R"({"name":"varnmenu","version":"1; rm -rf /"})")}) {
        addNote(noteOwner, note);
        expectSaid("");
    }
    addNote("FD0", R"({"name":"varnmenu","version":"1"})");
    expectSaid("");
}

TEST_P(package_programs_test, SaysNoVersionOfAPackageWithFindings) {
    addNote(noteOwner, R"({"name":"varnmenu","version":"1"})");
    package.remove("readme.txt");
    EXPECT_EQ("readme.txt: is missing; put it there\n", check().output);
}

// The system may not allow to run what lies in its folder for temporary files.
TEST_P(package_programs_test, LooksAtThePermissionNotAtTheFileSystem) {
    withMode("tool/varnflash", 0011)(package);
    EXPECT_EQ("tool/varnflash: has no execute permission; chmod a+x it\n", check().output);
}

TEST(PackageManual, ExplainsEachFindingInAProgram) {
    for (const row_t& row : allRows()) {
        expectExplained(row.inManual);
    }
}
