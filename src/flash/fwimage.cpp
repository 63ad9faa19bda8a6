#include "flash/fwimage.hpp"

#include <stdexcept>

const std::string fwimage::imageDirectory = "../";

fwimage::fwimage() : imagePath(imageDirectory + getInfo(release_image)) {
    if (!fileExists(imagePath)) {
        throw std::invalid_argument("Firmware file not found: " + fileName(imagePath));
    }
}
