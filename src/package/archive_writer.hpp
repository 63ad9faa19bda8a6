#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "package/member.hpp"

/// Writes the one archive that members of these contents make, byte by byte as GNU tar does with
/// --format=ustar, --owner=0, --group=0 and --numeric-owner.
class archive_writer : public member_sink {
public:
    /// @param write takes the bytes of the archive, in pieces
    explicit archive_writer(std::function<void(std::string_view)> write)
        : output(std::move(write)) {}

    /// @throws std::invalid_argument when the member does not fit, see encodeHeader
    void begin(const member_t& member) override;
    void take(std::string_view bytes) override;
    void end() override;

private:
    void write(std::string_view bytes);

    /// Adds zeros up to a multiple of so many bytes.
    void padTo(std::uint64_t unit);

    std::function<void(std::string_view)> output;
    std::uint64_t written = 0;
};
