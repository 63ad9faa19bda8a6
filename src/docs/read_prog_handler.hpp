#pragma once

#include <string>

#include "support/support.hpp"

/// One reader program for text documents.
struct reader_prog_t {
    std::string name;         ///< looked up along PATH
    std::string environment;  ///< kept with the reader, but not given to it: LANG does the same
    bool waitOnClose;         ///< ask for ENTER once the reader has ended
};

/// One run of a reader program: clears the screen before it, and asks for ENTER after it where
/// the reader does not page by itself.
class read_prog_handler : public support {
public:
    /// @param evaluate true: the screen is not cleared, and the reader's output is discarded
    /// @param program must live longer than this object
    read_prog_handler(bool evaluate, const reader_prog_t& program);

    /// Waits for ENTER where the reader asks for it.
    ~read_prog_handler();

    read_prog_handler(const read_prog_handler&) = delete;
    read_prog_handler& operator=(const read_prog_handler&) = delete;

    /// Runs the reader on the document; its exit status does not matter.
    /// @throws std::runtime_error when the reader cannot be run
    void showFile(const std::string& path);

private:
    const reader_prog_t& reader;
    bool showOutput;
};
