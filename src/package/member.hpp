#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// A file or directory of an archive.
struct member_t {
    std::string name;  ///< parts with a slash between two of them
    bool isDirectory = false;
    unsigned mode = 0;       ///< permissions, as for chmod(2)
    std::uint64_t size = 0;  ///< in bytes; 0 for a directory
    std::uint64_t time = 0;  ///< seconds since 1970-01-01 00:00 UTC

    bool operator==(const member_t&) const = default;
};

/// Where the members of an archive go, one after the other.
class member_sink {
public:
    virtual ~member_sink() = default;

    /// The next member begins, and the one before it is complete.
    virtual void begin(const member_t& member) = 0;

    /// More of its content; never an empty piece.
    virtual void take(std::string_view bytes) = 0;

    /// There are no more members.
    virtual void end() = 0;
};
