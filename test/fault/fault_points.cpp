// Lets calls of the program fail. Linked into a static build of it with the linker's --wrap, so
// that the calls within the C library and terminfo are met as well. See wanted_fault.hpp for which.
//
// Child programs are not affected, because they get a different environment.

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "fault/wanted_fault.hpp"

extern "C" char* __real_getenv(const char* name);

namespace {

int releaseFile = -1;

}  // namespace

extern "C" {

int __real_main(int count, char** arguments);
int __wrap_main(int count, char** arguments) {
    return errorOf("main") != 0 ? __real_main(0, arguments + count) : __real_main(count, arguments);
}

int __real_getrlimit(int resource, rlimit* limit);
int __wrap_getrlimit(int resource, rlimit* limit) {
    return errorOf("getrlimit") != 0 ? -1 : __real_getrlimit(resource, limit);
}

int __real_fileno(std::FILE* file);
int __wrap_fileno(std::FILE* file) {
    return file == stdin && errorOf("fileno") != 0 ? -1 : __real_fileno(file);
}

int __real_tcgetattr(int descriptor, termios* attributes);
int __wrap_tcgetattr(int descriptor, termios* attributes) {
    return errorOf("tcgetattr") != 0 ? -1 : __real_tcgetattr(descriptor, attributes);
}

int __real_tcsetattr(int descriptor, int actions, const termios* attributes);

/// As a shell does that has had the terminal while the program was stopped.
static void setTheShellsMode() {
    termios attributes{};
    __real_tcgetattr(STDIN_FILENO, &attributes);
    attributes.c_lflag |= ICANON | ECHO | ISIG;
    __real_tcsetattr(STDIN_FILENO, TCSANOW, &attributes);
}

int __wrap_tcsetattr(int descriptor, int actions, const termios* attributes) {
    return errorOf("tcsetattr") != 0 ? -1 : __real_tcsetattr(descriptor, actions, attributes);
}

int __real_setupterm(const char* name, int descriptor, int* result);
int __wrap_setupterm(const char* name, int descriptor, int* result) {
    return errorOf("setupterm") != 0 ? -1 : __real_setupterm(name, descriptor, result);
}

char* __real_tigetstr(const char* name);
char* __wrap_tigetstr(const char* name) {
    return errorOf("tigetstr") != 0 ? nullptr : __real_tigetstr(name);
}

char* __real_tparm(const char* sequence, long, long, long, long, long, long, long, long, long);
char* __wrap_tparm(const char* sequence, long number, long, long, long, long, long, long, long,
                   long) {
    return errorOf("tparm") != 0 ? nullptr : __real_tparm(sequence, number, 0, 0, 0, 0, 0, 0, 0, 0);
}

int __real_putp(const char* sequence);
int __wrap_putp(const char* sequence) { return errorOf("putp") != 0 ? -1 : __real_putp(sequence); }

char* __real_getcwd(char* buffer, size_t size);
char* __wrap_getcwd(char* buffer, size_t size) {
    return errorOf("getcwd") != 0 ? nullptr : __real_getcwd(buffer, size);
}

char* __wrap_getenv(const char* name) {
    char call[32] = "getenv ";
    std::strncat(call, name, sizeof call - std::strlen(call) - 1);
    return errorOf(call) != 0 ? nullptr : __real_getenv(name);
}

int __real_access(const char* path, int mode);
int __wrap_access(const char* path, int mode) {
    // terminfo looks for its own files, too
    const bool isOurs = mode == F_OK;
    return isOurs && errorOf("access") != 0 ? -1 : __real_access(path, mode);
}

int __real_flock(int file, int operation);
int __wrap_flock(int file, int operation) {
    return errorOf("flock") != 0 ? -1 : __real_flock(file, operation);
}

int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, mode_t mode) {
    return errorOf("open") != 0 ? -1 : __real_open(path, flags, mode);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
    const bool isOurs = std::strcmp(mode, "re") == 0;  // terminfo opens its own files, too
    if (isOurs && errorOf("fopen") != 0) {
        return nullptr;
    }
    std::FILE* file = __real_fopen(path, mode);
    if (isOurs && file != nullptr) {
        releaseFile = fileno(file);
    }
    return file;
}

int __real_posix_spawn_file_actions_init(posix_spawn_file_actions_t* actions);
int __wrap_posix_spawn_file_actions_init(posix_spawn_file_actions_t* actions) {
    const int error = errorOf("posix_spawn_file_actions_init");
    return error != 0 ? error : __real_posix_spawn_file_actions_init(actions);
}

int __real_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const* arguments,
                        char* const* environment);
int __wrap_posix_spawnp(pid_t* child, const char* file, const posix_spawn_file_actions_t* actions,
                        const posix_spawnattr_t* attributes, char* const* arguments,
                        char* const* environment) {
    const int error = errorOf("posix_spawnp");
    return error != 0
               ? error
               : __real_posix_spawnp(child, file, actions, attributes, arguments, environment);
}

pid_t __real_waitpid(pid_t child, int* status, int options);
pid_t __wrap_waitpid(pid_t child, int* status, int options) {
    const int error = errorOf("waitpid");
    if (error == throwOutOfRange) {
        throw std::out_of_range("map::at");
    }
    if (error == throwInteger) {
        throw error;
    }
    if (error == stopped) {
        *status = W_STOPCODE(55);  // taken for an exit status, "no emergency flash"
        return child;
    }
    return error != 0 ? -1 : __real_waitpid(child, status, options);
}

int __real_epoll_create1(int flags);
int __wrap_epoll_create1(int flags) {
    return errorOf("epoll_create1") != 0 ? -1 : __real_epoll_create1(flags);
}

int __real_epoll_ctl(int instance, int operation, int descriptor, epoll_event* event);
int __wrap_epoll_ctl(int instance, int operation, int descriptor, epoll_event* event) {
    return errorOf("epoll_ctl") != 0 ? -1
                                     : __real_epoll_ctl(instance, operation, descriptor, event);
}

int __real_epoll_pwait(int instance, epoll_event* events, int most, int milliseconds,
                       const sigset_t* mask);
int __wrap_epoll_pwait(int instance, epoll_event* events, int most, int milliseconds,
                       const sigset_t* mask) {
    const int error = errorOf("epoll_pwait");
    if (error == windowSignal) {
        raise(SIGWINCH);
    } else if (error == continueSignal) {
        setTheShellsMode();
        raise(SIGCONT);
    } else if (error != 0) {
        return -1;
    }
    return __real_epoll_pwait(instance, events, most, milliseconds, mask);
}

int __real_tcdrain(int descriptor);
int __wrap_tcdrain(int descriptor) {
    const int error = errorOf("tcdrain");
    if (error == held && isMoreToFail()) {
        errno = EINTR;
        return -1;
    }
    if (error == held) {
        const int fifo = open(__real_getenv("FAULT_HOLD"), O_RDONLY | O_CLOEXEC);
        return fifo < 0 ? -1 : close(fifo);
    }
    return error != 0 ? -1 : __real_tcdrain(descriptor);
}

int __real_nanosleep(const timespec* interval, timespec* rest);
int __wrap_nanosleep(const timespec* interval, timespec* rest) {
    return errorOf("nanosleep") != 0 ? -1 : __real_nanosleep(interval, rest);
}

ssize_t __real___write(int descriptor, const void* bytes, size_t count);
ssize_t __wrap___write(int descriptor, const void* bytes, size_t count) {
    const int error = descriptor == STDOUT_FILENO ? errorOf("write") : 0;
    if (error == shortCount) {
        return __real___write(descriptor, bytes, 1);
    }
    return error != 0 ? -1 : __real___write(descriptor, bytes, count);
}

ssize_t __real___read(int descriptor, void* bytes, size_t count);
ssize_t __wrap___read(int descriptor, void* bytes, size_t count) {
    const int error = descriptor == STDIN_FILENO  ? errorOf("read terminal")
                      : descriptor == releaseFile ? errorOf("read file")
                                                  : 0;
    if (error == endOfFile) {
        return 0;
    }
    return error != 0 ? -1 : __real___read(descriptor, bytes, count);
}

}  // extern "C"
