#include "fuzz/fuzz_package.hpp"

#include <stdlib.h>

#include <fstream>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

fuzz_package::fuzz_package() {
    std::string name = (fs::temp_directory_path() / "varnmenu-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    folder = name;
    fs::create_directory(folder / "tool");
    fs::current_path(folder / "tool");
    setenv("TERM", "xterm", 1);
}

fuzz_package::~fuzz_package() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

void fuzz_package::write(const std::string& name, const std::string& text) const {
    std::ofstream(folder / name, std::ios::binary) << text;
}
