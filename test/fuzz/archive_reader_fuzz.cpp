// The input is an archive in pieces. What the reader takes, the writer has to write again.

#include <algorithm>
#include <cstdint>

#include "fuzz/require_same.hpp"
#include "package/archive_reader.hpp"
#include "package/archive_writer.hpp"

namespace {

/// Writes the archive anew, and so into one that has one spelling less.
std::string rewritten(std::string_view archive, std::size_t piece, findings& found) {
    std::string written;
    archive_writer writer([&](std::string_view bytes) { written += bytes; });
    archive_reader reader("varn.tar", "varn", writer, found);
    for (; !archive.empty(); archive.remove_prefix(std::min(piece, archive.size()))) {
        reader.take(archive.substr(0, piece));
    }
    reader.end();
    return written;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    findings found;
    const std::string archive(data + 1, data + size);
    const std::string once = rewritten(archive, *data + std::size_t{1}, found);
    if (found.empty()) {
        findings none;
        requireSame(once, rewritten(once, archive.size() + 1, none));
        requireSame(true, none.empty());
    }
    return 0;
}
