#include "contestants.hpp"

namespace {

constexpr const char* title = "This tool will update Varn FW --> Rel. 2.41";
constexpr const char* information =
    "Varn-FW: 2.41  SDRR: 3.07  for SV 1000 (simulated)\\n(c) 2026 Varn Firmware Tools";

std::vector<std::string> menuCommand(const std::string& path) {
    return {path,        "--backtitle",
            title,       "--menu",
            information, "20",
            "76",        "8",
            "1",         "Normal Flash of inactive Image with version validation",
            "2",         "Forced Normal Flash of 1st Image",
            "3",         "Forced Normal Flash of 2nd Image",
            "4",         "Emergency Flash of both Images",
            "5",         "Readme",
            "6",         "Legal Documents",
            "7",         "Reboot Varn",
            "8",         "Exit"};
}

}  // namespace

contestants_t makeContestants(const std::string& package, const std::string& limitProgram) {
    const std::string tool = package + "/tool";
    return {makeOurs(package),
            contestant_t{"whiptail", tool, menuCommand("/usr/bin/whiptail"), false},
            contestant_t{"dialog", tool, menuCommand("/usr/bin/dialog"), true},
            contestant_t{"limit.c", tool, {limitProgram}, true},
            contestant_t{"limit.c with a watch", tool, {limitProgram, "watch"}, true},
            contestant_t{"limit.c on terminfo", tool, {limitProgram, "terminfo"}, true}};
}

contestant_t makeOurs(const std::string& package) {
    const std::string tool = package + "/tool";
    return {"varnmenu", tool, {tool + "/varnmenu"}, true};
}
