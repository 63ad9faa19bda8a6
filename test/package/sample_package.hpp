#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "package/findings.hpp"
#include "package/member.hpp"
#include "package/package_contents.hpp"

/// A member with what is in it.
struct sample_t {
    member_t member;
    std::string content;

    bool operator==(const sample_t&) const = default;
};

using samples_t = std::vector<sample_t>;

/// @return the members of a package that nothing is wrong with, in a folder "varn"
samples_t soundPackage();

/// @return the sample of this name in a sound package's list
sample_t& sampleOf(samples_t& samples, const std::string& name);

sample_t sampleFile(const std::string& name, const std::string& content, unsigned mode = 0644);
sample_t sampleFolder(const std::string& name, unsigned mode = 0755);

/// @return the archive, as archive_writer makes it
std::string archiveOf(const samples_t& samples);

/// @return the archive with a byte string put over what is at an offset in its first header, or in
/// the header of another block; the header's checksum is right again
std::string withHeader(std::string archive, std::size_t offset, const std::string& bytes,
                       std::size_t block = 0);

/// Collects what it gets.
class collecting_sink : public member_sink {
public:
    void begin(const member_t& member) override { samples.push_back({member, ""}); }
    void take(std::string_view bytes) override { samples.back().content += bytes; }
    void end() override { hasEnded = true; }

    samples_t samples;
    bool hasEnded = false;
};

/// @return the model of the package
package_files_t filesOf(const samples_t& samples);

/// Puts the members where an unpacked package would be.
void writeSamples(const samples_t& samples, const std::filesystem::path& parent);

/// @return the findings, a line each
std::string textOf(const findings& found);

/// @return what is found, a line each
std::string foundBy(const std::function<void(findings&)>& look);

/// A folder that is removed at the end.
class scratch_folder {
public:
    scratch_folder();
    ~scratch_folder();
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    std::filesystem::path path() const { return folder; }
    std::string at(const std::string& name) const { return (folder / name).string(); }
    void write(const std::string& name, const std::string& text) const;

    /// @return the names of all that is in it, sorted, with blanks in between
    std::string names() const;

private:
    std::filesystem::path folder;
};
