// The input is a menu as for menu_fuzz; then, each after a "|", what arrives on the terminal at
// once: a pause in milliseconds, as one byte, and what is typed after it.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>

#include "fuzz/fuzzed_gui.hpp"
#include "fuzz/keyboard_model.hpp"
#include "fuzz/require_same.hpp"
#include "fuzz/typist.hpp"

namespace {

struct session_t {
    events_t events;
    texts_t keys;  ///< an empty one, and all that were read and not thrown away
};

session_t sessionExpected(const std::string& kinds, const typing_t& typing) {
    session_t session;
    keyboard_model keyboard(typing);
    session.keys.emplace_back();
    bool isDrawn = true;
    session.events = menu_model(kinds).run({
        .nextInput =
            [&] {
                keyboard.passTime(isDrawn ? drawingTime : 0);
                isDrawn = true;
                session.keys.push_back(keyboard.nextKey());
                return session.keys.back();
            },
        .confirms =
            [&] {
                isDrawn = keyboard.isOnePress();
                if (!isDrawn) {
                    session.keys.pop_back();  // nothing is drawn after it
                }
                return isDrawn;
            },
        .operated =
            [&] {
                keyboard.passTime(operationTime);
                keyboard.awaitEnterAfterOperation();
            },
        .warned = [&] { keyboard.awaitEnter(); },
    });
    return session;
}

session_t sessionSeen(const std::string& kinds, const typing_t& typing) {
    static const int terminal = prepareSurroundings();
    static fuzzed_gui application(false);
    enter_times::now = [] {
        return enter_times::clock_t::time_point(std::chrono::milliseconds(typist::time()));
    };
    session_t session;
    typist user(terminal, typing);
    application.currentInput.clear();
    application.drawnWhole = [&] {
        session.keys.push_back(application.currentInput);
        user.passTime(drawingTime);
    };
    application.warned = [] { application.waitForEnter(""); };
    application.operated = [&] {
        user.passTime(operationTime);
        application.discardKnocking();
        application.waitForEnter("");
    };
    session.events = application.run(menuOf(kinds));
    session.keys.push_back(application.currentInput);
    while (fuzzed_gui::readByte() != EOF) {
    }
    return session;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::size_t menuEnd = std::min(text.find('|'), size);
    const std::string kinds = text.substr(0, std::min(menuEnd, longestMenu));
    const typing_t typing = typingOf(text.substr(menuEnd));
    const session_t expected = sessionExpected(kinds, typing);
    const session_t seen = sessionSeen(kinds, typing);
    requireSame(expected.keys, seen.keys);
    requireSame(expected.events, seen.events);
    return 0;
}
