#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "support/support.hpp"

/// The ids of release_info::getInfo.
enum release_id_t : std::int32_t {
    release_firmware = 0,  ///< release of the controller firmware in the package
    release_sdr = 1,       ///< release of the sensor data records in the package
    release_system = 2,    ///< the server system that the package is meant for
    release_image = 3      ///< file name of the firmware image
};

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

    /// By id: at first the key that a line begins with, from the matching line on its value. Later
    /// lines are compared with the value, so that a key's first line is the one that counts.
    std::unordered_map<std::int32_t, std::string> store;
};
