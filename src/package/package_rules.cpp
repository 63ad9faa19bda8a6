#include "package/package_rules.hpp"

#include <algorithm>

#include "package/elf_file.hpp"
#include "package/printable.hpp"
#include "package/program_rules.hpp"
#include "package/release_rules.hpp"

namespace {

constexpr unsigned everybodyWrites = 0002;

/// @return the file, if it is one that can be looked into
const package_file_t* checkFile(const package_files_t& files, std::string_view path,
                                findings& found) {
    const auto entry = files.find(path);
    if (entry == files.end()) {
        found.add(path, "is missing", "put it there");
        return nullptr;
    }
    const package_file_t& file = entry->second;
    if (file.kind == file_kind_t::link) {
        return nullptr;  // is a finding already
    }
    if (file.kind != file_kind_t::regular) {
        found.add(path, "is not a regular file", "put the file itself there");
    } else if (!file.isReadable) {
        found.add(path, "cannot be read", "chmod a+r it, or check as root");
    } else if (file.size == 0) {
        found.add(path, "is empty", "put the right file there");
    } else {
        return &file;
    }
    return nullptr;
}

void checkReleaseFile(const package_files_t& files, findings& found) {
    const package_file_t* const file = checkFile(files, releaseFileName, found);
    if (file == nullptr) {
        return;
    }
    const auto image = checkReleaseText(file->start, found);
    if (image) {
        checkFile(files, *image, found);
    }
}

void checkPrograms(const package_files_t& files, findings& found) {
    const auto folder = files.find("tool");
    const bool isOpen = folder == files.end() ||
                        (folder->second.kind != file_kind_t::link && folder->second.isReadable);
    if (!isOpen) {
        return;  // is a finding by itself
    }
    const auto machineOf = [&](std::string_view path) {
        const package_file_t* const file = checkFile(files, path, found);
        return file == nullptr ? std::string() : checkProgram(path, *file, found);
    };
    const std::string menu = machineOf(menuPath);
    const std::string core = machineOf(corePathInPackage);
    if (!runOnOneMachine(menu, core)) {
        found.add(corePathInPackage,
                  "is for " + core + ", but " + std::string(menuPath) + " for " + menu,
                  "take both for the same machine");
    }
}

void checkDocuments(const package_files_t& files, findings& found) {
    for (const document_t& document : packageDocuments) {
        if (!document.isOptional) {
            checkFile(files, document.fileName, found);
        }
    }
}

/// What everybody may write, anybody could replace, and root runs it or writes it into the
/// controller.
void checkEveryFile(const package_files_t& files, findings& found) {
    for (const auto& [path, file] : files) {
        const std::string where = path.empty() ? "." : path;
        if (file.kind == file_kind_t::link) {
            found.add(where, "is a symbolic link", "put the file itself there");
            continue;
        }
        if (file.kind == file_kind_t::directory && !file.isReadable) {
            found.add(where, "cannot be entered", "chmod a+rx it, or check as root");
        }
        if ((file.mode & everybodyWrites) != 0) {
            found.add(where, "can be written by everybody", "chmod o-w it");
        }
    }
}

}  // namespace

void checkPackage(const package_files_t& files, findings& found) {
    checkReleaseFile(files, found);
    checkPrograms(files, found);
    checkDocuments(files, found);
    checkEveryFile(files, found);
}

std::string menuVersion(const package_files_t& files) {
    const auto menu = files.find(menuPath);
    return menu == files.end() ? "" : elf_file(menu->second.start, menu->second.size).version();
}
