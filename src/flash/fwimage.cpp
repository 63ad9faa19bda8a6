#include "flash/fwimage.hpp"

#include <stdexcept>

#include "flash/operations.hpp"

const std::string fwimage::imageDirectory(imageFolder);

fwimage::fwimage() : imagePath(imageDirectory + getInfo(release_image)) {
    if (!fileExists(imagePath)) {
        throw std::invalid_argument("Firmware file not found: " + fileName(imagePath));
    }
}
