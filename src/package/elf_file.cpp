#include "package/elf_file.hpp"

#include <elf.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "package/printable.hpp"

namespace {

constexpr std::string_view noteOwner("FDO\0", 4);
constexpr std::uint32_t packageNote = 0xcafe1a7e;

struct machine_t {
    std::uint16_t number;
    unsigned char order;
    std::string_view name;
};

constexpr std::array machines{
    machine_t{EM_386, ELFDATA2LSB, "i386"},        machine_t{EM_PPC64, ELFDATA2LSB, "ppc64le"},
    machine_t{EM_PPC64, ELFDATA2MSB, "ppc64"},     machine_t{EM_S390, ELFDATA2MSB, "s390x"},
    machine_t{EM_ARM, ELFDATA2LSB, "arm"},         machine_t{EM_X86_64, ELFDATA2LSB, "x86_64"},
    machine_t{EM_AARCH64, ELFDATA2LSB, "aarch64"}, machine_t{EM_RISCV, ELFDATA2LSB, "riscv64"},
};

std::string nameOf(std::uint16_t number, unsigned char order) {
    for (const machine_t& machine : machines) {
        if (machine.number == number && machine.order == order) {
            return std::string(machine.name);
        }
    }
    return "machine " + std::to_string(number);
}

/// @return the structure at the start of the bytes, which have to be long enough
template <typename structure_t>
structure_t copyOf(std::string_view bytes) {
    structure_t structure;
    std::memcpy(&structure, bytes.data(), sizeof structure);
    return structure;
}

/// @return so many bytes from there on, or none where not all of them are there
std::string_view range(std::string_view bytes, std::uint64_t offset, std::uint64_t size) {
    const bool isThere = offset <= bytes.size() && size <= bytes.size() - offset;
    return isThere ? bytes.substr(offset, size) : std::string_view();
}

std::size_t padded(std::size_t size) { return (size + 3) / 4 * 4; }

/// @return the plain value of a field of a flat JSON object
std::string field(std::string_view object, const std::string& name) {
    const std::string key = '"' + name + "\":\"";
    const std::size_t found = object.find(key);
    if (found == std::string_view::npos) {
        return "";
    }
    const std::string_view rest = object.substr(found + key.size());
    const std::string_view value = rest.substr(0, rest.find('"'));
    return isPlainName(value) ? std::string(value) : "";
}

}  // namespace

bool isElf(std::string_view start) { return start.starts_with(std::string_view(ELFMAG, SELFMAG)); }

template <typename number_t>
number_t elf_file::native(number_t number) const {
    if (isSwapped) {
        auto bytes = std::bit_cast<std::array<unsigned char, sizeof number>>(number);
        std::ranges::reverse(bytes);
        number = std::bit_cast<number_t>(bytes);
    }
    return number;
}

elf_file::elf_file(std::string_view start, std::uint64_t size) {
    if (!isElf(start) || start.size() <= EI_DATA) {
        return;
    }
    const auto order = static_cast<unsigned char>(start[EI_DATA]);
    constexpr auto own = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
    if (order != ELFDATA2LSB && order != ELFDATA2MSB) {
        return;
    }
    isSwapped = order != own;
    if (start[EI_CLASS] == ELFCLASS32) {
        read<Elf32_Ehdr, Elf32_Phdr>(start, size);
    } else if (start[EI_CLASS] == ELFCLASS64) {
        read<Elf64_Ehdr, Elf64_Phdr>(start, size);
    }
}

template <typename header_t, typename segment_t>
void elf_file::read(std::string_view start, std::uint64_t size) {
    is = state_t::cut;
    if (start.size() < sizeof(header_t)) {
        return;
    }
    const auto header = copyOf<header_t>(start);
    const std::uint64_t table = native(header.e_phoff);
    const std::size_t width = native(header.e_phentsize);
    const std::size_t length = width * native(header.e_phnum);
    const auto type = native(header.e_type);
    // Each by itself first: a sum of large numbers may come out as a small one.
    if (length != 0 && (table > size || length > size - table)) {
        return;
    }
    const bool isProgram = length != 0 && (type == ET_EXEC || type == ET_DYN);
    is = isProgram ? state_t::program : state_t::none;
    machineName = nameOf(native(header.e_machine), header.e_ident[EI_DATA]);
    if (width >= sizeof(segment_t)) {
        readSegments<segment_t>(range(start, table, length), width, start);
    }
}

template <typename segment_t>
void elf_file::readSegments(std::string_view table, std::size_t width, std::string_view start) {
    for (; table.size() >= width; table.remove_prefix(width)) {
        const auto segment = copyOf<segment_t>(table);
        if (native(segment.p_type) == PT_NOTE) {
            readNotes(range(start, native(segment.p_offset), native(segment.p_filesz)));
        }
    }
}

void elf_file::readNotes(std::string_view notes) {
    while (notes.size() >= sizeof(Elf64_Nhdr)) {
        const auto header = copyOf<Elf64_Nhdr>(notes);  // that of 32 bits has the same layout
        const std::size_t nameSize = native(header.n_namesz);
        const std::size_t textSize = native(header.n_descsz);
        notes.remove_prefix(sizeof header);
        const std::string_view name = range(notes, 0, nameSize);
        const std::string_view text = range(notes, padded(nameSize), textSize);
        if (native(header.n_type) == packageNote && name == noteOwner) {
            const std::string program = field(text, "name");
            const std::string number = field(text, "version");
            if (!program.empty() && !number.empty()) {
                versionText = program;
                versionText += ' ';
                versionText += number;
            }
        }
        notes.remove_prefix(std::min(padded(nameSize) + padded(textSize), notes.size()));
    }
}
