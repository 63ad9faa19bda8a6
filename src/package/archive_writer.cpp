#include "package/archive_writer.hpp"

#include <string>

#include "package/ustar_header.hpp"

namespace {

constexpr std::uint64_t recordSize = 20 * blockSize;
constexpr std::size_t endSize = 2 * blockSize;

}  // namespace

void archive_writer::write(std::string_view bytes) {
    output(bytes);
    written += bytes.size();
}

void archive_writer::padTo(std::uint64_t unit) {
    const std::uint64_t surplus = written % unit;
    if (surplus != 0) {
        write(std::string(unit - surplus, '\0'));
    }
}

void archive_writer::begin(const member_t& member) {
    padTo(blockSize);
    const ustar_header_t header = encodeHeader(member);
    write({header.data(), header.size()});
}

void archive_writer::take(std::string_view bytes) { write(bytes); }

void archive_writer::end() {
    padTo(blockSize);
    write(std::string(endSize, '\0'));
    padTo(recordSize);
}
