#pragma once

#include <filesystem>
#include <string>

/// A folder for a firmware package, with an empty tool folder that is made the working directory.
/// Lies where TMPDIR says, which is best in memory; removed again at the end of the process.
class fuzz_package {
public:
    fuzz_package();
    ~fuzz_package();

    fuzz_package(const fuzz_package&) = delete;
    fuzz_package& operator=(const fuzz_package&) = delete;

    void write(const std::string& name, const std::string& text) const;

private:
    std::filesystem::path folder;
};
