#pragma once

#include <string>

#include "package/descriptor.hpp"

/// A folder that nobody else can enter, beside what is made in it; removed with all that is still
/// in it at the end.
class private_folder {
public:
    /// @param parent an existing directory
    /// @param made the name of what is made, a plain one; the folder becomes ".MADE." and a random
    /// number
    /// @throws std::runtime_error when it cannot be made
    private_folder(const std::string& parent, const std::string& made);
    ~private_folder();

    private_folder(const private_folder&) = delete;
    private_folder& operator=(const private_folder&) = delete;

    int get() const { return inside.get(); }

    /// @return the path of something in it
    std::string pathOf(const std::string& file) const { return path + "/" + file; }

    /// @return a new file in it, which everybody may read, for writing
    /// @throws std::runtime_error when there is one of that name, or it cannot be made
    descriptor make(const std::string& file) const;

    /// Gives what is in it its place beside the folder, at once and on the disk.
    /// @throws std::runtime_error when something of that name is there, which stays
    void publish(const std::string& file) const;

    /// The reverse, for what has been published just now.
    void takeBack(const std::string& file) const;

private:
    std::string parentPath;
    std::string name;
    std::string path;
    descriptor outside;
    descriptor inside;
};
