#pragma once

#include <gtest/gtest.h>

#include "harness/tool_test.hpp"
#include "package/sample_package.hpp"

/// The built program, run in a folder that holds a sound package's parts and, once made, its
/// archive.
class program_test : public testing::Test {
protected:
    program_test();

    /// Runs it with these words.
    outcome_t run(const std::vector<std::string>& words) const;

    /// Runs a command line of a shell, in which "$P" is the program.
    outcome_t shell(const std::string& line) const;

    /// Makes "varn" of the parts.
    outcome_t create(const std::vector<std::string>& words = {}) const;

    /// Writes an archive, and its checksum beside it.
    void writeArchive(const std::string& bytes, const std::string& name = "varn.tar") const;

    /// The same with a sound package.
    void writeSoundArchive() const { writeArchive(archiveOf(soundPackage())); }

    scratch_folder scratch;
    std::map<std::string, std::string> environment{{"PATH", "/usr/bin:/bin"},
                                                   {"SOURCE_DATE_EPOCH", "1700000000"}};
    uid_t user = 0;
};

/// What verify says of a sound archive.
std::string goodVerdict(const std::string& archive = "varn.tar",
                        const std::string& signer =
                            "no signature was checked: anybody may have "
                            "made it");
