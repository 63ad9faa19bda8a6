#include "package/package_contents.hpp"

#include <algorithm>

#include "package/package_rules.hpp"

std::size_t keptSize(std::string_view path) {
    const auto* const rule = std::ranges::find(requiredFiles, path, &required_file_t::path);
    return rule == requiredFiles.end() ? 0 : rule->kept;
}

void package_contents::begin(const member_t& member) {
    const std::size_t slash = member.name.find('/');
    path = slash == std::string::npos ? "" : member.name.substr(slash + 1);
    package_file_t& file = files[path];
    file.kind = member.isDirectory ? file_kind_t::directory : file_kind_t::regular;
    file.mode = member.mode;
    file.size = member.size;
}

void package_contents::take(std::string_view bytes) {
    std::string& start = files[path].start;
    start += bytes.substr(0, keptSize(path) - start.size());
}
