#include "package/examination.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <optional>

#include "package/archive_reader.hpp"
#include "package/checksum_file.hpp"
#include "package/descriptor.hpp"
#include "package/package_contents.hpp"
#include "package/package_rules.hpp"
#include "package/printable.hpp"
#include "package/progress.hpp"
#include "package/sha256.hpp"
#include "package/signature.hpp"
#include "package/system_call.hpp"

namespace {

constexpr std::string_view suffix = ".tar";
constexpr std::size_t mostOfChecksumFile = 4096;

/// Hands members to the model of the package and on to somebody else.
class member_tee : public member_sink {
public:
    explicit member_tee(member_sink* other) : second(other) {}

    void begin(const member_t& member) override {
        contents.begin(member);
        if (second != nullptr) {
            second->begin(member);
        }
    }
    void take(std::string_view bytes) override {
        contents.take(bytes);
        if (second != nullptr) {
            second->take(bytes);
        }
    }
    void end() override {
        contents.end();
        if (second != nullptr) {
            second->end();
        }
    }

    package_contents contents;

private:
    member_sink* second;
};

std::uint64_t sizeOf(const descriptor& file, const std::string& path) {
    struct stat status {};
    checked(fstat(file.get(), &status), "cannot read", path);
    return static_cast<std::uint64_t>(status.st_size);
}

/// @return what is in the checksum file, if there is one
std::optional<std::string> checksumText(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 && errno == ENOENT) {
        return std::nullopt;
    }
    return openRegularFile(path).read(mostOfChecksumFile);
}

/// The bytes of an archive, on their way to all who judge them.
class archive_pass {
public:
    archive_pass(const std::string& archive, const std::string& folder,
                 const required_signature_t& required, member_sink* members)
        : path(archive), sink(members), reader(archive, folder, sink, ofArchive) {
        if (!required.signers.empty()) {
            signature.emplace(archive, required.signers, required.signer, ofSignature);
        }
    }

    void run(const descriptor& file) {
        progress shown(path, sizeOf(file, path));
        file.readPieces([&](std::string_view bytes) {
            hash.take(bytes);
            if (signature) {
                signature->take(bytes);
            }
            reader.take(bytes);
            shown.add(bytes.size());
        });
        reader.end();
    }

    void judge(const std::optional<std::string>& checksum, verdict_t& verdict) {
        verdict.digits = hash.digits();
        findings ofChecksum;
        if (checksum) {
            checkChecksum(path + ".sha256", *checksum, path, verdict.digits, ofChecksum);
        } else {
            verdict.found.add(path + ".sha256", "is missing", "put it beside the archive");
        }
        if (signature) {
            verdict.signer = signature->end(ofSignature);
        }
        if (ofArchive.empty()) {
            checkPackage(sink.contents.files, ofArchive);
            verdict.menu = menuVersion(sink.contents.files);
        }
        // What has not arrived whole, or comes from a stranger, is not worth a closer look.
        for (const findings* const step : {&ofChecksum, &ofSignature, &ofArchive}) {
            if (!step->empty()) {
                return verdict.found.append(*step);
            }
        }
    }

private:
    std::string path;
    findings ofSignature;
    findings ofArchive;
    member_tee sink;
    archive_reader reader;
    sha256 hash;
    std::optional<signature_check> signature;
};

}  // namespace

std::string folderOf(const std::string& archive) {
    const std::string name = archive.substr(archive.rfind('/') + 1);
    if (!name.ends_with(suffix)) {
        return "";
    }
    const std::string folder = name.substr(0, name.size() - suffix.size());
    return isPlainName(folder) ? folder : "";
}

verdict_t examine(const std::string& archive, const required_signature_t& required,
                  member_sink* members) {
    verdict_t verdict;
    verdict.folder = folderOf(archive);
    if (verdict.folder.empty()) {
        verdict.found.add(archive, "is not named as a package is",
                          "rename it to FOLDER.tar, with letters, digits and ._+- in FOLDER");
        return verdict;
    }
    const descriptor file = openRegularFile(archive);
    const auto checksum = checksumText(archive + ".sha256");
    archive_pass pass(archive, verdict.folder, required, members);
    pass.run(file);
    pass.judge(checksum, verdict);
    return verdict;
}
