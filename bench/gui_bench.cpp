// What lies between a key and its drawing: moving the highlight, composing and printing the menu.

#include <benchmark/benchmark.h>

#include "app/gui.hpp"
#include "surroundings.hpp"

namespace {

/// The application without a flash; nothing happens when a line is chosen.
struct scripted_gui : gui {
    scripted_gui() : gui(true) {
        scriptedInputs.clear();
        menus.front().callback = [](menu_item_t) {};
    }
};

/// The argument is the number of keys before ENTER: each draws the menu once more.
void drawMenu(benchmark::State& state) {
    const surroundings around;
    scripted_gui application;
    for (auto _ : state) {
        for (std::int64_t key = 0; key < state.range(0); ++key) {
            const bool isDown = key % 2 == 0;
            application.queueInput(application.keySequence(isDown ? term_key_down : term_key_up));
        }
        application.queueInput(application.keySequence(term_key_enter));
        application.showMenuOnce();
    }
    state.SetItemsProcessed(state.iterations() * (state.range(0) + 1));
}
BENCHMARK(drawMenu)->Arg(0)->Arg(99);

}  // namespace
