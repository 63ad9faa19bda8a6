#pragma once

#include <deque>
#include <functional>
#include <string>

#include "fuzz/typing.hpp"

/// A keyboard and its reader on paper: knows of every byte when it arrives, and nothing of waits.
class keyboard_model {
public:
    explicit keyboard_model(const typing_t& typing);

    /// @return the key that the menu takes after its next drawing
    std::string nextKey();

    /// Leaves out all up to the next line feed.
    void awaitEnter();

private:
    struct arrival_t {
        int time;
        char byte;
    };

    char takeByte();
    void takeArrived(std::string& bytes, const std::function<bool()>& callsForMore);

    std::deque<arrival_t> arrivals;
    int now = 0;
};
