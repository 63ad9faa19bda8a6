#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What a stand-in saw when it was run.
struct run_record_t {
    pid_t process = 0;
    std::string name;
    std::vector<std::string> arguments;  ///< with the program word in front
    std::vector<std::string> environment;
    std::map<int, std::string> descriptors;  ///< number to access mode and path, "r /dev/null"
    std::set<int> ignoredSignals;
    std::set<int> blockedSignals;
    bool ended = false;  ///< it came to its own end
};

/// A firmware package in a temporary folder, removed again at the end: the layout of a real one,
/// and a folder of stand-ins that record how they are run. Every user can read it, wherever the
/// tests were built and whatever their umask and TMPDIR.
class package_folder {
public:
    /// Makes a complete package; its core program and all programs on its PATH are stand-ins.
    package_folder();
    ~package_folder();

    package_folder(const package_folder&) = delete;
    package_folder& operator=(const package_folder&) = delete;

    std::filesystem::path root() const { return folder; }
    std::filesystem::path tool() const { return folder / "tool"; }
    std::filesystem::path programs() const { return folder / "programs"; }

    void write(const std::string& name, const std::string& text) const;
    void remove(const std::string& name) const;

    /// Copies a program or a script into the package, as other users may not get at its own place.
    /// @return the path of the copy, which every user can run
    std::filesystem::path copyForEveryone(const std::filesystem::path& program) const;

    /// @param program a stand-in's name, or "varnflash"
    /// @param steps what it does, a line each, see stand_in.cpp
    void let(const std::string& program, const std::string& steps) const;

    /// Lets a stand-in print "at work", wait for letGo() and print "work done".
    void hold(const std::string& program) const;
    void letGo() const;

    /// @return the runs of all stand-ins so far, in order
    std::vector<run_record_t> runs() const;

    /// @return the runs as command lines, "less ../readme.txt"
    std::vector<std::string> commandLines() const;

private:
    std::filesystem::path folder;
};

/// @return all bytes of a file, none where there is no file
std::string contentOf(const std::filesystem::path& path);

/// The release information of a package_folder.
std::string properReleaseInformation();
