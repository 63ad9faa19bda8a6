#include "package/ustar_header.hpp"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <stdexcept>
#include <string>

namespace {

struct field_t {
    std::size_t offset;
    std::size_t size;
};

constexpr field_t nameField{0, 100};
constexpr field_t modeField{100, 8};
constexpr field_t ownerField{108, 8};
constexpr field_t groupField{116, 8};
constexpr field_t sizeField{124, 12};
constexpr field_t timeField{136, 12};
constexpr field_t sumField{148, 8};
constexpr field_t typeField{156, 1};
constexpr field_t magicField{257, 8};
constexpr field_t ownerNameField{265, 32};
constexpr field_t groupNameField{297, 32};
constexpr field_t majorField{329, 8};
constexpr field_t minorField{337, 8};
constexpr field_t prefixField{345, 155};

constexpr std::string_view magic("ustar\00000", magicField.size);
constexpr std::string_view root = "root";
constexpr char directoryType = '5';
constexpr char fileType = '0';
constexpr std::uint64_t octal = 8;

std::string_view part(std::string_view header, field_t field) {
    return header.substr(field.offset, field.size);
}

/// @return what comes before the first NUL
std::string text(std::string_view header, const field_t& field) {
    const std::string_view bytes = part(header, field);
    return std::string(bytes.substr(0, bytes.find('\0')));
}

/// @return the octal digits at the start, no more than putNumber makes
std::uint64_t number(std::string_view header, const field_t& field) {
    std::uint64_t value = 0;
    for (const char digit : part(header, {field.offset, field.size - 1})) {
        if (digit < '0' || digit > '7') {
            break;
        }
        value = value * octal + static_cast<std::uint64_t>(digit - '0');
    }
    return value;
}

void put(ustar_header_t& header, const field_t& field, std::string_view bytes) {
    std::ranges::copy(bytes, header.begin() + static_cast<std::ptrdiff_t>(field.offset));
}

/// Digits that fill the field, and a NUL.
void putNumber(ustar_header_t& header, const field_t& field, std::uint64_t value) {
    std::string digits(field.size - 1, '0');
    for (std::size_t at = digits.size(); at > 0; --at) {
        digits[at - 1] = static_cast<char>('0' + value % octal);
        value /= octal;
    }
    if (value != 0) {
        throw std::invalid_argument("too large for the header of an archive");
    }
    put(header, field, digits);
}

/// @return the sum of all bytes, the checksum's own counted as blanks
unsigned sumOf(std::string_view header) {
    const std::string blank(sumField.size, ' ');
    const auto sum = [](unsigned total, char byte) {
        return total + static_cast<unsigned char>(byte);
    };
    const std::string_view own = part(header, sumField);
    return std::accumulate(header.begin(), header.end(), 0U, sum) -
           std::accumulate(own.begin(), own.end(), 0U, sum) +
           std::accumulate(blank.begin(), blank.end(), 0U, sum);
}

/// Six digits, a NUL and a blank: so POSIX has it.
void putSum(ustar_header_t& header) {
    std::array<char, sumField.size> digits{};
    std::snprintf(digits.data(), digits.size(), "%06o", sumOf({header.data(), header.size()}));
    digits.back() = ' ';
    put(header, sumField, {digits.data(), digits.size()});
}

std::string pathOf(const member_t& member) {
    return member.isDirectory ? member.name + "/" : member.name;
}

/// @return how long the prefix of a path is, 0 where it needs none: up to the last slash that has
/// something after it
std::size_t prefixLength(const std::string& path) {
    if (path.size() <= nameField.size) {
        return 0;
    }
    const std::size_t slash = path.rfind('/', path.size() - 2);
    return slash == std::string::npos ? 0 : slash;
}

void putPath(ustar_header_t& header, const member_t& member) {
    if (!fitsHeader(member)) {
        throw std::invalid_argument("too long a name for the header of an archive");
    }
    const std::string path = pathOf(member);
    const std::size_t length = prefixLength(path);
    put(header, prefixField, path.substr(0, length));
    put(header, nameField, path.substr(length == 0 ? 0 : length + 1));
}

}  // namespace

bool fitsHeader(const member_t& member) {
    const std::string path = pathOf(member);
    const std::size_t length = prefixLength(path);
    return length <= prefixField.size &&
           path.size() - (length == 0 ? 0 : length + 1) <= nameField.size;
}

ustar_header_t encodeHeader(const member_t& member, const ustar_spelling_t& spelling) {
    ustar_header_t header{};
    putPath(header, member);
    putNumber(header, modeField, member.mode);
    putNumber(header, ownerField, 0);
    putNumber(header, groupField, 0);
    putNumber(header, sizeField, member.size);
    putNumber(header, timeField, member.time);
    header[typeField.offset] = member.isDirectory ? directoryType : fileType;
    put(header, magicField, magic);
    if (spelling.namesRoot) {
        put(header, ownerNameField, root);
        put(header, groupNameField, root);
    }
    if (spelling.numbersDevice) {
        putNumber(header, majorField, 0);
        putNumber(header, minorField, 0);
    }
    putSum(header);
    return header;
}

std::optional<member_t> decodeHeader(std::string_view header) {
    member_t member;
    const std::string prefix = text(header, prefixField);
    member.name = (prefix.empty() ? "" : prefix + "/") + text(header, nameField);
    member.isDirectory = header[typeField.offset] == directoryType;
    if (member.isDirectory && member.name.ends_with('/')) {
        member.name.pop_back();
    }
    member.mode = static_cast<unsigned>(number(header, modeField));
    member.size = number(header, sizeField);
    member.time = number(header, timeField);
    if (!fitsHeader(member)) {
        return std::nullopt;
    }
    const ustar_spelling_t spelling{text(header, ownerNameField) == root,
                                    part(header, majorField).front() != '\0'};
    const ustar_header_t same = encodeHeader(member, spelling);
    return std::ranges::equal(header, same) ? std::optional(member) : std::nullopt;
}

bool isDamagedHeader(std::string_view header) {
    return !part(header, magicField).starts_with("ustar") ||
           number(header, sumField) != sumOf(header);
}

bool namesOtherOwner(std::string_view header) {
    ustar_header_t changed{};
    std::ranges::copy(header, changed.begin());
    for (const field_t& field : {ownerNameField, groupNameField}) {
        put(changed, field, std::string(field.size, '\0'));
    }
    putNumber(changed, ownerField, 0);
    putNumber(changed, groupField, 0);
    putSum(changed);
    return decodeHeader({changed.data(), changed.size()}).has_value();
}
