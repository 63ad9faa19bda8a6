#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

/// Owns a file descriptor, and reads and writes all of what is asked for.
class descriptor {
public:
    descriptor() = default;

    /// @param opened what open(2) has returned
    /// @param doing, named for the failure of that, see system_call.hpp
    descriptor(int opened, std::string_view doing, std::string_view named);
    ~descriptor();

    descriptor(descriptor&& other) noexcept
        : number(std::exchange(other.number, -1)), name(std::move(other.name)) {}
    descriptor& operator=(descriptor&& other) noexcept {
        std::swap(number, other.number);
        std::swap(name, other.name);
        return *this;
    }

    int get() const { return number; }

    /// @throws std::runtime_error when not all of it can be written
    void write(std::string_view bytes) const;

    /// @return all that is there up to its end, or the first bytes of it, at most so many
    /// @throws std::runtime_error when it cannot be read
    std::string read(std::size_t most) const;

    /// Hands all that is there to take, in pieces, and looks for signals in between.
    /// @throws std::runtime_error when it cannot be read; interrupted
    void readPieces(const std::function<void(std::string_view)>& take) const;

    /// Has it written to the disk, and closes it.
    /// @throws std::runtime_error when the disk did not take it
    void sync();

private:
    std::size_t readSome(char* bytes, std::size_t most) const;

    int number = -1;
    std::string name;
};

/// @return a regular file that is there for reading; symbolic links are followed
/// @throws std::runtime_error when there is none
descriptor openRegularFile(const std::string& path);
