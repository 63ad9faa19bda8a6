#include "package/command_line.hpp"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "package/printable.hpp"

namespace {

struct command_t {
    std::string_view name;
    std::string_view operand;  ///< what it takes one of, or nothing
};

constexpr std::array commands{
    command_t{"create", ""},
    command_t{"check", "directory or archive"},
    command_t{"verify", "archive"},
    command_t{"unpack", "archive"},
};

struct option_t {
    const char* name;
    std::string_view commands;
    bool isRequired = false;
};

constexpr std::array options{
    option_t{"image", "create", true},   option_t{"core", "create", true},
    option_t{"release", "create", true}, option_t{"sdr", "create", true},
    option_t{"system", "create", true},  option_t{"documents", "create", true},
    option_t{"output", "create", true},  option_t{"tool", "create"},
    option_t{"sign", "create"},          option_t{"signers", "verify unpack"},
    option_t{"signer", "verify unpack"}, option_t{"into", "unpack"},
};

[[noreturn]] void refuse(const std::string& what) { throw std::invalid_argument(what); }

const command_t& commandOf(const std::string& name) {
    if (name.empty()) {
        refuse("create, check, verify or unpack is missing");
    }
    const auto* const command = std::ranges::find(commands, name, &command_t::name);
    if (command == commands.end()) {
        refuse("unknown command " + printable(name));
    }
    return *command;
}

std::vector<option> optionTable(const command_t& command) {
    std::vector<option> table;
    for (const option_t& one : options) {
        if (one.commands.find(command.name) != std::string_view::npos) {
            table.push_back({one.name, required_argument, nullptr, 0});
        }
    }
    table.push_back({"help", no_argument, nullptr, 0});
    table.push_back({});
    return table;
}

void parseOptions(command_line_t& line, const command_t& command, int count, char** words) {
    const auto table = optionTable(command);
    opterr = 0;
    for (;;) {
        int index = 0;
        optopt = 0;
        const int result = getopt_long(count, words, ":", table.data(), &index);
        if (result < 0) {
            return;
        }
        const std::string word = optopt == 0
                                     ? printable(words[optind - 1])
                                     : "-" + printable(std::string(1, static_cast<char>(optopt)));
        if (result == ':') {
            refuse(line.command + ": " + word + " needs a value");
        }
        if (result != 0) {
            refuse(line.command + ": unknown option " + word);
        }
        const std::string name = table[static_cast<std::size_t>(index)].name;
        if (name == "help") {
            line.command = name;
            return;
        }
        if (*optarg == '\0') {
            refuse(line.command + ": --" + name + " needs a value");
        }
        line.options[name] = optarg;
    }
}

void takeOperands(command_line_t& line, const command_t& command, int count, char** words) {
    const int operands = count - optind;
    if (command.operand.empty() && operands > 0) {
        refuse(line.command + ": " + printable(words[optind]) + " is not an option");
    }
    if (!command.operand.empty() && operands != 1) {
        refuse(line.command + ": takes one " + std::string(command.operand));
    }
    if (operands == 1) {
        line.operand = words[optind];
    }
}

void requireOptions(const command_line_t& line) {
    for (const option_t& one : options) {
        if (one.isRequired && one.commands == line.command && line.value(one.name).empty()) {
            refuse(line.command + ": --" + one.name + " is missing");
        }
    }
    if (line.options.contains("signer") && !line.options.contains("signers")) {
        refuse(line.command + ": --signer needs --signers, too");
    }
}

}  // namespace

std::string command_line_t::value(const std::string& option) const {
    const auto entry = options.find(option);
    return entry == options.end() ? "" : entry->second;
}

command_line_t parseCommandLine(int count, char** words) {
    command_line_t line;
    line.command = count > 1 ? words[1] : "";
    if (line.command == "--help" || line.command == "--version") {
        line.command.erase(0, 2);
        return line;
    }
    const command_t& command = commandOf(line.command);
    parseOptions(line, command, count - 1, words + 1);
    if (line.command != "help") {
        takeOperands(line, command, count - 1, words + 1);
        requireOptions(line);
    }
    return line;
}
