#include "package/release_rules.hpp"

#include <algorithm>
#include <vector>

#include "flash/operations.hpp"
#include "package/package_rules.hpp"
#include "package/printable.hpp"
#include "support/longest_command.hpp"

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view file = releaseFileName;

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.push_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

/// The key without its "=".
std::string nameOf(std::string_view key) { return std::string(key.substr(0, key.size() - 1)); }

/// Finds what is odd about a value that varnmenu would take.
void checkValue(const std::string& name, std::string_view value, findings& found) {
    std::string text(value);
    if (std::erase(text, '\r') != 0) {
        found.add(file, name + " holds a carriage return", "end the lines as UNIX does");
    }
    // The usual way to write a value; the tool drops them.
    if (text.size() > 1 && text.starts_with('"') && text.ends_with('"')) {
        text = text.substr(1, text.size() - 2);
    }
    if (text.empty()) {
        found.add(file, name + " is empty", "write its value after the \"=\"");
        return;
    }
    if (text.find('"') != std::string_view::npos) {
        found.add(file, name + " holds a quote", "remove it: the tool would drop it");
    }
    if (!isPrintable(text)) {
        found.add(file, name + " holds a character other than printable ASCII", "remove it");
    }
    if (text.find("$<") != std::string_view::npos) {
        found.add(file, name + " holds \"$<\"", "remove it: varnmenu would make a pause of it");
    }
}

/// @return true when there is a value
bool checkKey(const std::vector<std::string_view>& lines, std::string_view key, findings& found) {
    const std::string name = nameOf(key);
    const auto givesIt = [key](std::string_view line) { return line.starts_with(key); };
    const auto first = std::ranges::find_if(lines, givesIt);
    if (first == lines.end()) {
        const std::string marked = std::string(byteOrderMark) + std::string(key);
        const bool isMarked = !lines.empty() && lines.front().starts_with(marked);
        if (isMarked) {
            found.add(file, "begins with a byte order mark",
                      "write it as plain ASCII text: the tool would not see " + name);
        } else {
            found.add(file, name + " is missing", "add a line that begins with " + name + "=");
        }
        return false;
    }
    const auto count = std::ranges::count_if(lines, givesIt);
    if (count > 1) {
        found.add(file, name + " is given " + std::to_string(count) + " times",
                  "keep one of the lines");
    }
    checkValue(name, first->substr(key.size()), found);
    return true;
}

/// As varnmenu reads the file.
/// @return the name of the image, or nothing when varnmenu would refuse the file
std::string readImageName(const std::vector<std::string_view>& lines, findings& found) {
    release_store_t values = releaseStore();
    release_lines reader(values);
    if (std::ranges::all_of(lines, [&](std::string_view line) { return reader.take(line); })) {
        return values.at(release_image);
    }
    const auto* const taker = std::ranges::find(releaseKeys, reader.taker(), &release_key_t::id);
    found.add(file, "the value of " + nameOf(taker->key) + " begins another line",
              "change the value, or put its line below the other one");
    return "";
}

bool isTaken(std::string_view image) {
    return image == releaseFileName ||
           std::ranges::any_of(packageDocuments, [&](const document_t& document) {
               return document.fileName == image;
           });
}

/// @return by how many characters the longest command line is too long
std::size_t surplus(const std::string& image) {
    std::size_t longest = 0;
    for (const image_operation_t& operation : imageOperations) {
        const std::string path = std::string(imageFolder) + image;
        longest = std::max(longest, imageCommand(path, operation.argument).size());
    }
    return longest > longestCommand ? longest - longestCommand : 0;
}

bool checkImageName(const std::string& image, findings& found) {
    const std::size_t tooMany = surplus(image);
    if (image.find(' ') != std::string::npos) {
        found.add(file, "IMAGE_NAME holds a blank",
                  "rename the image: the core program would be given two names");
    } else if (image.find('/') != std::string::npos) {
        found.add(file, "IMAGE_NAME holds a slash",
                  "put the image beside this file, and write its bare name");
    } else if (tooMany > 0) {
        found.add(file, "IMAGE_NAME is too long",
                  "shorten it by " + std::to_string(tooMany) +
                      ": the tool could not run the core program");
    } else if (!isPlainName(image)) {
        found.add(file, "IMAGE_NAME is no plain name",
                  "rename the image: at most 100 letters, digits and ._+-, no dot or dash first");
    } else if (isTaken(image)) {
        found.add(file, "IMAGE_NAME names another file of the package",
                  "write the name of the image");
    } else {
        return true;
    }
    return false;
}

}  // namespace

std::optional<std::string> checkReleaseText(std::string_view text, findings& found) {
    if (text.size() > largestReleaseFile) {
        found.add(file, "is larger than 65536 bytes", "put the right file there");
        return std::nullopt;
    }
    if (text.find('\0') != std::string_view::npos) {
        found.add(file, "holds a NUL byte", "write it as plain ASCII text");
        return std::nullopt;
    }
    const auto lines = linesOf(text);
    bool hasImage = false;
    for (const auto& [id, key] : releaseKeys) {
        const bool isGiven = checkKey(lines, key, found);
        hasImage = id == release_image ? isGiven : hasImage;
    }
    const std::string image = readImageName(lines, found);
    if (hasImage && !image.empty() && isPrintable(image) && checkImageName(image, found)) {
        return image;
    }
    return std::nullopt;
}
