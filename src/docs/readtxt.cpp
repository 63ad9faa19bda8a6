#include "docs/readtxt.hpp"

#include <stdexcept>

namespace {

constexpr const char* documentDirectory = "../";

std::unordered_map<std::int32_t, std::string> makeDocumentTable() {
    std::unordered_map<std::int32_t, std::string> documentTable;
    for (const document_t& document : packageDocuments) {
        documentTable.emplace(document.id, documentDirectory + std::string(document.fileName));
    }
    return documentTable;
}

std::unordered_map<std::int32_t, doc_id_t> makeDocumentMap(
    const std::vector<std::pair<int, int>>& pairs) {
    std::unordered_map<std::int32_t, doc_id_t> map;
    for (const auto& [menuItem, document] : pairs) {
        map.emplace(menuItem, static_cast<doc_id_t>(document));
    }
    return map;
}

}  // namespace

readtxt::readtxt(bool evaluate, const std::vector<std::pair<int, int>>& readme,
                 const std::vector<std::pair<int, int>>& legal)
    : evalMode(evaluate), readmeMap(makeDocumentMap(readme)), legalMap(makeDocumentMap(legal)) {
    if (evalMode) {
        readerList = {{"cat", "", false}};
    } else {
        readerList = {{"less", "LESSCHARSET=UTF-8", false}, {"more", "", true}, {"cat", "", true}};
    }
}

void readtxt::showText(int menuItem, int kind) {
    switch (kind) {
        case text_readme:
            return showDocument(menuItem, readmeMap);
        case text_legal:
            return showDocument(menuItem, legalMap);
        default:
            throw std::runtime_error("Read file type not supported");
    }
}

void readtxt::showDocument(int menuItem,
                           const std::unordered_map<std::int32_t, doc_id_t>& documents) {
    const auto document = documents.find(menuItem);
    if (document == documents.end()) {
        throw std::runtime_error("Text file not supported");
    }
    const auto documentTable = makeDocumentTable();
    const auto path = documentTable.find(document->second);
    if (path == documentTable.end()) {
        throw std::runtime_error("Text file is not defined");
    }
    if (!fileExists(path->second)) {
        throw std::runtime_error("Text file is not present " + path->second);
    }
    for (const reader_prog_t& reader : readerList) {
        if (programExists(reader.name)) {
            read_prog_handler(evalMode, reader).showFile(path->second);
            return;
        }
    }
    throw std::runtime_error("No programs available for txtfile reading");
}
