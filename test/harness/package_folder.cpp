#include "harness/package_folder.hpp"

#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "docs/package_documents.hpp"

namespace fs = std::filesystem;

namespace {

/// @return true when every user can enter the folder and those above it
bool isOpenToEveryone(const fs::path& folder) {
    const bool isOpen = (fs::status(folder).permissions() & fs::perms::others_exec) != fs::perms{};
    return isOpen && (folder == folder.root_path() || isOpenToEveryone(folder.parent_path()));
}

/// @return the folder for temporary files, or the usual one where that is private
fs::path folderForEveryone() {
    const std::array candidates{fs::canonical(fs::temp_directory_path()), fs::path("/tmp")};
    const auto found = std::find_if(candidates.begin(), candidates.end(), isOpenToEveryone);
    if (found == candidates.end()) {
        throw std::runtime_error("other users can enter neither TMPDIR nor /tmp");
    }
    return *found;
}

fs::path makeTemporaryFolder() {
    std::string name = (folderForEveryone() / "varnmenu-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    fs::permissions(name, fs::perms(0755));
    umask(022);  // what a test puts into it is for others, too
    return name;
}

void copyProgram(const fs::path& program, const fs::path& copy) {
    fs::copy_file(program, copy);
    fs::permissions(copy, fs::perms(0755));
}

void addStandIn(const fs::path& path) { copyProgram(STAND_IN_PROGRAM, path); }

std::set<int> signalNumbers(const std::string& mask) {
    std::set<int> numbers;
    const unsigned long long bits = std::stoull(mask, nullptr, 16);
    for (int number = 1; number <= 64; ++number) {
        const bool isTheLibrarys = number == 32 || number == 33;
        if (!isTheLibrarys && (bits >> (number - 1) & 1) != 0) {
            numbers.insert(number);
        }
    }
    return numbers;
}

void addFact(run_record_t& run, const std::string& kind, const std::string& value) {
    if (kind == "argument") {
        run.arguments.push_back(value);
    } else if (kind == "environment") {
        run.environment.push_back(value);
    } else if (kind == "descriptor") {
        const std::size_t blank = value.find(' ');
        run.descriptors[std::stoi(value)] = value.substr(blank + 1);
    } else if (kind == "ignored") {
        run.ignoredSignals = signalNumbers(value);
    } else if (kind == "blocked") {
        run.blockedSignals = signalNumbers(value);
    } else if (kind == "ended") {
        run.ended = true;
    }
}

}  // namespace

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string properReleaseInformation() {
    return "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=SV 1000\nIMAGE_NAME=fw.bin\n";
}

package_folder::package_folder() : folder(makeTemporaryFolder()) {
    fs::create_directory(tool());
    fs::create_directory(programs());
    write("releasefile-information.txt", properReleaseInformation());
    write("fw.bin", "image\n");
    for (const document_t& document : packageDocuments) {
        const std::string name(document.fileName);
        write(name, "text of " + name + "\n");
    }
    addStandIn(tool() / "varnflash");
    for (const char* program : {"which", "clear", "less", "more", "cat"}) {
        addStandIn(programs() / program);
    }
    let("which", "look");
    let("clear", "print \\033[H\\033[2J");
}

package_folder::~package_folder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

void package_folder::write(const std::string& name, const std::string& text) const {
    std::ofstream(folder / name, std::ios::binary) << text;
}

void package_folder::remove(const std::string& name) const { fs::remove_all(folder / name); }

fs::path package_folder::copyForEveryone(const fs::path& program) const {
    fs::create_directories(folder / "copies");
    const fs::path copy = folder / "copies" / program.filename();
    copyProgram(program, copy);
    return copy;
}

void package_folder::let(const std::string& program, const std::string& steps) const {
    const fs::path home = program == "varnflash" ? tool() : programs();
    std::ofstream(home / (program + ".steps")) << steps << "\n";
}

void package_folder::hold(const std::string& program) const {
    mkfifo((folder / "go").c_str(), 0600);
    let(program, "print at work\nawait go\nprint work done");
}

void package_folder::letGo() const { std::ofstream(folder / "go") << "\n"; }

std::vector<run_record_t> package_folder::runs() const {
    std::map<std::string, std::size_t> indices;
    std::vector<run_record_t> all;
    std::ifstream log(folder / "runs.log");
    // Every line is "PROCESS KIND VALUE".
    for (std::string line; std::getline(log, line);) {
        std::istringstream words(line);
        std::string process;
        std::string kind;
        std::string value;
        words >> process >> kind;
        std::getline(words.ignore(), value);
        if (kind == "run") {
            indices[process] = all.size();
            all.push_back({});
            all.back().process = std::stoi(process);
            all.back().name = value;
        } else {
            addFact(all.at(indices.at(process)), kind, value);
        }
    }
    return all;
}

std::vector<std::string> package_folder::commandLines() const {
    std::vector<std::string> lines;
    for (const run_record_t& run : runs()) {
        std::string line;
        for (const std::string& argument : run.arguments) {
            line += (line.empty() ? "" : " ") + argument;
        }
        lines.push_back(line);
    }
    return lines;
}
