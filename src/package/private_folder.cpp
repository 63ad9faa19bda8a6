#include "package/private_folder.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>

#include "package/system_call.hpp"

namespace {

constexpr mode_t everybodyReads = 0644;

std::string randomNumber() {
    std::uint32_t number = 0;
    checked(getrandom(&number, sizeof number, 0), "cannot get", "a random number");
    return std::to_string(number);
}

descriptor openFolder(int parent, const std::string& name, const std::string& path, int flags) {
    return {openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags),
            "cannot enter", path};
}

/// What cannot be removed has nobody to be told.
void removeFrom(int parent, const std::string& name) {
    const int opened =
        openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
    DIR* const directory = opened < 0 ? nullptr : fdopendir(opened);
    if (directory == nullptr) {
        unlinkat(parent, name.c_str(), 0);
        return;
    }
    while (const dirent* const entry = readdir(directory)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            removeFrom(opened, entry->d_name);
        }
    }
    closedir(directory);
    unlinkat(parent, name.c_str(), AT_REMOVEDIR);
}

}  // namespace

private_folder::private_folder(const std::string& parent, const std::string& made)
    : parentPath(parent),
      name("." + made + "." + randomNumber()),
      path(parentPath + "/" + name),
      outside(openFolder(AT_FDCWD, parent, parent, 0)) {
    checked(mkdirat(outside.get(), name.c_str(), S_IRWXU), "cannot make", path);
    inside = openFolder(outside.get(), name, path, O_NOFOLLOW);
    checked(fchmod(inside.get(), S_IRWXU), "cannot make", path);
}

private_folder::~private_folder() { removeFrom(outside.get(), name); }

descriptor private_folder::make(const std::string& file) const {
    descriptor made(openat(get(), file.c_str(),
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, everybodyReads),
                    "cannot make", pathOf(file));
    checked(fchmod(made.get(), everybodyReads), "cannot make", pathOf(file));
    return made;
}

void private_folder::publish(const std::string& file) const {
    checked(renameat2(get(), file.c_str(), outside.get(), file.c_str(), RENAME_NOREPLACE),
            "cannot make", parentPath + "/" + file);
    checked(fsync(outside.get()), "cannot write", parentPath);
}

void private_folder::takeBack(const std::string& file) const {
    renameat2(outside.get(), file.c_str(), get(), file.c_str(), RENAME_NOREPLACE);
}
