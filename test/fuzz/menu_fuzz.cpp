// The input is a menu, one character for each line: "*" can be selected, ">" is the prompt, "_"
// leaves a key out, anything else is plain; then, each after a "|", what the user types.

#include <algorithm>
#include <cstdint>

#include "fuzz/fuzzed_gui.hpp"
#include "fuzz/menu_model.hpp"
#include "fuzz/require_same.hpp"

namespace {

fuzzed_gui& application() {
    static const int terminal = prepareSurroundings();
    static_cast<void>(terminal);
    static fuzzed_gui instance(true);
    return instance;
}

events_t eventsExpected(const std::string& kinds, const texts_t& inputs) {
    auto input = inputs.begin();
    return menu_model(kinds).run({.nextInput = [&] { return *input++; }});
}

events_t eventsSeen(const std::string& kinds, const texts_t& inputs) {
    for (const std::string& input : inputs) {
        application().queueInput(input);
    }
    return application().run(menuOf(kinds));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::size_t menuEnd = std::min(text.find('|'), size);
    const std::string kinds = text.substr(0, std::min(menuEnd, longestMenu));
    const texts_t inputs = inputsOf(text.substr(menuEnd));
    requireSame(eventsExpected(kinds, inputs), eventsSeen(kinds, inputs));
    return 0;
}
