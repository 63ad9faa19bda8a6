#include "flash/flashtools.hpp"

#include <stdexcept>

#include "flash/operation_lock.hpp"
#include "flash/signal_hold.hpp"

namespace {

constexpr int ispfrPresent = 55;
constexpr int evaluationPauseSeconds = 2;

struct operation_t {
    std::string message;
    std::string commandLine;
};

using operation_table_t = std::unordered_map<std::int32_t, operation_t>;

operation_table_t makeOperationTable(const std::string& imagePath) {
    static const std::string waitSuffix = ", please wait...\n\n";
    operation_table_t table{
        {op_reboot,
         {"Varn reboot pending, wait for boot to complete", flashtools::corePath + " /wr"}}};
    for (const auto& [id, message, argument] : imageOperations) {
        table[id] = {std::string(message) + waitSuffix, imageCommand(imagePath, argument)};
    }
    return table;
}

}  // namespace

const std::string flashtools::debugArgument(coreDebugArgument);
const std::string flashtools::corePath = std::string(coreDirectory) + std::string(coreFileName);

flashtools::flashtools(bool evaluate, const std::vector<std::pair<int, int>>& operations)
    : evalMode(evaluate) {
    if (!fileExists(corePath)) {
        throw std::invalid_argument("Flashtools core program not available");
    }
    for (const auto& [menuItem, operation] : operations) {
        operationMap.emplace(menuItem, static_cast<flash_op_t>(operation));
    }
}

void flashtools::runOperation(int menuItem) {
    static const operation_table_t operationTable = makeOperationTable(imagePath);
    const auto operation = operationMap.find(menuItem);
    if (operation == operationMap.end()) {
        throw std::runtime_error("Flashtools operation not supported");
    }
    const auto entry = operationTable.find(operation->second);
    if (entry == operationTable.end()) {
        throw std::runtime_error("Flashtools operation not defined");
    }
    const auto& [message, commandLine] = entry->second;
    if (evalMode != 0) {
        trace(trace_plain, message, newLines(2));
        delay(seconds, evaluationPauseSeconds);
        return;
    }
    {
        const operation_lock untilNothingIsAtWork;
        const signal_hold untilTheCoreProgramHasEnded;
        trace(trace_plain, message, newLines(2));
        runCommand(commandLine, true);
    }
    discardKnocking();
    waitForEnter("");
}

bool flashtools::isOperation(int menuItem) const { return operationMap.contains(menuItem); }

bool flashtools::checkIspfr() { return runCommand(corePath + " /ispfr", true) == ispfrPresent; }
