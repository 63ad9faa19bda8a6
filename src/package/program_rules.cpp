#include "package/program_rules.hpp"

#include <algorithm>

#include "package/elf_file.hpp"

namespace {

constexpr unsigned ownerExecutes = 0100;
constexpr std::size_t longestFirstLine = 256;  // that the kernel reads

/// As the kernel reads it: to the end of the line, and with no search along PATH.
void checkInterpreter(std::string_view path, std::string_view start, findings& found) {
    const std::string_view line = start.substr(0, longestFirstLine);
    std::string_view interpreter = line.substr(2, line.find('\n') - 2);
    interpreter.remove_prefix(std::min(interpreter.find_first_not_of(" \t"), interpreter.size()));
    if (interpreter.find('\r') != std::string_view::npos) {
        found.add(path, "has a carriage return in its first line", "end the lines as UNIX does");
    } else if (interpreter.empty()) {
        found.add(path, "names no interpreter", "write its path after the \"#!\"");
    } else if (interpreter.front() != '/') {
        found.add(path, "names an interpreter that does not begin with a slash",
                  "write its whole path after the \"#!\"");
    }
}

std::string checkElf(std::string_view path, const elf_file& program, findings& found) {
    switch (program.state()) {
        case elf_file::state_t::foreign:
            found.add(path, "is an ELF file that no system can run", "put the right file there");
            return "";
        case elf_file::state_t::cut:
            found.add(path, "is an ELF file that is cut off", "put the whole file there");
            return "";
        case elf_file::state_t::none:
            found.add(path, "is an ELF file, but no program", "put the program itself there");
            return program.machine();
        default:
            return program.machine();
    }
}

}  // namespace

std::string checkProgram(std::string_view path, const package_file_t& file, findings& found) {
    if ((file.mode & ownerExecutes) == 0) {
        found.add(path, "has no execute permission", "chmod a+x it");
    }
    if (isElf(file.start)) {
        return checkElf(path, elf_file(file.start, file.size), found);
    }
    if (file.start.starts_with("#!")) {
        checkInterpreter(path, file.start, found);
    } else {
        found.add(path, "is no program", "put an ELF program or a script with \"#!\" there");
    }
    return "";
}

bool runOnOneMachine(std::string_view one, std::string_view other) {
    // An x86_64 server runs programs for i386, too.
    const auto runsOnX86 = [](std::string_view machine) {
        return machine == "x86_64" || machine == "i386";
    };
    return one.empty() || other.empty() || one == other || (runsOnX86(one) && runsOnX86(other));
}
