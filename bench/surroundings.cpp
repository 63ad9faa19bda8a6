#include "surroundings.hpp"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

surroundings::surroundings(std::int64_t releaseLines) : terminal(25, 80) {
    std::string text = "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV 1000\nIMAGE_NAME=fw.bin\n";
    for (std::int64_t line = 0; line < releaseLines; ++line) {
        text += "NOTE_" + std::to_string(line) + "=what this release changes\n";
    }
    package.write("releasefile-information.txt", text);
    package.write("fw.bin", "image\n");
    std::filesystem::create_symlink("/bin/true", "varnflash");
    setenv("TERM", "linux", 1);
    dup2(terminal.slave(), STDIN_FILENO);
}
