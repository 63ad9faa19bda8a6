#pragma once

#include <string>
#include <vector>

#include "package/descriptor.hpp"
#include "package/member.hpp"

/// Writes the members of an archive into a folder, onto the disk, with their modes and times. The
/// owner is whoever runs it, and nothing that is there is overwritten.
class unpacker : public member_sink {
public:
    /// @param folder where members go; nobody else may write there
    explicit unpacker(int folder) : target(folder) {}

    void begin(const member_t& member) override;
    void take(std::string_view bytes) override;
    void end() override;

private:
    void finishFile();

    int target;
    descriptor file;
    member_t current;
    std::vector<std::string> directories;
};
