#include "harness/tool_test.hpp"

#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

namespace {

/// @return the processor time that a process has used
double processorMilliseconds(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
    double nanoseconds = 0;
    file >> nanoseconds;
    return nanoseconds / 1e6;
}

}  // namespace

std::string programUnderTest() {
    // The packaged one in script/check/dist, one below valgrind in script/check/valgrind.
    const char* other = std::getenv("VARNMENU_PROGRAM");
    return other == nullptr ? VARNMENU_PROGRAM : other;
}

tool_test::tool_test() {
    program.path = programUnderTest();
    program.arguments = {"/opt/package/varnmenu"};
    program.environment = {{"PATH", package.programs().string()},
                           {"TERM", "xterm"},
                           {"HOME", "/root"},
                           {"LANG", "de_DE.UTF-8"}};
    program.directory = package.tool().string();
}

void tool_test::runAsNobody() {
    program.user = nobody;
    program.path = package.copyForEveryone(program.path).string();
}

void tool_test::start(int rows, int columns) {
    session = std::make_unique<terminal_session>(program, rows, columns);
}

void tool_test::startMenu(int rows, int columns) {
    start(rows, columns);
    awaitMenu();
}

void tool_test::startWith(const std::string& redirections) {
    program.path = "/bin/sh";
    program.arguments = {"sh", "-c", "exec " + programUnderTest() + " " + redirections};
    start();
}

void tool_test::startFromShell(const std::string& arguments) {
    const std::string commandLine = program.path + " " + arguments + "\n";
    program.path = "/bin/bash";
    program.arguments = {"bash", "--norc", "--noprofile", "--noediting", "-i"};
    program.environment["PS1"] = "shell: ";
    start();
    session->awaitScreen("shell:");
    session->type(commandLine);
    session->followChild();
}

void tool_test::moveTo(const std::string& number) {
    session->press(number);
    awaitMenu(number);
}

void tool_test::choose(int number) {
    session->press(std::to_string(number));
    session->press("\r");
}

void tool_test::awaitEnterPrompt() {
    session->awaitScreen("Press ENTER");
    session->awaitKeyWait();
}

void tool_test::awaitMenu(const std::string& promptNumber) {
    const std::string prompt = promptNumber.empty() ? ">" : "> " + promptNumber;
    session->await(
        [&] {
            const auto rows = session->screen().rows();
            return rows.size() > 3 && rows[rows.size() - 3] == prompt;
        },
        "the menu with \"" + prompt + "\"");
    session->awaitKeyWait();
}

std::size_t tool_test::awaitDrawing(const std::function<void()>& happen) {
    const std::size_t before = session->output().size();
    happen();
    session->await([&] { return session->output().size() > before; }, "a drawing");
    session->awaitKeyWait();
    return before;
}

int tool_test::awaitEnd() {
    const int status = session->awaitEnd();
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void tool_test::expectTerminalRestored() {
    EXPECT_TRUE(session->terminal().isCooked());
    EXPECT_TRUE(session->screen().isCursorVisible());
}

void tool_test::expectIdle() {
    const double before = processorMilliseconds(session->process());
    EXPECT_GT(before, 0.0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    session->await([&] { return std::chrono::steady_clock::now() > end; }, "three seconds");
    EXPECT_LT(processorMilliseconds(session->process()) - before, 10.0);
}

long writeCalls(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/io");
    std::string key;
    for (long value = 0; file >> key >> value;) {
        if (key == "syscw:") {
            return value;
        }
    }
    return -1;
}
