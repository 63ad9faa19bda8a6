#include "fuzz/fuzzed_gui.hpp"

#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

#include "fuzz/fuzz_package.hpp"
#include "support/menu_exception.hpp"

namespace {

/// One without flow control, which would take Ctrl-S and Ctrl-Q out of what is typed.
int takePseudoTerminal() {
    int master = -1;
    int slave = -1;
    termios attributes{};
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0 ||
        tcgetattr(slave, &attributes) != 0) {
        throw std::runtime_error("no pseudo terminal");
    }
    attributes.c_iflag &= ~static_cast<tcflag_t>(IXON);
    if (tcsetattr(slave, TCSANOW, &attributes) != 0 || dup2(slave, STDIN_FILENO) < 0 ||
        dup2(slave, STDOUT_FILENO) < 0) {
        throw std::runtime_error("no standard input and output");
    }
    return master;
}

}  // namespace

int prepareSurroundings() {
    static const fuzz_package package;
    package.write("releasefile-information.txt", releaseInformation);
    package.write("fw.bin", "image\n");
    std::filesystem::create_symlink("/bin/true", "varnflash");
    return takePseudoTerminal();
}

fuzzed_gui::fuzzed_gui(bool evaluate) : gui(evaluate) {
    scriptedInputs.clear();
    print = [this](const std::string& text) {
        if (text.ends_with('\n')) {
            drawn.push_back(text);
            if (std::ssize(drawn) % lineCount() == 0) {
                drawnWhole();
            }
        }
    };
}

events_t fuzzed_gui::run(const menu_elem_t& menu) {
    menus.front() = menu;
    std::string happened;
    menus.front().callback = [&](menu_item_t item) {
        happened = "chosen " + std::to_string(item);
        if (isOperation(item)) {
            operated();
        }
    };
    events_t events;
    for (bool hasEnded = false; !hasEnded; events.push_back(event(happened))) {
        try {
            showMenuOnce();
        } catch (const std::runtime_error& error) {
            happened = error.what();
            warned();
        } catch (const menu_exception& end) {
            happened = end.what();
            hasEnded = true;
        }
    }
    scriptedInputs.clear();
    return events;
}

std::ptrdiff_t fuzzed_gui::lineCount() const { return std::ssize(menus.front().lines); }

std::string fuzzed_gui::event(const std::string& happened) {
    std::string text = happened + "\n" + std::to_string(menus.front().selected) + "\n";
    for (auto line = drawn.end() - lineCount(); line != drawn.end(); ++line) {
        text += *line;
    }
    drawn.clear();
    return text;
}
