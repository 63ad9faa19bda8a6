#include "package/findings.hpp"

#include "package/printable.hpp"

void findings::add(std::string_view where, std::string_view what, std::string_view cure) {
    lines.push_back(printable(where) + ": " + std::string(what) + "; " + std::string(cure));
}

void findings::append(const findings& others) {
    lines.insert(lines.end(), others.lines.begin(), others.lines.end());
}
