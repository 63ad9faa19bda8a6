#include "package/sample_package.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <set>

#include "docs/package_documents.hpp"
#include "package/archive_writer.hpp"
#include "package/ustar_header.hpp"

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t sampleTime = 1'700'000'000;
constexpr std::size_t sumOffset = 148;

}  // namespace

sample_t sampleFile(const std::string& name, const std::string& content, unsigned mode) {
    return {{name, false, mode, content.size(), sampleTime}, content};
}

sample_t sampleFolder(const std::string& name, unsigned mode) {
    return {{name, true, mode, 0, sampleTime}, ""};
}

samples_t soundPackage() {
    samples_t samples{sampleFolder("varn")};
    for (const document_t& document : packageDocuments) {
        samples.push_back(sampleFile("varn/" + std::string(document.fileName), "text\n"));
    }
    samples.push_back(sampleFile("varn/fw.bin", std::string(1000, '\xff')));
    samples.push_back(
        sampleFile("varn/releasefile-information.txt",
                   "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV 1000\nIMAGE_NAME=fw.bin\n"));
    samples.push_back(sampleFolder("varn/tool"));
    samples.push_back(sampleFile("varn/tool/varnflash", "#!/bin/sh\nexit 0\n", 0755));
    samples.push_back(sampleFile("varn/tool/varnmenu", "#!/bin/sh\n", 0755));
    std::ranges::sort(samples, {}, [](const sample_t& sample) { return sample.member.name; });
    return samples;
}

sample_t& sampleOf(samples_t& samples, const std::string& name) {
    return *std::ranges::find_if(
        samples, [&](const sample_t& sample) { return sample.member.name == "varn/" + name; });
}

std::string archiveOf(const samples_t& samples) {
    std::string archive;
    archive_writer writer([&](std::string_view bytes) { archive += bytes; });
    for (const auto& [member, content] : samples) {
        writer.begin(member);
        if (!content.empty()) {
            writer.take(content);
        }
    }
    writer.end();
    return archive;
}

std::string withHeader(std::string archive, std::size_t offset, const std::string& bytes,
                       std::size_t block) {
    const auto header = archive.begin() + static_cast<std::ptrdiff_t>(block * blockSize);
    std::copy(bytes.begin(), bytes.end(), header + static_cast<std::ptrdiff_t>(offset));
    const auto sum = header + sumOffset;
    std::fill(sum, sum + 8, ' ');
    const unsigned total = std::accumulate(
        header, header + blockSize, 0U,
        [](unsigned all, char byte) { return all + static_cast<unsigned char>(byte); });
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "%06o", total);
    std::copy(digits.begin(), digits.end() - 1, sum);
    return archive;
}

package_files_t filesOf(const samples_t& samples) {
    package_contents contents;
    for (const auto& [member, content] : samples) {
        contents.begin(member);
        if (!content.empty()) {
            contents.take(content);
        }
    }
    contents.end();
    return contents.files;
}

void writeSamples(const samples_t& samples, const fs::path& parent) {
    for (const auto& [member, content] : samples) {
        const fs::path path = parent / member.name;
        if (member.isDirectory) {
            fs::create_directory(path);
        } else {
            std::ofstream(path, std::ios::binary) << content;
        }
        fs::permissions(path, fs::perms(member.mode));
    }
}

std::string textOf(const findings& found) {
    std::string text;
    for (const std::string& line : found.list()) {
        text += line + "\n";
    }
    return text;
}

std::string foundBy(const std::function<void(findings&)>& look) {
    findings found;
    look(found);
    return textOf(found);
}

scratch_folder::scratch_folder() {
    std::string name = (fs::temp_directory_path() / "varnmenu-package-XXXXXX").string();
    folder = mkdtemp(name.data());
    fs::permissions(folder, fs::perms(0755));
}

scratch_folder::~scratch_folder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

void scratch_folder::write(const std::string& name, const std::string& text) const {
    std::ofstream(folder / name, std::ios::binary) << text;
}

std::string scratch_folder::names() const {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder)) {
        all.insert(entry.path().filename().string());
    }
    return std::accumulate(
        all.begin(), all.end(), std::string(),
        [](const std::string& text, const std::string& name) { return text + name + " "; });
}
