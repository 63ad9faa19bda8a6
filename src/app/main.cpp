#include <exception>
#include <stdexcept>
#include <string>

#include "app/eval_argument.hpp"
#include "app/gui.hpp"
#include "app/process_setup.hpp"
#include "support/menu_exception.hpp"
#include "support/stream.hpp"
#include "support/support.hpp"
#include "term/terminal_guard.hpp"

namespace {

/// Lets a user who started the program from a desktop read the last line before the window closes.
void waitBeforeClosing() {
    try {
        support().waitForEnter("Press ENTER to continue...");
    } catch (const std::invalid_argument&) {
        // Without PATH, TERM or a working directory, support cannot wait: just end.
    }
}

}  // namespace

int main(int argc, char** argv) {
    setUpProcess();
    stream log;
    const std::string programWord = argc > 0 ? argv[0] : "";
    const bool evalMode = isEvalArgument(argc - 1, argv + 1);
    try {
        const terminal_guard guard;
        gui application(evalMode);
        application.run();
    } catch (const menu_exception& end) {
        const support services;  // without a working directory the program cannot name itself
        // The spelling must stay: scripts may wait for exactly this line.
        log.trace(trace_plain,
                  "Exitting program '" + support::fileName(programWord) + "' due to " + end.what(),
                  "");
    } catch (const std::out_of_range& error) {
        log.trace(trace_critical, std::string("Out of range error: ") + error.what(), "");
    } catch (const std::invalid_argument& error) {
        log.trace(trace_critical, std::string("Invalid argument error: ") + error.what(), "");
        waitBeforeClosing();
    } catch (const std::exception& error) {
        log.trace(trace_critical, std::string("General exception: ") + error.what(), "");
    } catch (...) {
        log.trace(trace_critical, "Unknown exception", "");
    }
    return 0;  // after an error, too: a person reads the message; a signal still shows
}
