#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>

#include "package/command_line.hpp"
#include "package/commands.hpp"
#include "package/interruption.hpp"

namespace {

constexpr int failed = 1;
constexpr int wrongCommandLine = 2;

/// No file that is written is to get the number of a standard stream that was closed.
void openStandardStreams() {
    while (open("/dev/null", O_RDWR | O_CLOEXEC) <= STDERR_FILENO) {
    }
}

int run(int count, char** words) {
    const interruption untilAllIsRemoved;
    try {
        return runCommandLine(parseCommandLine(count, words));
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr,
                     "varnmenu-package: %s\nvarnmenu-package: see varnmenu-package --help\n",
                     error.what());
        return wrongCommandLine;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "varnmenu-package: %s\n", error.what());
    } catch (const interrupted&) {
        // The signal takes its effect at the end of this function.
    }
    return failed;
}

}  // namespace

int main(int count, char** words) {
    openStandardStreams();
    return run(count, words);
}
