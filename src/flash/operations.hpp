#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// The operations of the flash core program.
enum flash_op_t : std::int32_t { op_inactive, op_force_1st, op_force_2nd, op_emergency, op_reboot };

inline constexpr std::string_view coreFileName = "varnflash";
inline constexpr std::string_view coreDirectory = "./";
inline constexpr std::string_view coreDebugArgument = "/logDebug";
inline constexpr std::string_view imageFolder = "../";  ///< as seen from the core program

/// An operation that writes the image.
struct image_operation_t {
    flash_op_t id;
    std::string_view message;
    std::string_view argument;  ///< of the core program
};

inline constexpr std::array imageOperations{
    image_operation_t{op_inactive, "Starting validation of inactive image", "/i"},
    image_operation_t{op_force_1st, "Preparing forced flash of 1st image", "/f1"},
    image_operation_t{op_force_2nd, "Preparing forced flash of 2nd image", "/f2"},
    image_operation_t{op_emergency, "Preparing emergency flash", "/emerg"},
};

/// @param imagePath as seen from the core program
/// @return the command line of the operation; blanks separate its words
inline std::string imageCommand(const std::string& imagePath, std::string_view argument) {
    std::string command;
    for (const std::string_view part :
         {coreDirectory, coreFileName, std::string_view(" "), std::string_view(imagePath),
          std::string_view(" "), argument, std::string_view(" "), coreDebugArgument}) {
        command += part;
    }
    return command;
}
