#include "app/menu_tables.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

constexpr const char* titleText = "This tool will update Varn FW --> Rel. ";
constexpr const char* noticeText = "(c) 2026 Varn Firmware Tools";

/// A menu's table as text: key, text, number, prompt, emphasis, selectable, colours.
std::vector<std::string> table(const menu_elem_t& menu) {
    std::vector<std::string> rows;
    for (const auto& [key, line] : menu.lines) {
        std::ostringstream row;
        row << key << '|' << line.text << '|' << line.shownNumber << '|' << int{line.prompt}
            << int{line.emphasis} << int{line.selectable} << '|' << line.foreground << ','
            << line.background;
        rows.push_back(row.str());
    }
    return rows;
}

using rows_t = std::vector<std::string>;

}  // namespace

TEST(MenuTables, MakeTheMainMenu) {
    const rows_t expected{std::string("0|") + titleText + "|0|010|7,4",
                          "1|Normal Flash of inactive Image with version validation|0|001|-1,-1",
                          "2|Forced Normal Flash of 1st Image|0|001|-1,-1",
                          "3|Forced Normal Flash of 2nd Image|0|001|-1,-1",
                          "4|Emergency Flash of both Images|0|001|-1,-1",
                          "5||0|000|-1,-1",
                          "6|Readme|0|001|-1,-1",
                          "7|Legal Documents|0|001|-1,-1",
                          "8||0|000|-1,-1",
                          "9|Reboot Varn|0|001|-1,-1",
                          "10|Exit|0|001|-1,-1",
                          "11|> |0|110|-1,-1",
                          "12||0|000|1,-1",
                          std::string("13|") + noticeText + "|0|000|4,-1"};
    const menu_elem_t menu = makeMainMenu();
    EXPECT_EQ(expected, table(menu));
    EXPECT_EQ(0, menu.selected);
    EXPECT_EQ(0, menu.headerLine);
    EXPECT_EQ(12, menu.informationLine);
}

TEST(MenuTables, MakeTheLegalMenuWithoutKeySix) {
    const rows_t expected{std::string("0|") + titleText + "|0|010|7,4",
                          "1|#LEGAL DOCUMENTS|0|010|7,4",
                          "2|EULA|0|001|-1,-1",
                          "3|TPL Flashtools|0|001|-1,-1",
                          "4|TPL MORV Library|0|001|-1,-1",
                          "5|TPL Firmware|0|001|-1,-1",
                          "7|Centos Copyrights|0|001|-1,-1",
                          "8||0|000|-1,-1",
                          "9|Exit|0|001|-1,-1",
                          "10|> |0|110|-1,-1",
                          "11||0|000|1,-1",
                          std::string("12|") + noticeText + "|0|000|4,-1"};
    const menu_elem_t menu = makeLegalMenu();
    EXPECT_EQ(expected, table(menu));
    EXPECT_EQ(0, menu.selected);
    EXPECT_EQ(0, menu.headerLine);
    EXPECT_EQ(11, menu.informationLine);
}
