#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

/// The ids of release_info::getInfo.
enum release_id_t : std::int32_t {
    release_firmware = 0,  ///< release of the controller firmware in the package
    release_sdr = 1,       ///< release of the sensor data records in the package
    release_system = 2,    ///< the server system that the package is meant for
    release_image = 3      ///< file name of the firmware image
};

/// How the line begins that gives a value.
struct release_key_t {
    release_id_t id;
    std::string_view key;  ///< with its "="
};

inline constexpr std::string_view releaseFileName = "releasefile-information.txt";

inline constexpr std::array releaseKeys{
    release_key_t{release_firmware, "VARN_RELEASE="},
    release_key_t{release_sdr, "SDR_RELEASE="},
    release_key_t{release_system, "SYSTEM="},
    release_key_t{release_image, "IMAGE_NAME="},
};

/// By id: at first the key that a line begins with, from the matching line on its value. Later
/// lines are compared with the value, so that a key's first line is the one that counts.
using release_store_t = std::unordered_map<std::int32_t, std::string>;

/// @return a store with the four keys
release_store_t releaseStore();

/// The rule by which the lines of a release file become values.
class release_lines {
public:
    /// @param values as releaseStore() makes it; has to outlive this object
    explicit release_lines(release_store_t& values) : store(values) {}

    /// Takes the next line, which comes without its line feed.
    /// @return false when the line makes the whole file improper: it begins with the value of an
    /// earlier line, or comes after an empty value
    bool take(std::string_view line);

    /// @return how many lines have given a value, all of them different ones
    std::size_t count() const { return matched.size(); }

    /// @return whose value the line that take() refused begins with
    release_id_t taker() const { return last; }

private:
    release_store_t& store;
    std::set<std::int32_t> matched;
    release_id_t last = release_firmware;
    bool isEmpty = false;
};
