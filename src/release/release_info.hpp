#pragma once

#include <string>

#include "release/release_lines.hpp"
#include "support/support.hpp"

/// The release information of the firmware package, read once from a file of "KEY=value" lines in
/// the directory above the working directory.
class release_info : public virtual support {
public:
    static const std::string releaseFilePath;

    /// Of several lines with a key the first one counts.
    /// @throws std::invalid_argument when the file is missing or lacks one of the four values, when
    /// a line follows an empty value, or when one begins with the value of an earlier line
    release_info();

    /// @param id one of release_id_t
    /// @throws std::invalid_argument for any other id
    const std::string& getInfo(int id) const;

    static bool infoFileExists();

private:
    /// Reads the file into the store.
    /// @return how many lines matched an entry; 0 for a file that cannot be read, for one with a
    /// line that begins with an earlier value, and for one with a line after an empty value
    int readInfoFile();

    release_store_t store;
};
