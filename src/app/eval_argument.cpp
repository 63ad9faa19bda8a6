#include "app/eval_argument.hpp"

#include <string_view>

bool isEvalArgument(int count, const char* const* arguments) {
    if (count != 1) {
        return false;
    }
    const std::string_view word = arguments[0];
    return word == "--eval" || word == "/eval";
}
