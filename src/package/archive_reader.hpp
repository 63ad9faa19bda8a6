#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "package/findings.hpp"
#include "package/member.hpp"

/// Reads an archive that comes in pieces, and takes only what every tar unpacks to the same files:
/// each header as encodeHeader makes it; first one directory of a given name, then plain files and
/// directories in it, each once; the padding and the end of zeros alone.
class archive_reader {
public:
    static constexpr std::size_t mostMembers = 1000;

    /// @param archive what findings about the whole archive name
    /// @param folder the name of the directory that all members lie in, a plain one
    /// @param members gets each member that nothing is wrong with, until there is a finding
    archive_reader(std::string archive, std::string folder, member_sink& members, findings& found);

    void take(std::string_view bytes);

    /// The archive has no more bytes.
    void end();

private:
    enum class part_t { header, content, padding, firstEnd, secondEnd, nothing };

    void takeBlock(std::string_view bytes);
    void takeHeader();
    void checkName(const member_t& member);
    void checkPlace(const member_t& member);
    void checkMode(const member_t& member);
    void refuse(std::string_view what, std::string_view cure);

    std::string archiveName;
    std::string folderName;
    member_sink& sink;
    findings& problems;

    part_t part = part_t::header;
    std::string block;       ///< of a header, so far
    std::uint64_t left = 0;  ///< of this content or padding
    std::uint64_t padding = 0;
    std::size_t count = 0;
    std::set<std::string> directories;
    std::set<std::string> names;  ///< in lower case
};
