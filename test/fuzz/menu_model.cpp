#include "fuzz/menu_model.hpp"

#include <climits>
#include <sstream>

namespace {

constexpr const char* ctrlC = "\x03";

bool endsProgram(const std::string& input) { return input.ends_with(ctrlC); }

std::string textOf(int key) { return "line " + std::to_string(key); }

/// @return the number, or the greatest one there is
int numberOf(const std::string& digits) {
    long number = 0;
    for (const char digit : digits) {
        number = number * 10 + (digit - '0');
        if (number > INT_MAX) {
            return INT_MAX;
        }
    }
    return static_cast<int>(number);
}

}  // namespace

menu_elem_t menuOf(const std::string& kinds) {
    menu_elem_t menu;
    int key = 0;
    for (const char kind : "." + kinds + ".") {
        if (kind != '_') {
            menu_line_t line;
            line.text = textOf(key);
            line.selectable = kind == '*' ? 1 : 0;
            line.prompt = kind == '>' ? 1 : 0;
            menu.lines[key] = line;
        }
        ++key;
    }
    menu.informationLine = key - 1;
    return menu;
}

texts_t inputsOf(const std::string& text) {
    texts_t inputs;
    std::istringstream rest(text.empty() ? text : text.substr(1));
    for (std::string input; std::getline(rest, input, '|');) {
        inputs.push_back(input.empty() ? ctrlC : input);
    }
    inputs.emplace_back(ctrlC);
    return inputs;
}

menu_model::menu_model(const std::string& kinds) : lines("." + kinds + ".") {
    for (std::size_t key = 0; key < lines.size(); ++key) {
        if (lines[key] == '*') {
            choices.push_back(static_cast<int>(key));
        }
    }
}

/// The main menu's lines that flash or reboot have these keys.
bool menu_model::isOnOperation() const { return (selected >= 1 && selected <= 4) || selected == 9; }

events_t menu_model::run(const menu_hooks_t& hooks) {
    events_t events;
    std::string drawn = drawing();
    for (std::string input; !endsProgram(input);) {
        input = hooks.nextInput();
        if (input == "\n" && isOnOperation() && !hooks.confirms()) {
            continue;
        }
        const std::string happened = answer(input);
        if (!happened.empty()) {
            // The warning is shown up to its first NUL.
            events.push_back(happened.substr(0, happened.find('\0')) + "\n" +
                             std::to_string(selected) + "\n" + drawn);
        }
        if (happened.starts_with("Wrong")) {
            hooks.warned();
        } else if (input == "\n" && isOnOperation()) {
            hooks.operated();
        }
        drawn = drawing();
    }
    return events;
}

/// @return what happens; nothing when the highlight moves or stays
std::string menu_model::answer(const std::string& input) {
    if (endsProgram(input)) {
        return "user interruption";
    }
    if (input == "\f") {
        return "";
    }
    if (input == "\n") {
        return "chosen " + std::to_string(selected);
    }
    if (input.front() == '\x1b' && input.size() > 1) {
        if (input == "\x1b[A" || input == "\x1bOA") {
            moveUp();
        } else if (input == "\x1b[B" || input == "\x1bOB") {
            moveDown();
        }
        return "";
    }
    if (input.find_first_not_of("0123456789") != std::string::npos) {
        return "Wrong input, please confirm selection by 'ENTER' only : " + input;
    }
    const int number = numberOf(input);
    if (number < 1 || static_cast<std::size_t>(number) > choices.size()) {
        return "Wrong selection, please provide valid number : " + std::to_string(number);
    }
    selected = choices[static_cast<std::size_t>(number) - 1];
    return "";
}

/// The highlight starts on the title, above all choices; from there both keys lead down.
void menu_model::moveUp() {
    if (selected == 0) {
        return moveDown();
    }
    for (std::size_t place = choices.size(); place > 1; --place) {
        if (choices[place - 1] == selected) {
            selected = choices[place - 2];
            break;
        }
    }
}

void menu_model::moveDown() {
    for (const int choice : choices) {
        if (choice > selected) {
            selected = choice;
            break;
        }
    }
}

std::string menu_model::drawing() const {
    const std::string margin(7, ' ');
    const std::size_t width = std::to_string(choices.size()).size();
    std::string shownNumber;
    for (std::size_t place = 0; place < choices.size(); ++place) {
        if (choices[place] == selected) {
            shownNumber = std::to_string(place + 1);
            shownNumber.resize(width, ' ');
        }
    }
    std::string text = margin + "This tool will update Varn FW --> Rel. 2.41" + margin + "\n";
    int number = 0;
    for (std::size_t place = 1; place + 1 < lines.size(); ++place) {
        const int key = static_cast<int>(place);
        if (lines[place] == '*') {
            const std::string shown =
                key == selected ? "\x1b[7m" + textOf(key) + "\x1b(B\x1b[m" : textOf(key);
            text += "[" + std::to_string(++number) + "] " + shown + "\n";
        } else if (lines[place] != '_') {
            text += textOf(key) + (lines[place] == '>' ? shownNumber : "") + "\n";
        }
    }
    return text + "Varn-FW: 2.41  SDRR: 3.07  for SV  \n";
}
