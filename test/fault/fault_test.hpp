#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "harness/process_state.hpp"
#include "harness/tool_test.hpp"

/// The program with a call that fails, and a user who reads a document, flashes and leaves.
class fault_test : public tool_test {
protected:
    void start(const std::string& fault, const std::string& argument = "") {
        package.remove("fault.log");
        package.remove("programs/less");
        package.let("more", "show");
        program.path = FAULT_PROGRAM;
        if (!argument.empty()) {
            program.arguments.push_back(argument);
        }
        program.environment["FAULT"] = fault;
        program.environment["FAULT_LOG"] = (package.root() / "fault.log").string();
        tool_test::start(24, 120);
    }

    bool hasFailed() const { return std::filesystem::exists(package.root() / "fault.log"); }

    bool isMenuShown() const {
        const auto rows = session->screen().rows();
        return rows.size() > 3 && rows[rows.size() - 3].starts_with(">") &&
               !session->screen().contains("Press ENTER");
    }

    /// Goes through document, flash and Exit. ENTER confirms whatever asks for it on the way. Where
    /// a key has changed nothing, it has got lost, or a question has: then number and ENTER take
    /// turns.
    /// @return exit status as a shell counts
    int walk() {
        std::vector<std::string> choices{mainScreen().key(main_menu::exit),
                                         mainScreen().key(main_menu::normalFlash),
                                         mainScreen().key(main_menu::readme)};
        std::string before;
        bool isEnterNext = false;
        for (int keys = 0; keys < mostKeys && session->awaitKeyWaitOrEnd(); ++keys) {
            const std::string now = session->screen().text();
            const bool isChosen = session->screen().contains("\n> " + choices.back() + "\n");
            isEnterNext = now == before ? !isEnterNext : isChosen || !isMenuShown();
            session->press(isEnterNext ? "\r" : choices.back());
            if (isEnterNext && isChosen && isMenuShown() && choices.size() > 1) {
                choices.pop_back();
            }
            before = now;
        }
        return awaitEnd();
    }

    /// A child that was not waited for may be hung up with the session, and so never come to its
    /// own end.
    void expectNothingLeftBehind() {
        expectTerminalRestored();
        const auto isOver = [](const run_record_t& run) { return !isAlive(run.process); };
        session->await(
            [&] {
                const auto runs = package.runs();
                return std::all_of(runs.begin(), runs.end(), isOver);
            },
            "the children to end");
    }

private:
    static constexpr int mostKeys = 40;
};
