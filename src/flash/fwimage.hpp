#pragma once

#include <string>

#include "release/release_info.hpp"

/// The firmware image that the release information names, in the directory above the working
/// directory.
class fwimage : public release_info {
public:
    static const std::string imageDirectory;

    /// @throws std::invalid_argument when there is nothing at the image's path, or as release_info
    fwimage();

protected:
    std::string imagePath;
};
