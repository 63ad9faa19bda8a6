#include "package/commands.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <stdexcept>

#include "package/examination.hpp"
#include "package/package_contents.hpp"
#include "package/package_maker.hpp"
#include "package/package_rules.hpp"
#include "package/printable.hpp"
#include "package/private_folder.hpp"
#include "package/system_call.hpp"
#include "package/unpacker.hpp"
#include "package/ustar_header.hpp"

namespace {

constexpr const char* help =
    R"(usage: varnmenu-package create OPTION...
       varnmenu-package check DIR|ARCHIVE
       varnmenu-package verify ARCHIVE [OPTION...]
       varnmenu-package unpack ARCHIVE [OPTION...]

create assembles a firmware package and archives it; all but --tool and --sign have to be given:
  --image FILE      the firmware image
  --core FILE       the flash core program
  --release VALUE   the release of the controller firmware
  --sdr VALUE       the release of the sensor data records
  --system NAME     the server system that the package is meant for
  --documents DIR   where the readme and the legal documents are
  --output DIR      the package; the archive becomes DIR.tar, its checksum DIR.tar.sha256
  --tool FILE       the menu, instead of the varnmenu beside this program
  --sign KEY        sign the archive with this key of OpenSSH; the signature becomes DIR.tar.sig

check says what is wrong with a package, a line for each finding and its cure.

verify does so with an archive: its checksum, its signature, what it holds. unpack verifies it, too,
and writes the package into a new folder, which is named as the archive without ".tar".
  --signers FILE    who may sign, as in "ALLOWED SIGNERS" of ssh-keygen(1)
  --signer NAME     who of them has to have signed, instead of any
  --into DIR        unpack: where the folder is made, instead of here

  --help            show this text
  --version         show the version

Exit status: 0 done, 1 there are findings or the command has failed, 2 wrong command line.
)";

void print(std::FILE* where, const std::string& text) {
    checked(std::fputs(text.c_str(), where), "cannot write", "the output");
    checked(std::fflush(where), "cannot write", "the output");
}

int printFindings(std::FILE* where, const findings& found) {
    for (const std::string& line : found.list()) {
        print(where, line + "\n");
    }
    return found.empty() ? 0 : 1;
}

void printMenu(const std::string& menu) {
    if (!menu.empty()) {
        print(stdout, std::string(menuPath) + ": " + menu + "\n");
    }
}

void printVerdict(const std::string& archive, const verdict_t& verdict) {
    const std::string start = printable(archive) + ": ";
    const std::string signer = verdict.signer.empty()
                                   ? "no signature was checked: anybody may have made it"
                                   : verdict.signer;
    print(stdout, start + signer + "\n");
    print(stdout, start + "SHA-256 " + verdict.digits + "\n");
    print(stdout, start + "unpacks to " + verdict.folder + "\n");
    printMenu(verdict.menu);
}

/// @return what stat(2) says about the operand
mode_t existing(const command_line_t& line) {
    struct stat status {};
    if (stat(line.operand.c_str(), &status) != 0) {
        throw std::invalid_argument(line.command + ": " + printable(line.operand) +
                                    " does not exist");
    }
    return status.st_mode;
}

required_signature_t requiredSignature(const command_line_t& line) {
    return {line.value("signers"), line.value("signer")};
}

int runVerify(const command_line_t& line) {
    if (!S_ISREG(existing(line))) {
        throw std::invalid_argument(line.command + ": " + printable(line.operand) +
                                    " is not an archive");
    }
    const verdict_t verdict = examine(line.operand, requiredSignature(line), nullptr);
    if (verdict.found.empty()) {
        printVerdict(line.operand, verdict);
    }
    return printFindings(stdout, verdict.found);
}

int runCheck(const command_line_t& line) {
    const mode_t mode = existing(line);
    if (S_ISREG(mode)) {
        return runVerify(line);
    }
    if (!S_ISDIR(mode)) {
        throw std::invalid_argument("check: " + printable(line.operand) +
                                    " is neither a directory nor an archive");
    }
    const package_files_t files = filesBelow(line.operand);
    findings found;
    checkPackage(files, found);
    if (found.empty()) {
        printMenu(menuVersion(files));
    }
    return printFindings(stdout, found);
}

int runUnpack(const command_line_t& line) {
    if (!S_ISREG(existing(line))) {
        throw std::invalid_argument("unpack: " + printable(line.operand) + " is not an archive");
    }
    const std::string into = line.options.contains("into") ? line.value("into") : ".";
    const std::string name = folderOf(line.operand);
    if (name.empty()) {
        return runVerify(line);  // which says so
    }
    const std::string path = (into == "." ? "" : withoutSlashes(into) + "/") + name;
    refuseExisting(path);
    const private_folder folder(into, name);
    unpacker unpacked(folder.get());
    const verdict_t verdict = examine(line.operand, requiredSignature(line), &unpacked);
    if (verdict.found.empty()) {
        folder.publish(name);
        printVerdict(line.operand, verdict);
        print(stdout, printable(path) + "\n");
    }
    return printFindings(stdout, verdict.found);
}

std::uint64_t timeOfFiles() {
    const char* const given = std::getenv("SOURCE_DATE_EPOCH");
    if (given == nullptr) {
        return static_cast<std::uint64_t>(std::time(nullptr));
    }
    const std::string_view text = given;
    constexpr std::uint64_t latest = 077777777777;  // that a header takes
    std::uint64_t time = 0;
    const auto result = std::from_chars(text.begin(), text.end(), time);
    if (result.ec != std::errc() || result.ptr != text.end() || time > latest) {
        throw std::invalid_argument("create: SOURCE_DATE_EPOCH is no number of seconds");
    }
    return time;
}

/// An archive with any other name would not be verified.
void requirePlainName(const command_line_t& line, const std::string& option,
                      const std::string& name) {
    if (!isPlainName(name)) {
        throw std::invalid_argument(line.command + ": the name in --" + option +
                                    " has to be of letters, digits and ._+-, at most 100 of them, "
                                    "with no dot or dash first");
    }
}

/// It would write a further line into the release file, which the check could not tell from one
/// that is meant.
void refuseLineFeeds(const command_line_t& line) {
    for (const char* const option : {"release", "sdr", "system"}) {
        if (line.value(option).find('\n') != std::string::npos) {
            throw std::invalid_argument(std::string("create: the value of --") + option +
                                        " holds a line feed");
        }
    }
}

std::string menuBesideThis() {
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename("varnmenu").string();
}

int runCreate(const command_line_t& line) {
    const std::string output = withoutSlashes(line.value("output"));
    const std::string image = line.value("image");
    refuseLineFeeds(line);
    requirePlainName(line, "image", lastPart(image));
    requirePlainName(line, "output", lastPart(output));
    const package_parts_t parts{
        image,
        line.value("core"),
        line.options.contains("tool") ? line.value("tool") : menuBesideThis(),
        line.value("documents"),
        line.value("release"),
        line.value("sdr"),
        line.value("system"),
        timeOfFiles()};
    const findings found = makePackage(parts, output, line.value("sign"));
    const int status = printFindings(stderr, found);
    if (status != 0) {
        throw std::runtime_error("create: nothing is made, as the package has findings");
    }
    return status;
}

int printHelp(const command_line_t&) {
    print(stdout, help);
    return 0;
}

int printVersion(const command_line_t&) {
    print(stdout, "varnmenu-package " VARNMENU_VERSION "\n");
    return 0;
}

struct action_t {
    std::string_view command;
    int (*run)(const command_line_t& line);
};

constexpr std::array actions{
    action_t{"create", runCreate}, action_t{"check", runCheck}, action_t{"verify", runVerify},
    action_t{"unpack", runUnpack}, action_t{"help", printHelp}, action_t{"version", printVersion},
};

}  // namespace

int runCommandLine(const command_line_t& line) {
    return std::ranges::find(actions, line.command, &action_t::command)->run(line);
}
