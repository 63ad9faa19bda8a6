#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "harness/package_folder.hpp"
#include "harness/shown_menu.hpp"
#include "harness/terminal_session.hpp"

/// A user without any rights, as Debian has one.
constexpr uid_t nobody = 65534;

/// @return the path of the built program that the tests run
std::string programUnderTest();

/// The built program in a package of stand-ins, on its own terminal.
class tool_test : public testing::Test {
protected:
    tool_test();

    /// The program will be started by a user without any rights.
    void runAsNobody();

    /// Starts the program; what differs from the usual is set in `program` before.
    void start(int rows = 24, int columns = 80);

    /// Starts it and returns when the main menu is shown.
    void startMenu(int rows = 24, int columns = 80);

    /// Starts it with these redirections of a shell, "<&-" for a closed standard input.
    void startWith(const std::string& redirections);

    /// Starts it from a shell with job control.
    void startFromShell(const std::string& arguments = "");

    /// Highlights the line with this shown number.
    void moveTo(const std::string& number);

    /// Confirms the line with this shown number.
    void choose(int number);

    /// Returns when the program asks for ENTER and waits for it.
    void awaitEnterPrompt();

    /// Returns when the menu is shown again, with this number after its prompt.
    void awaitMenu(const std::string& promptNumber = "");

    /// Returns when what happened has led to a drawing and the program waits for the next key: one
    /// that is typed during the drawing is discarded.
    /// @return where the output of the drawing begins
    std::size_t awaitDrawing(const std::function<void()>& happen);

    /// Waits for the end.
    /// @return exit status, or 128 and the signal's number as a shell counts
    int awaitEnd();

    void expectTerminalRestored();

    /// The program waits, and uses no processor for that.
    void expectIdle();

    program_t program;
    package_folder package;
    std::unique_ptr<terminal_session> session;
};

/// @return how many writes a process has made, see proc(5), "syscw"
long writeCalls(pid_t process);
