#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What is wrong, and how to mend it.
class findings {
public:
    /// Adds the line "where: what; cure".
    /// @param where the file; made printable here, as what and cure are to be already
    void add(std::string_view where, std::string_view what, std::string_view cure);

    void append(const findings& others);

    bool empty() const { return lines.empty(); }
    const std::vector<std::string>& list() const { return lines; }

private:
    std::vector<std::string> lines;
};
