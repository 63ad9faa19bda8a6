#include "package/tar_writer.hpp"

#include <cstdio>
#include <numeric>

namespace {

constexpr std::size_t blockSize = 512;

std::string octal(std::size_t number, std::size_t width) {
    std::string text(width + 1, '\0');
    std::snprintf(text.data(), text.size(), "%0*zo", static_cast<int>(width), number);
    text.resize(width);
    return text;
}

// The offsets are those of the "ustar" header, see tar(5).
std::string tarText(const tar_member_t& member) {
    std::string header(blockSize, '\0');
    const auto put = [&header](std::size_t offset, const std::string& text) {
        header.replace(offset, text.size(), text);
    };
    put(0, member.name);
    put(100, octal(member.mode, 7));
    put(108, octal(member.owner, 7));
    put(116, octal(0, 7));
    put(124, member.size.empty() ? octal(member.content.size(), 11) : member.size);
    put(136, member.time);
    put(148, std::string(8, ' '));
    put(156, std::string(1, member.type));
    put(157, member.link);
    put(257, std::string("ustar\0"
                         "00",
                         8));
    put(265, member.ownerName);
    const auto sum = [](std::size_t all, char byte) {
        return all + static_cast<unsigned char>(byte);
    };
    put(148, octal(std::accumulate(header.begin(), header.end(), std::size_t{0}, sum), 6) + '\0');
    const std::size_t blocks = (member.content.size() + blockSize - 1) / blockSize;
    std::string content = member.content;
    content.resize(blocks * blockSize);
    return header + content;
}

}  // namespace

std::string tarOf(const std::vector<tar_member_t>& members) {
    std::string text;
    for (const tar_member_t& member : members) {
        text += tarText(member);
    }
    return text;
}

std::string zeroBlocks(int count) {
    return std::string(blockSize * static_cast<std::size_t>(count), '\0');
}
