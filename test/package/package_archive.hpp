#pragma once

#include <string>
#include <vector>

#include "package/package_test.hpp"
#include "package/tar_writer.hpp"

/// An archive "varn.tar" beside the package, which verify looks into in a folder of its own.
class package_archive_test : public package_create_test {
protected:
    package_archive_test();

    /// Writes it, and its checksum beside it.
    void writeArchive(const std::string& bytes) const;

    /// @return the members of an archive of the package that is there, which is a sound one
    std::vector<tar_member_t> soundMembers() const;

    std::filesystem::path archive() const { return out() / "varn.tar"; }

    /// Runs verify on the archive.
    outcome_t verify(const std::vector<std::string>& words = {}) const;

    /// Nothing is left of what was looked into.
    void expectNothingLeft() const;

private:
    std::filesystem::path temporary() const { return package.root() / "temporary"; }
};

/// @return the shells, each so that it runs the system's tar: one of them has its own
const std::vector<std::vector<std::string>>& shellsWithTar();

/// What is said of a sound archive when no signature is asked for.
constexpr const char* unsignedLine =
    "out/varn.tar: no signature was checked: anybody may have made it\n";
