#include "app/menu_tables.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using rows_t = std::vector<std::string>;

/// A menu's table as text: text, number, prompt, emphasis, selectable, colours.
rows_t table(const menu_elem_t& menu) {
    rows_t rows;
    for (const auto& [key, line] : menu.lines) {
        std::ostringstream row;
        row << line.text << '|' << line.shownNumber << '|' << int{line.prompt} << int{line.emphasis}
            << int{line.selectable} << '|' << line.foreground << ',' << line.background;
        rows.push_back(row.str());
    }
    return rows;
}

}  // namespace

TEST(MenuTables, MakeTheMainMenu) {
    const rows_t expected{"This tool will update Varn FW --> Rel. |0|010|7,4",
                          "Normal Flash of inactive Image with version validation|0|001|-1,-1",
                          "Forced Normal Flash of 1st Image|0|001|-1,-1",
                          "Forced Normal Flash of 2nd Image|0|001|-1,-1",
                          "Emergency Flash of both Images|0|001|-1,-1",
                          "|0|000|-1,-1",
                          "Readme|0|001|-1,-1",
                          "Legal Documents|0|001|-1,-1",
                          "|0|000|-1,-1",
                          "Reboot Varn|0|001|-1,-1",
                          "Exit|0|001|-1,-1",
                          "> |0|110|-1,-1",
                          "|0|000|1,-1",
                          "(c) 2026 Varn Firmware Tools|0|000|4,-1"};
    const menu_elem_t menu = makeMainMenu();
    EXPECT_EQ(expected, table(menu));
    EXPECT_EQ(0, menu.selected);
    EXPECT_EQ(main_menu::title, menu.headerLine);
    EXPECT_EQ(main_menu::information, menu.informationLine);
}

TEST(MenuTables, MakeTheLegalMenuWithoutTheDebianCopyrights) {
    const rows_t expected{"This tool will update Varn FW --> Rel. |0|010|7,4",
                          "#LEGAL DOCUMENTS|0|010|7,4",
                          "EULA|0|001|-1,-1",
                          "TPL Flashtools|0|001|-1,-1",
                          "TPL MORV Library|0|001|-1,-1",
                          "TPL Firmware|0|001|-1,-1",
                          "Centos Copyrights|0|001|-1,-1",
                          "|0|000|-1,-1",
                          "Exit|0|001|-1,-1",
                          "> |0|110|-1,-1",
                          "|0|000|1,-1",
                          "(c) 2026 Varn Firmware Tools|0|000|4,-1"};
    const menu_elem_t menu = makeLegalMenu();
    EXPECT_EQ(expected, table(menu));
    EXPECT_EQ(0, menu.selected);
    EXPECT_EQ(legal_menu::title, menu.headerLine);
    EXPECT_EQ(legal_menu::information, menu.informationLine);
}
