#include "app/menu.hpp"

#include <gtest/gtest.h>

namespace {

menu_line_t entry(const std::string& text) {
    menu_line_t line;
    line.text = text;
    line.selectable = 1;
    return line;
}

menu_line_t plain(const std::string& text) {
    menu_line_t line;
    line.text = text;
    return line;
}

/// title, [1] a, blank, [2] b, [3] c, prompt
menu_elem_t makeMenu() {
    menu_elem_t menu;
    menu.lines = {{0, plain("title")}, {2, entry("a")},  {3, plain("")},
                  {5, entry("b")},     {9, entry("cc")}, {11, plain("> ")}};
    menu.lines.at(11).prompt = 1;
    numberLines(menu);
    return menu;
}

menu_elem_t makeMenuOf(int entries) {
    menu_elem_t menu;
    for (int item = 1; item <= entries; ++item) {
        menu.lines[item] = entry("x");
    }
    numberLines(menu);
    return menu;
}

}  // namespace

TEST(Menu, NumbersSelectableLinesFromOne) {
    menu_elem_t menu = makeMenu();
    EXPECT_EQ(0, menu.lines.at(0).shownNumber);
    EXPECT_EQ(1, menu.lines.at(2).shownNumber);
    EXPECT_EQ(0, menu.lines.at(3).shownNumber);
    EXPECT_EQ(3, menu.lines.at(9).shownNumber);
    menu.lines.erase(2);
    numberLines(menu);
    EXPECT_EQ(1, menu.lines.at(5).shownNumber);
}

TEST(Menu, KeyDownLeadsToTheNextSelectableLine) {
    const menu_elem_t menu = makeMenu();
    EXPECT_EQ(2, lineBelow(menu, 0));
    EXPECT_EQ(5, lineBelow(menu, 2));
    EXPECT_EQ(9, lineBelow(menu, 5));
    EXPECT_EQ(9, lineBelow(menu, 9));  // no wrap-around
}

TEST(Menu, KeyUpLeadsToThePreviousSelectableLine) {
    const menu_elem_t menu = makeMenu();
    EXPECT_EQ(5, lineAbove(menu, 9));
    EXPECT_EQ(2, lineAbove(menu, 5));
    EXPECT_EQ(2, lineAbove(menu, 2));
}

TEST(Menu, KeyUpLeadsDownFromALineThatCannotBeSelected) {
    const menu_elem_t menu = makeMenu();
    EXPECT_EQ(2, lineAbove(menu, 0));
    EXPECT_EQ(5, lineAbove(menu, 3));
    EXPECT_EQ(11, lineAbove(menu, 11));
    EXPECT_EQ(42, lineAbove(menu, 42));
}

TEST(Menu, FindsTheLineOfANumber) {
    const menu_elem_t menu = makeMenu();
    EXPECT_EQ(5, lineWithNumber(menu, 2));
    EXPECT_EQ(std::nullopt, lineWithNumber(menu, 0));
    EXPECT_EQ(std::nullopt, lineWithNumber(menu, 4));
}

TEST(Menu, ShowsNumbersInBrackets) {
    const menu_elem_t menu = makeMenu();
    EXPECT_EQ("[2] ", numberPrefix(menu.lines.at(5)));
    EXPECT_EQ("", numberPrefix(menu.lines.at(0)));
}

TEST(Menu, PromptsWithTheHighlightedNumber) {
    menu_elem_t menu = makeMenu();
    EXPECT_EQ("", promptNumber(menu));
    menu.selected = 5;
    EXPECT_EQ("2", promptNumber(menu));
    menu.selected = 11;
    EXPECT_EQ("", promptNumber(menu));
}

// The number of line 9 must cover the one of line 10.
TEST(Menu, PromptsAsWideAsTheGreatestNumber) {
    menu_elem_t menu = makeMenuOf(10);
    menu.selected = 9;
    EXPECT_EQ("9 ", promptNumber(menu));
    menu.selected = 10;
    EXPECT_EQ("10", promptNumber(menu));
}

TEST(Menu, IsAsWideAsItsWidestLine) {
    menu_elem_t menu = makeMenu();
    EXPECT_EQ(6, menuWidth(menu));  // "[3] cc"
    menu.lines.at(11).text = "> 34567";
    menu.selected = 5;
    EXPECT_EQ(8, menuWidth(menu));
}

TEST(Menu, IsOfUnknownWidthWithAControlCharacter) {
    for (const std::string& control :
         {std::string(1, '\0'), std::string("\t"), std::string("\v"), std::string("\x1b"),
          std::string("\x7f"), std::string("\x9b")}) {
        menu_elem_t menu = makeMenu();
        menu.lines.at(0).text = "a" + control + "b";
        EXPECT_EQ(unknownWidth, menuWidth(menu));
    }
}

TEST(Menu, TellsControlCharactersFromOthers) {
    EXPECT_FALSE(hasControlCharacter(" ~\xa0\xff"));
    EXPECT_TRUE(hasControlCharacter("\x1f"));
    EXPECT_TRUE(hasControlCharacter("\x80"));
}
