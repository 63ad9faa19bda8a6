#include "release/release_info.hpp"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace {

const std::string releaseDirectory = "../";

/// A text file, line by line; see getline(3).
class line_reader {
public:
    explicit line_reader(const std::string& path) : file(std::fopen(path.c_str(), "re")) {}
    ~line_reader() {
        std::free(buffer);
        if (file != nullptr) {
            std::fclose(file);
        }
    }

    line_reader(const line_reader&) = delete;
    line_reader& operator=(const line_reader&) = delete;

    /// Moves to the next line, which then stands in `line` without its line feed.
    bool next() {
        const ssize_t length = file == nullptr ? -1 : getline(&buffer, &capacity, file);
        if (length < 0 || std::ferror(file) != 0) {
            return false;
        }
        line = std::string_view(buffer, static_cast<std::size_t>(length));
        if (line.ends_with('\n')) {
            line.remove_suffix(1);
        }
        return true;
    }

    std::string_view line;

private:
    std::FILE* file;
    char* buffer = nullptr;
    std::size_t capacity = 0;
};

}  // namespace

const std::string release_info::releaseFilePath = releaseDirectory + std::string(releaseFileName);

release_info::release_info() : store(releaseStore()) {
    if (!infoFileExists()) {
        throw std::invalid_argument("Info file is missing");
    }
    if (readInfoFile() != static_cast<int>(store.size())) {
        throw std::invalid_argument("Info file has not all needed data or provided is not proper");
    }
}

const std::string& release_info::getInfo(int id) const {
    const auto info = store.find(id);
    if (info == store.end()) {
        throw std::invalid_argument("Release info for given id not available");
    }
    return info->second;
}

bool release_info::infoFileExists() { return fileExists(releaseFilePath); }

int release_info::readInfoFile() {
    release_lines lines(store);
    line_reader file(releaseFilePath);
    while (file.next()) {
        if (!lines.take(file.line)) {
            return 0;
        }
    }
    return static_cast<int>(lines.count());
}
