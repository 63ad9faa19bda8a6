#pragma once

#include <string>
#include <vector>

/// A member of a tar archive as its header describes it, which need not be sound.
struct tar_member_t {
    std::string name{};
    std::string content{};
    char type = '0';
    unsigned mode = 0644;
    std::string link{};       ///< what it is a link to
    unsigned owner = 0;       ///< by number
    std::string ownerName{};  ///< by name
    std::string size{};       ///< as the header has it; by default that of the content
    std::string time = "14524333650";
};

/// @return their headers and contents, padded to whole blocks, without the end of an archive
std::string tarOf(const std::vector<tar_member_t>& members);

/// @return so many blocks of zeros; two end an archive
std::string zeroBlocks(int count);
