#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "package/child_program.hpp"
#include "package/findings.hpp"

/// What OpenSSH calls the namespace of a signature.
inline constexpr std::string_view signatureNamespace = "varnmenu-package";

/// The check of an archive's signature, made by ssh-keygen(1) while the archive is read.
class signature_check {
public:
    /// @param archive its path; the signature is in the file of that name with ".sig"
    /// @param signersFile who may sign, see "ALLOWED SIGNERS" in ssh-keygen(1)
    /// @param signerName who has to have signed; empty for any of them
    /// @throws std::runtime_error when a file cannot be read or ssh-keygen not be run
    signature_check(const std::string& archive, std::string signersFile, std::string signerName,
                    findings& found);

    /// The next bytes of the archive.
    void take(std::string_view bytes);

    /// The archive has no more bytes.
    /// @return who has signed it, or nothing
    std::string end(findings& found);

private:
    struct attempt_t {
        std::string signer;
        std::unique_ptr<child_program> verifier;
    };

    /// Tries a name that the signers file lists the key for.
    void attempt(const std::string& name);
    std::string saying(const std::string& name) const;

    std::string signaturePath;
    std::string signersPath;
    std::string signers;  ///< the file as it was when it was read
    std::string wanted;
    std::vector<std::string> listed;  ///< names that the key is listed for
    std::vector<attempt_t> attempts;
    bool isRefused = false;  ///< there is a finding already
};

/// @param key a key of OpenSSH: a private one, or a public one whose private part an agent holds
/// @return a program that takes what is to be signed, and answers with the signature
std::unique_ptr<child_program> signingProgram(const std::string& key);
