#pragma once

#include <string>
#include <string_view>

/// Throws for a call that has failed, with the reason in errno.
/// @param doing what was to be done, as in "cannot write"
/// @param path whatever it was to be done with; made printable
/// @throws std::runtime_error "DOING PATH: REASON"
[[noreturn]] void failCall(std::string_view doing, std::string_view path);

/// @return the result of a system call, which is negative where it has failed
/// @throws std::runtime_error as failCall
template <typename result_t>
result_t checked(result_t result, std::string_view doing, std::string_view path) {
    if (result < 0) {
        failCall(doing, path);
    }
    return result;
}

/// @throws std::runtime_error when there is something of that name, of whatever kind
void refuseExisting(const std::string& path);
