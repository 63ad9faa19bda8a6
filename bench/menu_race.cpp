// Races varnmenu against other programs that show the same menu, and prints what each took.

#include <exception>
#include <iostream>

#include "report.hpp"

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: menu_race PACKAGE LIMIT\n";
        return 2;
    }
    try {
        const contestants_t contestants = makeContestants(argv[1], argv[2]);
        const extent_t extent{150, 300, 3, 3, 480, 5, 7};
        rows_t rows;
        for (const auto& measure : {measureStart, measureKeys}) {
            const rows_t more = measure(contestants, extent);
            rows.insert(rows.end(), more.begin(), more.end());
        }
        printRows(std::cout, rows, contestants);
    } catch (const std::exception& error) {
        std::cerr << "menu_race: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
