#include "package/unpacker.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>

#include "package/system_call.hpp"

namespace {

constexpr std::string_view cannotWrite = "cannot write";

}  // namespace

void unpacker::begin(const member_t& member) {
    finishFile();
    current = member;
    const char* const name = member.name.c_str();
    if (member.isDirectory) {
        checked(mkdirat(target, name, S_IRWXU), "cannot make", name);
        checked(fchmodat(target, name, member.mode, 0), cannotWrite, name);
        directories.push_back(member.name);
    } else {
        file = descriptor(openat(target, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 S_IRUSR | S_IWUSR),
                          "cannot make", name);
    }
}

void unpacker::take(std::string_view bytes) { file.write(bytes); }

void unpacker::finishFile() {
    if (file.get() >= 0) {
        const timespec time{static_cast<time_t>(current.time), 0};
        const std::array times{time, time};
        checked(fchmod(file.get(), current.mode), cannotWrite, current.name);
        checked(futimens(file.get(), times.data()), cannotWrite, current.name);
        file.sync();
    }
}

void unpacker::end() {
    finishFile();
    for (const std::string& name : directories) {
        descriptor(openat(target, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), "cannot enter",
                   name)
            .sync();
    }
}
