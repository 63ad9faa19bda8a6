#pragma once

#include <string>

#include "harness/package_folder.hpp"

/// Puts the calling process where the tool is at home as long as it lives: the package's tool
/// folder as working directory, its stand-ins on the PATH, and a known TERM.
class inside_package {
public:
    explicit inside_package(const package_folder& package);
    ~inside_package();

    inside_package(const inside_package&) = delete;
    inside_package& operator=(const inside_package&) = delete;

private:
    std::filesystem::path directory;
    std::string path;
};

/// Lets standard input hold these bytes and then its end, as long as it lives.
class typed_input {
public:
    explicit typed_input(const std::string& bytes);
    ~typed_input();

    typed_input(const typed_input&) = delete;
    typed_input& operator=(const typed_input&) = delete;

private:
    int original;
};

/// Collects what is written to standard output, by child processes, too.
class captured_output {
public:
    captured_output();
    ~captured_output();

    captured_output(const captured_output&) = delete;
    captured_output& operator=(const captured_output&) = delete;

    /// Ends the collection.
    std::string text();

private:
    bool active = true;
};

/// The keyboard mode that the input operations expect on standard input.
void setRawMode();

/// @return the text of the exception of this type that the call throws; otherwise a text that
/// says what happened instead
template <typename exception_type, typename call_type>
std::string thrown(call_type call) {
    try {
        call();
    } catch (const exception_type& error) {
        return error.what();
    } catch (const std::exception& error) {
        return std::string("another type: ") + error.what();
    }
    return "nothing thrown";
}
