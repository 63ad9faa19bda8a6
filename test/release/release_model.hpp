#pragma once

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "release/release_info.hpp"

/// The four values in the order of their ids or, alone, why there are none.
using release_outcome_t = std::vector<std::string>;

inline const release_outcome_t releaseRefused{
    "Info file has not all needed data or provided is not proper"};

/// @return what release_info makes of the file that is there
inline release_outcome_t releaseRead() {
    try {
        const release_info info;
        return {info.getInfo(release_firmware), info.getInfo(release_sdr),
                info.getInfo(release_system), info.getInfo(release_image)};
    } catch (const std::invalid_argument& error) {
        return {error.what()};
    }
}

inline std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t length = text.find('\n');
        lines.push_back(text.substr(0, length));
        text.remove_prefix(std::min(lines.back().size() + 1, text.size()));
    }
    return lines;
}

/// @return what a file with this text has to come to. Looks at the file as a whole, where
/// release_info goes through it once, so that they share no mistake.
inline release_outcome_t releaseExpected(std::string_view text) {
    constexpr std::array<std::string_view, 4> keys{
        "VARN_RELEASE=", "SDR_RELEASE=", "SYSTEM=", "IMAGE_NAME="};
    const auto lines = linesOf(text);
    std::array<std::size_t, keys.size()> home{};  // the line that gives the value
    release_outcome_t values;
    for (std::size_t id = 0; id < keys.size(); ++id) {
        const auto first = std::find_if(lines.begin(), lines.end(), [&](std::string_view line) {
            return line.starts_with(keys[id]);
        });
        if (first == lines.end()) {
            return releaseRefused;
        }
        home[id] = static_cast<std::size_t>(first - lines.begin());
        values.emplace_back(first->substr(keys[id].size()));
        std::erase_if(values.back(), [](char c) { return c == '"' || c == '\r' || c == '\n'; });
    }
    // A line that begins with a value would be taken for it, unless it gives the value of a key
    // with a higher id: that one comes first. After an empty value there is no such way out.
    for (std::size_t id = 0; id < keys.size(); ++id) {
        for (std::size_t line = home[id] + 1; line < lines.size(); ++line) {
            const bool isHigherHome = std::find(home.begin() + static_cast<std::ptrdiff_t>(id) + 1,
                                                home.end(), line) != home.end();
            if (lines[line].starts_with(values[id]) && (values[id].empty() || !isHigherHome)) {
                return releaseRefused;
            }
        }
    }
    return values;
}
