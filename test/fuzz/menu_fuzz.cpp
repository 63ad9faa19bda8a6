// The input is a menu, one character for each line: "*" can be selected, ">" is the prompt, "_"
// leaves a key out, anything else is plain; then, each behind a "|", what the user types.

#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "app/gui.hpp"
#include "fuzz/fuzz_package.hpp"
#include "fuzz/menu_model.hpp"
#include "fuzz/require_same.hpp"
#include "support/menu_exception.hpp"

namespace {

/// The application on a terminal of its own; what it draws goes to a text instead.
class fuzzed_gui : public gui {
public:
    fuzzed_gui() : gui(true) {
        scriptedInputs.clear();
        print = [this](const std::string& text) {
            if (text.ends_with('\n')) {
                drawn.push_back(text);
            }
        };
    }

    /// @return what happens up to the end of the program: one text for every choice or warning,
    /// with the highlight and the last drawing
    events_t run(const menu_elem_t& menu, const texts_t& inputs) {
        menus.front() = menu;
        std::string happened;
        menus.front().callback = [&](menu_item_t item) {
            happened = "chosen " + std::to_string(item);
        };
        for (const std::string& input : inputs) {
            queueInput(input);
        }
        events_t events;
        for (bool hasEnded = false; !hasEnded; events.push_back(event(happened))) {
            try {
                showMenuOnce();
            } catch (const std::runtime_error& error) {
                happened = error.what();
            } catch (const menu_exception& end) {
                happened = end.what();
                hasEnded = true;
            }
        }
        scriptedInputs.clear();
        return events;
    }

private:
    std::string event(const std::string& happened) {
        const auto count = static_cast<std::ptrdiff_t>(menus.front().lines.size());
        std::string text = happened + "\n" + std::to_string(menus.front().selected) + "\n";
        for (auto line = drawn.end() - count; line != drawn.end(); ++line) {
            text += *line;
        }
        drawn.clear();
        return text;
    }

    texts_t drawn;
};

/// The terminal stays open until the end of the process.
void takePseudoTerminal() {
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0 || dup2(slave, STDIN_FILENO) < 0 ||
        dup2(slave, STDOUT_FILENO) < 0) {
        throw std::runtime_error("no pseudo terminal");
    }
}

fuzzed_gui& application() {
    static const fuzz_package package;
    static const bool isReady = [] {
        takePseudoTerminal();
        package.write("releasefile-information.txt", releaseInformation);
        package.write("fw.bin", "image\n");
        std::filesystem::create_symlink("/bin/true", "varnflash");
        return true;
    }();
    static_cast<void>(isReady);
    static fuzzed_gui instance;
    return instance;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::size_t menuEnd = std::min(text.find('|'), size);
    const std::string kinds = text.substr(0, std::min(menuEnd, longestMenu));
    const texts_t inputs = inputsOf(text.substr(menuEnd));
    requireSame(menu_model(kinds).run(inputs), application().run(menuOf(kinds), inputs));
    return 0;
}
