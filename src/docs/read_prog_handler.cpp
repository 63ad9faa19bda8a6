#include "docs/read_prog_handler.hpp"

read_prog_handler::read_prog_handler(bool evaluate, const reader_prog_t& program)
    : reader(program), showOutput(!evaluate) {
    if (showOutput) {
        clearScreen();
    }
}

read_prog_handler::~read_prog_handler() {
    if (reader.waitOnClose) {
        waitForEnter("Press ENTER to close the file...");
    }
}

void read_prog_handler::showFile(const std::string& path) {
    runCommand(reader.name + " " + path, showOutput);
}
