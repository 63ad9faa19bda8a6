#include "package/system_call.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "package/printable.hpp"

void failCall(std::string_view doing, std::string_view path) {
    const std::string reason = std::strerror(errno);
    throw std::runtime_error(std::string(doing) + " " + printable(path) + ": " + reason);
}

void refuseExisting(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0) {
        throw std::runtime_error(printable(path) + " exists already");
    }
}
