#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "package/member.hpp"

enum class file_kind_t { regular, directory, link, other };

/// What is known of a file of a package.
struct package_file_t {
    file_kind_t kind = file_kind_t::regular;
    unsigned mode = 0;  ///< permissions, as for chmod(2)
    std::uint64_t size = 0;
    bool isReadable = true;
    std::string start;  ///< its first bytes, as many as keptSize() says
};

/// The files of a package by their paths in it.
using package_files_t = std::map<std::string, package_file_t, std::less<>>;

/// @return how many bytes of a file the rules look at
std::size_t keptSize(std::string_view path);

/// The package in an archive.
class package_contents : public member_sink {
public:
    void begin(const member_t& member) override;
    void take(std::string_view bytes) override;
    void end() override {}

    package_files_t files;

private:
    std::string path;
};

/// @return the package in a directory; symbolic links in it are not followed
/// @throws std::runtime_error when the directory cannot be read
package_files_t filesBelow(const std::string& directory);
