#include "package/archive_reader.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "package/printable.hpp"
#include "package/ustar_header.hpp"

namespace {

constexpr std::string_view fetchAgain = "fetch it again";
constexpr unsigned allModes = 0777;
constexpr unsigned othersWrite = 0022;

bool isZeros(std::string_view bytes) {
    return bytes.find_first_not_of('\0') == std::string_view::npos;
}

bool isPlainPath(std::string_view path) {
    for (;;) {
        const std::size_t slash = path.find('/');
        if (!isPlainName(path.substr(0, slash))) {
            return false;
        }
        if (slash == std::string_view::npos) {
            return true;
        }
        path.remove_prefix(slash + 1);
    }
}

/// Plain names have no letters but those of ASCII.
std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

}  // namespace

archive_reader::archive_reader(std::string archive, std::string folder, member_sink& members,
                               findings& found)
    : archiveName(std::move(archive)),
      folderName(std::move(folder)),
      sink(members),
      problems(found) {}

void archive_reader::refuse(std::string_view what, std::string_view cure) {
    problems.add(archiveName, what, cure);
    part = part_t::nothing;
}

void archive_reader::take(std::string_view bytes) {
    while (!bytes.empty() && part != part_t::nothing) {
        const bool isCounted = part == part_t::content || part == part_t::padding;
        const std::size_t size = static_cast<std::size_t>(
            std::min<std::uint64_t>(bytes.size(), isCounted ? left : blockSize - block.size()));
        takeBlock(bytes.substr(0, size));
        bytes.remove_prefix(size);
    }
}

void archive_reader::takeBlock(std::string_view bytes) {
    if (part == part_t::content) {
        if (problems.empty()) {
            sink.take(bytes);
        }
        left -= bytes.size();
        if (left == 0) {
            left = padding;
            part = padding == 0 ? part_t::header : part_t::padding;
        }
        return;
    }
    if (part == part_t::padding) {
        left -= bytes.size();
        if (!isZeros(bytes)) {
            refuse("holds something between two members", "do not use it");
        } else if (left == 0) {
            part = part_t::header;
        }
        return;
    }
    block += bytes;
    if (block.size() == blockSize) {
        takeHeader();
        block.clear();
    }
}

void archive_reader::takeHeader() {
    if (isZeros(block)) {
        if (count == 0) {
            return refuse("holds nothing", fetchAgain);
        }
        part = part == part_t::header ? part_t::firstEnd : part_t::secondEnd;
        return;
    }
    if (part != part_t::header) {
        return refuse("goes on after its end", "do not use it");
    }
    const auto member = decodeHeader(block);
    if (!member) {
        if (isDamagedHeader(block)) {
            return refuse("is no tar archive, or a damaged one", fetchAgain);
        }
        if (namesOtherOwner(block)) {
            return refuse("gives files to others than root",
                          "make it with varnmenu-package create, or with --owner=0 --group=0 "
                          "--numeric-owner of GNU tar");
        }
        return refuse("holds more than plain headers",
                      "make it with varnmenu-package create, or with --format=ustar of GNU tar");
    }
    if (++count > mostMembers) {
        return refuse("holds more than 1000 members", "leave some out");
    }
    checkName(*member);
    checkPlace(*member);
    checkMode(*member);
    if (problems.empty()) {
        sink.begin(*member);
    }
    left = member->size;
    padding = (blockSize - left % blockSize) % blockSize;
    part = left == 0 ? part_t::header : part_t::content;
}

void archive_reader::checkName(const member_t& member) {
    if (!isPlainPath(member.name)) {
        problems.add(member.name, "is no plain name",
                     "rename it: letters, digits and ._+- alone, no dot or dash first");
    }
    if (!names.insert(lowerCase(member.name)).second) {
        problems.add(member.name, "is in the archive more than once",
                     "leave one of them out; capitals make no other name");
    }
    if (member.isDirectory && member.size != 0) {
        problems.add(member.name, "is a directory with content", "do not use the archive");
    }
}

void archive_reader::checkPlace(const member_t& member) {
    const std::size_t slash = member.name.rfind('/');
    if (slash != std::string::npos) {
        if (!directories.contains(member.name.substr(0, slash))) {
            problems.add(member.name, "lies in no directory of the archive",
                         "archive one directory as a whole");
        }
    } else if (count > 1 || !member.isDirectory) {
        problems.add(member.name, "lies in no directory of the archive",
                     "archive one directory as a whole");
    } else if (member.name != folderName) {
        problems.add(archiveName, "holds the directory " + printable(member.name),
                     "name the archive " + printable(member.name) + ".tar");
    }
    if (member.isDirectory) {
        directories.insert(member.name);
    }
}

void archive_reader::checkMode(const member_t& member) {
    const unsigned needed = member.isDirectory ? S_IRWXU : S_IRUSR;
    if ((member.mode & ~allModes) != 0) {
        problems.add(member.name, "has a set-ID or a sticky bit", "chmod ug-s,-t it");
    } else if ((member.mode & othersWrite) != 0) {
        problems.add(member.name, "can be written by others", "chmod go-w it");
    } else if ((member.mode & needed) != needed) {
        problems.add(member.name, "is closed to its owner", "chmod u+rwX it");
    }
}

void archive_reader::end() {
    if (part == part_t::nothing) {
        return;
    }
    if (part != part_t::secondEnd || !block.empty()) {
        return refuse("is cut off", fetchAgain);
    }
    if (problems.empty()) {
        sink.end();
    }
}
