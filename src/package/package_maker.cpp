#include "package/package_maker.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <vector>

#include "package/archive_writer.hpp"
#include "package/descriptor.hpp"
#include "package/examination.hpp"
#include "package/package_rules.hpp"
#include "package/printable.hpp"
#include "package/private_folder.hpp"
#include "package/sha256.hpp"
#include "package/signature.hpp"
#include "package/system_call.hpp"
#include "package/unpacker.hpp"

namespace {

constexpr unsigned programMode = 0755;
constexpr unsigned fileMode = 0644;

/// Where a file of the package comes from.
struct source_t {
    std::string path;  ///< of a file; empty: text is the content
    std::string text;
    unsigned mode = fileMode;
};

/// By their names in the package: so they come into the archive.
using sources_t = std::map<std::string, source_t>;

bool isThere(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 || errno != ENOENT;
}

void add(sources_t& sources, const std::string& name, source_t source) {
    const std::string path = source.path;
    if (!sources.emplace(name, std::move(source)).second) {
        throw std::runtime_error(printable(path) + " has the name of another file of the package");
    }
}

std::string releaseText(const package_parts_t& parts) {
    release_store_t values;
    values[release_firmware] = parts.release;
    values[release_sdr] = parts.sdr;
    values[release_system] = parts.system;
    values[release_image] = lastPart(parts.image);
    std::string text;
    for (const auto& [id, key] : releaseKeys) {
        text += std::string(key) + values.at(id) + "\n";
    }
    return text;
}

sources_t sourcesOf(const package_parts_t& parts) {
    sources_t sources;
    add(sources, std::string(releaseFileName), {"", releaseText(parts)});
    add(sources, std::string(menuPath), {parts.tool, "", programMode});
    add(sources, std::string(corePathInPackage), {parts.core, "", programMode});
    for (const document_t& document : packageDocuments) {
        const std::string name(document.fileName);
        const std::string path = parts.documents + "/" + name;
        if (isThere(path)) {
            add(sources, name, {path, ""});  // the check tells of one that is missing
        }
    }
    add(sources, lastPart(parts.image), {parts.image, ""});
    return sources;
}

/// Writes a file into the archive, as long as it was at the start.
void archiveFile(const source_t& source, member_t member, archive_writer& archive) {
    const descriptor file = openRegularFile(source.path);
    struct stat status {};
    checked(fstat(file.get(), &status), "cannot read", source.path);
    member.size = static_cast<std::uint64_t>(status.st_size);
    archive.begin(member);
    std::uint64_t left = member.size;
    file.readPieces([&](std::string_view bytes) {
        left -= std::min<std::uint64_t>(bytes.size(), left + 1);
        archive.take(bytes);
    });
    if (left != 0) {
        throw std::runtime_error(printable(source.path) + " has changed while it was read");
    }
}

void archiveAll(const sources_t& sources, const std::string& folder, std::uint64_t time,
                archive_writer& archive) {
    archive.begin({folder, true, programMode, 0, time});
    std::string path = folder;
    path += '/';
    std::string directory;
    for (const auto& [name, source] : sources) {
        const std::size_t slash = name.find('/');
        if (slash != std::string::npos && name.substr(0, slash) != directory) {
            directory = name.substr(0, slash);
            archive.begin({path + directory, true, programMode, 0, time});
        }
        const member_t member{path + name, false, source.mode, source.text.size(), time};
        if (!source.path.empty()) {
            archiveFile(source, member, archive);
        } else {
            archive.begin(member);
            archive.take(source.text);
        }
    }
    archive.end();
}

void writeFile(const private_folder& folder, const std::string& name, std::string_view text) {
    descriptor file = folder.make(name);
    file.write(text);
    file.sync();
}

/// Writes archive, checksum and signature into the folder.
void writeArchive(const private_folder& folder, const std::string& name, const sources_t& sources,
                  std::uint64_t time, const std::string& key) {
    const std::string archiveName = name + ".tar";
    descriptor file = folder.make(archiveName);
    sha256 hash;
    const auto signer = key.empty() ? nullptr : signingProgram(key);
    const auto write = [&](std::string_view bytes) {
        file.write(bytes);
        hash.take(bytes);
        if (signer) {
            signer->take(bytes);
        }
    };
    archive_writer archive(write);
    archiveAll(sources, name, time, archive);
    file.sync();
    if (signer) {
        if (signer->end() != 0) {
            throw std::runtime_error("cannot sign the archive with " + printable(key));
        }
        writeFile(folder, archiveName + ".sig", signer->output());
    }
    writeFile(folder, archiveName + ".sha256", hash.digits() + "  " + archiveName + "\n");
}

/// All of the names get their files, or none of them.
void publishAll(const private_folder& folder, const std::vector<std::string>& names) {
    for (auto name = names.begin(); name != names.end(); ++name) {
        try {
            folder.publish(*name);
        } catch (const std::runtime_error&) {
            std::for_each(names.begin(), name + 1,
                          [&](const std::string& published) { folder.takeBack(published); });
            throw;
        }
    }
}

}  // namespace

std::string withoutSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

findings makePackage(const package_parts_t& parts, const std::string& output,
                     const std::string& key) {
    const std::string name = lastPart(output);
    // The checksum comes last: where it is, all of the output is.
    std::vector<std::string> names{name, name + ".tar"};
    if (!key.empty()) {
        names.push_back(name + ".tar.sig");
    }
    names.push_back(name + ".tar.sha256");
    for (const char* const end : {"", ".tar", ".tar.sig", ".tar.sha256"}) {
        refuseExisting(output + end);
    }
    checked(isThere(parts.documents) ? 0 : -1, "cannot open", parts.documents);
    const private_folder folder(parentOf(output), name);
    writeArchive(folder, name, sourcesOf(parts), parts.time, key);
    unpacker unpacked(folder.get());
    const verdict_t verdict = examine(folder.pathOf(name + ".tar"), {}, &unpacked);
    if (verdict.found.empty()) {
        publishAll(folder, names);
    }
    return verdict.found;
}
