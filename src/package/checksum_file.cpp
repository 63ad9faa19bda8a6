#include "package/checksum_file.hpp"

#include <algorithm>

#include "package/printable.hpp"

namespace {

constexpr std::size_t digitCount = 64;
constexpr std::string_view lowerCaseDigits = "0123456789abcdef";
constexpr std::string_view allDigits = "0123456789abcdefABCDEF";
constexpr std::string_view writeAgain = "write it with sha256sum";

}  // namespace

void checkChecksum(const std::string& path, std::string_view text, const std::string& archive,
                   const std::string& digits, findings& found) {
    const std::string name = archive.substr(archive.rfind('/') + 1);
    const std::string_view given = text.substr(0, digitCount);
    const std::string_view rest = text.substr(given.size());
    if (text.find('\r') != std::string_view::npos) {
        found.add(path, "has lines that end in CR LF", "end them as UNIX does");
    } else if (text.starts_with("SHA256 (")) {
        found.add(path, "is in the style of BSD", writeAgain);
    } else if (given.size() < digitCount ||
               given.find_first_not_of(allDigits) != std::string_view::npos) {
        found.add(path, "holds no SHA-256 checksum", writeAgain);
    } else if (given.find_first_not_of(lowerCaseDigits) != std::string_view::npos) {
        found.add(path, "is in upper case", writeAgain);
    } else if (rest != "  " + name + "\n" && rest != " *" + name + "\n") {
        found.add(path, "is not for " + printable(name) + " alone",
                  "write it with sha256sum in the folder of the archive");
    } else if (given != digits) {
        found.add(archive, "does not match the checksum in " + printable(path), "fetch both again");
    }
}
