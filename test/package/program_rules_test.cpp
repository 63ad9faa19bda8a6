#include "package/program_rules.hpp"

#include <elf.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "harness/tool_test.hpp"
#include "package/elf_file.hpp"
#include "package/package_rules.hpp"
#include "package/sample_package.hpp"

namespace {

/// @return the machine, or what is found
std::string saidOf(const std::string& content, unsigned mode = 0755) {
    package_file_t file;
    file.mode = mode;
    file.size = content.size();
    file.start = content;
    findings found;
    const std::string machine = checkProgram("p", file, found);
    return found.empty() ? machine : machine + textOf(found);
}

template <typename type_t>
void put(std::string& bytes, std::size_t offset, type_t number, bool isBig) {
    for (std::size_t i = 0; i < sizeof number; ++i) {
        const std::size_t shift = 8 * (isBig ? sizeof number - 1 - i : i);
        bytes.at(offset + i) = static_cast<char>(static_cast<std::uint64_t>(number) >> shift);
    }
}

struct elf_t {
    bool is64 = true;
    bool isBig = false;
    std::uint16_t machine = EM_X86_64;
    std::uint16_t type = ET_DYN;
    std::size_t noteAt = 120;
    std::string note = R"({"type":"generic","name":"varnmenu","version":"1.2.3"})";
    std::string owner = std::string("FDO", 4);
};

/// @return a program with one segment, a note
std::string programOf(const elf_t& elf) {
    const std::size_t header = elf.is64 ? sizeof(Elf64_Ehdr) : sizeof(Elf32_Ehdr);
    const std::size_t segment = elf.is64 ? sizeof(Elf64_Phdr) : sizeof(Elf32_Phdr);
    std::string note(12, '\0');
    put(note, 0, static_cast<std::uint32_t>(elf.owner.size()), elf.isBig);
    put(note, 4, static_cast<std::uint32_t>(elf.note.size()), elf.isBig);
    put(note, 8, std::uint32_t{0xcafe1a7e}, elf.isBig);
    note += elf.owner + elf.note;
    std::string bytes(elf.noteAt, '\0');
    bytes += note;
    bytes.replace(0, 4, ELFMAG);
    bytes[EI_CLASS] = static_cast<char>(elf.is64 ? ELFCLASS64 : ELFCLASS32);
    bytes[EI_DATA] = static_cast<char>(elf.isBig ? ELFDATA2MSB : ELFDATA2LSB);
    put(bytes, offsetof(Elf64_Ehdr, e_type), elf.type, elf.isBig);
    put(bytes, offsetof(Elf64_Ehdr, e_machine), elf.machine, elf.isBig);
    const auto sizes = [&](std::size_t width, std::size_t count) {
        put(bytes, width, static_cast<std::uint16_t>(segment), elf.isBig);
        put(bytes, count, std::uint16_t{1}, elf.isBig);
    };
    put(bytes, header, std::uint32_t{PT_NOTE}, elf.isBig);
    if (elf.is64) {
        put(bytes, offsetof(Elf64_Ehdr, e_phoff), std::uint64_t{header}, elf.isBig);
        sizes(offsetof(Elf64_Ehdr, e_phentsize), offsetof(Elf64_Ehdr, e_phnum));
        put(bytes, header + offsetof(Elf64_Phdr, p_offset), std::uint64_t{elf.noteAt}, elf.isBig);
        put(bytes, header + offsetof(Elf64_Phdr, p_filesz), std::uint64_t{note.size()}, elf.isBig);
    } else {
        put(bytes, offsetof(Elf32_Ehdr, e_phoff), static_cast<std::uint32_t>(header), elf.isBig);
        sizes(offsetof(Elf32_Ehdr, e_phentsize), offsetof(Elf32_Ehdr, e_phnum));
        put(bytes, header + offsetof(Elf32_Phdr, p_offset), static_cast<std::uint32_t>(elf.noteAt),
            elf.isBig);
        put(bytes, header + offsetof(Elf32_Phdr, p_filesz), static_cast<std::uint32_t>(note.size()),
            elf.isBig);
    }
    return bytes;
}

std::string versionOf(const std::string& bytes) { return elf_file(bytes, bytes.size()).version(); }

const std::string noProgram = "p: is an ELF file, but no program; put the program itself there\n";
const std::string cutOffFile = "p: is an ELF file that is cut off; put the whole file there\n";
const std::string foreignFile =
    "p: is an ELF file that no system can run; put the right file there\n";

}  // namespace

TEST(ProgramRules, KnowTheMachineOfAProgram) {
    EXPECT_EQ("x86_64", saidOf(programOf({})));
    EXPECT_EQ("x86_64", saidOf(programOf({.type = ET_EXEC})));
    EXPECT_EQ("i386", saidOf(programOf({.is64 = false, .machine = EM_386, .type = ET_EXEC})));
    EXPECT_EQ("s390x", saidOf(programOf({.isBig = true, .machine = EM_S390})));
    EXPECT_EQ("ppc64", saidOf(programOf({.isBig = true, .machine = EM_PPC64})));
    EXPECT_EQ("ppc64le", saidOf(programOf({.machine = EM_PPC64})));
    EXPECT_EQ("aarch64", saidOf(programOf({.machine = EM_AARCH64})));
    EXPECT_EQ("riscv64", saidOf(programOf({.machine = EM_RISCV})));
    EXPECT_EQ("arm", saidOf(programOf({.is64 = false, .machine = EM_ARM})));
    EXPECT_EQ("machine 999", saidOf(programOf({.machine = 999})));
}

TEST(ProgramRules, FindWhatNoSystemCanStart) {
    EXPECT_EQ("p: has no execute permission; chmod a+x it\n", saidOf("#!/bin/sh\n", 0677));
    EXPECT_EQ("p: is no program; put an ELF program or a script with \"#!\" there\n",
              saidOf("exit 0\n"));
    EXPECT_EQ("p: is no program; put an ELF program or a script with \"#!\" there\n", saidOf("\x7f"
                                                                                             "EL"));
    EXPECT_EQ("x86_64" + noProgram, saidOf(programOf({.type = ET_REL})));
    EXPECT_EQ("x86_64" + noProgram, saidOf(programOf({.type = ET_CORE})));
    std::string bytes = programOf({});
    put(bytes, offsetof(Elf64_Ehdr, e_phnum), std::uint16_t{0}, false);
    EXPECT_EQ("x86_64" + noProgram, saidOf(bytes));
    EXPECT_EQ(foreignFile, saidOf(ELFMAG));
    EXPECT_EQ(foreignFile, saidOf(programOf({}).replace(EI_CLASS, 1, "\3")));
    EXPECT_EQ(foreignFile, saidOf(programOf({}).replace(EI_DATA, 1, "\3")));
    EXPECT_EQ(cutOffFile, saidOf(programOf({}).substr(0, 63)));
    EXPECT_EQ(cutOffFile, saidOf(programOf({}).substr(0, 119)));
    EXPECT_EQ("x86_64", saidOf(programOf({}).substr(0, 120)));
    const elf_t small{.is64 = false, .machine = EM_386};
    EXPECT_EQ(cutOffFile, saidOf(programOf(small).substr(0, 51)));
    EXPECT_EQ(cutOffFile, saidOf(programOf(small).substr(0, 83)));
    EXPECT_EQ("i386", saidOf(programOf(small).substr(0, 84)));
    bytes = programOf(small);
    put(bytes, offsetof(Elf32_Ehdr, e_phoff), ~std::uint32_t{0}, false);
    EXPECT_EQ(cutOffFile, saidOf(bytes));
    put(bytes, offsetof(Elf32_Ehdr, e_phnum), std::uint16_t{0}, false);
    EXPECT_EQ("i386" + noProgram, saidOf(bytes));
    EXPECT_EQ("i386" + noProgram,
              saidOf(programOf({.is64 = false, .machine = EM_386, .type = ET_REL})));
    for (const std::uint64_t table : {~std::uint64_t{0}, std::uint64_t{1000}}) {
        bytes = programOf({});
        put(bytes, offsetof(Elf64_Ehdr, e_phoff), table, false);
        EXPECT_EQ(cutOffFile, saidOf(bytes));
    }
}

TEST(ProgramRules, TakeScriptsWithTheWholePathOfAnInterpreter) {
    for (const std::string script : {"#!/bin/sh\n", "#! \t/bin/sh -e\n", "#!/bin/sh"}) {
        EXPECT_EQ("", saidOf(script));
    }
    for (const std::string script : {"#!\n/bin/sh", "#! \t\n", "#!"}) {
        EXPECT_EQ("p: names no interpreter; write its path after the \"#!\"\n", saidOf(script));
    }
    EXPECT_EQ(
        "p: names an interpreter that does not begin with a slash; write its whole path after "
        "the \"#!\"\n",
        saidOf("#!sh\n"));
    EXPECT_EQ("p: has a carriage return in its first line; end the lines as UNIX does\n",
              saidOf("#!/bin/sh\r\n"));
}

TEST(ProgramRules, LetBothProgramsBeForOneMachine) {
    EXPECT_TRUE(runOnOneMachine("", "arm"));
    EXPECT_TRUE(runOnOneMachine("arm", ""));
    EXPECT_TRUE(runOnOneMachine("arm", "arm"));
    EXPECT_TRUE(runOnOneMachine("x86_64", "i386"));
    EXPECT_TRUE(runOnOneMachine("i386", "x86_64"));
    EXPECT_FALSE(runOnOneMachine("x86_64", "aarch64"));
    EXPECT_FALSE(runOnOneMachine("arm", "i386"));
    samples_t samples = soundPackage();
    sampleOf(samples, "tool/varnmenu") = sampleFile("varn/tool/varnmenu", programOf({}), 0755);
    sampleOf(samples, "tool/varnflash") =
        sampleFile("varn/tool/varnflash", programOf({.machine = EM_AARCH64}), 0755);
    EXPECT_EQ(
        "tool/varnflash: is for aarch64, but tool/varnmenu for x86_64; take both for the same "
        "machine\n",
        foundBy([&](findings& found) { checkPackage(filesOf(samples), found); }));
    EXPECT_EQ("varnmenu 1.2.3", menuVersion(filesOf(samples)));
}

TEST(ElfNote, IsFoundWhereverItLies) {
    EXPECT_EQ("varnmenu 1.2.3", versionOf(programOf({})));
    EXPECT_EQ("varnmenu 1.2.3", versionOf(programOf({.noteAt = 1'000'000})));
    EXPECT_EQ("varnmenu 1.2.3", versionOf(programOf({.is64 = false, .isBig = true})));
    EXPECT_EQ("varnmenu 1.2.3", versionOf(programOf({.isBig = true})));
}

TEST(ElfNote, IsTakenOnlyIfItIsWhole) {
    const std::string whole = programOf({});
    EXPECT_EQ("", versionOf(whole.substr(0, whole.size() - 1)));
    EXPECT_EQ("", versionOf(programOf({.owner = std::string("GNU", 4)})));
    EXPECT_EQ("", versionOf(programOf({.note = R"({"name":"varnmenu"})"})));
    EXPECT_EQ("", versionOf(programOf({.note = R"({"version":"1"})"})));
    EXPECT_EQ("", versionOf(programOf({.note = "{\"name\":\"\x1b[2J\",\"version\":\"1\"}"})));
    std::string other = whole;
    put(other, 120 + 8, std::uint32_t{1}, false);
    EXPECT_EQ("", versionOf(other));
    other = whole;
    put(other, 64, std::uint32_t{PT_LOAD}, false);
    EXPECT_EQ("", versionOf(other));
    other = whole;
    put(other, offsetof(Elf64_Ehdr, e_phentsize), std::uint16_t{8}, false);
    EXPECT_EQ("", versionOf(other));
    const elf_t small{.is64 = false};
    other = programOf(small);
    EXPECT_EQ("varnmenu 1.2.3", versionOf(other));
    put(other, 52, std::uint32_t{PT_LOAD}, false);
    EXPECT_EQ("", versionOf(other));
    other = programOf(small);
    put(other, offsetof(Elf32_Ehdr, e_phentsize), std::uint16_t{8}, false);
    EXPECT_EQ("", versionOf(other));
    other = whole;
    put(other, 120, std::uint32_t{0xffffffff}, false);
    EXPECT_EQ("", versionOf(other));
}
