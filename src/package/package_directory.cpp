// filesBelow(): what a directory holds, each step from one that is open to what lies in it.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

#include "package/descriptor.hpp"
#include "package/interruption.hpp"
#include "package/package_contents.hpp"
#include "package/system_call.hpp"

namespace {

constexpr int withoutLinks = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr unsigned permissions = 07777;

using directory_t = std::unique_ptr<DIR, decltype([](DIR* open) { closedir(open); })>;

file_kind_t kindOf(mode_t mode) {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return file_kind_t::regular;
        case S_IFDIR:
            return file_kind_t::directory;
        case S_IFLNK:
            return file_kind_t::link;
        default:
            return file_kind_t::other;
    }
}

class directory_walk {
public:
    explicit directory_walk(std::string directory) : top(std::move(directory)) {}

    package_files_t files;

    void enter(int descriptor, const std::string& path) {
        const directory_t directory(fdopendir(descriptor));
        checked(directory ? 0 : -1, "cannot enter", top + "/" + path);
        while (const dirent* const entry = readdir(directory.get())) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..") {
                look(dirfd(directory.get()), name, path + name);
            }
        }
    }

private:
    void look(int parent, const std::string& name, const std::string& path) {
        throwIfInterrupted();
        struct stat status {};
        checked(fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW), "cannot look at",
                top + "/" + path);
        package_file_t& file = files[path];
        file.kind = kindOf(status.st_mode);
        file.mode = status.st_mode & permissions;
        file.size = static_cast<std::uint64_t>(status.st_size);
        if (file.kind != file_kind_t::regular && file.kind != file_kind_t::directory) {
            return;
        }
        const int opened = openat(parent, name.c_str(), withoutLinks);
        file.isReadable = opened >= 0;
        if (file.isReadable && file.kind == file_kind_t::directory) {
            enter(opened, path + "/");
        } else if (file.isReadable) {
            file.start = descriptor(opened, "", top + "/" + path).read(keptSize(path));
        }
    }

    std::string top;
};

}  // namespace

package_files_t filesBelow(const std::string& directory) {
    directory_walk walk(directory);
    const int opened = checked(open(directory.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY),
                               "cannot enter", directory);
    struct stat status {};
    checked(fstat(opened, &status), "cannot enter", directory);
    walk.files[""] = {file_kind_t::directory, status.st_mode & permissions, 0, true, ""};
    walk.enter(opened, "");
    return std::move(walk.files);
}
