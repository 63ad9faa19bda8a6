#include "package/signature.hpp"

#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "package/printable.hpp"

namespace {

constexpr std::size_t largestSignersFile = std::size_t{1024} * 1024;
constexpr std::string_view handedFile = "/proc/self/fd/3";

std::unique_ptr<child_program> keygen(const std::vector<std::string>& words, std::string_view file,
                                      child_program::errors_t errors) {
    std::vector<std::string> all{"ssh-keygen", "-Y"};
    all.insert(all.end(), words.begin(), words.end());
    try {
        return std::make_unique<child_program>(all, file, errors);
    } catch (const std::runtime_error&) {
        if (errno == ENOENT) {
            throw std::runtime_error(
                "this system has no ssh-keygen; install the client of OpenSSH");
        }
        throw;
    }
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream rest(text);
    for (std::string part; std::getline(rest, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

/// @return the names of a line of the signers file
std::vector<std::string> namesOf(const std::string& line) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line[start] == '#') {
        return {};
    }
    const bool isQuoted = line[start] == '"';
    const std::size_t first = isQuoted ? start + 1 : start;
    return split(line.substr(first, line.find_first_of(isQuoted ? "\"" : " \t", first) - first),
                 ',');
}

bool isPattern(const std::string& name) {
    return name.find_first_of("*?") != std::string_view::npos;
}

/// Says why ssh-keygen has refused something, in its own words.
void tellErrors(const child_program& program) {
    for (const std::string& line : split(program.errors(), '\n')) {
        std::fprintf(stderr, "ssh-keygen: %s\n", printable(line).c_str());
    }
}

/// Asks ssh-keygen, which only tells of the first line that lists the key, and asks again for the
/// lines after that one.
std::vector<std::string> namesListed(const std::string& signature, const std::string& signers) {
    std::vector<std::string> lines = split(signers, '\n');
    std::vector<std::string> listed;
    for (;;) {
        std::string text;
        for (const std::string& line : lines) {
            text += line + '\n';
        }
        const auto search =
            keygen({"find-principals", "-s", signature, "-f", std::string(handedFile)}, text,
                   child_program::errors_t::kept);
        if (search->end() != 0 && listed.empty()) {
            tellErrors(*search);
        }
        const auto names = split(search->output(), '\n');
        const auto line = std::ranges::find_if(
            lines, [&](const std::string& one) { return !names.empty() && namesOf(one) == names; });
        listed.insert(listed.end(), names.begin(), names.end());
        if (line == lines.end()) {
            return listed;
        }
        lines.erase(lines.begin(), line + 1);
    }
}

}  // namespace

signature_check::signature_check(const std::string& archive, std::string signersFile,
                                 std::string signerName, findings& found)
    : signaturePath(archive + ".sig"),
      signersPath(std::move(signersFile)),
      wanted(std::move(signerName)) {
    signers = openRegularFile(signersPath).read(largestSignersFile + 1);
    if (signers.size() > largestSignersFile) {
        throw std::runtime_error(printable(signersPath) + " is larger than a list of signers");
    }
    struct stat status {};
    if (stat(signaturePath.c_str(), &status) != 0) {
        found.add(signaturePath, "is missing", "put it beside the archive");
        isRefused = true;
        return;
    }
    openRegularFile(signaturePath);
    listed = namesListed(signaturePath, signers);
    isRefused = listed.empty();
    if (isRefused) {
        found.add(signaturePath,
                  "was made with a key that " + printable(signersPath) + " does not list",
                  "do not use the archive");
    } else if (!wanted.empty()) {
        attempt(wanted);
    } else {
        std::ranges::for_each(listed, [this](const std::string& name) { attempt(name); });
    }
}

void signature_check::attempt(const std::string& name) {
    const bool isKnown = std::ranges::find(attempts, name, &attempt_t::signer) != attempts.end();
    if (!isKnown && !name.starts_with('!')) {
        attempts.push_back({name, keygen({"verify", "-f", std::string(handedFile), "-I", name, "-n",
                                          std::string(signatureNamespace), "-s", signaturePath},
                                         signers, child_program::errors_t::kept)});
    }
}

void signature_check::take(std::string_view bytes) {
    for (const attempt_t& one : attempts) {
        one.verifier->take(bytes);
    }
}

/// A key may be listed for a pattern: then nobody knows which of these has signed.
std::string signature_check::saying(const std::string& name) const {
    const bool isListed = std::ranges::find(listed, name) != listed.end();
    if (isListed && !isPattern(name)) {
        return "signed by " + printable(name);
    }
    const auto pattern = std::ranges::find_if(listed, [&](const std::string& one) {
        return one == name || (!isListed && fnmatch(one.c_str(), name.c_str(), FNM_NOESCAPE) == 0);
    });
    return "signed with a key listed for " + printable(pattern == listed.end() ? name : *pattern);
}

std::string signature_check::end(findings& found) {
    std::string good;
    for (const attempt_t& one : attempts) {
        if (one.verifier->end() == 0 && (good.empty() || isPattern(good))) {
            good = one.signer;
        }
    }
    if (!good.empty()) {
        return saying(good);
    }
    if (!isRefused) {
        for (const attempt_t& one : attempts) {
            tellErrors(*one.verifier);
        }
        const std::string names = wanted.empty() ? "anybody listed" : printable(wanted);
        found.add(signaturePath, "is no signature of " + names + " for this archive",
                  "do not use the archive");
    }
    return "";
}

std::unique_ptr<child_program> signingProgram(const std::string& key) {
    return keygen({"sign", "-q", "-f", key, "-n", std::string(signatureNamespace)}, "",
                  child_program::errors_t::shown);
}
