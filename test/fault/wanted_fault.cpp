#include "fault/wanted_fault.hpp"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" char* __real_getenv(const char* name);

namespace {

struct fault_t {
    char call[64] = "";
    int first = 0;
    int last = 0;
    int error = 0;
    int seen = 0;
};

int errorNumber(const char* name) {
    static constexpr struct {
        const char* name;
        int number;
    } errors[] = {{"EIO", EIO},
                  {"EINTR", EINTR},
                  {"EBADF", EBADF},
                  {"EMFILE", EMFILE},
                  {"EPERM", EPERM},
                  {"ENOENT", ENOENT},
                  {"EACCES", EACCES},
                  {"ENOMEM", ENOMEM},
                  {"ECHILD", ECHILD},
                  {"short", shortCount},
                  {"eof", endOfFile},
                  {"out-of-range", throwOutOfRange},
                  {"integer", throwInteger},
                  {"stopped", stopped},
                  {"window", windowSignal},
                  {"continue", continueSignal},
                  {"held", held}};
    for (const auto& error : errors) {
        if (std::strcmp(error.name, name) == 0) {
            return error.number;
        }
    }
    std::abort();
}

fault_t& fault() {
    static fault_t wanted = [] {
        fault_t read;
        char error[24] = "";
        const char* text = __real_getenv("FAULT");
        if (text != nullptr && std::sscanf(text, "%63[^:]:%d:%d:%23s", read.call, &read.first,
                                           &read.last, error) == 4) {
            read.error = errorNumber(error);
        }
        return read;
    }();
    return wanted;
}

}  // namespace

int errorOf(const char* call) {
    fault_t& wanted = fault();
    if (std::strcmp(wanted.call, call) != 0) {
        return 0;
    }
    ++wanted.seen;
    if (wanted.seen < wanted.first || wanted.seen > wanted.last) {
        return 0;
    }
    const char* log = __real_getenv("FAULT_LOG");
    if (log != nullptr) {
        syscall(SYS_close,
                syscall(SYS_openat, AT_FDCWD, log, O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    }
    errno = wanted.error;
    return wanted.error;
}

bool isMoreToFail() { return fault().seen < fault().last; }
