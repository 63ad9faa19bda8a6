#pragma once

#include <string>

#include "package/findings.hpp"
#include "package/member.hpp"

/// Whose signature an archive needs.
struct required_signature_t {
    std::string signers;  ///< path of the list of signers; empty: none is looked for
    std::string signer;   ///< the one of them; empty: any
};

/// What has been found out about an archive.
struct verdict_t {
    findings found;      ///< if there are any, the rest says nothing
    std::string folder;  ///< what it unpacks to
    std::string digits;  ///< its SHA-256 checksum
    std::string signer;  ///< who has signed it, in a sentence without a subject
    std::string menu;    ///< name and version of the menu in it, or nothing
};

/// @return the name of the folder that an archive of this path holds, empty when it has no plain
/// one
std::string folderOf(const std::string& archive);

/// Reads an archive once, and judges exactly the bytes that it has read.
/// @param archive its path; the checksum and the signature lie beside it
/// @param members gets the members as well, as long as nothing is wrong with the archive
/// @throws std::runtime_error when something cannot be read or run; interrupted
verdict_t examine(const std::string& archive, const required_signature_t& required,
                  member_sink* members);
