// Races varnmenu against other programs that show the same menu, and prints what each took.
//
//   menu_race [--once] LIMIT PACKAGE SHORTER LONGER
//
// LIMIT is the smallest program that shows the menu, PACKAGE the demo package with the released
// tool, SHORTER and LONGER the same with many more lines in the release file: their names are the
// numbers of these lines. --once measures next to nothing: it shows that the bench works.

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "bounds.hpp"
#include "measures.hpp"
#include "report.hpp"

namespace {

constexpr extent_t whole{.starts = 150,
                         .keys = 300,
                         .sessions = 3,
                         .idleSeconds = 3,
                         .oldKeys = 480,
                         .windowKeys = 40,
                         .oldSessions = 7,
                         .longFileReads = 9};
constexpr extent_t once{.starts = 1,
                        .keys = 2,
                        .sessions = 1,
                        .idleSeconds = 0,
                        .oldKeys = 1,
                        .windowKeys = 2,
                        .oldSessions = 1,
                        .longFileReads = 1};

double linesOf(const std::string& package) {
    return std::stod(std::filesystem::path(package).filename());
}

void race(const std::vector<std::string>& words, const extent_t& extent) {
    const contestants_t contestants = makeContestants(words.at(1), words.at(0));
    figures_t figures;
    for (const auto& measure :
         {measureStart, measureSystemCalls, measureKeys, measureIdle, measureAgeing}) {
        measure(contestants, extent, figures);
    }
    const long_files_t longFiles =
        measureLongFiles(words.at(1), {words.at(2), words.at(3)}, extent);
    printFigures(std::cout, figures, contestants);
    std::cout << "\n";
    printLongFiles(std::cout, longFiles);
    std::cout << "\n";
    printBounds(std::cout, bounds(figures, longFiles, linesOf(words.at(3)) / linesOf(words.at(2))));
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    const bool isOnce = std::erase(words, "--once") > 0;
    try {
        race(words, isOnce ? once : whole);
    } catch (const std::exception& error) {
        std::cerr << "menu_race: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
