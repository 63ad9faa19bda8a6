#pragma once

#include <deque>
#include <functional>
#include <string>

#include "fuzz/typing.hpp"

/// A keyboard and its reader on paper: knows of every byte when it arrives, and nothing of waits.
class keyboard_model {
public:
    explicit keyboard_model(const typing_t& typing);

    /// Lets time pass, in milliseconds.
    void passTime(int milliseconds) { now += milliseconds; }

    /// @return the key that the menu takes next
    std::string nextKey();

    /// Leaves out all up to the next line feed.
    void awaitEnter();

    /// @return true when the last key, an ENTER, is no repeat; leaves out what belongs to it then
    bool isOnePress();

    /// Leaves out all up to the ENTER that ends the wait after an operation: the one that has
    /// arrived, or, as several are none, one typed later.
    void awaitEnterAfterOperation();

private:
    struct arrival_t {
        int time;
        char byte;
    };

    char takeByte();
    void takeArrived(std::string& bytes, const std::function<bool()>& callsForMore);

    std::deque<arrival_t> arrivals;
    int now = 0;
    int lastEnter = never;
    bool isRepeat = false;

    static constexpr int never = -1'000'000;
};
