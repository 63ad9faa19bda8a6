#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// @return true for what begins as an ELF file does
bool isElf(std::string_view start);

/// What the headers of an ELF file say, see elf(5).
class elf_file {
public:
    enum class state_t {
        program,
        none,     ///< not a program, but an object file or a core dump, say
        cut,      ///< shorter than its headers say
        foreign,  ///< of no class or order of bytes that there is
    };

    /// @param start the first bytes of the file, all of them for version() to find any note
    /// @param size of the whole file
    elf_file(std::string_view start, std::uint64_t size);

    state_t state() const { return is; }

    /// @return as "uname -m" has it, or "machine N"; empty for a file that is cut or foreign
    const std::string& machine() const { return machineName; }

    /// @return name and version, as ld(1) writes them with --package-metadata, or nothing
    const std::string& version() const { return versionText; }

private:
    template <typename header_t, typename segment_t>
    void read(std::string_view start, std::uint64_t size);
    template <typename segment_t>
    void readSegments(std::string_view table, std::size_t width, std::string_view start);
    void readNotes(std::string_view notes);

    /// @return the number as this machine has it
    template <typename number_t>
    number_t native(number_t number) const;

    bool isSwapped = false;  ///< the order of bytes is not this machine's
    state_t is = state_t::foreign;
    std::string machineName;
    std::string versionText;
};
