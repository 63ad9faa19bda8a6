#include "package/descriptor.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <vector>

#include "package/interruption.hpp"
#include "package/printable.hpp"
#include "package/system_call.hpp"

namespace {

constexpr std::size_t pieceSize = std::size_t{256} * 1024;

}  // namespace

descriptor::descriptor(int opened, std::string_view doing, std::string_view named)
    : number(checked(opened, doing, named)), name(named) {}

descriptor::~descriptor() {
    if (number >= 0) {
        close(number);
    }
}

void descriptor::write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const auto count =
            checked(::write(number, bytes.data(), bytes.size()), "cannot write", name);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::size_t descriptor::readSome(char* bytes, std::size_t most) const {
    return static_cast<std::size_t>(checked(::read(number, bytes, most), "cannot read", name));
}

std::string descriptor::read(std::size_t most) const {
    std::string bytes(most, '\0');
    std::size_t size = 0;
    for (std::size_t count = 1; count > 0 && size < most; size += count) {
        count = readSome(bytes.data() + size, most - size);
    }
    bytes.resize(size);
    return bytes;
}

void descriptor::readPieces(const std::function<void(std::string_view)>& take) const {
    std::vector<char> piece(pieceSize);
    while (const std::size_t count = readSome(piece.data(), piece.size())) {
        throwIfInterrupted();
        take({piece.data(), count});
    }
    throwIfInterrupted();
}

void descriptor::sync() {
    checked(fsync(number), "cannot write", name);
    checked(close(std::exchange(number, -1)), "cannot write", name);
}

descriptor openRegularFile(const std::string& path) {
    // Without waiting for a writer, where it turns out to be a named pipe.
    descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK), "cannot open", path);
    struct stat status {};
    checked(fstat(file.get(), &status), "cannot read", path);
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error(printable(path) + " is not a regular file");
    }
    return file;
}
